#include "lptokens.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace korvex {

static Section sectionOf(std::string_view word) { // which isn't empty
    static constexpr struct {
        Section section;
        std::string_view keywords[6];
    } sections[] = {
        {Section::minimize, {"min", "minimize", "minimise", "minimum"}},
        {Section::maximize, {"max", "maximize", "maximise", "maximum"}},
        {Section::rows, {"st", "st.", "s.t.", "subject", "such"}},
        {Section::bounds, {"bound", "bounds"}},
        {Section::integers, {"gen", "general", "generals", "int", "integer", "integers"}},
        {Section::binaries, {"bin", "binary", "binaries"}},
        {Section::semis, {"sec", "semi", "semis"}},
        {Section::sets, {"sos"}},
        {Section::sets1, {"sos1"}},
        {Section::sets2, {"sos2"}},
        {Section::end, {"end"}}};
    for (const auto &[section, keywords] : sections)
        for (std::string_view keyword : keywords)
            if (word.size() == keyword.size() && equalIgnoringCase(word, keyword))
                return section;
    return Section::none;
}

// What ends a name without a blank.
static bool isOperator(char c) {
    return c == '+' || c == '-' || c == '*' || c == '/' || c == '^' || c == '[' || c == ']' ||
           c == ':' || c == '<' || c == '>' || c == '=';
}

static bool beginsNumber(std::string_view word) {
    return word.find_first_of("0123456789.") == 0;
}

bool isLpName(std::string_view word) {
    double number;
    auto isForbidden = [](char c) { return isOperator(c) || c == ' ' || c == '\\'; };
    return !word.empty() && std::none_of(word.begin(), word.end(), isForbidden) &&
           !beginsNumber(word) && !parse(word, number);
}

// What is no keyword and has only characters that all readers allow.
bool canLpHold(std::string_view name) {
    constexpr std::string_view characters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
                                            "0123456789!\"#$%&(),.;?@_`'{}~";
    return name.size() <= 255 && name.find_first_not_of(characters) == name.npos &&
           isLpName(name) && sectionOf(name) == Section::none && !equalIgnoringCase(name, "free");
}

void LpTokens::read() {
    constexpr size_t most = 4; // that are looked at together
    tokens.erase(tokens.begin(), tokens.begin() + static_cast<std::ptrdiff_t>(position));
    position = 0;
    source.number = line;
    while (tokens.size() < most && source.nextLine('\\')) {
        bool isFirst = true;
        for (std::string_view word : source.words) {
            split(word.substr(0, word.find('\\')), isFirst);
            if (word.find('\\') != word.npos)
                break; // The rest is a comment.
            isFirst = false;
        }
    }
    line = source.number;
    while (tokens.size() < most)
        tokens.push_back({"", line, true});
}

void LpTokens::split(std::string_view word, bool isFirst) {
    while (!word.empty()) {
        auto end = std::find_if(word.begin(), word.end(), isOperator);
        double value;
        if (beginsNumber(word))
            end = std::from_chars(word.begin(), word.end(), value).ptr;
        else if (end == word.begin())
            end = std::find_if(end, word.end(), [](char c) { return !std::strchr("<>=", c); });
        const auto length = static_cast<size_t>(std::max(end - word.begin(), std::ptrdiff_t{1}));
        tokens.push_back({word.substr(0, length), source.number, isFirst});
        word.remove_prefix(tokens.back().text.size());
        isFirst = false;
    }
}

std::string_view LpTokens::here(size_t ahead) {
    if (position + ahead >= tokens.size())
        read();
    source.number = tokens[position].line;
    return tokens[position + ahead].text;
}

bool LpTokens::isHere(std::string_view text, size_t ahead) {
    return equalIgnoringCase(here(ahead), text);
}

bool LpTokens::take(std::string_view text) {
    bool isTaken = isHere(text);
    position += isTaken;
    return isTaken;
}

std::string_view LpTokens::take() {
    const std::string_view text = here();
    position += !text.empty();
    return text;
}

// The section that begins here, if one does, and how many tokens say so. A keyword is a name before
// a colon; further back on a line also before what only follows variables, and when there is a
// variable of that name.
std::pair<Section, size_t> LpTokens::sectionHere() {
    if (here().empty())
        return {Section::end, 0};
    const Section section = sectionOf(here());
    if (section == Section::none)
        return {section, 0};
    size_t length = 1;
    if (isHere("subject") || isHere("such")) {
        if (!isHere(isHere("such") ? "that" : "to", 1))
            return {Section::none, 0};
        length = 2;
    } else if (isHere("semi")) {
        length = isHere("continuous", 1) ? 2 : isHere("-", 1) && isHere("continuous", 2) ? 3 : 1;
    }
    std::string_view next = here(length);
    bool isName = variables.place(here()) >= 0 || next.find_first_of("*^]<>=") == 0;
    if (next == ":" || (!tokens[position].isFirst && isName))
        return {Section::none, 0};
    return {section, length};
}

Section LpTokens::takeSection() {
    auto [section, length] = sectionHere();
    if (section == Section::none)
        expected(here(), "a section");
    position += length;
    return section;
}

std::string LpTokens::label() {
    if (!isLpName(here()) || here(1) != ":")
        return "";
    std::string name(take());
    take();
    return name;
}

bool LpTokens::isVariableHere() {
    auto [section, length] = sectionHere();
    bool isKeyword = section != Section::none && (tokens[position].isFirst || length > 1);
    return isLpName(here()) && here(1) != ":" && !isKeyword;
}

double LpTokens::sign() {
    double result = 1;
    for (; here() == "+" || here() == "-"; position++)
        result = here() == "-" ? -result : result;
    return result;
}

double LpTokens::number() {
    double factor = sign(), value = numberIn<double>(here());
    position++;
    return factor * value;
}

char LpTokens::takeSense() {
    for (std::string_view word : {"<", "<=", "=<", ">", ">=", "=>", "="})
        if (take(word))
            return word[0] == '=' ? word.back() : word[0];
    expected(here(), "a relation");
}

} // namespace korvex
