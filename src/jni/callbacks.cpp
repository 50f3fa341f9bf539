// What a Java callback may ask and do while the solver waits for it.
#include "marshal.h"

namespace {

// The vectors, whose length the Java array decides, and the one text.
constexpr jint newSolution = KVX_CB_MIPSOL_SOL;
constexpr jint nodeRelaxation = KVX_CB_MIPNODE_REL;
constexpr jint objectiveSolution = KVX_CB_MULTIOBJ_SOL;
constexpr jint messageText = KVX_CB_MSG_STRING;

// A datum that the solver declares to be a scalar of the given type. Type codes that the solver
// doesn't set are as good as wrong ones; the status of the question adds nothing.
template <class Value, class Array>
jint readScalar(JNIEnv *jni, jlong cbdata, jint where, jint what, jint requiredType, Array slot) {
    Call call(jni);
    jint type = -1, second = -1;
    KVXgetcbwhatinfo(asCallbackData(cbdata), what, &type, &second);
    if (type != requiredType || second != 0)
        call.fail(ERROR_WRONG_INFO_TYPE);
    Value value = {};
    call.invoke(KVXcbget, asCallbackData(cbdata), where, what, &value);
    call.write(slot, &value);
    return call.status();
}

jint readVector(JNIEnv *jni, jlong cbdata, jint where, jint what, jdoubleArray slot) {
    Call call(jni);
    Scratch<jdouble> values(call);
    const jint length = jni->GetArrayLength(slot);
    values.allocate(length);
    call.invoke(KVXcbget, asCallbackData(cbdata), where, what, values);
    values.write(slot, length);
    return call.status();
}

} // namespace

JNI_METHOD(jint, KorvexJni, cbgetintinfo)
(JNIEnv *jni, jclass, jlong cbdata, jint where, jint what, jintArray slot) {
    return readScalar<jint>(jni, cbdata, where, what, KVX_TYPE_INT, slot);
}

JNI_METHOD(jint, KorvexJni, cbgetdblinfo)
(JNIEnv *jni, jclass, jlong cbdata, jint where, jint what, jdoubleArray slot) {
    if (what == newSolution || what == nodeRelaxation || what == objectiveSolution)
        return readVector(jni, cbdata, where, what, slot);
    return readScalar<jdouble>(jni, cbdata, where, what, KVX_TYPE_DOUBLE, slot);
}

JNI_METHOD(jstring, KorvexJni, cbgetstrinfo)
(JNIEnv *jni, jclass, jlong cbdata, jint where, jint what) {
    if (what != messageText)
        return nullptr;
    const char *text = nullptr;
    const jint status = KVXcbget(asCallbackData(cbdata), where, messageText, &text);
    return status == 0 && text != nullptr ? jni->NewStringUTF(text) : nullptr;
}

JNI_METHOD(jint, KorvexJni, cbcutorlazy)
(JNIEnv *jni, jclass, jlong cbdata, jint length, jintArray ind, jdoubleArray val, jchar sense,
 jdouble rhs, jint cut) {
    Call call(jni);
    Scratch<jdouble> coefficients(call);
    Scratch<jint> indices(call);
    coefficients.allocate(length);
    indices.allocate(length);
    indices.copy(ind, length);
    coefficients.copy(val, length);
    call.invoke(cut != 0 ? KVXcbcut : KVXcblazy, asCallbackData(cbdata), length, indices,
                coefficients, narrow(sense), rhs);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, cbsolution)
(JNIEnv *jni, jclass, jlong cbdata, jdoubleArray solution, jdoubleArray objectiveslot) {
    Call call(jni);
    Scratch<jdouble> values(call);
    jdouble objective = 0;
    values.take(solution, jni->GetArrayLength(solution));
    call.invoke(KVXcbsolution, asCallbackData(cbdata), values, &objective);
    call.write(objectiveslot, &objective);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, cbsetintparam)
(JNIEnv *jni, jclass, jlong cbdata, jstring paramname, jint newvalue) {
    return invokeWithText(jni, KVXcbsetintparam, asCallbackData(cbdata), paramname, newvalue);
}

JNI_METHOD(jint, KorvexJni, cbsetdblparam)
(JNIEnv *jni, jclass, jlong cbdata, jstring paramname, jdouble newvalue) {
    return invokeWithText(jni, KVXcbsetdblparam, asCallbackData(cbdata), paramname, newvalue);
}

JNI_METHOD(jint, KorvexJni, cbsetstrparam)
(JNIEnv *jni, jclass, jlong cbdata, jstring paramname, jstring newvalue) {
    Call call(jni);
    const char *name = call.fetchRequired(paramname);
    const char *value = call.fetchRequired(newvalue);
    call.invoke(KVXcbsetstrparam, asCallbackData(cbdata), name, value);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, proceed)(JNIEnv *, jclass, jlong cbdata) {
    return KVXcbproceed(asCallbackData(cbdata));
}

JNI_METHOD(jint, KorvexJni, stoponemultiobj)
(JNIEnv *, jclass, jlong model, jlong cbdata, jint objnumber) {
    return KVXcbstoponemultiobj(asModel(model), asCallbackData(cbdata), objnumber);
}

JNI_METHOD(jint, KorvexJni, terminate)(JNIEnv *, jclass, jlong model) {
    return KVXterminate(asModel(model));
}
