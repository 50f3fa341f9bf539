// Building and reading back, deletion, and bad input to the functions that build.
#include "solver_case.h"

#include <cstring>
#include <functional>
#include <limits>
#include <set>

namespace {

const double nan = std::numeric_limits<double>::quiet_NaN();

// What is deleted of a model, or left out when it is built.
struct Gone {
    std::set<int> vars, constrs, sos, qconstrs;
};

// One that can be deleted stands before those that general constraints need.
constexpr int order[] = {4, 0, 1, 2, 3, 5, 6, 7};

// A model with something of everything, without what is gone.
KVXmodel *built(KVXenv *env, const Gone &gone) {
    KVXmodel *model = nullptr;
    auto ok = [&](int status) { EXPECT_EQ(KVX_OK, status) << KVXgetmerrormsg(model); };
    ok(KVXnewmodel(env, &model, "m", 0, nullptr, nullptr, nullptr, nullptr, nullptr));
    int number[8], next = 0;
    for (int j : order) {
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
    ok(KVXaddgenconstrPow(model, "pow", number[2], number[0], "a=1", 3));
    const int codes[] = {KVX_NL_PLUS, KVX_NL_VARIABLE, KVX_NL_VARIABLE, KVX_NL_CONSTANT},
              parents[] = {-1, 0, 0, 0};
    const double data[] = {-1, 1.0 * number[2], 1.0 * number[3], 3};
    ok(KVXaddgenconstrNL(model, "nl", number[1], 4, codes, data, parents));

    int second[8];
    auto products = [&](const std::vector<std::pair<int, int>> &all) {
        num = 0;
        for (auto [j, k] : all)
            if (number[j] >= 0 && number[k] >= 0) {
                ind[num] = number[j];
                second[num] = number[k];
                val[num++] = j + 10 * k;
            }
        return num;
    };
    products({{4, 1}, {0, 0}, {7, 6}, {2, 5}, {6, 6}});
    ok(KVXaddqpterms(model, num, ind, second, val));
    for (int q = 0; q < 3; q++) {
        int linear[8];
        double coefs[8];
        const int numLinear = list({6, 1 + q, 4});
        std::copy_n(ind, 8, linear);
        std::copy_n(val, 8, coefs);
        products({{7, 1}, {3, 3}, {q, 5}});
        const char *names[] = {"q0", "q1", "q2"};
        if (!gone.qconstrs.count(q))
            ok(KVXaddqconstr(model, numLinear, linear, coefs, num, ind, second, val, "<>="[q], q,
                             names[q]));
    }
    return model;
}

// What can't be solved is refused when it is to be solved; the text says what, and nothing changes.
void expectRefusal(const Model &model, const char *what) {
    KVXmodel *m = model.get(), *other = nullptr;
    const std::string before = described(m), file = temporary("refused.mps");
    auto refused = [&](int status) {
        EXPECT_EQ(*what ? KVX_ERROR_NOT_SUPPORTED : KVX_OK, status) << what;
        EXPECT_NE(nullptr, std::strstr(KVXgetmerrormsg(m), what)) << KVXgetmerrormsg(m);
        EXPECT_EQ(before, described(m));
    };
    refused(KVXoptimize(m));
    refused(KVXtunemodel(m));
    if (!*what)
        return;
    EXPECT_EQ(KVX_ERROR_NOT_SUPPORTED, KVXdualmodel(m, &other));
    EXPECT_EQ(KVX_ERROR_NOT_SUPPORTED, KVXpresolvemodel(m, &other));
    EXPECT_EQ(KVX_ERROR_NOT_SUPPORTED, KVXfixmodel(m, &other));
    EXPECT_EQ(intAttr(model, "NumGenConstrs") ? KVX_ERROR_NOT_SUPPORTED : KVX_OK,
              KVXwrite(m, file.c_str()));
    EXPECT_EQ(nullptr, other);
    if (intAttr(model, "NumQNZs") == 0)
        refused(KVXcomputeIIS(m)); // which has no use for an objective
    if (intAttr(model, "NumGenConstrs"))
        refused(KVXlinearizemodel(m, &other));
}

TEST(Build, DeletionLeavesTheModelThatWasBuiltWithoutTheDeleted) {
    Env env;
    const Gone cases[] = {{{7}, {}, {}, {}},      {{}, {0}, {}, {0}},
                          {{}, {}, {0}, {2}},     {{4, 5, 6, 7}, {}, {}, {}},
                          {{6, 7}, {1}, {1}, {}}, {{4, 7}, {0, 1, 2}, {0, 1}, {0, 1, 2}}};
    for (const Gone &gone : cases) {
        Model whole(built(env, {})), expected(built(env, gone));
        auto remove = [&](auto deleter, const std::set<int> &items) {
            std::vector<int> ind(items.rbegin(), items.rend());
            MUST(whole, deleter(whole.get(), static_cast<int>(ind.size()), ind.data()));
        };
        std::set<int> vars;
        for (int j = 0; j < 8; j++)
            if (gone.vars.count(order[j]))
                vars.insert(j);
        remove(KVXdelvars, vars);
        remove(KVXdelqconstrs, gone.qconstrs);
        remove(KVXdelconstrs, gone.constrs);
        remove(KVXdelsos, gone.sos);
        EXPECT_EQ(described(expected.get()), described(whole.get()));
    }
}

// Every kind of general constraint by its number, as it reads back, and why the last ones can't be
// solved.
TEST(Build, TakesInAndGivesBackAllKindsOfConstraints) {
    static const int vars[] = {2, 0, 1},
                     codes[] = {KVX_NL_MULTIPLY, KVX_NL_VARIABLE, KVX_NL_SQRT, KVX_NL_CONSTANT};
    static const int parents[] = {-1, 0, 0, 2};
    static const double numbers[] = {0, 1, 2.5, 4}, nodes[] = {9, 2, 0, 16};
    const char *const o = "tolerance=1";
    const struct {
        std::function<int(KVXmodel *)> add;
        const char *text, *refusal;
    } kinds[] = {
        {[](auto m) { return KVXaddgenconstrMax(m, "g", 3, 3, vars, 7); }, "3 -1 7 ; 2; 0; 1", ""},
        {[](auto m) { return KVXaddgenconstrMin(m, "g", 3, 2, vars, inf); }, "3 -1 1e+100 ; 2; 0",
         ""},
        {[](auto m) { return KVXaddgenconstrAbs(m, "g", 3, 1); }, "3 1 -1 ", ""},
        {[](auto m) { return KVXaddgenconstrAnd(m, "g", 3, 1, vars); }, "3 -1 -1 ; 2", ""},
        {[](auto m) { return KVXaddgenconstrOr(m, "g", 3, 0, vars); }, "3 -1 -1 ", ""},
        {[](auto m) { return KVXaddgenconstrNorm(m, "g", 3, 2, vars, 2); }, "3 -1 2 ; 2; 0",
         "norm 2"},
        {[](auto m) {
             return KVXaddgenconstrIndicator(m, "g", 1, 0, 2, vars, numbers + 1, '<', 6);
         },
         "1 0 6<; 2 1; 0 2.5", ""},
        {[](auto m) { return KVXaddgenconstrPWL(m, "g", 1, 2, 2, numbers, nodes + 1); },
         "1 2 -1 ; 0 2; 1 0", ""},
        {[o](auto m) { return KVXaddgenconstrPoly(m, "g", 1, 2, 3, numbers + 1, o); },
         "1 2 -1 ; 1; 2.5; 4", "Poly"},
        {[o](auto m) { return KVXaddgenconstrExp(m, "g", 0, 1, o); }, "0 1 -1 ", "Exp"},
        {[o](auto m) { return KVXaddgenconstrExpA(m, "g", 0, 1, o, 3); }, "0 1 3 ", "ExpA"},
        {[o](auto m) { return KVXaddgenconstrLog(m, "g", 0, 2, o); }, "0 2 -1 ", "Log"},
        {[o](auto m) { return KVXaddgenconstrLogA(m, "g", 2, 1, o, 2); }, "2 1 2 ", "LogA"},
        {[o](auto m) { return KVXaddgenconstrPow(m, "g", 0, 3, o, -2); }, "0 3 -2 ", "Pow"},
        {[o](auto m) { return KVXaddgenconstrSin(m, "g", 3, 1, o); }, "3 1 -1 ", "Sin"},
        {[o](auto m) { return KVXaddgenconstrCos(m, "g", 1, 1, o); }, "1 1 -1 ", "Cos"},
        {[o](auto m) { return KVXaddgenconstrTan(m, "g", 2, 0, o); }, "2 0 -1 ", "Tan"},
        {[o](auto m) { return KVXaddgenconstrLogistic(m, "g", 1, 0, o); }, "1 0 -1 ", "Logistic"},
        {[](auto m) { return KVXaddgenconstrNL(m, "g", 2, 4, codes, nodes, parents); },
         "2 -1 -1 ; 4 9 -1; 1 2 0; 8 0 0; 0 16 2", "NL"}};
    Env env;
    int kind = 0;
    for (auto &[add, text, refusal] : kinds) {
        Model model = Data{Vector(4), {}, {}, "BBBB", {}}.build(env);
        MUST(model, add(model.get()));
        Model copy;
        KVXmodel *copied = nullptr;
        MUST(model, KVXcopymodeltoenv(model.get(), env, &copied));
        copy.reset(copied);
        EXPECT_EQ(text, describedGeneral(copied, 0));
        EXPECT_EQ(described(model.get()), described(copied));
        int type = -1;
        MUST(model, KVXgetintattrelement(copied, "GenConstrType", 0, &type));
        EXPECT_EQ(kind++, type);
        expectRefusal(model, refusal);
    }
    EXPECT_EQ(19, kind);
}

// Terms of equal products are summed, whatever their order, and cancel out.
TEST(Build, KeepsQuadraticData) {
    Env env;
    Model model = Data{{0, 0, 0}, {}, {}, {}, {}}.build(env);
    KVXmodel *m = model.get();
    const int row[] = {2, 1, 0, 1}, col[] = {0, 1, 2, 0}, lind[] = {2};
    const double val[] = {1, 2, 3, 4};
    MUST(model, KVXaddqpterms(m, 4, row, col, val));
    EXPECT_EQ(1, intAttr(model, "IsQP"));
    int num = 0, ind[4], second[4];
    double values[4];
    auto terms = [&] {
        std::string text;
        for (int k = 0; k < num; k++)
            text += std::to_string(ind[k]) + std::to_string(second[k]) + ' ' +
                    std::to_string(static_cast<int>(values[k])) + ';';
        return text;
    };
    MUST(model, KVXgetq(m, &num, ind, second, values));
    EXPECT_EQ("01 4;02 4;11 2;", terms());
    expectRefusal(model, "convex");
    const double minus[] = {-4, 1};
    MUST(model, KVXaddqpterms(m, 2, row, col, minus));
    MUST(model, KVXgetq(m, &num, ind, second, values));
    EXPECT_EQ("01 4;11 3;", terms());
    MUST(model, KVXsetobjective(m, KVX_MAXIMIZE, 0, nullptr, nullptr, 1, row, col, val, 0));
    EXPECT_EQ(1, intAttr(model, "NumQNZs"));
    MUST(model, KVXdelq(m));
    EXPECT_EQ(0, intAttr(model, "NumQNZs") + intAttr(model, "IsQP"));

    MUST(model, KVXaddqconstr(m, 1, lind, val, 2, row, col, val, '>', 5, nullptr));
    MUST(model, KVXgetqconstr(m, 0, nullptr, nullptr, nullptr, &num, ind, second, values));
    EXPECT_EQ("02 1;11 2;", terms());
    MUST(model, KVXgetqconstr(m, 0, &num, ind, values, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(std::pair(2, 1.0), std::pair(ind[0], values[0]));
    const char *name = nullptr;
    MUST(model, KVXgetstrattrelement(m, "QConstrName", 0, &name));
    EXPECT_STREQ("Q0", name);
    EXPECT_NE(std::string::npos, described(m).find("QConstrRHS 5\nQConstrSense >\n"));
    MUST(model, KVXsetdblattrelement(m, "QConstrRHS", 0, 6));
    MUST(model, KVXsetcharattrelement(m, "QConstrSense", 0, '<'));
    EXPECT_NE(std::string::npos, described(m).find("QConstrRHS 6\nQConstrSense <\n"));
    expectRefusal(model, "quadratic constraint Q0");
    EXPECT_EQ(KVX_ERROR_INDEX_OUT_OF_RANGE,
              KVXgetqconstr(m, 1, &num, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
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
    const int none[] = {0, 0}, back[] = {1, 0}, far[] = {0, 99}, type = 1, four = 4;
    const double ones[] = {1, 1}, nans[] = {1, nan}, low[] = {0, 5};
    const char *bad[] = {"fine", "b\xc3("}, *empty[] = {"fine", ""};
    const int invalid = KVX_ERROR_INVALID_ARGUMENT, range = KVX_ERROR_INDEX_OUT_OF_RANGE,
              null = KVX_ERROR_NULL_ARGUMENT, unknown = KVX_ERROR_UNKNOWN_ATTRIBUTE;
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
    refuse(invalid, "general constraint max needs variable x0", KVXdelvars(m, 1, back));
    refuse(invalid, "general constraint ind needs variable x3", KVXdelvars(m, 1, &four));
    refuse(invalid, "finite", KVXchgcoeffs(m, 2, none, none, nans));
    refuse(invalid, "finite", KVXsetobjective(m, 1, 1, back, ones, 2, none, none, nans, 0));
    refuse(range, "variable 99", KVXaddqpterms(m, 2, none, far, ones));
    refuse(range, "quadratic constraint 99", KVXdelqconstrs(m, 2, far));
    refuse(invalid, "sense", KVXaddqconstr(m, 1, none, ones, 1, none, none, ones, 'x', 1, nullptr));
    refuse(invalid, "sense", KVXsetcharattrarray(m, "QConstrSense", 0, 2, "<x"));
    refuse(invalid, "coefficients", KVXaddgenconstrPoly(m, "g", 0, 1, 0, nullptr, nullptr));
    refuse(invalid, "base", KVXaddgenconstrLogA(m, "g", 0, 1, nullptr, 1));
    refuse(invalid, "norm", KVXaddgenconstrNorm(m, "g", 0, 2, back, 3));
    const struct {
        const char *text;
        int status;
        std::vector<int> codes, parents;
        Vector data;
    } trees[] = {{"nodes", invalid, {}, {}, {}},
                 {"parent", invalid, {KVX_NL_PLUS}, {0}, {0}},
                 {"parent", invalid, {KVX_NL_PLUS, KVX_NL_CONSTANT}, {-1, -1}, {0, 0}},
                 {"parent", invalid, {KVX_NL_SIN, KVX_NL_CONSTANT}, {-1, 1}, {0, 0}},
                 {"operands", invalid, {KVX_NL_SIN}, {-1}, {0}},
                 {"operands", invalid, {KVX_NL_POWER, KVX_NL_CONSTANT}, {-1, 0}, {0, 0}},
                 {"operands", invalid, {KVX_NL_CONSTANT, KVX_NL_CONSTANT}, {-1, 0}, {0, 0}},
                 {"operation", invalid, {15}, {-1}, {0}},
                 {"finite", invalid, {KVX_NL_CONSTANT}, {-1}, {nan}},
                 {"index", invalid, {KVX_NL_VARIABLE}, {-1}, {0.5}},
                 {"variable 8", range, {KVX_NL_VARIABLE}, {-1}, {8}}};
    for (auto &[text, status, codes, parents, data] : trees)
        refuse(status, text,
               KVXaddgenconstrNL(m, "g", 0, static_cast<int>(codes.size()), codes.data(),
                                 data.data(), parents.data()));
    refuse(range, "variable 99", KVXaddgenconstrMin(m, "g", 0, 2, far, 0));
    refuse(range, "2", KVXaddgenconstrIndicator(m, "g", 3, 2, 2, back, ones, '<', 1));
    refuse(unknown, "LB", KVXsetintattrelement(m, "LB", 0, 1));
    refuse(KVX_ERROR_READ_ONLY, "NumVars", KVXsetintattr(m, "NumVars", 1));
    refuse(range, "7 on", KVXsetdblattrarray(m, "UB", 7, 2, ones));
    refuse(range, "99", KVXsetdblattrlist(m, "Obj", 2, far, low));
    refuse(invalid, "type", KVXsetcharattrarray(m, "VarType", 0, 2, "IX"));
    refuse(invalid, "empty", KVXsetstrattrarray(m, "ConstrName", 0, 2, empty));
    refuse(KVX_ERROR_VALUE_OUT_OF_RANGE, "binary", KVXsetdblattrelement(m, "UB", 0, 5));
}

} // namespace
