#!/usr/bin/env bash
# steps.sh SOLVER_BENCH COUNT_AWK: fails where twice as many steps of a kind, on a model twice as
# large, take more than about twice the instructions.
set -euo pipefail
counts=$(mktemp)
trap 'rm -f "$counts"' EXIT

valgrind -q --tool=callgrind --callgrind-out-file="$counts" --combine-dumps=yes \
    --compress-strings=no --compress-pos=no "$1" steps 5000

awk -v own=. -f "$2" "$counts" | awk '
    $2 == 1 { once[$1] = $3 }
    $2 == 2 {
        over = !(once[$1] > 0 && $3 <= 2.2 * once[$1])
        printf "%-16s %9.0f instructions, then %9.0f%s\n", $1, once[$1], $3, over ? ": FAILED" : ""
        failed += over
    }
    END { exit NR < 2 || failed > 0 }'
