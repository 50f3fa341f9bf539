// Model and attribute files: what was written reads back the same; damage ends in a status and a
// text, and leaves everything as it was.
#include "solver_case.h"

#include <nlohmann/json.hpp>

#include <filesystem>

namespace {

const char *const sampleMps =
    "NAME the sample\nOBJSENSE\n    MAX\n"
    "ROWS\n N cost\n L less\n G more\n E same\n G twosides\n N free\n"
    "COLUMNS\n    x cost 0.1 less 1\n    x twosides 3.3333333333333335\n"
    "    M 'MARKER' 'INTORG'\n    i cost -2 more 1e-17\n    b same 123456789.12345679\n"
    "    n less 1\n    M 'MARKER' 'INTEND'\n    s less 2\n    unused cost 0\n"
    "RHS\n    RHS cost -7.5 less 10\n    RHS more -0.1 same 4\n    RHS twosides -0.3\n"
    "RANGES\n    RNG twosides 0.7\n"
    "BOUNDS\n FR BND x\n UP BND i 1e9\n BV BND b\n SC BND n 9\n LO BND s 2\n SC BND s 1e100\n"
    " UP BND unused -1\n"
    "ENDATA\n";

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

    static void write(const Model &model, const std::string &name, int expected = KVX_OK) {
        EXPECT_EQ(KVXwrite(model.get(), temporary(name).c_str()), expected)
            << KVXgetmerrormsg(model.get());
    }
};

// Via every ending, a model comes back the same.
TEST_F(Files, ModelsComeBackTheSame) {
    Model model = read("sample.mps", sampleMps);
    ASSERT_TRUE(model) << message;
    EXPECT_EQ(dblAttrs(model, "LB", 6), (Vector{-inf, 0, 0, 0, 2, -inf}));
    EXPECT_EQ(dblAttrs(model, "UB", 6), (Vector{inf, 1e9, 1, 9, inf, -1}));
    char types[6];
    MUST(model, KVXgetcharattrarray(model.get(), "VarType", 0, 6, types));
    EXPECT_EQ(std::string(types, 6), "CIBNSC");
    EXPECT_EQ(dblAttrs(model, "RowLower", 5), (Vector{-inf, -0.1, 4, -0.3, -inf}));
    EXPECT_EQ(dblAttrs(model, "RowUpper", 5), (Vector{10, inf, 4, -0.3 + 0.7, inf}));
    EXPECT_EQ(dblAttr(model, "ObjCon"), 7.5);
    for (const char *name : {"a.mps", "a.mps.gz", "a.MPS.bz2", "a.lp", "a.lp.gz", "a.lp.bz2"}) {
        write(model, name);
        Model again = read(name);
        ASSERT_TRUE(again) << name << ": " << message;
        EXPECT_EQ(described(again.get()), described(model.get())) << name;
        EXPECT_EQ(dblAttr(again, "ObjCon"), 7.5) << name;
    }
    EXPECT_NE(contents(temporary("a.mps.gz")), contents(temporary("a.mps")));
    const Vector weights = {1, 2};
    const int type = KVX_SOS_TYPE1, begin = 0, members[] = {0, 4};
    MUST(model, KVXaddsos(model.get(), 1, 2, &type, &begin, members, weights.data()));
    write(model, "a.mps", KVX_ERROR_NOT_SUPPORTED);
}

