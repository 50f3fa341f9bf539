// Quadratic terms of the objective, and quadratic constraints.
#include "input.h"
#include "optimize.h"

namespace korvex {

void addProducts(Products &products, Products more) noexcept {
    products.merge(more); // leaves those that are in both
    for (auto [key, value] : more) {
        auto product = products.find(key);
        product->second += value;
        if (product->second == 0)
            products.erase(product);
    }
}

void refuseQuadratic(const ModelData &model) {
    if (!model.qconstrs.empty())
        fail(KVX_ERROR_NOT_SUPPORTED, "quadratic constraint %s can't be solved",
             model.qconstrs[0].name.text().c_str());
    if (!model.objectives.empty() && !model.pwl.empty())
        fail(KVX_ERROR_NOT_SUPPORTED,
             "several objectives with the piecewise-linear term of variable %s can't be solved",
             model.vars[at(model.pwl.begin()->first)].name.text().c_str());
    if (!model.objectives.empty() && !model.products.empty())
        fail(KVX_ERROR_NOT_SUPPORTED,
             "several objectives and the quadratic terms of variable %s can't be solved",
             model.vars[at(model.products.begin()->first.first)].name.text().c_str());
}

static void storeProducts(int *countP, int *row, int *col, double *val, const Products &products) {
    store(countP, intSize(products.size()));
    size_t k = 0;
    for (auto [key, value] : products) {
        store(row ? row + k : nullptr, key.first);
        store(col ? col + k : nullptr, key.second);
        store(val ? val + k : nullptr, value);
        k++;
    }
}

} // namespace korvex

using namespace korvex;

int KVXaddqpterms(KVXmodel *model, int numqnz, const int *qrow, const int *qcol,
                  const double *qval) {
    return guardedChange(model, [&] {
        addProducts(model->products, readProducts(numqnz, qrow, qcol, qval, model->vars.size()));
    });
}

int KVXdelq(KVXmodel *model) {
    return guardedChange(model, [&] { model->products.clear(); });
}

int KVXgetq(KVXmodel *model, int *numqnzP, int *qrow, int *qcol, double *qval) {
    return guardedRead(model, [&] { storeProducts(numqnzP, qrow, qcol, qval, model->products); });
}

int KVXaddqconstr(KVXmodel *model, int numlnz, const int *lind, const double *lval, int numqnz,
                  const int *qrow, const int *qcol, const double *qval, char sense, double rhs,
                  const char *name) {
    return guardedChange(model, [&] {
        const size_t vars = model->vars.size();
        QuadraticConstraint constr;
        constr.name = readName(name);
        constr.linear = readList(numlnz, lind, lval, vars, "variable");
        constr.products = readProducts(numqnz, qrow, qcol, qval, vars);
        sidesOf(sense, readFinite(rhs, "the right-hand side"), model->qconstrs.size());
        constr.sense = sense;
        constr.rhs = rhs;
        addQuadraticConstraint(*model, std::move(constr));
    });
}

int KVXgetqconstr(KVXmodel *model, int qconstr, int *numlnzP, int *lind, double *lval, int *numqnzP,
                  int *qrow, int *qcol, double *qval) {
    return guardedRead(model, [&] {
        const QuadraticConstraint &constr =
            model->qconstrs[readIndex(qconstr, model->qconstrs.size(), "quadratic constraint")];
        store(numlnzP, intSize(constr.linear.size()));
        storeEntries(lind, lval, constr.linear);
        storeProducts(numqnzP, qrow, qcol, qval, constr.products);
    });
}
