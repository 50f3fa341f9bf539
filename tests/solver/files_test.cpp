// Model files: what was written reads back the same; damage ends in a status and a text.
#include "solver_case.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <tuple>

namespace {

struct Files : testing::Test {
    Env env;
    std::string message;

    // Null, and the error text in message, when the file can't be read.
    Model read(const std::string &name) {
        KVXmodel *model = nullptr;
        int status = KVXreadmodel(env, temporary(name).c_str(), &model);
        message = KVXgeterrormsg(env);
        EXPECT_EQ(status, model ? KVX_OK : KVX_ERROR_FILE_READ) << message;
        return Model(model);
    }

    Model read(const std::string &name, const std::string &text) {
        store(temporary(name), text);
        return read(name);
    }

    static std::string data(const Model &model) {
        const char *name = nullptr;
        EXPECT_EQ(KVX_OK, KVXgetstrattr(model.get(), "ModelName", &name));
        return described(model.get()) + name;
    }

    static void write(const Model &model, const std::string &name, int expected = KVX_OK) {
        EXPECT_EQ(KVXwrite(model.get(), temporary(name).c_str()), expected)
            << KVXgetmerrormsg(model.get());
    }
};

// Via every ending, a model comes back the same.
TEST_F(Files, ModelsComeBackTheSame) {
    Model model = read("sample.mps", contents(caseFile("sample.mps")));
    ASSERT_TRUE(model) << message;
    EXPECT_EQ(dblAttrs(model, "LB", 6), (Vector{-inf, 0, 0, 0, 2, -inf}));
    EXPECT_EQ(dblAttrs(model, "UB", 6), (Vector{inf, 1e9, 1, 9, inf, -1}));
    char types[6];
    MUST(model, KVXgetcharattrarray(model.get(), "VarType", 0, 6, types));
    EXPECT_EQ(std::string(types, 6), "CIBNSC");
    EXPECT_EQ(dblAttrs(model, "RowLower", 5), (Vector{-inf, -0.1, 4, -0.3, -inf}));
    EXPECT_EQ(dblAttrs(model, "RowUpper", 5), (Vector{10, inf, 4, 0.4, inf}));
    EXPECT_EQ(dblAttr(model, "ObjCon"), 7.5);
    for (const char *name : {"a.mps", "a.mps.gz", "a.MPS.bz2", "a.lp", "a.lp.gz", "a.lp.bz2"}) {
        write(model, name);
        Model again = read(name);
        ASSERT_TRUE(again) << name << ": " << message;
        EXPECT_EQ(data(again), data(model)) << name << contents(temporary(name));
    }
    MUST(model, KVXaddgenconstrAbs(model.get(), nullptr, 0, 1));
    write(model, "a.mps", KVX_ERROR_NOT_SUPPORTED);
}

// Numbers of all magnitudes, with all digits; bounds, sides, types and sets of all shapes.
TEST_F(Files, WhatIsWrittenReadsBackExactly) {
    Random random(11);
    auto number = [&] {
        const double special[] = {0, 1, -1, 0.1, -0.3, 0.7, 2.5, 5e-324, -1e99};
        const int kind = random(0, 24);
        return kind < 9
                   ? special[kind]
                   : std::ldexp(random(-1073741823, 1073741823) * 1.2345678901, random(-60, 40));
    };
    auto spread = [&](double &lower, double &upper) {
        const double a = number(), b = random(0, 3) ? number() : a;
        lower = lower <= -inf ? lower : std::min(a, b);
        upper = upper >= inf ? upper : std::max(a, b);
    };
    for (int k = 0; k < 300; k++) {
        Data made = randomData(random, 6, 5, "CCIIBSN");
        for (size_t j = 0; j < 6; j++) {
            made.obj[j] = random(0, 2) ? number() : 0;
            spread(made.lb[j], made.ub[j]);
            if (made.types[j] == KVX_BINARY || random(0, 3) == 0) {
                made.lb[j] = random(0, 2) * 0.25;
                made.ub[j] = random(1, 2) * 0.5;
            }
        }
        for (Row &row : made.rows) {
            spread(row.lower, row.upper);
            const bool isEmpty = random(0, 9) == 0;
            for (double &value : row.val)
                value = isEmpty || random(0, 1) ? 0 : number();
        }
        made.constant = random(0, 1) ? number() : 0;
        Model model = made.build(env);
        const int types[] = {KVX_SOS_TYPE2, KVX_SOS_TYPE1}, begins[] = {0, random(0, 5)};
        const int members[] = {3, 0, 5, 2, 1}, sets = random(0, 2);
        const double weights[] = {1, -2.5, number(), number(), 7};
        MUST(model, KVXaddsos(model.get(), sets, sets ? 5 : 0, types, begins, members, weights));
        const int rows[] = {random(0, 5), 1, 5, 3}, columns[] = {random(0, 5), 2, 4, 3};
        const int linear[] = {0, 2, 3, 5};
        const Vector factors = {number(), number(), number(), 1e200};
        const int products = random(0, 4);
        MUST(model, KVXaddqpterms(model.get(), products, rows, columns, factors.data()));
        for (int q = random(0, 2); q > 0; q--)
            MUST(model, KVXaddqconstr(model.get(), random(0, 4), linear, factors.data(), products,
                                      columns, rows, factors.data(), "<>="[random(0, 2)],
                                      std::min(number(), 2.5), q == 1 ? "a" : nullptr));
        const char *names[] = {"", "a", "two words", "is Free", "FREE"};
        MUST(model, KVXsetstrattr(model.get(), "ModelName", names[random(0, 4)]));
        for (const char *name : {"r.mps", "r.lp"}) {
            write(model, name);
            Model again = read(name);
            ASSERT_TRUE(again) << message << contents(temporary(name));
            ASSERT_EQ(data(again), data(model)) << contents(temporary(name));
        }
    }
}

// The same models as other programs write them.
TEST_F(Files, OtherSpellingsReadTheSame) {
    std::string expected;
    for (const auto &[name, text] : readCases("spellings.txt")) {
        const bool isPlain = name.rfind("plain", 0) == 0;
        std::string windows;
        for (char c : text)
            windows += c == '\n' ? "\r\n" : std::string(1, c);
        for (const std::string &spelling : {text, windows, text.substr(0, text.size() - 1)}) {
            Model model = read(name, spelling);
            ASSERT_TRUE(model) << message << spelling;
            if (isPlain)
                expected = data(model);
            if (isPlain && name == "plain.mps")
                std::replace(expected.begin(), expected.end(), '_', ' ');
            else
                EXPECT_EQ(data(model), expected) << spelling;
        }
    }
}

TEST_F(Files, DamagedFilesAreRefusedWithFileAndLine) {
    auto expectRefusal = [&](const std::string &name, const char *text, const char *expected) {
        EXPECT_FALSE(text ? read(name, text) : read(name)) << text;
        EXPECT_NE(message.find(temporary(name)), std::string::npos) << message;
        EXPECT_NE(message.find(expected), std::string::npos) << message << "\nnot " << expected;
    };
    for (const auto &[expected, text] : readCases("damaged.txt"))
        expectRefusal(text.rfind("min", 0) == 0 ? "a.lp" : "a.mps", text.c_str(), expected.c_str());
    std::filesystem::create_directory(temporary("folder.lp"));
    for (auto [name, text, expected] :
         {std::tuple{"a.mps", "", "line 0: the file ends where ENDATA is expected"},
          {"a.lp", "", "line 0: the file ends where minimize or maximize is"},
          {"a.mps.gz", "NAME\nROWS\n", "not packed as its name says"},
          {"a.mps.bz2", "", "damaged or cut off"},
          {"a.mps", "\177ELF\x02\x01\n\xff\xfe", "isn't UTF-8 text"},
          {"a.txt", "", "the name doesn't end like that of such a file"},
          {"absent.mps", nullptr, "No such file"},
          {"folder.lp", nullptr, "direct"}})
        expectRefusal(name, text, expected);
    for (const char *name : {"whole.mps.bz2", "whole.mps.gz"}) {
        write(read("a.mps", contents(caseFile("sample.mps"))), name);
        std::string whole = contents(temporary(name));
        for (size_t length = 0; length < whole.size(); length += 7)
            EXPECT_FALSE(read(name, whole.substr(0, length))) << name << " " << length;
        EXPECT_FALSE(read(name, whole + whole)) << name;
    }
}

TEST_F(Files, NamesThatAFormatCantHoldAreReplaced) {
    Model model = read("a.lp", "max\n a + b + c + d\nst\n r: a <= 1\n s: b <= 1\nend\n");
    ASSERT_TRUE(model) << message;
    std::string log;
    auto keep = [](const char *line, void *text) {
        *static_cast<std::string *>(text) = line;
        return 0;
    };
    EXPECT_EQ(KVXsetlogcallbackfuncenv(env, keep, &log), 0);
    const std::string many(300, 'n'), other(5000, 'n');
    using Names = std::vector<std::string>; // of the variables, then of the constraints
    const struct {
        Names given, inMps, inLp;
        const char *log;
    } cases[] = {
        {{"x y", "3x", "End", "inf", "$", "a:b"},
         {"x0", "3x", "End", "inf", "c0", "a:b"},
         {"x0", "x1", "x2", "x3", "$", "c1"},
         "a.lp: 5 names can't be written"},
        {{"x3", "'", "\xc3\xa4", "x3", "c1", "free"},
         {"x3", "x1", "\xc3\xa4", "x3_", "c1", "free"},
         {"x3", "'", "x2", "x3_", "c1", "c1_"},
         "a.lp: 3 names can't be written"},
        {{many, other, "e", "E1", "st.", "_"},
         {many, other, "e", "E1", "st.", "_"},
         {"x0", "x1", "e", "E1", "c0", "_"},
         "a.lp: 3 names can't be written"},
    };
    for (const auto &[given, inMps, inLp, line] : cases) {
        for (int k = 0; k < 6; k++)
            MUST(model, KVXsetstrattrelement(model.get(), k < 4 ? "VarName" : "ConstrName", k % 4,
                                             given[static_cast<size_t>(k)].c_str()));
        for (const auto &[name, expected] : {std::pair{"a.mps", inMps}, {"a.lp", inLp}}) {
            write(model, name);
            Model again = read(name);
            ASSERT_TRUE(again) << message << contents(temporary(name));
            const char *got[6];
            MUST(again, KVXgetstrattrarray(again.get(), "VarName", 0, 4, got));
            MUST(again, KVXgetstrattrarray(again.get(), "ConstrName", 0, 2, got + 4));
            EXPECT_EQ(Names(got, got + 6), expected);
        }
        EXPECT_NE(log.find(line), std::string::npos) << log;
    }
    EXPECT_EQ(KVXsetlogcallbackfuncenv(env, nullptr, nullptr), 0);
    write(model, "a.txt", KVX_ERROR_FILE_WRITE);
    EXPECT_EQ(KVXwrite(model.get(), "/nowhere/a.mps"), KVX_ERROR_FILE_WRITE);
}

// Whatever is done to a file, reading it ends in a model or in a text.
TEST_F(Files, NoDamageCrashesTheReaders) {
    write(read("sample.mps", contents(caseFile("sample.mps"))), "sample.lp");
    Random random(7);
    for (const char *name : {"sample.mps", "sample.lp"}) {
        const std::string whole = contents(temporary(name));
        auto below = [&](size_t limit) { return random.engine() % limit; };
        for (int k = 0; k < 1500; k++) {
            const size_t place = below(whole.size()), from = below(whole.size());
            std::string text = whole.substr(0, place);
            switch (k % 4) {
            case 0:
                break;
            case 1:
                text += static_cast<char>(random.engine()) + whole.substr(place + 1);
                break;
            default: // leaves something out or repeats something
                text += whole.substr(from, below(60)) + whole.substr(k % 4 == 2 ? place : from);
            }
            read(std::string("damaged-") + name, text);
        }
    }
}

} // namespace
