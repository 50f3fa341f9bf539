package com.korvex;

import java.util.Objects;
import java.util.function.LongToIntFunction;

/**
 * One call of a {@link KVXCallback}: why it is made, what can be asked for, what can be done. A
 * what code belongs to the where code that is its thousands, {@link KVX#CB_MIP_NODES} to {@link
 * KVX#CB_MIP} for example, and {@link KVX#CB_RUNTIME} to all; its type is said at the code.
 *
 * <p>A context works on the callback's thread until the callback returns; otherwise all but {@link
 * #model} and {@link #where} throw {@link IllegalStateException}. What the solver refuses, at this
 * where for example, is a {@link KVXException}.
 */
public final class KVXCallbackContext {
    private final KVXModel model;
    private final long cbdata;
    private final int where;
    private final int numVars;
    private final Thread thread = Thread.currentThread();
    private volatile boolean over;

    KVXCallbackContext(KVXModel model, long cbdata, int where, int numVars) {
        this.model = model;
        this.cbdata = cbdata;
        this.where = where;
        this.numVars = numVars;
    }

    void end() { over = true; }

    /**
     * Returns the model that is being solved.
     *
     * @return the model
     */
    public KVXModel model() { return model; }

    /**
     * Returns the handle of this call, for the natives of {@link KorvexJni} that begin with "cb"
     * and for {@link KorvexJni#proceed} and {@link KorvexJni#stoponemultiobj}.
     *
     * @return the callback-data handle, valid until the callback returns
     */
    public long handle() { return valid(); }

    /**
     * Returns why the callback is called.
     *
     * @return one of the where codes of {@link KVX}, {@code CB_POLLING} to {@code CB_TUNE}
     */
    public int where() { return where; }

    /**
     * Returns the seconds since the run began.
     *
     * @return the seconds
     */
    public double runtime() { return getDouble(KVX.CB_RUNTIME); }

    /**
     * Reads an int.
     *
     * @param what a what code of an int that belongs to {@link #where}
     * @return the value
     * @throws KVXException if the code is of another type ({@link KVX#ERROR_WRONG_INFO_TYPE}) or of
     *     another where
     */
    public int getInt(int what) {
        int[] slot = new int[1];
        check(cb -> KorvexJni.cbgetintinfo(cb, where, what, slot));
        return slot[0];
    }

    /**
     * Reads a double.
     *
     * @param what a what code of a double that belongs to {@link #where}
     * @return the value
     * @throws KVXException if the code is of another type ({@link KVX#ERROR_WRONG_INFO_TYPE}) or of
     *     another where
     */
    public double getDouble(int what) {
        requireType(!isVector(what));
        return getDoubles(what, 1)[0];
    }

    /**
     * Reads a vector with a value a variable: {@link KVX#CB_MIPSOL_SOL}, {@link KVX#CB_MIPNODE_REL}
     * or {@link KVX#CB_MULTIOBJ_SOL}.
     *
     * @param what its what code
     * @return the values
     * @throws KVXException if it is no such code ({@link KVX#ERROR_WRONG_INFO_TYPE}), or belongs to
     *     another where
     */
    public double[] getVector(int what) {
        requireType(isVector(what));
        return getDoubles(what, numVars);
    }

    /** Of a vector the native takes as many values as the array is long, of all else one. */
    private static boolean isVector(int what) {
        return what == KVX.CB_MIPSOL_SOL || what == KVX.CB_MIPNODE_REL ||
            what == KVX.CB_MULTIOBJ_SOL;
    }

    private void requireType(boolean right) {
        valid();
        if (!right)
            throw new KVXException(KVX.ERROR_WRONG_INFO_TYPE, null);
    }

    private double[] getDoubles(int what, int count) {
        double[] slot = new double[count];
        check(cb -> KorvexJni.cbgetdblinfo(cb, where, what, slot));
        return slot;
    }

    /**
     * Returns the log line that a call with {@link KVX#CB_MESSAGE} is about.
     *
     * @return the line, or null elsewhere
     */
    public String message() { return KorvexJni.cbgetstrinfo(valid(), where, KVX.CB_MSG_STRING); }

