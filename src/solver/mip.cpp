// Mixed-integer models, by Cbc. Preprocessing is told to keep all columns, so that a point of
// Cbc's is a point of the problem and the other way round.
#include "optimize.h"

#include "params.h"

#include <CbcModel.hpp> // the next ones need it

#include <CbcCutGenerator.hpp>
#include <CbcEventHandler.hpp>
#include <CbcHeuristicDiveCoefficient.hpp>
#include <CbcHeuristicFPump.hpp>
#include <CbcHeuristicGreedy.hpp>
#include <CbcHeuristicLocal.hpp>
#include <CbcHeuristicRINS.hpp>
#include <CbcTree.hpp>
#include <CglClique.hpp>
#include <CglFlowCover.hpp>
#include <CglGomory.hpp>
#include <CglKnapsackCover.hpp>
#include <CglMixedIntegerRounding2.hpp>
#include <CglPreProcess.hpp>
#include <CglProbing.hpp>
#include <CglTwomir.hpp>
#include <CglZeroHalf.hpp>
#include <OsiClpSolverInterface.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace korvex {
namespace {

constexpr int startNodes = 500; // spent on completing a partial solution

void addCuts(CbcModel &cbc) {
    // How often to call a generator: while it helps, or at the root only.
    constexpr int whileUseful = -98, rootOnly = -99;
    CglProbing probing;
    probing.setUsingObjective(1);
    probing.setMaxPass(1);
    probing.setMaxPassRoot(1);
    probing.setMaxProbe(10);
    probing.setMaxProbeRoot(50);
    probing.setMaxLook(10);
    probing.setMaxLookRoot(50);
    probing.setMaxElements(200);
    probing.setMaxElementsRoot(300);
    probing.setRowCuts(3);
    CglGomory gomory;
    gomory.setLimitAtRoot(1000);
    gomory.setLimit(50);
    CglKnapsackCover knapsack;
    CglClique clique;
    clique.setStarCliqueReport(false);
    clique.setRowCliqueReport(false);
    clique.setMinViolation(0.1);
    CglMixedIntegerRounding2 rounding(1, true, 1);
    CglFlowCover flow;
    CglTwomir twomir;
    twomir.setMaxElements(250);
    CglZeroHalf zeroHalf;
    cbc.addCutGenerator(&probing, whileUseful, "probing");
    cbc.addCutGenerator(&gomory, whileUseful, "Gomory");
    cbc.addCutGenerator(&knapsack, whileUseful, "knapsack");
    cbc.addCutGenerator(&clique, whileUseful, "clique");
    cbc.addCutGenerator(&rounding, whileUseful, "rounding");
    cbc.addCutGenerator(&flow, whileUseful, "flow cover");
    cbc.addCutGenerator(&twomir, rootOnly, "two-step rounding");
    cbc.addCutGenerator(&zeroHalf, whileUseful, "zero-half");
}

void addHeuristics(CbcModel &cbc) {
    CbcRounding rounding(cbc);
    CbcHeuristicFPump pump(cbc);
    pump.setMaximumPasses(30);
    CbcHeuristicGreedyCover greedy(cbc);
    CbcHeuristicDiveCoefficient dive(cbc);
    CbcHeuristicRINS neighbourhood(cbc);
    CbcHeuristicLocal combine(cbc);
    cbc.addHeuristic(&rounding, "rounding");
    cbc.addHeuristic(&pump, "feasibility pump");
    cbc.addHeuristic(&greedy, "greedy cover");
    cbc.addHeuristic(&dive, "dive");
    cbc.addHeuristic(&neighbourhood, "neighbourhood");
    cbc.addHeuristic(&combine, "combine");
}

void configure(CbcModel &cbc, Run &run, const Problem &problem) {
    cbc.passInMessageHandler(&problem.silence);
    cbc.setLogLevel(0);
    cbc.setIntegerTolerance(dblParam(run.settings, "IntegralityTol"));
    cbc.setRandomSeed(intParam(run.settings, "Seed"));
    cbc.setNumberStrong(5);
    cbc.setNumberBeforeTrust(10);
    cbc.setMinimumDrop(1e-4);
    cbc.setMaximumCutPassesAtRoot(-100);
    cbc.setMaximumCutPasses(10);
    if (intParam(run.settings, "Cuts"))
        addCuts(cbc);
    if (intParam(run.settings, "Heuristics"))
        addHeuristics(cbc);
}

class Mip {
  public:
    Mip(Run &run, const Problem &problem) : run(run), problem(problem) {}

    Outcome solve();

    // Follows the tree at an event of Cbc's on the run's own thread.
    void follow(CbcModel &cbc, CbcEventHandler::CbcEvent event);

    // Completes a point, in which some values are KVX_UNDEFINED, to a feasible one.
    bool complete(std::vector<double> &x, double &objective);

    Run &run;
    const Problem &problem;

  private:
    void start();
    std::unique_ptr<OsiSolverInterface> preprocess(OsiClpSolverInterface &solver);
    bool repair(std::vector<double> &x, double &objective);
    void candidate(CbcModel &cbc);
    Outcome search(OsiSolverInterface &solver);

