// Solves with the current simplex basis, rows and columns of its inverse, and its header.
#include "marshal.h"

namespace {

static_assert(sizeof(SparseVector) == 24);

// A sparse vector of the solver's, with its two buffers. They are declared in the order of freeing.
class Vector {
  public:
    explicit Vector(Call &call) : indices(call), values(call), record(call) {}

    void allocateRecord() { record.allocateZeroed(1); }

    // Room for as many entries as the record says. A fresh record has no buffers yet.
    void allocateBuffers(const char *indIsNull, const char *valIsNull, const char *function) {
        if (record->len < 1)
            return;
        KORVassertText(record->ind == NULL, indIsNull, function);
        indices.allocateZeroed(record->len);
        record->ind = indices;
        KORVassertText(record->val == NULL, valIsNull, function);
        values.allocateZeroed(record->len);
        record->val = values;
    }

    operator SparseVector *() const { return record; }
    SparseVector *operator->() const { return record; }

    Scratch<jint> indices;
    Scratch<jdouble> values;

  private:
    Scratch<SparseVector> record;
};

// The result x of a solve, with room for as many entries as the caller's slot says.
void allocateResult(Call &call, Vector &x, jintArray capacityslot, const char *function) {
    if (call.ok())
        call.jni->GetIntArrayRegion(capacityslot, 0, 1, &x->len);
    // After a failure the record's length is still 0, and nothing is allocated.
    x.allocateBuffers("x->ind == NULL", "x->val == NULL", function);
}

// Inlined for the sake of the Call, whose address must go nowhere.
[[gnu::always_inline]] inline void writeResult(Call &call, Vector &x, jintArray capacityslot,
                                               jintArray xind, jdoubleArray xval) {
    call.write(capacityslot, &x->len);
    x.indices.write(xind, x->len);
    x.values.write(xval, x->len);
}

using Solve = int(KVXmodel *, SparseVector *, SparseVector *);

jint solveWithBasis(JNIEnv *jni, Solve *solve, const char *function, jlong model, jint blen,
                    jintArray bind, jdoubleArray bval, jintArray capacityslot, jintArray xind,
                    jdoubleArray xval) {
    Call call(jni);
    Vector b(call), x(call);
    b.allocateRecord();
    x.allocateRecord();
    if (!call.ok())
        return call.status(); // the records are written to at once
    b->len = blen;
    b.allocateBuffers("b->ind == NULL", "b->val == NULL", function);
    allocateResult(call, x, capacityslot, function);
    b.indices.copy(bind, blen);
    b.values.copy(bval, blen);
    call.invoke(solve, asModel(model), b, x);
    writeResult(call, x, capacityslot, xind, xval);
    return call.status();
}

using InverseReader = int(KVXmodel *, int, SparseVector *);

jint readInverse(JNIEnv *jni, InverseReader *reader, const char *function, jlong model, jint index,
                 jintArray capacityslot, jintArray xind, jdoubleArray xval) {
    Call call(jni);
    Vector x(call);
    x.allocateRecord();
    if (!call.ok())
        return call.status(); // the record is written to at once
    allocateResult(call, x, capacityslot, function);
    call.invoke(reader, asModel(model), index, x);
    writeResult(call, x, capacityslot, xind, xval);
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
    const jint count = call.readFirst(headslot);
    head.allocateZeroed(count);
    call.invoke(KVXgetBasisHead, asModel(model), head);
    head.write(headslot, count);
    return call.status();
}
