// Optima of random models: linear ones against the conditions of optimality, discrete ones against
// enumeration.
#include "solver_case.h"

#include <cmath>
#include <numeric>
#include <random>

namespace {

struct RandomModel {
    std::mt19937 random;
    int vars, constrs, sense;
    std::vector<double> obj, lb, ub, rhs;
    std::vector<std::vector<double>> rows;
    std::string senses;

    int pick(int low, int high) {
        return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
    }

    // Feasible at a random point of 0 to 3.
    RandomModel(unsigned seed, int vars, int constrs)
        : random(seed), vars(vars), constrs(constrs), sense(seed % 2 ? 1 : -1) {
        std::vector<int> point;
        for (int j = 0; j < vars; j++) {
            obj.push_back(pick(-9, 9));
            lb.push_back(0);
            ub.push_back(3);
            point.push_back(pick(0, 3));
        }
        for (int i = 0; i < constrs; i++) {
            rows.emplace_back();
            double activity = 0;
            for (int value : point) {
                rows.back().push_back(pick(0, 2) ? pick(-4, 4) : 0);
                activity += rows.back().back() * value;
            }
            senses += "<>="[pick(0, 9) % 3];
            rhs.push_back(activity + (senses.back() == '<' ? 1 : senses.back() == '>' ? -1 : 0));
        }
    }

