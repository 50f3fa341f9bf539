// Mixed-integer models: starts, the search by Cbc, and what the callback has a say in.
#include "cbc.h"

#include "params.h"

#include <CbcCutGenerator.hpp>
#include <CbcEventHandler.hpp>
#include <CbcHeuristic.hpp>
#include <CbcTree.hpp>
#include <CglCutGenerator.hpp>
#include <OsiClpSolverInterface.hpp>

#include <algorithm>
#include <cmath>

namespace korvex {
namespace {

constexpr int completionNodes = 500; // spent on completing a partial solution

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
    std::vector<double> lastCandidate;
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
    if (!cbc.bestSolution())
        return;
    std::vector<double> x(cbc.bestSolution(), cbc.bestSolution() + problem.cost.size());
    if (x == lastCandidate)
        return;
    lastCandidate = x;
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
    lastCandidate.clear();
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
    bool isProven = relativeGap(run.bestObjective, run.bound) <= std::max(run.gap, 1e-6) ||
                    std::abs(run.bestObjective - run.bound) <= std::max(run.absoluteGap, 1e-6);
    return isProven ? KVX_STATUS_OPTIMAL : KVX_STATUS_NUMERIC;
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
        run.bound = -run.sense * KVX_INFINITY;
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
    if (std::unique_ptr<OsiSolverInterface> processed = preprocess(run, problem, solver)) {
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
