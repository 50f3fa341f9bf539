// Reformulation against exhaustive enumeration: models of a few integer variables with a general
// constraint, an SOS, semi-continuous variables or a piecewise-linear objective term.
#include "solver_case.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace {

// A special part of a model: added to it, and judged at a point of integers.
struct Special {
    std::function<int(KVXmodel *)> add;
    std::function<bool(const Vector &)> holds;
    std::function<double(const Vector &)> cost = [](const Vector &) { return 0.0; };
};

constexpr int width = 2; // variables from -width to width, as far as their bounds allow

const Vector breaks = {-1, 0, 1}, heights = {1, 3, -1};
double piecewise(double x) {
    return x <= 0 ? 3 + 2 * x : 3 - 4 * x;
}

const int operands[] = {1, 2, 3}, begin = 0;
const double weights[] = {2, 1, 3}; // order a set as 2, 1, 3

int nonzeros(const Vector &x, int first) {
    return static_cast<int>(
        std::count_if(x.begin() + first, x.end(), [](double v) { return v != 0; }));
}

double size(const Vector &x, double which) {
    const double a = std::abs(x[1]), b = std::abs(x[2]), c = std::abs(x[3]);
    return which == 0 ? nonzeros(x, 1) : which == 1 ? a + b + c : std::max({a, b, c});
}

bool isBinary(const Vector &x) {
    return std::all_of(x.begin(), x.end(), [](double v) { return v == 0 || v == 1; });
}

Special extremum(bool isMax, double constant) {
    return {[=](KVXmodel *m) {
                return (isMax ? KVXaddgenconstrMax : KVXaddgenconstrMin)(m, "g", 0, 3, operands,
                                                                         constant);
            },
            [=](const Vector &x) {
                return x[0] == (isMax ? std::max({x[1], x[2], x[3], constant})
                                      : std::min({x[1], x[2], x[3], constant}));
            }};
}

Special norm(double which) {
    return {[=](KVXmodel *m) { return KVXaddgenconstrNorm(m, "g", 0, 3, operands, which); },
            [=](const Vector &x) { return x[0] == size(x, which); }};
}

Special indicator(int binval, char sense) {
    return {[=](KVXmodel *m) {
                const double ones[] = {1, 1, -1};
                return KVXaddgenconstrIndicator(m, "g", 0, binval, 3, operands, ones, sense, 1);
            },
            [=](const Vector &x) {
                double left = x[1] + x[2] - x[3];
                bool linear = sense == '<' ? left <= 1 : sense == '>' ? left >= 1 : left == 1;
                return (x[0] == 0 || x[0] == 1) && (x[0] != binval || linear);
            }};
}

Special sos(int type) {
    return {[=](KVXmodel *m) { return KVXaddsos(m, 1, 3, &type, &begin, operands, weights); },
            [=](const Vector &x) { return nonzeros(x, 1) <= type && (x[2] == 0 || x[3] == 0); }};
}

// Two sets that share variable 1.
Special sharing(int first, int second) {
    return {[=](KVXmodel *m) {
                const int types[] = {first, second}, begins[] = {0, 2}, ind[] = {0, 1, 1, 2, 3};
                const double order[] = {1, 2, 1, 2, 3};
                return KVXaddsos(m, 2, 5, types, begins, ind, order);
            },
            [=](const Vector &x) {
                return (first > 1 || x[0] == 0 || x[1] == 0) && nonzeros(x, 1) <= second &&
                       (x[1] == 0 || x[3] == 0);
            }};
}

// Variable 1 becomes semi-continuous or semi-integer with these bounds.
Special semi(char type, double lb, double ub) {
    return {[=](KVXmodel *m) {
                return KVXsetdblattrelement(m, "LB", 1, -inf) +
                       KVXsetdblattrelement(m, "UB", 1, ub) + KVXsetdblattrelement(m, "LB", 1, lb) +
                       KVXsetcharattrelement(m, "VarType", 1, type);
            },
            [=](const Vector &x) { return x[1] == 0 || (x[1] >= lb && x[1] <= ub); }};
}

const std::vector<Special> specials = {
    extremum(true, -inf),
    extremum(true, 0),
    extremum(false, inf),
    extremum(false, -1),
    {[](KVXmodel *m) { return KVXaddgenconstrAbs(m, "g", 0, 1); },
     [](const Vector &x) { return x[0] == std::abs(x[1]); }},
    {[](KVXmodel *m) { return KVXaddgenconstrAnd(m, "g", 0, 3, operands); },
     [](const Vector &x) { return isBinary(x) && x[0] == (nonzeros(x, 1) == 3); }},
    {[](KVXmodel *m) { return KVXaddgenconstrOr(m, "g", 0, 3, operands); },
     [](const Vector &x) { return isBinary(x) && x[0] == (nonzeros(x, 1) > 0); }},
    norm(0),
    norm(1),
    norm(inf),
    indicator(0, '<'),
    indicator(1, '<'),
    indicator(0, '>'),
    indicator(1, '='),
    {[](KVXmodel *m) { return KVXaddgenconstrPWL(m, "g", 1, 0, 3, breaks.data(), heights.data()); },
     [](const Vector &x) { return x[0] == piecewise(x[1]); }},
    sos(1),
    sos(2),
    sharing(1, 1),
    sharing(1, 2),
    semi(KVX_SEMIINT, 1, 2),
    semi(KVX_SEMIINT, -2, -1),
    semi(KVX_SEMIINT, 2, inf),
    {[](KVXmodel *m) { return KVXsetpwlobj(m, 1, 3, breaks.data(), heights.data()); },
     [](const Vector &) { return true; }, [](const Vector &x) { return piecewise(x[1]); }}};

