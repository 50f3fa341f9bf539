// General constraints: adding and reading back.
#include "input.h"

#include <cmath>

using namespace korvex;

namespace {

// The operands of a node; -1 for any number.
int operandsOf(int opcode) {
    if (opcode < KVX_NL_CONSTANT || opcode > KVX_NL_LOGISTIC)
        fail(KVX_ERROR_INVALID_ARGUMENT, "unknown operation code %d", opcode);
    if (opcode == KVX_NL_PLUS || opcode == KVX_NL_MULTIPLY)
        return -1;
    bool isBinary = opcode == KVX_NL_MINUS || opcode == KVX_NL_DIVIDE || opcode == KVX_NL_POWER;
    return opcode <= KVX_NL_VARIABLE ? 0 : isBinary ? 2 : 1;
}

void readTree(size_t count, const int *opcodes, const double *data, const int *parents,
              size_t vars) {
    std::vector<int> operands(count);
    for (size_t k = 0; k < count; k++) {
        const bool isRoot = k == 0;
        if (parents[k] >= intSize(k) || parents[k] < (isRoot ? -1 : 0))
            fail(KVX_ERROR_INVALID_ARGUMENT, "node %zu can't have the parent %d", k, parents[k]);
        if (!isRoot)
            operands[at(parents[k])]++;
        readFinite(data[k], "the data of a node");
        if (opcodes[k] != KVX_NL_VARIABLE)
            continue;
        if (data[k] != std::floor(data[k]))
            fail(KVX_ERROR_INVALID_ARGUMENT, "node %zu: %s is no index", k,
                 toText(data[k]).c_str());
        if (data[k] < 0 || data[k] >= static_cast<double>(vars))
            fail(KVX_ERROR_INDEX_OUT_OF_RANGE, "variable %s: there are %zu",
                 toText(data[k]).c_str(), vars);
    }
    for (size_t k = 0; k < count; k++)
        if (int wanted = operandsOf(opcodes[k]); wanted >= 0 && operands[k] != wanted)
            fail(KVX_ERROR_INVALID_ARGUMENT, "node %zu has %d operands instead of %d", k,
                 operands[k], wanted);
}

// Whether a kind takes that number: which norm, a base or an exponent.
bool isFit(int kind, double number) {
    if (kind == KVX_GENCONSTR_NORM)
        return number == 0 || number == 1 || number == 2 || number >= KVX_INFINITY;
    if (kind == KVX_GENCONSTR_EXPA || kind == KVX_GENCONSTR_LOGA)
        return number > 0 && number < KVX_INFINITY && (number != 1 || kind == KVX_GENCONSTR_EXPA);
    return kind == KVX_GENCONSTR_POW ? std::abs(number) < KVX_INFINITY : !std::isnan(number);
}

// The arguments that the kinds have; x are the coefficients of an indicator or a polynomial and the
// data of nodes, too, whose operation codes are in vars.
int add(KVXmodel *model, const char *name, int kind, const char *kindName, int first, int second,
        const char *options = nullptr, double number = 0, int count = 0, const int *vars = nullptr,
        const double *x = nullptr, const double *y = nullptr, char sense = 0,
        const int *parents = nullptr) {
    return guardedChange(model, [&] {
        const size_t size = model->vars.size();
        GeneralConstraint constr;
        constr.kind = kind;
        constr.kindName = kindName;
        constr.name = readName(name);
        constr.options = readName(options);
        constr.first = intSize(readIndex(first, size, "variable"));
        constr.second = second;
        constr.number = number;
        constr.sense = sense;
        if (!isFit(kind, number))
            fail(KVX_ERROR_INVALID_ARGUMENT, "%s can't be a norm, constant, base or exponent",
                 toText(number).c_str());
        if (kind == KVX_GENCONSTR_INDICATOR) {
            readIndex(second, 2, "value of a binary variable");
            constr.linear = readList(count, vars, x, size, "variable");
            sidesOf(sense, readFinite(number, "the right-hand side"), 0);
        } else if (kind == KVX_GENCONSTR_NL) {
            readTree(readCount(count, "nodes"), readArray(count, vars, "operation codes"),
                     readArray(count, x, "data"), readArray(count, parents, "parents"), size);
            constr.opcodes.assign(vars, vars + count);
            constr.x.assign(x, x + count);
            constr.parents.assign(parents, parents + count);
        } else if (kind == KVX_GENCONSTR_ABS || kind >= KVX_GENCONSTR_PWL) {
            readIndex(second, size, "variable");
            if (kind == KVX_GENCONSTR_PWL)
                readPoints(count, x, y);
            for (int k = 0; readArray(count, x, "coefficients") && k < count; k++)
                constr.x.push_back(readFinite(x[k], "a coefficient"));
            constr.y.assign(y, y ? y + count : y);
        } else {
            for (int k = 0; readArray(count, vars, "operands") && k < count; k++)
                constr.vars.push_back(intSize(readIndex(vars[k], size, "variable")));
        }
        bool isEmpty = count == 0 && (kind == KVX_GENCONSTR_PWL || kind == KVX_GENCONSTR_POLY ||
                                      kind == KVX_GENCONSTR_NL);
        if (isEmpty)
            fail(KVX_ERROR_INVALID_ARGUMENT, "there are no breakpoints, coefficients or nodes");
        addGeneralConstraint(*model, std::move(constr));
    });
}

// Of operands, linear entries, breakpoints, coefficients and nodes a constraint has one.
int get(KVXmodel *model, int genconstr, int kind, int *firstP, int *secondP = nullptr,
        double *numberP = nullptr, int *countP = nullptr, int *vars = nullptr, double *x = nullptr,
        double *y = nullptr, char *senseP = nullptr, int *parents = nullptr) {
    return guardedRead(model, [&] {
        const GeneralConstraint &constr =
            model->genconstrs[readIndex(genconstr, model->genconstrs.size(), "general constraint")];
        if (constr.kind != kind)
            fail(KVX_ERROR_INVALID_ARGUMENT, "general constraint %s is of another kind",
                 constr.name.text().c_str());
        store(firstP, constr.first);
        store(secondP, constr.second);
        store(countP, intSize(constr.vars.size() + constr.linear.size() + constr.x.size()));
        store(numberP, constr.number);
        store(senseP, constr.sense);
        storeAll(vars, constr.vars);
        storeAll(vars, constr.opcodes);
        storeEntries(vars, x, constr.linear);
        storeAll(x, constr.x);
        storeAll(y, constr.y);
        storeAll(parents, constr.parents);
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
    KVX_KIND(Name, KIND, (int r, int n, const int *vars, double c), (r, 0, nullptr, c, n, vars),   \
             (int *r, int *n, int *vars, double *c), (r, nullptr, c, n, vars))
#define KVX_LOGICAL(Name, KIND)                                                                    \
    KVX_KIND(Name, KIND, (int r, int n, const int *vars), (r, 0, nullptr, 0, n, vars),             \
             (int *r, int *n, int *vars), (r, nullptr, nullptr, n, vars))
#define KVX_FUNCTION(Name, KIND)                                                                   \
    KVX_KIND(Name, KIND, (int x, int y, const char *options), (x, y, options), (int *x, int *y),   \
             (x, y))
#define KVX_FUNCTION_WITH_NUMBER(Name, KIND)                                                       \
    KVX_KIND(Name, KIND, (int x, int y, const char *options, double number),                       \
             (x, y, options, number), (int *x, int *y, double *number), (x, y, number))

KVX_EXTREMUM(Max, MAX)
KVX_EXTREMUM(Min, MIN)
KVX_EXTREMUM(Norm, NORM)
KVX_LOGICAL(And, AND)
KVX_LOGICAL(Or, OR)
KVX_KIND(Abs, ABS, (int r, int x), (r, x), (int *r, int *x), (r, x))
KVX_KIND(Indicator, INDICATOR,
         (int b, int v, int n, const int *ind, const double *val, char sense, double rhs),
         (b, v, nullptr, rhs, n, ind, val, nullptr, sense),
         (int *b, int *v, int *n, int *ind, double *val, char *sense, double *rhs),
         (b, v, rhs, n, ind, val, nullptr, sense))
KVX_KIND(PWL, PWL, (int x, int y, int n, const double *xs, const double *ys),
         (x, y, nullptr, 0, n, nullptr, xs, ys), (int *x, int *y, int *n, double *xs, double *ys),
         (x, y, nullptr, n, nullptr, xs, ys))
KVX_KIND(Poly, POLY, (int x, int y, int n, const double *coefs, const char *options),
         (x, y, options, 0, n, nullptr, coefs), (int *x, int *y, int *n, double *coefs),
         (x, y, nullptr, n, nullptr, coefs))
KVX_FUNCTION(Exp, EXP)
KVX_FUNCTION(Log, LOG)
KVX_FUNCTION(Sin, SIN)
KVX_FUNCTION(Cos, COS)
KVX_FUNCTION(Tan, TAN)
KVX_FUNCTION(Logistic, LOGISTIC)
KVX_FUNCTION_WITH_NUMBER(ExpA, EXPA)
KVX_FUNCTION_WITH_NUMBER(LogA, LOGA)
KVX_FUNCTION_WITH_NUMBER(Pow, POW)
KVX_KIND(NL, NL, (int r, int n, const int *opcodes, const double *data, const int *parents),
         (r, 0, nullptr, 0, n, opcodes, data, nullptr, 0, parents),
         (int *r, int *n, int *opcodes, double *data, int *parents),
         (r, nullptr, nullptr, n, opcodes, data, nullptr, nullptr, parents))
