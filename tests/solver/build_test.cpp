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
    // Absent parts of an objective.
    MUST(model, KVXsetobjective(handle, 0, -1, nullptr, nullptr, -2, nullptr, nullptr, nullptr, 7));
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
              null = KVX_ERROR_NULL_ARGUMENT, unknown = KVX_ERROR_UNKNOWN_ATTRIBUTE;
    const int minus = -1;
    double x = 0;
    auto refuse = [&](int expected, const char *text, int status) {
        EXPECT_EQ(expected, status) << text;
        EXPECT_NE(nullptr, std::strstr(KVXgetmerrormsg(m), text)) << KVXgetmerrormsg(m);
        EXPECT_EQ(before, described(m)) << text;
    };
    refuse(invalid, "negative", KVXaddvars(m, -1, 0, none, none, ones, ones, low, high, "CC", bad));
    refuse(invalid, "negative", KVXaddvars(m, 2, -2, none, none, ones, ones, low, high, "CC", bad));
    refuse(invalid, "contradict",
           KVXaddvars(m, 2, 0, none, none, ones, ones, low, high, "CC", nullptr));
    refuse(invalid, "contradict",
           KVXaddvars(m, 2, 0, none, none, ones, ones, low, nullptr, "BB", nullptr));
    refuse(invalid, "number",
           KVXaddvars(m, 2, 0, none, none, ones, ones, nans, nullptr, "CC", nullptr));
    refuse(invalid, "finite",
           KVXaddvars(m, 2, 0, none, none, ones, nans, nullptr, nullptr, "CC", nullptr));
    refuse(invalid, "type",
           KVXaddvars(m, 2, 0, none, none, ones, ones, nullptr, nullptr, "CX", nullptr));
    refuse(invalid, "name",
           KVXaddvars(m, 2, 0, none, none, ones, ones, nullptr, nullptr, "CC", bad));
    refuse(range, "constraint 99",
           KVXaddvars(m, 2, 2, none, far, ones, ones, nullptr, nullptr, "CC", nullptr));
    refuse(invalid, "begin", KVXaddconstrs(m, 2, 2, back, none, ones, "<<", ones, nullptr));
    refuse(invalid, "begin", KVXaddconstrs(m, 2, 2, far, none, ones, "<<", ones, nullptr));
    refuse(null, "null", KVXaddconstrs(m, 2, 2, nullptr, none, ones, "<<", ones, nullptr));
    refuse(null, "null", KVXaddconstrs(m, 2, 2, none, none, nullptr, "<<", ones, nullptr));
    refuse(null, "null", KVXaddconstrs(m, 2, 0, nullptr, nullptr, nullptr, nullptr, ones, nullptr));
    refuse(range, "variable 99", KVXaddconstrs(m, 2, 2, none, far, ones, "<<", ones, nullptr));
    refuse(invalid, "sense", KVXaddconstrs(m, 2, 0, none, none, ones, "<x", ones, nullptr));
    refuse(invalid, "finite", KVXaddconstrs(m, 2, 2, none, none, nans, "<<", ones, nullptr));
    refuse(invalid, "contradict",
           KVXaddrangeconstrs(m, 2, 0, none, none, ones, low, high, nullptr));
    refuse(range, "variable 99", KVXaddqpterms(m, 2, none, far, ones));
    refuse(range, "variable 99", KVXaddqconstr(m, 2, far, ones, 0, none, none, ones, '<', 1, "q"));
    refuse(invalid, "finite", KVXaddqconstr(m, 2, none, ones, 0, none, none, ones, '<', nan, "q"));
    refuse(invalid, "type 3", KVXaddsos(m, 2, 2, types, none, back, ones));
    refuse(invalid, "twice", KVXaddsos(m, 1, 2, types, none, twice, ones));
    refuse(range, "variable 99", KVXdelvars(m, 2, far));
    refuse(invalid, "general constraint max needs variable x0", KVXdelvars(m, 1, none));
    refuse(range, "constraint -1", KVXdelconstrs(m, 1, &minus));
    refuse(range, "SOS 99", KVXdelsos(m, 2, far));
    refuse(range, "variable 99", KVXchgcoeffs(m, 2, none, far, ones));
    refuse(invalid, "finite", KVXchgcoeffs(m, 2, none, none, nans));
    refuse(invalid, "sense 2", KVXsetobjective(m, 2, 0, none, ones, 0, none, none, ones, 0));
    refuse(invalid, "finite", KVXsetobjective(m, 1, 2, back, nans, 0, none, none, ones, 0));
    refuse(range, "objective 1", KVXsetobjectiven(m, 1, 0, "o", 0, none, ones, 0, 1, 0, 0));
    refuse(invalid, "tolerance", KVXsetobjectiven(m, 0, 0, "o", 0, none, ones, 0, 1, -1, 0));
    refuse(invalid, "decreases", KVXsetpwlobj(m, 0, 2, down, ones));
    refuse(range, "variable 99", KVXaddgenconstrMin(m, "g", 0, 2, far, 0));
    refuse(invalid, "norm", KVXaddgenconstrNorm(m, "g", 0, 2, back, 3));
    refuse(invalid, "binval", KVXaddgenconstrIndicator(m, "g", 3, 2, 2, back, ones, '<', 1));
    refuse(invalid, "base", KVXaddgenconstrLogA(m, "g", 0, 1, nullptr, -2));
    refuse(invalid, "parent", KVXaddgenconstrNL(m, "g", 0, 2, none, ones, none));
    refuse(invalid, "breakpoints", KVXaddgenconstrPWL(m, "g", 0, 1, 0, nullptr, nullptr));
    refuse(unknown, "Foo", KVXsetintattr(m, "Foo", 1));
    refuse(unknown, "double", KVXsetintattrelement(m, "LB", 0, 1));
    refuse(KVX_ERROR_READ_ONLY, "NumVars", KVXsetintattr(m, "NumVars", 1));
    refuse(invalid, "contradict", KVXsetdblattrelement(m, "LB", 0, 99));
    refuse(invalid, "number", KVXsetdblattrarray(m, "UB", 0, 2, nans));
    refuse(range, "variables", KVXsetdblattrarray(m, "UB", 7, 2, ones));
    refuse(range, "99", KVXsetdblattrlist(m, "Obj", 2, far, low));
    refuse(null, "null", KVXsetdblattrlist(m, "Obj", 2, nullptr, low));
    refuse(invalid, "type", KVXsetcharattrarray(m, "VarType", 0, 2, "IX"));
    refuse(invalid, "name", KVXsetstrattrarray(m, "VarName", 0, 2, bad));
    refuse(KVX_ERROR_VALUE_OUT_OF_RANGE, "binary", KVXsetdblattrelement(m, "UB", 4, 5));
    refuse(KVX_ERROR_DATA_NOT_AVAILABLE, "X", KVXgetdblattrelement(m, "X", 0, &x));
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
