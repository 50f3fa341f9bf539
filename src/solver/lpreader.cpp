// Reads LP files: objective and constraints as formulas, then bounds, sets and lists of integer,
// binary and semi-continuous variables. CoinUtils' reader isn't used: it misreads rows with two
// sides and loses constants.
#include "input.h"
#include "lptokens.h"

#include <algorithm>
#include <cmath>

namespace korvex {
namespace {

class LpReader : LpTokens {
  public:
    using LpTokens::LpTokens;

    ModelData read() {
        std::string_view first = here();
        Section section = takeSection();
        if (section != Section::minimize && section != Section::maximize)
            expected(first, "minimize or maximize");
        model.objsense = section == Section::maximize ? KVX_MAXIMIZE : KVX_MINIMIZE;
        label();
        Formula objective;
        if (!isSectionHere())
            objective = formula(true, true);
        model.objcon = objective.constant;
        for (auto [var, value] : objective.terms)
            model.vars[at(var)].obj = value;
        model.products = std::move(objective.products);
        while ((section = takeSection()) != Section::end) {
            if (section == Section::minimize || section == Section::maximize)
                fail(KVX_ERROR_FILE_READ, "there is a second objective");
            while (!isSectionHere())
                item(section);
        }
        if (!here().empty())
            refuse(here(), "stands behind the end");
        return std::move(model);
    }

  private:
    int variable(bool mayBeNew) {
        if (!isVariableHere())
            expected(here(), "a variable");
        const std::string_view name = take();
        if (!mayBeNew)
            return intSize(variables.find(name));
        if (const int place = variables.place(name); place >= 0)
            return place;
        return addVariable(model, {name});
    }

    struct Formula {
        std::vector<Entry> terms = {};
        double constant = 0;
        bool isNumber = true; // There is no variable in it, not even with a factor of 0.
        bool isQuadratic = false;
        Products products = {};
    };

    // [ NUMBER VARIABLE ^ 2 + NUMBER VARIABLE * VARIABLE ... ] and in the objective / 2
    void products(Products &products, double factor, bool mayBeNew, bool isHalved) {
        for (bool isFirst = true; !take("]"); isFirst = false) {
            if (!isFirst && here() != "+" && here() != "-")
                expected(here(), "+, - or ]");
            double value = 1, sign = this->sign();
            if (parse(here(), value)) {
                take();
                take("*");
            }
            const int first = variable(mayBeNew);
            int second = first;
            if (take("*"))
                second = variable(mayBeNew);
            else if (!take("^"))
                expected(here(), "^ 2 or * and a variable");
            else if (!take("2"))
                expected(here(), "2");
            value = readFinite(factor * sign * value / (isHalved ? 2 : 1), "a coefficient");
            if (value != 0)
                addProducts(products, {{std::minmax(first, second), value}});
        }
        if (isHalved && !(take("/") && take("2")))
            expected(here(), "/ 2");
    }

    // Terms with signs between them.
    Formula formula(bool mayBeNew, bool isObjective = false) {
        Formula result;
        std::vector<int> vars;
        std::vector<double> values;
        double value;
        do {
            double factor = sign();
            if (take("[")) {
                result.isQuadratic = true;
                products(result.products, factor, mayBeNew, isObjective);
                continue;
            }
            bool isNumber = parse(here(), value);
            if (isNumber) {
                factor *= value;
                take();
            }
            if ((isNumber && take("*")) || !isNumber || isVariableHere()) {
                vars.push_back(variable(mayBeNew));
                values.push_back(factor);
            } else {
                result.constant += factor;
            }
        } while (here() == "+" || here() == "-");
        result.isNumber = vars.empty() && !result.isQuadratic;
        result.terms =
            readList(intSize(vars.size()), vars.data(), values.data(), model.vars.size(), "");
        return result;
    }

    struct Relation {
        Formula body = {};
        double lower = NAN, upper = NAN; // NaN: not given

        void limit(char sense, double side) {
            side -= readFinite(body.constant, "a constant");
            upper = sense == '>' ? upper : side;
            lower = sense == '<' ? lower : side;
        }
    };

    // FORMULA sense NUMBER, NUMBER sense FORMULA, NUMBER sense FORMULA sense NUMBER or FORMULA
    // free.
    Relation relation(bool mayBeNew) {
        Relation result;
        result.body = formula(mayBeNew);
        if (!result.body.isNumber && take("free")) {
            result.lower = -KVX_INFINITY;
            result.upper = KVX_INFINITY;
            return result;
        }
        char sense = takeSense();
        if (!result.body.isNumber) {
            result.limit(sense, number());
            return result;
        }
        double left = result.body.constant;
        result.body = formula(mayBeNew);
        bool hasRight = here().find_first_of("<>=") == 0;
        if (result.body.isNumber && !hasRight) { // Two numbers: the first one is the formula.
            std::swap(left, result.body.constant);
            result.limit(sense, left);
            return result;
        }
        result.limit(sense == '<' ? '>' : sense == '>' ? '<' : '=', left);
        if (hasRight && (sense == '=' || takeSense() != sense))
            expected(here(), "a side that fits the other one");
        if (hasRight)
            result.limit(sense, number());
        return result;
    }

