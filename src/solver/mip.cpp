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
#include <CbcSOS.hpp>
#include <CbcTree.hpp>
#include <CglClique.hpp>
#include <CglCutGenerator.hpp>
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

constexpr int completionNodes = 500; // spent on completing a partial solution

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
    // Cbc's dynamic pseudo-costs take every branching object for that of an integer.
    cbc.setNumberBeforeTrust(problem.sets.empty() ? 10 : 0);
    cbc.setMinimumDrop(1e-4);
    cbc.setMaximumCutPassesAtRoot(-100);
    cbc.setMaximumCutPasses(10);
    std::vector<OsiObject *> sets;
    std::vector<std::unique_ptr<CbcSOS>> owned;
    for (const Sos &set : problem.sets) {
        std::vector<int> columns;
        std::vector<double> weights;
        for (const Entry &member : set.members) {
            columns.push_back(member.index);
            weights.push_back(static_cast<double>(weights.size()));
        }
        owned.push_back(std::make_unique<CbcSOS>(&cbc, static_cast<int>(columns.size()),
                                                 columns.data(), weights.data(),
                                                 static_cast<int>(owned.size()), set.type));
        sets.push_back(owned.back().get());
    }
    if (!sets.empty()) {
        cbc.addObjects(static_cast<int>(sets.size()), sets.data());
        cbc.setNumberBeforeTrust(0); // Branching by pseudo costs crashes on sets.
    }
    if (intParam(run.settings, "Cuts"))
        addCuts(cbc);
    if (intParam(run.settings, "Heuristics"))
        addHeuristics(cbc);
}

void markIntegers(OsiSolverInterface &solver, const Problem &problem) {
    for (size_t j = 0; j < problem.cost.size(); j++)
        if (problem.integer[j])
            solver.setInteger(static_cast<int>(j));
}

class Mip {
  public:
    Mip(Run &run, const Problem &problem) : run(run), problem(problem) {
        run.complete = [this](std::vector<double> &x, double &objective) {
            return complete(x, objective);
        };
    }
    ~Mip() { run.complete = nullptr; }
    Mip(const Mip &) = delete;
    Mip &operator=(const Mip &) = delete;

    Outcome solve();

    // Completes a point, in which some values are KVX_UNDEFINED, to a feasible one.
    bool complete(std::vector<double> &x, double &objective);

  private:
    friend class TreeWatch;
    friend class NodeWatch;

    int solveOnce();
    int solveBoxed();
    void start();
    std::unique_ptr<OsiSolverInterface> preprocess(OsiClpSolverInterface &solver);
    bool repair(std::vector<double> &x, double &objective);
    int search(OsiSolverInterface &solver);

    // Follow Cbc on the run's own thread.
    void follow(CbcModel &cbc, CbcEventHandler::CbcEvent event);
    void candidate(const CbcModel &cbc);
    void node(const double *relaxation, OsiCuts &cuts);
    void raiseBound(double bound);

    Run &run;
    Problem problem;
    const double tolerance = 10 * dblParam(run.settings, "FeasibilityTol");
    double lastCandidate = 0;
    bool rejected = false; // a solution of Cbc's turned out not to be one
};

// Lets the run follow the tree and ends the search when the run has to end. Heuristics search
// smaller models with copies of it, whose solutions are not those of the model itself.
class TreeWatch : public CbcEventHandler {
  public:
    TreeWatch(Mip &mip, const CbcModel &whole) : mip(mip), whole(&whole) {}

    CbcAction event(CbcEvent event) override {
        if (model_ == whole && mip.run.onSolvingThread())
            mip.follow(*model_, event);
        return mip.run.poll() ? stop : noAction;
    }

    CbcAction event(CbcEvent, void *) override { return mip.run.poll() ? stop : noAction; }

    CbcEventHandler *clone() const override { return new TreeWatch(*this); }

  private:
    Mip &mip;
    const CbcModel *whole;
};

// Shows each node's relaxation to the callback, and adds its cuts.
class NodeWatch : public CglCutGenerator {
  public:
    explicit NodeWatch(Mip &mip) : mip(mip) {}

    void generateCuts(const OsiSolverInterface &solver, OsiCuts &cuts, const CglTreeInfo) override {
        if (mip.run.onSolvingThread() &&
            solver.getNumCols() == static_cast<int>(mip.problem.cost.size()))
            mip.node(solver.getColSolution(), cuts);
    }

    CglCutGenerator *clone() const override { return new NodeWatch(*this); }

  private:
    Mip &mip;
};

// Hands the run's best solution to Cbc when Cbc doesn't have it: a start or a proposal.
class Incumbent : public CbcHeuristic {
  public:
    Incumbent(CbcModel &cbc, const Run &run) : CbcHeuristic(cbc), run(run) {}

