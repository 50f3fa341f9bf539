#include "optimize.h"

#include "guard.h"
#include "params.h"
#include "textfile.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace korvex {
namespace {

constexpr double integerTolerance = 1e-9; // of an integer variable's bounds

// COIN's solvers assert what doesn't hold for a good deal larger numbers, or for quotients by
// smaller ones.
constexpr double largestNumber = 1e15, smallestNumber = 1e-20;

double excess(double value, double lower, double upper) {
    double below = (lower - value) / std::max(1.0, std::abs(lower));
    double above = (value - upper) / std::max(1.0, std::abs(upper));
    return std::max({below, above, 0.0});
}

// By status.
const char *const statusTexts[] = {
    "",
    "Model is loaded",
    "Optimal solution found",
    "Model is infeasible",
    "Model is unbounded",
    "Model is infeasible or unbounded",
    "Time limit reached",
    "Node limit reached",
    "Iteration limit reached",
    "Solution limit reached",
    "Interrupted",
    "Stopped by numerical trouble",
};

// Stores what was found, for the model's own rows and columns: the problem may have more.
void store(Run &run, const Outcome &outcome) {
    KVXmodel &model = run.model;
    Solution &solution = model.solution;
    solution = {outcome.status,
                outcome.objective,
                run.bound,
                run.elapsed(),
                run.nodes,
                run.iterations,
                run.solutions,
                !outcome.x.empty(),
                !outcome.duals.empty(),
                outcome.x,
                outcome.reducedCosts,
                outcome.duals};
    if (solution.hasX) {
        solution.x.resize(model.vars.size());
        for (size_t i = 0; i < model.constrs.size(); i++) {
            const Sides &constr = model.constrs[i];
            double slack = constr.sense == KVX_GREATER_EQUAL ? constr.lower : constr.upper;
            for (auto [var, coefficient] : model.rows[i])
                slack -= coefficient * solution.x[at(var)];
            solution.slacks.push_back(slack);
        }
    }
    if (solution.hasDuals) {
        solution.duals.resize(model.constrs.size());
        solution.reducedCosts.resize(model.vars.size());
        model.hasBasis = !outcome.basis.empty();
        for (size_t j = 0; model.hasBasis && j < model.vars.size(); j++)
            model.vars[j].basis = outcome.basis[j];
        for (size_t i = 0; model.hasBasis && i < model.constrs.size(); i++)
            model.constrs[i].basis = outcome.rowBasis[i];
    }
}

} // namespace

double bound(double value) {
    return std::abs(value) >= KVX_INFINITY ? std::copysign(COIN_DBL_MAX, value) : value;
}

double violation(const Constraint &row, const std::vector<double> &x) {
    double activity = 0;
    for (auto [var, coefficient] : row.row)
        activity += coefficient * x[at(var)];
    return excess(activity, row.lower, row.upper);
}

CoinPackedVector packed(const std::vector<Entry> &entries) {
    CoinPackedVector vector;
    for (auto [index, value] : entries)
        vector.insert(index, value);
    return vector;
}

Problem::Problem(const ModelData &model)
    : sense(model.objsense), constant(sense * model.objcon), sets(model.sos),
      isMip(!model.sos.empty()), matrix(matrixOf(model)) {
    for (const Variable &var : model.vars) {
        bool discrete = var.type != KVX_CONTINUOUS;
        cost.push_back(sense * var.obj);
        lower.push_back(discrete ? std::ceil(bound(var.lb) - integerTolerance) : bound(var.lb));
        upper.push_back(discrete ? std::floor(bound(var.ub) + integerTolerance) : bound(var.ub));
        integer.push_back(discrete ? 1 : 0);
        isMip |= discrete;
    }
    for (const Sides &constr : model.constrs) {
        rowLower.push_back(bound(constr.lower));
        rowUpper.push_back(bound(constr.upper));
    }
    for (auto [pair, value] : model.products)
        products[pair] = sense * value;
    for (Sos &set : sets)
        std::stable_sort(set.members.begin(), set.members.end(),
                         [](Entry a, Entry b) { return a.value < b.value; });
    if (model.vars.empty()) {
        for (auto column : {&cost, &lower, &upper})
            column->push_back(0);
        integer.push_back(false);
    }
    if (model.constrs.empty()) {
        rowLower.push_back(-COIN_DBL_MAX);
        rowUpper.push_back(COIN_DBL_MAX);
    }
    matrix.setDimensions(intSize(rowLower.size()), intSize(cost.size()));
}

