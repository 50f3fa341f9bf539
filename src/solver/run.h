// A run of a model: what limits it, how far it has come, and the one way to the model's callback.
// All of a run is done by one thread; only requests to terminate come from others.
#ifndef KORVEX_SOLVER_RUN_H
#define KORVEX_SOLVER_RUN_H

#include "model.h"

#include <functional>
#include <thread>

namespace korvex {

// A datum that a callback can ask for; ints are kept as doubles.
struct Datum {
    int what; // KVX_CB_
    double value;
};

// Why the callback is being called, and what it can ask for.
struct Occasion {
    int where = -1; // none: the callback isn't being called
    std::vector<Datum> data;
    const std::vector<double> *vector = nullptr; // the vector code's values
    const char *text = nullptr;                  // that of KVX_CB_MSG_STRING
};

class Run {
  public:
    explicit Run(KVXmodel &model);

    void conduct(const std::function<void(Run &)> &operation);

    // Whether the run has to end. To be called often: it also writes progress lines and lets the
    // callback poll. The second reports progress, too, when it is time.
    bool poll();
    bool progress(int where, std::vector<Datum> data);

    // Ends the run with a status of the attribute "Status", unless it is ending already.
    void stop(int status);

    // The status that ends the run early; 0 while it goes on. Two more values end only the present
    // solve, which lacks lazy constraints and is done again, or the present phase.
    enum { again = -1, next = -2 };
    int stopped() const { return stopStatus; }
    void goOn(); // after again or next

    // Calls the callback, except while it is being called.
    void report(int where, std::vector<Datum> data, const std::vector<double> *vector = nullptr,
                const char *text = nullptr);

    // Writes a line to the log and reports it.
    void say(const char *format, ...) __attribute__((format(printf, 2, 3)));

    // Takes a solution into the run if it is better than the best one, and reports it. Both
    // values are in the model's own sense.
    void offer(const std::vector<double> &x, double objective);

    // Adds a constraint that every solution has to satisfy; drops the best one if it doesn't.
    void addLazy(Constraint row);
    bool satisfiesLazies(const std::vector<double> &x) const;

    // Whether the first objective value is better than the second.
    bool better(double a, double b) const { return sense > 0 ? a < b : a > b; }

    // Whether somebody follows the run who may ask for its points: the model's callback, unless it
    // is that of solveInside.
    bool hasWatcher() const;

    void readLimits(); // from the settings
    double elapsed() const;
    double tolerance() const; // of a solution's violations

    KVXmodel &model;
    KVXenv settings; // the model's parameters; a callback changes them for this run only
    Occasion occasion;
    bool isQuiet = false;         // Nothing is logged or reported at present.
    bool isWindingUp = false;     // What is being solved must be solved to its end.
    bool hasPhases = false;       // stop(next) ends one of them
    std::vector<int> present;     // numbers of the objectives that are being optimised, of several
    std::vector<Constraint> cuts; // added by the callback at the present node
    std::vector<Constraint> lazies;

    double timeLimit, nodeLimit, iterationLimit, gap, absoluteGap, logInterval;
    int solutionLimit;

    const int sense;
    double bestObjective, bound, nodes = 0, iterations = 0;
    double earlierNodes = 0, earlierIterations = 0; // of solves that have ended
    int solutions = 0;
    std::vector<double> best; // the best solution: the problem's columns; empty: none

    // Completes a partial solution to a feasible one; set while the run can take solutions.
    std::function<bool(std::vector<double> &x, double &objective)> complete;

    // Solutions that the callback proposed, to be offered once it has returned.
    std::vector<std::pair<std::vector<double>, double>> proposals;

    std::thread thread; // of a background run
    std::atomic<std::thread::id> conductor{};
    int result = 0; // status and error text of the operation
    std::string error;
    std::atomic<bool> finished{false};

  private:
    void offerProposals();

    int stopStatus = 0;
    int callbackStatus = 0; // the result that ended the run
    int lastWhere = -1;
    double lastReport = -1, nextLine;
};

// Conducts an operation as the model's present run and returns its status.
int perform(KVXmodel *model, const std::function<void(Run &)> &operation);

// Waits for the background run, if there is one; its failure is the caller's. Fails inside one of
// its callbacks.
void endRun(KVXmodel &model, bool terminate);

// The value of the attribute "Status".
int currentStatus(const KVXmodel &model);

// A model that the library makes and solves for itself: with the parameters of an environment, but
// a log of its own that goes nowhere, and no result file.
std::unique_ptr<KVXmodel> makeInnerModel(const KVXenv &env, const ModelData &data);

// Solves it inside a run, which ends it when it has to end itself, or when the seconds are over.
// Gives its status of the attribute "Status"; fails as KVXoptimize does.
int solveInside(Run &run, KVXmodel &model, double seconds = KVX_INFINITY);

// The same without the model's objective: the first solution will do.
int findPoint(Run &run, KVXmodel &model, double nodeLimit);

// A number for the log.
std::string shown(double value);

// The gap between an objective value and a bound, relative to the former.
double relativeGap(double objective, double bound);

} // namespace korvex

#endif
