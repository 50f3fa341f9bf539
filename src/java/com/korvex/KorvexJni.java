package com.korvex;

/**
 * The native methods behind environments, models and batches: the raw level, for authors of other
 * interfaces. They work on handles, the native objects' addresses, and do no more than hand their
 * arguments to the solver. {@link KVXEnv}, {@link KVXModel} with its parts, {@link KVXBatch} and
 * {@link KVXCallbackContext} do the same with checks, and nothing can crash there.
 *
 * <p><b>Statuses.</b> A status is 0 or one of the {@code ERROR_} codes of {@link KVX}. The bridge
 * itself answers with {@link KVX#ERROR_NULL_ARGUMENT} for a text that is null but must not be, and
 * with {@link KVX#ERROR_OUT_OF_MEMORY}; the solver hasn't been called then. All others are the
 * solver's, and the environment's error text explains them.
 *
 * <p><b>Slots.</b> What a method hands back it writes into slots, arrays of the caller's. They are
 * written when the status is 0 and stay as they were otherwise, unless the method says more.
 *
 * <p><b>Arrays.</b> Counts are arguments; arrays aren't measured. An array that is read must be as
 * long as the count that goes with it: if it is shorter, the solver has been given uninitialised
 * memory, and done its work with it, when an {@link ArrayIndexOutOfBoundsException} is thrown. If
 * an array that is written is too short, that exception is thrown after all work was done. Null
 * crashes the virtual machine unless the method allows it. What the values in an array say, begins
 * for example, goes to the solver unseen.
 *
 * <p><b>Counts.</b> A count must not be negative unless the method says what 0 or less does; the
 * virtual machine and the solver judge it then. A count that isn't an array's own, such as the
 * capacity in a slot, must be what the method asks for, or native memory is overrun.
 *
 * <p><b>Handles</b> are used as they are: one that was freed, or is of another kind, crashes. That
 * of a callback is {@link KVXCallbackContext#handle}; the record of a native asynchronous start
 * can't be had outside this package.
 *
 * <p><b>Threads.</b> Nothing is locked: an object may be used by one thread at a time, beside it by
 * the callbacks of its run; {@link #terminate} and {@link #message} may be called at any moment.
 *
 * <p><b>The log</b> that {@link KVXEnv#setLog} has bound serves one Java thread: the one that has
 * set it or, later, has last logged through the checked classes. A line from another Java thread is
 * the last one until those bind the log again. Lines come from {@link #message}, {@link
 * #feasrelax},
 * {@link #tunemodel}, and with some libraries from whatever makes, reads or writes a model,
 * parameters or a batch. Never bind a log in a callback on a thread of the solver's, as {@link
 * #sync} waits for: it is attached for the callback only, and the log would stay bound to a thread
 * that goes away.
 */
public final class KorvexJni {
    private KorvexJni() {}

    static { NativeLibrary.load(); }

    // Environments.

    /**
     * Makes an empty environment: parameters can be set on it before {@link #startenv}.
     *
     * @param envslot element 0 receives the handle of the environment, whatever the status: after a
     *     failure it holds the error text and must be freed, unless it is 0
     * @param major first number of the caller's version
     * @param minor second number
     * @param technical third number
     * @return the status
     */
    public static native int createenv(long[] envslot, int major, int minor, int technical);

    /**
     * Makes and starts an environment. If the caller's version is of the same major number as the
     * bridge's but differs from it otherwise, a warning goes to the environment's log.
     *
     * @param envslot element 0 receives the handle of the environment, whatever the status: after a
     *     failure it holds the error text and must be freed, unless it is 0; not written if a text
     *     can't be fetched
     * @param logfile name of the log file, or null for none
     * @param major first number of the caller's version
     * @param minor second number
     * @param technical third number
     * @param extra non-zero turns the log to the console off
     * @return the status
     */
    public static native int loadenv(long[] envslot, String logfile, int major, int minor,
                                     int technical, int extra);

    /**
     * Starts an environment that {@link #createenv} made.
     *
     * @param env handle of the environment
     * @return the status
     */
    public static native int startenv(long env);

    /**
     * Returns the environment that a model owns: its own parameters and its error text. It ends
     * with the model.
     *
     * @param model handle of the model
     * @return the handle
     */
    public static native long getenv(long model);

    /**
     * Returns one of a model's concurrent environments, made by the first call.
     *
     * @param model handle of the model
     * @param num its number, from 0
     * @return the handle, or 0 if the solver has none; the model's error text says why
     */
    public static native long getconcurrentenv(long model, int num);

    /**
     * Gives up all concurrent environments of a model.
     *
     * @param model handle of the model
     */
    public static native void discardconcurrentenvs(long model);

    /**
     * Returns the environment of one of a model's objectives, made by the first call.
     *
     * @param model handle of the model
     * @param index number of the objective
     * @return the handle, or 0
     */
    public static native long getmultiobjenv(long model, int index);

    /**
     * Gives up the environments of a model's objectives.
     *
     * @param model handle of the model
     */
    public static native void discardmultiobjenvs(long model);

    /**
     * Frees an environment, whose models and batches must have been freed and whose log must have
     * been unbound.
     *
     * @param env handle of the environment
     */
    public static native void freeenv(long env);

    /**
     * Tells the version of the solver.
     *
     * @param out elements 0 to 2 receive its three numbers
     */
    public static native void version(int[] out);

    /**
     * Writes a text to an environment's log. On another Java thread than the one that the log is
     * bound to, the line is the last that arrives there, see above.
     *
     * @param env handle of the environment
     * @param msg the text; null does nothing
     * @return 0, or {@link KVX#ERROR_OUT_OF_MEMORY}
     */
    public static native int message(long env, String msg);

    /**
     * Returns an environment's last error text; a model's is that of its own environment.
     *
     * @param env handle of the environment
     * @return the text, or null for the handle 0
     */
    public static native String geterrormsg(long env);

    // Parameters.

    /**
     * Reads an int parameter.
     *
     * @param env handle of the environment
     * @param paramname name of the parameter
     * @param value element 0 receives it
     * @return the status
     */
    public static native int getintparam(long env, String paramname, int[] value);

    /**
     * Reads a double parameter.
     *
     * @param env handle of the environment
     * @param paramname name of the parameter
     * @param value element 0 receives it
     * @return the status
     */
    public static native int getdblparam(long env, String paramname, double[] value);

    /**
     * Reads a text parameter of any length.
     *
     * @param env handle of the environment
     * @param paramname name of the parameter
     * @param value element 0 receives it
     * @return the status
     */
    public static native int getstrparam(long env, String paramname, String[] value);

    /**
     * Describes an int parameter.
     *
     * @param env handle of the environment
     * @param paramname name of the parameter
     * @param info elements 0 to 3 receive the current value, minimum, maximum and default
     * @return the status
     */
    public static native int getintparaminfo(long env, String paramname, int[] info);

    /**
     * Describes a double parameter.
     *
     * @param env handle of the environment
     * @param paramname name of the parameter
     * @param info elements 0 to 3 receive the current value, minimum, maximum and default
     * @return the status
     */
    public static native int getdblparaminfo(long env, String paramname, double[] info);

