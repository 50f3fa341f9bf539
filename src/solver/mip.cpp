// Mixed-integer models: starts, the search by Cbc, and what the callback has a say in.
#include "assertion.h"
#include "cbcprogram.h"
#include "guard.h"
#include "optimize.h"
#include "params.h"

#include <CbcEventHandler.hpp>
#include <CbcHeuristic.hpp>
#include <CbcSOS.hpp>
#include <CbcTree.hpp>
#include <CglCutGenerator.hpp>
#include <OsiClpSolverInterface.hpp>

#include <algorithm>
#include <cmath>

namespace korvex {
namespace {

constexpr double zeroInSet = 1e-6;   // Members of a set up to this size count as zero.
constexpr int completionNodes = 500; // spent on a partial or any solution
constexpr size_t checkable = 100;    // columns of a model that a plain search may soon be done with

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
    Outcome solveWithin();
    void markIntegers(OsiSolverInterface &solver) const;
    void configure(CbcModel &cbc);
    void addSets(CbcModel &cbc) const;
    CbcProgram program(bool preprocess) const;
    int search(OsiSolverInterface &solver, bool preprocess, bool isCheck = false);
    int searchReduced(OsiSolverInterface &solver, double relaxed);
    int verdict(const CbcModel &cbc);
    bool round(std::vector<double> &x) const;
    bool complete(std::vector<double> &x, double &objective);
    bool solveRest(std::vector<double> &x);
    void candidate(const CbcModel &cbc);
    void announce(const CbcModel &cbc);

    Run &run;
    Problem problem;
    std::vector<double> remembered; // integers of the best solution of the reduced model
    bool isReduced = false; // The model that is searched has other columns than the problem.
};

// Lets the run follow the tree and ends the search when the run has to end. Heuristics search
// smaller models with copies of it, whose solutions are not those of the model itself.
struct TreeWatch : CbcEventHandler {
    TreeWatch(Mip &mip, const CbcModel *whole) : mip(mip), whole(whole) {}
    using CbcEventHandler::event;
    CbcAction event(CbcEvent event) override {
        CalledByCoin here;
        if (model_ == whole)
            mip.follow(*model_, event);
        return mip.run.poll() && !mip.run.isWindingUp ? stop : noAction;
    }
    CbcEventHandler *clone() const override { return new TreeWatch(*this); }

