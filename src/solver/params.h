// Parameters: the table of korvex.h and their values in an environment.
#ifndef KORVEX_SOLVER_PARAMS_H
#define KORVEX_SOLVER_PARAMS_H

#include "model.h"

#include <iosfwd>

namespace korvex {

std::vector<ParameterValue> defaultParameters();

// Values of a parameter that the caller knows to exist with that type.
int intParam(const KVXenv &env, const char *name);
double dblParam(const KVXenv &env, const char *name);
const std::string &strParam(const KVXenv &env, const char *name);

// Sets a parameter; fails without a change when that isn't allowed. An int will do for a double.
void setParam(KVXenv &env, const char *name, const ParameterValue &value);

// Parameter files; filename is for the error text only. All or nothing.
void writeParams(const KVXenv &env, std::ostream &file);
void readParams(KVXenv &env, std::istream &file, const std::string &filename);

} // namespace korvex

#endif