    /**
     * Describes a text parameter.
     *
     * @param env handle of the environment
     * @param paramname name of the parameter
     * @param info elements 0 and 1 receive the current value and the default, each cut off at 511
     *     bytes
     * @return the status
     */
    public static native int getstrparaminfo(long env, String paramname, String[] info);

    /**
     * Sets an int parameter.
     *
     * @param env handle of the environment
     * @param paramname name of the parameter
     * @param newvalue its new value
     * @return the status
     */
    public static native int setintparam(long env, String paramname, int newvalue);

    /**
     * Sets a double parameter.
     *
     * @param env handle of the environment
     * @param paramname name of the parameter
     * @param newvalue its new value
     * @return the status
     */
    public static native int setdblparam(long env, String paramname, double newvalue);

    /**
     * Sets a text parameter.
     *
     * @param env handle of the environment
     * @param paramname name of the parameter
     * @param newvalue its new value, not null
     * @return the status
     */
    public static native int setstrparam(long env, String paramname, String newvalue);

    /**
     * Sets a parameter of any type from its text.
     *
     * @param env handle of the environment
     * @param paramname name of the parameter
     * @param newvalue its new value as text, not null
     * @return the status
     */
    public static native int setparam(long env, String paramname, String newvalue);

    /**
     * Sets every parameter to its default.
     *
     * @param env handle of the environment
     * @return the status
     */
    public static native int resetparams(long env);

    /**
     * Writes the parameters that differ from their defaults to a file.
     *
     * @param env handle of the environment
     * @param filename name of the file
     * @return the status
     */
    public static native int writeparams(long env, String filename);

    /**
     * Reads a parameter file.
     *
     * @param env handle of the environment
     * @param filename name of the file
     * @return the status
     */
    public static native int readparams(long env, String filename);

    // Models: making, freeing.

    /**
     * Makes a model with variables and no constraints.
     *
     * @param statusslot element 0 receives 0 when a model with variables was made; otherwise it
     *     isn't written
     * @param env handle of the environment
     * @param name its name, or null
     * @param numvars number of variables; the solver refuses a negative one
     * @param obj {@code numvars} objective coefficients; unread if {@code numvars} is 0 or less
     * @param lb {@code numvars} lower bounds; unread likewise
     * @param ub {@code numvars} upper bounds; unread likewise
     * @param types {@code numvars} type characters; unread likewise
     * @param names {@code numvars} names, each of which may be null; unread likewise
     * @return the handle of the model, or 0 after any failure; the environment has the error text
     */
    public static native long newmodel(int[] statusslot, long env, String name, int numvars,
                                       double[] obj, double[] lb, double[] ub, char[] types,
                                       String[] names);

    /**
     * Applies pending changes to a model. The development solver has none, it changes a model at
     * once; with another library, what was added, deleted or set can be read, and be referred to by
     * its index, only after this.
     *
     * @param model handle of the model
     * @return the status
     */
    public static native int updatemodel(long model);

    /**
     * Forgets a model's solution.
     *
     * @param model handle of the model
     * @param clearall non-zero: forget start values and basis, too
     * @return the status
     */
    public static native int reset(long model, int clearall);

    /**
     * Frees a model. A run that goes on in the background is terminated and waited for.
     *
     * @param model handle of the model
     * @return the status
     */
    public static native int freemodel(long model);

    /**
     * Makes a whole linear model. Column j has the {@code len[j]} entries of {@code ind} and
     * {@code val} from {@code beg[j]} on; columns may lie there in any order. No array and no name
     * may be null, but an array may be empty when its count is 0; {@code names} is unread then, and
     * so is {@code constrnames}.
     *
     * @param env handle of the environment
     * @param name its name, or null
     * @param numvars number of variables
     * @param numconstrs number of constraints
     * @param objsense {@link KVX#MINIMIZE} or {@link KVX#MAXIMIZE}
     * @param objcon objective constant
     * @param obj {@code numvars} objective coefficients
     * @param senses {@code numconstrs} sense characters
     * @param rhs {@code numconstrs} right-hand sides
     * @param beg {@code numvars} positions
     * @param len {@code numvars} lengths
     * @param ind constraint indices
     * @param val coefficients
     * @param lb {@code numvars} lower bounds
     * @param ub {@code numvars} upper bounds
     * @param types {@code numvars} type characters
     * @param names {@code numvars} names
     * @param constrnames {@code numconstrs} names
     * @return the handle of the model, or 0 after any failure, a negative begin or length among
     *     them
     */
    public static native long loadmodel(long env, String name, int numvars, int numconstrs,
                                        int objsense, double objcon, double[] obj, char[] senses,
                                        double[] rhs, int[] beg, int[] len, int[] ind, double[] val,
                                        double[] lb, double[] ub, char[] types, String[] names,
                                        String[] constrnames);

    // Derived models.

    /**
     * Copies a model into another environment.
     *
     * @param model handle of the model
     * @param targetenv handle of that environment
     * @param modelslot element 0 receives the handle of the new model, whatever the status; 0 if
     *     there is none
     * @return the status
     */
    public static native int copymodel(long model, long targetenv, long[] modelslot);

    /**
     * Makes the model without integrality, SOS and general constraints.
     *
     * @param model handle of the model
     * @param modelslot element 0 receives the handle of the new model, whatever the status; 0 if
     *     there is none
     * @return the status
     */
    public static native int relaxmodel(long model, long[] modelslot);

    /**
     * Makes the linear model in which discrete variables are fixed at the best solution.
     *
     * @param model handle of the model
     * @param modelslot element 0 receives the handle of the new model, whatever the status; 0 if
     *     there is none
     * @return the status
     */
    public static native int fixedmodel(long model, long[] modelslot);

    /**
     * Makes the model as it is after presolve.
     *
     * @param model handle of the model
     * @param modelslot element 0 receives the handle of the new model, whatever the status; 0 if
     *     there is none
     * @return the status
     */
    public static native int presolvemodel(long model, long[] modelslot);

    /**
     * Makes the dual of a linear model.
     *
     * @param model handle of the model
     * @param modelslot element 0 receives the handle of the new model, whatever the status; 0 if
     *     there is none
     * @return the status
     */
    public static native int dualmodel(long model, long[] modelslot);

    /**
     * Makes the model that minimises the sum of constraint violations.
     *
     * @param model handle of the model
     * @param modelslot element 0 receives the handle of the new model, whatever the status; 0 if
     *     there is none
     * @return the status
     */
    public static native int feasibility(long model, long[] modelslot);

    /**
     * Makes the model with general constraints replaced by linear constraints and SOS.
     *
     * @param model handle of the model
     * @param modelslot element 0 receives the handle of the new model, whatever the status; 0 if
     *     there is none
     * @return the status
     */
    public static native int linearize(long model, long[] modelslot);

    /**
     * Makes the model of the current scenario.
     *
     * @param model handle of the model
     * @param modelslot element 0 receives the handle of the new model, whatever the status; 0 if
     *     there is none
     * @return the status
     */
    public static native int singlescenariomodel(long model, long[] modelslot);

