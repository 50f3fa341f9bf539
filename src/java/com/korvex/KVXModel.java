package com.korvex;

import java.util.Objects;
import java.util.function.LongToIntFunction;
import java.util.function.LongUnaryOperator;

/**
 * A model: its parts, its attributes and the runs on it. It is built through {@link #variables},
 * {@link #constraints} and so on, loaded as a whole, or read from a file.
 *
 * <p><b>Threads.</b> One thread at a time may use a model. {@link #terminate} and {@link #close}
 * may be called by any thread at any moment: what another thread is doing in the model is ended,
 * and its last call to return frees the native half. A use after closing throws {@link
 * IllegalStateException}.
 *
 * <p><b>Exceptions in callbacks.</b> What a callback, or the log's consumer, throws ends the run.
 * The method that started the run throws it on; after {@link #optimizeAsync} that is {@link #sync}
 * or {@link #close}. Whatever else went wrong in that run is suppressed by it.
 */
public final class KVXModel extends ModelParts implements AutoCloseable {
    private final KVXEnv env;
    private final Handle handle;
    private final Thrown thrown = new Thrown();
    private volatile KVXCallback callback;

    // The run that is going on; guarded by this.
    private boolean running;
    private volatile Thread starter; // null if it is asynchronous
    private volatile Thread callbackThread;
    private KVXCallback runCallback;
    private int numVars;

    // The asynchronous run that must be waited for; guarded by the lock.
    private final Object asyncLock = new Object();
    private boolean asynchronous;
    private long record;

    /** Set by the bridge before each call of {@link #fromjni}: the model's handle. */
    private long cbmodel;
    /** Set likewise: the handle of this invocation. */
    private long cbdata;
    /** Set likewise: why the callback is called. */
    private int where;

    private KVXModel(KVXEnv env, LongUnaryOperator maker, int failure) {
        this.env = env;
        long environment = env.handle.acquire();
        long[] model = new long[1];
        try {
            env.logging(() -> model[0] = maker.applyAsLong(environment));
            if (model[0] == 0)
                throw new KVXException(failure, KorvexJni.geterrormsg(environment));
        } catch (RuntimeException | Error e) {
            if (model[0] != 0)
                KorvexJni.freemodel(model[0]);
            env.handle.release();
            throw e;
        }
        handle = new Handle("the model", model[0], KVXModel::errorText, this::free);
    }

    @Override
    void call(LongToIntFunction nativeCall) {
        handle.call(nativeCall);
    }

    private void free(long model) {
        KorvexJni.freemodel(model);
        env.handle.release();
    }

    /** A model's own environment carries its error text. */
    private static String errorText(long model) {
        return KorvexJni.geterrormsg(KorvexJni.getenv(model));
    }

    /**
     * Makes a model without variables and constraints.
     *
     * @param env its environment
     * @param name its name, or null
     * @throws KVXException if the solver refuses
     */
    public KVXModel(KVXEnv env, String name) { this(env, name, Columns.of()); }

    /**
     * Makes a model with variables and without constraints.
     *
     * @param env its environment
     * @param name its name, or null
     * @param columns the variables, without coefficients
     * @throws IllegalArgumentException if there are coefficients
     * @throws KVXException if the solver refuses
     */
    public KVXModel(KVXEnv env, String name, Columns columns) {
        this(env, columns.newModel(name), KVX.ERROR_INTERNAL);
    }

    /**
     * Makes a whole linear model.
     *
     * @param env its environment
     * @param name its name, or null
     * @param sense {@link KVX#MINIMIZE} or {@link KVX#MAXIMIZE}
     * @param constant objective constant
     * @param columns the variables, with the coefficients of the constraints
     * @param rows the constraints, without coefficients and lower bounds
     * @return the model
     * @throws IllegalArgumentException if there are coefficients or lower bounds with the rows
     * @throws KVXException if the solver refuses
     */
    public static KVXModel load(KVXEnv env, String name, int sense, double constant,
                                Columns columns, Rows rows) {
        return new KVXModel(env, columns.load(name, sense, constant, rows), KVX.ERROR_INTERNAL);
    }

