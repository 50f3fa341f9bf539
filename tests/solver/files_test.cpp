// Model and attribute files: what was written reads back the same; damage ends in a status and a
// text, and leaves everything as it was.
#include "solver_case.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

namespace {

const char *const sampleMps = "NAME the sample\n"
                              "OBJSENSE\n    MAX\n"
                              "ROWS\n N cost\n L less\n G more\n E same\n G twosides\n N free\n"
                              "COLUMNS\n"
                              "    x cost 0.1 less 1\n    x twosides 3.3333333333333335\n"
                              "    M 'MARKER' 'INTORG'\n"
                              "    i cost -2 more 1e-17\n    b same 123456789.12345679\n"
                              "    n less 1\n"
                              "    M 'MARKER' 'INTEND'\n"
                              "    s less 2\n    unused cost 0\n"
                              "RHS\n    RHS cost -7.5 less 10\n    RHS more -0.1 same 4\n"
                              "    RHS twosides -0.3\n"
                              "RANGES\n    RNG twosides 0.7\n"
                              "BOUNDS\n FR BND x\n UP BND i 1e9\n BV BND b\n SC BND n 9\n"
                              " LO BND s 2\n SC BND s 1e100\n UP BND unused -1\n"
                              "ENDATA\n";

class Files : public testing::Test {
  protected:
    Files() { EXPECT_EQ(mkdir(path("").c_str(), 0700), 0); }
    ~Files() override { std::filesystem::remove_all(path("")); }

    static std::string path(const std::string &name) {
        return testing::TempDir() + "korvex-files-" + std::to_string(getpid()) + "/" + name;
    }

