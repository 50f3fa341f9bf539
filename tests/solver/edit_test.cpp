// Changes of a model: against a dense matrix, and what they do to sides, results and counts.
#include "solver_case.h"

#include <algorithm>
#include <functional>
#include <tuple>

namespace {

using Ints = std::vector<int>;

template <class T>
void erase(std::vector<T> &items, int index) {
    items.erase(items.begin() + index);
}

// Rows long and short, whose entries come, change and go; each variable is known by its number in
// "Obj" and in the second objective.
TEST(Edit, RowsMatchADenseMatrix) {
    Env env;
    Random random(5);
    Data data{{0}, {}, {}, {}, {{{1}, 0, inf}}};
    Model model = data.build(env);
    KVXmodel *m = model.get();
    for (int k = 0; k < 2; k++)
        MUST(model, KVXsetobjectiven(m, k, k, nullptr, 0, nullptr, nullptr, 0, 1, 0, 0));
    MUST(model, KVXsetintattr(m, "ObjNumber", 1));
    for (int round = 0, made = 1; round < 400; round++) {
        SCOPED_TRACE(round);
        const int vars = static_cast<int>(data.obj.size()),
                  rows = static_cast<int>(data.rows.size());
        const int begin = 0, kind = random(0, 9);
        Ints first, second;
        Vector val;
        if (kind < 2 && vars < 200) {
            for (int j = random(1, 60); j > 0; j--) {
                data.obj.push_back(made++);
                for (int i = 0; i < rows; i++) {
                    const bool isNew = random(0, 2) > 0;
                    data.rows[static_cast<size_t>(i)].val.push_back(isNew ? random(1, 9) : 0);
                    if (isNew) {
                        first.push_back(i);
                        val.push_back(data.rows[static_cast<size_t>(i)].val.back());
                    }
                }
                MUST(model,
                     KVXaddvars(m, 1, static_cast<int>(val.size()), &begin, first.data(),
                                val.data(), &data.obj.back(), nullptr, nullptr, nullptr, nullptr));
                MUST(model, KVXsetdblattrelement(m, "ObjN", static_cast<int>(data.obj.size()) - 1,
                                                 data.obj.back()));
                first.clear();
                val.clear();
            }
        } else if (kind < 4 && rows < 6) {
            data.rows.push_back({Vector(data.obj.size()), 0, inf});
            for (int j = 0, density = random(0, 3); j < vars; j++)
                if (random(0, 3) < density) {
                    second.push_back(j);
                    val.push_back(random(1, 9));
                    data.rows.back().val[static_cast<size_t>(j)] = val.back();
                }
            const double zero = 0;
            MUST(model, KVXaddconstrs(m, 1, static_cast<int>(val.size()), &begin, second.data(),
                                      val.data(), ">", &zero, nullptr));
        } else if (kind == 4 && vars > 90) {
            for (int k = random(1, 20); k > 0; k--) {
                const int index = random(0, static_cast<int>(data.obj.size()) - 1);
                MUST(model, KVXdelvars(m, 1, &index));
                erase(data.obj, index);
                for (Row &row : data.rows)
                    erase(row.val, index);
                EXPECT_EQ(data.obj.size(), intAttr(model, "NumVars"));
            }
        } else if (kind == 5 && rows > 2) {
            const int index = random(0, rows - 1);
            MUST(model, KVXdelconstrs(m, 1, &index));
            erase(data.rows, index);
            EXPECT_EQ(data.rows.size(), intAttr(model, "NumConstrs"));
        } else {
            for (int k = random(1, 60), i = random(0, rows - 1); k > 0; k--) {
                first.push_back(i);
                second.push_back(random(0, vars - 1));
                val.push_back(random(0, 1) * random(1, 9));
                data.rows[static_cast<size_t>(i)].val[static_cast<size_t>(second.back())] =
                    val.back();
            }
            MUST(model, KVXchgcoeffs(m, static_cast<int>(val.size()), first.data(), second.data(),
                                     val.data()));
        }
        EXPECT_EQ(data.obj, dblAttrs(model, round % 2 ? "Obj" : "ObjN", data.obj.size()));
        int count = 0, nonzeros = 0, begins[300], ind[1500];
        double values[1500];
        MUST(model,
             KVXgetvars(m, &count, begins, ind, values, 0, static_cast<int>(data.obj.size())));
        for (size_t j = 0; j < data.obj.size(); j++)
            for (size_t i = 0; i < data.rows.size(); i++) {
                double expected = data.rows[i].val[j], value = 0, column = 0;
                nonzeros += expected != 0;
                MUST(model, KVXgetcoeff(m, static_cast<int>(i), static_cast<int>(j), &value));
                for (int k = begins[j]; k < begins[j + 1]; k++)
                    column += ind[k] == static_cast<int>(i) ? values[k] : 0;
                ASSERT_EQ(std::pair(expected, expected), std::pair(value, column)) << i << ' ' << j;
            }
        ASSERT_EQ(std::pair(nonzeros, nonzeros), std::pair(count, intAttr(model, "NumNZs")));
    }
    MUST(model, KVXsetintattr(m, "ObjNumber", 0));
    EXPECT_EQ(Vector(data.obj.size()), dblAttrs(model, "ObjN", data.obj.size()));
}

// A row's sides and sense, what is set, and what they are then.
TEST(Edit, SidesAndSensesGoTogether) {
    Env env;
    using Sides = std::tuple<double, double, char>;
    const struct {
        Sides before;
        const char *attribute;
        double value;
        Sides after;
        double rhs;
    } edits[] = {{{-inf, 5, '<'}, "RHS", 3, {-inf, 3, '<'}, 3},
                 {{2, inf, '>'}, "RHS", 3, {3, inf, '>'}, 3},
                 {{4, 4, '='}, "RHS", 3, {3, 3, '='}, 3},
                 {{1, 5, '<'}, "RHS", 3, {1, 3, '<'}, 3},
                 {{2, inf, '>'}, "RowUpper", 9, {2, 9, '<'}, 9},
                 {{1, 5, '<'}, "RowUpper", inf, {1, inf, '>'}, 1},
                 {{-inf, 5, '<'}, "RowUpper", inf, {-inf, inf, '<'}, inf},
                 {{4, 4, '='}, "RowLower", 1, {1, 4, '<'}, 4},
                 {{-inf, 5, '<'}, "RowLower", 5, {5, 5, '='}, 5},
                 {{2, inf, '>'}, "Sense", '<', {-inf, 2, '<'}, 2},
                 {{1, 5, '<'}, "Sense", '>', {5, inf, '>'}, 5}};
    for (const auto &[before, attribute, value, after, rhs] : edits) {
        Model model =
            Data{{0}, {}, {}, {}, {{{1}, std::get<0>(before), std::get<1>(before)}}}.build(env);
        auto sides = [&] {
            char sense = 0;
            EXPECT_EQ(KVX_OK, KVXgetcharattrelement(model.get(), "Sense", 0, &sense));
            return Sides(dblAttrs(model, "RowLower", 1)[0], dblAttrs(model, "RowUpper", 1)[0],
                         sense);
        };
        EXPECT_EQ(before, sides());
        MUST(model, *attribute == 'S'
                        ? KVXsetcharattrelement(model.get(), attribute, 0, static_cast<char>(value))
                        : KVXsetdblattrelement(model.get(), attribute, 0, value));
        EXPECT_EQ(after, sides()) << attribute;
        EXPECT_EQ(rhs, dblAttrs(model, "RHS", 1)[0]) << attribute;
    }
}

TEST(Edit, ChangesForgetResultsAndNames) {
    Env env;
    const Data data{{1, 1}, {}, {4, 4}, {}, {{{1, 1}, 9, inf}}};
    const int index = 0;
    const double one = 1;
    const std::function<int(KVXmodel *)> changes[] = {
        [](auto m) { return KVXsetdblattrelement(m, "Obj", 0, 2); },
        [](auto m) { return KVXsetdblattrelement(m, "UB", 0, 9); },
        [&](auto m) { return KVXchgcoeffs(m, 1, &index, &index, &one); },
        [&](auto m) { return KVXdelconstrs(m, 1, &index); },
        [&](auto m) { return KVXsetpwlobj(m, 0, 1, &one, &one); },
        [](auto m) { return KVXreset(m, 1); }};
    for (const auto &change : changes) {
        SCOPED_TRACE(&change - changes);
        Model model = data.build(env);
        int value = 0;
        EXPECT_EQ(KVX_STATUS_INFEASIBLE, solved(model).first);
        MUST(model, KVXcomputeIIS(model.get()));
        MUST(model, KVXgetintattrelement(model.get(), "IISUB", 0, &value));
        MUST(model, KVXsetdblattrelement(model.get(), "Start", 0, 1));
        EXPECT_EQ(KVX_STATUS_INFEASIBLE, intAttr(model, "Status"));
        MUST(model, KVXsetintattrelement(model.get(), "VarBasis", 0, KVX_BASIC));
        MUST(model, change(model.get()));
        EXPECT_EQ(KVX_STATUS_LOADED, intAttr(model, "Status"));
        for (auto [name, isKept] : {std::pair{"IISUB", false}, {"VarBasis", true}})
            EXPECT_EQ(isKept && &change != std::end(changes) - 1,
                      KVXgetintattrelement(model.get(), name, 0, &value) == KVX_OK);
    }
    Model model = data.build(env);
    for (const char *name : {"a", "b"}) {
        int found = -1;
        MUST(model, KVXsetstrattrelement(model.get(), "VarName", 1, name));
        MUST(model, KVXgetvarbyname(model.get(), name, &found));
        EXPECT_EQ(1, found);
    }
}

TEST(Edit, CountsAndKinds) {
    Env env;
    Model model = Data{Vector(5), {0, -1, 0, 0, 0}, {1, 1, 2, 1, 1}, "IIICB", {}}.build(env);
    EXPECT_EQ(2, intAttr(model, "NumBinVars"));
    EXPECT_EQ(4, intAttr(model, "NumIntVars"));
    const int type = KVX_SOS_TYPE1, begin = 0, members[] = {0, 1};
    const double weights[] = {1, 2};
    Model sets = Data{{0, 0}, {}, {}, {}, {}}.build(env);
    EXPECT_EQ(0, intAttr(sets, "IsMIP"));
    MUST(sets, KVXaddsos(sets.get(), 1, 2, &type, &begin, members, weights));
    EXPECT_EQ(1, intAttr(sets, "IsMIP"));
}

// The objective is replaced as a whole; without a sense it keeps the one that it has.
TEST(Edit, ObjectivesAreReplaced) {
    Env env;
    Model model = Data{{1, 2}, {}, {}, {}, {}, KVX_MAXIMIZE, 7}.build(env);
    KVXmodel *m = model.get();
    const int index = 1;
    const double points[] = {1, 2}, five = 5;
    MUST(model, KVXsetpwlobj(m, 0, 2, points, points));
    MUST(model, KVXaddqpterms(m, 1, &index, &index, &five));
    MUST(model, KVXsetobjectiven(m, 0, 1, nullptr, 1, &index, &five, 0, 1, 0, 0));
    MUST(model, KVXsetobjective(m, 0, 1, &index, &five, 0, nullptr, nullptr, nullptr, 3));
    Model expected = Data{{0, 5}, {}, {}, {}, {}, KVX_MAXIMIZE, 3}.build(env);
    EXPECT_EQ(described(expected.get()), described(m));
    EXPECT_EQ(3, dblAttr(model, "ObjCon"));
    EXPECT_EQ(0, intAttr(model, "IsMultiObj"));
}

} // namespace
