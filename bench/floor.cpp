// The floor of the benchmark: what JNI itself costs. Each function makes the calls and copies of
// the bridge's function of that kind, as one would write them by hand for it alone.
#include "Floor.h"
#include "com_korvex_KVXModel.h"
#include "korvex.h"

#include <cstdlib>
#include <cstring>

#include <pthread.h>

#define FLOOR(method) extern "C" JNIEXPORT jint JNICALL Java_Floor_##method

namespace {

KVXmodel *asModel(jlong handle) {
    return reinterpret_cast<KVXmodel *>(handle);
}

void narrow(const jchar *from, char *to, jint count) {
    for (jint k = 0; k < count; ++k)
        to[k] = static_cast<char>(from[k]);
}

// What is allocated and fetched goes back when the function returns. A bench doesn't run out of
// memory.
struct Scratch {
    ~Scratch() {
        for (int k = 0; k < count; ++k)
            free(buffers[k]);
    }
    template <class Element>
    Element *take(jint size) {
        void *&buffer = buffers[count++];
        return static_cast<Element *>(buffer = malloc(static_cast<size_t>(size) * sizeof(Element)));
    }
    void *buffers[10];
    int count = 0;
};

struct Text {
    Text(JNIEnv *jni, jstring string)
        : jni(jni), string(string), characters(jni->GetStringUTFChars(string, nullptr)) {}
    ~Text() { jni->ReleaseStringUTFChars(string, characters); }
    operator const char *() const { return characters; }
    JNIEnv *const jni;
    const jstring string;
    const char *const characters;
};

} // namespace

FLOOR(getintattr)(JNIEnv *jni, jclass, jlong model, jstring name, jintArray value) {
    const Text text(jni, name);
    jint result = 0;
    const jint status = KVXgetintattr(asModel(model), text, &result);
    jni->SetIntArrayRegion(value, 0, 1, &result);
    return status;
}

FLOOR(setintparam)(JNIEnv *jni, jclass, jlong env, jstring name, jint value) {
    const Text text(jni, name);
    return KVXsetintparam(reinterpret_cast<KVXenv *>(env), text, value);
}

FLOOR(updatemodel)(JNIEnv *, jclass, jlong model) {
    return KVXupdatemodel(asModel(model));
}

FLOOR(addvars)
(JNIEnv *jni, jclass, jlong model, jint numvars, jint numnz, jintArray beg, jintArray ind,
 jdoubleArray val, jdoubleArray obj, jdoubleArray lb, jdoubleArray ub, jcharArray types,
 jobjectArray names) {
    Scratch scratch;
    auto *const indices = scratch.take<jint>(numnz);
    auto *const values = scratch.take<jdouble>(numnz);
    auto *const objective = scratch.take<jdouble>(numvars);
    auto *const begins = scratch.take<jint>(numvars);
    auto *const lower = scratch.take<jdouble>(numvars);
    auto *const upper = scratch.take<jdouble>(numvars);
    auto *const javaTypes = scratch.take<jchar>(numvars);
    auto *const nativeTypes = scratch.take<char>(numvars);
    auto *const references = names ? scratch.take<jobject>(numvars) : nullptr;
    auto *const texts = names ? scratch.take<const char *>(numvars) : nullptr;
    jni->GetDoubleArrayRegion(obj, 0, numvars, objective);
    jni->GetIntArrayRegion(beg, 0, numvars, begins);
    jni->GetDoubleArrayRegion(lb, 0, numvars, lower);
    jni->GetDoubleArrayRegion(ub, 0, numvars, upper);
    jni->GetCharArrayRegion(types, 0, numvars, javaTypes);
    narrow(javaTypes, nativeTypes, numvars);
    for (jint k = 0; names && k < numvars; ++k) {
        const jobject name = references[k] = jni->GetObjectArrayElement(names, k);
        texts[k] = name ? jni->GetStringUTFChars(static_cast<jstring>(name), nullptr) : nullptr;
    }
    jni->GetIntArrayRegion(ind, 0, numnz, indices);
    jni->GetDoubleArrayRegion(val, 0, numnz, values);
    const jint status = KVXaddvars(asModel(model), numvars, numnz, begins, indices, values,
                                   objective, lower, upper, nativeTypes, texts);
    for (jint k = 0; names && k < numvars; ++k) {
        if (references[k])
            jni->ReleaseStringUTFChars(static_cast<jstring>(references[k]), texts[k]);
        jni->DeleteLocalRef(references[k]);
    }
    return status;
}

