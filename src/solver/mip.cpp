// Mixed-integer models: starts, the search by Cbc, and what the callback has a say in.
#include "guard.h"
#include "optimize.h"
#include "params.h"

#include <CbcEventHandler.hpp>
#include <CbcHeuristicFPump.hpp>
#include <CbcHeuristicRINS.hpp>
#include <CbcModel.hpp>
#include <CbcSOS.hpp>
#include <CbcTree.hpp>
#include <CglFlowCover.hpp>
#include <CglGomory.hpp>
#include <CglKnapsackCover.hpp>
#include <CglMixedIntegerRounding2.hpp>
#include <CglPreProcess.hpp>
#include <CglProbing.hpp>
#include <CglZeroHalf.hpp>
#include <OsiClpSolverInterface.hpp>

#include <algorithm>
#include <cmath>

namespace korvex {
namespace {

constexpr double zeroInSet = 1e-6;   // Members of a set up to this size count as zero.
constexpr int completionNodes = 500; // spent on a partial or any solution

struct Mip {
    Mip(Run &run, const Problem &problem) : run(run), problem(problem) {
        dropFreeRows();
        run.complete = [this](auto &x, double &objective) { return complete(x, objective); };
    }
    ~Mip() { run.complete = nullptr; }
    Outcome solve();
    void follow(CbcModel &cbc, CbcEventHandler::CbcEvent event);
    void node(const double *relaxation, OsiCuts &cuts);
    void dropFreeRows();
    int solveOnce();
    void markIntegers(OsiSolverInterface &solver) const;
    void configure(CbcModel &cbc) const;
    std::unique_ptr<OsiSolverInterface> preprocessed(OsiSolverInterface &solver) const;
    int search(OsiSolverInterface &solver);
    bool round(std::vector<double> &x) const;
    bool complete(std::vector<double> &x, double &objective);
    bool solveRest(std::vector<double> &x);
    void candidate(const CbcModel &cbc);

    Run &run;
    Problem problem;
};

// Lets the run follow the tree and ends the search when the run has to end. Heuristics search
// smaller models with copies of it, whose solutions are not those of the model itself.
struct TreeWatch : CbcEventHandler {
    TreeWatch(Mip &mip, const CbcModel *whole) : mip(mip), whole(whole) {}
    using CbcEventHandler::event;
    CbcAction event(CbcEvent event) override {
        if (model_ == whole)
            mip.follow(*model_, event);
        return mip.run.poll() ? stop : noAction;
    }
    CbcEventHandler *clone() const override { return new TreeWatch(*this); }

    Mip &mip;
    const CbcModel *whole;
};

// Shows each node's relaxation to the callback, and adds its cuts.
struct NodeWatch : CglCutGenerator {
    explicit NodeWatch(Mip &mip) : mip(mip) {}
    void generateCuts(const OsiSolverInterface &solver, OsiCuts &cuts, const CglTreeInfo) override {
        if (solver.getNumCols() == intSize(mip.problem.cost.size()))
            mip.node(solver.getColSolution(), cuts);
    }
    CglCutGenerator *clone() const override { return new NodeWatch(*this); }

    Mip &mip;
};

// Hands the run's best solution to Cbc when Cbc doesn't have it: a start or a proposal.
struct Incumbent : CbcHeuristic {
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

