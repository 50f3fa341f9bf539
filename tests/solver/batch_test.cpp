// Tuning and batches: copies of a model that are solved apart from it.
#include "solver_case.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <cmath>
#include <fstream>
#include <random>
#include <thread>

namespace {

// max x + y over two rows: 7, at (3, 4).
Model easy(const Env &env) {
    KVXmodel *made = nullptr;
    const double obj[] = {1, 1}, ub[] = {3, 10};
    const char *const names[] = {"x", "y"};
    EXPECT_EQ(0, KVXnewmodel(env, &made, "easy", 2, obj, nullptr, ub, "IC", names));
    const int beg = 0, ind[] = {0, 1};
    const double val[] = {1, 2}, rhs = 11;
    EXPECT_EQ(0, KVXaddconstrs(made, 1, 2, &beg, ind, val, "<", &rhs, nullptr));
    EXPECT_EQ(0, KVXsetintattr(made, "ModelSense", KVX_MAXIMIZE));
    return Model(made);
}

// Market split: to halve four sets of numbers at once takes far longer than a test.
Model hard(const Env &env) {
    constexpr int rows = 4, columns = 34;
    KVXmodel *made = nullptr;
    std::vector<double> obj(columns, 0), ub(columns, 1), val(columns);
    std::vector<int> ind(columns);
    std::string types(columns, KVX_BINARY);
    for (int row = 0; row < 2 * rows; row++) { // slacks of both signs
        obj.push_back(1);
        ub.push_back(KVX_INFINITY);
        types += KVX_CONTINUOUS;
    }
    EXPECT_EQ(0, KVXnewmodel(env, &made, "hard", columns + 2 * rows, obj.data(), nullptr, ub.data(),
                             types.c_str(), nullptr));
    std::mt19937 random(3);
    for (int row = 0; row < rows; row++) {
        double sum = 0;
        for (int j = 0; j < columns; j++) {
            ind[static_cast<size_t>(j)] = j;
            sum += val[static_cast<size_t>(j)] = static_cast<double>(random() % 100);
        }
        std::vector<int> rowInd = ind;
        std::vector<double> rowVal = val;
        for (int sign : {0, 1}) {
            rowInd.push_back(columns + 2 * row + sign);
            rowVal.push_back(sign ? -1 : 1);
        }
        const int beg = 0;
        const double rhs = std::floor(sum / 2);
        EXPECT_EQ(0, KVXaddconstrs(made, 1, columns + 2, &beg, rowInd.data(), rowVal.data(), "=",
                                   &rhs, nullptr));
    }
    return Model(made);
}

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

void waitFor(const Batch &batch, int expected) {
    for (int k = 0; k < 2000 && status(batch) < expected; k++)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(expected, status(batch));
}

std::string text(const Batch &batch, const char *name) {
    const char *value = nullptr;
    EXPECT_EQ(0, KVXgetbatchstrattr(batch.get(), name, &value)) << name;
    return value ? value : "";
}

TEST(Batches, solveACopyOfTheModel) {
    Env env;
    Model model = easy(env);
    std::string id = submit(model);
    MUST(model, KVXsetdblattrelement(model.get(), "UB", 0, 0));
    Batch batch = get(env, id), other = get(env, id);
    waitFor(batch, KVX_BATCH_COMPLETED);
    EXPECT_EQ(text(batch, "BatchID"), id);
    EXPECT_EQ(text(batch, "EndTime").size(), std::string("2000-01-01T00:00:00Z").size());
    char *json = nullptr;
    ASSERT_EQ(0, KVXgetbatchjsonsolution(batch.get(), &json));
    EXPECT_EQ(nlohmann::json::parse(json)["objective"], 7);
    std::string file = testing::TempDir() + "korvex-batch.json";
    EXPECT_EQ(0, KVXwritebatchjsonsolution(batch.get(), file.c_str()));
    EXPECT_EQ(nlohmann::json::parse(std::ifstream(file)), nlohmann::json::parse(json));
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

TEST(Batches, areAbortedAndRetried) {
    Env env;
    Batch first = get(env, submit(hard(env))), second = get(env, submit(hard(env)));
    for (int attempt = 0; attempt < 2; attempt++) {
        EXPECT_EQ(status(first), KVX_BATCH_RUNNING);
        EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, KVXdiscardbatch(first.get()));
        EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, KVXretrybatch(first.get()));
        EXPECT_EQ(0, KVXabortbatch(first.get()));
        EXPECT_EQ(status(first), KVX_BATCH_ABORTED);
        if (attempt == 0) {
            EXPECT_EQ(0, KVXretrybatch(first.get()));
        }
    }
    EXPECT_EQ(status(second), KVX_BATCH_RUNNING);
    EXPECT_EQ(0, KVXabortbatch(second.get()));
    EXPECT_EQ(0, KVXdiscardbatch(first.get()));
    EXPECT_EQ(0, KVXdiscardbatch(second.get()));
}

