// Batches: submitting a model as a request, and following that request.
#include "marshal.h"

JNI_METHOD(jint, KVXModel, jnioptimizebatch)
(JNIEnv *jni, jobject, jlong model, jobjectArray idslot) {
    Call call(jni);
    char id[KVX_TEXT_SIZE];
    const char *const text = id;
    call.invoke(KVXoptimizebatch, asModel(model), id);
    call.write(idslot, &text);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, newbatch)
(JNIEnv *jni, jclass, jlongArray batchslot, jlong env, jstring id) {
    Call call(jni);
    KVXbatch *batch = nullptr;
    const char *text = call.fetchRequired(id);
    if (!call.ok())
        return call.status(); // the slot is written after a solver call only
    call.invoke(KVXgetbatch, asEnv(env), text, &batch);
    call.writeHandle(batchslot, batch);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, freebatch)(JNIEnv *, jclass, jlong batch) {
    return KVXfreebatch(asBatch(batch));
}

JNI_METHOD(jint, KVXBatch, jniupdate)(JNIEnv *, jobject, jlong batch) {
    return KVXupdatebatch(asBatch(batch));
}

JNI_METHOD(jint, KVXBatch, getintattr)
(JNIEnv *jni, jobject, jlong batch, jstring attrname, jintArray value) {
    return readByName(jni, KVXgetbatchintattr, asBatch(batch), attrname, value);
}

JNI_METHOD(jint, KVXBatch, getstrattr)
(JNIEnv *jni, jobject, jlong batch, jstring attrname, jobjectArray value) {
    return readByName(jni, KVXgetbatchstrattr, asBatch(batch), attrname, value);
}

JNI_METHOD(jint, KVXBatch, jniretry)(JNIEnv *, jobject, jlong batch) {
    return KVXretrybatch(asBatch(batch));
}

JNI_METHOD(jint, KVXBatch, jniabort)(JNIEnv *, jobject, jlong batch) {
    return KVXabortbatch(asBatch(batch));
}

JNI_METHOD(jint, KVXBatch, jnidiscard)(JNIEnv *, jobject, jlong batch) {
    return KVXdiscardbatch(asBatch(batch));
}

JNI_METHOD(jint, KVXBatch, jnigetjsonsolution)
(JNIEnv *jni, jobject, jlong batch, jobjectArray slot) {
    return readOwnedText(jni, KVXgetbatchjsonsolution, asBatch(batch), slot);
}

JNI_METHOD(jint, KVXBatch, jniwritejsonsolution)
(JNIEnv *jni, jobject, jlong batch, jstring filename) {
    return invokeWithText(jni, KVXwritebatchjsonsolution, asBatch(batch), filename);
}
