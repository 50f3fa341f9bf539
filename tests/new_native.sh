#!/usr/bin/env bash
# new_native.sh: adds a native method to this checkout, which should be a copy, by the steps of
# CONTRIBUTING.md: one that the development solver refuses.
set -euo pipefail
cd "$(dirname "$0")/.."

# 1. Solver
sed -i '/^int KVXgetcoeff(/a\
/** What a coefficient is said to be worth. */\
int KVXgetworth(KVXmodel *model, int constr, int var, double *value);' src/jni/korvex/attributes.h
cat >>src/solver/structure.cpp <<'TEXT'

int KVXgetworth(KVXmodel *model, int, int, double *) {
    return guardedRead(model, [] { fail(KVX_ERROR_NOT_SUPPORTED, "coefficients have no worth"); });
}
TEXT

# 2. Java
sed -i '/native int getcoeff(/a\
\
    /**\
     * Reads the worth of a coefficient.\
     *\
     * @param model handle of the model\
     * @param constr index of the constraint\
     * @param var index of the variable\
     * @param valslot element 0 receives it\
     * @return the status\
     */\
    public static native int getworth(long model, int constr, int var, double[] valslot);
' src/java/com/korvex/KorvexJni.java
sed -i '/public double coefficient(/,/^    }/{
/^    }/a\
\
    /**\
     * Reads the worth of a coefficient.\
     *\
     * @param constr index of the constraint\
     * @param var index of the variable\
     * @return its worth\
     * @throws KVXException always\
     */\
    public double worth(int constr, int var) {\
        double[] slot = new double[1];\
        call(m -> KorvexJni.getworth(m, constr, var, slot));\
        return slot[0];\
    }
}' src/java/com/korvex/Constraints.java

# 3. Bridge
cat >>src/jni/structure.cpp <<'TEXT'

JNI_METHOD(jint, KorvexJni, getworth)
(JNIEnv *jni, jclass, jlong model, jint constr, jint var, jdoubleArray valslot) {
    Call call(jni);
    jdouble value = 0;
    call.invoke(KVXgetworth, asModel(model), constr, var, &value);
    call.write(valslot, &value);
    return call.status();
}
TEXT

# 4. Tests
cat >>tests/native/cases/attributes.txt <<'TEXT'
getworth
  KVXgetworth(h1, 2, 3, &) | set D1 0 [2.5] | = 0
TEXT

# 5. Exports
number=$(sed -n 's/.*left.size(), \([0-9]*\)u.*/\1/p' tests/native/bridge_test.cpp)
sed -i "s/left.size(), ${number}u/left.size(), $((number + 1))u/" tests/native/bridge_test.cpp

cmake --build --preset default --target korvexjni native_test
ctest --preset default -R '^(library|native_test)$'
