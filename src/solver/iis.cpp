// Irreducible infeasible subsystems: a deletion filter over linear constraints and bounds. All else
// (integrality, the bounds of semi-continuous variables, sets, general constraints) stays.
#include "guard.h"
#include "run.h"

#include <algorithm>

namespace korvex {
namespace {

constexpr double trialNodes = 2000; // Integers without bounds can keep a search going for ever.

// Whether the model is found to be infeasible with only those constraints and bounds that are
// marked.
bool isInfeasible(Run &run, double nodeLimit) {
    auto inner = makeInnerModel(run.settings, run.model);
    std::vector<int> numbers;
    int kept = 0;
    for (const Sides &constr : inner->constrs)
        numbers.push_back(constr.iis ? kept++ : -1);
    keepConstraints(*inner, numbers);
    for (Variable &var : inner->vars)
        if (!var.isSemi()) {
            var.lb = var.iisLb ? var.lb : -KVX_INFINITY;
            var.ub = var.iisUb ? var.ub : KVX_INFINITY;
            var.type = var.isInteger() ? KVX_INTEGER : KVX_CONTINUOUS;
        }
    int status = findPoint(run, *inner, nodeLimit);
    if (run.stopped())
        fail(KVX_ERROR_DATA_NOT_AVAILABLE, "the search was ended early");
    return status == KVX_STATUS_INFEASIBLE;
}

void findSubsystem(Run &run) {
    run.model.hasIis = false;
    std::vector<bool *> members; // their marks
    for (Sides &constr : run.model.constrs)
        members.push_back(&constr.iis);
    for (Variable &var : run.model.vars) {
        var.iisLb = var.iisUb = false;
        if (var.lb > -KVX_INFINITY && !var.isSemi())
            members.push_back(&var.iisLb);
        if (var.ub < KVX_INFINITY && !var.isSemi())
            members.push_back(&var.iisUb);
    }
    for (bool *mark : members)
        *mark = true;
    if (!isInfeasible(run, KVX_INFINITY))
        fail(KVX_ERROR_INVALID_ARGUMENT, "the model is feasible, as far as can be told");
    // Those before the position belong to the result: without one of them the present rest is
    // feasible, or it can't be told. Several are left out at once while that goes well.
    for (size_t position = 0, chunk = members.size() / 4 + 1; position < members.size();) {
        chunk = std::min(chunk, members.size() - position);
        run.report(KVX_CB_IIS, {{KVX_CB_IIS_CONSTRS, 1.0 * intSize(position)},
                                {KVX_CB_IIS_UNDECIDED, 1.0 * intSize(members.size() - position)}});
        auto begin = members.begin() + intSize(position), end = begin + intSize(chunk);
        std::for_each(begin, end, [](bool *mark) { *mark = false; });
        if (isInfeasible(run, trialNodes)) {
            members.erase(begin, end);
            chunk *= 2;
            continue;
        }
        std::for_each(begin, end, [](bool *mark) { *mark = true; });
        position += chunk == 1;
        chunk = std::max<size_t>(chunk / 2, 1);
    }
    run.model.hasIis = true;
    run.say("Irreducible infeasible subsystem: %zu constraints and bounds", members.size());
}

} // namespace
} // namespace korvex

int KVXcomputeIIS(KVXmodel *model) {
    return korvex::perform(model, korvex::findSubsystem);
}
