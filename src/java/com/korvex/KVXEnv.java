package com.korvex;

import java.util.Set;
import java.util.concurrent.ConcurrentHashMap;
import java.util.concurrent.locks.ReentrantLock;
import java.util.function.Consumer;

/**
 * An environment: parameters, a log, and the models and batches made in it.
 *
 * <p>Closing it lets nothing new begin; its native half lives on until the last model and batch
 * that uses it is closed, too. A use after that throws {@link IllegalStateException}.
 *
 * <p><b>The log and threads.</b> Lines reach the consumer of {@link #setLog} from the thread that
 * makes them: a thread of the solver's own, or the Java thread whose call logs. The native binding
 * serves one Java thread at a time. So while a consumer is set, the calls of an environment and its
 * models that can log (synchronous runs, starting a run, reading, writing, {@link #message}) take
 * turns: one waits for the other. Use {@link KVXModel#optimizeAsync} or an environment a thread to
 * log several runs at once, and set the consumer before a run begins: one that is set while another
 * Java thread runs a model may get none of that run's lines.
 */
public final class KVXEnv implements AutoCloseable {
    final Handle handle;
    private final ReentrantLock turn = new ReentrantLock();
    private final Object delivery = new Object();
    private final Set<KVXModel> running = ConcurrentHashMap.newKeySet();
    private final Thrown thrown = new Thrown();
    private volatile Consumer<String> log;
    private volatile Thread deliverer;
    private volatile boolean logFailed;

    /** Set by the bridge before it calls {@link #jniPrintLog}. */
    private String logmsg;

    /**
     * Makes an environment that is ready for use.
     *
     * @throws KVXException if the solver refuses
     */
    public KVXEnv() { this((String)null); }

    /**
     * Makes an environment that is ready for use and logs to a file.
     *
     * @param logFile name of the log file, or null for none
     * @throws KVXException if the solver refuses
     */
    public KVXEnv(String logFile) {
        this(slot
             -> KorvexJni.loadenv(slot, logFile, KVX.VERSION_MAJOR, KVX.VERSION_MINOR,
                                  KVX.VERSION_TECHNICAL, 0));
    }

    private interface Maker {
        int make(long[] slot);
    }

    private KVXEnv(Maker maker) {
        long[] slot = new long[1];
        int status = maker.make(slot);
        // A failed creation, too, leaves an environment behind: it holds the error text.
        if (status != KVX.OK) {
            String text = KorvexJni.geterrormsg(slot[0]);
            KorvexJni.freeenv(slot[0]);
            throw new KVXException(status, text);
        }
        handle = new Handle("the environment", slot[0], KorvexJni::geterrormsg, this::free);
    }

    private void free(long env) {
        // The record behind the log would outlive its environment otherwise.
        jniSetLogCB(env, 0);
        KorvexJni.freeenv(env);
    }

    /**
     * Makes an environment for which parameters can be set before {@link #start}.
     *
     * @return the environment
     * @throws KVXException if the solver refuses
     */
    public static KVXEnv empty() {
        return new KVXEnv((long[] slot)
                              -> KorvexJni.createenv(slot, KVX.VERSION_MAJOR, KVX.VERSION_MINOR,
                                                     KVX.VERSION_TECHNICAL));
    }

    /**
     * Starts an environment that {@link #empty} made.
     *
     * @throws KVXException if it was started before
     */
    public void start() { handle.call(KorvexJni::startenv); }

    /**
     * The version of the solver's library.
     *
     * @param major first number
     * @param minor second number
     * @param technical third number
     */
    public record Version(int major, int minor, int technical) {}

    /**
     * Tells the version of the solver's library.
     *
     * @return its three numbers
     */
    public static Version version() {
        int[] out = new int[3];
        KorvexJni.version(out);
        return new Version(out[0], out[1], out[2]);
    }

    /**
     * Returns the parameters. A model copies them when it is made.
     *
     * @return the parameters
     */
    public KVXParams params() { return new KVXParams(handle, env -> env); }

    /**
     * Writes a line to the log.
     *
     * @param text the line, without a line feed
     */
    public void message(String text) {
        logging(() -> handle.call(env -> KorvexJni.message(env, text + "\n")));
    }

