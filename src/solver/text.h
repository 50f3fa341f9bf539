// Texts: numbers to and from text in the same way whatever the locale, and what may stand in a
// text. A Java virtual machine sets the locale, so strtod and printf would take decimal commas.
#ifndef KORVEX_SOLVER_TEXT_H
#define KORVEX_SOLVER_TEXT_H

#include <string>
#include <string_view>

namespace korvex {

// The shortest text that reads back as the same number; infinities as 1e+100.
std::string toText(double value);

// The whole text as a number; false when it isn't one. A NaN is none.
bool parse(std::string_view text, int &value);
bool parse(std::string_view text, double &value);

// The text with every byte that isn't part of a UTF-8 sequence replaced by U+FFFD. Java hands out
// characters beyond U+FFFF as two encoded surrogates: those become the one character they mean.
std::string validUtf8(std::string_view text);

// Whether a name may stand in a model: UTF-8 in either spelling of such characters, no control
// characters.
bool isName(std::string_view text);

bool equalIgnoringCase(std::string_view a, std::string_view b);

} // namespace korvex

#endif