    static std::string contents(const std::string &name) {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static void store(const std::string &name, const std::string &text) {
        std::ofstream(path(name), std::ios::binary) << text;
    }

    // Null, and the error text in message, when the file can't be read.
    Model read(const std::string &name) {
        KVXmodel *model = nullptr;
        int status = KVXreadmodel(env, path(name).c_str(), &model);
        message = KVXgeterrormsg(env);
        EXPECT_EQ(status, model ? KVX_OK : KVX_ERROR_FILE_READ) << message;
        return Model(model);
    }

    Model read(const std::string &name, const std::string &text) {
        store(name, text);
        return read(name);
    }

    static void write(const Model &model, const std::string &name, int expected = KVX_OK) {
        EXPECT_EQ(KVXwrite(model.get(), path(name).c_str()), expected)
            << KVXgetmerrormsg(model.get());
    }

    Env env;
    std::string message;
};

// Via every ending, a model comes back the same.
TEST_F(Files, modelsComeBackTheSame) {
    Model model = read("sample.mps", sampleMps);
    ASSERT_TRUE(model) << message;
    const double lower[] = {-1e100, 0, 0, 0, 2, -1e100}, upper[] = {1e100, 1e9, 1, 9, 1e100, -1};
    double got[6];
    char types[6];
    MUST(model, KVXgetdblattrarray(model.get(), "LB", 0, 6, got));
    EXPECT_TRUE(std::equal(lower, lower + 6, got));
    MUST(model, KVXgetdblattrarray(model.get(), "UB", 0, 6, got));
    EXPECT_TRUE(std::equal(upper, upper + 6, got));
    MUST(model, KVXgetcharattrarray(model.get(), "VarType", 0, 6, types));
    EXPECT_EQ(std::string(types, 6), "CIBNSC");
    MUST(model, KVXgetdblattrelement(model.get(), "RowUpper", 3, got));
    EXPECT_EQ(got[0], -0.3 + 0.7);
    EXPECT_EQ(dblAttr(model, "ObjCon"), 7.5);
    for (const char *name : {"a.mps", "a.mps.gz", "a.MPS.bz2", "a.lp", "a.lp.gz", "a.lp.bz2"}) {
        write(model, name);
        Model again = read(name);
        ASSERT_TRUE(again) << name << ": " << message;
        EXPECT_EQ(KVXsetstrattr(again.get(), "ModelName", "the sample"), 0);
        EXPECT_EQ(described(again.get()), described(model.get())) << name;
    }
    EXPECT_NE(contents("a.mps.gz"), contents("a.mps"));
    const double weights[] = {1, 2};
    const int type = KVX_SOS_TYPE1, begin = 0, members[] = {0, 4};
    MUST(model, KVXaddsos(model.get(), 1, 2, &type, &begin, members, weights));
    write(model, "a.mps", KVX_ERROR_NOT_SUPPORTED);
}

TEST_F(Files, damagedFilesAreRefusedWithFileAndLine) {
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
        {"a.mps",
         "\x7f"
         "ELF\x02\x01\n\xff\xfe",
         "isn't UTF-8 text"},
        {"a.mps", "ROWS\n L c\nCOLUMNS\n x c inf\nENDATA\n", "must be a finite number"},
        {"a.lp", "min\n x\nst\n x <> 2\nend\n", "line 4: '<>' doesn't go on"},
        {"a.lp", "", "line 0: '' is no section that can stand here"},
        {"a.lp", "min\n x\nst\n c: x + >= 2\nend\n", "line 4: '>=' stands where a variable"},
        {"a.lp", "min\n x\nst\n c: x >= y\nend\n", "line 4: 'y' is not a number"},
        {"a.lp", "min\n x\nst\n 1 <= x >= 2\nend\n", "line 4: '2' doesn't go on"},
        {"a.lp", "min\n x\nst\n c: x >= 2\n", "line 4: '' stands where a variable"},
        {"a.lp", "min\n x\nst\nbounds\n y <= 2\nend\n", "line 5: '2' ends what is no bound"},
        {"a.lp", "min\n x + [ x ^ 2 ] / 2\nst\nend\n", "line 2: '[' stands where a variable"},
        {"a.lp", "min\n x\nst\nsos\n s: S1 :: x:1\nend\n", "line 5: 's' doesn't go on"},
        {"a.lp", "min\n x\nmin\n x\nend\n", "line 3: 'min' is no section"},
        {"a.mps.gz", "NAME\nROWS\n", "not packed as its name says"},
        {"a.mps.bz2", "", "damaged or cut off"},
        {"a.txt", "", "the name doesn't end like that of such a file"},
    };
    for (auto &[name, text, expected] : damaged) {
        EXPECT_FALSE(read(name, text)) << text;
        EXPECT_NE(message.find(path(name)), std::string::npos) << message;
        EXPECT_NE(message.find(expected), std::string::npos) << message << "\nnot " << expected;
    }
    EXPECT_FALSE(read("absent.mps"));
    EXPECT_NE(message.find("No such file"), std::string::npos) << message;
    mkdir(path("folder.lp").c_str(), 0700);
    EXPECT_FALSE(read("folder.lp"));
    EXPECT_NE(message.find("directory"), std::string::npos) << message;
    write(read("a.mps", sampleMps), "whole.mps.bz2");
    write(read("a.mps", sampleMps), "whole.mps.gz");
    for (const char *name : {"whole.mps.bz2", "whole.mps.gz"}) {
        std::string whole = contents(name);
        for (size_t length = 0; length < whole.size(); length += 7)
            EXPECT_FALSE(read(name, whole.substr(0, length))) << name << " " << length;
    }
}

TEST_F(Files, namesThatAFormatCantHoldAreRefused) {
    Model model = read("a.lp", "max\n xy\nst\n row: xy <= 1\nend\n");
    ASSERT_TRUE(model) << message;
    const std::pair<const char *, const char *> refused[] = {
        {"x y", ".mps"}, {"x y", ".lp"}, {"3x", ".lp"},  {"End", ".lp"},
        {"a:b", ".lp"},  {"inf", ".lp"}, {" x", ".mst"}, {"#x", ".mst"}};
    for (auto [name, ending] : refused) {
        EXPECT_EQ(KVXsetstrattrelement(model.get(), "VarName", 0, name), 0);
        write(model, std::string("refused") + ending, KVX_ERROR_FILE_WRITE);
        EXPECT_NE(std::string(KVXgetmerrormsg(model.get())).find(name), std::string::npos) << name;
        EXPECT_EQ(contents(std::string("refused") + ending), "");
    }
    std::string longName(5000, 'n');
    EXPECT_EQ(KVXsetstrattrelement(model.get(), "VarName", 0, longName.c_str()), 0);
    for (const char *name : {"long.mps", "long.lp"}) {
        write(model, name);
        int index = -1;
        Model again = read(name);
        ASSERT_TRUE(again) << message;
        EXPECT_EQ(KVXgetvarbyname(again.get(), longName.c_str(), &index), 0);
    }
    write(model, "a.txt", KVX_ERROR_FILE_WRITE);
    EXPECT_EQ(KVXwrite(model.get(), "/nowhere/a.mps"), KVX_ERROR_FILE_WRITE);
}

TEST_F(Files, attributeFilesAreReadWholeOrNotAtAll) {
    Model model = read("sample.mps", sampleMps);
    ASSERT_TRUE(model) << message;
    double start[6] = {0.1, KVX_UNDEFINED, -1e-300, 3, KVX_UNDEFINED, 1e17 / 3}, got[6];
    int basis[6] = {0, -2, -1, 0, -1, -2}, rows[5] = {-1, 0, 0, -2, 0}, status[6];
    EXPECT_EQ(KVXsetdblattrarray(model.get(), "Start", 0, 6, start), 0);
    EXPECT_EQ(KVXsetintattrarray(model.get(), "VarBasis", 0, 6, basis), 0);
    EXPECT_EQ(KVXsetintattrarray(model.get(), "ConstrBasis", 0, 5, rows), 0);
    EXPECT_EQ(KVXsetparam(KVXgetenv(model.get()), "MIPGap", "0.123"), 0);
    for (const char *name : {"a.mst.gz", "a.bas", "a.prm.bz2"})
        write(model, name);
    write(model, "a.sol", KVX_ERROR_DATA_NOT_AVAILABLE);
    write(model, "a.json", KVX_ERROR_DATA_NOT_AVAILABLE);

    Model other = read("sample.mps");
    for (const char *name : {"a.mst.gz", "a.bas", "a.prm.bz2"})
        EXPECT_EQ(KVXread(other.get(), path(name).c_str()), 0) << KVXgetmerrormsg(other.get());
    const std::pair<const char *, const char *> broken[] = {
        {"b.mst", "# comment\nx 7\ny 2\n"},
        {"b.sol", "x 7\ni 7x\n"},
        {"b.bas", "NAME\n UL x\n XU i nowhere\nENDATA\n"},
        {"c.bas", "NAME\n UL x\n"},
        {"b.prm", "MIPGap 0.5\nNoSuch 1\n"}};
    for (auto [name, text] : broken) {
        store(name, text);
        EXPECT_NE(KVXread(other.get(), path(name).c_str()), 0) << name;
        std::string problem = KVXgetmerrormsg(other.get());
        EXPECT_NE(problem.find(path(name) + ", line "), std::string::npos) << problem;
    }
    EXPECT_EQ(KVXgetdblattrarray(other.get(), "Start", 0, 6, got), 0);
    EXPECT_TRUE(std::equal(start, start + 6, got));
    EXPECT_EQ(KVXgetintattrarray(other.get(), "VarBasis", 0, 6, status), 0);
    EXPECT_TRUE(std::equal(basis, basis + 6, status));
    EXPECT_EQ(KVXgetintattrarray(other.get(), "ConstrBasis", 0, 5, status), 0);
    EXPECT_TRUE(std::equal(rows, rows + 5, status));
    EXPECT_EQ(KVXgetdblparam(KVXgetenv(other.get()), "MIPGap", got), 0);
    EXPECT_EQ(got[0], 0.123);
}

// The result of a run, as the parameter "ResultFile" asks for it and on request.
TEST_F(Files, resultsAreWritten) {
    Model model = read("a.lp", "max\n 2 x + y + 0.5 \"q\nst\n c: x + y <= 4\n d: x - \"q >= 1\n"
                               "bounds\n x <= 3\n \"q <= 0\nend\n");
    ASSERT_TRUE(model) << message;
    EXPECT_EQ(KVXsetstrparam(KVXgetenv(model.get()), "ResultFile", path("r.json").c_str()), 0);
    MUST(model, KVXoptimize(model.get()));
    auto json = nlohmann::json::parse(contents("r.json"));
    EXPECT_EQ(json["status"], "optimal");
    EXPECT_EQ(json["objective"], 7);
    EXPECT_EQ(json["gap"], 0);
    EXPECT_EQ(json["variables"].dump(), R"([{"name":"x","value":3.0},{"name":"y","value":1.0}])");
    write(model, "r.sol.gz");
    EXPECT_EQ(KVXread(model.get(), path("r.sol.gz").c_str()), 0);
    double start[3];
    EXPECT_EQ(KVXgetdblattrarray(model.get(), "Start", 0, 3, start), 0);
    EXPECT_EQ(start[0], 3);
    EXPECT_EQ(start[2], 0);

    EXPECT_EQ(KVXsetdblattrelement(model.get(), "LB", 0, 3), 0);
    EXPECT_EQ(KVXsetdblattrelement(model.get(), "RHS", 0, 2), 0);
    MUST(model, KVXoptimize(model.get()));
    json = nlohmann::json::parse(contents("r.json"));
    EXPECT_EQ(json["status"], "infeasible");
    EXPECT_TRUE(json["objective"].is_null());
    EXPECT_EQ(KVXsetstrparam(KVXgetenv(model.get()), "ResultFile", "/nowhere/r.sol"), 0);
    MUST(model, KVXoptimize(model.get())) << "there is no solution to write";
}

// Whatever is done to a file, reading it ends in a model or in a text.
TEST_F(Files, noDamageCrashesTheReaders) {
    write(read("sample.mps", sampleMps), "sample.lp");
    std::mt19937 random(7);
    auto below = [&](size_t limit) { return random() % limit; };
    for (std::string name : {"sample.mps", "sample.lp"}) {
        const std::string whole = contents(name);
        for (int k = 0; k < 1500; k++) {
            std::string text = whole;
            size_t place = below(text.size());
            switch (below(4)) {
            case 0:
                text.resize(place);
                break;
            case 1:
                text[place] = static_cast<char>(random());
                break;
            case 2:
                text.erase(place, below(20));
                break;
            default:
                text.insert(place, whole, below(whole.size()), below(60));
            }
            read("damaged" + name.substr(name.rfind('.')), text);
        }
    }
}

TEST(FileNames, endingsSayWhatAFileIs) {
    const std::tuple<const char *, int, int> names[] = {
        {"a.mps", 1, 0}, {"b.LP.gz", 2, 0}, {"a.sol", 0, 1},  {"a.mst.gz", 0, 2},
        {"a.bas", 0, 3}, {"a.prm", 0, 4},   {"a.json", 0, 0}, {"a.mps.zip", 0, 0},
        {"mps", 0, 0},   {nullptr, 0, 0}};
    for (auto [name, model, attribute] : names) {
        EXPECT_EQ(KVXismodelfile(name), model) << name;
        EXPECT_EQ(KVXisattrfile(name), attribute) << name;
    }
}

} // namespace
