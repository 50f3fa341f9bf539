// Changes of a model: against a dense matrix, and what they do to sides, results and counts.
#include "solver_case.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <tuple>

namespace {

template <class T>
void erase(std::vector<T> &items, int index) {
    items.erase(items.begin() + index);
}

// Rows long and short, whose entries come, change and go; each variable is known by its number in
// "Obj", in the second objective and in its name.
TEST(Edit, RowsMatchADenseMatrix) {
    Env env;
    Random random(5);
    Data data{{0}, {}, {}, {}, {{{1}, 0, inf}}};
    Model model = data.build(env);
    KVXmodel *m = model.get();
    for (int k : {0, 1, 0})
        MUST(model, KVXsetobjectiven(m, k, k, nullptr, 0, nullptr, nullptr, 0, 1, 0, 0));
    MUST(model, KVXsetintattr(m, "ObjNumber", 1));
    const int begin = 0;
    const double zero = 0;
    auto dense = [&](size_t size, int density) {
        Vector result(size);
        for (double &value : result)
            value = random(0, 3) < density ? random(1, 9) : 0;
        return result;
    };
    for (int round = 0, made = 1; round < 400; round++) {
        SCOPED_TRACE(round);
        const int vars = static_cast<int>(data.obj.size()),
                  rows = static_cast<int>(data.rows.size()), kind = random(0, 9);
        if (kind < 2 && vars < 200) {
            for (int last = vars + random(0, 59), j = vars; j <= last; j++) {
                const Vector column = dense(data.rows.size(), 3);
                const Sparse entries(column);
                data.obj.push_back(made++);
                for (size_t i = 0; i < column.size(); i++)
                    data.rows[i].val.push_back(column[i]);
                MUST(model, KVXaddvars(m, 1, entries.size(), &begin, entries.ind.data(),
                                       entries.val.data(), &data.obj.back(), nullptr, nullptr,
                                       nullptr, nullptr));
                MUST(model, KVXsetdblattrelement(m, "ObjN", j, data.obj.back()));
            }
        } else if (kind < 4 && rows < 6) {
            data.rows.push_back({dense(data.obj.size(), random(0, 3)), 0, inf});
            Sparse entries(data.rows.back().val);
            entries.ind.push_back(0); // Entries in one place are summed.
            entries.val.push_back(2);
            data.rows.back().val[0] += 2;
            MUST(model, KVXaddconstrs(m, 1, entries.size(), &begin, entries.ind.data(),
                                      entries.val.data(), ">", &zero, nullptr));
        } else if (kind == 4 && vars > 90) {
            for (int left = vars; left > vars - 20; left--) {
                const int index = random(0, left - 1);
                MUST(model, KVXdelvars(m, 1, &index));
                erase(data.obj, index);
                for (Row &row : data.rows)
                    erase(row.val, index);
                EXPECT_EQ(left - 1, intAttr(model, "NumVars"));
            }
        } else if (kind == 5 && rows > 2) {
            const int index = random(0, rows - 1);
            MUST(model, KVXdelconstrs(m, 1, &index));
            erase(data.rows, index);
            EXPECT_EQ(rows - 1, intAttr(model, "NumConstrs"));
        } else {
            const int count = random(1, 60);
            const std::vector<int> first(60, random(0, rows - 1));
            std::vector<int> second;
            Vector val;
            for (int k = 0; k < count; k++) {
                second.push_back(random(0, vars - 1));
                val.push_back(random(0, 1) * random(1, 9));
                data.rows[static_cast<size_t>(first[0])].val[static_cast<size_t>(second.back())] =
                    val.back();
            }
            MUST(model, KVXchgcoeffs(m, count, first.data(), second.data(), val.data()));
        }
        EXPECT_EQ(data.obj, dblAttrs(model, round % 2 ? "Obj" : "ObjN", data.obj.size()));
        int count = 0, nonzeros = 0, last = -1, begins[300], ind[1500];
        const std::string name = "C" + std::to_string(std::lround(data.obj.back()));
        MUST(model, KVXgetvarbyname(m, name.c_str(), &last));
        EXPECT_EQ(static_cast<int>(data.obj.size()) - 1, last);
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
        [&](auto m) {
            return KVXaddrangeconstrs(m, 1, 0, &index, &index, &one, &one, &one, nullptr);
        },
        [](auto m) { return KVXdelq(m); },
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
        const bool isReset = &change == std::end(changes) - 1;
        EXPECT_EQ(isReset ? KVX_UNDEFINED : 1, dblAttrs(model, "Start", 1)[0]);
        for (auto [name, isKept] : {std::pair{"IISUB", false}, {"VarBasis", true}})
            EXPECT_EQ(isKept && !isReset,
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
    const std::tuple<const char *, int, int, int> models[] = {
        {"min a + b + c + d + e bounds a <= 1 -1 <= b <= 1 c <= 2 d <= 1 sec c int a b c bin e", 4,
         2, 1},
        {"min a + b", 0, 0, 0},
        {"min a + b sos1 a: 1 b: 2", 0, 0, 1}};
    for (auto [text, integers, binaries, isMip] : models) {
        Model model = fromText(env, text);
        EXPECT_EQ(std::tuple(integers, binaries, isMip),
                  std::tuple(intAttr(model, "NumIntVars"), intAttr(model, "NumBinVars"),
                             intAttr(model, "IsMIP")))
            << text;
    }
}

} // namespace
