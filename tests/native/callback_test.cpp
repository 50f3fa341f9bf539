// What takes more than one call: callbacks on the installing thread and on others, records that
// outlive the call that made them, and guards that no ordinary input reaches.
#include "bridge_case.h"

#include "com_korvex_KVXEnv.h"
#include "com_korvex_KVXModel.h"
#include "com_korvex_KorvexJni.h"
#include "java_double.h"
#include "solver_double.h"
#include "upcall.h"

#include <cstddef>
#include <thread>
#include <unistd.h>

namespace {
class Callbacks : public testing::Test {
  protected:
    void SetUp() override {
        java.begin();
        solver.begin();
        ledger.begin({});
        texts =
            static_cast<jobjectArray>(java.make("S1", std::vector<Object *>{nullptr})->reference());
        longs = static_cast<jlongArray>(java.make("L1", std::vector<jlong>{0})->reference());
    }
    void TearDown() override {
        ledger.end();
        java.end();
    }

    // The events since the last call, and a fresh start for the failures.
    void expectEvents(const std::string &text, const Plan &next = {}) {
        EXPECT_EQ(eventsOf(text), ledger.events);
        ledger.begin(next);
    }

    jint optimize(jint async) {
        return Java_com_korvex_KVXModel_jnioptimize(&java.env, java.self->reference(), object, 1,
                                                    async, longs, texts, 0);
    }
    jint sync(JNIEnv *env) {
        return Java_com_korvex_KorvexJni_sync(env, nullptr, object,
                                              reinterpret_cast<jlong>(solver.callbackData), texts);
    }
    jint setLog(jint enable, JNIEnv *env = &java.env) {
        return Java_com_korvex_KVXEnv_jniSetLogCB(env, java.self->reference(), object, enable);
    }
    int callBack() {
        return solver.callback(handle<KVXmodel>(1), handle<void>(2), 5, solver.callbackData);
    }
    // The record in the solver's hands; whoever follows it finds its fields at these places.
    JavaCallbackInfo *record() { return static_cast<JavaCallbackInfo *>(solver.callbackData); }

    int callBackOnThread() {
        int result = -1;
        std::thread([&] { result = callBack(); }).join();
        return result;
    }

    const std::string bound = "class self | a=malloc 80 | global self | vm | field cbmodel J | "
                              "method fromjni ()V | field cbdata J | field where I | "
                              "KVXsetcallbackfuncadv(h1, callback, a, 0) | ";
    const std::string forwarded = "put h1 cbmodel | put h2 cbdata | put 5 where | call fromjni | ";
    const std::string removed = "KVXsetcallbackfunc(h1, null, null) | unglobal self | free a | ";
    const std::string error =
        "KVXgetmerrormsg(h1) | new \"text\" | store S1 0 \"text\" | drop \"text\" | ";
    const jlong object = reinterpret_cast<jlong>(handle<void>(1));
    jobjectArray texts;
    jlongArray longs;
};

TEST_F(Callbacks, OnTheInstallingThreadUseItsEnvironment) {
    SOLVER_DOES(KVXoptimize, [this](auto) { return callBack(); });
    EXPECT_EQ(optimize(0), 0);
    expectEvents(bound + "KVXoptimize(h1) | " + forwarded + removed);
}

TEST_F(Callbacks, OnAnotherThreadAttachAndDetachEveryTime) {
    EXPECT_EQ(optimize(1), 0);
    expectEvents(bound + "KVXoptimizeasync(h1) | set L1 0 [a]");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(callBackOnThread(), 0);
        expectEvents("attach | " + forwarded + "detach");
    }
    EXPECT_EQ(sync(&java.env), 0);
    expectEvents("KVXsync(h1) | " + removed);
}

