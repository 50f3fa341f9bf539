// Structure: reading the model's matrix, sets and terms back, and tidying sparse lists.
#include "input.h"

#include <map>
#include <tuple>

using namespace korvex;

namespace {

// Stores the lists entriesOf(i) of count items from start on; all buffers may be null.
template <class EntriesOf>
void storeLists(int start, int count, size_t limit, const char *what, int *numP, int *beg, int *ind,
                double *val, EntriesOf entriesOf) {
    readRange(start, count, limit, what);
    int total = 0;
    for (int k = 0; k < count; k++) {
        const auto &entries = entriesOf(at(start + k));
        store(beg ? beg + k : nullptr, total);
        storeEntries(ind ? ind + total : nullptr, val ? val + total : nullptr, entries);
        total += intSize(entries.size());
    }
    store(beg ? beg + count : nullptr, total);
    store(numP, total);
}

template <class Item>
int findName(KVXmodel *model, std::vector<Item> ModelData::*items, NameIndex KVXmodel::*names,
             const char *name, int *indexP) {
    return guardedRead(model, [&] {
        const int found = (model->*names).find(model->*items, needed(name, "name"));
        if (found < 0)
            fail(KVX_ERROR_NOT_FOUND, "nothing is named \"%s\"", name);
        *needed(indexP, "indexP") = found;
    });
}

// Sorts entries of one or more indices each, sums those of equal indices, drops zeros.
template <class... Index>
void clean(int *lenP, double *val, Index *...ind) {
    std::string unused;
    guarded(unused, [&] {
        std::map<std::tuple<Index...>, double> sums;
        for (int k = 0; lenP && val && (ind && ...) && k < *lenP; k++)
            sums[{ind[k]...}] += val[k];
        int kept = 0;
        for (auto &[key, sum] : sums)
            if (sum != 0) {
                std::tie(ind[kept]...) = key;
                val[kept++] = sum;
            }
        if (!sums.empty())
            *lenP = kept;
    });
}

} // namespace

int KVXgetcoeff(KVXmodel *model, int constr, int var, double *value) {
    return guardedRead(model, [&] {
        size_t row = readIndex(constr, model->constrs.size(), "constraint");
        readIndex(var, model->vars.size(), "variable");
        *needed(value, "value") = model->rows.coefficient(row, var);
    });
}

int KVXgetconstrs(KVXmodel *model, int *numnzP, int *beg, int *ind, double *val, int start,
                  int count) {
    return guardedRead(model, [&] {
        auto row = [&](size_t i) { return model->rows[i]; };
        storeLists(start, count, model->constrs.size(), "constraints", numnzP, beg, ind, val, row);
    });
}

int KVXgetvars(KVXmodel *model, int *numnzP, int *beg, int *ind, double *val, int start,
               int count) {
    return guardedRead(model, [&] {
        const Lists &columns = model->rows.columns(model->vars.size());
        auto column = [&](size_t j) { return columns[j]; };
        storeLists(start, count, columns.size(), "variables", numnzP, beg, ind, val, column);
    });
}

int KVXgetsos(KVXmodel *model, int *nummembersP, int *types, int *beg, int *ind, double *weight,
              int start, int count) {
    return guardedRead(model, [&] {
        auto members = [&](size_t s) -> auto & {
            return model->sos[s].members;
        };
        storeLists(start, count, model->sos.size(), "SOS", nummembersP, beg, ind, weight, members);
        for (int k = 0; types && k < count; k++)
            types[k] = model->sos[at(start + k)].type;
    });
}

int KVXgetconstrbyname(KVXmodel *model, const char *name, int *indexP) {
    return findName(model, &ModelData::constrs, &KVXmodel::constrIndex, name, indexP);
}

int KVXgetvarbyname(KVXmodel *model, const char *name, int *indexP) {
    return findName(model, &ModelData::vars, &KVXmodel::varIndex, name, indexP);
}

int KVXgetpwlobj(KVXmodel *model, int var, int *nptsP, double *x, double *y) {
    return guardedRead(model, [&] {
        readIndex(var, model->vars.size(), "variable");
        auto term = model->pwl.find(var);
        const Breakpoints &points = term == model->pwl.end() ? Breakpoints() : term->second;
        store(nptsP, intSize(points.x.size()));
        storeAll(x, points.x);
        storeAll(y, points.y);
    });
}

void KVXclean2(int *lenP, int *ind, double *val) {
    clean(lenP, val, ind);
}

void KVXclean3(int *lenP, int *ind1, int *ind2, double *val) {
    clean(lenP, val, ind1, ind2);
}
