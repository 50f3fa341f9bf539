// Quadratic terms of the objective, and quadratic constraints.
#include "sparse.h"

JNI_METHOD(jint, KorvexJni, addqpterms)
(JNIEnv *jni, jclass, jlong model, jint numqnz, jintArray qrow, jintArray qcol, jdoubleArray qval) {
    if (numqnz <= 0)
        return 0;
    Call call(jni);
    Parallel<jint, jint, jdouble> terms(call);
    auto &[rows, columns, values] = terms.buffers;
    terms.take(numqnz, qrow, qcol, qval);
    call.invoke(KVXaddqpterms, asModel(model), numqnz, rows, columns, values);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, delq)(JNIEnv *, jclass, jlong model) {
    return KVXdelq(asModel(model));
}

JNI_METHOD(jint, KorvexJni, getq)
(JNIEnv *jni, jclass, jlong model, jintArray numqnzslot, jintArray qrow, jintArray qcol,
 jdoubleArray qval) {
    Call call(jni);
    Parallel<jint, jint, jdouble> terms(call);
    auto &[rows, columns, values] = terms.buffers;
    jint count = 0;
    call.invoke(KVXgetintattr, asModel(model), "NumQNZs", &count);
    if (call.handshake(numqnzslot, count)) {
        terms.allocate(count);
        call.invoke(KVXgetq, asModel(model), &count, rows, columns, values);
        terms.write(count, qrow, qcol, qval);
    }
    return call.status();
}

JNI_METHOD(jint, KorvexJni, addqconstr)
(JNIEnv *jni, jclass, jlong model, jint numlnz, jintArray lind, jdoubleArray lval, jint numqnz,
 jintArray qrow, jintArray qcol, jdoubleArray qval, jchar sense, jdouble rhs, jstring name) {
    Call call(jni);
    LinearAndQuadratic terms(call);
    auto &[indices, coefficients] = terms.linear.buffers;
    auto &[rows, columns, values] = terms.quadratic.buffers;
    terms.take(numlnz, lind, lval, numqnz, qrow, qcol, qval);
    const char *nameText = call.fetch(name);
    call.invoke(KVXaddqconstr, asModel(model), numlnz, indices, coefficients, numqnz, rows, columns,
                values, narrow(sense), rhs, nameText);
    return call.status();
}

// Both counts are reported in any case; the arrays are filled where they are given.
JNI_METHOD(jint, KorvexJni, getqconstr)
(JNIEnv *jni, jclass, jlong handle, jint qconstr, jintArray numlnzslot, jintArray lind,
 jdoubleArray lval, jintArray numqnzslot, jintArray qrow, jintArray qcol, jdoubleArray qval) {
    KVXmodel *const model = asModel(handle);
    Call call(jni);
    LinearAndQuadratic terms(call);
    auto &[indices, coefficients] = terms.linear.buffers;
    auto &[rows, columns, values] = terms.quadratic.buffers;
    jint numlnz = 0, numqnz = 0;
    call.invoke(KVXgetqconstr, model, qconstr, &numlnz, nullptr, nullptr, &numqnz, nullptr, nullptr,
                nullptr);
    call.write(numlnzslot, &numlnz);
    call.write(numqnzslot, &numqnz);
    const bool wanted =
        lind != nullptr || lval != nullptr || qrow != nullptr || qcol != nullptr || qval != nullptr;
    if (!wanted)
        return call.status();
    terms.linear.allocate(numlnz);
    terms.quadratic.allocate(numqnz);
    call.invoke(KVXgetqconstr, model, qconstr, &numlnz, indices, coefficients, &numqnz, rows,
                columns, values);
    indices.offer(lind, numlnz);
    coefficients.offer(lval, numlnz);
    rows.offer(qrow, numqnz);
    columns.offer(qcol, numqnz);
    values.offer(qval, numqnz);
    return call.status();
}
