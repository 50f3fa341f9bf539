// Reads MPS files in free and in fixed format. CoinUtils' reader crashes on damaged files, refuses
// short names of sets, ignores the objective's sense and reads some numbers inexactly.
#include "input.h"
#include "textfile.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace korvex {
namespace {

bool isOneOf(std::string_view word, std::initializer_list<std::string_view> others) {
    return std::any_of(others.begin(), others.end(),
                       [&](std::string_view other) { return equalIgnoringCase(word, other); });
}

class MpsReader {
  public:
    MpsReader(Source &source, bool isFixed)
        : source(source), words(source.words), isFixed(isFixed) {}

    ModelData read() {
        const Section *section = nullptr;
        while (nextLine() && !(source.isHeader() && isOneOf(words[0], {"ENDATA"}))) {
            if (source.isHeader())
                section = header();
            else if (section)
                (this->*section->readLine)();
            else
                expect(false, "a section");
        }
        if (words.empty())
            fail(KVX_ERROR_FILE_READ, "the file ends where ENDATA is expected");
        if (source.nextLine('*'))
            refuse(words[0], "stands behind ENDATA");
        return finished();
    }

  private:
    struct Section {
        std::string_view name;
        void (MpsReader::*readLine)();
    };
    struct Row {    // a constraint until all has been read, also the objective
        char sense; // 0 for none
        double rhs = NAN;
        long double range = NAN;
        int lastColumn = -1;
    };
    struct Column {
        bool isMarked; // an integer one by the markers around it
        bool hasBound = false, hasLower = false;
    };

    // Goes to the next line; in fixed format its words are the fields that aren't blank.
    bool nextLine() {
        words.clear();
        if (!source.nextLine('*'))
            return false;
        if (isFixed && !source.isHeader() && source.line.find("'MARKER'") == source.line.npos)
            splitFields();
        auto isComment = [](std::string_view word) { return word[0] == '$'; };
        words.erase(std::find_if(words.begin() + 1, words.end(), isComment), words.end());
        return true;
    }

    void splitFields() {
        constexpr std::pair<size_t, size_t> fields[] = {{1, 3},   {4, 12},  {14, 22},
                                                        {24, 36}, {39, 47}, {49, 61}};
        words.clear();
        size_t last = 0;
        for (auto [first, end] : fields) {
            size_t begin = source.line.find_first_not_of(" \r", last);
            if (begin < first)
                refuse(source.line, "isn't made of the fields of the fixed format");
            last = std::min(end, source.line.size());
            if (begin < last) {
                size_t length = source.line.find_last_not_of(" \r", last - 1) + 1 - begin;
                words.push_back(source.line.substr(begin, length));
            }
        }
        if (last < source.line.find_last_not_of(" \r") + 1 || source.line.find('\t') < last)
            refuse(source.line, "isn't made of the fields of the fixed format");
    }

    // The line from a word on.
    std::string_view since(size_t k) const {
        const char *begin = words[k].data();
        return {begin, static_cast<size_t>(words.back().data() + words.back().size() - begin)};
    }

    void expect(bool isHere, const char *form) const {
        if (!isHere)
            expected(since(0), form);
    }

    const Section *header() {
        static constexpr Section sections[] = {
            {"NAME", nullptr},
            {"OBJSENSE", &MpsReader::sense},
            {"ROWS", &MpsReader::row},
            {"COLUMNS", &MpsReader::column},
            {"RHS", &MpsReader::forRows<&Row::rhs>},
            {"RANGES", &MpsReader::forRows<&Row::range>},
            {"BOUNDS", &MpsReader::bound},
            {"SOS", &MpsReader::setLine},
            {"SOS1", &MpsReader::setLine},
            {"SOS2", &MpsReader::setLine},
            {"QUADOBJ", &MpsReader::product},
            {"QMATRIX", &MpsReader::product},
            {"QSECTION", &MpsReader::product},
            {"QCMATRIX", &MpsReader::product},
        };
        auto found = std::find_if(std::begin(sections), std::end(sections), [&](const Section &s) {
            return equalIgnoringCase(s.name, words[0]);
        });
        if (found == std::end(sections))
            refuse(words[0], "is no section that can be read");
        sectionName = found->name;
        if (found->name == "NAME")
            name();
        else if (found->name == "OBJSENSE" && words.size() > 1)
            sense();
        else if (sectionName[0] == 'Q')
            quadratic();
        else
            expect(words.size() == 1, "a section's name alone");
        return found->readLine ? found : nullptr;
    }