bool isSolvable(double value) {
    const double size = std::abs(value);
    return size == 0 || (size >= smallestNumber && size <= largestNumber);
}

void refuseNumber(double value, const std::string &what) {
    fail(KVX_ERROR_NOT_SUPPORTED,
         "%s is %s: only numbers up to %s, and from %s on or 0, can be solved", what.c_str(),
         toText(value).c_str(), toText(largestNumber).c_str(), toText(smallestNumber).c_str());
}

void Problem::checkNumbers(const ModelData &model) const {
    auto check = [](double value, const char *what, const auto &elements, size_t k) {
        if (!isSolvable(value))
            refuseNumber(value, what + (k < elements.size() ? " of " + elements[k].name.text()
                                                            : " of a reformulation's element"));
    };
    auto finite = [](double bound) { return std::abs(bound) == COIN_DBL_MAX ? 0 : bound; };
    if (!isSolvable(constant))
        refuseNumber(constant, "the objective's constant");
    for (size_t j = 0; j < cost.size(); j++) {
        check(cost[j], "the cost", model.vars, j);
        for (double bound : {finite(lower[j]), finite(upper[j])})
            check(bound, "a bound", model.vars, j);
    }
    for (auto [pair, value] : products)
        check(value, "a quadratic coefficient", model.vars, at(pair.first));
    for (size_t i = 0; i < rowLower.size(); i++)
        for (double side : {finite(rowLower[i]), finite(rowUpper[i])})
            check(side, "a side", model.constrs, i);
    for (int j = 0; j < matrix.getNumCols(); j++)
        for (auto k = matrix.getVectorFirst(j); k < matrix.getVectorLast(j); k++)
            check(matrix.getElements()[k], "a coefficient", model.constrs,
                  at(matrix.getIndices()[k]));
}

void Problem::load(ClpSimplex &lp) const {
    lp.passInMessageHandler(&silence);
    lp.setLogLevel(0);
    lp.loadProblem(matrix, lower.data(), upper.data(), cost.data(), rowLower.data(),
                   rowUpper.data());
    lp.setObjectiveOffset(-constant);
}

void Problem::setSides(ClpSimplex &lp) const {
    lp.chgColumnLower(lower.data());
    lp.chgColumnUpper(upper.data());
    lp.chgRowLower(rowLower.data());
    lp.chgRowUpper(rowUpper.data());
}

double Problem::objective(const std::vector<double> &x) const {
    double value = std::inner_product(cost.begin(), cost.end(), x.begin(), constant);
    for (auto [pair, factor] : products)
        value += factor * x[at(pair.first)] * x[at(pair.second)];
    return sense * value + 0.0; // no negative zero
}

std::vector<double> Problem::gradient(const std::vector<double> &x) const {
    std::vector<double> result = cost;
    for (auto [pair, factor] : products) {
        result[at(pair.first)] += factor * x[at(pair.second)];
        result[at(pair.second)] += factor * x[at(pair.first)];
    }
    return result;
}

double Problem::violation(const std::vector<double> &x) const {
    double worst = 0;
    for (size_t j = 0; j < cost.size(); j++)
        worst = std::max(worst, excess(x[j], lower[j], upper[j]));
    std::vector<double> activity(rowLower.size());
    matrix.times(x.data(), activity.data());
    for (size_t i = 0; i < activity.size(); i++)
        worst = std::max(worst, excess(activity[i], rowLower[i], rowUpper[i]));
    return worst;
}

