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

    /** Comes down when a run of the model calls back. */
    static CountDownLatch called(KVXModel model) {
        CountDownLatch called = new CountDownLatch(1);
        model.setCallback(context -> called.countDown());
        return called;
    }

    static void run(KVXModel model, boolean async) {
        if (async) {
            model.optimizeAsync();
            model.sync();
        } else {
            model.optimize();
        }
    }

    final Thread start(Executable action) { return start(0, action); }

    /** With a stack of that size, 0 for the usual one. */
    final Thread start(long stack, Executable action) {
        Thread thread = new Thread(null, () -> {
            try {
                action.execute();
            } catch (Throwable t) {
                failures.add(t);
            }
        }, "test", stack);
        threads.add(thread);
        thread.start();
        return thread;
    }

    final void join() throws InterruptedException {
        for (Thread thread : threads)
            thread.join();
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
