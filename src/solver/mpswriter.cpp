// Writes MPS files that other readers take, too: fields begin in the columns of the fixed format,
// where some readers look for them in free format as well.
#include "textfile.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace korvex {
namespace {

std::string line(const char *type, std::string first, std::string second = "",
                 const std::string &third = "") {
    first.resize(std::max<size_t>(first.size(), second.empty() ? 0 : 8), ' ');
    second.resize(std::max<size_t>(second.size(), third.empty() ? 0 : 8), ' ');
    std::string text = std::string(" ") + type;
    text.resize(4, ' ');
    return text + first + (second.empty() ? "" : "  ") + second + (third.empty() ? "" : "  ") +
           third + '\n';
}

std::string section(const char *title, const std::string &lines) {
    return lines.empty() ? "" : title + ('\n' + lines);
}

// The range that leads from one side of a row to the other one: a longer number where no double
// does. From the side nearer to zero there always is one.
std::string rangeBetween(double from, double to) {
    std::string text = toText(std::abs(to - from));
    if (otherSide(from, std::copysign(numberIn<long double>(text), to - from)) == to)
        return text;
    char longer[40];
    const long double range = std::abs(static_cast<long double>(to) - from);
    return {longer, std::to_chars(longer, longer + sizeof longer, range).ptr};
}

// Integer columns stand between markers, which every reader knows, unless a bound says all.
bool isPlainBinary(const Variable &var) {
    return var.type == KVX_BINARY && var.lb == 0 && var.ub == 1;
}

std::string boundsOf(const Variable &var, const std::string &name) {
    const bool isInteger = var.type == KVX_INTEGER, isSemi = var.isSemi();
    const bool isLow = var.lb > -KVX_INFINITY, isHigh = var.ub < KVX_INFINITY;
    if (isPlainBinary(var))
        return line("BV", "BND", name);
    if (var.lb == var.ub && !isInteger && !isSemi)
        return line("FX", "BND", name, toText(var.lb));
    if (!isLow && !isHigh && !isSemi)
        return line("FR", "BND", name);
    std::string text;
    if (!isLow)
        text = line("MI", "BND", name);
    else if (isInteger || var.lb != 0) // An integer one within 0 and 1 isn't binary by this.
        text = line(isInteger ? "LI" : "LO", "BND", name, toText(var.lb));
    if (isSemi)
        text += line("SC", "BND", name, isHigh ? toText(var.ub) : "");
    else if (isHigh)
        text += line(isInteger ? "UI" : "UP", "BND", name, toText(var.ub));
    else if (isInteger)
        text += line("PL", "BND", name);
    return text;
}

} // namespace

// Without blanks; a quote begins a marker for some readers and '$' a comment.
bool canMpsHold(std::string_view name) {
    return name.find(' ') == name.npos && name[0] != '\'' && name[0] != '$';
}

std::string writeMps(const ModelData &model, const Names &names) {
    std::string objective = "OBJ";
    auto isIn = [&](auto &taken) {
        return std::find(taken.begin(), taken.end(), objective) != taken.end();
    };
    while (isIn(names.constrs) || isIn(names.qconstrs))
        objective += '_';
    std::string rows = line("N", objective), columns, ranges, bounds, sets, quadratic;
    std::string rhs = model.objcon == 0 ? "" : line("", "RHS", objective, toText(-model.objcon));
    for (size_t i = 0; i < model.constrs.size(); i++) {
        const double lower = model.constrs[i].lower, upper = model.constrs[i].upper;
        const bool isLow = lower > -KVX_INFINITY, isHigh = upper < KVX_INFINITY;
        const bool isUp = isLow && (!isHigh || std::abs(lower) <= std::abs(upper));
        const double side = isUp ? lower : upper;
        rows += line(!isLow && !isHigh ? "N"
                     : lower == upper  ? "E"
                     : isUp            ? "G"
                                       : "L",
                     names.constrs[i]);
        if ((isLow || isHigh) && side != 0)
            rhs += line("", "RHS", names.constrs[i], toText(side));
        if (isLow && isHigh && lower != upper)
            ranges += line("", "RNG", names.constrs[i], rangeBetween(side, isUp ? upper : lower));
    }
    for (auto [pair, value] : model.products) // of half the sum, and only one triangle
        quadratic += line("", names.vars[at(pair.first)], names.vars[at(pair.second)],
                          toText(pair.first == pair.second ? 2 * value : value));
    quadratic = section("QUADOBJ", quadratic);
    std::vector<std::string> linear(model.vars.size()); // lines of quadratic rows, by column
    for (size_t q = 0; q < model.qconstrs.size(); q++) {
        const QuadraticConstraint &constr = model.qconstrs[q];
        const std::string &name = names.qconstrs[q];
        rows += line(constr.sense == KVX_EQUAL        ? "E"
                     : constr.sense == KVX_LESS_EQUAL ? "L"
                                                      : "G",
                     name);
        rhs += constr.rhs == 0 ? "" : line("", "RHS", name, toText(constr.rhs));
        for (auto [var, value] : constr.linear)
            linear[at(var)] += line("", names.vars[at(var)], name, toText(value));
        quadratic += "QCMATRIX      " + name + '\n';
        for (auto [pair, value] : constr.products) {
            const std::string &first = names.vars[at(pair.first)];
            const std::string &second = names.vars[at(pair.second)];
            const bool isSquare = pair.first == pair.second;
            quadratic += line("", first, second, toText(isSquare ? value : value / 2));
            if (!isSquare)
                quadratic += line("", second, first, toText(value - value / 2));
        }
    }
    CoinPackedMatrix matrix = matrixOf(model);
    bool isMarked = false;
    auto mark = [&](bool isInteger) {
        if (isInteger != isMarked)
            columns += line("", "MARKER", "'MARKER'",
                            isInteger ? "               'INTORG'" : "               'INTEND'");
        isMarked = isInteger;
    };
    for (size_t j = 0; j < model.vars.size(); j++) {
        const Variable &var = model.vars[j];
        const std::string &name = names.vars[j];
        mark(var.isInteger() && !isPlainBinary(var));
        CoinShallowPackedVector column = matrix.getVector(intSize(j));
        if (var.obj != 0 || column.getNumElements() == 0) // A column exists by its lines.
            columns += line("", name, objective, toText(var.obj));
        for (int k = 0; k < column.getNumElements(); k++)
            columns += line("", name, names.constrs[at(column.getIndices()[k])],
                            toText(column.getElements()[k]));
        columns += linear[j];
        bounds += boundsOf(var, name);
    }
    mark(false);
    for (const Sos &set : model.sos) {
        sets += line(set.type == KVX_SOS_TYPE1 ? "S1" : "S2", "SOS");
        for (auto [var, weight] : set.members)
            sets += line("", names.vars[at(var)], toText(weight));
    }
    const std::string name = model.name.text();
    // What ends the name like that would be taken for the format.
    std::string text = "NAME          " + name + (hasEnding(name, " free") ? " FREE" : "");
    text += model.objsense == KVX_MAXIMIZE ? "\nOBJSENSE\n    MAX\n" : "\n";
    return text + "ROWS\n" + rows + "COLUMNS\n" + columns + "RHS\n" + rhs +
           section("RANGES", ranges) + section("BOUNDS", bounds) + section("SOS", sets) +
           quadratic + "ENDATA\n";
}

} // namespace korvex
