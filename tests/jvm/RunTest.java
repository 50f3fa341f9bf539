package com.korvex;

import static org.junit.jupiter.api.Assertions.*;

import java.lang.reflect.Method;
import java.nio.file.Path;
import java.util.*;
import java.util.concurrent.*;
import java.util.concurrent.atomic.*;
import java.util.stream.IntStream;
import org.junit.jupiter.api.*;
import org.junit.jupiter.api.function.Executable;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.ValueSource;

/** Runs and their callbacks, and what throwing, closing and terminating do to them. */
class RunTest extends EnvCase {
    @ParameterizedTest
    @ValueSource(booleans = {false, true})
    void callbacksComeFromTheRunningThread(boolean async) {
        Set<Thread> callers = ConcurrentHashMap.newKeySet();
        AtomicReference<double[]> best = new AtomicReference<>();
        AtomicReference<KVXCallbackContext> kept = new AtomicReference<>();
        try (KVXModel model = Models.marketSplit(env, 20, 2, 1)) {
            model.setCallback(context -> {
                callers.add(Thread.currentThread());
                kept.set(context);
                if (context.where() != KVX.CB_MIPSOL)
                    return;
                double[] x = context.getVector(KVX.CB_MIPSOL_SOL);
                best.set(x);
                double off = x[20] + x[21] + x[22] + x[23];
                assertEquals(context.getDouble(KVX.CB_MIPSOL_OBJ), off, 1e-6);
                fails(KVX.ERROR_WRONG_INFO_TYPE, () -> context.getDouble(KVX.CB_MIPSOL_SOL));
                fails(KVX.ERROR_WRONG_INFO_TYPE, () -> context.getVector(KVX.CB_MIPSOL_OBJ));
                fails(KVX.ERROR_WRONG_INFO_TYPE, () -> context.getInt(KVX.CB_MIPSOL_OBJ));
                wrong(() -> context.propose(new double[x.length - 1]));
                wrong(() -> context.addCut(new int[1], new double[2], '<', 1));
                assertDoesNotThrow(() -> start(() -> refused(context::runtime)).join());
            });
            run(model, async);
            assertArrayEquals(best.get(), model.getDoubles("X", 0, 24), 1e-6);
            double objective = model.getDouble("ObjVal");
            model.reset(true);
            model.setCallback(null);
            run(model, !async);
            assertEquals(objective, model.getDouble("ObjVal"), 1e-6);
        }
        assertEquals(!async, callers.contains(Thread.currentThread()));
        assertEquals(1, callers.size());
        refused(kept.get()::runtime);
    }

    private static void wrong(Executable use) { assertThrows(IllegalArgumentException.class, use); }

    /** It ends the run and is thrown on, whether a callback or the log's consumer has thrown it. */
    @ParameterizedTest
    @ValueSource(booleans = {false, true})
    void theFirstThrowableWins(boolean async) {
        try (KVXModel model = endless()) {
            model.params().set("TimeLimit", 10); // if nothing else ends it
            Throwable first = async ? new StackOverflowError("first") : new Exception("first");
            AtomicInteger calls = new AtomicInteger();
            model.setCallback(context -> {
                calls.incrementAndGet();
                Models.<RuntimeException>escape(first);
            });
            env.setLog(line -> {
                if (calls.get() > 0)
                    throw new AssertionError("second");
            });
            assertSame(first, assertThrows(Throwable.class, () -> run(model, async)));
            assertEquals("second", first.getSuppressed()[0].getMessage());
            assertEquals(1, calls.get());
            assertEquals(KVX.STATUS_INTERRUPTED, model.getInt("Status"));
            model.setCallback(null);
            env.setLog(line -> { throw new LinkageError(line); });
            assertThrows(LinkageError.class, () -> run(model, async));
            assertEquals(KVX.STATUS_INTERRUPTED, model.getInt("Status"));
            // Without a run, the call that logged throws it on.
            Error thrown = assertThrows(LinkageError.class, () -> env.message("hello"));
            assertEquals("hello", thrown.getMessage());
            env.setLog(null);
            model.params().set("TimeLimit", 0.1);
            run(model, async);
            assertEquals(KVX.STATUS_TIME_LIMIT, model.getInt("Status"));
        }
    }

