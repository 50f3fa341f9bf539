#include "java_double.h"

#include "ledger.h"
#include "solver_double.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>

Java java;

namespace {
// The JNIEnv that belongs to this thread; null while a foreign thread isn't attached.
thread_local JNIEnv *ownEnv = nullptr;

void JNICALL unexpected() {
    std::fputs("the bridge called a JNI function that it has no business with\n", stderr);
    std::abort();
}

Object *objectOf(jobject reference) {
    return reinterpret_cast<Object *>(reference);
}

Object *enter(JNIEnv *env, jobject reference) {
    EXPECT_EQ(env, ownEnv) << "a JNIEnv was used on a thread that it doesn't belong to";
    return objectOf(reference);
}

std::string nameOf(Object *object) {
    return object ? object->name : "null";
}

std::string show(jint value) {
    return std::to_string(value);
}
std::string show(jdouble value) {
    return showDouble(value);
}
std::string show(jlong value) {
    return showPointer(reinterpret_cast<void *>(value));
}
std::string show(jchar value) {
    char text[8];
    std::snprintf(text, sizeof text, value < 0x80 ? "%c" : "U+%04X", value);
    return text;
}

template <class T>
std::vector<T> *elements(const std::string &event, Object *array, jsize start, jsize len) {
    ledger.note(event);
    if (!array) {
        ADD_FAILURE() << event << ": a null array crashes the virtual machine";
        return nullptr;
    }
    if (array->boundless)
        return nullptr;
    auto &values = std::get<std::vector<T>>(array->value);
    if (start >= 0 && len >= 0 &&
        static_cast<std::size_t>(start) + static_cast<std::size_t>(len) <= values.size())
        return &values;
    java.outOfBounds = true;
    return nullptr;
}

template <class A, class T>
void JNICALL getRegion(JNIEnv *env, A array, jsize start, jsize len, T *buffer) {
    Object *object = enter(env, array);
    std::size_t offset = 0;
    if (Block *block = ledger.blockOf(buffer, &offset)) {
        block->filled = true;
        if (len > 0 && offset + static_cast<std::size_t>(len) * sizeof(T) > block->size)
            ADD_FAILURE() << nameOf(object) << " overruns block " << block->name;
    }
    std::string event = "get " + nameOf(object) + " " + show(start) + " " + show(len) + " > ";
    if (auto *values = elements<T>(event + ledger.place(buffer), object, start, len))
        std::copy_n(values->begin() + start, len, buffer);
}

template <class A, class T>
void JNICALL setRegion(JNIEnv *env, A array, jsize start, jsize len, const T *buffer) {
    Object *object = enter(env, array);
    auto each = [](T value) { return show(value); };
    std::string data = listOf(buffer, static_cast<std::size_t>(len < 0 ? 0 : len), each);
    std::string event = "set " + nameOf(object) + " " + show(start) + " " + data;
    if (auto *values = elements<T>(event, object, start, len))
        std::copy_n(buffer, len, values->begin() + start);
}

const char *JNICALL getChars(JNIEnv *env, jstring text, jboolean *isCopy) {
    EXPECT_EQ(isCopy, nullptr);
    return java.fetch(enter(env, text));
}

void JNICALL releaseChars(JNIEnv *env, jstring text, const char *characters) {
    java.release(enter(env, text), characters);
}

jstring JNICALL newString(JNIEnv *env, const char *text) {
    enter(env, nullptr);
    std::string name = text ? '"' + std::string(text) + '"' : "null";
    ledger.note("new " + name);
    Object *string = java.make(name, std::string(text ? text : ""));
    ++string->locals;
    return static_cast<jstring>(string->reference());
}

jsize JNICALL getLength(JNIEnv *env, jarray array) {
    Object *object = enter(env, array);
    ledger.note("length " + object->name);
    return std::visit(
        [](const auto &value) {
            if constexpr (std::is_same_v<std::decay_t<decltype(value)>, std::monostate>)
                return 0;
            else
                return static_cast<jsize>(value.size());
        },
        object->value);
}

jobject JNICALL getElement(JNIEnv *env, jobjectArray array, jsize index) {
    Object *object = enter(env, array);
    ledger.note("element " + object->name + " " + show(index));
    Object *element =
        std::get<std::vector<Object *>>(object->value).at(static_cast<std::size_t>(index));
    if (element)
        ++element->locals;
    return element ? element->reference() : nullptr;
}

void JNICALL setElement(JNIEnv *env, jobjectArray array, jsize index, jobject value) {
    Object *object = enter(env, array);
    ledger.note("store " + object->name + " " + show(index) + " " + nameOf(objectOf(value)));
    std::get<std::vector<Object *>>(object->value).at(static_cast<std::size_t>(index)) =
        objectOf(value);
}

void JNICALL dropLocal(JNIEnv *env, jobject reference) {
    Object *object = enter(env, reference);
    ledger.note("drop " + nameOf(object));
    if (object && --object->locals < 0)
        ADD_FAILURE() << object->name << " is no local reference, or was dropped before";
}

jobject JNICALL newGlobal(JNIEnv *env, jobject reference) {
    return java.addGlobal(enter(env, reference));
}

void JNICALL dropGlobal(JNIEnv *env, jobject reference) {
    java.dropGlobal(enter(env, reference));
}

// The class of an object is a local reference that may be kept until the method returns.
jclass JNICALL getClass(JNIEnv *env, jobject reference) {
    Object *object = enter(env, reference);
    ledger.note("class " + object->name);
    Object *type = java.make("class of " + object->name);
    type->locals = 1;
    type->target = object;
    return static_cast<jclass>(type->reference());
}

jfieldID JNICALL getField(JNIEnv *env, jclass, const char *name, const char *signature) {
    enter(env, nullptr);
    return static_cast<jfieldID>(java.member("field", name, signature));
}

jmethodID JNICALL getMethod(JNIEnv *env, jclass, const char *name, const char *signature) {
    enter(env, nullptr);
    return static_cast<jmethodID>(java.member("method", name, signature));
}

// Upcalls go to the object that the global reference stands for, nothing else.
void upcall(JNIEnv *env, jobject reference, const std::string &event, const void *id) {
    Object *global = enter(env, reference);
    ASSERT_TRUE(global && global->target && id);
    ledger.note(event + " " + static_cast<const char *>(id));
}

template <class T>
void JNICALL setField(JNIEnv *env, jobject object, jfieldID id, T value) {
    upcall(env, object, "put " + show(value), id);
}

void JNICALL setObjectField(JNIEnv *env, jobject object, jfieldID id, jobject value) {
    upcall(env, object, "put " + nameOf(objectOf(value)), id);
}

void JNICALL callVoidV(JNIEnv *env, jobject object, jmethodID id, va_list) {
    upcall(env, object, "call", id);
    if (java.onUpcall)
        java.onUpcall();
}

void JNICALL callVoid(JNIEnv *env, jobject object, jmethodID id, ...) {
    va_list none;
    va_start(none, id);
    callVoidV(env, object, id, none);
    va_end(none);
}

jint JNICALL getVM(JNIEnv *env, JavaVM **vm) {
    enter(env, nullptr);
    ledger.note(java.noVM ? "vm fails" : "vm");
    *vm = java.noVM ? nullptr : &java.vm;
    return java.noVM ? JNI_ERR : JNI_OK;
}

jint JNICALL attach(JavaVM *, void **env, void *arguments) {
    EXPECT_EQ(arguments, nullptr);
    ledger.note(java.attachFails ? "attach fails" : "attach");
    if (java.attachFails)
        return JNI_ERR;
    *env = ownEnv = &java.attachedEnv;
    return JNI_OK;
}

jint JNICALL detach(JavaVM *) {
    ledger.note(java.detachFails ? "detach fails" : "detach");
    ownEnv = nullptr;
    return java.detachFails ? JNI_ERR : JNI_OK;
}

template <class Table>
void fillUnexpected(Table &table) {
    auto **slots = reinterpret_cast<void **>(&table);
    std::fill_n(slots, sizeof table / sizeof *slots, reinterpret_cast<void *>(&unexpected));
}
} // namespace

