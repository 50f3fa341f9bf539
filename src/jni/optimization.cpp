// Long runs: optimisation, tuning and infeasibility analysis, each with an optional Java callback.
#include "upcall.h"

namespace {

enum class Run { toTheEnd, inTheBackground };

// Takes the callback away from the solver, which has no reason to refuse once its run is over, and
// the global reference from the record.
void removeCallback(JNIEnv *jni, KVXmodel *model, JavaCallbackInfo *record) {
    KVXsetcallbackfunc(model, nullptr, nullptr);
    jni->DeleteGlobalRef(record->javaObject);
    record->javaObject = nullptr;
}

void reportError(JNIEnv *jni, KVXmodel *model, jobjectArray errorslot) {
    storeText(jni, errorslot, 0, KVXgetmerrormsg(model));
}

// One driver for all: bind, install, run, report, remove, release. After a start in the background
// the record stays with the solver, and its handle goes to Java, until `sync`.
jint drive(JNIEnv *jni, jobject self, jlong handle, bool useCallback, jobjectArray errorslot,
           jint argument, int (*operation)(KVXmodel *), Run run = Run::toTheEnd,
           jlongArray recordslot = nullptr) {
    KVXmodel *const model = asModel(handle);
    JavaCallbackInfo *record = nullptr;
    bool installed = false;
    jint status = useCallback ? bindModelCallback(jni, self, &record) : 0;
    if (useCallback && status == 0) {
        status = KVXsetcallbackfuncadv(model, myjavacallback, record, argument);
        installed = status == 0;
    }
    if (status == 0)
        status = operation(model);
    if (status != 0)
        reportError(jni, model, errorslot);

    if (status == 0 && run == Run::inTheBackground) {
        const jlong kept = asHandle(record);
        if (record != nullptr)
            jni->SetLongArrayRegion(recordslot, 0, 1, &kept);
        return 0;
    }
    if (installed)
        removeCallback(jni, model, record);
    releaseCallback(jni, record);
    return status;
}

} // namespace

JNI_METHOD(jint, KVXModel, jnioptimize)
(JNIEnv *jni, jobject self, jlong model, jint useCallback, jint async, jlongArray recordslot,
 jobjectArray errorslot, jint argument) {
    if (async != 0)
        return drive(jni, self, model, useCallback != 0, errorslot, argument, KVXoptimizeasync,
                     Run::inTheBackground, recordslot);
    return drive(jni, self, model, useCallback != 0, errorslot, argument, KVXoptimize);
}

JNI_METHOD(jint, KVXModel, jnitune)
(JNIEnv *jni, jobject self, jlong model, jint useCallback, jobjectArray errorslot, jint argument) {
    return drive(jni, self, model, useCallback != 0, errorslot, argument, KVXtunemodel);
}

JNI_METHOD(jint, KVXModel, jnicomputeIIS)
(JNIEnv *jni, jobject self, jlong model, jint useCallback, jobjectArray errorslot, jint argument) {
    return drive(jni, self, model, useCallback != 0, errorslot, argument, KVXcomputeIIS);
}

JNI_METHOD(jint, KVXModel, jniunsetcallback)(JNIEnv *, jobject, jlong model) {
    return KVXsetcallbackfunc(asModel(model), nullptr, nullptr);
}

JNI_METHOD(jint, KorvexJni, sync)
(JNIEnv *jni, jclass, jlong handle, jlong recordhandle, jobjectArray errorslot) {
    KVXmodel *const model = asModel(handle);
    auto *record = reinterpret_cast<JavaCallbackInfo *>(recordhandle);
    const jint status = KVXsync(model);
    if (status != 0)
        reportError(jni, model, errorslot);
    // While the run goes on, solver and Java both keep the record.
    if (record != nullptr && status != KVX_ERROR_IN_PROGRESS) {
        removeCallback(jni, model, record);
        releaseCallback(jni, record);
    }
    return status;
}

JNI_METHOD(jint, KorvexJni, tunemodel)(JNIEnv *, jclass, jlong model) {
    return KVXtunemodel(asModel(model));
}

JNI_METHOD(jint, KorvexJni, gettuneresult)(JNIEnv *, jclass, jlong model, jint index) {
    return KVXgettuneresult(asModel(model), index);
}
