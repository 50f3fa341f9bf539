// The virtual machine's double: a JNIEnv and a JavaVM whose tables hold only what the bridge may
// call; anything else ends the test program. References and fetched texts are counted.
#pragma once

#include <jni.h>

#include <deque>
#include <functional>
#include <map>
#include <string>
#include <variant>
#include <vector>

struct Object;
using Value = std::variant<std::vector<jint>, std::vector<jdouble>, std::vector<jchar>,
                           std::vector<jlong>, std::vector<Object *>, std::string>;

struct Object {
    std::string name; // as it stands in the events
    Value value;
    bool boundless = false;   // an array without elements: region calls are noted, not performed
    int locals = 0;           // local references that the bridge holds
    Object *target = nullptr; // what a global reference or a class stands for
    jobject reference() { return reinterpret_cast<jobject>(this); }
};

struct Java {
    Java();
    void begin();
    // Complains about references and texts that weren't given back.
    void end();
    Object *make(const std::string &name, Value value = {});
    // Every fetch is a heap copy of its own, so that the sanitizer sees a use after the release.
    const char *fetch(Object *text);

    JNINativeInterface_ functions;
    JNIInvokeInterface_ invocations;
    JNIEnv env{}, attachedEnv{};
    JavaVM vm{};
    Object *self = nullptr;

    std::string missing; // the member that the class doesn't have
    bool noVM = false, noGlobal = false, attachFails = false, detachFails = false;
    std::function<void()> onUpcall; // what the Java method does

    std::deque<Object> objects;
    std::map<const char *, Object *> fetched;
    int globals = 0;
};

extern Java java;
