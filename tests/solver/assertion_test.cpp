// What COIN asserts ends a run in an error, and leaves everything else usable.
#include "../../src/solver/assertion.h"
#include "../../src/solver/cbcprogram.h"
#include "../../src/solver/run.h"
#include "solver_case.h"

#include <OsiClpSolverInterface.hpp>

#include <cstring>

// Absent where nobody looks for leaks.
extern "C" void __attribute__((weak)) __lsan_disable(), __attribute__((weak)) __lsan_enable();

namespace {

using namespace korvex;

TEST(Assertion, EndsARunInAnError) {
    if (CLP_VERSION_RELEASE >= 10)
        GTEST_SKIP() << "Debian 13 has a Clp without assertions";
    const int index = 0;
    const double value = 1;
    OsiClpSolverInterface odd; // COIN's solvers assert that no cost is so large.
    odd.setLogLevel(0);
    odd.addCol(0, nullptr, nullptr, 0, 1, 1e30);
    odd.addRow(CoinShallowPackedVector(1, &index, &value), -1, 1);
    odd.setInteger(0);
    auto clp = [&](korvex::Run &) {
        auto lp = std::make_unique<ClpSimplex>(*odd.getModelPtr());
        protect([&] { lp->primal(); }, lp);
    };
    auto cbc = [&](korvex::Run &) {
        auto model = std::make_unique<CbcModel>(odd);
        CbcProgram().conduct(model);
    };
    Env env;
    Model model = Data{Vector(4, -1), {}, {}, "BBBB", {{Vector(4, 1), -inf, 2}}}.build(env);
    for (const auto &operation : std::vector<std::function<void(korvex::Run &)>>{clp, cbc}) {
        if (__lsan_disable)
            __lsan_disable();
        EXPECT_EQ(KVX_ERROR_INTERNAL, perform(model.get(), operation));
        if (__lsan_enable)
            __lsan_enable();
        EXPECT_NE(nullptr, std::strstr(KVXgetmerrormsg(model.get()), "fabs(obj[i]) < 1.0e25 (Clp"));
        EXPECT_EQ(-2, solved(model).second);
    }
}

} // namespace
