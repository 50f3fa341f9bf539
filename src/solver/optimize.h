// Solving: a model as COIN's solvers take it, and what they make of it. COIN's objects keep
// pointers to one another, so all that belong to a problem are used by its run's thread only.
#ifndef KORVEX_SOLVER_OPTIMIZE_H
#define KORVEX_SOLVER_OPTIMIZE_H

#include "run.h"

#include <ClpEventHandler.hpp>
#include <ClpSimplex.hpp>
#include <CoinPackedVector.hpp>

namespace korvex {

// Takes COIN's own messages and lets them go nowhere.
class Silence : public CoinMessageHandler {
  public:
    int print() override { return 0; }
    CoinMessageHandler *clone() const override { return new Silence(*this); }
};

// Refuses what is quadratic and can't be solved; the text names it.
void refuseQuadratic(const ModelData &model);

// An equivalent model without general constraints, piecewise-linear objective terms and
// semi-continuous variables, in whose SOS no member is negative. The first variables, constraints
// and SOS are those of the model.
ModelData reformulated(const KVXmodel &model);

// A model with linear constraints, with integer columns or without, as a minimisation. COIN's
// solvers don't take models without rows or columns: such a model gets a free row or a column that
// is fixed at 0.
struct Problem {
    explicit Problem(const ModelData &model);

    // Refuses numbers that COIN's solvers can't work with. The model tells names.
    void checkNumbers(const ModelData &model) const;

    void load(ClpSimplex &lp) const;

    // Gives a loaded problem these bounds and sides.
    void setSides(ClpSimplex &lp) const;

    // The objective value of a point in the model's own sense.
    double objective(const std::vector<double> &x) const;

    // What the objective to be minimised changes by, per unit of each column.
    std::vector<double> gradient(const std::vector<double> &x) const;

    // The largest violation of a bound or row, relative to the size of what it violates.
    double violation(const std::vector<double> &x) const;

    // Makes the known integers of a point exact; unknown values are KVX_UNDEFINED. Whether it is a
    // solution then.
    bool makeSolution(std::vector<double> &x, double tolerance) const;

    // Whether a point of the problem without integers is feasible, and the rows' multipliers prove
    // that it is optimal.
    bool isOptimal(const std::vector<double> &x, const double *multipliers, double tolerance) const;

    void addRow(const Constraint &row);

    int sense; // KVX_MINIMIZE or KVX_MAXIMIZE: the factor between costs and the model's objective
    double constant;
    std::vector<double> cost, lower, upper, rowLower, rowUpper;
    std::vector<char> integer;
    Products products;     // of the objective
    std::vector<Sos> sets; // members by increasing weight
    bool isMip = false;
    CoinPackedMatrix matrix; // by columns
    mutable Silence silence;
};

// A bound or side as COIN's solvers take it.
double bound(double value);

// Whether COIN's solvers can work with a finite number.
bool isSolvable(double value);
[[noreturn]] void refuseNumber(double value, const std::string &what);

CoinPackedVector packed(const std::vector<Entry> &entries);

// How far a point violates a row, relative to the size of the side that it violates.
double violation(const Constraint &row, const std::vector<double> &x);

// What a solver found.
struct Outcome {
    int status = KVX_STATUS_NUMERIC;
    std::vector<double> x = {};                        // empty: none
    double objective = 0;                              // in the model's own sense, like the rest
    std::vector<double> duals = {}, reducedCosts = {}; // empty: none
    std::vector<int> basis = {}, rowBasis = {};        // KVX_BASIC and so on; empty: none
};

// Ends what simplex does when the run has to end; for the run's linear model itself it also reports
// the progress.
struct SimplexWatch : ClpEventHandler {
    SimplexWatch(Run &run, bool itself) : run(run), itself(itself) {}
    int event(Event event) override;
    ClpEventHandler *clone() const override { return new SimplexWatch(*this); }

    Run &run;
    bool itself;
};

// Solves the problem without its integrality.
Outcome solveLp(Run &run, const Problem &problem);

Outcome solveMip(Run &run, const Problem &problem);

// Goes on with one whose relaxation is unbounded: tells what is the matter, or changes the problem
// so that its relaxation, whose optimum it gives, is bounded.
Outcome solveUnbounded(Run &run, Problem &problem);

constexpr double zeroInSet = 1e-6; // Members of a set up to this size count as zero.

// Refuses a quadratic objective that isn't convex, or with integers or sets. The model tells names.
void refuseUnlessConvex(const ModelData &model, const Problem &problem);

// Solves a problem with a convex quadratic objective.
Outcome solveQuadratic(Run &run, const Problem &problem);

// Solves the problem by what it takes; its solution is the run's best.
Outcome solveProblem(Run &run, const Problem &problem);

// Solves the problem with the model's several objectives. ObjVal and ObjBound are those of the
// highest priority.
Outcome solveObjectives(Run &run, Problem problem);

// Solves the run's model and stores the solution.
void optimize(Run &run);

} // namespace korvex

#endif
