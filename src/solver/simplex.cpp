// Linear models, by Clp.
#include "optimize.h"

#include "params.h"

#include <ClpSolve.hpp>

#include <algorithm>

namespace korvex {

int SimplexWatch::event(Event event) {
    if (!itself || !model_) // The barrier method has no simplex model.
        return run.poll() ? 0 : -1;
    if (event == presolveSize) {
        int columns = intSize(run.model.vars.size()), rows = intSize(run.model.constrs.size());
        run.report(KVX_CB_PRESOLVE,
                   {{KVX_CB_PRE_COLDEL, 1.0 * std::max(0, columns - model_->numberColumns())},
                    {KVX_CB_PRE_ROWDEL, 1.0 * std::max(0, rows - model_->numberRows())}});
    }
    if (event >= presolveStart && event <= presolveEnd)
        return -1; // The next iteration sees whether the run has to end.
    run.iterations = run.earlierIterations + model_->numberIterations();
    return run.progress(KVX_CB_SIMPLEX, {{KVX_CB_SPX_ITERATIONS, run.iterations},
                                         {KVX_CB_SPX_OBJVAL, run.sense * model_->objectiveValue()},
                                         {KVX_CB_SPX_PRIMINF, model_->sumPrimalInfeasibilities()},
                                         {KVX_CB_SPX_DUALINF, model_->sumDualInfeasibilities()}})
               ? 0
               : -1;
}

namespace {

// Basis statuses by those of Clp, and the other way round by their negatives.
constexpr int fromClp[] = {KVX_SUPERBASIC,     KVX_BASIC,      KVX_NONBASIC_UPPER,
                           KVX_NONBASIC_LOWER, KVX_SUPERBASIC, KVX_NONBASIC_LOWER};
constexpr ClpSimplex::Status toClp[] = {ClpSimplex::basic, ClpSimplex::atLowerBound,
                                        ClpSimplex::atUpperBound, ClpSimplex::superBasic};

void solve(ClpSimplex &lp, const Run &run) {
    const ModelData &model = run.model;
    int method = intParam(run.settings, "Method");
    if (model.hasBasis) {
        lp.createStatus();
        for (size_t j = 0; j < model.vars.size(); j++)
            lp.setColumnStatus(intSize(j), toClp[-model.vars[j].basis]);
        for (size_t i = 0; i < model.constrs.size(); i++)
            lp.setRowStatus(intSize(i), toClp[-model.constrs[i].basis]);
        method == 0 ? lp.primal() : lp.dual();
        return;
    }
    bool presolve = intParam(run.settings, "Presolve");
    ClpSolve options;
    options.setPresolveType(presolve ? ClpSolve::presolveOn : ClpSolve::presolveOff);
    options.setSolveType(method == 0   ? ClpSolve::usePrimal
                         : method == 2 ? ClpSolve::useBarrier
                                       : ClpSolve::useDual);
    options.setSpecialOption(2, 1); // Clp leaves the process's handler of interrupts alone.
    lp.initialSolve(options);
}

} // namespace

Outcome solveLp(Run &run, const Problem &problem, ClpSimplex &lp) {
    enum { optimal, infeasible, unbounded }; // Clp's statuses
    const size_t columns = problem.cost.size();
    Outcome outcome;
    for (size_t j = 0; j < columns; j++)
        if (problem.lower[j] > problem.upper[j]) {
            outcome.status = KVX_STATUS_INFEASIBLE;
            return outcome;
        }
    problem.load(lp);
    lp.setPrimalTolerance(dblParam(run.settings, "FeasibilityTol"));
    lp.setDualTolerance(dblParam(run.settings, "OptimalityTol"));
    lp.setRandomSeed(1 + intParam(run.settings, "Seed") % 1000000);
    SimplexWatch watch(run, true);
    lp.passInEventHandler(&watch);
    solve(lp, run);
    auto isSettled = [&] {
        outcome.x.assign(lp.primalColumnSolution(), lp.primalColumnSolution() + columns);
        return lp.status() == optimal && problem.violation(outcome.x) <= run.tolerance();
    };
    // Presolve and dual simplex can't always tell an infeasible model from an unbounded one, and
    // what they find may be off by more than the tolerance once it is scaled back. Plain primal
    // simplex without scaling settles both.
    for (int scaling : {1, 0}) {
        if (isSettled() || run.stopped())
            break;
        lp.scaling(scaling);
        lp.primal();
        if (lp.status() == infeasible || lp.status() == unbounded)
            break;
    }
    run.earlierIterations = run.iterations =
        std::max(run.iterations, run.earlierIterations + lp.numberIterations());
    if (!isSettled()) {
        outcome.x.clear();
        outcome.status = run.stopped()               ? run.stopped()
                         : lp.status() == infeasible ? KVX_STATUS_INFEASIBLE
                         : lp.status() == unbounded  ? KVX_STATUS_UNBOUNDED
                                                     : KVX_STATUS_NUMERIC;
        return outcome;
    }
    outcome.status = KVX_STATUS_OPTIMAL;
    outcome.objective = problem.objective(outcome.x);
    for (size_t j = 0; j < columns; j++) { // The zero makes a negative zero positive.
        outcome.reducedCosts.push_back(problem.sense * lp.dualColumnSolution()[j] + 0.0);
        outcome.basis.push_back(fromClp[lp.getColumnStatus(intSize(j))]);
    }
    for (size_t i = 0; i < problem.rowLower.size(); i++) {
        outcome.duals.push_back(problem.sense * lp.dualRowSolution()[i] + 0.0);
        outcome.rowBasis.push_back(fromClp[lp.getRowStatus(intSize(i))]);
    }
    return outcome;
}

} // namespace korvex