    /**
     * Reads a model file.
     *
     * @param env the environment for the model
     * @param file name of the file
     * @return the model
     * @throws KVXException if that fails; its message names file and line
     */
    public static KVXModel read(KVXEnv env, String file) {
        Objects.requireNonNull(file);
        return new KVXModel(
            env, environment -> KorvexJni.readmodel(environment, file), KVX.ERROR_FILE_READ);
    }

    /**
     * Takes a model over that a native of {@link KorvexJni} made.
     *
     * @param env the environment it was made in
     * @param model its handle; it belongs to the new object from now on
     * @return the model
     * @throws KVXException if the handle is 0, with the environment's error text
     */
    public static KVXModel adopt(KVXEnv env, long model) {
        return new KVXModel(env, environment -> model, KVX.ERROR_INVALID_ARGUMENT);
    }

    /**
     * Returns the native handle, for {@link KorvexJni}. Keep this object open while using it.
     *
     * @return the handle
     */
    public long handle() {
        long model = handle.acquire();
        handle.release();
        return model;
    }

    @Override
    public KVXEnv env() {
        return env;
    }

    @Override
    KVXModel derived(KVXEnv target, Deriver deriver) {
        return new KVXModel(target, environment -> {
            long[] slot = new long[1];
            call(model -> deriver.derive(model, environment, slot));
            return slot[0];
        }, KVX.ERROR_INTERNAL);
    }

    /**
     * Returns the model's own parameters.
     *
     * @return the parameters
     */
    public KVXParams params() { return new KVXParams(handle, KorvexJni::getenv); }

    /**
     * Returns the parameters of one of several concurrent solves.
     *
     * @param num its number, from 0
     * @return the parameters, good while the model is open; using them throws {@link KVXException}
     *     if the solver has no such environment
     */
    public KVXParams concurrentParams(int num) {
        return params(model -> KorvexJni.getconcurrentenv(model, num));
    }

    /**
     * Returns the parameters that apply while one of several goals is optimised.
     *
     * @param index number of the goal
     * @return the parameters, good while the model is open; using them throws {@link KVXException}
     *     if the solver has no such environment
     */
    public KVXParams goalParams(int index) {
        return params(model -> KorvexJni.getmultiobjenv(model, index));
    }

    private KVXParams params(LongUnaryOperator environment) {
        return new KVXParams(handle, model -> {
            long env = environment.applyAsLong(model);
            if (env == 0)
                throw new KVXException(KVX.ERROR_NOT_SUPPORTED, errorText(model));
            return env;
        });
    }

    /**
     * Sets the callback of the runs that begin from now on.
     *
     * @param callback the callback, or null for none
     */
    public void setCallback(KVXCallback callback) { this.callback = callback; }

    /**
     * Solves the model. A limit, an interruption or infeasibility is no failure: the attribute
     * "Status" tells.
     *
     * @throws KVXException if the solver fails
     */
    public void optimize() {
        run((model, useCallback, error) -> jnioptimize(model, useCallback, 0, null, error, 0));
    }

    /**
     * Tries several parameter settings on the model, for {@link #loadTuneResult}.
     *
     * @throws KVXException if the solver fails
     */
    public void tune() {
        run((model, useCallback, error) -> {
            if (useCallback != 0)
                return jnitune(model, useCallback, error, 0);
            int status = KorvexJni.tunemodel(model);
            error[0] = errorText(model);
            return status;
        });
    }

    /**
     * Finds an irreducible infeasible subsystem; the attributes "IISConstr", "IISLB" and
     * "IISUB" tell what belongs to it.
     *
     * @throws KVXException if the solver fails, or the model is feasible
     */
    public void computeIIS() {
        run((model, useCallback, error) -> jnicomputeIIS(model, useCallback, error, 0));
    }

    private interface Driver {
        int run(long model, int useCallback, String[] error);
    }

    private void run(Driver driver) {
        String[] error = new String[1];
        long model = begin(Thread.currentThread());
        try {
            env.logging(() -> {
                int status = driver.run(model, runCallback == null ? 0 : 1, error);
                if (status != KVX.OK)
                    thrown.add(new KVXException(status, error[0]));
            });
        } catch (Throwable t) {
            thrown.add(t);
        } finally {
            end();
        }
        thrown.rethrow();
    }

