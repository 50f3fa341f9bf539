// Building: variables, constraints, SOS, objectives, coefficients and deletion. Everything is read
// and checked before the model changes.
#include "input.h"

#include <tuple>

using namespace korvex;

namespace {

std::vector<Variable> readVariables(size_t first, int count, const double *obj, const double *lb,
                                    const double *ub, const char *types, const char *const *names) {
    std::vector<Variable> vars(readCount(count, "variables"));
    for (size_t j = 0; j < vars.size(); j++) {
        Variable &var = vars[j];
        var.name = readName(names ? names[j] : nullptr);
        var.obj = obj ? readFinite(obj[j], "an objective coefficient") : 0;
        Range domain = readDomain({lb ? lb[j] : 0, ub ? ub[j] : KVX_INFINITY,
                                   types ? types[j] : static_cast<char>(KVX_CONTINUOUS)},
                                  first + j);
        std::tie(var.lb, var.ub, var.type) = std::tie(domain.lower, domain.upper, domain.kind);
    }
    return vars;
}

// sides(i) gives the sides of the i-th of the new rows.
template <class Sides>
std::vector<Constraint> readConstraints(int count, Sides sides, const char *const *names) {
    std::vector<Constraint> constrs(readCount(count, "constraints"));
    for (size_t i = 0; i < constrs.size(); i++) {
        Constraint &constr = constrs[i];
        Range range = sides(i);
        constr.name = readName(names ? names[i] : nullptr);
        std::tie(constr.lower, constr.upper, constr.sense) =
            std::tie(range.lower, range.upper, range.kind);
    }
    return constrs;
}

// Adds columns or rows, which hold their entries in *own, and the entries to *cross of the others.
template <class Item, class Other>
void append(std::vector<Item> &items, std::vector<Item> added, std::vector<Entry> Item::*own,
            std::vector<Other> &others, std::vector<Entry> Other::*cross) {
    const size_t old = items.size();
    auto isNew = [&](const Entry &entry) { return static_cast<size_t>(entry.index) >= old; };
    items.insert(items.end(), std::make_move_iterator(added.begin()),
                 std::make_move_iterator(added.end()));
    try {
        for (size_t i = old; i < items.size(); i++)
            for (auto [index, value] : items[i].*own)
                (others[static_cast<size_t>(index)].*cross).push_back({static_cast<int>(i), value});
    } catch (...) {
        for (Other &other : others)
            while (!(other.*cross).empty() && isNew((other.*cross).back()))
                (other.*cross).pop_back();
        items.erase(items.begin() + static_cast<std::ptrdiff_t>(old), items.end());
        throw;
    }
}

void appendVars(KVXmodel &model, std::vector<Variable> vars) {
    for (Objective &objective : model.objectives)
        objective.coefs.reserve(model.vars.size() + vars.size());
    append(model.vars, std::move(vars), &Variable::column, model.constrs, &Constraint::row);
    for (Objective &objective : model.objectives)
        objective.coefs.resize(model.vars.size());
    touch(model);
}

template <class Sides>
int addConstraints(KVXmodel *model, int count, int numnz, const int *beg, const int *ind,
                   const double *val, const char *const *names, Sides sides) {
    return guarded(model, [&] {
        auto rows = readLists(count, numnz, beg, ind, val, model->vars.size(), "variable");
        std::vector<Constraint> constrs = readConstraints(count, sides, names);
        for (size_t i = 0; i < constrs.size(); i++)
            constrs[i].row = std::move(rows[i]);
        append(model->constrs, std::move(constrs), &Constraint::row, model->vars,
               &Variable::column);
        touch(*model);
    });
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

template <class Item>
void keep(std::vector<Item> &items, const std::vector<int> &numbers) {
    size_t kept = 0;
    for (size_t i = 0; i < items.size(); i++)
        if (numbers[i] >= 0 && kept++ != i)
            items[kept - 1] = std::move(items[i]);
    items.erase(items.begin() + static_cast<std::ptrdiff_t>(kept), items.end());
}

template <class Item>
int deleteItems(KVXmodel *model, std::vector<Item> ModelData::*items, int num, const int *ind,
                const char *what) {
    return guarded(model, [&] {
        keep(model->*items, renumbering((model->*items).size(), num, ind, what));
        touch(*model);
    });
}

void setEntry(std::vector<Entry> &list, int index, double value) {
    auto entry = std::find_if(list.begin(), list.end(), [&](Entry e) { return e.index == index; });
    if (entry != list.end() && value != 0)
        entry->value = value;
    else if (entry != list.end())
        list.erase(entry);
    else if (value != 0)
        list.push_back({index, value});
}

std::vector<double> dense(const std::vector<Entry> &entries, size_t size) {
    std::vector<double> values(size);
    for (auto [index, value] : entries)
        values[static_cast<size_t>(index)] = value;
    return values;
}

} // namespace

int KVXnewmodel(KVXenv *env, KVXmodel **modelP, const char *name, int numvars, const double *obj,
                const double *lb, const double *ub, const char *types, const char *const *names) {
    return guardedRead(env, [&] {
        needed(modelP, "modelP");
        auto model = makeModel(*env);
        model->name = readName(name);
        model->vars = readVariables(0, numvars, obj, lb, ub, types, names);
        *modelP = model.release();
    });
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
        readArray(numconstrs, senses, "senses");
        readArray(numconstrs, rhs, "right-hand sides");
        auto sides = [&](size_t i) { return sidesOf(senses[i], rhs[i], i); };
        model->constrs = readConstraints(numconstrs, sides, constrnames);
        std::vector<Variable> vars = readVariables(0, numvars, obj, lb, ub, types, varnames);
        readArray(numvars, beg, "begins");
        readArray(numvars, len, "lengths");
        for (size_t j = 0; j < vars.size(); j++) {
            if (!readCount(len[j], "a column"))
                continue;
            readCount(beg[j], "a begin");
            vars[j].column =
                readList(len[j], needed(ind, "indices") + beg[j],
                         needed(val, "coefficients") + beg[j], model->constrs.size(), "constraint");
        }
        appendVars(*model, std::move(vars));
        *modelP = model.release();
    });
}

