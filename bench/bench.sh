#!/usr/bin/env bash
# bench.sh BUILD_DIRECTORY [JAVA_OPTION]...: measures what calls through the bridge cost, in virtual
# machines of their own, and writes the table and the chart into BUILD_DIRECTORY/bench. Options choose:
#   -Dbench.workloads=PATTERN  of workload and items, like 'addvars 10+'
#   -Dbench.variants=PATTERN   like 'floor|bridge'
# MACHINES is the number of virtual machines of each kind.
set -euo pipefail
build=$1 machines=${MACHINES:-3}
shift
options=("$@")
compiler=$(sed -n 's/^Java_JAVAC_EXECUTABLE:FILEPATH=//p' "$build/CMakeCache.txt")
home=$(dirname "$(dirname "$(readlink -f "$compiler")")")
source=$(cd "$(dirname "$0")" && pwd)
out=$build/bench classes=$build/bench/classes
jars=$build/lib/korvex.jar:$build/lib/bench.jar:/usr/share/java/jna.jar:/usr/share/java/glpk-java.jar
libraries=$build/lib:$out:/usr/lib/x86_64-linux-gnu/jni
cd "$out"

# The peers: generated and compiled here, since only this needs them.
mkdir -p swig classes
swig -java -outdir swig -o swig/swig.c -I"$source/../src/jni" "$source/swig.i"
gcc -O2 -fPIC -shared -fno-strict-aliasing -I"$source/../src/jni" -I"$home/include" \
    -I"$home/include/linux" swig/swig.c -L. -lkorvex130 -o libswigpeer.so
"$home/bin/javac" --release 17 -nowarn -cp "$jars" -d classes swig/*.java "$source"/{Jna,Swig}Peer.java \
    "$source/GlpkBench.java"

# A JDK that has the foreign-function interface, if there is one.
newer=
for candidate in /usr/lib/jvm/*/; do
    version=$(sed -n 's/^JAVA_VERSION="\([0-9]*\).*/\1/p' "$candidate/release" 2>/dev/null || true)
    [ "${version:-0}" -ge 22 ] && newer=$candidate
done
[ -z "$newer" ] || "$newer/bin/javac" -cp "$jars" -d classes "$source/FfmPeer.java"

# measure NAME SOLVER_DIRECTORY JAVA ARGUMENT...: one virtual machine; its results get its name.
measure() {
    local name=$1 solver=$2 java=$3
    shift 3
    printf '\nVirtual machine %s\n' "$name" >&2
    LD_LIBRARY_PATH=$solver "$java" -Xms4g -Xmx4g -XX:+UseSerialGC \
        -Djava.library.path="$libraries" -Djna.library.path="$out" \
        -Djna.boot.library.path=/usr/lib/x86_64-linux-gnu/jni --class-path "$jars:classes" \
        "${options[@]}" "$@" | sed "s/^/$name /" >>results
}

: >results
for k in $(seq "$machines"); do
    measure "$k" "$out" "$home/bin/java" Bench JnaPeer SwigPeer
    measure "glpk$k" "$build/lib" "$home/bin/java" GlpkBench
    [ -z "$newer" ] || measure "ffm$k" "$out" "$newer/bin/java" --enable-native-access=ALL-UNNAMED \
        Bench FfmPeer
done
echo >&2

# Medians over the virtual machines, of two the lesser: p49. A ratio is to the first variant in the
# same machine.
columns=Workload,Items,ns,floor,control,bridge,checked,checks,limit
columns+=,jna,swig-arrays,swig-elements,ffm,glpk-java
mlr --inidx --ifs ' ' --omd label machine,Workload,Items,variant,ns \
    then put '@first[$machine][$Workload][$Items] ??= $ns;
        $ratio = $ns / @first[$machine][$Workload][$Items]' \
    then stats1 -a p49,min,max -f ns,ratio -g Workload,Items,variant \
    then tee --onidx chart.data \
    then put 'func two(num x) { return fmtnum(x, "%.2f") }
        @first[$Workload][$Items] ??= fmtnum($ns_p49, "%.0f");
        $ns = @first[$Workload][$Items];
        $ratio = $ratio_min == 1 && $ratio_max == 1 ? 1 :
            format("{} ({}-{})", two($ratio_p49), two($ratio_min), two($ratio_max))' \
    then cut -f Workload,Items,ns,variant,ratio then reshape -s variant,ratio \
    then template -f "$columns" results | tee table.md
awk '$1 == "addvars" && $2 == 1000000 { ns[$3] = $4 }
    END {
        if (ns["checks"] && ns["checked"])
            printf "\nChecks, of a checked call of 10^6 nonzeros: %.1f %%\n",
                100 * ns["checks"] / ns["checked"]
    }' chart.data
gnuplot -e "data='chart.data'; output='chart.svg'" "$source/chart.gp"
printf '\nInstructions (in all, in the library itself), with doubles that do nothing\n\n'
LD_LIBRARY_PATH=$out valgrind -q --tool=callgrind --callgrind-out-file=counts --combine-dumps=yes \
    --compress-strings=no --compress-pos=no "$build/bin/count"
awk -v own='libkorvexjni130|libfloor' -f "$source/count.awk" counts | tee instructions
printf '\nTable: %s\nChart: %s\n' "$out/table.md" "$out/chart.svg"
