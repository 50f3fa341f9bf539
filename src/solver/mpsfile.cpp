// MPS files, free and fixed, with the sections for the objective's sense, ranges, bounds, quadratic
// objective and SOS.
#include "guard.h"
#include "text.h"
#include "textfile.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace korvex {
namespace {

size_t at(int index) {
    return static_cast<size_t>(index);
}

class MpsReader {
  public:
    MpsReader(const std::string &filename, bool fixedColumns)
        : source(filename), fixedColumns(fixedColumns) {}

    ModelData read() {
        auto section = &MpsReader::misplacedLine;
        while (source.nextLine('*')) {
            if (source.line[0] != ' ' && source.line[0] != '\t') {
                if (source.tokens[0] == "ENDATA")
                    return finished();
                section = sectionReader(source.tokens[0]);
            } else {
                if (fixedColumns)
                    splitByColumns();
                (this->*section)();
            }
        }
        source.refuse("the file ends without ENDATA");
    }

  private:
    using SectionReader = void (MpsReader::*)();

    SectionReader sectionReader(std::string_view word) {
        static const std::unordered_map<std::string_view, SectionReader> readers = {
            {"NAME", &MpsReader::misplacedLine},
            {"OBJSENSE", &MpsReader::objectiveSense},
            {"ROWS", &MpsReader::row},
            {"COLUMNS", &MpsReader::column},
            {"RHS", &MpsReader::rightHandSide},
            {"RANGES", &MpsReader::range},
            {"BOUNDS", &MpsReader::bound},
            {"SOS", &MpsReader::sosLine},
            {"QUADOBJ", &MpsReader::quadraticTerm},
            {"QMATRIX", &MpsReader::quadraticTerm},
        };
        auto reader = readers.find(word);
        if (reader == readers.end())
            source.refuse("the section " + quoted(word) + " is not supported");
        if (source.tokens.size() > 1 && word == "NAME")
            model.name = source.line.substr(source.column(source.tokens[1]));
        if (source.tokens.size() > 1 && word == "OBJSENSE")
            objectiveSense();
        // A term of QUADOBJ stands for itself and its mirror image, QMATRIX has both; the
        // objective has half of their sum.
        offDiagonalFactor = word == "QUADOBJ" ? 1 : 0.5;
        return reader->second;
    }

    // Fields at fixed columns: names may hold blanks.
    void splitByColumns() {
        static constexpr size_t fields[][2] = {{1, 3},   {4, 12},  {14, 22},
                                               {24, 36}, {39, 47}, {49, 61}};
        source.tokens.clear();
        size_t gap = 0;
        for (auto [begin, end] : fields) {
            std::string_view line = source.line;
            if (line.substr(std::min(gap, line.size()), begin - gap).find_first_not_of(' ') !=
                std::string_view::npos)
                source.refuse("text between the columns of fixed format");
            gap = end;
            if (line.size() <= begin)
                continue;
            std::string_view field = line.substr(begin, end - begin);
            size_t first = field.find_first_not_of(' ');
            if (first != std::string_view::npos)
                source.tokens.push_back(
                    field.substr(first, field.find_last_not_of(' ') + 1 - first));
        }
        if (source.line.size() > gap || source.tokens.empty())
            source.refuse("this is no line of fixed format");
    }

    void misplacedLine() { source.refuse("data outside of a section"); }

    void expectTokens(size_t least, size_t most) {
        if (source.tokens.size() < least || source.tokens.size() > most)
            source.refuse("a line of this section can't have " +
                          std::to_string(source.tokens.size()) + " fields");
    }

    const std::string checkedName(std::string_view token) {
        if (!isName(token))
            source.refuse("the name " + quoted(token) + " isn't UTF-8 text");
        return std::string(token);
    }

    int findIn(const std::unordered_map<std::string, int> &index, std::string_view token,
               const char *what) {
        auto found = index.find(std::string(token));
        if (found == index.end())
            source.refuse(what + quoted(token) + " is unknown");
        return found->second;
    }

