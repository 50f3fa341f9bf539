// Convex quadratic objectives: optima against the conditions of optimality, unbounded models in
// growing boxes, what is refused, and squared violations.
#include "solver_case.h"

#include <cmath>

namespace {

// x'Qx, with Q = L'L, so that it is convex; some of the forms don't see all directions.
struct Form {
    std::vector<Vector> factors;

    Form(Random &random, size_t vars, int most) {
        for (int rank = random(1, most); rank > 0; rank--) {
            factors.emplace_back();
            for (size_t j = 0; j < vars; j++)
                factors.back().push_back(random(0, 1) ? random(-3, 3) : 0);
        }
    }
    double at(const Vector &x) const {
        double value = 0;
        for (const Vector &factor : factors)
            value += product(factor, x) * product(factor, x);
        return value;
    }
    // Of sense times the form.
    Vector gradient(const Vector &x, int sense) const {
        Vector result(x.size());
        for (const Vector &factor : factors)
            for (size_t j = 0; j < x.size(); j++)
                result[j] += 2 * sense * product(factor, x) * factor[j];
        return result;
    }
    void addTo(const Model &model, int sense) const {
        for (const Vector &factor : factors)
            for (int i = 0; i < static_cast<int>(factor.size()); i++)
                for (int j = 0; j < static_cast<int>(factor.size()); j++) {
                    double value =
                        sense * factor[static_cast<size_t>(i)] * factor[static_cast<size_t>(j)];
                    MUST(model, KVXaddqpterms(model.get(), 1, &i, &j, &value));
                }
    }
};

TEST(Quadratic, OptimaSatisfyTheConditions) {
    Env env;
    int optimal = 0, unbounded = 0;
    for (unsigned k = 0; k <= 150; k++) {
        const unsigned seed = k < 150 ? k : 2672; // which takes a second attempt
        SCOPED_TRACE(seed);
        Random random(seed);
        const size_t vars = 6;
        const int rows = seed % 3 ? 5 : 2;
        Data data = randomData(random, 6, rows, "C");
        if (rows == 2) {
            data.lb.assign(vars, -inf);
            data.ub.assign(vars, inf);
        }
        const Form form(random, vars, seed % 2 ? 6 : 1);
        Model model = data.build(env);
        form.addTo(model, data.sense);
        auto [status, objective] = solved(model);
        if (status == KVX_STATUS_UNBOUNDED) {
            double values[2];
            for (int k : {0, 1}) {
                Data boxed = data;
                for (size_t j = 0; j < vars; j++) {
                    boxed.lb[j] = std::max(data.lb[j], k ? -1e4 : -1e3);
                    boxed.ub[j] = std::min(data.ub[j], k ? 1e4 : 1e3);
                }
                Model inBox = boxed.build(env);
                form.addTo(inBox, data.sense);
                values[k] = solved(inBox).second;
            }
            EXPECT_GT(data.sense * (values[0] - values[1]), 50);
            unbounded++;
            continue;
        }
        ASSERT_EQ(KVX_STATUS_OPTIMAL, status);
        optimal++;
        const Vector x = dblAttrs(model, "X", vars),
                     duals = dblAttrs(model, "Dual", data.rows.size()),
                     reduced = dblAttrs(model, "ReducedCost", vars);
        EXPECT_TRUE(data.holds(x, 1e-5));
        const double value = data.constant + product(data.obj, x) + data.sense * form.at(x);
        EXPECT_NEAR(value, objective, 1e-6 * (1 + std::abs(value)));
        const double tolerance = 1e-4 * (1 + std::abs(value));
        // A price needs a side at which the value is.
        auto fits = [&](double price, double at, double lower, double upper) {
            const double side = data.sense * price > 0 ? lower : upper;
            EXPECT_TRUE(std::abs(price) < 1e-5 * (1 + std::abs(value)) ||
                        std::abs(price * (at - side)) < tolerance)
                << price << " at " << at << " for " << side;
        };
        Vector rest = form.gradient(x, data.sense);
        for (size_t i = 0; i < duals.size(); i++) {
            const Row &row = data.rows[i];
            fits(duals[i], product(row.val, x), row.lower, row.upper);
            for (size_t j = 0; j < vars; j++)
                rest[j] -= duals[i] * row.val[j];
        }
        for (size_t j = 0; j < vars; j++) {
            EXPECT_NEAR(rest[j] + data.obj[j], reduced[j], tolerance);
            fits(reduced[j], x[j], data.lb[j], data.ub[j]);
        }
    }
    EXPECT_GT(optimal, 50);
    EXPECT_GT(unbounded, 10);
}

TEST(Quadratic, RefusesByName) {
    Env env;
    struct Refused {
        const char *types;
        double terms[3]; // of the first variable's square, the product, the second one's square
        const char *text;
    };
    const int row[] = {0, 0, 1}, col[] = {0, 1, 1};
    for (auto &[types, terms, text] : {Refused{"CC", {0, 0, -1}, "C1"},
                                       {"CC", {0, 2, 0}, "C0"},
                                       {"CC", {1, 3, 1}, "convex"},
                                       {"CI", {1, 0, 0}, "C1"},
                                       {"CS", {1, 0, 0}, "sets"}}) {
        Model model = Data{{1, 1}, {0, 2}, {9, 9}, types, {}}.build(env);
        MUST(model, KVXaddqpterms(model.get(), 3, row, col, terms));
        EXPECT_EQ(KVX_ERROR_NOT_SUPPORTED, KVXoptimize(model.get()));
        EXPECT_NE(std::string::npos, std::string(KVXgetmerrormsg(model.get())).find(text))
            << KVXgetmerrormsg(model.get());
    }
}

// x >= 4 and x <= 1, of which the second weighs twice as much: (4 - x)^2 + 2 (x - 1)^2 is least
// at 2.
TEST(Quadratic, SquaredViolationsAreLeast) {
    Env env;
    for (int minrelax : {0, 1}) {
        Model model =
            Data{{-1, 1}, {-inf, 3}, {inf, inf}, "CC", {{{1, 0}, 4, inf}, {{1, 0}, -inf, 1}}}.build(
                env);
        const double weights[] = {1, 2};
        double least = -1;
        MUST(model, KVXfeasrelax(model.get(), 1, minrelax, nullptr, nullptr, weights, &least));
        EXPECT_NEAR(minrelax ? 6 : 0, least, 1e-6);
        auto [status, objective] = solved(model);
        ASSERT_EQ(KVX_STATUS_OPTIMAL, status);
        EXPECT_NEAR(minrelax ? 1 : 6, objective, 1e-5);
        EXPECT_NEAR(2, dblAttrs(model, "X", 2)[0], 1e-5);
    }
}

} // namespace