    /**
     * Turns a model into its feasibility relaxation. The violations are new variables: before
     * another call the weights must be as many as there are variables then.
     *
     * @param model handle of the model
     * @param penalty 0: sum of violations; 1: sum of squares; 2: number of violations
     * @param minrelax 0: minimise the penalty alone; 1: find the least penalty, then the best
     *     original objective at that penalty
     * @param lbpen a weight a variable for violated lower bounds, or null to keep these
     * @param ubpen a weight a variable for violated upper bounds, or null to keep these
     * @param conpen a weight a constraint for violations, or null to keep the constraints
     * @param resultslot element 0 receives the least penalty if {@code minrelax} is 1, else 0
     * @return the status
     */
    public static native int feasrelax(long model, int penalty, int minrelax, double[] lbpen,
                                       double[] ubpen, double[] conpen, double[] resultslot);

    // Files.

    /**
     * Reads a model file.
     *
     * @param env handle of the environment
     * @param filename name of the file
     * @return the handle of a new model, or 0 after any failure; the environment has the error text
     */
    public static native long readmodel(long env, String filename);

    /**
     * Reads a solution, start, basis or parameter file into a model.
     *
     * @param model handle of the model
     * @param filename name of the file
     * @return the status
     */
    public static native int read(long model, String filename);

    /**
     * Writes a model, or its solution, start, basis or parameters, as the file's ending says.
     *
     * @param model handle of the model
     * @param filename name of the file
     * @return the status
     */
    public static native int write(long model, String filename);

    /**
     * Tells whether a file's name is that of a model file.
     *
     * @param filename name of the file
     * @return 0 if it isn't, 1 MPS, 2 LP; {@link KVX#ERROR_NULL_ARGUMENT} for null
     */
    public static native int ismodelfile(String filename);

    /**
     * Tells whether a file's name is that of an attribute file.
     *
     * @param filename name of the file
     * @return 0 if it isn't, 1 solution, 2 start, 3 basis, 4 parameters;
     *     {@link KVX#ERROR_NULL_ARGUMENT} for null
     */
    public static native int isattrfile(String filename);

    /**
     * Returns a model's solution as JSON.
     *
     * @param model handle of the model
     * @param textslot element 0 receives the text
     * @return the status
     */
    public static native int getJSONSolution(long model, String[] textslot);

    // Variables and linear constraints.

    /**
     * Adds variables. Item k has the entries of {@code ind} and {@code val} from {@code beg[k]} up
     * to {@code beg[k+1]}, the last one up to {@code numnz}.
     *
     * @param model handle of the model
     * @param numvars number of variables; with 0 nothing happens, a negative one isn't looked at
     *     before the arrays
     * @param numnz number of coefficients over all of them
     * @param beg {@code numvars} positions
     * @param ind {@code numnz} constraint indices; unread if that is 0 or less
     * @param val {@code numnz} coefficients; unread likewise
     * @param obj {@code numvars} objective coefficients, or null for 0
     * @param lb {@code numvars} lower bounds, or null for 0
     * @param ub {@code numvars} upper bounds, or null for none
     * @param types {@code numvars} type characters, or null for continuous
     * @param names {@code numvars} names, or null; each may be null
     * @return the status
     */
    public static native int addvars(long model, int numvars, int numnz, int[] beg, int[] ind,
                                     double[] val, double[] obj, double[] lb, double[] ub,
                                     char[] types, String[] names);

    /**
     * Adds linear constraints, or range constraints with two bounds. Item k has the entries of
     * {@code ind} and {@code val} from {@code beg[k]} up to {@code beg[k+1]}, the last one up to
     * {@code numnz}.
     *
     * @param model handle of the model
     * @param numconstrs number of constraints; with 0 or less nothing happens
     * @param numnz number of coefficients over all of them
     * @param beg {@code numconstrs} positions
     * @param ind {@code numnz} variable indices; unread if that is 0 or less
     * @param val {@code numnz} coefficients; unread likewise
     * @param senses {@code numconstrs} sense characters; needed, but unused, for range constraints
     * @param lower {@code numconstrs} lower bounds, which make them range constraints; or null
     * @param rhs {@code numconstrs} right-hand sides, the upper bounds of range constraints
     * @param names {@code numconstrs} names, or null; each may be null
     * @return the status
     */
    public static native int addconstrs(long model, int numconstrs, int numnz, int[] beg, int[] ind,
                                        double[] val, char[] senses, double[] lower, double[] rhs,
                                        String[] names);

    // Quadratic terms.

    /**
     * Adds quadratic terms to the objective.
     *
     * @param model handle of the model
     * @param numqnz number of terms; with 0 or less nothing happens
     * @param qrow {@code numqnz} indices of the first variables
     * @param qcol {@code numqnz} indices of the second variables
     * @param qval {@code numqnz} coefficients
     * @return the status
     */
    public static native int addqpterms(long model, int numqnz, int[] qrow, int[] qcol,
                                        double[] qval);

    /**
     * Removes the objective's quadratic terms.
     *
     * @param model handle of the model
     * @return the status
     */
    public static native int delq(long model);

    /**
     * Reads the objective's quadratic terms. The number is written first; the arrays only if they
     * hold it and it isn't 0.
     *
     * @param model handle of the model
     * @param numqnzslot element 0 holds the room in the arrays, and receives the number of terms
     * @param qrow receives the indices of the first variables
     * @param qcol receives the indices of the second variables
     * @param qval receives the coefficients
     * @return the status
     */
    public static native int getq(long model, int[] numqnzslot, int[] qrow, int[] qcol,
                                  double[] qval);

    /**
     * Adds a quadratic constraint.
     *
     * @param model handle of the model
     * @param numlnz number of linear terms
     * @param lind {@code numlnz} variable indices; unread if that is 0 or less
     * @param lval {@code numlnz} coefficients; unread likewise
     * @param numqnz number of quadratic terms
     * @param qrow {@code numqnz} indices of the first variables; unread if that is 0 or less
     * @param qcol {@code numqnz} indices of the second variables; unread likewise
     * @param qval {@code numqnz} coefficients; unread likewise
     * @param sense sense character
     * @param rhs right-hand side
     * @param name its name, or null
     * @return the status
     */
    public static native int addqconstr(long model, int numlnz, int[] lind, double[] lval,
                                        int numqnz, int[] qrow, int[] qcol, double[] qval,
                                        char sense, double rhs, String name);

    /**
     * Reads a quadratic constraint. The numbers are written first; then, if any array is given,
     * every array that isn't null, which must be long enough.
     *
     * @param model handle of the model
     * @param qconstr index of the constraint
     * @param numlnzslot element 0 receives the number of linear terms
     * @param lind receives their variable indices; may be null
     * @param lval receives their coefficients; may be null
     * @param numqnzslot element 0 receives the number of quadratic terms
     * @param qrow receives the indices of their first variables; may be null
     * @param qcol receives the indices of their second variables; may be null
     * @param qval receives their coefficients; may be null
     * @return the status
     */
    public static native int getqconstr(long model, int qconstr, int[] numlnzslot, int[] lind,
                                        double[] lval, int[] numqnzslot, int[] qrow, int[] qcol,
                                        double[] qval);

    // Special ordered sets.

