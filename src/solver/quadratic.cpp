// Convex quadratic objectives of continuous variables, by Clp's barrier method. (Its simplex method
// for them gives wrong optima.) What it finds is checked: a point is optimal just when it is
// optimal for the linear objective with its gradient, and that linear model gives bound and duals.
#include "optimize.h"

#include "guard.h"
#include "params.h"

#include <ClpSolve.hpp>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace korvex {
namespace {

// The matrix of second derivatives, by rows.
using Hessian = std::vector<std::map<int, double>>;

Hessian hessianOf(const Problem &problem) {
    Hessian hessian(problem.cost.size());
    for (const QuadraticTerm &term : problem.quadratic) {
        hessian[static_cast<size_t>(term.row)][term.col] += term.value;
        hessian[static_cast<size_t>(term.col)][term.row] += term.value;
    }
    return hessian;
}

// Whether no pivot of symmetric elimination is negative, up to rounding errors.
bool isConvex(Hessian rest) {
    double largest = 0;
    for (const auto &row : rest)
        for (auto [column, value] : row)
            largest = std::max(largest, std::abs(value));
    for (size_t k = 0; k < rest.size(); k++) {
        auto pivotColumn = static_cast<int>(k);
        auto row = std::exchange(rest[k], {});
        double pivot = row[pivotColumn];
        row.erase(pivotColumn);
        for (auto [i, value] : row) {
            if (pivot <= 1e-9 * largest && std::abs(value) > 1e-7 * largest)
                return false;
            auto &changed = rest[static_cast<size_t>(i)];
            changed.erase(pivotColumn);
            if (pivot > 1e-9 * largest)
                for (auto [j, other] : row)
                    changed[j] -= value * other / pivot;
        }
        if (pivot < -1e-9 * largest)
            return false;
    }
    return true;
}

// Whether the objective falls without end along a direction in which no bound or row is met and the
// quadratic part doesn't change.
bool isUnbounded(Run &run, Problem problem, const Hessian &hessian) {
    auto openSides = [](std::vector<double> &lower, std::vector<double> &upper, double open) {
        for (size_t k = 0; k < lower.size(); k++) {
            lower[k] = lower[k] <= -KVX_INFINITY ? -open : 0;
            upper[k] = upper[k] >= KVX_INFINITY ? open : 0;
        }
    };
    openSides(problem.lower, problem.upper, 1);
    openSides(problem.rowLower, problem.rowUpper, COIN_DBL_MAX);
    for (const auto &row : hessian) {
        Row flat{{}, 0, 0};
        for (auto [column, value] : row)
            flat.entries.push_back({column, value});
        problem.addRow(flat);
    }
    problem.constant = 0;
    ClpSimplex lp;
    Outcome outcome = solveLp(run, problem, lp);
    return outcome.status == KVX_STATUS_OPTIMAL && problem.sense * outcome.objective < -1e-9;
}

// The problem within a box: the barrier method may run away without bounds.
Problem boxed(Problem problem, double size) {
    for (size_t k = 0; k < problem.cost.size(); k++) {
        if (problem.lower[k] <= -KVX_INFINITY)
            problem.lower[k] = std::min(-size, problem.upper[k]);
        if (problem.upper[k] >= KVX_INFINITY)
            problem.upper[k] = std::max(size, problem.lower[k]);
    }
    return problem;
}

std::vector<double> barrier(Run &run, const Problem &problem, const Hessian &hessian) {
    std::vector<CoinBigIndex> begin = {0};
    std::vector<int> index;
    std::vector<double> value;
    for (size_t k = 0; k < hessian.size(); k++) {
        for (auto [column, entry] : hessian[k])
            if (column >= static_cast<int>(k)) {
                index.push_back(column);
                value.push_back(entry);
            }
        begin.push_back(static_cast<CoinBigIndex>(index.size()));
    }
    ClpSimplex lp;
    problem.load(lp);
    lp.loadQuadraticObjective(static_cast<int>(hessian.size()), begin.data(), index.data(),
                              value.data());
    SimplexWatch watch(run, true);
    lp.passInEventHandler(&watch);
    ClpSolve options;
    options.setSolveType(ClpSolve::useBarrierNoCross);
    options.setPresolveType(ClpSolve::presolveOff);
    lp.initialSolve(options);
    return {lp.primalColumnSolution(), lp.primalColumnSolution() + hessian.size()};
}

} // namespace

Outcome solveQuadratic(Run &run, const Problem &problem) {
    const Hessian hessian = hessianOf(problem);
    if (problem.isMip)
        fail(KVX_ERROR_NOT_SUPPORTED,
             "a quadratic objective can't be optimized together with discrete variables");
    if (!isConvex(hessian))
        fail(KVX_ERROR_NOT_SUPPORTED, "the quadratic objective isn't %s",
             problem.sense > 0 ? "convex" : "concave");
    Problem linear = problem;
    linear.quadratic.clear();
    std::fill(linear.cost.begin(), linear.cost.end(), 0.0);
    ClpSimplex feasibility;
    Outcome outcome = solveLp(run, linear, feasibility);
    if (outcome.status != KVX_STATUS_OPTIMAL)
        return outcome;

    std::vector<double> x = std::move(outcome.x);
    auto magnitude = [&] {
        double largest = 1;
        for (double value : x)
            largest = std::max(largest, std::abs(value));
        return largest;
    };
    for (double box = 100 * magnitude(); box < 1e9; box *= 100) {
        x = barrier(run, boxed(problem, box), hessian);
        if (run.stopped() || magnitude() < 0.9 * box)
            break;
    }
    outcome = {};
    outcome.status = run.stopped() ? run.stopped() : KVX_STATUS_NUMERIC;
    if (run.stopped())
        return outcome;
    for (size_t k = 0; k < x.size(); k++) {
        x[k] = std::clamp(x[k], problem.lower[k], problem.upper[k]);
        linear.cost[k] = problem.cost[k];
    }
    for (size_t k = 0; k < x.size(); k++)
        for (auto [column, value] : hessian[k])
            linear.cost[k] += value * x[static_cast<size_t>(column)];
    // Convexity makes it enough to look at the surroundings of x.
    ClpSimplex lp;
    Outcome tangent = solveLp(run, boxed(linear, 10 * magnitude()), lp);
    double gap = problem.sense * (linear.objective(x) - tangent.objective);
    double objective = problem.objective(x);
    if (tangent.status == KVX_STATUS_OPTIMAL &&
        problem.violation(x) <= 10 * dblParam(run.settings, "FeasibilityTol") &&
        gap <= 1e-6 * std::max(1.0, std::abs(objective))) {
        outcome = tangent;
        outcome.x = x;
        outcome.objective = objective;
        outcome.basis.clear();
    } else if (isUnbounded(run, problem, hessian)) {
        outcome.status = KVX_STATUS_UNBOUNDED;
    }
    return outcome;
}

} // namespace korvex
