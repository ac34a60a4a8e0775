#!/bin/sh
# What the library exports, what the version script names and what zel.h declares are one list of names, and each name is
# exported at the version under which the script names it. A static library has no versions.
# usage: exports.sh NM LIBRARY LIBZEL.MAP ZEL.H
set -eu

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

awk '/^[A-Z].* \{$/ { version = $1 } /^ *[A-Za-z_][A-Za-z0-9_]*;$/ { sub(";", ""); print $1 "@@" version }' "$3" |
    sort >"$work/versioned"
sed 's/@@.*//' "$work/versioned" | sort >"$work/named"
case $2 in
*.a) dynamic='' expected=named ;;
*) dynamic=-D expected=versioned ;;
esac
# shellcheck disable=SC2086
"$1" $dynamic --extern-only --defined-only "$2" | awk 'NF == 3 && $2 != "A" { print $3 }' | sort >"$work/exported"
# A declaration runs to its semicolon; its name is the last word before the first parenthesis or bracket.
sed '/^#/d' "$4" | tr '\n' ' ' | tr ';' '\n' | sed -n 's/.*ZEL_API \([^[(]*\).*/\1/p' |
    sed 's/.*[ *]\([A-Za-z_][A-Za-z0-9_]*\) *$/\1/' | sort >"$work/declared"

[ -s "$work/declared" ]
diff -u "$work/$expected" "$work/exported"
diff -u "$work/named" "$work/declared"
