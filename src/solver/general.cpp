// General constraints: adding and reading back the nineteen kinds. They come in few shapes, which
// share a function each way.
#include "input.h"

#include <cmath>
#include <tuple>
#include <type_traits>

using namespace korvex;

namespace korvex {
namespace {

bool hasOperands(int kind) {
    return kind == KVX_GENCONSTR_MAX || kind == KVX_GENCONSTR_MIN || kind == KVX_GENCONSTR_AND ||
           kind == KVX_GENCONSTR_OR || kind == KVX_GENCONSTR_NORM;
}

// Calls f with a reference to every variable index that the constraint depends on.
template <class Constr, class F>
void forEachVariable(Constr &constr, F f) {
    f(constr.first);
    if (hasOperands(constr.kind)) {
        for (auto &var : constr.vars)
            f(var);
    } else if (constr.kind == KVX_GENCONSTR_NL) {
        for (size_t k = 0; k < constr.vars.size(); k++)
            if (constr.vars[k] == KVX_NL_VARIABLE) {
                int var = static_cast<int>(constr.values[k]);
                f(var);
                if constexpr (!std::is_const_v<Constr>)
                    constr.values[k] = var;
            }
    } else if (constr.kind != KVX_GENCONSTR_INDICATOR) {
        f(constr.second);
    }
}

} // namespace

std::vector<int> dependsOn(const GeneralConstraint &constr) {
    std::vector<int> vars;
    forEachVariable(constr, [&](int var) { vars.push_back(var); });
    return vars;
}

void renumberVariables(GeneralConstraint &constr, const std::vector<int> &numbers) {
    forEachVariable(constr, [&](int &var) { var = numbers[static_cast<size_t>(var)]; });
    renumber(constr.linear, numbers, &Entry::index);
}

namespace {

// fill completes the constraint from the rest of the arguments.
template <class Fill>
int add(KVXmodel *model, const char *name, int kind, int first, int second, Fill fill) {
    return guarded(model, [&] {
        GeneralConstraint constr;
        constr.kind = kind;
        constr.name = readName(name);
        constr.first = first;
        constr.second = second;
        fill(constr);
        for (int var : dependsOn(constr))
            readIndex(var, model->vars.size(), "variable");
        model->genconstrs.push_back(std::move(constr));
        touch(*model);
    });
}

int addOperands(KVXmodel *model, const char *name, int kind, int resvar, int nvars, const int *vars,
                double number) {
    return add(model, name, kind, resvar, 0, [&](GeneralConstraint &constr) {
        readArray(nvars, vars, "operands");
        constr.vars.assign(vars, vars + nvars);
        bool isNorm = kind == KVX_GENCONSTR_NORM;
        if (std::isnan(number) ||
            (isNorm && number < KVX_INFINITY && number != 0 && number != 1 && number != 2))
            fail(KVX_ERROR_INVALID_ARGUMENT, "%s",
                 isNorm ? "the norm must be 0, 1, 2 or infinite" : "the constant isn't a number");
        constr.number = number; // infinite in max or min: without effect
    });
}

int addFunction(KVXmodel *model, const char *name, int kind, int xvar, int yvar,
                const char *options = nullptr, double number = 0) {
    return add(model, name, kind, xvar, yvar, [&](GeneralConstraint &constr) {
        constr.options = readName(options);
        constr.number = readFinite(number, "base or exponent");
        bool hasBase = kind == KVX_GENCONSTR_EXPA || kind == KVX_GENCONSTR_LOGA;
        if (hasBase && (number <= 0 || (kind == KVX_GENCONSTR_LOGA && number == 1)))
            fail(KVX_ERROR_INVALID_ARGUMENT, "%g can't be a base", number);
    });
}

// rest stores the rest of the constraint's data.
template <class Store>
int get(KVXmodel *model, int genconstr, int kind, int *firstP, int *secondP, Store rest) {
    return guardedRead(model, [&] {
        const GeneralConstraint &constr =
            model->genconstrs[readIndex(genconstr, model->genconstrs.size(), "general constraint")];
        if (constr.kind != kind)
            fail(KVX_ERROR_INVALID_ARGUMENT, "general constraint %d is of the kind %d, not %d",
                 genconstr, constr.kind, kind);
        store(firstP, constr.first);
        store(secondP, constr.second);
        rest(constr);
    });
}

int getOperands(KVXmodel *model, int genconstr, int kind, int *resvarP, int *nvarsP, int *vars,
                double *numberP = nullptr) {
    return get(model, genconstr, kind, resvarP, nullptr, [&](const GeneralConstraint &constr) {
        store(nvarsP, intSize(constr.vars.size()));
        storeAll(vars, constr.vars);
        store(numberP, constr.number);
    });
}

int getFunction(KVXmodel *model, int genconstr, int kind, int *xvarP, int *yvarP,
                double *numberP = nullptr) {
    return get(model, genconstr, kind, xvarP, yvarP,
               [&](const GeneralConstraint &constr) { store(numberP, constr.number); });
}

void readTree(GeneralConstraint &constr, int nlcount, const int *opcodes, const double *data,
              const int *parents) {
    if (readCount(nlcount, "nodes") == 0)
        fail(KVX_ERROR_INVALID_ARGUMENT, "the expression is empty");
    readArray(nlcount, opcodes, "opcodes");
    readArray(nlcount, data, "data");
    readArray(nlcount, parents, "parents");
    for (int k = 0; k < nlcount; k++) {
        readFinite(data[k], "data");
        if (opcodes[k] < KVX_NL_CONSTANT || opcodes[k] > KVX_NL_LOGISTIC)
            fail(KVX_ERROR_INVALID_ARGUMENT, "node %d: unknown opcode %d", k, opcodes[k]);
        if (opcodes[k] == KVX_NL_VARIABLE && !(data[k] >= 0 && data[k] <= 0x7FFFFFFF))
            fail(KVX_ERROR_INDEX_OUT_OF_RANGE, "node %d: a variable's index is out of range", k);
        if (k == 0 ? parents[k] != -1 : parents[k] < 0 || parents[k] >= k)
            fail(KVX_ERROR_INVALID_ARGUMENT, "node %d: wrong parent %d", k, parents[k]);
    }
    constr.vars.assign(opcodes, opcodes + nlcount);
    constr.values.assign(data, data + nlcount);
    constr.parents.assign(parents, parents + nlcount);
}

} // namespace
} // namespace korvex

