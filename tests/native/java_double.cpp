#include "java_double.h"

#include "ledger.h"
#include "solver_double.h"

#include <algorithm>
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

Object *enter(JNIEnv *env, jobject reference = nullptr) {
    EXPECT_EQ(env, ownEnv) << "a JNIEnv was used on a thread that it doesn't belong to";
    return reinterpret_cast<Object *>(reference);
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
std::string show(Object *object) {
    return object ? object->name : "null";
}
std::string show(jobject reference) {
    return show(reinterpret_cast<Object *>(reference));
}
std::string show(jchar value) {
    char text[8];
    std::snprintf(text, sizeof text, value < 0x80 ? "%c" : "U+%04X", value);
    return text;
}

// The elements that a region call moves; null when it moves none.
template <class T>
T *region(std::string event, Object *array, jsize start, jsize len) {
    auto *values = array ? std::get_if<std::vector<T>>(&array->value) : nullptr;
    EXPECT_TRUE(values) << event << ": the virtual machine would crash";
    bool inside = values && start >= 0 && len >= 0 &&
                  static_cast<std::size_t>(start) + static_cast<std::size_t>(len) <= values->size();
    bool moved = inside && !array->boundless;
    ledger.note(event + (inside || (array && array->boundless) ? "" : " raises"));
    return moved ? values->data() + start : nullptr;
}

template <class A, class T>
void JNICALL getRegion(JNIEnv *env, A array, jsize start, jsize len, T *buffer) {
    std::size_t offset = 0;
    if (Block *block = ledger.blockOf(buffer, &offset)) {
        block->filled = true;
        if (len > 0 && offset + static_cast<std::size_t>(len) * sizeof(T) > block->size)
            ADD_FAILURE() << show(array) << " overruns block " << block->name;
    }
    std::string event = "get " + show(array) + " " + show(start) + " " + show(len) + " > ";
    if (T *values = region<T>(event + ledger.place(buffer), enter(env, array), start, len))
        std::copy_n(values, len, buffer);
}

template <class A, class T>
void JNICALL setRegion(JNIEnv *env, A array, jsize start, jsize len, const T *buffer) {
    auto each = [](T value) { return show(value); };
    std::string data = listOf(buffer, static_cast<std::size_t>(std::max(len, 0)), each);
    std::string event = "set " + show(array) + " " + show(start) + " " + data;
    if (T *values = region<T>(event, enter(env, array), start, len))
        std::copy_n(buffer, len, values);
}

const char *JNICALL getChars(JNIEnv *env, jstring text, jboolean *isCopy) {
    EXPECT_EQ(isCopy, nullptr);
    return java.fetch(enter(env, text));
}

void JNICALL releaseChars(JNIEnv *env, jstring text, const char *characters) {
    auto found = java.fetched.find(characters);
    ASSERT_TRUE(found != java.fetched.end() && found->second == enter(env, text))
        << show(text) << " was released twice, or with another text's characters";
    ledger.note("release " + show(text));
    java.fetched.erase(found);
    delete[] characters;
}

jstring JNICALL newString(JNIEnv *env, const char *text) {
    enter(env);
    Object *string = java.make(text ? '"' + std::string(text) + '"' : "null");
    ledger.note("new " + string->name);
    string->locals = 1;
    return static_cast<jstring>(string->reference());
}

jsize JNICALL getLength(JNIEnv *env, jarray array) {
    ledger.note("length " + show(array));
    return std::visit([](const auto &values) { return static_cast<jsize>(values.size()); },
                      enter(env, array)->value);
}

Object *&elementOf(Object *array, jsize index) {
    return std::get<std::vector<Object *>>(array->value).at(static_cast<std::size_t>(index));
}

jobject JNICALL getElement(JNIEnv *env, jobjectArray array, jsize index) {
    ledger.note("element " + show(array) + " " + show(index));
    Object *element = elementOf(enter(env, array), index);
    if (element)
        ++element->locals;
    return element ? element->reference() : nullptr;
}

void JNICALL setElement(JNIEnv *env, jobjectArray array, jsize index, jobject value) {
    ledger.note("store " + show(array) + " " + show(index) + " " + show(value));
    elementOf(enter(env, array), index) = reinterpret_cast<Object *>(value);
}

void JNICALL dropLocal(JNIEnv *env, jobject reference) {
    Object *object = enter(env, reference);
    ledger.note("drop " + show(object));
    if (object && --object->locals < 0)
        ADD_FAILURE() << object->name << " is no local reference, or was dropped before";
}

Object *standIn(const std::string &what, Object *target) {
    ledger.note(what + " " + target->name);
    Object *made = java.make(what + " of " + target->name);
    made->target = target;
    return made;
}

jobject JNICALL newGlobal(JNIEnv *env, jobject reference) {
    if (java.noGlobal) {
        ledger.note("global " + show(reference) + " fails");
        return nullptr;
    }
    ++java.globals;
    return standIn("global", enter(env, reference))->reference();
}

void JNICALL dropGlobal(JNIEnv *env, jobject reference) {
    Object *global = enter(env, reference);
    ASSERT_TRUE(global && global->target) << "no global reference, or one deleted before";
    ledger.note("unglobal " + global->target->name);
    global->target = nullptr;
    --java.globals;
}

// The class of an object is a local reference that may be kept until the method returns.
jclass JNICALL getClass(JNIEnv *env, jobject reference) {
    Object *type = standIn("class", enter(env, reference));
    type->locals = 1;
    return static_cast<jclass>(type->reference());
}

template <class Id>
Id member(JNIEnv *env, const char *kind, const char *name, const char *signature) {
    static std::set<std::string> names;
    enter(env);
    bool found = name != java.missing;
    ledger.note(std::string(kind) + name + " " + signature + (found ? "" : " fails"));
    const char *id = names.insert(name).first->c_str();
    return found ? reinterpret_cast<Id>(const_cast<char *>(id)) : nullptr;
}

jfieldID JNICALL getField(JNIEnv *env, jclass, const char *name, const char *signature) {
    return member<jfieldID>(env, "field ", name, signature);
}

jmethodID JNICALL getMethod(JNIEnv *env, jclass, const char *name, const char *signature) {
    return member<jmethodID>(env, "method ", name, signature);
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
    enter(env);
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
    functions.SetObjectField = setField<jobject>;
    functions.CallVoidMethod = callVoid;
    functions.CallVoidMethodV = callVoidV;
    functions.NewGlobalRef = newGlobal;
    functions.DeleteGlobalRef = dropGlobal;
    functions.DeleteLocalRef = dropLocal;
    functions.GetJavaVM = getVM;
    fillUnexpected(invocations);
    invocations.AttachCurrentThread = attach;
    invocations.DetachCurrentThread = detach;
    env.functions = attachedEnv.functions = &functions;
    vm.functions = &invocations;
}

void Java::begin() {
    objects.clear();
    missing.clear();
    noVM = noGlobal = attachFails = detachFails = false;
    onUpcall = nullptr;
    ownEnv = &env;
    self = make("self");
}

void Java::end() {
    for (const auto &[characters, text] : fetched) {
        ADD_FAILURE() << text->name << " was fetched and not released";
        delete[] characters;
    }
    for (const Object &object : objects)
        if (object.locals > 0 && !object.target)
            ADD_FAILURE() << "a local reference to " << object.name << " is left";
    EXPECT_EQ(globals, 0) << "global references are left";
    fetched.clear();
    globals = 0;
}

Object *Java::make(const std::string &name, Value value) {
    objects.push_back({name, std::move(value)});
    return &objects.back();
}

const char *Java::fetch(Object *text) {
    bool fails = ledger.fetchFails();
    ledger.note("fetch " + show(text) + (fails ? " fails" : ""));
    EXPECT_TRUE(text) << "a null string crashes the virtual machine";
    if (fails || !text)
        return nullptr;
    char *copy = new char[text->name.size() + 1];
    std::memcpy(copy, text->name.c_str(), text->name.size() + 1);
    fetched[copy] = text;
    return copy;
}
