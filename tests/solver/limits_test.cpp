// What ends runs and what callbacks may do in them; several objectives' tolerances and settings.
#include "solver_case.h"

#include <filesystem>
#include <tuple>

namespace {

void setParam(const Model &model, const char *name, const char *value) {
    EXPECT_EQ(KVX_OK, KVXsetparam(KVXgetenv(model.get()), name, value)) << name;
}

TEST(Limits, EndRuns) {
    Env env;
    const std::tuple<const char *, const char *, int> limits[] = {
        {"IterationLimit", "100", KVX_STATUS_ITERATION_LIMIT},
        {"NodeLimit", "20", KVX_STATUS_NODE_LIMIT},
        {"SolutionLimit", "1", KVX_STATUS_SOLUTION_LIMIT}};
    for (auto [name, value, expected] : limits) {
        Model model = marketSplit(env, 40, 5);
        MUST(model, KVXsetdblattr(model.get(), "ObjCon", 1e4));
        for (const char *other : {"Cuts", "Heuristics"})
            setParam(model, other, "0");
        setParam(model, "TimeLimit", "30");
        setParam(model, name, value);
        EXPECT_EQ(expected, solved(model).first) << name;
        if (intAttr(model, "SolCount") > 0) {
            const double best = dblAttr(model, "ObjVal");
            EXPECT_NEAR(best - dblAttr(model, "ObjBound"), best * dblAttr(model, "MIPGap"), 1e-6);
        }
        if (expected == KVX_STATUS_SOLUTION_LIMIT) {
            EXPECT_EQ(1, intAttr(model, "SolCount"));
        }
    }
}

TEST(Limits, CallbacksSetThemAndLittleElse) {
    Env env;
    Model model = marketSplit(env, 40, 5);
    auto limit = [](KVXmodel *m, void *cbdata, int where, void *) {
        int type = 0, vector = 0;
        double runtime = 0;
        const std::tuple<int, int, int> codes[] = {{KVX_CB_MIP_SOLCOUNT, KVX_TYPE_INT, 0},
                                                   {KVX_CB_MIP_NODES, KVX_TYPE_DOUBLE, 0},
                                                   {KVX_CB_MIPSOL_SOL, KVX_TYPE_DOUBLE, 1},
                                                   {KVX_CB_MSG_STRING, KVX_TYPE_STRING, 0}};
        for (auto code : codes) {
            EXPECT_EQ(KVX_OK, KVXgetcbwhatinfo(cbdata, std::get<0>(code), &type, &vector));
            EXPECT_EQ(code, std::tuple(std::get<0>(code), type, vector));
        }
        EXPECT_EQ(KVX_ERROR_DATA_NOT_AVAILABLE, KVXgetdblattr(m, "ObjVal", &runtime));
        EXPECT_EQ(KVX_OK, KVXgetdblattr(m, "Runtime", &runtime));
        EXPECT_GT(runtime, 0);
        EXPECT_EQ(KVX_ERROR_NOT_SUPPORTED, KVXcbproceed(cbdata));
        if (where == KVX_CB_MIPSOL) {
            EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, KVXcblazy(cbdata, 0, nullptr, nullptr, '<', 1));
        }
        return KVXcbsetdblparam(cbdata, "TimeLimit", 0.2);
    };
    setParam(model, "TimeLimit", "4");
    MUST(model, KVXsetcallbackfunc(model.get(), limit, nullptr));
    EXPECT_EQ(KVX_STATUS_TIME_LIMIT, solved(model).first);
    EXPECT_LT(dblAttr(model, "Runtime"), 3);
}

// The only two solutions are the start and the one that is proposed then.
TEST(Limits, ProposalsAreTaken) {
    Env env;
    Model model = marketSplit(env, 40, 5);
    double value = 0;
    auto propose = [](KVXmodel *, void *cbdata, int where, void *result) {
        Vector point(50, KVX_UNDEFINED);
        for (size_t j = 0; j < 40; j++)
            point[j] = j % 4 == 0;
        double &proposed = *static_cast<double *>(result), none = 0;
        if (where != KVX_CB_MIPSOL || proposed > 0)
            return 0;
        EXPECT_EQ(KVX_OK, KVXcbsolution(cbdata, point.data(), &proposed));
        const Vector broken(50);
        EXPECT_EQ(KVX_OK, KVXcbsolution(cbdata, broken.data(), &none));
        EXPECT_EQ(inf, none);
        return 0;
    };
    const Vector start(40);
    MUST(model, KVXsetdblattrarray(model.get(), "Start", 0, 40, start.data()));
    for (const char *name : {"Heuristics", "Cuts"})
        setParam(model, name, "0");
    setParam(model, "SolutionLimit", "2");
    MUST(model, KVXsetcallbackfunc(model.get(), propose, &value));
    EXPECT_EQ(KVX_STATUS_SOLUTION_LIMIT, solved(model).first);
    EXPECT_NEAR(value, dblAttr(model, "ObjVal"), 1e-6);
}

