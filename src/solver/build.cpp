// Building: variables, constraints, SOS, objectives, coefficients and deletion. Everything is read
// and checked before the model changes.
#include "input.h"

#include <utility>

using namespace korvex;

namespace {

// A name that was given, or else its letter and number.
Name nameOf(const char *const *names, size_t k, char letter, int made) {
    if (names && names[k] && *names[k])
        return readName(names[k]);
    return {letter, made + intSize(k)};
}

// Takes off what an addition that failed has added. Built by g++ 14, resize destroyed the elements
// there and left them counted.
template <class Element>
void cutOff(std::vector<Element> &elements, size_t size) {
    elements.erase(elements.begin() + static_cast<std::ptrdiff_t>(size), elements.end());
}

void addVars(KVXmodel &model, const Lists &columns, const double *obj, const double *lb,
             const double *ub, const char *types, const char *const *names) {
    const size_t old = model.vars.size();
    OnFailure undo{[&] {
        cutOff(model.vars, old);
        for (Objective &objective : model.objectives)
            cutOff(objective.coefs, std::min(old, objective.coefs.size()));
    }};
    grow(model.vars, columns.size());
    for (size_t j = 0; j < columns.size(); j++) {
        Range given{lb ? lb[j] : 0, ub ? ub[j] : KVX_INFINITY, types ? types[j] : KVX_CONTINUOUS};
        const auto [lower, upper, type] = readDomain(given, old + j);
        const double cost = obj ? readFinite(obj[j], "an objective coefficient") : 0;
        model.vars.push_back({nameOf(names, j, 'C', model.varsMade), lower, upper, cost, type});
    }
    for (Objective &objective : model.objectives) {
        grow(objective.coefs, columns.size());
        objective.coefs.resize(model.vars.size());
    }
    model.rows.addColumns(intSize(old), columns);
    model.varsMade += intSize(columns.size());
}

// Rows with senses and right-hand sides; without senses, with both sides.
void addRows(KVXmodel &model, int count, int numnz, const int *beg, const int *ind,
             const double *val, const char *senses, const double *rhs, const double *upper,
             const char *const *names) {
    Lists rows = readLists(count, numnz, beg, ind, val, model.vars.size(), "variable");
    const size_t old = model.constrs.size(), size = rows.size();
    OnFailure undo{[&] { cutOff(model.constrs, old); }};
    grow(model.constrs, size);
    for (size_t i = 0; i < size; i++) {
        needed(rhs, "the array of sides");
        const auto [low, high, sense] =
            senses ? sidesOf(senses[i], rhs[i], old + i)
                   : readSides({rhs[i], needed(upper, "senses or sides")[i], 0}, old + i);
        model.constrs.push_back({nameOf(names, i, 'R', model.constrsMade), low, high, KVX_BASIC,
                                 sense ? sense : senseOf(low, high)});
    }
    model.rows.append(std::move(rows));
    model.constrsMade += intSize(size);
}

// Gives new numbers to what has the number 0.
void countUp(std::vector<int> &numbers) {
    int next = 0;
    for (int &number : numbers)
        number = number == 0 ? next++ : -1;
}

// The new index of every item after a deletion, -1 for a deleted one.
std::vector<int> renumbering(size_t size, int num, const int *ind, const char *what) {
    readArray(num, ind, what);
    std::vector<int> numbers(size, 0);
    for (int k = 0; k < num; k++)
        numbers[readIndex(ind[k], size, what)] = -1;
    countUp(numbers);
    return numbers;
}

void renumber(std::vector<Entry> &entries, const std::vector<int> &numbers) {
    for (Entry &entry : entries)
        entry.index = numbers[at(entry.index)];
    auto isGone = [](const Entry &entry) { return entry.index < 0; };
    entries.erase(std::remove_if(entries.begin(), entries.end(), isGone), entries.end());
}

void renumber(Products &products, const std::vector<int> &numbers) {
    Products kept;
    while (!products.empty()) {
        auto product = products.extract(products.begin());
        auto &[row, col] = product.key();
        row = numbers[at(row)];
        col = numbers[at(col)];
        if (row >= 0 && col >= 0)
            kept.insert(kept.end(), std::move(product));
    }
    products.swap(kept);
}

template <class Item>
int deleteItems(KVXmodel *model, std::vector<Item> ModelData::*items, int num, const int *ind,
                const char *what) {
    return guardedChange(
        model, [&] { keep(model->*items, renumbering((model->*items).size(), num, ind, what)); });
}

// Renumbers the variables without which a general constraint means nothing: each by use(variable).
template <class Use>
void renumberNeeded(GeneralConstraint &constr, Use use) {
    constr.first = use(constr.first);
    bool isFunction = constr.kind >= KVX_GENCONSTR_PWL && constr.kind != KVX_GENCONSTR_NL;
    if (constr.kind == KVX_GENCONSTR_ABS || isFunction)
        constr.second = use(constr.second);
    for (int &var : constr.vars)
        var = use(var);
    for (size_t k = 0; k < constr.opcodes.size(); k++)
        if (constr.opcodes[k] == KVX_NL_VARIABLE)
            constr.x[k] = use(static_cast<int>(constr.x[k]));
}

std::unique_ptr<Deletion> beginDeletion(size_t size) {
    auto deletion = std::make_unique<Deletion>();
    deletion->left = intSize(size);
    deletion->numbers.assign(size, 0);
    for (size_t k = 0; k <= size; k++)
        deletion->counts.push_back(intSize(k & -k)); // of the k & -k ones up to the k-th
    return deletion;
}

// Which element has that index when those that are deleted don't count.
size_t placeOf(const Deletion &deletion, int index) {
    size_t place = 0, step = 1;
    while (step * 2 < deletion.counts.size())
        step *= 2;
    for (; step > 0; step /= 2)
        if (place + step < deletion.counts.size() && deletion.counts[place + step] <= index) {
            place += step;
            index -= deletion.counts[place];
        }
    return place;
}

// What a deletion makes untrue.
void forgetDerived(KVXmodel &model) {
    model.basis.reset();
    forgetNames(model);
    touch(model);
}

// Takes note of items to be deleted, each of which may be refused.
template <class Refuse>
void deleteLater(std::unique_ptr<Deletion> &deletion, size_t size, int num, const int *ind,
                 const char *what, Refuse refuse) {
    readArray(num, ind, what);
    if (!deletion)
        deletion = beginDeletion(size);
    std::vector<size_t> places;
    for (int k = 0; k < num; k++) {
        readIndex(ind[k], at(deletion->left), what);
        places.push_back(placeOf(*deletion, ind[k]));
        refuse(places.back());
    }
    for (size_t place : places)
        if (std::exchange(deletion->numbers[place], -1) == 0) {
            deletion->left--;
            for (size_t k = place + 1; k < deletion->counts.size(); k += k & -k)
                deletion->counts[k]--;
        }
}

// The new numbers after a deletion that then has been done.
std::vector<int> finished(std::unique_ptr<Deletion> &deletion) {
    std::vector<int> numbers = std::move(deletion->numbers);
    deletion.reset();
    countUp(numbers);
    return numbers;
}

} // namespace