    /**
     * Starts to solve the model on a thread of the solver's own, for {@link #sync} to wait for.
     * Until then other uses of the model but {@link #terminate} are refused.
     *
     * @throws KVXException if the solver fails
     */
    public void optimizeAsync() {
        boolean[] started = new boolean[1];
        long model = begin(null);
        try {
            env.logging(() -> started[0] = start(model));
        } finally {
            if (!started[0])
                end();
            else if (handle.isShut())
                finish(model); // Who closed the model saw nothing to wait for yet.
        }
    }

    private boolean start(long model) {
        String[] error = new String[1];
        long[] slot = new long[1];
        synchronized (asyncLock) {
            int status = jnioptimize(model, runCallback == null ? 0 : 1, 1, slot, error, 0);
            if (status != KVX.OK)
                throw new KVXException(status, error[0]);
            record = slot[0];
            asynchronous = true;
        }
        return true;
    }

    /**
     * Waits for the end of the run that {@link #optimizeAsync} started; returns at once if there is
     * none.
     *
     * @throws KVXException if the run failed, and with {@link KVX#ERROR_IN_PROGRESS} inside a
     *     callback of that run, which can't wait for itself: the run goes on then
     */
    public void sync() {
        env.refuseConsumer();
        long model = handle.acquire();
        try {
            finish(model);
        } finally {
            handle.release();
        }
    }

    private void finish(long model) {
        String[] error = new String[1];
        // Without the lock, which the thread that waits for this run may hold, and without the
        // record, which goes on to serve the run.
        if (inCallback()) {
            int status = KorvexJni.sync(model, 0, error);
            throw new KVXException(status, error[0]);
        }
        synchronized (asyncLock) {
            if (!asynchronous)
                return;
            int status = KorvexJni.sync(model, record, error);
            if (status == KVX.ERROR_IN_PROGRESS)
                throw new KVXException(status, error[0]);
            record = 0;
            asynchronous = false;
            if (status != KVX.OK)
                thrown.add(new KVXException(status, error[0]));
            end();
        }
        thrown.rethrow();
    }

    /**
     * Asks the run that is going on to end soon, or the next one to end at once. Any thread may
     * call this at any time; after the model was closed it does nothing.
     */
    public void terminate() {
        long model = handle.acquireIfAlive();
        if (model == 0)
            return;
        try {
            KorvexJni.terminate(model);
        } finally {
            handle.release();
        }
    }

    /** Begins a run that is a user of the handle. The starter is null if it is asynchronous. */
    private long begin(Thread starter) {
        long model = handle.acquire();
        try {
            synchronized (this) {
                if (running)
                    throw new IllegalStateException("a run of the model is going on");
                numVars = getInt("NumVars");
                runCallback = callback;
                this.starter = starter;
                running = true;
            }
        } catch (RuntimeException | Error e) {
            handle.release();
            throw e;
        }
        env.started(this);
        return model;
    }

    private void end() {
        env.ended(this);
        synchronized (this) {
            running = false;
            runCallback = null;
        }
        handle.release();
    }

    /**
     * Ends the run that is going on because of a throwable, and keeps that for whoever waits.
     * Returns whether a run is going on.
     */
    synchronized boolean fail(Throwable throwable) {
        if (!running)
            return false;
        thrown.add(throwable);
        terminate();
        return true;
    }

    boolean inForeignCallback() { return inCallback() && starter == null; }

    private boolean inCallback() { return callbackThread == Thread.currentThread(); }

    /** Called by the bridge, on whatever thread the solver chose; nothing may escape from it. */
    private void fromjni() {
        Thread outer = callbackThread;
        callbackThread = Thread.currentThread();
        try {
            KVXCallbackContext context = new KVXCallbackContext(this, cbdata, where, numVars);
            try {
                if (!thrown.pending())
                    runCallback.call(context);
            } finally {
                context.end();
            }
        } catch (Throwable t) {
            fail(t);
        } finally {
            callbackThread = outer;
        }
    }

    /** The text for a status that a callback was answered with. */
    String errorText() { return errorText(cbmodel); }

