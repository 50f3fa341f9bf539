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

// A model, what it is solved with, and what must come of it.
struct Verdict {
    Data data;
    const char *param;
    int value, expected; // a status, or the one of KVXoptimize
    double objective = 0;
};

TEST(Edge, VerdictsThatAreEasilyMissed) {
    Env env;
    const Row equal = {{3}, 0, 0};
    const Data ray{{9, 0}, {}, {}, {}, {{{0, 4}, 9, inf}}, KVX_MAXIMIZE},
        slope{{-1, -2}, {-inf, 0}, {inf, inf}, {}, {{{-1, 2}, -inf, 4}}},
        wedge{{1, -1}, {0, 1}, {inf, inf}, {}, {{{2, -1}, -inf, 5}}},
        point{{-3}, {}, {}, {}, {equal, {{1}, -inf, inf}, {{0}, -inf, 0}}},
        gap{{7}, {-inf}, {inf}, {}, {{{0}, -11, -8}, {{-2}, 6, 6}}, KVX_MAXIMIZE},
        semi{{1}, {3}, {5}, "S", {{{1}, 1, inf}}},
        lost{{9, 8, -4}, {1, 0, -20}, {21, 6, 20}, "ICI", {{{-4, 2, -4}, -inf, 3}}, KVX_MAXIMIZE},
        free{{9, -9, 7, 2, -3, 2, -4},
             Vector(7),
             {inf, 20, 20, 20, 3, 5, 3},
             "CIIICII",
             {{{0, 0, 0, 0, 2, -2, 0}, -inf, inf},
              {{2, 1, 0, 0, 0, -1, 2}, -14, inf},
              {{-3, 3, -4, -1, 0, -2, -1}, 9, 12},
              {{0, -1, 0, 1, 0, 1, 0}, 1, 3},
              {{2, 0, 0, -1, 0, 0, -3}, -inf, inf}}};
    auto large = [](char type, double obj, double ub, double val, double rhs) {
        return Data{{obj}, {0}, {ub}, {type}, {{{val}, -rhs, rhs}}};
    };
    std::vector<Verdict> cases = {
        {semi, "Presolve", 1, KVX_STATUS_OPTIMAL, 3},
        {free, "Presolve", 0, KVX_STATUS_OPTIMAL, -124},
        {lost, "Presolve", 1, KVX_STATUS_OPTIMAL, 309},
        {large('C', 1, inf, 1, 1e14), "Presolve", 1, KVX_STATUS_OPTIMAL},
        {large('C', 1, 1, 1e-300, 1), "Presolve", 1, KVX_ERROR_NOT_SUPPORTED},
        {large('I', 1, 1e14, 1, 1e14), "Presolve", 1, KVX_STATUS_OPTIMAL},
        {large('C', 1e30, 1, 1, 1), "Presolve", 1, KVX_ERROR_NOT_SUPPORTED},
        {large('C', 1, 1, 1e26, 1), "Presolve", 1, KVX_ERROR_NOT_SUPPORTED},
        {large('C', 1, 1e30, 1, 1), "Presolve", 1, KVX_ERROR_NOT_SUPPORTED},
        {large('I', 1, 1e17, 1, 1), "Presolve", 1, KVX_ERROR_NOT_SUPPORTED},
        {large('I', 1, 1, 1, 1e17), "Presolve", 1, KVX_ERROR_NOT_SUPPORTED}};
    for (int method = -1; method <= 2; method++)
        for (const Data *data : {&ray, &slope, &wedge, &gap, &point})
            cases.push_back({*data, "Method", method,
                             data == &point ? KVX_STATUS_OPTIMAL
                             : data == &gap ? KVX_STATUS_INFEASIBLE
                                            : KVX_STATUS_UNBOUNDED});
    for (const auto &[data, param, value, expected, objective] : cases) {
        SCOPED_TRACE(&expected - &cases[0].expected);
        Model model = data.build(env);
        KVXsetintparam(KVXgetenv(model.get()), param, value);
        if (int status = KVXoptimize(model.get())) {
            EXPECT_EQ(expected, status);
            continue;
        }
        ASSERT_EQ(expected, intAttr(model, "Status"));
        if (expected == KVX_STATUS_OPTIMAL) {
            EXPECT_NEAR(objective, dblAttr(model, "ObjVal"), 1e-6);
        }
    }
}

// Proposes at every solution the best point, one without a value, two that would have to be changed
// and one that isn't a number.
int propose(KVXmodel *, void *cbdata, int where, void *calls) {
    if (where != KVX_CB_MIPSOL)
        return 0;
    ++*static_cast<int *>(calls);
    double value = 0;
    for (double last : {0.0, KVX_UNDEFINED, -1.0, 0.4, std::nan("")}) {
        const double point[] = {1, 1, KVX_UNDEFINED, last};
        EXPECT_EQ(std::isnan(last) ? KVX_ERROR_INVALID_ARGUMENT : KVX_OK,
                  KVXcbsolution(cbdata, point, &value));
        EXPECT_EQ(last == 0 || last == KVX_UNDEFINED ? -2 : inf, value) << last;
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
