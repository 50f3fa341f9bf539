// Reformulation of what Cbc doesn't know into linear rows, integer variables and SOS.
#ifndef KORVEX_SOLVER_REFORMULATE_H
#define KORVEX_SOLVER_REFORMULATE_H

#include "model.h"

namespace korvex {

// An equivalent model without general constraints, piecewise-linear objective terms and
// semi-continuous variables, in whose SOS no member is negative. The first variables, constraints
// and SOS are those of the model; null when nothing has to be done. Fails for what can't be
// reformulated, with a text that names it.
std::unique_ptr<KVXmodel> reformulated(const KVXmodel &model);

} // namespace korvex

#endif
