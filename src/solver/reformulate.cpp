#include "reformulate.h"

#include "guard.h"
#include "params.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace korvex {
namespace {

using Expression = std::vector<Entry>;

// Logical conditions become SOS of type 1 rather than rows with large constants: of a slack and a
// binary variable only one may be nonzero, however large the slack may get. Slack is limited where
// the rows imply a limit, since without its SOS the model should be bounded, too.
class Reformulation {
  public:
    Reformulation(KVXmodel &model)
        : model(model), zero(10 * dblParam(model.env, "FeasibilityTol")) {}

    void run() {
        const size_t sets = model.sos.size(), vars = model.vars.size();
        for (const Variable &var : model.vars) {
            lower.push_back(isSemi(var) ? std::min(var.lb, 0.0) : var.lb);
            upper.push_back(isSemi(var) ? std::max(var.ub, 0.0) : var.ub);
        }
        for (size_t j = 0; j < vars; j++)
            if (isSemi(model.vars[j]))
                semi(static_cast<int>(j));
        for (int round = 0; round < 3; round++)
            for (const Constraint &constr : model.constrs) {
                propagate(constr, constr.upper, 1);
                propagate(constr, -constr.lower, -1);
            }
        for (size_t s = 0; s < sets; s++)
            for (size_t k = 0; k < model.sos[s].members.size(); k++) {
                int member = notNegative(model.sos[s].members[k].index);
                model.sos[s].members[k].index = member;
            }
        for (size_t g = 0; g < model.genconstrs.size(); g++)
            general(model.genconstrs[g], static_cast<int>(g));
        model.genconstrs.clear();
        for (size_t j = 0; j < vars; j++)
            if (!model.vars[j].pwlX.empty())
                pwlObjective(static_cast<int>(j));
        for (Objective &objective : model.objectives)
            objective.coefs.resize(model.vars.size(), 0);
        model.hasBasis = false;
    }

  private:
    Variable &at(int j) { return model.vars[static_cast<size_t>(j)]; }

    int variable(double lb, double ub, char type = KVX_CONTINUOUS) {
        Variable var;
        var.lb = lb;
        var.ub = ub;
        var.type = type;
        model.vars.push_back(std::move(var));
        lower.push_back(lb);
        upper.push_back(ub);
        return static_cast<int>(model.vars.size()) - 1;
    }
    int slack(double limit = KVX_INFINITY) { return variable(0, std::max(limit, 0.0)); }
    int binary() { return variable(0, 1, KVX_BINARY); }

    // The least value of factor times an expression, without the entry number except.
    double least(const Expression &entries, double factor, size_t except) const {
        double sum = 0;
        for (size_t k = 0; k < entries.size(); k++) {
            const double value = factor * entries[k].value;
            const auto j = static_cast<size_t>(entries[k].index);
            const double bound = value > 0 ? lower[j] : upper[j];
            if (k != except && std::abs(bound) >= KVX_INFINITY)
                return -KVX_INFINITY;
            if (k != except)
                sum += value * bound;
        }
        return sum;
    }
    double least(const Expression &entries) const { return least(entries, 1, entries.size()); }
    double most(const Expression &entries) const { return -least(entries, -1, entries.size()); }

    // Tightens lower and upper by the row factor * entries <= side.
    void propagate(const Constraint &constr, double side, double factor) {
        for (size_t k = 0; k < constr.row.size() && side < KVX_INFINITY; k++) {
            const double rest = least(constr.row, factor, k), value = factor * constr.row[k].value;
            const auto j = static_cast<size_t>(constr.row[k].index);
            if (rest <= -KVX_INFINITY)
                continue;
            const double bound = (side - rest) / value, margin = 1e-6 * (1 + std::abs(bound));
            if (value > 0)
                upper[j] = std::min(upper[j], bound + margin);
            else
                lower[j] = std::max(lower[j], bound - margin);
        }
    }

