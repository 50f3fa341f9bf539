// What ends runs and what callbacks may do in them; starts, several objectives' tolerances.
#include "solver_case.h"

#include <cmath>
#include <filesystem>
#include <tuple>

namespace {

TEST(Limits, EndRuns) {
    Env env;
    for (auto [name, value, expected] :
         {std::tuple{"IterationLimit", "100", KVX_STATUS_ITERATION_LIMIT},
          {"NodeLimit", "20", KVX_STATUS_NODE_LIMIT},
          {"MIPGap", "1", KVX_STATUS_OPTIMAL},
          {"SolutionLimit", "1", KVX_STATUS_SOLUTION_LIMIT}}) {
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
    Model small = fromText(env, "min 0 x st c: 2 x + 2 y = 5 bounds x free y free int x y");
    setParam(small, "NodeLimit", "600");
    setParam(small, "TimeLimit", "30");
    EXPECT_EQ(KVX_STATUS_NODE_LIMIT, solved(small).first);
}

TEST(Limits, CallbacksSetThem) {
    Env env;
    for (auto [name, value, expected] : {std::tuple{"TimeLimit", 0.2, KVX_STATUS_TIME_LIMIT},
                                         {"NodeLimit", 20.0, KVX_STATUS_NODE_LIMIT},
                                         {"MIPGap", 1.0, KVX_STATUS_OPTIMAL}}) {
        Model model = marketSplit(env, 40, 5);
        MUST(model, KVXsetdblattr(model.get(), "ObjCon", 1e4));
        setParam(model, "TimeLimit", "30");
        Callback callback = [limit = name, to = value](void *cbdata, int where) {
            return where == KVX_CB_MIP ? KVXcbsetdblparam(cbdata, limit, to) : 0;
        };
        setCallback(model, callback);
        EXPECT_EQ(expected, solved(model).first) << name;
    }
}

TEST(Limits, CallbacksLearnAndDoLittleElse) {
    Env env;
    Model model = marketSplit(env, 40, 5);
    KVXmodel *m = model.get();
    Callback callback = [&](void *cbdata, int where) {
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
        EXPECT_NE(KVX_OK, KVXcbget(cbdata, KVX_CB_IIS, KVX_CB_RUNTIME, &runtime));
        EXPECT_NE(KVX_OK, KVXcbget(cbdata, where, KVX_CB_IIS_CONSTRS, &runtime));
        EXPECT_EQ(KVX_OK, KVXcbget(cbdata, where, KVX_CB_RUNTIME, &runtime));
        EXPECT_NE(KVX_OK, KVXcbsetintparam(cbdata, "Seed", 1));
        EXPECT_EQ(where == KVX_CB_MIPNODE, KVXcbcut(cbdata, 0, nullptr, nullptr, '<', 1) == KVX_OK);
        EXPECT_NE(KVX_OK, KVXcbcut(cbdata, 0, nullptr, nullptr, '<', 1e30));
        EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, KVXcblazy(cbdata, 0, nullptr, nullptr, '<', 1));
        return 0;
    };
    setParam(model, "TimeLimit", "0.3");
    setCallback(model, callback);
    EXPECT_EQ(KVX_STATUS_TIME_LIMIT, solved(model).first);
}

// A start that the solver calls infeasible but is a solution within the tolerance proves that
// something is wrong; one that breaks a set by a little is none.
TEST(Limits, StartsAreJudged) {
    Env env;
    const struct {
        const char *text;
        Vector start;
        int status;
        double objective;
    } cases[] = {
        {"min x st c: x >= 1.000005 bin x", {1}, KVX_STATUS_NUMERIC, 1},
        {"max x + y + z st c: 2 y + 2 z <= 3 bin x y z", {0}, KVX_STATUS_SOLUTION_LIMIT, 1},
        {"max x + y bounds x <= 0.05 y <= 0.05 sos1 x: 1 y: 2",
         {0.05, 0.05},
         KVX_STATUS_OPTIMAL,
         0.05},
        {"max x st c: x <= 1e9 int x", {1e9 + 1000}, KVX_STATUS_OPTIMAL, 1e9 + 1000},
        {"max x + y st c: x + y <= 1.5 bin x y", {0, KVX_UNDEFINED}, KVX_STATUS_OPTIMAL, 1},
        {"max x + y st c: x + y <= 1.5 bin x y", {7, 7}, KVX_STATUS_OPTIMAL, 1}};
    for (const auto &[text, start, status, objective] : cases) {
        Model model = fromText(env, text);
        MUST(model, KVXsetdblattrarray(model.get(), "Start", 0, static_cast<int>(start.size()),
                                       start.data()));
        if (status == KVX_STATUS_SOLUTION_LIMIT) // What is left of a start becomes integer, too.
            setParam(model, "SolutionLimit", "1");
        EXPECT_EQ(status, solved(model).first) << text;
        EXPECT_EQ(objective, dblAttr(model, "ObjVal")) << text;
    }
}

// The only two solutions are the start and the one that is proposed then.
TEST(Limits, ProposalsAreTaken) {
    Env env;
    Model model = marketSplit(env, 40, 5);
    double proposed = 0;
    Callback propose = [&](void *cbdata, int where) {
        Vector point(50, KVX_UNDEFINED);
        for (size_t j = 0; j < 40; j++)
            point[j] = j % 4 == 0;
        if (where != KVX_CB_MIPSOL || proposed > 0)
            return 0;
        double none = 0;
        EXPECT_EQ(KVX_OK, KVXcbsolution(cbdata, point.data(), &proposed));
        for (double changed : {-1.0, 0.4}) { // none that a solution has
            point[0] = changed;
            EXPECT_EQ(KVX_OK, KVXcbsolution(cbdata, point.data(), &none));
            EXPECT_EQ(inf, none);
        }
        EXPECT_EQ(KVX_OK, KVXcbsolution(cbdata, Vector(50).data(), &none));
        EXPECT_EQ(inf, none);
        point[0] = std::nan("");
        EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, KVXcbsolution(cbdata, point.data(), &none));
        return 0;
    };
    const Vector start(40);
    MUST(model, KVXsetdblattrarray(model.get(), "Start", 0, 40, start.data()));
    for (const char *name : {"Heuristics", "Cuts"})
        setParam(model, name, "0");
    setParam(model, "SolutionLimit", "2");
    setCallback(model, propose);
    EXPECT_EQ(KVX_STATUS_SOLUTION_LIMIT, solved(model).first);
    EXPECT_NEAR(proposed, dblAttr(model, "ObjVal"), 1e-6);
}

