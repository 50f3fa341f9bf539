#!/usr/bin/env bash
# solver.sh BUILD_DIRECTORY [FILE]...: what the development solver costs beside Clp and the program
# cbc. Without files it measures everything, on models of its own; else it solves the files. The tables
# are in BUILD_DIRECTORY/bench/solver.md, too. LIMIT is how many seconds a solve may take.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd) build=$(realpath "$1")
shift
files=("${@/#[^\/]/$PWD/&}")
bench=$build/bin/solver_bench
export LIMIT=${LIMIT:-60}
mkdir -p "$build/bench/models"
cd "$build/bench"

# timed NAME COMMAND...: seconds and objective value.
timed() {
    local begin=$EPOCHREALTIME
    printf '  %s: %s\n' "$(basename "$file")" "$1" >&2
    "${@:2}" >answer 2>&1 || { cat answer >&2 && exit 1; }
    awk -v begin="$begin" -v end="$EPOCHREALTIME" '
        /^Objective value:|^Optimal objective / { value = $3 }
        END { print end - begin, value == "" ? "none" : sprintf("%.8g", value) }' answer
}

solving() {
    echo "| Model | \`cbc\`, s | solver, s | ratio | with callback, s | ratio |" \
        "objective: \`cbc\` | solver | with callback |"
    echo "|---|---:|---:|---:|---:|---:|---:|---:|---:|"
    for file in "${files[@]}"; do
        cbc=$(timed cbc cbc "$file" -sec "$LIMIT" -ratio 1e-4 -solve)
        solver=$(timed solver "$bench" solve "$file")
        watched=$(timed callback "$bench" watch "$file")
        echo "$(basename "${file%.*}") $cbc $solver $watched" | awk '{
            printf "| %s | %.2f | %.2f | %.2f | %.2f | %.2f | %s | %s | %s |\n",
                $1, $2, $4, $4 / $2, $6, $6 / $2, $3, $5, $7 }'
    done
}

{
    if [ ${#files[@]} = 0 ]; then
        "$bench"
        echo
        awk -v directory=models -f "$here/models.awk"
        files=(models/*.lp)
    fi
    solving
} | tee solver.md
printf 'Tables: %s\n' "$build/bench/solver.md" >&2