    /**
     * Adds special ordered sets. Set k has the entries of {@code ind} and {@code weight} from
     * {@code beg[k]} up to {@code beg[k+1]}, the last one up to {@code nummembers}. With no set or
     * no member nothing happens.
     *
     * @param model handle of the model
     * @param numsos number of sets
     * @param nummembers number of members of all of them
     * @param types {@code numsos} types, {@link KVX#SOS_TYPE1} or {@link KVX#SOS_TYPE2}
     * @param beg {@code numsos} positions
     * @param ind {@code nummembers} variable indices
     * @param weight {@code nummembers} weights
     * @return the status
     */
    public static native int addsos(long model, int numsos, int nummembers, int[] types, int[] beg,
                                    int[] ind, double[] weight);

    /**
     * Reads successive special ordered sets. The number of members is written first; the arrays
     * only if they hold it and it isn't 0.
     *
     * @param model handle of the model
     * @param nummembersslot element 0 holds the room in {@code ind} and {@code weight}, and
     *     receives the number of members
     * @param types receives {@code count} types
     * @param beg receives {@code count} + 1 positions
     * @param ind receives the variable indices
     * @param weight receives the weights
     * @param start index of the first set
     * @param count number of sets
     * @return the status
     */
    public static native int getsos(long model, int[] nummembersslot, int[] types, int[] beg,
                                    int[] ind, double[] weight, int start, int count);

    // Deletion and coefficients.

    /**
     * Removes variables; the others are renumbered.
     *
     * @param model handle of the model
     * @param num how many; with 0 or less nothing happens
     * @param ind {@code num} indices, in any order
     * @return the status
     */
    public static native int delvars(long model, int num, int[] ind);

    /**
     * Removes linear constraints; the others are renumbered.
     *
     * @param model handle of the model
     * @param num how many; with 0 or less nothing happens
     * @param ind {@code num} indices, in any order
     * @return the status
     */
    public static native int delconstrs(long model, int num, int[] ind);

    /**
     * Removes special ordered sets; the others are renumbered.
     *
     * @param model handle of the model
     * @param num how many; with 0 or less nothing happens
     * @param ind {@code num} indices, in any order
     * @return the status
     */
    public static native int delsos(long model, int num, int[] ind);

    /**
     * Removes quadratic constraints; the others are renumbered.
     *
     * @param model handle of the model
     * @param num how many; with 0 or less nothing happens
     * @param ind {@code num} indices, in any order
     * @return the status
     */
    public static native int delqconstrs(long model, int num, int[] ind);

    /**
     * Removes general constraints; the others are renumbered.
     *
     * @param model handle of the model
     * @param num how many; with 0 or less nothing happens
     * @param ind {@code num} indices, in any order
     * @return the status
     */
    public static native int delgenconstrs(long model, int num, int[] ind);

    /**
     * Changes coefficients of linear constraints.
     *
     * @param model handle of the model
     * @param numchgs how many; with 0 or less nothing happens
     * @param cind {@code numchgs} constraint indices
     * @param vind {@code numchgs} variable indices
     * @param val {@code numchgs} coefficients
     * @return the status
     */
    public static native int chgcoeffs(long model, int numchgs, int[] cind, int[] vind,
                                       double[] val);

    /**
     * Cleans a sparse list in place: sorts it by index, adds up entries of equal index, drops
     * zeros. Entries beyond the new length stay as they were.
     *
     * @param lenslot element 0 holds the length of the list, and receives its new length
     * @param ind the indices
     * @param val the values
     * @return 0, or {@link KVX#ERROR_OUT_OF_MEMORY} with the list as it was
     */
    public static native int clean2(int[] lenslot, int[] ind, double[] val);

    /**
     * Cleans a sparse list with two indices an entry, as {@link #clean2} does.
     *
     * @param lenslot element 0 holds the length of the list, and receives its new length
     * @param ind1 the first indices
     * @param ind2 the second indices
     * @param val the values
     * @return 0, or {@link KVX#ERROR_OUT_OF_MEMORY} with the list as it was
     */
    public static native int clean3(int[] lenslot, int[] ind1, int[] ind2, double[] val);

    // Objectives.

    /**
     * Sets the whole objective: linear terms, all others becoming 0, quadratic terms and constant.
     *
     * @param model handle of the model
     * @param objsense {@link KVX#MINIMIZE}, {@link KVX#MAXIMIZE}, or 0 to leave it
     * @param numlnz number of linear terms
     * @param lind {@code numlnz} variable indices; unread if that is 0 or less
     * @param lval {@code numlnz} coefficients; unread likewise
     * @param numqnz number of quadratic terms
     * @param qrow {@code numqnz} indices of the first variables; unread if that is 0 or less
     * @param qcol {@code numqnz} indices of the second variables; unread likewise
     * @param qval {@code numqnz} coefficients; unread likewise
     * @param objcon the constant
     * @return the status
     */
    public static native int setobjective(long model, int objsense, int numlnz, int[] lind,
                                          double[] lval, int numqnz, int[] qrow, int[] qcol,
                                          double[] qval, double objcon);

    /**
     * Sets one of several objectives; with the first of them the model becomes multi-objective.
     *
     * @param model handle of the model
     * @param index its number, from 0, at most the number there are
     * @param priority higher ones are optimised first; equal ones are blended by weight
     * @param name its name, or null
     * @param numlnz number of linear terms
     * @param lind {@code numlnz} variable indices; unread if that is 0 or less
     * @param lval {@code numlnz} coefficients; unread likewise
     * @param constant its constant
     * @param weight its factor in the blend
     * @param abstol how much later objectives may worsen it
     * @param reltol the same, relative to its value
     * @return the status
     */
    public static native int setobjectiven(long model, int index, int priority, String name,
                                           int numlnz, int[] lind, double[] lval, double constant,
                                           double weight, double abstol, double reltol);

    /**
     * Gives a variable a piecewise-linear objective term in place of its linear one.
     *
     * @param model handle of the model
     * @param var index of the variable
     * @param npts number of breakpoints; with 0 or less nothing happens
     * @param x {@code npts} abscissae that don't decrease
     * @param y {@code npts} ordinates
     * @return the status
     */
    public static native int setpwlobj(long model, int var, int npts, double[] x, double[] y);

    /**
     * Reads a variable's piecewise-linear objective term. The number of breakpoints is written
     * first; the arrays only if they hold it and it isn't 0.
     *
     * @param model handle of the model
     * @param var index of the variable
     * @param nptsslot element 0 holds the room in the arrays, and receives the number of
     *     breakpoints
     * @param x receives the abscissae
     * @param y receives the ordinates
     * @return the status
     */
    public static native int getpwlobj(long model, int var, int[] nptsslot, double[] x, double[] y);

    // General constraints: adding.

    /**
     * Adds a general constraint: result = max(operands, constant).
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param resvar index of the result variable
     * @param nvars number of operands
     * @param vars {@code nvars} indices of the operands; not null
     * @param constant constant operand
     * @return the status
     */
    public static native int addgenconstrmax(long model, String name, int resvar, int nvars,
                                             int[] vars, double constant);

