#!/bin/sh
# Installs the library, moves the installed tree, and builds a host against it twice: by pkg-config with the C compiler
# alone, and as a CMake project. Both hosts run with the installed bundle.
# usage: install.sh CMAKE GENERATOR CC BUILD_DIRECTORY HOST_DIRECTORY
set -eu

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

run_host() { # HOST BUNDLES_PATH
    [ -e "$2/encbylang" ]
    LANG=ja_JP.eucJP LD_LIBRARY_PATH=$libraries "$1" "$2"
}

DESTDIR=$work/image "$1" --install "$4" --prefix /usr >/dev/null
mv "$work/image/usr" "$work/moved"
pc=$(find "$work/moved" -name zel.pc)
libraries=$(dirname "$(dirname "$pc")")

export PKG_CONFIG_PATH="${pc%/*}"
# shellcheck disable=SC2046
"$3" -std=c99 -pedantic -Wall -Wextra -Werror "$5/host.c" -o "$work/host" $(pkg-config --cflags --libs zel) -lqorm
run_host "$work/host" "$(pkg-config --variable=bundles_path zel)"

"$1" -G "$2" -S "$5" -B "$work/build" -DCMAKE_C_COMPILER="$3" -DCMAKE_PREFIX_PATH="$work/moved" >/dev/null
"$1" --build "$work/build" >/dev/null
run_host "$work/build/host" "$(cat "$work/build/bundles_path")"
