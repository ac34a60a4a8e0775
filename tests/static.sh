#!/bin/sh
# Builds libzel.a with each compiler, inside of another project, installs it, and links hosts of both compilers against
# it: one in C by CMake and by pkg-config, and one in C++ that has names and templates in common with the library's own.
# In a Debug build the compiler leaves the most for the linker to put together.
set -eu
cd "$(dirname "$0")/.."

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

works_without_bundle() { [ "$(LANG=ja_JP.eucJP "$1" /nowhere)" = ÆüËÜ ]; } # HOST, whose charset is iso-8859-1 then

link_hosts() { # CC CXX
    # shellcheck disable=SC2046
    "$1" tests/install/host.c -o "$work/host" $(pkg-config --static --cflags --libs zel)
    works_without_bundle "$work/host"
    # shellcheck disable=SC2046
    "$2" -std=c++20 -Ilib/zel tests/install/static_host.cpp -o "$work/host" \
        $(pkg-config --static --cflags --libs zel)
    "$work/host"
}

for compilers in "gcc g++" "clang clang++"; do
    own=$work/${compilers% *}
    cmake -S tests/subproject -B "$own" -DBUILD_SHARED_LIBS=OFF -DZEL_INSTALL=ON -DCMAKE_INSTALL_LIBDIR=lib \
        -DCMAKE_C_COMPILER="${compilers% *}" -DCMAKE_CXX_COMPILER="${compilers#* }" -DCMAKE_BUILD_TYPE=Debug
    cmake --build "$own" --parallel "$(nproc)"
    works_without_bundle "$own/host"
    cmake --install "$own" --prefix "$own/installed"
    sh tests/exports.sh nm "$own/installed/lib/libzel.a" lib/zel/libzel.map lib/zel/include/zel.h

    cmake -S tests/install -B "$own/found" -DCMAKE_PREFIX_PATH="$own/installed"
    cmake --build "$own/found"
    works_without_bundle "$own/found/host"
    export LD_LIBRARY_PATH="$own/installed/lib" PKG_CONFIG_PATH="$own/installed/lib/pkgconfig"
    link_hosts gcc g++
    link_hosts clang clang++
done
