// Tuning: some settings are tried one after the other on a copy of the model, each for its share of
// the time that is left.
#include "input.h"
#include "params.h"
#include "run.h"

#include <map>

namespace korvex {
namespace {

// What tuning changes. The model's own values come first, then those below.
constexpr const char *names[] = {"Method", "Presolve", "Cuts", "Heuristics"};
constexpr int settings[][4] = {{-1, 1, 1, 1}, {0, 1, 0, 1}, {1, 1, 1, 0},
                               {2, 1, 0, 0},  {0, 0, 1, 1}, {1, 0, 0, 1}};

void tune(Run &run) {
    KVXmodel &model = run.model;
    setParam(run.settings, "TimeLimit", dblParam(run.settings, "TuneTimeLimit"));
    run.readLimits();
    run.hasPhases = true;
    // Best first: by whether a limit ended the trial, and by the seconds or the gap at the limit.
    std::multimap<std::pair<bool, double>, std::vector<int>> trials;
    auto latest = trials.end();
    for (size_t k = 0; k <= std::size(settings) && !run.poll(); k++) {
        run.report(KVX_CB_TUNE, {{KVX_CB_TUNE_TRIAL, 1.0 * intSize(k)},
                                 {KVX_CB_TUNE_TRIALS, 1.0 + intSize(std::size(settings))}});
        auto inner = makeInnerModel(run.settings, model);
        inner->objectiveEnvs = model.objectiveEnvs;
        std::vector<int> values;
        for (size_t i = 0; i < std::size(names); i++) {
            values.push_back(k == 0 ? intParam(model.env, names[i]) : settings[k - 1][i]);
            setParam(inner->env, names[i], values[i]);
        }
        double share = (run.timeLimit - run.elapsed()) / (1.0 + intSize(std::size(settings) - k));
        int status = 0;
        if (!run.stopped())
            status = solveInside(run, *inner, std::min(share, dblParam(model.env, "TimeLimit")));
        if (run.stopped() == Run::next) { // The callback goes on with the next trial.
            run.goOn();
            continue;
        }
        if (run.stopped())
            break;
        const Solution &found = inner->solution;
        double gap = found.hasX ? relativeGap(found.objval, found.bound) : KVX_INFINITY;
        bool isCutOff = status > KVX_STATUS_INFEASIBLE_OR_UNBOUNDED;
        latest = trials.emplace(std::pair(isCutOff, isCutOff ? gap : found.runtime), values);
        run.say("Trial %zu: %s s, gap %s", k, shown(found.runtime).c_str(), shown(gap).c_str());
    }
    model.tuneResults.clear();
    for (auto trial = trials.begin(); trial != trials.end(); ++trial) {
        if (trial == latest)
            model.latestTuneResult = intSize(model.tuneResults.size());
        model.tuneResults.push_back(trial->second);
    }
}

} // namespace
} // namespace korvex

using namespace korvex;

int KVXtunemodel(KVXmodel *model) {
    return perform(model, tune);
}

int KVXgettuneresult(KVXmodel *model, int index) {
    return guarded(model, [&] {
        const auto &results = model->tuneResults;
        size_t place = readIndex(index == -1 ? model->latestTuneResult : index, results.size(),
                                 "tuning result");
        for (size_t i = 0; i < std::size(names); i++)
            setParam(model->env, names[i], results[place][i]);
    });
}
