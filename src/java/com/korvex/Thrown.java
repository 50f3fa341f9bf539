package com.korvex;

/**
 * What callbacks threw. Nothing may be thrown through native code, so it waits here until a Java
 * method that native code has returned to throws it on.
 */
final class Thrown {
    private Throwable first;

    /** Keeps a throwable: the first as itself, later ones as suppressed by the first. */
    synchronized void add(Throwable throwable) {
        if (first == null)
            first = throwable;
        else if (first != throwable)
            suppress(throwable);
    }

    private void suppress(Throwable throwable) {
        try {
            first.addSuppressed(throwable);
        } catch (VirtualMachineError e) {
            // No memory or stack is left for more than the first.
        }
    }

    synchronized boolean pending() { return first != null; }

    /** Throws what was kept, if anything was, and forgets it. */
    void rethrow() {
        Throwable throwable;
        synchronized (this) {
            throwable = first;
            first = null;
        }
        if (throwable != null)
            Thrown.<RuntimeException>throwAsIs(throwable);
    }

    /** Throws a checked exception, too, without wrapping it: a callback may have done the same. */
    @SuppressWarnings("unchecked")
    private static <T extends Throwable> void throwAsIs(Throwable throwable) throws T {
        throw(T) throwable;
    }
}
