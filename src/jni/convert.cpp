// What convert.h declares and is better not inlined.
#include "convert.h"

#include <cstdio>
#include <cstdlib>

#include <sys/mman.h>
#include <unistd.h>

void assertionFailed(const char *condition, const char *file, int line, const char *function) {
    fprintf(stderr, "KORVassert '%s' failed at %s:%d func %s\n", condition, file, line, function);
    abort();
}

void narrowAll(const jchar *from, char *to, jint count) {
    for (jint k = 0; k < count; ++k)
        to[k] = narrow(from[k]);
}

void widenAll(const char *from, jchar *to, jint count) {
    for (jint k = 0; k < count; ++k)
        to[k] = widen(from[k]);
}

void storeText(JNIEnv *jni, jobjectArray slot, jsize index, const char *text) {
    const jstring string = jni->NewStringUTF(text);
    jni->SetObjectArrayElement(slot, index, string);
    jni->DeleteLocalRef(string);
}

void adviseHugePages(void *memory, size_t size) {
    // Whole pages only: the block's edges may be shared with others.
    const auto page = static_cast<uintptr_t>(getpagesize());
    const uintptr_t first = (reinterpret_cast<uintptr_t>(memory) + page - 1) / page * page;
    const uintptr_t end = (reinterpret_cast<uintptr_t>(memory) + size) / page * page;
    madvise(reinterpret_cast<void *>(first), end - first, MADV_HUGEPAGE);
}

Elements fetchElements(JNIEnv *jni, jobjectArray array, jint count, Nulls nulls,
                       jobject *references, const char **characters) {
    jint fetched = 0;
    for (; fetched < count; ++fetched) {
        const jobject reference = jni->GetObjectArrayElement(array, fetched);
        const char *text = nullptr;
        if (reference != nullptr)
            text = jni->GetStringUTFChars(static_cast<jstring>(reference), nullptr);
        if (text == nullptr && (reference != nullptr || nulls == Nulls::fail)) {
            jni->DeleteLocalRef(reference);
            break;
        }
        references[fetched] = reference;
        characters[fetched] = text;
    }
    return {references, characters, fetched};
}

void releaseElements(JNIEnv *jni, Elements elements) {
    for (jint j = 0; j < elements.fetched; ++j) {
        const jobject reference = elements.references[j];
        if (reference != nullptr)
            jni->ReleaseStringUTFChars(static_cast<jstring>(reference), elements.characters[j]);
        jni->DeleteLocalRef(reference);
    }
}
