#!/bin/sh
# Runs what the demo shows under valgrind: no byte is lost, and none is read that is not the program's.
# usage: memcheck.sh DIRECTORY_OF_EXAMPLES DIRECTORY_OF_SAMPLES SUPPRESSIONS [DIRECTORY_OF_ZEL]
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

run direct "$texts"
run headers "$messages"/*.eml
run dates 1719450900 Asia/Tokyo ja ko zh de fr sv ru el ar en_US
run dates 1719450900 Host/India en de ja ar
if [ -n "${4-}" ]; then
    examples=$bin bin=$4
    for charset in iso-2022-jp Shift_JIS euc-kr gb2312 iso-8859-2; do
        run zel convert -f "$charset" -t UTF-8 "$texts"/*."$charset".txt >>"$work/utf8"
    done
    run zel convert -f UTF-8 -t gb18030 "$work/utf8" >/dev/null
    run zel sort -l sv <"$work/utf8" >/dev/null
    run zel encode-header <"$work/utf8" >"$work/headers"
    run zel decode-header <"$work/headers" >/dev/null
    run zel encode-body -l ja <"$work/utf8" >/dev/null
    bin=$examples
fi
[ -x "$bin/show" ] || exit 0 # GMime is not there
while IFS='|' read -r language subject sender file body; do
    run compose "$language" "$subject" "$sender" "$file" "$body" >"$work/$language.eml" </dev/null
done <"$letters"
run show "$messages"/*.eml "$work"/*.eml
