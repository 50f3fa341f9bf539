// Tuning and batches: copies of a model that are solved apart from it.
#include "solver_case.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <thread>

namespace {

// Its best objective value is 7, at (3, 4).
const Data easy{{1, 1}, {}, {3, 10}, "IC", {{{1, 2}, -inf, 11}}, KVX_MAXIMIZE};

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

int status(const Batch &batch) {
    int value = 0;
    EXPECT_EQ(0, KVXupdatebatch(batch.get()));
    EXPECT_EQ(0, KVXgetbatchintattr(batch.get(), "BatchStatus", &value));
    return value;
}

std::string text(const Batch &batch, const char *name) {
    const char *value = nullptr;
    EXPECT_EQ(0, KVXgetbatchstrattr(batch.get(), name, &value)) << name;
    return value ? value : "";
}

TEST(Batches, SolveACopyOfTheModel) {
    Env env;
    Model model = easy.build(env);
    std::string id = submit(model);
    MUST(model, KVXsetdblattrelement(model.get(), "UB", 0, 0));
    Batch batch = get(env, id), other = get(env, id);
    for (int k = 0; k < 2000 && status(batch) == KVX_BATCH_RUNNING; k++)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(KVX_BATCH_COMPLETED, status(batch));
    EXPECT_EQ(text(batch, "BatchID"), id);
    EXPECT_EQ(text(batch, "EndTime").size(), std::string("2000-01-01T00:00:00Z").size());
    char *json = nullptr;
    ASSERT_EQ(0, KVXgetbatchjsonsolution(batch.get(), &json));
    EXPECT_EQ(nlohmann::json::parse(json)["objective"], 7);
    const std::string file = temporary("batch.json");
    EXPECT_EQ(0, KVXwritebatchjsonsolution(batch.get(), file.c_str()));
    EXPECT_EQ(contents(file), json);
    EXPECT_EQ(KVX_ERROR_FILE_WRITE, KVXwritebatchjsonsolution(batch.get(), "a.sol"));
    KVXfree(json);
    EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, KVXabortbatch(batch.get()));
    EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, KVXretrybatch(batch.get()));

    EXPECT_EQ(0, KVXdiscardbatch(batch.get()));
    get(env, id, KVX_ERROR_NOT_FOUND);
    EXPECT_EQ(status(other), KVX_BATCH_DISCARDED);
    EXPECT_EQ(KVX_ERROR_DATA_NOT_AVAILABLE, KVXgetbatchjsonsolution(other.get(), &json));
    EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, KVXdiscardbatch(other.get()));
}

TEST(Batches, AreAbortedAndRetried) {
    Env env;
    Batch first = get(env, submit(marketSplit(env, 40, 5))),
          second = get(env, submit(marketSplit(env, 40, 5)));
    for (int attempt = 0; attempt < 2; attempt++) {
        EXPECT_EQ(attempt ? 0 : KVX_ERROR_INVALID_ARGUMENT, KVXretrybatch(first.get()));
        EXPECT_EQ(status(first), KVX_BATCH_RUNNING);
        EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, KVXdiscardbatch(first.get()));
        EXPECT_EQ(0, KVXabortbatch(first.get()));
        EXPECT_EQ(status(first), KVX_BATCH_ABORTED);
    }
    EXPECT_EQ(status(second), KVX_BATCH_RUNNING);
    EXPECT_EQ(0, KVXabortbatch(second.get()));
    EXPECT_EQ(0, KVXdiscardbatch(first.get()));
    EXPECT_EQ(0, KVXdiscardbatch(second.get()));
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

struct Trials {
    int calls = 0, stopAt = -1, skip = -1;

    static int count(KVXmodel *model, void *cbdata, int where, void *data) {
        auto &trials = *static_cast<Trials *>(data);
        int trial = -1, all = -1;
        if (where != KVX_CB_TUNE)
            return 0;
        EXPECT_EQ(0, KVXcbget(cbdata, where, KVX_CB_TUNE_TRIAL, &trial));
        EXPECT_EQ(0, KVXcbget(cbdata, where, KVX_CB_TUNE_TRIALS, &all));
        EXPECT_EQ(trial, trials.calls);
        EXPECT_GT(all, trial);
        EXPECT_TRUE(trial != trials.skip || KVXcbproceed(cbdata) == 0);
        return trials.calls++ == trials.stopAt ? KVXterminate(model) : 0;
    }
};

TEST(Tuning, KeepsTheSettingsThatItTried) {
    Env env;
    Model model = easy.build(env);
    Trials trials;
    MUST(model, KVXsetcallbackfunc(model.get(), Trials::count, &trials));
    MUST(model, KVXtunemodel(model.get()));
    EXPECT_GT(trials.calls, 3);
    EXPECT_EQ(intAttr(model, "TuneResultCount"), trials.calls);
    bool isChanged = false;
    for (int k = -1; k < trials.calls; k++) {
        MUST(model, KVXgettuneresult(model.get(), k));
        for (const char *name : {"Cuts", "Heuristics", "Presolve"}) {
            int value = 1;
            EXPECT_EQ(0, KVXgetintparam(KVXgetenv(model.get()), name, &value));
            isChanged |= !value;
        }
    }
    EXPECT_TRUE(isChanged);
    EXPECT_EQ(KVX_ERROR_INDEX_OUT_OF_RANGE, KVXgettuneresult(model.get(), trials.calls));

    trials = {0, 3, 1};
    MUST(model, KVXtunemodel(model.get()));
    EXPECT_EQ(intAttr(model, "TuneResultCount"), 2) << "of four, one skipped and one ended";
}

TEST(Tuning, KeepsToItsTimeLimit) {
    Env env;
    Model model = marketSplit(env, 40, 5);
    EXPECT_EQ(0, KVXsetdblparam(KVXgetenv(model.get()), "TuneTimeLimit", 1));
    auto begin = std::chrono::steady_clock::now();
    MUST(model, KVXtunemodel(model.get()));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    EXPECT_GT(intAttr(model, "TuneResultCount"), 0);
}

} // namespace