    /** Lazy constraints decide what a solution is, and this callback can't tell. */
    @ParameterizedTest
    @ValueSource(ints = {0, 1})
    void aCandidateThatWasNotCheckedIsNoSolution(int lazy) {
        try (KVXModel model = Models.marketSplit(env, 12, 1, 3)) {
            model.params().set("LazyConstraints", lazy);
            model.setCallback(context -> {
                if (context.where() == KVX.CB_MIPSOL)
                    throw new ArithmeticException();
            });
            for (boolean async : new boolean[] {false, true}) {
                model.reset(true);
                assertThrows(ArithmeticException.class, () -> run(model, async));
                assertEquals(lazy == 0, model.getInt("SolCount") > 0);
                assertEquals(KVX.STATUS_INTERRUPTED, model.getInt("Status"));
            }
        }
    }

    /** Where the first callback about a solution fills the heap, and fails for want of memory. */
    static final class FullHeap {
        private static Object hoard;

        public static void main(String[] args) {
            KVXModel model = Models.marketSplit(Models.quietEnv(), 12, 1, 3);
            model.params().set("LazyConstraints", 1);
            model.setCallback(context -> {
                for (int length = 1 << 20; context.where() == KVX.CB_MIPSOL; length /= 2) {
                    try {
                        while (true) // large blocks first, which are few to be collected
                            hoard = new Object[] {hoard, new byte[length]};
                    } catch (OutOfMemoryError e) {
                        if (length == 0)
                            throw e;
                    }
                }
            });
            try {
                run(model, Boolean.parseBoolean(args[0]));
            } catch (OutOfMemoryError e) {
                hoard = null;
                System.out.println(model.getInt("Status") + " " + model.getInt("SolCount"));
            }
        }
    }

    @ParameterizedTest
    @ValueSource(booleans = {false, true})
    void aFullHeapEndsTheRun(boolean async) throws Exception {
        Launch run = Launch.of(Path.of("."), List.of("-Xmx16m"), FullHeap.class, async);
        assertEquals(KVX.STATUS_INTERRUPTED + " 0", run.out());
    }

    /** Several wait for a run that fails: one of them is told. */
    @Test
    void oneWaiterIsTold() throws Exception {
        CountDownLatch fail = new CountDownLatch(1);
        AtomicInteger told = new AtomicInteger();
        try (KVXModel model = endless()) {
            model.setCallback(context -> {
                await(fail);
                throw new ArithmeticException();
            });
            model.optimizeAsync();
            for (int i = 0; i < 3; i++) {
                Thread waiter = start(() -> {
                    try {
                        model.sync();
                    } catch (ArithmeticException e) {
                        told.incrementAndGet();
                    }
                });
                awaitState(waiter, Thread.State.WAITING);
            }
            fail.countDown();
            join();
            assertEquals(1, told.get());
        }
    }

    @Test
    void aRunsModelIsItsCallbacksAlone() throws Exception {
        try (KVXModel model = endless(); KVXModel other = endless()) {
            CountDownLatch tried = new CountDownLatch(1);
            model.setCallback(context -> {
                assertEquals(60, model.getInt("NumVars"));
                fails(KVX.ERROR_IN_PROGRESS, () -> model.set("ObjCon", 1.0));
                refused(model::close, model::optimize, model::optimizeAsync);
                refused(other::sync, other::close);
                for (int i = 0; i < 1000; i++) // while the other thread's calls fail, too
                    fails(KVX.ERROR_IN_PROGRESS, model::sync);
                tried.countDown();
            });
            other.optimizeAsync();
            model.optimizeAsync();
            tried.await();
            for (int i = 0; i < 10_000; i++)
                refused(model::optimize, model::update, () -> model.set("ObjCon", 1.0));
            assertTrue(model.isRunning());
            model.terminate();
            model.sync();
            model.sync(); // nothing is left to wait for
            assertFalse(model.isRunning());
        }
    }

