// Tuning and batches: copies of a model that are solved apart from it.
#include "solver_case.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <thread>

namespace {

struct FreeBatch {
    void operator()(KVXbatch *batch) const { KVXfreebatch(batch); }
};
using Batch = std::unique_ptr<KVXbatch, FreeBatch>;

Batch get(const Env &env, const std::string &id, int expected = KVX_OK) {
    KVXbatch *batch = nullptr;
    EXPECT_EQ(expected, KVXgetbatch(env, id.c_str(), &batch)) << KVXgeterrormsg(env);
    return Batch(batch);
}

std::string submit(const Model &model) {
    char id[KVX_TEXT_SIZE] = "";
    EXPECT_EQ(0, KVXoptimizebatch(model.get(), id)) << KVXgetmerrormsg(model.get());
    return id;
}

// As of the last update.
int status(const Batch &batch) {
    int value = 0;
    EXPECT_EQ(KVX_OK, KVXgetbatchintattr(batch.get(), "BatchStatus", &value));
    return value;
}

int updated(const Batch &batch) {
    EXPECT_EQ(KVX_OK, KVXupdatebatch(batch.get()));
    return status(batch);
}

int ended(const Batch &batch) {
    for (int k = 0; k < 2000 && updated(batch) == KVX_BATCH_RUNNING; k++)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    return status(batch);
}

std::string text(const Batch &batch, const char *name) {
    const char *value = nullptr;
    EXPECT_EQ(KVX_OK, KVXgetbatchstrattr(batch.get(), name, &value)) << name;
    return value ? value : "";
}

TEST(Batches, SolveACopyOfTheModel) {
    Env env;
    Model model = fromText(env, "max x + y st c: x + 2 y <= 11 bounds x <= 3 y <= 10 int x");
    const int both[] = {0, 1};
    const double ones[] = {1, 1};
    for (int k : both)
        MUST(model, KVXsetobjectiven(model.get(), k, 1 - k, nullptr, 2, both, ones, 0, 1, 0, 0));
    EXPECT_EQ(KVX_OK, KVXsetdblparam(KVXgetmultiobjenv(model.get(), 1), "TimeLimit", 0));
    std::string id = submit(model);
    Batch batch = get(env, id), other = get(env, id);
    MUST(model, KVXsetdblattrelement(model.get(), "UB", 0, 0));
    EXPECT_EQ(KVX_BATCH_COMPLETED, ended(batch));
    EXPECT_EQ(KVX_BATCH_RUNNING, status(other));
    EXPECT_EQ(text(batch, "BatchID"), id);
    EXPECT_EQ(text(batch, "EndTime").size(), std::string("2000-01-01T00:00:00Z").size());
    EXPECT_LE(text(batch, "SubmitTime"), text(batch, "EndTime"));
    char *json = nullptr;
    ASSERT_EQ(KVX_OK, KVXgetbatchjsonsolution(batch.get(), &json));
    EXPECT_EQ(nlohmann::json::parse(json)["objective"], 7);
    EXPECT_EQ(nlohmann::json::parse(json)["status"], "time_limit");
    const std::string file = temporary("batch.json");
    EXPECT_EQ(KVX_OK, KVXwritebatchjsonsolution(batch.get(), file.c_str()));
    EXPECT_EQ(contents(file), json);
    EXPECT_EQ(KVX_ERROR_FILE_WRITE, KVXwritebatchjsonsolution(batch.get(), "a.sol"));
    KVXfree(json);
    EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, KVXabortbatch(batch.get()));
    EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, KVXretrybatch(batch.get()));

    EXPECT_EQ(KVX_OK, KVXdiscardbatch(batch.get()));
    get(env, id, KVX_ERROR_NOT_FOUND);
    EXPECT_EQ(updated(other), KVX_BATCH_DISCARDED);
    EXPECT_EQ(KVX_ERROR_DATA_NOT_AVAILABLE, KVXgetbatchjsonsolution(other.get(), &json));
    EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, KVXdiscardbatch(other.get()));

    MUST(model, KVXaddgenconstrExp(model.get(), "e", 0, 1, nullptr));
    batch = get(env, submit(model));
    EXPECT_EQ(KVX_BATCH_FAILED, ended(batch));
    EXPECT_EQ("general constraint e: the kind Exp can't be solved",
              text(batch, "BatchErrorMessage"));
}