void korvex::settle(KVXmodel &model) noexcept {
    if (model.constrDeletion)
        keepConstraints(model, finished(model.constrDeletion));
    if (!model.varDeletion)
        return;
    const std::vector<int> numbers = finished(model.varDeletion);
    keep(model.vars, numbers);
    model.rows.renumber(numbers);
    for (Sos &set : model.sos)
        renumber(set.members, numbers);
    for (GeneralConstraint &constr : model.genconstrs) {
        renumber(constr.linear, numbers);
        renumberNeeded(constr, [&](int var) { return numbers[at(var)]; });
    }
    renumber(model.products, numbers);
    for (QuadraticConstraint &constr : model.qconstrs) {
        renumber(constr.linear, numbers);
        renumber(constr.products, numbers);
    }
    std::map<int, Breakpoints> pwl;
    while (!model.pwl.empty()) {
        auto term = model.pwl.extract(model.pwl.begin());
        term.key() = numbers[at(term.key())];
        if (term.key() >= 0)
            pwl.insert(pwl.end(), std::move(term));
    }
    model.pwl.swap(pwl);
    for (Objective &objective : model.objectives)
        keep(objective.coefs, numbers);
}

int KVXnewmodel(KVXenv *env, KVXmodel **modelP, const char *name, int numvars, const double *obj,
                const double *lb, const double *ub, const char *types, const char *const *names) {
    return KVXloadmodel(env, modelP, name, numvars, 0, KVX_MINIMIZE, 0, obj, nullptr, nullptr,
                        nullptr, nullptr, nullptr, nullptr, lb, ub, types, names, nullptr);
}

