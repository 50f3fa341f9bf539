// LP files: objective and constraints as formulas, with quadratic terms in brackets, then bounds,
// lists of integer, binary and semi-continuous variables, and SOS.
#include "guard.h"
#include "text.h"
#include "textfile.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace korvex {
namespace {

enum class Section {
    none,
    minimize,
    maximize,
    constraints,
    bounds,
    integers,
    binaries,
    semis,
    sos,
    end
};

struct Keyword {
    std::string_view word;
    Section section;
};

// Keywords begin a line and no colon follows them.
constexpr Keyword keywords[] = {
    {"minimize", Section::minimize},
    {"minimum", Section::minimize},
    {"min", Section::minimize},
    {"maximize", Section::maximize},
    {"maximum", Section::maximize},
    {"max", Section::maximize},
    {"subject", Section::constraints},
    {"such", Section::constraints},
    {"st", Section::constraints},
    {"s.t.", Section::constraints},
    {"st.", Section::constraints},
    {"bounds", Section::bounds},
    {"bound", Section::bounds},
    {"general", Section::integers},
    {"generals", Section::integers},
    {"gen", Section::integers},
    {"integer", Section::integers},
    {"integers", Section::integers},
    {"int", Section::integers},
    {"binary", Section::binaries},
    {"binaries", Section::binaries},
    {"bin", Section::binaries},
    {"semi", Section::semis},
    {"semis", Section::semis},
    {"sos", Section::sos},
    {"end", Section::end},
};

Section sectionOf(std::string_view word) {
    for (const Keyword &keyword : keywords)
        if (equalIgnoringCase(keyword.word, word))
            return keyword.section;
    return Section::none;
}

bool isInfinity(std::string_view word) {
    return equalIgnoringCase(word, "inf") || equalIgnoringCase(word, "infinity");
}

constexpr std::string_view blanks = " \t\r\v\f", separators = " \t\r\v\f+-*/^[]:<>=\\";

bool beginsNumber(char c) {
    return (c >= '0' && c <= '9') || c == '.';
}

bool isWritableName(std::string_view name) {
    return name.find_first_of(separators) == std::string_view::npos && !beginsNumber(name[0]) &&
           sectionOf(name) == Section::none && !isInfinity(name);
}

struct Token {
    enum Kind { name, number, symbol, end } kind;
    std::string_view text; // of a symbol: its first character; relations as <, > or =
    double value;
    int line;
    bool beginsLine;
};

struct Expression {
    std::vector<Entry> linear;
    std::vector<QuadraticTerm> quadratic;
    double constant = 0;
    bool hasTerms() const { return !linear.empty() || !quadratic.empty(); }
};

class LpReader {
  public:
    explicit LpReader(const std::string &filename) : source(filename) {
        while (source.nextLine('\\'))
            splitLine(source.line.substr(0, source.line.find('\\')));
        tokens.push_back({Token::end, "the end of the file", 0, source.lineNumber, false});
    }

    ModelData read() {
        Section section = takeSection();
        if (section != Section::minimize && section != Section::maximize)
            refuse("'minimize' or 'maximize' is expected");
        model.objsense = section == Section::minimize ? KVX_MINIMIZE : KVX_MAXIMIZE;
        objective();
        while ((section = takeSection()) != Section::end) {
            while (sectionHere() == Section::none && here().kind != Token::end) {
                if (section == Section::constraints)
                    constraint();
                else if (section == Section::bounds)
                    bound();
                else if (section == Section::sos)
                    set();
                else
                    type(section);
            }
        }
        return std::move(model);
    }

  private:
    void splitLine(std::string_view rest) {
        for (bool first = true;; first = false) {
            rest.remove_prefix(std::min(rest.find_first_not_of(blanks), rest.size()));
            if (rest.empty())
                return;
            Token token{Token::name, rest.substr(0, rest.find_first_of(separators)), 0,
                        source.lineNumber, first};
            size_t length = token.text.size();
            if (beginsNumber(rest[0])) {
                auto [past, error] =
                    std::from_chars(rest.data(), rest.data() + rest.size(), token.value);
                if (error != std::errc())
                    source.refuse(quoted(token.text) + " is not a number");
                token.kind = Token::number;
                length = static_cast<size_t>(past - rest.data());
            } else if (length == 0) {
                token.kind = Token::symbol;
                length = std::min(rest.find_first_not_of("<>="), rest.size());
                std::string_view relation = rest.substr(0, length);
                length = std::max<size_t>(length, 1);
                token.text = rest.substr(0, 1);
                for (std::string_view sense : {"<", ">"})
                    if (relation.find(sense) != std::string_view::npos)
                        token.text = sense;
            } else if (!isName(token.text)) {
                source.refuse(quoted(token.text) + " isn't UTF-8 text");
            }
            tokens.push_back(token);
            rest.remove_prefix(length);
        }
    }