int KVXaddvars(KVXmodel *model, int numvars, int numnz, const int *beg, const int *ind,
               const double *val, const double *obj, const double *lb, const double *ub,
               const char *types, const char *const *names) {
    return guarded(model, [&] {
        auto columns =
            readLists(numvars, numnz, beg, ind, val, model->constrs.size(), "constraint");
        auto vars = readVariables(model->vars.size(), numvars, obj, lb, ub, types, names);
        for (size_t j = 0; j < vars.size(); j++)
            vars[j].column = std::move(columns[j]);
        appendVars(*model, std::move(vars));
    });
}

int KVXaddconstrs(KVXmodel *model, int numconstrs, int numnz, const int *beg, const int *ind,
                  const double *val, const char *senses, const double *rhs,
                  const char *const *names) {
    return addConstraints(model, numconstrs, numnz, beg, ind, val, names, [&](size_t i) {
        return sidesOf(needed(senses, "senses")[i], needed(rhs, "right-hand sides")[i],
                       model->constrs.size() + i);
    });
}

int KVXaddrangeconstrs(KVXmodel *model, int numconstrs, int numnz, const int *beg, const int *ind,
                       const double *val, const double *lower, const double *upper,
                       const char *const *names) {
    return addConstraints(model, numconstrs, numnz, beg, ind, val, names, [&](size_t i) {
        Range sides{needed(lower, "lower sides")[i], needed(upper, "upper sides")[i], 0};
        sides = readSides(sides, model->constrs.size() + i);
        sides.kind = senseOf(sides.lower, sides.upper);
        return sides;
    });
}

int KVXaddqpterms(KVXmodel *model, int numqnz, const int *qrow, const int *qcol,
                  const double *qval) {
    return guarded(model, [&] {
        auto terms = readQuadratic(numqnz, qrow, qcol, qval, model->vars.size());
        model->quadratic.insert(model->quadratic.end(), terms.begin(), terms.end());
        touch(*model);
    });
}

int KVXdelq(KVXmodel *model) {
    return guarded(model, [&] {
        model->quadratic.clear();
        touch(*model);
    });
}

int KVXaddqconstr(KVXmodel *model, int numlnz, const int *lind, const double *lval, int numqnz,
                  const int *qrow, const int *qcol, const double *qval, char sense, double rhs,
                  const char *name) {
    return guarded(model, [&] {
        const size_t limit = model->vars.size();
        model->qconstrs.push_back({readName(name), readList(numlnz, lind, lval, limit, "variable"),
                                   readQuadratic(numqnz, qrow, qcol, qval, limit), readSense(sense),
                                   readFinite(rhs, "the right-hand side")});
        touch(*model);
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
            if (types[s] != KVX_SOS_TYPE1 && types[s] != KVX_SOS_TYPE2)
                fail(KVX_ERROR_INVALID_ARGUMENT, "SOS %zu: unknown type %d", s, types[s]);
            Sos set{types[s], {}};
            std::set<int> members;
            for (int k = begins[s]; k < begins[s + 1]; k++) {
                readIndex(ind[k], model->vars.size(), "variable");
                if (!members.insert(ind[k]).second)
                    fail(KVX_ERROR_INVALID_ARGUMENT, "SOS %zu: variable %d twice", s, ind[k]);
                set.members.push_back({ind[k], readFinite(weight[k], "a weight")});
            }
            sets.push_back(std::move(set));
        }
        model->sos.insert(model->sos.end(), sets.begin(), sets.end());
        touch(*model);
    });
}