    /**
     * Adds a general constraint: result = min(operands, constant).
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param resvar index of the result variable
     * @param nvars number of operands
     * @param vars {@code nvars} indices of the operands; not null
     * @param constant constant operand
     * @return the status
     */
    public static native int addgenconstrmin(long model, String name, int resvar, int nvars,
                                             int[] vars, double constant);

    /**
     * Adds a general constraint: result = |argument|.
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param resvar index of the result variable
     * @param argvar index of the argument variable
     * @return the status
     */
    public static native int addgenconstrabs(long model, String name, int resvar, int argvar);

    /**
     * Adds a general constraint: result = 1 if all of the binary operands are 1, else 0.
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param resvar index of the result variable
     * @param nvars number of operands
     * @param vars {@code nvars} indices of the operands; not null
     * @return the status
     */
    public static native int addgenconstrand(long model, String name, int resvar, int nvars,
                                             int[] vars);

    /**
     * Adds a general constraint: result = 1 if any of the binary operands is 1, else 0.
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param resvar index of the result variable
     * @param nvars number of operands
     * @param vars {@code nvars} indices of the operands; not null
     * @return the status
     */
    public static native int addgenconstror(long model, String name, int resvar, int nvars,
                                            int[] vars);

    /**
     * Adds a general constraint: result = norm of the operands.
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param resvar index of the result variable
     * @param nvars number of operands
     * @param vars {@code nvars} indices of the operands; not null
     * @param which 0, 1, 2 or {@link KVX#INFINITY}
     * @return the status
     */
    public static native int addgenconstrnorm(long model, String name, int resvar, int nvars,
                                              int[] vars, double which);

    /**
     * Adds a general constraint: if a binary variable has a value then a linear constraint holds.
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param binvar index of the binary variable
     * @param binval the value at which the constraint holds
     * @param numlnz number of linear terms
     * @param lind {@code numlnz} variable indices; not null
     * @param lval {@code numlnz} coefficients; not null
     * @param sense sense character
     * @param rhs right-hand side
     * @return the status
     */
    public static native int addgenconstrindicator(long model, String name, int binvar, int binval,
                                                   int numlnz, int[] lind, double[] lval,
                                                   char sense, double rhs);

    /**
     * Adds a general constraint: y = piecewise-linear function of x.
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param xvar index of the variable x
     * @param yvar index of the variable y
     * @param npts number of breakpoints
     * @param x {@code npts} abscissae that don't decrease; not null
     * @param y {@code npts} ordinates; not null
     * @return the status
     */
    public static native int addgenconstrpwl(long model, String name, int xvar, int yvar, int npts,
                                             double[] x, double[] y);

    /**
     * Adds a general constraint: y = polynomial of x.
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param xvar index of the variable x
     * @param yvar index of the variable y
     * @param ncoef number of coefficients
     * @param coefs {@code ncoef} coefficients, that of the highest power first; not null
     * @param options options of the solver, or null
     * @return the status
     */
    public static native int addgenconstrpoly(long model, String name, int xvar, int yvar,
                                              int ncoef, double[] coefs, String options);

    /**
     * Adds a general constraint: y = e^x.
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param xvar index of the variable x
     * @param yvar index of the variable y
     * @param options options of the solver, or null
     * @return the status
     */
    public static native int addgenconstrexp(long model, String name, int xvar, int yvar,
                                             String options);

    /**
     * Adds a general constraint: y = base^x.
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param xvar index of the variable x
     * @param yvar index of the variable y
     * @param options options of the solver, or null
     * @param base the base
     * @return the status
     */
    public static native int addgenconstrexpa(long model, String name, int xvar, int yvar,
                                              String options, double base);

    /**
     * Adds a general constraint: y = ln x.
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param xvar index of the variable x
     * @param yvar index of the variable y
     * @param options options of the solver, or null
     * @return the status
     */
    public static native int addgenconstrlog(long model, String name, int xvar, int yvar,
                                             String options);

    /**
     * Adds a general constraint: y = logarithm of x to the base.
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param xvar index of the variable x
     * @param yvar index of the variable y
     * @param options options of the solver, or null
     * @param base the base
     * @return the status
     */
    public static native int addgenconstrloga(long model, String name, int xvar, int yvar,
                                              String options, double base);

    /**
     * Adds a general constraint: y = x^exponent.
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param xvar index of the variable x
     * @param yvar index of the variable y
     * @param options options of the solver, or null
     * @param exponent the exponent
     * @return the status
     */
    public static native int addgenconstrpow(long model, String name, int xvar, int yvar,
                                             String options, double exponent);

    /**
     * Adds a general constraint: y = sin x.
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param xvar index of the variable x
     * @param yvar index of the variable y
     * @param options options of the solver, or null
     * @return the status
     */
    public static native int addgenconstrsin(long model, String name, int xvar, int yvar,
                                             String options);

    /**
     * Adds a general constraint: y = cos x.
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param xvar index of the variable x
     * @param yvar index of the variable y
     * @param options options of the solver, or null
     * @return the status
     */
    public static native int addgenconstrcos(long model, String name, int xvar, int yvar,
                                             String options);

    /**
     * Adds a general constraint: y = tan x.
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param xvar index of the variable x
     * @param yvar index of the variable y
     * @param options options of the solver, or null
     * @return the status
     */
    public static native int addgenconstrtan(long model, String name, int xvar, int yvar,
                                             String options);

    /**
     * Adds a general constraint: y = 1 / (1 + e^-x).
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param xvar index of the variable x
     * @param yvar index of the variable y
     * @param options options of the solver, or null
     * @return the status
     */
    public static native int addgenconstrlogistic(long model, String name, int xvar, int yvar,
                                                  String options);

    /**
     * Adds a general constraint: result = value of an expression tree.
     *
     * @param model handle of the model
     * @param name its name, or null
     * @param resvar index of the result variable
     * @param nlcount number of nodes
     * @param opcodes {@code nlcount} operation codes; not null
     * @param data {@code nlcount} constants or variable indices; not null
     * @param parents {@code nlcount} parent nodes, -1 for the root; not null
     * @return the status
     */
    public static native int addgenconstrnl(long model, String name, int resvar, int nlcount,
                                            int[] opcodes, double[] data, int[] parents);

    // General constraints: reading back.

    /**
     * Reads a general constraint: result = max(operands, constant).
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param resvar element 0 receives the index of the result variable; may be null
     * @param nvars element 0 receives the number of operands; may be null
     * @param vars receives their indices; null, or as long as their number
     * @param constant element 0 receives the constant operand; may be null
     * @return the status
     */
    public static native int getgenconstrmax(long model, int genconstr, int[] resvar, int[] nvars,
                                             int[] vars, double[] constant);

    /**
     * Reads a general constraint: result = min(operands, constant).
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param resvar element 0 receives the index of the result variable; may be null
     * @param nvars element 0 receives the number of operands; may be null
     * @param vars receives their indices; null, or as long as their number
     * @param constant element 0 receives the constant operand; may be null
     * @return the status
     */
    public static native int getgenconstrmin(long model, int genconstr, int[] resvar, int[] nvars,
                                             int[] vars, double[] constant);

    /**
     * Reads a general constraint: result = |argument|.
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param resvar element 0 receives the index of the result variable; may be null
     * @param argvar element 0 receives the index of the argument variable; may be null
     * @return the status
     */
    public static native int getgenconstrabs(long model, int genconstr, int[] resvar, int[] argvar);

