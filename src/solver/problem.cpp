#include "optimize.h"

#include <algorithm>
#include <cmath>

namespace korvex {
namespace {

constexpr double integerTolerance = 1e-9; // of an integer variable's bounds

double bound(double value) {
    return std::abs(value) >= KVX_INFINITY ? std::copysign(COIN_DBL_MAX, value) : value;
}

// Whether at most type consecutive members of a set aren't zero.
bool holds(const Sos &set, const std::vector<double> &x) {
    size_t first = set.members.size(), last = 0;
    for (size_t k = 0; k < set.members.size(); k++)
        if (std::abs(x[static_cast<size_t>(set.members[k].index)]) > zeroInSet) {
            first = std::min(first, k);
            last = k;
        }
    return first > last || last - first < static_cast<size_t>(set.type);
}

} // namespace

double excess(double value, double lower, double upper) {
    double below = (lower - value) / std::max(1.0, std::abs(lower));
    double above = (value - upper) / std::max(1.0, std::abs(upper));
    return std::max({below, above, 0.0});
}

double Row::violation(const std::vector<double> &x) const {
    double activity = 0;
    for (const Entry &entry : entries)
        activity += entry.value * x[static_cast<size_t>(entry.index)];
    return excess(activity, lower, upper);
}

Problem::Problem(const ModelData &model) : sense(model.objsense), constant(sense * model.objcon) {
    std::vector<int> index;
    std::vector<double> value;
    std::vector<CoinBigIndex> begin = {0};
    for (const Variable &var : model.vars) {
        bool discrete = var.type != KVX_CONTINUOUS;
        double lb = bound(var.lb), ub = bound(var.ub);
        if (var.type == KVX_BINARY) {
            lb = std::max(lb, 0.0);
            ub = std::min(ub, 1.0);
        }
        if (discrete) {
            lb = std::ceil(lb - integerTolerance);
            ub = std::floor(ub + integerTolerance);
        }
        cost.push_back(sense * var.obj);
        lower.push_back(lb);
        upper.push_back(ub);
        integer.push_back(discrete);
        isMip |= discrete;
        for (const Entry &entry : var.column) {
            index.push_back(entry.index);
            value.push_back(entry.value);
        }
        begin.push_back(static_cast<CoinBigIndex>(index.size()));
    }
    for (const Constraint &constr : model.constrs) {
        rowLower.push_back(bound(constr.lower));
        rowUpper.push_back(bound(constr.upper));
    }
    for (const QuadraticTerm &term : model.quadratic)
        quadratic.push_back({term.row, term.col, sense * term.value});
    sets = model.sos;
    for (Sos &set : sets)
        std::stable_sort(set.members.begin(), set.members.end(),
                         [](const Entry &a, const Entry &b) { return a.value < b.value; });
    isMip |= !sets.empty();
    if (model.vars.empty()) {
        for (auto column : {&cost, &lower, &upper})
            column->push_back(0);
        integer.push_back(false);
        begin.push_back(begin.back());
    }
    if (model.constrs.empty()) {
        rowLower.push_back(-COIN_DBL_MAX);
        rowUpper.push_back(COIN_DBL_MAX);
    }
    matrix =
        CoinPackedMatrix(true, static_cast<int>(rowLower.size()), static_cast<int>(cost.size()),
                         begin.back(), value.data(), index.data(), begin.data(), nullptr);
}

void Problem::load(ClpSimplex &lp) const {
    lp.passInMessageHandler(&silence);
    lp.setLogLevel(0);
    lp.loadProblem(matrix, lower.data(), upper.data(), cost.data(), rowLower.data(),
                   rowUpper.data());
    lp.setObjectiveOffset(-constant);
}

double Problem::objective(const std::vector<double> &x) const {
    double value = constant;
    for (size_t j = 0; j < cost.size(); j++)
        value += cost[j] * x[j];
    for (const QuadraticTerm &term : quadratic)
        value += term.value * x[static_cast<size_t>(term.row)] * x[static_cast<size_t>(term.col)];
    return sense * value + 0.0;
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

bool Problem::isSolution(const std::vector<double> &x, double tolerance) const {
    return violation(x) <= tolerance &&
           std::all_of(sets.begin(), sets.end(), [&](const Sos &set) { return holds(set, x); });
}

CoinPackedVector packed(const Row &row) {
    CoinPackedVector vector;
    for (const Entry &entry : row.entries)
        vector.insert(entry.index, entry.value);
    return vector;
}

void Problem::addRow(const Row &row) {
    matrix.appendRow(packed(row));
    rowLower.push_back(bound(row.lower));
    rowUpper.push_back(bound(row.upper));
}

void Problem::round(std::vector<double> &x) const {
    for (size_t j = 0; j < cost.size(); j++)
        if (integer[j] && x[j] != KVX_UNDEFINED)
            x[j] = std::round(x[j]) + 0.0; // no negative zero
}

} // namespace korvex