    const Run &run;
};

// Cbc's own class asserts that no set that shares a member has made itself infeasible before.
class Set : public CbcSOS {
  public:
    using CbcSOS::CbcSOS;
    CbcObject *clone() const override { return new Set(*this); }
    void feasibleRegion() override {
        const OsiSolverInterface &solver = *model_->solver();
        if (std::none_of(members(), members() + numberMembers(),
                         [&](int j) { return solver.getColLower()[j] > solver.getColUpper()[j]; }))
            CbcSOS::feasibleRegion();
    }
};

// Rows without sides mislead some cut generators.
void Mip::dropFreeRows() {
    std::vector<int> rows;
    size_t kept = 0;
    for (size_t i = 0; i < problem.rowLower.size(); i++)
        if (problem.rowLower[i] == -COIN_DBL_MAX && problem.rowUpper[i] == COIN_DBL_MAX) {
            rows.push_back(intSize(i));
        } else {
            problem.rowLower[kept] = problem.rowLower[i];
            problem.rowUpper[kept++] = problem.rowUpper[i];
        }
    if (kept == 0)
        return;
    problem.matrix.deleteRows(intSize(rows.size()), rows.data());
    problem.rowLower.resize(kept);
    problem.rowUpper.resize(kept);
}

// Makes the known integers exact. Whether the point is a solution then.
bool Mip::round(std::vector<double> &x) const {
    for (size_t j = 0; j < x.size(); j++)
        if (problem.integer[j] && x[j] != KVX_UNDEFINED)
            x[j] = std::round(x[j]) + 0.0; // no negative zero
    // At most type consecutive members of a set aren't zero.
    auto holds = [&](const Sos &set) {
        auto isUsed = [&](Entry member) { return std::abs(x[at(member.index)]) > zeroInSet; };
        auto first = std::find_if(set.members.begin(), set.members.end(), isUsed);
        return std::none_of(first + std::min<long>(set.type, set.members.end() - first),
                            set.members.end(), isUsed);
    };
    return std::count(x.begin(), x.end(), KVX_UNDEFINED) == 0 &&
           problem.violation(x) <= run.tolerance() &&
           std::all_of(problem.sets.begin(), problem.sets.end(), holds);
}

// Completes a point, in which some values are KVX_UNDEFINED, to a solution.
bool Mip::complete(std::vector<double> &x, double &objective) {
    x.resize(problem.cost.size(), KVX_UNDEFINED);
    if (!round(x) && (std::count(x.begin(), x.end(), KVX_UNDEFINED) == 0 || !solveRest(x)))
        return false;
    objective = problem.objective(x);
    return true;
}

bool Mip::solveRest(std::vector<double> &x) {
    ClpSimplex lp;
    problem.load(lp);
    SimplexWatch watch(run, false);
    lp.passInEventHandler(&watch);
    for (size_t j = 0; j < x.size(); j++)
        if (x[j] != KVX_UNDEFINED) {
            x[j] = std::clamp(x[j], problem.lower[j], problem.upper[j]);
            lp.setColumnBounds(intSize(j), x[j], x[j]);
        }
    lp.dual();
    if (lp.status() != 0)
        return false;
    x.assign(lp.primalColumnSolution(), lp.primalColumnSolution() + x.size());
    if (round(x))
        return true;
    OsiClpSolverInterface solver(&lp);
    markIntegers(solver);
    CbcModel cbc(solver);
    configure(cbc);
    TreeWatch tree(*this, nullptr);
    cbc.passInEventHandler(&tree);
    cbc.setMaximumNodes(completionNodes);
    cbc.branchAndBound();
    if (!cbc.bestSolution())
        return false;
    x.assign(cbc.bestSolution(), cbc.bestSolution() + x.size());
    return round(x);
}

// Looks at Cbc's best solution. Its integers are so only within a tolerance; when it isn't a
// solution with exact ones, other values of continuous columns may help.
void Mip::candidate(const CbcModel &cbc) {
    if (!cbc.bestSolution())
        return;
    std::vector<double> x(cbc.bestSolution(), cbc.bestSolution() + problem.cost.size());
    if (!round(x)) {
        std::vector<char> isFixed = problem.integer;
        for (const Sos &set : problem.sets)
            for (auto [j, weight] : set.members)
                if (std::abs(x[at(j)]) <= zeroInSet) {
                    x[at(j)] = 0;
                    isFixed[at(j)] = true;
                }
        for (size_t j = 0; j < x.size(); j++)
            x[j] = isFixed[j] ? x[j] : KVX_UNDEFINED;
    }
    double objective;
    if (complete(x, objective))
        run.offer(x, objective);
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
    for (const Constraint &row : run.cuts) {
        OsiRowCut cut;
        cut.setRow(packed(row.row));
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
    if (event == CbcEventHandler::solution || event == CbcEventHandler::heuristicSolution)
        candidate(cbc);
    if (event != CbcEventHandler::node && event != CbcEventHandler::treeStatus)
        return;
    double bound = problem.sense * cbc.getBestPossibleObjValue();
    if (run.better(run.bestObjective, bound))
        bound = run.bestObjective;
    if (!run.stopped() && run.better(run.bound, bound))
        run.bound = bound;
    run.progress(KVX_CB_MIP, {{KVX_CB_MIP_OBJBEST, run.bestObjective},
                              {KVX_CB_MIP_OBJBOUND, run.bound},
                              {KVX_CB_MIP_NODES, run.nodes},
                              {KVX_CB_MIP_SOLCOUNT, 1.0 * run.solutions},
                              {KVX_CB_MIP_OPENNODES, cbc.tree() ? 1.0 * cbc.tree()->size() : 0},
                              {KVX_CB_MIP_ITERATIONS, run.iterations}});
    if (event == CbcEventHandler::node && run.nodes >= run.nodeLimit)
        run.stop(KVX_STATUS_NODE_LIMIT);
}

void Mip::markIntegers(OsiSolverInterface &solver) const {
    for (size_t j = 0; j < problem.cost.size(); j++)
        if (problem.integer[j])
            solver.setInteger(intSize(j));
}

void Mip::configure(CbcModel &cbc) const {
    cbc.passInMessageHandler(&problem.silence);
    cbc.setLogLevel(0);
    cbc.setIntegerTolerance(dblParam(run.settings, "IntegralityTol"));
    cbc.setRandomSeed(intParam(run.settings, "Seed"));
    // Cbc's dynamic pseudo-costs take every branching object for that of an integer, and its strong
    // branching aborts for want of fractional ones.
    cbc.setNumberBeforeTrust(problem.sets.empty() ? 10 : 0);
    if (!problem.sets.empty())
        cbc.setNumberStrong(0);
    for (const Sos &set : problem.sets) {
        std::vector<int> columns;
        for (Entry member : set.members)
            columns.push_back(member.index);
        Set object(&cbc, intSize(columns.size()), columns.data(), nullptr, 0, set.type);
        OsiObject *added = &object; // Cbc copies it.
        cbc.addObjects(1, &added);
    }
    if (intParam(run.settings, "Cuts")) {
        constexpr int whileUseful = -98;
        CglProbing probing;
        CglGomory gomory;
        CglKnapsackCover knapsack;
        CglMixedIntegerRounding2 rounding;
        CglFlowCover flow;
        CglZeroHalf zeroHalf;
        for (CglCutGenerator *generator : std::initializer_list<CglCutGenerator *>{
                 &probing, &gomory, &knapsack, &rounding, &flow, &zeroHalf})
            cbc.addCutGenerator(generator, whileUseful);
    }
    if (intParam(run.settings, "Heuristics")) {
        CbcRounding rounding(cbc);
        CbcHeuristicFPump pump(cbc);
        CbcHeuristicRINS neighbourhood(cbc);
        for (CbcHeuristic *heuristic :
             std::initializer_list<CbcHeuristic *>{&rounding, &pump, &neighbourhood})
            cbc.addHeuristic(heuristic);
    }
}

// The tightened model with the same columns, so that a point of Cbc's is a point of the problem and
// the other way round; null when there is none, for whatever reason. It may lack solutions that
// aren't better than others, so it is of no use when there are conditions that it doesn't know.
std::unique_ptr<OsiSolverInterface> Mip::preprocessed(OsiSolverInterface &solver) const {
    if (!intParam(run.settings, "Presolve") || intParam(run.settings, "LazyConstraints") ||
        !problem.sets.empty())
        return nullptr;
    int columns = solver.getNumCols();
    CglProbing probing;
    CglPreProcess process;
    process.passInMessageHandler(&problem.silence);
    process.passInProhibited(std::string(at(columns), 1).c_str(), columns);
    process.addCutGenerator(&probing);
    const OsiSolverInterface *processed = process.preProcessNonDefault(solver, 0, 10);
    if (!processed || run.stopped() || processed->getNumCols() != columns)
        return nullptr;
    for (int j = 0; j < columns; j++)
        // It makes columns integer that needn't be, and then cuts off solutions by their bounds.
        if (process.originalColumns()[j] != j || processed->isInteger(j) != solver.isInteger(j))
            return nullptr;
    return std::unique_ptr<OsiSolverInterface>(processed->clone());
}

int Mip::search(OsiSolverInterface &solver) {
    CbcModel cbc(solver);
    configure(cbc);
    Incumbent incumbent(cbc, run);
    cbc.addHeuristic(&incumbent);
    NodeWatch nodes(*this);
    if (run.model.callback)
        cbc.addCutGenerator(&nodes, 1);
    TreeWatch tree(*this, &cbc);
    cbc.passInEventHandler(&tree);
    cbc.branchAndBound();
    candidate(cbc);
    run.earlierNodes = run.nodes;
    run.earlierIterations = run.iterations;
    if (run.stopped())
        return run.stopped();
    if (run.best.empty() && cbc.status() == 0 && !cbc.bestSolution())
        return KVX_STATUS_INFEASIBLE;
    if (run.best.empty() || cbc.status() != 0)
        return KVX_STATUS_NUMERIC;
    // What Cbc cut off while it was looking for something better is worse than the best.
    double bound = problem.sense * cbc.getBestPossibleObjValue();
    run.bound = run.better(bound, run.bestObjective) ? bound : run.bestObjective;
    bool isProven = relativeGap(run.bestObjective, run.bound) <= std::max(run.gap, 1e-6) ||
                    std::abs(run.bestObjective - run.bound) <= std::max(run.absoluteGap, 1e-6);
    return isProven ? KVX_STATUS_OPTIMAL : KVX_STATUS_NUMERIC;
}

int Mip::solveOnce() {
    ClpSimplex lp;
    Outcome relaxation = solveLp(run, problem, lp);
    if (relaxation.status == KVX_STATUS_UNBOUNDED) {
        if (!problem.sets.empty()) // A ray of the relaxation may break a set and proves nothing.
            fail(KVX_ERROR_NOT_SUPPORTED, "the model's relaxation is unbounded: with sets, or what "
                                          "becomes sets, give the variables bounds");
        auto inner = makeInnerModel(run.settings, run.model);
        for (const Constraint &row : run.lazies)
            addConstraint(*inner, row);
        int status = findPoint(run, *inner, completionNodes);
        return inner->solution.hasX              ? KVX_STATUS_UNBOUNDED
               : run.stopped()                   ? run.stopped()
               : status == KVX_STATUS_INFEASIBLE ? status
                                                 : KVX_STATUS_INFEASIBLE_OR_UNBOUNDED;
    }
    if (relaxation.status != KVX_STATUS_OPTIMAL)
        return relaxation.status;
    if (run.better(run.bound, relaxation.objective))
        run.bound = relaxation.objective;
    OsiClpSolverInterface solver(&lp);
    markIntegers(solver);
    SimplexWatch watch(run, false);
    lp.passInEventHandler(&watch);
    // Now and then preprocessing drops a row that is needed to know a column's value.
    std::unique_ptr<OsiSolverInterface> processed = preprocessed(solver);
    int status = processed ? search(*processed) : KVX_STATUS_NUMERIC;
    return status == KVX_STATUS_NUMERIC ? search(solver) : status;
}

Outcome Mip::solve() {
    std::vector<double> start;
    bool hasStart = false;
    for (const Variable &var : run.model.vars) {
        start.push_back(var.start);
        hasStart |= var.start != KVX_UNDEFINED;
    }
    double objective;
    if (hasStart && run.best.empty() && complete(start, objective))
        run.offer(start, objective);
    Outcome outcome;
    size_t lazyRows = 0;
    do {
        if (run.stopped() == Run::again)
            run.goOn();
        for (; lazyRows < run.lazies.size(); lazyRows++)
            problem.addRow(run.lazies[lazyRows]);
        problem.checkNumbers(run.model);
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
