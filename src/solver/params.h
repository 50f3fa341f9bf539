// Parameters: the table of korvex.h and their values in an environment.
#ifndef KORVEX_SOLVER_PARAMS_H
#define KORVEX_SOLVER_PARAMS_H

#include "model.h"

namespace korvex {

std::vector<ParameterValue> defaultParameters();

// Values of a parameter that the caller knows to exist with that type.
int intParam(const KVXenv &env, const char *name);
double dblParam(const KVXenv &env, const char *name);
const std::string &strParam(const KVXenv &env, const char *name);

// Sets a parameter; fails without a change when that isn't allowed. An int will do for a double.
void setParam(KVXenv &env, const char *name, const ParameterValue &value);

// Parameter files: what one says, and reading one, all or nothing.
std::string writeParams(const KVXenv &env);
void readParams(KVXenv &env, const char *filename);

} // namespace korvex

#endif
