// Parameters of an environment: reading, writing, describing, saving and loading.
#include "marshal.h"

JNI_METHOD(jint, KorvexJni, getintparam)
(JNIEnv *jni, jclass, jlong env, jstring paramname, jintArray value) {
    return readByName(jni, KVXgetintparam, asEnv(env), paramname, value);
}

JNI_METHOD(jint, KorvexJni, getdblparam)
(JNIEnv *jni, jclass, jlong env, jstring paramname, jdoubleArray value) {
    return readByName(jni, KVXgetdblparam, asEnv(env), paramname, value);
}

JNI_METHOD(jint, KorvexJni, getstrparam)
(JNIEnv *jni, jclass, jlong env, jstring paramname, jobjectArray value) {
    Call call(jni);
    char buffer[KVX_TEXT_SIZE];
    const char *text = buffer;
    Scratch<char> whole(call);
    jint length = 0;
    const char *name = call.fetchRequired(paramname);
    call.invoke(KVXgetlongstrparam, asEnv(env), name, buffer, KVX_TEXT_SIZE, &length);
    if (length >= KVX_TEXT_SIZE) {
        whole.allocateWithClosing(length);
        call.invoke(KVXgetlongstrparam, asEnv(env), name, whole, plusClosing(length), &length);
        text = whole;
    }
    call.write(value, &text);
    whole.freeEarly(); // ahead of the name
    return call.status();
}

namespace {

// Current value, minimum, maximum and default.
template <class Value, class Array>
jint describe(JNIEnv *jni,
              int (*describer)(KVXenv *, const char *, Value *, Value *, Value *, Value *),
              jlong env, jstring paramname, Array info) {
    Call call(jni);
    Value values[4] = {};
    const char *name = call.fetchRequired(paramname);
    call.invoke(describer, asEnv(env), name, &values[0], &values[1], &values[2], &values[3]);
    call.write(info, values, 4);
    return call.status();
}

} // namespace

JNI_METHOD(jint, KorvexJni, getintparaminfo)
(JNIEnv *jni, jclass, jlong env, jstring paramname, jintArray info) {
    return describe(jni, KVXgetintparaminfo, env, paramname, info);
}

JNI_METHOD(jint, KorvexJni, getdblparaminfo)
(JNIEnv *jni, jclass, jlong env, jstring paramname, jdoubleArray info) {
    return describe(jni, KVXgetdblparaminfo, env, paramname, info);
}

JNI_METHOD(jint, KorvexJni, getstrparaminfo)
(JNIEnv *jni, jclass, jlong env, jstring paramname, jobjectArray info) {
    Call call(jni);
    char current[KVX_TEXT_SIZE], standard[KVX_TEXT_SIZE];
    const char *const texts[] = {current, standard};
    const char *name = call.fetchRequired(paramname);
    call.invoke(KVXgetstrparaminfo, asEnv(env), name, current, standard);
    call.write(info, texts, 2);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, setintparam)
(JNIEnv *jni, jclass, jlong env, jstring paramname, jint newvalue) {
    return invokeWithText(jni, KVXsetintparam, asEnv(env), paramname, newvalue);
}

JNI_METHOD(jint, KorvexJni, setdblparam)
(JNIEnv *jni, jclass, jlong env, jstring paramname, jdouble newvalue) {
    return invokeWithText(jni, KVXsetdblparam, asEnv(env), paramname, newvalue);
}

namespace {

using TextSetter = int(KVXenv *, const char *, const char *);

// Both strings are checked before either is fetched.
jint setText(JNIEnv *jni, TextSetter *setter, jlong env, jstring paramname, jstring newvalue) {
    Call call(jni);
    call.require(paramname);
    call.require(newvalue);
    const char *name = call.fetch(paramname);
    const char *value = call.fetch(newvalue);
    call.invoke(setter, asEnv(env), name, value);
    return call.status();
}

} // namespace

JNI_METHOD(jint, KorvexJni, setstrparam)
(JNIEnv *jni, jclass, jlong env, jstring paramname, jstring newvalue) {
    return setText(jni, KVXsetstrparam, env, paramname, newvalue);
}

JNI_METHOD(jint, KorvexJni, setparam)
(JNIEnv *jni, jclass, jlong env, jstring paramname, jstring newvalue) {
    return setText(jni, KVXsetparam, env, paramname, newvalue);
}

JNI_METHOD(jint, KorvexJni, resetparams)(JNIEnv *, jclass, jlong env) {
    return KVXresetparams(asEnv(env));
}

JNI_METHOD(jint, KorvexJni, writeparams)(JNIEnv *jni, jclass, jlong env, jstring filename) {
    return invokeWithText(jni, KVXwriteparams, asEnv(env), filename);
}

JNI_METHOD(jint, KorvexJni, readparams)(JNIEnv *jni, jclass, jlong env, jstring filename) {
    return invokeWithText(jni, KVXreadparams, asEnv(env), filename);
}
