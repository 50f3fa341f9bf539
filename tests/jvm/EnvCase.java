package com.korvex;

import static org.junit.jupiter.api.Assertions.*;

import java.util.*;
import java.util.concurrent.*;
import org.junit.jupiter.api.*;
import org.junit.jupiter.api.function.Executable;

/** A test with an environment, and with threads that are waited for and whose failures are its. */
@Timeout(60)
abstract class EnvCase {
    final KVXEnv env = Models.quietEnv();
    private final List<Thread> threads = new ArrayList<>();
    private final Queue<Throwable> failures = new ConcurrentLinkedQueue<>();

    @AfterEach
    final void closeEnv() throws Exception {
        join();
        env.close();
        for (Throwable failure : failures)
            throw new AssertionError(failure);
    }

    final KVXModel endless() { return Models.marketSplit(env, 50, 5, 7); }

    static void run(KVXModel model, boolean async) {
        if (async) {
            model.optimizeAsync();
            model.sync();
        } else {
            model.optimize();
        }
    }

    /** Starts a run, and returns when it has called back. */
    final void startRun(KVXModel model, boolean async) {
        CountDownLatch called = new CountDownLatch(1);
        model.setCallback(context -> called.countDown());
        if (async)
            model.optimizeAsync();
        else
            start(model::optimize);
        await(called);
    }

    final Thread start(Executable action) { return start(0, action); }

    /** With a stack of that size, 0 for the usual one. */
    final Thread start(long stack, Executable action) {
        Thread thread = new Thread(null, () -> assertDoesNotThrow(action), "test", stack);
        thread.setUncaughtExceptionHandler((failed, failure) -> failures.add(failure));
        threads.add(thread);
        thread.start();
        return thread;
    }

    final void join() throws InterruptedException {
        for (Thread thread : threads)
            thread.join();
    }

    static void fails(int status, Executable use) {
        KVXException thrown = assertThrows(KVXException.class, use);
        assertEquals(status, thrown.status());
        assertTrue(thrown.getMessage().endsWith(" (status " + status + ")"), "without a text");
    }

    static void refused(Executable... uses) {
        for (Executable use : uses)
            assertThrows(IllegalStateException.class, use);
    }

    static void awaitState(Thread thread, Thread.State state) throws Exception {
        while (thread.getState() != state)
            Thread.sleep(1);
    }

    static void await(CountDownLatch latch) {
        assertDoesNotThrow(() -> assertTrue(latch.await(30, TimeUnit.SECONDS)));
    }
}