// Kinds that have functions of the same shape.
#define KVX_OPERANDS_WITH_CONSTANT(Name, KIND)                                                     \
    int KVXaddgenconstr##Name(KVXmodel *model, const char *name, int resvar, int nvars,            \
                              const int *vars, double constant) {                                  \
        return addOperands(model, name, KIND, resvar, nvars, vars, constant);                      \
    }                                                                                              \
    int KVXgetgenconstr##Name(KVXmodel *model, int genconstr, int *resvarP, int *nvarsP,           \
                              int *vars, double *constantP) {                                      \
        return getOperands(model, genconstr, KIND, resvarP, nvarsP, vars, constantP);              \
    }
#define KVX_OPERANDS(Name, KIND)                                                                   \
    int KVXaddgenconstr##Name(KVXmodel *model, const char *name, int resvar, int nvars,            \
                              const int *vars) {                                                   \
        return addOperands(model, name, KIND, resvar, nvars, vars, 0);                             \
    }                                                                                              \
    int KVXgetgenconstr##Name(KVXmodel *model, int genconstr, int *resvarP, int *nvarsP,           \
                              int *vars) {                                                         \
        return getOperands(model, genconstr, KIND, resvarP, nvarsP, vars);                         \
    }
#define KVX_FUNCTION_WITH_NUMBER(Name, KIND)                                                       \
    int KVXaddgenconstr##Name(KVXmodel *model, const char *name, int xvar, int yvar,               \
                              const char *options, double number) {                                \
        return addFunction(model, name, KIND, xvar, yvar, options, number);                        \
    }                                                                                              \
    int KVXgetgenconstr##Name(KVXmodel *model, int genconstr, int *xvarP, int *yvarP,              \
                              double *numberP) {                                                   \
        return getFunction(model, genconstr, KIND, xvarP, yvarP, numberP);                         \
    }
#define KVX_FUNCTION(Name, KIND)                                                                   \
    int KVXaddgenconstr##Name(KVXmodel *model, const char *name, int xvar, int yvar,               \
                              const char *options) {                                               \
        return addFunction(model, name, KIND, xvar, yvar, options);                                \
    }                                                                                              \
    int KVXgetgenconstr##Name(KVXmodel *model, int genconstr, int *xvarP, int *yvarP) {            \
        return getFunction(model, genconstr, KIND, xvarP, yvarP);                                  \
    }

KVX_OPERANDS_WITH_CONSTANT(Max, KVX_GENCONSTR_MAX)
KVX_OPERANDS_WITH_CONSTANT(Min, KVX_GENCONSTR_MIN)
KVX_OPERANDS_WITH_CONSTANT(Norm, KVX_GENCONSTR_NORM)
KVX_OPERANDS(And, KVX_GENCONSTR_AND)
KVX_OPERANDS(Or, KVX_GENCONSTR_OR)
KVX_FUNCTION_WITH_NUMBER(ExpA, KVX_GENCONSTR_EXPA)
KVX_FUNCTION_WITH_NUMBER(LogA, KVX_GENCONSTR_LOGA)
KVX_FUNCTION_WITH_NUMBER(Pow, KVX_GENCONSTR_POW)
KVX_FUNCTION(Exp, KVX_GENCONSTR_EXP)
KVX_FUNCTION(Log, KVX_GENCONSTR_LOG)
KVX_FUNCTION(Sin, KVX_GENCONSTR_SIN)
KVX_FUNCTION(Cos, KVX_GENCONSTR_COS)
KVX_FUNCTION(Tan, KVX_GENCONSTR_TAN)
KVX_FUNCTION(Logistic, KVX_GENCONSTR_LOGISTIC)

