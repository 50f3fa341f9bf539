package com.korvex;

import static org.junit.jupiter.api.Assertions.*;
import static org.junit.jupiter.api.DynamicTest.dynamicTest;

import java.nio.file.*;
import java.util.*;
import java.util.concurrent.*;
import java.util.concurrent.atomic.*;
import java.util.stream.Stream;
import org.junit.jupiter.api.*;
import org.junit.jupiter.api.function.Executable;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.ValueSource;

/** Shared objects, the log's turns, threads of the solver's own, and ends of stack and heap. */
@Timeout(60)
class ThreadTest {
    private final KVXEnv env = Models.quietEnv();
    private final List<Thread> threads = new ArrayList<>();
    private final Queue<Throwable> failures = new ConcurrentLinkedQueue<>();

    @AfterEach
    void close() throws Exception {
        for (Thread thread : threads)
            thread.join();
        env.close();
        for (Throwable failure : failures)
            throw new AssertionError(failure);
    }

    private KVXModel endless() { return Models.marketSplit(env, 50, 5, 7); }

    private Thread start(Executable action) {
        Thread thread = new Thread(() -> {
            try {
                action.execute();
            } catch (Throwable t) {
                failures.add(t);
            }
        });
        threads.add(thread);
        thread.start();
        return thread;
    }

    private static void refused(Executable... uses) {
        for (Executable use : uses)
            assertThrows(IllegalStateException.class, use);
    }

    private static void awaitState(Thread thread, Thread.State state) throws Exception {
        while (thread.getState() != state)
            Thread.sleep(1);
    }

    private static void awaitQuietly(CountDownLatch latch) {
        assertDoesNotThrow(() -> assertTrue(latch.await(30, TimeUnit.SECONDS)));
    }

    /** The watch tells if two are in at once. */
    @Test
    void sharedObjectsAreUsedInTurns() throws Exception {
        try (KVXEnv other = Models.quietEnv(); KVXModel model = Models.marketSplit(env, 5, 1, 1)) {
            String id = model.optimizeBatch();
            try (KVXBatch batch = new KVXBatch(env, id)) {
                Executable[] uses = {
                    ()
                        -> model.set("ObjCon", 1),
                    ()
                        -> model.params().set("TimeLimit", 60),
                    ()
                        -> env.params().set("MIPGap", 0),
                    ()
                        -> model.copy(other).close(),
                    ()
                        -> model.copy(env).close(),
                    ()
                        -> Models.fails(KVX.ERROR_UNKNOWN_ATTRIBUTE, () -> model.getInt("None")),
                    ()
                        -> Models.fails(KVX.ERROR_UNKNOWN_ATTRIBUTE, () -> batch.getInt("None")),
                    batch::update,
                    model::terminate,
                    () -> env.message("line"),
                };
                for (int seed = 0; seed < 4; seed++) {
                    Random random = new Random(seed);
                    start(() -> {
                        for (int i = 0; i < 400; i++)
                            uses[random.nextInt(uses.length)].execute();
                    });
                }
                for (Thread thread : threads)
                    thread.join();
                while (batch.getInt("BatchStatus") < KVX.BATCH_COMPLETED)
                    batch.update();
                batch.discard();
            }
        }
    }

    @Test
    void whoWaitsGetsTheObjectOrSeesItClosed() throws Exception {
        CountDownLatch inside = new CountDownLatch(1), leave = new CountDownLatch(1);
        KVXEnv used = Models.quietEnv();
        used.setLog(line -> {
            inside.countDown();
            awaitQuietly(leave);
        });
        Thread user = start(() -> used.message("the environment is in use meanwhile"));
        inside.await();
        Thread patient = start(() -> {
            refused(() -> used.params().getInt("Presolve")); // it is closed when its turn comes
            assertTrue(Thread.interrupted(), "the interruption is lost");
        });
        awaitState(patient, Thread.State.WAITING);
        patient.interrupt();
        env.setLog(line
                   -> refused(()
                                  -> used.params().getInt("Presolve"),
                              () -> env.message("more"), () -> new KVXModel(env, null)));
        env.message("nobody waits in here");
        used.close();
        leave.countDown();
        user.join();
        patient.join();
    }