// The first objective is 5 + x, of which the second gets a fifth.
TEST(Limits, ObjectivesTolerateAndRestore) {
    Env env;
    Model model = Data{{0, 0}, {}, {10, 20}, "II", {{{1, 1}, -inf, 12}}, KVX_MAXIMIZE}.build(env);
    KVXmodel *m = model.get();
    EXPECT_NE(nullptr, KVXgetmultiobjenv(m, 0));
    KVXdiscardmultiobjenvs(m);
    const double one = 1;
    for (int k : {0, 1})
        MUST(model, KVXsetobjectiven(m, k, 1 - k, nullptr, 1, &k, &one, k ? 0 : 5, 1, k ? 0 : 1,
                                     k ? 0 : 0.2));
    // Lazy constraints are for the first one only.
    EXPECT_EQ(KVX_OK, KVXsetintparam(KVXgetmultiobjenv(m, 0), "LazyConstraints", 1));
    std::vector<int> results;
    auto isLazy = [](KVXmodel *, void *cbdata, int where, void *all) {
        if (where == KVX_CB_MIPSOL || where == KVX_CB_MULTIOBJ)
            static_cast<std::vector<int> *>(all)->push_back(
                where == KVX_CB_MULTIOBJ ? -1 : KVXcblazy(cbdata, 0, nullptr, nullptr, '<', 1));
        return 0;
    };
    MUST(model, KVXsetcallbackfunc(m, isLazy, &results));
    EXPECT_EQ(std::pair(KVX_STATUS_OPTIMAL, 12.0), solved(model));
    EXPECT_EQ((Vector{7, 5}), dblAttrs(model, "X", 2));
    EXPECT_NEAR(15, dblAttr(model, "ObjBound"), 1e-6);
    int level = 0;
    for (int result : results)
        if (result < 0)
            level++;
        else
            EXPECT_EQ(level == 0, result == KVX_OK) << level;
    EXPECT_EQ(2, level);
    EXPECT_NE(nullptr, KVXgetmultiobjenv(m, 1));
    setParam(model, "TimeLimit", "0"); // holds for both
    EXPECT_EQ(KVX_STATUS_TIME_LIMIT, solved(model).first);
}

TEST(Limits, BasesAreStartedFrom) {
    Env env;
    Random random(3);
    Model model = randomData(random, 30, 20, "C").build(env);
    setParam(model, "Presolve", "0");
    EXPECT_EQ(KVX_STATUS_OPTIMAL, solved(model).first);
    EXPECT_GT(dblAttr(model, "IterCount"), 0);
    EXPECT_EQ(KVX_STATUS_OPTIMAL, solved(model).first);
    EXPECT_EQ(0, dblAttr(model, "IterCount"));
    Model unused = Data{{0}, {-inf}, {inf}, {}, {{{0}, 0, 1}}}.build(env);
    EXPECT_EQ(KVX_STATUS_OPTIMAL, solved(unused).first);
    int basis = 0;
    MUST(unused, KVXgetintattrelement(unused.get(), "VarBasis", 0, &basis));
    EXPECT_EQ(KVX_SUPERBASIC, basis);
}

TEST(Limits, InnerModelsKeepIntegersAndWriteNothing) {
    Env env;
    Model odd = Data{{0}, {0}, {3}, "I", {{{2}, 1, 1}}}.build(env);
    const std::string file = temporary("inner.json");
    setParam(odd, "ResultFile", file.c_str());
    MUST(odd, KVXcomputeIIS(odd.get()));
    int isMember = 0;
    MUST(odd, KVXgetintattrelement(odd.get(), "IISConstr", 0, &isMember));
    EXPECT_EQ(1, isMember);
    EXPECT_FALSE(std::filesystem::exists(file));

    Model semi = derived(Data{{1}, {2}, {5}, "S", {}}.build(env), KVXrelaxmodel);
    EXPECT_EQ(Vector{0}, dblAttrs(semi, "LB", 1));
}

} // namespace
