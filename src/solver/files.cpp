// Model and attribute files by the ending of their name: solutions, starts, bases and parameters.
#include "guard.h"
#include "params.h"
#include "text.h"
#include "textfile.h"

#include <sstream>

namespace korvex {
namespace {

enum class Format { none, mps, lp, solution, start, basis, parameters, json };

Format formatOf(std::string_view name) {
    static constexpr std::pair<std::string_view, Format> endings[] = {
        {".mps", Format::mps},   {".lp", Format::lp},     {".sol", Format::solution},
        {".mst", Format::start}, {".bas", Format::basis}, {".prm", Format::parameters},
        {".json", Format::json},
    };
    for (std::string_view packed : {".gz", ".bz2"})
        if (hasEnding(name, packed))
            name.remove_suffix(packed.size());
    for (auto [ending, format] : endings)
        if (hasEnding(name, ending))
            return format;
    return Format::none;
}

bool isModel(Format format) {
    return format == Format::mps || format == Format::lp;
}

// Lines "name value" have names with blanks inside, but not at their ends.
bool isWritableName(std::string_view name) {
    return name[0] != '#' && name[0] != ' ' && name.back() != ' ';
}

template <class Value>
std::string writeValues(const KVXmodel &model, Value value) {
    Names names(model, model.vars.size(), varName, isWritableName);
    std::string text;
    for (size_t j = 0; j < model.vars.size(); j++)
        if (value(j) != KVX_UNDEFINED)
            text += names[j] + ' ' + toText(value(j)) + '\n';
    return text;
}

std::string writeSolution(const KVXmodel &model) {
    if (!model.solution.hasX)
        fail(KVX_ERROR_DATA_NOT_AVAILABLE, "there is no solution");
    return "# Objective value = " + toText(model.solution.objval) + '\n' +
           writeValues(model, [&](size_t j) { return model.solution.x[j]; });
}

// The values become start values; variables that aren't listed keep theirs.
void readValues(KVXmodel &model, const std::string &filename) {
    Names names(model, model.vars.size(), varName, isWritableName);
    Source source(filename);
    std::vector<std::pair<size_t, double>> values;
    while (source.nextLine('#')) {
        std::string_view number = source.tokens.back();
        std::string_view name = source.line.substr(0, source.column(number));
        name.remove_prefix(source.column(source.tokens[0]));
        name = name.substr(0, name.find_last_not_of(" \t") + 1);
        int index = names.find(name);
        if (index < 0)
            source.refuse("the variable " + quoted(name) + " is unknown");
        values.push_back({static_cast<size_t>(index), source.number(number)});
    }
    for (auto [index, value] : values)
        model.vars[index].start = value;
}

bool hasNoBlanks(std::string_view name) {
    return name.find(' ') == std::string_view::npos;
}

// Without a line, constraints are basic and variables at their lower bound. A line XU or XL makes a
// variable basic and puts a constraint at a bound instead; UL puts a variable at its upper bound.
std::string writeBasis(const KVXmodel &model) {
    if (!model.hasBasis)
        fail(KVX_ERROR_DATA_NOT_AVAILABLE, "there is no basis");
    Names vars(model, model.vars.size(), varName, hasNoBlanks);
    Names constrs(model, model.constrs.size(), constrName, hasNoBlanks);
    std::string text = "NAME\n";
    size_t row = 0;
    auto nextNonbasic = [&] {
        while (row < model.constrs.size() && model.constrs[row].basis == KVX_BASIC)
            row++;
        return row < model.constrs.size();
    };
    for (size_t j = 0; j < model.vars.size(); j++) {
        int status = model.vars[j].basis;
        if (status == KVX_BASIC) {
            if (!nextNonbasic())
                fail(KVX_ERROR_DATA_NOT_AVAILABLE, "the basis has too many variables");
            bool upper = model.constrs[row].basis == KVX_NONBASIC_UPPER;
            text += (upper ? " XU " : " XL ") + vars[j] + ' ' + constrs[row++] + '\n';
        } else if (status == KVX_NONBASIC_UPPER) {
            text += " UL " + vars[j] + '\n';
        }
    }
    if (nextNonbasic())
        fail(KVX_ERROR_DATA_NOT_AVAILABLE, "the basis has too few variables");
    return text + "ENDATA\n";
}

void readBasis(KVXmodel &model, const std::string &filename) {
    Names vars(model, model.vars.size(), varName, hasNoBlanks);
    Names constrs(model, model.constrs.size(), constrName, hasNoBlanks);
    Source source(filename);
    std::vector<int> varStatus(vars.size(), KVX_NONBASIC_LOWER);
    std::vector<int> constrStatus(constrs.size(), KVX_BASIC);
    auto find = [&](const Names &names, size_t field) {
        int index = names.find(source.tokens[field]);
        if (index < 0)
            source.refuse("the name " + quoted(source.tokens[field]) + " is unknown");
        return static_cast<size_t>(index);
    };
    while (source.nextLine('*')) {
        std::string_view type = source.tokens[0];
        size_t fields = source.tokens.size();
        if (type == "ENDATA") {
            for (size_t j = 0; j < varStatus.size(); j++)
                model.vars[j].basis = varStatus[j];
            for (size_t i = 0; i < constrStatus.size(); i++)
                model.constrs[i].basis = constrStatus[i];
            model.hasBasis = true;
            return;
        }
        if ((type == "XU" || type == "XL") && fields == 3) {
            size_t row = find(constrs, 2);
            varStatus[find(vars, 1)] = KVX_BASIC;
            constrStatus[row] = type == "XU" ? KVX_NONBASIC_UPPER : KVX_NONBASIC_LOWER;
        } else if ((type == "UL" || type == "LL") && fields == 2) {
            varStatus[find(vars, 1)] = type == "UL" ? KVX_NONBASIC_UPPER : KVX_NONBASIC_LOWER;
        } else if (type != "NAME") {
            source.refuse("this is no line of a basis file");
        }
    }
    source.refuse("the file ends without ENDATA");
}

std::string writeModel(const ModelData &model, Format format) {
    const char *what = !model.genconstrs.empty()   ? "general constraints"
                       : !model.objectives.empty() ? "several objectives"
                                                   : nullptr;
    for (const Variable &var : model.vars)
        if (!var.pwlX.empty())
            what = "piecewise-linear objectives";
    if (what)
        fail(KVX_ERROR_FILE_WRITE, "model files hold no %s", what);
    return format == Format::mps ? writeMps(model) : writeLp(model);
}

void writeByEnding(const KVXmodel &model, const std::string &filename) {
    std::string text;
    std::ostringstream parameters;
    Format format = formatOf(filename);
    switch (format) {
    case Format::none:
        fail(KVX_ERROR_FILE_WRITE,
             "%s: the name ends in none of .mps .lp .sol .mst .bas .prm .json, with or without .gz "
             "or .bz2 behind it",
             filename.c_str());
    case Format::mps:
    case Format::lp:
        text = writeModel(model, format);
        break;
    case Format::solution:
        text = writeSolution(model);
        break;
    case Format::start:
        text = writeValues(model, [&](size_t j) { return model.vars[j].start; });
        break;
    case Format::basis:
        text = writeBasis(model);
        break;
    case Format::parameters:
        writeParams(model.env, parameters);
        text = parameters.str();
        break;
    case Format::json:
        text = solutionAsJson(model);
        break;
    }
    writeFile(filename, text);
}

} // namespace

bool isJsonFile(std::string_view filename) {
    return formatOf(filename) == Format::json;
}

void writeResultFile(const KVXmodel &model) {
    const std::string &filename = strParam(model.env, "ResultFile");
    Format format = formatOf(filename);
    bool available = format == Format::solution ? model.solution.hasX
                     : format == Format::basis  ? model.hasBasis
                                                : true;
    if (!filename.empty() && available)
        writeByEnding(model, filename);
}

} // namespace korvex

