// The development solver's objects: what stands behind the handles of korvex.h. Files with one
// concern each implement the functions on them.
#ifndef KORVEX_SOLVER_MODEL_H
#define KORVEX_SOLVER_MODEL_H

#include "korvex.h"
#include "name.h"
#include "rows.h"

#include <CoinPackedMatrix.hpp>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <variant>
#include <vector>

namespace korvex {

struct Variable {
    Name name; // never empty in a model
    double lb = 0, ub = KVX_INFINITY, obj = 0;
    char type = KVX_CONTINUOUS;
    double start = KVX_UNDEFINED;
    int basis = KVX_NONBASIC_LOWER; // warm start in, basis out
    bool iisLb = false, iisUb = false;

    bool isInteger() const {
        return type == KVX_BINARY || type == KVX_INTEGER || type == KVX_SEMIINT;
    }
    bool isSemi() const { return type == KVX_SEMICONT || type == KVX_SEMIINT; }
};

// A linear constraint of a model, without its row.
struct Sides {
    Name name; // never empty in a model
    double lower = -KVX_INFINITY, upper = KVX_INFINITY;
    int basis = KVX_BASIC;
    char sense = 0; // 0, until the constraint is added: what the sides say
    bool iis = false;
};

// One by itself.
struct Constraint : Sides {
    std::vector<Entry> row = {}; // by variable
};

// A piecewise-linear objective term.
struct Breakpoints {
    std::vector<double> x, y;
};

struct Sos {
    int type;
    std::vector<Entry> members; // variable and weight
};

// Coefficients of products of two variables, by their indices, the lower one first; none is 0.
using Products = std::map<std::pair<int, int>, double>;

struct QuadraticConstraint {
    Name name;
    std::vector<Entry> linear;
    Products products;
    double rhs;
    char sense;
};

// Every kind in one record; which fields mean something is the kind's affair.
struct GeneralConstraint {
    int kind;             // KVX_GENCONSTR_
    const char *kindName; // for texts
    Name name, options;
    int first = 0, second = 0;         // resvar or x; argvar or y; binvar and binval
    std::vector<int> vars;             // operands
    std::vector<Entry> linear;         // of an indicator
    std::vector<double> x, y;          // breakpoints; coefficients or data of nodes in x
    std::vector<int> opcodes, parents; // of nodes
    double number = 0;                 // constant, which norm, right-hand side, base, exponent
    char sense = 0;
};

struct Objective {
    std::string name;
    int priority = 0;
    double constant = 0, weight = 1, abstol = 0, reltol = 0;
    std::vector<double> coefs; // one a variable
};

struct Solution {
    int status = KVX_STATUS_LOADED;
    double objval = 0, bound = 0, runtime = 0, nodes = 0, iterations = 0;
    int solutions = 0;
    bool hasX = false, hasDuals = false;
    std::vector<double> x = {}, reducedCosts = {}; // one a variable
    std::vector<double> duals = {}, slacks = {};   // one a constraint
};

// What a model is, without its environment, runs and results.
struct ModelData {
    Name name;
    int objsense = KVX_MINIMIZE;
    double objcon = 0;
    std::vector<Variable> vars;
    std::vector<Sides> constrs;
    Rows rows;                      // of the constraints
    std::map<int, Breakpoints> pwl; // objective terms of variables
    std::vector<Sos> sos;
    Products products; // of the objective
    std::vector<QuadraticConstraint> qconstrs;
    std::vector<GeneralConstraint> genconstrs;
    std::vector<Objective> objectives; // empty: one objective, in the variables
    int objNumber = 0, scenarioNumber = 0;
    bool hasBasis = false; // the basis fields hold a basis to start from
    // For names, deleted ones included.
    int varsMade = 0, constrsMade = 0, qconstrsMade = 0, genconstrsMade = 0;
};

// The text of the last failure, for each thread by itself: while a run goes on, its callback and
// another thread may make calls that fail at the same time.
class ErrorText {
  public:
    ErrorText() = default;
    ErrorText(const ErrorText &) {} // A copied environment hasn't failed.
    void set(std::string text) noexcept;
    const char *get() noexcept; // valid until the thread's next failure

