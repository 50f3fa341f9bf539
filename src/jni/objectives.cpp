// Objectives: the whole one, numbered ones, and piecewise-linear terms.
#include "sparse.h"

JNI_METHOD(jint, KorvexJni, setobjective)
(JNIEnv *jni, jclass, jlong model, jint objsense, jint numlnz, jintArray lind, jdoubleArray lval,
 jint numqnz, jintArray qrow, jintArray qcol, jdoubleArray qval, jdouble objcon) {
    Call call(jni);
    LinearAndQuadratic terms(call);
    auto &[indices, coefficients] = terms.linear.buffers;
    auto &[rows, columns, values] = terms.quadratic.buffers;
    terms.take(numlnz, lind, lval, numqnz, qrow, qcol, qval);
    call.invoke(KVXsetobjective, asModel(model), objsense, numlnz, indices, coefficients, numqnz,
                rows, columns, values, objcon);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, setobjectiven)
(JNIEnv *jni, jclass, jlong model, jint index, jint ival, jstring name, jint numlnz, jintArray lind,
 jdoubleArray lval, jdouble dval1, jdouble dval2, jdouble dval3, jdouble dval4) {
    Call call(jni);
    Parallel<jint, jdouble> linear(call);
    auto &[indices, coefficients] = linear.buffers;
    if (numlnz > 0)
        linear.take(numlnz, lind, lval);
    const char *nameText = call.fetch(name);
    call.invoke(KVXsetobjectiven, asModel(model), index, ival, nameText, numlnz, indices,
                coefficients, dval1, dval2, dval3, dval4);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, setpwlobj)
(JNIEnv *jni, jclass, jlong model, jint var, jint npts, jdoubleArray x, jdoubleArray y) {
    if (npts < 1)
        return 0;
    Call call(jni);
    Parallel<jdouble, jdouble> points(call);
    auto &[abscissae, ordinates] = points.buffers;
    points.take(npts, x, y);
    call.invoke(KVXsetpwlobj, asModel(model), var, npts, abscissae, ordinates);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, getpwlobj)
(JNIEnv *jni, jclass, jlong model, jint var, jintArray nptsslot, jdoubleArray x, jdoubleArray y) {
    Call call(jni);
    Parallel<jdouble, jdouble> points(call);
    auto &[abscissae, ordinates] = points.buffers;
    jint count = 0;
    call.invoke(KVXgetpwlobj, asModel(model), var, &count, nullptr, nullptr);
    if (call.handshake(nptsslot, count)) {
        points.allocate(count);
        call.invoke(KVXgetpwlobj, asModel(model), var, &count, abscissae, ordinates);
        points.write(count, x, y);
    }
    return call.status();
}