    double relaxationIterations = 0, relaxationBound = 0;
    double lastCandidate = std::numeric_limits<double>::infinity();
    bool rejected = false; // a solution of Cbc's turned out not to be one
};

// Lets the run follow the tree and ends it when the run has to end.
class TreeWatch : public CbcEventHandler {
  public:
    explicit TreeWatch(Mip &mip) : mip(mip) {}

    CbcAction event(CbcEvent event) override {
        if (mip.run.onSolvingThread())
            mip.follow(*model_, event);
        return mip.run.poll() ? stop : noAction;
    }

    CbcAction event(CbcEvent, void *) override { return mip.run.poll() ? stop : noAction; }

    CbcEventHandler *clone() const override { return new TreeWatch(*this); }

  private:
    Mip &mip;
};

// Hands the run's best solution to Cbc when Cbc doesn't have it: a start or a proposal.
class Incumbent : public CbcHeuristic {
  public:
    Incumbent(CbcModel &cbc, const Run &run) : CbcHeuristic(cbc), run(run) {}

    int solution(double &objective, double *x) override {
        if (run.solutions == 0 || run.sense * run.bestObjective >= objective)
            return 0;
        objective = run.sense * run.bestObjective;
        std::copy(run.best.begin(), run.best.end(), x);
        return 1;
    }

    bool shouldHeurRun(int) override { return true; }
    void resetModel(CbcModel *model) override { setModel(model); }
    CbcHeuristic *clone() const override { return new Incumbent(*this); }

