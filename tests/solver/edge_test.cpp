// Odd models: what is empty, endless or too large must end as it should.
#include "solver_case.h"

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
}

TEST(Edge, VerdictsThatAreEasilyMissed) {
    Env env;
    enum { optimal = KVX_STATUS_OPTIMAL, refused = KVX_ERROR_NOT_SUPPORTED };
    const struct {
        const char *text;
        int expected; // a status, or the one of KVXoptimize
        double objective = 0;
    } cases[] = {
        {"max 9 x + 0 y st c: 4 y >= 9", KVX_STATUS_UNBOUNDED},
        {"min - x - 2 y st c: - x + 2 y <= 4 bounds x free", KVX_STATUS_UNBOUNDED},
        {"min x - y st c: 2 x - y <= 5 bounds y >= 1", KVX_STATUS_UNBOUNDED},
        {"min - 3 x st c: 3 x = 0 d: x free e: 0 x <= 0", optimal},
        {"max 7 x st c: -11 <= 0 x <= -8 d: - 2 x = 6 bounds x free", KVX_STATUS_INFEASIBLE},
        {"max y st c: x <= 0.5 bounds 0.3 <= x <= 5 int x", KVX_STATUS_INFEASIBLE},
        {"max y + u + 0 v st c: x <= 0.5 bounds 0.3 <= x <= 5 int x sos1 u: 1 v: 2",
         KVX_STATUS_INFEASIBLE},
        {"min x st c: x >= 1 bounds 3 <= x <= 5 semi x", optimal, 3},
        {"max 9 x + 8 y - 4 z st c: - 4 x + 2 y - 4 z <= 3\n"
         "bounds 1 <= x <= 21 y <= 6 -20 <= z <= 20 int x z",
         optimal, 309},
        {"min 9 a - 9 b + 7 c + 2 d - 3 e + 2 f - 4 g st r: 2 e - 2 f free\n"
         "s: 2 a + b - f + 2 g >= -14 t: 9 <= - 3 a + 3 b - 4 c - d - 2 f - g <= 12\n"
         "u: 1 <= - b + d + f <= 3 v: 2 a - d - 3 g free\n"
         "bounds b <= 20 c <= 20 d <= 20 e <= 3 f <= 5 g <= 3 int b c d f g",
         optimal, -124},
        {"min x st c: -1e14 <= x <= 1e14", optimal},
        {"min x st c: -1 <= 1e-300 x <= 1 bounds x <= 1", refused},
        {"min x st c: -1e14 <= x <= 1e14 bounds x <= 1e14 int x", optimal},
        {"min 1e30 x st c: -1 <= x <= 1 bounds x <= 1", refused},
        {"min x st c: -1 <= 1e26 x <= 1 bounds x <= 1", refused},
        {"min x st c: -1 <= x <= 1 bounds x <= 1e30", refused},
        {"min x st c: -1 <= x <= 1 bounds x <= 1e17 int x", refused},
        {"min x st c: -1e17 <= x <= 1e17 bounds x <= 1 int x", refused}};
    for (const auto &[text, expected, objective] : cases)
        for (int settings = 0; settings < 8; settings++) {
            SCOPED_TRACE(std::string(text) + " with " + std::to_string(settings));
            Model model = fromText(env, text);
            setParam(model, "Method", std::to_string(settings / 2 - 1));
            setParam(model, "Presolve", std::to_string(settings % 2));
            if (int status = KVXoptimize(model.get())) {
                EXPECT_EQ(expected, status) << KVXgetmerrormsg(model.get());
                continue;
            }
            ASSERT_EQ(expected, intAttr(model, "Status"));
            if (expected == optimal) {
                EXPECT_NEAR(objective, dblAttr(model, "ObjVal"), 1e-6);
            }
        }
}

} // namespace
