package com.korvex;

import java.lang.management.ManagementFactory;
import java.nio.file.*;
import java.util.*;
import java.util.concurrent.CountDownLatch;
import javax.management.ObjectName;

/**
 * Does the same thing many times and tells what that leaves behind: resident memory, handles,
 * global references. {@code ./run soak} gives it a heap of fixed size, so that what grows is native
 * memory. Fails when memory has grown by 1 % after the warm-up, or anything else at all.
 */
final class Soak {
    private static boolean failed;

    private Soak() {}

    private interface Work {
        void round(int number) throws Exception;
    }

    private static long find(String text, String pattern) {
        return Long.parseLong(text.replaceFirst("(?s).*" + pattern + ".*", "$1"));
    }

    private static long residentKilobytes() throws Exception {
        System.gc();
        return find(Files.readString(Path.of("/proc/self/status")), "VmRSS:\\s+(\\d+) kB");
    }

    private static long globalReferences() throws Exception {
        System.gc();
        Object threads = ManagementFactory.getPlatformMBeanServer().invoke(
            new ObjectName("com.sun.management:type=DiagnosticCommand"), "threadPrint",
            new Object[] {new String[0]}, new String[] {String[].class.getName()});
        return find(threads.toString(), "JNI global refs: (\\d+)");
    }

    private static void repeat(String what, int warmUp, int rounds, Work work) throws Exception {
        globalReferences(); // Asking for them takes memory itself, at first.
        for (int i = 0; i < warmUp; i++)
            work.round(i);
        long references = globalReferences(), handles = Handle.alive(),
             memory = residentKilobytes();
        long begun = System.nanoTime();
        for (int i = 0; i < rounds; i++) {
            work.round(warmUp + i);
            if (i % (rounds / 10) == rounds / 10 - 1)
                System.err.print(".");
        }
        double seconds = (System.nanoTime() - begun) / 1e9;
        long after = residentKilobytes();
        double growth = 100.0 * (after - memory) / memory;
        long leftReferences = globalReferences() - references;
        long leftHandles = Handle.alive() - handles;
        boolean good = growth < 1 && leftReferences <= 0 && leftHandles == 0;
        failed |= !good;
        System.err.println();
        System.out.printf(Locale.ROOT,
                          "%-45s %7d rounds %7.1f s  %d -> %d kB (%+.2f %%), handles %+d, "
                              + "global references %+d%s%n",
                          what, rounds, seconds, memory, after, growth, leftHandles, leftReferences,
                          good ? "" : "  FAILED");
    }

    private static Thread start(Work task) {
        Thread thread = new Thread(() -> {
            try {
                task.round(0);
            } catch (Exception e) {
                throw new AssertionError(e);
            }
        });
        thread.start();
        return thread;
    }

    private static void equal(double expected, double value) {
        if (value != expected)
            throw new AssertionError(value + " instead of " + expected);
    }

    /** Argument: a divisor of the numbers of rounds. */
    public static void main(String[] args) throws Exception {
        int part = args.length > 0 ? Integer.parseInt(args[0]) : 1;
        Random random = new Random(1);
        try (KVXEnv env = Models.quietEnv()) {
            Columns columns = Columns.of(-1, -2, -3).upper(4, 5, 6).types('C', 'I', 'B');
            SparseVector all = SparseVector.ones(0, 1, 2);
            repeat("models built, solved, freed", 20_000 / part, 100_000 / part, i -> {
                try (KVXModel model = new KVXModel(env, "small", columns)) {
                    model.constraints().add(all, KVX.LESS_EQUAL, 7, "row" + i);
                    model.setCallback(context -> {});
                    model.optimize();
                    equal(-14, model.getDouble("ObjVal"));
                    model.getStrings("VarName");
                }
            });
            repeat("asynchronous runs terminated", 1000 / part, 300 / part, i -> {
                try (KVXModel model = Models.marketSplit(env, 50, 5, i)) {
                    model.setCallback(context -> {});
                    int moment = random.nextInt(30);
                    model.optimizeAsync();
                    List<Thread> waiters =
                        List.of(start(n -> model.sync()), start(n -> model.sync()));
                    Thread.sleep(moment);
                    model.terminate();
                    for (Thread waiter : waiters)
                        waiter.join();
                    equal(KVX.STATUS_INTERRUPTED, model.getInt("Status"));
                }
            });
            repeat("changes of the log's consumer", 2000 / part, 10_000 / part, i -> {
                CountDownLatch logged = new CountDownLatch(1);
                Thread logger = start(n -> {
                    env.message("before");
                    logged.countDown();
                    env.message("after");
                });
                if (i % 2 == 0)
                    logged.await();
                env.setLog(i % 3 == 0 ? null : line -> random.nextInt());
                logger.join();
            });
            env.setLog(null);
        }
        System.exit(failed ? 1 : 0);
    }
}
