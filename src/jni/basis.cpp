// Solves with the current simplex basis, rows and columns of its inverse, and its header.
#include "marshal.h"

namespace {

// The result x of a solve, with room for as many entries as the caller's slot says.
class Result {
  public:
    explicit Result(Call &call) : call(call), indices(call), values(call), x(call) {}

    void allocateRecord() { x.allocateZeroed(1); }

    void allocateBuffers(jintArray capacityslot, const char *function) {
        if (call.ok())
            call.jni->GetIntArrayRegion(capacityslot, 0, 1, &x->len);
        if (x->len < 1)
            return;
        KORVassert(x->ind == NULL, function);
        indices.allocateZeroed(x->len);
        x->ind = indices;
        KORVassert(x->val == NULL, function);
        values.allocateZeroed(x->len);
        x->val = values;
    }

    void write(jintArray capacityslot, jintArray xind, jdoubleArray xval) {
        call.write(capacityslot, &x->len);
        indices.write(xind, x->len);
        values.write(xval, x->len);
    }

    operator SparseVector *() const { return x; }

  private:
    Call &call;
    Scratch<jint> indices;
    Scratch<jdouble> values;
    Scratch<SparseVector> x;
};

using Solve = int(KVXmodel *, SparseVector *, SparseVector *);

jint solveWithBasis(JNIEnv *jni, Solve *solve, const char *function, jlong model, jint blen,
                    jintArray bind, jdoubleArray bval, jintArray capacityslot, jintArray xind,
                    jdoubleArray xval) {
    Call call(jni);
    Scratch<jint> indices(call);
    Scratch<jdouble> values(call);
    Scratch<SparseVector> b(call);
    Result x(call);
    b.allocateZeroed(1);
    x.allocateRecord();
    if (!call.ok())
        return call.status(); // the records are written to at once
    b->len = blen;
    if (b->len >= 1) {
        KORVassert(b->ind == NULL, function);
        indices.allocateZeroed(b->len);
        b->ind = indices;
        KORVassert(b->val == NULL, function);
        values.allocateZeroed(b->len);
        b->val = values;
    }
    x.allocateBuffers(capacityslot, function);
    indices.copy(bind, blen);
    values.copy(bval, blen);
    call.invoke(solve, asModel(model), b, x);
    x.write(capacityslot, xind, xval);
    return call.status();
}

using InverseReader = int(KVXmodel *, int, SparseVector *);

jint readInverse(JNIEnv *jni, InverseReader *reader, const char *function, jlong model, jint index,
                 jintArray capacityslot, jintArray xind, jdoubleArray xval) {
    Call call(jni);
    Result x(call);
    x.allocateRecord();
    if (!call.ok())
        return call.status(); // the record is written to at once
    x.allocateBuffers(capacityslot, function);
    call.invoke(reader, asModel(model), index, x);
    x.write(capacityslot, xind, xval);
    return call.status();
}

} // namespace

JNI_METHOD(jint, KorvexJni, fsolve)
(JNIEnv *jni, jclass, jlong model, jint blen, jintArray bind, jdoubleArray bval,
 jintArray capacityslot, jintArray xind, jdoubleArray xval) {
    return solveWithBasis(jni, KVXFSolve, __func__, model, blen, bind, bval, capacityslot, xind,
                          xval);
}

JNI_METHOD(jint, KorvexJni, bsolve)
(JNIEnv *jni, jclass, jlong model, jint blen, jintArray bind, jdoubleArray bval,
 jintArray capacityslot, jintArray xind, jdoubleArray xval) {
    return solveWithBasis(jni, KVXBSolve, __func__, model, blen, bind, bval, capacityslot, xind,
                          xval);
}

JNI_METHOD(jint, KorvexJni, binvcolj)
(JNIEnv *jni, jclass, jlong model, jint j, jintArray capacityslot, jintArray xind,
 jdoubleArray xval) {
    return readInverse(jni, KVXBinvColj, __func__, model, j, capacityslot, xind, xval);
}

JNI_METHOD(jint, KorvexJni, binvrowi)
(JNIEnv *jni, jclass, jlong model, jint i, jintArray capacityslot, jintArray xind,
 jdoubleArray xval) {
    return readInverse(jni, KVXBinvRowi, __func__, model, i, capacityslot, xind, xval);
}

JNI_METHOD(jint, KorvexJni, basishead)(JNIEnv *jni, jclass, jlong model, jintArray headslot) {
    Call call(jni);
    Scratch<jint> head(call);
    const jint count = call.first(headslot);
    head.allocateZeroed(count);
    call.invoke(KVXgetBasisHead, asModel(model), head);
    head.write(headslot, count);
    return call.status();
}
