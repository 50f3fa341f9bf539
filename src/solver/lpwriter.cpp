// Writes LP files that other readers take, too: no empty sections, constants and infinities only
// where there are some, and of a row with two sides each side by itself.
#include "textfile.h"

#include <cmath>
#include <cstring>
#include <utility>

namespace korvex {
namespace {

class LpWriter {
  public:
    LpWriter(const ModelData &model, const Names &names) : model(model), names(names) {}

    std::string write() {
        if (!model.name.empty())
            line("\\Problem name: " + model.name.text());
        line(model.objsense == KVX_MAXIMIZE ? "Maximize" : "Minimize");
        line(" obj:");
        for (size_t j = 0; j < model.vars.size(); j++) // also zeros: all are there in their order
            term(model.vars[j].obj, names.vars[j]);
        if (!model.products.empty()) {
            products(model.products, 2);
            append(" / 2");
        }
        if (model.objcon != 0)
            append(signedText(model.objcon));
        line("Subject To");
        for (size_t i = 0; i < model.constrs.size(); i++)
            row(model.constrs[i], model.rows[i], names.constrs[i]);
        for (size_t q = 0; q < model.qconstrs.size(); q++)
            quadratic(model.qconstrs[q], names.qconstrs[q]);
        title = "Bounds";
        for (size_t j = 0; j < model.vars.size(); j++)
            bounds(model.vars[j], names.vars[j]);
        list("Generals", "IN");
        list("Binaries", "B");
        list("Semi-continuous", "SN");
        title = "SOS";
        for (const Sos &set : model.sos) {
            line(set.type == KVX_SOS_TYPE1 ? " S1::" : " S2::");
            for (auto [var, weight] : set.members)
                append(" " + names.vars[at(var)] + ":" + toText(weight));
        }
        title = nullptr;
        line("End");
        return text + '\n';
    }

  private:
    // A section's title goes out with its first line.
    void line(const std::string &word) {
        if (title)
            line(std::exchange(title, nullptr));
        text += text.empty() ? "" : "\n";
        lineBegin = text.size();
        text += word;
    }

    // Some readers can't take lines of more than 255 or 1023 characters.
    void append(const std::string &word) {
        if (text.size() + word.size() > lineBegin + 80)
            line("   ");
        text += word;
    }

    static std::string signedText(double value) {
        return (std::signbit(value) ? " - " : " + ") + toText(std::abs(value));
    }

    void term(double value, const std::string &name) {
        append(std::abs(value) == 1 ? (value < 0 ? " - " : " + ") + name
                                    : signedText(value) + ' ' + name);
    }

    template <class List>
    void terms(const std::string &label, const List &entries) {
        line(' ' + label);
        for (auto [var, coefficient] : entries)
            term(coefficient, names.vars[at(var)]);
    }

    void products(const Products &products, double factor) {
        append(" + [");
        for (auto [pair, value] : products)
            term(factor * value,
                 names.vars[at(pair.first)] +
                     (pair.first == pair.second ? " ^2" : " * " + names.vars[at(pair.second)]));
        append(" ]");
    }

    void quadratic(const QuadraticConstraint &constr, const std::string &name) {
        terms(name + ':', constr.linear);
        products(constr.products, 1);
        append((constr.sense == KVX_EQUAL        ? " = "
                : constr.sense == KVX_LESS_EQUAL ? " <= "
                                                 : " >= ") +
               toText(constr.rhs));
    }

    void row(const Sides &constr, Entries entries, const std::string &name) {
        const double lower = constr.lower, upper = constr.upper;
        const bool isLow = lower > -KVX_INFINITY, isHigh = upper < KVX_INFINITY;
        auto side = [&](const std::string &label, const char *sense, double value) {
            terms(label, entries);
            if (entries.empty())
                append(names.vars.empty() ? " 0" : " 0 " + names.vars[0]);
            append(sense + (value > -KVX_INFINITY ? toText(value) : "-inf"));
        };
        if (lower == upper)
            return side(name + ':', " = ", upper);
        if (isLow || !isHigh)
            side(name + ':', " >= ", lower);
        if (isHigh)
            side(isLow ? "" : name + ':', " <= ", upper);
    }

    void bounds(const Variable &var, const std::string &name) {
        const bool isLow = var.lb > -KVX_INFINITY, isHigh = var.ub < KVX_INFINITY;
        const bool isZero = var.lb == 0;
        if (isZero && (var.type == KVX_BINARY ? var.ub == 1 : !isHigh))
            return;
        if (!isLow && !isHigh)
            line(' ' + name + " free");
        else if (var.lb == var.ub)
            line(' ' + name + " = " + toText(var.lb));
        else if (!isHigh)
            line(' ' + name + " >= " + toText(var.lb));
        else
            line((isZero  ? " "
                  : isLow ? ' ' + toText(var.lb) + " <= "
                          : " -inf <= ") +
                 name + " <= " + toText(var.ub));
    }

    void list(const char *kind, const char *types) {
        title = kind;
        for (size_t j = 0; j < model.vars.size(); j++) {
            if (!std::strchr(types, model.vars[j].type))
                continue;
            if (title)
                line("");
            append(' ' + names.vars[j]);
        }
    }

    const ModelData &model;
    const Names &names;
    std::string text;
    size_t lineBegin = 0;
    const char *title = nullptr; // to be written
};

} // namespace

std::string writeLp(const ModelData &model, const Names &names) {
    return LpWriter(model, names).write();
}

} // namespace korvex
