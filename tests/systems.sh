#!/usr/bin/env bash
# systems.sh [SUITE...]: builds and tests this checkout as a new user would, on bare Debian systems
# made by debootstrap: Debian 12 (g++ 12, clang 14, JDK 17) and Debian 13 (g++ 14, clang 19, JDK 21
# and the newest). Each takes some 2 GB in /var/tmp, or $TMPDIR, while it lasts.
set -euo pipefail
source=$(cd "$(dirname "$0")/.." && pwd -P)
[ $# != 0 ] || set -- bookworm trixie

fail() {
    echo "$1" >&2
    exit 1
}
[ "$(id -u)" = 0 ] || fail "Making systems takes root: run this with sudo."
command -v debootstrap >/dev/null || fail "Please install debootstrap: apt-get install debootstrap"

# inside COMMAND...: in the system, where the checkout lies in a directory with a difficult name.
checkout="/home/it's a (bare) system"
inside() {
    unshare --mount --pid --fork bash -c '
        mount -t proc proc "$0/proc"
        exec chroot "$0" env -i -C "$1" HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin LANG=C.UTF-8 \
            "${@:2}"' "$root" "$checkout" "$@"
}

# timed WHAT COMMAND...
timed() {
    local begin=$SECONDS
    echo "$suite: $1 ..."
    "${@:2}" || fail "$suite: $1 FAILED"
    echo "$suite: $1 took $((SECONDS - begin)) s"
}

make_system() {
    debootstrap --variant=minbase "$suite" "$root" >"$root.log" 2>&1 || ! tail "$root.log"
}

no_warnings() {
    ! grep -h 'warning:' "$root$checkout"/build/*.log
}

# Without an administrator's rights it is said what to install.
tells_packages() {
    local said
    ! said=$(inside setpriv --reuid 65534 --clear-groups ./run solve 2>&1) &&
        grep -F "Have an administrator run: apt-get install g++ cmake ninja-build" <<<"$said"
}

# README's two commands for the commercial library, for which a library without any sense stands in.
commercial() {
    # shellcheck disable=SC2016
    inside sh -euc 'export DEBIAN_FRONTEND=noninteractive lib=/tmp/libkorvex130.so
        apt-get install -y --no-install-recommends g++ cmake ninja-build default-jdk-headless
        cat src/jni/korvex/*.h | sed -nE "s/^[A-Za-z].*[ *](KVX[A-Za-z0-9]+)[(].*/int \1() { return 0; }/p" |
            gcc -shared -fPIC -o $lib -x c -
        cmake --preset default -DKORVEX_SOLVER_LIBRARY=$lib
        cmake --build --preset default --target korvexjni korvex_jar
        rm -r build' >>"$root.log" 2>&1
}

# README's commands as they stand and in their order, then those that it names. A copy of the
# development solver stands in for the commercial library.
readme() {
    # shellcheck disable=SC2016
    inside bash -euc 'mkdir -p /opt/korvex/lib
        cp build/default/lib/libkorvex130.so /opt/korvex/lib
        sed -n "/^\`\`\`java/,/^\`\`\`\$/p" README.md | sed "1d; \$d" >Bakery.java
        sed s/Bakery/YourProgram/ Bakery.java >YourProgram.java
        javac -cp build/default/lib/korvex.jar YourProgram.java
        sed -n "s/^[$] //p" README.md | grep -v "^\./run test" >commands
        . ./commands
        for name in $(sed -n "/^| Name /,/^\$/s/^| .\([A-Z][A-Za-z]*\).*/\1/p" README.md); do
            ./run example "$name"
        done
        ./run solve --help
        ./run docs
        if ./run package; then exit 1; fi
        cmake --preset default -DKORVEX_SOLVER_LIBRARY=
        ./run package' >>"$root.log" 2>&1
}

# lively COMMAND...: what packages say isn't on the screen, which is never still for long.
lively() {
    "$@" 2>&1 | {
        local line status=0
        while IFS= read -r -t 30 line || { status=$? && false; }; do
            echo "$line"
            [[ $line != @(Get:|Unpacking|Setting up)* ]] || return 1
        done
        [ "$status" -le 128 ]
    }
}

# presets PRESET...: other builds of the tests that need no virtual machine.
presets() {
    local preset
    for preset in "$@"; do
        inside sh -euc "cmake --preset $preset && cmake --build --preset $preset --target native_test &&
            ctest --preset $preset -R '^native_test\$'" >>"$root.log" 2>&1 || return 1
    done
}

small() {
    local megabytes
    megabytes=$(du -sm "$root$checkout/build" | cut -f 1)
    echo "$suite: the build directory has $megabytes MB"
    [ "$megabytes" -le 270 ]
}

with_jdk() {
    local home
    inside env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "$1" \
        >>"$root.log" 2>&1
    home=$(inside sh -c "readlink -f /usr/lib/jvm/java-${1//[^0-9]/}-openjdk-*")
    inside env JAVA_HOME="$home" cmake --preset default --fresh >>"$root.log"
    timed "./run test with $1" inside env JAVA_HOME="$home" ./run test -R jvm
    timed "no warnings" no_warnings
}

for suite in "$@"; do
    root=$(mktemp -d "${TMPDIR:-/var/tmp}/korvex-$suite.XXXX")
    chmod 755 "$root"
    trap 'rm -rf --one-file-system "$root"' EXIT
    timed debootstrap make_system
    mkdir -p "$root$checkout"
    tar c -C "$source" --exclude=./build --exclude=./.git . | tar x -C "$root$checkout"

    timed "no administrator" tells_packages
    timed "the commercial library's commands" commercial
    timed "./run solve" lively inside ./run solve
    timed "./run test" inside ./run test
    timed "no warnings" no_warnings
    timed "size" small
    # clang's native tests are built already.
    timed "tests built by clang" inside ctest --preset clang -R '^native_test$'
    timed "README's commands" readme
    timed "./run test-packages" inside ./run test-packages
    if [ "$suite" = bookworm ]; then
        timed "other presets" presets debug asan tsan
        timed "a new native" inside tests/new_native.sh
    fi

    newest=$(inside apt-cache search --names-only '^openjdk-[0-9]+-jdk-headless$' |
        sed 's/ .*//' | sort -V | tail -n 1)
    inside dpkg-query -W "$newest" >/dev/null 2>&1 || with_jdk "$newest"
    rm -rf --one-file-system "$root" "$root.log"
done
