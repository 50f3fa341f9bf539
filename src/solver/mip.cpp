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

constexpr int completionNodes = 500; // spent on a partial or any solution
constexpr size_t checkable = 100;    // columns of a model that a plain search may soon be done with

struct Mip;

// Lets the run follow the tree and ends the search when the run has to end. Heuristics search
// smaller models with copies of it, whose solutions are not those of the model itself.
struct TreeWatch : CbcEventHandler {
    TreeWatch(Mip &mip, const CbcModel *whole) : mip(mip), whole(whole) {}
    using CbcEventHandler::event;
    CbcAction event(CbcEvent event) override;
    CbcEventHandler *clone() const override { return new TreeWatch(*this); }

    Mip &mip;
    const CbcModel *whole;
};

// Shows each node's relaxation to the callback, and adds its cuts.
struct NodeWatch : CglCutGenerator {
    explicit NodeWatch(Mip &mip) : mip(mip) {}
    void generateCuts(const OsiSolverInterface &solver, OsiCuts &cuts, const CglTreeInfo) override;
    CglCutGenerator *clone() const override { return new NodeWatch(*this); }

    Mip &mip;
};

// Hands the run's best solution to Cbc when Cbc doesn't have it: a start or a proposal.
struct Incumbent : CbcHeuristic {
    Incumbent(CbcModel &cbc, const Run &run) : CbcHeuristic(cbc), run(run) {}
    int solution(double &objective, double *x) override {
        const bool isWhole = at(model_->getNumCols()) == run.best.size(); // not a part of it
        if (!isWhole || run.best.empty() || run.sense * run.bestObjective >= objective)
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

struct Mip {
    Mip(Run &run, const Problem &problem) : run(run), problem(problem) {
        dropFreeRows();
        run.complete = [this](auto &x, double &objective) { return complete(x, objective); };
    }
    ~Mip() { run.complete = nullptr; }

    Outcome solve() {
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

    int solveOnce() {
        Outcome relaxation = solveLp(run, problem);
        if (relaxation.status == KVX_STATUS_UNBOUNDED)
            relaxation = solveUnbounded(run, problem);
        if (relaxation.status != KVX_STATUS_OPTIMAL)
            return relaxation.status;
        if (run.better(run.bound, relaxation.objective))
            run.bound = relaxation.objective;
        const double best = relaxation.objective, noise = 1e-9 * (1 + std::abs(best));
        if (problem.makeSolution(relaxation.x, run.tolerance()) &&
            std::abs(problem.objective(relaxation.x) - best) <= noise) {
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

    // Cbc's preprocessing loses the optima of some small models, and so may find none at all.
    // Unless the relaxation proves what it finds, a plain search has a moment to refute it.
    int searchReduced(OsiSolverInterface &solver, double relaxed) {
        const int status = search(solver, true);
        const double found = run.bestObjective;
        if (status == KVX_STATUS_NUMERIC)
            return search(solver, false);
        if (run.stopped() || problem.cost.size() > checkable ||
            relativeGap(found, relaxed) <= run.gap)
            return status;
        const int second = search(solver, false, true);
        if (!run.better(run.bestObjective, found) ||
            relativeGap(found, run.bestObjective) <= std::max(run.gap, 1e-6))
            return status;
        return run.stopped() || second == KVX_STATUS_OPTIMAL ? second : search(solver, false);
    }

    // With preprocessing Cbc searches a model of other columns, whose solutions are known in the
    // end only: neither callbacks nor sets can do with that.
    int search(OsiSolverInterface &solver, bool preprocess, bool isCheck = false) {
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
            if (searched.getMinimizationObjValue() <
                1e50) // The solution is in the original columns.
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

    CbcProgram program(bool preprocess) const {
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
        // Of some small models Cbc leaves nodes to a faster search, which knows no limit of nodes.
        if (run.nodeLimit < KVX_INFINITY)
            result.options.insert(result.options.end(), {"-depthMiniBab", "-999"});
        return result;
    }

    // What is the same for every search.
    void configure(CbcModel &cbc) {
        cbc.setIntegerTolerance(dblParam(run.settings, "IntegralityTol"));
        cbc.setAllowableGap(run.absoluteGap);
        cbc.setAllowableFractionGap(run.gap);
        // What Clp calls crunching ends the process for some tiny models, by an assertion.
        constexpr unsigned crunching = 1;
        if (auto *clp = dynamic_cast<OsiClpSolverInterface *>(cbc.solver()))
            clp->setSpecialOptions(clp->specialOptions() & ~crunching);
        addSets(cbc);
    }

    // Cbc's own program takes a model without integers for a linear one unless it has sets before;
    // what it makes of them for the search is replaced then.
    void addSets(CbcModel &cbc) const {
        if (problem.sets.empty())
            return;
        cbc.deleteObjects();
        // Cbc's dynamic pseudo-costs take every branching object for that of an integer, and its
        // strong branching aborts for want of fractional ones.
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

    void markIntegers(OsiSolverInterface &solver) const {
        for (size_t j = 0; j < problem.cost.size(); j++)
            if (problem.integer[j])
                solver.setInteger(intSize(j));
    }

    // What Cbc's result means for the problem.
    int verdict(const CbcModel &cbc) {
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

    void follow(CbcModel &cbc, CbcEventHandler::CbcEvent event) {
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

    // Takes notice of a solution of the reduced model, which is known in full after the search.
    void announce(const CbcModel &cbc) {
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

    // Looks at Cbc's best solution. Its integers are so only within a tolerance; when it isn't a
    // solution with exact ones, other values of continuous columns may help.
    void candidate(const CbcModel &cbc) {
        if (!cbc.bestSolution())
            return;
        std::vector<double> x(cbc.bestSolution(), cbc.bestSolution() + problem.cost.size());
        if (!problem.makeSolution(x, run.tolerance())) {
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

    // Completes a point, in which some values are KVX_UNDEFINED, to a solution.
    bool complete(std::vector<double> &x, double &objective) {
        x.resize(problem.cost.size(), KVX_UNDEFINED);
        if (!problem.makeSolution(x, run.tolerance()) &&
            (std::count(x.begin(), x.end(), KVX_UNDEFINED) == 0 || !solveRest(x)))
            return false;
        objective = problem.objective(x);
        return true;
    }

    bool solveRest(std::vector<double> &x) {
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
        if (problem.makeSolution(x, run.tolerance()))
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
                isFound = problem.makeSolution(x, run.tolerance());
            }
        };
        completion.conduct(cbc);
        return isFound;
    }

    void node(const double *relaxation, OsiCuts &cuts) {
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

    // Rows without sides mislead some cut generators.
    void dropFreeRows() {
        std::vector<int> rows, numbers(problem.rowLower.size());
        for (size_t i = 0; i < numbers.size(); i++)
            if (problem.rowLower[i] == -COIN_DBL_MAX && problem.rowUpper[i] == COIN_DBL_MAX) {
                rows.push_back(intSize(i));
                numbers[i] = -1;
            }
        if (rows.size() == numbers.size())
            return;
        problem.matrix.deleteRows(intSize(rows.size()), rows.data());
        keep(problem.rowLower, numbers);
        keep(problem.rowUpper, numbers);
    }

    Run &run;
    Problem problem;
    std::vector<double> remembered; // integers of the best solution of the reduced model
    bool isReduced = false; // The model that is searched has other columns than the problem.
};

CbcEventHandler::CbcAction TreeWatch::event(CbcEvent event) {
    CalledByCoin here;
    if (model_ == whole)
        mip.follow(*model_, event);
    return mip.run.poll() && !mip.run.isWindingUp ? stop : noAction;
}

void NodeWatch::generateCuts(const OsiSolverInterface &solver, OsiCuts &cuts, const CglTreeInfo) {
    CalledByCoin here;
    if (solver.getNumCols() == intSize(mip.problem.cost.size()))
        mip.node(solver.getColSolution(), cuts);
}

} // namespace

Outcome solveMip(Run &run, const Problem &problem) {
    return Mip(run, problem).solve();
}

} // namespace korvex
