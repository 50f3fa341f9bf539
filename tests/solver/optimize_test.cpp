// Optima of random models: linear and convex quadratic ones against the conditions of optimality,
// those of several objectives against enumeration.
#include "solver_case.h"

#include <algorithm>
#include <cmath>

namespace {

// x'Qx, with Q = L'L, so that it is convex; some of the forms don't see all directions.
struct Form {
    std::vector<Vector> factors;

    Form(Random &random, size_t vars, int rank) : factors(static_cast<size_t>(rank)) {
        for (Vector &factor : factors)
            for (size_t j = 0; j < vars; j++)
                factor.push_back(random(0, 1) ? random(-3, 3) : 0);
    }
    double at(const Vector &x) const {
        double value = 0;
        for (const Vector &factor : factors)
            value += product(factor, x) * product(factor, x);
        return value;
    }
    Vector gradient(const Vector &x) const {
        Vector result(x.size());
        for (const Vector &factor : factors)
            for (size_t j = 0; j < x.size(); j++)
                result[j] += 2 * product(factor, x) * factor[j];
        return result;
    }
    void addTo(const Model &model, double sense) const {
        for (const Vector &factor : factors)
            for (size_t i = 0; i < factor.size(); i++)
                for (size_t j = 0; j < factor.size(); j++) {
                    const int row = static_cast<int>(i), col = static_cast<int>(j);
                    const double value = sense * factor[i] * factor[j];
                    MUST(model, KVXaddqpterms(model.get(), 1, &row, &col, &value));
                }
    }
};

// Linear models, and quadratic ones; those without an optimum get ever better in growing boxes.
TEST(Optimize, OptimaSatisfyTheConditions) {
    Env env;
    constexpr size_t vars = 6;
    int optimal = 0, unbounded = 0;
    for (unsigned k = 0; k <= 301; k++) {
        // The last ones: a second attempt, and a variable at a bound that Clp has made up.
        const unsigned seed = k < 300 ? k / 2 : k == 300 ? 2672 : 10071;
        SCOPED_TRACE(k);
        Random random(seed);
        const bool isQuadratic = k % 2 == 0;
        Data data = randomData(random, vars, seed % 3 ? 5 : 2, "C");
        if (isQuadratic && seed % 3 == 0) {
            data.lb.assign(vars, -inf);
            data.ub.assign(vars, inf);
        }
        const Form form(random, vars, isQuadratic ? random(1, seed % 2 ? 6 : 1) : 0);
        auto build = [&](const Data &linear) {
            Model model = linear.build(env);
            form.addTo(model, data.sense);
            setParam(model, "Method", std::to_string(random(-1, 2)));
            setParam(model, "Presolve", std::to_string(random(0, 1)));
            return model;
        };
        Model model = build(data);
        auto [status, objective] = solved(model);
        if (status == KVX_STATUS_UNBOUNDED) {
            unbounded++;
            const double small = solved(build(data.within(-1e3, 1e3))).second,
                         large = solved(build(data.within(-1e4, 1e4))).second;
            EXPECT_GT(data.sense * (small - large), 50);
            continue;
        }
        ASSERT_EQ(std::pair(KVX_STATUS_OPTIMAL, 1), std::pair(status, intAttr(model, "SolCount")));
        optimal++;
        const size_t rows = data.rows.size();
        const Vector x = dblAttrs(model, "X", vars), duals = dblAttrs(model, "Dual", rows),
                     reduced = dblAttrs(model, "ReducedCost", vars),
                     slacks = dblAttrs(model, "Slack", rows);
        EXPECT_TRUE(data.holds(x, 1e-5));
        const double value = data.constant + product(data.obj, x) + data.sense * form.at(x),
                     scale = 1 + std::abs(value);
        EXPECT_NEAR(value, objective, 1e-6 * scale);
        // A price needs a side at which the value is.
        auto expectFit = [&](double price, double at, double lower, double upper) {
            const double side = data.sense * price > 0 ? lower : upper;
            EXPECT_TRUE(std::abs(price) < 1e-5 * scale ||
                        std::abs(price * (at - side)) < 1e-4 * scale)
                << price << " at " << at << " for " << side;
        };
        Vector priced = form.gradient(x);
        for (size_t i = 0; i < rows; i++) {
            const auto &[val, lower, upper] = data.rows[i];
            expectFit(duals[i], product(val, x), lower, upper);
            EXPECT_NEAR((upper < inf ? upper : lower) - product(val, x), slacks[i], 1e-7 * scale);
            for (size_t j = 0; j < vars; j++)
                priced[j] -= data.sense * duals[i] * val[j];
        }
        const auto basis =
            form.factors.empty() ? intAttrs(model, "VarBasis", vars) : std::vector<int>(vars);
        for (size_t j = 0; j < vars; j++) {
            EXPECT_NEAR(data.obj[j] + data.sense * priced[j], reduced[j], 1e-4 * scale);
            expectFit(reduced[j], x[j], data.lb[j], data.ub[j]);
            if (basis[j] == KVX_NONBASIC_LOWER || basis[j] == KVX_NONBASIC_UPPER) {
                EXPECT_NEAR(basis[j] == KVX_NONBASIC_LOWER ? data.lb[j] : data.ub[j], x[j], 1e-6);
            }
        }
    }
    EXPECT_GT(optimal, 150);
    EXPECT_GT(unbounded, 30);
}

// Integers; the model's own objective, or two or three levels of two objectives each.
TEST(Optimize, ObjectivesFollowOneAnother) {
    Env env;
    const int all[] = {0, 1, 2};
    for (unsigned seed = 0; seed < 80; seed++) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const Data data = randomData(random, 3, 2, "I", 2).within(-3, 3);
        Model model = data.build(env);
        struct Level {
            Vector obj;
            double tolerance;
        };
        std::vector<Level> levels = {{data.obj, 0}};
        if (int count = random(1, 3); count > 1)
            levels.assign(static_cast<size_t>(count), {Vector(3), 0});
        for (int k = 0; levels.size() > 1 && k < 2 * static_cast<int>(levels.size()); k++) {
            auto &[obj, tolerance] = levels[static_cast<size_t>(k / 2)];
            const double weight = random(-2, 2), most = k < 2 ? random(0, 2) : 0;
            Vector part;
            for (double &value : obj) {
                part.push_back(random(-5, 5));
                value += weight * part.back();
            }
            tolerance += std::abs(weight) * most;
            MUST(model, KVXsetobjectiven(model.get(), k, 10 - k / 2, nullptr, 3, all, part.data(),
                                         0, weight, most, 0));
        }
        for (const char *param : {"Presolve", "Cuts", "Heuristics"})
            KVXsetintparam(KVXgetenv(model.get()), param, random(0, 1));
        std::vector<Vector> points;
        forPoints(3, -3, 3, [&](const Vector &x) {
            if (data.holds(x))
                points.push_back(x);
        });
        const int status = solved(model).first;
        ASSERT_EQ(points.empty() ? KVX_STATUS_INFEASIBLE : KVX_STATUS_OPTIMAL, status);
        if (points.empty())
            continue;
        const Vector x = dblAttrs(model, "X", 3);
        EXPECT_TRUE(data.holds(x));
        for (const Level &level : levels) {
            double limit = inf;
            auto value = [&](const Vector &point) {
                return data.sense * product(level.obj, point);
            };
            for (const Vector &point : points)
                limit = std::min(limit, value(point) + level.tolerance + 1e-6);
            EXPECT_LE(value(x), limit);
            points.erase(std::remove_if(points.begin(), points.end(),
                                        [&](const Vector &point) { return value(point) > limit; }),
                         points.end());
        }
    }
}

} // namespace
