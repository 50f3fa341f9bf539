// Basis solves, by multiplying back with all of a basis.
#include "solver_case.h"

namespace {

constexpr size_t rows = 120, columns = 150;

TEST(Basis, SolvesMultiplyBack) {
    Env env;
    Random random(1);
    Data data = randomData(random, columns, rows, "C");
    for (size_t j = 0; j < columns; j++) {
        data.lb[j] = std::max(data.lb[j], -9.0); // so that it isn't unbounded
        data.ub[j] = std::min(data.ub[j], 9.0);
    }
    Model owner = data.build(env);
    KVXmodel *model = owner.get();
    std::vector<int> head(rows);
    EXPECT_EQ(KVX_ERROR_DATA_NOT_AVAILABLE, KVXgetBasisHead(model, head.data()));
    ASSERT_EQ(KVX_STATUS_OPTIMAL, solved(owner).first);
    MUST(model, KVXgetBasisHead(model, head.data()));

    // A column of the matrix, logicals included.
    auto column = [&](int index) {
        Vector result(rows);
        const auto j = static_cast<size_t>(index);
        for (size_t i = 0; i < rows; i++)
            result[i] = j < columns ? data.rows[i].val[j] : i == j - columns;
        return result;
    };
    auto timesBasis = [&](const Vector &x) {
        Vector sum(rows);
        for (size_t position = 0; position < rows; position++) {
            const Vector member = column(head[position]);
            for (size_t i = 0; i < rows; i++)
                sum[i] += x[position] * member[i];
        }
        return sum;
    };
    // Calls a basis solve with room for everything, or for one entry too few.
    auto solve = [&](auto call, size_t size) {
        std::vector<int> indices(size);
        Vector values(size), result(size);
        SparseVector x{static_cast<int>(size), indices.data(), values.data()};
        EXPECT_EQ(KVX_OK, call(&x)) << KVXgetmerrormsg(model);
        const auto length = static_cast<size_t>(x.len);
        for (size_t k = 0; k < length; k++)
            result[static_cast<size_t>(indices[k])] = values[k];
        SparseVector small{x.len - 1, indices.data(), values.data()};
        indices[length - 1] = -1;
        EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, call(&small));
        EXPECT_EQ(-1, indices[length - 1]);
        return result;
    };
    auto expectEqual = [](const Vector &a, const Vector &b) {
        for (size_t i = 0; i < rows; i++)
            ASSERT_NEAR(a[i], b[i], 1e-7) << i;
    };

    int ind[] = {3, 70, 119};
    double val[] = {2, -1, 0.5};
    SparseVector b{3, ind, val};
    Vector dense(rows), priced;
    dense[3] = 2, dense[70] = -1, dense[119] = 0.5;
    expectEqual(dense,
                timesBasis(solve([&](SparseVector *x) { return KVXFSolve(model, &b, x); }, rows)));
    const Vector y = solve([&](SparseVector *x) { return KVXBSolve(model, &b, x); }, rows);
    for (int member : head)
        priced.push_back(product(column(member), y));
    expectEqual(dense, priced);

    const int row = 17;
    const Vector tableau =
        solve([&](SparseVector *x) { return KVXBinvRowi(model, row, x); }, rows + columns);
    for (int j = 0; j < static_cast<int>(rows + columns); j += 10) {
        const Vector x = solve([&](SparseVector *to) { return KVXBinvColj(model, j, to); }, rows);
        EXPECT_NEAR(x[row], tableau[static_cast<size_t>(j)], 1e-9);
        expectEqual(column(j), timesBasis(x));
    }
}

} // namespace
