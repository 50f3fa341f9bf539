package com.korvex;

import java.util.concurrent.atomic.AtomicInteger;
import java.util.function.LongConsumer;
import java.util.function.LongFunction;
import java.util.function.LongToIntFunction;

/**
 * A native handle: used by one thread at a time, and freed by the last that needs it.
 *
 * <p>Whoever calls native code with it {@link #acquire acquires} it, any number of times in one
 * thread. Another thread waits meanwhile; while a run goes on, which may take long, it gets an
 * {@link IllegalStateException} instead, and so does a log's consumer that would have to wait,
 * since what it would wait for may be about to log. The callbacks of a run use its model, too.
 *
 * <p>Nobody waits for somebody who waits for him, for all take things in this order: the turn of a
 * log, a batch, an environment, a model. During a run only its model is held: a callback gives the
 * turn back, and others don't wait for the model.
 *
 * <p>To need a handle without using it is to {@link #pin} it: its owner does until it is closed, a
 * model its environment, and {@link KVXModel#terminate}, which works at any moment.
 */
final class Handle {
    private static final AtomicInteger ALIVE = new AtomicInteger();

    private final String name;
    private final long value;
    private final LongFunction<String> errorText;
    private final LongConsumer free;

    // Guarded by this.
    private int pins = 1; // the thread that uses the handle has one, too
    private boolean closed;
    private Thread user;
    private int uses; // by that thread
    private boolean running;
    private int waiting;

    /**
     * @param name what the handle stands for, in messages
     * @param errorText gives the solver's last error text for it
     * @param free frees it
     */
    Handle(String name, long value, LongFunction<String> errorText, LongConsumer free) {
        this.name = name;
        this.value = value;
        this.errorText = errorText;
        this.free = free;
        ALIVE.incrementAndGet();
    }

    /** The number of handles that weren't freed yet. */
    static int alive() { return ALIVE.get(); }

    /** Becomes its user, until {@link #release}. */
    long acquire() { return acquire(Thread.currentThread(), false); }

    /** The same after it was closed, by one who has a pin. */
    long acquireClosed() { return acquire(Thread.currentThread(), true); }

    private synchronized long acquire(Thread thread, boolean evenClosed) {
        if (user != thread) {
            if (user != null)
                await();
            if (closed && !evenClosed)
                throw new IllegalStateException(name + " is closed");
            user = thread;
            pins++;
        }
        uses++;
        return value;
    }

    private void await() {
        boolean interrupted = false;
        waiting++;
        try {
            while (user != null) {
                if (running)
                    throw new IllegalStateException("a run of " + name +
                                                    " is going on in another thread");
                if (Inside.consumer())
                    throw new IllegalStateException(
                        name + " is used by another thread, and a log's consumer can't wait");
                try {
                    wait();
                } catch (InterruptedException e) {
                    interrupted = true;
                }
            }
        } finally {
            waiting--;
            if (interrupted)
                Thread.currentThread().interrupt();
        }
    }

    /**
     * Takes no more of the stack than acquiring did, so that it can't fail where that succeeded.
     */
    void release() {
        synchronized (this) {
            if (--uses > 0)
                return;
            user = null;
            running = false;
            if (waiting > 0)
                notifyAll();
            if (--pins > 0)
                return;
        }
        free();
    }

    private void free() {
        free.accept(value);
        ALIVE.decrementAndGet();
    }

    /** Turns the calling thread's only use into a run by a thread, which may be another. */
    synchronized void run(Thread thread) {
        user = thread;
        running = true;
        notifyAll(); // Nobody waits for a run.
    }

    /** Lets another thread go on with the use; returns the one that had it. */
    synchronized Thread handOver(Thread thread) {
        Thread former = user;
        user = thread;
        return former;
    }

    /** Keeps it alive, until {@link #unpin}. */
    synchronized void pin() {
        if (closed)
            throw new IllegalStateException(name + " is closed");
        pins++;
    }

    /** Pins it if it wasn't freed, even if it was closed; otherwise returns 0. */
    synchronized long pinIfAlive() {
        if (pins == 0)
            return 0;
        pins++;
        return value;
    }

    void unpin() {
        synchronized (this) {
            if (--pins > 0)
                return;
        }
        free();
    }

    /**
     * Lets nobody else acquire the handle. Who gets true back has closed it and must end the
     * owner's pin.
     */
    synchronized boolean shut() {
        boolean first = !closed;
        closed = true;
        return first;
    }

    synchronized boolean isShut() { return closed; }

    /** The native handle, of no use to one who doesn't keep it alive. */
    synchronized long value() {
        if (closed)
            throw new IllegalStateException(name + " is closed");
        return value;
    }

    /** Makes a native call that returns a status. */
    void call(LongToIntFunction nativeCall) {
        long handle = acquire();
        try {
            int status = nativeCall.applyAsInt(handle);
            if (status != KVX.OK)
                throw new KVXException(status, errorText.apply(handle));
        } finally {
            release();
        }
    }
}
