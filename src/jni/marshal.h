// The rules by which data move between Java and the solver, once for all exported functions.
//
// An exported function makes a Call, declares its buffers in the order in which they are to be
// freed, and then reads straight down: fetch, allocate, copy, invoke, write. The first failure
// sticks: whatever comes after it does nothing, so that no step needs a test of its own. When the
// function returns, the Call gives back texts, name elements and scratch, in this order.
#ifndef KORVEX_MARSHAL_H
#define KORVEX_MARSHAL_H

#include "convert.h"

#include <cstdlib>

// What an exported function borrows and allocates. All of it is inline, and the address of a Call
// goes nowhere: thus the compiler knows what a function holds at its end, and the giving back of
// anything else costs nothing.
class Call {
  public:
    explicit Call(JNIEnv *jni) : jni(jni) {}
    ~Call() {
        // Not a loop, which would keep the texts in memory.
        static_assert(mostTexts == 2);
        if (texts_ > 0)
            release(text_[0]);
        if (texts_ > 1)
            release(text_[1]);
        for (int n = 0; n < names_; ++n)
            releaseElements(jni, name_[n]);
        for (int place = 0; place < places_; ++place)
            freeScratch(place);
    }
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
    const char *fetch(jstring string) { return fetch(string, false); }
    const char *fetchRequired(jstring string) {
        require(string);
        return fetch(string);
    }
    // The first element of an array; 0 or null after a failure. A string's reference lives as
    // long as its characters.
    jint readFirst(jintArray array) {
        jint value = 0;
        if (ok())
            jni->GetIntArrayRegion(array, 0, 1, &value);
        return value;
    }
    jdouble readFirst(jdoubleArray array) {
        jdouble value = 0;
        if (ok())
            jni->GetDoubleArrayRegion(array, 0, 1, &value);
        return value;
    }
    char readFirst(jcharArray array) {
        jchar value = 0;
        if (ok())
            jni->GetCharArrayRegion(array, 0, 1, &value);
        return narrow(value);
    }
    const char *readFirst(jobjectArray array) {
        return ok() ? fetch(static_cast<jstring>(jni->GetObjectArrayElement(array, 0)), true)
                    : nullptr;
    }

    // Calls the solver, unless something failed before; its status is the call's from then on.
    template <class... Parameters, class... Arguments>
    void invoke(int (*function)(Parameters...), Arguments &&...arguments) {
        if (ok())
            status_ = function(arguments...);
    }

    // Value slots: written on success only, from element 0.
    void write(jintArray slot, const jint *values, jint count = 1) {
        if (ok())
            jni->SetIntArrayRegion(slot, 0, count, values);
    }
    void write(jdoubleArray slot, const jdouble *values, jint count = 1) {
        if (ok())
            jni->SetDoubleArrayRegion(slot, 0, count, values);
    }
    void write(jcharArray slot, const jchar *values, jint count) {
        if (ok())
            jni->SetCharArrayRegion(slot, 0, count, values);
    }
    void write(jcharArray slot, const char *value) {
        const jchar wide = widen(*value);
        write(slot, &wide, 1);
    }
    void write(jobjectArray slot, const char *const *texts, jint count = 1) {
        for (jint k = 0; ok() && k < count; ++k)
            storeText(jni, slot, k, texts[k]);
    }
    // Value slots that may be null: that datum isn't wanted.
    template <class Array, class Element>
    void offer(Array slot, const Element *value) {
        if (slot != nullptr)
            write(slot, value);
    }
    // A handle slot, written after a creating call whatever its status.
    void writeHandle(jlongArray slot, const void *object) {
        const jlong handle = asHandle(object);
        jni->SetLongArrayRegion(slot, 0, 1, &handle);
    }

    // The capacity-and-count handshake: element 0 of `slot` is the capacity of the caller's arrays
    // and becomes `count`. True if the arrays are to be filled.
    bool handshake(jintArray slot, jint count) {
        if (!ok())
            return false;
        const jint capacity = readFirst(slot);
        write(slot, &count);
        return count >= 1 && count <= capacity;
    }

    JNIEnv *const jni;

  private:
    template <class Element>
    friend class Scratch;
    template <class Java, class Native>
    friend class TwoForms;
    friend class Names;

    struct Text {
        jstring string;
        const char *characters; // null if nothing was fetched
        bool element;           // of an array: its reference is the call's to delete
    };

