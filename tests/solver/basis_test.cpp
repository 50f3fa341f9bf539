// Basis solves, by multiplying back on a model with thousands of rows.
#include "solver_case.h"

#include <algorithm>

namespace {

constexpr size_t rows = 2000, columns = 2500;

TEST(Basis, SolvesMultiplyBack) {
    Env env;
    Random random(1);
    Data data{{}, Vector(columns, -1), Vector(columns, 2), {}, {}};
    for (size_t j = 0; j < columns; j++)
        data.obj.push_back(random(-9, 9));
    for (size_t i = 0; i < rows; i++) {
        Row row{Vector(columns), random(0, 2) ? -inf : -2, random(0, 3) ? 2 : inf};
        for (int k = 0; k < 4; k++)
            row.val[static_cast<size_t>(random(0, columns - 1))] = random(-5, 5);
        data.rows.push_back(row);
    }
    Model model = data.build(env);
    KVXmodel *m = model.get();
    std::vector<int> head(rows);
    EXPECT_EQ(KVX_ERROR_DATA_NOT_AVAILABLE, KVXgetBasisHead(m, head.data()));
    ASSERT_EQ(KVX_STATUS_OPTIMAL, solved(model).first);
    MUST(model, KVXgetBasisHead(m, head.data()));

    // A column of the matrix, logicals included, and the sum of those of the basis.
    auto column = [&](int number) {
        const auto j = static_cast<size_t>(number);
        Vector result(rows);
        for (size_t i = 0; i < rows; i++)
            result[i] = j < columns ? data.rows[i].val[j] : i == j - columns;
        return result;
    };
    auto combined = [&](const Vector &factors) {
        Vector result(rows);
        for (size_t position = 0; position < rows; position++) {
            const Vector part = column(head[position]);
            for (size_t i = 0; i < rows; i++)
                result[i] += factors[position] * part[i];
        }
        return result;
    };
    // Calls a basis solve with room for everything, and for one entry too few.
    auto solve = [&](auto call, size_t size) {
        std::vector<int> indices(size);
        Vector values(size), result(size);
        SparseVector x{static_cast<int>(size), indices.data(), values.data()};
        EXPECT_EQ(KVX_OK, call(&x)) << KVXgetmerrormsg(m);
        for (size_t k = 0; k < static_cast<size_t>(x.len); k++)
            result[static_cast<size_t>(indices[k])] = values[k];
        SparseVector small{x.len - 1, indices.data(), values.data()};
        int &beyond = indices[static_cast<size_t>(x.len - 1)] = -1;
        EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, call(&small));
        EXPECT_EQ(-1, beyond);
        return result;
    };
    auto expectEqual = [](const Vector &a, const Vector &b) {
        for (size_t i = 0; i < rows; i++)
            ASSERT_NEAR(a[i], b[i], 1e-7) << i;
    };

    int places[] = {3, 700, 1999};
    double numbers[] = {2, -1, 0.5};
    SparseVector b{3, places, numbers};
    Vector dense(rows), products(rows);
    for (size_t k : {0u, 1u, 2u})
        dense[static_cast<size_t>(places[k])] = numbers[k];
    expectEqual(dense, combined(solve([&](auto x) { return KVXFSolve(m, &b, x); }, rows)));
    const Vector y = solve([&](auto x) { return KVXBSolve(m, &b, x); }, rows);
    for (size_t position = 0; position < rows; position++)
        products[position] = product(column(head[position]), y);
    expectEqual(dense, products);

    const Vector tableau = solve([&](auto x) { return KVXBinvRowi(m, 17, x); }, rows + columns);
    for (int j = 0; j < static_cast<int>(rows + columns); j++) {
        if (tableau[static_cast<size_t>(j)] == 0 && j % 500 != 0)
            continue;
        const Vector x = solve([&](auto to) { return KVXBinvColj(m, j, to); }, rows);
        EXPECT_NEAR(x[17], tableau[static_cast<size_t>(j)], 1e-9);
        if (j % 500 == 0)
            expectEqual(column(j), combined(x));
    }
    MUST(model, KVXgetBasisHead(m, head.data()));
    const int basic = *std::min_element(head.begin(), head.end());
    MUST(model, KVXdelvars(m, 1, &basic));
    EXPECT_EQ(KVX_ERROR_NUMERIC, KVXgetBasisHead(m, head.data()));
}

} // namespace
