#!/bin/sh
# What script/release runs in a root: all tests. Debian 11 has neither CLI11, so that the program is left out, nor a g++
# that knows enough of C++20.
set -eu

. /etc/os-release
[ "$VERSION_CODENAME" = bullseye ] || exec script/test
apt-get update -q
DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends clang-16 cmake g++ make pkg-config \
    icu-devtools libgmime-3.0-dev libgtest-dev libicu-dev libnspr4-dev python3
exec sh tests/plain.sh clang-16 clang++-16
