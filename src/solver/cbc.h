// Cbc as it is set up for a problem.
#ifndef KORVEX_SOLVER_CBC_H
#define KORVEX_SOLVER_CBC_H

#include "optimize.h"

#include <CbcModel.hpp>

namespace korvex {

// Gives Cbc what a run's parameters say.
void configure(CbcModel &cbc, const Run &run, const Problem &problem);

void markIntegers(OsiSolverInterface &solver, const Problem &problem);

// The tightened model with the same columns; null when there is none, for whatever reason: then the
// search itself finds out. It may lack solutions that aren't better than others, so it is of no use
// when there are conditions that it doesn't know.
std::unique_ptr<OsiSolverInterface> preprocess(Run &run, const Problem &problem,
                                               OsiSolverInterface &solver);

} // namespace korvex

#endif
