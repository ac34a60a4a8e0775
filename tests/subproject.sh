#!/bin/sh
# Takes the source tree into another project by add_subdirectory, and builds its library as one source on the way. The
# project's own install brings nothing of the library unless that is asked for, and a host finds what it brings then
# though there be no bundle.
set -eu
cd "$(dirname "$0")/.."

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

works_without_bundle() { # HOST, whose local charset is iso-8859-1 then
    [ "$(LANG=ja_JP.eucJP "$1" /nowhere)" = ÆüËÜ ]
}

configure() { # OPTION...
    cmake -S tests/subproject -B "$work/build" -DCMAKE_BUILD_TYPE=Release "$@"
    cmake --build "$work/build" --parallel "$(nproc)"
}

configure -DCMAKE_UNITY_BUILD=ON -DCMAKE_UNITY_BUILD_BATCH_SIZE=0
cmake --install "$work/build" --prefix "$work/own"
[ "$(cd "$work/own" && find . -type f)" = ./bin/host ]
works_without_bundle "$work/build/host"

configure -DZEL_INSTALL=ON
cmake --install "$work/build" --prefix "$work/both"
[ ! -e "$work/both/share/zel" ]
cmake -S tests/install -B "$work/found" -DCMAKE_PREFIX_PATH="$work/both"
cmake --build "$work/found"
works_without_bundle "$work/found/host"