    // Limits a variable of the model to what an expression for it may become.
    void limit(int var, double least, double most) {
        const auto j = static_cast<size_t>(var);
        if (least > lower[j] || most < upper[j])
            row({{var, 1}}, least, most);
        lower[j] = std::max(lower[j], least);
        upper[j] = std::min(upper[j], most);
    }

    void row(Expression entries, double lower, double upper) {
        std::sort(entries.begin(), entries.end(),
                  [](Entry a, Entry b) { return a.index < b.index; });
        Constraint constr;
        constr.lower = lower;
        constr.upper = upper;
        constr.sense = lower == upper          ? KVX_EQUAL
                       : upper >= KVX_INFINITY ? KVX_GREATER_EQUAL
                                               : KVX_LESS_EQUAL;
        for (auto [index, value] : entries)
            if (!constr.row.empty() && constr.row.back().index == index)
                constr.row.back().value += value;
            else
                constr.row.push_back({index, value});
        constr.row.erase(std::remove_if(constr.row.begin(), constr.row.end(),
                                        [](Entry entry) { return entry.value == 0; }),
                         constr.row.end());
        addConstraint(model, std::move(constr));
    }

    void set(int type, const std::vector<int> &vars) {
        Sos sos{type, {}};
        for (int var : vars)
            sos.members.push_back({var, static_cast<double>(sos.members.size() + 1)});
        model.sos.push_back(std::move(sos));
    }

    static Expression sum(Expression a, const Expression &b, double factor) {
        for (auto [index, value] : b)
            a.push_back({index, factor * value});
        return a;
    }

    // 1 minus a binary variable.
    int complement(int var) {
        int other = binary();
        row({{var, 1}, {other, 1}}, 1, 1);
        return other;
    }

    void makeBinary(int j) {
        if (at(j).lb < 0 || at(j).ub > 1)
            row({{j, 1}}, 0, 1);
        if (at(j).type == KVX_CONTINUOUS)
            at(j).type = KVX_INTEGER;
    }

    // The two parts of a variable, of which at most one is to be nonzero.
    std::pair<int, int> parts(int j) {
        int positive = slack(upper[static_cast<size_t>(j)]),
            negative = slack(-lower[static_cast<size_t>(j)]);
        row({{j, 1}, {positive, -1}, {negative, 1}}, 0, 0);
        return {positive, negative};
    }

    Expression absolute(int j) {
        if (at(j).lb >= 0)
            return {{j, 1}};
        auto [positive, negative] = parts(j);
        set(KVX_SOS_TYPE1, {positive, negative});
        return {{positive, 1}, {negative, 1}};
    }

    // A variable that is not negative and can be 0 exactly if variable j is.
    int notNegative(int j) {
        if (at(j).lb >= 0)
            return j;
        auto [positive, negative] = parts(j);
        int size = slack();
        row({{size, 1}, {positive, -1}, {negative, -1}}, 0, 0);
        return size;
    }

    // 0, or between bounds that don't contain it.
    void semi(int j) {
        const double lb = at(j).lb, ub = at(j).ub;
        at(j).type = at(j).type == KVX_SEMIINT ? KVX_INTEGER : KVX_CONTINUOUS;
        at(j).lb = lower[static_cast<size_t>(j)];
        at(j).ub = upper[static_cast<size_t>(j)];
        if (lb <= 0 && ub >= 0)
            return;
        int isZero = binary();
        if (lb > -KVX_INFINITY)
            row({{j, 1}, {isZero, lb}}, lb, KVX_INFINITY);
        if (ub < KVX_INFINITY)
            row({{j, 1}, {isZero, ub}}, -KVX_INFINITY, ub);
        set(KVX_SOS_TYPE1, {notNegative(j), isZero});
    }

