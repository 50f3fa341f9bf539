package com.korvex;

import java.util.Objects;
import java.util.concurrent.atomic.AtomicInteger;
import java.util.function.LongToIntFunction;
import java.util.function.LongUnaryOperator;

/**
 * A model: its parts, its attributes and the runs on it. It is built through {@link #variables},
 * {@link #constraints} and so on, loaded as a whole, or read from a file.
 *
 * <p><b>Threads.</b> Any thread may use a model: it waits while another one does. During a run only
 * the callbacks of that run can use it, to read; other threads get an {@link
 * IllegalStateException}.
 * {@link #terminate} and, outside of callbacks, {@link #close} may be called by any thread at any
 * moment: a run that is going on is ended, and the last call to return frees the native half. A use
 * after closing throws {@link IllegalStateException}. A run that a virtual thread makes is
 * conducted by a daemon thread of its own, as after {@link #optimizeAsync}. To interrupt a thread
 * ends neither its run nor its wait; it stays interrupted.
 *
 * <p><b>Exceptions in callbacks.</b> What a callback, or the log's consumer, throws ends the run.
 * The method that started the run throws it on; after {@link #optimizeAsync} that is {@link #sync}
 * or {@link #close}. Whatever else went wrong in that run is suppressed by it. If the callback for
 * a new solution throws while {@link KVXParameter#LAZY_CONSTRAINTS} is 1, it may have been about
 * to refuse the solution: the run ends without any.
 */
public final class KVXModel extends ModelParts implements AutoCloseable {
    private static final AtomicInteger THREADS = new AtomicInteger();
    /** The empty row of {@link #abandon}, made while there is memory. */
    private static final int[] NO_INDICES = {};
    private static final double[] NO_VALUES = {};
    static {
        // What abandon calls is linked now: the first call of a native takes memory.
        KorvexJni.terminate(0);
        KorvexJni.cbcutorlazy(0, 0, NO_INDICES, NO_VALUES, KVX.GREATER_EQUAL, 1, 0);
    }

    private final KVXEnv env;
    private final Handle handle;
    private volatile KVXCallback callback;

    /** The run that is going on, or that nobody has waited for; begun by the handle's user. */
    private volatile Run run;
    private volatile Thread callbackThread;

    /** Set by the bridge before each call of {@link #fromjni}: the model's handle. */
    private long cbmodel;
    /** Set likewise: the handle of this invocation. */
    private long cbdata;
    /** Set likewise: why the callback is called. */
    private int where;

    private KVXModel(KVXEnv env, LongUnaryOperator maker, int failure) {
        this.env = env;
        long[] model = new long[1];
        env.handle.pin();
        try {
            env.logging(() -> env.handle.call(environment -> {
                model[0] = maker.applyAsLong(environment);
                if (model[0] == 0)
                    throw new KVXException(env.statusOf(failure),
                                           KorvexJni.geterrormsg(environment));
                return KVX.OK;
            }));
            handle = new Handle("the model", model[0], KVXModel::errorText, this::free);
        } catch (Throwable t) {
            if (model[0] != 0)
                KorvexJni.freemodel(model[0]);
            env.handle.unpin();
            throw t;
        }
    }

    @Override
    void call(LongToIntFunction nativeCall) {
        handle.call(nativeCall);
    }

    @Override
    void atLength(LongToIntFunction nativeCalls) {
        run((model, useCallback, error) -> explained(model, nativeCalls, error));
    }

    private static int explained(long model, LongToIntFunction nativeCalls, String[] error) {
        int status = nativeCalls.applyAsInt(model);
        error[0] = errorText(model);
        return status;
    }