TEST(Batches, endWithTheProcess) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    auto leaveRunning = [] {
        Env env;
        Batch batch = get(env, submit(hard(env)));
        waitFor(batch, KVX_BATCH_RUNNING);
        std::exit(testing::Test::HasFailure());
    };
    EXPECT_EXIT(leaveRunning(), testing::ExitedWithCode(0), "");
}

struct Trials {
    int calls = 0, stopAt = -1, skip = -1;
};

int countTrials(KVXmodel *model, void *cbdata, int where, void *data) {
    auto &trials = *static_cast<Trials *>(data);
    int trial = -1, count = -1;
    if (where != KVX_CB_TUNE)
        return 0;
    EXPECT_EQ(0, KVXcbget(cbdata, where, KVX_CB_TUNE_TRIAL, &trial));
    EXPECT_EQ(0, KVXcbget(cbdata, where, KVX_CB_TUNE_TRIALS, &count));
    EXPECT_EQ(trial, trials.calls);
    EXPECT_GT(count, trial);
    if (trial == trials.skip) {
        EXPECT_EQ(0, KVXcbproceed(cbdata));
    }
    return trials.calls++ == trials.stopAt ? KVXterminate(model) : 0;
}

TEST(Tuning, keepsTheSettingsThatItTried) {
    Env env;
    Model model = easy(env);
    Trials trials;
    MUST(model, KVXsetcallbackfunc(model.get(), countTrials, &trials));
    MUST(model, KVXtunemodel(model.get()));
    EXPECT_GT(trials.calls, 3);
    EXPECT_EQ(intAttr(model, "TuneResultCount"), trials.calls);
    KVXenv *own = KVXgetenv(model.get());
    bool changed = false;
    for (int k = -1; k < trials.calls; k++) {
        int cuts = 1, heuristics = 1, presolve = 1;
        MUST(model, KVXgettuneresult(model.get(), k));
        EXPECT_EQ(0, KVXgetintparam(own, "Cuts", &cuts));
        EXPECT_EQ(0, KVXgetintparam(own, "Heuristics", &heuristics));
        EXPECT_EQ(0, KVXgetintparam(own, "Presolve", &presolve));
        changed |= !cuts || !heuristics || !presolve;
    }
    EXPECT_TRUE(changed);
    EXPECT_EQ(KVX_ERROR_INDEX_OUT_OF_RANGE, KVXgettuneresult(model.get(), trials.calls));

    trials = {0, 3, 1};
    MUST(model, KVXtunemodel(model.get()));
    EXPECT_EQ(intAttr(model, "TuneResultCount"), 2) << "of four, one skipped and one ended";
}

TEST(Tuning, keepsToItsTimeLimit) {
    Env env;
    Model model = hard(env);
    EXPECT_EQ(0, KVXsetdblparam(KVXgetenv(model.get()), "TuneTimeLimit", 1));
    auto begin = std::chrono::steady_clock::now();
    MUST(model, KVXtunemodel(model.get()));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
    EXPECT_GT(intAttr(model, "TuneResultCount"), 0);
}

} // namespace