    // Behind the name may stand that the format is free.
    void name() {
        if (words.size() > 2 && isOneOf(words.back(), {"FREE"}))
            words.pop_back();
        if (words.size() > 1)
            model.name = since(1);
    }

    void sense() {
        expect(words.size() == (source.isHeader() ? 2 : 1), "one word");
        bool isMax = isOneOf(words.back(), {"MAX", "MAXIMIZE", "MAXIMISE", "MAXIMUM"});
        expect(isMax || isOneOf(words.back(), {"MIN", "MINIMIZE", "MINIMISE", "MINIMUM"}),
               "MAX or MIN");
        model.objsense = isMax ? KVX_MAXIMIZE : KVX_MINIMIZE;
    }

    void row() {
        expect(words.size() == 2, "SENSE ROW");
        expect(isOneOf(words[0], {"N", "L", "G", "E"}), "N, L, G or E and a row");
        const char type = static_cast<char>(std::toupper(words[0][0]));
        if (rowIndex.place(words[1]) >= 0)
            refuse(words[1], "is there twice");
        if (type == 'N' && objective < 0)
            objective = intSize(rows.size());
        rows.push_back({type == 'L'   ? KVX_LESS_EQUAL
                        : type == 'G' ? KVX_GREATER_EQUAL
                        : type == 'E' ? KVX_EQUAL
                                      : char{0}});
        addConstraint(model, {{words[1]}});
    }

    double number(std::string_view word) const {
        return readFinite(numberIn<double>(word), "a number");
    }

    // Only one set may be given in a section: which of several counts, a file doesn't say.
    void checkSet(std::string_view set) {
        auto [place, isNew] = sets.emplace(sectionName, set);
        if (!isNew && place->second != set)
            refuse(set, "is a second set in this section");
    }

    void column() {
        if (words.size() == 3 && isOneOf(words[1], {"'MARKER'"})) {
            isMarked = isOneOf(words[2], {"'INTORG'"});
            expect(isMarked || isOneOf(words[2], {"'INTEND'"}), "'INTORG' or 'INTEND'");
            return;
        }
        expect(words.size() == 3 || words.size() == 5, "COLUMN ROW NUMBER [ROW NUMBER]");
        if (model.vars.empty() || !(model.vars.back().name == words[0])) {
            if (columnIndex.place(words[0]) >= 0)
                refuse(words[0], "is there twice");
            addVariable(model,
                        {words[0], 0, KVX_INFINITY, 0, isMarked ? KVX_INTEGER : KVX_CONTINUOUS});
            columns.push_back({isMarked});
            lists.begin.push_back(lists.entries.size());
        }
        const int index = intSize(columns.size()) - 1;
        for (size_t k = 1; k < words.size(); k += 2) {
            const int row = intSize(rowIndex.find(words[k]));
            if (std::exchange(rows[at(row)].lastColumn, index) == index)
                refuse(words[k], "is there twice in this column");
            const double value = number(words[k + 1]);
            if (row == objective)
                model.vars.back().obj = value;
            else if (value != 0)
                lists.entries.push_back({row, value});
        }
        lists.begin.back() = lists.entries.size();
    }

    // [SET] ROW NUMBER [ROW NUMBER]
    template <auto number>
    void forRows() {
        expect(words.size() >= 2 && words.size() <= 5, "[SET] ROW NUMBER [ROW NUMBER]");
        size_t first = words.size() % 2;
        checkSet(first ? words[0] : "");
        for (size_t k = first; k < words.size(); k += 2) {
            auto &target = rows[rowIndex.find(words[k])].*number;
            if (!std::isnan(target))
                refuse(words[k], "is there twice");
            target = numberIn<std::decay_t<decltype(target)>>(words[k + 1]);
            this->number(words[k + 1]);
        }
    }