    const char *fetch(jstring string, bool element) {
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
    void release(const Text &text) {
        if (text.characters != nullptr)
            jni->ReleaseStringUTFChars(text.string, text.characters);
        if (text.element)
            jni->DeleteLocalRef(text.string);
    }
    void keep(Elements elements) {
        KORVassert(names_ < mostNames, __func__);
        name_[names_++] = elements;
    }

    int reserve() {
        KORVassert(places_ < mostPlaces, __func__);
        scratch_[places_] = nullptr;
        return places_++;
    }
    void allocate(int place, size_t size) {
        if (ok())
            keep(place, malloc(size), size);
    }
    void allocateZeroed(int place, size_t count, size_t width) {
        if (ok())
            keep(place, calloc(count, width), count * width);
    }
    void keep(int place, void *memory, size_t size) {
        scratch_[place] = memory;
        if (memory == nullptr)
            fail(ERROR_OUT_OF_MEMORY);
        else if (size >= manyPages)
            adviseHugePages(memory, size);
    }
    void freeScratch(int place) {
        if (scratch_[place] != nullptr)
            free(scratch_[place]);
        scratch_[place] = nullptr;
    }

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
    void allocate(jint count) {
        if (count > 0)
            call.allocate(place, static_cast<size_t>(count) * sizeof(Element));
    }
    void allocateZeroed(jint count) {
        if (count > 0)
            call.allocateZeroed(place, static_cast<size_t>(count), sizeof(Element));
    }
    // Room for `count` items and a closing one, unless `count` is negative.
    void allocateWithClosing(jint count) {
        if (count >= 0)
            call.allocate(place, static_cast<size_t>(plusClosing(count)) * sizeof(Element));
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

    // Ahead of the others, and of the texts.
    void freeEarly() { call.freeScratch(place); }

  private:
    Element *buffer() const { return static_cast<Element *>(call.scratch_[place]); }

    Call &call;
    const int place;
};

enum class Order { javaFirst, nativeFirst };

// The same data in two forms, each with its buffer: as Java has them, and as the solver does. The
// order is that of allocating and of freeing.
template <class Java, class Native>
class TwoForms {
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
    TwoForms(Call &call, Order order) : TwoForms{call, order, call.reserve(), call.reserve()} {}

    Call &call;
    const Order order;
    Scratch<Java> java;
    Scratch<Native> native;

  private:
    TwoForms(Call &call, Order order, int first, int second)
        : call(call), order(order), java(call, order == Order::javaFirst ? first : second),
          native(call, order == Order::javaFirst ? second : first) {}
};

// Character data.
class Chars : public TwoForms<jchar, char> {
  public:
    explicit Chars(Call &call, Order order = Order::javaFirst) : TwoForms(call, order) {}

    void copy(jcharArray array, jint count) {
        if (!call.ok())
            return;
        call.jni->GetCharArrayRegion(array, 0, count, java);
        narrowAll(java, native, count);
    }
    void take(jcharArray array, jint count) {
        allocate(count);
        copy(array, count);
    }
    // Writes the native characters to a value slot.
    void write(jcharArray slot, jint count) {
        if (!call.ok())
            return;
        widenAll(native, java, count);
        call.write(slot, java, count);
    }
};

// An array of names, whose elements stay fetched until the call ends.
class Names : public TwoForms<jobject, const char *> {
  public:
    explicit Names(Call &call, Order order = Order::javaFirst) : TwoForms(call, order) {}

    void copy(jobjectArray array, jint count, Nulls nulls = Nulls::pass) {
        if (!call.ok())
            return;
        const Elements elements = fetchElements(call.jni, array, count, nulls, java, native);
        call.keep(elements);
        if (elements.fetched < count)
            call.fail(ERROR_OUT_OF_MEMORY);
    }
    void take(jobjectArray array, jint count) {
        allocate(count);
        copy(array, count);
    }
};

// Functions that need one required text of Java, and those that read one value by its name.
template <class Object, class... Parameters, class... Arguments>
jint invokeWithText(JNIEnv *jni, int (*function)(Object *, const char *, Parameters...),
                    Object *object, jstring string, Arguments... arguments) {
    Call call(jni);
    const char *text = call.fetchRequired(string);
    call.invoke(function, object, text, arguments...);
    return call.status();
}

template <class Object, class Value, class Array>
jint readByName(JNIEnv *jni, int (*reader)(Object *, const char *, Value *), Object *object,
                jstring name, Array slot) {
    Call call(jni);
    Value value = {};
    const char *text = call.fetchRequired(name);
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
