// Building and reading back, deletion, and bad input to the functions that build.
#include "solver_case.h"

#include <cstring>
#include <limits>
#include <set>

namespace {

const double nan = std::numeric_limits<double>::quiet_NaN();

// What is deleted of a model, or left out when it is built.
struct Gone {
    std::set<int> vars, constrs, sos;
};

// A model with something of everything, without what is gone.
KVXmodel *built(KVXenv *env, const Gone &gone) {
    KVXmodel *model = nullptr;
    auto ok = [&](int status) { EXPECT_EQ(KVX_OK, status) << KVXgetmerrormsg(model); };
    ok(KVXnewmodel(env, &model, "m", 0, nullptr, nullptr, nullptr, nullptr, nullptr));
    int number[8], next = 0;
    for (int j = 0; j < 8; j++) {
        const double obj = j, lb = -j, ub = j == 3 ? 1 : 10 + j;
        const char *names[] = {"x0", "x1", "x2", "x3", "x4", "x5", "x6", "x7"};
        number[j] = gone.vars.count(j) ? -1 : next++;
        if (number[j] >= 0)
            ok(KVXaddvars(model, 1, 0, nullptr, nullptr, nullptr, &obj, &lb, &ub, &"CIICBSNC"[j],
                          names + j));
    }
    const int beg = 0;
    int ind[8];
    double val[8]; // tell the variables apart
    auto list = [&](const std::vector<int> &all) {
        int num = 0;
        for (int j : all)
            if (number[j] >= 0) {
                ind[num] = number[j];
                val[num++] = j + 1;
            }
        return num;
    };
    const std::vector<int> rows[] = {{4, 1, 0}, {5, 0, 6}, {7, 6, 5, 4, 3}},
                           sets[] = {{0, 5, 6}, {7, 4, 5, 6}};
    for (int i = 0; i < 3; i++) {
        const double rhs = 4 - i;
        const char *const names[] = {"r0", "r1", "r2"};
        if (int num = list(rows[i]); !gone.constrs.count(i))
            ok(KVXaddconstrs(model, 1, num, &beg, ind, val, &"<>="[i], &rhs, names + i));
    }
    for (int s = 0; s < 2; s++) {
        const int type = s + 1, num = list(sets[s]);
        if (!gone.sos.count(s))
            ok(KVXaddsos(model, 1, num, &type, &beg, ind, val));
    }
    int num = list({5, 2, 6});
    ok(KVXaddgenconstrIndicator(model, "ind", number[3], 1, num, ind, val, '>', 2));
    num = list({1, 2});
    ok(KVXaddgenconstrMax(model, "max", number[0], num, ind, -inf));
    ok(KVXaddgenconstrAbs(model, nullptr, number[1], number[2]));
    const double x[] = {0, 1, 1, 2}, y[] = {0, 1, 2, 2};
    ok(KVXaddgenconstrPWL(model, "pwl", number[3], number[1], 4, x, y));
    ok(KVXsetpwlobj(model, number[2], 4, x, y));
    return model;
}

TEST(Build, DeletionLeavesTheModelThatWasBuiltWithoutTheDeleted) {
    Env env;
    const Gone cases[] = {{{7}, {}, {}},          {{}, {0}, {}},      {{}, {}, {0}},
                          {{4, 5, 6, 7}, {}, {}}, {{6, 7}, {1}, {1}}, {{4, 7}, {0, 1, 2}, {0, 1}}};
    for (const Gone &gone : cases) {
        Model whole(built(env, {})), expected(built(env, gone));
        auto remove = [&](auto deleter, const std::set<int> &items) {
            std::vector<int> ind(items.rbegin(), items.rend());
            MUST(whole, deleter(whole.get(), static_cast<int>(ind.size()), ind.data()));
        };
        remove(KVXdelvars, gone.vars);
        remove(KVXdelconstrs, gone.constrs);
        remove(KVXdelsos, gone.sos);
        EXPECT_EQ(described(expected.get()), described(whole.get()));
    }
}

TEST(Build, ReadsBackWhatWasLoaded) {
    Env env;
    KVXmodel *handle = nullptr;
    const int beg[] = {3, 0, 5}, len[] = {2, 3, 0}, ind[] = {1, 0, 1, 0, 1}; // 1 + 3 in one place
    const double val[] = {1, 2, 3, 5, -5}, rhs[] = {4, 6};
    ASSERT_EQ(KVX_OK,
              KVXloadmodel(env, &handle, nullptr, 3, 2, KVX_MAXIMIZE, 2, nullptr, "<=", rhs, beg,
                           len, ind, val, nullptr, nullptr, nullptr, nullptr, nullptr));
    Model model(handle);
    const int rows[] = {0, 0}, cols[] = {0, 2};
    const double changes[] = {0, 7};
    MUST(model, KVXchgcoeffs(handle, 2, rows, cols, changes));
    int num = 0, begins[4], indices[8];
    double values[8];
    MUST(model, KVXgetvars(handle, &num, begins, indices, values, 0, 3));
    EXPECT_EQ((std::vector<int>{0, 1, 3, 4}), std::vector<int>(begins, begins + 4));
    EXPECT_EQ((std::vector<int>{1, 0, 1, 0}), std::vector<int>(indices, indices + num));
    EXPECT_EQ((std::vector<double>{-5, 2, 4, 7}), std::vector<double>(values, values + num));
}

TEST(Build, RefusesBadInputAndLeavesTheModelAlone) {
    Env env;
    Model owner(built(env, {}));
    KVXmodel *m = owner.get();
    const std::string before = described(m);
    const int none[] = {0, 0}, back[] = {1, 0}, far[] = {0, 99}, type = 1;
    const double ones[] = {1, 1}, nans[] = {1, nan}, low[] = {0, 5};
    const char *bad[] = {"fine", "b\xc3("}, *empty[] = {"fine", ""};
    const int invalid = KVX_ERROR_INVALID_ARGUMENT, range = KVX_ERROR_INDEX_OUT_OF_RANGE,
              null = KVX_ERROR_NULL_ARGUMENT, unknown = KVX_ERROR_UNKNOWN_ATTRIBUTE,
              unsolvable = KVX_ERROR_NOT_SUPPORTED;
    auto refuse = [&](int expected, const char *text, int status) {
        EXPECT_EQ(expected, status);
        EXPECT_NE(nullptr, std::strstr(KVXgetmerrormsg(m), text)) << KVXgetmerrormsg(m);
        EXPECT_EQ(before, described(m)) << text;
    };
    refuse(invalid, "contradict",
           KVXaddvars(m, 2, 2, none, none, ones, ones, low, ones, "CC", nullptr));
    refuse(invalid, "name",
           KVXaddvars(m, 2, 2, none, none, ones, ones, nullptr, nullptr, "CC", bad));
    refuse(invalid, "begin", KVXaddconstrs(m, 2, 2, back, none, ones, "<<", ones, nullptr));
    refuse(null, "null", KVXaddconstrs(m, 2, 2, nullptr, none, ones, "<<", ones, nullptr));
    refuse(invalid, "sense", KVXaddconstrs(m, 2, 0, none, none, ones, "<x", ones, nullptr));
    refuse(invalid, "twice", KVXaddsos(m, 1, 2, &type, none, none, ones));
    refuse(invalid, "general constraint max needs variable x0", KVXdelvars(m, 1, none));
    refuse(invalid, "finite", KVXchgcoeffs(m, 2, none, none, nans));
    refuse(unsolvable, "quadratic", KVXsetobjective(m, 1, 1, back, ones, 1, none, none, ones, 0));
    refuse(range, "variable 99", KVXaddgenconstrMin(m, "g", 0, 2, far, 0));
    refuse(range, "2", KVXaddgenconstrIndicator(m, "g", 3, 2, 2, back, ones, '<', 1));
    refuse(unknown, "LB", KVXsetintattrelement(m, "LB", 0, 1));
    refuse(KVX_ERROR_READ_ONLY, "NumVars", KVXsetintattr(m, "NumVars", 1));
    refuse(range, "7 on", KVXsetdblattrarray(m, "UB", 7, 2, ones));
    refuse(range, "99", KVXsetdblattrlist(m, "Obj", 2, far, low));
    refuse(invalid, "type", KVXsetcharattrarray(m, "VarType", 0, 2, "IX"));
    refuse(invalid, "empty", KVXsetstrattrarray(m, "ConstrName", 0, 2, empty));
    refuse(KVX_ERROR_VALUE_OUT_OF_RANGE, "binary", KVXsetdblattrelement(m, "UB", 4, 5));
}

} // namespace
