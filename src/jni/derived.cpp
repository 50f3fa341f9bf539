// Models made from other models; and models fixed or relaxed for feasibility in place.
#include "marshal.h"

namespace {

using Maker = int(KVXmodel *, KVXmodel **);

jint derive(JNIEnv *jni, Maker *maker, jlong model, jlongArray modelslot) {
    Call call(jni);
    KVXmodel *made = nullptr;
    call.invoke(maker, asModel(model), &made);
    call.writeHandle(modelslot, made);
    return call.status();
}

} // namespace

JNI_METHOD(jint, KorvexJni, copymodel)
(JNIEnv *jni, jclass, jlong model, jlong targetenv, jlongArray modelslot) {
    Call call(jni);
    KVXmodel *made = nullptr;
    call.invoke(KVXcopymodeltoenv, asModel(model), asEnv(targetenv), &made);
    call.writeHandle(modelslot, made);
    return call.status();
}

#define DERIVED_MODEL(method, maker)                                                               \
    JNI_METHOD(jint, KorvexJni, method)(JNIEnv * jni, jclass, jlong model, jlongArray modelslot) { \
        return derive(jni, maker, model, modelslot);                                               \
    }

DERIVED_MODEL(relaxmodel, KVXrelaxmodel)
DERIVED_MODEL(fixedmodel, KVXfixmodel)
DERIVED_MODEL(presolvemodel, KVXpresolvemodel)
DERIVED_MODEL(dualmodel, KVXdualmodel)
DERIVED_MODEL(feasibility, KVXfeasibility)
DERIVED_MODEL(linearize, KVXlinearizemodel)
DERIVED_MODEL(singlescenariomodel, KVXsinglescenariomodel)

JNI_METHOD(jint, KVXModel, jniconverttofixed)(JNIEnv *, jobject, jlong model) {
    return KVXconverttofixed(asModel(model));
}

JNI_METHOD(jint, KorvexJni, feasrelax)
(JNIEnv *jni, jclass, jlong handle, jint ival1, jint ival2, jdoubleArray varpen1,
 jdoubleArray varpen2, jdoubleArray conpen, jdoubleArray resultslot) {
    KVXmodel *const model = asModel(handle);
    Call call(jni);
    Scratch<jdouble> first(call), second(call), third(call);
    jint numVars = 0, numConstrs = 0;
    jdouble result = 0;
    call.invoke(KVXgetintattr, model, "NumVars", &numVars);
    call.invoke(KVXgetintattr, model, "NumConstrs", &numConstrs);
    if (varpen1 != nullptr)
        first.take(varpen1, numVars);
    if (varpen2 != nullptr)
        second.take(varpen2, numVars);
    if (conpen != nullptr)
        third.take(conpen, numConstrs);
    call.invoke(KVXfeasrelax, model, ival1, ival2, first, second, third, &result);
    call.write(resultslot, &result);
    return call.status();
}