    // Pairs of row and number; before them stands a name when the number of fields is odd.
    template <class Use>
    void pairs(Use use) {
        expectTokens(2, 5);
        for (size_t k = source.tokens.size() % 2; k < source.tokens.size(); k += 2)
            use(findIn(rows, source.tokens[k], "the row "), source.number(source.tokens[k + 1]));
    }

    void objectiveSense() {
        std::string word(source.tokens.back());
        bool maximize = word == "MAX" || word == "MAXIMIZE";
        if (!maximize && word != "MIN" && word != "MINIMIZE")
            source.refuse(quoted(word) + " is no sense of an objective");
        model.objsense = maximize ? KVX_MAXIMIZE : KVX_MINIMIZE;
    }

    // The first free row is the objective, its index -1; others are constraints without sides.
    void row() {
        expectTokens(2, 2);
        std::string_view sense = source.tokens[0];
        if (sense != "N" && sense != "L" && sense != "G" && sense != "E")
            source.refuse(quoted(sense) + " is no sense of a row");
        bool objective = sense == "N" && !hasObjective;
        std::string name = checkedName(source.tokens[1]);
        if (!rows.emplace(name, objective ? -1 : static_cast<int>(senses.size())).second)
            source.refuse("the row " + quoted(name) + " is there twice");
        if (objective) {
            hasObjective = true;
            return;
        }
        senses += sense[0];
        rhs.push_back(0);
        ranges.push_back(KVX_UNDEFINED);
        lastColumn.push_back(-1);
        model.constrs.emplace_back().name = name;
    }

    void column() {
        if (source.tokens.size() > 2 && source.tokens[1] == "'MARKER'") {
            std::string_view marker = source.tokens.back();
            if (marker != "'INTORG'" && marker != "'INTEND'")
                source.refuse("the marker " + quoted(marker) + " is not supported");
            integers = marker == "'INTORG'";
            return;
        }
        expectTokens(2, 5);
        if (model.vars.empty() || model.vars.back().name != source.tokens[0]) {
            std::string name = checkedName(source.tokens[0]);
            if (!columns.emplace(name, static_cast<int>(model.vars.size())).second)
                source.refuse("the column " + quoted(name) + " is there twice");
            Variable &var = model.vars.emplace_back();
            var.name = name;
            var.type = integers ? KVX_INTEGER : KVX_CONTINUOUS;
            bounded.push_back({});
        }
        if (source.tokens.size() % 2 == 0)
            source.refuse("a column's line has pairs of row and number");
        int index = static_cast<int>(model.vars.size()) - 1;
        pairs([&](int row, double value) {
            int &last = row < 0 ? lastObjective : lastColumn[at(row)];
            if (std::exchange(last, index) == index)
                source.refuse("the column has two entries for one row");
            if (row < 0) {
                model.vars.back().obj = value;
            } else {
                model.constrs[at(row)].row.push_back({index, value});
            }
        });
    }

    void rightHandSide() {
        pairs([&](int row, double value) {
            if (row < 0)
                model.objcon = -value;
            else
                rhs[at(row)] = value;
        });
    }

    void range() {
        pairs([&](int row, double value) {
            if (row < 0 || senses[at(row)] == 'N')
                source.refuse("a range for a row without sense");
            ranges[at(row)] = value;
        });
    }

