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

/* Version that this interface belongs to. */
#define KVX_VERSION_MAJOR 13    /**< first number */
#define KVX_VERSION_MINOR 0     /**< second number */
#define KVX_VERSION_TECHNICAL 3 /**< third number */

/** The value that KVXloadenvadv requires as its eleventh argument. */
#define KVX_LOADENV_KEY 0x4B565831

/** The interface number that KVXloadenvadv and KVXemptyenvadvinternal require. */
#define KVX_INTERFACE_JAVA 2

/** Bounds of this magnitude or more are infinite. */
#define KVX_INFINITY 1e100

/** Room for any text of KVXgetstrparaminfo and for a batch ID, terminator included, in bytes. */
#define KVX_TEXT_SIZE 512

/* Status. 10001, 10002, 10003 and 10011 are shared with the bridge. */
#define KVX_OK 0                           /**< success */
#define KVX_ERROR_OUT_OF_MEMORY 10001      /**< no memory left, or a text could not be fetched */
#define KVX_ERROR_NULL_ARGUMENT 10002      /**< a required text is null */
#define KVX_ERROR_WRONG_INFO_TYPE 10003    /**< the callback datum is of another type */
#define KVX_ERROR_INVALID_ARGUMENT 10004   /**< an argument makes no sense */
#define KVX_ERROR_UNKNOWN_ATTRIBUTE 10005  /**< no such attribute of that type */
#define KVX_ERROR_UNKNOWN_PARAMETER 10006  /**< no such parameter of that type */
#define KVX_ERROR_VALUE_OUT_OF_RANGE 10007 /**< a value outside its range */
#define KVX_ERROR_DATA_NOT_AVAILABLE 10008 /**< the datum isn't there, for lack of a solution */
#define KVX_ERROR_INDEX_OUT_OF_RANGE 10009 /**< an index outside its range */
#define KVX_ERROR_READ_ONLY 10010          /**< the attribute can't be set */
#define KVX_ERROR_CALLBACK 10011           /**< a callback can't be bound or reached */
#define KVX_ERROR_FILE_READ 10012          /**< a file can't be read */
#define KVX_ERROR_FILE_WRITE 10013         /**< a file can't be written */
#define KVX_ERROR_NUMERIC 10014            /**< numeric trouble */
#define KVX_ERROR_NOT_SUPPORTED 10015      /**< the library can't do this; the text says what */
#define KVX_ERROR_VERSION 10016            /**< the library is of another major version */
#define KVX_ERROR_IN_PROGRESS 10017 /**< a run is going on, or the call is inside its callback */
#define KVX_ERROR_NOT_STARTED 10018 /**< the environment wasn't started */
#define KVX_ERROR_NOT_FOUND 10019   /**< nothing of that name */
#define KVX_ERROR_INTERNAL 10020    /**< a fault of the library itself */

/* Value of the attribute "Status". */
#define KVX_STATUS_LOADED 1                  /**< not solved yet */
#define KVX_STATUS_OPTIMAL 2                 /**< solved to optimality */
#define KVX_STATUS_INFEASIBLE 3              /**< there is no solution */
#define KVX_STATUS_UNBOUNDED 4               /**< the objective has no limit */
#define KVX_STATUS_INFEASIBLE_OR_UNBOUNDED 5 /**< infeasible or unbounded */
#define KVX_STATUS_TIME_LIMIT 6              /**< ended by the time limit */
#define KVX_STATUS_NODE_LIMIT 7              /**< ended by the node limit */
#define KVX_STATUS_ITERATION_LIMIT 8         /**< ended by the iteration limit */
#define KVX_STATUS_SOLUTION_LIMIT 9          /**< ended by the solution limit */
#define KVX_STATUS_INTERRUPTED 10            /**< ended by KVXterminate */
#define KVX_STATUS_NUMERIC 11                /**< ended by numeric trouble */
#define KVX_STATUS_IN_PROGRESS 12            /**< a run is going on */

/* Objective sense. */
#define KVX_MINIMIZE 1
#define KVX_MAXIMIZE (-1)

/* Constraint sense. */
#define KVX_LESS_EQUAL '<'
#define KVX_GREATER_EQUAL '>'
#define KVX_EQUAL '='

/* Type of a variable. */
#define KVX_CONTINUOUS 'C' /**< any number between the bounds */
#define KVX_BINARY 'B'     /**< 0 or 1 */
#define KVX_INTEGER 'I'    /**< an integer between the bounds */
#define KVX_SEMICONT 'S'   /**< 0, or between the bounds */
#define KVX_SEMIINT 'N'    /**< 0, or an integer between the bounds */

/* Type of a special ordered set. */
#define KVX_SOS_TYPE1 1 /**< at most one member differs from 0 */
#define KVX_SOS_TYPE2 2 /**< at most two members, neighbours, differ from 0 */

/* Status of a variable in a simplex basis. */
#define KVX_BASIC 0
#define KVX_NONBASIC_LOWER (-1) /**< at the lower bound */
#define KVX_NONBASIC_UPPER (-2) /**< at the upper bound */
#define KVX_SUPERBASIC (-3)     /**< nonbasic between the bounds */

/* Where code. It says why a callback is called. */
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

/* What code. It names a datum to ask for with KVXcbget, and belongs to the where code that is its
 * thousands; those below 1000 can be asked for anywhere. */
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

/* Type of an attribute or callback datum. */
#define KVX_TYPE_INT 1
#define KVX_TYPE_DOUBLE 2
#define KVX_TYPE_STRING 3
#define KVX_TYPE_CHAR 4

/* What an attribute belongs to. */
#define KVX_OF_MODEL 0
#define KVX_OF_VARIABLE 1
#define KVX_OF_CONSTRAINT 2
#define KVX_OF_SOS 3
#define KVX_OF_QCONSTRAINT 4
#define KVX_OF_GENCONSTRAINT 5

/* Value of the batch attribute "BatchStatus". */
#define KVX_BATCH_SUBMITTED 1 /**< waits to be run */
#define KVX_BATCH_RUNNING 2   /**< is being run */
#define KVX_BATCH_COMPLETED 3 /**< ended, with a result */
#define KVX_BATCH_FAILED 4    /**< ended, without a result */
#define KVX_BATCH_ABORTED 5   /**< was aborted */
#define KVX_BATCH_DISCARDED 6 /**< was removed */

#endif
