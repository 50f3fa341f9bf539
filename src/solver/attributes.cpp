// Attributes: a table of how each is read and set, and the functions of all types and shapes.
#include "input.h"
#include "run.h"

#include <cmath>
#include <tuple>

using namespace korvex;

namespace {

using M = KVXmodel;
using General = GeneralConstraint;
using Quadratic = QuadraticConstraint;

// A setter checks the value and, in a second round with commit set, stores it: so a list of values
// is stored only when all of them are good. A text has been copied before, for which memory may be
// lacking.
template <class T>
struct Access {
    using Given = std::conditional_t<std::is_same_v<T, const char *>, Name, T>;
    T (*get)(M &, size_t);
    void (*set)(M &, size_t, Given &, bool commit) = nullptr;
};
using Int = Access<int>;
using Dbl = Access<double>;
using Text = Access<const char *>;
using Char = Access<char>;

// What must be there for an attribute to be read, and whether setting it leaves the optimum; a
// count is known before deletions are settled.
enum Trait { changing, neutral, count, result, solution, duals, startBasis, iis };

struct Attribute {
    const char *name;
    int element; // KVX_OF_
    std::variant<Int, Dbl, Text, Char> access;
    Trait trait = changing;
};

template <class Owner, class T>
T &field(M &m, size_t i, T Owner::*member) {
    if constexpr (std::is_base_of_v<Owner, M>)
        return m.*member;
    else if constexpr (std::is_same_v<Owner, Solution>)
        return m.solution.*member;
    else
        return std::get<std::vector<Owner> &>(
                   std::tie(m.vars, m.constrs, m.qconstrs, m.genconstrs))[i].*
               member;
}

// Coefficients of the selected objective: a single one is in the variables.
struct Selected {};
double &field(M &m, size_t j, Selected *) {
    return m.objectives.empty() ? m.vars[j].obj : m.objectives[at(m.objNumber)].coefs[j];
}
constexpr Selected *selected = nullptr;

template <auto member>
auto get(M &m, size_t i) {
    auto &value = field(m, i, member);
    using T = std::decay_t<decltype(value)>;
    if constexpr (std::is_same_v<T, Name>)
        return m.texts.of(value);
    else if constexpr (std::is_same_v<T, bool>)
        return static_cast<int>(value);
    else if constexpr (std::is_same_v<T, std::vector<double>>)
        return value[i];
    else
        return value;
}

template <auto member, auto checked, class T>
void set(M &m, size_t i, T &value, bool commit) {
    if (commit)
        field(m, i, member) = std::move(value);
    else
        value = checked(m, value);
}

// The values that setters take.
struct Good {
    static double number(M &, double v) { return readFinite(v, "the value"); }
    static int sense(M &, int v) { return readObjSense(v); }
    static char sign(M &, char v) { return sidesOf(v, 0, 0).kind; }
    static int zero(M &, int v) { return intSize(readIndex(v, 1, "scenario")); }
    static int objective(M &m, int v) {
        return intSize(readIndex(v, std::max<size_t>(1, m.objectives.size()), "objective"));
    }
    static int basis(M &, int v) {
        if (v < KVX_SUPERBASIC || v > KVX_BASIC)
            fail(KVX_ERROR_VALUE_OUT_OF_RANGE, "unknown basis status %d", v);
        return v;
    }
    static Name text(M &, const Name &v) { return v; }
    static Name name(M &, const Name &v) {
        if (v.empty())
            fail(KVX_ERROR_INVALID_ARGUMENT, "the name of an element can't be empty");
        return v;
    }
};

// A bound outside those of a binary variable is refused, not cut off.
template <auto part, class T>
void setDomain(M &m, size_t j, T &value, bool commit) {
    Variable &var = m.vars[j];
    Range given{var.lb, var.ub, var.type};
    given.*part = value;
    Range domain = readDomain(given, j);
    if (var.type == KVX_BINARY && (domain.lower > given.lower || domain.upper < given.upper))
        fail(KVX_ERROR_VALUE_OUT_OF_RANGE, "variable %zu is binary", j);
    if (commit)
        std::tie(var.lb, var.ub, var.type) = domain.tuple();
}

double rhsOf(const Range &sides) {
    return sides.kind == KVX_GREATER_EQUAL ? sides.lower : sides.upper;
}

// How the attributes of a constraint change its sides; the other side of a range stays.
struct Edit {
    static void lower(Range &r, double v, size_t) { r = {v, r.upper, senseOf(v, r.upper)}; }
    static void upper(Range &r, double v, size_t) { r = {r.lower, v, senseOf(r.lower, v)}; }
    static void sense(Range &r, char v, size_t i) { r = sidesOf(v, rhsOf(r), i); }
    static void rhs(Range &r, double v, size_t) {
        r.lower = r.kind == KVX_LESS_EQUAL ? r.lower : v;
        r.upper = r.kind == KVX_GREATER_EQUAL ? r.upper : v;
    }
};

template <auto edit, class T>
void setSides(M &m, size_t i, T &value, bool commit) {
    Sides &c = m.constrs[i];
    Range sides{c.lower, c.upper, c.sense};
    edit(sides, value, i);
    sides = readSides(sides, i);
    if (commit)
        std::tie(c.lower, c.upper, c.sense) = sides.tuple();
}

double rhs(M &m, size_t i) {
    return rhsOf({m.constrs[i].lower, m.constrs[i].upper, m.constrs[i].sense});
}

// Tests of variables.
struct Is {
    static bool integer(const Variable &v) { return v.isInteger(); }
    static bool discrete(const Variable &v) { return v.type != KVX_CONTINUOUS; }
    static bool binary(const Variable &v) {
        return v.type == KVX_BINARY || (v.type == KVX_INTEGER && v.lb >= 0 && v.ub <= 1);
    }
};

template <auto test>
int number(M &m, size_t) {
    return static_cast<int>(std::count_if(m.vars.begin(), m.vars.end(), test));
}

int variables(M &m, size_t) {
    return m.varDeletion ? m.varDeletion->left : intSize(m.vars.size());
}

int constraints(M &m, size_t) {
    return m.constrDeletion ? m.constrDeletion->left : intSize(m.constrs.size());
}

int isMip(M &m, size_t) {
    return !m.sos.empty() || !m.genconstrs.empty() || number<Is::discrete>(m, 0) > 0;
}

double gap(M &m, size_t) {
    return relativeGap(m.solution.objval, m.solution.bound);
}

double runtime(M &m, size_t) {
    std::chrono::duration<double> past = std::chrono::steady_clock::now() - m.runStart;
    return m.running ? past.count() : m.solution.runtime;
}

constexpr int model = KVX_OF_MODEL, var = KVX_OF_VARIABLE, row = KVX_OF_CONSTRAINT;
constexpr int quadratic = KVX_OF_QCONSTRAINT, general = KVX_OF_GENCONSTRAINT;
constexpr Attribute table[] = {
    {"NumVars", model, Int{variables}, count},
    {"NumConstrs", model, Int{constraints}, count},
    {"NumNZs", model, Int{[](M &m, size_t) { return intSize(m.rows.nonzeros()); }}},
    {"NumSOS", model, Int{[](M &m, size_t) { return intSize(m.sos.size()); }}},
    {"NumQConstrs", model, Int{[](M &m, size_t) { return intSize(m.qconstrs.size()); }}},
    {"NumGenConstrs", model, Int{[](M &m, size_t) { return intSize(m.genconstrs.size()); }}},
    {"NumQNZs", model, Int{[](M &m, size_t) { return intSize(m.products.size()); }}},
    {"NumIntVars", model, Int{number<Is::integer>}},
    {"NumBinVars", model, Int{number<Is::binary>}},
    {"NumObj", model, Int{[](M &m, size_t) { return std::max(1, intSize(m.objectives.size())); }}},
    {"NumScenarios", model, Int{[](M &, size_t) { return 1; }}},
    {"TuneResultCount", model, Int{[](M &m, size_t) { return intSize(m.tuneResults.size()); }}},
    {"IsMIP", model, Int{isMip}},
    {"IsQP", model, Int{[](M &m, size_t) { return m.products.empty() ? 0 : 1; }}},
    {"IsMultiObj", model, Int{[](M &m, size_t) { return m.objectives.empty() ? 0 : 1; }}},
    {"ModelSense", model, Int{get<&M::objsense>, set<&M::objsense, Good::sense>}},
    {"ObjNumber", model, Int{get<&M::objNumber>, set<&M::objNumber, Good::objective>}, neutral},
    {"ScenarioNumber", model, Int{get<&M::scenarioNumber>, set<&M::scenarioNumber, Good::zero>},
     neutral},
    {"Status", model, Int{[](M &m, size_t) { return currentStatus(m); }}},
    {"SolCount", model, Int{get<&Solution::solutions>}, result},
    {"ObjCon", model, Dbl{get<&M::objcon>, set<&M::objcon, Good::number>}},
    {"ObjVal", model, Dbl{get<&Solution::objval>}, solution},
    {"ObjBound", model, Dbl{get<&Solution::bound>}, result},
    {"MIPGap", model, Dbl{gap}, solution},
    {"Runtime", model, Dbl{runtime}},
    {"NodeCount", model, Dbl{get<&Solution::nodes>}, result},
    {"IterCount", model, Dbl{get<&Solution::iterations>}, result},
    {"ModelName", model, Text{get<&M::name>, set<&M::name, Good::text>}, neutral},
    {"LB", var, Dbl{get<&Variable::lb>, setDomain<&Range::lower>}},
    {"UB", var, Dbl{get<&Variable::ub>, setDomain<&Range::upper>}},
    {"VarType", var, Char{get<&Variable::type>, setDomain<&Range::kind>}},
    {"Obj", var, Dbl{get<&Variable::obj>, set<&Variable::obj, Good::number>}},
    {"ObjN", var, Dbl{get<selected>, set<selected, Good::number>}},
    {"Start", var, Dbl{get<&Variable::start>, set<&Variable::start, Good::number>}, neutral},
    {"X", var, Dbl{get<&Solution::x>}, solution},
    {"ReducedCost", var, Dbl{get<&Solution::reducedCosts>}, duals},
    {"VarBasis", var, Int{get<&Variable::basis>, set<&Variable::basis, Good::basis>}, startBasis},
    {"IISLB", var, Int{get<&Variable::iisLb>}, iis},
    {"IISUB", var, Int{get<&Variable::iisUb>}, iis},
    {"VarName", var, Text{get<&Variable::name>, set<&Variable::name, Good::name>}, neutral},
    {"RHS", row, Dbl{rhs, setSides<Edit::rhs>}},
    {"RowLower", row, Dbl{get<&Sides::lower>, setSides<Edit::lower>}},
    {"RowUpper", row, Dbl{get<&Sides::upper>, setSides<Edit::upper>}},
    {"Sense", row, Char{get<&Sides::sense>, setSides<Edit::sense>}},
    {"Dual", row, Dbl{get<&Solution::duals>}, duals},
    {"Slack", row, Dbl{get<&Solution::slacks>}, solution},
    {"ConstrBasis", row, Int{get<&Sides::basis>, set<&Sides::basis, Good::basis>}, startBasis},
    {"IISConstr", row, Int{get<&Sides::iis>}, iis},
    {"ConstrName", row, Text{get<&Sides::name>, set<&Sides::name, Good::name>}, neutral},
    {"QConstrRHS", quadratic, Dbl{get<&Quadratic::rhs>, set<&Quadratic::rhs, Good::number>}},
    {"QConstrSense", quadratic, Char{get<&Quadratic::sense>, set<&Quadratic::sense, Good::sign>}},
    {"QConstrName", quadratic, Text{get<&Quadratic::name>, set<&Quadratic::name, Good::name>},
     neutral},
    {"GenConstrType", general, Int{get<&General::kind>}},
    {"GenConstrName", general, Text{get<&General::name>, set<&General::name, Good::name>}, neutral},
    {"GenConstrOptions", general, Text{get<&General::options>, set<&General::options, Good::text>}},
};

const Attribute &find(const char *name) {
    needed(name, "the attribute name");
    for (const Attribute &attribute : table)
        if (equalIgnoringCase(attribute.name, name))
            return attribute;
    fail(KVX_ERROR_UNKNOWN_ATTRIBUTE, "unknown attribute \"%s\"", name);
}

// The elements that a call is about: the model itself, a range or a list of other elements.
enum Shape { whole, range, listed };
struct Elements {
    Shape shape;
    int count = 1, start = 0;
    const int *list = nullptr;
};

// Finds an attribute of the type T, and the indices of the elements.
template <class T>
auto prepare(const M &m, const char *name, const Elements &elements, const T *values) {
    const Attribute &attribute = find(name);
    auto access = std::get_if<Access<T>>(&attribute.access);
    if (!access || (elements.shape == whole) != (attribute.element == KVX_OF_MODEL))
        fail(KVX_ERROR_UNKNOWN_ATTRIBUTE, "attribute %s has another type or other elements",
             attribute.name);
    auto [shape, count, start, list] = elements;
    readArray(count, values, "values");
    const size_t limits[] = {1, m.vars.size(),     m.constrs.size(),
                             0, m.qconstrs.size(), m.genconstrs.size()};
    const size_t limit = limits[attribute.element];
    if (shape == listed)
        readArray(count, list, "indices");
    else
        readRange(start, count, limit, "elements");
    std::vector<size_t> indices;
    for (int k = 0; k < count; k++)
        indices.push_back(readIndex(shape == listed ? list[k] : start + k, limit, "element"));
    return std::tuple(attribute, *access, indices);
}

template <class T>
int getAttr(M *model, const char *name, Elements elements, T *values) {
    return guardedUnsettled(model, [&] {
        if (find(name).trait != count)
            settle(*model);
        auto [attribute, access, indices] = prepare<T>(*model, name, elements, values);
        const Solution &s = model->solution;
        const bool known[] = {s.status != KVX_STATUS_LOADED, s.hasX, s.hasDuals, model->hasBasis,
                              model->hasIis};
        if (attribute.trait >= result && (model->running || !known[attribute.trait - result]))
            fail(KVX_ERROR_DATA_NOT_AVAILABLE, "attribute %s isn't available", attribute.name);
        for (size_t k = 0; k < indices.size(); k++)
            values[k] = access.get(*model, indices[k]);
    });
}

template <class T>
int setAttr(M *model, const char *name, Elements elements, const T *values) {
    return guarded(model, [&] {
        auto [attribute, access, indices] = prepare<T>(*model, name, elements, values);
        if (!access.set)
            fail(KVX_ERROR_READ_ONLY, "attribute %s can't be set", attribute.name);
        constexpr bool isText = std::is_same_v<T, const char *>;
        std::vector<typename Access<T>::Given> given;
        for (size_t k = 0; k < indices.size(); k++)
            if constexpr (isText)
                given.push_back(readName(values[k]));
            else
                given.push_back(values[k]);
        for (bool commit : {false, true})
            for (size_t k = 0; k < indices.size(); k++)
                access.set(*model, indices[k], given[k], commit);
        if (isText)
            forgetNames(*model);
        model->hasBasis |= attribute.trait == startBasis && !indices.empty();
        if (attribute.trait == changing)
            touch(*model);
    });
}

} // namespace

