// Model and attribute files, and solutions as JSON.
#include "marshal.h"

JNI_METHOD(jlong, KorvexJni, readmodel)(JNIEnv *jni, jclass, jlong env, jstring filename) {
    Call call(jni);
    KVXmodel *model = nullptr;
    const char *name = call.fetchRequired(filename);
    call.invoke(KVXreadmodel, asEnv(env), name, &model);
    return call.ok() ? asHandle(model) : 0;
}

JNI_METHOD(jint, KorvexJni, read)(JNIEnv *jni, jclass, jlong model, jstring filename) {
    return invokeWithText(jni, KVXread, asModel(model), filename);
}

JNI_METHOD(jint, KorvexJni, write)(JNIEnv *jni, jclass, jlong model, jstring filename) {
    return invokeWithText(jni, KVXwrite, asModel(model), filename);
}

namespace {

// The result is the solver's answer, or one of the bridge's own codes.
jint classify(JNIEnv *jni, int (*classifier)(const char *), jstring filename) {
    Call call(jni);
    const char *name = call.fetchRequired(filename);
    return call.ok() ? classifier(name) : call.status();
}

} // namespace

JNI_METHOD(jint, KorvexJni, ismodelfile)(JNIEnv *jni, jclass, jstring filename) {
    return classify(jni, KVXismodelfile, filename);
}

JNI_METHOD(jint, KorvexJni, isattrfile)(JNIEnv *jni, jclass, jstring filename) {
    return classify(jni, KVXisattrfile, filename);
}

JNI_METHOD(jint, KorvexJni, getJSONSolution)
(JNIEnv *jni, jclass, jlong model, jobjectArray slot) {
    return readOwnedText(jni, KVXgetjsonsolution, asModel(model), slot);
}
