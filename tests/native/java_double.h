// The virtual machine's double: a JNIEnv and a JavaVM whose tables hold only what the bridge may
// call; anything else ends the test program. References and fetched texts are counted.
#pragma once

#include <jni.h>

#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <variant>
#include <vector>

struct Object;
using Value =
    std::variant<std::monostate, std::vector<jint>, std::vector<jdouble>, std::vector<jchar>,
                 std::vector<jlong>, std::vector<Object *>, std::string>;

struct Object {
    std::string name; // as it stands in the events
    Value value;
    // An array of any length without elements: region calls are noted, not performed.
    bool boundless = false;
    int locals = 0;           // local references that the bridge holds
    Object *target = nullptr; // of a global reference
    jobject reference() { return reinterpret_cast<jobject>(this); }
};

class Java {
  public:
    Java();
    void begin();
    // Complains about references and texts that weren't given back.
    void end();

    Object *make(const std::string &name, Value value = {});
    JNIEnv *env() { return &mainEnv; }
    Object *self() { return receiver; }

    std::string missing; // the member that the class doesn't have
    bool noVM = false, attachFails = false, detachFails = false;
    std::function<void()> onUpcall; // what the Java method does
    bool outOfBounds = false;       // an exception is pending

    // For the table's functions.
    void *member(const std::string &kind, const char *name, const char *signature);
    const char *fetch(Object *text);
    void release(Object *text, const char *characters);
    jobject addGlobal(Object *target);
    void dropGlobal(Object *global);
    JNIEnv mainEnv{}, attachedEnv{};
    JavaVM vm{};

  private:
    JNINativeInterface_ functions;
    JNIInvokeInterface_ invocations;
    std::deque<Object> objects;
    std::map<const char *, Object *> fetched;
    int globals = 0;
    Object *receiver = nullptr;
};

extern Java java;
