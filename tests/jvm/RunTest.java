package com.korvex;

import static org.junit.jupiter.api.Assertions.*;

import java.nio.file.*;
import java.util.Set;
import java.util.concurrent.*;
import java.util.concurrent.atomic.*;
import java.util.function.Consumer;
import org.junit.jupiter.api.*;
import org.junit.jupiter.api.function.Executable;
import org.junit.jupiter.api.io.TempDir;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.ValueSource;

/** Runs, their callbacks and their log, and what threads and exceptions do to them. */
@Timeout(60)
class RunTest {
    private KVXEnv env;

    @BeforeEach
    void open() {
        env = Models.quietEnv();
    }

    @AfterEach
    void close() {
        env.close();
    }

    static void run(KVXModel model, boolean async) {
        if (async) {
            model.optimizeAsync();
            model.sync();
        } else {
            model.optimize();
        }
    }

    private KVXModel endless() { return Models.marketSplit(env, 50, 5, 7); }

    /** Starts a run of the model and returns once a callback has been seen. */
    private static void startAndWait(KVXModel model) throws Exception {
        CountDownLatch called = new CountDownLatch(1);
        model.setCallback(context -> called.countDown());
        model.optimizeAsync();
        called.await();
    }

    @ParameterizedTest
    @ValueSource(booleans = {false, true})
    void callbacksComeFromTheRunningThread(boolean async) {
        Set<Thread> threads = ConcurrentHashMap.newKeySet();
        AtomicReference<double[]> best = new AtomicReference<>();
        AtomicReference<KVXCallbackContext> kept = new AtomicReference<>();
        try (KVXModel model = Models.marketSplit(env, 20, 2, 1)) {
            model.setCallback(context -> {
                threads.add(Thread.currentThread());
                kept.set(context);
                if (context.where() != KVX.CB_MIPSOL)
                    return;
                double[] x = context.getVector(KVX.CB_MIPSOL_SOL);
                double off = x[20] + x[21] + x[22] + x[23];
                assertEquals(context.getDouble(KVX.CB_MIPSOL_OBJ), off, 1e-6);
                Models.fails(KVX.ERROR_WRONG_INFO_TYPE, () -> context.getInt(KVX.CB_MIPSOL_OBJ));
                best.set(x);
            });
            run(model, async);
            assertEquals(KVX.STATUS_OPTIMAL, model.getInt("Status"));
            double[] x = model.getDoubles("X", 0, 24);
            assertArrayEquals(best.get(), x, 1e-6);
            double objective = model.getDouble("ObjVal");
            KorvexJni.reset(model.handle(), 1);
            model.setCallback(null);
            run(model, !async);
            assertEquals(objective, model.getDouble("ObjVal"), 1e-6);
        }
        assertEquals(!async, threads.equals(Set.of(Thread.currentThread())));
        assertEquals(async, !threads.contains(Thread.currentThread()));
        refused(kept.get()::runtime);
    }

    @ParameterizedTest
    @ValueSource(booleans = {false, true})
    void whatACallbackThrowsEndsTheRunAndIsThrownOn(boolean async) {
        try (KVXModel model = endless()) {
            Throwable thrown = async ? new StackOverflowError("mine") : new Exception("mine");
            AtomicInteger calls = new AtomicInteger();
            model.setCallback(context -> {
                calls.incrementAndGet();
                Thrown checked = new Thrown();
                checked.add(thrown);
                checked.rethrow();
            });
            assertSame(thrown, assertThrows(Throwable.class, () -> run(model, async)));
            assertEquals(1, calls.get());
            assertEquals(KVX.STATUS_INTERRUPTED, model.getInt("Status"));
            model.setCallback(null);
            model.params().set("TimeLimit", 0.1);
            run(model, async);
            assertEquals(KVX.STATUS_TIME_LIMIT, model.getInt("Status"));
        }
    }

    @Test
    void throwersMeetInOneRun() throws Exception {
        try (KVXModel model = endless()) {
            CountDownLatch logged = new CountDownLatch(1);
            model.setCallback(context -> {
                if (logged.getCount() == 0)
                    throw new IllegalArgumentException("callback");
            });
            env.setLog(line -> {
                logged.countDown();
                throw new IllegalArgumentException("log");
            });
            model.optimizeAsync();
            logged.await();
            Throwable t = assertThrows(IllegalArgumentException.class, model::sync);
            assertEquals("log", t.getMessage());
            assertTrue(t.getSuppressed().length <= 1);
            // Without a run, the call that logged throws it on.
            env.setLog(line -> { throw new IllegalArgumentException(line); });
            assertEquals("hello",
                         assertThrows(IllegalArgumentException.class, () -> env.message("hello"))
                             .getMessage());
        }
    }

