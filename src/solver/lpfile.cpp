// LP files: objective and constraints as formulas, then bounds and lists of integer, binary and
// semi-continuous variables. CoinUtils' reader isn't used: it misreads rows with two sides.
#include "input.h"
#include "textfile.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace korvex {
namespace {

enum Section { none, minimize, maximize, rows, bounds, integers, binaries, semis, end };

Section sectionOf(std::string_view word) {
    static constexpr std::string_view keywords[][4] = {{"min", "minimize"},
                                                       {"max", "maximize"},
                                                       {"st", "s.t.", "subject"},
                                                       {"bounds", "bound"},
                                                       {"generals", "general", "gen", "integers"},
                                                       {"binaries", "binary", "bin"},
                                                       {"semis", "semi"},
                                                       {"end"}};
    for (int section = minimize; section <= end; section++)
        for (std::string_view keyword : keywords[section - 1])
            if (!word.empty() && equalIgnoringCase(word, keyword))
                return static_cast<Section>(section);
    return none;
}

bool beginsNumber(std::string_view word) {
    return word.find_first_of("0123456789.") == 0;
}

// Keywords are no names, since they end what stands before them.
bool isLpName(std::string_view name) {
    double number;
    return !name.empty() && name.find_first_of(" +-*/^[]:<>=\\") == name.npos &&
           !beginsNumber(name) && !parse(name, number) && sectionOf(name) == none;
}

class LpReader {
  public:
    explicit LpReader(Source &source) : source(source) {
        while (source.nextLine('\\'))
            for (std::string_view word : source.words) {
                split(word.substr(0, word.find('\\')));
                if (word.find('\\') != word.npos)
                    break; // The rest is a comment.
            }
        tokens.insert(tokens.end(), 3, {"", source.number});
    }

    ModelData read() {
        Section section = takeSection();
        model.objsense = section == maximize ? KVX_MAXIMIZE : KVX_MINIMIZE;
        label();
        std::vector<Entry> objective;
        if (sectionOf(here()) == none)
            model.objcon = formula(objective);
        for (auto [var, value] : objective)
            model.vars[at(var)].obj = value;
        while ((section = takeSection()) != end)
            while (sectionOf(here()) == none) {
                if (section == rows)
                    constraint();
                else if (section == bounds)
                    bound();
                else
                    type(section);
            }
        return std::move(model);
    }

  private:
    void split(std::string_view word) {
        while (!word.empty()) {
            size_t length = word.find_first_of("+-*/^[]:<>=");
            double value;
            if (beginsNumber(word))
                length = static_cast<size_t>(std::from_chars(word.begin(), word.end(), value).ptr -
                                             word.begin());
            else if (length == 0)
                length = word.find_first_not_of("<>=");
            tokens.emplace_back(word.substr(0, std::max<size_t>(length, 1)), source.number);
            word.remove_prefix(tokens.back().first.size());
        }
    }

    // The present token or the one behind it; "" at the end.
    std::string_view here(size_t ahead = 0) {
        source.number = tokens[position].second;
        return tokens[position + ahead].first;
    }

    bool take(std::string_view text) {
        bool isHere = equalIgnoringCase(here(), text);
        position += isHere;
        return isHere;
    }

    // The objective comes first, and only there.
    Section takeSection() {
        Section section = sectionOf(here());
        if (section == none || (section <= maximize) != (position == 0))
            refuse(here(), "is no section that can stand here");
        position += equalIgnoringCase(here(), "subject") ? 2 : 1;
        position += section == semis && here() == "-" ? 2 : 0;
        return section;
    }

    std::string label() {
        if (!isLpName(here()) || here(1) != ":")
            return "";
        position += 2;
        return std::string(tokens[position - 2].first);
    }

    int variable() {
        if (!isLpName(here()))
            refuse(here(), "stands where a variable is expected");
        auto [place, isNew] = index.emplace(here(), model.vars.size());
        Variable var;
        var.name = here();
        if (isNew)
            addVariable(model, std::move(var));
        position++;
        return intSize(place->second);
    }

    double sign() {
        double result = 1;
        for (; here() == "+" || here() == "-"; position++)
            result = here() == "-" ? -result : result;
        return result;
    }

    double number() {
        double factor = sign(), value = numberIn(here());
        position++;
        return factor * value;
    }

    // Terms with signs between them; gives the sum of those that are just numbers.
    double formula(std::vector<Entry> &terms) {
        std::vector<int> vars;
        std::vector<double> values;
        double constant = 0, value;
        do {
            double factor = sign();
            bool isNumber = parse(here(), value);
            if (isNumber) {
                factor *= value;
                position++;
                take("*");
            }
            if (isNumber && (!isLpName(here()) || here(1) == ":")) {
                constant += factor;
            } else {
                vars.push_back(variable());
                values.push_back(factor);
            }
        } while (here() == "+" || here() == "-");
        terms = readList(intSize(vars.size()), vars.data(), values.data(), model.vars.size(), "");
        return constant;
    }

