#!/usr/bin/env bash
# build_test.sh SOURCE SOLVER: builds a copy of the bridge, in a directory with a difficult name and
# without the packages of the development solver and the tests, and changes its Java sources. SOLVER
# lies beside what the same build made of SOURCE.
set -euo pipefail
source=$1 solver=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
checkout="$scratch/a difficult (1) name"
mkdir "$checkout"
tar c -C "$source" --exclude=./build --exclude=./.git . | tar x -C "$checkout"
cd "$checkout"

# expect PATTERN WHAT: the last build's output has it.
expect() {
    grep -qE "$1" build.log || { cat build.log; echo "FAILED: $2"; exit 1; }
}
build() {
    cmake --build --preset default --target korvexjni korvex_jar examples >build.log 2>&1
}
edit() {
    sed -i "$1" src/java/com/korvex/KorvexJni.java
}

number=$(sed -nE 's/.*left\.size\(\), ([0-9]+)u.*/\1/p' tests/native/bridge_test.cpp)
! grep -nrw "${number:?}" run ./*.md src tests ||
    { echo "FAILED: how many natives there are stands in one place"; exit 1; }
! grep -rnE '[[:blank:]]$' --exclude=*.svg . || { echo "FAILED: as .editorconfig says"; exit 1; }

hidden=()
for package in PkgConfig nlohmann_json ZLIB BZip2 GTest; do
    hidden+=("-DCMAKE_DISABLE_FIND_PACKAGE_$package=ON")
done
cmake --preset default "${hidden[@]}" -DKORVEX_SOLVER_LIBRARY="$solver" >build.log 2>&1 && build ||
    { cat build.log; echo "FAILED: the commercial library needs no other packages"; exit 1; }

# With a compiler launcher other paths may get into the debug information.
files=(korvex.jar)
[ -n "${CMAKE_CXX_COMPILER_LAUNCHER-}" ] || files+=(libkorvexjni130.so)
for file in "${files[@]}"; do
    cmp "build/default/lib/$file" "$(dirname "$solver")/$file" ||
        { echo "FAILED: two builds make the same bytes"; exit 1; }
done

[ -f "$(sed -n 's/.*CompilationDatabase: //p' .clangd)/compile_commands.json" ] ||
    { echo "FAILED: clangd finds how all is compiled"; exit 1; }

edit '1a // A comment.'
build || expect '^$' "a comment builds"
expect 'Building korvex.jar' "a comment makes a new jar"
! grep 'Building C' build.log || { echo "FAILED: a comment compiles nothing"; exit 1; }

edit 's/int getcoeff(long model, int /int getcoeff(long model, long /'
! build || { echo "FAILED: a changed signature fails the first build"; exit 1; }
expect 'conflicting declaration|conflicting types' "the compiler says what differs"

./run format --check || [ $? = 77 ]

mv "$checkout" "$scratch/moved"
! "$scratch/moved/run" solve 2>"$scratch/message"
grep -F "remove it, and run this again" "$scratch/message"

rm -r "$scratch/moved/build"
mv "$scratch/moved" "$scratch/a \"quoted\" name"
! cmake --preset default -S "$scratch/a \"quoted\" name" 2>"$scratch/message"
grep -F "move the checkout" "$scratch/message"