int KVXaddgenconstrAbs(KVXmodel *model, const char *name, int resvar, int argvar) {
    return addFunction(model, name, KVX_GENCONSTR_ABS, resvar, argvar);
}

int KVXgetgenconstrAbs(KVXmodel *model, int genconstr, int *resvarP, int *argvarP) {
    return getFunction(model, genconstr, KVX_GENCONSTR_ABS, resvarP, argvarP);
}

int KVXaddgenconstrIndicator(KVXmodel *model, const char *name, int binvar, int binval, int numlnz,
                             const int *lind, const double *lval, char sense, double rhs) {
    return add(model, name, KVX_GENCONSTR_INDICATOR, binvar, binval,
               [&](GeneralConstraint &constr) {
                   if (binval != 0 && binval != 1)
                       fail(KVX_ERROR_INVALID_ARGUMENT, "binval must be 0 or 1, not %d", binval);
                   constr.linear = readList(numlnz, lind, lval, model->vars.size(), "variable");
                   constr.sense = readSense(sense);
                   constr.number = readFinite(rhs, "the right-hand side");
               });
}

int KVXgetgenconstrIndicator(KVXmodel *model, int genconstr, int *binvarP, int *binvalP,
                             int *numlnzP, int *lind, double *lval, char *senseP, double *rhsP) {
    return get(model, genconstr, KVX_GENCONSTR_INDICATOR, binvarP, binvalP,
               [&](const GeneralConstraint &constr) {
                   store(numlnzP, intSize(constr.linear.size()));
                   storeEntries(lind, lval, constr.linear);
                   store(senseP, constr.sense);
                   store(rhsP, constr.number);
               });
}

int KVXaddgenconstrPWL(KVXmodel *model, const char *name, int xvar, int yvar, int npts,
                       const double *xpts, const double *ypts) {
    return add(model, name, KVX_GENCONSTR_PWL, xvar, yvar, [&](GeneralConstraint &constr) {
        std::tie(constr.values, constr.values2) = readPoints(npts, xpts, ypts);
        if (npts == 0)
            fail(KVX_ERROR_INVALID_ARGUMENT, "there are no breakpoints");
    });
}

int KVXgetgenconstrPWL(KVXmodel *model, int genconstr, int *xvarP, int *yvarP, int *nptsP,
                       double *xpts, double *ypts) {
    return get(model, genconstr, KVX_GENCONSTR_PWL, xvarP, yvarP,
               [&](const GeneralConstraint &constr) {
                   store(nptsP, intSize(constr.values.size()));
                   storeAll(xpts, constr.values);
                   storeAll(ypts, constr.values2);
               });
}

int KVXaddgenconstrPoly(KVXmodel *model, const char *name, int xvar, int yvar, int ncoef,
                        const double *coefs, const char *options) {
    return add(model, name, KVX_GENCONSTR_POLY, xvar, yvar, [&](GeneralConstraint &constr) {
        constr.options = readName(options);
        readArray(ncoef, coefs, "coefficients");
        for (int k = 0; k < ncoef; k++)
            constr.values.push_back(readFinite(coefs[k], "a coefficient"));
    });
}

int KVXgetgenconstrPoly(KVXmodel *model, int genconstr, int *xvarP, int *yvarP, int *ncoefP,
                        double *coefs) {
    return get(model, genconstr, KVX_GENCONSTR_POLY, xvarP, yvarP,
               [&](const GeneralConstraint &constr) {
                   store(ncoefP, intSize(constr.values.size()));
                   storeAll(coefs, constr.values);
               });
}

int KVXaddgenconstrNL(KVXmodel *model, const char *name, int resvar, int nlcount,
                      const int *opcodes, const double *data, const int *parents) {
    return add(model, name, KVX_GENCONSTR_NL, resvar, 0, [&](GeneralConstraint &constr) {
        readTree(constr, nlcount, opcodes, data, parents);
    });
}

int KVXgetgenconstrNL(KVXmodel *model, int genconstr, int *resvarP, int *nlcountP, int *opcodes,
                      double *data, int *parents) {
    return get(model, genconstr, KVX_GENCONSTR_NL, resvarP, nullptr,
               [&](const GeneralConstraint &constr) {
                   store(nlcountP, intSize(constr.vars.size()));
                   storeAll(opcodes, constr.vars);
                   storeAll(data, constr.values);
                   storeAll(parents, constr.parents);
               });
}
