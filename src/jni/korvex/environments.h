/*
 * Environments, their parameters and their log.
 * A part of korvex.h, which says what holds throughout.
 */
#ifndef KORVEX_ENVIRONMENTS_H
#define KORVEX_ENVIRONMENTS_H

/*
 * Environments
 */

/**
 * Makes an empty environment: parameters can be set on it, models are made after KVXstartenv.
 * @param envP receives the environment; also after a failure, when it holds the error text
 * @param interfacenum KVX_INTERFACE_JAVA
 * @param major,minor,technical version of the caller; another major version is refused with
 *        KVX_ERROR_VERSION
 * @param r1,r2,r3,r4,r5,r6,r7 reserved, null
 */
int KVXemptyenvadvinternal(KVXenv **envP, int interfacenum, int major, int minor, int technical,
                           void *r1, void *r2, void *r3, void *r4, void *r5, void *r6, void *r7);

/**
 * Makes and starts an environment in one call.
 * @param envP receives the environment; also after a failure, when it holds the error text
 * @param logfile name of the log file (parameter "LogFile"), or null for none
 * @param interfacenum KVX_INTERFACE_JAVA
 * @param major,minor,technical version of the caller, as for KVXemptyenvadvinternal
 * @param r1,r2,r3,r4 reserved, null
 * @param key KVX_LOADENV_KEY; any other value is refused with KVX_ERROR_INVALID_ARGUMENT
 * @param extra 0; non-zero turns the log to the console off (parameter "LogToConsole")
 * @param r5,r6,r7,r8,r9,r10 reserved, null
 */
int KVXloadenvadv(KVXenv **envP, const char *logfile, int interfacenum, int major, int minor,
                  int technical, void *r1, void *r2, void *r3, void *r4, int key, int extra,
                  void *r5, void *r6, void *r7, void *r8, void *r9, void *r10);

/** Starts an empty environment. Starting a started one is refused. */
int KVXstartenv(KVXenv *env);

/** The environment that a model owns: its own parameters. Belongs to the model; null for null. */
KVXenv *KVXgetenv(KVXmodel *model);

/**
 * The model's concurrent environment number num (from 0): a set of parameters for one of several
 * concurrent solves. Belongs to the model. Null when the library can't, with the reason in
 * KVXgetmerrormsg; the development solver can't: it solves a model with one set of parameters.
 */
KVXenv *KVXgetconcurrentenv(KVXmodel *model, int num);

/** Gives up all concurrent environments of a model. */
void KVXdiscardconcurrentenvs(KVXmodel *model);

/**
 * The environment of the model's objective number index: parameters that apply while that objective
 * is optimised, and the run's log and its limits of time, nodes and iterations with them; of
 * several objectives of one priority, those of the first that has an environment. The first call
 * makes it, a copy of the model's. Belongs to the model, not to its copies. Null when there is no
 * such objective, with the reason in KVXgetmerrormsg.
 */
KVXenv *KVXgetmultiobjenv(KVXmodel *model, int index);

/** Gives up all multi-objective environments of a model. */
void KVXdiscardmultiobjenvs(KVXmodel *model);

/**
 * Frees an environment made by KVXemptyenvadvinternal or KVXloadenvadv; null is allowed. Its
 * models must have been freed. An environment that belongs to a model is left alone.
 */
void KVXfreeenv(KVXenv *env);

/** The library's version, 13.0.3. */
void KVXversion(int *major, int *minor, int *technical);

/** Writes a text to the environment's log as it stands; a '%' in it has no meaning. A line that it
 * does not end waits for the text that ends it, or for another line or the environment's end. */
void KVXmsg(KVXenv *env, const char *text);

/** The environment's last error text, "" when there was none. Belongs to the library. */
const char *KVXgeterrormsg(KVXenv *env);