  private:
    const Run &run;
};

bool Mip::complete(std::vector<double> &x, double &objective) {
    x.resize(problem.cost.size(), KVX_UNDEFINED);
    problem.round(x);
    double tolerance = 10 * dblParam(run.settings, "FeasibilityTol");
    bool known = std::count(x.begin(), x.end(), KVX_UNDEFINED) == 0;
    if (!known) {
        ClpSimplex lp;
        problem.load(lp);
        SimplexWatch watch(run, false);
        lp.passInEventHandler(&watch);
        bool integersKnown = true;
        for (size_t j = 0; j < x.size(); j++)
            if (problem.integer[j]) {
                int column = static_cast<int>(j);
                if (x[j] == KVX_UNDEFINED) {
                    lp.setInteger(column);
                    integersKnown = false;
                } else {
                    lp.setColumnBounds(column, std::max(x[j], problem.lower[j]),
                                       std::min(x[j], problem.upper[j]));
                }
            }
        lp.dual();
        if (lp.status() != 0)
            return false;
        const double *found = lp.primalColumnSolution();
        OsiClpSolverInterface solver(&lp);
        CbcModel cbc(solver);
        if (!integersKnown) {
            configure(cbc, run, problem);
            cbc.setMaximumNodes(startNodes);
            cbc.branchAndBound();
            found = cbc.bestSolution();
            if (!found)
                return false;
        }
        x.assign(found, found + x.size());
        problem.round(x);
    }
    if (problem.violation(x) > tolerance)
        return false;
    objective = problem.objective(x);
    return true;
}

// Takes a point as it is or, when that isn't feasible, with other values of continuous columns.
bool Mip::repair(std::vector<double> &x, double &objective) {
    std::vector<double> integers = x;
    if (complete(x, objective))
        return true;
    for (size_t j = 0; j < integers.size(); j++)
        if (!problem.integer[j])
            integers[j] = KVX_UNDEFINED;
    x = integers;
    return complete(x, objective);
}

// Looks at Cbc's best solution. Its integers are so only within a tolerance; a solution of the run
// has them exact.
void Mip::candidate(CbcModel &cbc) {
    if (!cbc.bestSolution() || cbc.getObjValue() >= lastCandidate)
        return;
    lastCandidate = cbc.getObjValue();
    std::vector<double> x(cbc.bestSolution(), cbc.bestSolution() + problem.cost.size());
    double objective;
    if (repair(x, objective))
        run.offer(x, objective);
    else
        rejected = true;
}

void Mip::follow(CbcModel &cbc, CbcEventHandler::CbcEvent event) {
    cbc.setAllowableGap(run.absoluteGap);
    cbc.setAllowableFractionGap(run.gap);
    run.nodes = cbc.getNodeCount();
    run.iterations = relaxationIterations + cbc.getIterationCount();
    run.openNodes = cbc.tree() ? cbc.tree()->size() : 0;
    if (event == CbcEventHandler::solution || event == CbcEventHandler::heuristicSolution) {
        candidate(cbc);
    } else if (event == CbcEventHandler::node || event == CbcEventHandler::treeStatus) {
        double bound = problem.sense * cbc.getBestPossibleObjValue();
        if (run.better(run.bound, bound) && !run.stopped())
            run.bound =
                run.solutions && run.better(run.bestObjective, bound) ? run.bestObjective : bound;
        if (event == CbcEventHandler::node && run.nodes >= run.nodeLimit)
            run.stop(KVX_STATUS_NODE_LIMIT);
    }
}

void Mip::start() {
    std::vector<double> x;
    for (const Variable &var : run.model.vars)
        x.push_back(var.start);
    double objective;
    if (std::count(x.begin(), x.end(), KVX_UNDEFINED) == static_cast<long>(x.size()))
        return;
    if (repair(x, objective)) {
        run.say("The start values give a solution with objective %s", shown(objective).c_str());
        run.offer(x, objective);
    } else {
        run.say("The start values don't give a solution");
    }
}

// The tightened model with the same columns; null when there is none, for whatever reason: then the
// search itself finds out.
std::unique_ptr<OsiSolverInterface> Mip::preprocess(OsiClpSolverInterface &solver) {
    if (!intParam(run.settings, "Presolve"))
        return nullptr;
    const int columns = solver.getNumCols();
    CglProbing probing;
    probing.setUsingObjective(1);
    probing.setMaxPass(1);
    probing.setMaxPassRoot(1);
    probing.setMaxProbeRoot(columns > 3000 ? 123 : columns);
    probing.setMaxElements(100);
    probing.setMaxElementsRoot(200);
    probing.setMaxLookRoot(50);
    probing.setRowCuts(3);
    CglPreProcess process;
    process.passInMessageHandler(&problem.silence);
    process.passInProhibited(std::string(problem.cost.size(), 1).c_str(), columns);
    process.addCutGenerator(&probing);
    const OsiSolverInterface *processed = process.preProcessNonDefault(solver, 0, 10);
    if (!processed || run.stopped() || processed->getNumCols() != columns)
        return nullptr;
    const int *original = process.originalColumns();
    for (int j = 0; j < columns; j++)
        if (original[j] != j)
            return nullptr;
    run.rowsRemoved = solver.getNumRows() - processed->getNumRows();
    run.enter(KVX_CB_PRESOLVE);
    return std::unique_ptr<OsiSolverInterface>(processed->clone());
}

Outcome Mip::search(OsiSolverInterface &solver) {
    CbcModel cbc(solver);
    configure(cbc, run, problem);
    int threads = intParam(run.settings, "Threads");
    if (threads > 1)
        cbc.setNumberThreads(threads);
    Incumbent incumbent(cbc, run);
    cbc.addHeuristic(&incumbent, "incumbent");
    TreeWatch watch(*this);
    cbc.passInEventHandler(&watch);
    run.enter(KVX_CB_MIP);
    cbc.branchAndBound();
    candidate(cbc);

    Outcome outcome;
    double bound = problem.sense * cbc.getBestPossibleObjValue();
    if (run.stopped())
        outcome.status = run.stopped();
    else if (cbc.status() != 0)
        outcome.status = KVX_STATUS_NUMERIC;
    else if (run.solutions == 0)
        outcome.status = rejected ? KVX_STATUS_NUMERIC : KVX_STATUS_INFEASIBLE;
    else
        outcome.status = KVX_STATUS_OPTIMAL;
    if (outcome.status == KVX_STATUS_OPTIMAL) {
        // What Cbc cut off while it was looking for something better is worse than the best.
        run.bound = run.better(bound, run.bestObjective) ? bound : run.bestObjective;
        if (rejected && relativeGap(run.bestObjective, run.bound) > std::max(run.gap, 1e-6))
            outcome.status = KVX_STATUS_NUMERIC;
    }
    return outcome;
}

Outcome Mip::solve() {
    run.complete = [this](std::vector<double> &x, double &objective) {
        return complete(x, objective);
    };
    ClpSimplex lp;
    Outcome outcome = solveLp(run, problem, lp);
    relaxationIterations = run.iterations;
    if (outcome.status == KVX_STATUS_UNBOUNDED) {
        // With a ray of the relaxation and a solution, the model is unbounded. Whether there is a
        // solution may be hard to say, and then it isn't said.
        Problem feasibility = problem;
        std::fill(feasibility.cost.begin(), feasibility.cost.end(), 0.0);
        std::vector<double> x;
        double objective;
        if (!Mip(run, feasibility).complete(x, objective))
            outcome.status = run.stopped() ? run.stopped() : KVX_STATUS_INFEASIBLE_OR_UNBOUNDED;
    } else if (outcome.status == KVX_STATUS_OPTIMAL) {
        run.bound = outcome.objective;
        run.say("Relaxation: objective %s, %.0f iterations", shown(run.bound).c_str(),
                run.iterations);
        start();
        run.enter(KVX_CB_PRESOLVE);
        OsiClpSolverInterface solver(&lp);
        for (size_t j = 0; j < problem.cost.size(); j++)
            if (problem.integer[j])
                solver.setInteger(static_cast<int>(j));
        SimplexWatch watch(run, false);
        lp.passInEventHandler(&watch);
        std::unique_ptr<OsiSolverInterface> processed = preprocess(solver);
        outcome = search(processed ? *processed : solver);
    } else {
        return outcome;
    }
    outcome.x = run.best;
    return outcome;
}

} // namespace

Outcome solveMip(Run &run, const Problem &problem) {
    return Mip(run, problem).solve();
}

} // namespace korvex
