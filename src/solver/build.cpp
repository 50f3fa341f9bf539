// Building: variables, constraints, SOS, objectives, coefficients and deletion. Everything is read
// and checked before the model changes.
#include "input.h"

#include <set>
#include <tuple>

using namespace korvex;

namespace {

void addVars(KVXmodel &model, const std::vector<std::vector<Entry>> &columns, const double *obj,
             const double *lb, const double *ub, const char *types, const char *const *names) {
    const size_t old = model.vars.size();
    std::vector<Variable> vars(columns.size());
    for (size_t j = 0; j < vars.size(); j++) {
        Variable &v = vars[j];
        Range given{lb ? lb[j] : 0, ub ? ub[j] : KVX_INFINITY, types ? types[j] : KVX_CONTINUOUS};
        Range domain = readDomain(given, old + j);
        std::tie(v.lb, v.ub, v.type) = std::tie(domain.lower, domain.upper, domain.kind);
        v.obj = obj ? readFinite(obj[j], "an objective coefficient") : 0;
        v.name = readName(names ? names[j] : nullptr);
    }
    for (Objective &objective : model.objectives)
        objective.coefs.resize(old + vars.size());
    for (size_t j = 0; j < vars.size(); j++) {
        int var = addVariable(model, std::move(vars[j]));
        for (auto [constr, value] : columns[j])
            model.constrs[at(constr)].row.push_back({var, value});
    }
    touch(model);
}

// Rows with senses and right-hand sides; without senses, with both sides.
void addRows(KVXmodel &model, int count, int numnz, const int *beg, const int *ind,
             const double *val, const char *senses, const double *rhs, const double *upper,
             const char *const *names) {
    auto rows = readLists(count, numnz, beg, ind, val, model.vars.size(), "variable");
    std::vector<Constraint> constrs;
    for (size_t i = 0; i < rows.size(); i++) {
        size_t index = model.constrs.size() + i;
        needed(rhs, "the array of sides");
        Range sides = senses ? sidesOf(senses[i], rhs[i], index)
                             : readSides({rhs[i], needed(upper, "senses or sides")[i], 0}, index);
        std::string name = readName(names ? names[i] : nullptr);
        constrs.push_back({name, sides.lower, sides.upper, std::move(rows[i]), sides.kind});
    }
    for (Constraint &constr : constrs)
        addConstraint(model, std::move(constr));
    touch(model);
}

// The new index of every item after a deletion, -1 for a deleted one.
std::vector<int> renumbering(size_t size, int num, const int *ind, const char *what) {
    readArray(num, ind, what);
    std::vector<int> numbers(size, 0);
    for (int k = 0; k < num; k++)
        numbers[readIndex(ind[k], size, what)] = -1;
    int next = 0;
    for (int &number : numbers)
        if (number == 0)
            number = next++;
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
void keep(std::vector<Item> &items, const std::vector<int> &numbers) {
    for (size_t i = 0; i < items.size(); i++)
        if (numbers[i] >= 0 && at(numbers[i]) != i)
            items[at(numbers[i])] = std::move(items[i]);
    auto gone = std::count(numbers.begin(), numbers.end(), -1);
    items.erase(items.end() - gone, items.end());
}

template <class Item>
int deleteItems(KVXmodel *model, std::vector<Item> ModelData::*items, int num, const int *ind,
                const char *what) {
    return guarded(model, [&] {
        keep(model->*items, renumbering((model->*items).size(), num, ind, what));
        touch(*model);
    });
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

} // namespace

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
        std::vector<std::vector<Entry>> columns(readCount(numvars, "variables"));
        for (size_t j = 0; len && j < columns.size(); j++)
            if (readCount(len[j], "a column") > 0) {
                size_t begin = readCount(needed(beg, "begins")[j], "a begin");
                columns[j] =
                    readList(len[j], needed(ind, "indices") + begin,
                             needed(val, "coefficients") + begin, at(numconstrs), "constraint");
            }
        addVars(*model, columns, obj, lb, ub, types, varnames);
        *modelP = model.release();
    });
}

int KVXaddvars(KVXmodel *model, int numvars, int numnz, const int *beg, const int *ind,
               const double *val, const double *obj, const double *lb, const double *ub,
               const char *types, const char *const *names) {
    return guarded(model, [&] {
        size_t limit = model->constrs.size();
        auto columns = readLists(numvars, numnz, beg, ind, val, limit, "constraint");
        addVars(*model, columns, obj, lb, ub, types, names);
    });
}

int KVXaddconstrs(KVXmodel *model, int numconstrs, int numnz, const int *beg, const int *ind,
                  const double *val, const char *senses, const double *rhs,
                  const char *const *names) {
    return guarded(model, [&] {
        addRows(*model, numconstrs, numnz, beg, ind, val, senses, rhs, nullptr, names);
    });
}

