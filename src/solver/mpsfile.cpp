// MPS files in free format with sections for the objective's sense, ranges and bounds. CoinUtils'
// reader crashes on damaged files, refuses short names of sets and reads some numbers inexactly.
#include "input.h"
#include "textfile.h"

#include <algorithm>
#include <cmath>

namespace korvex {
namespace {

class MpsReader {
  public:
    explicit MpsReader(Source &source) : source(source), words(source.words) {}

    ModelData read() {
        std::string_view section;
        for (;;) {
            if (!source.nextLine('*'))
                fail(KVX_ERROR_FILE_READ, "the file ends without ENDATA");
            section = source.isHeader() ? words[0] : section;
            if (section == "ENDATA")
                return finished();
            if (section == "NAME" && source.isHeader() && words.size() > 1)
                model.name = source.line.substr(source.line.find(words[1], 4));
            else if (!source.isHeader() || words.size() > 1)
                readLine(section);
        }
    }

  private:
    void readLine(std::string_view section) {
        if (section == "OBJSENSE")
            model.objsense = words.back().substr(0, 3) == "MAX" ? KVX_MAXIMIZE : KVX_MINIMIZE;
        else if (section == "ROWS")
            row();
        else if (section == "COLUMNS")
            column();
        else if (section == "RHS")
            forPairs([&](size_t row, double value) { rhs[row] = value; });
        else if (section == "RANGES")
            forPairs([&](size_t row, double value) { ranges[row] = value; });
        else if (section == "BOUNDS")
            bound();
        else
            refuse(section, "is no section that can be read");
    }

    void expectWords(size_t least, size_t most) const {
        if (words.size() < least || words.size() > most)
            fail(KVX_ERROR_FILE_READ, "%zu fields can't stand here", words.size());
    }

    // Rows and numbers; before them may stand the name of a column or set.
    template <class Use>
    void forPairs(Use use) {
        expectWords(2, 5);
        for (size_t k = words.size() % 2; k < words.size(); k += 2)
            use(find(rows, words[k]), readFinite(numberIn(words[k + 1]), "a number"));
    }

    void row() {
        expectWords(2, 2);
        Constraint constr;
        constr.name = words[1];
        constr.sense = words[0] == "L" ? '<' : words[0] == "G" ? '>' : words[0] == "E" ? '=' : 'N';
        if (constr.sense == 'N' && words[0] != "N")
            refuse(words[0], "is no sense of a row");
        if (!rows.emplace(words[1], rows.size()).second)
            refuse(words[1], "is there twice");
        rhs.push_back(0);
        ranges.push_back(constr.sense == '=' ? 0 : HUGE_VAL);
        addConstraint(model, std::move(constr));
    }

    void column() {
        if (words.size() == 3 && words[1] == "'MARKER'") {
            isInteger = words[2] == "'INTORG'";
            if (!isInteger && words[2] != "'INTEND'")
                refuse(words[2], "is no marker that can be read");
            return;
        }
        expectWords(3, words.size() == 4 ? 3 : 5);
        if (model.vars.empty() || model.vars.back().name != words[0]) {
            if (!columns.emplace(words[0], columns.size()).second)
                refuse(words[0], "is there twice");
            Variable var;
            var.name = words[0];
            var.type = isInteger ? KVX_INTEGER : KVX_CONTINUOUS;
            addVariable(model, std::move(var));
            hasBound.push_back(!isInteger);
        }
        int index = intSize(columns.size()) - 1;
        forPairs([&](size_t row, double value) {
            auto &entries = model.constrs[row].row;
            if (!entries.empty() && entries.back().index == index)
                refuse(model.constrs[row].name, "is there twice in this column");
            if (value != 0)
                entries.push_back({index, value});
        });
    }

    // TYPE [SET] COLUMN [NUMBER]
    void bound() {
        std::string_view type = words[0];
        bool hasNumber = type != "FR" && type != "MI" && type != "PL" && type != "BV";
        expectWords(hasNumber ? 3 : 2, 4);
        size_t place = words.size() == 4 ? 2 : words.size() - (hasNumber ? 2 : 1);
        size_t index = find(columns, words[place]);
        double value = hasNumber ? numberIn(words[place + 1]) : 0;
        Variable &var = model.vars[index];
        hasBound[index] = true;
        if (type == "UP" || type == "UI" || type == "SC" || type == "FX")
            var.ub = value;
        else if (type == "FR" || type == "PL" || type == "BV")
            var.ub = type == "BV" ? 1 : KVX_INFINITY;
        if (type == "LO" || type == "LI" || type == "FX" || type == "BV")
            var.lb = value;
        else if (type == "MI" || type == "FR" || (value < 0 && var.lb == 0)) // a convention
            var.lb = -KVX_INFINITY;
        else if (type != "UP" && type != "UI" && type != "SC" && type != "PL")
            refuse(type, "is no type of a bound");
        if (type == "BV" || type == "UI" || type == "LI")
            var.type = type == "BV" ? KVX_BINARY : KVX_INTEGER;
        else if (type == "SC")
            var.type = var.isInteger() ? KVX_SEMIINT : KVX_SEMICONT;
    }

