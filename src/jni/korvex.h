/*
 * The C interface of the Korvex solver library, libkorvex130.so: every function that the JNI
 * bridge calls. Plain C, usable from C and C++.
 *
 * Rules that hold throughout, unless a function says otherwise:
 *
 *  - A function with an int result returns a status: 0 (KVX_OK) or one of the KVX_ERROR_ codes.
 *    After a failure KVXgeterrormsg (environment) or KVXgetmerrormsg (model) explains it, and the
 *    model stays as it was. A success leaves the error text alone. Output arguments are written on
 *    success only.
 *  - Arrays belong to the caller and are only used during the call. Indices count from 0. A count
 *    of 0 or less goes with arrays that may be null; a negative one is refused with
 *    KVX_ERROR_INVALID_ARGUMENT, except where a function takes it as 0.
 *  - Texts are NUL-terminated UTF-8. (From Java they come in JNI's modified form, in which a
 *    character beyond U+FFFF is two surrogates of three bytes each, and go back as they came.) A
 *    text that the library hands out belongs to the library and stays valid until the next call on
 *    the same object, except where KVXfree is named.
 *  - Bounds of +-KVX_INFINITY or beyond mean "no bound". Bounds that contradict each other are
 *    refused, and so are bounds of a binary variable outside 0 and 1 when an attribute is set; when
 *    it is added or becomes binary, its bounds are cut off there.
 *  - Names have no control characters. What has none is named by its index: C0 for a variable, R0
 *    for a constraint, Q0 and G0 for quadratic and general constraints.
 *  - A null handle is refused with KVX_ERROR_INVALID_ARGUMENT.
 *  - An object may be used by one thread at a time; KVXterminate and KVXmsg may be called from any
 *    thread at any moment. Different environments, and different models of one environment, may be
 *    used by different threads at once.
 */
#ifndef KORVEX_H
#define KORVEX_H

/* Visible in whatever way the library itself is compiled. */
#pragma GCC visibility push(default)

