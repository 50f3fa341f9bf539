package com.korvex;

import static org.junit.jupiter.api.Assertions.*;

import java.nio.file.Path;
import java.util.*;
import java.util.concurrent.*;
import java.util.concurrent.atomic.*;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.function.Executable;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.ValueSource;

/** Shared objects, the log's turns, threads of the solver's own, and ends of stack and heap. */
class ThreadTest extends EnvCase {
    /** The watch tells if two are in at once. */
    @Test
    void sharedObjectsAreUsedInTurns() throws Exception {
        try (KVXEnv other = Models.quietEnv(); KVXModel model = Models.marketSplit(env, 5, 1, 1);
             KVXBatch batch = new KVXBatch(env, model.optimizeBatch())) {
            int none = KVX.ERROR_UNKNOWN_ATTRIBUTE;
            List<Executable> uses = new ArrayList<>(List.of(batch::update, model::terminate));
            uses.add(() -> model.set("ObjCon", 1));
            uses.add(() -> model.params().set("TimeLimit", 60));
            uses.add(() -> env.params().set("MIPGap", 0));
            uses.add(() -> model.copy(other).close());
            uses.add(() -> model.copy(env).close());
            uses.add(() -> fails(none, () -> model.getInt("None")));
            uses.add(() -> fails(none, () -> batch.getInt("None")));
            uses.add(() -> env.message("line"));
            for (int seed = 0; seed < 4; seed++) {
                Random random = new Random(seed);
                start(() -> {
                    for (int i = 0; i < 400; i++)
                        uses.get(random.nextInt(uses.size())).execute();
                });
            }
            join();
            while (batch.getInt("BatchStatus") < KVX.BATCH_COMPLETED)
                batch.update();
            batch.discard();
        }
    }

    @Test
    void whoWaitsGetsTheObjectOrSeesItClosed() throws Exception {
        CountDownLatch inside = new CountDownLatch(1), leave = new CountDownLatch(1);
        KVXEnv used = Models.quietEnv();
        used.setLog(line -> {
            inside.countDown();
            await(leave);
        });
        Thread user = start(() -> used.message("the environment is in use meanwhile"));
        inside.await();
        Thread patient = start(() -> {
            refused(() -> used.params().getInt("Presolve")); // it is closed when its turn comes
            assertTrue(Thread.interrupted(), "the interruption is lost");
        });
        awaitState(patient, Thread.State.WAITING);
        patient.interrupt();
        KVXModel model = Models.marketSplit(env, 10, 1, 1);
        AtomicInteger lines = new AtomicInteger();
        env.setLog(line -> {
            assertFalse(line.contains("\n"));
            refused(() -> used.params().getInt("Presolve"));
            refused(() -> env.setLog(null), () -> env.message(""), () -> new KVXModel(env, null));
            refused(model::sync, model::close, model::optimizeAsync);
            lines.incrementAndGet();
        });
        env.message("nobody waits in here");
        run(model, true);
        assertTrue(lines.get() > 1);
        model.close();
        used.close();
        leave.countDown();
        join();
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
                await(blocked);
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
            if (round % 3 != 0)
                env.setLog(line -> lines.incrementAndGet());
            startRun(model, async);
            env.setLog(round % 2 == 0 ? null : line -> lines.addAndGet(1000));
            int before = lines.get();
            model.terminate();
            join();
            model.sync();
            if (round % 2 == 0)
                assertEquals(before, lines.get());
            else if (round % 3 != 0) // else the run may have had no callback since
                assertTrue(lines.get() >= before + 1000);
            env.setLog(line -> lines.incrementAndGet());
            before = lines.get();
            KorvexJni.message(env.handle(), "on the thread that it is bound to\n");
            env.message("and once more");
            start(() -> KorvexJni.message(env.handle(), "astray: the binding's last\n")).join();
            env.message("by the next binding");
            start(() -> env.message("elsewhere")).join();
            assertEquals(before + 5, lines.get());
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
                refused(model::optimize, model::close, () -> other.setLog(null));
                refused(() -> env.setLog(null), () -> env.message(""));
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

    private static int attempts;

    /**
     * Tries an action at the stack's end and, for as long as that ends the stack, a frame higher.
     */
    private static void climb(Runnable action) {
        try {
            climb(action);
            return;
        } catch (StackOverflowError e) {
            attempts++;
        }
        action.run();
    }

    /** Near the end of the stack a run ends soon, or doesn't begin; afterwards all is as before. */
    @Test
    void atTheEndOfTheStack() throws Exception {
        KVXModel model = endless();
        model.params().set("TimeLimit", 20);
        model.setCallback(context -> { throw new ArithmeticException(); });
        start(512 * 1024, () -> {
            assertThrows(ArithmeticException.class, () -> climb(model::optimize));
            assertTrue(attempts > 1, "a run never met the stack's end");
            assertFalse(model.isRunning());
        }).join();
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
            if (!args[0].equals("0"))
                System.exit(Integer.parseInt(args[0]));
        }
    }

    @ParameterizedTest
    @ValueSource(ints = {0, 3})
    void anUnfinishedRunKeepsNothingAlive(int exit) throws Exception {
        Launch run = Launch.of(Path.of("."), List.of(), Unfinished.class, exit);
        assertEquals(exit, run.status(), run.out());
    }
}