    /** Each of two endless runs goes on while the other one does, and so does all else. */
    @Test
    @SuppressWarnings("try") // closes a model while its run goes on
    void theLogsTurnGoesRound() throws Exception {
        Set<Thread> loggers = ConcurrentHashMap.newKeySet();
        AtomicReference<String> last = new AtomicReference<>();
        Map<String, Integer> lines = new ConcurrentHashMap<>();
        env.setLog(line -> {
            loggers.add(Thread.currentThread());
            lines.merge(line.replaceAll("[ :].*", ""), 1, Integer::sum);
            last.set(line);
        });
        try (KVXModel first = endless(); KVXModel second = endless(); KVXModel third = endless()) {
            for (KVXModel model : List.of(first, second)) {
                model.params().set("LogInterval", 0.1);
                model.optimizeAsync();
            }
            CountDownLatch blocked = new CountDownLatch(1), called = new CountDownLatch(1);
            third.setCallback(context -> {
                called.countDown();
                awaitQuietly(blocked);
            });
            Thread synchronous = start(third::optimize);
            called.await(); // A callback that takes long holds nobody up.
            while (loggers.size() < 3) {
                env.message("between");
                assertEquals("between", last.get());
            }
            first.close();
            second.terminate();
            blocked.countDown();
            second.sync();
            third.terminate();
            synchronous.join();
        }
        assertEquals(3, lines.get("Optimizing")); // every line of every run
        assertEquals(3, lines.get("Interrupted"));
    }

    /** Off and on again while threads come, log and go. */
    @ParameterizedTest
    @ValueSource(booleans = {false, true})
    void theLogIsBoundAnew(boolean async) throws Exception {
        AtomicInteger lines = new AtomicInteger();
        KVXModel model = endless();
        for (int round = 0; round < 20; round++) {
            CountDownLatch called = new CountDownLatch(1);
            model.setCallback(context -> called.countDown());
            if (round % 3 != 0)
                env.setLog(line -> lines.incrementAndGet());
            Thread runner = start(() -> RunTest.run(model, async));
            called.await();
            env.setLog(round % 2 == 0 ? null : line -> lines.addAndGet(1000));
            int before = lines.get();
            model.terminate();
            runner.join();
            if (round % 2 == 0)
                assertEquals(before, lines.get());
            else if (round % 3 != 0) // else the run may have had no callback since
                assertTrue(lines.get() >= before + 1000);
            env.setLog(line -> lines.incrementAndGet());
            before = lines.get();
            KorvexJni.message(env.handle(), "on the thread that it is bound to\n");
            env.message("and once more");
            start(() -> env.message("elsewhere")).join();
            assertEquals(before + 3, lines.get());
            env.setLog(null);
        }
        model.close();
    }

    @Test
    void nobodyIsAtWorkOnceTheConsumerIsReplaced() throws Exception {
        AtomicBoolean atWork = new AtomicBoolean();
        for (int round = 0; round < 10; round++) {
            CountDownLatch inside = new CountDownLatch(1);
            env.setLog(line -> {
                assertFalse(atWork.getAndSet(true), "two lines at once");
                inside.countDown();
                assertDoesNotThrow(() -> Thread.sleep(20));
                atWork.set(false);
            });
            Thread talker = start(() -> env.message("one\ntwo"));
            inside.await();
            env.setLog(null);
            assertFalse(atWork.get());
            talker.join();
        }
    }

    /** The native start in the background, whose callbacks come on attached threads. */
    @Test
    void threadsOfTheSolversOwn() throws Exception {
        AtomicInteger lines = new AtomicInteger();
        env.setLog(line -> lines.incrementAndGet());
        try (KVXEnv other = Models.quietEnv(); KVXModel model = endless()) {
            CountDownLatch called = new CountDownLatch(1);
            Thread test = Thread.currentThread();
            model.setCallback(context -> {
                assertNotSame(test, Thread.currentThread());
                assertEquals(60, model.getInt("NumVars"));
                assertTrue(context.runtime() >= 0);
                assertNotEquals(0, context.handle());
                refused(
                    ()
                        -> other.setLog(line -> {}),
                    () -> env.setLog(null), () -> env.message(""), model::optimize, model::close);
                other.message("nobody listens");
                called.countDown();
                throw new ArithmeticException();
            });
            long[] record = {0};
            String[] error = {"untouched"};
            Run run = model.begin(new Thread());
            assertEquals(0, model.jnioptimize(model.handle(), 1, 1, record, error, 0));
            called.await();
            assertEquals(0, KorvexJni.sync(model.handle(), record[0], error));
            assertEquals("untouched", error[0]);
            model.end(run);
            assertThrows(ArithmeticException.class, model::sync);
            assertEquals(KVX.STATUS_INTERRUPTED, model.getInt("Status"));
            assertTrue(lines.get() > 1);
        }
    }

