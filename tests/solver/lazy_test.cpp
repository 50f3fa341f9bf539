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
        double nodes = 0, before = 0;
        Callback callback = [&](void *cbdata, int where) {
            Vector x(all.obj.size());
            if (where != KVX_CB_MIPSOL)
                return 0;
            before = nodes;
            EXPECT_EQ(KVX_OK, KVXcbget(cbdata, where, KVX_CB_MIPSOL_NODES, &nodes));
            EXPECT_LE(before, nodes);
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

// Of each two neighbours on three circles of five at least one is chosen: seven and a half in the
// relaxation, until a cut says that there are nine.
TEST(Lazy, CutsHoldInTheRelaxation) {
    Env env;
    Data circles{Vector(15, 1), Vector(15), Vector(15, 1), std::string(15, 'I'), {}};
    for (size_t j = 0; j < 15; j++) {
        circles.rows.push_back({Vector(15), 1, inf});
        circles.rows[j].val[j] = circles.rows[j].val[j / 5 * 5 + (j + 1) % 5] = 1;
    }
    for (const Row &cut : {Row{Vector(15, 1), 9, inf}, Row{Vector(15, -1), -inf, -9}}) {
        Model model = circles.build(env);
        for (const char *name : {"Cuts", "Heuristics"})
            setParam(model, name, "0");
        int violations = 0;
        Callback callback = [&](void *cbdata, int where) {
            Vector x(15);
            double bound = 0;
            if (where != KVX_CB_MIPNODE)
                return 0;
            EXPECT_EQ(KVX_OK, KVXcbget(cbdata, where, KVX_CB_MIPNODE_OBJBOUND, &bound));
            EXPECT_LE(bound, 9);
            EXPECT_EQ(KVX_OK, KVXcbget(cbdata, where, KVX_CB_MIPNODE_REL, x.data()));
            if (product(x, Vector(15, 1)) > 9 - 1e-6)
                return 0;
            violations++;
            return add(KVXcbcut, cbdata, cut);
        };
        setCallback(model, callback);
        EXPECT_EQ(std::pair(KVX_STATUS_OPTIMAL, 9.0), solved(model));
        EXPECT_EQ(1, violations);
    }
}

} // namespace
