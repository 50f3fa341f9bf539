// The development solver's objects: what stands behind the handles of korvex.h. Files with one
// concern each implement the functions on them.
#ifndef KORVEX_SOLVER_MODEL_H
#define KORVEX_SOLVER_MODEL_H

#include "korvex.h"

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <variant>
#include <vector>

namespace korvex {

struct Entry {
    int index;
    double value;
};

struct QuadraticTerm {
    int row, col;
    double value;
};

struct Variable {
    std::string name; // empty: named by index
    double lb = 0, ub = KVX_INFINITY, obj = 0, start = KVX_UNDEFINED;
    char type = KVX_CONTINUOUS;
    int basis = KVX_NONBASIC_LOWER; // warm start in, basis out
    int iisLb = 0, iisUb = 0;
    std::vector<Entry> column; // by constraint, in the order in which entries were added
    std::vector<double> pwlX, pwlY;
};

struct Constraint {
    std::string name;
    char sense = KVX_LESS_EQUAL;
    double lower = -KVX_INFINITY, upper = KVX_INFINITY;
    int basis = KVX_BASIC;
    int iis = 0;
    std::vector<Entry> row; // by variable; the same matrix as the columns
};

struct Sos {
    int type;
    std::vector<Entry> members; // variable and weight
    int iis = 0;
};

struct QuadraticConstraint {
    std::string name;
    std::vector<Entry> linear;
    std::vector<QuadraticTerm> quadratic;
    char sense;
    double rhs;
};

// Every kind in one record; which fields mean something is the kind's affair.
struct GeneralConstraint {
    int kind; // KVX_GENCONSTR_
    std::string name, options;
    int first = 0, second = 0;   // resvar or x; argvar or y; binvar and binval
    std::vector<int> vars;       // operands; opcodes
    std::vector<Entry> linear;   // of an indicator
    std::vector<double> values;  // x points; coefficients; data
    std::vector<double> values2; // y points
    std::vector<int> parents;
    double number = 0; // constant, which, base, exponent, rhs
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
    bool hasX = false, hasDuals = false, hasBasis = false;
    double objval = 0, bound = 0, runtime = 0, nodes = 0, iterations = 0;
    int solutions = 0, barrierIterations = 0;
    std::vector<double> x, reducedCosts; // one a variable
    std::vector<double> duals, slacks;   // one a constraint
};

// What a model is, without its environment, runs and results.
struct ModelData {
    std::string name;
    int objsense = KVX_MINIMIZE;
    double objcon = 0;
    std::vector<Variable> vars;
    std::vector<Constraint> constrs;
    std::vector<QuadraticTerm> quadratic;
    std::vector<Sos> sos;
    std::vector<QuadraticConstraint> qconstrs;
    std::vector<GeneralConstraint> genconstrs;
    std::vector<Objective> objectives; // empty: one objective, in the variables
    int objNumber = 0;
    int scenarioNumber = 0;
    bool hasBasis = false; // the basis fields hold a basis to start from
};

class Log; // log.cpp: console, file and callback of an environment; shared by its models
class Run; // run.cpp: a run that is going on

using ParameterValue = std::variant<int, double, std::string>;

} // namespace korvex

struct KVXenv {
    bool started = false;
    KVXmodel *owner = nullptr; // the model that the environment belongs to, if any
    std::vector<korvex::ParameterValue> parameters; // in the order of the table in params.cpp
    std::shared_ptr<korvex::Log> log;
    std::shared_ptr<std::FILE> logFile; // of the parameter "LogFile"
    std::string error;
};

struct KVXmodel : korvex::ModelData {
    KVXenv env; // the model's own: a copy of its environment's parameters, the same log
    korvex::Solution solution;
    bool hasIis = false;                       // the iis fields hold the result of KVXcomputeIIS
    std::vector<std::vector<int>> tuneResults; // best first; see tune.cpp
    int latestTuneResult = 0;

    KVXcallback callback = nullptr;
    void *callbackData = nullptr;
    std::atomic<bool> terminate{false}; // latches until the next run takes notice
    std::atomic<bool> running{false};
    std::chrono::steady_clock::time_point runStart; // set before running
    std::shared_ptr<korvex::Run> run; // the present run, or the last background one until KVXsync

    std::map<int, std::unique_ptr<KVXenv>> multiobjEnvs; // by objective
    std::set<std::string> madeNames; // of elements without one, handed out as attributes

    KVXmodel() {
        env.started = true;
        env.owner = this;
    }
};

namespace korvex {

// A new model of an environment, which must have been started.
std::unique_ptr<KVXmodel> makeModel(const KVXenv &env);

// The same, with the data of another model but no solution.
std::unique_ptr<KVXmodel> makeModel(const KVXenv &env, const ModelData &data);

// To be called after every change that may change the optimum: forgets the solution and the IIS.
void touch(KVXmodel &model);

// general.cpp: the variables without which a general constraint means nothing; renumbers all of its
// variables after a deletion and drops deleted ones from its linear part.
std::vector<int> dependsOn(const GeneralConstraint &constr);
void renumberVariables(GeneralConstraint &constr, const std::vector<int> &numbers);

// run.cpp: terminates the model's background run, if there is one, and waits for it; fails with
// KVX_ERROR_IN_PROGRESS inside one of its callbacks.
void endRun(KVXmodel &model);

// run.cpp: the attribute "Status"; a background run's is there before KVXsync.
int currentStatus(const KVXmodel &model);

// Adds a row or column with its entries to a matrix.
void addConstraint(ModelData &model, Constraint constr);
void addVariable(ModelData &model, Variable var);

inline bool isSemi(const Variable &var) {
    return var.type == KVX_SEMICONT || var.type == KVX_SEMIINT;
}
inline bool isInteger(const Variable &var) {
    return var.type == KVX_BINARY || var.type == KVX_INTEGER || var.type == KVX_SEMIINT;
}

// The name of an element, made of its index when it has none.
std::string varName(const ModelData &model, int index);
std::string constrName(const ModelData &model, int index);
std::string qconstrName(const ModelData &model, int index);
std::string genconstrName(const ModelData &model, int index);

} // namespace korvex

#endif
