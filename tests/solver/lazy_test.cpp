// Lazy constraints and cuts: rows that come by callback have the same optimum as rows of the model.
#include "solver_case.h"

namespace {

// Gives a row to a function of callbacks.
int add(decltype(KVXcblazy) function, void *cbdata, const Row &row) {
    const Sparse entries(row.val);
    const char sense = row.upper < inf ? '<' : '>';
    return function(cbdata, entries.size(), entries.ind.data(), entries.val.data(), sense,
                    sense == '>' ? row.lower : row.upper);
}

TEST(Lazy, RowsFromCallbacksHold) {
    Env env;
    int lazies = 0, optimal = 0;
    for (unsigned seed = 0; seed < 60; seed++) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const int vars = seed % 4 ? 5 : 15;
        const Data all =
            randomData(random, vars, vars, seed % 3 ? "I" : "CI", seed % 5 ? 0 : 3).within(-9, 9);
        Data given = all;
        given.rows.resize(2);
        Model model = given.build(env);
        setParam(model, "LazyConstraints", "1");
        for (const char *name : {"Presolve", "Cuts", "Heuristics"})
            setParam(model, name, std::to_string(random(0, 1)));
        Callback callback = [&](void *cbdata, int where) {
            Vector x(all.obj.size());
            if (where != KVX_CB_MIPSOL)
                return 0;
            EXPECT_EQ(KVX_OK, KVXcbget(cbdata, where, KVX_CB_MIPSOL_SOL, x.data()));
            for (const Row &row : all.rows) {
                const Data alone{{}, {}, {}, {}, {row}};
                if (alone.holds(x, 1e-5))
                    continue;
                lazies++;
                for (Row side : {Row{row.val, row.lower, inf}, Row{row.val, -inf, row.upper}})
                    if (side.lower > -inf || side.upper < inf) {
                        EXPECT_EQ(KVX_OK, add(KVXcblazy, cbdata, side));
                    }
            }
            return 0;
        };
        setCallback(model, callback);
        const auto expected = solved(all.build(env)), found = solved(model);
        EXPECT_EQ(expected.first, found.first);
        EXPECT_NEAR(expected.second, found.second, 1e-5);
        if (found.first == KVX_STATUS_OPTIMAL) {
            optimal++;
            EXPECT_TRUE(all.holds(dblAttrs(model, "X", all.obj.size()), 1e-5));
        }
    }
    EXPECT_GT(optimal, 30);
    EXPECT_GT(lazies, 100);
}

// Of each two neighbours on a circle of seven at least one is chosen: three and a half in the
// relaxation, until a cut says that there are four.
TEST(Lazy, CutsHoldInTheRelaxation) {
    Env env;
    Data circle{Vector(7, 1), Vector(7), Vector(7, 1), std::string(7, 'I'), {}};
    for (size_t j = 0; j < 7; j++) {
        circle.rows.push_back({Vector(7), 1, inf});
        circle.rows[j].val[j] = circle.rows[j].val[(j + 1) % 7] = 1;
    }
    for (const Row &cut : {Row{Vector(7, 1), 4, inf}, Row{Vector(7, -1), -inf, -4}}) {
        Model model = circle.build(env);
        for (const char *name : {"Cuts", "Heuristics"})
            setParam(model, name, "0");
        int violations = 0;
        Callback callback = [&](void *cbdata, int where) {
            Vector x(7);
            if (where != KVX_CB_MIPNODE)
                return 0;
            EXPECT_EQ(KVX_OK, KVXcbget(cbdata, where, KVX_CB_MIPNODE_REL, x.data()));
            if (product(x, Vector(7, 1)) > 4 - 1e-6)
                return 0;
            violations++;
            return add(KVXcbcut, cbdata, cut);
        };
        setCallback(model, callback);
        EXPECT_EQ(std::pair(KVX_STATUS_OPTIMAL, 4.0), solved(model));
        EXPECT_EQ(1, violations);
    }
}

} // namespace