    @ParameterizedTest
    @ValueSource(booleans = {false, true})
    void closingEndsWhatRuns(boolean async) throws Exception {
        KVXModel model = endless();
        startRun(model, async); // frees the model when it returns
        model.close();
        model.close();
        model.terminate(); // harmless
        refused(model::optimize, model::handle, model::sync, model::update);
        refused(() -> model.params().getInt("Threads"));
        // What a callback threw isn't lost when nobody waited for the run.
        KVXModel failing = endless();
        failing.setCallback(context -> { throw new ArithmeticException(); });
        failing.optimizeAsync();
        while (failing.isRunning())
            Thread.sleep(1);
        refused(failing::optimize); // nobody has waited for the run before
        assertThrows(ArithmeticException.class, failing::close);
    }

    @Test
    void anEnvironmentOutlivesItsModels() {
        KVXModel model = Models.marketSplit(env, 10, 1, 1);
        env.setLog(line -> {});
        env.close();
        env.close();
        model.optimize();
        assertEquals(KVX.STATUS_OPTIMAL, model.getInt("Status"));
        refused(env::start, () -> new KVXModel(env, null));
        model.close();
        refused(() -> env.message("late"));
    }

    @Test
    void terminateRacesWithEverything() throws Exception {
        for (int round = 0; round < 60; round++) {
            KVXModel model = endless();
            CountDownLatch go = new CountDownLatch(1);
            for (int i = 0; i < 3; i++) {
                boolean closes = i == 0;
                start(() -> {
                    go.await();
                    for (int k = 0; k < 200; k++)
                        model.terminate();
                    if (closes)
                        model.close();
                });
            }
            go.countDown();
            try {
                run(model, round % 2 == 0);
            } catch (IllegalStateException e) {
                assertEquals("the model is closed", e.getMessage());
            }
            join();
        }
        // A request before the run ends it at once.
        try (KVXModel model = endless()) {
            model.terminate();
            model.optimize();
            assertEquals(KVX.STATUS_INTERRUPTED, model.getInt("Status"));
        }
    }

    private static double distance(double[] a, double[] b) {
        return Math.hypot(a[0] - b[0], a[1] - b[1]);
    }

    /** The shortest way from a city through all that aren't visited, and back to city 0. */
    private static double shortest(double[][] cities, int at, int visited) {
        if (visited == (1 << cities.length) - 1)
            return distance(cities[at], cities[0]);
        return IntStream.range(1, cities.length)
            .filter(next -> (visited & 1 << next) == 0)
            .mapToDouble(next
                         -> distance(cities[at], cities[next]) +
                                shortest(cities, next, visited | 1 << next))
            .min()
            .getAsDouble();
    }

    /** The tour program's lazy constraints against an exhaustive search. */
    @ParameterizedTest
    @ValueSource(longs = {1, 2, 3, 4, 5, 6, 7, 8})
    void smallToursAreShortest(long seed) throws Exception {
        Random random = new Random(seed);
        double[][] cities = new double[5 + (int)seed % 5][];
        Arrays.setAll(cities, i -> random.ints(2, 0, 50).asDoubleStream().toArray());
        Method tour = Class.forName("Tour").getMethod("shortest", KVXEnv.class, double[][].class);
        int[] order = (int[])tour.invoke(null, env, cities);
        assertEquals(cities.length, Arrays.stream(order).distinct().count());
        double length = 0;
        for (int i = 0; i < order.length; i++)
            length += distance(cities[order[i]], cities[order[(i + 1) % order.length]]);
        assertEquals(shortest(cities, 0, 1), length, 1e-6);
    }
}
