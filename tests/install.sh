#!/bin/sh
# Installs the library, moves the installed tree, and builds hosts against it. zel.pc stands alone, as on a machine
# without the development files of ICU and NSPR. The program finds the library and the bundle by its own place.
# usage: install.sh CMAKE GENERATOR CC BUILD_DIRECTORY SOURCE_DIRECTORY
set -eu

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

DESTDIR=$work/image "$1" --install "$4" --prefix /usr >/dev/null
mv "$work/image/usr" "$work/moved"
pc=$(find "$work/moved" -name zel.pc)
[ ! -x "$work/moved/bin/zel" ] || ${EMULATOR-} "$work/moved/bin/zel" languages | grep -q '^ru *iso-8859-5 *iso-8859-5 '

libs=--libs
[ ! -e "${pc%/*/*}/libzel.a" ] || libs="--libs --static"
export PKG_CONFIG_LIBDIR="${pc%/*}" LD_LIBRARY_PATH="${pc%/*/*}" CMAKE_PREFIX_PATH="$work/moved"
# shellcheck disable=SC2086
sh "$5/tests/hosts.sh" "$1" "$2" "$3" "$(pkg-config --cflags $libs zel)"