int KVXloadmodel(KVXenv *env, KVXmodel **modelP, const char *name, int numvars, int numconstrs,
                 int objsense, double objcon, const double *obj, const char *senses,
                 const double *rhs, const int *beg, const int *len, const int *ind,
                 const double *val, const double *lb, const double *ub, const char *types,
                 const char *const *varnames, const char *const *constrnames) {
    return guardedRead(env, [&] {
        needed(modelP, "modelP");
        auto model = makeModel(*env);
        model->name = readName(name);
        model->objsense = readObjSense(objsense);
        model->objcon = readFinite(objcon, "the objective constant");
        addRows(*model, numconstrs, 0, beg, ind, val, senses, rhs, nullptr, constrnames);
        const size_t vars = readCount(numvars, "variables");
        size_t total = 0;
        for (size_t j = 0; len && j < vars; j++)
            total += readCount(len[j], "a column");
        Lists columns;
        columns.begin.reserve(vars + 1);
        columns.entries.reserve(total);
        for (size_t j = 0; j < vars; j++) {
            const int length = len ? len[j] : 0;
            size_t begin = length > 0 ? readCount(needed(beg, "begins")[j], "a begin") : 0;
            readList(columns, length, length > 0 ? needed(ind, "indices") + begin : ind,
                     length > 0 ? needed(val, "coefficients") + begin : val, at(numconstrs),
                     "constraint");
        }
        addVars(*model, columns, obj, lb, ub, types, varnames);
        *modelP = model.release();
    });
}

int KVXaddvars(KVXmodel *model, int numvars, int numnz, const int *beg, const int *ind,
               const double *val, const double *obj, const double *lb, const double *ub,
               const char *types, const char *const *names) {
    return guardedChange(model, [&] {
        size_t limit = model->constrs.size();
        Lists columns = readLists(numvars, numnz, beg, ind, val, limit, "constraint");
        addVars(*model, columns, obj, lb, ub, types, names);
    });
}

int KVXaddconstrs(KVXmodel *model, int numconstrs, int numnz, const int *beg, const int *ind,
                  const double *val, const char *senses, const double *rhs,
                  const char *const *names) {
    return guardedChange(model, [&] {
        addRows(*model, numconstrs, numnz, beg, ind, val, senses, rhs, nullptr, names);
    });
}

int KVXaddrangeconstrs(KVXmodel *model, int numconstrs, int numnz, const int *beg, const int *ind,
                       const double *val, const double *lower, const double *upper,
                       const char *const *names) {
    return guardedChange(model, [&] {
        addRows(*model, numconstrs, numnz, beg, ind, val, nullptr, lower, upper, names);
    });
}

int KVXaddsos(KVXmodel *model, int numsos, int nummembers, const int *types, const int *beg,
              const int *ind, const double *weight) {
    return guardedChange(model, [&] {
        std::vector<int> begins = readBegins(numsos, nummembers, beg);
        readArray(numsos, types, "types");
        readArray(nummembers, ind, "members");
        readArray(nummembers, weight, "weights");
        std::vector<Sos> sets;
        for (size_t s = 0; s + 1 < begins.size(); s++) {
            sets.push_back({types[s], {}});
            for (size_t k = at(begins[s]); k < at(begins[s + 1]); k++) {
                readIndex(ind[k], model->vars.size(), "variable");
                sets[s].members.push_back({ind[k], readFinite(weight[k], "a weight")});
            }
            if (types[s] != KVX_SOS_TYPE1 && types[s] != KVX_SOS_TYPE2)
                fail(KVX_ERROR_INVALID_ARGUMENT, "SOS %zu: unknown type %d", s, types[s]);
            if (hasTwins(sets[s].members))
                fail(KVX_ERROR_INVALID_ARGUMENT, "SOS %zu: a variable is in it twice", s);
        }
        grow(model->sos, sets.size());
        for (Sos &set : sets)
            model->sos.push_back(std::move(set));
    });
}

