// Derived models: each is made as data first and becomes a model of its own.
#include "assertion.h"
#include "input.h"
#include "optimize.h"

#include <ClpPresolve.hpp>

#include <cmath>
#include <cstring>

using namespace korvex;

namespace {

// make(model) returns the data of the new model.
template <class Make>
int derive(KVXmodel *model, KVXenv *env, KVXmodel **newP, Make make) {
    return guarded(model, [&] {
        needed(newP, "newP");
        if (!env)
            fail(KVX_ERROR_INVALID_ARGUMENT, "the environment is null");
        *newP = makeModel(*env, make(*model)).release();
    });
}

void refuseUnlessLinear(const ModelData &model, const char *types, const char *what) {
    if (!model.sos.empty() || !model.genconstrs.empty() || !model.objectives.empty() ||
        !model.qconstrs.empty() || !model.products.empty())
        fail(KVX_ERROR_NOT_SUPPORTED,
             "%s: the model has SOS, general or quadratic constraints, several or quadratic "
             "objectives",
             what);
    for (size_t j = 0; j < model.vars.size(); j++)
        if (model.pwl.count(intSize(j)) || !std::strchr(types, model.vars[j].type))
            fail(KVX_ERROR_NOT_SUPPORTED,
                 "%s: variable %s has type %c or a piecewise-linear objective term", what,
                 model.vars[j].name.text().c_str(), model.vars[j].type);
}

ModelData itself(const KVXmodel &model) {
    return model;
}

ModelData relaxed(const KVXmodel &model) {
    ModelData data = model;
    data.sos.clear();
    data.genconstrs.clear();
    for (Variable &var : data.vars) {
        if (var.isSemi()) {
            var.lb = std::min(var.lb, 0.0);
            var.ub = std::max(var.ub, 0.0);
        }
        var.type = KVX_CONTINUOUS;
    }
    return data;
}

// What isn't continuous is fixed at the solution, which stays feasible and therefore optimal.
ModelData fixed(const KVXmodel &model) {
    refuseUnlessLinear(model, "CBISN", "fixing");
    if (!model.solution.hasX)
        fail(KVX_ERROR_DATA_NOT_AVAILABLE, "there is no solution to fix variables at");
    ModelData data = model;
    for (size_t j = 0; j < data.vars.size(); j++) {
        Variable &var = data.vars[j];
        const double x = model.solution.x[j];
        if (var.type != KVX_CONTINUOUS)
            var.lb = var.ub = var.isInteger() ? std::round(x) : x;
        var.type = KVX_CONTINUOUS;
    }
    return data;
}

// Without what rests on costs, which may lose optima of models with integers or lose infeasibility.
// A model without solutions is its own presolved model.
ModelData presolved(const KVXmodel &model) {
    refuseUnlessLinear(model, "CBI", "presolve");
    const Problem problem(model);
    problem.checkNumbers(model);
    auto owner = std::make_unique<ClpSimplex>();
    ClpSimplex &lp = *owner;
    problem.load(lp);
    lp.scaling(0);
    std::fill_n(lp.objective(), problem.cost.size(), 0.0);
    protect([&] { lp.primal(); }, owner);
    if (lp.status() != 0 || model.vars.empty() || model.constrs.empty())
        return model;
    problem.load(lp);
    for (size_t j = 0; j < problem.integer.size(); j++)
        if (problem.integer[j])
            lp.setInteger(intSize(j));
    auto presolve = std::make_unique<ClpPresolve>();
    presolve->setDoDual(false);
    presolve->setDoImpliedFree(false);
    std::unique_ptr<ClpSimplex> smaller;
    protect([&] { smaller.reset(presolve->presolvedModel(lp, 1e-8, true)); }, presolve, owner);
    if (!smaller)
        return model;
    ModelData data;
    data.name = model.name;
    data.objsense = model.objsense;
    data.objcon = -model.objsense * smaller->objectiveOffset();
    auto limited = [](double value) { return std::clamp(value, -KVX_INFINITY, KVX_INFINITY); };
    for (int i = 0; i < smaller->numberRows(); i++)
        addConstraint(data,
                      {{"", limited(smaller->rowLower()[i]), limited(smaller->rowUpper()[i])}});
    const CoinPackedMatrix &matrix = *smaller->matrix();
    for (int j = 0; j < smaller->numberColumns(); j++) {
        addVariable(data,
                    {"", limited(smaller->columnLower()[j]), limited(smaller->columnUpper()[j]),
                     model.objsense * smaller->objective()[j],
                     smaller->isInteger(j) ? KVX_INTEGER : KVX_CONTINUOUS});
        for (auto k = matrix.getVectorFirst(j); k < matrix.getVectorLast(j); k++)
            data.rows.add(at(matrix.getIndices()[k]), {j, matrix.getElements()[k]});
    }
    return data;
}

// Every finite side of a row or variable has a multiplier, whose cost is that side; every variable
// becomes an equation.
ModelData dual(const KVXmodel &model) {
    refuseUnlessLinear(model, "C", "the dual");
    ModelData data;
    data.objsense = -model.objsense;
    data.objcon = model.objcon;
    for (const Variable &var : model.vars)
        addConstraint(data, {{var.name, model.objsense * var.obj, model.objsense * var.obj}});
    auto multiplier = [&](double side, double lb, double ub, Entries row) {
        int y = addVariable(data, {"", lb, ub, model.objsense * side});
        for (auto [j, value] : row)
            data.rows.add(at(j), {y, value});
    };
    auto multipliers = [&](double lower, double upper, Entries row) {
        if (lower > -KVX_INFINITY)
            multiplier(lower, lower == upper ? -KVX_INFINITY : 0, KVX_INFINITY, row);
        if (upper < KVX_INFINITY && lower < upper)
            multiplier(upper, -KVX_INFINITY, 0, row);
    };
    for (size_t i = 0; i < model.constrs.size(); i++)
        multipliers(model.constrs[i].lower, model.constrs[i].upper, model.rows[i]);
    for (size_t j = 0; j < model.vars.size(); j++) {
        const Entry own[] = {{intSize(j), 1}};
        multipliers(model.vars[j].lb, model.vars[j].ub, {own, own + 1});
    }
    return data;
}

// Slack on every finite side of a linear constraint is the only cost.
ModelData feasibility(const KVXmodel &model) {
    ModelData data = model;
    clearObjective(data);
    data.objsense = KVX_MINIMIZE;
    data.hasBasis = false;
    const Variable slack{"", 0, KVX_INFINITY, 1};
    for (size_t i = 0; i < data.constrs.size(); i++) {
        if (data.constrs[i].lower > -KVX_INFINITY)
            data.rows.add(i, {addVariable(data, slack), 1});
        if (data.constrs[i].upper < KVX_INFINITY)
            data.rows.add(i, {addVariable(data, slack), -1});
    }
    return data;
}

} // namespace

int KVXcopymodeltoenv(KVXmodel *model, KVXenv *env, KVXmodel **newP) {
    return derive(model, env, newP, itself);
}

int KVXconverttofixed(KVXmodel *model) {
    return guardedChange(model, [&] { static_cast<ModelData &>(*model) = fixed(*model); });
}

#define KVX_DERIVE(function, make)                                                                 \
    int function(KVXmodel *model, KVXmodel **newP) {                                               \
        return derive(model, KVXgetenv(model), newP, make);                                        \
    }
KVX_DERIVE(KVXrelaxmodel, relaxed)
KVX_DERIVE(KVXfixmodel, fixed)
KVX_DERIVE(KVXpresolvemodel, presolved)
KVX_DERIVE(KVXdualmodel, dual)
KVX_DERIVE(KVXfeasibility, feasibility)
KVX_DERIVE(KVXlinearizemodel, reformulated)
KVX_DERIVE(KVXsinglescenariomodel, itself) // A model has one scenario.