    void bound() {
        std::string_view type = words[0];
        auto is = [&](auto... types) { return isOneOf(type, {types...}); };
        bool isSemi = is("SC", "SI"), needsNumber = is("UP", "LO", "FX", "UI", "LI");
        if (!isSemi && !needsNumber && !is("FR", "MI", "PL", "BV"))
            expected(type, "UP, LO, FX, FR, MI, PL, BV, UI, LI, SC or SI");
        expect(words.size() == (needsNumber ? 3 : 2) || words.size() == 3 || words.size() == 4,
               needsNumber ? "TYPE [SET] COLUMN NUMBER" : "TYPE [SET] COLUMN [NUMBER]");
        bool hasSet = words.size() == 4;
        if (words.size() == 3 && !needsNumber) // a set or a number
            hasSet = columnIndex.place(words[2]) >= 0 || columnIndex.place(words[1]) < 0;
        checkSet(hasSet ? words[1] : "");
        const size_t place = hasSet ? 2 : 1, index = columnIndex.find(words[place]);
        double value = place + 1 < words.size() ? numberIn<double>(words[place + 1]) : HUGE_VAL;
        Variable &var = model.vars[index];
        Column &column = columns[index];
        if (is("UP", "UI", "FX") || isSemi)
            var.ub = value;
        else if (is("FR", "PL", "BV"))
            var.ub = is("BV") ? 1 : KVX_INFINITY;
        if (is("LO", "LI", "FX", "BV"))
            var.lb = is("BV") ? 0 : value;
        else if (is("MI", "FR") || (value < 0 && !column.hasLower)) // the latter by convention
            var.lb = -KVX_INFINITY;
        if (is("BV"))
            var.type = KVX_BINARY;
        else if (is("UI", "LI"))
            var.type = var.isSemi() ? KVX_SEMIINT : KVX_INTEGER;
        else if (isSemi)
            var.type = is("SI") || var.isInteger() ? KVX_SEMIINT : KVX_SEMICONT;
        column.hasBound = true;
        column.hasLower = column.hasLower || !(isSemi || is("UP", "UI", "PL"));
        column.isMarked = column.isMarked && !is("UI", "LI");
    }

    // A set begins with a line of its type or, in a section of one type, with its name.
    void setLine() {
        bool isIndented = words[0].data() - source.line.data() > 3;
        if (sectionName == "SOS" && isOneOf(words[0], {"S1", "S2"}) &&
            !(isIndented && columnIndex.place(words[0]) >= 0))
            return model.sos.push_back({words[0][1] - '0', {}});
        expect(words.size() == 2 || words.size() == 3, "[SET] COLUMN NUMBER");
        std::string_view name = words.size() == 3 ? words[0] : "";
        if (sectionName != "SOS" && (sets.emplace(sectionName, "").second || name != setName))
            model.sos.push_back({sectionName == "SOS1" ? 1 : 2, {}});
        setName = name;
        if (model.sos.empty())
            expected(words[0], "S1 or S2 and a set");
        int index = intSize(columnIndex.find(words[words.size() - 2]));
        model.sos.back().members.push_back({index, number(words.back())});
    }

    // The products of the objective or, in some sections, of a row.
    void quadratic() {
        const bool isOfRow = sectionName == "QCMATRIX", hasRow = words.size() > 1;
        expect(isOfRow ? hasRow : !hasRow || sectionName != "QUADOBJ",
               isOfRow ? "QCMATRIX ROW" : "QUADOBJ alone");
        const int row = hasRow ? intSize(rowIndex.find(since(1))) : objective;
        if (row < 0)
            refuse(words[0], "needs an objective row");
        const std::string rowName = model.constrs[at(row)].name.text();
        if (row == objective ? isOfRow : !rows[at(row)].sense)
            refuse(rowName, "is no row with a side");
        if (quadratics.count(row))
            refuse(rowName, "is quadratic twice");
        products = &quadratics[row];
        given.clear();
    }

