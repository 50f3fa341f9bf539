// Linear models, by Clp.
#include "optimize.h"

#include "params.h"

#include <ClpSolve.hpp>

#include <algorithm>

namespace korvex {

int SimplexWatch::event(Event event) {
    if (event >= presolveStart && event <= presolveEnd) {
        if (event == presolveStart && itself)
            run.enter(KVX_CB_PRESOLVE);
        return -1; // The next iteration sees whether the run has to end.
    }
    if (itself && model_ && run.onSolvingThread()) { // The barrier method has no simplex model.
        if (run.phase() == KVX_CB_PRESOLVE) {
            run.columnsRemoved = static_cast<int>(run.model.vars.size()) - model_->numberColumns();
            run.rowsRemoved = static_cast<int>(run.model.constrs.size()) - model_->numberRows();
            run.enter(KVX_CB_PRESOLVE);
            run.enter(KVX_CB_SIMPLEX);
        }
        run.iterations = run.earlierIterations + model_->numberIterations();
        run.objective = run.sense * model_->objectiveValue();
        run.primalInfeasibility = model_->sumPrimalInfeasibilities();
        run.dualInfeasibility = model_->sumDualInfeasibilities();
    }
    return run.poll() ? 0 : -1;
}

namespace {

// Clp's statuses, once they are certain.
enum { optimal = 0, infeasible = 1, unbounded = 2 };

int fromClp(ClpSimplex::Status status) {
    switch (status) {
    case ClpSimplex::basic:
        return KVX_BASIC;
    case ClpSimplex::atUpperBound:
        return KVX_NONBASIC_UPPER;
    case ClpSimplex::atLowerBound:
    case ClpSimplex::isFixed:
        return KVX_NONBASIC_LOWER;
    default:
        return KVX_SUPERBASIC;
    }
}

ClpSimplex::Status toClp(int basis) {
    switch (basis) {
    case KVX_BASIC:
        return ClpSimplex::basic;
    case KVX_NONBASIC_UPPER:
        return ClpSimplex::atUpperBound;
    case KVX_NONBASIC_LOWER:
        return ClpSimplex::atLowerBound;
    default:
        return ClpSimplex::superBasic;
    }
}

void setBasis(ClpSimplex &lp, const ModelData &model) {
    lp.createStatus();
    for (size_t j = 0; j < model.vars.size(); j++)
        lp.setColumnStatus(static_cast<int>(j), toClp(model.vars[j].basis));
    for (size_t i = 0; i < model.constrs.size(); i++)
        lp.setRowStatus(static_cast<int>(i), toClp(model.constrs[i].basis));
}

void prepare(ClpSimplex &lp, Run &run, const Problem &problem) {
    problem.load(lp);
    lp.setPrimalTolerance(dblParam(run.settings, "FeasibilityTol"));
    lp.setDualTolerance(dblParam(run.settings, "OptimalityTol"));
    lp.setRandomSeed(1 + intParam(run.settings, "Seed") % 1000000);
    SimplexWatch watch(run, true);
    lp.passInEventHandler(&watch);
}

void solve(ClpSimplex &lp, Run &run) {
    int method = intParam(run.settings, "Method");
    if (run.model.hasBasis) {
        setBasis(lp, run.model);
        run.enter(KVX_CB_SIMPLEX);
        if (method == 0)
            lp.primal();
        else
            lp.dual();
        return;
    }
    ClpSolve options;
    bool presolve = intParam(run.settings, "Presolve") != 0;
    options.setPresolveType(presolve ? ClpSolve::presolveOn : ClpSolve::presolveOff);
    options.setSolveType(method == 0   ? ClpSolve::usePrimal
                         : method == 1 ? ClpSolve::useDual
                         : method == 2 ? ClpSolve::useBarrier
                                       : ClpSolve::useDual);
    if (!presolve)
        run.enter(KVX_CB_SIMPLEX);
    lp.initialSolve(options);
    if (run.phase() != KVX_CB_SIMPLEX)
        run.enter(KVX_CB_SIMPLEX);
}

} // namespace

Outcome solveLp(Run &run, const Problem &problem, ClpSimplex &lp) {
    Outcome outcome;
    for (size_t j = 0; j < problem.cost.size(); j++)
        if (problem.lower[j] > problem.upper[j]) {
            outcome.status = KVX_STATUS_INFEASIBLE;
            return outcome;
        }
    prepare(lp, run, problem);
    solve(lp, run);
    // Presolve and dual simplex can't always tell an infeasible model from an unbounded one, and
    // what they find may be off by more than the tolerance once it is scaled back. Plain primal
    // simplex without scaling settles both.
    double tolerance = 10 * lp.primalTolerance();
    auto point = [&] {
        const double *x = lp.primalColumnSolution();
        return std::vector<double>(x, x + problem.cost.size());
    };
    auto settled = [&] {
        return lp.status() == optimal && problem.violation(point()) <= tolerance;
    };
    for (int attempt = 0; attempt < 2 && !settled() && !run.stopped(); attempt++) {
        if (attempt == 1)
            lp.scaling(0);
        lp.primal();
        if (lp.status() == infeasible || lp.status() == unbounded)
            break;
    }
    run.iterations = std::max(run.iterations, run.earlierIterations + lp.numberIterations());
    run.earlierIterations = run.iterations;
    if (!settled()) {
        outcome.status = run.stopped()               ? run.stopped()
                         : lp.status() == infeasible ? KVX_STATUS_INFEASIBLE
                         : lp.status() == unbounded  ? KVX_STATUS_UNBOUNDED
                                                     : KVX_STATUS_NUMERIC;
        return outcome;
    }
    outcome.status = KVX_STATUS_OPTIMAL;
    outcome.x = point();
    outcome.objective = problem.objective(outcome.x);
    for (size_t j = 0; j < problem.cost.size(); j++) { // The zero makes a negative zero positive.
        outcome.reducedCosts.push_back(problem.sense * lp.dualColumnSolution()[j] + 0.0);
        outcome.basis.push_back(fromClp(lp.getColumnStatus(static_cast<int>(j))));
    }
    for (size_t i = 0; i < problem.rowLower.size(); i++) {
        outcome.duals.push_back(problem.sense * lp.dualRowSolution()[i] + 0.0);
        outcome.rowBasis.push_back(fromClp(lp.getRowStatus(static_cast<int>(i))));
    }
    return outcome;
}

} // namespace korvex
