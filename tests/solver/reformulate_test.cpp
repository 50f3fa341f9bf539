// Reformulation against exhaustive enumeration: models of a few integer variables with a general
// constraint, an SOS, semi-continuous variables or a piecewise-linear objective term.
#include "solver_case.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>

namespace {

const double inf = KVX_INFINITY;

using Point = std::vector<double>;

// A special part of a model: added to it, and judged at a point of integers.
struct Special {
    std::function<int(KVXmodel *)> add;
    std::function<bool(const Point &)> holds;
    std::function<double(const Point &)> cost = [](const Point &) { return 0.0; };
};

constexpr int vars = 4, width = 2; // variables from -width to width, as far as their bounds allow

const std::vector<double> breaks = {-1, 0, 1}, heights = {1, 3, -1};
double piecewise(double x) {
    return x <= 0 ? 3 + 2 * x : 3 - 4 * x;
}

const int operands[] = {1, 2, 3}, begin = 0;
const double weights[] = {1, 2, 3};

int nonzeros(const Point &x, int first) {
    return static_cast<int>(
        std::count_if(x.begin() + first, x.end(), [](double v) { return v != 0; }));
}

double size(const Point &x, double which) {
    double sum = 0, most = 0;
    for (int j = 1; j < vars; j++) {
        sum += std::abs(x[static_cast<size_t>(j)]);
        most = std::max(most, std::abs(x[static_cast<size_t>(j)]));
    }
    return which == 0 ? nonzeros(x, 1) : which == 1 ? sum : most;
}

bool isBinary(const Point &x) {
    return std::all_of(x.begin(), x.end(), [](double v) { return v == 0 || v == 1; });
}

Special extremum(bool isMax, double constant) {
    return {[=](KVXmodel *m) {
                return (isMax ? KVXaddgenconstrMax : KVXaddgenconstrMin)(m, "g", 0, 3, operands,
                                                                         constant);
            },
            [=](const Point &x) {
                return x[0] == (isMax ? std::max({x[1], x[2], x[3], constant})
                                      : std::min({x[1], x[2], x[3], constant}));
            }};
}

Special norm(double which) {
    return {[=](KVXmodel *m) { return KVXaddgenconstrNorm(m, "g", 0, 3, operands, which); },
            [=](const Point &x) { return x[0] == size(x, which); }};
}

Special indicator(int binval, char sense) {
    return {[=](KVXmodel *m) {
                const double ones[] = {1, 1, -1};
                return KVXaddgenconstrIndicator(m, "g", 0, binval, 3, operands, ones, sense, 1);
            },
            [=](const Point &x) {
                double left = x[1] + x[2] - x[3];
                bool linear = sense == '<' ? left <= 1 : sense == '>' ? left >= 1 : left == 1;
                return (x[0] == 0 || x[0] == 1) && (x[0] != binval || linear);
            }};
}

Special sos(int type) {
    return {[=](KVXmodel *m) { return KVXaddsos(m, 1, 3, &type, &begin, operands, weights); },
            [=](const Point &x) { return nonzeros(x, 1) <= type && !(x[1] != 0 && x[3] != 0); }};
}

// Variable 1 becomes semi-continuous or semi-integer with these bounds.
Special semi(char type, double lb, double ub) {
    return {[=](KVXmodel *m) {
                return KVXsetdblattrelement(m, "LB", 1, -inf) +
                       KVXsetdblattrelement(m, "UB", 1, ub) + KVXsetdblattrelement(m, "LB", 1, lb) +
                       KVXsetcharattrelement(m, "VarType", 1, type);
            },
            [=](const Point &x) { return x[1] == 0 || (x[1] >= lb && x[1] <= ub); }};
}

const std::vector<Special> specials = {
    extremum(true, -inf),
    extremum(true, 0),
    extremum(false, inf),
    extremum(false, -1),
    {[](KVXmodel *m) { return KVXaddgenconstrAbs(m, "g", 0, 1); },
     [](const Point &x) { return x[0] == std::abs(x[1]); }},
    {[](KVXmodel *m) { return KVXaddgenconstrAnd(m, "g", 0, 3, operands); },
     [](const Point &x) { return isBinary(x) && x[0] == (nonzeros(x, 1) == 3); }},
    {[](KVXmodel *m) { return KVXaddgenconstrOr(m, "g", 0, 3, operands); },
     [](const Point &x) { return isBinary(x) && x[0] == (nonzeros(x, 1) > 0); }},
    norm(0),
    norm(1),
    norm(inf),
    indicator(0, '<'),
    indicator(1, '<'),
    indicator(0, '>'),
    indicator(1, '='),
    {[](KVXmodel *m) { return KVXaddgenconstrPWL(m, "g", 1, 0, 3, breaks.data(), heights.data()); },
     [](const Point &x) { return x[0] == piecewise(x[1]); }},
    sos(1),
    sos(2),
    semi(KVX_SEMIINT, 1, 2),
    semi(KVX_SEMIINT, -2, -1),
    semi(KVX_SEMIINT, 2, inf),
    {[](KVXmodel *m) { return KVXsetpwlobj(m, 1, 3, breaks.data(), heights.data()); },
     [](const Point &) { return true; }, [](const Point &x) { return piecewise(x[1]); }}};

// A random model around a special part. Its variables are limited to the enumerated box by their
// bounds or, as infinite operands must do as well, by a row each.
struct Case {
    std::vector<double> obj, row;
    double rhs;
    int sense;
    bool boundless;

