// Structure: reading the model's matrices, sets and terms back, and tidying sparse lists.
#include "input.h"

#include <tuple>

using namespace korvex;

namespace {

// Reads the lists of count items from start on; both buffers and begins may be null.
template <class Item>
void storeLists(const std::vector<Item> &items, std::vector<Entry> Item::*list, int start,
                int count, const char *what, int *numP, int *beg, int *ind, double *val) {
    size_t number = readCount(count, what);
    if (number)
        readRange(start, number, items.size(), what);
    size_t total = 0;
    for (size_t i = 0; i < number; i++) {
        const std::vector<Entry> &entries = items[static_cast<size_t>(start) + i].*list;
        if (beg)
            beg[i] = intSize(total);
        storeEntries(ind ? ind + total : nullptr, val ? val + total : nullptr, entries);
        total += entries.size();
    }
    if (beg)
        beg[number] = intSize(total);
    store(numP, intSize(total));
}

void storeQuadratic(const std::vector<QuadraticTerm> &terms, int *numP, int *qrow, int *qcol,
                    double *qval) {
    store(numP, intSize(terms.size()));
    for (size_t k = 0; k < terms.size(); k++) {
        store(qrow ? qrow + k : nullptr, terms[k].row);
        store(qcol ? qcol + k : nullptr, terms[k].col);
        store(qval ? qval + k : nullptr, terms[k].value);
    }
}

template <class Item>
int findName(KVXmodel *model, std::vector<Item> ModelData::*items, const char *name, int *indexP,
             std::string (*made)(const ModelData &, int)) {
    return guardedRead(model, [&] {
        needed(name, "name");
        needed(indexP, "indexP");
        for (int i = 0; i < intSize((model->*items).size()); i++) {
            const std::string &own = (model->*items)[static_cast<size_t>(i)].name;
            if (own.empty() ? made(*model, i) == name : own == name) {
                *indexP = i;
                return;
            }
        }
        fail(KVX_ERROR_NOT_FOUND, "nothing is named \"%s\"", name);
    });
}

// Sorts entries by their indices, sums those of equal ones, drops zeros. An entry is an array of
// one or two indices and a value.
template <class... Index>
void clean(int *lenP, double *val, Index *...ind) {
    if (!lenP || *lenP <= 0 || !val || (!ind || ...))
        return;
    std::string unused;
    guarded(unused, [&] {
        std::vector<std::tuple<std::tuple<Index...>, double>> entries;
        for (int k = 0; k < *lenP; k++)
            entries.push_back({{ind[k]...}, val[k]});
        auto before = [](const auto &a, const auto &b) { return std::get<0>(a) < std::get<0>(b); };
        std::stable_sort(entries.begin(), entries.end(), before);
        int kept = 0;
        for (size_t k = 0; k < entries.size();) {
            auto &[key, sum] = entries[k];
            for (k++; k < entries.size() && std::get<0>(entries[k]) == key; k++)
                sum += std::get<1>(entries[k]);
            if (sum == 0)
                continue;
            std::tie(ind[kept]...) = key;
            val[kept++] = sum;
        }
        *lenP = kept;
    });
}

} // namespace

int KVXgetcoeff(KVXmodel *model, int constr, int var, double *value) {
    return guardedRead(model, [&] {
        needed(value, "value");
        size_t row = readIndex(constr, model->constrs.size(), "constraint");
        readIndex(var, model->vars.size(), "variable");
        *value = 0;
        for (Entry entry : model->constrs[row].row)
            if (entry.index == var)
                *value = entry.value;
    });
}

int KVXgetconstrs(KVXmodel *model, int *numnzP, int *beg, int *ind, double *val, int start,
                  int count) {
    return guardedRead(model, [&] {
        storeLists(model->constrs, &Constraint::row, start, count, "constraints", numnzP, beg, ind,
                   val);
    });
}

int KVXgetvars(KVXmodel *model, int *numnzP, int *beg, int *ind, double *val, int start,
               int count) {
    return guardedRead(model, [&] {
        storeLists(model->vars, &Variable::column, start, count, "variables", numnzP, beg, ind,
                   val);
    });
}

int KVXgetsos(KVXmodel *model, int *nummembersP, int *types, int *beg, int *ind, double *weight,
              int start, int count) {
    return guardedRead(model, [&] {
        storeLists(model->sos, &Sos::members, start, count, "SOS", nummembersP, beg, ind, weight);
        for (int i = 0; types && i < count; i++)
            types[i] = model->sos[static_cast<size_t>(start + i)].type;
    });
}

int KVXgetconstrbyname(KVXmodel *model, const char *name, int *indexP) {
    return findName(model, &ModelData::constrs, name, indexP, constrName);
}

int KVXgetvarbyname(KVXmodel *model, const char *name, int *indexP) {
    return findName(model, &ModelData::vars, name, indexP, varName);
}

int KVXgetq(KVXmodel *model, int *numqnzP, int *qrow, int *qcol, double *qval) {
    return guardedRead(model, [&] { storeQuadratic(model->quadratic, numqnzP, qrow, qcol, qval); });
}

int KVXgetqconstr(KVXmodel *model, int qconstr, int *numlnzP, int *lind, double *lval, int *numqnzP,
                  int *qrow, int *qcol, double *qval) {
    return guardedRead(model, [&] {
        const QuadraticConstraint &constr =
            model->qconstrs[readIndex(qconstr, model->qconstrs.size(), "quadratic constraint")];
        store(numlnzP, intSize(constr.linear.size()));
        storeEntries(lind, lval, constr.linear);
        storeQuadratic(constr.quadratic, numqnzP, qrow, qcol, qval);
    });
}

int KVXgetpwlobj(KVXmodel *model, int var, int *nptsP, double *x, double *y) {
    return guardedRead(model, [&] {
        const Variable &variable = model->vars[readIndex(var, model->vars.size(), "variable")];
        store(nptsP, intSize(variable.pwlX.size()));
        storeAll(x, variable.pwlX);
        storeAll(y, variable.pwlY);
    });
}

void KVXclean2(int *lenP, int *ind, double *val) {
    clean(lenP, val, ind);
}

void KVXclean3(int *lenP, int *ind1, int *ind2, double *val) {
    clean(lenP, val, ind1, ind2);
}
