// Runs: what callbacks see and decide, background runs, requests to end, several at once.
#include "solver_case.h"

#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

#include <unistd.h>

namespace {

struct Watch {
    std::thread::id thread;
    int calls = 0, solutions = 0, syncResult = 0, freeResult = 0, stopWhere = -1;
    double best = inf;
    std::string lastLine;

    static int callback(KVXmodel *model, void *cbdata, int where, void *userdata) {
        auto &watch = *static_cast<Watch *>(userdata);
        watch.thread = std::this_thread::get_id();
        if (watch.calls++ == 0) {
            watch.syncResult = KVXsync(model);
            watch.freeResult = KVXfreemodel(model);
        }
        double value = 0;
        const char *line = nullptr;
        if (where == KVX_CB_MIPSOL) {
            watch.solutions++;
            EXPECT_EQ(KVX_OK, KVXcbget(cbdata, where, KVX_CB_MIPSOL_OBJ, &value));
            EXPECT_LT(value, watch.best);
            watch.best = value;
        }
        if (where == KVX_CB_MESSAGE) {
            EXPECT_EQ(KVX_OK, KVXcbget(cbdata, where, KVX_CB_MSG_STRING, &line));
            watch.lastLine = line;
        }
        EXPECT_NE(KVX_OK, KVXcbget(cbdata, KVX_CB_IIS, KVX_CB_RUNTIME, &value));
        EXPECT_NE(KVX_OK, KVXcbget(cbdata, where, KVX_CB_IIS_CONSTRS, &value));
        EXPECT_NE(KVX_OK, KVXcbsetintparam(cbdata, "Seed", 1));
        EXPECT_EQ(where == KVX_CB_MIPNODE, KVXcbcut(cbdata, 0, nullptr, nullptr, '<', 1) == KVX_OK);
        EXPECT_NE(KVX_OK, KVXcbcut(cbdata, 0, nullptr, nullptr, '<', 1e30));
        EXPECT_EQ(KVX_OK, KVXcbget(cbdata, where, KVX_CB_RUNTIME, &value));
        return where == watch.stopWhere ? 4711 : 0;
    }
};

TEST(Run, EndsInTheBackgroundWhenAsked) {
    Env env;
    Model model = marketSplit(env, 40, 5);
    Watch watch;
    MUST(model, KVXsetcallbackfunc(model.get(), Watch::callback, &watch));
    MUST(model, KVXoptimizeasync(model.get()));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(KVX_ERROR_IN_PROGRESS, KVXoptimize(model.get()));
    EXPECT_EQ(KVX_STATUS_IN_PROGRESS, intAttr(model, "Status"));
    auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(KVX_OK, KVXterminate(model.get()));
    MUST(model, KVXsync(model.get()));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
    EXPECT_EQ(KVX_STATUS_INTERRUPTED, intAttr(model, "Status"));
    EXPECT_EQ(watch.solutions, intAttr(model, "SolCount"));
    EXPECT_NEAR(watch.best, dblAttr(model, "ObjVal"), 1e-6);
    EXPECT_EQ(KVX_ERROR_IN_PROGRESS, watch.syncResult);
    EXPECT_EQ(KVX_ERROR_IN_PROGRESS, watch.freeResult);
    EXPECT_NE(std::this_thread::get_id(), watch.thread);
    EXPECT_NE("", watch.lastLine);

    // The request is spent; one that comes before a run ends just that run.
    MUST(model, KVXsetcallbackfunc(model.get(), nullptr, nullptr));
    KVXsetdblparam(KVXgetenv(model.get()), "TimeLimit", 0.1);
    for (int expected : {KVX_STATUS_TIME_LIMIT, KVX_STATUS_INTERRUPTED, KVX_STATUS_TIME_LIMIT}) {
        if (expected == KVX_STATUS_INTERRUPTED)
            KVXterminate(model.get());
        EXPECT_EQ(expected, solved(model).first);
    }
    MUST(model, KVXoptimizeasync(model.get())); // Freeing the model ends the run.
}

TEST(Run, EndsWithTheResultOfTheCallback) {
    Env env;
    for (int where : {KVX_CB_POLLING, KVX_CB_PRESOLVE, KVX_CB_SIMPLEX, KVX_CB_MIP, KVX_CB_MIPSOL,
                      KVX_CB_MIPNODE, KVX_CB_MESSAGE}) {
        Model model = marketSplit(env, 40, 5);
        Watch watch;
        watch.stopWhere = where;
        MUST(model, KVXsetcallbackfunc(model.get(), Watch::callback, &watch));
        EXPECT_EQ(4711, KVXoptimize(model.get())) << where;
        EXPECT_EQ(KVX_STATUS_INTERRUPTED, intAttr(model, "Status"));
        if (where == KVX_CB_MIPSOL) {
            EXPECT_EQ(0, intAttr(model, "SolCount"));
        }
    }
}

// A callback that gives up may not have come to the lazy constraint that refuses the candidate.
TEST(Run, GivesUpCandidatesWithTheirCallback) {
    Env env;
    for (int lazies : {0, 1}) {
        Model model = marketSplit(env, 40, 5);
        auto giveUp = [](KVXmodel *m, void *, int where, void *) {
            return where == KVX_CB_MIPSOL ? KVXterminate(m) : 0;
        };
        KVXsetintparam(KVXgetenv(model.get()), "LazyConstraints", lazies);
        MUST(model, KVXsetcallbackfunc(model.get(), giveUp, nullptr));
        EXPECT_EQ(KVX_STATUS_INTERRUPTED, solved(model).first);
        EXPECT_EQ(1 - lazies, intAttr(model, "SolCount"));
    }
}

// Calls that fail, and the text that each of them must leave to its own thread.
void failOften(int count, const char *text, KVXmodel *model, int (*call)(KVXmodel *)) {
    for (int k = 0; k < count; k++) {
        ASSERT_EQ(KVX_ERROR_IN_PROGRESS, call(model));
        ASSERT_NE(nullptr, std::strstr(KVXgetmerrormsg(model), text)) << KVXgetmerrormsg(model);
    }
}

TEST(Run, ThreadsFailAtTheSameTime) {
    Env env;
    Model model = marketSplit(env, 40, 5);
    std::atomic<bool> isReady{false};
    auto callback = [](KVXmodel *m, void *, int, void *ready) {
        if (!static_cast<std::atomic<bool> *>(ready)->exchange(true))
            failOften(2000, "its own thread", m, KVXsync);
        return 0;
    };
    MUST(model, KVXsetcallbackfunc(model.get(), callback, &isReady));
    MUST(model, KVXoptimizeasync(model.get()));
    while (!isReady)
        std::this_thread::yield();
    failOften(20000, "going on", model.get(),
              [](KVXmodel *m) { return KVXsetdblattr(m, "ObjCon", 1); });
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

int solveOthers() {
    auto solve = [] {
        Env env;
        EXPECT_EQ(-1, solved(Data{{-1}, {0}, {1}, "I", {{{2}, 0, 3}}}.build(env)).second);
    };
    solve();
    std::thread(solve).join();
    return 0;
}

// Cbc's programs read their command lines one after another, relaxations included: one that is
// called meanwhile must not wait for another.
TEST(Run, CallsNobodyWhoWaitsForAnotherRun) {
    alarm(30);
    Env env;
    Random random(1);
    Data large{{}, {}, {}, std::string(800, 'I'), std::vector<Row>(500, Row{{}, -inf, 1e5})};
    for (int j = 0; j < 800; j++) {
        large.obj.push_back(-random(100, 200));
        for (Row &row : large.rows)
            row.val.push_back(random(1, 99));
    }
    Model model = large.build(env);
    KVXsetdblparam(KVXgetenv(model.get()), "LogInterval", 0.1);
    KVXsetdblparam(KVXgetenv(model.get()), "TimeLimit", 2);
    KVXsetlogcallbackfuncenv(
        KVXgetenv(model.get()), [](const char *, void *) { return solveOthers(); }, nullptr);
    auto poll = [](KVXmodel *, void *, int where, void *) {
        return where == KVX_CB_POLLING ? solveOthers() : 0;
    };
    MUST(model, KVXsetcallbackfunc(model.get(), poll, nullptr));
    EXPECT_EQ(KVX_STATUS_TIME_LIMIT, solved(model).first);
    alarm(0);
}

} // namespace
