package com.korvex;

/**
 * The codes of the solver's C interface, under the names they have there but for the prefix.
 *
 * <p>Callback codes: a where code says why the callback was called; a what code, a datum to ask for
 * there. A what code belongs to the where code that is its thousands; those below 1000 can be asked
 * for anywhere.
 */
public final class KVX {
    private KVX() {}

    /** First number of the version that these classes belong to. */
    public static final int VERSION_MAJOR = 13;
    /** Second number. */
    public static final int VERSION_MINOR = 0;
    /** Third number. */
    public static final int VERSION_TECHNICAL = 3;
    /** Bounds of this magnitude or more are infinite. */
    public static final double INFINITY = 1e100;
    /** Status: success. */
    public static final int OK = 0;
    /** Status: no memory left, or a text could not be fetched; also answered by the bridge. */
    public static final int ERROR_OUT_OF_MEMORY = 10001;
    /** Status: a required text is null; also answered by the bridge. */
    public static final int ERROR_NULL_ARGUMENT = 10002;
    /** Status: the callback datum is of another type; answered by the bridge. */
    public static final int ERROR_WRONG_INFO_TYPE = 10003;
    /** Status: an argument makes no sense. */
    public static final int ERROR_INVALID_ARGUMENT = 10004;
    /** Status: no such attribute of that type. */
    public static final int ERROR_UNKNOWN_ATTRIBUTE = 10005;
    /** Status: no such parameter of that type. */
    public static final int ERROR_UNKNOWN_PARAMETER = 10006;
    /** Status: a value outside its range. */
    public static final int ERROR_VALUE_OUT_OF_RANGE = 10007;
    /** Status: the datum is not there, for lack of a solution, say. */
    public static final int ERROR_DATA_NOT_AVAILABLE = 10008;
    /** Status: an index outside its range. */
    public static final int ERROR_INDEX_OUT_OF_RANGE = 10009;
    /** Status: the attribute can't be set. */
    public static final int ERROR_READ_ONLY = 10010;
    /** Status: a callback can't be bound or reached; also answered by the bridge. */
    public static final int ERROR_CALLBACK = 10011;
    /** Status: a file can't be read. */
    public static final int ERROR_FILE_READ = 10012;
    /** Status: a file can't be written. */
    public static final int ERROR_FILE_WRITE = 10013;
    /** Status: numeric trouble. */
    public static final int ERROR_NUMERIC = 10014;
    /** Status: the library can't do this; the text says what. */
    public static final int ERROR_NOT_SUPPORTED = 10015;
    /** Status: the library is of another major version. */
    public static final int ERROR_VERSION = 10016;
    /** Status: a run is going on; of sync: it is inside a callback on the calling thread. */
    public static final int ERROR_IN_PROGRESS = 10017;
    /** Status: the environment wasn't started. */
    public static final int ERROR_NOT_STARTED = 10018;
    /** Status: nothing of that name. */
    public static final int ERROR_NOT_FOUND = 10019;
    /** Status: a fault of the library itself. */
    public static final int ERROR_INTERNAL = 10020;
    /** "Status": not solved yet. */
    public static final int STATUS_LOADED = 1;
    /** "Status": solved to optimality. */
    public static final int STATUS_OPTIMAL = 2;
    /** "Status": there is no solution. */
    public static final int STATUS_INFEASIBLE = 3;
    /** "Status": the objective has no limit. */
    public static final int STATUS_UNBOUNDED = 4;
    /** "Status": one of the two. */
    public static final int STATUS_INFEASIBLE_OR_UNBOUNDED = 5;
    /** "Status": ended by the time limit. */
    public static final int STATUS_TIME_LIMIT = 6;
    /** "Status": ended by the node limit. */
    public static final int STATUS_NODE_LIMIT = 7;
    /** "Status": ended by the iteration limit. */
    public static final int STATUS_ITERATION_LIMIT = 8;
    /** "Status": ended by the solution limit. */
    public static final int STATUS_SOLUTION_LIMIT = 9;
    /** "Status": ended by terminate. */
    public static final int STATUS_INTERRUPTED = 10;
    /** "Status": ended by numeric trouble. */
    public static final int STATUS_NUMERIC = 11;
    /** "Status": a run is going on. */
    public static final int STATUS_IN_PROGRESS = 12;
    /** Objective sense. */
    public static final int MINIMIZE = 1;
    /** Objective sense. */
    public static final int MAXIMIZE = -1;
    /** Constraint sense. */
    public static final char LESS_EQUAL = '<';
    /** Constraint sense. */
    public static final char GREATER_EQUAL = '>';
    /** Constraint sense. */
    public static final char EQUAL = '=';
    /** Variable type. */
    public static final char CONTINUOUS = 'C';
    /** Variable type: 0 or 1. */
    public static final char BINARY = 'B';
    /** Variable type. */
    public static final char INTEGER = 'I';
    /** Variable type: 0, or between the bounds. */
    public static final char SEMICONT = 'S';
    /** Variable type: 0, or an integer between the bounds. */
    public static final char SEMIINT = 'N';
    /** SOS type: at most one member differs from 0. */
    public static final int SOS_TYPE1 = 1;
    /** SOS type: at most two members, neighbours, differ from 0. */
    public static final int SOS_TYPE2 = 2;
    /** Basis status: basic. */
    public static final int BASIC = 0;
    /** Basis status: at the lower bound. */
    public static final int NONBASIC_LOWER = -1;
    /** Basis status: at the upper bound. */
    public static final int NONBASIC_UPPER = -2;
    /** Basis status: nonbasic between the bounds. */
    public static final int SUPERBASIC = -3;
    /** Where: now and then, when nothing else was reported for a while. */
    public static final int CB_POLLING = 0;
    /** Where: during presolve. */
    public static final int CB_PRESOLVE = 1;
    /** Where: during simplex or barrier iterations. */
    public static final int CB_SIMPLEX = 2;
    /** Where: progress of branch and bound. */
    public static final int CB_MIP = 3;
    /** Where: a new solution was found; it can still be rejected by a lazy cut. */
    public static final int CB_MIPSOL = 4;
    /** Where: the relaxation of a node was solved. */
    public static final int CB_MIPNODE = 5;
    /** Where: a log line was written. */
    public static final int CB_MESSAGE = 6;
    /** Where: during the search for an IIS. */
    public static final int CB_IIS = 7;
    /** Where: one of several objectives was solved. */
    public static final int CB_MULTIOBJ = 8;
    /** Where: during tuning, before each trial. */
    public static final int CB_TUNE = 9;
    /** What: double: seconds since the run began. */
    public static final int CB_RUNTIME = 1;
    /** What: int: columns removed so far. */
    public static final int CB_PRE_COLDEL = 1001;
    /** What: int: rows removed so far. */
    public static final int CB_PRE_ROWDEL = 1002;
    /** What: double: iterations so far. */
    public static final int CB_SPX_ITERATIONS = 2001;
    /** What: double: current objective value. */
    public static final int CB_SPX_OBJVAL = 2002;
    /** What: double: current sum of primal infeasibilities. */
    public static final int CB_SPX_PRIMINF = 2003;
    /** What: double: current sum of dual infeasibilities. */
    public static final int CB_SPX_DUALINF = 2004;
    /** What: double: objective of the best solution (infinite if none). */
    public static final int CB_MIP_OBJBEST = 3001;
    /** What: double: best proven bound. */
    public static final int CB_MIP_OBJBOUND = 3002;
    /** What: double: nodes explored. */
    public static final int CB_MIP_NODES = 3003;
    /** What: int: solutions found. */
    public static final int CB_MIP_SOLCOUNT = 3004;
    /** What: double: nodes waiting. */
    public static final int CB_MIP_OPENNODES = 3005;
    /** What: double: simplex iterations. */
    public static final int CB_MIP_ITERATIONS = 3006;
    /** What: double vector: the new solution, one value a variable. */
    public static final int CB_MIPSOL_SOL = 4001;
    /** What: double: objective of the new solution. */
    public static final int CB_MIPSOL_OBJ = 4002;
    /** What: double: best objective including the new solution. */
    public static final int CB_MIPSOL_OBJBEST = 4003;
    /** What: double: best proven bound. */
    public static final int CB_MIPSOL_OBJBOUND = 4004;
    /** What: double: nodes explored. */
    public static final int CB_MIPSOL_NODES = 4005;
    /** What: int: solutions found before this one. */
    public static final int CB_MIPSOL_SOLCOUNT = 4006;
    /** What: int: status of the node's relaxation (STATUS_). */
    public static final int CB_MIPNODE_STATUS = 5001;
    /** What: double vector: the node's relaxation. */
    public static final int CB_MIPNODE_REL = 5002;
    /** What: double: objective of the best solution. */
    public static final int CB_MIPNODE_OBJBEST = 5003;
    /** What: double: best proven bound. */
    public static final int CB_MIPNODE_OBJBOUND = 5004;
    /** What: double: nodes explored. */
    public static final int CB_MIPNODE_NODES = 5005;
    /** What: int: solutions found. */
    public static final int CB_MIPNODE_SOLCOUNT = 5006;
    /** What: text: the log line. */
    public static final int CB_MSG_STRING = 6001;
    /** What: int: constraints and bounds known to belong to the IIS. */
    public static final int CB_IIS_CONSTRS = 7001;
    /** What: int: constraints and bounds not yet decided. */
    public static final int CB_IIS_UNDECIDED = 7002;
    /** What: int: objectives solved so far. */
    public static final int CB_MULTIOBJ_SOLVED = 8001;
    /** What: double: value of the objective just solved. */
    public static final int CB_MULTIOBJ_OBJVAL = 8002;
    /** What: double vector: the solution so far. */
    public static final int CB_MULTIOBJ_SOL = 8003;
    /** What: int: number of the trial that begins, from 0. */
    public static final int CB_TUNE_TRIAL = 9001;
    /** What: int: number of trials in all. */
    public static final int CB_TUNE_TRIALS = 9002;
    /** Type of an attribute or callback datum. */
    public static final int TYPE_INT = 1;
    /** Type of an attribute or callback datum. */
    public static final int TYPE_DOUBLE = 2;
    /** Type of an attribute or callback datum. */
    public static final int TYPE_STRING = 3;
    /** Type of an attribute or callback datum. */
    public static final int TYPE_CHAR = 4;
    /** What an attribute belongs to. */
    public static final int OF_MODEL = 0;
    /** What an attribute belongs to. */
    public static final int OF_VARIABLE = 1;
    /** What an attribute belongs to. */
    public static final int OF_CONSTRAINT = 2;
    /** What an attribute belongs to. */
    public static final int OF_SOS = 3;
    /** What an attribute belongs to. */
    public static final int OF_QCONSTRAINT = 4;
    /** What an attribute belongs to. */
    public static final int OF_GENCONSTRAINT = 5;
    /** "BatchStatus". */
    public static final int BATCH_SUBMITTED = 1;
    /** "BatchStatus". */
    public static final int BATCH_RUNNING = 2;
    /** "BatchStatus". */
    public static final int BATCH_COMPLETED = 3;
    /** "BatchStatus". */
    public static final int BATCH_FAILED = 4;
    /** "BatchStatus". */
    public static final int BATCH_ABORTED = 5;
    /** "BatchStatus". */
    public static final int BATCH_DISCARDED = 6;
    /** A value that isn't known, in start values and proposed solutions. */
    public static final double UNDEFINED = 1e101;
    /** "GenConstrType". */
    public static final int GENCONSTR_MAX = 0;
    /** "GenConstrType". */
    public static final int GENCONSTR_MIN = 1;
    /** "GenConstrType". */
    public static final int GENCONSTR_ABS = 2;
    /** "GenConstrType". */
    public static final int GENCONSTR_AND = 3;
    /** "GenConstrType". */
    public static final int GENCONSTR_OR = 4;
    /** "GenConstrType". */
    public static final int GENCONSTR_NORM = 5;
    /** "GenConstrType". */
    public static final int GENCONSTR_INDICATOR = 6;
    /** "GenConstrType". */
    public static final int GENCONSTR_PWL = 7;
    /** "GenConstrType". */
    public static final int GENCONSTR_POLY = 8;
    /** "GenConstrType". */
    public static final int GENCONSTR_EXP = 9;
    /** "GenConstrType". */
    public static final int GENCONSTR_EXPA = 10;
    /** "GenConstrType". */
    public static final int GENCONSTR_LOG = 11;
    /** "GenConstrType". */
    public static final int GENCONSTR_LOGA = 12;
    /** "GenConstrType". */
    public static final int GENCONSTR_POW = 13;
    /** "GenConstrType". */
    public static final int GENCONSTR_SIN = 14;
    /** "GenConstrType". */
    public static final int GENCONSTR_COS = 15;
    /** "GenConstrType". */
    public static final int GENCONSTR_TAN = 16;
    /** "GenConstrType". */
    public static final int GENCONSTR_LOGISTIC = 17;
    /** "GenConstrType". */
    public static final int GENCONSTR_NL = 18;
    /** Operation of an expression tree: leaf: its data is the number. */
    public static final int NL_CONSTANT = 0;
    /** Operation of an expression tree: leaf: its data is the variable's index. */
    public static final int NL_VARIABLE = 1;
    /** Operation of an expression tree: sum of any number of operands. */
    public static final int NL_PLUS = 2;
    /** Operation of an expression tree. */
    public static final int NL_MINUS = 3;
    /** Operation of an expression tree: product of any number of operands. */
    public static final int NL_MULTIPLY = 4;
    /** Operation of an expression tree. */
    public static final int NL_DIVIDE = 5;
    /** Operation of an expression tree. */
    public static final int NL_NEGATE = 6;
    /** Operation of an expression tree. */
    public static final int NL_POWER = 7;
    /** Operation of an expression tree. */
    public static final int NL_SQRT = 8;
    /** Operation of an expression tree. */
    public static final int NL_EXP = 9;
    /** Operation of an expression tree: natural logarithm. */
    public static final int NL_LOG = 10;
    /** Operation of an expression tree. */
    public static final int NL_SIN = 11;
    /** Operation of an expression tree. */
    public static final int NL_COS = 12;
    /** Operation of an expression tree. */
    public static final int NL_TAN = 13;
    /** Operation of an expression tree. */
    public static final int NL_LOGISTIC = 14;
}
