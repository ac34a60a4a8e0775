#!/bin/sh
# Builds what is installed twice, in folders whose paths differ in length, and holds the installed files against each
# other. The build type is the default one, whose debug information names sources and folders.
set -eu
cd "$(dirname "$0")/.."

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

install_from() { # FOLDER PREFIX
    mkdir -p "$1"
    tar -cf - --exclude=./build --exclude=./.git . | tar -xf - -C "$1"
    cmake -S "$1" -B "$1/build" -DZEL_TESTS=OFF -DZEL_EXAMPLES=OFF
    cmake --build "$1/build" --parallel "$(nproc)"
    cmake --install "$1/build" --prefix "$2"
}

install_from "$work/short" "$work/one"
install_from "$work/a folder/with a longer/path than that/of the other" "$work/two"
[ -e "$work/one/include/zel.h" ]
diff -r --no-dereference "$work/one" "$work/two"
