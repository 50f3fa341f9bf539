// From the solver back into Java: binding, forwarding and releasing of callback records.
#include "upcall.h"

#include <cstdlib>
#include <new>
#include <unistd.h>

namespace {

// The kernel's id of the calling thread, asked for once a thread: the system call takes twice as
// long as all else in an upcall. The library's share of static room is as small as this one number,
// and nothing is allocated when a thread first comes by.
pid_t currentTask() {
    [[gnu::tls_model("initial-exec")]] static thread_local pid_t task = 0;
    if (task == 0)
        task = gettid();
    return task;
}

// The part that both kinds share. Afterwards *record is null, or filled but for its members.
jint makeRecord(JNIEnv *jni, jobject self, JavaCallbackInfo **record) {
    *record = nullptr;
    void *memory = malloc(sizeof(JavaCallbackInfo));
    if (memory == nullptr)
        return ERROR_OUT_OF_MEMORY;
    auto *made = new (memory) JavaCallbackInfo{};
    made->installThread = pthread_self();
    made->installTask = currentTask();
    made->failed = 0;
    made->solverHandle = nullptr;
    made->installEnv = jni;
    made->javaObject = jni->NewGlobalRef(self);
    if (made->javaObject == nullptr) {
        releaseCallback(jni, made);
        return ERROR_OUT_OF_MEMORY;
    }
    if (jni->GetJavaVM(&made->jvm) != JNI_OK) {
        releaseCallback(jni, made);
        return ERROR_CALLBACK;
    }
    *record = made;
    return 0;
}

bool isForeignThread(const JavaCallbackInfo &record) {
    return pthread_self() != record.installThread || currentTask() != record.installTask;
}

// Runs `forward` with the JNIEnv of the present thread: the stored one on the installing thread; on
// any other the thread is attached before and detached after, whether it was attached or not.
template <class Forward>
int upcall(void *userdata, Forward forward) {
    auto *record = static_cast<JavaCallbackInfo *>(userdata);
    if (record == nullptr || record->failed != 0)
        return 0;
    const bool foreign = isForeignThread(*record);
    JNIEnv *jni = record->installEnv;
    if (foreign &&
        record->jvm->AttachCurrentThread(reinterpret_cast<void **>(&jni), nullptr) != JNI_OK) {
        record->failed = 1;
        return 0;
    }
    forward(jni, record);
    if (foreign && record->jvm->DetachCurrentThread() != JNI_OK) {
        record->failed = 1;
        return ERROR_CALLBACK;
    }
    return record->failed != 0 ? ERROR_CALLBACK : 0;
}

} // namespace

jint bindModelCallback(JNIEnv *jni, jobject self, JavaCallbackInfo **record) {
    const jclass type = jni->GetObjectClass(self);
    const jint status = makeRecord(jni, self, record);
    if (status != 0)
        return status;
    JavaCallbackInfo *made = *record;
    made->cbmodelFieldId = jni->GetFieldID(type, "cbmodel", "J");
    made->notifyMethodId = jni->GetMethodID(type, "fromjni", "()V");
    made->cbdataFieldId = jni->GetFieldID(type, "cbdata", "J");
    made->payloadFieldId = jni->GetFieldID(type, "where", "I");
    const bool complete = made->notifyMethodId != nullptr && made->cbdataFieldId != nullptr &&
                          made->payloadFieldId != nullptr && made->cbmodelFieldId != nullptr;
    return complete ? 0 : ERROR_CALLBACK;
}

jint bindLogCallback(JNIEnv *jni, jobject self, KVXenv *env, JavaCallbackInfo **record) {
    const jclass type = jni->GetObjectClass(self);
    const jint status = makeRecord(jni, self, record);
    if (status != 0)
        return status;
    JavaCallbackInfo *made = *record;
    made->solverHandle = env;
    made->notifyMethodId = jni->GetMethodID(type, "jniPrintLog", "()V");
    made->payloadFieldId = jni->GetFieldID(type, "logmsg", "Ljava/lang/String;");
    const bool complete = made->notifyMethodId != nullptr && made->payloadFieldId != nullptr;
    return complete ? 0 : ERROR_CALLBACK;
}

void releaseCallback(JNIEnv *jni, JavaCallbackInfo *record) {
    if (record == nullptr)
        return;
    if (record->installEnv != nullptr && record->javaObject != nullptr)
        jni->DeleteGlobalRef(record->javaObject);
    free(record);
}

int myjavacallback(KVXmodel *model, void *cbdata, int where, void *userdata) {
    return upcall(userdata, [=](JNIEnv *jni, const JavaCallbackInfo *record) {
        jni->SetLongField(record->javaObject, record->cbmodelFieldId, asHandle(model));
        jni->SetLongField(record->javaObject, record->cbdataFieldId, asHandle(cbdata));
        jni->SetIntField(record->javaObject, record->payloadFieldId, where);
        jni->CallVoidMethod(record->javaObject, record->notifyMethodId);
    });
}

int myjavalogcallback(const char *line, void *userdata) {
    return upcall(userdata, [=](JNIEnv *jni, const JavaCallbackInfo *record) {
        const jstring text = jni->NewStringUTF(line);
        jni->SetObjectField(record->javaObject, record->payloadFieldId, text);
        jni->DeleteLocalRef(text);
        jni->CallVoidMethod(record->javaObject, record->notifyMethodId);
    });
}
