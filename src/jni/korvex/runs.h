/*
 * Runs on a model, and what a callback may do meanwhile.
 * A part of korvex.h, which says what holds throughout.
 */
#ifndef KORVEX_RUNS_H
#define KORVEX_RUNS_H

/*
 * Runs
 */

/** Installs the model's callback. @param flags 0 (reserved) */
int KVXsetcallbackfuncadv(KVXmodel *model, KVXcallback callback, void *userdata, int flags);
/** Installs the model's callback, or removes it with two nulls. */
int KVXsetcallbackfunc(KVXmodel *model, KVXcallback callback, void *userdata);
/** Solves the model. A limit, an interruption or infeasibility is not a failure: the status is 0
 * and the attribute "Status" tells. KVX_ERROR_NOT_SUPPORTED when the library can't solve the model.
 */
int KVXoptimize(KVXmodel *model);
/** Starts to solve the model on a thread of the library's own. Until KVXsync calls that would
 * change the model or its parameters are refused with KVX_ERROR_IN_PROGRESS. Its data can be read,
 * and "Status" and "Runtime"; other attributes of the solution give KVX_ERROR_DATA_NOT_AVAILABLE.
 * The same holds inside the callbacks of any run. */
int KVXoptimizeasync(KVXmodel *model);
/** Waits for the end of a background run and returns its status; 0 when there was none.
 * KVX_ERROR_IN_PROGRESS inside a callback of that run. */
int KVXsync(KVXmodel *model);
/** Tries several parameter settings on the model, within the parameter "TuneTimeLimit". */
int KVXtunemodel(KVXmodel *model);
/** Loads a setting that KVXtunemodel found into the model's environment. @param index from 0, the
 * best, to "TuneResultCount" - 1; -1 for the latest found */
int KVXgettuneresult(KVXmodel *model, int index);
/** Finds an irreducible infeasible subsystem; see the attributes "IISConstr", "IISLB" and "IISUB".
 * Refused for feasible models. */
int KVXcomputeIIS(KVXmodel *model);
/** The model's last error text, "" when there was none. Belongs to the library. */
const char *KVXgetmerrormsg(KVXmodel *model);

/*
 * Inside a callback
 */

/** The type of a what code. @param type KVX_TYPE_ @param vector 0 for a scalar, 1 for a vector */
int KVXgetcbwhatinfo(void *cbdata, int what, int *type, int *vector);
/** Reads a datum. @param result an int, a double, NumVars doubles or a const char *, by the type of
 * what; a text stays valid until the callback returns */
int KVXcbget(void *cbdata, int where, int what, void *result);
/** Adds a cut at a node (where KVX_CB_MIPNODE); must not cut off integer solutions. */
int KVXcbcut(void *cbdata, int length, const int *ind, const double *val, char sense, double rhs);
/** Adds a lazy constraint (where KVX_CB_MIPSOL or KVX_CB_MIPNODE; parameter "LazyConstraints"). */
int KVXcblazy(void *cbdata, int length, const int *ind, const double *val, char sense, double rhs);
/** Proposes a solution (where KVX_CB_MIP, _MIPSOL or _MIPNODE). @param solution NumVars values,
 * KVX_UNDEFINED for unknown @param objective receives its objective value, or KVX_INFINITY when it
 * is not feasible or not yet known */
int KVXcbsolution(void *cbdata, const double *solution, double *objective);
/** Change a parameter of the running solve: "TimeLimit", "NodeLimit", "MIPGap", "MIPGapAbs",
 * "LogInterval", "LogToConsole"; others are refused. */
int KVXcbsetintparam(void *cbdata, const char *name, int value);
int KVXcbsetdblparam(void *cbdata, const char *name, double value);
int KVXcbsetstrparam(void *cbdata, const char *name, const char *value);
/** Ends the present phase (the current objective of several, a tuning trial) and goes on. */
int KVXcbproceed(void *cbdata);
/** Ends the optimisation of one of several objectives and goes on with the next. */
int KVXcbstoponemultiobj(KVXmodel *model, void *cbdata, int objnumber);
/** Asks a run to end soon, from any thread; before a run starts, the next run ends at once. */
int KVXterminate(KVXmodel *model);

#endif