    const Token &here(size_t ahead = 0) const {
        return tokens[std::min(position + ahead, tokens.size() - 1)];
    }

    bool isHere(std::string_view symbol, size_t ahead = 0) const {
        return here(ahead).kind == Token::symbol && here(ahead).text == symbol;
    }

    bool take(std::string_view symbol) {
        bool found = isHere(symbol);
        position += found;
        return found;
    }

    [[noreturn]] void refuse(const std::string &why) {
        source.lineNumber = here().line;
        source.refuse(why + " at " + quoted(here().text));
    }

    Section sectionHere() const {
        bool keyword = here().kind == Token::name && here().beginsLine && !isHere(":", 1);
        return keyword ? sectionOf(here().text) : Section::none;
    }

    // Takes a section's keyword with the words that belong to it.
    Section takeSection() {
        Section section = sectionHere();
        if (section == Section::none)
            refuse("a section's keyword is expected");
        std::string_view word = here().text;
        position++;
        bool two = equalIgnoringCase(word, "subject") || equalIgnoringCase(word, "such");
        if (two && !here().beginsLine)
            position++;
        if (section == Section::semis && take("-"))
            position++;
        return section;
    }

    bool isLabel() const { return here().kind == Token::name && isHere(":", 1); }

    std::string label() {
        if (!isLabel())
            return "";
        position += 2;
        return std::string(tokens[position - 2].text);
    }

    // A variable; the objective and the constraints make those that aren't there yet.
    int variable(bool make) {
        if (here().kind != Token::name)
            refuse("a variable is expected");
        std::string name(here().text);
        auto found = index.find(name);
        if (found == index.end()) {
            if (!make)
                refuse("the variable isn't in the objective nor in a constraint:");
            found = index.emplace(name, static_cast<int>(model.vars.size())).first;
            model.vars.emplace_back().name = name;
            place.push_back(0);
        }
        position++;
        return found->second;
    }

    // Any number of signs; 0 when there is none.
    int sign() {
        int result = 0;
        while (isHere("+") || isHere("-"))
            result = (result == 0 ? 1 : result) * (take("-") ? -1 : (position++, 1));
        return result;
    }

    double number() {
        int factor = sign();
        double value = here().value;
        if (here().kind == Token::name && isInfinity(here().text))
            value = KVX_INFINITY;
        else if (here().kind != Token::number)
            refuse("a number is expected");
        position++;
        return factor < 0 ? -value : value;
    }

    bool isNumber() const {
        size_t ahead = isHere("-") || isHere("+");
        return here(ahead).kind == Token::number || isInfinity(here(ahead).text);
    }

    void addTerm(Expression &result, int var, double value) {
        size_t &at = place[static_cast<size_t>(var)];
        if (at < result.linear.size() && result.linear[at].index == var) {
            result.linear[at].value += value;
        } else {
            at = result.linear.size();
            result.linear.push_back({var, value});
        }
    }

    // Goes up to what can't continue it: a relation, a label, a section, a term without sign.
    Expression expression() {
        Expression result;
        for (bool first = true;; first = false) {
            size_t begin = position;
            int factor = sign();
            bool isTerm = here().kind == Token::number || here().kind == Token::name;
            bool ends = !(isTerm || isHere("[")) || sectionHere() != Section::none || isLabel();
            if (factor == 0 && (ends || !first)) {
                position = begin;
                return result;
            }
            if (ends)
                refuse("a term is expected");
            double coefficient = factor < 0 ? -1 : 1;
            if (take("[")) {
                quadratic(result, coefficient);
            } else if (here().kind == Token::number || isInfinity(here().text)) {
                coefficient *= number();
                take("*");
                if (here().kind == Token::name && !isLabel() && sectionHere() == Section::none)
                    addTerm(result, variable(true), coefficient);
                else
                    result.constant += coefficient;
            } else {
                addTerm(result, variable(true), coefficient);
            }
        }
    }

