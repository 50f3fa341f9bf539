// Marshalling: copies, texts, names, scratch and slots. The rules are told in the header.
#include "marshal.h"

#include <cstdio>
#include <cstdlib>

namespace {

constexpr jint chunkOfInts = 0x1FFFFFFF;
constexpr jint chunkOfDoubles = 0x0FFFFFFF;

template <class Array, class Element>
void copyChunked(JNIEnv *jni, void (JNIEnv::*region)(Array, jsize, jsize, Element *), jint chunk,
                 Array array, jint start, jint len, Element *buffer) {
    while (len > chunk) {
        (jni->*region)(array, start, chunk, buffer);
        // In 64 bits, since a range that ends beyond the array may end beyond 2^31, too.
        start = static_cast<jint>(int64_t{start} + chunk);
        len -= chunk;
        buffer += chunk;
    }
    (jni->*region)(array, start, len, buffer);
}

} // namespace

void assertionFailed(const char *condition, const char *file, int line, const char *function) {
    fprintf(stderr, "KORVassert '%s' failed at %s:%d func %s\n", condition, file, line, function);
    abort();
}

void GetIntArrayRegionSafe(JNIEnv *jni, jintArray array, jint start, jint len, jint *buffer) {
    copyChunked(jni, &JNIEnv::GetIntArrayRegion, chunkOfInts, array, start, len, buffer);
}

void GetDoubleArrayRegionSafe(JNIEnv *jni, jdoubleArray array, jint start, jint len,
                              jdouble *buffer) {
    copyChunked(jni, &JNIEnv::GetDoubleArrayRegion, chunkOfDoubles, array, start, len, buffer);
}

void storeText(JNIEnv *jni, jobjectArray slot, jsize index, const char *text) {
    const jstring string = jni->NewStringUTF(text);
    jni->SetObjectArrayElement(slot, index, string);
    jni->DeleteLocalRef(string);
}

Call::~Call() {
    for (int t = 0; t < texts_; ++t) {
        if (text_[t].characters != nullptr)
            jni->ReleaseStringUTFChars(text_[t].string, text_[t].characters);
        if (text_[t].element)
            jni->DeleteLocalRef(text_[t].string);
    }
    for (int n = 0; n < names_; ++n) {
        const Elements &name = name_[n];
        for (jint j = 0; j < name.fetched; ++j) {
            if (name.references[j] != nullptr)
                jni->ReleaseStringUTFChars(static_cast<jstring>(name.references[j]),
                                           name.characters[j]);
            jni->DeleteLocalRef(name.references[j]);
        }
    }
    for (int place = 0; place < places_; ++place)
        release(place);
}

const char *Call::fetch(jstring string, bool element) {
    if (!ok())
        return nullptr;
    const char *characters = nullptr;
    if (string != nullptr) {
        characters = jni->GetStringUTFChars(string, nullptr);
        if (characters == nullptr)
            fail(ERROR_OUT_OF_MEMORY);
    }
    KORVassert(texts_ < mostTexts, __func__);
    text_[texts_++] = {string, characters, element};
    return characters;
}

jint Call::first(jintArray array) {
    jint value = 0;
    if (ok())
        jni->GetIntArrayRegion(array, 0, 1, &value);
    return value;
}

jdouble Call::first(jdoubleArray array) {
    jdouble value = 0;
    if (ok())
        jni->GetDoubleArrayRegion(array, 0, 1, &value);
    return value;
}

char Call::first(jcharArray array) {
    jchar value = 0;
    if (ok())
        jni->GetCharArrayRegion(array, 0, 1, &value);
    return narrow(value);
}

const char *Call::first(jobjectArray array) {
    if (!ok())
        return nullptr;
    return fetch(static_cast<jstring>(jni->GetObjectArrayElement(array, 0)), true);
}

void Call::write(jintArray slot, const jint *values, jint count) {
    if (ok())
        jni->SetIntArrayRegion(slot, 0, count, values);
}

void Call::write(jdoubleArray slot, const jdouble *values, jint count) {
    if (ok())
        jni->SetDoubleArrayRegion(slot, 0, count, values);
}

void Call::write(jcharArray slot, const jchar *values, jint count) {
    if (ok())
        jni->SetCharArrayRegion(slot, 0, count, values);
}

void Call::write(jcharArray slot, const char *value) {
    const jchar wide = widen(*value);
    write(slot, &wide, 1);
}

void Call::write(jobjectArray slot, const char *const *texts, jint count) {
    for (jint k = 0; ok() && k < count; ++k)
        storeText(jni, slot, k, texts[k]);
}

void Call::writeHandle(jlongArray slot, const void *object) {
    const jlong handle = asHandle(object);
    jni->SetLongArrayRegion(slot, 0, 1, &handle);
}

bool Call::handshake(jintArray slot, jint count) {
    if (!ok())
        return false;
    const jint capacity = first(slot);
    write(slot, &count);
    return count >= 1 && count <= capacity;
}

int Call::reserve() {
    KORVassert(places_ < mostPlaces, __func__);
    scratch_[places_] = nullptr;
    return places_++;
}

Call::Elements &Call::reserveNames() {
    KORVassert(names_ < mostNames, __func__);
    return name_[names_++];
}

void Call::allocate(int place, jint count, size_t width) {
    if (count > 0)
        allocateBytes(place, static_cast<size_t>(count) * width);
}

void Call::allocateBytes(int place, size_t size) {
    if (ok())
        keep(place, malloc(size));
}

void Call::allocateZeroed(int place, jint count, size_t width) {
    if (ok() && count > 0)
        keep(place, calloc(static_cast<size_t>(count), width));
}

void Call::keep(int place, void *memory) {
    scratch_[place] = memory;
    if (memory == nullptr)
        fail(ERROR_OUT_OF_MEMORY);
}

void Call::release(int place) {
    if (scratch_[place] != nullptr)
        free(scratch_[place]);
    scratch_[place] = nullptr;
}

void Chars::copy(jcharArray array, jint count) {
    if (!call.ok())
        return;
    jchar *const from = java;
    char *const to = native;
    call.jni->GetCharArrayRegion(array, 0, count, from);
    for (jint k = 0; k < count; ++k)
        to[k] = narrow(from[k]);
}

void Chars::write(jcharArray slot, jint count) {
    if (!call.ok())
        return;
    const char *const from = native;
    jchar *const to = java;
    for (jint k = 0; k < count; ++k)
        to[k] = widen(from[k]);
    call.write(slot, to, count);
}

Names::Names(Call &call, Order order) : Pair(call, order), elements(call.reserveNames()) {}

void Names::copy(jobjectArray array, jint count, Nulls nulls) {
    if (!call.ok())
        return;
    elements.references = java;
    elements.characters = native;
    for (jint i = 0; i < count; ++i) {
        const jobject reference = call.jni->GetObjectArrayElement(array, i);
        const char *characters = nullptr;
        if (reference != nullptr)
            characters = call.jni->GetStringUTFChars(static_cast<jstring>(reference), nullptr);
        if (characters == nullptr && (reference != nullptr || nulls == Nulls::fail)) {
            call.jni->DeleteLocalRef(reference);
            call.fail(ERROR_OUT_OF_MEMORY);
            return;
        }
        elements.references[i] = reference;
        elements.characters[i] = characters;
        elements.fetched = i + 1;
    }
}