    /**
     * Reads a general constraint: result = 1 if all of the binary operands are 1, else 0.
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param resvar element 0 receives the index of the result variable; may be null
     * @param nvars element 0 receives the number of operands; may be null
     * @param vars receives their indices; null, or as long as their number
     * @return the status
     */
    public static native int getgenconstrand(long model, int genconstr, int[] resvar, int[] nvars,
                                             int[] vars);

    /**
     * Reads a general constraint: result = 1 if any of the binary operands is 1, else 0.
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param resvar element 0 receives the index of the result variable; may be null
     * @param nvars element 0 receives the number of operands; may be null
     * @param vars receives their indices; null, or as long as their number
     * @return the status
     */
    public static native int getgenconstror(long model, int genconstr, int[] resvar, int[] nvars,
                                            int[] vars);

    /**
     * Reads a general constraint: result = norm of the operands.
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param resvar element 0 receives the index of the result variable; may be null
     * @param nvars element 0 receives the number of operands; may be null
     * @param vars receives their indices; null, or as long as their number
     * @param which element 0 receives which norm; may be null
     * @return the status
     */
    public static native int getgenconstrnorm(long model, int genconstr, int[] resvar, int[] nvars,
                                              int[] vars, double[] which);

    /**
     * Reads a general constraint: if a binary variable has a value then a linear constraint holds.
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param binvar element 0 receives the index of the binary variable; may be null
     * @param binval element 0 receives the value at which the constraint holds; may be null
     * @param numlnz element 0 receives the number of terms; may be null
     * @param lind receives their variable indices; null, or as long as their number
     * @param lval receives their coefficients; null, or as long as their number
     * @param sense element 0 receives the sense character; may be null
     * @param rhs element 0 receives the right-hand side; may be null
     * @return the status
     */
    public static native int getgenconstrindicator(long model, int genconstr, int[] binvar,
                                                   int[] binval, int[] numlnz, int[] lind,
                                                   double[] lval, char[] sense, double[] rhs);

    /**
     * Reads a general constraint: y = piecewise-linear function of x.
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param xvar element 0 receives the index of x; may be null
     * @param yvar element 0 receives the index of y; may be null
     * @param npts element 0 receives the number of breakpoints; may be null
     * @param x receives the abscissae if it and {@code y} are given and long enough
     * @param y receives the ordinates likewise
     * @return the status
     */
    public static native int getgenconstrpwl(long model, int genconstr, int[] xvar, int[] yvar,
                                             int[] npts, double[] x, double[] y);

    /**
     * Reads a general constraint: y = polynomial of x.
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param xvar element 0 receives the index of x; may be null
     * @param yvar element 0 receives the index of y; may be null
     * @param ncoef element 0 receives the number of coefficients; may be null
     * @param coefs receives the coefficients if it is given and long enough
     * @return the status
     */
    public static native int getgenconstrpoly(long model, int genconstr, int[] xvar, int[] yvar,
                                              int[] ncoef, double[] coefs);

    /**
     * Reads a general constraint: y = e^x.
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param xvar element 0 receives the index of x; may be null
     * @param yvar element 0 receives the index of y; may be null
     * @return the status
     */
    public static native int getgenconstrexp(long model, int genconstr, int[] xvar, int[] yvar);

    /**
     * Reads a general constraint: y = base^x.
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param xvar element 0 receives the index of x; may be null
     * @param yvar element 0 receives the index of y; may be null
     * @param base element 0 receives the base; may be null
     * @return the status
     */
    public static native int getgenconstrexpa(long model, int genconstr, int[] xvar, int[] yvar,
                                              double[] base);

    /**
     * Reads a general constraint: y = ln x.
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param xvar element 0 receives the index of x; may be null
     * @param yvar element 0 receives the index of y; may be null
     * @return the status
     */
    public static native int getgenconstrlog(long model, int genconstr, int[] xvar, int[] yvar);

    /**
     * Reads a general constraint: y = logarithm of x to the base.
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param xvar element 0 receives the index of x; may be null
     * @param yvar element 0 receives the index of y; may be null
     * @param base element 0 receives the base; may be null
     * @return the status
     */
    public static native int getgenconstrloga(long model, int genconstr, int[] xvar, int[] yvar,
                                              double[] base);

    /**
     * Reads a general constraint: y = x^exponent.
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param xvar element 0 receives the index of x; may be null
     * @param yvar element 0 receives the index of y; may be null
     * @param exponent element 0 receives the exponent; may be null
     * @return the status
     */
    public static native int getgenconstrpow(long model, int genconstr, int[] xvar, int[] yvar,
                                             double[] exponent);

    /**
     * Reads a general constraint: y = sin x.
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param xvar element 0 receives the index of x; may be null
     * @param yvar element 0 receives the index of y; may be null
     * @return the status
     */
    public static native int getgenconstrsin(long model, int genconstr, int[] xvar, int[] yvar);

    /**
     * Reads a general constraint: y = cos x.
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param xvar element 0 receives the index of x; may be null
     * @param yvar element 0 receives the index of y; may be null
     * @return the status
     */
    public static native int getgenconstrcos(long model, int genconstr, int[] xvar, int[] yvar);

    /**
     * Reads a general constraint: y = tan x.
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param xvar element 0 receives the index of x; may be null
     * @param yvar element 0 receives the index of y; may be null
     * @return the status
     */
    public static native int getgenconstrtan(long model, int genconstr, int[] xvar, int[] yvar);

    /**
     * Reads a general constraint: y = 1 / (1 + e^-x).
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param xvar element 0 receives the index of x; may be null
     * @param yvar element 0 receives the index of y; may be null
     * @return the status
     */
    public static native int getgenconstrlogistic(long model, int genconstr, int[] xvar,
                                                  int[] yvar);

    /**
     * Reads a general constraint: result = value of an expression tree.
     *
     * @param model handle of the model
     * @param genconstr index of the general constraint
     * @param resvar element 0 receives the index of the result variable; may be null
     * @param nlcount element 0 receives the number of nodes; may be null
     * @param opcodes receives the operation codes if all three arrays are given and long enough
     * @param data receives the constants and variable indices likewise
     * @param parents receives the parent nodes likewise
     * @return the status
     */
    public static native int getgenconstrnl(long model, int genconstr, int[] resvar, int[] nlcount,
                                            int[] opcodes, double[] data, int[] parents);

    // Attributes.

    /**
     * Reads an int attribute. A {@code count} below 0 means the model's own value, 0 element
     * {@code start}, more than 0 that many elements from {@code start} on or, if {@code start} is
     * -1, the elements of {@code ind}.
     *
     * @param model handle of the model
     * @param attrname name of the attribute
     * @param start index of an element, or -1 for a list
     * @param count number of elements, 0 for one, -1 for the model's value
     * @param ind {@code count} indices of elements if {@code start} is -1, unread otherwise
     * @param values receives the values from element 0 on
     * @return the status
     */
    public static native int getintattrlist(long model, String attrname, int start, int count,
                                            int[] ind, int[] values);

