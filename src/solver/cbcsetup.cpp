// How Cbc is set up: preprocessing, special ordered sets, cut generators and heuristics, about as
// in its own program. Preprocessing is told to keep all columns, so that a point of Cbc's is a
// point of the problem and the other way round.
#include "cbc.h"

#include "params.h"

#include <CbcHeuristicDiveCoefficient.hpp>
#include <CbcHeuristicFPump.hpp>
#include <CbcHeuristicGreedy.hpp>
#include <CbcHeuristicLocal.hpp>
#include <CbcHeuristicRINS.hpp>
#include <CbcSOS.hpp>
#include <CglClique.hpp>
#include <CglFlowCover.hpp>
#include <CglGomory.hpp>
#include <CglKnapsackCover.hpp>
#include <CglMixedIntegerRounding2.hpp>
#include <CglPreProcess.hpp>
#include <CglProbing.hpp>
#include <CglTwomir.hpp>
#include <CglZeroHalf.hpp>

namespace korvex {
namespace {

CglProbing makeProbing(int maxProbe, int maxElements) {
    CglProbing probing;
    probing.setUsingObjective(1);
    probing.setMaxPass(1);
    probing.setMaxPassRoot(1);
    probing.setMaxProbeRoot(maxProbe);
    probing.setMaxElementsRoot(maxElements);
    probing.setMaxLookRoot(50);
    probing.setRowCuts(3);
    return probing;
}

void addSets(CbcModel &cbc, const Problem &problem) {
    int number = 0;
    for (const Sos &set : problem.sets) {
        std::vector<int> columns;
        std::vector<double> weights;
        for (const Entry &member : set.members) {
            columns.push_back(member.index);
            weights.push_back(static_cast<double>(weights.size()));
        }
        CbcSOS object(&cbc, static_cast<int>(columns.size()), columns.data(), weights.data(),
                      number++, set.type);
        OsiObject *added = &object; // Cbc copies it.
        cbc.addObjects(1, &added);
    }
}

void addCuts(CbcModel &cbc) {
    // How often to call a generator: while it helps, or at the root only.
    constexpr int whileUseful = -98, rootOnly = -99;
    CglProbing probing = makeProbing(50, 300);
    probing.setMaxProbe(10);
    probing.setMaxLook(10);
    probing.setMaxElements(200);
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

} // namespace

void configure(CbcModel &cbc, const Run &run, const Problem &problem) {
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
    addSets(cbc, problem);
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

std::unique_ptr<OsiSolverInterface> preprocess(Run &run, const Problem &problem,
                                               OsiSolverInterface &solver) {
    if (!intParam(run.settings, "Presolve") || intParam(run.settings, "LazyConstraints") ||
        !problem.sets.empty())
        return nullptr;
    const int columns = solver.getNumCols();
    CglProbing probing = makeProbing(columns > 3000 ? 123 : columns, 200);
    probing.setMaxElements(100);
    CglPreProcess process;
    process.passInMessageHandler(&problem.silence);
    process.passInProhibited(std::string(problem.cost.size(), 1).c_str(), columns);
    process.addCutGenerator(&probing);
    const OsiSolverInterface *processed = process.preProcessNonDefault(solver, 0, 10);
    if (!processed || run.stopped() || processed->getNumCols() != columns)
        return nullptr;
    const int *original = process.originalColumns();
    for (int j = 0; j < columns; j++)
        // It makes columns integer that needn't be, and then cuts off solutions by their bounds.
        if (original[j] != j || processed->isInteger(j) != solver.isInteger(j))
            return nullptr;
    run.rowsRemoved = solver.getNumRows() - processed->getNumRows();
    run.enter(KVX_CB_PRESOLVE);
    return std::unique_ptr<OsiSolverInterface>(processed->clone());
}

} // namespace korvex
