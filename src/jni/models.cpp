// Models: making one empty, with variables, or whole; updating, resetting and freeing it.
#include "marshal.h"

#include <climits>

JNI_METHOD(jlong, KorvexJni, newmodel)
(JNIEnv *jni, jclass, jintArray statusslot, jlong env, jstring name, jint numvars, jdoubleArray obj,
 jdoubleArray lb, jdoubleArray ub, jcharArray types, jobjectArray names) {
    Call call(jni);
    KVXmodel *model = nullptr;
    Scratch<jdouble> objective(call), lower(call), upper(call);
    Chars typeChars(call);
    Names varNames(call);

    const char *modelName = call.fetch(name);
    if (numvars > 0) {
        objective.allocate(numvars);
        lower.allocate(numvars);
        upper.allocate(numvars);
        typeChars.allocate(numvars);
        varNames.allocate(numvars);
        objective.copy(obj, numvars);
        lower.copy(lb, numvars);
        upper.copy(ub, numvars);
        typeChars.copy(types, numvars);
        varNames.copy(names, numvars);
    }
    call.invoke(KVXnewmodel, asEnv(env), &model, modelName, numvars, objective, lower, upper,
                typeChars, varNames);
    // Without variables, be the count 0 or negative, no array of Java's is touched: nor is the
    // slot.
    if (numvars > 0) {
        const jint success = 0;
        call.write(statusslot, &success);
    }
    return call.ok() ? asHandle(model) : 0;
}

namespace {

// The number of nonzeros, or -1 when a length is negative or they add up to more than an int.
jint sumOf(const jint *lengths, jint count) {
    int64_t sum = 0;
    for (jint j = 0; j < count && sum <= INT_MAX; ++j) {
        if (lengths[j] < 0)
            return -1;
        sum += lengths[j];
    }
    return sum <= INT_MAX ? static_cast<jint>(sum) : -1;
}

bool anyNegative(const jint *values, jint count) {
    for (jint j = 0; j < count; ++j)
        if (values[j] < 0)
            return true;
    return false;
}

} // namespace

// Columns may lie anywhere in `ind` and `val`; the solver gets them back to back. Lengths are
// checked, since wrong ones would make the copies write outside the scratch; a negative begin is
// refused with them.
JNI_METHOD(jlong, KorvexJni, loadmodel)
(JNIEnv *jni, jclass, jlong env, jstring name, jint numvars, jint numconstrs, jint objsense,
 jdouble objcon, jdoubleArray obj, jcharArray senses, jdoubleArray rhs, jintArray beg,
 jintArray len, jintArray ind, jdoubleArray val, jdoubleArray lb, jdoubleArray ub, jcharArray types,
 jobjectArray names, jobjectArray constrnames) {
    Call call(jni);
    KVXmodel *model = nullptr;
    Scratch<jint> lengths(call);
    Scratch<jdouble> objective(call);
    Chars senseChars(call);
    Scratch<jdouble> rightSides(call);
    Scratch<jint> begins(call), indices(call);
    Scratch<jdouble> values(call), lower(call), upper(call);
    Chars typeChars(call);
    Names varNames(call), constrNames(call);

    const char *modelName = call.fetch(name);
    lengths.take(len, numvars);
    if (!call.ok())
        return 0;
    const jint numnz = sumOf(lengths, numvars);
    if (numnz < 0)
        return 0;

    objective.allocate(numvars);
    senseChars.allocate(numconstrs);
    rightSides.allocate(numconstrs);
    begins.allocate(numvars);
    indices.allocate(numnz);
    values.allocate(numnz);
    lower.allocate(numvars);
    upper.allocate(numvars);
    typeChars.allocate(numvars);
    varNames.allocate(numvars);
    constrNames.allocate(numconstrs);

    objective.copy(obj, numvars);
    senseChars.copy(senses, numconstrs);
    rightSides.copy(rhs, numconstrs);
    begins.copy(beg, numvars);
    lower.copy(lb, numvars);
    upper.copy(ub, numvars);
    typeChars.copy(types, numvars);
    if (!call.ok() || anyNegative(begins, numvars))
        return 0;

    for (jint j = 0, position = 0; j < numvars; position += lengths[j], ++j) {
        copyIn(jni, ind, begins[j], lengths[j], indices + position);
        copyIn(jni, val, begins[j], lengths[j], values + position);
        begins[j] = position;
    }
    varNames.copy(names, numvars, Nulls::fail);
    constrNames.copy(constrnames, numconstrs, Nulls::fail);
    call.invoke(KVXloadmodel, asEnv(env), &model, modelName, numvars, numconstrs, objsense, objcon,
                objective, senseChars, rightSides, begins, lengths, indices, values, lower, upper,
                typeChars, varNames, constrNames);
    return call.ok() ? asHandle(model) : 0;
}

JNI_METHOD(jint, KorvexJni, updatemodel)(JNIEnv *, jclass, jlong model) {
    return KVXupdatemodel(asModel(model));
}

JNI_METHOD(jint, KorvexJni, reset)(JNIEnv *, jclass, jlong model, jint arg) {
    return KVXreset(asModel(model), arg);
}

JNI_METHOD(jint, KorvexJni, freemodel)(JNIEnv *, jclass, jlong model) {
    return KVXfreemodel(asModel(model));
}