    @ParameterizedTest
    @ValueSource(booleans = {false, true})
    void theFirstThrowableWins(boolean async) {
        KVXModel model = endless();
        AtomicReference<Error> first = new AtomicReference<>();
        env.setLog(line -> {
            if (first.get() != null)
                throw new AssertionError("second");
        });
        model.setCallback(context -> {
            first.set(new LinkageError("first"));
            throw first.get();
        });
        Error thrown = assertThrows(Error.class, () -> RunTest.run(model, async));
        assertSame(first.get(), thrown);
        assertEquals("second", thrown.getSuppressed()[0].getMessage());
        first.set(null);
        model.setCallback(null);
        model.params().set("TimeLimit", 0);
        RunTest.run(model, async);
        model.close();
    }

    /** Several wait for a run that fails: one of them is told. */
    @Test
    void oneWaiterIsTold() throws Exception {
        CountDownLatch fail = new CountDownLatch(1);
        AtomicInteger told = new AtomicInteger();
        try (KVXModel model = endless()) {
            model.setCallback(context -> {
                awaitQuietly(fail);
                throw new ArithmeticException();
            });
            model.optimizeAsync();
            for (int i = 0; i < 3; i++)
                awaitState(start(() -> {
                               try {
                                   model.sync();
                               } catch (ArithmeticException e) {
                                   told.incrementAndGet();
                               }
                           }),
                           Thread.State.WAITING);
            fail.countDown();
            for (Thread thread : threads)
                thread.join();
            assertEquals(1, told.get());
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
                assertThrows(ArithmeticException.class, () -> RunTest.run(model, async));
                assertEquals(lazy == 0, model.getInt("SolCount") > 0);
                assertEquals(KVX.STATUS_INTERRUPTED, model.getInt("Status"));
            }
        }
    }

    @Test
    void whatIsRefusedDoesNotRun() {
        try (KVXModel model = Models.marketSplit(env, 5, 1, 1)) {
            Models.fails(KVX.ERROR_INVALID_ARGUMENT, model::computeIIS);
            assertThrows(IllegalArgumentException.class,
                         () -> model.relaxFeasibility(0, true, new double[1], null, null));
            assertFalse(model.isRunning());
            model.optimize();
            Models.fails(KVX.ERROR_INVALID_ARGUMENT, () -> KVXModel.adopt(env, 0));
        }
    }

    private static int depth;

    private static void measure() {
        depth++;
        measure();
    }

    private static void dive(int frames, Runnable action) {
        if (frames > 0)
            dive(frames - 1, action);
        else
            action.run();
    }

    /** Near the end of the stack a run ends soon, or doesn't begin; afterwards all is as before. */
    @Test
    void atTheEndOfTheStack() throws Exception {
        KVXModel model = endless();
        model.params().set("TimeLimit", 20);
        model.setCallback(context -> { throw new ArithmeticException(); });
        Thread diver = new Thread(null, () -> {
            assertThrows(StackOverflowError.class, ThreadTest::measure);
            Set<Class<?>> seen = new HashSet<>();
            for (int offset = 0; offset < depth; offset += 1 + offset / 20) {
                int frames = depth - offset;
                seen.add(
                    assertThrows(Throwable.class, () -> dive(frames, model::optimize)).getClass());
                assertFalse(model.isRunning());
            }
            if (!seen.equals(Set.of(StackOverflowError.class, ArithmeticException.class)))
                failures.add(new AssertionError(seen));
        }, "diver", 512 * 1024);
        diver.setUncaughtExceptionHandler((thread, t) -> failures.add(t));
        diver.start();
        diver.join();
        start(() -> assertThrows(ArithmeticException.class, model::optimize)).join();
        model.close();
    }

    /** A program that leaves a run behind. */
    static final class Unfinished {
        public static void main(String[] args) throws Exception {
            KVXModel model = Models.marketSplit(Models.quietEnv(), 50, 5, 7);
            CountDownLatch called = new CountDownLatch(1);
            model.setCallback(context -> called.countDown());
            model.optimizeAsync();
            called.await();
            if (args.length > 0)
                System.exit(Integer.parseInt(args[0]));
        }
    }

    @TestFactory
    Stream<DynamicTest> anUnfinishedRunKeepsNothingAlive() throws Exception {
        Path tests =
            Path.of(ThreadTest.class.getProtectionDomain().getCodeSource().getLocation().toURI());
        return Stream.of("", "3").map(
            exit -> dynamicTest("exit " + exit, () -> {
                List<String> command = Launch.javaCommand(Launch.LIB, Unfinished.class.getName());
                int classPath = command.indexOf("-cp") + 1;
                command.set(classPath, command.get(classPath) + ":" + tests);
                if (!exit.isEmpty())
                    command.add(exit);
                Launch run = Launch.of(command, (process, out) -> {});
                assertEquals(exit.isEmpty() ? 0 : 3, run.status(), run.err());
            }));
    }
}