// A new thread gets the pthread_t of one that has ended, while the JNIEnv of that one is gone.
TEST_F(Callbacks, OnALaterThreadOfTheSameIdAttach) {
    optimize(1);
    EXPECT_EQ(record()->installTask, gettid());
    ledger.begin({});
    std::thread([this] {
        record()->installThread = pthread_self();
        EXPECT_EQ(callBack(), 0);
    }).join();
    expectEvents("attach | " + forwarded + "detach");
    void *env = nullptr;
    java.vm.AttachCurrentThread(&env, nullptr);
    sync(static_cast<JNIEnv *>(env));
}

// Every field is in place before the solver can call back.
TEST_F(Callbacks, AreBoundBeforeTheyAreInstalled) {
    auto check = [](void *data, void *object, bool model) {
        auto *bound = static_cast<JavaCallbackInfo *>(data);
        EXPECT_EQ(bound->solverHandle, object);
        EXPECT_EQ(bound->installEnv, &java.env);
        EXPECT_EQ(bound->jvm, &java.vm);
        EXPECT_TRUE(bound->javaObject && bound->payloadFieldId && bound->notifyMethodId);
        EXPECT_EQ(bound->cbdataFieldId && bound->cbmodelFieldId, model);
        EXPECT_TRUE(pthread_equal(bound->installThread, pthread_self()));
        EXPECT_EQ(bound->failed, 0);
        return 77;
    };
    EXPECT_EQ(offsetof(JavaCallbackInfo, installThread), 64u);
    EXPECT_EQ(offsetof(JavaCallbackInfo, failed), 72u);
    SOLVER_DOES(KVXsetcallbackfuncadv,
                [=](auto, auto, void *data, auto) { return check(data, nullptr, true); });
    SOLVER_DOES(KVXsetlogcallbackfuncenv,
                [=](KVXenv *env, auto, void *data) { return data ? check(data, env, false) : 0; });
    EXPECT_EQ(optimize(0), 77);
    EXPECT_EQ(setLog(1), 77);
}

TEST_F(Callbacks, AfterAFailedAttachNeverReachJavaAgain) {
    optimize(1);
    java.attachFails = true;
    ledger.begin({});
    EXPECT_EQ(callBackOnThread(), 0);
    expectEvents("attach fails");
    java.attachFails = false;
    EXPECT_EQ(callBackOnThread(), 0);
    EXPECT_EQ(callBack(), 0);
    expectEvents("");
    sync(&java.env);
}

TEST_F(Callbacks, ReportAFailedDetachOnce) {
    optimize(1);
    java.detachFails = true;
    ledger.begin({});
    EXPECT_EQ(callBackOnThread(), 10011);
    expectEvents("attach | " + forwarded + "detach fails");
    EXPECT_EQ(callBackOnThread(), 0);
    expectEvents("");
    sync(&java.env);
}

TEST_F(Callbacks, ReportAFailureThatCameUpMeanwhile) {
    optimize(1);
    java.attachFails = true;
    java.onUpcall = [this] { EXPECT_EQ(callBackOnThread(), 0); };
    ledger.begin({});
    EXPECT_EQ(callBack(), 10011);
    expectEvents(forwarded + "attach fails");
    sync(&java.env);
}

TEST_F(Callbacks, WithoutARecordDoNothing) {
    optimize(1);
    setLog(1);
    ledger.begin({});
    EXPECT_EQ(solver.callback(handle<KVXmodel>(1), nullptr, 5, nullptr), 0);
    EXPECT_EQ(solver.logCallback("line", nullptr), 0);
    expectEvents("");
    setLog(0);
    sync(&java.env);
}

TEST_F(Callbacks, StayWhileSyncIsRefused) {
    for (int last : {KVX_ERROR_IN_PROGRESS - 1, KVX_ERROR_IN_PROGRESS + 1}) {
        optimize(1);
        ledger.begin({0, 0, 1, KVX_ERROR_IN_PROGRESS});
        EXPECT_EQ(sync(&java.env), KVX_ERROR_IN_PROGRESS);
        expectEvents("KVXsync(h1) fails | " + error, {0, 0, 1, last});
        EXPECT_EQ(callBackOnThread(), 0);
        expectEvents("attach | " + forwarded + "detach", {0, 0, 1, last});
        EXPECT_EQ(sync(&java.env), last);
        expectEvents("KVXsync(h1) fails | " + error + removed);
    }
}