TEST_F(Files, DamagedFilesAreRefusedWithFileAndLine) {
    const struct {
        const char *name, *text, *message;
    } damaged[] = {
        {"a.mps", "", "line 0: the file ends without ENDATA"},
        {"a.mps", "NAME\nROWS\n X c\nENDATA\n", "line 3: 'X' is no sense of a row"},
        {"a.mps", "NAME\nROWS\n L c\n G c\nENDATA\n", "line 4: 'c' is there twice"},
        {"a.mps", "ROWS\n L c\nCOLUMNS\n x c 1e999\nENDATA\n", "line 4: '1e999' is not a number"},
        {"a.mps", "ROWS\n L c\nCOLUMNS\n x c 1 c 2\nENDATA\n", "line 4: 'c' is there twice"},
        {"a.mps", "ROWS\n L c\nCOLUMNS\n x d 1\nENDATA\n", "line 4: 'd' is unknown"},
        {"a.mps", "ROWS\n L c\nSOS\n S1 SOS s\nENDATA\n", "line 4: 'SOS' is no section"},
        {"a.mps", "ROWS\n L c\nCOLUMNS\n x c 1\nBOUNDS\n UP B x nan\nENDATA\n", "'nan'"},
        {"a.mps", "ROWS\n L c\nCOLUMNS\n x c 1\nBOUNDS\n LO B x 3\n UP B x 2\nENDATA\n",
         "line 8: variable 0: the bounds 3 and 2 contradict each other"},
        {"a.mps", "\177ELF\x02\x01\n\xff\xfe", "isn't UTF-8 text"},
        {"a.mps", "ROWS\n L c\nCOLUMNS\n x c inf\nENDATA\n", "must be a finite number"},
        {"a.lp", "", "line 0: '' is no section that can stand here"},
        {"a.lp", "min\n x\nst\n x <> 2\nend\n", "line 4: '<>' doesn't go on"},
        {"a.lp", "min\n x\nst\n c: x + >= 2\nend\n", "line 4: '>=' stands where a variable"},
        {"a.lp", "min\n x\nst\n c: x >= y\nend\n", "line 4: 'y' is not a number"},
        {"a.lp", "min\n x\nst\n c: x >= 2\n", "line 4: '' stands where a variable"},
        {"a.lp", "min\n x\nst\nbounds\n y <= 2\nend\n", "line 5: '2' ends what is no bound"},
        {"a.lp", "min\n x\nst\nsos\n s: S1 :: x:1\nend\n", "line 5: 's' doesn't go on"},
        {"a.lp", "min\n x\nmin\n x\nend\n", "line 3: 'min' is no section"},
        {"a.mps.gz", "NAME\nROWS\n", "not packed as its name says"},
        {"a.mps.bz2", "", "damaged or cut off"},
        {"a.txt", "", "the name doesn't end like that of such a file"},
    };
    for (auto &[name, text, expected] : damaged) {
        EXPECT_FALSE(read(name, text)) << text;
        EXPECT_NE(message.find(temporary(name)), std::string::npos) << message;
        EXPECT_NE(message.find(expected), std::string::npos) << message << "\nnot " << expected;
    }
    std::filesystem::create_directory(temporary("folder.lp"));
    for (auto [name, expected] :
         {std::pair{"absent.mps", "No such file"}, {"folder.lp", "direct"}}) {
        EXPECT_FALSE(read(name));
        EXPECT_NE(message.find(expected), std::string::npos) << message;
    }
    for (const char *name : {"whole.mps.bz2", "whole.mps.gz"}) {
        write(read("a.mps", sampleMps), name);
        std::string whole = contents(temporary(name));
        for (size_t length = 0; length < whole.size(); length += 7)
            EXPECT_FALSE(read(name, whole.substr(0, length))) << name << " " << length;
    }
}

TEST_F(Files, NamesThatAFormatCantHoldAreRefused) {
    Model model = read("a.lp", "max\n xy\nst\n row: xy <= 1\nend\n");
    ASSERT_TRUE(model) << message;
    for (auto [name, file] : {std::pair{"x y", "r.mps"},
                              {"x y", "r.lp"},
                              {"3x", "r.lp"},
                              {"End", "r.lp"},
                              {"a:b", "r.lp"},
                              {"inf", "r.lp"},
                              {" x", "r.mst"},
                              {"#x", "r.mst"}}) {
        EXPECT_EQ(KVXsetstrattrelement(model.get(), "VarName", 0, name), 0);
        write(model, file, KVX_ERROR_FILE_WRITE);
        EXPECT_NE(std::string(KVXgetmerrormsg(model.get())).find(name), std::string::npos) << name;
        EXPECT_FALSE(std::filesystem::exists(temporary(file)));
    }
    const std::string longName(5000, 'n');
    EXPECT_EQ(KVXsetstrattrelement(model.get(), "VarName", 0, longName.c_str()), 0);
    for (const char *name : {"long.mps", "long.lp"}) {
        write(model, name);
        EXPECT_EQ(described(model.get()), described(read(name).get()));
    }
    write(model, "a.txt", KVX_ERROR_FILE_WRITE);
    EXPECT_EQ(KVXwrite(model.get(), "/nowhere/a.mps"), KVX_ERROR_FILE_WRITE);
}