    Mip &mip;
    const CbcModel *whole;
};

// Shows each node's relaxation to the callback, and adds its cuts.
struct NodeWatch : CglCutGenerator {
    explicit NodeWatch(Mip &mip) : mip(mip) {}
    void generateCuts(const OsiSolverInterface &solver, OsiCuts &cuts, const CglTreeInfo) override {
        CalledByCoin here;
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
    auto owner = std::make_unique<ClpSimplex>();
    ClpSimplex &lp = *owner;
    problem.load(lp);
    SimplexWatch watch(run, false);
    lp.passInEventHandler(&watch);
    for (size_t j = 0; j < x.size(); j++)
        if (x[j] != KVX_UNDEFINED) {
            x[j] = std::clamp(x[j], problem.lower[j], problem.upper[j]);
            lp.setColumnBounds(intSize(j), x[j], x[j]);
        }
    protect([&] { lp.dual(); }, owner);
    if (lp.status() != 0)
        return false;
    x.assign(lp.primalColumnSolution(), lp.primalColumnSolution() + x.size());
    if (round(x))
        return true;
    OsiClpSolverInterface solver(&lp);
    markIntegers(solver);
    auto cbc = std::make_unique<CbcModel>(solver);
    cbc->passInMessageHandler(&problem.silence);
    addSets(*cbc);
    bool isFound = false;
    CbcProgram completion = program(false);
    completion.begin = [this](CbcModel &searched) {
        configure(searched);
        TreeWatch tree(*this, nullptr);
        searched.passInEventHandler(&tree);
        searched.setMaximumNodes(completionNodes);
    };
    completion.end = [&](CbcModel &searched) {
        if (const double *found = searched.bestSolution()) {
            x.assign(found, found + x.size());
            isFound = round(x);
        }
    };
    completion.conduct(cbc);
    return isFound;
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

// Takes notice of a solution of the reduced model, which is known in full after the search.
void Mip::announce(const CbcModel &cbc) {
    const double value = run.sense * cbc.getObjValue();
    if (!cbc.bestSolution() || !run.better(value, run.bestObjective))
        return;
    run.bestObjective = value;
    remembered.assign(problem.cost.size(), KVX_UNDEFINED);
    for (int k = 0; cbc.originalColumns() && k < cbc.getNumCols(); k++)
        if (const size_t j = at(cbc.originalColumns()[k]);
            j < remembered.size() && problem.integer[j])
            remembered[j] = cbc.bestSolution()[k];
    if (++run.solutions >= run.solutionLimit)
        run.stop(KVX_STATUS_SOLUTION_LIMIT);
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
        cut.setLb(bound(row.lower));
        cut.setUb(bound(row.upper));
        cuts.insert(cut);
    }
}

void Mip::follow(CbcModel &cbc, CbcEventHandler::CbcEvent event) {
    cbc.setAllowableGap(run.absoluteGap);
    cbc.setAllowableFractionGap(run.gap);
    run.nodes = run.earlierNodes + cbc.getNodeCount();
    run.iterations = run.earlierIterations + cbc.getIterationCount();
    if (event == CbcEventHandler::solution || event == CbcEventHandler::heuristicSolution)
        isReduced ? announce(cbc) : candidate(cbc);
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

// What is the same for every search.
void Mip::configure(CbcModel &cbc) {
    cbc.setIntegerTolerance(dblParam(run.settings, "IntegralityTol"));
    cbc.setAllowableGap(run.absoluteGap);
    cbc.setAllowableFractionGap(run.gap);
    // What Clp calls crunching ends the process for some tiny models, by an assertion.
    constexpr unsigned crunching = 1;
    if (auto *clp = dynamic_cast<OsiClpSolverInterface *>(cbc.solver()))
        clp->setSpecialOptions(clp->specialOptions() & ~crunching);
    addSets(cbc);
}

// Cbc's own program takes a model without integers for a linear one unless it has sets before; what
// it makes of them for the search is replaced then.
void Mip::addSets(CbcModel &cbc) const {
    if (problem.sets.empty())
        return;
    cbc.deleteObjects();
    // Cbc's dynamic pseudo-costs take every branching object for that of an integer, and its strong
    // branching aborts for want of fractional ones.
    cbc.setNumberBeforeTrust(0);
    cbc.setNumberStrong(0);
    cbc.findIntegers(true);
    for (const Sos &set : problem.sets) {
        std::vector<int> columns;
        for (Entry member : set.members)
            columns.push_back(member.index);
        Set object(&cbc, intSize(columns.size()), columns.data(), nullptr, 0, set.type);
        OsiObject *added = &object; // Cbc copies it.
        cbc.addObjects(1, &added);
    }
}

CbcProgram Mip::program(bool preprocess) const {
    CbcProgram result;
    result.isToEnd = [this] { return run.poll(); };
    result.holdUp = [this](bool isHeldUp) { run.isQuiet = isHeldUp; };
    auto option = [&](const char *name, bool isOn) {
        if (!isOn)
            result.options.insert(result.options.end(), {name, "off"});
    };
    option("-preprocess", preprocess);
    option("-cuts", intParam(run.settings, "Cuts"));
    option("-heuristics", intParam(run.settings, "Heuristics"));
    return result;
}

// With preprocessing Cbc searches a model of other columns, whose solutions are known in the end
// only: neither callbacks nor sets can do with that.
int Mip::search(OsiSolverInterface &solver, bool preprocess, bool isCheck) {
    auto cbc = std::make_unique<CbcModel>(solver);
    cbc->passInMessageHandler(&problem.silence);
    addSets(*cbc);
    isReduced = preprocess;
    remembered.clear();
    if (preprocess && !run.best.empty())
        cbc->setBestSolution(run.best.data(), intSize(run.best.size()),
                             run.sense * run.bestObjective);
    const int solutions = run.solutions;
    const double bestObjective = run.bestObjective;
    int status = KVX_STATUS_NUMERIC;
    CbcProgram whole = program(preprocess);
    if (isCheck)
        for (const char *option : {"-cuts", "off", "-heuristics", "off", "-seconds", "0.05"})
            whole.options.push_back(option);
    whole.begin = [&](CbcModel &searched) {
        configure(searched);
        searched.setRandomSeed(intParam(run.settings, "Seed"));
        if (!preprocess) {
            Incumbent incumbent(searched, run);
            searched.addHeuristic(&incumbent);
            NodeWatch nodes(*this);
            if (run.model.callback)
                searched.addCutGenerator(&nodes, 1);
        }
        TreeWatch tree(*this, &searched);
        searched.passInEventHandler(&tree);
    };
    whole.end = [&](CbcModel &searched) {
        if (preprocess) {
            run.bestObjective = bestObjective;
            run.solutions = solutions;
        }
        if (searched.getMinimizationObjValue() < 1e50) // The solution is in the original columns.
            candidate(searched);
        // Cbc loses what its heuristics have found when it is stopped soon after.
        if (double objective;
            run.best.empty() && !remembered.empty() && complete(remembered, objective))
            run.offer(remembered, objective);
        status = verdict(searched);
    };
    whole.afterSearch = [this] { run.isWindingUp = true; };
    // Preprocessing says so when it ends early, too.
    if (whole.conduct(cbc) == CbcProgram::infeasible && !preprocess)
        status = run.best.empty() ? KVX_STATUS_INFEASIBLE : KVX_STATUS_NUMERIC;
    isReduced = run.isWindingUp = false;
    if (run.stopped() == KVX_STATUS_SOLUTION_LIMIT && run.best.empty())
        run.goOn(); // without the solutions that preprocessing has lost
    run.earlierNodes = run.nodes;
    run.earlierIterations = run.iterations;
    return run.stopped() ? run.stopped() : status;
}

// What Cbc's result means for the problem.
int Mip::verdict(const CbcModel &cbc) {
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

// Cbc's preprocessing loses the optima of some small models, and so may find none at all. Unless
// the relaxation proves what it finds, a plain search has a moment to refute it.
int Mip::searchReduced(OsiSolverInterface &solver, double relaxed) {
    const int status = search(solver, true);
    const double found = run.bestObjective;
    if (status == KVX_STATUS_NUMERIC)
        return search(solver, false);
    if (run.stopped() || problem.cost.size() > checkable || relativeGap(found, relaxed) <= run.gap)
        return status;
    const int second = search(solver, false, true);
    if (!run.better(run.bestObjective, found) ||
        relativeGap(found, run.bestObjective) <= std::max(run.gap, 1e-6))
        return status;
    return run.stopped() || second == KVX_STATUS_OPTIMAL ? second : search(solver, false);
}

// A ray of the relaxation may break a set and proves nothing. When no solution is better than a
// value that is far away, this becomes a row, which limits the relaxation. The problem is unbounded
// when there is one and a ray has zeros where it has them in sets.
Outcome Mip::solveWithin() {
    constexpr double far = 1e6, nodes = 10000;
    Constraint row;
    double largest = 0;
    for (size_t j = 0; j < problem.cost.size(); j++)
        if (problem.cost[j] != 0) {
            row.row.push_back({intSize(j), problem.cost[j]});
            largest = std::max(largest, std::abs(problem.cost[j]));
        }
    row.upper = -far * largest;
    auto inner = makeInnerModel(run.settings, reformulated(run.model));
    addConstraint(*inner, row);
    const int status = findPoint(run, *inner, nodes);
    std::vector<double> point = inner->solution.x;
    if (status == KVX_STATUS_INFEASIBLE) {
        row.lower = std::exchange(row.upper, KVX_INFINITY);
        problem.addRow(row);
        return solveLp(run, problem);
    }
    if (inner->solution.hasX && round(point)) {
        Problem rest = problem;
        for (const Sos &set : problem.sets)
            for (auto [j, weight] : set.members)
                if (std::abs(point[at(j)]) <= zeroInSet)
                    rest.lower[at(j)] = rest.upper[at(j)] = 0;
        if (Outcome outcome = solveLp(run, rest); outcome.status == KVX_STATUS_UNBOUNDED)
            return outcome;
    }
    Outcome outcome;
    outcome.status = run.stopped();
    if (!run.stopped())
        fail(KVX_ERROR_NOT_SUPPORTED, "the model's relaxation is unbounded: with sets, or what "
                                      "becomes sets, give the variables bounds");
    return outcome;
}

int Mip::solveOnce() {
    Outcome relaxation = solveLp(run, problem);
    if (relaxation.status == KVX_STATUS_UNBOUNDED && !problem.sets.empty()) {
        relaxation = solveWithin();
    } else if (relaxation.status == KVX_STATUS_UNBOUNDED) {
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
    const double best = relaxation.objective, noise = 1e-9 * (1 + std::abs(best));
    if (round(relaxation.x) && std::abs(problem.objective(relaxation.x) - best) <= noise) {
        run.offer(relaxation.x, problem.objective(relaxation.x));
        if (run.best == relaxation.x)
            return KVX_STATUS_OPTIMAL;
        if (run.stopped())
            return run.stopped();
    }
    ClpSimplex fresh;
    problem.load(fresh);
    OsiClpSolverInterface solver(&fresh);
    markIntegers(solver);
    SimplexWatch watch(run, false);
    fresh.passInEventHandler(&watch);
    const bool preprocess = intParam(run.settings, "Presolve") && problem.sets.empty() &&
                            !intParam(run.settings, "LazyConstraints") && !run.hasWatcher();
    return preprocess ? searchReduced(solver, relaxation.objective) : search(solver, false);
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