    /**
     * Sets an int attribute. Elements are chosen as in {@link #getintattrlist}.
     *
     * @param model handle of the model
     * @param attrname name of the attribute
     * @param start index of an element, or -1 for a list
     * @param count number of elements, 0 for one, -1 for the model's value
     * @param ind {@code count} indices of elements if {@code start} is -1, unread otherwise
     * @param values the values, from element 0 on
     * @return the status
     */
    public static native int setintattrlist(long model, String attrname, int start, int count,
                                            int[] ind, int[] values);

    /**
     * Reads a double attribute. Elements are chosen as in {@link #getintattrlist}.
     *
     * @param model handle of the model
     * @param attrname name of the attribute
     * @param start index of an element, or -1 for a list
     * @param count number of elements, 0 for one, -1 for the model's value
     * @param ind {@code count} indices of elements if {@code start} is -1, unread otherwise
     * @param values receives the values from element 0 on
     * @return the status
     */
    public static native int getdblattrlist(long model, String attrname, int start, int count,
                                            int[] ind, double[] values);

    /**
     * Sets a double attribute. Elements are chosen as in {@link #getintattrlist}.
     *
     * @param model handle of the model
     * @param attrname name of the attribute
     * @param start index of an element, or -1 for a list
     * @param count number of elements, 0 for one, -1 for the model's value
     * @param ind {@code count} indices of elements if {@code start} is -1, unread otherwise
     * @param values the values, from element 0 on
     * @return the status
     */
    public static native int setdblattrlist(long model, String attrname, int start, int count,
                                            int[] ind, double[] values);

    /**
     * Reads a character attribute. Elements are chosen as in {@link #getintattrlist}; a model has
     * none of its own. Negative bytes come back as U+FF80 to U+FFFF.
     *
     * @param model handle of the model
     * @param attrname name of the attribute
     * @param start index of an element, or -1 for a list
     * @param count number of elements, 0 or less for one
     * @param ind {@code count} indices of elements if {@code start} is -1, unread otherwise
     * @param values receives the values from element 0 on
     * @return the status
     */
    public static native int getcharattrlist(long model, String attrname, int start, int count,
                                             int[] ind, char[] values);

    /**
     * Sets a character attribute. Elements are chosen as in {@link #getintattrlist}; a model has
     * none of its own. A character's low 8 bits are stored.
     *
     * @param model handle of the model
     * @param attrname name of the attribute
     * @param start index of an element, or -1 for a list
     * @param count number of elements, 0 or less for one
     * @param ind {@code count} indices of elements if {@code start} is -1, unread otherwise
     * @param values the values, from element 0 on
     * @return the status
     */
    public static native int setcharattrlist(long model, String attrname, int start, int count,
                                             int[] ind, char[] values);

    /**
     * Reads a text attribute. Elements are chosen as in {@link #getintattrlist}.
     *
     * @param model handle of the model
     * @param attrname name of the attribute
     * @param start index of an element, or -1 for a list
     * @param count number of elements, 0 for one, -1 for the model's value
     * @param ind {@code count} indices of elements if {@code start} is -1, unread otherwise
     * @param values receives the values from element 0 on
     * @return the status
     */
    public static native int getstrattrlist(long model, String attrname, int start, int count,
                                            int[] ind, String[] values);

    /**
     * Sets a text attribute. Elements are chosen as in {@link #getintattrlist}.
     *
     * @param model handle of the model
     * @param attrname name of the attribute
     * @param start index of an element, or -1 for a list
     * @param count number of elements, 0 for one, -1 for the model's value
     * @param ind {@code count} indices of elements if {@code start} is -1, unread otherwise
     * @param values the values, from element 0 on; each may be null, which the solver refuses for
     *     the name of an element
     * @return the status
     */
    public static native int setstrattrlist(long model, String attrname, int start, int count,
                                            int[] ind, String[] values);

    /**
     * Describes an attribute.
     *
     * @param model handle of the model
     * @param attrname name of the attribute
     * @param info elements 0 to 2 receive its type ({@link KVX#TYPE_INT} and so on), what it
     *     belongs to ({@link KVX#OF_MODEL} and so on), and 1 if it can be set
     * @return the status
     */
    public static native int getattrinfo(long model, String attrname, int[] info);

    /**
     * Says that an attribute will be read soon.
     *
     * @param model handle of the model
     * @param attrname name of the attribute
     * @return the status
     */
    public static native int prefetchattr(long model, String attrname);

    // Structure.

    /**
     * Reads a coefficient of a linear constraint.
     *
     * @param model handle of the model
     * @param constr index of the constraint
     * @param var index of the variable
     * @param valslot element 0 receives it
     * @return the status
     */
    public static native int getcoeff(long model, int constr, int var, double[] valslot);

    /**
     * Reads successive linear constraints by rows. The number of coefficients is written first; the
     * arrays only if they hold it and it isn't 0.
     *
     * @param model handle of the model
     * @param numnzslot element 0 holds the room in {@code ind} and {@code val}, and receives the
     *     number of coefficients
     * @param beg receives {@code count} positions
     * @param ind receives the variable indices
     * @param val receives the coefficients
     * @param start index of the first
     * @param count how many
     * @return the status
     */
    public static native int getconstrs(long model, int[] numnzslot, int[] beg, int[] ind,
                                        double[] val, int start, int count);

    /**
     * Reads successive variables by columns. The number of coefficients is written first; the
     * arrays only if they hold it and it isn't 0.
     *
     * @param model handle of the model
     * @param numnzslot element 0 holds the room in {@code ind} and {@code val}, and receives the
     *     number of coefficients
     * @param beg receives {@code count} positions
     * @param ind receives the constraint indices
     * @param val receives the coefficients
     * @param start index of the first
     * @param count how many
     * @return the status
     */
    public static native int getvars(long model, int[] numnzslot, int[] beg, int[] ind,
                                     double[] val, int start, int count);

    /**
     * Finds a linear constraint.
     *
     * @param model handle of the model
     * @param name its name
     * @param indexslot element 0 receives the lowest index with that name
     * @return the status
     */
    public static native int getconstrbyname(long model, String name, int[] indexslot);

    /**
     * Finds a variable.
     *
     * @param model handle of the model
     * @param name its name
     * @param indexslot element 0 receives the lowest index with that name
     * @return the status
     */
    public static native int getvarbyname(long model, String name, int[] indexslot);

    // Runs.

    /**
     * Waits for the end of an asynchronous run, and releases its record unless the status is
     * {@link KVX#ERROR_IN_PROGRESS}.
     *
     * @param model handle of the model
     * @param record handle of the record that the start handed out, or 0: the checked classes make
     *     none, since their asynchronous runs have Java threads
     * @param errorslot element 0 receives the model's error text when the result isn't 0
     * @return the status
     */
    public static native int sync(long model, long record, String[] errorslot);

    /**
     * Tunes a model, without a callback. It runs the solver, which logs.
     *
     * @param model handle of the model
     * @return the status
     */
    public static native int tunemodel(long model);

    /**
     * Loads a setting that tuning found into the model's environment.
     *
     * @param model handle of the model
     * @param index its number, from 0, the best; -1 for the latest found
     * @return the status
     */
    public static native int gettuneresult(long model, int index);