    // result = max (sign 1) or min (sign -1) of the operands and the constant; an infinite one
    // doesn't count.
    void extremum(int result, const std::vector<Expression> &operands, double constant,
                  double sign) {
        Expression chosen;
        double least = -KVX_INFINITY, most = -KVX_INFINITY; // of sign * result
        auto operand = [&](const Expression &expression, double value) {
            double low = this->least(expression), high = this->most(expression);
            least = std::max(least, sign * value + (sign > 0 ? low : -high));
            most = std::max(most, sign * value + (sign > 0 ? high : -low));
            int distance = slack(), isChosen = binary();
            row(sum({{result, sign}, {distance, -1}}, expression, -sign), sign * value,
                sign * value);
            set(KVX_SOS_TYPE1, {distance, isChosen});
            chosen.push_back({isChosen, 1});
        };
        for (const Expression &expression : operands)
            operand(expression, 0);
        if (std::abs(constant) < KVX_INFINITY)
            operand({}, constant);
        row(chosen, 1, 1);
        limit(result, sign > 0 ? least : -most, sign > 0 ? most : -least);
    }

    void norm(const GeneralConstraint &constr) {
        std::vector<Expression> sizes;
        for (int var : constr.vars)
            sizes.push_back(absolute(var));
        Expression total = {{constr.first, -1}};
        if (constr.number >= KVX_INFINITY) {
            extremum(constr.first, sizes, 0, 1);
        } else if (constr.number == 1) {
            for (const Expression &size : sizes)
                total = sum(total, size, 1);
            row(total, 0, 0);
        } else {
            for (size_t k = 0; k < sizes.size(); k++) {
                double least = at(constr.vars[k]).type == KVX_CONTINUOUS ? zero : 1;
                int isZero = binary(), counts = complement(isZero);
                std::vector<int> exclusive = {isZero};
                for (Entry part : sizes[k])
                    exclusive.push_back(part.index);
                set(KVX_SOS_TYPE1, exclusive);
                row(sum({{counts, -least}}, sizes[k], 1), 0, KVX_INFINITY);
                total.push_back({counts, 1});
            }
            row(total, 0, 0);
        }
    }

    // result = and or or of binary variables.
    void logic(const GeneralConstraint &constr, bool isAnd) {
        Expression all = {{constr.first, 1}};
        makeBinary(constr.first);
        for (int var : constr.vars) {
            makeBinary(var);
            row({{constr.first, 1}, {var, -1}}, isAnd ? -KVX_INFINITY : 0,
                isAnd ? 0 : KVX_INFINITY);
            all.push_back({var, -1});
        }
        double last = 1 - static_cast<double>(constr.vars.size());
        row(all, isAnd ? last : -KVX_INFINITY, isAnd ? KVX_INFINITY : 0);
    }

    void indicator(const GeneralConstraint &constr) {
        makeBinary(constr.first);
        std::vector<int> exclusive = {constr.second ? constr.first : complement(constr.first)};
        Expression relaxed = constr.linear;
        for (char side : {KVX_LESS_EQUAL, KVX_GREATER_EQUAL})
            if (constr.sense == side || constr.sense == KVX_EQUAL) {
                exclusive.push_back(slack(side == KVX_LESS_EQUAL
                                              ? most(constr.linear) - constr.number
                                              : constr.number - least(constr.linear)));
                relaxed.push_back({exclusive.back(), side == KVX_LESS_EQUAL ? -1.0 : 1.0});
            }
        row(relaxed, constr.sense == KVX_LESS_EQUAL ? -KVX_INFINITY : constr.number,
            constr.sense == KVX_GREATER_EQUAL ? KVX_INFINITY : constr.number);
        set(KVX_SOS_TYPE1, exclusive);
    }