using namespace korvex;

int KVXreadmodel(KVXenv *env, const char *filename, KVXmodel **modelP) {
    return guardedRead(env, [&] {
        needed(modelP, "modelP");
        Format format = formatOf(needed(filename, "filename"));
        if (!isModel(format))
            fail(KVX_ERROR_FILE_READ,
                 "%s: the name ends in none of .mps .lp, with or without .gz or .bz2 behind it",
                 filename);
        auto model = makeModel(*env);
        static_cast<ModelData &>(*model) =
            format == Format::mps ? readMps(filename) : readLp(filename);
        *modelP = model.release();
    });
}

int KVXread(KVXmodel *model, const char *filename) {
    return guarded(model, [&] {
        switch (formatOf(needed(filename, "filename"))) {
        case Format::solution:
        case Format::start:
            return readValues(*model, filename);
        case Format::basis:
            return readBasis(*model, filename);
        case Format::parameters: {
            std::istringstream file(readFile(filename));
            return readParams(model->env, file, filename);
        }
        default:
            fail(KVX_ERROR_FILE_READ,
                 "%s: the name ends in none of .sol .mst .bas .prm, with or without .gz or .bz2 "
                 "behind it",
                 filename);
        }
    });
}

int KVXwrite(KVXmodel *model, const char *filename) {
    return guarded(model, [&] { writeByEnding(*model, needed(filename, "filename")); });
}

int KVXismodelfile(const char *filename) {
    Format format = filename ? formatOf(filename) : Format::none;
    return isModel(format) ? (format == Format::mps ? 1 : 2) : 0;
}

int KVXisattrfile(const char *filename) {
    Format format = filename ? formatOf(filename) : Format::none;
    bool attribute = format >= Format::solution && format <= Format::parameters;
    return attribute ? static_cast<int>(format) - static_cast<int>(Format::solution) + 1 : 0;
}
