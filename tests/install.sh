#!/bin/sh
# Installs the library, moves the installed tree, and builds hosts against it: by pkg-config with the C compiler alone,
# among them an example and those of the README, and as a CMake project. zel.pc stands alone, as on a machine without the
# development files of ICU and NSPR. With "-" for a build directory it takes the library that the system's packages have
# installed.
# usage: install.sh CMAKE GENERATOR CC BUILD_DIRECTORY SOURCE_DIRECTORY
set -eu

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

run_host() { # HOST BUNDLES_PATH
    [ -e "$2/encbylang" ]
    LANG=ja_JP.eucJP "$1" "$2"
}

if [ "$4" != - ]; then
    DESTDIR=$work/image "$1" --install "$4" --prefix /usr >/dev/null
    mv "$work/image/usr" "$work/moved"
    pc=$(find "$work/moved" -name zel.pc)
    export PKG_CONFIG_LIBDIR="${pc%/*}" LD_LIBRARY_PATH="${pc%/*/*}" CMAKE_PREFIX_PATH="$work/moved"
fi

libs="--cflags --libs"
[ ! -e "$(pkg-config --variable=libdir zel)/libzel.a" ] || libs="$libs --static"

# shellcheck disable=SC2046,SC2086
"$3" -std=c99 -pedantic -Wall -Wextra -Werror "$5/tests/install/host.c" -o "$work/host" \
    $(pkg-config $libs zel) -lqorm
run_host "$work/host" "$(pkg-config --variable=bundles_path zel)"

# shellcheck disable=SC2046,SC2086
"$3" "$5/examples/direct.c" "$5/examples/host.c" -o "$work/direct" $(pkg-config $libs zel)
"$work/direct" "$5/examples/texts" >/dev/null

for language in "c -std=c99" "cpp -std=c++17"; do
    file=readme.${language%% *}
    sed -n "/^\`\`\`${language%% *}\$/,/^\`\`\`/{/^\`\`\`/!p;}" "$5/README.md" >"$work/$file"
    # shellcheck disable=SC2046,SC2086
    "$3" "${language#* }" "$work/$file" -o "$work/readme" $(pkg-config $libs zel) -lstdc++
    "$work/readme" | grep -q Café
done

# The program finds the library and the bundle by its own place.
program=$(PATH="$work/moved/bin:$PATH" command -v zel) || echo "the program was not built"
[ -z "$program" ] || env -u LD_LIBRARY_PATH "$program" languages | grep -q '^ru *iso-8859-5 *iso-8859-5 '

env -u PKG_CONFIG_LIBDIR "$1" -G "$2" -S "$5/tests/install" -B "$work/build" -DCMAKE_C_COMPILER="$3" >/dev/null
"$1" --build "$work/build" >/dev/null
run_host "$work/build/host" "$(cat "$work/build/bundles_path")"
