// Building and reading back, deletion, and bad input to the functions that build.
#include "solver_case.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <sstream>

namespace {

const double nan = std::numeric_limits<double>::quiet_NaN();

// The text of a model with something of everything, without these rows and sets, and without the
// terms, bounds and members of these variables, each of which is a word there.
std::string without(const std::vector<std::string> &gone) {
    std::istringstream lines(contents(caseFile("whole.lp")));
    std::string text;
    for (std::string line; std::getline(lines, line); text += '\n') {
        std::istringstream words(line);
        for (std::string word; words >> word;) {
            const bool isGone = std::any_of(gone.begin(), gone.end(), [&](const auto &name) {
                return word.find(name) != std::string::npos;
            });
            if (isGone && word.back() == ':')
                break;
            text += isGone ? "" : word + ' ';
        }
    }
    return text;
}

int find(const Model &model, const std::string &name) {
    int index = -1;
    KVXgetvarbyname(model.get(), name.c_str(), &index);
    return index;
}

// The model of such a text, and what files don't hold.
Model built(KVXenv *env, const std::string &text) {
    Model model = fromText(env, text);
    KVXmodel *m = model.get();
    auto ok = [&](int status) { EXPECT_EQ(KVX_OK, status) << KVXgetmerrormsg(m); };
    const int x0 = find(model, "x0"), x1 = x0 + 1, x2 = x0 + 2, x3 = x0 + 3;
    std::vector<int> ind;
    Vector val;
    for (auto [name, coefficient] : {std::pair{"x5", 6}, {"x2", 3}, {"x6", 7}})
        if (int index = find(model, name); index >= 0) {
            ind.push_back(index);
            val.push_back(coefficient);
        }
    ok(KVXaddgenconstrIndicator(m, "ind", x3, 1, static_cast<int>(ind.size()), ind.data(),
                                val.data(), '>', 2));
    ok(KVXaddgenconstrMax(m, "max", x0, 1, &x1, -inf));
    ok(KVXaddgenconstrAbs(m, nullptr, x1, x2));
    const double x[] = {0, 1, 1, 2}, y[] = {0, 1, 2, 2};
    ok(KVXaddgenconstrPWL(m, "pwl", x3, x1, 4, x, y));
    ok(KVXsetpwlobj(m, x2, 4, x, y));
    ok(KVXaddgenconstrPow(m, "pow", x2, x0, "a=1", 3));
    const int codes[] = {KVX_NL_PLUS, KVX_NL_VARIABLE, KVX_NL_VARIABLE, KVX_NL_CONSTANT},
              parents[] = {-1, 0, 0, 0};
    const double data[] = {-1, 1.0 * x2, 1.0 * x3, 3};
    ok(KVXaddgenconstrNL(m, "nl", x1, 4, codes, data, parents));
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
    const std::vector<std::string> cases[] = {
        {"x7"},
        {"r0", "q0"},
        {"s0", "q2"},
        {"x7", "x6", "x5", "x4"},
        {"x7", "x6", "r1", "s1"},
        {"x7", "x4", "r2", "r1", "r0", "s1", "s0", "q2", "q1", "q0"}};
    const std::pair<char, int (*)(KVXmodel *, int, const int *)> deleters[] = {
        {'x', KVXdelvars}, {'q', KVXdelqconstrs}, {'r', KVXdelconstrs}, {'s', KVXdelsos}};
    for (const auto &gone : cases) {
        Model model = built(env, without({})), expected = built(env, without(gone));
        for (auto [kind, deleter] : deleters) {
            std::vector<int> ind;
            for (const std::string &name : gone)
                if (name[0] == kind)
                    ind.push_back(kind == 'x' ? find(model, name) : name[1] - '0');
            MUST(model, deleter(model.get(), static_cast<int>(ind.size()), ind.data()));
        }
        EXPECT_EQ(described(expected.get()), described(model.get()));
    }
}

// Every kind of general constraint by its number, as it reads back, and why the last ones can't be
// solved.
TEST(Build, TakesInAndGivesBackAllKindsOfConstraints) {
    static const int vars[] = {2, 0, 1},
                     codes[] = {KVX_NL_MULTIPLY, KVX_NL_VARIABLE, KVX_NL_SQRT, KVX_NL_CONSTANT};
    static const int parents[] = {-1, 0, 0, 2};
    static const double numbers[] = {0, 1, 2.5, 4}, nodes[] = {9, 2, 0, 16};
    const char *const o = "t";
    const struct {
        std::function<int(KVXmodel *)> add;
        const char *text, *refusal = "";
    } kinds[] = {
        {[](auto m) { return KVXaddgenconstrMax(m, "g", 3, 3, vars, 7); }, "3 -1 7 ; 2; 0; 1"},
        {[](auto m) { return KVXaddgenconstrMin(m, "g", 3, 2, vars, inf); }, "3 -1 1e+100 ; 2; 0"},
        {[](auto m) { return KVXaddgenconstrAbs(m, "g", 3, 1); }, "3 1 -1 "},
        {[](auto m) { return KVXaddgenconstrAnd(m, "g", 3, 1, vars); }, "3 -1 -1 ; 2"},
        {[](auto m) { return KVXaddgenconstrOr(m, "g", 3, 0, vars); }, "3 -1 -1 "},
        {[](auto m) { return KVXaddgenconstrNorm(m, "g", 3, 2, vars, 2); }, "3 -1 2 ; 2; 0",
         "norm 2"},
        {[](auto m) {
             return KVXaddgenconstrIndicator(m, "g", 1, 0, 2, vars, numbers + 1, '<', 6);
         },
         "1 0 6<; 2 1; 0 2.5"},
        {[](auto m) { return KVXaddgenconstrPWL(m, "g", 1, 2, 2, numbers, nodes + 1); },
         "1 2 -1 ; 0 2; 1 0"},
        {[o](auto m) { return KVXaddgenconstrPoly(m, "g", 1, 2, 3, numbers + 1, o); },
         "1 2 -1 ; 1; 2.5; 4t", "Poly"},
        {[o](auto m) { return KVXaddgenconstrExp(m, "g", 0, 1, o); }, "0 1 -1 t", "Exp"},
        {[o](auto m) { return KVXaddgenconstrExpA(m, "g", 0, 1, o, 3); }, "0 1 3 t", "ExpA"},
        {[o](auto m) { return KVXaddgenconstrLog(m, "g", 0, 2, o); }, "0 2 -1 t", "Log"},
        {[o](auto m) { return KVXaddgenconstrLogA(m, "g", 2, 1, o, 2); }, "2 1 2 t", "LogA"},
        {[o](auto m) { return KVXaddgenconstrPow(m, "g", 0, 3, o, -2); }, "0 3 -2 t", "Pow"},
        {[o](auto m) { return KVXaddgenconstrSin(m, "g", 3, 1, o); }, "3 1 -1 t", "Sin"},
        {[o](auto m) { return KVXaddgenconstrCos(m, "g", 1, 1, o); }, "1 1 -1 t", "Cos"},
        {[o](auto m) { return KVXaddgenconstrTan(m, "g", 2, 0, o); }, "2 0 -1 t", "Tan"},
        {[o](auto m) { return KVXaddgenconstrLogistic(m, "g", 1, 0, o); }, "1 0 -1 t", "Logistic"},
        {[](auto m) { return KVXaddgenconstrNL(m, "g", 2, 4, codes, nodes, parents); },
         "2 -1 -1 ; 4 9 -1; 1 2 0; 8 0 0; 0 16 2", "NL"}};
    Env env;
    int kind = 0;
    for (auto &[add, text, refusal] : kinds) {
        Model model = Data{Vector(4), {}, {}, {}, {}}.build(env);
        MUST(model, inScarceMemory(model, add));
        KVXmodel *copied = nullptr;
        MUST(model, KVXcopymodeltoenv(model.get(), env, &copied));
        Model copy(copied);
        EXPECT_EQ(text, describedGeneral(copied, 0));
        EXPECT_EQ(described(model.get()), described(copied));
        EXPECT_EQ(kind++, intAttrs(copy, "GenConstrType", 1)[0]);
        EXPECT_EQ(1, intAttr(copy, "IsMIP"));
        expectRefusal(model, refusal);
    }
    EXPECT_EQ(19, kind);
}

// Calls, one after the other, and the text of what they make of a model if there is one. Entries in
// one place are summed when a model is loaded; so are terms of equal products, whatever their
// order, and cancel out. An objective is replaced as a whole; without a sense it keeps the one that
// it has.
TEST(Build, CallsMakeWhatTextsSay) {
    Env env;
    static const int beg[] = {3, 0, 5}, len[] = {2, 3, 0}, ind[] = {1, 0, 1, 0, 1}, two = 2;
    static const int row[] = {2, 1, 0, 1}, col[] = {0, 1, 2, 0}, begins[] = {0, 2}, zeros[2] = {};
    static const double obj[] = {1, 2, 3}, val[] = {1, 2, 3, 5, -5}, rhs[] = {4, 6}, seven = 7,
                        minus[] = {-4, 1};
    static const char *const names[] = {"a_name_too_long_to_be_kept_in_place", "b"};
    KVXmodel *loaded = nullptr;
    ASSERT_EQ(KVX_OK,
              KVXloadmodel(env, &loaded, nullptr, 3, 2, KVX_MAXIMIZE, 2, obj, "<=", rhs, beg, len,
                           ind, val, nullptr, nullptr, nullptr, nullptr, nullptr));
    Model model(loaded);
    const std::pair<std::function<int(KVXmodel *)>, const char *> steps[] = {
        {[](auto m) { return KVXupdatemodel(m); },
         "max 2 + C0 + 2 C1 + 3 C2 st R0: 5 C0 + 2 C1 <= 4 R1: -5 C0 + 4 C1 = 6"},
        {[](auto m) { return KVXchgcoeffs(m, 1, zeros, &two, &seven); },
         "max 2 + C0 + 2 C1 + 3 C2 st R0: 5 C0 + 2 C1 + 7 C2 <= 4 R1: -5 C0 + 4 C1 = 6"},
        {[](auto m) { return KVXdelconstrs(m, 2, ind); }, "max 2 + C0 + 2 C1 + 3 C2"},
        {[](auto m) { return KVXsetdblattrarray(m, "Obj", 1, 2, rhs); },
         "max 2 + C0 + 4 C1 + 6 C2"},
        {[](auto m) { return KVXaddqpterms(m, 4, row, col, val); },
         "max 2 + C0 + 4 C1 + 6 C2 + [ 8 C0 * C2 + 4 C1 ^2 + 10 C0 * C1 ] / 2"},
        {[](auto m) { return KVXaddqpterms(m, 2, row, col, minus); },
         "max 2 + C0 + 4 C1 + 6 C2 + [ 6 C1 ^2 + 10 C0 * C1 ] / 2"},
        {[](auto m) { return KVXsetpwlobj(m, 0, 2, obj, obj); }, nullptr},
        {[](auto m) { return KVXsetpwlobj(m, 0, 0, nullptr, nullptr); },
         "max 2 + 0 C0 + 4 C1 + 6 C2 + [ 6 C1 ^2 + 10 C0 * C1 ] / 2"},
        {[](auto m) { return KVXsetobjectiven(m, 0, 1, names[0], 1, &two, obj, 0, 1, 0, 0); },
         nullptr},
        {[](auto m) { return KVXsetobjective(m, 0, 1, &two, &seven, 1, row, col, val, 3); },
         "max 3 + 0 C0 + 0 C1 + 7 C2 + [ 2 C0 * C2 ] / 2"},
        {[](auto m) { return KVXdelq(m); }, "max 3 + 0 C0 + 0 C1 + 7 C2"},
        {[](auto m) { return KVXaddqconstr(m, 1, &two, val, 2, row, col, val, '>', 5, nullptr); },
         "max 3 + 0 C0 + 0 C1 + 7 C2 st Q0: C2 + [ C0 * C2 + 2 C1 ^2 ] >= 5"},
        {[](auto m) { return KVXsetdblattrelement(m, "QConstrRHS", 0, 6); },
         "max 3 + 0 C0 + 0 C1 + 7 C2 st Q0: C2 + [ C0 * C2 + 2 C1 ^2 ] >= 6"},
        {[](auto m) { return KVXsetcharattrelement(m, "QConstrSense", 0, '<'); },
         "max 3 + 0 C0 + 0 C1 + 7 C2 st Q0: C2 + [ C0 * C2 + 2 C1 ^2 ] <= 6"},
        {[](auto m) { return KVXdelqconstrs(m, 1, zeros); }, "max 3 + 0 C0 + 0 C1 + 7 C2"},
        {[](auto m) { return KVXaddconstrs(m, 2, 4, begins, ind, val, ">=", rhs, names); },
         "max 3 + 0 C0 + 0 C1 + 7 C2 st a_name_too_long_to_be_kept_in_place: C1 + 2 C0 >= 4\n"
         "b: 3 C1 + 5 C0 = 6"},
        {[](auto m) { return KVXdelconstrs(m, 1, zeros); },
         "max 3 + 0 C0 + 0 C1 + 7 C2 st b: 3 C1 + 5 C0 = 6"},
        {[](auto m) { return KVXaddrangeconstrs(m, 2, 4, begins, row, val, obj, rhs, nullptr); },
         "max 3 + 0 C0 + 0 C1 + 7 C2 st b: 3 C1 + 5 C0 = 6 R4: 1 <= C2 + 2 C1 <= 4\n"
         "R5: 2 <= 3 C0 + 5 C1 <= 6"},
        {[](auto m) { return KVXsetstrattrarray(m, "ConstrName", 1, 2, names); },
         "max 3 + 0 C0 + 0 C1 + 7 C2 st b: 3 C1 + 5 C0 = 6\n"
         "a_name_too_long_to_be_kept_in_place: 1 <= C2 + 2 C1 <= 4 b: 2 <= 3 C0 + 5 C1 <= 6"},
        {[](auto m) { return KVXdelconstrs(m, 2, ind); },
         "max 3 + 0 C0 + 0 C1 + 7 C2 st b: 2 <= 3 C0 + 5 C1 <= 6"},
        {[](auto m) {
             return KVXaddvars(m, 2, 2, ind + 1, zeros, val, rhs, obj, rhs, "IC", names);
         },
         "max 3 + 0 C0 + 0 C1 + 7 C2 + 4 a_name_too_long_to_be_kept_in_place + 6 b\n"
         "st b: 2 <= 3 C0 + 5 C1 + a_name_too_long_to_be_kept_in_place + 2 b <= 6\n"
         "bounds 1 <= a_name_too_long_to_be_kept_in_place <= 4 2 <= b <= 6\n"
         "int a_name_too_long_to_be_kept_in_place"},
        {[](auto m) { return KVXdelvars(m, 2, col + 2); },
         "max 3 + 0 C1 + 4 a_name_too_long_to_be_kept_in_place + 6 b\n"
         "st b: 2 <= 5 C1 + a_name_too_long_to_be_kept_in_place + 2 b <= 6\n"
         "bounds 1 <= a_name_too_long_to_be_kept_in_place <= 4 2 <= b <= 6\n"
         "int a_name_too_long_to_be_kept_in_place"},
        {[](auto m) { return KVXsetstrattrarray(m, "VarName", 0, 2, names); }, nullptr},
        {[](auto m) { return KVXaddsos(m, 2, 4, row, begins, ind, val); }, nullptr}};
    for (const auto &[call, text] : steps) {
        const std::string before = described(loaded);
        MUST(model, inScarceMemory(model, call));
        const std::string after = described(loaded);
        if (text) {
            EXPECT_EQ(described(fromText(env, text).get()), after) << text;
        } else {
            EXPECT_NE(before, after);
        }
    }
    int members = 0, type = 0;
    MUST(model, KVXgetsos(loaded, &members, &type, nullptr, nullptr, nullptr, 1, 1));
    EXPECT_EQ(KVX_SOS_TYPE1, type); // of the second one
}

// What can be stored and not be solved, and the part of the text that says why.
TEST(Build, RefusesToSolveByName) {
    Env env;
    for (auto [text, why] : {std::pair{"min x + y + [ - 2 y ^2 ] / 2", "y"},
                             {"min x + y + [ 4 x * y ] / 2", "x"},
                             {"min x + y + [ 2 x ^2 + 6 x * y + 2 y ^2 ] / 2", "convex"},
                             {"min x + [ 2 x ^2 ] / 2 int x", "x"},
                             {"min x + 0 y + [ 2 x ^2 ] / 2 bounds 2 <= y <= 9 semi y", "sets"},
                             {"min x st c: y + [ x ^2 ] <= 4", "quadratic constraint c"}})
        expectRefusal(fromText(env, text), why);
}

// Terms of equal indices are summed, and dropped where they cancel out.
TEST(Build, TidiesSparseLists) {
    int ind[] = {2, 0, 2, 1}, first[] = {1, 0, 1, 1}, second[] = {2, 3, 2, 0}, length = 4;
    double val[] = {1, 3, -1, 4};
    Vector values = {1, 3, -1, 4};
    KVXclean2(&length, ind, val);
    EXPECT_EQ(std::vector({0, 1}), std::vector(ind, ind + length));
    EXPECT_EQ((Vector{3, 4}), Vector(val, val + length));
    length = 4;
    KVXclean3(&length, first, second, values.data());
    EXPECT_EQ(std::vector({0, 3, 1, 0}), std::vector({first[0], second[0], first[1], second[1]}));
    EXPECT_EQ((Vector{3, 4}), Vector(values.data(), values.data() + length));
}

TEST(Build, RefusesBadInputAndLeavesTheModelAlone) {
    Env env;
    Model owner = built(env, without({}));
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
    refuse(KVX_ERROR_VALUE_OUT_OF_RANGE, "binary", KVXsetdblattrelement(m, "LB", 0, -5));
    refuse(KVX_ERROR_VALUE_OUT_OF_RANGE, "basis", KVXsetintattrelement(m, "VarBasis", 0, 1));
}

} // namespace
