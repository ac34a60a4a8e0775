#!/bin/sh
# Builds the web mailbox and lets readers of several languages use it in Debian's browser. The pictures that it takes of
# their lists go to the directory that is named.
# usage: run.sh [DIRECTORY-OF-PICTURES]
set -eu
cd "$(dirname "$0")/../.."

script/bootstrap --browser
cmake --preset release
cmake --build --preset release
/usr/bin/python3 -B tests/browser/browser_test.py build/release/examples/webmail "$@"