    // What stands between brackets; "/ 2" behind them halves it.
    void quadratic(Expression &result, double factor) {
        size_t first = result.quadratic.size();
        while (!take("]")) {
            double value = sign() < 0 ? -factor : factor;
            if (here().kind == Token::number)
                value *= number();
            take("*");
            int i = variable(true), j = i;
            if (take("*"))
                j = variable(true);
            else if (!take("^") || number() != 2)
                refuse("a square or a product is expected");
            result.quadratic.push_back({i, j, value});
        }
        if (!take("/"))
            return;
        if (number() != 2)
            refuse("only a 2 can stand below the brackets");
        for (size_t k = first; k < result.quadratic.size(); k++)
            result.quadratic[k].value /= 2;
    }

    void objective() {
        label();
        Expression formula = expression();
        for (auto [var, value] : formula.linear)
            model.vars[static_cast<size_t>(var)].obj = value;
        model.quadratic = formula.quadratic;
        model.objcon = formula.constant;
    }

    char relation() {
        if (!isHere("<") && !isHere(">") && !isHere("="))
            refuse("a relation is expected");
        return tokens[position++].text[0];
    }

    // FORMULA sense NUMBER, NUMBER sense FORMULA, or NUMBER sense FORMULA sense NUMBER.
    void constraint() {
        std::string name = label();
        Expression formula = expression();
        double lower = -KVX_INFINITY, upper = KVX_INFINITY;
        auto addSide = [&](char sense, double side) {
            if (sense != '>')
                upper = side;
            if (sense != '<')
                lower = side;
        };
        char sense = relation();
        if (formula.hasTerms()) {
            addSide(sense, number() - formula.constant);
        } else {
            double left = formula.constant;
            formula = expression();
            addSide(sense == '<' ? '>' : sense == '>' ? '<' : '=', left - formula.constant);
            if (sense != '=' && take(std::string_view(&sense, 1)))
                addSide(sense, number() - formula.constant);
        }
        if (formula.quadratic.empty()) {
            Constraint &constr = model.constrs.emplace_back();
            constr.name = name;
            constr.lower = lower;
            constr.upper = upper;
            constr.row = formula.linear;
            return;
        }
        if (lower > -KVX_INFINITY && upper < KVX_INFINITY && lower != upper)
            refuse("a quadratic constraint with two sides, before what is");
        sense = lower == upper         ? KVX_EQUAL
                : upper < KVX_INFINITY ? KVX_LESS_EQUAL
                                       : KVX_GREATER_EQUAL;
        model.qconstrs.push_back({name, formula.linear, formula.quadratic, sense,
                                  sense == KVX_GREATER_EQUAL ? lower : upper});
    }

    // NAME free, NAME sense NUMBER, or NUMBER sense NAME, which another side may follow.
    void bound() {
        double left = 0;
        char sense = 0;
        if (isNumber()) {
            left = number();
            sense = relation();
        }
        Variable &var = model.vars[static_cast<size_t>(variable(false))];
        if (sense && sense != '<')
            var.ub = left;
        if (sense && sense != '>')
            var.lb = left;
        if (!sense && equalIgnoringCase(here().text, "free")) {
            position++;
            var.lb = -KVX_INFINITY;
            var.ub = KVX_INFINITY;
        } else if (!sense || isHere("<") || isHere(">") || isHere("=")) {
            sense = relation();
            double right = number();
            if (sense != '>')
                var.ub = right;
            if (sense != '<')
                var.lb = right;
        }
    }

    void type(Section section) {
        char &type = model.vars[static_cast<size_t>(variable(false))].type;
        if (section == Section::binaries)
            type = KVX_BINARY;
        else if (section == Section::semis)
            type = type == KVX_INTEGER ? KVX_SEMIINT : KVX_SEMICONT;
        else if (section == Section::integers)
            type = type == KVX_SEMICONT ? KVX_SEMIINT : KVX_INTEGER;
        else
            refuse("this section can't stand here, before");
    }

    // NAME: S1 :: NAME:WEIGHT NAME:WEIGHT ...
    void set() {
        label();
        bool first = equalIgnoringCase(here().text, "s1");
        if (!first && !equalIgnoringCase(here().text, "s2"))
            refuse("the type of a set, S1 or S2, is expected");
        position++;
        Sos &sos = model.sos.emplace_back(Sos{first ? KVX_SOS_TYPE1 : KVX_SOS_TYPE2, {}});
        if (!take(":") || !take(":"))
            refuse("'::' is expected");
        while (isLabel() && here(2).kind != Token::name) {
            int var = variable(false);
            position++;
            sos.members.push_back({var, number()});
        }
    }