    /**
     * Sends the log's lines to a consumer, or to none. When this returns, the former consumer isn't
     * at work on another thread and gets no more lines. If a consumer throws, the runs that are
     * going on in this environment are terminated and throw on what it threw, or else the call that
     * logged does; it gets no more lines of that run.
     *
     * @param consumer receives each line without its line feed, one at a time; null for none
     * @throws IllegalStateException inside a consumer of this environment, and inside a callback on
     *     a thread of the solver's own
     */
    public void setLog(Consumer<String> consumer) {
        refuseConsumer();
        refuseForeignThread();
        handle.call(env -> bind(env, consumer));
    }

    private synchronized int bind(long env, Consumer<String> consumer) {
        int status = KVX.OK;
        // Whoever has the turn has bound the log to its own thread; it stays bound then.
        if (turn.tryLock()) {
            try {
                status = jniSetLogCB(env, consumer == null ? 0 : 1);
            } finally {
                turn.unlock();
            }
        }
        synchronized (delivery) {
            log = status == KVX.OK ? consumer : null;
            logFailed = false;
        }
        return status;
    }

    /**
     * Frees the environment, or leaves that to the last model and batch that uses it. Does nothing
     * the second time.
     */
    @Override
    public void close() {
        if (handle.shut())
            handle.release();
    }

    /**
     * Returns the native handle, for {@link KorvexJni}. Keep this object open while using it.
     *
     * @return the handle
     */
    public long handle() {
        long env = handle.acquire();
        handle.release();
        return env;
    }

    /** Does something that may log on this thread. */
    void logging(Runnable action) {
        boolean taken = log != null;
        if (taken)
            takeTurn();
        try {
            action.run();
        } finally {
            if (taken)
                turn.unlock();
        }
        thrown.rethrow();
    }

    private void takeTurn() {
        refuseConsumer();
        if (!turn.isHeldByCurrentThread())
            refuseForeignThread();
        // An open model keeps a closed environment alive.
        long env = handle.acquireIfAlive();
        if (env == 0)
            throw new IllegalStateException("the environment is closed");
        turn.lock();
        int status = turn.getHoldCount() > 1 ? KVX.OK : jniSetLogCB(env, 1);
        handle.release();
        if (status != KVX.OK) {
            turn.unlock();
            throw new KVXException(status, "the log callback can't be installed");
        }
        logFailed = false;
    }

    /** A line that is being delivered must not be bound anew, nor followed by one inside it. */
    void refuseConsumer() {
        if (deliverer == Thread.currentThread())
            throw new IllegalStateException("the log's own consumer can't do this");
    }

    /** Java knows such a thread for the length of the callback only; no binding may name it. */
    private void refuseForeignThread() {
        if (running.stream().anyMatch(KVXModel::inForeignCallback))
            throw new IllegalStateException(
                "inside a callback on the solver's own thread the log can't be used");
    }

    void started(KVXModel model) { running.add(model); }

    void ended(KVXModel model) { running.remove(model); }

    /** Called by the bridge, on whatever thread logs; nothing may escape from it. */
    private void jniPrintLog() {
        try {
            synchronized (delivery) {
                deliverer = Thread.currentThread();
                if (log != null && !logFailed)
                    log.accept(logmsg);
            }
        } catch (Throwable t) {
            logFailed = true;
            boolean kept = false;
            for (KVXModel model : running)
                kept |= model.fail(t);
            if (!kept)
                thrown.add(t);
        } finally {
            deliverer = null;
        }
    }

    /**
     * Binds this object to the environment's log, or unbinds it. For every line the bridge then
     * stores it in {@link #logmsg} and calls {@link #jniPrintLog}. A former binding is released.
     *
     * @param enable non-zero to bind, 0 to unbind
     * @return 0, {@link KVX#ERROR_OUT_OF_MEMORY}, {@link KVX#ERROR_CALLBACK} when the members can't
     *     be found, or the solver's status; after a failure nothing is bound
     */
    native int jniSetLogCB(long env, int enable);
}
