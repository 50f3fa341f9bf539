// Attribute files and results: read whole or not at all, written when there is something to write.
#include "files_case.h"

#include <nlohmann/json.hpp>

namespace {

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

TEST(FileNames, EndingsSayWhatAFileIs) {
    const std::tuple<const char *, int, int> names[] = {
        {"a.mps", 1, 0}, {"b.LP.gz", 2, 0}, {"a.sol", 0, 1},  {"a.mst.gz", 0, 2},
        {"a.bas", 0, 3}, {"a.prm", 0, 4},   {"a.json", 0, 0}, {"a.mps.zip", 0, 0},
        {"mps", 0, 0},   {nullptr, 0, 0}};
    for (auto [name, model, attribute] : names)
        EXPECT_TRUE(KVXismodelfile(name) == model && KVXisattrfile(name) == attribute) << name;
}

} // namespace
