// The rules by which data move between Java and the solver, once for all exported functions.
//
// An exported function makes a Call, declares its buffers in the order in which they are to be
// freed, and then reads straight down: fetch, allocate, copy, invoke, write. The first failure
// sticks: whatever comes after it does nothing, so that no step needs a test of its own. When the
// function returns, the Call gives back texts, name elements and scratch, in this order.
#ifndef KORVEX_MARSHAL_H
#define KORVEX_MARSHAL_H

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

constexpr jint ERROR_OUT_OF_MEMORY = KVX_ERROR_OUT_OF_MEMORY;
constexpr jint ERROR_NULL_ARGUMENT = KVX_ERROR_NULL_ARGUMENT;
constexpr jint ERROR_WRONG_INFO_TYPE = KVX_ERROR_WRONG_INFO_TYPE;
constexpr jint ERROR_CALLBACK = KVX_ERROR_CALLBACK;

// Guards a condition that only a programming error in the bridge can break. `function` is the name
// of the exported function, also where several share the code; where the fixed room of a Call ran
// out, of the Call's member.
#define KORVassert(condition, function)                                                            \
    ((condition) ? static_cast<void>(0) : assertionFailed(#condition, __FILE__, __LINE__, function))
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

// `count` and a closing entry, in 32 bits: the end of the last item, or of a text.
inline jint closed(jint count) {
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
void GetIntArrayRegionSafe(JNIEnv *jni, jintArray array, jint start, jint len, jint *buffer);
void GetDoubleArrayRegionSafe(JNIEnv *jni, jdoubleArray array, jint start, jint len,
                              jdouble *buffer);
inline void copyIn(JNIEnv *jni, jintArray array, jint start, jint len, jint *buffer) {
    GetIntArrayRegionSafe(jni, array, start, len, buffer);
}
inline void copyIn(JNIEnv *jni, jdoubleArray array, jint start, jint len, jdouble *buffer) {
    GetDoubleArrayRegionSafe(jni, array, start, len, buffer);
}

// The string result: `text` becomes element `index` of `slot`.
void storeText(JNIEnv *jni, jobjectArray slot, jsize index, const char *text);

class Call {
  public:
    explicit Call(JNIEnv *jni) : jni(jni) {}
    ~Call();
    Call(const Call &) = delete;
    Call &operator=(const Call &) = delete;

    bool ok() const { return status_ == 0; }
    jint status() const { return status_; }
    void fail(jint status) {
        if (ok())
            status_ = status;
    }

    // Required strings: null fails, before anything is fetched.
    void require(jstring string) {
        if (string == nullptr)
            fail(ERROR_NULL_ARGUMENT);
    }
    // The characters of a string, null for a null string.
    const char *text(jstring string) { return fetch(string, false); }
    const char *requiredText(jstring string) {
        require(string);
        return text(string);
    }
    // The first element of an array; 0 or null after a failure. A string's reference lives as
    // long as its characters.
    jint first(jintArray array);
    jdouble first(jdoubleArray array);
    char first(jcharArray array);
    const char *first(jobjectArray array);

    // Calls the solver, unless something failed before; its status is the call's from then on.
    template <class... Parameters, class... Arguments>
    void invoke(int (*function)(Parameters...), Arguments &&...arguments) {
        if (ok())
            status_ = function(arguments...);
    }

    // Value slots: written on success only, from element 0.
    void write(jintArray slot, const jint *values, jint count = 1);
    void write(jdoubleArray slot, const jdouble *values, jint count = 1);
    void write(jcharArray slot, const jchar *values, jint count);
    void write(jcharArray slot, const char *value);
    void write(jobjectArray slot, const char *const *texts, jint count = 1);
    // Value slots that may be null: that datum isn't wanted.
    template <class Array, class Element>
    void offer(Array slot, const Element *value) {
        if (slot != nullptr)
            write(slot, value);
    }
    // A handle slot, written after a creating call whatever its status.
    void writeHandle(jlongArray slot, const void *object);

    // The capacity-and-count handshake: element 0 of `slot` is the capacity of the caller's arrays
    // and becomes `count`. True if the arrays are to be filled.
    bool handshake(jintArray slot, jint count);

    JNIEnv *const jni;

  private:
    template <class Element>
    friend class Scratch;
    template <class Java, class Native>
    friend class Pair;
    friend class Names;

    struct Text {
        jstring string;
        const char *characters; // null if nothing was fetched
        bool element;           // of an array: its reference is the call's to delete
    };
    struct Elements {
        jobject *references = nullptr;
        const char **characters = nullptr;
        jint fetched = 0;
    };

    const char *fetch(jstring string, bool element);
    int reserve();
    Elements &reserveNames();
    void allocate(int place, jint count, size_t width);
    void allocateZeroed(int place, jint count, size_t width);
    void allocateBytes(int place, size_t size);
    void keep(int place, void *memory);
    void release(int place);

    // As much as the most demanding function needs: loadmodel, and addgenconstrpoly's two texts.
    static constexpr int mostTexts = 2, mostNames = 2, mostPlaces = 16;

    jint status_ = 0;
    int texts_ = 0, names_ = 0, places_ = 0;
    Text text_[mostTexts];
    Elements name_[mostNames];
    void *scratch_[mostPlaces];
};

// A buffer of exactly `count` elements; null while there is none. Its place in the order of
// freeing is that of its declaration.
template <class Element>
class Scratch {
  public:
    explicit Scratch(Call &call) : Scratch(call, call.reserve()) {}
    Scratch(Call &call, int place) : call(call), place(place) {}

    operator Element *() const { return buffer(); }
    Element *operator->() const { return buffer(); }

    // A count of zero or less allocates nothing.
    void allocate(jint count) { call.allocate(place, count, sizeof(Element)); }
    void allocateZeroed(jint count) { call.allocateZeroed(place, count, sizeof(Element)); }

    // Room for `count` items and a closing one, unless `count` is negative. Behind the largest
    // count comes a negative sum, whose size is beyond all memory: the allocation fails.
    void allocateClosed(jint count) {
        if (count >= 0)
            call.allocateBytes(place, static_cast<size_t>(closed(count)) * sizeof(Element));
    }

    // Copies `count` elements in, also where that count is zero or less: the virtual machine
    // judges it.
    template <class Array>
    void copy(Array array, jint count) {
        if (call.ok())
            copyIn(call.jni, array, 0, count, buffer());
    }
    template <class Array>
    void take(Array array, jint count) {
        allocate(count);
        copy(array, count);
    }

    // Writes the first `count` elements to a value slot.
    template <class Array>
    void write(Array slot, jint count) {
        call.write(slot, buffer(), count);
    }

    template <class Array>
    void offer(Array slot, jint count) {
        if (slot != nullptr)
            write(slot, count);
    }

    // Frees it ahead of the others.
    void release() { call.release(place); }

  private:
    Element *buffer() const { return static_cast<Element *>(call.scratch_[place]); }

    Call &call;
    const int place;
};

enum class Order { javaFirst, nativeFirst };

// Two buffers that go together: what Java handed over, and what the solver gets for it. The order
// is that of allocating and of freeing.
template <class Java, class Native>
class Pair {
  public:
    operator Native *() const { return native; }

    void allocate(jint count) {
        if (order == Order::javaFirst)
            java.allocate(count);
        native.allocate(count);
        if (order == Order::nativeFirst)
            java.allocate(count);
    }

  protected:
    // Braces, since they alone fix the order in which the two places are reserved.
    Pair(Call &call, Order order) : Pair{call, order, call.reserve(), call.reserve()} {}

    Call &call;
    const Order order;
    Scratch<Java> java;
    Scratch<Native> native;

  private:
    Pair(Call &call, Order order, int first, int second)
        : call(call), order(order), java(call, order == Order::javaFirst ? first : second),
          native(call, order == Order::javaFirst ? second : first) {}
};

// Character data.
class Chars : public Pair<jchar, char> {
  public:
    explicit Chars(Call &call, Order order = Order::javaFirst) : Pair(call, order) {}

    void copy(jcharArray array, jint count);
    void take(jcharArray array, jint count) {
        allocate(count);
        copy(array, count);
    }
    // Writes the native characters to a value slot.
    void write(jcharArray slot, jint count);
};

// An array of names, whose elements stay fetched until the call ends.
class Names : public Pair<jobject, const char *> {
  public:
    enum class Nulls { pass, fail };

    explicit Names(Call &call, Order order = Order::javaFirst);

    // A null element becomes a null name, or counts as a fetch that failed.
    void copy(jobjectArray array, jint count, Nulls nulls = Nulls::pass);
    void take(jobjectArray array, jint count) {
        allocate(count);
        copy(array, count);
    }

  private:
    Call::Elements &elements;
};

// Functions that need one required text of Java, and those that read one value by its name.
template <class Object, class... Parameters, class... Arguments>
jint invokeWithText(JNIEnv *jni, int (*function)(Object *, const char *, Parameters...),
                    Object *object, jstring string, Arguments... arguments) {
    Call call(jni);
    const char *text = call.requiredText(string);
    call.invoke(function, object, text, arguments...);
    return call.status();
}

template <class Object, class Value, class Array>
jint readByName(JNIEnv *jni, int (*reader)(Object *, const char *, Value *), Object *object,
                jstring name, Array slot) {
    Call call(jni);
    Value value = {};
    const char *text = call.requiredText(name);
    call.invoke(reader, object, text, &value);
    call.write(slot, &value);
    return call.status();
}

// A text that the solver allocates for the caller goes back to it on every path.
template <class Object>
jint readOwnedText(JNIEnv *jni, int (*reader)(Object *, char **), Object *object,
                   jobjectArray slot) {
    Call call(jni);
    char *text = nullptr;
    call.invoke(reader, object, &text);
    call.write(slot, &text);
    KVXfree(text);
    return call.status();
}

#endif
