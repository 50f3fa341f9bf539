#!/usr/bin/env bash
# instructions.sh COUNT IDLE_SOLVER_DIRECTORY COUNT_AWK: counts the instructions that the bridge's own
# functions take for six calls, and fails where a call takes more than its ceiling.
set -euo pipefail
counts=$(mktemp)
trap 'rm -f "$counts"' EXIT

# The solver's and the virtual machine's doubles do nothing, so the counts are the same everywhere.
LD_LIBRARY_PATH=$2 valgrind -q --tool=callgrind --callgrind-out-file="$counts" --combine-dumps=yes \
    --compress-strings=no --compress-pos=no "$1"

awk -v own=libkorvexjni130 -f "$3" "$counts" | awk '
    BEGIN {
        # About a tenth above what g++ 12 makes of them. addvars of 5 nonzeros: a variable with
        # its name; of 1000: 200 variables.
        split("attribute 85 parameter 48 addvars5 570 addvars1000 9200 updatemodel 5 upcall 94", words)
        for (k = 1; k in words; k += 2)
            ceiling[words[k]] = words[k + 1]
    }
    $2 == "bridge" { count[$1] = $4 }
    END {
        count["upcall"] = (count["run100"] - count["run"]) / 100
        for (call in ceiling) {
            over = !(count[call] > 0 && count[call] <= ceiling[call])
            printf "%-12s %6d instructions, ceiling %d%s\n", call, count[call], ceiling[call],
                over ? ": FAILED" : ""
            failed += over
        }
        exit failed > 0
    }'
