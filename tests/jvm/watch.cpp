// Preloaded, stands between the bridge and the solver while the Java tests run, and watches what
// korvex.h asks of the caller: what was handed out is given back once, a log record before its
// environment and an environment after its models, and one thread at a time uses an object.
#include "korvex.h"

#include <dlfcn.h>
#include <jni.h>

#include <cstdlib>
#include <iostream>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <type_traits>

namespace {
struct Object {
    std::string kind;
    const void *environment; // that it was made in
    const void *log = nullptr;
};

struct Use {
    std::thread::id thread;
    int depth;
    std::string function;
};

std::mutex mutex;
std::map<const void *, Object> objects;
std::map<const void *, Use> uses;
std::string complaints;

void complain(const std::string &text) {
    std::cerr << "Watch: " << text << std::endl;
    complaints += text + "\n";
}

template <class T>
constexpr const char *kindOf = "";
template <>
constexpr const char *kindOf<KVXenv> = "environment";
template <>
constexpr const char *kindOf<KVXmodel> = "model";
template <>
constexpr const char *kindOf<KVXbatch> = "batch";

// What any thread may call at any moment, and what starts and awaits a run in the background.
bool isFree(std::string_view function) {
    static const std::set<std::string_view> names{
        "KVXterminate",     "KVXmsg", "KVXgetlogcallbackfuncenv", "KVXsetlogcallbackfuncenv",
        "KVXoptimizeasync", "KVXsync"};
    return names.count(function) > 0;
}

void begin(const std::string &function, const void *object, const char *kind) {
    std::lock_guard lock(mutex);
    if (kind != std::string("environment") && !objects.count(object)) // A model has one, too.
        complain(function + " uses a " + kind + " that isn't there");
    auto [use, isFirst] = uses.insert({object, {std::this_thread::get_id(), 0, function}});
    if (!isFirst && use->second.thread != std::this_thread::get_id())
        complain(function + " uses a " + kind + " during " + use->second.function +
                 " in another thread");
    use->second.depth++;
}

void end(const void *object) {
    std::lock_guard lock(mutex);
    auto use = uses.find(object);
    if (use != uses.end() && --use->second.depth == 0)
        uses.erase(use);
}

void add(const void *object, const char *kind, const void *environment) {
    std::lock_guard lock(mutex);
    if (!objects.insert({object, {kind, environment}}).second)
        complain(std::string(kind) + " made where another is");
}

void remove(const void *object, const char *kind) {
    std::lock_guard lock(mutex);
    auto found = objects.find(object);
    if (found == objects.end())
        return complain(std::string(kind) + " freed that isn't there");
    if (found->second.log)
        complain("environment freed while a log record is bound to it");
    for (const auto &[other, made] : objects)
        if (made.environment == object)
            complain("environment freed before its " + made.kind);
    objects.erase(found);
}

const void *environmentOf(const void *object) {
    std::lock_guard lock(mutex);
    auto found = objects.find(object);
    return found == objects.end() ? nullptr : found->second.environment;
}

// One call: what it uses, and what it makes in which environment.
struct Call {
    template <class T>
    void enter(T *object) {
        if constexpr (kindOf<T>[0] != 0) {
            if (std::is_same_v<T, KVXenv>)
                environment = object;
            else if (!environment)
                environment = environmentOf(object);
            if (object && !isFree(name))
                begin(name, object, kindOf<T>);
        }
    }
    template <class T>
    void leave(T *object) {
        if constexpr (kindOf<T>[0] != 0)
            if (object && !isFree(name))
                end(object);
    }
    template <class T>
    void leave(T **made) {
        if constexpr (kindOf<T>[0] != 0)
            if (made && *made)
                add(*made, kindOf<T>, std::is_same_v<T, KVXenv> ? nullptr : environment);
    }
    template <class T>
    void enter(T) {}
    template <class T>
    void leave(T) {}

    std::string name;
    const void *environment = nullptr;
};

template <class T>
void forget(T *object) {
    remove(object, kindOf<T>);
}
template <class... A>
void forget(A...) {}

void bind(KVXenv *env, KVXlogcallback, void *record) {
    std::lock_guard lock(mutex);
    auto found = objects.find(env);
    if (found != objects.end())
        found->second.log = record;
}
template <class... A>
void bind(A...) {}

// Whether an address lies in the solver, which calls some of its functions itself.
bool isSolvers(const void *address) {
    Dl_info place;
    return dladdr(address, &place) &&
           std::string_view(place.dli_fname).find("libkorvex130") != std::string_view::npos;
}

template <class Name, class Function>
struct Double;
template <class Name, class R, class... A>
struct Double<Name, R(A...)> {
    static R call(A... arguments) {
        static void *const solver = dlopen("libkorvex130.so", RTLD_NOW | RTLD_NOLOAD);
        static const auto real = reinterpret_cast<R (*)(A...)>(dlsym(solver, Name::text));
        if (isSolvers(__builtin_return_address(0)))
            return real(arguments...);
        const std::string_view name = Name::text;
        Call call{Name::text};
        (call.enter(arguments), ...);
        if (name == "KVXfreeenv" || name == "KVXfreemodel" || name == "KVXfreebatch")
            forget(arguments...);
        if constexpr (std::is_void_v<R>) {
            real(arguments...);
            (call.leave(arguments), ...);
        } else {
            R result = real(arguments...);
            (call.leave(arguments), ...);
            if (name == "KVXsetlogcallbackfuncenv")
                bind(arguments...);
            return result;
        }
    }
};
} // namespace

#include "solver_functions.h"

// What was found since the last time, and what is left; what is left is forgotten.
extern "C" JNIEXPORT jstring JNICALL Java_com_korvex_Watch_findings(JNIEnv *jni, jclass);
jstring Java_com_korvex_Watch_findings(JNIEnv *jni, jclass) {
    std::lock_guard lock(mutex);
    std::string text;
    text.swap(complaints);
    for (const auto &[object, left] : objects)
        text += left.kind + " left\n";
    objects.clear();
    return jni->NewStringUTF(text.c_str());
}
