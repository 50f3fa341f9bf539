// A run of a model: what limits it, how far it has come, and the one way to the model's callback.
#ifndef KORVEX_SOLVER_RUN_H
#define KORVEX_SOLVER_RUN_H

#include "model.h"

namespace korvex {

// A datum that a callback can ask for; ints are kept as doubles.
struct Datum {
    int what; // KVX_CB_
    double value;
};

// Why the callback is being called, and what it can ask for or give back.
struct Occasion {
    int where = -1; // none: the callback isn't being called
    std::vector<Datum> data;
    const std::vector<double> *vector = nullptr; // the vector code's values
    const char *text = nullptr;                  // that of KVX_CB_MSG_STRING
};

// A linear row with its two sides.
struct Row {
    std::vector<Entry> entries;
    double lower, upper;

    double violation(const std::vector<double> &x) const;
};

// How far a value lies outside, relative to the size of the side that it violates.
double excess(double value, double lower, double upper);

class Run {
  public:
    explicit Run(KVXmodel &model);

    // Does the run's work on the calling thread.
    void conduct(const std::function<void(Run &)> &operation);

    // Whether the run has to end. Called at every simplex iteration and node, by whatever thread
    // works on it; on the run's own it also writes progress lines and reports progress.
    bool poll();

    // Ends the run with a status of the attribute "Status", unless it is ending already.
    void stop(int status);

    // The status that ends the run early; 0 while it goes on. Two more values end only the present
    // solve, which lacks lazy constraints and is done again, or the present of several objectives.
    enum { again = -1, next = -2 };
    int stopped() const { return stopStatus; }

    // Goes on after again or next.
    void goOn();

    // Calls the callback, except while it is being called.
    void report(int where, std::vector<Datum> data, const std::vector<double> *vector = nullptr,
                const char *text = nullptr);

    // Writes a line to the log and reports it.
    void say(const char *format, ...) __attribute__((format(printf, 2, 3)));

    bool onSolvingThread() const { return std::this_thread::get_id() == solvingThread; }

    int phase() const { return presentPhase; }

    // Begins a phase: progress is reported under this where code from now on.
    void enter(int newPhase);

    // Takes a solution into the run if it is better than the best one, and reports it. Both
    // values are in the model's own sense.
    void offer(const std::vector<double> &x, double objective);

    // Adds a constraint that every solution has to satisfy; drops the best one if it doesn't.
    void addLazy(Row row);

    // Whether the first objective value is better than the second.
    bool better(double a, double b) const { return sense > 0 ? a < b : a > b; }

    // Takes the limits from the settings.
    void readLimits();

    double elapsed() const;

    // Whether the calling thread is inside the callback.
    bool insideCallback() const { return callbackThread == std::this_thread::get_id(); }

    KVXmodel &model;
    KVXenv settings; // the model's parameters; a callback changes them for this run only
    Occasion occasion;
    int callbackStatus = 0;   // the result that ended the run
    std::vector<Row> lazies;  // lazy constraints
    bool hasPhases = false;   // stop(next) ends one of them
    std::vector<int> present; // numbers of the objectives that are being optimised, of several
    std::vector<Row> cuts;    // added by the callback at the present node

    double timeLimit, nodeLimit, iterationLimit, gap, absoluteGap, logInterval;
    int solutionLimit;

    int sense;
    double objective, primalInfeasibility = 0, dualInfeasibility = 0; // of the simplex
    double bestObjective, bound, nodes = 0, openNodes = 0, iterations = 0;
    int solutions = 0, columnsRemoved = 0, rowsRemoved = 0;
    double earlierIterations = 0, earlierNodes = 0; // of solves that have ended
    std::vector<double> best; // the best solution: the problem's columns; empty: none

    // Completes a partial solution to a feasible one; set while the run can take solutions.
    std::function<bool(std::vector<double> &x, double &objective)> complete;

    // Solutions that the callback proposed, to be offered once it has returned.
    std::vector<std::pair<std::vector<double>, double>> proposals;

    std::thread thread; // of a background run
    int result = 0;     // status and error text of the operation
    std::string error;
    std::atomic<bool> finished{false};

  private:
    bool satisfiesLazies(const std::vector<double> &x) const;
    void progress(double now);

    std::thread::id solvingThread;
    std::atomic<std::thread::id> callbackThread;
    std::atomic<int> stopStatus{0};
    int presentPhase = KVX_CB_POLLING;
    double nextReport = 0, nextLine;
};

// Conducts an operation as the model's present run and returns its status.
int perform(KVXmodel *model, const std::function<void(Run &)> &operation);

// A number for the log, whatever the locale.
std::string shown(double value);

// The gap between an objective value and a bound, relative to the former.
double relativeGap(double objective, double bound);

} // namespace korvex

#endif
