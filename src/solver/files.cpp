// Model and attribute files by the ending of their name: models, solutions, starts, bases and
// parameters.
#include "input.h"
#include "log.h"
#include "params.h"
#include "textfile.h"

#include <algorithm>
#include <cstring>

namespace korvex {
namespace {

enum Format { none, mps, lp, solution, start, basis, parameters, json };

Format formatOf(std::string_view name) {
    static constexpr const char *endings[] = {"",     ".mps", ".lp",  ".sol",
                                              ".mst", ".bas", ".prm", ".json"};
    for (const char *packed : {".gz", ".bz2"})
        if (hasEnding(name, packed))
            name.remove_suffix(std::strlen(packed));
    for (int format = mps; format <= json; format++)
        if (hasEnding(name, endings[format]))
            return static_cast<Format>(format);
    return none;
}

[[noreturn]] void refuseEnding(int status, const char *filename) {
    fail(status, "%s: the name doesn't end like that of such a file", filename);
}

template <class Value>
std::string writeValues(const KVXmodel &model, Value value) {
    Index known{model.vars, isWord};
    std::string text;
    for (size_t j = 0; j < model.vars.size(); j++)
        if (value(j) != KVX_UNDEFINED)
            text += model.vars[j].name.text() + ' ' + toText(value(j)) + '\n';
    return text;
}

// The values become start values; variables that aren't listed keep theirs.
void readValues(KVXmodel &model, Source &source) {
    Index index(model.vars, isWord);
    std::vector<std::pair<size_t, double>> values;
    while (source.nextLine('#')) {
        if (source.words.size() != 2)
            refuse(source.line, "isn't a name and a value");
        values.emplace_back(index.find(source.words[0]), numberIn<double>(source.words[1]));
    }
    for (auto [j, value] : values)
        model.vars[j].start = value;
}

// Without a line, constraints are basic and variables at their lower bound. A line XU or XL makes a
// variable basic and puts a constraint at a bound instead; UL puts a variable at its upper bound.
std::string writeBasis(const KVXmodel &model) {
    if (!model.hasBasis)
        fail(KVX_ERROR_DATA_NOT_AVAILABLE, "there is no basis");
    Index columns{model.vars, isWord};
    Index rows{model.constrs, isWord};
    std::string text = "NAME\n";
    std::vector<const Sides *> nonbasic;
    for (const Sides &constr : model.constrs)
        if (constr.basis != KVX_BASIC)
            nonbasic.push_back(&constr);
    auto next = nonbasic.begin();
    for (const Variable &var : model.vars) {
        if (var.basis == KVX_NONBASIC_UPPER)
            text += " UL " + var.name.text() + '\n';
        if (var.basis != KVX_BASIC)
            continue;
        if (next == nonbasic.end())
            fail(KVX_ERROR_DATA_NOT_AVAILABLE, "the basis has too many members");
        text += (*next)->basis == KVX_NONBASIC_UPPER ? " XU " : " XL ";
        text += var.name.text() + ' ' + (*next++)->name.text() + '\n';
    }
    if (next != nonbasic.end())
        fail(KVX_ERROR_DATA_NOT_AVAILABLE, "the basis has too few members");
    return text + "ENDATA\n";
}

void readBasis(KVXmodel &model, Source &source) {
    Index vars(model.vars, isWord);
    Index constrs(model.constrs, isWord);
    std::vector<int> varStatus(model.vars.size(), KVX_NONBASIC_LOWER);
    std::vector<int> constrStatus(model.constrs.size(), KVX_BASIC);
    const auto &words = source.words;
    while (source.nextLine('*') && !(source.isHeader() && words[0] == "ENDATA")) {
        bool isPair = words[0] == "XU" || words[0] == "XL";
        bool isUpper = words[0] == "XU" || words[0] == "UL";
        if (source.isHeader() && words[0] == "NAME")
            continue;
        if (words.size() != (isPair ? 3 : 2) || !(isPair || isUpper || words[0] == "LL"))
            refuse(words[0], "begins no line of a basis file");
        int &status = varStatus[vars.find(words[1])];
        int &atBound = isPair ? constrStatus[constrs.find(words[2])] : status;
        status = KVX_BASIC;
        atBound = isUpper ? KVX_NONBASIC_UPPER : KVX_NONBASIC_LOWER;
    }
    if (words.empty() || words[0] != "ENDATA")
        fail(KVX_ERROR_FILE_READ, "the file ends without ENDATA");
    for (size_t j = 0; j < varStatus.size(); j++)
        model.vars[j].basis = varStatus[j];
    for (size_t i = 0; i < constrStatus.size(); i++)
        model.constrs[i].basis = constrStatus[i];
    model.hasBasis = true;
}

// A model's file and, when names had to be replaced, a line in the log.
std::string contentsOfModel(const KVXmodel &model, const char *filename, Format format) {
    bool isSpecial = !model.genconstrs.empty() || !model.objectives.empty() || !model.pwl.empty();
    if (isSpecial)
        fail(KVX_ERROR_NOT_SUPPORTED, "model files hold no general constraints, only one objective "
                                      "and no piecewise-linear terms");
    for (auto [pair, value] : model.products) // A file says twice of it.
        readFinite(2 * value, "twice a quadratic coefficient");
    Names names(model, format == mps ? canMpsHold : canLpHold);
    std::string text = format == mps ? writeMps(model, names) : writeLp(model, names);
    // Last, since whoever reads the log may change the model.
    if (names.replaced)
        model.env.log->line(model.env, std::string(filename) + ": " +
                                           std::to_string(names.replaced) +
                                           " names can't be written; they are replaced by x, c or "
                                           "q and the index of the variable or constraint");
    return text;
}

std::string contents(const KVXmodel &model, const char *filename) {
    switch (Format format = formatOf(filename)) {
    case mps:
    case lp:
        return contentsOfModel(model, filename, format);
    case solution:
        if (!model.solution.hasX)
            fail(KVX_ERROR_DATA_NOT_AVAILABLE, "there is no solution");
        return "# Objective value = " + toText(model.solution.objval) + '\n' +
               writeValues(model, [&](size_t j) { return model.solution.x[j]; });
    case start:
        return writeValues(model, [&](size_t j) { return model.vars[j].start; });
    case basis:
        return writeBasis(model);
    case parameters:
        return writeParams(model.env);
    case json:
        return solutionAsJson(model);
    default:
        refuseEnding(KVX_ERROR_FILE_WRITE, filename);
    }
}

// Checks and completes what was read.
ModelData complete(ModelData model) {
    readFinite(model.objcon, "the objective constant");
    for (size_t j = 0; j < model.vars.size(); j++) {
        Variable &var = model.vars[j];
        std::tie(var.lb, var.ub, var.type) = readDomain({var.lb, var.ub, var.type}, j).tuple();
    }
    for (size_t i = 0; i < model.constrs.size(); i++) {
        Sides &constr = model.constrs[i];
        const char sense = senseOf(constr.lower, constr.upper);
        std::tie(constr.lower, constr.upper, constr.sense) =
            readSides({constr.lower, constr.upper, sense}, i).tuple();
    }
    for (size_t q = 0; q < model.qconstrs.size(); q++)
        sidesOf(model.qconstrs[q].sense, readFinite(model.qconstrs[q].rhs, "a side"), q);
    for (size_t s = 0; s < model.sos.size(); s++)
        if (hasTwins(model.sos[s].members))
            fail(KVX_ERROR_FILE_READ, "SOS %zu: a variable is in it twice", s);
    return model;
}

// Every failure of a reader says where it was.
template <class Read>
auto readSource(const char *filename, Read read) {
    Source source{readFile(filename)};
    try {
        return read(source);
    } catch (const Failure &failure) {
        fail(KVX_ERROR_FILE_READ, "%s, line %d: %s", filename, source.number, failure.text.c_str());
    }
}

} // namespace

bool isJsonFile(std::string_view filename) {
    return formatOf(filename) == json;
}

void writeResultFile(const KVXmodel &model) {
    const std::string &filename = strParam(model.env, "ResultFile");
    Format format = formatOf(filename);
    bool isMissing =
        (format == solution && !model.solution.hasX) || (format == basis && !model.hasBasis);
    if (!filename.empty() && !isMissing)
        writeFile(filename, contents(model, filename.c_str()));
}

} // namespace korvex