/*
 * Parameters
 *
 * Names are matched without regard to case. A model works with a copy of its environment's
 * parameters, made when the model was made: use KVXgetenv to change the model's own.
 *
 *   parameter        type    default  range          meaning
 *   TimeLimit        double  1e100    0..1e100       seconds for one run
 *   MIPGap           double  1e-4     0..1e100       relative gap that counts as optimal
 *   MIPGapAbs        double  1e-10    0..1e100       absolute gap that counts as optimal
 *   NodeLimit        double  1e100    0..1e100       branch-and-bound nodes for one run
 *   IterationLimit   double  1e100    0..1e100       simplex iterations for one run
 *   SolutionLimit    int     2^31-1   1..2^31-1      stop after that many solutions
 *   FeasibilityTol   double  1e-6     1e-9..1e-2     primal feasibility tolerance
 *   OptimalityTol    double  1e-6     1e-9..1e-2     dual feasibility tolerance
 *   IntegralityTol   double  1e-6     1e-9..1e-1     distance from an integer that counts as one
 *   Method           int     -1       -1..2          -1 choose, 0 primal, 1 dual, 2 barrier
 *   Presolve         int     1        0..1           0 off, 1 on
 *   Cuts             int     1        0..1           the solver's own cuts: 0 off, 1 on
 *   Heuristics       int     1        0..1           heuristics: 0 off, 1 on
 *   Threads          int     0        0..1024        branch-and-bound threads, 0 choose; the
 *                                                    development solver always uses one
 *   Seed             int     0        0..2^31-1      random seed
 *   LazyConstraints  int     0        0..1           1 when a callback adds lazy constraints
 *   LogToConsole     int     1        0..1           write the log to standard output
 *   LogFile          string  ""       any text       append the log to this file; "" for none
 *   LogInterval      double  5        0.1..1e100     seconds between progress lines
 *   ResultFile       string  ""       any text       write the result of each run to this file
 *   TuneTimeLimit    double  60       0..1e100       seconds for KVXtunemodel
 *   TuneCriterion    int     0        0..0           0 shortest time, then smallest gap
 */

int KVXgetintparam(KVXenv *env, const char *name, int *value);
int KVXgetdblparam(KVXenv *env, const char *name, double *value);

/**
 * Reads a text parameter of any length.
 * @param buffer receives as much of the value as fits, terminated
 * @param capacity size of buffer in bytes, at least 1
 * @param length receives the value's full length without its terminator
 */
int KVXgetlongstrparam(KVXenv *env, const char *name, char *buffer, int capacity, int *length);

int KVXgetintparaminfo(KVXenv *env, const char *name, int *current, int *minimum, int *maximum,
                       int *standard);
int KVXgetdblparaminfo(KVXenv *env, const char *name, double *current, double *minimum,
                       double *maximum, double *standard);

/** Current and default value, each cut off to fit KVX_TEXT_SIZE bytes with its terminator. */
int KVXgetstrparaminfo(KVXenv *env, const char *name, char *current, char *standard);

/** Sets a parameter; a value outside its range gives KVX_ERROR_VALUE_OUT_OF_RANGE. */
int KVXsetintparam(KVXenv *env, const char *name, int value);
int KVXsetdblparam(KVXenv *env, const char *name, double value);
int KVXsetstrparam(KVXenv *env, const char *name, const char *value);

/** Sets a parameter of any type from its text. */
int KVXsetparam(KVXenv *env, const char *name, const char *value);

/** Sets every parameter to its default. */
int KVXresetparams(KVXenv *env);

/** Writes every parameter that differs from its default, a line "name value" each. */
int KVXwriteparams(KVXenv *env, const char *filename);

/** Reads such a file; empty lines and lines that begin with '#' are skipped. All or nothing. */
int KVXreadparams(KVXenv *env, const char *filename);

/*
 * Log
 */

/**
 * The installed log callback.
 * @param callback receives the function; may be null
 * @param userdata receives its user data, null when no callback is installed
 */
int KVXgetlogcallbackfuncenv(KVXenv *env, KVXlogcallback *callback, void **userdata);

/**
 * Installs a log callback, or removes it with two nulls. When this returns, the former callback is
 * not running on another thread and will not be called again. Models of the environment log to it.
 * Reading and replacing it is allowed while models run and other threads use the environment;
 * taking it away doesn't fail.
 */
int KVXsetlogcallbackfuncenv(KVXenv *env, KVXlogcallback callback, void *userdata);

#endif