    int stopObjective(long cbdata, int objective) {
        return KorvexJni.stoponemultiobj(cbmodel, cbdata, objective);
    }

    /**
     * Loads a setting that {@link #tune} found into the model's parameters.
     *
     * @param index its number, from 0, the best, to the attribute "TuneResultCount" - 1; -1 for the
     *     latest found
     */
    public void loadTuneResult(int index) { call(model -> KorvexJni.gettuneresult(model, index)); }

    /** Fixes the discrete variables at the best solution, in place, and makes them continuous. */
    public void convertToFixed() { call(this::jniconverttofixed); }

    /**
     * Submits a copy of the model as a batch request.
     *
     * @return the request's ID, for {@link KVXBatch}
     */
    public String optimizeBatch() {
        String[] slot = new String[1];
        env.logging(() -> call(model -> jnioptimizebatch(model, slot)));
        return slot[0];
    }

    /**
     * Reads a solution, start, basis or parameter file into the model.
     *
     * @param file its name, which tells the format
     */
    public void read(String file) { env.logging(() -> call(model -> KorvexJni.read(model, file))); }

    /**
     * Writes a model, solution, start, basis or parameter file.
     *
     * @param file its name, which tells the format
     */
    public void write(String file) {
        env.logging(() -> call(model -> KorvexJni.write(model, file)));
    }

    /**
     * Returns the solution as JSON.
     *
     * @return the text
     */
    public String jsonSolution() {
        String[] slot = new String[1];
        call(model -> KorvexJni.getJSONSolution(model, slot));
        return slot[0];
    }

    /**
     * Frees the model. A run that is going on is terminated; an asynchronous one is waited for.
     * While another thread is in a call on the model, this returns and the end of that call frees
     * it. Does nothing the second time.
     *
     * @throws IllegalStateException inside the model's own callback, and inside the log's consumer
     */
    @Override
    public void close() {
        if (inCallback())
            throw new IllegalStateException("a model can't be closed inside its own callback");
        env.refuseConsumer();
        if (!handle.shut())
            return;
        terminate();
        long model = handle.acquireIfAlive();
        try {
            finish(model);
        } finally {
            handle.release();
            handle.release();
        }
    }

    /**
     * Solves the model, or starts to. With a callback, a record binds this object to the model for
     * the length of the run: before each call of {@link #fromjni} the bridge stores {@link
     * #cbmodel}, {@link #cbdata} and {@link #where}.
     *
     * @param model handle of the model
     * @param useCallback non-zero to install the callback
     * @param async non-zero to return as soon as the run has begun
     * @param recordslot element 0 receives the handle of the record for {@link KorvexJni#sync}:
     *     only with a callback, and only if an asynchronous run has begun; may be null otherwise
     * @param errorslot element 0 receives the model's error text when the result isn't 0
     * @param cbarg handed to the solver with the callback; 0
     * @return 0, {@link KVX#ERROR_OUT_OF_MEMORY}, {@link KVX#ERROR_CALLBACK} when this object can't
     *     be bound, or the solver's status
     */
    native int jnioptimize(long model, int useCallback, int async, long[] recordslot,
                           String[] errorslot, int cbarg);

    /**
     * Tunes the model. Arguments and result as for {@link #jnioptimize}.
     *
     * @return the status
     */
    native int jnitune(long model, int useCallback, String[] errorslot, int cbarg);

    /**
     * Finds an irreducible infeasible subsystem. Arguments and result as for {@link #jnioptimize}.
     *
     * @return the status
     */
    native int jnicomputeIIS(long model, int useCallback, String[] errorslot, int cbarg);

    /**
     * Removes the model's callback. A record stays as it is until {@link KorvexJni#sync} has it.
     *
     * @return the solver's status
     */
    native int jniunsetcallback(long model);

    /**
     * Submits a copy of the model as a batch request.
     *
     * @param idslot element 0 receives the request's ID if the result is 0
     * @return the solver's status
     */
    native int jnioptimizebatch(long model, String[] idslot);

    /**
     * Fixes the discrete variables at the best solution, in place, and makes them continuous.
     *
     * @return the solver's status
     */
    native int jniconverttofixed(long model);
}