    // Half the sum over all pairs of columns, of which a triangle gives each once; in QCMATRIX the
    // whole sum.
    void product() {
        expect(words.size() == 3 || words.size() == 5, "COLUMN COLUMN NUMBER [COLUMN NUMBER]");
        const bool isTriangle = sectionName == "QUADOBJ" || sectionName == "QSECTION";
        const int first = intSize(columnIndex.find(words[0]));
        for (size_t k = 1; k < words.size(); k += 2) {
            const int second = intSize(columnIndex.find(words[k]));
            std::pair pair{first, second};
            if (isTriangle && first > second)
                std::swap(pair.first, pair.second);
            if (!given.insert(pair).second)
                refuse(words[k], "is there twice with this column");
            const bool isWhole = sectionName == "QCMATRIX" || (isTriangle && first != second);
            const double value = number(words[k + 1]) / (isWhole ? 1 : 2);
            if (value != 0)
                addProducts(*products, {{std::minmax(first, second), value}});
        }
    }

    ModelData finished() {
        model.rows.addColumns(0, lists);
        std::vector<int> numbers(rows.size(), -1);
        model.constrsMade = 0;
        for (int i = 0; i < intSize(rows.size()); i++) {
            const Row &row = rows[at(i)];
            Sides &constr = model.constrs[at(i)];
            const double rhs = std::isnan(row.rhs) ? 0 : row.rhs;
            auto quadratic = quadratics.find(i);
            if (i == objective) {
                model.objcon = 0 - rhs;
                model.products = std::move(quadratics[i]);
                continue;
            }
            if (quadratic != quadratics.end()) {
                if (!std::isnan(row.range))
                    refuse(constr.name.text(), "is quadratic and has a range");
                const Entries linear = model.rows[at(i)];
                addQuadraticConstraint(model, {std::move(constr.name),
                                               {linear.begin(), linear.end()},
                                               std::move(quadratic->second),
                                               rhs,
                                               row.sense});
                continue;
            }
            numbers[at(i)] = model.constrsMade++;
            if (row.sense && row.sense != KVX_LESS_EQUAL)
                constr.lower = rhs;
            if (row.sense && row.sense != KVX_GREATER_EQUAL)
                constr.upper = rhs;
            bool isDown = row.sense == KVX_LESS_EQUAL || (row.sense == KVX_EQUAL && row.range < 0);
            if (row.sense && !std::isnan(row.range))
                (isDown ? constr.lower : constr.upper) =
                    otherSide(rhs, isDown ? -std::abs(row.range) : std::abs(row.range));
        }
        keepConstraints(model, numbers);
        for (size_t j = 0; j < columns.size(); j++) { // conventions for marked columns
            Variable &var = model.vars[j];
            if (columns[j].isMarked && !columns[j].hasBound)
                var.ub = 1;
            if (columns[j].isMarked && !var.isSemi() && var.lb >= 0 && var.ub <= 1)
                var.type = KVX_BINARY;
        }
        return std::move(model);
    }

    Source &source;
    std::vector<std::string_view> &words;
    const bool isFixed;
    std::string_view sectionName, setName;
    std::map<std::string_view, std::string_view> sets; // by section
    ModelData model;
    Index<Sides> rowIndex{model.constrs};
    Index<Variable> columnIndex{model.vars};
    std::vector<Row> rows; // one for each constraint
    std::vector<Column> columns;
    Lists lists;                         // of the columns: coefficients by row
    int objective = -1;                  // the first row without a sense
    std::map<int, Products> quadratics;  // by row
    Products *products = nullptr;        // that the section is about
    std::set<std::pair<int, int>> given; // in this section
    bool isMarked = false;
};

} // namespace

double otherSide(double side, long double range) {
    return static_cast<double>(side + range);
}

// Free format first: a file in fixed format reads the same unless it has names with blanks, and
// then ends in a failure. Of two failures the one tells more that came later.
ModelData readMps(Source &source) {
    try {
        return MpsReader(source, false).read();
    } catch (const Failure &) {
        Source again{source.text};
        try {
            return MpsReader(again, true).read();
        } catch (const Failure &later) {
            if (again.number > source.number) {
                source.number = again.number;
                throw later;
            }
        }
        throw;
    }
}

} // namespace korvex