    // TYPE [SET] COLUMN [NUMBER]
    void bound() {
        expectTokens(2, 4);
        auto &tokens = source.tokens;
        std::string_view type = tokens[0];
        bool numbered = type != "FR" && type != "MI" && type != "PL" && type != "BV";
        size_t place = tokens.size() == 4 ? 2 : tokens.size() - (numbered ? 2 : 1);
        if (place == 0)
            source.refuse("the bound has no number");
        int index = findIn(columns, tokens[place], "the column ");
        Variable &var = model.vars[at(index)];
        double value = numbered ? source.number(tokens[place + 1]) : 0;
        auto &[lower, upper] = bounded[at(index)];
        if (type == "UI" || type == "LI" || type == "BV")
            var.type = type == "BV" ? KVX_BINARY : KVX_INTEGER;
        if (type == "SC")
            var.type = var.type == KVX_CONTINUOUS ? KVX_SEMICONT : KVX_SEMIINT;
        if (type == "UP" || type == "UI" || type == "SC" || type == "FX" || type == "BV") {
            var.ub = type == "BV" ? 1 : value;
            upper = true;
            // The format's convention: a negative upper bound alone takes the lower one away.
            if (value < 0 && !lower)
                var.lb = -KVX_INFINITY;
        } else if (type == "PL" || type == "FR") {
            var.ub = KVX_INFINITY;
            upper = true;
        }
        if (type == "LO" || type == "LI" || type == "FX" || type == "BV") {
            var.lb = value;
            lower = true;
        } else if (type == "MI" || type == "FR") {
            var.lb = -KVX_INFINITY;
            lower = true;
        }
    }

    void quadraticTerm() {
        expectTokens(3, 3);
        int i = findIn(columns, source.tokens[0], "the column ");
        int j = findIn(columns, source.tokens[1], "the column ");
        double factor = i == j ? 0.5 : offDiagonalFactor;
        model.quadratic.push_back({i, j, factor * source.number(source.tokens[2])});
    }

    // A set's line begins with its type, a member's line ends in variable and weight.
    void sosLine() {
        expectTokens(2, 4);
        auto &tokens = source.tokens;
        if (tokens[0] == "S1" || tokens[0] == "S2") {
            model.sos.push_back({tokens[0] == "S1" ? KVX_SOS_TYPE1 : KVX_SOS_TYPE2, {}});
            return;
        }
        if (model.sos.empty())
            source.refuse("a member without a set");
        int index = findIn(columns, tokens[tokens.size() - 2], "the column ");
        model.sos.back().members.push_back({index, source.number(tokens.back())});
    }

    ModelData finished() {
        for (size_t i = 0; i < senses.size(); i++) {
            Constraint &constr = model.constrs[i];
            char sense = senses[i];
            double far = ranges[i];
            if (sense == 'N')
                continue;
            if (sense != 'L')
                constr.lower = rhs[i];
            if (sense != 'G')
                constr.upper = rhs[i];
            if (far == KVX_UNDEFINED)
                continue;
            if (sense == 'L' || (sense == 'E' && far < 0))
                constr.lower = rhs[i] - std::fabs(far);
            else
                constr.upper = rhs[i] + std::fabs(far);
        }
        for (size_t j = 0; j < bounded.size(); j++) {
            // The format's convention for a column between integer markers without bounds.
            if (model.vars[j].type == KVX_INTEGER && !bounded[j].first && !bounded[j].second)
                model.vars[j].ub = 1;
        }
        return std::move(model);
    }

    Source source;
    const bool fixedColumns;
    ModelData model;
    std::unordered_map<std::string, int> rows, columns;
    std::string senses; // with the other three: one a constraint
    std::vector<double> rhs, ranges;
    std::vector<int> lastColumn; // the last column with an entry
    std::vector<std::pair<bool, bool>> bounded;
    int lastObjective = -1;
    bool hasObjective = false, integers = false;
    double offDiagonalFactor = 0;
};

// What added to the lower side, or taken from the upper one, gives the other side again.
double rangeBetween(double lower, double upper, bool fromBelow) {
    double middle = upper - lower;
    for (double range : {middle, std::nextafter(middle, 0.0), std::nextafter(middle, 1e300)})
        if (fromBelow ? lower + range == upper : upper - range == lower)
            return range;
    return middle;
}

} // namespace

// Blanks separate the fields of nearly all files; the rest has names that hold blanks.
ModelData readMps(const std::string &filename) {
    try {
        return complete(MpsReader(filename, false).read(), filename);
    } catch (const Failure &failure) {
        try {
            return complete(MpsReader(filename, true).read(), filename);
        } catch (const Failure &) {
            throw failure;
        }
    }
}

