// Log forwarding: a KVXEnv object receives its environment's log lines.
#include "upcall.h"

namespace {

jint install(JNIEnv *jni, jobject self, KVXenv *env, JavaCallbackInfo **record) {
    const jint status = bindLogCallback(jni, self, env, record);
    return status == 0 ? KVXsetlogcallbackfuncenv(env, myjavalogcallback, *record) : status;
}

} // namespace

// The record of an environment is known to the solver only, which is asked for it. It is released
// once the solver has let go of it: a line may arrive on another thread at any moment.
JNI_METHOD(jint, KVXEnv, jniSetLogCB)(JNIEnv *jni, jobject self, jlong handle, jint enable) {
    KVXenv *const env = asEnv(handle);
    JavaCallbackInfo *replacement = nullptr;
    void *old = nullptr;
    jint status = KVXgetlogcallbackfuncenv(env, nullptr, &old);
    if (status != 0)
        old = nullptr; // whatever the slot holds, it was not handed over
    else if (enable == 0)
        status = KVXsetlogcallbackfuncenv(env, nullptr, nullptr);
    else
        status = install(jni, self, env, &replacement);

    // The solver let go of the old record when it took the new one, or none. After a failure no
    // callback shall stay installed; a solver that refuses that, too, still holds the old one.
    if (status == 0 || KVXsetlogcallbackfuncenv(env, nullptr, nullptr) == 0)
        releaseCallback(jni, static_cast<JavaCallbackInfo *>(old));
    if (status != 0)
        releaseCallback(jni, replacement);
    return status;
}
