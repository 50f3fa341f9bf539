// Several objectives: by decreasing priority, each level being the blend of those of one priority.
// Each level's value becomes a row for the next ones, relaxed by what its objectives tolerate.
#include "optimize.h"
#include "params.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <numeric>

namespace korvex {

// Gives the run the parameters of the first of those objectives that has an environment of its own;
// the run's log and limits go on. Whether there is one.
static bool takeParameters(Run &run, const std::vector<int> &members) {
    const auto &envs = run.model.objectiveEnvs;
    auto hasEnv = [&](int k) { return envs.count(k) > 0; };
    auto member = std::find_if(members.begin(), members.end(), hasEnv);
    if (member == members.end())
        return false;
    KVXenv env = envs.at(*member);
    setParam(env, "LogToConsole", intParam(run.settings, "LogToConsole"));
    setParam(env, "LogInterval", dblParam(run.settings, "LogInterval"));
    for (const char *limit : {"TimeLimit", "NodeLimit", "IterationLimit"})
        setParam(env, limit, std::min(dblParam(env, limit), dblParam(run.settings, limit)));
    run.settings.parameters = env.parameters;
    run.readLimits();
    return true;
}

Outcome solveObjectives(Run &run, Problem problem) {
    std::map<int, std::vector<int>, std::greater<int>> levels;
    for (size_t k = 0; k < run.model.objectives.size(); k++)
        levels[run.model.objectives[k].priority].push_back(intSize(k));
    run.hasPhases = true;
    Outcome result{KVX_STATUS_OPTIMAL};
    std::vector<double> values; // of the levels
    double firstBound = 0, solved = 0;
    Problem first = problem;
    for (const auto &[priority, members] : levels) {
        std::fill(problem.cost.begin(), problem.cost.end(), 0.0);
        problem.constant = 0;
        for (int k : members) {
            const Objective &objective = run.model.objectives[at(k)];
            double factor = problem.sense * objective.weight;
            problem.constant += factor * objective.constant;
            for (size_t j = 0; j < objective.coefs.size(); j++)
                problem.cost[j] += factor * objective.coefs[j];
        }
        run.say("Optimizing the objectives of priority %d", priority);
        run.present = members;
        run.bound = -run.sense * KVX_INFINITY;
        if (!run.best.empty())
            run.bestObjective = problem.objective(run.best);
        const std::vector<ParameterValue> parameters = run.settings.parameters;
        const bool hasOwn = takeParameters(run, members);
        int status = solveProblem(run, problem).status;
        if (hasOwn)
            run.settings.parameters = parameters;
        run.readLimits();
        bool isEnded = run.stopped() == Run::next;
        if (solved == 0) {
            first = problem;
            firstBound = run.bound;
        }
        if (status != KVX_STATUS_OPTIMAL)
            result.status = isEnded ? KVX_STATUS_INTERRUPTED : status;
        if (isEnded)
            run.goOn();
        if (run.best.empty() || (status != KVX_STATUS_OPTIMAL && !isEnded))
            break;
        solved += static_cast<double>(members.size());
        double value = problem.objective(run.best), tolerated = 0;
        run.report(KVX_CB_MULTIOBJ,
                   {{KVX_CB_MULTIOBJ_SOLVED, solved}, {KVX_CB_MULTIOBJ_OBJVAL, value}}, &run.best);
        for (int k : members) {
            const Objective &objective = run.model.objectives[at(k)];
            const double own = std::inner_product(objective.coefs.begin(), objective.coefs.end(),
                                                  run.best.begin(), objective.constant);
            tolerated += std::abs(objective.weight) *
                         std::max(objective.abstol, objective.reltol * std::abs(own));
        }
        Constraint row{{"", -KVX_INFINITY, run.sense * value - problem.constant + tolerated}};
        for (size_t j = 0; j < problem.cost.size(); j++)
            if (problem.cost[j] != 0)
                row.row.push_back({intSize(j), problem.cost[j]});
        problem.addRow(row);
    }
    run.present.clear();
    run.bound = firstBound;
    result.x = run.best;
    result.objective = run.best.empty() ? 0 : first.objective(run.best);
    return result;
}

} // namespace korvex
