// General constraints, adding: nineteen kinds in nine shapes. Arrays are copied before any text is
// fetched.
#include "sparse.h"

namespace {

// An operand list, with or without a number.
template <class... Number>
jint addOverList(JNIEnv *jni,
                 int (*adder)(KVXmodel *, const char *, int, int, const int *, Number...),
                 jlong model, jstring name, jint resvar, jint nvars, jintArray vars,
                 Number... number) {
    Call call(jni);
    Scratch<jint> operands(call);
    operands.take(vars, nvars);
    const char *nameText = call.fetch(name);
    call.invoke(adder, asModel(model), nameText, resvar, nvars, operands, number...);
    return call.status();
}

// A function of one variable, with or without a number.
template <class... Number>
jint addFunction(JNIEnv *jni,
                 int (*adder)(KVXmodel *, const char *, int, int, const char *, Number...),
                 jlong model, jstring name, jint var1, jint var2, jstring options,
                 Number... number) {
    Call call(jni);
    const char *nameText = call.fetch(name);
    const char *optionText = call.fetch(options);
    call.invoke(adder, asModel(model), nameText, var1, var2, optionText, number...);
    return call.status();
}

} // namespace

#define LIST_ADDER(method, adder)                                                                  \
    JNI_METHOD(jint, KorvexJni, method)                                                            \
    (JNIEnv * jni, jclass, jlong model, jstring name, jint resvar, jint nvars, jintArray vars) {   \
        return addOverList(jni, adder, model, name, resvar, nvars, vars);                          \
    }

#define LIST_WITH_DOUBLE_ADDER(method, adder)                                                      \
    JNI_METHOD(jint, KorvexJni, method)                                                            \
    (JNIEnv * jni, jclass, jlong model, jstring name, jint resvar, jint nvars, jintArray vars,     \
     jdouble dval) {                                                                               \
        return addOverList(jni, adder, model, name, resvar, nvars, vars, dval);                    \
    }

#define FUNCTION_ADDER(method, adder)                                                              \
    JNI_METHOD(jint, KorvexJni, method)                                                            \
    (JNIEnv * jni, jclass, jlong model, jstring name, jint var1, jint var2, jstring options) {     \
        return addFunction(jni, adder, model, name, var1, var2, options);                          \
    }

#define FUNCTION_WITH_DOUBLE_ADDER(method, adder)                                                  \
    JNI_METHOD(jint, KorvexJni, method)                                                            \
    (JNIEnv * jni, jclass, jlong model, jstring name, jint var1, jint var2, jstring options,       \
     jdouble dval) {                                                                               \
        return addFunction(jni, adder, model, name, var1, var2, options, dval);                    \
    }

LIST_WITH_DOUBLE_ADDER(addgenconstrmax, KVXaddgenconstrMax)
LIST_WITH_DOUBLE_ADDER(addgenconstrmin, KVXaddgenconstrMin)
LIST_WITH_DOUBLE_ADDER(addgenconstrnorm, KVXaddgenconstrNorm)
LIST_ADDER(addgenconstrand, KVXaddgenconstrAnd)
LIST_ADDER(addgenconstror, KVXaddgenconstrOr)
FUNCTION_ADDER(addgenconstrexp, KVXaddgenconstrExp)
FUNCTION_ADDER(addgenconstrlog, KVXaddgenconstrLog)
FUNCTION_ADDER(addgenconstrsin, KVXaddgenconstrSin)
FUNCTION_ADDER(addgenconstrcos, KVXaddgenconstrCos)
FUNCTION_ADDER(addgenconstrtan, KVXaddgenconstrTan)
FUNCTION_ADDER(addgenconstrlogistic, KVXaddgenconstrLogistic)
FUNCTION_WITH_DOUBLE_ADDER(addgenconstrexpa, KVXaddgenconstrExpA)
FUNCTION_WITH_DOUBLE_ADDER(addgenconstrloga, KVXaddgenconstrLogA)
FUNCTION_WITH_DOUBLE_ADDER(addgenconstrpow, KVXaddgenconstrPow)

JNI_METHOD(jint, KorvexJni, addgenconstrabs)
(JNIEnv *jni, jclass, jlong model, jstring name, jint var1, jint var2) {
    Call call(jni);
    const char *nameText = call.fetch(name);
    call.invoke(KVXaddgenconstrAbs, asModel(model), nameText, var1, var2);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, addgenconstrpwl)
(JNIEnv *jni, jclass, jlong model, jstring name, jint var1, jint var2, jint npts, jdoubleArray x,
 jdoubleArray y) {
    Call call(jni);
    Parallel<jdouble, jdouble> points(call);
    auto &[abscissae, ordinates] = points.buffers;
    points.take(npts, x, y);
    const char *nameText = call.fetch(name);
    call.invoke(KVXaddgenconstrPWL, asModel(model), nameText, var1, var2, npts, abscissae,
                ordinates);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, addgenconstrpoly)
(JNIEnv *jni, jclass, jlong model, jstring name, jint var1, jint var2, jint ncoef,
 jdoubleArray coefs, jstring options) {
    Call call(jni);
    Scratch<jdouble> coefficients(call);
    coefficients.take(coefs, ncoef);
    const char *nameText = call.fetch(name);
    const char *optionText = call.fetch(options);
    call.invoke(KVXaddgenconstrPoly, asModel(model), nameText, var1, var2, ncoef, coefficients,
                optionText);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, addgenconstrindicator)
(JNIEnv *jni, jclass, jlong model, jstring name, jint binvar, jint binval, jint numlnz,
 jintArray lind, jdoubleArray lval, jchar sense, jdouble rhs) {
    Call call(jni);
    Parallel<jint, jdouble> terms(call);
    auto &[indices, coefficients] = terms.buffers;
    terms.take(numlnz, lind, lval);
    const char *nameText = call.fetch(name);
    call.invoke(KVXaddgenconstrIndicator, asModel(model), nameText, binvar, binval, numlnz, indices,
                coefficients, narrow(sense), rhs);
    return call.status();
}

JNI_METHOD(jint, KorvexJni, addgenconstrnl)
(JNIEnv *jni, jclass, jlong model, jstring name, jint resvar, jint nlcount, jintArray nlint1,
 jdoubleArray nldbl, jintArray nlint2) {
    Call call(jni);
    Parallel<jint, jdouble, jint> nodes(call);
    auto &[opcodes, data, parents] = nodes.buffers;
    nodes.take(nlcount, nlint1, nldbl, nlint2);
    const char *nameText = call.fetch(name);
    call.invoke(KVXaddgenconstrNL, asModel(model), nameText, resvar, nlcount, opcodes, data,
                parents);
    return call.status();
}
