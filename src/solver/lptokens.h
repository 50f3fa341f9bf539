// What LP files are made of: numbers, names, signs, and the keywords that begin sections.
#ifndef KORVEX_SOLVER_LPTOKENS_H
#define KORVEX_SOLVER_LPTOKENS_H

#include "textfile.h"

namespace korvex {

enum class Section {
    none,
    minimize,
    maximize,
    rows,
    bounds,
    integers,
    binaries,
    semis,
    sets,
    sets1,
    sets2,
    end
};

// A text that is taken apart as the reader goes on.
class LpTokens {
  public:
    // Of the source's lines that haven't been read.
    explicit LpTokens(Source &source) : source(source) {}

    ModelData model; // as far as it has been read
    Index<Variable> variables{model.vars};

    // The present token or one behind it; "" at the end.
    std::string_view here(size_t ahead = 0);
    bool isHere(std::string_view text, size_t ahead = 0);
    // The present token when it is that text; moves on then.
    bool take(std::string_view text);
    // The present token, whatever it is; moves on.
    std::string_view take();

    bool isSectionHere() { return sectionHere().first != Section::none; }
    Section takeSection();

    // A name before a colon, or "".
    std::string label();
    bool isVariableHere();
    // The product of any number of them.
    double sign();
    double number();
    // '<', '>' or '='.
    char takeSense();

  private:
    struct Token {
        std::string_view text;
        int line;
        bool isFirst; // on its line
    };

    void read();
    void split(std::string_view word, bool isFirst);
    std::pair<Section, size_t> sectionHere();

    Source &source;
    int line = source.number;  // up to which tokens have been read
    std::vector<Token> tokens; // some, with as many as are looked at together at least
    size_t position = 0;
};

bool isLpName(std::string_view word);

} // namespace korvex

#endif
