#include "inner.h"

#include "guard.h"
#include "log.h"
#include "optimize.h"
#include "params.h"

#include <algorithm>

namespace korvex {

std::unique_ptr<KVXmodel> makeInnerModel(const KVXenv &env, const ModelData &data) {
    auto model = makeModel(env, data);
    model->env.log = std::make_shared<Log>();
    setParam(model->env, "LogToConsole", 0);
    setParam(model->env, "LogFile", "");
    setParam(model->env, "ResultFile", "");
    return model;
}

int solveInside(Run &run, KVXmodel &model, double seconds) {
    double left = std::max(0.0, run.timeLimit - run.elapsed());
    setParam(model.env, "TimeLimit", std::min(seconds, left));
    model.callbackData = &run;
    model.callback = [](KVXmodel *inner, void *, int, void *outer) {
        return static_cast<Run *>(outer)->poll() ? KVXterminate(inner) : KVX_OK;
    };
    if (int status = perform(&model, optimize))
        throw Failure{status, model.env.error};
    run.poll();
    return model.solution.status;
}

void makeColumns(ModelData &model) {
    for (Variable &var : model.vars)
        var.column.clear();
    for (size_t i = 0; i < model.constrs.size(); i++)
        for (auto [index, value] : model.constrs[i].row)
            model.vars[static_cast<size_t>(index)].column.push_back({static_cast<int>(i), value});
}

} // namespace korvex
