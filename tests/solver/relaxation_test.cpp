// Feasibility relaxation against a search through all points of small integer models.
#include "solver_case.h"

#include <cmath>
#include <random>

namespace {

constexpr int vars = 2, constrs = 3, box = 9; // the box is hard: -box <= x <= box

struct Case {
    int obj[vars], lb[vars], ub[vars], row[constrs][vars], lower[constrs], upper[constrs];
    std::vector<double> lbpen, ubpen, conpen;
};

Case randomCase(unsigned seed) {
    std::mt19937 random(seed);
    auto between = [&](int low, int high) {
        return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
    };
    auto weights = [&](int count) {
        std::vector<double> result;
        for (int k = 0; k < count; k++)
            result.push_back(between(0, 3) ? between(1, 6) / 2.0 : KVX_INFINITY);
        return result;
    };
    Case c;
    for (int j = 0; j < vars; j++) {
        c.obj[j] = between(-3, 3);
        c.lb[j] = between(-3, 3);
        c.ub[j] = c.lb[j] + between(0, 3);
    }
    for (int i = 0; i < constrs; i++) {
        for (int &value : c.row[i])
            value = between(-3, 3);
        c.lower[i] = between(-9, 9);
        c.upper[i] = c.lower[i] + between(0, 2);
    }
    if (between(0, 2))
        c.lbpen = weights(vars);
    if (between(0, 2))
        c.ubpen = weights(vars);
    c.conpen = weights(constrs);
    c.conpen.resize(constrs + vars, KVX_INFINITY);
    return c;
}

Model make(const Env &env, const Case &c, int sense) {
    KVXmodel *made = nullptr;
    std::vector<double> obj(c.obj, c.obj + vars), lb(c.lb, c.lb + vars), ub(c.ub, c.ub + vars);
    EXPECT_EQ(
        0, KVXnewmodel(env, &made, nullptr, vars, obj.data(), lb.data(), ub.data(), "II", nullptr));
    for (int i = 0; i < constrs + vars; i++) {
        const int beg = 0, ind[] = {0, 1};
        double val[] = {1.0 * (i == constrs), 1.0 * (i == constrs + 1)};
        double lower = -box, upper = box;
        if (i < constrs) {
            std::copy(c.row[i], c.row[i] + vars, val);
            lower = c.lower[i];
            upper = c.upper[i];
        }
        EXPECT_EQ(0, KVXaddrangeconstrs(made, 1, 2, &beg, ind, val, &lower, &upper, nullptr));
    }
    EXPECT_EQ(0, KVXsetintattr(made, "ModelSense", sense));
    return Model(made);
}

double penaltyAt(const Case &c, int penalty, const int *x) {
    double total = 0;
    auto add = [&](double violation, const std::vector<double> &weights, int index) {
        if (violation <= 0)
            return;
        double weight = weights.empty() ? KVX_INFINITY : weights[static_cast<size_t>(index)];
        total += weight * (penalty == 2 ? 1 : violation);
    };
    for (int j = 0; j < vars; j++) {
        add(c.lb[j] - x[j], c.lbpen, j);
        add(x[j] - c.ub[j], c.ubpen, j);
    }
    for (int i = 0; i < constrs; i++) {
        int activity = c.row[i][0] * x[0] + c.row[i][1] * x[1];
        add(std::max(c.lower[i] - activity, activity - c.upper[i]), c.conpen, i);
    }
    return total;
}

TEST(Relaxation, findsTheLeastPenaltyAndTheBestObjectiveAtIt) {
    Env env;
    int impossible = 0;
    for (unsigned seed = 0; seed < 50; seed++) {
        Case c = randomCase(seed);
        const int penalty = seed % 2 ? 2 : 0, sense = seed % 3 ? KVX_MINIMIZE : KVX_MAXIMIZE;
        double least = KVX_INFINITY, best = 0;
        for (int x[] = {-box, -box}; x[0] <= box; x[0]++)
            for (x[1] = -box; x[1] <= box; x[1]++) {
                double here = penaltyAt(c, penalty, x);
                double objective = c.obj[0] * x[0] + c.obj[1] * x[1];
                if (here < least || (here == least && sense * objective < sense * best)) {
                    least = here;
                    best = objective;
                }
            }
        for (int minrelax : {0, 1}) {
            Model model = make(env, c, sense);
            auto orNull = [](const std::vector<double> &weights) {
                return weights.empty() ? nullptr : weights.data();
            };
            double result = -1;
            int status = KVXfeasrelax(model.get(), penalty, minrelax, orNull(c.lbpen),
                                      orNull(c.ubpen), orNull(c.conpen), &result);
            if (least >= KVX_INFINITY && minrelax) {
                EXPECT_EQ(status, KVX_ERROR_INVALID_ARGUMENT) << seed;
                EXPECT_EQ(intAttr(model, "NumVars"), vars) << "the model stays as it was";
                impossible++;
                continue;
            }
            ASSERT_EQ(status, 0) << KVXgetmerrormsg(model.get());
            EXPECT_NEAR(result, minrelax ? least : 0, 1e-6) << seed;
            MUST(model, KVXoptimize(model.get()));
            if (least >= KVX_INFINITY) {
                EXPECT_EQ(intAttr(model, "Status"), KVX_STATUS_INFEASIBLE);
                continue;
            }
            ASSERT_EQ(intAttr(model, "Status"), KVX_STATUS_OPTIMAL) << seed;
            EXPECT_NEAR(dblAttr(model, "ObjVal"), minrelax ? best : least, 1e-5)
                << seed << ", minrelax " << minrelax;
        }
    }
    EXPECT_GT(impossible, 2);
    EXPECT_LT(impossible, 40);
}

TEST(Relaxation, refusesWhatItCantDo) {
    Env env;
    Model model = make(env, randomCase(0), KVX_MINIMIZE);
    double negative[] = {0, -1}, result = 4711;
    EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT,
              KVXfeasrelax(model.get(), 0, 0, negative, nullptr, nullptr, &result));
    EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT,
              KVXfeasrelax(model.get(), 3, 0, nullptr, nullptr, nullptr, &result));
    EXPECT_EQ(KVX_ERROR_NOT_SUPPORTED,
              KVXfeasrelax(model.get(), 1, 0, nullptr, nullptr, nullptr, &result));
    EXPECT_EQ(result, 4711);
    EXPECT_EQ(intAttr(model, "NumVars"), vars);
}

} // namespace
