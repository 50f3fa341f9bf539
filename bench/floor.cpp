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

constexpr jint outOfMemory = KVX_ERROR_OUT_OF_MEMORY;

KVXmodel *asModel(jlong handle) {
    return reinterpret_cast<KVXmodel *>(handle);
}

template <class Element>
Element *allocate(jint count) {
    return static_cast<Element *>(malloc(static_cast<size_t>(count) * sizeof(Element)));
}

void narrow(const jchar *from, char *to, jint count) {
    for (jint k = 0; k < count; ++k)
        to[k] = static_cast<char>(from[k]);
}

} // namespace

FLOOR(getintattr)(JNIEnv *jni, jclass, jlong model, jstring name, jintArray value) {
    if (!name)
        return KVX_ERROR_NULL_ARGUMENT;
    const char *text = jni->GetStringUTFChars(name, nullptr);
    if (!text)
        return outOfMemory;
    jint result = 0;
    const jint status = KVXgetintattr(asModel(model), text, &result);
    if (status == 0)
        jni->SetIntArrayRegion(value, 0, 1, &result);
    jni->ReleaseStringUTFChars(name, text);
    return status;
}

FLOOR(setintparam)(JNIEnv *jni, jclass, jlong env, jstring name, jint value) {
    if (!name)
        return KVX_ERROR_NULL_ARGUMENT;
    const char *text = jni->GetStringUTFChars(name, nullptr);
    if (!text)
        return outOfMemory;
    const jint status = KVXsetintparam(reinterpret_cast<KVXenv *>(env), text, value);
    jni->ReleaseStringUTFChars(name, text);
    return status;
}

FLOOR(updatemodel)(JNIEnv *, jclass, jlong model) {
    return KVXupdatemodel(asModel(model));
}

FLOOR(addvars)
(JNIEnv *jni, jclass, jlong model, jint numvars, jint numnz, jintArray beg, jintArray ind,
 jdoubleArray val, jdoubleArray obj, jdoubleArray lb, jdoubleArray ub, jcharArray types,
 jobjectArray names) {
    jint *begins = nullptr, *indices = nullptr, fetched = 0, status = outOfMemory;
    jdouble *values = nullptr, *objective = nullptr, *lower = nullptr, *upper = nullptr;
    jchar *javaTypes = nullptr;
    char *nativeTypes = nullptr;
    jobject *references = nullptr;
    const char **texts = nullptr;
    if (!(indices = allocate<jint>(numnz)) || !(values = allocate<jdouble>(numnz)) ||
        !(objective = allocate<jdouble>(numvars)) || !(begins = allocate<jint>(numvars)) ||
        !(lower = allocate<jdouble>(numvars)) || !(upper = allocate<jdouble>(numvars)) ||
        !(javaTypes = allocate<jchar>(numvars)) || !(nativeTypes = allocate<char>(numvars)))
        goto done;
    if (names &&
        (!(references = allocate<jobject>(numvars)) || !(texts = allocate<const char *>(numvars))))
        goto done;
    jni->GetDoubleArrayRegion(obj, 0, numvars, objective);
    jni->GetIntArrayRegion(beg, 0, numvars, begins);
    jni->GetDoubleArrayRegion(lb, 0, numvars, lower);
    jni->GetDoubleArrayRegion(ub, 0, numvars, upper);
    jni->GetCharArrayRegion(types, 0, numvars, javaTypes);
    narrow(javaTypes, nativeTypes, numvars);
    for (; names && fetched < numvars; ++fetched) {
        const jobject name = references[fetched] = jni->GetObjectArrayElement(names, fetched);
        texts[fetched] =
            name ? jni->GetStringUTFChars(static_cast<jstring>(name), nullptr) : nullptr;
        if (name && !texts[fetched])
            goto done;
    }
    jni->GetIntArrayRegion(ind, 0, numnz, indices);
    jni->GetDoubleArrayRegion(val, 0, numnz, values);
    status = KVXaddvars(asModel(model), numvars, numnz, begins, indices, values, objective, lower,
                        upper, nativeTypes, texts);
done:
    for (jint k = 0; k < fetched; ++k) {
        if (references[k])
            jni->ReleaseStringUTFChars(static_cast<jstring>(references[k]), texts[k]);
        jni->DeleteLocalRef(references[k]);
    }
    void *const scratch[] = {objective, begins,    indices,     values,     lower,
                             upper,     javaTypes, nativeTypes, references, texts};
    for (void *buffer : scratch)
        free(buffer);
    return status;
}