// The functions of one type.
#define KVX_ATTRIBUTE(Name, call, ...)                                                             \
    int KVX##Name(KVXmodel *m, const char *name, __VA_ARGS__) {                                    \
        return call;                                                                               \
    }
#define KVX_OF_THE_MODEL(type, T)                                                                  \
    KVX_ATTRIBUTE(get##type##attr, getAttr<T>(m, name, {whole}, v), T *v)                          \
    KVX_ATTRIBUTE(set##type##attr, setAttr<T>(m, name, {whole}, &v), T v)
#define KVX_OF_ELEMENTS(type, T)                                                                   \
    KVX_ATTRIBUTE(get##type##attrelement, getAttr<T>(m, name, {range, 1, i}, v), int i, T *v)      \
    KVX_ATTRIBUTE(set##type##attrelement, setAttr<T>(m, name, {range, 1, i}, &v), int i, T v)      \
    KVX_ATTRIBUTE(get##type##attrarray, getAttr<T>(m, name, {range, n, i}, v), int i, int n, T *v) \
    KVX_ATTRIBUTE(set##type##attrarray, setAttr<T>(m, name, {range, n, i}, v), int i, int n,       \
                  T const *v)                                                                      \
    KVX_ATTRIBUTE(get##type##attrlist, getAttr<T>(m, name, {listed, n, 0, ind}, v), int n,         \
                  const int *ind, T *v)                                                            \
    KVX_ATTRIBUTE(set##type##attrlist, setAttr<T>(m, name, {listed, n, 0, ind}, v), int n,         \
                  const int *ind, T const *v)

KVX_OF_THE_MODEL(int, int)
KVX_OF_THE_MODEL(dbl, double)
KVX_OF_THE_MODEL(str, const char *)
KVX_OF_ELEMENTS(int, int)
KVX_OF_ELEMENTS(dbl, double)
KVX_OF_ELEMENTS(char, char)
KVX_OF_ELEMENTS(str, const char *)

int KVXgetattrinfo(KVXmodel *model, const char *name, int *type, int *element, int *settable) {
    return guardedRead(model, [&] {
        const Attribute &attribute = find(name);
        store(type, static_cast<int>(attribute.access.index()) + KVX_TYPE_INT);
        store(element, attribute.element);
        store(settable,
              std::visit([](auto &access) { return access.set ? 1 : 0; }, attribute.access));
    });
}

int KVXprefetchattr(KVXmodel *model, const char *name) {
    return guardedRead(model, [&] { find(name); });
}