  private:
    std::mutex mutex;
    std::map<std::thread::id, std::string> texts;
};

struct Log; // console, file and callback of an environment; shared by its models
class Run;  // a run that is going on

struct Basis; // factorized

// Deleted variables or constraints that are still there: those that follow don't move up at each
// deletion, but all at once before the next call of another kind.
struct Deletion {
    std::vector<int> numbers; // 0, or -1 for a deleted one
    std::vector<int> counts;  // of those that stay: a binary indexed tree
    int left;                 // how many stay
};

using ParameterValue = std::variant<int, double, std::string>;

} // namespace korvex

struct KVXenv {
    bool started = false;
    KVXmodel *owner = nullptr; // the model that the environment belongs to, if any
    std::vector<korvex::ParameterValue> parameters; // in the order of the table in params.cpp
    std::shared_ptr<korvex::Log> log;
    std::shared_ptr<std::FILE> logFile; // of the parameter "LogFile"
    korvex::ErrorText error;
};

struct KVXmodel : korvex::ModelData {
    KVXenv env; // the model's own: a copy of its environment's parameters, the same log
    korvex::Solution solution;
    bool hasIis = false;                       // the iis fields hold the result of KVXcomputeIIS
    std::vector<std::vector<int>> tuneResults; // best first; see tune.cpp
    int latestTuneResult = 0;
    std::map<int, KVXenv> objectiveEnvs; // by the objective's number

    korvex::NameTexts texts;
    korvex::NameIndex varIndex, constrIndex; // forgotten when names or numbers change
    std::shared_ptr<korvex::Basis> basis;    // forgotten at every call that may change the model
    std::unique_ptr<korvex::Deletion> varDeletion, constrDeletion; // null: nothing is to be done
    std::vector<int> neededBy; // general constraints by variables; up to date during a deletion

    KVXcallback callback = nullptr;
    void *callbackData = nullptr;
    std::atomic<bool> terminate{false}; // latches until the next run takes notice
    std::atomic<bool> running{false};
    std::chrono::steady_clock::time_point runStart; // set before running
    std::shared_ptr<korvex::Run> run; // the present run, or the last background one until KVXsync

    KVXmodel() {
        env.started = true;
        env.owner = this;
    }
};

namespace korvex {

// A new model of an environment, which must have been started, with the data of another one.
std::unique_ptr<KVXmodel> makeModel(const KVXenv &env, ModelData data = {});

// To be called after every change that may change the optimum: forgets the solution and the IIS.
void touch(KVXmodel &model);

// Does what deletions have left to be done. Nothing can fail.
void settle(KVXmodel &model) noexcept;

// Forgets which names the elements have.
void forgetNames(KVXmodel &model);

// Add an element and return its index. Without a name it gets one, a letter and a number.
int addVariable(ModelData &model, Variable var);
int addConstraint(ModelData &model, Constraint constr);
int addQuadraticConstraint(ModelData &model, QuadraticConstraint constr);
int addGeneralConstraint(ModelData &model, GeneralConstraint constr);

// Keeps the constraints that have a new number, and those that aren't -1 count up from 0.
void keepConstraints(ModelData &model, const std::vector<int> &numbers) noexcept;

// Keeps the items that have a new number.
template <class Item>
void keep(std::vector<Item> &items, const std::vector<int> &numbers) {
    size_t kept = 0;
    for (size_t i = 0; i < items.size(); i++)
        if (numbers[i] >= 0 && kept++ != i)
            items[kept - 1] = std::move(items[i]);
    items.resize(kept);
}

// The sense of a row with those sides.
char senseOf(double lower, double upper);

// Adds products to others; nothing can fail.
void addProducts(Products &products, Products more) noexcept;

// The coefficients by columns.
CoinPackedMatrix matrixOf(const ModelData &model);

// The objective, and all other objectives, out of the way.
void clearObjective(ModelData &model);

} // namespace korvex

#endif
