// Attribute files and results: read whole or not at all, written when there is something to write.
#include "solver_case.h"

#include <nlohmann/json.hpp>

namespace {

int write(const Model &model, const char *name) {
    return KVXwrite(model.get(), temporary(name).c_str());
}

TEST(AttributeFiles, AreReadWholeOrNotAtAll) {
    Env env;
    const char *text = "min x + i + j + y st c: x + i <= 4 d: i - j >= 1 int i j";
    Model model = fromText(env, text), other = fromText(env, text);
    Vector start = {0.1, KVX_UNDEFINED, 1e17 / 3, 0};
    const std::vector<int> vars = {0, -2, 0, -1}, rows = {-1, -2};
    MUST(model, KVXsetdblattrarray(model.get(), "Start", 0, 4, start.data()));
    MUST(other, KVXsetdblattrelement(other.get(), "Start", 1, start[1] = 5)); // stays
    MUST(model, KVXsetintattrarray(model.get(), "VarBasis", 0, 4, vars.data()));
    MUST(model, KVXsetintattrarray(model.get(), "ConstrBasis", 0, 2, rows.data()));
    setParam(model, "MIPGap", "0.123");
    for (const char *name : {"a.mst.gz", "a.bas", "a.prm.bz2"}) {
        MUST(model, write(model, name));
        MUST(other, KVXread(other.get(), temporary(name).c_str()));
    }
    for (const char *name : {"a.sol", "a.json"})
        EXPECT_EQ(KVX_ERROR_DATA_NOT_AVAILABLE, write(model, name));
    for (auto [name, damaged] : {std::pair{"b.mst", "# comment\nx 7\nz 2\n"},
                                 {"b.sol", "x 7\ni 7x\n"},
                                 {"b.bas", "NAME\n UL x\n XU i nowhere\nENDATA\n"},
                                 {"c.bas", "NAME\n UL x\n"},
                                 {"b.prm", "MIPGap 0.5\nNoSuch 1\n"}}) {
        const std::string path = temporary(name);
        store(path, damaged);
        EXPECT_NE(KVX_OK, KVXread(other.get(), path.c_str())) << name;
        EXPECT_PRED_FORMAT2(testing::IsSubstring, path + ", line ", KVXgetmerrormsg(other.get()));
    }
    double gap = 0;
    EXPECT_EQ(KVX_OK, KVXgetdblparam(KVXgetenv(other.get()), "MIPGap", &gap));
    EXPECT_EQ(std::tuple(start, vars, rows, 0.123),
              std::tuple(dblAttrs(other, "Start", 4), intAttrs(other, "VarBasis", 4),
                         intAttrs(other, "ConstrBasis", 2), gap));
    for (const char *name : {" x", "#x"}) {
        MUST(model, KVXsetstrattrelement(model.get(), "VarName", 0, name));
        EXPECT_EQ(KVX_ERROR_FILE_WRITE, write(model, "r.mst"));
        EXPECT_PRED_FORMAT2(testing::IsSubstring, name, KVXgetmerrormsg(model.get()));
        EXPECT_EQ("", contents(temporary("r.mst")));
    }
}

// The result of a run, as the parameter "ResultFile" asks for it and on request.
TEST(AttributeFiles, ResultsAreWritten) {
    Env env;
    Model model = fromText(env, "max 2 x + y + 0.5 \"q st c: x + y <= 4 d: x - \"q >= 1\n"
                                "bounds x <= 3 \"q <= 0");
    setParam(model, "ResultFile", temporary("r.json"));
    auto result = [&] {
        solved(model);
        return nlohmann::json::parse(contents(temporary("r.json")));
    };
    auto json = result();
    EXPECT_EQ(json["status"], "optimal");
    EXPECT_EQ(json["objective"], 7);
    EXPECT_EQ(json["gap"], 0);
    EXPECT_EQ(json["variables"].dump(), R"([{"name":"x","value":3.0},{"name":"y","value":1.0}])");
    MUST(model, write(model, "r.sol.gz"));
    MUST(model, KVXread(model.get(), temporary("r.sol.gz").c_str()));
    EXPECT_EQ(dblAttrs(model, "Start", 3), (Vector{3, 1, 0}));

    MUST(model, KVXsetdblattrelement(model.get(), "LB", 0, 3));
    MUST(model, KVXsetdblattrelement(model.get(), "RHS", 0, 2));
    json = result();
    EXPECT_EQ(json["status"], "infeasible");
    EXPECT_TRUE(json["objective"].is_null() && json["bound"].is_null());
    MUST(model, KVXreset(model.get(), 1));
    for (const char *none : {"/nowhere/r.sol", "/nowhere/r.bas"}) {
        setParam(model, "ResultFile", none);
        MUST(model, KVXoptimize(model.get())) << "there is nothing to write";
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
