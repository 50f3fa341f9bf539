package com.korvex;

import java.util.Objects;
import java.util.function.Consumer;

/**
 * An environment: parameters, a log, and the models and batches made in it.
 *
 * <p>Closing it lets nothing new begin; its native half lives on until the last model and batch
 * that uses it is closed, too. A use after that throws {@link IllegalStateException}.
 *
 * <p><b>Threads.</b> Any thread may use an environment: it waits while another one does, which is
 * never for the length of a run, but for that of reading or deriving a model. Runs of different
 * models go on at once.
 *
 * <p><b>The log</b> goes to standard output unless {@link KVXParameter#LOG_TO_CONSOLE} is 0, to the
 * file {@link KVXParameter#LOG_FILE}, and to the consumer of {@link #setLog}.
 *
 * <p><b>The log and threads.</b> Lines reach the consumer of {@link #setLog} from the thread that
 * makes them: the Java thread whose call logs, or a thread of the solver's own. The native binding
 * serves one Java thread at a time. So while a consumer is set, the calls of an environment and its
 * models that can log (runs, reading, writing, {@link #message} and so on) take turns; a run lets
 * others have their turn during its callbacks, of which the solver makes some even if there is no
 * {@link KVXCallback}. Use an environment a thread where runs that log are to go on at full speed
 * side by side. Set the consumer before a run begins: one that is set while runs go on that had
 * none gets lines once all of these have ended or come to a callback. Reading and deriving models
 * and {@link KVXModel#relaxFeasibility} have the turn, the first two the environment, too, from
 * beginning to end. A virtual thread that has to wait for a model inside such a call may lose that
 * call's lines; its runs lose none.
 */
public final class KVXEnv implements AutoCloseable {
    final Handle handle;
    final Log log = new Log(this);

    private volatile boolean started;

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
        started = true;
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
    public void start() {
        logging(() -> handle.call(KorvexJni::startenv));
        started = true;
    }

    /** Natives that make a model tell no status; this one can be known here. */
    int statusOf(int failure) { return started ? failure : KVX.ERROR_NOT_STARTED; }

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
    public KVXParams params() { return new KVXParams(this, handle, env -> env); }

    /**
     * Writes a line to the log.
     *
     * @param text the line, without a line feed; one inside makes two lines
     */
    public void message(String text) {
        Objects.requireNonNull(text, "text");
        logging(() -> handle.call(env -> KorvexJni.message(env, text + "\n")));
    }

    /**
     * Sends the log's lines to a consumer, or to none. When this returns, the former consumer isn't
     * at work on another thread and gets no more lines. If a consumer throws, the runs that are
     * going on in this environment are terminated and throw on what it threw, or else the call that
     * logged does (not one of {@link KorvexJni}); it gets no more lines of that run. While it is at
     * work, everything that may log or would have to wait for another thread throws {@link
     * IllegalStateException}.
     *
     * @param consumer receives each line without its line feed, one at a time; null for none
     * @throws IllegalStateException inside a log's consumer, and inside a callback on a thread of
     *     the solver's own
     */
    public void setLog(Consumer<String> consumer) {
        handle.pin();
        try {
            log.set(consumer);
        } finally {
            handle.unpin();
        }
    }

    /** Binds this object to the log, or unbinds it; nothing is left to do once it was freed. */
    int bind(boolean enable) {
        // An open model keeps a closed environment alive.
        long env = handle.pinIfAlive();
        if (env == 0)
            return KVX.OK;
        try {
            return jniSetLogCB(env, enable ? 1 : 0);
        } finally {
            handle.unpin();
        }
    }

    /**
     * Frees the environment, or leaves that to the last model and batch that uses it. Does nothing
     * the second time.
     */
    @Override
    public void close() {
        if (handle.shut())
            handle.unpin();
    }

    /**
     * Returns the native handle, for {@link KorvexJni}. Keep this object open while using it.
     *
     * @return the handle
     */
    public long handle() { return handle.value(); }

    /** The error text of a call on an object of this environment, which may be closed. */
    String errorText() {
        long env = handle.acquireClosed();
        try {
            return KorvexJni.geterrormsg(env);
        } finally {
            handle.release();
        }
    }

    /** Does something that may log on this thread. */
    void logging(Runnable action) { log.during(action); }

    /** Called by the bridge, on whatever thread logs. */
    private void jniPrintLog() { log.deliver(logmsg); }

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
