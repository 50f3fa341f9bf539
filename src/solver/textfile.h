// Text files as the readers and writers of all formats see them: whole texts, plain or compressed
// by the name's ending, tables of names, and failures that say where.
#ifndef KORVEX_SOLVER_TEXTFILE_H
#define KORVEX_SOLVER_TEXTFILE_H

#include "model.h"

#include <string_view>
#include <unordered_map>

namespace korvex {

// Whether a name ends like that, whatever the case.
bool hasEnding(std::string_view name, std::string_view ending);

// A whole file; the endings .gz and .bz2 say how it is compressed.
std::string readFile(const std::string &name);
// A failure leaves what was there before.
void writeFile(const std::string &name, std::string_view text);

// A piece of a file's text for an error text: in quotes, cut off, valid UTF-8.
std::string quoted(std::string_view text);

// A file that is being read, and the line that the reader is at.
class Source {
  public:
    explicit Source(std::string filename) : name(std::move(filename)), text(readFile(name)) {}

    // Goes to the next line that isn't blank and doesn't begin with the comment character.
    bool nextLine(char comment);
    [[noreturn]] void refuse(const std::string &why) const;
    double number(std::string_view token) const;
    size_t column(std::string_view token) const {
        return static_cast<size_t>(token.data() - line.data());
    }

    const std::string name, text;
    int lineNumber = 0;
    std::string_view line;                // without line feed and blanks at its end
    std::vector<std::string_view> tokens; // what blanks separate on the line

  private:
    size_t position = 0;
};

// The names of a model's variables or constraints as a file has them, and the way back. Refused:
// names that a format can't hold and those that don't tell one from another.
class Names {
  public:
    Names(const ModelData &model, size_t count, std::string (*name)(const ModelData &, int),
          bool (*writable)(std::string_view));
    int find(std::string_view name) const; // -1: there is none
    size_t size() const { return list.size(); }
    const std::string &operator[](size_t index) const { return list[index]; }

  private:
    std::vector<std::string> list;
    std::unordered_map<std::string_view, int> index; // views into the list
};

// The data of a model that was read: the columns are made from the rows, everything is checked.
ModelData complete(ModelData model, const std::string &filename);

// The formats. What a format can't hold is refused.
ModelData readMps(const std::string &filename);
std::string writeMps(const ModelData &model);
ModelData readLp(const std::string &filename);
std::string writeLp(const ModelData &model);
bool isLpName(std::string_view name); // whether an LP file can hold it
std::string solutionAsJson(const KVXmodel &model);
bool isJsonFile(std::string_view filename);

// A text to be freed with KVXfree.
char *copyForCaller(const std::string &text);

// Writes the file that the parameter "ResultFile" names, if it names one and the run that has ended
// found what belongs in it.
void writeResultFile(const KVXmodel &model);

} // namespace korvex

#endif
