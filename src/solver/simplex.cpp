// Linear models, by Clp.
#include "optimize.h"

#include "assertion.h"
#include "params.h"

#include <ClpSolve.hpp>

#include <algorithm>
#include <cmath>

namespace korvex {

int SimplexWatch::event(Event event) {
    CalledByCoin here;
    if (!itself || !model_) // The barrier method has no simplex model.
        return run.poll() && !run.isWindingUp ? 0 : -1;
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

enum { optimal, infeasible, unbounded }; // Clp's statuses of models

// Clp's statuses by the negatives of the interface's.
constexpr ClpSimplex::Status toClp[] = {ClpSimplex::basic, ClpSimplex::atLowerBound,
                                        ClpSimplex::atUpperBound, ClpSimplex::superBasic};

// Plain primal simplex, first without costs. Presolve, dual simplex and scaling can't always tell
// an infeasible model from an unbounded one; this can.
void solvePlainly(ClpSimplex &lp, const Run &run, const Problem &problem) {
    const std::vector<double> zeros(problem.cost.size());
    lp.scaling(0);
    lp.allSlackBasis(true);
    lp.chgObjCoefficients(zeros.data());
    lp.primal();
    lp.chgObjCoefficients(problem.cost.data());
    if (lp.status() != infeasible && !run.stopped())
        lp.primal();
}

// Clp's barrier method gives up, slowly, when its iterates diverge, or calls points around 1e20
// optimal. So it gets a problem that has points inside all of its bounds, in a box; primal simplex
// goes on without.
void solveByBarrier(ClpSimplex &lp, const Run &run, const Problem &problem) {
    constexpr double box = 1e9, margin = 1e-4;
    const std::vector<double> zeros(problem.cost.size());
    lp.chgObjCoefficients(zeros.data());
    lp.primal();
    lp.chgObjCoefficients(problem.cost.data());
    if (lp.status() != optimal || run.stopped())
        return;
    Problem wider = problem;
    auto widen = [&](std::vector<double> &lower, std::vector<double> &upper) {
        for (size_t k = 0; k < lower.size(); k++) {
            const double low = lower[k], high = upper[k];
            lower[k] = std::max(low, std::min(-box, high - box)) - margin;
            upper[k] = std::min(high, std::max(box, low + box)) + margin;
        }
    };
    widen(wider.lower, wider.upper);
    widen(wider.rowLower, wider.rowUpper);
    ClpSolve options;
    options.setSolveType(ClpSolve::useBarrier);
    options.setPresolveType(ClpSolve::presolveOff);
    options.setSpecialOption(2, 1);
    wider.setSides(lp);
    lp.initialSolve(options);
    problem.setSides(lp);
    lp.primal();
}

void solve(ClpSimplex &lp, const Run &run, const Problem &problem) {
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
    options.setSpecialOption(2, 1); // Clp leaves the process's handler of interrupts alone.
    if (method == 2)
        return solveByBarrier(lp, run, problem);
    options.setSolveType(method == 0 ? ClpSolve::usePrimal : ClpSolve::useDual);
    lp.initialSolve(options);
}

// What isn't basic is at the bound that it has, if any. Clp now and then says that it is at one
// that it hasn't, or leaves it at one that Clp has made up.
int basisStatus(ClpSimplex::Status status, double value, double lower, double upper) {
    if (status == ClpSimplex::basic)
        return KVX_BASIC;
    if (std::min(value - lower, upper - value) > 1e-6 * (1 + std::abs(value)))
        return KVX_SUPERBASIC;
    return value - lower <= upper - value ? KVX_NONBASIC_LOWER : KVX_NONBASIC_UPPER;
}

} // namespace

Outcome solveLp(Run &run, const Problem &problem) {
    const size_t columns = problem.cost.size();
    for (size_t j = 0; j < columns; j++)
        if (problem.lower[j] > problem.upper[j])
            return {KVX_STATUS_INFEASIBLE};
    Outcome outcome;
    SimplexWatch watch(run, true);
    std::unique_ptr<ClpSimplex> lp;
    auto attempt = [&](auto solve) { // Leaves no lp when Clp gives up.
        lp = std::make_unique<ClpSimplex>();
        problem.load(*lp);
        lp->setPrimalTolerance(dblParam(run.settings, "FeasibilityTol"));
        lp->setDualTolerance(dblParam(run.settings, "OptimalityTol"));
        lp->setRandomSeed(1 + intParam(run.settings, "Seed") % 1000000);
        lp->passInEventHandler(&watch);
        return survives([&] { solve(*lp, run, problem); }, lp);
    };
    auto isSettled = [&] {
        if (!lp)
            return false;
        outcome.x.assign(lp->primalColumnSolution(), lp->primalColumnSolution() + columns);
        return lp->status() == optimal &&
               problem.isOptimal(outcome.x, lp->dualRowSolution(), run.tolerance());
    };
    attempt(solve);
    // What they find may also be off by more than the tolerance once it is scaled back.
    if (!isSettled() && !run.stopped() && !attempt(solvePlainly))
        failByAssertion();
    run.earlierIterations = run.iterations =
        std::max(run.iterations, run.earlierIterations + (lp ? lp->numberIterations() : 0));
    if (!isSettled())
        return {run.stopped()                ? run.stopped()
                : lp->status() == infeasible ? KVX_STATUS_INFEASIBLE
                : lp->status() == unbounded  ? KVX_STATUS_UNBOUNDED
                                             : KVX_STATUS_NUMERIC};
    outcome.status = KVX_STATUS_OPTIMAL;
    outcome.objective = problem.objective(outcome.x);
    for (size_t j = 0; j < columns; j++) { // The zero makes a negative zero positive.
        outcome.reducedCosts.push_back(problem.sense * lp->dualColumnSolution()[j] + 0.0);
        outcome.basis.push_back(basisStatus(lp->getColumnStatus(intSize(j)), outcome.x[j],
                                            problem.lower[j], problem.upper[j]));
    }
    for (size_t i = 0; i < problem.rowLower.size(); i++) {
        outcome.duals.push_back(problem.sense * lp->dualRowSolution()[i] + 0.0);
        outcome.rowBasis.push_back(basisStatus(lp->getRowStatus(intSize(i)),
                                               lp->primalRowSolution()[i], problem.rowLower[i],
                                               problem.rowUpper[i]));
    }
    return outcome;
}

} // namespace korvex
