/*
 * The objects, callback types and codes of the library.
 * A part of korvex.h, which says what holds throughout.
 */
#ifndef KORVEX_TYPES_H
#define KORVEX_TYPES_H

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

#endif