// The first objective is 5 + x, of which the second gets a fifth.
TEST(Limits, ObjectivesTolerateAndRestore) {
    Env env;
    Model model = fromText(env, "max 0 x + 0 y st c: x + y <= 12 bounds x <= 10 y <= 20 int x y");
    KVXmodel *m = model.get();
    EXPECT_NE(nullptr, KVXgetmultiobjenv(m, 0));
    KVXdiscardmultiobjenvs(m);
    const double one = 1;
    for (int k : {0, 1})
        MUST(model, KVXsetobjectiven(m, k, 1 - k, nullptr, 1, &k, &one, k ? 0 : 5, 1, k ? 0 : 1,
                                     k ? 0 : 0.2));
    EXPECT_EQ(nullptr, KVXgetmultiobjenv(m, 2));
    EXPECT_STREQ("objective 2: there are 2", KVXgetmerrormsg(m));
    // Lazy constraints are for the first one only.
    EXPECT_EQ(KVX_OK, KVXsetintparam(KVXgetmultiobjenv(m, 0), "LazyConstraints", 1));
    int level = 0;
    Callback callback = [&](void *cbdata, int where) {
        level += where == KVX_CB_MULTIOBJ;
        if (where == KVX_CB_MIPSOL) {
            EXPECT_EQ(level == 0, KVXcblazy(cbdata, 0, nullptr, nullptr, '<', 1) == KVX_OK);
            EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, KVXcbstoponemultiobj(m, cbdata, 1 - level));
        }
        return 0;
    };
    setCallback(model, callback);
    EXPECT_EQ(std::pair(KVX_STATUS_OPTIMAL, 12.0), solved(model));
    EXPECT_EQ((Vector{7, 5}), dblAttrs(model, "X", 2));
    EXPECT_NEAR(15, dblAttr(model, "ObjBound"), 1e-6);
    EXPECT_EQ(2, level);
    MUST(model, KVXsetcallbackfunc(m, nullptr, nullptr));

    // The second one's own environment ends the run before it, at the solution of the first.
    KVXenv *second = KVXgetmultiobjenv(m, 1);
    EXPECT_EQ(second, KVXgetmultiobjenv(m, 1));
    EXPECT_EQ(KVX_ERROR_UNKNOWN_PARAMETER, KVXsetintparam(second, "Foo", 1));
    EXPECT_STREQ("unknown parameter \"Foo\"", KVXgeterrormsg(second));
    EXPECT_EQ(KVX_OK, KVXsetdblparam(second, "TimeLimit", 0));
    EXPECT_EQ(KVX_STATUS_TIME_LIMIT, solved(model).first);
    EXPECT_EQ(15, dblAttr(model, "ObjVal"));
    KVXdiscardmultiobjenvs(m);
    EXPECT_EQ(KVX_STATUS_OPTIMAL, solved(model).first);
    setParam(model, "TimeLimit", "0"); // holds for both, whatever they say themselves
    EXPECT_EQ(KVX_OK, KVXsetdblparam(KVXgetmultiobjenv(m, 0), "TimeLimit", 9));
    EXPECT_EQ(KVX_STATUS_TIME_LIMIT, solved(model).first);
    EXPECT_EQ(0, intAttr(model, "SolCount"));
    const double points[] = {0, 1};
    MUST(model, KVXsetpwlobj(m, 0, 2, points, points));
    EXPECT_EQ(KVX_ERROR_NOT_SUPPORTED, KVXoptimize(m));
}

