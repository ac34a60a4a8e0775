#!/bin/sh
# What libzel.so exports, what the version script names and what zel.h declares are one list of names.
# usage: exports.sh NM LIBZEL.SO LIBZEL.MAP ZEL.H
set -eu

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$1" -D --defined-only "$2" | awk '{ print $NF }' | sort >"$work/exported"
sed -n '/global:/,/local:/s/^ *\([A-Za-z_][A-Za-z0-9_]*\);$/\1/p' "$3" | sort >"$work/named"
# A declaration runs to its semicolon; its name is the last word before the first parenthesis or bracket.
sed '/^#/d' "$4" | tr '\n' ' ' | tr ';' '\n' | sed -n 's/.*ZEL_API \([^[(]*\).*/\1/p' |
    sed 's/.*[ *]\([A-Za-z_][A-Za-z0-9_]*\) *$/\1/' | sort >"$work/declared"

[ -s "$work/declared" ]
diff -u "$work/named" "$work/exported"
diff -u "$work/named" "$work/declared"
