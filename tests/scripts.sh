#!/bin/sh
# Asks every script for its usage, and hands it words that it does not know. On the path there is next to nothing, so a
# script that begins to work before it answers fails.
# usage: scripts.sh SOURCE_DIRECTORY
set -eu
cd "$1"

tools=$(mktemp -d)
trap 'rm -rf "$tools"' EXIT
for tool in bash dirname env; do
    ln -s "$(command -v $tool)" "$tools"
done

answers() { # EXIT_CODE SCRIPT WORD...
    code=0 expected=$1 script=$2
    shift 2
    PATH=$tools "$script" "$@" >"$tools/stdout" 2>"$tools/stderr" || code=$?
    text=$(cat "$tools/stdout" "$tools/stderr")
    [ "$code" = "$expected" ] && [ "${text#"usage: $script"}" != "$text" ] || echo "$script $*: $code $text"
    if [ "$code" = 0 ]; then [ ! -s "$tools/stderr" ]; else [ ! -s "$tools/stdout" ]; fi ||
        echo "$script $*: this goes to the wrong stream: $text"
}

complaints=$(for script in script/* .ci/run; do
    answers 0 "$script" -h
    answers 0 "$script" --help
    answers 2 "$script" --no-such-option
    answers 2 "$script" two words
done)
echo "$complaints"
[ -z "$complaints" ]