bool Problem::makeSolution(std::vector<double> &x, double tolerance) const {
    for (size_t j = 0; j < x.size(); j++)
        if (integer[j] && x[j] != KVX_UNDEFINED)
            x[j] = std::round(x[j]) + 0.0; // no negative zero
    // At most type consecutive members of a set aren't zero.
    auto holds = [&](const Sos &set) {
        auto isUsed = [&](Entry member) { return std::abs(x[at(member.index)]) > zeroInSet; };
        auto first = std::find_if(set.members.begin(), set.members.end(), isUsed);
        return std::none_of(first + std::min<long>(set.type, set.members.end() - first),
                            set.members.end(), isUsed);
    };
    return std::count(x.begin(), x.end(), KVX_UNDEFINED) == 0 && violation(x) <= tolerance &&
           std::all_of(sets.begin(), sets.end(), holds);
}

bool Problem::isOptimal(const std::vector<double> &x, const double *multipliers,
                        double tolerance) const {
    if (!(violation(x) <= tolerance))
        return false;
    std::vector<double> activity(rowLower.size());
    matrix.times(x.data(), activity.data());
    const double most = tolerance * (1 + std::abs(objective(x)));
    // A price that counts needs a side at which the value is.
    auto fits = [&](double price, double scale, double value, double lowest, double highest) {
        const double side = price > 0 ? lowest : highest;
        return std::abs(price) <= tolerance * scale ||
               (std::abs(side) < COIN_DBL_MAX && std::abs(price * (value - side)) <= most);
    };
    for (size_t i = 0; i < activity.size(); i++)
        if (!fits(multipliers[i], 1, activity[i], rowLower[i], rowUpper[i]))
            return false;
    const std::vector<double> slope = gradient(x);
    for (int j = 0; j < matrix.getNumCols(); j++) {
        double reduced = slope[at(j)], scale = 1 + std::abs(reduced);
        for (auto k = matrix.getVectorFirst(j); k < matrix.getVectorLast(j); k++) {
            double part = matrix.getElements()[k] * multipliers[matrix.getIndices()[k]];
            reduced -= part;
            scale += std::abs(part);
        }
        if (!fits(reduced, scale, x[at(j)], lower[at(j)], upper[at(j)]))
            return false;
    }
    return true;
}

void Problem::addRow(const Constraint &row) {
    matrix.appendRow(packed(row.row));
    rowLower.push_back(bound(row.lower));
    rowUpper.push_back(bound(row.upper));
}

Outcome solveProblem(Run &run, const Problem &problem) {
    problem.checkNumbers(run.model);
    Outcome outcome;
    if (run.poll()) {
        outcome.status = run.stopped();
    } else if (problem.isMip) {
        outcome = solveMip(run, problem);
    } else {
        outcome = problem.products.empty() ? solveLp(run, problem) : solveQuadratic(run, problem);
        if (!outcome.x.empty()) {
            run.best = outcome.x;
            run.bestObjective = run.bound = outcome.objective;
            run.solutions = 1;
        }
    }
    // A solution that was found by other means proves the opposite.
    if (outcome.status == KVX_STATUS_INFEASIBLE && !run.best.empty())
        outcome.status = KVX_STATUS_NUMERIC;
    return outcome;
}

void optimize(Run &run) {
    KVXmodel &model = run.model;
    run.say("Optimizing a model with %zu rows and %zu columns", model.constrs.size(),
            model.vars.size());
    if (int threads = intParam(model.env, "Threads"); threads > 1)
        run.say("The parameter Threads is %d, but one thread does the run", threads);
    refuseQuadratic(model);
    const Problem problem(reformulated(model)); // what is refused leaves the former solution
    if (!problem.products.empty())
        refuseUnlessConvex(model, problem);
    Solution &solution = model.solution = {};
    store(run,
          model.objectives.empty() ? solveProblem(run, problem) : solveObjectives(run, problem));
    run.say("%s: %.0f iterations, %.0f nodes, %s seconds", statusTexts[solution.status],
            solution.iterations, solution.nodes, shown(solution.runtime).c_str());
    if (solution.hasX)
        run.say("Objective %s, bound %s", shown(solution.objval).c_str(),
                shown(solution.bound).c_str());
    writeResultFile(model);
}

} // namespace korvex
