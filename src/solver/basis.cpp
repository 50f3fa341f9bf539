// Linear systems with the basis matrix of a solved linear model.
#include "input.h"

#include <CoinFactorization.hpp>
#include <CoinIndexedVector.hpp>
#include <CoinPackedMatrix.hpp>

#include <algorithm>
#include <cmath>

using namespace korvex;

namespace {

constexpr double zero = 1e-14; // Smaller results are rounding errors.

class Basis {
  public:
    explicit Basis(const KVXmodel &model)
        : model(model), columns(static_cast<int>(model.vars.size())),
          rows(static_cast<int>(model.constrs.size())), head(model.constrs.size()) {
        if (!model.solution.hasBasis)
            fail(KVX_ERROR_DATA_NOT_AVAILABLE, "the model has no basis of a linear solution");
        factorize();
    }

    // b by rows becomes B^-1 b by positions.
    void solve(CoinIndexedVector &b) {
        factorization.updateColumn(&work, &b);
        signLogicals(b);
    }

    // b by positions becomes B^-T b by rows.
    void solveTransposed(CoinIndexedVector &b) {
        signLogicals(b);
        factorization.updateColumnTranspose(&work, &b);
    }

    CoinIndexedVector vector(const std::vector<Entry> &entries) const {
        CoinIndexedVector result;
        result.reserve(rows);
        for (const Entry &entry : entries)
            result.quickInsert(entry.index, entry.value);
        return result;
    }

    const KVXmodel &model;
    const int columns, rows;
    std::vector<int> head; // basic variable of each position; columns + i for the logical of row i

  private:
    void factorize() {
        std::vector<int> rowPosition, columnPosition; // negative: nonbasic
        for (const Constraint &constr : model.constrs)
            rowPosition.push_back(constr.basis == KVX_BASIC ? 1 : -1);
        std::vector<int> index;
        std::vector<double> value;
        std::vector<CoinBigIndex> begin = {0};
        for (const Variable &var : model.vars) {
            columnPosition.push_back(var.basis == KVX_BASIC ? 1 : -1);
            for (const Entry &entry : var.column) {
                index.push_back(entry.index);
                value.push_back(entry.value);
            }
            begin.push_back(static_cast<CoinBigIndex>(index.size()));
        }
        CoinPackedMatrix matrix(true, rows, columns, begin.back(), value.data(), index.data(),
                                begin.data(), nullptr);
        int status = -99;
        for (double area = 1; status == -99 && area < 1e3; area *= 2) { // too little memory
            factorization.areaFactor(area);
            status = factorization.factorize(matrix, rowPosition.data(), columnPosition.data());
        }
        if (status != 0)
            fail(KVX_ERROR_NUMERIC, "the basis matrix is singular");
        for (int j = 0; j < columns + rows; j++) {
            int position = j < columns ? columnPosition[static_cast<size_t>(j)]
                                       : rowPosition[static_cast<size_t>(j - columns)];
            if (position >= 0)
                head[static_cast<size_t>(position)] = j;
        }
        work.reserve(rows);
    }

    // The factorization's own logicals are the unit vectors times slackValue().
    void signLogicals(CoinIndexedVector &b) const {
        for (int k = 0; k < b.getNumElements(); k++)
            if (int position = b.getIndices()[k]; head[static_cast<size_t>(position)] >= columns)
                b.denseVector()[position] *= factorization.slackValue();
    }

    CoinFactorization factorization;
    CoinIndexedVector work;
};

CoinIndexedVector read(const Basis &basis, const SparseVector *b) {
    needed(b, "b");
    return basis.vector(readList(b->len, b->ind, b->val, basis.head.size(), "index"));
}

void write(const std::vector<double> &result, SparseVector *x) {
    needed(x, "x");
    auto isEntry = [](double value) { return std::abs(value) > zero; };
    auto count = std::count_if(result.begin(), result.end(), isEntry);
    if (x->len < count)
        fail(KVX_ERROR_INVALID_ARGUMENT, "x has room for %d entries, but has %ld", x->len, count);
    int written = 0;
    for (size_t i = 0; i < result.size(); i++)
        if (isEntry(result[i])) {
            x->ind[written] = static_cast<int>(i);
            x->val[written++] = result[i];
        }
    x->len = written;
}

std::vector<double> dense(const CoinIndexedVector &vector, int size) {
    return {vector.denseVector(), vector.denseVector() + size};
}

} // namespace

int KVXFSolve(KVXmodel *model, SparseVector *b, SparseVector *x) {
    return guarded(model, [&] {
        Basis basis(*model);
        CoinIndexedVector vector = read(basis, b);
        basis.solve(vector);
        write(dense(vector, basis.rows), x);
    });
}

int KVXBSolve(KVXmodel *model, SparseVector *b, SparseVector *x) {
    return guarded(model, [&] {
        Basis basis(*model);
        CoinIndexedVector vector = read(basis, b);
        basis.solveTransposed(vector);
        write(dense(vector, basis.rows), x);
    });
}

int KVXBinvColj(KVXmodel *model, int j, SparseVector *x) {
    return guarded(model, [&] {
        Basis basis(*model);
        size_t column = readIndex(j, model->vars.size() + model->constrs.size(), "column");
        CoinIndexedVector vector =
            basis.vector(j < basis.columns ? model->vars[column].column
                                           : std::vector<Entry>{{j - basis.columns, 1}});
        basis.solve(vector);
        write(dense(vector, basis.rows), x);
    });
}

int KVXBinvRowi(KVXmodel *model, int i, SparseVector *x) {
    return guarded(model, [&] {
        Basis basis(*model);
        readIndex(i, basis.head.size(), "row");
        CoinIndexedVector vector = basis.vector({{i, 1}});
        basis.solveTransposed(vector);
        std::vector<double> row, logicals = dense(vector, basis.rows);
        for (const Variable &var : model->vars) {
            double value = 0;
            for (const Entry &entry : var.column)
                value += entry.value * logicals[static_cast<size_t>(entry.index)];
            row.push_back(value);
        }
        row.insert(row.end(), logicals.begin(), logicals.end());
        write(row, x);
    });
}

int KVXgetBasisHead(KVXmodel *model, int *head) {
    return guarded(model, [&] {
        Basis basis(*model);
        std::copy(basis.head.begin(), basis.head.end(),
                  basis.rows > 0 ? needed(head, "head") : head);
    });
}
