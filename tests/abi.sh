#!/bin/sh
# What hosts were compiled against is what libzel.so still offers: its functions, data and types as abidiff sees them.
# usage: abi.sh LIBZEL.SO LIBZEL.ABI [--renew]
set -eu

skip() {
    echo "skipped: $*" >&2
    exit 77
}
command -v abidw >/dev/null || skip "there are no abigail-tools"
readelf -S "$1" | grep -q '\.debug_info' || skip "$1 has no debugging information"

dump=$(mktemp)
trap 'rm -f "$dump"' EXIT
abidw --no-show-locs --no-comp-dir-path --no-corpus-path --short-locs --no-elf-needed --no-architecture \
    --no-parameter-names --exported-interfaces-only --type-id-style hash --out-file "$dump" "$1"

if [ "${3-}" = --renew ]; then
    cat "$dump" >"$2"
elif ! abidiff "$2" "$dump"; then
    echo "The ABI is not that of $2. If it was only added to, commit what this writes:"
    echo "    cmake --build --preset dev --target renew_abi"
    echo "If a host that was linked before may no longer run, raise ZEL_ABI in CMakeLists.txt too."
    exit 1
fi