    Model make(KVXenv *env, char type) const {
        KVXmodel *model = nullptr;
        std::string types(static_cast<size_t>(vars), type);
        EXPECT_EQ(KVX_OK, KVXnewmodel(env, &model, "random", vars, obj.data(), lb.data(), ub.data(),
                                      types.data(), nullptr));
        std::vector<int> ind(static_cast<size_t>(vars));
        std::iota(ind.begin(), ind.end(), 0);
        const int begin = 0;
        for (size_t i = 0; i < rows.size(); i++)
            EXPECT_EQ(KVX_OK, KVXaddconstrs(model, 1, vars, &begin, ind.data(), rows[i].data(),
                                            &senses[i], &rhs[i], nullptr));
        EXPECT_EQ(KVX_OK, KVXsetintattr(model, "ModelSense", sense));
        return Model(model);
    }
};

double product(const std::vector<double> &a, const std::vector<double> &b) {
    return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
}

std::vector<double> values(const Model &model, const char *name, int count) {
    std::vector<double> result(static_cast<size_t>(count));
    EXPECT_EQ(KVX_OK, KVXgetdblattrarray(model.get(), name, 0, count, result.data()));
    return result;
}

TEST(Optimize, LinearOptimaSatisfyTheConditions) {
    Env env;
    for (unsigned seed = 0; seed < 60; seed++) {
        RandomModel data(seed, 8, 6);
        Model model = data.make(env, KVX_CONTINUOUS);
        KVXsetintparam(KVXgetenv(model.get()), "Method", static_cast<int>(seed % 4) - 1);
        KVXsetintparam(KVXgetenv(model.get()), "Presolve", seed % 5 ? 1 : 0);
        MUST(model, KVXoptimize(model.get()));
        ASSERT_EQ(KVX_STATUS_OPTIMAL, intAttr(model, "Status")) << seed;
        std::vector<double> x = values(model, "X", data.vars), duals = values(model, "Dual", 6),
                            reduced = values(model, "ReducedCost", data.vars),
                            slacks = values(model, "Slack", 6);
        double dual = product(duals, data.rhs);
        for (size_t i = 0; i < data.rows.size(); i++) {
            char sense = data.senses[i];
            EXPECT_NEAR(data.rhs[i] - product(data.rows[i], x), slacks[i], 1e-7);
            EXPECT_GE(sense == '<' ? slacks[i] : sense == '>' ? -slacks[i] : 0, -1e-5);
            EXPECT_LE(data.sense * (sense == '<' ? duals[i] : sense == '>' ? -duals[i] : 0), 1e-6);
        }
        for (size_t j = 0; j < x.size(); j++) {
            double priced = data.obj[j];
            for (size_t i = 0; i < duals.size(); i++)
                priced -= duals[i] * data.rows[i][j];
            EXPECT_NEAR(priced, reduced[j], 1e-5);
            dual += reduced[j] * (data.sense * reduced[j] > 0 ? 0 : 3);
        }
        EXPECT_NEAR(product(data.obj, x), dual, 1e-4) << seed;
        EXPECT_NEAR(dblAttr(model, "ObjVal"), dual, 1e-4) << seed;
    }
}

// Integers of 0 to 3 with an SOS; one, two or three objectives.
TEST(Optimize, DiscreteOptimaAreThoseOfEnumeration) {
    Env env;
    for (unsigned seed = 0; seed < 80; seed++) {
        RandomModel data(seed, 4, 3);
        Model model = data.make(env, KVX_INTEGER);
        int type = data.pick(0, 2), begin = 0, ind[] = {0, 1, 2, 3};
        double order[] = {3, 1, 4, 2}; // by weight: 1 3 0 2
        if (type > 0) {
            MUST(model, KVXaddsos(model.get(), 1, 4, &type, &begin, ind, order));
        }
        auto inSet = [&](const std::vector<double> &x) {
            int first = 4, last = -1, member = 0;
            for (size_t j : {1U, 3U, 0U, 2U}) {
                if (x[j] != 0) {
                    first = std::min(first, member);
                    last = member;
                }
                member++;
            }
            return type == 0 || last - first < type;
        };
        struct Level {
            std::vector<double> obj;
            double tolerance;
        };
        std::vector<Level> levels = {{data.obj, 0}};
        if (int count = data.pick(1, 3); count > 1) {
            levels.clear();
            for (int k = 0; k < count; k++) {
                Level level{{}, k == 0 ? 2.0 : 0.0};
                for (int j = 0; j < 4; j++)
                    level.obj.push_back(data.pick(-5, 5));
                MUST(model, KVXsetobjectiven(model.get(), k, 10 - k, nullptr, 4, ind,
                                             level.obj.data(), 0, 1, level.tolerance, 0));
                levels.push_back(level);
            }
        }
        std::vector<std::vector<double>> points;
        for (int code = 0; code < 256; code++) {
            std::vector<double> x;
            for (int j = 0; j < 4; j++)
                x.push_back(code >> 2 * j & 3);
            bool isFeasible = inSet(x);
            for (size_t i = 0; i < data.rows.size(); i++) {
                double slack = data.rhs[i] - product(data.rows[i], x);
                char sense = data.senses[i];
                isFeasible &= sense == '<' ? slack >= 0 : sense == '>' ? slack <= 0 : slack == 0;
            }
            if (isFeasible)
                points.push_back(x);
        }
        for (const char *param : {"Presolve", "Cuts", "Heuristics"})
            KVXsetintparam(KVXgetenv(model.get()), param, data.pick(0, 1));
        MUST(model, KVXoptimize(model.get()));
        ASSERT_EQ(points.empty() ? KVX_STATUS_INFEASIBLE : KVX_STATUS_OPTIMAL,
                  intAttr(model, "Status"))
            << seed;
        if (points.empty())
            continue;
        std::vector<double> x = values(model, "X", 4);
        EXPECT_TRUE(inSet(x)) << seed;
        for (const Level &level : levels) {
            double best = KVX_INFINITY;
            for (const auto &point : points)
                best = std::min(best, data.sense * product(level.obj, point));
            double limit = best + level.tolerance + 1e-6;
            EXPECT_LE(data.sense * product(level.obj, x), limit) << seed;
            points.erase(std::remove_if(points.begin(), points.end(),
                                        [&](const auto &point) {
                                            return data.sense * product(level.obj, point) > limit;
                                        }),
                         points.end());
        }
    }
}

} // namespace