TEST_F(Files, AttributeFilesAreReadWholeOrNotAtAll) {
    Model model = read("sample.mps", sampleMps);
    ASSERT_TRUE(model) << message;
    const Vector start = {0.1, KVX_UNDEFINED, -1e-300, 3, KVX_UNDEFINED, 1e17 / 3};
    const std::vector<int> vars = {0, -2, -1, 0, -1, -2}, rows = {-1, 0, 0, -2, 0};
    EXPECT_EQ(KVXsetdblattrarray(model.get(), "Start", 0, 6, start.data()), 0);
    EXPECT_EQ(KVXsetintattrarray(model.get(), "VarBasis", 0, 6, vars.data()), 0);
    EXPECT_EQ(KVXsetintattrarray(model.get(), "ConstrBasis", 0, 5, rows.data()), 0);
    EXPECT_EQ(KVXsetparam(KVXgetenv(model.get()), "MIPGap", "0.123"), 0);
    Model other = read("sample.mps");
    for (const char *name : {"a.mst.gz", "a.bas", "a.prm.bz2"}) {
        write(model, name);
        MUST(other, KVXread(other.get(), temporary(name).c_str()));
    }
    for (const char *name : {"a.sol", "a.json"})
        write(model, name, KVX_ERROR_DATA_NOT_AVAILABLE);
    for (auto [name, text] : {std::pair{"b.mst", "# comment\nx 7\ny 2\n"},
                              {"b.sol", "x 7\ni 7x\n"},
                              {"b.bas", "NAME\n UL x\n XU i nowhere\nENDATA\n"},
                              {"c.bas", "NAME\n UL x\n"},
                              {"b.prm", "MIPGap 0.5\nNoSuch 1\n"}}) {
        store(temporary(name), text);
        EXPECT_NE(KVXread(other.get(), temporary(name).c_str()), 0) << name;
        std::string problem = KVXgetmerrormsg(other.get());
        EXPECT_NE(problem.find(temporary(name) + ", line "), std::string::npos) << problem;
    }
    std::vector<int> gotVars(6), gotRows(5);
    MUST(other, KVXgetintattrarray(other.get(), "VarBasis", 0, 6, gotVars.data()));
    MUST(other, KVXgetintattrarray(other.get(), "ConstrBasis", 0, 5, gotRows.data()));
    double gap = 0;
    EXPECT_EQ(KVXgetdblparam(KVXgetenv(other.get()), "MIPGap", &gap), 0);
    EXPECT_EQ(std::tie(start, vars, rows),
              std::make_tuple(dblAttrs(other, "Start", 6), gotVars, gotRows));
    EXPECT_EQ(gap, 0.123);
}

// The result of a run, as the parameter "ResultFile" asks for it and on request.
TEST_F(Files, ResultsAreWritten) {
    Model model = read("a.lp", "max\n 2 x + y + 0.5 \"q\nst\n c: x + y <= 4\n d: x - \"q >= 1\n"
                               "bounds\n x <= 3\n \"q <= 0\nend\n");
    ASSERT_TRUE(model) << message;
    KVXenv *own = KVXgetenv(model.get());
    EXPECT_EQ(KVXsetstrparam(own, "ResultFile", temporary("r.json").c_str()), 0);
    auto result = [&] {
        solved(model);
        return nlohmann::json::parse(contents(temporary("r.json")));
    };
    auto json = result();
    EXPECT_EQ(json["status"], "optimal");
    EXPECT_EQ(json["objective"], 7);
    EXPECT_EQ(json["gap"], 0);
    EXPECT_EQ(json["variables"].dump(), R"([{"name":"x","value":3.0},{"name":"y","value":1.0}])");
    write(model, "r.sol.gz");
    EXPECT_EQ(KVXread(model.get(), temporary("r.sol.gz").c_str()), 0);
    EXPECT_EQ(dblAttrs(model, "Start", 3), (Vector{3, 1, 0}));

    EXPECT_EQ(KVXsetdblattrelement(model.get(), "LB", 0, 3), 0);
    EXPECT_EQ(KVXsetdblattrelement(model.get(), "RHS", 0, 2), 0);
    json = result();
    EXPECT_EQ(json["status"], "infeasible");
    EXPECT_TRUE(json["objective"].is_null());
    EXPECT_EQ(KVXsetstrparam(own, "ResultFile", "/nowhere/r.sol"), 0);
    MUST(model, KVXoptimize(model.get())) << "there is no solution to write";
}

// Whatever is done to a file, reading it ends in a model or in a text.
TEST_F(Files, NoDamageCrashesTheReaders) {
    write(read("sample.mps", sampleMps), "sample.lp");
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

TEST(FileNames, EndingsSayWhatAFileIs) {
    const std::tuple<const char *, int, int> names[] = {
        {"a.mps", 1, 0}, {"b.LP.gz", 2, 0}, {"a.sol", 0, 1},  {"a.mst.gz", 0, 2},
        {"a.bas", 0, 3}, {"a.prm", 0, 4},   {"a.json", 0, 0}, {"a.mps.zip", 0, 0},
        {"mps", 0, 0},   {nullptr, 0, 0}};
    for (auto [name, model, attribute] : names)
        EXPECT_TRUE(KVXismodelfile(name) == model && KVXisattrfile(name) == attribute) << name;
}

} // namespace
