// Odd models and callbacks: what is empty, endless or not a number must end as it should.
#include "solver_case.h"

#include <chrono>
#include <cmath>
#include <thread>

namespace {

// Binary variables of equal cost, of which two can be chosen.
const Data two{Vector(4, -1), {}, {}, "BBBB", {{Vector(4, 1), -inf, 2}}};

TEST(Edge, ModelsWithoutRowsOrOperands) {
    Env env;
    Model model = Data{{0}, {}, {}, {}, {}}.build(env);
    EXPECT_EQ(KVX_STATUS_OPTIMAL, solved(model).first);
    MUST(model, KVXgetBasisHead(model.get(), nullptr));
    int ind[1];
    double val[1];
    SparseVector row{1, ind, val};
    EXPECT_EQ(KVX_ERROR_INDEX_OUT_OF_RANGE, KVXBinvRowi(model.get(), 0, &row));
    MUST(model, KVXBinvColj(model.get(), 0, &row));
    EXPECT_EQ(0, row.len);
    // The maximum of nothing has no value.
    MUST(model, KVXaddgenconstrMax(model.get(), nullptr, 0, 0, nullptr, -inf));
    EXPECT_EQ(KVX_STATUS_INFEASIBLE, solved(model).first);
}

// Proposes the best point, one without a value, and one that isn't a number, at every solution.
int propose(KVXmodel *, void *cbdata, int where, void *calls) {
    if (where != KVX_CB_MIPSOL)
        return 0;
    ++*static_cast<int *>(calls);
    double value = 0;
    for (double last : {0.0, KVX_UNDEFINED, std::nan("")}) {
        const double point[] = {1, 1, 0, last};
        EXPECT_EQ(std::isnan(last) ? KVX_ERROR_INVALID_ARGUMENT : KVX_OK,
                  KVXcbsolution(cbdata, point, &value));
        EXPECT_EQ(-2, value);
    }
    return 0;
}

TEST(Edge, ProposalsAtEverySolutionEnd) {
    Env env;
    Model model = two.build(env);
    int calls = 0;
    const double start[] = {0, 0, 0, 1};
    MUST(model, KVXsetdblattrarray(model.get(), "Start", 0, 4, start));
    MUST(model, KVXsetcallbackfunc(model.get(), propose, &calls));
    EXPECT_EQ(-2, solved(model).second);
    EXPECT_EQ(2, calls);
}

TEST(Edge, TuningOutlastsSlowCallbacks) {
    Env env;
    Model model = two.build(env);
    auto slow = [](KVXmodel *, void *cbdata, int where, void *) {
        if (where == KVX_CB_TUNE) {
            EXPECT_EQ(KVX_OK, KVXcbsetdblparam(cbdata, "MIPGap", 0.5));
            std::this_thread::sleep_for(std::chrono::milliseconds(60));
        }
        return 0;
    };
    MUST(model, KVXsetdblparam(KVXgetenv(model.get()), "TuneTimeLimit", 0.05));
    MUST(model, KVXsetcallbackfunc(model.get(), slow, nullptr));
    MUST(model, KVXtunemodel(model.get()));
    EXPECT_GE(1, intAttr(model, "TuneResultCount"));
}

} // namespace
