// Odd models: what is empty, endless or too large must end as it should.
#include "solver_case.h"

#include <map>

namespace {

TEST(Edge, ModelsWithoutRowsOrOperands) {
    Env env;
    Model model = fromText(env, "min 0 x");
    EXPECT_EQ(KVX_STATUS_OPTIMAL, solved(model).first);
    MUST(model, KVXgetBasisHead(model.get(), nullptr));
    int ind[1];
    double val[1];
    SparseVector row{1, ind, val};
    EXPECT_EQ(KVX_ERROR_INDEX_OUT_OF_RANGE, KVXBinvRowi(model.get(), 0, &row));
    MUST(model, KVXBinvColj(model.get(), 0, &row));
    EXPECT_EQ(0, row.len);
    // The maximum of nothing has no value.
    MUST(model, KVXaddgenconstrMax(model.get(), nullptr, 0, 0, nullptr, -inf));
    EXPECT_EQ(KVX_STATUS_INFEASIBLE, solved(model).first);
    // That of one operand has the bound that a row implies.
    Model implied = fromText(env, "max y st c: x <= 4 bounds x >= 1");
    const int operand = 1;
    MUST(implied, KVXaddgenconstrMax(implied.get(), nullptr, 0, 1, &operand, -inf));
    EXPECT_EQ(std::pair(KVX_STATUS_OPTIMAL, 4.0), solved(implied));
}

TEST(Edge, VerdictsThatAreEasilyMissed) {
    Env env;
    const std::map<std::string, int> verdicts = {{"optimal", KVX_STATUS_OPTIMAL},
                                                 {"infeasible", KVX_STATUS_INFEASIBLE},
                                                 {"unbounded", KVX_STATUS_UNBOUNDED},
                                                 {"refused", KVX_ERROR_NOT_SUPPORTED}};
    for (const auto &[title, text] : readCases("verdicts.txt")) {
        const size_t blank = title.find(' ');
        const int expected = verdicts.at(title.substr(0, blank));
        for (int settings = 0; settings < 8; settings++) {
            SCOPED_TRACE(text + " with " + std::to_string(settings));
            Model model = fromText(env, text);
            setParam(model, "Method", std::to_string(settings / 2 - 1));
            setParam(model, "Presolve", std::to_string(settings % 2));
            if (int status = KVXoptimize(model.get())) {
                EXPECT_EQ(expected, status) << KVXgetmerrormsg(model.get());
                continue;
            }
            ASSERT_EQ(expected, intAttr(model, "Status"));
            if (expected == KVX_STATUS_OPTIMAL) {
                EXPECT_NEAR(std::stod(title.substr(blank)), dblAttr(model, "ObjVal"), 1e-6);
            }
        }
    }
}

} // namespace
