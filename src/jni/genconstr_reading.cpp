// General constraints, reading back: first the scalars, each for the slot that wants it; then,
// where arrays are given, the arrays, in the size that the first answer told.
#include "sparse.h"

namespace {

using PairReader = int(KVXmodel *, int, int *, int *, double *);
using ListReader = int(KVXmodel *, int, int *, int *, int *, double *);

// Kinds that have no number are read like those that have one.
template <int (*reader)(KVXmodel *, int, int *, int *)>
int pairWithoutNumber(KVXmodel *model, int genconstr, int *first, int *second, double *) {
    return reader(model, genconstr, first, second);
}
template <int (*reader)(KVXmodel *, int, int *, int *, int *)>
int listWithoutNumber(KVXmodel *model, int genconstr, int *resvar, int *nvars, int *vars,
                      double *) {
    return reader(model, genconstr, resvar, nvars, vars);
}

jint readPair(JNIEnv *jni, PairReader *reader, jlong model, jint genconstr, jintArray var1,
              jintArray var2, jdoubleArray dval = nullptr) {
    Call call(jni);
    jint first = 0, second = 0;
    jdouble number = 0;
    call.invoke(reader, asModel(model), genconstr, &first, &second, &number);
    call.offer(var1, &first);
    call.offer(var2, &second);
    call.offer(dval, &number);
    return call.status();
}

jint readList(JNIEnv *jni, ListReader *reader, jlong model, jint genconstr, jintArray resvar,
              jintArray nvars, jintArray vars, jdoubleArray dval = nullptr) {
    Call call(jni);
    Scratch<jint> operands(call);
    jint result = 0, count = 0;
    jdouble number = 0;
    call.invoke(reader, asModel(model), genconstr, &result, &count, nullptr, &number);
    call.offer(resvar, &result);
    call.offer(nvars, &count);
    call.offer(dval, &number);
    if (vars != nullptr) {
        operands.allocate(count);
        call.invoke(reader, asModel(model), genconstr, nullptr, nullptr, operands, nullptr);
        operands.write(vars, count);
    }
    return call.status();
}

} // namespace

#define PAIR_READER(method, reader)                                                                \
    JNI_METHOD(jint, KorvexJni, method)                                                            \
    (JNIEnv * jni, jclass, jlong model, jint genconstr, jintArray var1, jintArray var2) {          \
        return readPair(jni, pairWithoutNumber<reader>, model, genconstr, var1, var2);             \
    }

#define PAIR_WITH_DOUBLE_READER(method, reader)                                                    \
    JNI_METHOD(jint, KorvexJni, method)                                                            \
    (JNIEnv * jni, jclass, jlong model, jint genconstr, jintArray var1, jintArray var2,            \
     jdoubleArray dval) {                                                                          \
        return readPair(jni, reader, model, genconstr, var1, var2, dval);                          \
    }

#define LIST_READER(method, reader)                                                                \
    JNI_METHOD(jint, KorvexJni, method)                                                            \
    (JNIEnv * jni, jclass, jlong model, jint genconstr, jintArray resvar, jintArray nvars,         \
     jintArray vars) {                                                                             \
        return readList(jni, listWithoutNumber<reader>, model, genconstr, resvar, nvars, vars);    \
    }

#define LIST_WITH_DOUBLE_READER(method, reader)                                                    \
    JNI_METHOD(jint, KorvexJni, method)                                                            \
    (JNIEnv * jni, jclass, jlong model, jint genconstr, jintArray resvar, jintArray nvars,         \
     jintArray vars, jdoubleArray dval) {                                                          \
        return readList(jni, reader, model, genconstr, resvar, nvars, vars, dval);                 \
    }

LIST_WITH_DOUBLE_READER(getgenconstrmax, KVXgetgenconstrMax)
LIST_WITH_DOUBLE_READER(getgenconstrmin, KVXgetgenconstrMin)
LIST_WITH_DOUBLE_READER(getgenconstrnorm, KVXgetgenconstrNorm)
LIST_READER(getgenconstrand, KVXgetgenconstrAnd)
LIST_READER(getgenconstror, KVXgetgenconstrOr)
PAIR_READER(getgenconstrabs, KVXgetgenconstrAbs)
PAIR_READER(getgenconstrexp, KVXgetgenconstrExp)
PAIR_READER(getgenconstrlog, KVXgetgenconstrLog)
PAIR_READER(getgenconstrsin, KVXgetgenconstrSin)
PAIR_READER(getgenconstrcos, KVXgetgenconstrCos)
PAIR_READER(getgenconstrtan, KVXgetgenconstrTan)
PAIR_READER(getgenconstrlogistic, KVXgetgenconstrLogistic)
PAIR_WITH_DOUBLE_READER(getgenconstrexpa, KVXgetgenconstrExpA)
PAIR_WITH_DOUBLE_READER(getgenconstrloga, KVXgetgenconstrLogA)
PAIR_WITH_DOUBLE_READER(getgenconstrpow, KVXgetgenconstrPow)