    Source source;
    std::vector<Token> tokens;
    size_t position = 0;
    ModelData model;
    std::unordered_map<std::string, int> index;
    std::vector<size_t> place; // of each variable in the formula that is being read, if it is there
};

// Text with a line break now and then.
class LpWriter {
  public:
    explicit LpWriter(const ModelData &model)
        : model(model), vars(model, model.vars.size(), varName, isWritableName),
          constrs(model, model.constrs.size(), constrName, isWritableName),
          qconstrs(model, model.qconstrs.size(), qconstrName, isWritableName) {}

    std::string write() {
        text = model.name.empty() ? "" : "\\ " + model.name + '\n';
        text += model.objsense == KVX_MAXIMIZE ? "Maximize\n obj:" : "Minimize\n obj:";
        // Every variable, so that all of them are there in their order.
        for (size_t j = 0; j < model.vars.size(); j++)
            add(signedNumber(model.vars[j].obj) + " " + vars[j]);
        quadratic(model.quadratic, 2);
        if (!model.quadratic.empty())
            add(" / 2");
        if (model.objcon != 0 || model.vars.empty())
            add(signedNumber(model.objcon));
        text += "\nSubject To";
        for (size_t i = 0; i < model.constrs.size(); i++)
            constraint(constrs[i], model.constrs[i]);
        for (size_t i = 0; i < model.qconstrs.size(); i++) {
            const QuadraticConstraint &constr = model.qconstrs[i];
            text += "\n " + qconstrs[i] + ":";
            linear(constr.linear);
            quadratic(constr.quadratic, 1);
            side(constr.sense, constr.rhs);
        }
        text += "\nBounds";
        for (size_t j = 0; j < model.vars.size(); j++) {
            const Variable &var = model.vars[j];
            if (var.lb != 0 || var.ub < KVX_INFINITY)
                text += "\n " + number(var.lb) + " <= " + vars[j] + " <= " + number(var.ub);
        }
        list("\nGenerals", KVX_INTEGER, KVX_SEMIINT);
        list("\nBinaries", KVX_BINARY, KVX_BINARY);
        list("\nSemi-continuous", KVX_SEMICONT, KVX_SEMIINT);
        text += "\nSOS";
        for (size_t k = 0; k < model.sos.size(); k++) {
            text += "\n s" + std::to_string(k);
            text += model.sos[k].type == KVX_SOS_TYPE1 ? ": S1 ::" : ": S2 ::";
            for (auto [index, weight] : model.sos[k].members)
                add(" " + vars[static_cast<size_t>(index)] + ":" + number(weight));
        }
        return text + "\nEnd\n";
    }

  private:
    static std::string number(double value) {
        return std::fabs(value) < KVX_INFINITY ? toText(value) : value < 0 ? "-inf" : "inf";
    }

    static std::string signedNumber(double value) {
        return (std::signbit(value) ? " - " : " + ") + toText(std::fabs(value));
    }

    void add(const std::string &piece) {
        if (text.size() - text.rfind('\n') > 90)
            text += "\n  ";
        text += piece;
    }

    void linear(const std::vector<Entry> &entries) {
        for (auto [index, value] : entries)
            add(signedNumber(value) + " " + vars[static_cast<size_t>(index)]);
    }

    void quadratic(const std::vector<QuadraticTerm> &terms, double factor) {
        if (terms.empty())
            return;
        add(" + [");
        for (auto [i, j, value] : terms)
            add(signedNumber(factor * value) + " " + vars[static_cast<size_t>(i)] + " * " +
                vars[static_cast<size_t>(j)]);
        add(" ]");
    }

    void side(char sense, double value) {
        add(std::string(" ") + sense + (sense == '=' ? " " : "= ") + number(value));
    }

    void constraint(const std::string &name, const Constraint &constr) {
        text += "\n " + name + ":";
        bool low = constr.lower > -KVX_INFINITY, high = constr.upper < KVX_INFINITY;
        bool twoSided = constr.row.empty() || (low && high && constr.lower != constr.upper);
        if (twoSided)
            text += " " + number(constr.lower) + " <=" + (constr.row.empty() ? " 0" : "");
        linear(constr.row);
        if (twoSided || !low)
            side('<', constr.upper);
        else
            side(high ? '=' : '>', constr.lower);
    }

    void list(const char *title, char type, char other) {
        text += title;
        for (size_t j = 0; j < model.vars.size(); j++)
            if (model.vars[j].type == type || model.vars[j].type == other)
                text += "\n " + vars[j];
    }

    const ModelData &model;
    const Names vars, constrs, qconstrs;
    std::string text;
};

} // namespace

ModelData readLp(const std::string &filename) {
    return complete(LpReader(filename).read(), filename);
}

std::string writeLp(const ModelData &model) {
    return LpWriter(model).write();
}

} // namespace korvex
