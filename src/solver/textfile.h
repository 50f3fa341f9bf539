// Files: text, plain or packed by the ending of their name, and what reads and writes their
// formats.
#ifndef KORVEX_SOLVER_TEXTFILE_H
#define KORVEX_SOLVER_TEXTFILE_H

#include "guard.h"

namespace korvex {

bool hasEnding(std::string_view name, std::string_view ending);
std::string readFile(const std::string &name);
void writeFile(const std::string &name, const std::string &text);

// A text that is being read line by line.
struct Source {
    std::string text;
    std::string_view line = {};
    std::vector<std::string_view> words = {}; // what blanks separate on the line
    int number = 0;                           // of the line
    size_t position = 0;                      // behind the line

    // Goes to the next line that isn't blank and doesn't begin with the comment character.
    bool nextLine(char comment);
    bool isHeader() const { return words[0].data() == line.data(); }
};

[[noreturn]] void refuse(std::string_view word, const char *why);
[[noreturn]] void expected(std::string_view word, const char *what); // instead of that word
template <class Number>                                              // with an exponent of e or d
Number numberIn(std::string_view word);

// Elements by name, also those that have been appended since.
template <class Element>
class Index {
  public:
    explicit Index(const std::vector<Element> &elements) : elements(elements) {}
    // Refused: names that aren't unique or that can't stand in attribute files.
    Index(const std::vector<Element> &elements, bool (*isWritable)(std::string_view))
        : Index(elements) {
        for (size_t k = 0; k < elements.size(); k++)
            if (std::string name = elements[k].name.text(); !isWritable(name) || find(name) != k)
                fail(KVX_ERROR_FILE_WRITE, "not unique, or no name in this format: '%s'",
                     name.c_str());
    }

    int place(std::string_view name) { return names.find(elements, name); } // -1: none
    size_t find(std::string_view name) {
        const int found = place(name);
        if (found < 0)
            refuse(name, "is unknown");
        return at(found);
    }

  private:
    const std::vector<Element> &elements;
    NameIndex names;
};
bool isWord(std::string_view name); // no blanks, no comment, no marker

// What the variables and constraints of a model are called in a file: x, c or, quadratic ones, q
// and their index where a name isn't unique or can't be held.
struct Names {
    std::vector<std::string> vars, constrs, qconstrs;
    size_t replaced = 0;

    Names(const ModelData &model, bool (*canHold)(std::string_view));
};

ModelData readMps(Source &source);
std::string writeMps(const ModelData &model, const Names &names);
bool canMpsHold(std::string_view name);
// The other side of a row that a range leads to, computed with more digits than a double has.
double otherSide(double side, long double range);

ModelData readLp(Source &source);
std::string writeLp(const ModelData &model, const Names &names);
bool canLpHold(std::string_view name);

std::string solutionAsJson(const KVXmodel &model);
bool isJsonFile(std::string_view filename);

// A text to be freed with KVXfree.
char *copyForCaller(const std::string &text);

// Writes the file that the parameter "ResultFile" names, if it names one and the run that has ended
// found what belongs in it.
void writeResultFile(const KVXmodel &model);

} // namespace korvex

#endif
