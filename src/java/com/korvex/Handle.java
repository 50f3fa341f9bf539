package com.korvex;

import java.util.function.LongConsumer;
import java.util.function.LongFunction;
import java.util.function.LongToIntFunction;

/**
 * A native handle that is freed by its last user. Its owner is one user; every native call is
 * another for as long as it lasts, and so is every object that needs this one to stay alive. So
 * nothing is freed under a call that still uses it, whichever thread closes what, and when.
 */
final class Handle {
    private final String name;
    private final long value;
    private final LongFunction<String> errorText;
    private final LongConsumer free;
    private int users = 1;
    private boolean closed;

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
    }

    /** Becomes a user, to be ended with {@link #release}. */
    synchronized long acquire() {
        if (closed)
            throw new IllegalStateException(name + " is closed");
        users++;
        return value;
    }

    /** As {@link #acquire} while there is any user left, even if the owner isn't; 0 afterwards. */
    synchronized long acquireIfAlive() {
        if (users == 0)
            return 0;
        users++;
        return value;
    }

    void release() {
        synchronized (this) {
            if (--users > 0)
                return;
        }
        free.accept(value);
    }

    /**
     * Lets nobody else acquire the handle. Who gets true back has closed it and must release the
     * owner's use.
     */
    synchronized boolean shut() {
        boolean first = !closed;
        closed = true;
        return first;
    }

    synchronized boolean isShut() { return closed; }

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
