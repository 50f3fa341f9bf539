// Reading LP files: objective and constraints as formulas, with quadratic terms in brackets, then
// bounds, lists of integer, binary and semi-continuous variables, and SOS.
#include "input.h"
#include "text.h"
#include "textfile.h"

#include <algorithm>
#include <charconv>

namespace korvex {
namespace {

enum class Section { none, minimize, maximize, rows, bounds, integers, binaries, semis, sos, end };

// Keywords begin a line and no colon follows them.
constexpr std::pair<Section, std::string_view> keywords[] = {
    {Section::minimize, "minimize minimum min"},
    {Section::maximize, "maximize maximum max"},
    {Section::rows, "subject such st s.t. st."},
    {Section::bounds, "bounds bound"},
    {Section::integers, "generals general gen integers integer int"},
    {Section::binaries, "binaries binary bin"},
    {Section::semis, "semis semi"},
    {Section::sos, "sos"},
    {Section::end, "end"},
};

Section sectionOf(std::string_view word) {
    for (auto [section, words] : keywords)
        for (size_t begin = 0; begin < words.size();) {
            size_t end = std::min(words.find(' ', begin), words.size());
            if (equalIgnoringCase(words.substr(begin, end - begin), word))
                return section;
            begin = end + 1;
        }
    return Section::none;
}

bool isInfinity(std::string_view word) {
    return equalIgnoringCase(word, "inf") || equalIgnoringCase(word, "infinity");
}

constexpr std::string_view blanks = " \t\r\v\f", separators = " \t\r\v\f+-*/^[]:<>=\\";

bool beginsNumber(char c) {
    return (c >= '0' && c <= '9') || c == '.';
}

struct Token {
    enum Kind { name, number, symbol, end } kind;
    std::string_view text; // of a symbol: its first character; relations as <, > or =
    double value;
    int line;
    bool beginsLine;
};

// What a relation says of the side left of it, and that relation read from the right.
void limit(double &lower, double &upper, char sense, double side) {
    if (sense != '>')
        upper = side;
    if (sense != '<')
        lower = side;
}

char mirrored(char sense) {
    return sense == '<' ? '>' : sense == '>' ? '<' : sense;
}

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
                if (section == Section::rows)
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
                if (relation == "=<" || relation == "=>")
                    token.text = rest.substr(1, 1);
                else if (length > 2 || relation == "<>" || relation == "><")
                    source.refuse(quoted(relation) + " is no relation");
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
        if ((equalIgnoringCase(word, "subject") || equalIgnoringCase(word, "such")) &&
            !here().beginsLine)
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
        bool halved = take("/");
        if (halved && number() != 2)
            refuse("only a 2 can stand below the brackets");
        for (size_t k = first; halved && k < result.quadratic.size(); k++)
            result.quadratic[k].value /= 2;
    }

    void objective() {
        label();
        const Expression formula = expression();
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
        char sense = relation();
        if (formula.hasTerms()) {
            limit(lower, upper, sense, number() - formula.constant);
        } else {
            double left = formula.constant;
            formula = expression();
            limit(lower, upper, mirrored(sense), left - formula.constant);
            if (sense != '=' && take(std::string_view(&sense, 1)))
                limit(lower, upper, sense, number() - formula.constant);
        }
        if (formula.quadratic.empty()) {
            model.constrs.push_back({name, sense, lower, upper, KVX_BASIC, 0, formula.linear});
            return;
        }
        if (lower > -KVX_INFINITY && upper < KVX_INFINITY && lower != upper)
            refuse("a quadratic constraint with two sides, before what is");
        sense = senseOf(lower, upper);
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
        if (sense)
            limit(var.lb, var.ub, mirrored(sense), left);
        if (!sense && equalIgnoringCase(here().text, "free")) {
            position++;
            var.lb = -KVX_INFINITY;
            var.ub = KVX_INFINITY;
        } else if (!sense || isHere("<") || isHere(">") || isHere("=")) {
            sense = relation();
            limit(var.lb, var.ub, sense, number());
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

} // namespace

bool isLpName(std::string_view name) {
    return name.find_first_of(separators) == std::string_view::npos && !beginsNumber(name[0]) &&
           sectionOf(name) == Section::none && !isInfinity(name);
}

ModelData readLp(const std::string &filename) {
    return complete(LpReader(filename).read(), filename);
}

} // namespace korvex
