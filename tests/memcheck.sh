#!/bin/sh
# Runs what the demo shows under valgrind: no byte is lost, and none is read that is not the program's.
# usage: memcheck.sh DIRECTORY_OF_PROGRAMS DIRECTORY_OF_SAMPLES SUPPRESSIONS
set -eu

bin=$1 texts=$2/texts messages=$2/messages letters=$2/letters.txt suppressions=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

run() {
    program=$1 && shift
    kinds=definite,indirect,possible
    valgrind -q --leak-check=full --show-leak-kinds=$kinds --errors-for-leak-kinds=$kinds --error-exitcode=9 \
        --suppressions="$suppressions" "$bin/$program" "$@" 2>"$work/errors" || {
        cat "$work/errors" >&2
        echo "under valgrind: $program $*" >&2
        exit 1
    }
}

run charsets "$texts"/*.txt
run languages en ru tr ja ko zh-TW
ZEL_BUNDLES=$bin/bundles run languages en ja
run direct "$texts"
run headers "$messages"/*.eml
run filenames "$messages"/*.eml
run dates 1719450900 Asia/Tokyo ja ko zh de fr sv ru el ar en_US
run dates 1719450900 Host/India en de ja ar
printf '%s\n' Zebra Äpfel Apfel Übung >"$work/lines"
run sort sv <"$work/lines"
[ -x "$bin/show" ] || exit 0 # GMime is not there
while IFS='|' read -r language subject sender file body; do
    run compose "$language" "$subject" "$sender" "$file" "$body" >"$work/$language.eml" </dev/null
done <"$letters"
run show "$messages"/*.eml "$work"/*.eml