    private static void refused(Executable... uses) {
        for (Executable use : uses)
            assertThrows(IllegalStateException.class, use);
    }

    @Test
    void aRunsModelIsItsCallbacksAlone() throws Exception {
        try (KVXModel model = endless(); KVXModel other = endless()) {
            CountDownLatch tried = new CountDownLatch(1);
            model.setCallback(context -> {
                assertEquals(60, model.getInt("NumVars"));
                Models.fails(KVX.ERROR_IN_PROGRESS, () -> model.set("ObjCon", 1.0));
                refused(model::close, model::optimize, model::optimizeAsync, other::sync,
                        other::close);
                for (int i = 0; i < 1000; i++) // while the other thread's calls fail, too
                    Models.fails(KVX.ERROR_IN_PROGRESS, model::sync);
                tried.countDown();
            });
            other.optimizeAsync();
            model.optimizeAsync();
            tried.await();
            for (int i = 0; i < 10_000; i++)
                refused(
                    () -> model.set("ObjCon", 1.0), model::optimize, () -> model.getInt("Status"));
            assertTrue(model.isRunning());
            model.terminate();
            model.sync();
            model.sync(); // nothing is left to wait for
            assertFalse(model.isRunning());
            assertEquals(KVX.STATUS_INTERRUPTED, model.getInt("Status"));
        }
    }

    @Test
    void closingEndsWhatRuns() throws Exception {
        KVXModel background = endless();
        startAndWait(background);
        background.close();
        background.terminate(); // harmless
        // A run in another thread frees the model when it returns.
        KVXModel model = endless();
        CountDownLatch called = new CountDownLatch(1);
        model.setCallback(context -> called.countDown());
        Thread runner = new Thread(model::optimize);
        runner.start();
        called.await();
        model.close();
        model.close();
        runner.join();
        refused(model::optimize, model::handle, model::sync,
                () -> model.getInt("Status"), () -> model.params().getInt("Threads"));
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
        refused(() -> new KVXModel(env, null), () -> env.message("late"));
        model.close();
        refused(() -> env.message("later"), env::start);
    }

    @Test
    void terminateRacesWithEverything() throws Exception {
        for (int round = 0; round < 60; round++) {
            KVXModel model = endless();
            CountDownLatch go = new CountDownLatch(1);
            Thread[] racers = new Thread[3];
            for (int i = 0; i < racers.length; i++) {
                boolean closes = i == 0;
                racers[i] = new Thread(() -> {
                    assertDoesNotThrow(() -> go.await());
                    for (int k = 0; k < 200; k++)
                        model.terminate();
                    if (closes)
                        model.close();
                });
                racers[i].start();
            }
            go.countDown();
            try {
                run(model, round % 2 == 0);
            } catch (IllegalStateException e) {
                assertEquals("the model is closed", e.getMessage());
            }
            for (Thread racer : racers)
                racer.join();
        }
        // A request before the run ends it at once.
        try (KVXModel model = endless()) {
            model.terminate();
            model.optimize();
            assertEquals(KVX.STATUS_INTERRUPTED, model.getInt("Status"));
        }
    }

    @Test
    void theLogFollowsTheRunFromThreadToThread() throws Exception {
        AtomicInteger lines = new AtomicInteger();
        env.setLog(line -> {
            assertFalse(line.contains("\n"));
            lines.incrementAndGet();
        });
        try (KVXModel model = Models.marketSplit(env, 20, 2, 1)) {
            int before = 0;
            for (boolean async : new boolean[] {false, true, false}) {
                AtomicReference<Throwable> failure = new AtomicReference<>();
                Thread runner = new Thread(() -> {
                    env.message("from " + Thread.currentThread());
                    run(model, async);
                });
                runner.setUncaughtExceptionHandler((thread, t) -> failure.set(t));
                runner.start();
                runner.join();
                assertSame(null, failure.get());
                assertTrue(lines.get() >= before + 3, lines + " after " + before);
                before = lines.get();
            }
        }
    }

