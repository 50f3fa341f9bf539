// Environments: making, starting, freeing; the version handshake, messages and error texts.
#include "marshal.h"

#include <cstdio>

namespace {

struct Version {
    jint major, minor, technical;
};

// Of the bridge itself.
constexpr Version own = {13, 0, 3};

// The library's reserved arguments.
constexpr void *reserved = nullptr;

// Tells the environment's log when the Java side was made for another version than the bridge. The
// longest line takes 98 bytes.
void warnOfMismatch(KVXenv *env, Version java) {
    if (java.major == own.major && java.minor == own.minor && java.technical == own.technical)
        return;
    char line[98];
    snprintf(line, sizeof line,
             "Warning: Korvex version mismatch between Java %d.%d.%d and Jni %d.%d.%d\n",
             java.major, java.minor, java.technical, own.major, own.minor, own.technical);
    KVXmsg(env, line);
}

} // namespace

JNI_METHOD(jint, KorvexJni, createenv)
(JNIEnv *jni, jclass, jlongArray envslot, jint major, jint minor, jint technical) {
    Call call(jni);
    KVXenv *env = nullptr;
    call.invoke(KVXemptyenvadvinternal, &env, KVX_INTERFACE_JAVA, major, minor, technical, reserved,
                reserved, reserved, reserved, reserved, reserved, reserved);
    call.writeHandle(envslot, env);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, loadenv)
(JNIEnv *jni, jclass, jlongArray envslot, jstring str, jint major, jint minor, jint technical,
 jint extra) {
    Call call(jni);
    KVXenv *env = nullptr;
    const char *text = call.fetch(str);
    if (!call.ok())
        return call.status(); // the slot is written after a solver call only
    call.invoke(KVXloadenvadv, &env, text, KVX_INTERFACE_JAVA, major, minor, technical, reserved,
                reserved, reserved, reserved, KVX_LOADENV_KEY, extra, reserved, reserved, reserved,
                reserved, reserved, reserved);
    call.writeHandle(envslot, env);
    if (call.ok())
        warnOfMismatch(env, {major, minor, technical});
    return call.status();
}

JNI_METHOD(jint, KorvexJni, startenv)(JNIEnv *, jclass, jlong env) {
    return KVXstartenv(asEnv(env));
}

JNI_METHOD(jlong, KorvexJni, getenv)(JNIEnv *, jclass, jlong model) {
    return asHandle(KVXgetenv(asModel(model)));
}

JNI_METHOD(jlong, KorvexJni, getconcurrentenv)(JNIEnv *, jclass, jlong model, jint num) {
    return asHandle(KVXgetconcurrentenv(asModel(model), num));
}

JNI_METHOD(void, KorvexJni, discardconcurrentenvs)(JNIEnv *, jclass, jlong model) {
    KVXdiscardconcurrentenvs(asModel(model));
}

JNI_METHOD(jlong, KorvexJni, getmultiobjenv)(JNIEnv *, jclass, jlong model, jint index) {
    return asHandle(KVXgetmultiobjenv(asModel(model), index));
}

JNI_METHOD(void, KorvexJni, discardmultiobjenvs)(JNIEnv *, jclass, jlong model) {
    KVXdiscardmultiobjenvs(asModel(model));
}

JNI_METHOD(void, KorvexJni, freeenv)(JNIEnv *, jclass, jlong env) {
    KVXfreeenv(asEnv(env));
}

JNI_METHOD(void, KorvexJni, version)(JNIEnv *jni, jclass, jintArray out) {
    Version library = {0, 0, 0};
    KVXversion(&library.major, &library.minor, &library.technical);
    jni->SetIntArrayRegion(out, 0, 1, &library.major);
    jni->SetIntArrayRegion(out, 1, 1, &library.minor);
    jni->SetIntArrayRegion(out, 2, 1, &library.technical);
}

JNI_METHOD(jint, KorvexJni, message)(JNIEnv *jni, jclass, jlong env, jstring msg) {
    Call call(jni);
    const char *text = call.fetch(msg);
    if (text != nullptr)
        KVXmsg(asEnv(env), text);
    return call.status();
}

JNI_METHOD(jstring, KorvexJni, geterrormsg)(JNIEnv *jni, jclass, jlong env) {
    return env == 0 ? nullptr : jni->NewStringUTF(KVXgeterrormsg(asEnv(env)));
}
