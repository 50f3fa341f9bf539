// Runs: what callbacks see and decide, background runs, requests to end, several at once.
#include "solver_case.h"

#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

#include <unistd.h>

namespace {

TEST(Run, EndsInTheBackgroundWhenAsked) {
    Env env;
    Model model = marketSplit(env, 40, 5);
    KVXmodel *m = model.get();
    std::thread::id thread;
    int solutions = 0;
    double best = inf;
    std::string lastLine;
    Callback watch = [&](void *cbdata, int where) {
        thread = std::this_thread::get_id();
        EXPECT_EQ(KVX_ERROR_IN_PROGRESS, KVXsync(m));
        EXPECT_EQ(KVX_ERROR_IN_PROGRESS, KVXfreemodel(m));
        double value = 0;
        const char *line = nullptr;
        if (where == KVX_CB_MIPSOL) {
            solutions++;
            EXPECT_EQ(KVX_OK, KVXcbget(cbdata, where, KVX_CB_MIPSOL_OBJ, &value));
            EXPECT_LT(value, best);
            best = value;
        }
        if (where == KVX_CB_MESSAGE) {
            EXPECT_EQ(KVX_OK, KVXcbget(cbdata, where, KVX_CB_MSG_STRING, &line));
            lastLine = line;
        }
        return 0;
    };
    setCallback(model, watch);
    MUST(model, KVXoptimizeasync(m));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(KVX_ERROR_IN_PROGRESS, KVXoptimize(m));
    EXPECT_EQ(KVX_STATUS_IN_PROGRESS, intAttr(model, "Status"));
    auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(KVX_OK, KVXterminate(m));
    MUST(model, KVXsync(m));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
    EXPECT_EQ(KVX_STATUS_INTERRUPTED, intAttr(model, "Status"));
    EXPECT_EQ(solutions, intAttr(model, "SolCount"));
    EXPECT_NEAR(best, dblAttr(model, "ObjVal"), 1e-6);
    EXPECT_NE(std::this_thread::get_id(), thread);
    EXPECT_NE("", lastLine);

    // The request is spent; one that comes before a run ends just that run.
    MUST(model, KVXsetcallbackfunc(m, nullptr, nullptr));
    setParam(model, "TimeLimit", "0.1");
    for (int expected : {KVX_STATUS_TIME_LIMIT, KVX_STATUS_INTERRUPTED, KVX_STATUS_TIME_LIMIT}) {
        if (expected == KVX_STATUS_INTERRUPTED)
            KVXterminate(m);
        EXPECT_EQ(expected, solved(model).first);
    }
    MUST(model, KVXoptimizeasync(m)); // Freeing the model ends the run.
}

TEST(Run, EndsWithTheResultOfTheCallback) {
    Env env;
    for (int last : {KVX_CB_POLLING, KVX_CB_PRESOLVE, KVX_CB_SIMPLEX, KVX_CB_MIP, KVX_CB_MIPSOL,
                     KVX_CB_MIPNODE, KVX_CB_MESSAGE}) {
        Model model = marketSplit(env, 40, 5);
        Callback callback = [last](void *, int where) { return where == last ? 4711 : 0; };
        setCallback(model, callback);
        EXPECT_EQ(4711, KVXoptimize(model.get())) << last;
        EXPECT_EQ(KVX_STATUS_INTERRUPTED, intAttr(model, "Status"));
        if (last == KVX_CB_MIPSOL) {
            EXPECT_EQ(0, intAttr(model, "SolCount"));
        }
    }
}

// A callback that gives up may not have come to the lazy constraint that refuses the candidate.
TEST(Run, GivesUpCandidatesWithTheirCallback) {
    Env env;
    for (int lazies : {0, 1}) {
        Model model = marketSplit(env, 40, 5);
        Callback giveUp = [&](void *, int where) {
            return where == KVX_CB_MIPSOL ? KVXterminate(model.get()) : 0;
        };
        setParam(model, "LazyConstraints", std::to_string(lazies));
        setCallback(model, giveUp);
        EXPECT_EQ(KVX_STATUS_INTERRUPTED, solved(model).first);
        EXPECT_EQ(1 - lazies, intAttr(model, "SolCount"));
    }
}

TEST(Run, ThreadsFailAtTheSameTime) {
    Env env;
    Model model = marketSplit(env, 40, 5);
    KVXmodel *m = model.get();
    // Calls that fail, and the text that each of them must leave to its own thread.
    auto failOften = [m](int count, const char *text, auto call) {
        for (int k = 0; k < count; k++) {
            ASSERT_EQ(KVX_ERROR_IN_PROGRESS, call());
            ASSERT_NE(nullptr, std::strstr(KVXgetmerrormsg(m), text)) << KVXgetmerrormsg(m);
        }
    };
    std::atomic<bool> isReady{false};
    Callback callback = [&](void *, int) {
        if (!isReady.exchange(true))
            failOften(2000, "its own thread", [m] { return KVXsync(m); });
        return 0;
    };
    setCallback(model, callback);
    MUST(model, KVXoptimizeasync(m));
    while (!isReady)
        std::this_thread::yield();
    failOften(20000, "going on", [m] { return KVXsetdblattr(m, "ObjCon", 1); });
    MUST(model, KVXterminate(m));
    MUST(model, KVXsync(m));
}

TEST(Run, SeveralAtOnceDontDisturbEachOther) {
    Vector alone, together(4);
    auto solve = [](unsigned seed) {
        Env env;
        auto [status, value] = solved(marketSplit(env, 12, 2, seed));
        EXPECT_EQ(KVX_STATUS_OPTIMAL, status);
        return value;
    };
    for (unsigned seed = 0; seed < 4; seed++)
        alone.push_back(solve(seed));
    std::vector<std::thread> threads;
    for (unsigned seed = 0; seed < 4; seed++)
        threads.emplace_back([&, seed] { together[seed] = solve(seed); });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(alone, together);
}

// Cbc's programs read their command lines one after another, relaxations included: one that is
// called meanwhile must not wait for another.
TEST(Run, CallsNobodyWhoWaitsForAnotherRun) {
    alarm(30);
    static const auto solveOthers = [] {
        auto solve = [] {
            Env env;
            EXPECT_EQ(-1, solved(fromText(env, "min - x st c: 0 <= 2 x <= 3 bin x")).second);
        };
        solve();
        std::thread(solve).join();
        return 0;
    };
    Env env;
    Random random(1);
    Data large{{}, {}, {}, std::string(800, 'I'), std::vector<Row>(500, Row{{}, -inf, 1e5})};
    for (int j = 0; j < 800; j++) {
        large.obj.push_back(-random(100, 200));
        for (Row &row : large.rows)
            row.val.push_back(random(1, 99));
    }
    Model model = large.build(env);
    setParam(model, "LogInterval", "0.1");
    setParam(model, "TimeLimit", "2");
    KVXsetlogcallbackfuncenv(
        KVXgetenv(model.get()), [](const char *, void *) { return solveOthers(); }, nullptr);
    Callback poll = [](void *, int where) { return where == KVX_CB_POLLING ? solveOthers() : 0; };
    setCallback(model, poll);
    EXPECT_EQ(KVX_STATUS_TIME_LIMIT, solved(model).first);
    alarm(0);
}

} // namespace