    @Test
    void theLogIsReplacedWhileAnotherThreadLogs() throws Exception {
        try (KVXModel model = endless()) {
            model.params().set("LogInterval", 0.1);
            CountDownLatch started = new CountDownLatch(1);
            model.setCallback(context -> started.countDown());
            AtomicReference<Integer> current = new AtomicReference<>(-1);
            AtomicInteger strays = new AtomicInteger(), lines = new AtomicInteger();
            env.setLog(line -> {});
            model.optimizeAsync();
            started.await();
            for (int i = 0; i < 2000 || (lines.get() < 3 && i < 5_000_000); i++) {
                int number = i;
                Consumer<String> consumer = line -> {
                    if (current.get() < number - 1 || current.get() > number)
                        strays.incrementAndGet();
                    lines.incrementAndGet();
                };
                env.setLog(i % 3 == 2 ? null : consumer);
                current.set(number);
            }
            assertEquals(0, strays.get());
            model.terminate();
            model.sync();
        }
    }

    @Test
    void theLogsConsumerCannotWaitForItself() throws Exception {
        AtomicInteger lines = new AtomicInteger();
        try (KVXModel model = Models.marketSplit(env, 10, 1, 1)) {
            env.setLog(line -> {
                refused(()
                            -> env.setLog(null),
                        () -> env.message(""), model::sync, model::close, model::optimizeAsync);
                lines.incrementAndGet();
            });
            env.message("line");
            run(model, true);
            assertTrue(lines.get() > 1);
        }
    }

    @Test
    void anotherVersionIsWarnedOfOrRefused(@TempDir Path directory) throws Exception {
        for (int technical : new int[] {2, 3}) {
            Path log = directory.resolve("log" + technical);
            long[] slot = {-1};
            assertEquals(0, KorvexJni.loadenv(slot, log.toString(), 13, 0, technical, 1));
            KorvexJni.freeenv(slot[0]);
            String text = Files.exists(log) ? Files.readString(log) : "";
            assertEquals(technical != 3,
                         text.contains("Warning: Korvex version mismatch between "
                                       + "Java 13.0.2 and Jni 13.0.3\n"),
                         text);
        }
        long[] slot = {-1};
        assertEquals(KVX.ERROR_VERSION, KorvexJni.loadenv(slot, null, 12, 5, 0, 1));
        assertFalse(KorvexJni.geterrormsg(slot[0]).isEmpty());
        KorvexJni.freeenv(slot[0]);
        int[] version = new int[3];
        KorvexJni.version(version);
        assertArrayEquals(new int[] {13, 0, 3}, version);
    }

    @Test
    void failuresLeaveTheSlotsAlone() {
        long e = env.handle();
        int[] ints = {5, 6, 7, 8};
        double[] doubles = {1.5};
        String[] texts = {"kept", "too"};
        assertEquals(KVX.ERROR_NULL_ARGUMENT, KorvexJni.getintparam(e, null, ints));
        assertEquals(KVX.ERROR_NULL_ARGUMENT, KorvexJni.setstrparam(e, "LogFile", null));
        assertEquals(KVX.ERROR_NULL_ARGUMENT, KorvexJni.ismodelfile(null));
        assertEquals(KVX.ERROR_UNKNOWN_PARAMETER, KorvexJni.getintparaminfo(e, "Nonsense", ints));
        assertEquals(KVX.ERROR_UNKNOWN_PARAMETER, KorvexJni.getdblparam(e, "Threads", doubles));
        assertEquals(KVX.ERROR_UNKNOWN_PARAMETER, KorvexJni.getstrparaminfo(e, "Threads", texts));
        try (KVXModel model = new KVXModel(env, null)) {
            long m = model.handle();
            assertEquals(KVX.ERROR_NULL_ARGUMENT,
                         KorvexJni.getintattrlist(m, null, 0, -1, null, ints));
            assertEquals(KVX.ERROR_INDEX_OUT_OF_RANGE,
                         KorvexJni.getstrattrlist(m, "VarName", 0, 2, null, texts));
            assertEquals(KVX.ERROR_DATA_NOT_AVAILABLE,
                         KorvexJni.getdblattrlist(m, "ObjVal", 0, -1, null, doubles));
            long[] handle = {99};
            assertTrue(KorvexJni.fixedmodel(m, handle) != 0);
            assertEquals(0, handle[0]); // a handle slot is written whatever the status
        }
        assertArrayEquals(new int[] {5, 6, 7, 8}, ints);
        assertEquals("1.5 kept too", doubles[0] + " " + String.join(" ", texts));
        assertEquals(0, KorvexJni.message(e, null));
    }
}
