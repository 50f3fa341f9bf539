// Writing LP files.
#include "text.h"
#include "textfile.h"

#include <cmath>

namespace korvex {
namespace {

// Text with a line break now and then.
class LpWriter {
  public:
    explicit LpWriter(const ModelData &model)
        : model(model), vars(model, model.vars.size(), varName, isLpName),
          constrs(model, model.constrs.size(), constrName, isLpName),
          qconstrs(model, model.qconstrs.size(), qconstrName, isLpName) {}

    std::string write() {
        text = model.name.empty() ? "" : "\\ " + model.name + '\n';
        text += model.objsense == KVX_MAXIMIZE ? "Maximize\n obj:" : "Minimize\n obj:";
        // Every variable, so that all of them are there in their order.
        for (size_t j = 0; j < model.vars.size(); j++)
            add(signedNumber(model.vars[j].obj) + " " + vars[j]);
        quadratic(model.quadratic, 2);
        if (!model.quadratic.empty())
            add(" / 2");
        if (model.objcon != 0 || model.vars.empty())
            add(signedNumber(model.objcon));
        text += "\nSubject To";
        for (size_t i = 0; i < model.constrs.size(); i++)
            constraint(constrs[i], model.constrs[i]);
        for (size_t i = 0; i < model.qconstrs.size(); i++) {
            const QuadraticConstraint &constr = model.qconstrs[i];
            text += "\n " + qconstrs[i] + ":";
            linear(constr.linear);
            quadratic(constr.quadratic, 1);
            side(constr.sense, constr.rhs);
        }
        text += "\nBounds";
        for (size_t j = 0; j < model.vars.size(); j++) {
            const Variable &var = model.vars[j];
            if (var.lb != 0 || var.ub < KVX_INFINITY)
                text += "\n " + number(var.lb) + " <= " + vars[j] + " <= " + number(var.ub);
        }
        list("\nGenerals", KVX_INTEGER, KVX_SEMIINT);
        list("\nBinaries", KVX_BINARY, KVX_BINARY);
        list("\nSemi-continuous", KVX_SEMICONT, KVX_SEMIINT);
        text += "\nSOS";
        for (size_t k = 0; k < model.sos.size(); k++) {
            text += "\n s" + std::to_string(k);
            text += model.sos[k].type == KVX_SOS_TYPE1 ? ": S1 ::" : ": S2 ::";
            for (auto [index, weight] : model.sos[k].members)
                add(" " + vars[static_cast<size_t>(index)] + ":" + number(weight));
        }
        return text + "\nEnd\n";
    }

  private:
    static std::string number(double value) {
        return std::fabs(value) < KVX_INFINITY ? toText(value) : value < 0 ? "-inf" : "inf";
    }

    static std::string signedNumber(double value) {
        return (std::signbit(value) ? " - " : " + ") + toText(std::fabs(value));
    }

    void add(const std::string &piece) {
        if (text.size() - text.rfind('\n') > 90)
            text += "\n  ";
        text += piece;
    }

    void linear(const std::vector<Entry> &entries) {
        for (auto [index, value] : entries)
            add(signedNumber(value) + " " + vars[static_cast<size_t>(index)]);
    }

    void quadratic(const std::vector<QuadraticTerm> &terms, double factor) {
        if (terms.empty())
            return;
        add(" + [");
        for (auto [i, j, value] : terms)
            add(signedNumber(factor * value) + " " + vars[static_cast<size_t>(i)] + " * " +
                vars[static_cast<size_t>(j)]);
        add(" ]");
    }

    void side(char sense, double value) {
        add(std::string(" ") + sense + (sense == '=' ? " " : "= ") + number(value));
    }

    void constraint(const std::string &name, const Constraint &constr) {
        text += "\n " + name + ":";
        bool low = constr.lower > -KVX_INFINITY, high = constr.upper < KVX_INFINITY;
        bool twoSided = constr.row.empty() || (low && high && constr.lower != constr.upper);
        if (twoSided)
            text += " " + number(constr.lower) + " <=" + (constr.row.empty() ? " 0" : "");
        linear(constr.row);
        if (twoSided || !low)
            side('<', constr.upper);
        else
            side(high ? '=' : '>', constr.lower);
    }

    void list(const char *title, char type, char other) {
        text += title;
        for (size_t j = 0; j < model.vars.size(); j++)
            if (model.vars[j].type == type || model.vars[j].type == other)
                text += "\n " + vars[j];
    }

    const ModelData &model;
    const Names vars, constrs, qconstrs;
    std::string text;
};

} // namespace

std::string writeLp(const ModelData &model) {
    return LpWriter(model).write();
}

} // namespace korvex
