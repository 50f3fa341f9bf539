// The constraint matrix read back, and variables and constraints found by name.
#include "sparse.h"

JNI_METHOD(jint, KorvexJni, getcoeff)
(JNIEnv *jni, jclass, jlong model, jint constr, jint var, jdoubleArray valslot) {
    Call call(jni);
    jdouble value = 0;
    call.invoke(KVXgetcoeff, asModel(model), constr, var, &value);
    call.write(valslot, &value);
    return call.status();
}

namespace {

using RangeReader = int(KVXmodel *, int *, int *, int *, double *, int, int);

// There is room for a closing begin position, which the solver may fill and Java doesn't get.
jint readRange(JNIEnv *jni, RangeReader *reader, jlong model, jintArray numnzslot, jintArray beg,
               jintArray ind, jdoubleArray val, jint start, jint count) {
    Call call(jni);
    Scratch<jint> begins(call);
    Parallel<jint, jdouble> nonzeros(call);
    auto &[indices, values] = nonzeros.buffers;
    jint numnz = 0;
    call.invoke(reader, asModel(model), &numnz, nullptr, nullptr, nullptr, start, count);
    if (call.handshake(numnzslot, numnz)) {
        begins.allocateWithClosing(count);
        nonzeros.allocate(numnz);
        call.invoke(reader, asModel(model), &numnz, begins, indices, values, start, count);
        begins.write(beg, count);
        nonzeros.write(numnz, ind, val);
    }
    return call.status();
}

} // namespace

JNI_METHOD(jint, KorvexJni, getconstrs)
(JNIEnv *jni, jclass, jlong model, jintArray numnzslot, jintArray beg, jintArray ind,
 jdoubleArray val, jint start, jint count) {
    return readRange(jni, KVXgetconstrs, model, numnzslot, beg, ind, val, start, count);
}

JNI_METHOD(jint, KorvexJni, getvars)
(JNIEnv *jni, jclass, jlong model, jintArray numnzslot, jintArray beg, jintArray ind,
 jdoubleArray val, jint start, jint count) {
    return readRange(jni, KVXgetvars, model, numnzslot, beg, ind, val, start, count);
}

JNI_METHOD(jint, KorvexJni, getconstrbyname)
(JNIEnv *jni, jclass, jlong model, jstring name, jintArray indexslot) {
    return readByName(jni, KVXgetconstrbyname, asModel(model), name, indexslot);
}

JNI_METHOD(jint, KorvexJni, getvarbyname)
(JNIEnv *jni, jclass, jlong model, jstring name, jintArray indexslot) {
    return readByName(jni, KVXgetvarbyname, asModel(model), name, indexslot);
}
