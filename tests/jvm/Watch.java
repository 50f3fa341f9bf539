package com.korvex;

import static org.junit.jupiter.api.Assertions.*;

import org.junit.jupiter.api.extension.*;

/**
 * After every test: everything that the solver handed out was given back, nothing was used by two
 * threads at once, and no thread is left in a run or takes itself for being in a callback.
 */
public final class Watch implements AfterEachCallback {
    static { System.load(System.getProperty("korvex.watch")); }

    @Override
    public void afterEach(ExtensionContext context) throws Exception {
        assertFalse(Inside.callback() || Inside.consumer(), "inside an upcall for ever");
        for (Thread thread : Thread.getAllStackTraces().keySet())
            if (thread.getName().startsWith("korvex-run-")) {
                thread.join(2000);
                assertFalse(thread.isAlive(), thread.getName() + " is left");
            }
        assertEquals("", findings());
    }

    private static native String findings();
}