#ifdef __cplusplus
extern "C" {
#endif

/** An environment: parameters, log and error text. */
typedef struct KVXenv KVXenv;
/** An optimisation model with its own copy of its environment's parameters. */
typedef struct KVXmodel KVXmodel;
/** A local object for one batch request. */
typedef struct KVXbatch KVXbatch;

/** A sparse vector of a basis solve. The buffers belong to whoever allocated them. */
typedef struct SparseVector {
    int len;     /**< entries: supplied (input); capacity on entry, written on return (result) */
    int *ind;    /**< len indices, or null when len <= 0 */
    double *val; /**< len values, or null when len <= 0 */
} SparseVector;

/**
 * A model callback. Called while a run is going on, on the calling thread of a synchronous run and
 * on the library's own thread of an asynchronous one; never by two threads at once for one model.
 * @param model    the model that is being solved
 * @param cbdata   handle of this invocation for the KVXcb functions; valid until the callback
 *                 returns
 * @param where    one of the KVX_CB_ where codes
 * @param userdata as given at installation
 * @return 0, or a status that ends the run and becomes its status
 */
typedef int (*KVXcallback)(KVXmodel *model, void *cbdata, int where, void *userdata);

/**
 * A log callback: receives one whole line (without its line feed) at a time, from whatever thread
 * writes the line, never two lines at once for one environment. Its result is ignored.
 */
typedef int (*KVXlogcallback)(const char *line, void *userdata);

#define KVX_VERSION_MAJOR 13
#define KVX_VERSION_MINOR 0
#define KVX_VERSION_TECHNICAL 3

/** The value that KVXloadenvadv requires as its eleventh argument. */
#define KVX_LOADENV_KEY 0x4B565831

/** The interface number that KVXloadenvadv and KVXemptyenvadvinternal require. */
#define KVX_INTERFACE_JAVA 2

/** Bounds of this magnitude or more are infinite. */
#define KVX_INFINITY 1e100

/** Room for any text of KVXgetstrparaminfo and for a batch ID, terminator included, in bytes. */
#define KVX_TEXT_SIZE 512

/* Statuses. 10001, 10002, 10003 and 10011 are shared with the bridge. */
#define KVX_OK 0
#define KVX_ERROR_OUT_OF_MEMORY 10001
#define KVX_ERROR_NULL_ARGUMENT 10002
#define KVX_ERROR_WRONG_INFO_TYPE 10003
#define KVX_ERROR_INVALID_ARGUMENT 10004
#define KVX_ERROR_UNKNOWN_ATTRIBUTE 10005
#define KVX_ERROR_UNKNOWN_PARAMETER 10006
#define KVX_ERROR_VALUE_OUT_OF_RANGE 10007
#define KVX_ERROR_DATA_NOT_AVAILABLE 10008
#define KVX_ERROR_INDEX_OUT_OF_RANGE 10009
#define KVX_ERROR_READ_ONLY 10010
#define KVX_ERROR_CALLBACK 10011
#define KVX_ERROR_FILE_READ 10012
#define KVX_ERROR_FILE_WRITE 10013
#define KVX_ERROR_NUMERIC 10014
/** The library can't do this; the error text says what and, where it helps, why. */
#define KVX_ERROR_NOT_SUPPORTED 10015
#define KVX_ERROR_VERSION 10016
/** A run is going on (KVXsync: it is still inside a callback on the calling thread). */
#define KVX_ERROR_IN_PROGRESS 10017
#define KVX_ERROR_NOT_STARTED 10018
#define KVX_ERROR_NOT_FOUND 10019
#define KVX_ERROR_INTERNAL 10020

/* Values of the attribute "Status". */
#define KVX_STATUS_LOADED 1
#define KVX_STATUS_OPTIMAL 2
#define KVX_STATUS_INFEASIBLE 3
#define KVX_STATUS_UNBOUNDED 4
#define KVX_STATUS_INFEASIBLE_OR_UNBOUNDED 5
#define KVX_STATUS_TIME_LIMIT 6
#define KVX_STATUS_NODE_LIMIT 7
#define KVX_STATUS_ITERATION_LIMIT 8
#define KVX_STATUS_SOLUTION_LIMIT 9
#define KVX_STATUS_INTERRUPTED 10
#define KVX_STATUS_NUMERIC 11
#define KVX_STATUS_IN_PROGRESS 12

/* Objective senses, constraint senses, variable types, SOS types, basis statuses. */
#define KVX_MINIMIZE 1
#define KVX_MAXIMIZE (-1)
#define KVX_LESS_EQUAL '<'
#define KVX_GREATER_EQUAL '>'
#define KVX_EQUAL '='
#define KVX_CONTINUOUS 'C'
#define KVX_BINARY 'B'
#define KVX_INTEGER 'I'
/** 0, or between the lower and the upper bound. */
#define KVX_SEMICONT 'S'
/** 0, or an integer between the lower and the upper bound. */
#define KVX_SEMIINT 'N'
#define KVX_SOS_TYPE1 1
#define KVX_SOS_TYPE2 2
#define KVX_BASIC 0
#define KVX_NONBASIC_LOWER (-1)
#define KVX_NONBASIC_UPPER (-2)
#define KVX_SUPERBASIC (-3)

/*
 * Callback codes. A where code says why the callback was called; a what code, a datum to ask for
 * with KVXcbget. A what code belongs to the where code that is its thousands; those below 1000 can
 * be asked for anywhere.
 */
#define KVX_CB_POLLING 0  /**< now and then, when nothing else was reported for a while */
#define KVX_CB_PRESOLVE 1 /**< during presolve */
#define KVX_CB_SIMPLEX 2  /**< during simplex or barrier iterations */
#define KVX_CB_MIP 3      /**< progress of branch and bound */
#define KVX_CB_MIPSOL 4   /**< a new solution was found; it can still be rejected by a lazy cut */
#define KVX_CB_MIPNODE 5  /**< the relaxation of a node was solved */
#define KVX_CB_MESSAGE 6  /**< a log line was written */
#define KVX_CB_IIS 7      /**< during KVXcomputeIIS */
#define KVX_CB_MULTIOBJ 8 /**< one of several objectives was solved */
#define KVX_CB_TUNE 9     /**< during KVXtunemodel, before each trial */

#define KVX_CB_RUNTIME 1           /**< double: seconds since the run began */
#define KVX_CB_PRE_COLDEL 1001     /**< int: columns removed so far */
#define KVX_CB_PRE_ROWDEL 1002     /**< int: rows removed so far */
#define KVX_CB_SPX_ITERATIONS 2001 /**< double: iterations so far */
#define KVX_CB_SPX_OBJVAL 2002     /**< double: current objective value */
#define KVX_CB_SPX_PRIMINF 2003    /**< double: current sum of primal infeasibilities */
#define KVX_CB_SPX_DUALINF 2004    /**< double: current sum of dual infeasibilities */
#define KVX_CB_MIP_OBJBEST 3001    /**< double: objective of the best solution (infinite if none) */
#define KVX_CB_MIP_OBJBOUND 3002   /**< double: best proven bound */
#define KVX_CB_MIP_NODES 3003      /**< double: nodes explored */
#define KVX_CB_MIP_SOLCOUNT 3004   /**< int: solutions found */
#define KVX_CB_MIP_OPENNODES 3005  /**< double: nodes waiting */
#define KVX_CB_MIP_ITERATIONS 3006 /**< double: simplex iterations */
#define KVX_CB_MIPSOL_SOL 4001     /**< double vector: the new solution, one value a variable */
#define KVX_CB_MIPSOL_OBJ 4002     /**< double: objective of the new solution */
#define KVX_CB_MIPSOL_OBJBEST 4003 /**< double: best objective including the new solution */
#define KVX_CB_MIPSOL_OBJBOUND 4004  /**< double: best proven bound */
#define KVX_CB_MIPSOL_NODES 4005     /**< double: nodes explored */
#define KVX_CB_MIPSOL_SOLCOUNT 4006  /**< int: solutions found before this one */
#define KVX_CB_MIPNODE_STATUS 5001   /**< int: status of the node's relaxation (KVX_STATUS_) */
#define KVX_CB_MIPNODE_REL 5002      /**< double vector: the node's relaxation */
#define KVX_CB_MIPNODE_OBJBEST 5003  /**< double: objective of the best solution */
#define KVX_CB_MIPNODE_OBJBOUND 5004 /**< double: best proven bound */
#define KVX_CB_MIPNODE_NODES 5005    /**< double: nodes explored */
#define KVX_CB_MIPNODE_SOLCOUNT 5006 /**< int: solutions found */
#define KVX_CB_MSG_STRING 6001       /**< text: the log line */
#define KVX_CB_IIS_CONSTRS 7001      /**< int: constraints and bounds known to belong to the IIS */
#define KVX_CB_IIS_UNDECIDED 7002    /**< int: constraints and bounds not yet decided */
#define KVX_CB_MULTIOBJ_SOLVED 8001  /**< int: objectives solved so far */
#define KVX_CB_MULTIOBJ_OBJVAL 8002  /**< double: value of the objective just solved */
#define KVX_CB_MULTIOBJ_SOL 8003     /**< double vector: the solution so far */
#define KVX_CB_TUNE_TRIAL 9001       /**< int: number of the trial that begins, from 0 */
#define KVX_CB_TUNE_TRIALS 9002      /**< int: number of trials in all */

/* Type codes of KVXgetcbwhatinfo, KVXgetattrinfo. */
#define KVX_TYPE_INT 1
#define KVX_TYPE_DOUBLE 2
#define KVX_TYPE_STRING 3
#define KVX_TYPE_CHAR 4

/* Element codes of KVXgetattrinfo. */
#define KVX_OF_MODEL 0
#define KVX_OF_VARIABLE 1
#define KVX_OF_CONSTRAINT 2
#define KVX_OF_SOS 3
#define KVX_OF_QCONSTRAINT 4
#define KVX_OF_GENCONSTRAINT 5

/* Values of the batch attribute "BatchStatus". */
#define KVX_BATCH_SUBMITTED 1
#define KVX_BATCH_RUNNING 2
#define KVX_BATCH_COMPLETED 3
#define KVX_BATCH_FAILED 4
#define KVX_BATCH_ABORTED 5
#define KVX_BATCH_DISCARDED 6

/* ---------------------------------------------------------------------------------------------
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
 * KVXgetmerrormsg; this library can't: it solves a model with one set of parameters.
 */
KVXenv *KVXgetconcurrentenv(KVXmodel *model, int num);

/** Gives up all concurrent environments of a model. */
void KVXdiscardconcurrentenvs(KVXmodel *model);

/**
 * The environment of the model's objective number index, made by the first call: parameters that
 * apply while that objective is optimised. Null when there is no such objective.
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

/* ---------------------------------------------------------------------------------------------
 * Parameters
 *
 * Names are matched without regard to case. A model works with a copy of its environment's
 * parameters, made when the model was made: use KVXgetenv to change the model's own.
 *
 *   name            type    default  range          meaning
 *   TimeLimit       double  1e100    0..1e100       seconds for one run
 *   MIPGap          double  1e-4     0..1e100       relative gap that counts as optimal
 *   MIPGapAbs       double  1e-10    0..1e100       absolute gap that counts as optimal
 *   NodeLimit       double  1e100    0..1e100       branch-and-bound nodes for one run
 *   IterationLimit  double  1e100    0..1e100       simplex iterations for one run
 *   SolutionLimit   int     2^31-1   1..2^31-1      stop after that many solutions
 *   FeasibilityTol  double  1e-6     1e-9..1e-2     primal feasibility tolerance
 *   OptimalityTol   double  1e-6     1e-9..1e-2     dual feasibility tolerance
 *   IntegralityTol  double  1e-6     1e-9..1e-1     distance from an integer that counts as one
 *   Method          int     -1       -1..2          -1 choose, 0 primal, 1 dual, 2 barrier
 *   Presolve        int     1        0..1           0 off, 1 on
 *   Cuts            int     1        0..1           the solver's own cuts: 0 off, 1 on
 *   Heuristics      int     1        0..1           heuristics: 0 off, 1 on
 *   Threads         int     0        0..1024        branch-and-bound threads, 0 choose
 *   Seed            int     0        0..2^31-1      random seed
 *   LazyConstraints int     0        0..1           1 when a callback adds lazy constraints
 *   LogToConsole    int     1        0..1           write the log to standard output
 *   LogFile         string  ""                      append the log to this file; "" for none
 *   LogInterval     double  5        0.1..1e100     seconds between progress lines
 *   ResultFile      string  ""                      write the result of each run to this file
 *   TuneTimeLimit   double  60       0..1e100       seconds for KVXtunemodel
 *   TuneCriterion   int     0        0..0           0 shortest time, then smallest gap
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

/* ---------------------------------------------------------------------------------------------
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
 */
int KVXsetlogcallbackfuncenv(KVXenv *env, KVXlogcallback callback, void *userdata);

/* ---------------------------------------------------------------------------------------------
 * Models: making, freeing
 */

/**
 * Makes a model with numvars variables and no constraints.
 * @param modelP receives the model
 * @param name model name, or null
 * @param numvars number of variables, at least 0
 * @param obj,lb,ub numvars values each; null for all 0, all 0, all infinite
 * @param types numvars type characters; null for all continuous
 * @param names numvars names; the array and its elements may be null (named by index then)
 */
int KVXnewmodel(KVXenv *env, KVXmodel **modelP, const char *name, int numvars, const double *obj,
                const double *lb, const double *ub, const char *types, const char *const *names);

/**
 * Makes a whole model.
 * @param objsense KVX_MINIMIZE or KVX_MAXIMIZE
 * @param objcon objective constant
 * @param senses,rhs numconstrs sense characters and right-hand sides
 * @param beg,len numvars begin positions and lengths of the columns in ind and val
 * @param ind,val constraint indices and coefficients
 * @param lb,ub,types,varnames,constrnames as for KVXnewmodel, one entry a variable or constraint
 */
int KVXloadmodel(KVXenv *env, KVXmodel **modelP, const char *name, int numvars, int numconstrs,
                 int objsense, double objcon, const double *obj, const char *senses,
                 const double *rhs, const int *beg, const int *len, const int *ind,
                 const double *val, const double *lb, const double *ub, const char *types,
                 const char *const *varnames, const char *const *constrnames);

/** Applies pending changes. (A library may change the model at once; then nothing is pending.) */
int KVXupdatemodel(KVXmodel *model);

/** Forgets the solution; with a non-zero argument the start values and the basis, too. */
int KVXreset(KVXmodel *model, int clearall);

/**
 * Frees a model with everything it owns; null is allowed. A run that goes on in the background is
 * terminated and waited for. Refused with KVX_ERROR_IN_PROGRESS inside one of its callbacks.
 */
int KVXfreemodel(KVXmodel *model);

/* ---------------------------------------------------------------------------------------------
 * Derived models: each stores a new, independent model through newP, to be freed by the caller
 */

/** A copy that belongs to another environment. @param env must not be null */
int KVXcopymodeltoenv(KVXmodel *model, KVXenv *env, KVXmodel **newP);
/** The model without integrality, SOS and general constraints; semi-continuous variables may be
 * anywhere between 0 and their bounds. */
int KVXrelaxmodel(KVXmodel *model, KVXmodel **newP);
/** The model in which whatever made it discrete is fixed at the best solution, which stays optimal:
 * integer variables, zero members of SOS, variables of general constraints and of piecewise-linear
 * objective terms. */
int KVXfixmodel(KVXmodel *model, KVXmodel **newP);
/** The same in place. */
int KVXconverttofixed(KVXmodel *model);
/** The model after presolve; same optimal value. The model itself where presolve finds that it has
 * no optimum. For models with linear constraints and one linear objective. */
int KVXpresolvemodel(KVXmodel *model, KVXmodel **newP);
/** The dual of a linear model; same optimal value. Its constraints are the model's variables; each
 * finite side of a constraint or bound is a variable, an equation's two sides one. */
int KVXdualmodel(KVXmodel *model, KVXmodel **newP);
/** The model that minimises the sum of violations of its linear constraints; all else is kept. */
int KVXfeasibility(KVXmodel *model, KVXmodel **newP);
/** The model with general constraints, semi-continuous variables and piecewise-linear objective
 * terms replaced by linear constraints, integer variables and SOS. Its first variables and
 * constraints are those of the model. Refused, with a text that names the constraint, for quadratic
 * constraints, 2-norms, polynomials and the functions from exponential to nonlinear expression. */
int KVXlinearizemodel(KVXmodel *model, KVXmodel **newP);
/** The model of the current scenario (attribute "ScenarioNumber"). (A model of this library has one
 * scenario, itself.) */
int KVXsinglescenariomodel(KVXmodel *model, KVXmodel **newP);

/**
 * Turns the model into its feasibility relaxation.
 * @param penalty 0: sum of violations; 1: sum of squares; 2: number of violations
 * @param minrelax 0: minimise the penalty alone; 1: find the least penalty, then the best
 *        original objective at that penalty
 * @param lbpen,ubpen NumVars weights for violated lower and upper bounds, or null: bounds are kept;
 *        a weight of KVX_INFINITY or more keeps that one bound
 * @param conpen NumConstrs weights for violated constraints, or null: constraints are kept
 * @param result the least penalty when minrelax is 1, else 0
 */
int KVXfeasrelax(KVXmodel *model, int penalty, int minrelax, const double *lbpen,
                 const double *ubpen, const double *conpen, double *result);

/* ---------------------------------------------------------------------------------------------
 * Files
 *
 * The ending of a name selects the format: .mps and .lp are model files; .sol (solution), .mst
 * (start), .bas (basis) and .prm (parameters) attribute files; .json a solution, write only. Each
 * may be followed by .gz or .bz2.
 */

/** Reads a model file into a new model. The error text names file and line. */
int KVXreadmodel(KVXenv *env, const char *filename, KVXmodel **modelP);
/** Reads an attribute file into a model. */
int KVXread(KVXmodel *model, const char *filename);
/** Writes a model or attribute file. */
int KVXwrite(KVXmodel *model, const char *filename);
/** 0: not the name of a model file; 1: MPS; 2: LP. */
int KVXismodelfile(const char *filename);
/** 0: not the name of an attribute file; 1: solution; 2: start; 3: basis; 4: parameters. */
int KVXisattrfile(const char *filename);
/** The solution as JSON text. @param textP receives a text to be freed with KVXfree */
int KVXgetjsonsolution(KVXmodel *model, char **textP);
/** Frees a text that the library allocated for the caller; null is allowed. */
void KVXfree(void *text);

/* ---------------------------------------------------------------------------------------------
 * Building
 *
 * Batches of columns, rows or sets come in compressed sparse layout: item k has the entries from
 * beg[k] to beg[k+1]-1 of ind and val, the last item up to the total. Begins must not decrease.
 * Coefficients of equal index in one item are summed; zeros are dropped.
 */

/**
 * Adds variables.
 * @param numvars,numnz number of variables and of coefficients over all of them
 * @param beg,ind,val columns: numvars begins, numnz constraint indices and coefficients
 * @param obj,lb,ub,types,names as for KVXnewmodel
 */
int KVXaddvars(KVXmodel *model, int numvars, int numnz, const int *beg, const int *ind,
               const double *val, const double *obj, const double *lb, const double *ub,
               const char *types, const char *const *names);

/**
 * Adds linear constraints.
 * @param beg,ind,val rows: numconstrs begins, numnz variable indices and coefficients
 * @param senses,rhs numconstrs senses and right-hand sides
 * @param names numconstrs names, or null; elements may be null
 */
int KVXaddconstrs(KVXmodel *model, int numconstrs, int numnz, const int *beg, const int *ind,
                  const double *val, const char *senses, const double *rhs,
                  const char *const *names);

/** Adds range constraints lower <= row <= upper. The sense of such a row reads as KVX_EQUAL when
 * both are equal, else by the finite side; see the attributes "RowLower" and "RowUpper". */
int KVXaddrangeconstrs(KVXmodel *model, int numconstrs, int numnz, const int *beg, const int *ind,
                       const double *val, const double *lower, const double *upper,
                       const char *const *names);

/** Adds terms qval[k] * x[qrow[k]] * x[qcol[k]] to the objective. */
int KVXaddqpterms(KVXmodel *model, int numqnz, const int *qrow, const int *qcol,
                  const double *qval);
/** Removes the objective's quadratic terms. */
int KVXdelq(KVXmodel *model);
/** The objective's quadratic terms. @param numqnzP receives their number; buffers of that many
 * entries (attribute "NumQNZs"), each may be null */
int KVXgetq(KVXmodel *model, int *numqnzP, int *qrow, int *qcol, double *qval);
/** Adds a quadratic constraint. @param name its name, or null */
int KVXaddqconstr(KVXmodel *model, int numlnz, const int *lind, const double *lval, int numqnz,
                  const int *qrow, const int *qcol, const double *qval, char sense, double rhs,
                  const char *name);
/** Reads a quadratic constraint back: always both counts, and every buffer that isn't null. */
int KVXgetqconstr(KVXmodel *model, int qconstr, int *numlnzP, int *lind, double *lval, int *numqnzP,
                  int *qrow, int *qcol, double *qval);

/**
 * Adds special ordered sets.
 * @param types numsos KVX_SOS_TYPE codes
 * @param beg,ind,weight sets: numsos begins, nummembers variable indices and weights
 */
int KVXaddsos(KVXmodel *model, int numsos, int nummembers, const int *types, const int *beg,
              const int *ind, const double *weight);
/** Reads count sets from start on: always their number of members, and every buffer that isn't
 * null. @param beg receives count + 1 begins, the last being the number of members */
int KVXgetsos(KVXmodel *model, int *nummembersP, int *types, int *beg, int *ind, double *weight,
              int start, int count);

/* Deleters: num indices in any order; the remaining items are renumbered. A deleted variable
 * disappears from SOS, quadratic terms and the linear part of an indicator; one that a general
 * constraint depends on otherwise is refused. */
int KVXdelvars(KVXmodel *model, int num, const int *ind);
int KVXdelconstrs(KVXmodel *model, int num, const int *ind);
int KVXdelsos(KVXmodel *model, int num, const int *ind);
int KVXdelqconstrs(KVXmodel *model, int num, const int *ind);
int KVXdelgenconstrs(KVXmodel *model, int num, const int *ind);

/** Changes numchgs matrix coefficients. @param cind,vind constraint and variable indices */
int KVXchgcoeffs(KVXmodel *model, int numchgs, const int *cind, const int *vind, const double *val);

/** Cleans a sparse list in place: sorts it by index, sums entries of equal index, drops zeros. */
void KVXclean2(int *lenP, int *ind, double *val);
/** The same for a list with two indices an entry. */
void KVXclean3(int *lenP, int *ind1, int *ind2, double *val);

/** Sets the whole objective: linear terms (all others become 0), quadratic terms, constant.
 * @param objsense KVX_MINIMIZE, KVX_MAXIMIZE, or 0 to leave it */
int KVXsetobjective(KVXmodel *model, int objsense, int numlnz, const int *lind, const double *lval,
                    int numqnz, const int *qrow, const int *qcol, const double *qval,
                    double objcon);

/**
 * Sets one of several objectives; with the first the model becomes multi-objective. All share the
 * model's sense; a negative weight turns one around.
 * @param index number of the objective, from 0, at most the number there are
 * @param priority higher ones are optimised first; equal ones are blended by weight
 * @param name its name, or null
 * @param constant objective constant
 * @param weight factor in the blend
 * @param abstol,reltol how much later objectives may worsen this one
 */
int KVXsetobjectiven(KVXmodel *model, int index, int priority, const char *name, int numlnz,
                     const int *lind, const double *lval, double constant, double weight,
                     double abstol, double reltol);

/** Gives a variable a piecewise-linear objective term by breakpoints of non-decreasing x; replaces
 * its linear coefficient. */
int KVXsetpwlobj(KVXmodel *model, int var, int npts, const double *x, const double *y);
/** Reads it back: always the number of breakpoints, and every buffer that isn't null. */
int KVXgetpwlobj(KVXmodel *model, int var, int *nptsP, double *x, double *y);

/* ---------------------------------------------------------------------------------------------
 * General constraints. name and options may be null. In functions y = f(x), the first variable is
 * x and the second is y.
 */

/** resvar = max(vars..., constant). */
int KVXaddgenconstrMax(KVXmodel *model, const char *name, int resvar, int nvars, const int *vars,
                       double constant);
/** resvar = min(vars..., constant). */
int KVXaddgenconstrMin(KVXmodel *model, const char *name, int resvar, int nvars, const int *vars,
                       double constant);
/** resvar = |argvar|. */
int KVXaddgenconstrAbs(KVXmodel *model, const char *name, int resvar, int argvar);
/** resvar = 1 if all of the binary vars are 1, else 0. */
int KVXaddgenconstrAnd(KVXmodel *model, const char *name, int resvar, int nvars, const int *vars);
/** resvar = 1 if any of the binary vars is 1, else 0. */
int KVXaddgenconstrOr(KVXmodel *model, const char *name, int resvar, int nvars, const int *vars);
/** resvar = norm of vars. @param which 0, 1, 2 or KVX_INFINITY. For 0 a continuous operand counts
 * from ten times the parameter "FeasibilityTol" on; what is less must be 0. */
int KVXaddgenconstrNorm(KVXmodel *model, const char *name, int resvar, int nvars, const int *vars,
                        double which);
/** If binvar = binval then the linear constraint holds. */
int KVXaddgenconstrIndicator(KVXmodel *model, const char *name, int binvar, int binval, int numlnz,
                             const int *lind, const double *lval, char sense, double rhs);
/** y = piecewise-linear function of x through npts breakpoints of non-decreasing xpts; beyond them
 * the first and the last segment go on, at a jump y is anywhere between both values. */
int KVXaddgenconstrPWL(KVXmodel *model, const char *name, int xvar, int yvar, int npts,
                       const double *xpts, const double *ypts);
/* The options of the functions that follow are kept with the constraint, without a meaning. */

/** y = coefs[0] x^(ncoef-1) + ... + coefs[ncoef-1]. */
int KVXaddgenconstrPoly(KVXmodel *model, const char *name, int xvar, int yvar, int ncoef,
                        const double *coefs, const char *options);
/** y = e^x. */
int KVXaddgenconstrExp(KVXmodel *model, const char *name, int xvar, int yvar, const char *options);
/** y = base^x. */
int KVXaddgenconstrExpA(KVXmodel *model, const char *name, int xvar, int yvar, const char *options,
                        double base);
/** y = ln x. */
int KVXaddgenconstrLog(KVXmodel *model, const char *name, int xvar, int yvar, const char *options);
/** y = log x to the given base. */
int KVXaddgenconstrLogA(KVXmodel *model, const char *name, int xvar, int yvar, const char *options,
                        double base);
/** y = x^exponent. */
int KVXaddgenconstrPow(KVXmodel *model, const char *name, int xvar, int yvar, const char *options,
                       double exponent);
/** y = sin x. */
int KVXaddgenconstrSin(KVXmodel *model, const char *name, int xvar, int yvar, const char *options);
/** y = cos x. */
int KVXaddgenconstrCos(KVXmodel *model, const char *name, int xvar, int yvar, const char *options);
/** y = tan x. */
int KVXaddgenconstrTan(KVXmodel *model, const char *name, int xvar, int yvar, const char *options);
/** y = 1 / (1 + e^-x). */
int KVXaddgenconstrLogistic(KVXmodel *model, const char *name, int xvar, int yvar,
                            const char *options);
/** resvar = an expression tree of nlcount nodes: operation code (KVX_NL_), constant or variable
 * index (as a double), and parent node of each. The first node is the root, with parent -1; every
 * other comes after its parent, operands in their order. */
int KVXaddgenconstrNL(KVXmodel *model, const char *name, int resvar, int nlcount,
                      const int *opcodes, const double *data, const int *parents);

/* Reading back: data are stored through every pointer that isn't null; a count pointer receives the
 * number of array entries, which arrays must have room for. A constraint of another kind is refused
 * with KVX_ERROR_INVALID_ARGUMENT. */
int KVXgetgenconstrMax(KVXmodel *model, int genconstr, int *resvarP, int *nvarsP, int *vars,
                       double *constantP);
int KVXgetgenconstrMin(KVXmodel *model, int genconstr, int *resvarP, int *nvarsP, int *vars,
                       double *constantP);
int KVXgetgenconstrAbs(KVXmodel *model, int genconstr, int *resvarP, int *argvarP);
int KVXgetgenconstrAnd(KVXmodel *model, int genconstr, int *resvarP, int *nvarsP, int *vars);
int KVXgetgenconstrOr(KVXmodel *model, int genconstr, int *resvarP, int *nvarsP, int *vars);
int KVXgetgenconstrNorm(KVXmodel *model, int genconstr, int *resvarP, int *nvarsP, int *vars,
                        double *whichP);
int KVXgetgenconstrIndicator(KVXmodel *model, int genconstr, int *binvarP, int *binvalP,
                             int *numlnzP, int *lind, double *lval, char *senseP, double *rhsP);
int KVXgetgenconstrPWL(KVXmodel *model, int genconstr, int *xvarP, int *yvarP, int *nptsP,
                       double *xpts, double *ypts);
int KVXgetgenconstrPoly(KVXmodel *model, int genconstr, int *xvarP, int *yvarP, int *ncoefP,
                        double *coefs);
int KVXgetgenconstrExp(KVXmodel *model, int genconstr, int *xvarP, int *yvarP);
int KVXgetgenconstrExpA(KVXmodel *model, int genconstr, int *xvarP, int *yvarP, double *baseP);
int KVXgetgenconstrLog(KVXmodel *model, int genconstr, int *xvarP, int *yvarP);
int KVXgetgenconstrLogA(KVXmodel *model, int genconstr, int *xvarP, int *yvarP, double *baseP);
int KVXgetgenconstrPow(KVXmodel *model, int genconstr, int *xvarP, int *yvarP, double *exponentP);
int KVXgetgenconstrSin(KVXmodel *model, int genconstr, int *xvarP, int *yvarP);
int KVXgetgenconstrCos(KVXmodel *model, int genconstr, int *xvarP, int *yvarP);
int KVXgetgenconstrTan(KVXmodel *model, int genconstr, int *xvarP, int *yvarP);
int KVXgetgenconstrLogistic(KVXmodel *model, int genconstr, int *xvarP, int *yvarP);
int KVXgetgenconstrNL(KVXmodel *model, int genconstr, int *resvarP, int *nlcountP, int *opcodes,
                      double *data, int *parents);

/* ---------------------------------------------------------------------------------------------
 * Attributes
 *
 * Names are matched without regard to case. Shapes: the whole model's value; one element; a range
 * of len elements from start on; a list of len elements given by ind. "w" marks those that can be
 * set. Solution attributes give KVX_ERROR_DATA_NOT_AVAILABLE while there is no solution.
 *
 *   of the model
 *     int:    NumVars NumConstrs NumNZs NumSOS NumQConstrs NumGenConstrs NumQNZs NumIntVars
 *             NumBinVars NumObj ModelSense(w) IsMIP IsQP IsMultiObj Status SolCount
 *             BarIterCount ObjNumber(w) ScenarioNumber(w) NumScenarios TuneResultCount
 *     double: ObjCon(w) ObjVal ObjBound MIPGap Runtime NodeCount IterCount MaxVio
 *     string: ModelName(w)
 *   of a variable
 *     double: LB(w) UB(w) Obj(w) Start(w: KVX_UNDEFINED for none) X ReducedCost ObjN(w: of
 *             objective ObjNumber)
 *     int:    VarBasis(w) IISLB IISUB
 *     char:   VarType(w)
 *     string: VarName(w)
 *   of a linear constraint
 *     double: RHS(w) RowLower(w) RowUpper(w) Dual Slack
 *     int:    ConstrBasis(w) IISConstr
 *     char:   Sense(w)
 *     string: ConstrName(w)
 *   of an SOS            int: IISSOS
 *   of a quadratic constraint   double: QCRHS(w)   char: QCSense(w)   string: QCName(w)
 *   of a general constraint     int: GenConstrType (KVX_GENCONSTR_)   string: GenConstrName(w)
 *
 * Signs: ReducedCost and Dual are the change of the objective value per unit of bound or right-hand
 * side, in the model's own sense. Slack is right-hand side minus activity.
 */
#define KVX_UNDEFINED 1e101

#define KVX_GENCONSTR_MAX 0
#define KVX_GENCONSTR_MIN 1
#define KVX_GENCONSTR_ABS 2
#define KVX_GENCONSTR_AND 3
#define KVX_GENCONSTR_OR 4
#define KVX_GENCONSTR_NORM 5
#define KVX_GENCONSTR_INDICATOR 6
#define KVX_GENCONSTR_PWL 7
#define KVX_GENCONSTR_POLY 8
#define KVX_GENCONSTR_EXP 9
#define KVX_GENCONSTR_EXPA 10
#define KVX_GENCONSTR_LOG 11
#define KVX_GENCONSTR_LOGA 12
#define KVX_GENCONSTR_POW 13
#define KVX_GENCONSTR_SIN 14
#define KVX_GENCONSTR_COS 15
#define KVX_GENCONSTR_TAN 16
#define KVX_GENCONSTR_LOGISTIC 17
#define KVX_GENCONSTR_NL 18

#define KVX_NL_CONSTANT 0 /**< leaf: its data is the number */
#define KVX_NL_VARIABLE 1 /**< leaf: its data is the variable's index */
#define KVX_NL_PLUS 2     /**< sum of any number of operands */
#define KVX_NL_MINUS 3
#define KVX_NL_MULTIPLY 4 /**< product of any number of operands */
#define KVX_NL_DIVIDE 5
#define KVX_NL_NEGATE 6
#define KVX_NL_POWER 7
#define KVX_NL_SQRT 8
#define KVX_NL_EXP 9
#define KVX_NL_LOG 10 /**< natural logarithm */
#define KVX_NL_SIN 11
#define KVX_NL_COS 12
#define KVX_NL_TAN 13
#define KVX_NL_LOGISTIC 14

int KVXgetintattr(KVXmodel *model, const char *name, int *value);
int KVXgetintattrelement(KVXmodel *model, const char *name, int element, int *value);
int KVXgetintattrarray(KVXmodel *model, const char *name, int start, int len, int *values);
int KVXgetintattrlist(KVXmodel *model, const char *name, int len, const int *ind, int *values);
int KVXsetintattr(KVXmodel *model, const char *name, int value);
int KVXsetintattrelement(KVXmodel *model, const char *name, int element, int value);
int KVXsetintattrarray(KVXmodel *model, const char *name, int start, int len, const int *values);
int KVXsetintattrlist(KVXmodel *model, const char *name, int len, const int *ind,
                      const int *values);

int KVXgetdblattr(KVXmodel *model, const char *name, double *value);
int KVXgetdblattrelement(KVXmodel *model, const char *name, int element, double *value);
int KVXgetdblattrarray(KVXmodel *model, const char *name, int start, int len, double *values);
int KVXgetdblattrlist(KVXmodel *model, const char *name, int len, const int *ind, double *values);
int KVXsetdblattr(KVXmodel *model, const char *name, double value);
int KVXsetdblattrelement(KVXmodel *model, const char *name, int element, double value);
int KVXsetdblattrarray(KVXmodel *model, const char *name, int start, int len, const double *values);
int KVXsetdblattrlist(KVXmodel *model, const char *name, int len, const int *ind,
                      const double *values);

int KVXgetcharattrelement(KVXmodel *model, const char *name, int element, char *value);
int KVXgetcharattrarray(KVXmodel *model, const char *name, int start, int len, char *values);
int KVXgetcharattrlist(KVXmodel *model, const char *name, int len, const int *ind, char *values);
int KVXsetcharattrelement(KVXmodel *model, const char *name, int element, char value);
int KVXsetcharattrarray(KVXmodel *model, const char *name, int start, int len, const char *values);
int KVXsetcharattrlist(KVXmodel *model, const char *name, int len, const int *ind,
                       const char *values);

/* Texts handed out belong to the library and stay valid until the model changes. */
int KVXgetstrattr(KVXmodel *model, const char *name, const char **value);
int KVXgetstrattrelement(KVXmodel *model, const char *name, int element, const char **value);
int KVXgetstrattrarray(KVXmodel *model, const char *name, int start, int len, const char **values);
int KVXgetstrattrlist(KVXmodel *model, const char *name, int len, const int *ind,
                      const char **values);
/* A null text takes the name away: the element is named by its index then. */
int KVXsetstrattr(KVXmodel *model, const char *name, const char *value);
int KVXsetstrattrelement(KVXmodel *model, const char *name, int element, const char *value);
int KVXsetstrattrarray(KVXmodel *model, const char *name, int start, int len,
                       const char *const *values);
int KVXsetstrattrlist(KVXmodel *model, const char *name, int len, const int *ind,
                      const char *const *values);

/** Describes an attribute. @param type KVX_TYPE_ @param element KVX_OF_ @param settable 1 or 0 */
int KVXgetattrinfo(KVXmodel *model, const char *name, int *type, int *element, int *settable);
/** Says that an attribute will be read soon; refuses unknown names. */
int KVXprefetchattr(KVXmodel *model, const char *name);

/* ---------------------------------------------------------------------------------------------
 * Structure
 */

/** One matrix coefficient, 0 where there is none. */
int KVXgetcoeff(KVXmodel *model, int constr, int var, double *value);
/** Reads count rows from start on: always the number of nonzeros, and every buffer that isn't null.
 * @param beg receives count + 1 begins, the last being the number of nonzeros */
int KVXgetconstrs(KVXmodel *model, int *numnzP, int *beg, int *ind, double *val, int start,
                  int count);
/** The same for columns. */
int KVXgetvars(KVXmodel *model, int *numnzP, int *beg, int *ind, double *val, int start, int count);
/** The lowest index with that name; KVX_ERROR_NOT_FOUND when there is none. */
int KVXgetconstrbyname(KVXmodel *model, const char *name, int *indexP);
int KVXgetvarbyname(KVXmodel *model, const char *name, int *indexP);

/* ---------------------------------------------------------------------------------------------
 * Runs
 */

/** Installs the model's callback. @param flags 0 (reserved) */
int KVXsetcallbackfuncadv(KVXmodel *model, KVXcallback callback, void *userdata, int flags);
/** Installs the model's callback, or removes it with two nulls. */
int KVXsetcallbackfunc(KVXmodel *model, KVXcallback callback, void *userdata);
/** Solves the model. A limit, an interruption or infeasibility is not a failure: the status is 0
 * and the attribute "Status" tells. */
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
/** Finds an irreducible infeasible subsystem; see the attributes "IISConstr", "IISLB", "IISUB",
 * "IISSOS". Refused for feasible models. */
int KVXcomputeIIS(KVXmodel *model);
/** The model's last error text, "" when there was none. Belongs to the library. */
const char *KVXgetmerrormsg(KVXmodel *model);

/* ---------------------------------------------------------------------------------------------
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

/* ---------------------------------------------------------------------------------------------
 * Basis of a solved linear model. Rows of basic variables are numbered as in KVXgetBasisHead. The
 * basis matrix B has the columns of the model's variables and, for constraint i, the i-th unit
 * vector (the row's logical variable).
 *
 * A result vector must have room for what it receives: at most NumConstrs entries, for
 * KVXBinvRowi NumVars + NumConstrs. A len that is too small gives KVX_ERROR_INVALID_ARGUMENT; on
 * return it never exceeds what it was.
 */

/** Solves B x = b. @param b indices count constraints @param x indices count basic positions */
int KVXFSolve(KVXmodel *model, SparseVector *b, SparseVector *x);
/** Solves B^T x = b. @param b indices count basic positions @param x indices count constraints */
int KVXBSolve(KVXmodel *model, SparseVector *b, SparseVector *x);
/** Column j of B^-1 A, for j < NumVars of the matrix, else of the logical of row j - NumVars. */
int KVXBinvColj(KVXmodel *model, int j, SparseVector *x);
/** Row i of B^-1 A, over NumVars structural and NumConstrs logical columns. */
int KVXBinvRowi(KVXmodel *model, int i, SparseVector *x);
/** The basic variables. @param head room for NumConstrs indices, however many are wanted: a
 * variable's, or NumVars + i for the logical of constraint i */
int KVXgetBasisHead(KVXmodel *model, int *head);

/* ---------------------------------------------------------------------------------------------
 * Batches
 *
 * Attributes of a batch, as of the last KVXupdatebatch: int "BatchStatus" (KVX_BATCH_),
 * "BatchErrorCode"; string "BatchID", "BatchErrorMessage", "SubmitTime", "EndTime" (ISO 8601, UTC;
 * "" if there is none yet). The error text of a failed call is the environment's.
 */

/** Submits a copy of the model. @param id receives the request's ID in at most KVX_TEXT_SIZE bytes,
 * terminator included */
int KVXoptimizebatch(KVXmodel *model, char *id);
/** Makes a local object for a request; KVX_ERROR_NOT_FOUND for an unknown ID. */
int KVXgetbatch(KVXenv *env, const char *id, KVXbatch **batchP);
/** Frees the local object; the request goes on. Null is allowed. */
int KVXfreebatch(KVXbatch *batch);
/** Refreshes the object's attributes. */
int KVXupdatebatch(KVXbatch *batch);
int KVXgetbatchintattr(KVXbatch *batch, const char *name, int *value);
/** Reads a text attribute. @param value receives a text of the library's, valid until the next
 * KVXupdatebatch or KVXfreebatch */
int KVXgetbatchstrattr(KVXbatch *batch, const char *name, const char **value);
/** Submits a failed or aborted request again. */
int KVXretrybatch(KVXbatch *batch);
/** Aborts a submitted or running request. */
int KVXabortbatch(KVXbatch *batch);
/** Removes an ended request and its data; its ID is unknown afterwards. */
int KVXdiscardbatch(KVXbatch *batch);
/** The solution of a completed request. @param textP receives a text to be freed with KVXfree */
int KVXgetbatchjsonsolution(KVXbatch *batch, char **textP);
/** Writes that solution to a file (.json, also .gz or .bz2). */
int KVXwritebatchjsonsolution(KVXbatch *batch, const char *filename);

#ifdef __cplusplus
}
#endif

#pragma GCC visibility pop

#endif
