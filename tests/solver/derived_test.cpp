// Derived models: what must hold between their optimum and the original's.
#include "solver_case.h"

#include <random>

namespace {

const double inf = KVX_INFINITY;

// Solves a model; the status, and the objective value when it is optimal.
std::pair<int, double> solved(const Model &model) {
    EXPECT_EQ(KVX_OK, KVXoptimize(model.get())) << KVXgetmerrormsg(model.get());
    int status = intAttr(model, "Status");
    return {status, status == KVX_STATUS_OPTIMAL ? dblAttr(model, "ObjVal") : 0};
}

// A random model with a known feasible point, in which rows and bounds of all shapes occur.
Model randomModel(KVXenv *env, unsigned seed, bool integers, bool infeasibleRows = false) {
    std::mt19937 random(seed);
    auto number = [&](int low, int high) {
        return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
    };
    const int vars = number(1, 6), rows = number(1, 6);
    std::vector<int> beg, ind;
    std::vector<double> val, obj, lb, ub, lower, upper, activity(6, 0);
    std::string types;
    // A range of any shape around a value.
    auto addRange = [&](double value, std::vector<double> &lowers, std::vector<double> &uppers) {
        const double low = value - number(0, 3), high = value + number(0, 3);
        const double shapes[][2] = {{low, high}, {low, inf}, {-inf, high}, {value, value}};
        const double *shape = shapes[number(0, 3)];
        lowers.push_back(shape[0]);
        uppers.push_back(shape[1]);
    };
    for (int j = 0; j < vars; j++) {
        const int value = number(-3, 3);
        addRange(value, lb, ub);
        if (number(0, 4) == 0)
            lb.back() = -inf, ub.back() = inf;
        obj.push_back(number(-4, 4));
        types += integers && number(0, 1) ? KVX_INTEGER : KVX_CONTINUOUS;
        beg.push_back(static_cast<int>(ind.size()));
        for (int i = 0; i < rows; i++)
            if (int factor = number(-3, 3); factor != 0) {
                ind.push_back(i);
                val.push_back(factor);
                activity[static_cast<size_t>(i)] += factor * value;
            }
    }
    for (int i = 0; i < rows; i++)
        addRange(activity[static_cast<size_t>(i)] + (infeasibleRows ? number(-9, 9) : 0), lower,
                 upper);
    KVXmodel *model = nullptr;
    EXPECT_EQ(KVX_OK,
              KVXnewmodel(env, &model, nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(KVX_OK, KVXaddrangeconstrs(model, rows, 0, nullptr, nullptr, nullptr, lower.data(),
                                         upper.data(), nullptr));
    EXPECT_EQ(KVX_OK,
              KVXaddvars(model, vars, static_cast<int>(ind.size()), beg.data(), ind.data(),
                         val.data(), obj.data(), lb.data(), ub.data(), types.data(), nullptr));
    EXPECT_EQ(KVX_OK, KVXsetdblattr(model, "ObjCon", number(-5, 5)));
    EXPECT_EQ(KVX_OK,
              KVXsetintattr(model, "ModelSense", number(0, 1) ? KVX_MINIMIZE : KVX_MAXIMIZE));
    return Model(model);
}

TEST(Derived, OptimaAgree) {
    Env env;
    int optimal = 0;
    for (unsigned seed = 0; seed < 300; seed++) {
        SCOPED_TRACE(seed);
        Model lp = randomModel(env, seed, false), mip = randomModel(env, seed, true);
        auto [status, value] = solved(lp);
        auto [dualStatus, dualValue] = solved(derived(lp, KVXdualmodel));
        EXPECT_EQ(status == KVX_STATUS_OPTIMAL, dualStatus == KVX_STATUS_OPTIMAL);
        EXPECT_NEAR(value, dualValue, 1e-6);
        auto [mipStatus, mipValue] = solved(mip);
        if (mipStatus != KVX_STATUS_OPTIMAL)
            continue;
        optimal++;
        int sense = intAttr(mip, "ModelSense");
        EXPECT_NEAR(mipValue, solved(derived(mip, KVXpresolvemodel)).second, 1e-6);
        auto [relaxedStatus, relaxedValue] = solved(derived(mip, KVXrelaxmodel));
        EXPECT_TRUE(relaxedStatus != KVX_STATUS_OPTIMAL ||
                    sense * relaxedValue <= sense * mipValue + 1e-6);
        EXPECT_NEAR(0, solved(derived(mip, KVXfeasibility)).second, 1e-6);
        Model fixed = derived(mip, KVXfixmodel);
        EXPECT_EQ(0, intAttr(fixed, "IsMIP"));
        EXPECT_NEAR(mipValue, solved(fixed).second, 1e-6);
        MUST(mip, KVXconverttofixed(mip.get()));
        EXPECT_EQ(described(fixed.get()), described(mip.get()));
        Model copy = derived(mip, KVXsinglescenariomodel);
        EXPECT_EQ(described(mip.get()), described(copy.get()));
    }
    EXPECT_GT(optimal, 100);
}

TEST(Derived, FeasibilityMeasuresTheViolation) {
    Env env;
    int infeasible = 0;
    for (unsigned seed = 0; seed < 60; seed++) {
        Model model = randomModel(env, seed, true, true);
        double violation = solved(derived(model, KVXfeasibility)).second;
        infeasible += violation > 1e-6;
        const int status = solved(model).first;
        if (status != KVX_STATUS_INFEASIBLE_OR_UNBOUNDED) {
            EXPECT_EQ(violation > 1e-6, status == KVX_STATUS_INFEASIBLE) << seed;
        }
    }
    EXPECT_GT(infeasible, 10);
}

} // namespace