TEST(Batches, AreAbortedAndRetried) {
    Env env;
    Batch first = get(env, submit(marketSplit(env, 40, 5))),
          second = get(env, submit(marketSplit(env, 40, 5)));
    for (int attempt = 0; attempt < 2; attempt++) {
        EXPECT_EQ(attempt ? KVX_OK : KVX_ERROR_INVALID_ARGUMENT, KVXretrybatch(first.get()));
        EXPECT_EQ(updated(first), KVX_BATCH_RUNNING);
        EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, KVXdiscardbatch(first.get()));
        EXPECT_EQ(KVX_OK, KVXabortbatch(first.get()));
        EXPECT_EQ(updated(first), KVX_BATCH_ABORTED);
    }
    EXPECT_EQ(updated(second), KVX_BATCH_RUNNING);
    EXPECT_EQ(KVX_OK, KVXabortbatch(second.get()));
    EXPECT_EQ(KVX_OK, KVXdiscardbatch(first.get()));
    EXPECT_EQ(KVX_OK, KVXdiscardbatch(second.get()));
}

TEST(Batches, EndWithTheProcess) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    auto leaveRunning = [] {
        Env env;
        Batch batch = get(env, submit(marketSplit(env, 40, 5)));
        EXPECT_EQ(KVX_BATCH_RUNNING, status(batch));
        std::exit(testing::Test::HasFailure());
    };
    EXPECT_EXIT(leaveRunning(), testing::ExitedWithCode(0), "");
}

TEST(Tuning, KeepsAndRanksTheSettingsThatItTried) {
    Env env;
    Model model = marketSplit(env, 12, 2);
    KVXmodel *m = model.get();
    setParam(model, "Method", "0");
    int calls = 0, all = 0;
    Callback count = [&](void *cbdata, int where) {
        int trial = -1;
        if (where != KVX_CB_TUNE)
            return 0;
        EXPECT_EQ(KVX_OK, KVXcbget(cbdata, where, KVX_CB_TUNE_TRIAL, &trial));
        EXPECT_EQ(KVX_OK, KVXcbget(cbdata, where, KVX_CB_TUNE_TRIALS, &all));
        EXPECT_EQ(calls++, trial);
        return 0;
    };
    setCallback(model, count);
    MUST(model, KVXtunemodel(m));
    EXPECT_EQ(all, calls);
    EXPECT_EQ(all, intAttr(model, "TuneResultCount"));
    EXPECT_GT(all, 4);

    // The first trial is solved, the second one skipped, the third one ends at a limit.
    calls = 0;
    Callback decide = [&](void *cbdata, int where) {
        if (where != KVX_CB_TUNE)
            return 0;
        EXPECT_EQ(KVX_OK, KVXcbsetdblparam(cbdata, "NodeLimit", calls == 2 ? 0 : 1e6));
        EXPECT_TRUE(calls != 1 || KVXcbproceed(cbdata) == KVX_OK);
        return calls++ == 3 ? KVXterminate(m) : 0;
    };
    setCallback(model, decide);
    MUST(model, KVXtunemodel(m));
    EXPECT_EQ(2, intAttr(model, "TuneResultCount"));
    for (auto [result, cuts] : {std::pair{0, 1}, {1, 0}, {0, 1}, {-1, 0}}) {
        int method = -1, value = -1;
        MUST(model, KVXgettuneresult(m, result));
        EXPECT_EQ(KVX_OK, KVXgetintparam(KVXgetenv(m), "Method", &method));
        EXPECT_EQ(KVX_OK, KVXgetintparam(KVXgetenv(m), "Cuts", &value));
        EXPECT_EQ(std::pair(0, cuts), std::pair(method, value)) << result;
    }
    EXPECT_EQ(KVX_ERROR_INDEX_OUT_OF_RANGE, KVXgettuneresult(m, 2));

    // A callback that fails ends all, even if it asked for the next trial.
    Callback fail = [&](void *cbdata, int where) {
        return where == KVX_CB_TUNE ? KVXcbproceed(cbdata) + 4711 : 0;
    };
    setCallback(model, fail);
    EXPECT_EQ(4711, KVXtunemodel(m));
    EXPECT_EQ(0, intAttr(model, "TuneResultCount"));
}

TEST(Tuning, KeepsToTimeLimits) {
    Env env;
    for (auto [limit, seconds] : {std::pair{"TuneTimeLimit", "1"}, {"TimeLimit", "0.1"}}) {
        Model model = marketSplit(env, 40, 5);
        setParam(model, limit, seconds);
        auto begin = std::chrono::steady_clock::now();
        MUST(model, KVXtunemodel(model.get()));
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5)) << limit;
        EXPECT_GT(intAttr(model, "TuneResultCount"), 0);
    }
}

} // namespace
