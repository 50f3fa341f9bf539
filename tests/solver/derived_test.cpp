// Derived models: what must hold between their optimum and the original's.
#include "solver_case.h"

namespace {

TEST(Derived, OptimaAgree) {
    Env env;
    int optimal = 0, infeasible = 0;
    for (unsigned k = 0; k <= 300; k++) {
        const unsigned seed = k < 300 ? k : 3290; // where Cbc searches a part with a solution known
        SCOPED_TRACE(seed);
        Random random(seed);
        Data data = randomData(random, random(1, 6), random(1, 6), "CI", random(0, 3) ? 0 : 3);
        Model mip = data.build(env);
        data.types = "";
        Model lp = data.build(env);
        auto [status, value] = solved(lp);
        auto [dualStatus, dualValue] = solved(derived(lp, KVXdualmodel));
        EXPECT_EQ(status == KVX_STATUS_OPTIMAL, dualStatus == KVX_STATUS_OPTIMAL);
        EXPECT_NEAR(value, dualValue, 1e-6);
        auto [mipStatus, mipValue] = solved(mip);
        auto presolved = solved(derived(mip, KVXpresolvemodel));
        EXPECT_EQ(mipStatus, presolved.first);
        EXPECT_NEAR(mipValue, presolved.second, 1e-6);
        const double violation = solved(derived(mip, KVXfeasibility)).second;
        if (mipStatus != KVX_STATUS_INFEASIBLE_OR_UNBOUNDED) {
            EXPECT_EQ(mipStatus == KVX_STATUS_INFEASIBLE, violation > 1e-6);
        }
        infeasible += violation > 1e-6;
        if (mipStatus != KVX_STATUS_OPTIMAL)
            continue;
        optimal++;
        auto relaxed = solved(derived(mip, KVXrelaxmodel));
        EXPECT_EQ(status, relaxed.first);
        EXPECT_NEAR(value, relaxed.second, 1e-6);
        Model fixed = derived(mip, KVXfixmodel);
        EXPECT_EQ(0, intAttr(fixed, "IsMIP"));
        EXPECT_NEAR(mipValue, solved(fixed).second, 1e-6);
        MUST(mip, KVXconverttofixed(mip.get()));
        EXPECT_EQ(described(fixed.get()), described(mip.get()));
        Model copy = derived(mip, KVXsinglescenariomodel);
        EXPECT_EQ(described(mip.get()), described(copy.get()));
    }
    EXPECT_GT(optimal, 100);
    EXPECT_GT(infeasible, 5);
}

} // namespace
