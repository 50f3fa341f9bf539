#!/usr/bin/env bash
# programs_test.sh JAVA LIB SOURCE: the example programs as their users run them. How they end, what
# they print and write, and the program in README.
set -euo pipefail
lib=$2 source=$3
bakery=$source/examples/models/bakery.lp shifts=$source/examples/models/shifts.lp
java=("$1" -XX:TieredStopAtLevel=1 --enable-native-access=ALL-UNNAMED -Djava.library.path="$lib"
    -Dkorvex.examples="$source/examples" -cp "$lib/korvex.jar:$lib/*")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"

fail() {
    echo "FAILED: $run: $1"
    cat out err
    exit 1
}
# run STATUS PROGRAM ARGUMENT...: it ends with that status, and leaves its output in out and err.
run() {
    local status=0
    run="${*:2}"
    "${java[@]}" "${@:2}" >out 2>err || status=$?
    [ "$status" = "$1" ] || fail "status $status, not $1"
}
# has FILE TEXT...: the texts are in the file; a semicolon is the end of a line.
has() {
    local text content
    content=$(tr '\n' ';' <"$1")
    for text in "${@:2}"; do
        [[ $content = *"$text"* ]] || fail "$1 hasn't \"$text\""
    done
}
# value LABEL: the rest of the line of the output that begins with it.
value() { sed -n "s/^$1: //p" out; }
# among LEAST NUMBER GREATEST
among() { awk "BEGIN { exit !($1 <= $2 && $2 <= $3) }" || fail "$2 isn't from $1 to $3"; }

# solves EXIT STATUS ARGUMENT...
solves() {
    run "$1" Solve "${@:3}"
    [ "$(value Status)" = "$2" ] && [ ! -s err ] || fail "it isn't $2"
    # At a time limit it depends on the machine.
    [ "$2" = time_limit ] || [[ $1$(value Objective) =~ ^(3-|[04][0-9.]+)$ ]] || fail "the objective"
}
printf 'Maximize\n x + y\nSubject To\n c: x - y <= 1\nEnd\n' >unbounded.lp
for options in "" "--async --log --set method=0"; do
    solves 0 optimal "$bakery" $options
    among 1073.189188 "$(value Objective)" 1073.189190
done
solves 3 infeasible "$shifts"
solves 3 unbounded unbounded.lp --quiet
solves 4 time_limit --time-limit 0.2
solves 4 node_limit --set NodeLimit=1 --threads 1
solves 4 solution_limit --async --set SolutionLimit=1

# refuses TEXT ARGUMENT...: bad usage is said in one line.
refuses() {
    run 2 Solve "${@:2}"
    [ ! -s out ] && [ "$(wc -l <err)" = 1 ] || fail "more than a line"
    has err "$1"
}
printf 'Minimize\n x\nSubject To\n c: x >= >= 1\nEnd\n' >damaged.lp
refuses --bogus --bogus
refuses "needs a value" --json
refuses "more than one model" "$bakery" "$shifts"
refuses NAME=VALUE --set Threads
refuses nonsense "$bakery" --set nonsense=1
refuses Threads --threads many
refuses TimeLimit --time-limit -1
refuses absent.mps absent.mps
refuses "damaged.lp, line 4" damaged.lp
refuses ".mps or .lp" model.xyz
refuses ".sol, .mst, .bas" --write result.xyz
refuses "/no/such/file: can't be written" --json /no/such/file
refuses "-bogus.lp: No such file" -- -bogus.lp

run 0 Solve -h
mv out short
run 0 Solve --help
cmp out short
has out --set --time-limit --threads --async --quiet --json --write --solution --plot --help

run 0 Solve "$bakery" --json result.json --write result.sol --plot result.svg --solution
has out "  rye = 4;"
has result.json '"objective": 1073.18'
has result.sol "white 24.3"
# The axes and two lines, which end at the same height: the model is solved.
[ "$(grep -o 'd="M' result.svg | wc -l)" = 3 ] || fail "lines are missing"
[ "$(grep -oE "[V ][0-9.]+H800" result.svg | tail -n 2 | tr -d "V " | uniq | wc -l)" = 1 ] ||
    fail "the lines end apart"
run 1 Solve "$bakery" --json /dev/full
has out "Status: optimal;"
has err "/dev/full: No space left on device"
ln -sf /dev/full out
run 1 Solve "$bakery"
rm out
has err "the output can't be written"

run 1 Solve "$shifts" --iis --write none.sol
has err "solve: there is no solution"
has out "one of them:;  constraint demand_tue;  constraint demand_wed;  constraint limit_eva;" \
    "  constraint limit_eva;  constraint day_off;  bound "

# An interruption still reports, if it comes late enough.
for mode in --async --log; do
    run="Solve $mode"
    for seconds in 1 2 4 8 16; do
        status=0
        timeout --preserve-status -s INT $seconds "${java[@]}" $run >out 2>err || status=$?
        [[ $(value Objective) != [0-9]* ]] || break
    done
    [ "$status $(value Status)" = "4 interrupted" ] || fail "status $status"
    among 7830.925 "$(value Objective)" 12000
    among 0 "$(value Bound)" "$(value Objective)"
    own=--log
    [[ $(value Callbacks) != *"on a thread of the run's own" ]] || own=--async
    [ $own = $mode ] || fail "callbacks come $(value Callbacks)"
done

# prints PROGRAM TEXT...
prints() {
    run 0 "$1"
    [ ! -s err ] || fail "it complains"
    has out "${@:2}"
}
prints FromArrays "Cost: 1707.5" "plant0_market1: 300"
prints Cancel "Cancelled: true" "Bound: 7"
prints Conflict "together:;  work;  contract_ann;  contract_bob;Opt" \
    "violation: 5.0 hours, then the cost is 1475.0"
prints Batch '"objective": 1073.18'
prints Tableau "wood: chairs -0.120" "wood: tables +0.080" "worth: 1.00"
prints Portfolio "shares: 24.9 %" "deviation: 6.86 %"
run 0 Tour --cities 12 --out tour.svg
[ "$(grep -o "<circle " tour.svg | wc -l)" = 12 ] || fail "cities are missing"
has tour.svg "12 cities, length $(value Length | cut -c 1-5)"
run 2 Tour --cities 2

# README's program prints what README says; the log in between tells times.
block() { sed -n "/$1/,/^\`\`\`\$/p" "$source/README.md" | sed '1d; $d'; }
timeless() { sed 's/[0-9.]* seconds//'; }
block '^```java$' >Bakery.java
run 0 Bakery.java
[ ! -s err ] || fail "it complains"
diff <(block '^\$ java .* Bakery.java$' | timeless) <(timeless <out)