// A JNIEnv belongs to its thread: whoever releases the record uses his own.
TEST_F(Callbacks, AreReleasedOnTheThreadThatEndsThem) {
    optimize(1);
    setLog(1);
    ledger.events.clear();
    std::thread([this] {
        void *env = nullptr;
        java.vm.AttachCurrentThread(&env, nullptr);
        EXPECT_EQ(sync(static_cast<JNIEnv *>(env)), 0);
        EXPECT_EQ(setLog(0, static_cast<JNIEnv *>(env)), 0);
    }).join();
    expectEvents("attach | KVXsync(h1) | " + removed +
                 "KVXgetlogcallbackfuncenv(h1, null, &) | "
                 "KVXsetlogcallbackfuncenv(h1, null, null) | unglobal self | free b");
}

TEST_F(Callbacks, ForwardLogLines) {
    setLog(1);
    ledger.begin({});
    const std::string line =
        "new \"line\" | put \"line\" logmsg | drop \"line\" | call jniPrintLog | ";
    EXPECT_EQ(solver.logCallback("line", solver.logData), 0);
    expectEvents(line);
    std::thread([] { EXPECT_EQ(solver.logCallback("line", solver.logData), 0); }).join();
    expectEvents("attach | " + line + "detach");
    setLog(0);
}

// The old record goes only when the solver has let go of it.
TEST_F(Callbacks, ReplaceALogWithoutATimeOfNeither) {
    const std::string get = "KVXgetlogcallbackfuncenv(h1, null, &) | ";
    const std::string remove = "KVXsetlogcallbackfuncenv(h1, null, null) | ";
    auto bind = [](const std::string &record) {
        return "class self | " + record +
               "=malloc 80 | global self | vm | method jniPrintLog ()V | "
               "field logmsg Ljava/lang/String; | KVXsetlogcallbackfuncenv(h1, callback, " +
               record + ") ";
    };
    auto released = [](const std::string &record) {
        return "unglobal self | free " + record + " | ";
    };
    EXPECT_EQ(setLog(1), 0);
    EXPECT_EQ(setLog(1), 0);
    expectEvents(get + bind("a") + "| " + get + bind("b") + "| " + released("a"), {0, 0, 2, 77});
    // A failed installation takes the old record along.
    EXPECT_EQ(setLog(1), 77);
    expectEvents(get + bind("a") + "fails | " + remove + released("b") + released("a"));
    EXPECT_EQ(setLog(1), 0);
    expectEvents(get + bind("a"), {0, 0, 1, 77});
    // When the solver doesn't tell, the record installed is neither found nor released.
    void *lost = solver.logData;
    EXPECT_EQ(setLog(1), 77);
    expectEvents("KVXgetlogcallbackfuncenv(h1, null, &) fails | " + remove);
    solver.logData = lost;
    EXPECT_EQ(setLog(0), 0);
    expectEvents(get + remove + released("a"));
}

TEST_F(Callbacks, KeepTheLogThatTheSolverKeeps) {
    setLog(1);
    ledger.begin({});
    SOLVER_DOES(KVXsetlogcallbackfuncenv, [](auto, auto, auto) { return 77; });
    EXPECT_EQ(setLog(0), 77);
    expectEvents(
        "KVXgetlogcallbackfuncenv(h1, null, &) | KVXsetlogcallbackfuncenv(h1, null, null) | "
        "KVXsetlogcallbackfuncenv(h1, null, null)");
    EXPECT_EQ(solver.logCallback("line", solver.logData), 0);
    solver.hooks.erase("KVXsetlogcallbackfuncenv");
    EXPECT_EQ(setLog(0), 0);
}
} // namespace