FLOOR(getvars)
(JNIEnv *jni, jclass, jlong model, jintArray numnz, jintArray beg, jintArray ind, jdoubleArray val,
 jint start, jint count) {
    jint found = 0, capacity = 0;
    KVXgetvars(asModel(model), &found, nullptr, nullptr, nullptr, start, count);
    jni->GetIntArrayRegion(numnz, 0, 1, &capacity);
    jni->SetIntArrayRegion(numnz, 0, 1, &found);
    if (found > capacity)
        return KVX_ERROR_INVALID_ARGUMENT;
    Scratch scratch;
    auto *const begins = scratch.take<jint>(count + 1), *const indices = scratch.take<jint>(found);
    auto *const values = scratch.take<jdouble>(found);
    const jint status = KVXgetvars(asModel(model), &found, begins, indices, values, start, count);
    jni->SetIntArrayRegion(beg, 0, count, begins);
    jni->SetIntArrayRegion(ind, 0, found, indices);
    jni->SetDoubleArrayRegion(val, 0, found, values);
    return status;
}

FLOOR(getchars)
(JNIEnv *jni, jclass, jlong model, jstring name, jint start, jint count, jcharArray values) {
    const Text text(jni, name);
    Scratch scratch;
    auto *const native = scratch.take<char>(count);
    auto *const java = scratch.take<jchar>(count);
    const jint status = KVXgetcharattrarray(asModel(model), text, start, count, native);
    for (jint k = 0; k < count; ++k)
        java[k] = static_cast<jchar>(static_cast<signed char>(native[k]));
    jni->SetCharArrayRegion(values, 0, count, java);
    return status;
}

FLOOR(setchars)
(JNIEnv *jni, jclass, jlong model, jstring name, jint start, jint count, jcharArray values) {
    const Text text(jni, name);
    Scratch scratch;
    auto *const native = scratch.take<char>(count);
    auto *const java = scratch.take<jchar>(count);
    jni->GetCharArrayRegion(values, 0, count, java);
    narrow(java, native, count);
    return KVXsetcharattrarray(asModel(model), text, start, count, native);
}

FLOOR(getstrings)
(JNIEnv *jni, jclass, jlong model, jstring name, jint start, jint count, jobjectArray values) {
    const Text text(jni, name);
    Scratch scratch;
    auto *const texts = scratch.take<const char *>(count);
    const jint status = KVXgetstrattrarray(asModel(model), text, start, count, texts);
    for (jint k = 0; k < count; ++k) {
        const jstring string = jni->NewStringUTF(texts[k]);
        jni->SetObjectArrayElement(values, k, string);
        jni->DeleteLocalRef(string);
    }
    return status;
}

namespace {

struct Binding {
    JNIEnv *jni;
    jobject self;
    jfieldID model, data, where;
    jmethodID notify;
    pthread_t thread;
};

int forward(KVXmodel *model, void *data, int where, void *userdata) {
    const auto *to = static_cast<const Binding *>(userdata);
    if (pthread_self() != to->thread)
        return KVX_ERROR_CALLBACK;
    to->jni->SetLongField(to->self, to->model, reinterpret_cast<jlong>(model));
    to->jni->SetLongField(to->self, to->data, reinterpret_cast<jlong>(data));
    to->jni->SetIntField(to->self, to->where, where);
    to->jni->CallVoidMethod(to->self, to->notify);
    return 0;
}

} // namespace

FLOOR(optimize)(JNIEnv *jni, jobject self, jlong model) {
    const jclass type = jni->GetObjectClass(self);
    Binding binding = {jni,
                       jni->NewGlobalRef(self),
                       jni->GetFieldID(type, "cbmodel", "J"),
                       jni->GetFieldID(type, "cbdata", "J"),
                       jni->GetFieldID(type, "where", "I"),
                       jni->GetMethodID(type, "fromjni", "()V"),
                       pthread_self()};
    KVXsetcallbackfuncadv(asModel(model), forward, &binding, 0);
    const jint status = KVXoptimize(asModel(model));
    KVXsetcallbackfunc(asModel(model), nullptr, nullptr);
    jni->DeleteGlobalRef(binding.self);
    return status;
}

FLOOR(optimizeThroughBridge)(JNIEnv *jni, jobject self, jlong model, jobjectArray errorslot) {
    return Java_com_korvex_KVXModel_jnioptimize(jni, self, model, 1, 0, nullptr, errorslot, 0);
}

FLOOR(limit)(JNIEnv *, jclass, jint numvars, jint numnz) {
    static const char *source = static_cast<char *>(calloc(size_t{1} << 27, 1));
    const auto vars = static_cast<size_t>(numvars), nonzeros = static_cast<size_t>(numnz);
    const size_t sizes[] = {4 * nonzeros, 8 * nonzeros, 8 * vars, 4 * vars,
                            8 * vars,     8 * vars,     2 * vars, vars};
    void *buffers[8];
    for (int k = 0; k < 8; ++k)
        memcpy(buffers[k] = malloc(sizes[k]), source, sizes[k]);
    for (void *buffer : buffers)
        free(buffer);
    return 0;
}