FLOOR(getvars)
(JNIEnv *jni, jclass, jlong model, jintArray numnz, jintArray beg, jintArray ind, jdoubleArray val,
 jint start, jint count) {
    jint found = 0, capacity = 0;
    jint status = KVXgetvars(asModel(model), &found, nullptr, nullptr, nullptr, start, count);
    if (status != 0)
        return status;
    jni->GetIntArrayRegion(numnz, 0, 1, &capacity);
    jni->SetIntArrayRegion(numnz, 0, 1, &found);
    if (found < 1 || found > capacity)
        return status;
    jint *begins = allocate<jint>(count + 1), *indices = allocate<jint>(found);
    jdouble *values = allocate<jdouble>(found);
    status = outOfMemory;
    if (begins && indices && values)
        status = KVXgetvars(asModel(model), &found, begins, indices, values, start, count);
    if (status == 0) {
        jni->SetIntArrayRegion(beg, 0, count, begins);
        jni->SetIntArrayRegion(ind, 0, found, indices);
        jni->SetDoubleArrayRegion(val, 0, found, values);
    }
    free(begins);
    free(indices);
    free(values);
    return status;
}

FLOOR(getchars)
(JNIEnv *jni, jclass, jlong model, jstring name, jint start, jint count, jcharArray values) {
    const char *text = jni->GetStringUTFChars(name, nullptr);
    char *native = text ? allocate<char>(count) : nullptr;
    jchar *java = native ? allocate<jchar>(count) : nullptr;
    jint status = outOfMemory;
    if (java)
        status = KVXgetcharattrarray(asModel(model), text, start, count, native);
    for (jint k = 0; status == 0 && k < count; ++k)
        java[k] = static_cast<jchar>(static_cast<signed char>(native[k]));
    if (status == 0)
        jni->SetCharArrayRegion(values, 0, count, java);
    if (text)
        jni->ReleaseStringUTFChars(name, text);
    free(native);
    free(java);
    return status;
}

FLOOR(setchars)
(JNIEnv *jni, jclass, jlong model, jstring name, jint start, jint count, jcharArray values) {
    const char *text = jni->GetStringUTFChars(name, nullptr);
    char *native = text ? allocate<char>(count) : nullptr;
    jchar *java = native ? allocate<jchar>(count) : nullptr;
    jint status = outOfMemory;
    if (java) {
        jni->GetCharArrayRegion(values, 0, count, java);
        narrow(java, native, count);
        status = KVXsetcharattrarray(asModel(model), text, start, count, native);
    }
    if (text)
        jni->ReleaseStringUTFChars(name, text);
    free(native);
    free(java);
    return status;
}

FLOOR(getstrings)
(JNIEnv *jni, jclass, jlong model, jstring name, jint start, jint count, jobjectArray values) {
    const char *text = jni->GetStringUTFChars(name, nullptr);
    const char **texts = text ? allocate<const char *>(count) : nullptr;
    jint status = outOfMemory;
    if (texts)
        status = KVXgetstrattrarray(asModel(model), text, start, count, texts);
    for (jint k = 0; status == 0 && k < count; ++k) {
        const jstring string = jni->NewStringUTF(texts[k]);
        jni->SetObjectArrayElement(values, k, string);
        jni->DeleteLocalRef(string);
    }
    if (text)
        jni->ReleaseStringUTFChars(name, text);
    free(texts);
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
