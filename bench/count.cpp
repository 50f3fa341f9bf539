// The instructions of six calls, through the bridge and on the floor, for `valgrind
// --tool=callgrind`: a dump each, named after the call. The virtual machine is a table of functions
// that copy and do nothing else, so that the counts are the same on every machine.
#include "Floor.h"
#include "com_korvex_KVXModel.h"
#include "com_korvex_KorvexJni.h"

#include <cstring>
#include <string>
#include <vector>

#include <valgrind/callgrind.h>

namespace {

// An array is its first element's address, a text its characters, an ID anything.
template <class Array, class Element>
void get(JNIEnv *, Array array, jsize start, jsize len, Element *buffer) {
    memcpy(buffer, reinterpret_cast<Element *>(array) + start,
           static_cast<size_t>(len) * sizeof(Element));
}
template <class Array, class Element>
void set(JNIEnv *, Array array, jsize start, jsize len, const Element *buffer) {
    memcpy(reinterpret_cast<Element *>(array) + start, buffer,
           static_cast<size_t>(len) * sizeof(Element));
}
template <class Id>
Id find(JNIEnv *, jclass, const char *name, const char *) {
    return reinterpret_cast<Id>(const_cast<char *>(name));
}

JNINativeInterface_ table() {
    JNINativeInterface_ jni = {};
    jni.GetStringUTFChars = [](JNIEnv *, jstring string, jboolean *) {
        return reinterpret_cast<const char *>(string);
    };
    jni.ReleaseStringUTFChars = [](JNIEnv *, jstring, const char *) {};
    jni.GetIntArrayRegion = get<jintArray, jint>;
    jni.GetDoubleArrayRegion = get<jdoubleArray, jdouble>;
    jni.GetCharArrayRegion = get<jcharArray, jchar>;
    jni.SetIntArrayRegion = set<jintArray, jint>;
    jni.GetObjectArrayElement = [](JNIEnv *, jobjectArray array, jsize index) {
        return reinterpret_cast<jobject *>(array)[index];
    };
    jni.DeleteLocalRef = [](JNIEnv *, jobject) {};
    jni.GetObjectClass = [](JNIEnv *, jobject object) { return static_cast<jclass>(object); };
    jni.NewGlobalRef = [](JNIEnv *, jobject object) { return object; };
    jni.DeleteGlobalRef = [](JNIEnv *, jobject) {};
    jni.GetJavaVM = [](JNIEnv *, JavaVM **) -> jint { return JNI_OK; };
    jni.GetFieldID = find<jfieldID>;
    jni.GetMethodID = find<jmethodID>;
    jni.SetLongField = [](JNIEnv *, jobject, jfieldID, jlong) {};
    jni.SetIntField = [](JNIEnv *, jobject, jfieldID, jint) {};
    jni.CallVoidMethodV = [](JNIEnv *, jobject, jmethodID, va_list) {};
    return jni;
}

template <class Array, class Element>
Array array(std::vector<Element> &elements) {
    return reinterpret_cast<Array>(elements.data());
}

// One call to warm up, which binds symbols and fills the allocator's caches, and one to count.
template <class Function, class... Arguments>
void count(const std::string &name, Function *function, Arguments... arguments) {
    function(arguments...);
    CALLGRIND_ZERO_STATS;
    function(arguments...);
    CALLGRIND_DUMP_STATS_AT(name.c_str());
}

template <class Function, class... Arguments>
void countBoth(const std::string &name, Function *bridge, Function *floor, Arguments... arguments) {
    count(name + " bridge", bridge, arguments...);
    count(name + " floor", floor, arguments...);
}

void countAdding(const std::string &name, JNIEnv *jni, jint numvars, jint numnz) {
    const auto vars = static_cast<size_t>(numvars), nonzeros = static_cast<size_t>(numnz);
    std::vector<jint> ints(nonzeros);
    std::vector<jdouble> doubles(nonzeros);
    std::vector<jchar> types(vars);
    std::vector<const char *> names(vars, "x");
    const auto reals = array<jdoubleArray>(doubles);
    countBoth(name, Java_com_korvex_KorvexJni_addvars, Java_Floor_addvars, jni, nullptr, jlong{1},
              numvars, numnz, array<jintArray>(ints), array<jintArray>(ints), reals, reals, reals,
              reals, array<jcharArray>(types), array<jobjectArray>(names));
}

} // namespace

int main() {
    const JNINativeInterface_ functions = table();
    JNIEnv env = {&functions};
    JNIEnv *const jni = &env;
    std::vector<jint> slot(1);
    char text[] = "Threads", self[] = "self";
    const auto name = reinterpret_cast<jstring>(text);
    const auto value = array<jintArray>(slot);
    const auto object = reinterpret_cast<jobject>(self);

    count("attribute bridge", Java_com_korvex_KorvexJni_getintattrlist, jni, nullptr, jlong{1},
          name, 0, -1, nullptr, value);
    count("attribute floor", Java_Floor_getintattr, jni, nullptr, jlong{1}, name, value);
    countBoth("parameter", Java_com_korvex_KorvexJni_setintparam, Java_Floor_setintparam, jni,
              nullptr, jlong{1}, name, 1);
    countAdding("addvars5", jni, 1, 5);
    countAdding("addvars1000", jni, 200, 1000);
    countBoth("updatemodel", Java_com_korvex_KorvexJni_updatemodel, Java_Floor_updatemodel, jni,
              nullptr, jlong{1});
    // Binding and releasing belong to the run: what an upcall costs is what hundred more add.
    for (const jlong upcalls : {0, 100}) {
        const std::string run = upcalls == 0 ? "run" : "run100";
        count(run + " bridge", Java_com_korvex_KVXModel_jnioptimize, jni, object, upcalls, 1, 0,
              nullptr, nullptr, 0);
        count(run + " floor", Java_Floor_optimize, jni, object, upcalls);
    }
}
