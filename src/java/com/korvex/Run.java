package com.korvex;

/** A run of a model: what was settled when it began, and what goes wrong in it. */
final class Run {
    final Thread starter = Thread.currentThread();
    final Thread thread; // conducts it
    final long model;
    final KVXCallback callback;
    final int numVars;
    final Thrown thrown = new Thrown();

    /** Set where there was neither stack nor heap left to do more about it. */
    volatile Throwable exhaustion;
    volatile boolean terminated;

    /** Whether it has the log's turn; of its own thread. */
    boolean hasTurn;
    /** Whether it has given back the turn, or its want of one, for the length of a callback. */
    boolean isPaused;

    /** Whether the native call is yet to return; guarded by this. */
    private boolean isNative = true;

    /** Guarded by the model. */
    boolean over;

    Run(Thread thread, long model, KVXCallback callback, int numVars) {
        this.thread = thread;
        this.model = model;
        this.callback = callback;
        this.numVars = numVars;
    }

    boolean asynchronous() { return thread != starter; }

    boolean hasFailed() { return exhaustion != null || thrown.pending(); }

    /**
     * Ends it because of a throwable. Returns whether it isn't past that: a request to terminate
     * that came later would end the next run.
     */
    synchronized boolean fail(Throwable throwable) {
        if (isNative) {
            thrown.add(throwable);
            terminated = true;
            KorvexJni.terminate(model);
        }
        return isNative;
    }

    synchronized void nativeCallReturned() { isNative = false; }

    /** Throws on what went wrong. */
    void rethrow() {
        if (exhaustion != null)
            thrown.add(exhaustion);
        thrown.rethrow();
    }
}
