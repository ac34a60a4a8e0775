#!/bin/sh
# Builds the tree as a packager does, in Release and without a preset, with warnings for errors, and runs its tests.
# usage: plain.sh CC CXX
set -eu
cd "$(dirname "$0")/.."

build=build/plain-$1
cmake -S . -B "$build" -DCMAKE_C_COMPILER="$1" -DCMAKE_CXX_COMPILER="$2" -DCMAKE_BUILD_TYPE=Release -DZEL_WERROR=ON
cmake --build "$build" --parallel "$(nproc)"
cd "$build" && ctest --output-on-failure -LE valgrind --parallel "$(nproc)"