    // y = f(x): a combination of adjacent breakpoints, or one end and a step beyond it in the
    // direction of its segment.
    void piecewise(int x, int y, const std::vector<double> &xs, const std::vector<double> &ys) {
        Expression xRow = {{x, -1}}, yRow = {{y, -1}}, total;
        std::vector<int> ordered;
        const size_t n = xs.size();
        auto step = [&](size_t end, size_t inner, double direction, double limit) {
            double run = xs[end] - xs[inner];
            ordered.push_back(slack(direction * (limit - xs[end])));
            xRow.push_back({ordered.back(), direction});
            yRow.push_back(
                {ordered.back(), run == 0 ? 0 : direction * (ys[end] - ys[inner]) / run});
        };
        step(0, std::min<size_t>(1, n - 1), -1, lower[static_cast<size_t>(x)]);
        for (size_t k = 0; k < n; k++) {
            ordered.push_back(variable(0, 1));
            xRow.push_back({ordered.back(), xs[k]});
            yRow.push_back({ordered.back(), ys[k]});
            total.push_back({ordered.back(), 1});
        }
        step(n - 1, n < 2 ? 0 : n - 2, 1, upper[static_cast<size_t>(x)]);
        row(xRow, 0, 0);
        row(yRow, 0, 0);
        row(total, 1, 1);
        set(KVX_SOS_TYPE2, ordered);
    }

    void pwlObjective(int j) {
        int y = variable(-KVX_INFINITY, KVX_INFINITY);
        at(y).obj = 1;
        const auto xs = std::exchange(at(j).pwlX, {}), ys = std::exchange(at(j).pwlY, {});
        piecewise(j, y, xs, ys);
    }

    void general(const GeneralConstraint &constr, int number) {
        std::vector<Expression> operands;
        for (int var : constr.vars)
            operands.push_back({{var, 1}});
        switch (constr.kind) {
        case KVX_GENCONSTR_MAX:
            return extremum(constr.first, operands, constr.number, 1);
        case KVX_GENCONSTR_MIN:
            return extremum(constr.first, operands, constr.number, -1);
        case KVX_GENCONSTR_ABS:
            return row(sum({{constr.first, -1}}, absolute(constr.second), 1), 0, 0);
        case KVX_GENCONSTR_AND:
        case KVX_GENCONSTR_OR:
            return logic(constr, constr.kind == KVX_GENCONSTR_AND);
        case KVX_GENCONSTR_NORM:
            if (constr.number != 2)
                return norm(constr);
            break;
        case KVX_GENCONSTR_INDICATOR:
            return indicator(constr);
        case KVX_GENCONSTR_PWL:
            return piecewise(constr.first, constr.second, constr.values, constr.values2);
        }
        static const char *const names[] = {"polynomial",
                                            "exponential",
                                            "exponential",
                                            "logarithm",
                                            "logarithm",
                                            "power",
                                            "sine",
                                            "cosine",
                                            "tangent",
                                            "logistic function",
                                            "nonlinear expression"};
        fail(KVX_ERROR_NOT_SUPPORTED, "general constraint %s: a %s can't be solved",
             genconstrName(model, number).c_str(),
             constr.kind == KVX_GENCONSTR_NORM ? "2-norm"
                                               : names[constr.kind - KVX_GENCONSTR_POLY]);
    }

    KVXmodel &model;
    std::vector<double> lower, upper; // implied bounds of the variables
    const double zero;                // operands that count in a 0-norm are at least this large
};

bool isPlain(const KVXmodel &model) {
    auto mayBeNegative = [&](const Entry &member) {
        return model.vars[static_cast<size_t>(member.index)].lb < 0;
    };
    for (const Sos &set : model.sos)
        if (std::any_of(set.members.begin(), set.members.end(), mayBeNegative))
            return false;
    auto isSpecial = [](const Variable &var) { return isSemi(var) || !var.pwlX.empty(); };
    return model.genconstrs.empty() &&
           std::none_of(model.vars.begin(), model.vars.end(), isSpecial);
}

} // namespace

std::unique_ptr<KVXmodel> reformulated(const KVXmodel &model) {
    if (!model.qconstrs.empty())
        fail(KVX_ERROR_NOT_SUPPORTED, "quadratic constraint %s can't be solved",
             qconstrName(model, 0).c_str());
    if (isPlain(model))
        return nullptr;
    auto result = makeModel(model.env, model);
    Reformulation(*result).run();
    return result;
}

} // namespace korvex