int KVXdelvars(KVXmodel *model, int num, const int *ind) {
    return guardedUnsettled(model, [&] {
        refuseDuringRun(*model);
        std::unique_ptr<Deletion> &deletion = model->varDeletion;
        if (!deletion) { // Nothing but deletions follows while there is one.
            model->neededBy.assign(model->vars.size(), -1);
            for (size_t g = model->genconstrs.size(); g-- > 0;)
                renumberNeeded(model->genconstrs[g], [&](int var) {
                    model->neededBy[at(var)] = intSize(g);
                    return var;
                });
        }
        auto refuse = [&](size_t j) {
            if (int g = model->neededBy[j]; g >= 0)
                fail(KVX_ERROR_INVALID_ARGUMENT, "general constraint %s needs variable %s",
                     model->genconstrs[at(g)].name.text().c_str(),
                     model->vars[j].name.text().c_str());
        };
        deleteLater(deletion, model->vars.size(), num, ind, "variable", refuse);
        forgetDerived(*model);
    });
}

int KVXdelconstrs(KVXmodel *model, int num, const int *ind) {
    return guardedUnsettled(model, [&] {
        refuseDuringRun(*model);
        deleteLater(model->constrDeletion, model->constrs.size(), num, ind, "constraint",
                    [](size_t) {});
        forgetDerived(*model);
    });
}

int KVXdelsos(KVXmodel *model, int num, const int *ind) {
    return deleteItems(model, &ModelData::sos, num, ind, "SOS");
}

int KVXdelqconstrs(KVXmodel *model, int num, const int *ind) {
    return deleteItems(model, &ModelData::qconstrs, num, ind, "quadratic constraint");
}

int KVXdelgenconstrs(KVXmodel *model, int num, const int *ind) {
    return deleteItems(model, &ModelData::genconstrs, num, ind, "general constraint");
}

int KVXchgcoeffs(KVXmodel *model, int numchgs, const int *cind, const int *vind,
                 const double *val) {
    return guardedChange(model, [&] {
        readArray(numchgs, cind, "constraint indices");
        readArray(numchgs, vind, "variable indices");
        readArray(numchgs, val, "coefficients");
        std::map<int, size_t> additions; // at most, by row
        for (int k = 0; k < numchgs; k++) {
            readIndex(cind[k], model->constrs.size(), "constraint");
            readIndex(vind[k], model->vars.size(), "variable");
            readFinite(val[k], "a coefficient");
            additions[cind[k]]++;
        }
        for (auto [row, count] : additions)
            model->rows.reserve(at(row), count);
        for (int k = 0; k < numchgs; k++)
            model->rows.change(at(cind[k]), vind[k], val[k]);
    });
}

int KVXsetobjective(KVXmodel *model, int objsense, int numlnz, const int *lind, const double *lval,
                    int numqnz, const int *qrow, const int *qcol, const double *qval,
                    double objcon) {
    return guardedChange(model, [&] {
        int sense = objsense ? readObjSense(objsense) : model->objsense;
        auto terms = readList(std::max(numlnz, 0), lind, lval, model->vars.size(), "variable");
        auto products = readProducts(std::max(numqnz, 0), qrow, qcol, qval, model->vars.size());
        readFinite(objcon, "the objective constant");
        clearObjective(*model);
        model->objsense = sense;
        model->objcon = objcon;
        model->products.swap(products);
        for (auto [var, value] : terms)
            model->vars[at(var)].obj = value;
    });
}

int KVXsetobjectiven(KVXmodel *model, int index, int priority, const char *name, int numlnz,
                     const int *lind, const double *lval, double constant, double weight,
                     double abstol, double reltol) {
    return guardedChange(model, [&] {
        size_t number = readIndex(index, model->objectives.size() + 1, "objective");
        for (double value : {constant, weight, abstol, reltol})
            readFinite(value, "a number of an objective");
        if (abstol < 0 || reltol < 0)
            fail(KVX_ERROR_INVALID_ARGUMENT, "a tolerance is negative");
        Objective objective{readName(name), priority, constant, weight, abstol, reltol, {}};
        objective.coefs.resize(model->vars.size());
        for (auto [var, value] : readList(numlnz, lind, lval, model->vars.size(), "variable"))
            objective.coefs[at(var)] = value;
        model->objectives.resize(std::max(model->objectives.size(), number + 1));
        model->objectives[number] = std::move(objective);
    });
}

int KVXsetpwlobj(KVXmodel *model, int var, int npts, const double *x, const double *y) {
    return guardedChange(model, [&] {
        readIndex(var, model->vars.size(), "variable");
        readPoints(npts, x, y);
        Breakpoints points{{x, x + npts}, {y, y + npts}};
        if (npts > 0)
            std::swap(model->pwl[var], points);
        else
            model->pwl.erase(var);
        model->vars[at(var)].obj = 0;
    });
}