    /**
     * Adds a cut that the node's relaxation breaks, at {@link KVX#CB_MIPNODE}; it must not cut off
     * integer solutions.
     *
     * @param ind variable indices
     * @param val their coefficients
     * @param sense {@link KVX#LESS_EQUAL}, {@link KVX#GREATER_EQUAL} or {@link KVX#EQUAL}
     * @param rhs right-hand side
     */
    public void addCut(int[] ind, double[] val, char sense, double rhs) {
        addRow(ind, val, sense, rhs, 1);
    }

    /**
     * Adds a constraint that solutions must obey, at {@link KVX#CB_MIPSOL} or {@link
     * KVX#CB_MIPNODE}; {@link KVXParameter#LAZY_CONSTRAINTS} must be 1.
     *
     * @param ind variable indices
     * @param val their coefficients
     * @param sense {@link KVX#LESS_EQUAL}, {@link KVX#GREATER_EQUAL} or {@link KVX#EQUAL}
     * @param rhs right-hand side
     */
    public void addLazy(int[] ind, double[] val, char sense, double rhs) {
        addRow(ind, val, sense, rhs, 0);
    }

    private void addRow(int[] ind, double[] val, char sense, double rhs, int cut) {
        Objects.requireNonNull(ind, "ind");
        Objects.requireNonNull(val, "val");
        if (ind.length != val.length)
            throw new IllegalArgumentException(ind.length + " indices, " + val.length + " values");
        check(cb -> KorvexJni.cbcutorlazy(cb, ind.length, ind, val, sense, rhs, cut));
    }

    /**
     * Proposes a solution, at {@link KVX#CB_MIP}, {@link KVX#CB_MIPSOL} or {@link KVX#CB_MIPNODE}.
     *
     * @param solution a value a variable, {@link KVX#UNDEFINED} where none is known
     * @return its objective value, {@link KVX#INFINITY} if it isn't feasible or not yet known
     */
    public double propose(double[] solution) {
        Objects.requireNonNull(solution, "solution");
        if (solution.length != numVars)
            throw new IllegalArgumentException(solution.length + " values, " + numVars +
                                               " variables");
        double[] slot = new double[1];
        check(cb -> KorvexJni.cbsolution(cb, solution, slot));
        return slot[0];
    }

    /**
     * Changes an int parameter of the run that is going on, or a double one to that value; the
     * model's parameters stay as they are. {@link KVXParameter#TIME_LIMIT}, {@link
     * KVXParameter#NODE_LIMIT}, {@link KVXParameter#MIP_GAP}, {@link KVXParameter#MIP_GAP_ABS},
     * {@link KVXParameter#LOG_INTERVAL} and {@link KVXParameter#LOG_TO_CONSOLE} can be changed.
     *
     * @param name its name
     * @param value its value
     */
    public void set(String name, int value) {
        check(cb -> {
            int status = KorvexJni.cbsetintparam(cb, name, value);
            if (status == KVX.ERROR_UNKNOWN_PARAMETER)
                status = KorvexJni.cbsetdblparam(cb, name, value);
            return status;
        });
    }

    /**
     * Changes a double parameter of the run, as {@link #set(String, int)} does.
     *
     * @param name its name
     * @param value its value
     */
    public void set(String name, double value) {
        check(cb -> KorvexJni.cbsetdblparam(cb, name, value));
    }

    /**
     * Changes a text parameter of the run, where a library has some that can be.
     *
     * @param name its name
     * @param value its value
     */
    public void set(String name, String value) {
        check(cb -> KorvexJni.cbsetstrparam(cb, name, value));
    }

    /**
     * Ends the present phase, the optimisation of one of several objectives or a trial of {@link
     * KVXModel#tune}, and goes on.
     */
    public void proceed() { check(KorvexJni::proceed); }

    /**
     * Ends the optimisation of one of several objectives and goes on with the next.
     *
     * @param objective its number, of one that is being optimised
     */
    public void stopObjective(int objective) { check(cb -> model.stopObjective(cb, objective)); }

    private void check(LongToIntFunction nativeCall) {
        int status = nativeCall.applyAsInt(valid());
        if (status != KVX.OK)
            throw new KVXException(status, model.errorText());
    }

    private long valid() {
        if (over || Thread.currentThread() != thread)
            throw new IllegalStateException("a callback's context works inside that callback only");
        return cbdata;
    }
}
