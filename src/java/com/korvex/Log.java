package com.korvex;

import java.util.Set;
import java.util.concurrent.ConcurrentHashMap;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.locks.ReentrantLock;
import java.util.function.Consumer;

/**
 * The log of an environment. The native half serves threads of the solver's own and one Java
 * thread, the one that it is bound to: a line from another Java thread would be the last. So
 * whatever can log takes a turn and is bound to its thread first, unless there is no consumer.
 * Callbacks give the turn back while they last: whoever waits for it waits from one callback of a
 * run to the next, not for the whole run.
 */
final class Log {
    private final KVXEnv env;
    // Fair, so that a run doesn't take the turn again before one who waits for it.
    private final ReentrantLock turn = new ReentrantLock(true);
    private final Object delivery = new Object();
    private final Set<Run> running = ConcurrentHashMap.newKeySet();

    private volatile Consumer<String> consumer;
    private boolean failed;           // the consumer has thrown; guarded by delivery
    private volatile Thrown call;     // where what it throws goes if there is no run
    private volatile Thread bound;    // null: no record is bound
    private volatile boolean strayed; // a line has come from another thread than that
    private int withoutTurn; // threads that may log and didn't take the turn; guarded by this

    Log(KVXEnv env) { this.env = env; }

    void set(Consumer<String> next) {
        Inside.refuseConsumer();
        Inside.refuseForeignThread();
        synchronized (delivery) { // waits while the former one is at work
            consumer = next;
            failed = false;
        }
        try {
            settle();
        } catch (KVXException e) {
            consumer = null;
            throw e;
        }
    }

    /** Does something that may log on this thread. */
    void during(Runnable action) {
        Inside.refuseConsumer();
        Thrown thrown = new Thrown();
        boolean hasTurn = enter(null);
        try {
            if (hasTurn) {
                listenAgain();
                call = thrown;
            }
            action.run();
        } finally {
            if (hasTurn)
                call = null;
            leave(hasTurn);
        }
        thrown.rethrow();
    }

    /** The same for a run, which gives the turn back in between. */
    void during(Run run, Runnable action) {
        Inside.refuseConsumer();
        run.hasTurn = enter(run);
        try {
            if (run.hasTurn)
                listenAgain();
            running.add(run);
            action.run();
        } finally {
            run.nativeCallReturned();
            running.remove(run);
            if (!run.isPaused)
                leave(run.hasTurn);
        }
    }

    private void listenAgain() {
        synchronized (delivery) { failed = false; }
    }

    void pause(Run run) {
        giveBack(run.hasTurn);
        run.isPaused = true;
        settleIfNeeded();
    }

    /** If that fails, the run stays paused: it has nothing to give back. */
    void resume(Run run) {
        if (!run.isPaused)
            return;
        run.hasTurn = enter(run);
        run.isPaused = false;
    }

    /**
     * Waits for the turn and binds the log to this thread. Returns false, without the turn, if
     * there is nothing to bind; also if a run was terminated that has waited in vain for a second:
     * to end is more important than to log.
     */
    private boolean enter(Run run) {
        synchronized (this) {
            if (consumer == null && bound == null) {
                withoutTurn++;
                return false;
            }
        }
        Inside.refuseForeignThread();
        Room.require(Room.TURN);
        if (!takeTurn(run)) {
            synchronized (this) { withoutTurn++; }
            return false;
        }
        try {
            bindHere();
        } catch (Throwable t) {
            turn.unlock();
            throw t;
        }
        return true;
    }

    private boolean takeTurn(Run run) {
        if (run == null) {
            turn.lock();
            return true;
        }
        boolean taken = false, interrupted = false, hopeless = false;
        while (!taken && !hopeless) {
            try {
                taken = turn.tryLock(1, TimeUnit.SECONDS);
                hopeless = run.terminated;
            } catch (InterruptedException e) {
                interrupted = true;
            }
        }
        if (interrupted)
            Thread.currentThread().interrupt();
        return taken;
    }

    private void leave(boolean hasTurn) {
        giveBack(hasTurn);
        settleIfNeeded();
    }

    private void giveBack(boolean hasTurn) {
        if (hasTurn) {
            turn.unlock();
        } else {
            synchronized (this) { withoutTurn--; }
        }
    }

    private void settleIfNeeded() {
        if (consumer == null ? bound != null : bound == null)
            settle();
    }

    /** Binds or unbinds, unless another thread has the turn: it does so itself. */
    private void settle() {
        Room.require(Room.TURN);
        if (!turn.tryLock())
            return;
        try {
            bindHere();
        } finally {
            turn.unlock();
        }
    }

    /** With the turn: binds the log to this thread if there is a consumer, otherwise unbinds it. */
    private synchronized void bindHere() {
        Thread here = Thread.currentThread();
        boolean wanted = consumer != null && withoutTurn == 0;
        if (wanted ? bound == here && !strayed && !isVirtual(here) : bound == null)
            return;
        bound = null;
        int status = env.bind(wanted);
        if (status != KVX.OK)
            throw new KVXException(status, "the log callback can't be installed");
        strayed = false;
        bound = wanted ? here : null;
    }

    /** Such a thread may have changed its carrier, the thread that native code knows. */
    static boolean isVirtual(Thread thread) {
        return thread.getThreadGroup().getName().equals("VirtualThreads");
    }

    /** Receives a line on whatever thread logs; lets nothing escape into native code. */
    void deliver(String line) {
        Thrown present = call;
        try {
            strayed |= Thread.currentThread() != bound;
            synchronized (delivery) {
                if (consumer != null && !failed)
                    hand(line);
            }
        } catch (Throwable t) {
            if (!spread(t) && present != null)
                present.add(t);
        }
    }

    private void hand(String line) {
        failed = true; // until it has returned: there may be no memory to say so afterwards
        int outside = Inside.enterConsumer();
        try {
            consumer.accept(line);
            failed = false;
        } finally {
            Inside.leave(outside);
        }
    }

    /** Ends the runs that are going on; otherwise the call that logs is to throw. */
    private boolean spread(Throwable t) {
        boolean kept = false;
        try {
            for (Run run : running)
                kept |= run.fail(t);
        } catch (Throwable exhaustion) {
            // What could be told was told.
        }
        return kept;
    }
}
