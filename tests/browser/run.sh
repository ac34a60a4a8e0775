#!/bin/sh
# Lets readers of several languages use the web mailbox in Debian's browser.
set -eu
cd "$(dirname "$0")/../.."

usage() {
    echo "usage: tests/browser/run.sh [DIRECTORY-OF-PICTURES]"
    echo "Installs the browser, builds the web mailbox and lets readers of several languages use it. Pictures of their lists"
    echo "go to the directory, if there is one."
}
[ $# -le 1 ] || { usage >&2 && exit 2; }
case ${1-} in
-h | --help) usage && exit ;;
-*) usage >&2 && exit 2 ;;
esac

script/bootstrap --browser
cmake --preset release
cmake --build --preset release
/usr/bin/python3 -B tests/browser/browser_test.py build/release/examples/webmail "$@"
