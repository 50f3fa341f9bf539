#include "attributes.h"

#include <cmath>

namespace korvex {
namespace {

using M = KVXmodel;
using D = ModelData;

template <class Get>
auto readOnly(Get get) {
    return Access<std::decay_t<decltype(get(std::declval<M &>(), size_t()))>>{get, {}};
}

template <class Count>
Access<int> count(Count get) {
    return {[=](M &model, size_t) { return static_cast<int>(get(model)); }, {}};
}

// A field of the model.
template <class T, class Check>
Access<T> settable(T D::*member, Check check) {
    return {[=](M &model, size_t) { return model.*member; },
            [=](M &model, size_t, T value, bool commit) {
                check(model, value);
                if (commit)
                    model.*member = value;
            }};
}

// A field of the items of a list of the model.
template <class Item, class T>
auto field(std::vector<Item> D::*items, T Item::*member) {
    return [=](M &model, size_t i) { return (model.*items)[i].*member; };
}

template <class Item, class T, class Check>
Access<T> settable(std::vector<Item> D::*items, T Item::*member, Check check) {
    return {field(items, member), [=](M &model, size_t i, T value, bool commit) {
                check(model, value);
                if (commit)
                    (model.*items)[i].*member = value;
            }};
}

// A name; where there is none, one made of the index.
template <class NameOf, class Made>
Access<const char *> name(NameOf nameOf, Made made) {
    return {[=](M &model, size_t i) {
                const std::string &name = nameOf(model, i);
                return (name.empty() ? *model.madeNames.insert(made(model, int(i))).first : name)
                    .c_str();
            },
            [=](M &model, size_t i, const char *value, bool commit) {
                std::string name = readName(value);
                if (commit)
                    nameOf(model, i).swap(name);
            }};
}

template <class Item>
Access<const char *> name(std::vector<Item> D::*items, std::string (*made)(const D &, int)) {
    return name([=](M &model, size_t i) -> std::string & { return (model.*items)[i].name; }, made);
}

// The type or a bound of a variable. A bound outside those of a binary variable is refused, not cut
// off.
template <class T>
Access<T> domain(T Variable::*member, T Range::*part) {
    return {field(&D::vars, member), [=](M &model, size_t j, T value, bool commit) {
                Variable &var = model.vars[j];
                Range given{var.lb, var.ub, var.type};
                given.*part = value;
                Range range = readDomain(given, j);
                if (var.type == KVX_BINARY && range.kind == KVX_BINARY &&
                    (range.lower > given.lower || range.upper < given.upper))
                    fail(KVX_ERROR_VALUE_OUT_OF_RANGE, "variable %zu is binary", j);
                if (commit) {
                    var.lb = range.lower;
                    var.ub = range.upper;
                    var.type = range.kind;
                }
            }};
}

// A datum of a constraint's sides: edit makes the new ones.
template <class T>
Access<T> sides(T (*get)(const Constraint &), Range (*edit)(const Constraint &, T)) {
    return {[=](M &model, size_t i) { return get(model.constrs[i]); },
            [=](M &model, size_t i, T value, bool commit) {
                Constraint &constr = model.constrs[i];
                Range range = readSides(edit(constr, value), i);
                if (commit) {
                    constr.lower = range.lower;
                    constr.upper = range.upper;
                    constr.sense = range.kind;
                }
            }};
}

double rhsOf(const Constraint &constr) {
    return constr.sense == KVX_GREATER_EQUAL ? constr.lower : constr.upper;
}

// The other side of a range stays.
Range withRhs(const Constraint &constr, double rhs) {
    return {constr.sense == KVX_LESS_EQUAL ? constr.lower : rhs,
            constr.sense == KVX_GREATER_EQUAL ? constr.upper : rhs, constr.sense};
}

Range withSense(const Constraint &constr, char sense) {
    return sidesOf(sense, rhsOf(constr), 0);
}
Range withLower(const Constraint &constr, double lower) {
    return {lower, constr.upper, senseOf(lower, constr.upper)};
}
Range withUpper(const Constraint &constr, double upper) {
    return {constr.lower, upper, senseOf(constr.lower, upper)};
}

bool isBinary(const Variable &var) {
    return var.type == KVX_BINARY || (var.type == KVX_INTEGER && var.lb >= 0 && var.ub <= 1);
}

bool isDiscrete(const Variable &var) {
    return var.type != KVX_CONTINUOUS;
}

Access<int> countVars(bool (*test)(const Variable &)) {
    return count([=](M &m) { return std::count_if(m.vars.begin(), m.vars.end(), test); });
}

size_t nonzeros(const M &model) {
    size_t sum = 0;
    for (const Constraint &constr : model.constrs)
        sum += constr.row.size();
    return sum;
}

size_t objectiveCount(const M &model) {
    return std::max<size_t>(1, model.objectives.size());
}

// A variable's coefficient in an objective: a single one is in the variables. Setting it replaces a
// piecewise-linear term.
template <class Number>
Access<double> objective(Number number) {
    auto coefficient = [=](M &model, size_t j) -> double & {
        return model.objectives.empty()
                   ? model.vars[j].obj
                   : model.objectives[static_cast<size_t>(number(model))].coefs[j];
    };
    return {coefficient, [=](M &model, size_t j, double value, bool commit) {
                readFinite(value, "an objective coefficient");
                if (!commit)
                    return;
                coefficient(model, j) = value;
                model.vars[j].pwlX.clear();
                model.vars[j].pwlY.clear();
            }};
}

template <class Item>
Access<int> basis(std::vector<Item> D::*items) {
    return {field(items, &Item::basis), [=](M &model, size_t i, int value, bool commit) {
                if (value < KVX_SUPERBASIC || value > KVX_BASIC)
                    fail(KVX_ERROR_VALUE_OUT_OF_RANGE, "unknown basis status %d", value);
                if (!commit)
                    return;
                (model.*items)[i].basis = value;
                model.hasBasis = true;
            }};
}

template <class T>
auto result(T Solution::*member) {
    return readOnly([=](M &model, size_t) { return model.solution.*member; });
}

auto result(std::vector<double> Solution::*member) {
    return readOnly([=](M &model, size_t i) { return (model.solution.*member)[i]; });
}

double gap(M &model, size_t) {
    double difference = std::abs(model.solution.objval - model.solution.bound);
    return difference == 0 ? 0 : difference / std::max(1e-10, std::abs(model.solution.objval));
}

double runtime(M &model, size_t) {
    if (!model.running)
        return model.solution.runtime;
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - model.runStart).count();
}

// The largest violation of a bound, a linear constraint or integrality.
double violation(M &model, size_t) {
    const std::vector<double> &x = model.solution.x;
    double worst = 0;
    for (size_t j = 0; j < x.size(); j++) {
        const Variable &var = model.vars[j];
        double outside = std::max(var.lb - x[j], x[j] - var.ub);
        if (isSemi(var))
            outside = std::min(outside, std::abs(x[j]));
        worst = std::max({worst, outside, isInteger(var) ? std::abs(x[j] - std::round(x[j])) : 0});
    }
    for (const Constraint &constr : model.constrs) {
        double activity = 0;
        for (auto [index, value] : constr.row)
            activity += value * x[static_cast<size_t>(index)];
        worst = std::max({worst, constr.lower - activity, activity - constr.upper});
    }
    return worst;
}

std::vector<Attribute> modelAttributes() {
    constexpr int model = KVX_OF_MODEL;
    return {
        {"NumVars", model, count([](M &m) { return m.vars.size(); })},
        {"NumConstrs", model, count([](M &m) { return m.constrs.size(); })},
        {"NumNZs", model, count(nonzeros)},
        {"NumSOS", model, count([](M &m) { return m.sos.size(); })},
        {"NumQConstrs", model, count([](M &m) { return m.qconstrs.size(); })},
        {"NumGenConstrs", model, count([](M &m) { return m.genconstrs.size(); })},
        {"NumQNZs", model, count([](M &m) { return m.quadratic.size(); })},
        {"NumIntVars", model, countVars(isInteger)},
        {"NumBinVars", model, countVars(isBinary)},
        {"NumObj", model, count(objectiveCount)},
        {"NumScenarios", model, count([](M &) { return 1; })},
        {"TuneResultCount", model, count([](M &m) { return m.tuneResults.size(); })},
        {"IsMIP", model, count([](M &m) {
             return !m.sos.empty() || !m.genconstrs.empty() ||
                    std::any_of(m.vars.begin(), m.vars.end(), isDiscrete);
         })},
        {"IsQP", model, count([](M &m) { return !m.quadratic.empty(); })},
        {"IsMultiObj", model, count([](M &m) { return !m.objectives.empty(); })},
        {"ModelSense", model, settable(&D::objsense, [](M &, int v) { readObjSense(v); })},
        {"ObjNumber",
         model,
         settable(&D::objNumber, [](M &m, int v) { readIndex(v, objectiveCount(m), "objective"); }),
         {},
         false},
        {"ScenarioNumber",
         model,
         settable(&D::scenarioNumber, [](M &, int v) { readIndex(v, 1, "scenario"); }),
         {},
         false},
        {"Status", model, count([](M &m) { return currentStatus(m); })},
        {"SolCount", model, result(&Solution::solutions), Needs::Result},
        {"BarIterCount", model, result(&Solution::barrierIterations), Needs::Result},
        {"ObjCon", model, settable(&D::objcon, [](M &, double v) { readFinite(v, "ObjCon"); })},
        {"ObjVal", model, result(&Solution::objval), Needs::X},
        {"ObjBound", model, result(&Solution::bound), Needs::Result},
        {"MIPGap", model, readOnly(gap), Needs::X},
        {"Runtime", model, readOnly(runtime)},
        {"NodeCount", model, result(&Solution::nodes), Needs::Result},
        {"IterCount", model, result(&Solution::iterations), Needs::Result},
        {"MaxVio", model, readOnly(violation), Needs::X},
        {"ModelName",
         model,
         name([](M &m, size_t) -> std::string & { return m.name; }, [](M &, int) { return ""; }),
         {},
         false},
    };
}

std::vector<Attribute> elementAttributes() {
    constexpr int var = KVX_OF_VARIABLE, constr = KVX_OF_CONSTRAINT, qconstr = KVX_OF_QCONSTRAINT,
                  genconstr = KVX_OF_GENCONSTRAINT;
    auto finite = [](M &, double value) { readFinite(value, "the value"); };
    return {
        {"LB", var, domain(&Variable::lb, &Range::lower)},
        {"UB", var, domain(&Variable::ub, &Range::upper)},
        {"VarType", var, domain(&Variable::type, &Range::kind)},
        {"Obj", var, objective([](M &) { return 0; })},
        {"ObjN", var, objective([](M &m) { return m.objNumber; })},
        {"Start", var, settable(&D::vars, &Variable::start, finite), {}, false},
        {"X", var, result(&Solution::x), Needs::X},
        {"ReducedCost", var, result(&Solution::reducedCosts), Needs::Duals},
        {"VarBasis", var, basis(&D::vars), Needs::Basis, false},
        {"IISLB", var, readOnly(field(&D::vars, &Variable::iisLb)), Needs::Iis},
        {"IISUB", var, readOnly(field(&D::vars, &Variable::iisUb)), Needs::Iis},
        {"VarName", var, name(&D::vars, varName), {}, false},
        {"RHS", constr, sides(rhsOf, withRhs)},
        {"RowLower", constr,
         sides(
             +[](const Constraint &c) { return c.lower; }, withLower)},
        {"RowUpper", constr,
         sides(
             +[](const Constraint &c) { return c.upper; }, withUpper)},
        {"Sense", constr,
         sides(
             +[](const Constraint &c) { return c.sense; }, withSense)},
        {"Dual", constr, result(&Solution::duals), Needs::Duals},
        {"Slack", constr, result(&Solution::slacks), Needs::X},
        {"ConstrBasis", constr, basis(&D::constrs), Needs::Basis, false},
        {"IISConstr", constr, readOnly(field(&D::constrs, &Constraint::iis)), Needs::Iis},
        {"ConstrName", constr, name(&D::constrs, constrName), {}, false},
        {"IISSOS", KVX_OF_SOS, readOnly(field(&D::sos, &Sos::iis)), Needs::Iis},
        {"QCRHS", qconstr, settable(&D::qconstrs, &QuadraticConstraint::rhs, finite)},
        {"QCSense", qconstr,
         settable(&D::qconstrs, &QuadraticConstraint::sense,
                  [](M &, char sense) { readSense(sense); })},
        {"QCName", qconstr, name(&D::qconstrs, qconstrName), {}, false},
        {"GenConstrType", genconstr, readOnly(field(&D::genconstrs, &GeneralConstraint::kind))},
        {"GenConstrName", genconstr, name(&D::genconstrs, genconstrName), {}, false},
    };
}

} // namespace

const std::vector<Attribute> &attributeTable() {
    static const std::vector<Attribute> table = [] {
        std::vector<Attribute> attributes = modelAttributes();
        for (Attribute &attribute : elementAttributes())
            attributes.push_back(std::move(attribute));
        return attributes;
    }();
    return table;
}

} // namespace korvex
