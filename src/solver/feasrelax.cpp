// Feasibility relaxation: violations become variables, and what they cost the objective.
#include "input.h"
#include "params.h"
#include "run.h"

#include <cmath>

namespace korvex {
namespace {

enum Penalty { sum, squares, count };

struct Relaxation {
    ModelData data;
    int penalty;
    std::vector<Entry> costs = {}; // of violations, and what they are more than that
    double constant = 0;

    int addVariable(const std::string &name, double ub, double cost) {
        int index = korvex::addVariable(data, {name, 0, ub});
        if (cost != 0)
            costs.push_back({index, cost});
        return index;
    }

    // Each side that can be violated gets a variable for how much.
    void relaxConstraint(size_t i, double weight) {
        if (weight >= KVX_INFINITY)
            return;
        const Sides &constr = data.constrs[i];
        Sos oneOf{KVX_SOS_TYPE1, {}};
        auto relax = [&](double side, const char *prefix, double sign) {
            if (std::abs(side) >= KVX_INFINITY)
                return;
            double cost = penalty == count ? 0 : weight;
            int index = addVariable(prefix + constr.name.text(), KVX_INFINITY, cost);
            data.rows.add(i, {index, sign});
            oneOf.members.push_back({index, -sign});
        };
        relax(constr.lower, "below_", 1);
        relax(constr.upper, "above_", -1);
        if (penalty != count || oneOf.members.empty())
            return;
        // A variable that is 1 if and only if nothing is violated: it saves the weight.
        oneOf.members.push_back({addVariable("kept_" + constr.name.text(), 1, -weight), 2});
        constant += weight;
        data.sos.push_back(oneOf);
    }

    // A bound that can be violated is a constraint.
    void relaxBound(size_t j, bool isLower, double weight) {
        Variable &var = data.vars[j];
        double &bound = isLower ? var.lb : var.ub;
        if (std::abs(bound) >= KVX_INFINITY || weight >= KVX_INFINITY)
            return;
        if (var.isSemi())
            fail(KVX_ERROR_NOT_SUPPORTED, "semi-continuous variable %s can't be relaxed",
                 var.name.text().c_str());
        var.type = var.isInteger() ? KVX_INTEGER : var.type;
        Constraint constr{{(isLower ? "lb_" : "ub_") + var.name.text()}, {{intSize(j), 1}}};
        std::swap(bound, isLower ? constr.lower : constr.upper);
        relaxConstraint(at(addConstraint(data, constr)), weight);
    }

    ModelData withPenaltyAsObjective() const {
        ModelData result = data;
        clearObjective(result);
        result.objsense = KVX_MINIMIZE;
        result.objcon = constant;
        for (auto [var, cost] : costs)
            if (penalty == squares)
                result.products[{var, var}] = cost;
            else
                result.vars[at(var)].obj = cost;
        return result;
    }

    // The least penalty; a constraint keeps it, or bounds do: the violations with the least sum of
    // squares are the same in all points that have it.
    double keepLeastPenalty(Run &run) {
        auto inner = makeInnerModel(run.settings, withPenaltyAsObjective());
        setParam(inner->env, "MIPGap", 0);
        int status = solveInside(run, *inner);
        if (status == KVX_STATUS_INFEASIBLE)
            fail(KVX_ERROR_INVALID_ARGUMENT, "the violations that the weights allow aren't enough");
        if (status != KVX_STATUS_OPTIMAL)
            fail(KVX_ERROR_DATA_NOT_AVAILABLE, "the least penalty wasn't found: status %d", status);
        if (penalty == squares) {
            for (auto [var, cost] : costs)
                data.vars[at(var)].ub = inner->solution.x[at(var)] + run.tolerance() / 10;
        } else {
            const double most = inner->solution.objval - constant;
            addConstraint(data, {{"penalty", -KVX_INFINITY, most}, costs});
        }
        for (Objective &objective : data.objectives)
            objective.coefs.resize(data.vars.size());
        return std::max(0.0, inner->solution.objval);
    }
};

void checkWeights(const double *weights, size_t size) {
    for (size_t k = 0; weights && k < size; k++)
        if (!(weights[k] >= 0))
            fail(KVX_ERROR_INVALID_ARGUMENT, "weight %zu is negative or no number", k);
}

} // namespace
} // namespace korvex

using namespace korvex;

int KVXfeasrelax(KVXmodel *model, int penalty, int minrelax, const double *lbpen,
                 const double *ubpen, const double *conpen, double *result) {
    Relaxation relaxation{{}, penalty};
    int status = guarded(model, [&] {
        needed(result, "result");
        if (penalty < sum || penalty > count || minrelax < 0 || minrelax > 1)
            fail(KVX_ERROR_INVALID_ARGUMENT, "there is no penalty %d or no minrelax %d", penalty,
                 minrelax);
        const size_t vars = model->vars.size(), constrs = model->constrs.size();
        checkWeights(lbpen, vars);
        checkWeights(ubpen, vars);
        checkWeights(conpen, constrs);
        relaxation.data = *model;
        for (size_t i = 0; conpen && i < constrs; i++)
            relaxation.relaxConstraint(i, conpen[i]);
        for (size_t j = 0; j < vars; j++) {
            if (lbpen)
                relaxation.relaxBound(j, true, lbpen[j]);
            if (ubpen)
                relaxation.relaxBound(j, false, ubpen[j]);
        }
    });
    double least = 0;
    if (status == KVX_OK && minrelax)
        status = perform(model, [&](Run &run) { least = relaxation.keepLeastPenalty(run); });
    return status ? status : guardedChange(model, [&] {
        static_cast<ModelData &>(*model) =
            minrelax ? relaxation.data : relaxation.withPenaltyAsObjective();
        model->hasBasis = false;
        *result = least;
    });
}
