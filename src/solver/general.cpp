// General constraints: adding and reading back the kinds that can be solved, refusing the others.
#include "input.h"

#include <cmath>

using namespace korvex;

namespace {

// The arguments that the kinds have; x are the coefficients of an indicator, too.
int add(KVXmodel *model, const char *name, int kind, const char *kindName, int first, int second,
        int count = 0, const int *vars = nullptr, double number = 0, const double *x = nullptr,
        const double *y = nullptr, char sense = 0) {
    return guarded(model, [&] {
        GeneralConstraint constr;
        constr.name = readName(name);
        if (kind > KVX_GENCONSTR_PWL || (kind == KVX_GENCONSTR_NORM && number == 2))
            fail(KVX_ERROR_NOT_SUPPORTED, "general constraint %s: the kind %s can't be solved",
                 constr.name.c_str(), kindName);
        const size_t size = model->vars.size();
        constr.kind = kind;
        constr.first = intSize(readIndex(first, size, "variable"));
        constr.second = second;
        constr.number = number;
        constr.sense = sense;
        if (kind == KVX_GENCONSTR_INDICATOR) {
            readIndex(second, 2, "value of a binary variable");
            constr.linear = readList(count, vars, x, size, "variable");
            sidesOf(sense, readFinite(number, "the right-hand side"), 0);
        } else if (kind == KVX_GENCONSTR_PWL || kind == KVX_GENCONSTR_ABS) {
            readIndex(second, size, "variable");
            readPoints(count, x, y);
            constr.x.assign(x, x + count);
            constr.y.assign(y, y + count);
        } else {
            for (int k = 0; readArray(count, vars, "operands") && k < count; k++)
                constr.vars.push_back(intSize(readIndex(vars[k], size, "variable")));
        }
        bool isNorm = number == 0 || number == 1 || number >= KVX_INFINITY;
        if (std::isnan(number) || (kind == KVX_GENCONSTR_NORM && !isNorm))
            fail(KVX_ERROR_INVALID_ARGUMENT, "%s can't be a norm or constant",
                 toText(number).c_str());
        if (kind == KVX_GENCONSTR_PWL && count == 0)
            fail(KVX_ERROR_INVALID_ARGUMENT, "there are no breakpoints");
        addGeneralConstraint(*model, std::move(constr));
        touch(*model);
    });
}

// Of operands, linear entries and breakpoints a constraint has one.
int get(KVXmodel *model, int genconstr, int kind, int *firstP, int *secondP = nullptr,
        int *countP = nullptr, int *vars = nullptr, double *numberP = nullptr, double *x = nullptr,
        double *y = nullptr, char *senseP = nullptr) {
    return guardedRead(model, [&] {
        const GeneralConstraint &constr =
            model->genconstrs[readIndex(genconstr, model->genconstrs.size(), "general constraint")];
        if (constr.kind != kind)
            fail(KVX_ERROR_INVALID_ARGUMENT, "general constraint %s is of another kind",
                 constr.name.c_str());
        store(firstP, constr.first);
        store(secondP, constr.second);
        store(countP, intSize(constr.vars.size() + constr.linear.size() + constr.x.size()));
        store(numberP, constr.number);
        store(senseP, constr.sense);
        storeAll(vars, constr.vars);
        storeEntries(vars, x, constr.linear);
        storeAll(x, constr.x);
        storeAll(y, constr.y);
    });
}

} // namespace

// Both functions of a kind: their last parameters, and what is handed to add and get of these.
#define KVX_LIST(...) __VA_ARGS__
#define KVX_KIND(Name, KIND, added, given, read, wanted)                                           \
    int KVXaddgenconstr##Name(KVXmodel *model, const char *name, KVX_LIST added) {                 \
        return add(model, name, KVX_GENCONSTR_##KIND, #Name, KVX_LIST given);                      \
    }                                                                                              \
    int KVXgetgenconstr##Name(KVXmodel *model, int constr, KVX_LIST read) {                        \
        return get(model, constr, KVX_GENCONSTR_##KIND, KVX_LIST wanted);                          \
    }
#define KVX_EXTREMUM(Name, KIND)                                                                   \
    KVX_KIND(Name, KIND, (int r, int n, const int *vars, double c), (r, 0, n, vars, c),            \
             (int *r, int *n, int *vars, double *c), (r, nullptr, n, vars, c))
#define KVX_LOGICAL(Name, KIND)                                                                    \
    KVX_KIND(Name, KIND, (int r, int n, const int *vars), (r, 0, n, vars),                         \
             (int *r, int *n, int *vars), (r, nullptr, n, vars))
#define KVX_FUNCTION(Name, KIND)                                                                   \
    KVX_KIND(Name, KIND, (int x, int y, const char *), (x, y), (int *x, int *y), (x, y))
#define KVX_FUNCTION_WITH_NUMBER(Name, KIND)                                                       \
    KVX_KIND(Name, KIND, (int x, int y, const char *, double), (x, y), (int *x, int *y, double *), \
             (x, y))

KVX_EXTREMUM(Max, MAX)
KVX_EXTREMUM(Min, MIN)
KVX_EXTREMUM(Norm, NORM)
KVX_LOGICAL(And, AND)
KVX_LOGICAL(Or, OR)
KVX_KIND(Abs, ABS, (int r, int x), (r, x), (int *r, int *x), (r, x))
KVX_KIND(Indicator, INDICATOR,
         (int b, int v, int n, const int *ind, const double *val, char sense, double rhs),
         (b, v, n, ind, rhs, val, nullptr, sense),
         (int *b, int *v, int *n, int *ind, double *val, char *sense, double *rhs),
         (b, v, n, ind, rhs, val, nullptr, sense))
KVX_KIND(PWL, PWL, (int x, int y, int n, const double *xs, const double *ys),
         (x, y, n, nullptr, 0, xs, ys), (int *x, int *y, int *n, double *xs, double *ys),
         (x, y, n, nullptr, nullptr, xs, ys))
KVX_KIND(Poly, POLY, (int x, int y, int, const double *, const char *), (x, y),
         (int *x, int *y, int *, double *), (x, y))
KVX_FUNCTION(Exp, EXP)
KVX_FUNCTION(Log, LOG)
KVX_FUNCTION(Sin, SIN)
KVX_FUNCTION(Cos, COS)
KVX_FUNCTION(Tan, TAN)
KVX_FUNCTION(Logistic, LOGISTIC)
KVX_FUNCTION_WITH_NUMBER(ExpA, EXPA)
KVX_FUNCTION_WITH_NUMBER(LogA, LOGA)
KVX_FUNCTION_WITH_NUMBER(Pow, POW)
KVX_KIND(NL, NL, (int r, int, const int *, const double *, const int *), (r, 0),
         (int *r, int *, int *, double *, int *), (r))
