#!/usr/bin/env bash
# packages_test.sh BUILD: uses what BUILD installs, its Maven repository and its Debian packages, as
# a project of somebody else would.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd -P)
build=$(cd "$1" && pwd -P)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
unset LD_LIBRARY_PATH
sample=$here/maven/src/main/java/Bakery.java

# expect LINE COMMAND...: the command ends well, and that is the last line it prints.
expect() {
    local printed status=0
    printed=$("${@:2}" 2>"$scratch/err") || status=$?
    [ "$status:${printed##*$'\n'}" = "0:$1" ] && [ ! -s "$scratch/err" ] && echo "ok: ${*:2}" && return
    echo "FAILED with $status: ${*:2}"
    echo "$printed"
    cat "$scratch/err"
    exit 1
}
java() {
    "$java" --enable-native-access=ALL-UNNAMED "$@"
}
java=$(sed -n 's/^Java_JAVA_EXECUTABLE:FILEPATH=//p' "$build/CMakeCache.txt")
javac=$(sed -n 's/^Java_JAVAC_EXECUTABLE:FILEPATH=//p' "$build/CMakeCache.txt")

# What is installed works when it is moved.
cmake --install "$build" --prefix "$scratch/first" >"$scratch/log" || { cat "$scratch/log" && exit 1; }
prefix=$scratch/moved
mv "$scratch/first" "$prefix"
[ -f "$prefix/share/doc/korvex/api/index.html" ]
"$javac" -cp "$prefix/share/java/korvex.jar" -d "$scratch/classes" "$sample"
expect "Profit: 154.0" java -cp "$prefix/share/java/korvex.jar:$scratch/classes" Bakery
expect "Profit: 154.0" "$java" -p "$prefix/lib/korvex/korvex.jar" --add-modules com.korvex \
    --enable-native-access=com.korvex -cp "$scratch/classes" Bakery
cmake -S "$here" -B "$scratch/consumer" -DCMAKE_PREFIX_PATH="$prefix" >"$scratch/log" &&
    cmake --build "$scratch/consumer" >>"$scratch/log" || { cat "$scratch/log" && exit 1; }
expect 13.0.3 "$scratch/consumer/consumer"
export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
# shellcheck disable=SC2046
cc "$here/consumer.c" -o "$scratch/consumer.pc" $(pkg-config --cflags --libs korvex)
expect 13.0.3 env LD_LIBRARY_PATH="$prefix/lib" "$scratch/consumer.pc"

# Maven finds everything in the two repositories of this machine. Debian's has no prefixes of plugins
# on later systems, and whatever version it has is there as 2.8, too.
cp -r "$here/maven" "$scratch/maven"
mvn -B -q -s "$here/settings.xml" -f "$scratch/maven/pom.xml" -Dsample.local="$scratch/local" \
    -Dsample.repository="$build/maven" -Dmdep.outputFile="$scratch/path" \
    compile org.apache.maven.plugins:maven-dependency-plugin:2.8:build-classpath
expect "Profit: 154.0" java -Dcom.korvex.library.cache="$scratch/cache" \
    -cp "$(cat "$scratch/path"):$scratch/maven/target/classes" Bakery
artifacts=$build/maven/com/korvex/korvex/13.0.3/korvex-13.0.3
for platform in x86_64:X86-64 aarch64:AArch64; do
    (cd "$scratch" && jar --extract --file "$artifacts-linux-${platform%:*}.jar")
    readelf -h "$scratch/com/korvex/natives/linux-${platform%:*}/libkorvexjni130.so" |
        grep -q "${platform#*:}" || { echo "FAILED: no library for $platform" && exit 1; }
done
for classifier in sources javadoc; do
    [ -f "$artifacts-$classifier.jar" ]
done

# The Debian packages. The bridge needs the C library that README promises.
floor=$(sed -n 's/.*(glibc \([0-9.]*\) or later).*/\1/p' "$here/../../README.md")
depends() { dpkg-deb -f "$build/packages/$1"_*.deb Depends; }
[[ $(depends libkorvex-java) = "libc6 (>= $floor)" && -z $(depends libkorvex-dev) &&
    $(depends korvex-development-solver) = *coinor-libcbc3*"libc6 (>= "* ]] ||
    { echo "FAILED: a package depends on more or less" && exit 1; }
lintian --allow-root --fail-on error "$build"/packages/*.deb \
    >"$scratch/log" || { cat "$scratch/log" && exit 1; }
for package in "$build"/packages/*.deb; do
    dpkg-deb -x "$package" "$scratch/root"
done
expect "Profit: 154.0" java -cp "$scratch/root/usr/share/java/korvex.jar:$scratch/classes" Bakery
