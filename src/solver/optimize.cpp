#include "optimize.h"

#include "guard.h"
#include "reformulate.h"
#include "textfile.h"

#include <algorithm>
#include <cmath>

namespace korvex {
namespace {

// By status.
const char *const statusTexts[] = {
    "",
    "Model is loaded",
    "Optimal solution found",
    "Model is infeasible",
    "Model is unbounded",
    "Model is infeasible or unbounded",
    "Time limit reached",
    "Node limit reached",
    "Iteration limit reached",
    "Solution limit reached",
    "Interrupted",
    "Stopped by numerical trouble",
};

// Refuses what can't be solved.
void check(const KVXmodel &model) {
    if (!model.qconstrs.empty())
        fail(KVX_ERROR_NOT_SUPPORTED, "quadratic constraints, like %s, can't be solved",
             qconstrName(model, 0).c_str());
    bool isLinear = model.quadratic.empty() &&
                    std::all_of(model.vars.begin(), model.vars.end(),
                                [](const Variable &var) { return var.pwlX.empty(); });
    if (!isLinear && !model.objectives.empty())
        fail(KVX_ERROR_NOT_SUPPORTED, "one of several objectives must be linear");
}

void sayHead(Run &run) {
    size_t entries = 0;
    long integers = 0;
    for (const Variable &var : run.model.vars) {
        entries += var.column.size();
        integers += var.type != KVX_CONTINUOUS;
    }
    run.say("Optimizing a model with %zu rows, %zu columns (%ld of them discrete) and %zu nonzeros",
            run.model.constrs.size(), run.model.vars.size(), integers, entries);
}

void sayEnd(Run &run, const Solution &solution) {
    run.say("%s: %.0f iterations, %.0f nodes, %s seconds", statusTexts[solution.status],
            solution.iterations, solution.nodes,
            shown(std::round(100 * run.elapsed()) / 100).c_str());
    if (solution.hasX)
        run.say("Objective %s, bound %s, gap %s %%", shown(solution.objval).c_str(),
                shown(solution.bound).c_str(),
                shown(100 * relativeGap(solution.objval, solution.bound)).c_str());
}

// Stores what was found, for the model's own rows and columns: the problem may have more.
void store(Run &run, const Outcome &outcome) {
    KVXmodel &model = run.model;
    const size_t columns = model.vars.size(), rows = model.constrs.size();
    auto first = [](auto &values, size_t count) {
        return std::vector<double>(values.begin(), values.begin() + static_cast<long>(count));
    };
    Solution &solution = model.solution;
    solution.status = outcome.status;
    solution.runtime = run.elapsed();
    solution.bound = run.bound;
    solution.nodes = run.nodes;
    solution.iterations = run.iterations;
    solution.solutions = run.solutions;
    if (!outcome.x.empty()) {
        solution.hasX = true;
        solution.objval = outcome.objective;
        solution.x = first(outcome.x, columns);
        for (const Constraint &constr : model.constrs) {
            double slack = constr.sense == KVX_GREATER_EQUAL ? constr.lower : constr.upper;
            for (const Entry &entry : constr.row)
                slack -= entry.value * solution.x[static_cast<size_t>(entry.index)];
            solution.slacks.push_back(slack);
        }
    }
    if (!outcome.duals.empty()) {
        solution.hasDuals = true;
        solution.duals = first(outcome.duals, rows);
        solution.reducedCosts = first(outcome.reducedCosts, columns);
    }
    if (!outcome.basis.empty()) {
        solution.hasBasis = model.hasBasis = true;
        for (size_t j = 0; j < columns; j++)
            model.vars[j].basis = outcome.basis[j];
        for (size_t i = 0; i < rows; i++)
            model.constrs[i].basis = outcome.rowBasis[i];
    }
}

} // namespace

Outcome solveProblem(Run &run, const Problem &problem) {
    if (run.poll()) {
        Outcome outcome;
        outcome.status = run.stopped();
        return outcome;
    }
    if (problem.isMip && problem.quadratic.empty())
        return solveMip(run, problem);
    ClpSimplex lp;
    Outcome outcome =
        problem.quadratic.empty() ? solveLp(run, problem, lp) : solveQuadratic(run, problem);
    if (!outcome.x.empty()) {
        run.best = outcome.x;
        run.bestObjective = run.bound = outcome.objective;
        run.solutions = 1;
    }
    return outcome;
}

void optimize(Run &run) {
    run.model.solution = {};
    check(run.model);
    sayHead(run);
    const std::unique_ptr<KVXmodel> linear = reformulated(run.model);
    const Problem problem(linear ? *linear : run.model);
    Outcome outcome =
        run.model.objectives.empty() ? solveProblem(run, problem) : solveObjectives(run, problem);
    store(run, outcome);
    sayEnd(run, run.model.solution);
    writeResultFile(run.model);
}

} // namespace korvex