std::string writeMps(const ModelData &model) {
    if (!model.qconstrs.empty())
        fail(KVX_ERROR_FILE_WRITE, "MPS files hold no quadratic constraints; LP files do");
    auto writable = [](std::string_view name) {
        return name.find(' ') == std::string_view::npos && name != "'MARKER'";
    };
    Names vars(model, model.vars.size(), varName, writable);
    Names constrs(model, model.constrs.size(), constrName, writable);
    std::string objective = "OBJ";
    while (constrs.find(objective) >= 0)
        objective += '_';

    std::string rows, columns, rhs, ranges, bounds, quadratic, sets;
    auto add = [](std::string &section, const char *start, const std::string &name, double value) {
        section.append(start).append(" ").append(name).append(" ").append(toText(value)) += '\n';
    };
    if (model.objcon != 0)
        add(rhs, "    RHS", objective, -model.objcon);
    for (size_t i = 0; i < model.constrs.size(); i++) {
        double lower = model.constrs[i].lower, upper = model.constrs[i].upper;
        const std::string &name = constrs[i];
        bool low = lower > -KVX_INFINITY, high = upper < KVX_INFINITY;
        bool fromBelow = low && (!high || std::fabs(lower) <= std::fabs(upper));
        rows += !low && !high ? " N " : lower == upper ? " E " : fromBelow ? " G " : " L ";
        rows += name + '\n';
        if (low || high)
            add(rhs, "    RHS", name, fromBelow ? lower : upper);
        if (low && high && lower != upper)
            add(ranges, "    RNG", name, rangeBetween(lower, upper, fromBelow));
    }
    bool integers = false;
    for (size_t j = 0; j < model.vars.size(); j++) {
        const Variable &var = model.vars[j];
        const std::string &name = vars[j];
        bool semi = var.type == KVX_SEMICONT || var.type == KVX_SEMIINT;
        bool integer = var.type != KVX_CONTINUOUS && var.type != KVX_SEMICONT;
        if (integer != std::exchange(integers, integer))
            columns += integer ? "    M 'MARKER' 'INTORG'\n" : "    M 'MARKER' 'INTEND'\n";
        std::string start = "    " + name;
        if (var.obj != 0 || var.column.empty()) // a column exists by its entries
            add(columns, start.c_str(), objective, var.obj);
        for (auto [row, value] : var.column)
            add(columns, start.c_str(), constrs[static_cast<size_t>(row)], value);
        if (var.type == KVX_BINARY)
            bounds += " BV BND " + name + '\n';
        if (var.lb <= -KVX_INFINITY)
            bounds += " MI BND " + name + '\n';
        else if (var.lb != 0)
            add(bounds, " LO BND", name, var.lb);
        if (semi || var.ub < (var.type == KVX_BINARY ? 1 : KVX_INFINITY))
            add(bounds, semi ? " SC BND" : " UP BND", name, var.ub);
        else if (var.type == KVX_INTEGER)
            bounds += " PL BND " + name + '\n';
    }
    for (auto [i, j, value] : model.quadratic)
        add(quadratic, ("    " + vars[static_cast<size_t>(i)]).c_str(),
            vars[static_cast<size_t>(j)], i == j ? 2 * value : value);
    for (const Sos &sos : model.sos) {
        sets += sos.type == KVX_SOS_TYPE1 ? " S1 SOS SET\n" : " S2 SOS SET\n";
        for (auto [index, weight] : sos.members)
            add(sets, "    SET", vars[static_cast<size_t>(index)], weight);
    }

    std::string text = "NAME " + model.name + '\n';
    if (model.objsense == KVX_MAXIMIZE)
        text += "OBJSENSE\n    MAX\n";
    text += "ROWS\n N " + objective + '\n' + rows + "COLUMNS\n" + columns;
    const std::pair<const char *, std::string &> optional[] = {{"RHS\n", rhs},
                                                               {"RANGES\n", ranges},
                                                               {"BOUNDS\n", bounds},
                                                               {"QUADOBJ\n", quadratic},
                                                               {"SOS\n", sets}};
    for (auto &[title, section] : optional)
        if (!section.empty())
            text += title + section;
    return text + "ENDATA\n";
}

} // namespace korvex