    // Inside a callback.

    /**
     * Reads an int datum.
     *
     * @param cbdata {@link KVXCallbackContext#handle} of the present callback
     * @param where {@link KVXCallbackContext#where} of the present callback
     * @param what what code of an int
     * @param resultslot element 0 receives it
     * @return {@link KVX#ERROR_WRONG_INFO_TYPE} if the datum is of another type, or the status
     */
    public static native int cbgetintinfo(long cbdata, int where, int what, int[] resultslot);

    /**
     * Reads a double datum, or one of the vectors {@link KVX#CB_MIPSOL_SOL},
     * {@link KVX#CB_MIPNODE_REL} and {@link KVX#CB_MULTIOBJ_SOL}.
     *
     * @param cbdata {@link KVXCallbackContext#handle} of the present callback
     * @param where {@link KVXCallbackContext#where} of the present callback
     * @param what what code of a double or a vector
     * @param resultslot element 0 receives it; for a vector, the whole array, which must have an
     *     element a variable
     * @return {@link KVX#ERROR_WRONG_INFO_TYPE} if the datum is of another type, or the status
     */
    public static native int cbgetdblinfo(long cbdata, int where, int what, double[] resultslot);

    /**
     * Reads a text datum.
     *
     * @param cbdata {@link KVXCallbackContext#handle} of the present callback
     * @param where {@link KVXCallbackContext#where} of the present callback
     * @param what {@link KVX#CB_MSG_STRING}
     * @return the text, or null
     */
    public static native String cbgetstrinfo(long cbdata, int where, int what);

    /**
     * Adds a cut or a lazy constraint.
     *
     * @param cbdata {@link KVXCallbackContext#handle} of the present callback
     * @param length number of terms
     * @param ind {@code length} variable indices; not null
     * @param val {@code length} coefficients; not null
     * @param sense sense character
     * @param rhs right-hand side
     * @param cut non-zero: a cut, 0: a lazy constraint
     * @return the status
     */
    public static native int cbcutorlazy(long cbdata, int length, int[] ind, double[] val,
                                         char sense, double rhs, int cut);

    /**
     * Proposes a solution.
     *
     * @param cbdata {@link KVXCallbackContext#handle} of the present callback
     * @param solution a value a variable, {@link KVX#UNDEFINED} where none is known
     * @param objectiveslot element 0 receives its objective value
     * @return the status
     */
    public static native int cbsolution(long cbdata, double[] solution, double[] objectiveslot);

    /**
     * Changes an int parameter of the run.
     *
     * @param cbdata {@link KVXCallbackContext#handle} of the present callback
     * @param paramname name of the parameter
     * @param newvalue its new value
     * @return the status
     */
    public static native int cbsetintparam(long cbdata, String paramname, int newvalue);

    /**
     * Changes a double parameter of the run.
     *
     * @param cbdata {@link KVXCallbackContext#handle} of the present callback
     * @param paramname name of the parameter
     * @param newvalue its new value
     * @return the status
     */
    public static native int cbsetdblparam(long cbdata, String paramname, double newvalue);

    /**
     * Changes a text parameter of the run.
     *
     * @param cbdata {@link KVXCallbackContext#handle} of the present callback
     * @param paramname name of the parameter
     * @param newvalue its new value, not null
     * @return the status
     */
    public static native int cbsetstrparam(long cbdata, String paramname, String newvalue);

    /**
     * Ends the present phase of the run and goes on.
     *
     * @param cbdata {@link KVXCallbackContext#handle} of the present callback
     * @return the status
     */
    public static native int proceed(long cbdata);

    /**
     * Ends the optimisation of one of several objectives and goes on with the next.
     *
     * @param model handle of the model
     * @param cbdata {@link KVXCallbackContext#handle} of the present callback
     * @param objnumber number of the objective
     * @return the status
     */
    public static native int stoponemultiobj(long model, long cbdata, int objnumber);

    /**
     * Asks a run to end soon, from any thread; before a run begins, the next one ends at once.
     *
     * @param model handle of the model
     * @return the status
     */
    public static native int terminate(long model);

    // Basis.

    /**
     * Solves B x = b with the basis matrix B; b goes by constraints, x by positions in the header.
     *
     * @param model handle of the model
     * @param blen number of entries of b
     * @param bind {@code blen} indices; not null
     * @param bval {@code blen} values; not null
     * @param capacityslot element 0 holds the room in {@code xind} and {@code xval}, for which the
     *     number of constraints is always enough, and receives the number of entries written there
     * @param xind receives the indices of the result
     * @param xval receives its values
     * @return the status
     */
    public static native int fsolve(long model, int blen, int[] bind, double[] bval,
                                    int[] capacityslot, int[] xind, double[] xval);

    /**
     * Solves B^T x = b with the basis matrix B; b goes by positions in the header, x by
     * constraints.
     *
     * @param model handle of the model
     * @param blen number of entries of b
     * @param bind {@code blen} indices; not null
     * @param bval {@code blen} values; not null
     * @param capacityslot element 0 holds the room in {@code xind} and {@code xval}, for which the
     *     number of constraints is always enough, and receives the number of entries written there
     * @param xind receives the indices of the result
     * @param xval receives its values
     * @return the status
     */
    public static native int bsolve(long model, int blen, int[] bind, double[] bval,
                                    int[] capacityslot, int[] xind, double[] xval);

    /**
     * Reads a column of the basis inverse times the matrix.
     *
     * @param model handle of the model
     * @param j index of the column
     * @param capacityslot element 0 holds the room in {@code xind} and {@code xval}, for which the
     *     number of constraints is always enough, and receives the number of entries written there
     * @param xind receives the indices of the result
     * @param xval receives its values
     * @return the status
     */
    public static native int binvcolj(long model, int j, int[] capacityslot, int[] xind,
                                      double[] xval);

    /**
     * Reads a row of the basis inverse times the matrix.
     *
     * @param model handle of the model
     * @param i index of the row
     * @param capacityslot element 0 holds the room in {@code xind} and {@code xval}, for which the
     *     number of variables and constraints together is always enough, and receives the number of
     *     entries written there
     * @param xind receives the indices of the result
     * @param xval receives its values
     * @return the status
     */
    public static native int binvrowi(long model, int i, int[] capacityslot, int[] xind,
                                      double[] xval);

    /**
     * Reads the basis header: for each row the index of its basic variable, that of a constraint's
     * logical counting from the number of variables on.
     *
     * @param model handle of the model
     * @param headslot element 0 holds the number of constraints, for which there must be room: with
     *     less, native memory is overrun. The header is written from element 0 on, so that the
     *     number must be set anew before every call
     * @return the status
     */
    public static native int basishead(long model, int[] headslot);

    // Batches.

    /**
     * Makes a local object for a batch request.
     *
     * @param batchslot element 0 receives its handle, whatever the status, unless the ID can't be
     *     fetched
     * @param env handle of the environment
     * @param batchid ID of the request, not null
     * @return the status
     */
    public static native int newbatch(long[] batchslot, long env, String batchid);

    /**
     * Frees the local object; the request goes on.
     *
     * @param batch handle of the batch
     * @return the status
     */
    public static native int freebatch(long batch);
}
