// Basis solves, by multiplying back on a model with thousands of rows.
#include "solver_case.h"

#include <random>

namespace {

constexpr int rows = 2000, columns = 2500;

TEST(Basis, SolvesMultiplyBack) {
    Env env;
    std::mt19937 random(1);
    auto pick = [&](int count) {
        return static_cast<int>(random() % static_cast<unsigned>(count));
    };
    std::vector<int> begin, length(columns, 3), ind;
    std::vector<double> val, obj, rhs(rows, 5), lb(columns, -1), ub(columns, 2);
    for (int j = 0; j < columns; j++) {
        begin.push_back(static_cast<int>(ind.size()));
        obj.push_back(pick(19) - 9);
        for (int k = 0; k < 3; k++) {
            ind.push_back((pick(rows / 3) * 3 + k) % rows);
            val.push_back(pick(2) ? 1 + pick(4) : -1 - pick(4));
        }
    }
    std::string senses;
    for (double &side : rhs) {
        senses += "<<=>"[pick(4)];
        side = senses.back() == '>' ? -2 : senses.back() == '=' ? 0 : 2;
    }
    KVXmodel *made = nullptr;
    ASSERT_EQ(KVX_OK,
              KVXloadmodel(env, &made, "basis", columns, rows, 1, 0, obj.data(), senses.data(),
                           rhs.data(), begin.data(), length.data(), ind.data(), val.data(),
                           lb.data(), ub.data(), nullptr, nullptr, nullptr));
    Model model(made);
    std::vector<int> head(rows);
    EXPECT_EQ(KVX_ERROR_DATA_NOT_AVAILABLE, KVXgetBasisHead(made, head.data()));
    MUST(model, KVXoptimize(made));
    ASSERT_EQ(KVX_STATUS_OPTIMAL, intAttr(model, "Status"));
    MUST(model, KVXgetBasisHead(made, head.data()));

    using Vector = std::vector<double>;
    // Adds factor times a column of the matrix, logicals included, to a vector by rows.
    auto addColumn = [&](int column, double factor, Vector &sum) {
        if (column >= columns)
            sum[static_cast<size_t>(column - columns)] += factor;
        for (int k = 0; column < columns && k < 3; k++) {
            auto at = static_cast<size_t>(3 * column + k);
            sum[static_cast<size_t>(ind[at])] += factor * val[at];
        }
    };
    auto times = [&](int column, const Vector &byRows) {
        Vector unit(rows);
        addColumn(column, 1, unit);
        double sum = 0;
        for (size_t i = 0; i < unit.size(); i++)
            sum += unit[i] * byRows[i];
        return sum;
    };
    // Calls a basis solve with room for everything, or for one entry too few.
    auto solve = [&](auto call, size_t size) {
        std::vector<int> indices(size);
        Vector values(size), result(size);
        SparseVector x{static_cast<int>(size), indices.data(), values.data()};
        EXPECT_EQ(KVX_OK, call(&x)) << KVXgetmerrormsg(made);
        for (int k = 0; k < x.len; k++)
            result[static_cast<size_t>(indices[static_cast<size_t>(k)])] =
                values[static_cast<size_t>(k)];
        int guard = -1;
        SparseVector small{x.len - 1, indices.data(), values.data()};
        std::swap(guard, indices[static_cast<size_t>(x.len - 1)]);
        EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, call(&small));
        EXPECT_EQ(-1, indices[static_cast<size_t>(x.len - 1)]);
        return result;
    };
    auto expectEqual = [](const Vector &a, const Vector &b) {
        ASSERT_EQ(a.size(), b.size());
        for (size_t i = 0; i < a.size(); i++)
            ASSERT_NEAR(a[i], b[i], 1e-7) << i;
    };

    int bInd[] = {3, 700, 1999};
    double bVal[] = {2, -1, 0.5};
    SparseVector b{3, bInd, bVal};
    Vector dense(rows);
    dense[3] = 2, dense[700] = -1, dense[1999] = 0.5;
    Vector x = solve([&](SparseVector *to) { return KVXFSolve(made, &b, to); }, rows), back(rows);
    for (size_t position = 0; position < rows; position++)
        addColumn(head[position], x[position], back);
    expectEqual(dense, back);
    x = solve([&](SparseVector *to) { return KVXBSolve(made, &b, to); }, rows);
    for (size_t position = 0; position < rows; position++)
        back[position] = times(head[position], x);
    expectEqual(dense, back);

    const int row = 17;
    Vector tableau =
        solve([&](SparseVector *to) { return KVXBinvRowi(made, row, to); }, rows + columns);
    for (int column = 0; column < rows + columns; column += 500) {
        x = solve([&](SparseVector *to) { return KVXBinvColj(made, column, to); }, rows);
        EXPECT_NEAR(x[row], tableau[static_cast<size_t>(column)], 1e-9);
        Vector sum(rows), unit(rows);
        for (size_t position = 0; position < rows; position++)
            addColumn(head[position], x[position], sum);
        addColumn(column, 1, unit);
        expectEqual(unit, sum);
    }
}

} // namespace