    explicit Case(unsigned seed) {
        std::mt19937 engine(seed);
        auto random = [&](int low, int high) {
            return low + static_cast<int>(engine() % static_cast<unsigned>(high - low + 1));
        };
        for (int j = 0; j < vars; j++) {
            obj.push_back(random(-3, 3));
            row.push_back(random(-2, 2));
        }
        rhs = random(-2, 4);
        sense = random(0, 1) ? KVX_MINIMIZE : KVX_MAXIMIZE;
        boundless = random(0, 1);
    }

    Model build(KVXenv *env, const Special &special) const {
        KVXmodel *model = nullptr;
        const std::vector<double> lb(vars, boundless ? -inf : -width),
            ub(vars, boundless ? inf : width);
        EXPECT_EQ(KVX_OK, KVXnewmodel(env, &model, nullptr, vars, obj.data(), lb.data(), ub.data(),
                                      "IIII", nullptr));
        const int all[] = {0, 1, 2, 3};
        const double one[] = {1}, low[] = {-width}, high[] = {width};
        EXPECT_EQ(KVX_OK,
                  KVXaddconstrs(model, 1, vars, &begin, all, row.data(), "<", &rhs, nullptr));
        for (int j = 0; j < vars; j++)
            EXPECT_EQ(KVX_OK,
                      KVXaddrangeconstrs(model, 1, 1, &begin, all + j, one, low, high, nullptr));
        EXPECT_EQ(KVX_OK, KVXsetintattr(model, "ModelSense", sense));
        EXPECT_EQ(KVX_OK, special.add(model)) << KVXgetmerrormsg(model);
        return Model(model);
    }

    // The best value over all points; infinite when there is none.
    double enumerated(const Special &special) const {
        double best = sense * inf;
        Point x(vars);
        for (int code = 0; code < 625; code++) {
            double value = 0, left = 0;
            for (int j = 0, rest = code; j < vars; j++, rest /= 5) {
                size_t k = static_cast<size_t>(j);
                x[k] = rest % 5 - width;
                left += row[k] * x[k];
                // A piecewise-linear term replaces the linear one.
                value += j == 1 && special.cost(x) != 0 ? 0 : obj[k] * x[k];
            }
            value += special.cost(x);
            if (left <= rhs && special.holds(x) && sense * value < sense * best)
                best = value;
        }
        return best;
    }
};

// Where only rows limit what the sets rule out, a model may be refused, but not solved wrongly.
TEST(Reformulate, FindsWhatEnumerationFinds) {
    Env env;
    int feasible = 0, refused = 0;
    for (size_t s = 0; s < specials.size(); s++)
        for (unsigned seed = 0; seed < 40; seed++) {
            SCOPED_TRACE("special " + std::to_string(s) + ", seed " + std::to_string(seed));
            const bool isSemi = s >= 17 && s < 20;
            Case random(seed);
            Model model = random.build(env, specials[s]),
                  linear = derived(model, KVXlinearizemodel);
            EXPECT_EQ(0, intAttr(linear, "NumGenConstrs"));
            const double expected = random.enumerated(specials[s]);
            for (const Model *each : {&model, &linear}) {
                int status = KVXoptimize(each->get());
                if (random.boundless && status == KVX_ERROR_NOT_SUPPORTED) {
                    refused++;
                    continue;
                }
                MUST(*each, status);
                if (std::abs(expected) >= inf) {
                    EXPECT_EQ(KVX_STATUS_INFEASIBLE, intAttr(*each, "Status"));
                    continue;
                }
                feasible++;
                EXPECT_EQ(KVX_STATUS_OPTIMAL, intAttr(*each, "Status"));
                EXPECT_NEAR(expected, dblAttr(*each, "ObjVal"), 1e-6);
                Point x(vars);
                MUST(*each, KVXgetdblattrarray(each->get(), "X", 0, vars, x.data()));
                EXPECT_TRUE(specials[s].holds(x));
                KVXmodel *fixed = nullptr;
                status = KVXfixmodel(each->get(), &fixed);
                if (each == &model) {
                    EXPECT_EQ(isSemi ? KVX_OK : KVX_ERROR_NOT_SUPPORTED, status);
                }
                if (Model owner(fixed); fixed) {
                    MUST(owner, KVXoptimize(fixed));
                    EXPECT_NEAR(expected, dblAttr(owner, "ObjVal"), 1e-6);
                }
            }
        }
    EXPECT_GT(feasible, 500);
    EXPECT_LT(refused, feasible / 4);
}

} // namespace
