// Tuning: the model's own setting and those below are tried one after the other on a copy of the
// model, each for its share of the time that is left.
#include "guard.h"
#include "inner.h"
#include "optimize.h"
#include "params.h"

#include <algorithm>

namespace korvex {
namespace {

// What tuning changes, and settings as values in that order.
constexpr const char *names[] = {"Method", "Presolve", "Cuts", "Heuristics"};
constexpr int own = -2; // the model's own value
using Setting = std::array<int, std::size(names)>;
constexpr Setting linearSettings[] = {{own, own, own, own}, {-1, 1, own, own}, {0, 1, own, own},
                                      {1, 1, own, own},     {2, 1, own, own},  {0, 0, own, own},
                                      {1, 0, own, own}};
constexpr Setting mipSettings[] = {{own, own, own, own}, {own, 1, 1, 1}, {own, 1, 0, 1},
                                   {own, 1, 1, 0},       {own, 1, 0, 0}, {own, 0, 1, 1},
                                   {own, 0, 0, 1}};

struct Trial {
    std::vector<int> values;
    bool ended; // not by a limit
    double seconds, gap;
};

bool isBetter(const Trial &a, const Trial &b) {
    if (a.ended != b.ended)
        return a.ended;
    return a.ended ? a.seconds < b.seconds : a.gap < b.gap;
}

// The settings to try, each once.
std::vector<std::vector<int>> settingsFor(const KVXmodel &model) {
    std::vector<std::vector<int>> result;
    bool isMip = Problem(model).isMip || !model.sos.empty() || !model.genconstrs.empty();
    for (const Setting &setting : isMip ? mipSettings : linearSettings) {
        std::vector<int> values;
        for (size_t k = 0; k < setting.size(); k++)
            values.push_back(setting[k] == own ? intParam(model.env, names[k]) : setting[k]);
        if (std::find(result.begin(), result.end(), values) == result.end())
            result.push_back(values);
    }
    return result;
}

void tune(Run &run) {
    KVXmodel &model = run.model;
    run.timeLimit = dblParam(run.settings, "TuneTimeLimit");
    auto settings = settingsFor(model);
    std::vector<Trial> trials;
    run.hasPhases = true;
    for (size_t k = 0; k < settings.size() && !run.poll(); k++) {
        run.report(KVX_CB_TUNE, {{KVX_CB_TUNE_TRIAL, static_cast<double>(k)},
                                 {KVX_CB_TUNE_TRIALS, static_cast<double>(settings.size())}});
        if (run.stopped() == Run::next) { // the callback proceeds with the next trial
            run.goOn();
            continue;
        }
        auto inner = makeInnerModel(run.settings, model);
        for (size_t i = 0; i < std::size(names); i++)
            setParam(inner->env, names[i], settings[k][i]);
        double share = (run.timeLimit - run.elapsed()) / static_cast<double>(settings.size() - k);
        int status = solveInside(run, *inner, std::min(share, dblParam(run.settings, "TimeLimit")));
        if (run.stopped() == Run::next) { // The callback gives this trial up.
            run.goOn();
            continue;
        }
        if (run.stopped())
            break;
        const Solution &found = inner->solution;
        double gap = found.hasX ? relativeGap(found.objval, found.bound) : KVX_INFINITY;
        trials.push_back({settings[k], status <= KVX_STATUS_INFEASIBLE_OR_UNBOUNDED, found.runtime,
                          status == KVX_STATUS_NUMERIC ? 2 * KVX_INFINITY : gap});
        run.say("Trial %zu of %zu: %s s, gap %s", k + 1, settings.size(),
                shown(found.runtime).c_str(), shown(gap).c_str());
    }
    model.tuneResults.clear();
    if (trials.empty())
        return;
    auto latest = trials.back().values;
    std::stable_sort(trials.begin(), trials.end(), isBetter);
    for (const Trial &trial : trials)
        model.tuneResults.push_back(trial.values);
    model.latestTuneResult =
        static_cast<int>(std::find(model.tuneResults.begin(), model.tuneResults.end(), latest) -
                         model.tuneResults.begin());
}

} // namespace
} // namespace korvex

using namespace korvex;

int KVXtunemodel(KVXmodel *model) {
    return perform(model, tune);
}

int KVXgettuneresult(KVXmodel *model, int index) {
    return guarded(model, [&] {
        int count = static_cast<int>(model->tuneResults.size());
        if (index < -1 || index >= count || count == 0)
            fail(KVX_ERROR_INDEX_OUT_OF_RANGE, "tuning result %d: there are %d", index, count);
        const auto &values =
            model->tuneResults[static_cast<size_t>(index < 0 ? model->latestTuneResult : index)];
        for (size_t k = 0; k < values.size(); k++)
            setParam(model->env, names[k], values[k]);
    });
}
