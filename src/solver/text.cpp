#include "text.h"

#include "korvex.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace korvex {
namespace {

// One character of UTF-8, encoded surrogates included, taken from the front of text.
struct Character {
    size_t length; // 0: not UTF-8
    unsigned code;
};

Character firstCharacter(std::string_view text) {
    auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    unsigned lead = byte(0);
    if (lead < 0x80)
        return {1, lead};
    size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length)
        return {0, 0};
    unsigned code = lead & (0xFFu >> (length + 1));
    for (size_t i = 1; i < length; i++) {
        if ((byte(i) & 0xC0) != 0x80)
            return {0, 0};
        code = code << 6 | (byte(i) & 0x3Fu);
    }
    static constexpr unsigned least[] = {0, 0, 0x80, 0x800, 0x10000};
    return code < least[length] || code > 0x10FFFF ? Character{0, 0} : Character{length, code};
}

bool isSurrogate(unsigned code) {
    return code >= 0xD800 && code < 0xE000;
}

// As firstCharacter, but a pair of surrogates counts as one character and half a pair as none.
Character firstScalar(std::string_view text) {
    Character first = firstCharacter(text);
    if (first.length == 0 || !isSurrogate(first.code))
        return first;
    if (first.code >= 0xDC00 || text.size() < 6)
        return {0, 0};
    Character second = firstCharacter(text.substr(3));
    if (second.length == 0 || second.code < 0xDC00 || second.code >= 0xE000)
        return {0, 0};
    return {6, 0x10000 + ((first.code - 0xD800) << 10) + (second.code - 0xDC00)};
}

template <class Number>
bool parseNumber(std::string_view text, Number &value) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    Number number{};
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return false;
    value = number;
    return true;
}

} // namespace

std::string toText(double value) {
    if (std::isinf(value))
        value = std::copysign(KVX_INFINITY, value);
    char buffer[40];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

bool parse(std::string_view text, int &value) {
    return parseNumber(text, value);
}

bool parse(std::string_view text, double &value) {
    double number;
    if (!parseNumber(text, number) || std::isnan(number))
        return false;
    value = number;
    return true;
}

std::string validUtf8(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        auto [length, code] = firstScalar(text);
        if (length == 6) {
            for (unsigned byte : {0xF0 | code >> 18, 0x80 | (code >> 12 & 0x3F),
                                  0x80 | (code >> 6 & 0x3F), 0x80 | (code & 0x3F)})
                result += static_cast<char>(byte);
        } else if (length > 0) {
            result += text.substr(0, length);
        } else {
            result += "\xEF\xBF\xBD";
            length = 1;
        }
        text.remove_prefix(length);
    }
    return result;
}

bool isName(std::string_view text) {
    while (!text.empty()) {
        auto [length, code] = firstScalar(text);
        if (length == 0 || code < 0x20 || code == 0x7F)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
    auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [&](char x, char y) { return lower(x) == lower(y); });
}

} // namespace korvex
