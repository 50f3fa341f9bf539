// Every case of the text files: its events as stated, and how the function behaves when each
// allocation, each text fetch and each solver call fails in turn, and without each of its texts.
#include "bridge_case.h"

#include <algorithm>

namespace {
using Events = std::vector<std::string>;

const std::vector<Case> &allCases() {
    static const std::vector<Case> cases = readCases(CASES_DIRECTORY);
    return cases;
}

std::string joined(const Events &events) {
    std::string text;
    for (const std::string &event : events)
        text += event + "\n";
    return text;
}

bool has(const Events &events, const std::string &event) {
    return std::find(events.begin(), events.end(), event) != events.end();
}

bool matches(const std::string &text, const char *pattern) {
    return testing::Matcher<std::string>(testing::MatchesRegex(pattern)).Matches(text);
}

bool isRunDriver(const std::string &function) {
    return matches(function, "jnioptimize|jnitune|jnicomputeIIS|sync");
}

const std::string emptyHandle = "set L1 0 [null]";

// After a failure only giving back may follow, and a run's error text.
void expectOnlyCleaningUp(const Case &which, Events events) {
    events.erase(std::remove(events.begin(), events.end(), emptyHandle), events.end());
    static const char *const cleaning = "(release|drop|free|unglobal|=) .*|KVXfree\\(.*\\)|"
                                        "KVXset(log)?callbackfunc(env)?\\(h1, null, null\\)";
    static const char *const errorText = "KVXgetmerrormsg\\(h1\\)|new \"text\"|store S1 0 \"text\"";
    auto failure = std::find_if(events.begin(), events.end(), [](const std::string &event) {
        return event.find(" fails") != std::string::npos;
    });
    for (auto event = failure + 1; event != events.end(); ++event)
        EXPECT_TRUE(matches(*event, cleaning) ||
                    (isRunDriver(which.function) && matches(*event, errorText)))
            << *event << " after a failure, in\n"
            << joined(events);
}

// The result that a failing call leads to; a handle or a text is null then.
std::string resultAfter(const Case &which, const Outcome &success, const Outcome &failure,
                        const std::string &status) {
    if (!matches(success.events.back(), "= [0-9]+"))
        return "= null";
    auto fails = [&](const std::string &call) {
        return std::any_of(failure.events.begin(), failure.events.end(), [&](const auto &event) {
            return event.rfind(call, 0) == 0 && event.find(" fails") != std::string::npos;
        });
    };
    if (fails("KVXgetcbwhatinfo"))
        return "= 10003";
    if (isRunDriver(which.function) && fails("KVXsetcallbackfunc("))
        return "= 0";
    return "= " + status;
}

class Bridge : public testing::TestWithParam<Case> {
  protected:
    // Lets the n-th of something fail, for every n there is.
    void failEach(int Plan::*what, const std::string &status) {
        for (int n = 1;; ++n) {
            Plan plan;
            plan.*what = n;
            Outcome outcome = run(GetParam(), plan);
            if (!outcome.failed)
                return;
            EXPECT_EQ(outcome.events.back(), resultAfter(GetParam(), success, outcome, status))
                << joined(outcome.events);
            expectOnlyCleaningUp(GetParam(), outcome.events);
            // A handle slot is written whenever the solver was called, whatever came of it.
            bool handed = what == &Plan::solverCall && has(success.events, "set L1 0 [new]");
            EXPECT_EQ(has(outcome.events, emptyHandle), handed) << joined(outcome.events);
        }
    }

    void leaveOutEachText() {
        static const char *const optional =
            "loadenv|newmodel|loadmodel|addqconstr|setobjectiven|addgenconstr.*";
        for (int k = 1; k <= success.texts; ++k) {
            Case without = GetParam();
            std::string text = "s" + std::to_string(k);
            if (!without.settings.insert({text, "null"}).second)
                continue;
            Outcome outcome = run(without, {});
            std::string shown = joined(outcome.events);
            EXPECT_EQ(shown.find("fetch " + text + "\n"), std::string::npos) << shown;
            if (matches(without.function, optional)) {
                EXPECT_EQ(outcome.events.back(), success.events.back()) << shown;
            } else if (without.function == "cbsetstrparam" && k == 2) {
                EXPECT_EQ(outcome.events, (Events{"fetch s1", "release s1", "= 10002"}));
            } else {
                EXPECT_EQ(outcome.events.size(), 1u) << shown;
                EXPECT_EQ(outcome.events[0], without.function == "message"     ? "= 0"
                                             : without.function == "readmodel" ? "= null"
                                                                               : "= 10002");
            }
        }
    }

    Outcome success;
};

TEST_P(Bridge, Events) {
    const Case &which = GetParam();
    success = run(which, {});
    EXPECT_EQ(joined(which.events), joined(success.events)) << which.function;
    for (const char *planned : {"malloc", "fetch", "solver", "missing", "novm", "noglobal"})
        if (which.settings.count(planned))
            return;
    failEach(&Plan::allocation, "10001");
    failEach(&Plan::fetch, "10001");
    failEach(&Plan::solverCall, "77");
    leaveOutEachText();
}

INSTANTIATE_TEST_SUITE_P(, Bridge, testing::ValuesIn(allCases()), [](const auto &info) {
    return info.param.place + "_" + info.param.function;
});

// Memory that isn't zero although it was asked for so is a programming error.
TEST(Guards, AbortWithTheirPlace) {
    Plan dirty;
    dirty.dirtyCalloc = true;
    for (const std::string guard : {"b fsolve", "b bsolve", "x binvcolj", "x binvrowi"}) {
        const std::string record = guard.substr(0, 1), function = guard.substr(2);
        EXPECT_DEATH(run({"", function, {}, {}}, dirty),
                     "^KORVassert '" + record +
                         "->ind == NULL' failed at src/jni/basis.cpp:[0-9]+ "
                         "func Java_com_korvex_KorvexJni_" +
                         function + "\n");
    }
}

TEST(Cases, CoverEveryExportedFunction) {
    std::set<std::string> left = exportedFunctions();
    EXPECT_EQ(left.size(), 155u);
    for (const Case &which : allCases())
        left.erase(which.function);
    EXPECT_EQ(left, std::set<std::string>());
}
} // namespace
