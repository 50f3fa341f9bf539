// Environments, parameters and the log.
#include "solver_case.h"

#include <atomic>
#include <cmath>
#include <thread>

namespace {

TEST(Env, ExplainsWhyItRefuses) {
    KVXenv *env = nullptr;
    EXPECT_EQ(KVX_ERROR_VERSION, Env::load(env, 14, KVX_LOADENV_KEY));
    KVXfreeenv(env);
    EXPECT_EQ(KVX_ERROR_VERSION, Env::load(env, 12, KVX_LOADENV_KEY));
    EXPECT_STREQ("the caller is version 12.0.0, the solver library 13.0.3", KVXgeterrormsg(env));
    KVXfreeenv(env);
    EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, Env::load(env, 13, 1));
    KVXmodel *model = nullptr;
    EXPECT_EQ(KVX_ERROR_NOT_STARTED,
              KVXnewmodel(env, &model, nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(nullptr, model);
    KVXfreeenv(env);
}

TEST(Params, KeepTheirRangesAndSurviveAFile) {
    Env env;
    EXPECT_EQ(KVX_ERROR_UNKNOWN_PARAMETER, KVXsetintparam(env, "Foo", 1));
    EXPECT_EQ(KVX_ERROR_UNKNOWN_PARAMETER, KVXsetintparam(env, "TimeLimit", 1));
    EXPECT_EQ(KVX_ERROR_VALUE_OUT_OF_RANGE, KVXsetintparam(env, "Method", 3));
    EXPECT_STREQ("parameter Method must be between -1 and 2, not 3", KVXgeterrormsg(env));
    EXPECT_EQ(KVX_ERROR_VALUE_OUT_OF_RANGE, KVXsetdblparam(env, "MIPGap", std::nan("")));
    EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, KVXsetparam(env, "Threads", "2x"));
    EXPECT_EQ(KVX_ERROR_FILE_WRITE, KVXsetstrparam(env, "LogFile", "/nowhere/log"));

    const std::string file = temporary("params.prm"),
                      text = "rrrrrr\xc3\xa4" + std::string(992, 'r');
    double gap = 0;
    int console = 1;
    EXPECT_EQ(KVX_OK, KVXgetdblparam(env, "MIPGap", &gap));
    EXPECT_EQ(1e-4, gap);
    EXPECT_EQ(KVX_OK, KVXgetintparam(env, "LogToConsole", &console));
    EXPECT_EQ(0, console); // as the environment was loaded
    ASSERT_EQ(KVX_OK, KVXsetparam(env, "mipgap", "1.5e-7"));
    ASSERT_EQ(KVX_OK, KVXsetstrparam(env, "ResultFile", text.c_str()));
    ASSERT_EQ(KVX_OK, KVXwriteparams(env, file.c_str()));
    ASSERT_EQ(KVX_OK, KVXresetparams(env));
    ASSERT_EQ(KVX_OK, KVXreadparams(env, file.c_str()));
    char buffer[1001], little[8];
    int length = 0;
    EXPECT_EQ(KVX_OK, KVXgetdblparam(env, "MIPGap", &gap));
    EXPECT_EQ(1.5e-7, gap);
    EXPECT_EQ(KVX_OK, KVXgetlongstrparam(env, "ResultFile", little, 8, &length));
    EXPECT_STREQ("rrrrrr", little); // not half a character
    EXPECT_EQ(1000, length);
    EXPECT_EQ(KVX_OK, KVXgetlongstrparam(env, "ResultFile", buffer, 1001, &length));
    EXPECT_EQ(text, buffer);

    store(file, "# settings\n\nMIPGap 0.5\r\nThreads -1\n");
    EXPECT_EQ(KVX_ERROR_VALUE_OUT_OF_RANGE, KVXreadparams(env, file.c_str()));
    EXPECT_EQ(file + ", line 4: parameter Threads must be between 0 and 1024, not -1",
              KVXgeterrormsg(env));
    EXPECT_EQ(KVX_OK, KVXgetdblparam(env, "MIPGap", &gap));
    EXPECT_EQ(1.5e-7, gap); // all or nothing
}

struct Listener {
    KVXenv *env;
    std::string lines;
    std::atomic<int> inside{0};
    bool overlapped = false, removesItself = false;

    static int hear(const char *line, void *userdata) {
        auto &self = *static_cast<Listener *>(userdata);
        self.overlapped |= ++self.inside != 1;
        self.lines += std::string(line) + '|';
        if (self.lines.size() == 2)
            KVXmsg(self.env, "nested\n");
        if (self.removesItself)
            KVXsetlogcallbackfuncenv(self.env, nullptr, nullptr);
        std::this_thread::yield();
        self.inside--;
        return 0;
    }
};

TEST(Log, DeliversWholeLinesOfValidTextOneAtATime) {
    Env env;
    const std::string file = temporary("solver.log");
    ASSERT_EQ(KVX_OK, KVXsetstrparam(env, "LogFile", file.c_str()));
    Listener listener{env, {}};
    ASSERT_EQ(KVX_OK, KVXsetlogcallbackfuncenv(env, Listener::hear, &listener));
    // An unfinished line, what isn't UTF-8 or an encoded surrogate, characters of two and three
    // bytes.
    for (const char *text :
         {"a\n", "100%d", " b\n\xff", "\n\xed\xa0\xbd\n\xc3\xa4\xe4\xb8\xad\nrest"})
        KVXmsg(env, text);
    const std::string expected = "a|nested|100%d b|?|???|\xc3\xa4\xe4\xb8\xad|";
    EXPECT_EQ(expected, listener.lines);
    ASSERT_EQ(KVX_OK, KVXsetstrparam(env, "LogFile", ""));
    EXPECT_EQ(expected.size(), contents(file).size());
    {
        Env ending;
        Listener last{ending, "xx"};
        ASSERT_EQ(KVX_OK, KVXsetstrparam(ending, "LogFile", file.c_str()));
        KVXsetlogcallbackfuncenv(ending, Listener::hear, &last);
        KVXmsg(ending, "unfinished");
        solved(fromText(ending, "min 0 x"));
        EXPECT_EQ(0U, last.lines.find("xxunfinished|Optimizing"));
        EXPECT_NE(std::string::npos, contents(file).find("Optimizing"));
        last.lines = "xx";
        KVXmsg(ending, "unfinished");
        KVXfreeenv(std::exchange(ending.env, nullptr));
        EXPECT_EQ("xxunfinished|", last.lines);
    }
    listener.removesItself = true;
    KVXmsg(env, "\nunheard\n");
    EXPECT_EQ(expected + "rest|", listener.lines);
    EXPECT_FALSE(listener.overlapped);
}

TEST(Log, LetsGoOfTheFormerCallback) {
    Env env;
    std::atomic<bool> ended{false};
    auto write = [&] {
        while (!ended)
            KVXmsg(env, "line\n");
    };
    std::thread first(write), second(write);
    for (int round = 0; round < 200; round++) {
        Listener listener{env, "xxx"};
        EXPECT_EQ(KVX_OK, KVXsetlogcallbackfuncenv(env, Listener::hear, &listener));
        std::this_thread::yield();
        EXPECT_EQ(KVX_OK, KVXsetlogcallbackfuncenv(env, nullptr, nullptr));
        EXPECT_EQ(0, listener.inside); // and the sanitizer watches its memory from now on
        EXPECT_FALSE(listener.overlapped);
    }
    ended = true;
    first.join();
    second.join();
}

} // namespace
