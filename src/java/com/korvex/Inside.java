package com.korvex;

/** What the calling thread is inside of: upcalls from native code, where it can't do everything. */
final class Inside {
    private static final int CALLBACK = 1, FOREIGN = 2, CONSUMER = 4;
    private static final ThreadLocal<Integer> UPCALLS = ThreadLocal.withInitial(() -> 0);

    private Inside() {}

    /** Enters a callback; returns what to {@link #leave} with. */
    static int enterCallback(boolean foreign) {
        return enter(foreign ? CALLBACK | FOREIGN : CALLBACK);
    }

    /** Enters a log's consumer. */
    static int enterConsumer() { return enter(CONSUMER); }

    private static int enter(int upcall) {
        int before = UPCALLS.get();
        UPCALLS.set(before | upcall);
        return before;
    }

    static void leave(int before) { UPCALLS.set(before); }

    static boolean callback() { return (UPCALLS.get() & CALLBACK) != 0; }

    /** Inside the consumer of some environment's log. */
    static boolean consumer() { return (UPCALLS.get() & CONSUMER) != 0; }

    /** The solver is delivering a line: what could bring another, or wait for one, is refused. */
    static void refuseConsumer() {
        if (consumer())
            throw new IllegalStateException("a log's consumer can't do this");
    }

    /**
     * Java knows a thread of the solver's for the length of its callback: no binding may name it.
     */
    static void refuseForeignThread() {
        if ((UPCALLS.get() & FOREIGN) != 0)
            throw new IllegalStateException(
                "inside a callback on the solver's own thread the log can't be used");
    }
}
