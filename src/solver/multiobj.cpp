// Several objectives: by decreasing priority, each level being the blend of those of one priority.
// Each level's value becomes a row for the next ones, relaxed by what its objectives tolerate.
#include "optimize.h"

#include "guard.h"
#include "params.h"

#include <cmath>
#include <map>

namespace korvex {
namespace {

using Members = std::vector<int>; // numbers of a level's objectives

// Lets the problem have the level's objective.
void blend(Problem &problem, const std::vector<Objective> &objectives, const Members &members) {
    std::fill(problem.cost.begin(), problem.cost.end(), 0.0);
    problem.constant = 0;
    for (int number : members) {
        const Objective &objective = objectives[static_cast<size_t>(number)];
        double factor = problem.sense * objective.weight;
        problem.constant += factor * objective.constant;
        for (size_t j = 0; j < objective.coefs.size(); j++)
            problem.cost[j] += factor * objective.coefs[j];
    }
}

// How much later levels may worsen this one, given a solution of it.
double tolerance(const std::vector<Objective> &objectives, const Members &members,
                 const std::vector<double> &x) {
    double sum = 0;
    for (int number : members) {
        const Objective &objective = objectives[static_cast<size_t>(number)];
        double value = objective.constant;
        for (size_t j = 0; j < objective.coefs.size(); j++)
            value += objective.coefs[j] * x[j];
        sum += std::abs(objective.weight) *
               std::max(objective.abstol, objective.reltol * std::abs(value));
    }
    return sum;
}

// Lets the run have the parameters of the first objective that has its own; says whether one has.
bool takeSettings(Run &run, const Members &members) {
    for (int number : members)
        if (auto own = run.model.multiobjEnvs.find(number); own != run.model.multiobjEnvs.end()) {
            run.settings.parameters = own->second->parameters;
            double end = run.timeLimit;
            run.readLimits();
            run.timeLimit = std::min(end, run.elapsed() + run.timeLimit);
            return true;
        }
    return false;
}

} // namespace

Outcome solveObjectives(Run &run, Problem problem) {
    const std::vector<Objective> &objectives = run.model.objectives;
    std::map<int, Members, std::greater<int>> levels;
    for (size_t k = 0; k < objectives.size(); k++)
        levels[objectives[k].priority].push_back(static_cast<int>(k));
    blend(problem, objectives, levels.begin()->second);
    const Problem first = problem;
    run.hasPhases = true;
    double firstBound = 0;
    int solved = 0, status = KVX_STATUS_OPTIMAL;
    for (const auto &[priority, members] : levels) {
        blend(problem, objectives, members);
        run.say("Optimizing the objectives of priority %d", priority);
        run.present = members;
        run.bound = -run.sense * KVX_INFINITY;
        if (!run.best.empty())
            run.bestObjective = problem.objective(run.best);
        const KVXenv settings = run.settings;
        bool hasOwn = takeSettings(run, members);
        Outcome outcome = solveProblem(run, problem);
        run.settings.parameters = settings.parameters;
        run.readLimits();
        if (solved == 0)
            firstBound = run.bound;
        bool isAsked = run.stopped() == Run::next;
        bool isOwnLimit = hasOwn && run.stopped() > 0 && run.stopped() != KVX_STATUS_INTERRUPTED &&
                          run.elapsed() < run.timeLimit;
        if (outcome.status != KVX_STATUS_OPTIMAL) {
            status = isAsked ? KVX_STATUS_INTERRUPTED : outcome.status;
            if (run.best.empty() || !(isAsked || isOwnLimit))
                break;
        }
        if (isAsked || isOwnLimit)
            run.goOn();
        solved += static_cast<int>(members.size());
        double value = problem.objective(run.best);
        run.report(KVX_CB_MULTIOBJ,
                   {{KVX_CB_MULTIOBJ_SOLVED, 1.0 * solved}, {KVX_CB_MULTIOBJ_OBJVAL, value}},
                   &run.best);
        Row row{{},
                -KVX_INFINITY,
                run.sense * value - problem.constant + tolerance(objectives, members, run.best)};
        for (size_t j = 0; j < problem.cost.size(); j++)
            if (problem.cost[j] != 0)
                row.entries.push_back({static_cast<int>(j), problem.cost[j]});
        problem.addRow(row);
    }
    run.present.clear();
    Outcome outcome;
    outcome.status = status;
    outcome.x = run.best;
    if (!run.best.empty())
        outcome.objective = first.objective(run.best);
    run.bound = firstBound;
    return outcome;
}

} // namespace korvex
