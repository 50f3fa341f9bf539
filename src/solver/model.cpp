// Models: making, copying, freeing, and what every change of one brings about.
#include "model.h"

#include "guard.h"
#include "log.h"

namespace korvex {

void touch(KVXmodel &model) {
    model.solution = {};
    model.hasIis = false;
}

std::unique_ptr<KVXmodel> makeModel(const KVXenv &env) {
    if (!env.started)
        fail(KVX_ERROR_NOT_STARTED, "the environment hasn't been started");
    auto model = std::make_unique<KVXmodel>();
    model->env.parameters = env.parameters;
    model->env.log = env.log;
    model->env.logFile = env.logFile;
    return model;
}

std::unique_ptr<KVXmodel> makeModel(const KVXenv &env, const ModelData &data) {
    auto model = makeModel(env);
    static_cast<ModelData &>(*model) = data;
    return model;
}

void addConstraint(ModelData &model, Constraint constr) {
    const int i = static_cast<int>(model.constrs.size());
    for (auto [index, value] : constr.row)
        model.vars[static_cast<size_t>(index)].column.push_back({i, value});
    model.constrs.push_back(std::move(constr));
}

void addVariable(ModelData &model, Variable var) {
    const int j = static_cast<int>(model.vars.size());
    for (auto [index, value] : var.column)
        model.constrs[static_cast<size_t>(index)].row.push_back({j, value});
    model.vars.push_back(std::move(var));
}

namespace {

template <class Element>
std::string nameOf(const std::vector<Element> &elements, int index, char letter) {
    const std::string &name = elements[static_cast<size_t>(index)].name;
    return name.empty() ? letter + std::to_string(index) : name;
}

} // namespace

std::string varName(const ModelData &model, int index) {
    return nameOf(model.vars, index, 'C');
}

std::string constrName(const ModelData &model, int index) {
    return nameOf(model.constrs, index, 'R');
}

std::string qconstrName(const ModelData &model, int index) {
    return nameOf(model.qconstrs, index, 'Q');
}

std::string genconstrName(const ModelData &model, int index) {
    return nameOf(model.genconstrs, index, 'G');
}

} // namespace korvex

using namespace korvex;

int KVXupdatemodel(KVXmodel *model) {
    return guarded(model, [] {}); // Changes are made at once: nothing is pending.
}

int KVXreset(KVXmodel *model, int clearall) {
    return guarded(model, [&] {
        touch(*model);
        if (clearall) {
            model->hasBasis = false;
            for (Variable &var : model->vars) {
                var.start = KVX_UNDEFINED;
                var.basis = KVX_NONBASIC_LOWER;
            }
            for (Constraint &constr : model->constrs)
                constr.basis = KVX_BASIC;
        }
    });
}

int KVXfreemodel(KVXmodel *model) {
    if (!model)
        return KVX_OK;
    int status = guardedRead(model, [&] { endRun(*model); });
    if (status == KVX_OK)
        delete model;
    return status;
}

const char *KVXgetmerrormsg(KVXmodel *model) {
    return model ? model->env.error.c_str() : "";
}