    // '<', '>' or '='; 0 for none.
    char takeSense() {
        for (std::string_view word : {"<", "<=", "=<", ">", ">=", "=>", "="})
            if (take(word))
                return word[0] == '=' ? word.back() : word[0];
        return 0;
    }

    // FORMULA sense NUMBER, NUMBER sense FORMULA, NUMBER sense FORMULA sense NUMBER or FORMULA
    // free. A side that isn't given is a NaN.
    Constraint relation() {
        Constraint constr;
        constr.name = label();
        double constant = formula(constr.row);
        if (take("free"))
            return constr;
        constr.lower = constr.upper = NAN;
        auto limit = [&](char sense, double side) {
            side -= readFinite(constant, "a constant");
            constr.upper = sense == '>' ? constr.upper : side;
            constr.lower = sense == '<' ? constr.lower : side;
        };
        char sense = takeSense();
        if (sense && constr.row.empty()) {
            double left = constant;
            constant = formula(constr.row);
            limit(sense == '<' ? '>' : sense == '>' ? '<' : '=', left);
            char next = takeSense();
            if (!next)
                return constr;
            sense = next == sense && sense != '=' ? sense : 0;
        }
        if (!sense)
            refuse(here(), "doesn't go on with the relation");
        limit(sense, number());
        return constr;
    }

    void constraint() {
        Constraint constr = relation();
        constr.lower = std::fmax(constr.lower, -KVX_INFINITY); // not NaN
        constr.upper = std::fmin(constr.upper, KVX_INFINITY);
        addConstraint(model, std::move(constr));
    }

    void bound() {
        size_t known = model.vars.size();
        Constraint constr = relation();
        if (constr.row.size() != 1 || constr.row[0].value != 1 || model.vars.size() > known)
            refuse(tokens[position - 1].first, "ends what is no bound of a known variable");
        Variable &var = model.vars[at(constr.row[0].index)];
        var.lb = std::isnan(constr.lower) ? var.lb : constr.lower;
        var.ub = std::isnan(constr.upper) ? var.ub : constr.upper;
    }

    void type(Section section) {
        Variable &var = model.vars[find(index, here())];
        position++;
        if (section == binaries)
            var.type = KVX_BINARY;
        else if (section == integers)
            var.type = var.isSemi() ? KVX_SEMIINT : KVX_INTEGER;
        else
            var.type = var.isInteger() ? KVX_SEMIINT : KVX_SEMICONT;
    }

    Source &source;
    std::vector<std::pair<std::string_view, int>> tokens; // and their lines
    size_t position = 0;
    ModelData model;
    Index index;
};

} // namespace

ModelData readLp(Source &source) {
    return LpReader(source).read();
}

std::string writeLp(const ModelData &model) {
    indexOf(model.vars, isLpName);
    indexOf(model.constrs, isLpName);
    auto number = [](double value) {
        return std::abs(value) < KVX_INFINITY ? toText(value) : value < 0 ? "-inf" : "inf";
    };
    auto term = [](double value, const std::string &name) {
        return (std::signbit(value) ? "\n  - " : "\n  + ") + toText(std::abs(value)) + ' ' + name;
    };
    std::string text = model.objsense == KVX_MAXIMIZE ? "Maximize\n obj:" : "Minimize\n obj:";
    for (const Variable &var : model.vars) // also zeros: all are there in their order
        text += term(var.obj, var.name);
    text += term(model.objcon, "") + "\nSubject To";
    for (const Constraint &constr : model.constrs) {
        bool isEqual = constr.lower == constr.upper, isHigh = constr.upper < KVX_INFINITY;
        bool isOneSided =
            !constr.row.empty() && (isEqual || isHigh != (constr.lower > -KVX_INFINITY));
        text += "\n " + constr.name + ": " + (isOneSided ? "" : number(constr.lower) + " <= 0");
        for (auto [var, value] : constr.row)
            text += term(value, model.vars[at(var)].name);
        text += !isOneSided ? " <= " : isEqual ? " = " : isHigh ? " <= " : " >= ";
        text += number(isOneSided && !isHigh ? constr.lower : constr.upper);
    }
    text += "\nBounds";
    for (const Variable &var : model.vars)
        if (var.lb != 0 || var.ub < KVX_INFINITY)
            text += "\n " + number(var.lb) + " <= " + var.name + " <= " + number(var.ub);
    const std::pair<const char *, const char *> lists[] = {
        {"Generals", "IN"}, {"Binaries", "B"}, {"Semi-continuous", "SN"}};
    for (auto [title, types] : lists) {
        text += std::string("\n") + title;
        for (const Variable &var : model.vars)
            if (std::strchr(types, var.type))
                text += "\n " + var.name;
    }
    return text + "\nEnd\n";
}

} // namespace korvex
