// Building and reading back, deletion, and bad input to the functions that build.
#include "solver_case.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <set>
#include <tuple>

namespace {

const double inf = KVX_INFINITY, nan = std::numeric_limits<double>::quiet_NaN();

struct List {
    std::vector<int> ind;
    std::vector<double> val;
    int size() const { return static_cast<int>(ind.size()); }
};

// What is deleted of a model, or left out when it is built.
struct Gone {
    std::set<int> vars, constrs, sos;
};

// Builds a model with something of everything, without what is gone.
class Builder {
  public:
    Builder(KVXenv *env, Gone gone) : gone(std::move(gone)) {
        EXPECT_EQ(KVX_OK,
                  KVXnewmodel(env, &model, "m", 0, nullptr, nullptr, nullptr, nullptr, nullptr));
        for (int j = 0, next = 0; j < 8; j++)
            number[j] = this->gone.vars.count(j) ? -1 : next++;
        for (int j = 0; j < 8; j++)
            if (number[j] >= 0)
                variable(j);
        row(0, {{4, 1, 0}, {3, -2, 1}}, '<', 4);
        row(1, {{5, 0, 6}, {1, 1, 2.5}}, '>', -1);
        row(2, {{7, 6, 5, 4, 3}, {1, 2, 3, 4, 5}}, '=', 0);
        sos(0, 1, {{0, 5, 6}, {1, 2, 3}});
        sos(1, 2, {{7, 4, 5, 6}, {4, 3, 2, 1}});
        List q = quadratic({{4, 0}, {5, 1}, {0, 0}}, {1, 2, 3}), l = list({{6, 3}, {1, -1}});
        ok(KVXaddqpterms(model, q.size() / 2, q.ind.data(), q.ind.data() + q.size() / 2,
                         q.val.data()));
        ok(KVXaddqconstr(model, l.size(), l.ind.data(), l.val.data(), q.size() / 2, q.ind.data(),
                         q.ind.data() + q.size() / 2, q.val.data(), '<', 7, "qc"));
        l = list({{5, 2, 6}, {1, 2, 3}});
        ok(KVXaddgenconstrIndicator(model, "ind", at(3), 1, l.size(), l.ind.data(), l.val.data(),
                                    '>', 2));
        const int operands[] = {at(1), at(2)};
        ok(KVXaddgenconstrMax(model, "max", at(0), 2, operands, -inf));
        ok(KVXaddgenconstrPow(model, nullptr, at(1), at(2), "o=1", 0.5));
        const int opcodes[] = {KVX_NL_PLUS, KVX_NL_VARIABLE, KVX_NL_CONSTANT},
                  parents[] = {-1, 0, 0};
        const double data[] = {0, static_cast<double>(at(2)), 1.5};
        ok(KVXaddgenconstrNL(model, "nl", at(1), 3, opcodes, data, parents));
        const double x[] = {0, 1, 1, 2}, y[] = {0, 1, 2, 2};
        ok(KVXsetpwlobj(model, at(2), 4, x, y));
    }

    KVXmodel *model = nullptr;

  private:
    void ok(int status) { EXPECT_EQ(KVX_OK, status) << KVXgetmerrormsg(model); }
    int at(int j) const { return number.at(j); }

    void variable(int j) {
        const double obj = j, lb = -j, ub = j == 3 ? 1 : 10 + j;
        const std::string name = "x" + std::to_string(j);
        const char *names[] = {name.c_str()};
        ok(KVXaddvars(model, 1, 0, nullptr, nullptr, nullptr, &obj, &lb, &ub, &"CIICBSNC"[j],
                      names));
    }

    List list(const List &all) const {
        List rest;
        for (size_t k = 0; k < all.ind.size(); k++)
            if (at(all.ind[k]) >= 0) {
                rest.ind.push_back(at(all.ind[k]));
                rest.val.push_back(all.val[k]);
            }
        return rest;
    }

    List quadratic(const std::vector<std::pair<int, int>> &terms, std::vector<double> val) const {
        List rest;
        std::vector<int> cols;
        for (size_t k = 0; k < terms.size(); k++)
            if (at(terms[k].first) >= 0 && at(terms[k].second) >= 0) {
                rest.ind.push_back(at(terms[k].first));
                cols.push_back(at(terms[k].second));
                rest.val.push_back(val[k]);
            }
        rest.ind.insert(rest.ind.end(), cols.begin(), cols.end());
        return rest;
    }

