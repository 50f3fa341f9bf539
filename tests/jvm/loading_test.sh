#!/usr/bin/env bash
# loading_test.sh JAVA LIB TESTS: where the classes look for the native library. TESTS is the jar with
# the class Probe.
set -euo pipefail
java=$1 lib=$2 tests=$3
bridge=libkorvexjni130.so solver=libkorvex130.so
unset LD_LIBRARY_PATH LD_PRELOAD
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"

# lay DIRECTORY: puts the libraries there.
lay() {
    mkdir -p "$1"
    cp "$lib/$bridge" "$lib/$solver" "$1"
}
pack() { "${java%java}jar" --create --file "$@"; }
fail() {
    echo "FAILED: $1"
    exit 1
}
# probe WAYS [OPTION]...: prints the bridge's files that a process has loaded in the end.
probe() {
    "$java" --enable-native-access=ALL-UNNAMED -Djava.library.path="$PWD/empty" \
        -Dcom.korvex.library.cache="$PWD/cache of one user" "${@:2}" \
        -cp "jars/korvex.jar:jars/natives.jar:$tests" com.korvex.Probe $1
}
# loads FILE [OPTION]...
loads() {
    local loaded
    loaded=$(probe plain "${@:2}")
    [ "$loaded" = "$PWD/$1" ] || fail "$loaded is loaded, not $1"
}

mkdir jars empty
cp "$lib/korvex.jar" jars
lay "natives/com/korvex/natives/linux-$(uname -m)"
pack jars/natives.jar -C natives com

# Two processes at once unpack one library, which the jar's users share.
probe plain >first &
probe plain >second
wait $!
cmp first second
place=$(dirname "cache of one user"/*/"$bridge")
[ "$(find "cache of one user" -type f | sort)" = "$place/$solver"$'\n'"$place/$bridge" ] ||
    fail "too much is unpacked"
made=$(stat -c %i "$place/$bridge")
loads "$place/$bridge"
[ "$(stat -c %i "$place/$bridge")" = "$made" ] || fail "it is unpacked again"
echo damaged >"$place/$bridge"
loads "$place/$bridge"
cmp "$place/$bridge" "$lib/$bridge"

# Each class loader has one of its own; two have their classes out of jars in a jar.
pack nested.jar jars
all=$(probe "plain nested.jar nested.jar" | sort -u)
[ "$(wc -l <<<"$all")" = 3 ] && grep -qF "$place" <<<"$all" || fail "class loaders share: $all"

# The first place that has it is taken.
lay jars
loads "jars/$bridge"
lay path
path=-Djava.library.path=$PWD/empty:$PWD/path
loads "path/$bridge" "$path"
lay named
for way in "$PWD/named" "$PWD/named/$bridge"; do
    loads "named/$bridge" "$path" "-Dcom.korvex.library.path=$way"
done

# A failure tells each try with its cause.
rm jars/natives.jar "jars/$bridge"
cp "$lib/$bridge" empty
! probe plain -Dcom.korvex.library.path=nowhere 2>err || fail "something is loaded"
[[ $(tr '\n' ';' <err) = *"$bridge can't be loaded:;"\
"  com.korvex.library.path (nowhere): there is no file "*";"\
"  java.library.path ("*"): "*"$solver: cannot open "*";"\
"  beside the jar: there is no file "*";"\
"  class path "*": no jar with natives of linux-"*" is there;"\
*"LD_LIBRARY_PATH (null)"*"com.korvex.library.cache="* ]] || { cat err && fail "it says less"; }
