// Optima of random models: linear ones against the conditions of optimality, those of several
// objectives against enumeration.
#include "solver_case.h"

#include <algorithm>

namespace {

TEST(Optimize, LinearOptimaSatisfyTheConditions) {
    Env env;
    int optimal = 0;
    for (unsigned seed = 0; seed < 150; seed++) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const Data data = randomData(random, 8, 6, "C");
        Model model = data.build(env);
        KVXsetintparam(KVXgetenv(model.get()), "Method", random(-1, 2));
        KVXsetintparam(KVXgetenv(model.get()), "Presolve", random(0, 1));
        auto [status, objective] = solved(model);
        if (status == KVX_STATUS_UNBOUNDED)
            continue;
        ASSERT_EQ(KVX_STATUS_OPTIMAL, status);
        optimal++;
        const Vector x = dblAttrs(model, "X", 8), duals = dblAttrs(model, "Dual", 6),
                     reduced = dblAttrs(model, "ReducedCost", 8),
                     slacks = dblAttrs(model, "Slack", 6);
        EXPECT_TRUE(data.holds(x, 1e-5));
        double bound = data.constant; // that the multipliers prove
        auto multiply = [&](double factor, double lower, double upper) {
            if (std::abs(factor) > 1e-7)
                bound += factor * (data.sense * factor > 0 ? lower : upper);
        };
        Vector priced = data.obj;
        for (size_t i = 0; i < duals.size(); i++) {
            auto &[val, lower, upper] = data.rows[i];
            multiply(duals[i], lower, upper);
            EXPECT_NEAR((upper < inf ? upper : lower) - product(val, x), slacks[i], 1e-7);
            for (size_t j = 0; j < x.size(); j++)
                priced[j] -= duals[i] * val[j];
        }
        for (size_t j = 0; j < x.size(); j++) {
            EXPECT_NEAR(priced[j], reduced[j], 1e-5);
            int basis = 0;
            MUST(model, KVXgetintattrelement(model.get(), "VarBasis", static_cast<int>(j), &basis));
            if (basis == KVX_NONBASIC_LOWER || basis == KVX_NONBASIC_UPPER) {
                EXPECT_NEAR(basis == KVX_NONBASIC_LOWER ? data.lb[j] : data.ub[j], x[j], 1e-6);
            }
            multiply(reduced[j], data.lb[j], data.ub[j]);
        }
        EXPECT_NEAR(data.constant + product(data.obj, x), bound, 1e-4);
        EXPECT_NEAR(objective, bound, 1e-4);
    }
    EXPECT_GT(optimal, 50);
}

// Integers; the model's own objective, or two or three levels of two objectives each.
TEST(Optimize, ObjectivesFollowOneAnother) {
    Env env;
    const int all[] = {0, 1, 2};
    for (unsigned seed = 0; seed < 80; seed++) {
        SCOPED_TRACE(seed);
        Random random(seed);
        Data data = randomData(random, 3, 2, "I", 2);
        for (size_t j = 0; j < 3; j++) {
            data.lb[j] = std::max(data.lb[j], -3.0);
            data.ub[j] = std::min(data.ub[j], 3.0);
        }
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
            const double weight = random(1, 2), most = k < 2 ? random(0, 2) : 0;
            Vector part;
            for (double &value : obj) {
                part.push_back(random(-5, 5));
                value += weight * part.back();
            }
            tolerance += weight * most;
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

// The second objective's own environment ends the run before it, at the solution of the first.
TEST(Optimize, ObjectivesHaveParametersOfTheirOwn) {
    Env env;
    Model model = Data{{0, 0}, {}, {3, 3}, "II", {{{2, 3}, -inf, 7}}, KVX_MAXIMIZE}.build(env);
    KVXmodel *m = model.get();
    const int all[] = {0, 1};
    const double objectives[][2] = {{1, 0}, {0, 1}};
    for (int k = 0; k < 2; k++)
        MUST(model, KVXsetobjectiven(m, k, 1 - k, nullptr, 2, all, objectives[k], 0, 1, 0, 0));
    EXPECT_EQ(nullptr, KVXgetmultiobjenv(m, 2));
    EXPECT_STREQ("objective 2: there are 2", KVXgetmerrormsg(m));
    KVXenv *second = KVXgetmultiobjenv(m, 1);
    ASSERT_NE(nullptr, second);
    EXPECT_EQ(second, KVXgetmultiobjenv(m, 1));
    EXPECT_EQ(KVX_ERROR_UNKNOWN_PARAMETER, KVXsetintparam(second, "Foo", 1));
    EXPECT_STREQ("unknown parameter \"Foo\"", KVXgeterrormsg(second));
    EXPECT_EQ(KVX_OK, KVXsetdblparam(second, "TimeLimit", 0));
    EXPECT_EQ(KVX_STATUS_TIME_LIMIT, solved(model).first);
    EXPECT_EQ(3, dblAttr(model, "ObjVal"));
    KVXdiscardmultiobjenvs(m);
    EXPECT_EQ(KVX_STATUS_OPTIMAL, solved(model).first);
    const double point[] = {0, 0}, steps[] = {0, 1};
    MUST(model, KVXsetpwlobj(m, 0, 2, point, steps));
    EXPECT_EQ(KVX_ERROR_NOT_SUPPORTED, KVXoptimize(m));
}

} // namespace
