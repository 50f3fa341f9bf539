// Infeasible subsystems: infeasible as they are, feasible without any one of their members.
#include "solver_case.h"

#include <algorithm>
#include <set>

namespace {

// Attribute and index of a constraint or bound.
using Member = std::pair<std::string, size_t>;

bool isInfeasible(const Model &model) {
    return solved(model).first == KVX_STATUS_INFEASIBLE;
}

Data randomCase(unsigned seed) {
    Random random(seed);
    Data data{Vector(5), {}, {}, std::string(5, seed % 2 ? 'I' : 'C'), {}};
    for (int j = 0; j < 5; j++) {
        data.lb.push_back(random(-1, 1));
        data.ub.push_back(data.lb.back() + random(0, 3));
    }
    const int most = seed % 2 ? 1 : 3; // With more, unbounded integers could go on forever.
    for (int i = 0; i < 4; i++) {
        Row row{Vector(5), 1.0 * random(-6, 2), 0};
        row.upper = row.lower + random(0, 8);
        for (int k = 0, first = random(0, 4); k < 3; k++)
            row.val[static_cast<size_t>(first + k) % 5] = random(-most, most);
        data.rows.push_back(row);
    }
    return data;
}

TEST(Iis, IsInfeasibleAndIrreducible) {
    Env env;
    int infeasible = 0, largest = 0;
    for (unsigned seed = 0; seed < 60; seed++) {
        const Data data = randomCase(seed);
        Model model = data.build(env);
        if (!isInfeasible(model)) {
            EXPECT_EQ(KVX_ERROR_INVALID_ARGUMENT, KVXcomputeIIS(model.get()));
            continue;
        }
        infeasible++;
        MUST(model, KVXcomputeIIS(model.get()));
        std::set<Member> iis;
        for (auto [attribute, count] : {std::pair{"IISLB", 5U}, {"IISUB", 5U}, {"IISConstr", 4U}})
            for (size_t index = 0; index < count; index++)
                if (intAttrs(model, attribute, count)[index])
                    iis.insert({attribute, index});
        largest = std::max(largest, static_cast<int>(iis.size()));
        auto isInfeasibleWithout = [&](const Member &left) {
            Data part = data;
            auto drop = [&](const char *attribute, size_t index, double &value, double none) {
                const Member member(attribute, index);
                value = member == left || !iis.count(member) ? none : value;
            };
            for (size_t j = 0; j < 5; j++) {
                drop("IISLB", j, part.lb[j], -inf);
                drop("IISUB", j, part.ub[j], inf);
            }
            for (size_t i = 0; i < 4; i++) {
                drop("IISConstr", i, part.rows[i].lower, -inf);
                drop("IISConstr", i, part.rows[i].upper, inf);
            }
            return isInfeasible(part.build(env));
        };
        EXPECT_TRUE(isInfeasibleWithout({})) << seed;
        for (const Member &member : iis)
            EXPECT_FALSE(isInfeasibleWithout(member)) << seed << " without " << member.first;
    }
    EXPECT_GT(infeasible, 20);
    EXPECT_LT(infeasible, 55);
    EXPECT_GT(largest, 4);
}

TEST(Iis, CanBeFollowedAndEnded) {
    Env env;
    unsigned seed = 0;
    Model model;
    do
        model = randomCase(seed++).build(env);
    while (!isInfeasible(model));
    std::vector<int> undecided;
    Callback follow = [&](void *cbdata, int where) {
        int value = -1;
        if (where != KVX_CB_IIS)
            return 0;
        EXPECT_EQ(KVX_OK, KVXcbget(cbdata, where, KVX_CB_IIS_UNDECIDED, &value));
        undecided.push_back(value);
        return undecided.size() == 3 ? 4711 : 0;
    };
    setCallback(model, follow);
    EXPECT_EQ(4711, KVXcomputeIIS(model.get()));
    MUST(model, KVXcomputeIIS(model.get()));
    EXPECT_TRUE(std::is_sorted(undecided.rbegin(), undecided.rend() - 3));
    EXPECT_GT(undecided.size(), 5U);
    MUST(model, KVXterminate(model.get()));
    EXPECT_EQ(KVX_ERROR_DATA_NOT_AVAILABLE, KVXcomputeIIS(model.get()));
}

} // namespace