int KVXdelvars(KVXmodel *model, int num, const int *ind) {
    return guarded(model, [&] {
        std::vector<int> numbers = renumbering(model->vars.size(), num, ind, "variable");
        for (size_t g = 0; g < model->genconstrs.size(); g++)
            for (int var : dependsOn(model->genconstrs[g]))
                if (numbers[static_cast<size_t>(var)] < 0)
                    fail(KVX_ERROR_INVALID_ARGUMENT, "general constraint %s needs variable %s",
                         genconstrName(*model, static_cast<int>(g)).c_str(),
                         varName(*model, var).c_str());
        keep(model->vars, numbers);
        for (Constraint &constr : model->constrs)
            renumber(constr.row, numbers, &Entry::index);
        renumber(model->quadratic, numbers, &QuadraticTerm::row, &QuadraticTerm::col);
        for (Sos &set : model->sos)
            renumber(set.members, numbers, &Entry::index);
        for (QuadraticConstraint &constr : model->qconstrs) {
            renumber(constr.linear, numbers, &Entry::index);
            renumber(constr.quadratic, numbers, &QuadraticTerm::row, &QuadraticTerm::col);
        }
        for (GeneralConstraint &constr : model->genconstrs)
            renumberVariables(constr, numbers);
        for (Objective &objective : model->objectives)
            keep(objective.coefs, numbers);
        touch(*model);
    });
}

int KVXdelconstrs(KVXmodel *model, int num, const int *ind) {
    return guarded(model, [&] {
        std::vector<int> numbers = renumbering(model->constrs.size(), num, ind, "constraint");
        keep(model->constrs, numbers);
        for (Variable &var : model->vars)
            renumber(var.column, numbers, &Entry::index);
        touch(*model);
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
    return guarded(model, [&] {
        readArray(numchgs, cind, "constraint indices");
        readArray(numchgs, vind, "variable indices");
        readArray(numchgs, val, "coefficients");
        for (int k = 0; k < numchgs; k++) {
            readIndex(cind[k], model->constrs.size(), "constraint");
            readIndex(vind[k], model->vars.size(), "variable");
            readFinite(val[k], "a coefficient");
        }
        for (int k = 0; k < numchgs; k++) {
            setEntry(model->constrs[static_cast<size_t>(cind[k])].row, vind[k], val[k]);
            setEntry(model->vars[static_cast<size_t>(vind[k])].column, cind[k], val[k]);
        }
        touch(*model);
    });
}

int KVXsetobjective(KVXmodel *model, int objsense, int numlnz, const int *lind, const double *lval,
                    int numqnz, const int *qrow, const int *qcol, const double *qval,
                    double objcon) {
    return guarded(model, [&] {
        int sense = objsense ? readObjSense(objsense) : model->objsense;
        const size_t size = model->vars.size();
        auto coefs = dense(readList(std::max(numlnz, 0), lind, lval, size, "variable"), size);
        auto terms = readQuadratic(std::max(numqnz, 0), qrow, qcol, qval, size);
        model->objcon = readFinite(objcon, "the objective constant");
        model->objsense = sense;
        for (size_t j = 0; j < size; j++) {
            model->vars[j].obj = coefs[j];
            model->vars[j].pwlX.clear();
            model->vars[j].pwlY.clear();
        }
        model->quadratic.swap(terms);
        model->objectives.clear();
        model->objNumber = 0;
        touch(*model);
    });
}

int KVXsetobjectiven(KVXmodel *model, int index, int priority, const char *name, int numlnz,
                     const int *lind, const double *lval, double constant, double weight,
                     double abstol, double reltol) {
    return guarded(model, [&] {
        const size_t size = model->vars.size();
        size_t number = readIndex(index, model->objectives.size() + 1, "objective");
        Objective objective;
        objective.name = readName(name);
        objective.priority = priority;
        objective.constant = readFinite(constant, "the objective constant");
        objective.weight = readFinite(weight, "the weight");
        objective.abstol = readFinite(abstol, "the absolute tolerance");
        objective.reltol = readFinite(reltol, "the relative tolerance");
        if (abstol < 0 || reltol < 0)
            fail(KVX_ERROR_INVALID_ARGUMENT, "a tolerance is negative");
        objective.coefs = dense(readList(numlnz, lind, lval, size, "variable"), size);
        if (number == model->objectives.size())
            model->objectives.emplace_back();
        model->objectives[number] = std::move(objective);
        touch(*model);
    });
}

int KVXsetpwlobj(KVXmodel *model, int var, int npts, const double *x, const double *y) {
    return guarded(model, [&] {
        Variable &variable = model->vars[readIndex(var, model->vars.size(), "variable")];
        auto [xs, ys] = readPoints(npts, x, y);
        variable.pwlX.swap(xs);
        variable.pwlY.swap(ys);
        variable.obj = 0;
        touch(*model);
    });
}
