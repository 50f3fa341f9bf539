// From the solver back into Java: the record that binds a native callback to a Java object, and the
// two callback functions that the solver calls with it.
#ifndef KORVEX_UPCALL_H
#define KORVEX_UPCALL_H

#include "marshal.h"

#include <atomic>
#include <pthread.h>
#include <sys/types.h>

// One installed callback. The solver holds it as user data; whoever installed it removes it from
// the solver before releasing it.
struct JavaCallbackInfo {
    void *solverHandle;       // log: the environment; model: null
    JNIEnv *installEnv;       // valid on the installing thread only
    jobject javaObject;       // a global reference, owned by the record; null once deleted
    JavaVM *jvm;              // member IDs and virtual machine are looked up once, here
    jfieldID cbdataFieldId;   // model: "cbdata"
    jfieldID payloadFieldId;  // model: "where"; log: "logmsg"
    jmethodID notifyMethodId; // model: "fromjni"; log: "jniPrintLog"
    jfieldID cbmodelFieldId;  // model: "cbmodel"
    pthread_t installThread;
    // Set once a thread could not be attached or detached: the record is silent from then on. Any
    // thread may set it while others read it.
    std::atomic<int> failed;
    // The kernel's id of installThread: a pthread_t is given to a new thread once its own has
    // ended, and the stored JNIEnv is freed memory by then.
    pid_t installTask;
};
// Solver and Java carry its address only, but its size and the fields before the last are fixed.
static_assert(sizeof(JavaCallbackInfo) == 80);

// Bind `self` on the calling thread. Also after a failure *record is the caller's to release; it
// may be null then.
jint bindModelCallback(JNIEnv *jni, jobject self, JavaCallbackInfo **record);
jint bindLogCallback(JNIEnv *jni, jobject self, KVXenv *env, JavaCallbackInfo **record);

// Deletes the global reference through the caller's own JNIEnv, since the stored one may belong to
// another thread. Null is allowed. Never from inside the callback: the upcall still reads its
// record.
void releaseCallback(JNIEnv *jni, JavaCallbackInfo *record);

int myjavacallback(KVXmodel *model, void *cbdata, int where, void *userdata);
int myjavalogcallback(const char *line, void *userdata);

#endif
