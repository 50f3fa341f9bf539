// Odd models and callbacks: what is empty, endless or not a number must end as it should.
#include "solver_case.h"

#include <chrono>
#include <cmath>
#include <thread>

namespace {

// Binary variables of equal cost, of which at most half can be chosen.
Model half(KVXenv *env, int vars) {
    KVXmodel *model = nullptr;
    const std::vector<double> obj(static_cast<size_t>(vars), -1);
    const std::string types(static_cast<size_t>(vars), KVX_BINARY);
    EXPECT_EQ(KVX_OK, KVXnewmodel(env, &model, nullptr, vars, obj.data(), nullptr, nullptr,
                                  types.data(), nullptr));
    std::vector<int> ind(static_cast<size_t>(vars));
    for (int j = 0; j < vars; j++)
        ind[static_cast<size_t>(j)] = j;
    const int begin = 0;
    const double rhs = vars / 2;
    const std::vector<double> ones(static_cast<size_t>(vars), 1);
    EXPECT_EQ(KVX_OK,
              KVXaddconstrs(model, 1, vars, &begin, ind.data(), ones.data(), "<", &rhs, nullptr));
    return Model(model);
}

TEST(Edge, ModelsWithoutRowsOrOperands) {
    Env env;
    KVXmodel *handle = nullptr;
    ASSERT_EQ(KVX_OK,
              KVXnewmodel(env, &handle, nullptr, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
    Model model(handle);
    MUST(model, KVXoptimize(handle));
    MUST(model, KVXgetBasisHead(handle, nullptr));
    int ind[1];
    double val[1];
    SparseVector row{1, ind, val};
    EXPECT_EQ(KVX_ERROR_INDEX_OUT_OF_RANGE, KVXBinvRowi(handle, 0, &row));
    MUST(model, KVXBinvColj(handle, 0, &row));
    EXPECT_EQ(0, row.len);
    // The maximum of nothing has no value.
    MUST(model, KVXaddgenconstrMax(handle, nullptr, 0, 0, nullptr, -KVX_INFINITY));
    MUST(model, KVXoptimize(handle));
    EXPECT_EQ(KVX_STATUS_INFEASIBLE, intAttr(model, "Status"));
}

// Proposes the best point, one without a value, and one that isn't a number, at every solution.
int propose(KVXmodel *, void *cbdata, int where, void *calls) {
    if (where != KVX_CB_MIPSOL)
        return 0;
    ++*static_cast<int *>(calls);
    double value = 0;
    for (double last : {0.0, KVX_UNDEFINED}) {
        const double best[] = {1, 1, 0, last};
        EXPECT_EQ(KVX_OK, KVXcbsolution(cbdata, best, &value));
        EXPECT_EQ(-2, value);
    }
    const double none[] = {0, 0, 0, std::nan("")};
    EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, KVXcbsolution(cbdata, none, &value));
    EXPECT_EQ(-2, value);
    return 0;
}

TEST(Edge, ProposalsAtEverySolutionEnd) {
    Env env;
    Model model = half(env, 4);
    int calls = 0;
    const double start[] = {0, 0, 0, 1};
    MUST(model, KVXsetdblattrarray(model.get(), "Start", 0, 4, start));
    MUST(model, KVXsetcallbackfunc(model.get(), propose, &calls));
    MUST(model, KVXoptimize(model.get()));
    EXPECT_EQ(-2, dblAttr(model, "ObjVal"));
    EXPECT_EQ(2, calls);
}

TEST(Edge, TuningOutlastsSlowCallbacks) {
    Env env;
    Model model = half(env, 6);
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