    ModelData finished() {
        for (size_t i = 0; i < model.constrs.size(); i++) {
            Constraint &constr = model.constrs[i];
            if (constr.sense == 'N')
                continue;
            constr.lower = constr.upper = rhs[i];
            bool isDown = constr.sense == '<' || (constr.sense == '=' && ranges[i] < 0);
            (isDown ? constr.lower : constr.upper) += (isDown ? -1 : 1) * std::abs(ranges[i]);
        }
        auto isFree = [](const Constraint &constr) { return constr.sense == 'N'; };
        auto objective = std::find_if(model.constrs.begin(), model.constrs.end(), isFree);
        if (objective != model.constrs.end()) {
            model.objcon = -rhs[static_cast<size_t>(objective - model.constrs.begin())];
            for (auto [var, value] : objective->row)
                model.vars[at(var)].obj = value;
            model.constrs.erase(objective);
        }
        for (size_t j = 0; j < model.vars.size(); j++)
            if (!hasBound[j])
                model.vars[j].ub = 1; // a convention for integer columns
        return std::move(model);
    }

    Source &source;
    const std::vector<std::string_view> &words;
    ModelData model; // with the objective as a row
    Index rows, columns;
    std::vector<double> rhs, ranges; // one a row
    std::vector<bool> hasBound;      // one a column
    bool isInteger = false;
};

} // namespace

ModelData readMps(Source &source) {
    return MpsReader(source).read();
}

std::string writeMps(const ModelData &model) {
    indexOf(model.vars, isWord);
    Index rows = indexOf(model.constrs, isWord);
    std::string objective = "OBJ";
    while (rows.count(objective))
        objective += '_';
    auto line = [](const std::string &first, const std::string &second, double value) {
        return ' ' + first + ' ' + second + ' ' + toText(value) + '\n';
    };
    const char *sense = model.objsense == KVX_MAXIMIZE ? "MAX" : "MIN";
    std::string head = "NAME " + model.name + "\nOBJSENSE\n " + sense + "\nROWS\n N " + objective;
    std::string columns, ranges, bounds, rhs = line("RHS", objective, -model.objcon);
    for (const Constraint &constr : model.constrs) {
        const double lower = constr.lower, upper = constr.upper, range = upper - lower;
        bool isLow = lower > -KVX_INFINITY, isHigh = upper < KVX_INFINITY, isEqual = range == 0;
        bool isUp =
            isLow && (!isHigh || lower + range == upper); // else often upper - range == lower
        head += (isEqual ? "\n E " : isUp ? "\n G " : isHigh ? "\n L " : "\n N ") + constr.name;
        if (isLow || isHigh)
            rhs += line("RHS", constr.name, isUp ? lower : upper);
        if (isLow && isHigh && !isEqual)
            ranges += line("RNG", constr.name, range);
    }
    CoinPackedMatrix matrix = matrixOf(model);
    for (size_t j = 0; j < model.vars.size(); j++) {
        const Variable &var = model.vars[j];
        columns += line(var.name, objective, var.obj); // also zeros: a column exists by its lines
        CoinShallowPackedVector column = matrix.getVector(intSize(j));
        for (int k = 0; k < column.getNumElements(); k++)
            columns += line(var.name, model.constrs[at(column.getIndices()[k])].name,
                            column.getElements()[k]);
        bool isBinary = var.type == KVX_BINARY, isInteger = var.isInteger() && !isBinary;
        if (isBinary)
            bounds += " BV BND " + var.name + '\n';
        if (isInteger || var.lb != 0)
            bounds += line(isInteger ? "LI BND" : "LO BND", var.name, var.lb);
        if (isInteger || var.isSemi() || var.ub < (isBinary ? 1 : KVX_INFINITY))
            bounds += line(var.isSemi() ? "SC BND"
                           : isInteger  ? "UI BND"
                                        : "UP BND",
                           var.name, var.ub);
    }
    return head + "\nCOLUMNS\n" + columns + "RHS\n" + rhs + "RANGES\n" + ranges + "BOUNDS\n" +
           bounds + "ENDATA\n";
}

} // namespace korvex