// A random model around a special part. Its variables are limited to the enumerated box by their
// bounds or, as infinite operands must do as well, by a row each or by several rows together.
Data randomCase(Random &random) {
    Data data{{}, {}, {}, "IIII", {{{}, -inf, 1.0 * random(-2, 4)}}};
    const bool isTogether = random(0, 2) == 0;
    for (size_t j = 0; j < 4; j++) {
        data.obj.push_back(random(-3, 3));
        data.lb.push_back(random(0, 1) ? -inf : -width);
        data.ub.push_back(random(0, 1) ? inf : width);
        data.rows[0].val.push_back(random(-2, 2));
        data.rows.push_back({Vector(4), -width, width});
        data.rows.back().val[j] = isTogether || random(0, 1) ? 1 : -1;
        if (isTogether) // the difference and the sum of a pair
            data.rows.back().val[j ^ 1] = j % 2 ? 1 : -1;
    }
    data.sense = random(0, 1) ? KVX_MINIMIZE : KVX_MAXIMIZE;
    return data;
}

// The best value over all points; infinite when there is none.
double enumerated(const Data &data, const Special &special) {
    double best = data.sense * inf;
    forPoints(4, -width, width, [&](const Vector &x) {
        // A piecewise-linear term replaces the linear one.
        const double cost = special.cost(x);
        const double value = cost + product(data.obj, x) - (cost != 0 ? data.obj[1] * x[1] : 0);
        if (data.sense * (value - best) < 0 && data.holds(x) && special.holds(x))
            best = value;
    });
    return best;
}

TEST(Reformulate, FindsWhatEnumerationFinds) {
    Env env;
    int feasible = 0;
    for (size_t s = 0; s < specials.size(); s++)
        for (unsigned seed = 0; seed < 40; seed++) {
            SCOPED_TRACE("special " + std::to_string(s) + ", seed " + std::to_string(seed));
            Random random(seed);
            const bool isSemi = s >= 19 && s < 22;
            const Data data = randomCase(random);
            const double expected = enumerated(data, specials[s]);
            Model model = data.build(env);
            MUST(model, specials[s].add(model.get()));
            for (const char *param : {"Presolve", "Cuts", "Heuristics"})
                KVXsetintparam(KVXgetenv(model.get()), param, random(0, 3) > 0);
            Model linear = derived(model, KVXlinearizemodel);
            EXPECT_EQ(0, intAttr(linear, "NumGenConstrs"));
            for (const Model *each : {&model, &linear}) {
                MUST(*each, KVXoptimize(each->get()));
                const bool isFeasible = std::abs(expected) < inf;
                ASSERT_EQ(isFeasible ? KVX_STATUS_OPTIMAL : KVX_STATUS_INFEASIBLE,
                          intAttr(*each, "Status"));
                if (!isFeasible)
                    continue;
                feasible++;
                EXPECT_NEAR(expected, dblAttr(*each, "ObjVal"), 1e-6);
                EXPECT_TRUE(specials[s].holds(dblAttrs(*each, "X", 4)));
                KVXmodel *fixed = nullptr;
                const int status = KVXfixmodel(each->get(), &fixed);
                if (each == &model) {
                    EXPECT_EQ(isSemi ? KVX_OK : KVX_ERROR_NOT_SUPPORTED, status);
                }
                if (Model owner(fixed); fixed) {
                    EXPECT_NEAR(expected, solved(owner).second, 1e-6);
                }
            }
        }
    EXPECT_GT(feasible, 500);
}

// Sets alone, on continuous variables: the best of the linear models without what has to be zero.
TEST(Reformulate, SetsOfContinuousVariables) {
    Env env;
    for (unsigned seed = 0; seed < 60; seed++) {
        SCOPED_TRACE(seed);
        Random random(seed);
        const Data data = randomData(random, 4, 2, "C").within(-3, 3);
        const Special set = sos(random(1, 2));
        Model model = data.build(env);
        MUST(model, set.add(model.get()));
        std::pair<int, double> best = {KVX_STATUS_INFEASIBLE, data.sense * inf};
        forPoints(4, 0, 1, [&](const Vector &isUsed) {
            Data linear = data;
            for (size_t j = 1; j < 4; j++)
                if (isUsed[j] == 0) {
                    linear.lb[j] = std::max(linear.lb[j], 0.0);
                    linear.ub[j] = std::min(linear.ub[j], 0.0);
                    if (linear.lb[j] > linear.ub[j])
                        return;
                }
            if (!set.holds(isUsed))
                return;
            const auto found = solved(linear.build(env));
            if (found.first == KVX_STATUS_OPTIMAL &&
                data.sense * found.second < data.sense * best.second)
                best = found;
        });
        const auto found = solved(model);
        ASSERT_EQ(best.first, found.first);
        if (best.first == KVX_STATUS_OPTIMAL) {
            EXPECT_NEAR(best.second, found.second, 1e-6 * (1 + std::abs(best.second)));
        }
    }
}

} // namespace
