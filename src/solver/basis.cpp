// Linear systems with the basis matrix of a solved linear model.
#include "assertion.h"
#include "input.h"

#include <CoinFactorization.hpp>
#include <CoinIndexedVector.hpp>

#include <cmath>
#include <numeric>
#include <utility>

using namespace korvex;

struct korvex::Basis {
    explicit Basis(const KVXmodel &model) : rows(intSize(model.constrs.size())) {
        if (!model.hasBasis)
            fail(KVX_ERROR_DATA_NOT_AVAILABLE, "the model has no basis");
        matrix = matrixOf(model);
        matrix.setDimensions(rows, intSize(model.vars.size()));
        std::vector<int> unit(at(rows));
        std::iota(unit.begin(), unit.end(), 0);
        std::vector<CoinBigIndex> begin(at(rows) + 1);
        std::iota(begin.begin(), begin.end(), 0);
        const std::vector<double> ones(at(rows), 1);
        matrix.appendCols(rows, begin.data(), unit.data(), ones.data());
        // Negative: not basic; afterwards each basic column's position.
        std::vector<int> rowPosition(at(rows), -1), position;
        for (const Variable &var : model.vars)
            position.push_back(var.basis == KVX_BASIC ? 1 : -1);
        for (const Sides &constr : model.constrs)
            position.push_back(constr.basis == KVX_BASIC ? 1 : -1);
        constexpr int outOfMemory = -99; // for which more can be asked
        int status = rows > 0 ? outOfMemory : 0;
        for (double area = 1; status == outOfMemory && area < 1e3; area *= 2) {
            factorization->areaFactor(area);
            auto factorize = [&] {
                status = factorization->factorize(matrix, rowPosition.data(), position.data());
            };
            protect(factorize, factorization);
        }
        auto isBasic = [](int place) { return place >= 0; };
        if (status != 0 || std::count_if(position.begin(), position.end(), isBasic) != rows)
            fail(KVX_ERROR_NUMERIC, "the basis matrix is singular");
        head.resize(at(rows));
        for (size_t j = 0; j < position.size(); j++)
            if (isBasic(position[j]))
                head[at(position[j])] = intSize(j);
    }

    // Solves B x = b or, transposed, B' x = b.
    std::vector<double> solve(const std::vector<Entry> &b, bool transposed) {
        if (rows == 0)
            return {};
        CoinIndexedVector work, vector;
        work.reserve(rows);
        vector.reserve(rows);
        for (auto [index, value] : b)
            vector.quickInsert(index, value);
        auto update = [&] {
            transposed ? factorization->updateColumnTranspose(&work, &vector)
                       : factorization->updateColumn(&work, &vector);
        };
        protect(update, factorization);
        return {vector.denseVector(), vector.denseVector() + rows};
    }

    const int rows;
    CoinPackedMatrix matrix; // by columns, those of the logicals behind those of the variables
    std::vector<int> head;   // the basic column of each position
    std::unique_ptr<CoinFactorization> factorization = std::make_unique<CoinFactorization>();
};

namespace {

// Calls use(basis); it is factorized once for all calls while the model stays as it is.
template <class Use>
int withBasis(KVXmodel *model, Use use) {
    return guardedRead(model, [&] {
        refuseDuringRun(*model);
        auto basis = std::exchange(model->basis, nullptr);
        if (!basis)
            basis = std::make_shared<Basis>(*model);
        use(*basis);
        model->basis = std::move(basis);
    });
}

// make(basis) returns the dense result.
template <class Make>
int write(KVXmodel *model, SparseVector *x, Make make) {
    return withBasis(model, [&](Basis &basis) {
        std::vector<Entry> entries;
        for (double value : make(basis))
            entries.push_back({intSize(entries.size()), value});
        auto isRounding = [](Entry entry) { return std::abs(entry.value) <= 1e-14; };
        entries.erase(std::remove_if(entries.begin(), entries.end(), isRounding), entries.end());
        const int count = intSize(entries.size());
        if (needed(x, "x")->len < count)
            fail(KVX_ERROR_INVALID_ARGUMENT, "x has room for %d entries, but has %d", x->len,
                 count);
        storeEntries(x->ind, x->val, entries);
        x->len = count;
    });
}

int solve(KVXmodel *model, const SparseVector *b, SparseVector *x, bool transposed) {
    return write(model, x, [&](Basis &basis) {
        needed(b, "b");
        return basis.solve(readList(b->len, b->ind, b->val, at(basis.rows), "index"), transposed);
    });
}

} // namespace

int KVXFSolve(KVXmodel *model, SparseVector *b, SparseVector *x) {
    return solve(model, b, x, false);
}

int KVXBSolve(KVXmodel *model, SparseVector *b, SparseVector *x) {
    return solve(model, b, x, true);
}

int KVXBinvColj(KVXmodel *model, int j, SparseVector *x) {
    return write(model, x, [&](Basis &basis) {
        readIndex(j, at(basis.matrix.getNumCols()), "column");
        const auto column = basis.matrix.getVector(j);
        std::vector<Entry> entries;
        for (int k = 0; k < column.getNumElements(); k++)
            entries.push_back({column.getIndices()[k], column.getElements()[k]});
        return basis.solve(entries, false);
    });
}

int KVXBinvRowi(KVXmodel *model, int i, SparseVector *x) {
    return write(model, x, [&](Basis &basis) {
        readIndex(i, at(basis.rows), "row");
        std::vector<double> row(at(basis.matrix.getNumCols()));
        basis.matrix.transposeTimes(basis.solve({{i, 1}}, true).data(), row.data());
        return row;
    });
}

int KVXgetBasisHead(KVXmodel *model, int *head) {
    return withBasis(
        model, [&](Basis &basis) { storeAll(readArray(basis.rows, head, "head"), basis.head); });
}