Java::Java() {
    fillUnexpected(functions);
    functions.GetStringUTFChars = getChars;
    functions.ReleaseStringUTFChars = releaseChars;
    functions.NewStringUTF = newString;
    functions.GetArrayLength = getLength;
    functions.GetObjectArrayElement = getElement;
    functions.SetObjectArrayElement = setElement;
    functions.GetIntArrayRegion = getRegion<jintArray, jint>;
    functions.GetDoubleArrayRegion = getRegion<jdoubleArray, jdouble>;
    functions.GetCharArrayRegion = getRegion<jcharArray, jchar>;
    functions.SetIntArrayRegion = setRegion<jintArray, jint>;
    functions.SetDoubleArrayRegion = setRegion<jdoubleArray, jdouble>;
    functions.SetCharArrayRegion = setRegion<jcharArray, jchar>;
    functions.SetLongArrayRegion = setRegion<jlongArray, jlong>;
    functions.GetObjectClass = getClass;
    functions.GetFieldID = getField;
    functions.GetMethodID = getMethod;
    functions.SetLongField = setField<jlong>;
    functions.SetIntField = setField<jint>;
    functions.SetObjectField = setObjectField;
    functions.CallVoidMethod = callVoid;
    functions.CallVoidMethodV = callVoidV;
    functions.NewGlobalRef = newGlobal;
    functions.DeleteGlobalRef = ::dropGlobal;
    functions.DeleteLocalRef = dropLocal;
    functions.GetJavaVM = getVM;
    fillUnexpected(invocations);
    invocations.AttachCurrentThread = attach;
    invocations.DetachCurrentThread = detach;
    mainEnv.functions = attachedEnv.functions = &functions;
    vm.functions = &invocations;
}