TEST(Limits, ToleranceDecides) {
    Env env;
    Model model = fromText(env, "min x st c: x + y >= 1.005 bounds x <= 0.5 y <= 0.5");
    setParam(model, "Presolve", "0");
    EXPECT_EQ(KVX_STATUS_INFEASIBLE, solved(model).first);
    setParam(model, "FeasibilityTol", "0.01");
    EXPECT_EQ(KVX_STATUS_OPTIMAL, solved(model).first);
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
    Model unused = fromText(env, "min 0 x st c: 0 <= 0 x <= 1 bounds x free");
    EXPECT_EQ(KVX_STATUS_OPTIMAL, solved(unused).first);
    EXPECT_EQ(std::vector{KVX_SUPERBASIC}, intAttrs(unused, "VarBasis", 1));
}

TEST(Limits, InnerModelsKeepIntegersAndWriteNothing) {
    Env env;
    const std::string file = temporary("inner.json");
    for (const char *text : {"min 0 x st c: 2 x = 1 bounds x <= 3 int x",
                             "min 0 x st c: x = 1 bounds 2 <= x <= 3 semi x"}) {
        Model odd = fromText(env, text);
        setParam(odd, "ResultFile", file);
        setParam(odd, "LogToConsole", "1");
        testing::internal::CaptureStdout();
        MUST(odd, KVXcomputeIIS(odd.get()));
        EXPECT_EQ(std::string::npos, testing::internal::GetCapturedStdout().find("Optimizing"));
        EXPECT_EQ(std::vector{1}, intAttrs(odd, "IISConstr", 1));
        EXPECT_FALSE(std::filesystem::exists(file));
    }
    Model whole = fromText(env, "min x + y bounds 2 <= x <= 5 -5 <= y <= -2 sec x y sos1 x:1 y:2");
    MUST(whole, KVXaddgenconstrAbs(whole.get(), nullptr, 0, 1));
    Model relaxed = derived(whole, KVXrelaxmodel);
    EXPECT_EQ(std::pair(Vector{0, -5}, Vector{5, 0}),
              std::pair(dblAttrs(relaxed, "LB", 2), dblAttrs(relaxed, "UB", 2)));
    EXPECT_EQ(0, intAttr(relaxed, "IsMIP"));
}

} // namespace
