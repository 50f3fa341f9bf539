// Mixed-integer models whose relaxation is unbounded.
#include "guard.h"
#include "optimize.h"

#include <cmath>
#include <utility>

namespace korvex {
namespace {

constexpr int anyNodes = 500,
              farNodes = 10000; // spent on any solution, and on one that is far away

// Without sets the model is unbounded if it has a solution at all.
int solveIntegers(Run &run) {
    auto inner = makeInnerModel(run.settings, run.model);
    for (const Constraint &row : run.lazies)
        addConstraint(*inner, row);
    const int status = findPoint(run, *inner, anyNodes);
    return inner->solution.hasX              ? KVX_STATUS_UNBOUNDED
           : run.stopped()                   ? run.stopped()
           : status == KVX_STATUS_INFEASIBLE ? status
                                             : KVX_STATUS_INFEASIBLE_OR_UNBOUNDED;
}

// The row that only solutions satisfy whose objective, to be minimised, is far below zero.
Constraint farRow(const Problem &problem) {
    constexpr double far = 1e6; // times the largest cost
    Constraint row;
    double largest = 0;
    for (size_t j = 0; j < problem.cost.size(); j++)
        if (problem.cost[j] != 0) {
            row.row.push_back({intSize(j), problem.cost[j]});
            largest = std::max(largest, std::abs(problem.cost[j]));
        }
    row.upper = -far * largest;
    return row;
}

// Whether there is a ray from a solution that has zeros where the solution has them in sets.
bool hasRay(Run &run, const Problem &problem, const std::vector<double> &x) {
    Problem rest = problem;
    for (const Sos &set : problem.sets)
        for (auto [j, weight] : set.members)
            if (std::abs(x[at(j)]) <= zeroInSet)
                rest.lower[at(j)] = rest.upper[at(j)] = 0;
    return solveLp(run, rest).status == KVX_STATUS_UNBOUNDED;
}

} // namespace

// A ray of the relaxation may break a set and proves nothing. When no solution is far away, the row
// that says so limits the relaxation.
Outcome solveUnbounded(Run &run, Problem &problem) {
    if (problem.sets.empty())
        return {solveIntegers(run)};
    auto inner = makeInnerModel(run.settings, reformulated(run.model));
    Constraint row = farRow(problem);
    addConstraint(*inner, row);
    const int status = findPoint(run, *inner, farNodes);
    if (status == KVX_STATUS_INFEASIBLE) {
        row.lower = std::exchange(row.upper, KVX_INFINITY);
        problem.addRow(row);
        return solveLp(run, problem);
    }
    std::vector<double> x = inner->solution.x;
    const bool isUnbounded =
        inner->solution.hasX && problem.makeSolution(x, run.tolerance()) && hasRay(run, problem, x);
    if (!isUnbounded && !run.stopped())
        fail(KVX_ERROR_NOT_SUPPORTED, "the model's relaxation is unbounded: with sets, or what "
                                      "becomes sets, give the variables bounds");
    return {isUnbounded ? KVX_STATUS_UNBOUNDED : run.stopped()};
}

} // namespace korvex