using namespace korvex;

int KVXreadmodel(KVXenv *env, const char *filename, KVXmodel **modelP) {
    return guardedRead(env, [&] {
        needed(modelP, "modelP");
        int format = KVXismodelfile(needed(filename, "filename"));
        if (!format)
            refuseEnding(KVX_ERROR_FILE_READ, filename);
        auto read = [&](Source &source) {
            return complete(format == mps ? readMps(source) : readLp(source));
        };
        *modelP = makeModel(*env, readSource(filename, read)).release();
    });
}

int KVXread(KVXmodel *model, const char *filename) {
    return guarded(model, [&] {
        Format format = formatOf(needed(filename, "filename"));
        if (format == parameters) {
            readParams(model->env, filename);
        } else if (format == solution || format == start || format == basis) {
            readSource(filename, [&](Source &source) {
                (format == basis ? readBasis : readValues)(*model, source);
            });
        } else {
            refuseEnding(KVX_ERROR_FILE_READ, filename);
        }
    });
}

int KVXwrite(KVXmodel *model, const char *filename) {
    return guarded(model, [&] {
        std::string text = contents(*model, needed(filename, "filename"));
        writeFile(filename, text);
    });
}

int KVXismodelfile(const char *filename) {
    Format format = filename ? formatOf(filename) : none;
    return format <= lp ? format : 0;
}

int KVXisattrfile(const char *filename) {
    Format format = filename ? formatOf(filename) : none;
    return format >= solution && format <= parameters ? format - lp : 0;
}