    void constraint() {
        Constraint constr;
        constr.name = label();
        Relation found = relation(true);
        if (found.body.isQuadratic) {
            lastIsLabelled = false;
            return quadratic(std::move(constr.name), std::move(found));
        }
        constr.row = std::move(found.body.terms);
        constr.lower = std::fmax(found.lower, -KVX_INFINITY); // not NaN
        constr.upper = std::fmin(found.upper, KVX_INFINITY);
        bool isLabelled = !constr.name.empty();
        if (isLabelled || !isOtherSide(constr))
            addConstraint(model, std::move(constr));
        lastIsLabelled = isLabelled;
    }

    void quadratic(Name name, Relation found) {
        const bool isLow = !std::isnan(found.lower), isHigh = !std::isnan(found.upper);
        if (isLow && isHigh && found.lower != found.upper)
            fail(KVX_ERROR_FILE_READ, "a quadratic constraint needs one side");
        addQuadraticConstraint(model,
                               {std::move(name), std::move(found.body.terms),
                                std::move(found.body.products), isHigh ? found.upper : found.lower,
                                isLow && isHigh ? KVX_EQUAL
                                : isHigh        ? KVX_LESS_EQUAL
                                                : KVX_GREATER_EQUAL});
    }

    // A row without a label after one with a label that has the same left-hand side and only the
    // other side: other readers know rows with two sides in this form alone.
    bool isOtherSide(const Constraint &constr) {
        if (!lastIsLabelled)
            return false;
        Sides &last = model.constrs.back();
        const Entries row = model.rows[model.rows.size() - 1];
        auto isOne = [](double lower, double upper) {
            return lower > -KVX_INFINITY && upper < KVX_INFINITY && lower <= upper;
        };
        bool isUpper = constr.lower <= -KVX_INFINITY && last.upper >= KVX_INFINITY &&
                       isOne(last.lower, constr.upper);
        bool isLower = constr.upper >= KVX_INFINITY && last.lower <= -KVX_INFINITY &&
                       isOne(constr.lower, last.upper);
        if (!(isUpper || isLower) ||
            !std::equal(row.begin(), row.end(), constr.row.begin(), constr.row.end(),
                        [](Entry a, Entry b) { return a.index == b.index && a.value == b.value; }))
            return false;
        (isUpper ? last.upper : last.lower) = isUpper ? constr.upper : constr.lower;
        return true;
    }

    void bound() {
        std::string_view first = here();
        Relation found = relation(false);
        const auto &terms = found.body.terms;
        if (found.body.isQuadratic || terms.size() != 1 || terms[0].value != 1)
            refuse(first, "begins what is no bound of a variable");
        Variable &var = model.vars[at(terms[0].index)];
        var.lb = std::isnan(found.lower) ? var.lb : found.lower;
        var.ub = std::isnan(found.upper) ? var.ub : found.upper;
    }

    void type(Section section) {
        Variable &var = model.vars[at(variable(false))];
        if (section == Section::binaries)
            var.type = KVX_BINARY;
        else if (section == Section::integers)
            var.type = var.isSemi() ? KVX_SEMIINT : KVX_INTEGER;
        else
            var.type = var.isInteger() ? KVX_SEMIINT : KVX_SEMICONT;
    }

    // [NAME:] [S1:: or S2::] VARIABLE: WEIGHT ...
    void set(Section section) {
        auto isMember = [&] {
            double weight;
            std::string_view next = here(2);
            return isLpName(here()) && here(1) == ":" &&
                   (next == "+" || next == "-" || parse(next, weight));
        };
        Sos set{section == Section::sets1 ? 1 : section == Section::sets2 ? 2 : 0, {}};
        if (!isMember() && here(2) != ":")
            label();
        if (here(1) == ":" && here(2) == ":" && (isHere("s1") || isHere("s2"))) {
            set.type = isHere("s1") ? 1 : 2;
            take(), take(), take();
        } else if (section == Section::sets) {
            expected(here(), "S1:: or S2::");
        } else if (!isMember()) {
            expected(here(), "a variable with its weight");
        }
        while (isMember()) {
            int var = intSize(variables.find(take()));
            take();
            set.members.push_back({var, readFinite(number(), "a weight")});
        }
        model.sos.push_back(std::move(set));
    }

    void item(Section section) {
        switch (section) {
        case Section::rows:
            return constraint();
        case Section::bounds:
            return bound();
        case Section::integers:
        case Section::binaries:
        case Section::semis:
            return type(section);
        default:
            return set(section);
        }
    }

    bool lastIsLabelled = false; // the last row
};

} // namespace

ModelData readLp(Source &source) {
    constexpr std::string_view title = "\\Problem name: ";
    std::string_view text = source.text, name;
    if (text.substr(0, title.size()) == title)
        name = text.substr(title.size(), text.find_first_of("\r\n") - title.size());
    ModelData model = LpReader(source).read();
    model.name = validUtf8(name);
    return model;
}

} // namespace korvex