void Java::begin() {
    objects.clear();
    missing.clear();
    noVM = attachFails = detachFails = outOfBounds = false;
    onUpcall = nullptr;
    ownEnv = &mainEnv;
    receiver = make("self");
}

void Java::end() {
    for (const auto &[characters, text] : fetched)
        ADD_FAILURE() << text->name << " was fetched and not released";
    while (!fetched.empty())
        release(fetched.begin()->second, fetched.begin()->first);
    for (const Object &object : objects)
        if (object.locals > 0 && !object.target)
            ADD_FAILURE() << "a local reference to " << object.name << " is left";
    EXPECT_EQ(globals, 0) << "global references are left";
    globals = 0;
}

Object *Java::make(const std::string &name, Value value) {
    objects.push_back({name, std::move(value)});
    return &objects.back();
}

void *Java::member(const std::string &kind, const char *name, const char *signature) {
    static std::set<std::string> names;
    bool found = name != missing;
    ledger.note(kind + " " + name + " " + signature + (found ? "" : " fails"));
    return found ? const_cast<char *>(names.insert(name).first->c_str()) : nullptr;
}

// Every fetch is a heap copy of its own, so that the sanitizer sees a use after the release.
const char *Java::fetch(Object *text) {
    if (!text) {
        ADD_FAILURE() << "a null string crashes the virtual machine";
        return nullptr;
    }
    bool fails = ledger.fetchFails();
    ledger.note("fetch " + text->name + (fails ? " fails" : ""));
    if (fails)
        return nullptr;
    const auto &characters = std::get<std::string>(text->value);
    char *copy = new char[characters.size() + 1];
    std::memcpy(copy, characters.c_str(), characters.size() + 1);
    fetched[copy] = text;
    return copy;
}

void Java::release(Object *text, const char *characters) {
    auto found = fetched.find(characters);
    ASSERT_TRUE(found != fetched.end() && found->second == text)
        << nameOf(text) << " was released twice, or with another text's characters";
    ledger.note("release " + text->name);
    fetched.erase(found);
    delete[] characters;
}

jobject Java::addGlobal(Object *target) {
    ledger.note("global " + target->name);
    ++globals;
    Object *global = make("global of " + target->name);
    global->target = target;
    return global->reference();
}

void Java::dropGlobal(Object *global) {
    ASSERT_TRUE(global && global->target) << "no global reference, or one deleted before";
    ledger.note("unglobal " + global->target->name);
    global->target = nullptr;
    --globals;
}
