// Feasibility relaxation against a search through all points of small integer models.
#include "solver_case.h"

namespace {

constexpr int box = 9; // is hard: -box <= x <= box

struct Case {
    Data data;
    Vector lbpen, ubpen, conpen;

    explicit Case(unsigned seed) {
        Random random(seed);
        data = randomData(random, 2, 3, "I", 9);
        data.constant = 0;
        data.rows.push_back({{1, 0}, -box, box});
        data.rows.push_back({{0, 1}, -box, box});
        for (Vector *weights : {&lbpen, &ubpen, &conpen})
            for (int k = 0, isGiven = weights == &conpen || random(0, 2); isGiven && k < 3; k++)
                weights->push_back(random(0, 3) ? random(1, 6) / 2.0 : inf);
        conpen.resize(5, inf);
    }

    double penaltyAt(const Vector &x, int type) const {
        double total = 0;
        auto add = [&](double value, double lower, double upper, double below, double above) {
            if (value < lower)
                total += below * (type == 2 ? 1 : lower - value);
            if (value > upper)
                total += above * (type == 2 ? 1 : value - upper);
        };
        for (size_t j = 0; j < 2; j++)
            add(x[j], data.lb[j], data.ub[j], lbpen.empty() ? inf : lbpen[j],
                ubpen.empty() ? inf : ubpen[j]);
        for (size_t i = 0; i < 5; i++)
            add(product(data.rows[i].val, x), data.rows[i].lower, data.rows[i].upper, conpen[i],
                conpen[i]);
        return total;
    }
};

TEST(Relaxation, FindsTheLeastPenaltyAndTheBestObjectiveAtIt) {
    Env env;
    int impossible = 0;
    for (unsigned seed = 0; seed < 120; seed++) {
        SCOPED_TRACE(seed);
        const Case c(seed / 2);
        const int type = seed / 2 % 2 ? 2 : 0, minrelax = seed % 2;
        double least = inf, best = 0;
        forPoints(2, -box, box, [&](const Vector &x) {
            const double here = c.penaltyAt(x, type), objective = product(c.data.obj, x);
            if (here < least || (here == least && c.data.sense * (objective - best) < 0)) {
                least = here;
                best = objective;
            }
        });
        Model model = c.data.build(env);
        setParam(model, "MIPGap", "1"); // doesn't count for the penalty
        auto orNull = [](const Vector &values) { return values.empty() ? nullptr : values.data(); };
        double result = -1;
        int status = KVXfeasrelax(model.get(), type, minrelax, orNull(c.lbpen), orNull(c.ubpen),
                                  c.conpen.data(), &result);
        if (least >= inf && minrelax) {
            EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, status);
            EXPECT_EQ(described(c.data.build(env).get()), described(model.get()));
            impossible++;
            continue;
        }
        MUST(model, status);
        EXPECT_NEAR(minrelax ? least : 0, result, 1e-6);
        setParam(model, "MIPGap", "0");
        auto [solutionStatus, objective] = solved(model);
        ASSERT_EQ(least >= inf ? KVX_STATUS_INFEASIBLE : KVX_STATUS_OPTIMAL, solutionStatus);
        EXPECT_NEAR(least >= inf ? 0 : minrelax ? best : least, objective, 1e-5);
    }
    EXPECT_GT(impossible, 2);
    EXPECT_LT(impossible, 40);
}

// x >= 4 and x <= 1, of which the second weighs twice as much: (4 - x)^2 + 2 (x - 1)^2 is least
// at 2.
TEST(Relaxation, SquaredViolationsAreLeast) {
    Env env;
    for (int minrelax : {0, 1}) {
        Model model = fromText(
            env, "min y - x + [ 2 y ^2 ] / 2\nst c: x >= 4 d: x <= 1 bounds y >= 3 x free");
        const double weights[] = {1, 2};
        double least = -1;
        MUST(model, KVXfeasrelax(model.get(), 1, minrelax, nullptr, nullptr, weights, &least));
        EXPECT_NEAR(minrelax ? 6 : 0, least, 1e-6);
        auto [status, objective] = solved(model);
        ASSERT_EQ(KVX_STATUS_OPTIMAL, status);
        EXPECT_NEAR(minrelax ? 10 : 6, objective, 1e-5);
        EXPECT_NEAR(2, dblAttrs(model, "X", 2)[1], 1e-5);
    }
}

TEST(Relaxation, RefusesWhatItCantDo) {
    Env env;
    Model model = Case(0).data.build(env);
    const std::string before = described(model.get());
    double negative[] = {0, -1}, result = 4711;
    auto relax = [&](int type, double *penalties) {
        return KVXfeasrelax(model.get(), type, 0, penalties, nullptr, nullptr, &result);
    };
    EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, relax(0, negative));
    EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, relax(3, nullptr));
    setParam(model, "TimeLimit", "0");
    EXPECT_EQ(KVX_ERROR_DATA_NOT_AVAILABLE,
              KVXfeasrelax(model.get(), 0, 1, nullptr, nullptr, nullptr, &result));
    EXPECT_EQ(4711, result);
    EXPECT_EQ(before, described(model.get()));
}

} // namespace
