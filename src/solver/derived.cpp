// Derived models: each is made as data first and becomes a model of the same environment.
#include "input.h"
#include "optimize.h"
#include "reformulate.h"

#include <ClpPresolve.hpp>

#include <cmath>

using namespace korvex;

namespace {

// make(model) returns the data of the new model.
template <class Make>
int derive(KVXmodel *model, KVXmodel **newP, Make make) {
    return guarded(model, [&] {
        needed(newP, "newP");
        *newP = makeModel(model->env, make(*model)).release();
    });
}

void refuseUnlessLinear(const KVXmodel &model, const char *what) {
    auto isSpecial = [](const Variable &var) { return isSemi(var) || !var.pwlX.empty(); };
    if (!model.quadratic.empty() || !model.qconstrs.empty() || !model.sos.empty() ||
        !model.genconstrs.empty() || !model.objectives.empty() ||
        std::any_of(model.vars.begin(), model.vars.end(), isSpecial))
        fail(KVX_ERROR_NOT_SUPPORTED,
             "%s takes models with linear constraints, one linear objective and no "
             "semi-continuous variables",
             what);
}

ModelData relaxed(const KVXmodel &model) {
    ModelData data = model;
    data.sos.clear();
    data.genconstrs.clear();
    for (Variable &var : data.vars) {
        if (isSemi(var)) {
            var.lb = std::min(var.lb, 0.0);
            var.ub = std::max(var.ub, 0.0);
        }
        var.type = KVX_CONTINUOUS;
    }
    return data;
}

// The value of a piecewise-linear term, the better one where it jumps; beyond its ends as it is
// solved, too: in the direction of the last segment.
double pwlValue(const Variable &var, double x, int sense) {
    const std::vector<double> &xs = var.pwlX, &ys = var.pwlY;
    double best = sense * KVX_INFINITY;
    for (size_t k = 0; k + 1 < xs.size(); k++) {
        bool begins = k == 0 || xs[k] <= x, ends = k + 2 == xs.size() || x <= xs[k + 1];
        double length = xs[k + 1] - xs[k];
        double y = length > 0 ? ys[k] + (ys[k + 1] - ys[k]) / length * (x - xs[k])
                              : sense * std::min(sense * ys[k], sense * ys[k + 1]);
        if (begins && ends && sense * y < sense * best)
            best = y;
    }
    return xs.size() == 1 ? ys[0] : best;
}

// Fixes whatever makes the model discrete at the solution, which stays feasible and therefore
// optimal in what is left.
ModelData fixed(const KVXmodel &model) {
    if (!model.solution.hasX)
        fail(KVX_ERROR_DATA_NOT_AVAILABLE, "there is no solution to fix variables at");
    ModelData data = model;
    auto at = [&](int j) -> Variable & { return data.vars[static_cast<size_t>(j)]; };
    auto valueOf = [&](int j) {
        double value = model.solution.x[static_cast<size_t>(j)];
        return isInteger(model.vars[static_cast<size_t>(j)]) ? std::round(value) : value;
    };
    auto fix = [&](int j, double value) { at(j).lb = at(j).ub = value; };
    for (int j = 0; j < intSize(data.vars.size()); j++) {
        Variable &var = at(j);
        const double x = valueOf(j), outside = std::max(var.lb - x, x - var.ub);
        if (isInteger(var) || (isSemi(var) && std::abs(x) <= outside))
            fix(j, isInteger(var) ? x : 0);
        var.type = KVX_CONTINUOUS;
        if (!var.pwlX.empty() && data.objectives.empty()) {
            fix(j, x);
            data.objcon += pwlValue(var, x, data.objsense);
        }
        var.pwlX.clear();
        var.pwlY.clear();
    }
    for (const Sos &set : data.sos) {
        std::vector<Entry> members = set.members;
        auto size = [&](const Entry &member) { return std::abs(valueOf(member.index)); };
        std::sort(members.begin(), members.end(),
                  [&](const Entry &a, const Entry &b) { return size(a) > size(b); });
        for (size_t k = 0; k < members.size(); k++)
            if (k >= static_cast<size_t>(set.type) || size(members[k]) < 1e-6)
                fix(members[k].index, 0);
    }
    for (const GeneralConstraint &constr : data.genconstrs) {
        for (int var : dependsOn(constr))
            fix(var, valueOf(var));
        if (constr.kind == KVX_GENCONSTR_INDICATOR && valueOf(constr.first) == constr.second) {
            Range range = sidesOf(constr.sense, constr.number, data.constrs.size());
            addConstraint(data,
                          {"", range.kind, range.lower, range.upper, KVX_BASIC, 0, constr.linear});
        }
    }
    data.sos.clear();
    data.genconstrs.clear();
    return data;
}

// The linear model that a ClpSimplex holds, in which sense turned the objective into a cost.
ModelData dataOf(const ClpSimplex &lp, int sense) {
    ModelData data;
    data.objsense = sense;
    data.objcon = -sense * lp.objectiveOffset();
    auto limited = [](double value) { return std::clamp(value, -KVX_INFINITY, KVX_INFINITY); };
    for (int i = 0; i < lp.numberRows(); i++) {
        Constraint constr;
        constr.lower = limited(lp.rowLower()[i]);
        constr.upper = limited(lp.rowUpper()[i]);
        constr.sense = senseOf(constr.lower, constr.upper);
        addConstraint(data, constr);
    }
    const CoinPackedMatrix &matrix = *lp.matrix();
    for (int j = 0; j < lp.numberColumns(); j++) {
        Variable var;
        var.lb = limited(lp.columnLower()[j]);
        var.ub = limited(lp.columnUpper()[j]);
        var.obj = sense * lp.objective()[j];
        var.type = lp.isInteger(j) ? KVX_INTEGER : KVX_CONTINUOUS;
        for (auto k = matrix.getVectorFirst(j); k < matrix.getVectorLast(j); k++)
            var.column.push_back({matrix.getIndices()[k], matrix.getElements()[k]});
        addVariable(data, std::move(var));
    }
    return data;
}

// A model that presolve finds to have no optimum is its own presolved model.
ModelData presolved(const KVXmodel &model) {
    refuseUnlessLinear(model, "presolve");
    if (model.vars.empty() || model.constrs.empty())
        return model;
    Problem problem(model);
    ClpSimplex lp;
    problem.load(lp);
    for (size_t j = 0; j < problem.integer.size(); j++)
        if (problem.integer[j])
            lp.setInteger(static_cast<int>(j));
    ClpPresolve presolve;
    std::unique_ptr<ClpSimplex> smaller(presolve.presolvedModel(lp, 1e-8, true));
    ModelData data = smaller ? dataOf(*smaller, model.objsense) : ModelData(model);
    data.name = model.name;
    return data;
}

// Every finite side of a row or variable has a multiplier, whose cost is that side; every variable
// becomes an equation.
ModelData dual(const KVXmodel &model) {
    refuseUnlessLinear(model, "the dual");
    for (int j = 0; j < intSize(model.vars.size()); j++)
        if (model.vars[static_cast<size_t>(j)].type != KVX_CONTINUOUS)
            fail(KVX_ERROR_NOT_SUPPORTED, "variable %s isn't continuous: there is no dual",
                 varName(model, j).c_str());
    ModelData data;
    data.objsense = -model.objsense;
    data.objcon = model.objcon;
    for (const Variable &var : model.vars) {
        Constraint constr;
        constr.name = var.name;
        constr.sense = KVX_EQUAL;
        constr.lower = constr.upper = model.objsense * var.obj;
        addConstraint(data, std::move(constr));
    }
    auto multiplier = [&](const std::string &name, double side, double lb, double ub,
                          const std::vector<Entry> &column) {
        Variable var;
        var.name = name;
        var.obj = model.objsense * side;
        var.lb = lb;
        var.ub = ub;
        var.column = column;
        addVariable(data, std::move(var));
    };
    auto multipliers = [&](const std::string &name, double lower, double upper,
                           const std::vector<Entry> &column) {
        if (lower == upper)
            return multiplier(name, lower, -KVX_INFINITY, KVX_INFINITY, column);
        if (lower > -KVX_INFINITY)
            multiplier(name, lower, 0, KVX_INFINITY, column);
        if (upper < KVX_INFINITY)
            multiplier(name, upper, -KVX_INFINITY, 0, column);
    };
    for (const Constraint &constr : model.constrs)
        multipliers(constr.name, constr.lower, constr.upper, constr.row);
    for (int j = 0; j < intSize(model.vars.size()); j++) {
        const Variable &var = model.vars[static_cast<size_t>(j)];
        multipliers("", var.lb, var.ub, {{j, 1}});
    }
    return data;
}

// Slack on every finite side of a linear constraint is the only cost.
ModelData feasibility(const KVXmodel &model) {
    ModelData data = model;
    data.objsense = KVX_MINIMIZE;
    data.objcon = 0;
    data.quadratic.clear();
    data.objectives.clear();
    data.objNumber = 0;
    for (Variable &var : data.vars) {
        var.obj = 0;
        var.pwlX.clear();
        var.pwlY.clear();
    }
    for (int i = 0; i < intSize(model.constrs.size()); i++) {
        const Constraint &constr = model.constrs[static_cast<size_t>(i)];
        for (double direction : {1.0, -1.0})
            if (direction > 0 ? constr.lower > -KVX_INFINITY : constr.upper < KVX_INFINITY) {
                Variable violation;
                violation.obj = 1;
                violation.column = {{i, direction}};
                addVariable(data, std::move(violation));
            }
    }
    data.hasBasis = false;
    return data;
}

} // namespace