    private void free(long model) {
        KorvexJni.freemodel(model);
        env.handle.unpin();
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
     * @throws KVXException if the solver refuses; the text tells why; the status is {@link
     *     KVX#ERROR_NOT_STARTED} or, for all other reasons, {@link KVX#ERROR_INVALID_ARGUMENT}
     */
    public KVXModel(KVXEnv env, String name) { this(env, name, Columns.of()); }

    /**
     * Makes a model with variables and without constraints.
     *
     * @param env its environment
     * @param name its name, or null
     * @param columns the variables, without coefficients
     * @throws IllegalArgumentException if there are coefficients
     * @throws KVXException if the solver refuses; the text tells why; the status is {@link
     *     KVX#ERROR_NOT_STARTED} or, for all other reasons, {@link KVX#ERROR_INVALID_ARGUMENT}
     */
    public KVXModel(KVXEnv env, String name, Columns columns) {
        this(env, columns.newModel(name), KVX.ERROR_INVALID_ARGUMENT);
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
     * @throws KVXException if the solver refuses; the text tells why; the status is {@link
     *     KVX#ERROR_NOT_STARTED} or, for all other reasons, {@link KVX#ERROR_INVALID_ARGUMENT}
     */
    public static KVXModel load(KVXEnv env, String name, int sense, double constant,
                                Columns columns, Rows rows) {
        return new KVXModel(env, columns.load(name, sense, constant, rows),
                            KVX.ERROR_INVALID_ARGUMENT);
    }

    /**
     * Reads a model file.
     *
     * @param env the environment for the model
     * @param file name of the file
     * @return the model
     * @throws KVXException if that fails; its message names file and line; the status is {@link
     *     KVX#ERROR_NOT_STARTED} or, for all other reasons, {@link KVX#ERROR_FILE_READ}
     */
    public static KVXModel read(KVXEnv env, String file) {
        Objects.requireNonNull(file, "file");
        return new KVXModel(
            env, environment -> KorvexJni.readmodel(environment, file), KVX.ERROR_FILE_READ);
    }

    /**
     * Takes a model over that a native of {@link KorvexJni} made.
     *
     * @param env the environment it was made in
     * @param model its handle; it belongs to the new object from now on
     * @return the model
     * @throws KVXException if the handle is 0, with the environment's last error text
     */
    public static KVXModel adopt(KVXEnv env, long model) {
        if (model == 0)
            env.handle.call(environment -> {
                throw new KVXException(KVX.ERROR_INVALID_ARGUMENT,
                                       "the handle is 0; the environment's last error: " +
                                           KorvexJni.geterrormsg(environment));
            });
        return new KVXModel(env, environment -> model, KVX.ERROR_INVALID_ARGUMENT);
    }

    /**
     * Returns the native handle, for {@link KorvexJni}. Keep this object open while using it.
     *
     * @return the handle
     */
    public long handle() { return handle.value(); }

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
    public KVXParams params() { return new KVXParams(env, handle, KorvexJni::getenv); }

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
        return new KVXParams(env, handle, model -> {
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
     * Solves the model. A limit, an interruption or infeasibility is no failure: {@link
     * KVXAttribute#STATUS} tells.
     *
     * @throws KVXException if the solver fails
     */
    public void optimize() {
        run((model, useCallback, error) -> jnioptimize(model, useCallback, 0, null, error, 0));
    }

    /**
     * Tries several parameter settings on the model, for {@link KVXParameter#TUNE_TIME_LIMIT}
     * seconds at most. {@link KVXAttribute#TUNE_RESULT_COUNT} of them are kept for {@link
     * #loadTuneResult}.
     *
     * @throws KVXException if the solver fails
     */
    public void tune() {
        run((model, useCallback, error)
                -> useCallback != 0 ? jnitune(model, useCallback, error, 0)
                                    : explained(model, KorvexJni::tunemodel, error));
    }

    /**
     * Finds an irreducible infeasible subsystem; {@link KVXAttribute#IIS_CONSTR}, {@link
     * KVXAttribute#IIS_LB} and {@link KVXAttribute#IIS_UB} tell what belongs to it.
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
        Thread thread = Thread.currentThread();
        if (Log.isVirtual(thread)) {
            await(start(driver)); // Its carrier, which others wait for, would be blocked meanwhile.
            return;
        }
        Run run = begin(thread);
        conduct(run, driver);
        run.rethrow();
    }

    /**
     * Starts to solve the model on a daemon thread of its own, for {@link #sync} to wait for. It
     * doesn't keep the virtual machine alive.
     *
     * @throws KVXException if the solver fails
     */
    public void optimizeAsync() {
        Run run = start(
            (model, useCallback, error) -> jnioptimize(model, useCallback, 0, null, error, 0));
        if (handle.isShut())
            await(run); // Who closed the model saw nothing to wait for yet.
    }

    private Run start(Driver driver) {
        Run[] begun = new Run[1];
        Thread thread =
            new Thread(() -> conduct(begun[0], driver), "korvex-run-" + THREADS.incrementAndGet());
        thread.setDaemon(true);
        Run run = begin(thread);
        begun[0] = run;
        try {
            thread.start();
        } catch (Throwable t) {
            end(run);
            forget(run);
            throw t;
        }
        return run;
    }

    /** Begins a run by a thread, which is a user of the handle from now on. */
    Run begin(Thread thread) {
        Inside.refuseConsumer(); // The call that logs may be using the model.
        Room.require(Room.RUN);
        long model = handle.acquire();
        try {
            if (run != null)
                throw new IllegalStateException(
                    "a run of the model is going on, or sync hasn't waited for its end");
            check(model, KorvexJni.updatemodel(model));
            Run begun = new Run(thread, model, callback, count(model, "NumVars"));
            handle.run(thread);
            run = begun; // At last: what fails before leaves no run behind.
            return begun;
        } catch (Throwable t) {
            handle.release();
            throw t;
        }
    }

    private void conduct(Run run, Driver driver) {
        try {
            String[] error = new String[1];
            env.log.during(run, () -> {
                // The callback gives other threads their turn of the log, too.
                boolean useCallback = run.callback != null || run.hasTurn;
                int status = driver.run(run.model, useCallback ? 1 : 0, error);
                if (status != KVX.OK)
                    run.thrown.add(new KVXException(status, error[0]));
            });
        } catch (Throwable t) {
            run.thrown.add(t);
        } finally {
            end(run);
        }
    }

    /** Ends it; then an asynchronous one can be waited for. */
    void end(Run run) {
        if (!run.asynchronous())
            forget(run);
        handle.release();
        synchronized (this) {
            run.over = true;
            notifyAll();
        }
    }

    private synchronized boolean forget(Run past) {
        boolean known = run == past;
        if (known)
            run = null;
        return known;
    }

    /**
     * Waits for the end of the run that {@link #optimizeAsync} started; returns at once if there is
     * none. If several threads wait, what went wrong is thrown in one of them.
     *
     * @throws KVXException if the run failed, and with {@link KVX#ERROR_IN_PROGRESS} inside a
     *     callback of that run, which can't wait for itself: the run goes on then
     * @throws IllegalStateException inside a log's consumer, and inside the callback of another run
     *     unless that started this one: they might wait for each other
     */
    public void sync() {
        handle.value();
        Run asynchronous = toWaitFor();
        if (inCallback())
            throw new KVXException(KVX.ERROR_IN_PROGRESS,
                                   "the run can't be waited for inside its own callback");
        if (asynchronous != null)
            await(asynchronous);
    }

    /** Returns the asynchronous run, if there is one, unless this thread mustn't wait for it. */
    private Run toWaitFor() {
        Inside.refuseConsumer();
        Run present = run;
        if (present == null || !present.asynchronous())
            return null;
        if (Inside.callback() && !inCallback() && present.starter != Thread.currentThread())
            throw new IllegalStateException(
                "inside a callback only a run can be waited for that it has started");
        return present;
    }

    private void await(Run run) {
        boolean interrupted = false;
        synchronized (this) {
            while (!run.over) {
                try {
                    wait();
                } catch (InterruptedException e) {
                    interrupted = true;
                }
            }
        }
        if (interrupted)
            Thread.currentThread().interrupt();
        if (forget(run))
            run.rethrow();
    }

    /**
     * Tells whether a run is going on. An asynchronous one that has ended can be waited for without
     * delay.
     *
     * @return true from the start of a run to its end
     */
    public boolean isRunning() {
        Run present = run;
        if (present == null)
            return false;
        synchronized (this) { return !present.over; }
    }

    /**
     * Asks the run that is going on to end soon, or the next one to end at once. Any thread may
     * call this at any time; after the model was closed it does nothing.
     */
    public void terminate() {
        Run present = run;
        if (present != null)
            present.terminated = true;
        long model = handle.pinIfAlive();
        if (model == 0)
            return;
        try {
            KorvexJni.terminate(model);
        } finally {
            handle.unpin();
        }
    }

    private boolean inCallback() { return callbackThread == Thread.currentThread(); }

    /** Called by the bridge, on whatever thread the solver chose; nothing may escape from it. */
    private void fromjni() {
        Run present = run;
        if (present == null)
            return;
        try {
            if (present.hasFailed())
                abandon(present);
            else
                callBack(present);
        } catch (Throwable t) {
            try {
                abandon(present); // First, since it takes no memory.
                present.thrown.add(t);
            } catch (Throwable exhaustion) {
                present.exhaustion = exhaustion; // The next callback tries again.
            }
        }
    }

    /** Ends the run. A solution that the callback might have refused must not become the result. */
    private void abandon(Run present) {
        present.terminated = true;
        KorvexJni.terminate(cbmodel);
        if (where == KVX.CB_MIPSOL) // Nothing satisfies 0 >= 1.
            KorvexJni.cbcutorlazy(cbdata, 0, NO_INDICES, NO_VALUES, KVX.GREATER_EQUAL, 1, 0);
    }

    private void callBack(Run present) {
        Thread thread = Thread.currentThread();
        boolean foreign = thread != present.thread;
        KVXCallbackContext context = new KVXCallbackContext(this, cbdata, where, present.numVars);
        int outside = Inside.enterCallback(foreign);
        try {
            callbackThread = thread;
            if (foreign)
                handle.handOver(thread);
            else
                env.log.pause(present);
            if (present.callback != null)
                present.callback.call(context);
        } finally {
            context.end();
            callbackThread = null;
            Inside.leave(outside);
            if (foreign)
                handle.handOver(present.thread);
            else
                env.log.resume(present);
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
     * @param index its number, from 0, the best, to {@link KVXAttribute#TUNE_RESULT_COUNT} - 1; -1
     *     for the latest found
     * @throws KVXException if there is no such setting
     */
    public void loadTuneResult(int index) { call(model -> KorvexJni.gettuneresult(model, index)); }

    /**
     * Fixes the discrete variables at the best solution, in place, and makes them continuous.
     *
     * @throws KVXException if there is no solution, or the solver refuses
     */
    public void convertToFixed() { env.logging(() -> call(this::jniconverttofixed)); }

    /**
     * Submits a copy of the model as a batch request.
     *
     * @return the request's ID, for {@link KVXBatch}
     * @throws KVXException if the solver refuses
     */
    public String optimizeBatch() {
        String[] slot = new String[1];
        env.logging(() -> call(model -> jnioptimizebatch(model, slot)));
        return slot[0];
    }

    /**
     * Reads a solution, start, basis or parameter file into the model.
     *
     * @param file its name, which tells the {@link FileFormat format}
     * @throws KVXException if that fails; its message names file and line, and nothing is changed
     */
    public void read(String file) { env.logging(() -> call(model -> KorvexJni.read(model, file))); }

    /**
     * Writes a model, solution, start, basis or parameter file, or a solution as JSON.
     *
     * @param file its name, which tells the {@link FileFormat format} by its ending, .json for the
     *     last
     * @throws KVXException if the file can't be written, there is nothing to write, or the format
     *     can't hold it
     */
    public void write(String file) {
        env.logging(() -> call(model -> KorvexJni.write(model, file)));
    }

    /**
     * Returns the solution as JSON.
     *
     * @return the text
     * @throws KVXException if the model wasn't solved
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
     * @throws IllegalStateException inside the model's own callback, inside a log's consumer, and
     *     where {@link #sync} would throw it
     */
    @Override
    public void close() {
        if (inCallback())
            throw new IllegalStateException("a model can't be closed inside its own callback");
        toWaitFor();
        if (!handle.shut())
            return;
        try {
            terminate();
            Run asynchronous = toWaitFor();
            if (asynchronous != null)
                await(asynchronous);
        } finally {
            handle.unpin();
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