int KVXaddrangeconstrs(KVXmodel *model, int numconstrs, int numnz, const int *beg, const int *ind,
                       const double *val, const double *lower, const double *upper,
                       const char *const *names) {
    return guarded(model, [&] {
        addRows(*model, numconstrs, numnz, beg, ind, val, nullptr, lower, upper, names);
    });
}

int KVXaddsos(KVXmodel *model, int numsos, int nummembers, const int *types, const int *beg,
              const int *ind, const double *weight) {
    return guarded(model, [&] {
        std::vector<int> begins = readBegins(numsos, nummembers, beg);
        readArray(numsos, types, "types");
        readArray(nummembers, ind, "members");
        readArray(nummembers, weight, "weights");
        std::vector<Sos> sets;
        for (size_t s = 0; s + 1 < begins.size(); s++) {
            sets.push_back({types[s], {}});
            std::set<int> vars;
            for (size_t k = at(begins[s]); k < at(begins[s + 1]); k++) {
                readIndex(ind[k], model->vars.size(), "variable");
                sets[s].members.push_back({ind[k], readFinite(weight[k], "a weight")});
                vars.insert(ind[k]);
            }
            if (types[s] != KVX_SOS_TYPE1 && types[s] != KVX_SOS_TYPE2)
                fail(KVX_ERROR_INVALID_ARGUMENT, "SOS %zu: unknown type %d", s, types[s]);
            if (vars.size() < sets[s].members.size())
                fail(KVX_ERROR_INVALID_ARGUMENT, "SOS %zu: a variable is in it twice", s);
        }
        model->sos.insert(model->sos.end(), sets.begin(), sets.end());
        touch(*model);
    });
}

int KVXdelvars(KVXmodel *model, int num, const int *ind) {
    return guarded(model, [&] {
        std::vector<int> numbers = renumbering(model->vars.size(), num, ind, "variable");
        for (GeneralConstraint &constr : model->genconstrs)
            renumberNeeded(constr, [&](int var) {
                if (numbers[at(var)] < 0)
                    fail(KVX_ERROR_INVALID_ARGUMENT, "general constraint %s needs variable %s",
                         constr.name.c_str(), model->vars[at(var)].name.c_str());
                return var;
            });
        keep(model->vars, numbers);
        for (Constraint &constr : model->constrs)
            renumber(constr.row, numbers);
        for (Sos &set : model->sos)
            renumber(set.members, numbers);
        for (GeneralConstraint &constr : model->genconstrs) {
            renumber(constr.linear, numbers);
            renumberNeeded(constr, [&](int var) { return numbers[at(var)]; });
        }
        renumber(model->products, numbers);
        for (QuadraticConstraint &constr : model->qconstrs) {
            renumber(constr.linear, numbers);
            renumber(constr.products, numbers);
        }
        for (Objective &objective : model->objectives)
            keep(objective.coefs, numbers);
        touch(*model);
    });
}

int KVXdelconstrs(KVXmodel *model, int num, const int *ind) {
    return deleteItems(model, &ModelData::constrs, num, ind, "constraint");
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
    return guarded(model, [&] {
        readList(numchgs, vind, val, model->vars.size(), "variable"); // checks them
        readArray(numchgs, cind, "constraint indices");
        for (int k = 0; k < numchgs; k++)
            readIndex(cind[k], model->constrs.size(), "constraint");
        for (int k = 0; k < numchgs; k++) {
            std::vector<Entry> &row = model->constrs[at(cind[k])].row;
            auto isOld = [&](const Entry &entry) { return entry.index == vind[k]; };
            row.erase(std::remove_if(row.begin(), row.end(), isOld), row.end());
            if (val[k] != 0)
                row.push_back({vind[k], val[k]});
        }
        touch(*model);
    });
}

int KVXsetobjective(KVXmodel *model, int objsense, int numlnz, const int *lind, const double *lval,
                    int numqnz, const int *qrow, const int *qcol, const double *qval,
                    double objcon) {
    return guarded(model, [&] {
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
        touch(*model);
    });
}

int KVXsetobjectiven(KVXmodel *model, int index, int priority, const char *name, int numlnz,
                     const int *lind, const double *lval, double constant, double weight,
                     double abstol, double reltol) {
    return guarded(model, [&] {
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
        touch(*model);
    });
}

int KVXsetpwlobj(KVXmodel *model, int var, int npts, const double *x, const double *y) {
    return guarded(model, [&] {
        Variable &variable = model->vars[readIndex(var, model->vars.size(), "variable")];
        readPoints(npts, x, y);
        std::vector<double> xs(x, x + npts), ys(y, y + npts);
        variable.pwlX.swap(xs);
        variable.pwlY.swap(ys);
        variable.obj = 0;
        touch(*model);
    });
}
