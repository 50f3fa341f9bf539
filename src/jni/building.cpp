// Building and editing the linear part of a model: variables, linear constraints, deletion,
// coefficients; and the clean-up of sparse lists.
#include "sparse.h"

JNI_METHOD(jint, KorvexJni, addvars)
(JNIEnv *jni, jclass, jlong model, jint numvars, jint numnz, jintArray beg, jintArray ind,
 jdoubleArray val, jdoubleArray obj, jdoubleArray lb, jdoubleArray ub, jcharArray types,
 jobjectArray names) {
    if (numvars == 0)
        return 0;
    Call call(jni);
    Scratch<jdouble> objective(call);
    Scratch<jint> begins(call);
    Parallel<jint, jdouble> nonzeros(call);
    Scratch<jdouble> lower(call), upper(call);
    Chars typeChars(call);
    Names varNames(call);

    nonzeros.allocate(numnz);
    if (obj != nullptr)
        objective.take(obj, numvars);
    begins.take(beg, numvars);
    if (lb != nullptr)
        lower.take(lb, numvars);
    if (ub != nullptr)
        upper.take(ub, numvars);
    if (types != nullptr)
        typeChars.take(types, numvars);
    if (names != nullptr)
        varNames.take(names, numvars);
    if (numnz > 0)
        nonzeros.copy(numnz, ind, val);
    auto &[indices, values] = nonzeros.buffers;
    call.invoke(KVXaddvars, asModel(model), numvars, numnz, begins, indices, values, objective,
                lower, upper, typeChars, varNames);
    return call.status();
}

// With lower bounds the rows are ranges, whose upper bounds are the right-hand sides; the senses
// are copied all the same.
JNI_METHOD(jint, KorvexJni, addconstrs)
(JNIEnv *jni, jclass, jlong model, jint numconstrs, jint numnz, jintArray beg, jintArray ind,
 jdoubleArray val, jcharArray senses, jdoubleArray lower, jdoubleArray rhs, jobjectArray names) {
    if (numconstrs <= 0)
        return 0;
    Call call(jni);
    Chars senseChars(call);
    Scratch<jdouble> lowerBounds(call), rightSides(call);
    Scratch<jint> begins(call);
    Parallel<jint, jdouble> nonzeros(call);
    Names constrNames(call);

    senseChars.allocate(numconstrs);
    rightSides.allocate(numconstrs);
    begins.allocate(numconstrs);
    nonzeros.allocate(numnz);
    senseChars.copy(senses, numconstrs);
    rightSides.copy(rhs, numconstrs);
    begins.copy(beg, numconstrs);
    if (lower != nullptr)
        lowerBounds.take(lower, numconstrs);
    if (numnz > 0)
        nonzeros.copy(numnz, ind, val);
    if (names != nullptr)
        constrNames.take(names, numconstrs);
    auto &[indices, values] = nonzeros.buffers;
    if (lower != nullptr)
        call.invoke(KVXaddrangeconstrs, asModel(model), numconstrs, numnz, begins, indices, values,
                    lowerBounds, rightSides, constrNames);
    else
        call.invoke(KVXaddconstrs, asModel(model), numconstrs, numnz, begins, indices, values,
                    senseChars, rightSides, constrNames);
    return call.status();
}

namespace {

using Deleter = int(KVXmodel *, int, const int *);

jint deleteItems(JNIEnv *jni, Deleter *deleter, jlong model, jint num, jintArray ind) {
    if (num <= 0)
        return 0;
    Call call(jni);
    Scratch<jint> indices(call);
    indices.take(ind, num);
    call.invoke(deleter, asModel(model), num, indices);
    return call.status();
}

} // namespace

#define DELETER(method, deleter)                                                                   \
    JNI_METHOD(jint, KorvexJni, method)                                                            \
    (JNIEnv * jni, jclass, jlong model, jint num, jintArray ind) {                                 \
        return deleteItems(jni, deleter, model, num, ind);                                         \
    }

DELETER(delvars, KVXdelvars)
DELETER(delconstrs, KVXdelconstrs)
DELETER(delsos, KVXdelsos)
DELETER(delqconstrs, KVXdelqconstrs)
DELETER(delgenconstrs, KVXdelgenconstrs)

JNI_METHOD(jint, KorvexJni, chgcoeffs)
(JNIEnv *jni, jclass, jlong model, jint numchgs, jintArray cind, jintArray vind, jdoubleArray val) {
    if (numchgs <= 0)
        return 0;
    Call call(jni);
    Parallel<jint, jint, jdouble> changes(call);
    auto &[constrs, vars, values] = changes.buffers;
    changes.take(numchgs, cind, vind, val);
    call.invoke(KVXchgcoeffs, asModel(model), numchgs, constrs, vars, values);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, clean2)
(JNIEnv *jni, jclass, jintArray lenslot, jintArray ind, jdoubleArray val) {
    Call call(jni);
    Scratch<jint> indices(call);
    Scratch<jdouble> values(call);
    jint length = call.readFirst(lenslot);
    indices.take(ind, length);
    values.take(val, length);
    if (call.ok())
        KVXclean2(&length, indices, values);
    call.write(lenslot, &length);
    indices.write(ind, length);
    values.write(val, length);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, clean3)
(JNIEnv *jni, jclass, jintArray lenslot, jintArray ind1, jintArray ind2, jdoubleArray val) {
    Call call(jni);
    Scratch<jint> rows(call), columns(call);
    Scratch<jdouble> values(call);
    jint length = call.readFirst(lenslot);
    rows.take(ind1, length);
    columns.take(ind2, length);
    values.take(val, length);
    if (call.ok())
        KVXclean3(&length, rows, columns, values);
    call.write(lenslot, &length);
    rows.write(ind1, length);
    columns.write(ind2, length);
    values.write(val, length);
    return call.status();
}
