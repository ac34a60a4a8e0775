#!/bin/sh
# Holds the instructions that a text of twice the size takes against those of the text itself, and those of a
# text with a rhythm against those of dense text of the same size.
# usage: linear_time.sh PROGRAM SHARE SHARES
set -eu

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
valgrind -q --tool=callgrind --dump-line=no --callgrind-out-file="$work/counts" "$@" >"$work/output" 2>&1 || {
    cat "$work/output"
    exit 1
}

# An instruction for every second byte is let pass: libraries copy a long text otherwise than a short one.
find "$work" -name 'counts.*' -exec cat {} + | awk -F '|' '
    /^desc: Trigger: Client Request: / { sub(/.*Request: /, ""); name = $1; pattern = $2; times = $3 }
    /^summary: / && name != "" { sub(/summary: /, ""); cost[name "|" pattern, times] = $0 + 0; cases[name "|" pattern]; name = "" }
    END {
        for (key in cases) {
            ++count
            if (key ~ /^rhythm/) {
                if (cost[key, 2] > 2 * cost[key, 1]) { print key ": " cost[key, 1] " dense, with ASCII " cost[key, 2]; ++failed }
                continue
            }
            ratio = (cost[key, 2] - 16384) / cost[key, 1]
            if (ratio > worst) { worst = ratio; worst_key = key }
            if (ratio > 2.2) { print "more than linear: " key ": " cost[key, 1] ", then " cost[key, 2]; ++failed }
        }
        print count " cases, the steepest " worst " times: " worst_key
        exit failed > 0 || count < 100
    }'