int KVXcopymodeltoenv(KVXmodel *model, KVXenv *env, KVXmodel **newP) {
    return guarded(model, [&] {
        needed(newP, "newP");
        *newP = makeModel(*needed(env, "env"), *model).release();
    });
}

int KVXrelaxmodel(KVXmodel *model, KVXmodel **newP) {
    return derive(model, newP, relaxed);
}

int KVXfixmodel(KVXmodel *model, KVXmodel **newP) {
    return derive(model, newP, fixed);
}

int KVXconverttofixed(KVXmodel *model) {
    return guarded(model, [&] {
        ModelData data = fixed(*model);
        std::swap(static_cast<ModelData &>(*model), data);
        touch(*model);
    });
}

int KVXpresolvemodel(KVXmodel *model, KVXmodel **newP) {
    return derive(model, newP, presolved);
}

int KVXdualmodel(KVXmodel *model, KVXmodel **newP) {
    return derive(model, newP, dual);
}

int KVXfeasibility(KVXmodel *model, KVXmodel **newP) {
    return derive(model, newP, feasibility);
}

int KVXlinearizemodel(KVXmodel *model, KVXmodel **newP) {
    return derive(model, newP, [](const KVXmodel &original) -> ModelData {
        auto linear = reformulated(original);
        return linear ? *linear : original;
    });
}

// A model has one scenario, itself.
int KVXsinglescenariomodel(KVXmodel *model, KVXmodel **newP) {
    return derive(model, newP, [](const KVXmodel &original) -> ModelData { return original; });
}
