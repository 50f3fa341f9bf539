// Models that the library makes and solves for itself, without a word to the log.
#ifndef KORVEX_SOLVER_INNER_H
#define KORVEX_SOLVER_INNER_H

#include "run.h"

namespace korvex {

// A model with the parameters of an environment, but a log of its own that goes nowhere, and no
// result file.
std::unique_ptr<KVXmodel> makeInnerModel(const KVXenv &env, const ModelData &data);

// Solves it inside a run, which ends it when it has to end itself, or when the seconds are over.
// Gives its status of the attribute "Status"; fails as KVXoptimize does.
int solveInside(Run &run, KVXmodel &model, double seconds = KVX_INFINITY);

// Makes the matrix's columns from its rows.
void makeColumns(ModelData &model);

} // namespace korvex

#endif
