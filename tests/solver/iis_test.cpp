// Infeasible subsystems: infeasible as they are, feasible without any one of their members.
#include "solver_case.h"

#include <random>
#include <set>

namespace {

// Attribute and index of a constraint, bound or set.
using Member = std::pair<std::string, int>;

constexpr int vars = 5, constrs = 4;
constexpr double infinity = KVX_INFINITY;

// A random model, all of it or only some members.
Model make(const Env &env, unsigned seed, const std::set<Member> *kept) {
    std::mt19937 random(seed);
    auto below = [&](unsigned limit) { return static_cast<int>(random() % limit); };
    auto has = [&](const char *attribute, int index) {
        return !kept || kept->count({attribute, index}) > 0;
    };
    KVXmodel *made = nullptr;
    double lb[vars], ub[vars];
    for (int j = 0; j < vars; j++) {
        lb[j] = below(3) - 1;
        ub[j] = lb[j] + below(4);
        lb[j] = has("IISLB", j) ? lb[j] : -infinity;
        ub[j] = has("IISUB", j) ? ub[j] : infinity;
    }
    std::string types(vars, seed % 2 ? 'I' : 'C');
    EXPECT_EQ(0, KVXnewmodel(env, &made, nullptr, vars, nullptr, lb, ub, types.c_str(), nullptr));
    for (int i = 0; i < constrs; i++) {
        int ind[3], beg = 0, first = below(vars);
        double val[3], lower = below(9) - 6, upper = lower + below(9);
        for (int k = 0; k < 3; k++) {
            ind[k] = (first + k) % vars;
            // With larger coefficients unbounded integers could go on forever.
            val[k] = seed % 2 ? below(3) - 1 : below(7) - 3;
        }
        if (!has("IISConstr", i))
            continue;
        EXPECT_EQ(0, KVXaddrangeconstrs(made, 1, 3, &beg, ind, val, &lower, &upper, nullptr));
    }
    return Model(made);
}

bool isInfeasible(const Model &model) {
    EXPECT_EQ(0, KVXoptimize(model.get())) << KVXgetmerrormsg(model.get());
    int status = intAttr(model, "Status");
    return status == KVX_STATUS_INFEASIBLE;
}

std::set<Member> members(const Model &model) {
    std::set<Member> found;
    for (auto [attribute, count] :
         {std::pair{"IISLB", vars}, {"IISUB", vars}, {"IISConstr", constrs}})
        for (int index = 0; index < count; index++) {
            int value = 0;
            EXPECT_EQ(0, KVXgetintattrelement(model.get(), attribute, index, &value));
            if (value)
                found.insert({attribute, index});
        }
    return found;
}

TEST(Iis, isInfeasibleAndIrreducible) {
    Env env;
    int infeasible = 0;
    for (unsigned seed = 0; seed < 60; seed++) {
        Model model = make(env, seed, nullptr);
        if (!isInfeasible(model)) {
            EXPECT_NE(KVXcomputeIIS(model.get()), 0);
            EXPECT_STREQ(KVXgetmerrormsg(model.get()),
                         "the model is feasible, as far as can be told");
            continue;
        }
        infeasible++;
        MUST(model, KVXcomputeIIS(model.get()));
        std::set<Member> iis = members(model);
        EXPECT_TRUE(isInfeasible(make(env, seed, &iis))) << seed;
        for (const Member &member : iis) {
            std::set<Member> rest = iis;
            rest.erase(member);
            EXPECT_FALSE(isInfeasible(make(env, seed, &rest)))
                << seed << " without " << member.first << ' ' << member.second;
        }
    }
    EXPECT_GT(infeasible, 20);
    EXPECT_LT(infeasible, 50);
}

TEST(Iis, canBeFollowedAndEnded) {
    Env env;
    unsigned seed = 0;
    Model model = make(env, seed, nullptr);
    while (!isInfeasible(model))
        model = make(env, ++seed, nullptr);
    struct Record {
        int calls = 0, last = -1, limit;
    } record{0, -1, 3};
    auto callback = [](KVXmodel *, void *cbdata, int where, void *data) {
        auto &calls = *static_cast<Record *>(data);
        if (where != KVX_CB_IIS)
            return 0;
        int undecided = -1;
        EXPECT_EQ(0, KVXcbget(cbdata, where, KVX_CB_IIS_UNDECIDED, &undecided));
        EXPECT_TRUE(calls.last < 0 || undecided <= calls.last);
        calls.last = undecided;
        return ++calls.calls == calls.limit ? 4711 : 0;
    };
    MUST(model, KVXsetcallbackfunc(model.get(), callback, &record));
    EXPECT_EQ(4711, KVXcomputeIIS(model.get()));
    record = {0, -1, -1};
    MUST(model, KVXcomputeIIS(model.get()));
    EXPECT_GT(record.calls, 2);
    MUST(model, KVXterminate(model.get()));
    EXPECT_EQ(KVX_ERROR_DATA_NOT_AVAILABLE, KVXcomputeIIS(model.get()));
}

} // namespace