JNI_METHOD(jint, KorvexJni, getgenconstrpwl)
(JNIEnv *jni, jclass, jlong model, jint genconstr, jintArray var1, jintArray var2, jintArray npts,
 jdoubleArray x, jdoubleArray y) {
    Call call(jni);
    Parallel<jdouble, jdouble> points(call);
    auto &[abscissae, ordinates] = points.buffers;
    jint first = 0, second = 0, count = 0;
    call.invoke(KVXgetgenconstrPWL, asModel(model), genconstr, &first, &second, &count, nullptr,
                nullptr);
    call.offer(var1, &first);
    call.offer(var2, &second);
    call.offer(npts, &count);
    if (points.fit(count, x, y)) {
        points.allocate(count);
        call.invoke(KVXgetgenconstrPWL, asModel(model), genconstr, nullptr, nullptr, nullptr,
                    abscissae, ordinates);
        points.write(count, x, y);
    }
    return call.status();
}

JNI_METHOD(jint, KorvexJni, getgenconstrpoly)
(JNIEnv *jni, jclass, jlong model, jint genconstr, jintArray var1, jintArray var2, jintArray ncoef,
 jdoubleArray coefs) {
    Call call(jni);
    Parallel<jdouble> polynomial(call);
    auto &[coefficients] = polynomial.buffers;
    jint first = 0, second = 0, count = 0;
    call.invoke(KVXgetgenconstrPoly, asModel(model), genconstr, &first, &second, &count, nullptr);
    call.offer(var1, &first);
    call.offer(var2, &second);
    call.offer(ncoef, &count);
    if (polynomial.fit(count, coefs)) {
        polynomial.allocate(count);
        call.invoke(KVXgetgenconstrPoly, asModel(model), genconstr, nullptr, nullptr, nullptr,
                    coefficients);
        polynomial.write(count, coefs);
    }
    return call.status();
}

JNI_METHOD(jint, KorvexJni, getgenconstrnl)
(JNIEnv *jni, jclass, jlong model, jint genconstr, jintArray resvar, jintArray nlcount,
 jintArray nlint1, jdoubleArray nldbl, jintArray nlint2) {
    Call call(jni);
    Parallel<jint, jdouble, jint> nodes(call);
    auto &[opcodes, data, parents] = nodes.buffers;
    jint result = 0, count = 0;
    call.invoke(KVXgetgenconstrNL, asModel(model), genconstr, &result, &count, nullptr, nullptr,
                nullptr);
    call.offer(resvar, &result);
    call.offer(nlcount, &count);
    if (nodes.fit(count, nlint1, nldbl, nlint2)) {
        nodes.allocate(count);
        call.invoke(KVXgetgenconstrNL, asModel(model), genconstr, nullptr, nullptr, opcodes, data,
                    parents);
        nodes.write(count, nlint1, nldbl, nlint2);
    }
    return call.status();
}

// The two arrays are read independently, in a call each.
JNI_METHOD(jint, KorvexJni, getgenconstrindicator)
(JNIEnv *jni, jclass, jlong handle, jint genconstr, jintArray binvar, jintArray binval,
 jintArray numlnz, jintArray lind, jdoubleArray lval, jcharArray senseslot, jdoubleArray rhsslot) {
    KVXmodel *const model = asModel(handle);
    Call call(jni);
    Scratch<jint> indices(call);
    Scratch<jdouble> coefficients(call);
    jint variable = 0, value = 0, count = 0;
    char sense = 0;
    jdouble rhs = 0;
    call.invoke(KVXgetgenconstrIndicator, model, genconstr, &variable, &value, &count, nullptr,
                nullptr, &sense, &rhs);
    call.offer(binvar, &variable);
    call.offer(binval, &value);
    call.offer(numlnz, &count);
    call.offer(senseslot, &sense);
    call.offer(rhsslot, &rhs);
    if (lind != nullptr) {
        indices.allocate(count);
        call.invoke(KVXgetgenconstrIndicator, model, genconstr, nullptr, nullptr, nullptr, indices,
                    nullptr, nullptr, nullptr);
        indices.write(lind, count);
    }
    if (lval != nullptr) {
        coefficients.allocate(count);
        call.invoke(KVXgetgenconstrIndicator, model, genconstr, nullptr, nullptr, nullptr, nullptr,
                    coefficients, nullptr, nullptr);
        coefficients.write(lval, count);
    }
    return call.status();
}
