#!/bin/sh
# Builds hosts of the library that pkg-config and CMake find: with the C compiler alone, among them an example and those
# of the README, and as CMake projects in C and in C++. In a cross build EMULATOR in the environment runs the hosts, and
# CFLAGS tells the C compiler where libraries are; CMake is not told of one for C++.
# usage: hosts.sh CMAKE GENERATOR CC "COMPILER_OPTION..."
# shellcheck disable=SC2086
set -eu
cd "$(dirname "$0")/.."

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

run_host() { # HOST BUNDLES_PATH
    [ -e "$2/encbylang" ]
    LANG=ja_JP.eucJP ${EMULATOR-} "$1" "$2"
}
build_by_cmake() { # CMAKE GENERATOR FOLDER OPTION...
    cmake=$1 generator=$2 folder=$work/$3 && shift 3
    env -u PKG_CONFIG_LIBDIR "$cmake" -G "$generator" -S tests/install -B "$folder" "$@" >/dev/null
    "$cmake" --build "$folder" >/dev/null
}

"$3" ${CFLAGS-} -std=c99 -pedantic -Wall -Wextra -Werror tests/install/host.c -o "$work/host" $4 -lqorm
run_host "$work/host" "$(pkg-config --variable=bundles_path zel)"
"$3" ${CFLAGS-} examples/direct.c examples/host.c -o "$work/direct" $4
${EMULATOR-} "$work/direct" examples/texts >/dev/null

for language in "c -std=c99" "cpp -std=c++17"; do
    file=readme.${language%% *}
    sed -n "/^\`\`\`${language%% *}\$/,/^\`\`\`/{/^\`\`\`/!p;}" README.md >"$work/$file"
    "$3" ${CFLAGS-} "${language#* }" "$work/$file" -o "$work/readme" $4 -lstdc++
    ${EMULATOR-} "$work/readme" | grep -q Café
done

build_by_cmake "$1" "$2" c -DCMAKE_C_COMPILER="$3"
run_host "$work/c/host" "$(cat "$work/c/bundles_path")"
[ -z "${EMULATOR-}" ] || exit 0
build_by_cmake "$1" "$2" cxx -DLANGUAGE=CXX -DHOST="$work/readme.cpp" -DCMAKE_CXX_STANDARD=17
"$work/cxx/host" | grep -q Café