    int solution(double &objective, double *x) override {
        if (run.best.empty() || run.sense * run.bestObjective >= objective)
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
    if (std::count(x.begin(), x.end(), KVX_UNDEFINED) > 0) {
        ClpSimplex lp;
        problem.load(lp);
        SimplexWatch watch(run, false);
        lp.passInEventHandler(&watch);
        for (size_t j = 0; j < x.size(); j++)
            if (x[j] != KVX_UNDEFINED) {
                double value = std::clamp(x[j], problem.lower[j], problem.upper[j]);
                lp.setColumnBounds(static_cast<int>(j), value, value);
            }
        lp.dual();
        if (lp.status() != 0)
            return false;
        std::vector<double> found(lp.primalColumnSolution(), lp.primalColumnSolution() + x.size());
        problem.round(found);
        if (!problem.isSolution(found, tolerance)) {
            OsiClpSolverInterface solver(&lp);
            markIntegers(solver, problem);
            CbcModel cbc(solver);
            configure(cbc, run, problem);
            cbc.setMaximumNodes(completionNodes);
            cbc.branchAndBound();
            if (!cbc.bestSolution())
                return false;
            found.assign(cbc.bestSolution(), cbc.bestSolution() + x.size());
            problem.round(found);
        }
        x = found;
    }
    if (!problem.isSolution(x, tolerance))
        return false;
    objective = problem.objective(x);
    return true;
}
// Takes a point as it is or, when that isn't feasible, with other values of continuous columns:
// those that may be nonzero in a set.
bool Mip::repair(std::vector<double> &x, double &objective) {
    std::vector<double> kept(x.size(), KVX_UNDEFINED);
    for (size_t j = 0; j < x.size(); j++)
        if (problem.integer[j])
            kept[j] = x[j];
    for (const Sos &set : problem.sets)
        for (const Entry &member : set.members)
            if (auto j = static_cast<size_t>(member.index); std::abs(x[j]) <= zeroInSet)
                kept[j] = 0;
    if (complete(x, objective))
        return true;
    x = kept;
    return complete(x, objective);
}

// Looks at Cbc's best solution. Its integers are so only within a tolerance; a solution of the run
// has them exact.
void Mip::candidate(const CbcModel &cbc) {
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

void Mip::node(const double *relaxation, OsiCuts &cuts) {
    if (run.poll())
        return;
    std::vector<double> x(relaxation, relaxation + problem.cost.size());
    run.cuts.clear();
    run.report(KVX_CB_MIPNODE,
               {{KVX_CB_MIPNODE_STATUS, KVX_STATUS_OPTIMAL},
                {KVX_CB_MIPNODE_OBJBEST, run.bestObjective},
                {KVX_CB_MIPNODE_OBJBOUND, run.bound},
                {KVX_CB_MIPNODE_NODES, run.nodes},
                {KVX_CB_MIPNODE_SOLCOUNT, 1.0 * run.solutions}},
               &x);
    for (const Row &row : run.cuts) {
        OsiRowCut cut;
        cut.setRow(packed(row));
        cut.setLb(row.lower);
        cut.setUb(row.upper);
        cuts.insert(cut);
    }
}

void Mip::follow(CbcModel &cbc, CbcEventHandler::CbcEvent event) {
    cbc.setAllowableGap(run.absoluteGap);
    cbc.setAllowableFractionGap(run.gap);
    run.nodes = run.earlierNodes + cbc.getNodeCount();
    run.iterations = run.earlierIterations + cbc.getIterationCount();
    run.openNodes = cbc.tree() ? cbc.tree()->size() : 0;
    if (event == CbcEventHandler::solution || event == CbcEventHandler::heuristicSolution)
        candidate(cbc);
    if (event != CbcEventHandler::node && event != CbcEventHandler::treeStatus)
        return;
    double bound = problem.sense * cbc.getBestPossibleObjValue();
    if (!run.stopped())
        raiseBound(run.better(run.bestObjective, bound) ? run.bestObjective : bound);
    if (event == CbcEventHandler::node && run.nodes >= run.nodeLimit)
        run.stop(KVX_STATUS_NODE_LIMIT);
}

void Mip::raiseBound(double bound) {
    if (run.better(run.bound, bound))
        run.bound = bound;
}

void Mip::start() {
    std::vector<double> x;
    for (const Variable &var : run.model.vars)
        x.push_back(var.start);
    double objective;
    if (std::count(x.begin(), x.end(), KVX_UNDEFINED) == static_cast<long>(x.size()))
        return;
    x.resize(problem.cost.size(), KVX_UNDEFINED);
    if (repair(x, objective)) {
        run.say("The start values give a solution with objective %s", shown(objective).c_str());
        run.offer(x, objective);
    } else {
        run.say("The start values don't give a solution");
    }
}

// The tightened model with the same columns; null when there is none, for whatever reason: then the
// search itself finds out. It may lack solutions that aren't better than others, so it is of no use
// when there are conditions that it doesn't know.
std::unique_ptr<OsiSolverInterface> Mip::preprocess(OsiClpSolverInterface &solver) {
    if (!intParam(run.settings, "Presolve") || intParam(run.settings, "LazyConstraints") ||
        !problem.sets.empty())
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

int Mip::search(OsiSolverInterface &solver) {
    CbcModel cbc(solver);
    configure(cbc, run, problem);
    int threads = intParam(run.settings, "Threads");
    if (threads > 1)
        cbc.setNumberThreads(threads);
    Incumbent incumbent(cbc, run);
    cbc.addHeuristic(&incumbent, "incumbent");
    NodeWatch nodes(*this);
    if (run.model.callback)
        cbc.addCutGenerator(&nodes, 1, "callback");
    TreeWatch tree(*this, cbc);
    cbc.passInEventHandler(&tree);
    run.enter(KVX_CB_MIP);
    lastCandidate = std::numeric_limits<double>::infinity();
    rejected = false;
    cbc.branchAndBound();
    candidate(cbc);
    run.earlierNodes = run.nodes;
    run.earlierIterations = run.iterations;

    if (run.stopped())
        return run.stopped();
    if (cbc.status() != 0 || (rejected && run.best.empty()))
        return KVX_STATUS_NUMERIC;
    if (run.best.empty())
        return KVX_STATUS_INFEASIBLE;
    // What Cbc cut off while it was looking for something better is worse than the best.
    double bound = problem.sense * cbc.getBestPossibleObjValue();
    run.bound = run.better(bound, run.bestObjective) ? bound : run.bestObjective;
    bool isGap = rejected && relativeGap(run.bestObjective, run.bound) > std::max(run.gap, 1e-6);
    return isGap ? KVX_STATUS_NUMERIC : KVX_STATUS_OPTIMAL;
}

// A ray of the relaxation may break a set and proves nothing then. A model whose optimum is the
// same in a large box and in a larger one is taken to be bounded.
int Mip::solveBoxed() {
    const std::vector<double> lower = problem.lower, upper = problem.upper;
    int status = KVX_STATUS_OPTIMAL;
    double optimum = 0;
    for (double size : {1e6, 1e7}) {
        if (status != KVX_STATUS_OPTIMAL)
            break;
        optimum = run.bestObjective;
        for (size_t j = 0; j < lower.size(); j++) {
            problem.lower[j] = std::max(lower[j], std::min(-size, upper[j]));
            problem.upper[j] = std::min(upper[j], std::max(size, lower[j]));
        }
        status = solveOnce();
    }
    problem.lower = lower;
    problem.upper = upper;
    if (status == KVX_STATUS_OPTIMAL && relativeGap(optimum, run.bestObjective) > run.gap)
        return KVX_STATUS_UNBOUNDED;
    return status == KVX_STATUS_INFEASIBLE ? KVX_STATUS_INFEASIBLE_OR_UNBOUNDED : status;
}

int Mip::solveOnce() {
    ClpSimplex lp;
    Outcome relaxation = solveLp(run, problem, lp);
    if (relaxation.status == KVX_STATUS_UNBOUNDED && !problem.sets.empty())
        return solveBoxed();
    if (relaxation.status == KVX_STATUS_UNBOUNDED) {
        // With a ray of the relaxation and a solution, the model is unbounded. Whether there is a
        // solution may be hard to say, and then it isn't said.
        std::vector<double> x, cost(problem.cost.size());
        double objective;
        cost.swap(problem.cost);
        bool isFeasible = complete(x, objective);
        cost.swap(problem.cost);
        return isFeasible      ? KVX_STATUS_UNBOUNDED
               : run.stopped() ? run.stopped()
                               : KVX_STATUS_INFEASIBLE_OR_UNBOUNDED;
    }
    if (relaxation.status != KVX_STATUS_OPTIMAL)
        return relaxation.status;
    raiseBound(relaxation.objective);
    run.say("Relaxation: objective %s, %.0f iterations", shown(relaxation.objective).c_str(),
            run.iterations);
    run.enter(KVX_CB_PRESOLVE);
    OsiClpSolverInterface solver(&lp);
    markIntegers(solver, problem);
    SimplexWatch watch(run, false);
    lp.passInEventHandler(&watch);
    if (std::unique_ptr<OsiSolverInterface> processed = preprocess(solver)) {
        // Now and then preprocessing drops a row that is needed to know a column's value.
        int status = search(*processed);
        if (status != KVX_STATUS_NUMERIC)
            return status;
    }
    return search(solver);
}

Outcome Mip::solve() {
    Outcome outcome;
    if (run.best.empty())
        start();
    size_t lazyRows = 0;
    do {
        if (run.stopped() == Run::again)
            run.goOn();
        for (; lazyRows < run.lazies.size(); lazyRows++)
            problem.addRow(run.lazies[lazyRows]);
        outcome.status = run.poll() ? run.stopped() : solveOnce();
    } while (run.stopped() == Run::again);
    outcome.x = run.best;
    outcome.objective = run.bestObjective;
    return outcome;
}

} // namespace

Outcome solveMip(Run &run, const Problem &problem) {
    return Mip(run, problem).solve();
}

} // namespace korvex