    void row(int i, const List &all, char sense, double rhs) {
        if (gone.constrs.count(i))
            return;
        const int beg = 0;
        List rest = list(all);
        const std::string name = "r" + std::to_string(i);
        const char *names[] = {name.c_str()};
        ok(KVXaddconstrs(model, 1, rest.size(), &beg, rest.ind.data(), rest.val.data(), &sense,
                         &rhs, names));
    }

    void sos(int s, int type, const List &all) {
        const int beg = 0;
        List rest = list(all);
        if (!gone.sos.count(s))
            ok(KVXaddsos(model, 1, rest.size(), &type, &beg, rest.ind.data(), rest.val.data()));
    }

    Gone gone;
    std::map<int, int> number;
};

TEST(Build, DeletionLeavesTheModelThatWasBuiltWithoutTheDeleted) {
    Env env;
    const Gone cases[] = {{{4}, {}, {}},          {{}, {0}, {}},      {{}, {}, {0}},
                          {{4, 5, 6, 7}, {}, {}}, {{5, 7}, {1}, {1}}, {{6}, {0, 1, 2}, {0, 1}}};
    for (const Gone &gone : cases) {
        Model whole(Builder(env, {}).model), expected(Builder(env, gone).model);
        auto remove = [&](auto deleter, const std::set<int> &items) {
            std::vector<int> ind(items.rbegin(), items.rend()); // in descending order
            EXPECT_EQ(KVX_OK, deleter(whole.get(), static_cast<int>(ind.size()), ind.data()))
                << KVXgetmerrormsg(whole.get());
        };
        remove(KVXdelvars, gone.vars);
        remove(KVXdelconstrs, gone.constrs);
        remove(KVXdelsos, gone.sos);
        EXPECT_EQ(described(expected.get()), described(whole.get()));
    }
}

TEST(Build, ReadsBackWhatWasAdded) {
    Env env;
    KVXmodel *handle = nullptr;
    const int beg[] = {3, 0, 5}, len[] = {2, 3, 0}, ind[] = {1, 0, 1, 0, 1};
    const double val[] = {1, 2, 3, 5, -5}, rhs[] = {4, 6};
    ASSERT_EQ(KVX_OK,
              KVXloadmodel(env, &handle, nullptr, 3, 2, KVX_MAXIMIZE, 2, nullptr, "<=", rhs, beg,
                           len, ind, val, nullptr, nullptr, nullptr, nullptr, nullptr));
    Model model(handle);
    int num = 0, begins[4], indices[8], index = -1;
    double values[8];
    // Entries of equal index are summed where the first stood.
    MUST(model, KVXgetvars(handle, &num, begins, indices, values, 0, 3));
    EXPECT_EQ((std::vector<int>{0, 2, 4, 4}), std::vector<int>(begins, begins + 4));
    EXPECT_EQ((std::vector<int>{0, 1, 1, 0}), std::vector<int>(indices, indices + num));
    EXPECT_EQ((std::vector<double>{5, -5, 4, 2}), std::vector<double>(values, values + num));
    const double lower[] = {-1, -inf, 3}, upper[] = {1, 5, 3};
    MUST(model, KVXaddrangeconstrs(handle, 3, 0, nullptr, nullptr, nullptr, lower, upper, nullptr));
    char senses[5];
    MUST(model, KVXgetcharattrarray(handle, "sense", 0, 5, senses));
    EXPECT_EQ("<=<<=", std::string(senses, 5));
    const int rows[] = {0, 0, 4}, cols[] = {0, 2, 1};
    const double changes[] = {0, 7, 8};
    MUST(model, KVXchgcoeffs(handle, 3, rows, cols, changes));
    MUST(model, KVXgetconstrs(handle, &num, begins, indices, values, 0, 1));
    EXPECT_EQ((std::vector<int>{1, 2}), std::vector<int>(indices, indices + num));
    MUST(model, KVXsetstrattrelement(handle, "VarName", 2, "C0"));
    MUST(model, KVXgetvarbyname(handle, "C0", &index));
    EXPECT_EQ(0, index); // named by its index
    MUST(model, KVXgetvarbyname(handle, "C1", &index));
    EXPECT_EQ(KVX_ERROR_NOT_FOUND, KVXgetvarbyname(handle, "C2", &index));
    int n = 5, a[] = {2, 1, 2, 0, 1}, b[] = {0, 1, 0, 0, 1};
    double v[] = {1, 2, 3, 4, -2};
    KVXclean3(&n, a, b, v);
    EXPECT_EQ((std::vector<double>{4, 4}), std::vector<double>(v, v + n));
}

TEST(Build, RefusesBadInputAndLeavesTheModelAlone) {
    Env env;
    Model owner(Builder(env, {}).model);
    KVXmodel *m = owner.get();
    const std::string before = described(m);
    const int none[] = {0, 0}, back[] = {1, 0}, far[] = {0, 99}, twice[] = {1, 1}, types[] = {1, 3};
    const double ones[] = {1, 1}, nans[] = {1, nan}, low[] = {0, 5}, high[] = {1, 4},
                 down[] = {2, 1};
    const char *bad[] = {"fine", "b\xc3("};
    const int invalid = KVX_ERROR_INVALID_ARGUMENT, range = KVX_ERROR_INDEX_OUT_OF_RANGE,
              null = KVX_ERROR_NULL_ARGUMENT;
    struct {
        int status;
        const char *text; // part of the error text
        std::function<int()> call;
    } const cases[] = {
        {invalid, "negative",
         [&] { return KVXaddvars(m, -1, 0, none, none, ones, ones, low, high, "CC", bad); }},
        {invalid, "negative",
         [&] { return KVXaddvars(m, 2, -2, none, none, ones, ones, low, high, "CC", bad); }},
        {invalid, "contradict",
         [&] { return KVXaddvars(m, 2, 0, none, none, ones, ones, low, high, "CC", nullptr); }},
        {invalid, "contradict",
         [&] { return KVXaddvars(m, 2, 0, none, none, ones, ones, low, nullptr, "BB", nullptr); }},
        {invalid, "number",
         [&] { return KVXaddvars(m, 2, 0, none, none, ones, ones, nans, nullptr, "CC", nullptr); }},
        {invalid, "finite",
         [&] {
             return KVXaddvars(m, 2, 0, none, none, ones, nans, nullptr, nullptr, "CC", nullptr);
         }},
        {invalid, "type",
         [&] {
             return KVXaddvars(m, 2, 0, none, none, ones, ones, nullptr, nullptr, "CX", nullptr);
         }},
        {invalid, "name",
         [&] { return KVXaddvars(m, 2, 0, none, none, ones, ones, nullptr, nullptr, "CC", bad); }},
        {range, "constraint 99",
         [&] {
             return KVXaddvars(m, 2, 2, none, far, ones, ones, nullptr, nullptr, "CC", nullptr);
         }},
        {invalid, "begin",
         [&] { return KVXaddconstrs(m, 2, 2, back, none, ones, "<<", ones, nullptr); }},
        {invalid, "begin",
         [&] { return KVXaddconstrs(m, 2, 2, far, none, ones, "<<", ones, nullptr); }},
        {null, "null",
         [&] { return KVXaddconstrs(m, 2, 2, nullptr, none, ones, "<<", ones, nullptr); }},
        {null, "null",
         [&] { return KVXaddconstrs(m, 2, 2, none, none, nullptr, "<<", ones, nullptr); }},
        {null, "null",
         [&] { return KVXaddconstrs(m, 2, 0, nullptr, nullptr, nullptr, nullptr, ones, nullptr); }},
        {range, "variable 99",
         [&] { return KVXaddconstrs(m, 2, 2, none, far, ones, "<<", ones, nullptr); }},
        {invalid, "sense",
         [&] { return KVXaddconstrs(m, 2, 0, none, none, ones, "<x", ones, nullptr); }},
        {invalid, "finite",
         [&] { return KVXaddconstrs(m, 2, 2, none, none, nans, "<<", ones, nullptr); }},
        {invalid, "contradict",
         [&] { return KVXaddrangeconstrs(m, 2, 0, none, none, ones, low, high, nullptr); }},
        {range, "variable 99", [&] { return KVXaddqpterms(m, 2, none, far, ones); }},
        {range, "variable 99",
         [&] { return KVXaddqconstr(m, 2, far, ones, 0, none, none, ones, '<', 1, "q"); }},
        {invalid, "finite",
         [&] { return KVXaddqconstr(m, 2, none, ones, 0, none, none, ones, '<', nan, "q"); }},
        {invalid, "type 3", [&] { return KVXaddsos(m, 2, 2, types, none, back, ones); }},
        {invalid, "twice", [&] { return KVXaddsos(m, 1, 2, types, none, twice, ones); }},
        {range, "variable 99", [&] { return KVXdelvars(m, 2, far); }},
        {invalid, "general constraint max needs variable x0",
         [&] { return KVXdelvars(m, 1, none); }},
        {range, "constraint -1",
         [&] {
             const int i = -1;
             return KVXdelconstrs(m, 1, &i);
         }},
        {range, "SOS 99", [&] { return KVXdelsos(m, 2, far); }},
        {range, "variable 99", [&] { return KVXchgcoeffs(m, 2, none, far, ones); }},
        {invalid, "finite", [&] { return KVXchgcoeffs(m, 2, none, none, nans); }},
        {invalid, "sense 2",
         [&] { return KVXsetobjective(m, 2, 0, none, ones, 0, none, none, ones, 0); }},
        {invalid, "finite",
         [&] { return KVXsetobjective(m, 1, 2, back, nans, 0, none, none, ones, 0); }},
        {range, "objective 1",
         [&] { return KVXsetobjectiven(m, 1, 0, "o", 0, none, ones, 0, 1, 0, 0); }},
        {invalid, "tolerance",
         [&] { return KVXsetobjectiven(m, 0, 0, "o", 0, none, ones, 0, 1, -1, 0); }},
        {invalid, "decreases", [&] { return KVXsetpwlobj(m, 0, 2, down, ones); }},
        {range, "variable 99", [&] { return KVXaddgenconstrMin(m, "g", 0, 2, far, 0); }},
        {invalid, "norm", [&] { return KVXaddgenconstrNorm(m, "g", 0, 2, back, 3); }},
        {invalid, "binval",
         [&] { return KVXaddgenconstrIndicator(m, "g", 3, 2, 2, back, ones, '<', 1); }},
        {invalid, "base", [&] { return KVXaddgenconstrLogA(m, "g", 0, 1, nullptr, -2); }},
        {invalid, "parent", [&] { return KVXaddgenconstrNL(m, "g", 0, 2, none, ones, none); }},
        {invalid, "breakpoints",
         [&] { return KVXaddgenconstrPWL(m, "g", 0, 1, 0, nullptr, nullptr); }},
        {KVX_ERROR_UNKNOWN_ATTRIBUTE, "Foo", [&] { return KVXsetintattr(m, "Foo", 1); }},
        {KVX_ERROR_UNKNOWN_ATTRIBUTE, "double",
         [&] { return KVXsetintattrelement(m, "LB", 0, 1); }},
        {KVX_ERROR_READ_ONLY, "NumVars", [&] { return KVXsetintattr(m, "NumVars", 1); }},
        {invalid, "contradict", [&] { return KVXsetdblattrelement(m, "LB", 0, 99); }},
        {invalid, "number", [&] { return KVXsetdblattrarray(m, "UB", 0, 2, nans); }},
        {range, "variables", [&] { return KVXsetdblattrarray(m, "UB", 7, 2, ones); }},
        {range, "99", [&] { return KVXsetdblattrlist(m, "Obj", 2, far, low); }},
        {null, "null", [&] { return KVXsetdblattrlist(m, "Obj", 2, nullptr, low); }},
        {invalid, "type", [&] { return KVXsetcharattrarray(m, "VarType", 0, 2, "IX"); }},
        {invalid, "name", [&] { return KVXsetstrattrarray(m, "VarName", 0, 2, bad); }},
        {KVX_ERROR_VALUE_OUT_OF_RANGE, "binary",
         [&] { return KVXsetdblattrelement(m, "UB", 4, 5); }},
        {KVX_ERROR_DATA_NOT_AVAILABLE, "X",
         [&] {
             double x;
             return KVXgetdblattrelement(m, "X", 0, &x);
         }},
    };
    for (auto &[status, text, call] : cases) {
        EXPECT_EQ(status, call()) << text;
        EXPECT_NE(nullptr, std::strstr(KVXgetmerrormsg(m), text)) << KVXgetmerrormsg(m);
        EXPECT_EQ(before, described(m)) << text;
    }
    EXPECT_EQ(invalid, KVXdelq(nullptr));
    const int lengths[] = {2, -1}, tooFar[] = {1, 1};
    KVXmodel *loaded = nullptr;
    for (auto [len, ind, sense, objsense] :
         {std::tuple(lengths, none, "<<", 1), std::tuple(none, far, "<<", 0),
          std::tuple(tooFar, far, "<<", 1), std::tuple(tooFar, none, "<?", 1)})
        EXPECT_NE(KVX_OK,
                  KVXloadmodel(env, &loaded, nullptr, 2, 2, objsense, 0, ones, sense, ones, back,
                               len, ind, ones, low, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(nullptr, loaded);
}

} // namespace
