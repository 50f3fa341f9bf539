// Reformulation of what Cbc doesn't know into linear rows, integer variables and SOS. Most
// conditions become SOS of type 1 rather than rows with large constants: of a slack and a binary
// variable only one may be nonzero, however large the slack may get. Where the variables' bounds
// limit a slack it is limited, since without its SOS the model should be bounded, too.
#include "input.h"
#include "optimize.h"
#include "params.h"

#include <cmath>
#include <map>
#include <utility>

namespace korvex {
namespace {

using Expression = std::vector<Entry>;

constexpr double largestImplied = 1e7; // Beyond, a bound is of little use to the solver.

Expression operator+(Expression a, const Expression &b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

Expression operator*(double factor, Expression a) {
    for (Entry &entry : a)
        entry.value *= factor;
    return a;
}

// A limit that a reformulation asks for: the largest value of an expression.
struct Limit {
    Expression expression;
    double most;
    bool isOpen() const { return most >= KVX_INFINITY; }
};

struct Reformulation {
    ModelData model;
    const double zero; // operands that count in a 0-norm are at least this large

    // In the order in which they are asked for, which is the same whatever they are. Those that are
    // there before count if the variables' bounds give none.
    std::vector<Limit> limits = {};
    size_t asked = 0;

    std::vector<Range> known = {}; // the first variables' bounds, or what the rows imply where none

    Variable &var(int j) { return model.vars[at(j)]; }
    double low(int j) { return at(j) < known.size() ? known[at(j)].lower : var(j).lb; }
    double high(int j) { return at(j) < known.size() ? known[at(j)].upper : var(j).ub; }

    int variable(double lb, double ub, char type = KVX_CONTINUOUS) {
        return addVariable(model, {"", lb, ub, 0, type});
    }
    int slack(double limit = KVX_INFINITY) { return variable(0, std::max(limit, 0.0)); }
    int binary() { return variable(0, 1, KVX_BINARY); }

    void row(const Expression &entries, double lower, double upper) {
        std::map<int, double> sums;
        for (auto [index, value] : entries)
            sums[index] += value;
        Constraint constr{{"", lower, upper}};
        for (auto [index, value] : sums)
            if (value != 0)
                constr.row.push_back({index, value});
        addConstraint(model, std::move(constr));
        model.hasBasis = false;
    }

    void set(int type, const Expression &vars) {
        Sos sos{type, vars};
        for (size_t k = 0; k < vars.size(); k++)
            sos.members[k].value = intSize(k);
        model.sos.push_back(std::move(sos));
    }

    double most(const Expression &entries) {
        double sum = 0;
        for (auto [index, value] : entries)
            sum -= least({index, -value});
        if (asked == limits.size())
            limits.push_back({entries, std::min(sum, KVX_INFINITY)});
        return std::min(sum, limits[asked++].most);
    }
    double most(int j) { return most({{j, 1}}); }
    double least(int j) { return -most({{j, -1}}); }

    // Finds bounds for variables without, from the rows and the bounds of their other variables.
    void propagate() {
        for (const Variable &v : model.vars)
            known.push_back({v.isSemi() ? std::min(v.lb, 0.0) : v.lb,
                             v.isSemi() ? std::max(v.ub, 0.0) : v.ub, v.type});
        bool isNew = true;
        for (int round = 0; isNew && round < 20; round++) {
            isNew = false;
            for (size_t i = 0; i < model.constrs.size(); i++)
                for (double sign : {1.0, -1.0}) { // sign times the row is at most the side
                    const Entries row = model.rows[i];
                    double side = sign > 0 ? model.constrs[i].upper : -model.constrs[i].lower;
                    if (side < KVX_INFINITY)
                        isNew |= propagate(sign * Expression(row.begin(), row.end()), side);
                }
        }
    }

    bool propagate(const Expression &row, double side) {
        int open = -1; // the place of the only variable whose contribution has no limit
        for (size_t k = 0; k < row.size(); k++)
            if (std::abs(least(row[k])) >= KVX_INFINITY) {
                if (open >= 0)
                    return false;
                open = intSize(k);
            } else {
                side -= least(row[k]);
            }
        bool isNew = false;
        for (size_t k = 0; k < row.size(); k++) {
            if (open >= 0 && at(open) != k)
                continue;
            auto [j, value] = row[k];
            const double bound = (open >= 0 ? side : side + least(row[k])) / value;
            double &bounded = value > 0 ? known[at(j)].upper : known[at(j)].lower;
            if (std::abs(bounded) >= KVX_INFINITY && std::abs(bound) < largestImplied) {
                bounded = bound;
                isNew = true;
            }
        }
        return isNew;
    }

    // The least contribution to a row; infinite when there is none.
    double least(Entry entry) {
        double bound = entry.value > 0 ? low(entry.index) : high(entry.index);
        return std::abs(bound) >= KVX_INFINITY ? -KVX_INFINITY : entry.value * bound;
    }

    void makeBinary(int j) {
        if (var(j).type == KVX_BINARY)
            return;
        row({{j, 1}}, 0, 1);
        var(j).type = KVX_INTEGER;
    }

    // The sum of a variable's positive and negative part, of which one is 0.
    Expression absolute(int j) {
        if (var(j).lb >= 0)
            return {{j, 1}};
        int positive = slack(most(j)), negative = slack(-least(j));
        row({{j, 1}, {positive, -1}, {negative, 1}}, 0, 0);
        set(KVX_SOS_TYPE1, {{positive, 1}, {negative, 1}});
        return {{positive, 1}, {negative, 1}};
    }

    int notNegative(int j) {
        if (var(j).lb >= 0)
            return j;
        int size = slack();
        row(Expression{{size, -1}} + absolute(j), 0, 0);
        return size;
    }

    // 0, or between bounds that don't contain it.
    void semi(int j) {
        const double lb = var(j).lb, ub = var(j).ub;
        var(j).type = var(j).type == KVX_SEMIINT ? KVX_INTEGER : KVX_CONTINUOUS;
        var(j).lb = std::min(lb, 0.0);
        var(j).ub = std::max(ub, 0.0);
        if (lb <= 0 && ub >= 0)
            return;
        int isZero = binary();
        if (lb > 0)
            row({{j, 1}, {isZero, lb}}, lb, KVX_INFINITY);
        else
            row({{j, 1}, {isZero, ub}}, -KVX_INFINITY, ub);
        set(KVX_SOS_TYPE1, absolute(j) + Expression{{isZero, 1}});
    }

    // result = max (sign 1) or min (sign -1) of the operands and the constant; an infinite one
    // doesn't count.
    void extremum(int result, std::vector<Expression> operands, double constant, double sign) {
        if (std::abs(constant) < KVX_INFINITY)
            operands.push_back({{variable(constant, constant), 1}});
        Expression chosen;
        double limit = -KVX_INFINITY; // of sign * result
        for (const Expression &operand : operands) {
            limit = std::max(limit, most(sign * operand));
            int distance = slack(), isChosen = binary();
            row(Expression{{result, sign}, {distance, -1}} + -sign * operand, 0, 0);
            set(KVX_SOS_TYPE1, {{distance, 1}, {isChosen, 1}});
            chosen.push_back({isChosen, 1});
        }
        row(chosen, 1, 1); // can't hold without operands
        if (!operands.empty())
            row({{result, sign}}, -KVX_INFINITY, limit);
    }

    // result = whether all or any of the binary operands are 1; the total is their sum minus it.
    void logical(const GeneralConstraint &constr, const Expression &total) {
        const bool isAnd = constr.kind == KVX_GENCONSTR_AND;
        makeBinary(constr.first);
        for (int operand : constr.vars) {
            makeBinary(operand);
            row({{operand, 1}, {constr.first, -1}}, isAnd ? 0 : -KVX_INFINITY,
                isAnd ? KVX_INFINITY : 0);
        }
        if (isAnd)
            row(total, -KVX_INFINITY, intSize(constr.vars.size()) - 1);
        else
            row(total, 0, KVX_INFINITY);
    }

    // result = the number of operands that aren't 0, by their sizes.
    void count(const GeneralConstraint &constr, const std::vector<Expression> &sizes) {
        Expression zeros = {{constr.first, 1}};
        const int total = intSize(sizes.size());
        for (size_t k = 0; k < sizes.size(); k++) {
            double least = var(constr.vars[k]).type == KVX_CONTINUOUS ? zero : 1;
            Expression isZero = {{binary(), 1}};
            set(KVX_SOS_TYPE1, sizes[k] + isZero);
            row(sizes[k] + least * isZero, least, KVX_INFINITY);
            zeros = zeros + isZero;
        }
        row(zeros, total, total);
    }

    void indicator(const GeneralConstraint &constr) {
        makeBinary(constr.first);
        const int applies = constr.second ? constr.first : binary();
        if (!constr.second)
            row({{constr.first, 1}, {applies, 1}}, 1, 1);
        Expression relaxed = constr.linear, exclusive = {{applies, 1}};
        for (double sign : {1.0, -1.0}) { // what goes beyond the right-hand side, above and below
            int excess = slack(most(sign * constr.linear) - sign * constr.number);
            relaxed.push_back({excess, -sign});
            exclusive.push_back({excess, 1});
        }
        Range sides = sidesOf(constr.sense, constr.number, 0);
        row(relaxed, sides.lower, sides.upper);
        set(KVX_SOS_TYPE1, exclusive);
    }

    // y = f(x): a combination of adjacent breakpoints, or one end and a step beyond it in the
    // direction of its segment.
    void piecewise(int x, int y, const std::vector<double> &xs, const std::vector<double> &ys) {
        Expression xRow = {{x, -1}}, yRow = {{y, -1}}, total, ordered;
        auto member = [&](double limit, double dx, double dy) {
            int part = slack(limit);
            xRow.push_back({part, dx});
            yRow.push_back({part, dy});
            ordered.push_back({part, 1});
        };
        auto step = [&](size_t end, size_t inner, double direction, double bound) {
            double run = xs[end] - xs[inner], rise = ys[end] - ys[inner];
            member(direction * (bound - xs[end]), direction, run == 0 ? 0 : direction * rise / run);
        };
        const size_t last = xs.size() - 1;
        step(0, std::min<size_t>(1, last), -1, least(x));
        for (size_t k = 0; k <= last; k++) {
            member(1, xs[k], ys[k]);
            total.push_back(ordered.back());
        }
        step(last, last - std::min<size_t>(1, last), 1, most(x));
        row(xRow, 0, 0);
        row(yRow, 0, 0);
        row(total, 1, 1);
        set(KVX_SOS_TYPE2, ordered);
    }

    void general(const GeneralConstraint &constr) {
        const int result = constr.first, kind = constr.kind;
        if (kind > KVX_GENCONSTR_PWL || (kind == KVX_GENCONSTR_NORM && constr.number == 2))
            fail(KVX_ERROR_NOT_SUPPORTED, "general constraint %s: the kind %s can't be solved",
                 constr.name.text().c_str(),
                 kind == KVX_GENCONSTR_NORM ? "norm 2" : constr.kindName);
        std::vector<Expression> operands;
        Expression total = {{result, -1}};
        for (int operand : constr.vars) {
            operands.push_back(kind == KVX_GENCONSTR_NORM ? absolute(operand)
                                                          : Expression{{operand, 1}});
            total = total + operands.back();
        }
        if (kind == KVX_GENCONSTR_MAX || kind == KVX_GENCONSTR_MIN)
            extremum(result, operands, constr.number, kind == KVX_GENCONSTR_MAX ? 1 : -1);
        else if (kind == KVX_GENCONSTR_AND || kind == KVX_GENCONSTR_OR)
            logical(constr, total);
        else if (kind == KVX_GENCONSTR_ABS)
            row(total + absolute(constr.second), 0, 0);
        else if (kind == KVX_GENCONSTR_INDICATOR)
            indicator(constr);
        else if (kind == KVX_GENCONSTR_PWL)
            piecewise(constr.first, constr.second, constr.x, constr.y);
        else if (constr.number == 0)
            count(constr, operands);
        else if (constr.number == 1)
            row(total, 0, 0);
        else
            extremum(result, operands, 0, 1);
    }

    void run() {
        const size_t vars = model.vars.size(), sets = model.sos.size();
        propagate();
        for (size_t j = 0; j < vars; j++)
            if (model.vars[j].isSemi())
                semi(intSize(j));
        for (size_t s = 0; s < sets; s++)
            for (size_t k = 0; k < model.sos[s].members.size(); k++) {
                int member = notNegative(model.sos[s].members[k].index);
                model.sos[s].members[k].index = member;
            }
        for (const GeneralConstraint &constr : std::exchange(model.genconstrs, {}))
            general(constr);
        for (auto &[j, term] : std::exchange(model.pwl, {})) {
            int y = variable(-KVX_INFINITY, KVX_INFINITY);
            var(y).obj = 1;
            piecewise(j, y, term.x, term.y);
        }
        for (Objective &objective : model.objectives)
            objective.coefs.resize(model.vars.size());
    }
};

// Finds open limits in the linear relaxation of the reformulated model, if that is unbounded: with
// sets it can't be searched then. Whether there are any.
bool limitByRelaxation(const KVXmodel &model, const ModelData &reformulated,
                       std::vector<Limit> &limits) {
    constexpr double margin = 1e-3; // Limits may be too large, but never too small.
    int tries = 2000;
    auto relaxation = makeInnerModel(model.env, reformulated);
    setParam(relaxation->env, "Method", 0); // goes on from the basis before
    relaxation->products.clear();
    relaxation->sos.clear();
    for (Variable &var : relaxation->vars)
        var.type = KVX_CONTINUOUS;
    auto status = [&] {
        if (model.running)
            return solveInside(*model.run, *relaxation);
        KVXoptimize(relaxation.get());
        return relaxation->solution.status;
    };
    if (model.objectives.empty() && status() != KVX_STATUS_UNBOUNDED)
        return false;
    bool isFound = false;
    for (Limit &limit : limits) {
        if (!limit.isOpen() || tries-- <= 0)
            continue;
        clearObjective(*relaxation);
        relaxation->objsense = KVX_MAXIMIZE;
        for (auto [index, value] : limit.expression)
            relaxation->vars[at(index)].obj += value;
        const double most =
            status() == KVX_STATUS_OPTIMAL ? relaxation->solution.objval : KVX_INFINITY;
        if (std::abs(most) < largestImplied) {
            limit.most = most + margin * (1 + std::abs(most));
            isFound = true;
        }
    }
    return isFound;
}

} // namespace

ModelData reformulated(const KVXmodel &model) {
    const double tolerance = 10 * dblParam(model.env, "FeasibilityTol");
    Reformulation first{model, tolerance};
    first.run();
    std::vector<Limit> &limits = first.limits;
    auto isOpen = [](const Limit &limit) { return limit.isOpen(); };
    if (first.model.sos.empty() || std::none_of(limits.begin(), limits.end(), isOpen) ||
        !limitByRelaxation(model, first.model, limits))
        return std::move(first.model);
    Reformulation second{model, tolerance, limits};
    second.run();
    return std::move(second.model);
}

} // namespace korvex
