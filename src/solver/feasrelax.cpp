// Feasibility relaxation: violations become variables, and what they cost the objective.
#include "guard.h"
#include "inner.h"
#include "params.h"
#include "text.h"

#include <algorithm>
#include <cmath>

namespace korvex {
namespace {

enum Penalty { sum, squares, count };

class Relaxation {
  public:
    Relaxation(const ModelData &model, int penalty)
        : original(model), data(model), penalty(penalty) {
        data.objsense = KVX_MINIMIZE;
        data.objcon = 0;
        data.quadratic.clear();
        data.objectives.clear();
        data.hasBasis = false;
        for (Variable &var : data.vars) {
            var.obj = 0;
            var.pwlX.clear();
            var.pwlY.clear();
        }
    }

    // A bound that can be violated is a constraint.
    void relaxBound(size_t j, double Variable::*bound, double weight) {
        Variable &var = data.vars[j];
        double value = var.*bound;
        if (std::abs(value) >= KVX_INFINITY || weight >= KVX_INFINITY)
            return;
        bool isLower = bound == &Variable::lb;
        std::string name = varName(data, static_cast<int>(j));
        if (var.type == KVX_SEMICONT || var.type == KVX_SEMIINT)
            fail(KVX_ERROR_NOT_SUPPORTED,
                 "the bounds of semi-continuous variable %s can't be relaxed",
                 validUtf8(name).c_str());
        if (var.type == KVX_BINARY)
            var.type = KVX_INTEGER;
        var.*bound = isLower ? -KVX_INFINITY : KVX_INFINITY;
        Constraint &constr = data.constrs.emplace_back();
        constr.name = (isLower ? "lb_" : "ub_") + name;
        constr.row = {{static_cast<int>(j), 1}};
        constr.sense = isLower ? KVX_GREATER_EQUAL : KVX_LESS_EQUAL;
        (isLower ? constr.lower : constr.upper) = value;
        relaxConstraint(data.constrs.size() - 1, weight);
    }

    void relaxConstraint(size_t i, double weight) {
        if (weight >= KVX_INFINITY)
            return;
        Constraint &constr = data.constrs[i];
        std::string name = constrName(data, static_cast<int>(i));
        std::vector<Entry> violations;
        for (auto [side, sign, prefix] :
             {std::tuple{constr.lower, 1, "below_"}, std::tuple{constr.upper, -1, "above_"}}) {
            if (std::abs(side) >= KVX_INFINITY)
                continue;
            int index = addVariable(prefix + name, penalty == sum ? weight : 0);
            constr.row.push_back({index, 1.0 * sign});
            violations.push_back({index, static_cast<double>(violations.size() + 1)});
            if (penalty == squares)
                data.quadratic.push_back({index, index, weight});
        }
        if (penalty != count || violations.empty())
            return;
        // A variable that is 1 if and only if nothing is violated: it saves the weight.
        int index = addVariable("kept_" + name, -weight);
        data.vars.back().ub = 1;
        data.objcon += weight;
        violations.push_back({index, static_cast<double>(violations.size() + 1)});
        data.sos.push_back({KVX_SOS_TYPE1, violations});
    }

    // The least penalty. The model keeps its own objective then, and a constraint the penalty.
    double keepLeastPenalty(Run &run) {
        makeColumns(data);
        auto inner = makeInnerModel(run.settings, data);
        setParam(inner->env, "MIPGap", 0);
        int status = solveInside(run, *inner);
        if (run.stopped())
            fail(KVX_ERROR_DATA_NOT_AVAILABLE, "the relaxation was ended early");
        if (status != KVX_STATUS_OPTIMAL)
            fail(KVX_ERROR_INVALID_ARGUMENT,
                 "the model isn't feasible, even with the violations that the weights allow");
        double least = inner->solution.objval;
        Constraint &constr = data.constrs.emplace_back();
        constr.name = "penalty";
        constr.upper = least - data.objcon;
        for (size_t j = 0; j < data.vars.size(); j++) {
            if (data.vars[j].obj != 0)
                constr.row.push_back({static_cast<int>(j), data.vars[j].obj});
            data.vars[j].obj = 0;
        }
        for (size_t j = 0; j < original.vars.size(); j++) {
            data.vars[j].obj = original.vars[j].obj;
            data.vars[j].pwlX = original.vars[j].pwlX;
            data.vars[j].pwlY = original.vars[j].pwlY;
        }
        data.objsense = original.objsense;
        data.objcon = original.objcon;
        data.quadratic = original.quadratic;
        data.objectives = original.objectives;
        for (Objective &objective : data.objectives)
            objective.coefs.resize(data.vars.size());
        return std::max(0.0, least);
    }

    ModelData finished() {
        makeColumns(data);
        return std::move(data);
    }

  private:
    int addVariable(const std::string &name, double cost) {
        Variable &var = data.vars.emplace_back();
        var.name = name;
        var.obj = cost;
        return static_cast<int>(data.vars.size()) - 1;
    }

    const ModelData &original;
    ModelData data;
    const int penalty;
};

void checkWeights(const double *weights, size_t size) {
    for (size_t k = 0; weights && k < size; k++)
        if (!(weights[k] >= 0))
            fail(KVX_ERROR_INVALID_ARGUMENT, "weight %zu is %s: weights must be at least 0", k,
                 toText(weights[k]).c_str());
}

} // namespace
} // namespace korvex

using namespace korvex;

int KVXfeasrelax(KVXmodel *model, int penalty, int minrelax, const double *lbpen,
                 const double *ubpen, const double *conpen, double *result) {
    std::unique_ptr<Relaxation> relaxation;
    int status = guarded(model, [&] {
        needed(result, "result");
        if (penalty < sum || penalty > count || minrelax < 0 || minrelax > 1)
            fail(KVX_ERROR_INVALID_ARGUMENT, "there is no penalty %d or no minrelax %d", penalty,
                 minrelax);
        if (minrelax && penalty == squares)
            fail(KVX_ERROR_NOT_SUPPORTED, "the least sum of squares can't be kept by a linear "
                                          "constraint: minrelax 1 needs penalty 0 or 2");
        const size_t vars = model->vars.size(), constrs = model->constrs.size();
        checkWeights(lbpen, vars);
        checkWeights(ubpen, vars);
        checkWeights(conpen, constrs);
        relaxation = std::make_unique<Relaxation>(*model, penalty);
        for (size_t i = 0; conpen && i < constrs; i++)
            relaxation->relaxConstraint(i, conpen[i]);
        for (size_t j = 0; j < vars; j++) {
            if (lbpen)
                relaxation->relaxBound(j, &Variable::lb, lbpen[j]);
            if (ubpen)
                relaxation->relaxBound(j, &Variable::ub, ubpen[j]);
        }
    });
    double least = 0;
    if (status == KVX_OK && minrelax)
        status = perform(model, [&](Run &run) { least = relaxation->keepLeastPenalty(run); });
    if (status == KVX_OK)
        status = guarded(model, [&] {
            static_cast<ModelData &>(*model) = relaxation->finished();
            touch(*model);
            *result = least;
        });
    return status;
}
