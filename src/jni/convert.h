// What data look like on either side, and the way across: handles, characters, chunked copies,
// names.
#ifndef KORVEX_CONVERT_H
#define KORVEX_CONVERT_H

#include "com_korvex_KVXBatch.h"
#include "com_korvex_KVXEnv.h"
#include "com_korvex_KVXModel.h"
#include "com_korvex_KorvexJni.h"
#include "korvex.h"

#include <cstddef>
#include <cstdint>

// The definition of a native method. A definition that differs from the header that javac made of
// the Java class doesn't compile.
#define JNI_METHOD(result, type, method)                                                           \
    extern "C" JNIEXPORT result JNICALL Java_com_korvex_##type##_##method

// Handles, native pointers and references are of one size.
static_assert(sizeof(void *) == 8 && sizeof(jlong) == 8 && sizeof(jobject) == 8);

constexpr jint ERROR_OUT_OF_MEMORY = KVX_ERROR_OUT_OF_MEMORY;
constexpr jint ERROR_NULL_ARGUMENT = KVX_ERROR_NULL_ARGUMENT;
constexpr jint ERROR_WRONG_INFO_TYPE = KVX_ERROR_WRONG_INFO_TYPE;
constexpr jint ERROR_CALLBACK = KVX_ERROR_CALLBACK;

// Guards a condition that only a programming error in the bridge can break. `function` is the name
// of the exported function, also where several share the code; where the fixed room of a Call ran
// out, of the Call's member.
#define KORVassert(condition, function) KORVassertText(condition, #condition, function)
// The same where shared code knows the condition by another text.
#define KORVassertText(condition, text, function)                                                  \
    ((condition) ? static_cast<void>(0) : assertionFailed(text, __FILE__, __LINE__, function))
[[noreturn]] void assertionFailed(const char *condition, const char *file, int line,
                                  const char *function);

// Handles are the solver's pointers in Java longs; the bridge never looks behind them.
inline KVXenv *asEnv(jlong handle) {
    return reinterpret_cast<KVXenv *>(handle);
}
inline KVXmodel *asModel(jlong handle) {
    return reinterpret_cast<KVXmodel *>(handle);
}
inline KVXbatch *asBatch(jlong handle) {
    return reinterpret_cast<KVXbatch *>(handle);
}
inline void *asCallbackData(jlong handle) {
    return reinterpret_cast<void *>(handle);
}
inline jlong asHandle(const void *object) {
    return reinterpret_cast<jlong>(object);
}

// The number of entries with a closing one: the end of the last item, or of a text. In 32 bits,
// where it wraps on purpose: behind the largest count comes a size beyond all memory.
inline jint plusClosing(jint count) {
    return static_cast<jint>(static_cast<uint32_t>(count) + 1u);
}

// Characters: the low 8 bits go in, a signed byte comes out.
inline char narrow(jchar character) {
    return static_cast<char>(character & 0xFF);
}
inline jchar widen(char character) {
    return static_cast<jchar>(static_cast<signed char>(character));
}

// The chunked copy of `len` elements from `start` on: no region call moves 2^31 bytes or more.
constexpr jint chunkOfInts = 0x1FFFFFFF;
constexpr jint chunkOfDoubles = 0x0FFFFFFF;
template <class Array, class Element>
void copyChunked(JNIEnv *jni, void (JNIEnv::*region)(Array, jsize, jsize, Element *), jint chunk,
                 Array array, jint start, jint len, Element *buffer) {
    while (len > chunk) {
        (jni->*region)(array, start, chunk, buffer);
        // Wraps on purpose where a range ends beyond the array and beyond 2^31: the virtual machine
        // has refused the chunk before, and refuses the rest.
        start = static_cast<jint>(static_cast<uint32_t>(start) + static_cast<uint32_t>(chunk));
        len -= chunk;
        buffer += chunk;
    }
    (jni->*region)(array, start, len, buffer);
}
inline void GetIntArrayRegionSafe(JNIEnv *jni, jintArray array, jint start, jint len,
                                  jint *buffer) {
    copyChunked(jni, &JNIEnv::GetIntArrayRegion, chunkOfInts, array, start, len, buffer);
}
inline void GetDoubleArrayRegionSafe(JNIEnv *jni, jdoubleArray array, jint start, jint len,
                                     jdouble *buffer) {
    copyChunked(jni, &JNIEnv::GetDoubleArrayRegion, chunkOfDoubles, array, start, len, buffer);
}
inline void copyIn(JNIEnv *jni, jintArray array, jint start, jint len, jint *buffer) {
    GetIntArrayRegionSafe(jni, array, start, len, buffer);
}
inline void copyIn(JNIEnv *jni, jdoubleArray array, jint start, jint len, jdouble *buffer) {
    GetDoubleArrayRegionSafe(jni, array, start, len, buffer);
}

// Loops over plain pointers, which the compiler vectorises.
void narrowAll(const jchar *from, char *to, jint count);
void widenAll(const char *from, jchar *to, jint count);

// The string result: `text` becomes element `index` of `slot`.
void storeText(JNIEnv *jni, jobjectArray slot, jsize index, const char *text);

// Scratch of this size and more is faulted in by huge pages, where the system has them. The advice
// stays with those addresses after the scratch is freed; nothing else outlives the call.
constexpr size_t manyPages = size_t{4} << 20;
void adviseHugePages(void *memory, size_t size);

// The fetched elements of an array of names: what the array holds and what the solver gets.
struct Elements {
    jobject *references;
    const char **characters;
    jint fetched;
};

// Whether a null element becomes a null name, or counts as a fetch that failed.
enum class Nulls { pass, fail };

// Fetches the elements of `array` in order, up to the first that fails.
Elements fetchElements(JNIEnv *jni, jobjectArray array, jint count, Nulls nulls,
                       jobject *references, const char **characters);
void releaseElements(JNIEnv *jni, Elements elements);

#endif
