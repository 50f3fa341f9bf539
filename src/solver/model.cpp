// Models: making, copying, freeing, and what every change of one brings about.
#include "guard.h"
#include "run.h"

#include <charconv>

namespace korvex {

void touch(KVXmodel &model) {
    model.solution = {};
    model.hasIis = false;
}

std::unique_ptr<KVXmodel> makeModel(const KVXenv &env, ModelData data) {
    if (!env.started)
        fail(KVX_ERROR_NOT_STARTED, "the environment hasn't been started");
    auto model = std::make_unique<KVXmodel>();
    model->env.parameters = env.parameters;
    model->env.log = env.log;
    model->env.logFile = env.logFile;
    static_cast<ModelData &>(*model) = std::move(data);
    return model;
}

const char *NameTexts::of(const Name &name) {
    if (name.given() || name.empty())
        return name.empty() ? "" : name.given();
    std::lock_guard lock(mutex);
    std::deque<Room> &texts = made[name.letter()];
    for (int number = intSize(texts.size()); number <= name.number(); number++) {
        Room &room = texts.emplace_back();
        room[Name(name.letter(), number).text(room).size()] = '\0';
    }
    return texts[at(name.number())];
}

void forgetNames(KVXmodel &model) {
    model.varIndex.forget();
    model.constrIndex.forget();
}

template <class Element>
static int add(std::vector<Element> &elements, Element element, char letter, int &made) {
    if (element.name.empty())
        element.name = Name(letter, made);
    elements.push_back(std::move(element));
    made++;
    return intSize(elements.size()) - 1;
}

int addVariable(ModelData &model, Variable var) {
    return add(model.vars, std::move(var), 'C', model.varsMade);
}

int addConstraint(ModelData &model, Constraint constr) {
    if (!constr.sense)
        constr.sense = senseOf(constr.lower, constr.upper);
    model.rows.append(constr.row);
    return add(model.constrs, static_cast<Sides &&>(constr), 'R', model.constrsMade);
}

void keepConstraints(ModelData &model, const std::vector<int> &numbers) noexcept {
    keep(model.constrs, numbers);
    model.rows.keep(numbers);
}

int addQuadraticConstraint(ModelData &model, QuadraticConstraint constr) {
    return add(model.qconstrs, std::move(constr), 'Q', model.qconstrsMade);
}

int addGeneralConstraint(ModelData &model, GeneralConstraint constr) {
    return add(model.genconstrs, std::move(constr), 'G', model.genconstrsMade);
}

char senseOf(double lower, double upper) {
    if (lower == upper)
        return KVX_EQUAL;
    return upper >= KVX_INFINITY && lower > -KVX_INFINITY ? KVX_GREATER_EQUAL : KVX_LESS_EQUAL;
}

CoinPackedMatrix matrixOf(const ModelData &model) {
    std::vector<int> index, length;
    std::vector<double> value;
    std::vector<CoinBigIndex> begin = {0};
    for (size_t i = 0; i < model.constrs.size(); i++) {
        for (auto [var, coefficient] : model.rows[i]) {
            index.push_back(var);
            value.push_back(coefficient);
        }
        begin.push_back(intSize(index.size()));
        length.push_back(intSize(model.rows[i].size()));
    }
    CoinPackedMatrix matrix(false, intSize(model.vars.size()), intSize(model.constrs.size()),
                            begin.back(), value.data(), index.data(), begin.data(), length.data());
    matrix.reverseOrdering();
    return matrix;
}

void clearObjective(ModelData &model) {
    model.objcon = 0;
    model.products.clear();
    model.objectives.clear();
    model.objNumber = 0;
    model.pwl.clear();
    for (Variable &var : model.vars)
        var.obj = 0;
}

} // namespace korvex

using namespace korvex;

int KVXupdatemodel(KVXmodel *model) {
    return guarded(model, [] {}); // Changes are made at once: nothing is pending.
}

int KVXreset(KVXmodel *model, int clearall) {
    return guarded(model, [&] {
        touch(*model);
        if (!clearall)
            return;
        model->hasBasis = false;
        for (Variable &var : model->vars) {
            var.start = KVX_UNDEFINED;
            var.basis = KVX_NONBASIC_LOWER;
        }
        for (Sides &constr : model->constrs)
            constr.basis = KVX_BASIC;
    });
}

int KVXfreemodel(KVXmodel *model) {
    if (!model)
        return KVX_OK;
    int status = guardedRead(model, [&] { endRun(*model, true); });
    if (model->running) // The request came from a callback.
        return status;
    delete model;
    return KVX_OK;
}

const char *KVXgetmerrormsg(KVXmodel *model) {
    return model ? model->env.error.get() : "";
}
