import com.korvex.Columns;
import com.korvex.KVXEnv;
import com.korvex.KVXModel;
import com.korvex.KorvexJni;
import com.korvex.SparseMatrix;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.function.IntSupplier;

/**
 * Times calls through the bridge against the floor, the limit and the peers named as arguments, all
 * on a solver that does nothing. Prints "workload items variant nanoseconds" lines: the least of
 * many rounds.
 */
public final class Bench {
    /** Another way from Java to native code: calls by name, none where it doesn't offer any. */
    interface Peer {
        Map<String, IntSupplier> addvars(Data data);
        Map<String, IntSupplier> attribute();
    }

    /** Variables with five nonzeros each; names may be null. */
    record Data(int vars, int nonzeros, int[] beg, int[] ind, double[] val, double[] obj,
                double[] lb, double[] ub, char[] types, String[] names) {
        static Data of(int nonzeros, boolean named) {
            int vars = nonzeros / 5;
            Data d = new Data(vars, nonzeros, new int[vars], new int[nonzeros],
                              new double[nonzeros], new double[vars], new double[vars],
                              new double[vars], new char[vars], named ? new String[vars] : null);
            Arrays.setAll(d.beg, k -> 5 * k);
            Arrays.fill(d.types, 'C');
            if (named)
                Arrays.setAll(d.names, k -> "x" + k);
            return d;
        }
    }

    private static final String NAME = "NumVars";
    // Nanoseconds: a round of a variant takes at least the first, all of its rounds the second; the
    // third makes the compiler finish before the first of them.
    private static final long ROUND = 1_000_000, VARIANT = 250_000_000, WARM_UP = 1_000_000_000;
    // What to measure, as patterns.
    private static final String WORKLOADS = System.getProperty("bench.workloads", ".*");
    private static final String VARIANTS = System.getProperty("bench.variants", ".*");

    private Bench() {}

    private static long time(IntSupplier call, int times) {
        int status = 0;
        long begin = System.nanoTime();
        for (int k = 0; k < times; k++)
            status |= call.getAsInt();
        long taken = System.nanoTime() - begin;
        if (status != 0)
            throw new IllegalStateException("status " + status);
        return taken;
    }

    private static int rounds(IntSupplier call, int items) {
        for (long end = System.nanoTime() + WARM_UP; items <= 10 && System.nanoTime() < end;)
            time(call, 100);
        int times = 1;
        while (times < 1 << 20 && time(call, times) < ROUND)
            times *= 2;
        return times;
    }

    static void measure(String workload, int items, Map<String, IntSupplier> calls) {
        calls.keySet().removeIf(name -> !name.matches(VARIANTS));
        if (!(workload + " " + items).matches(WORKLOADS))
            return;
        System.err.printf("\r%-20s %9d", workload, items);
        Map<String, Double> least = new LinkedHashMap<>();
        Map<String, Integer> times = new LinkedHashMap<>();
        calls.forEach((name, call) -> times.put(name, rounds(call, items)));
        // In changing order, since a call leaves the heap to the next as it was left by its frees.
        List<String> order = new ArrayList<>(calls.keySet());
        long end = System.nanoTime() + VARIANT * order.size();
        for (int round = 0; round < 5 || System.nanoTime() < end; round++) {
            Collections.shuffle(order);
            for (String name : order) {
                int count = times.get(name);
                least.merge(name, (double)time(calls.get(name), count) / count, Math::min);
            }
        }
        least.forEach(
            (name, ns) -> System.out.printf("%s %d %s %.1f%n", workload, items, name, ns));
    }

    private static Map<String, IntSupplier> calls(IntSupplier floor, IntSupplier bridge) {
        Map<String, IntSupplier> calls = new LinkedHashMap<>();
        calls.put("floor", floor);
        calls.put("control", floor);
        calls.put("bridge", bridge);
        return calls;
    }

    private static void smallCalls(KVXModel model, Peer[] peers) {
        int[] slot = new int[1];
        Map<String, IntSupplier> attribute =
            calls(()
                      -> Floor.getintattr(1, NAME, slot),
                  () -> KorvexJni.getintattrlist(1, NAME, 0, -1, null, slot));
        attribute.put("checked", () -> model.getInt(NAME));
        for (Peer peer : peers)
            attribute.putAll(peer.attribute());
        measure("attribute", 1, attribute);
        measure(
            "parameter", 1,
            calls(() -> Floor.setintparam(1, NAME, 1), () -> KorvexJni.setintparam(1, NAME, 1)));
        Floor object = new Floor();
        String[] error = new String[1];
        measure(
            "upcalls", 1000,
            calls(() -> object.optimize(1000), () -> object.optimizeThroughBridge(1000, error)));
    }

    private static void attributes(int count) {
        char[] chars = new char[count];
        String[] texts = new String[count];
        measure("getchars", count,
                calls(()
                          -> Floor.getchars(1, NAME, 0, count, chars),
                      () -> KorvexJni.getcharattrlist(1, NAME, 0, count, null, chars)));
        measure("setchars", count,
                calls(()
                          -> Floor.setchars(1, NAME, 0, count, chars),
                      () -> KorvexJni.setcharattrlist(1, NAME, 0, count, null, chars)));
        measure("getstrings", count,
                calls(()
                          -> Floor.getstrings(1, NAME, 0, count, texts),
                      () -> KorvexJni.getstrattrlist(1, NAME, 0, count, null, texts)));
    }

    private static void addvars(KVXModel model, Data d, Peer[] peers) {
        Map<String, IntSupplier> calls =
            calls(()
                      -> Floor.addvars(1, d.vars, d.nonzeros, d.beg, d.ind, d.val, d.obj, d.lb,
                                       d.ub, d.types, d.names),
                  ()
                      -> KorvexJni.addvars(1, d.vars, d.nonzeros, d.beg, d.ind, d.val, d.obj, d.lb,
                                           d.ub, d.types, d.names));
        if (d.names == null)
            calls.put("limit", () -> Floor.limit(d.vars, d.nonzeros));
        for (Peer peer : peers)
            calls.putAll(peer.addvars(d));
        calls.put(
            "checked",
            ()
                -> model.variables().add(new Columns(d.obj, new SparseMatrix(d.beg, d.ind, d.val),
                                                     d.lb, d.ub, d.types, d.names)));
        measure(d.names == null ? "addvars" : "addvars+names", d.nonzeros, calls);
    }

    private static void getvars(Data d) {
        int[] room = {d.nonzeros};
        measure("getvars", d.nonzeros,
                calls(()
                          -> Floor.getvars(d.nonzeros, room, d.beg, d.ind, d.val, 0, d.vars),
                      () -> KorvexJni.getvars(d.nonzeros, room, d.beg, d.ind, d.val, 0, d.vars)));
    }

    public static void main(String[] args) throws ReflectiveOperationException {
        System.loadLibrary("floor");
        Peer[] peers = new Peer[args.length];
        for (int k = 0; k < args.length; k++)
            peers[k] = (Peer)Class.forName(args[k]).getDeclaredConstructor().newInstance();
        try (KVXEnv env = new KVXEnv(); KVXModel model = KVXModel.adopt(env, 1)) {
            smallCalls(model, peers);
            for (int nonzeros = 10; nonzeros <= 10_000_000; nonzeros *= 10) {
                addvars(model, Data.of(nonzeros, false), peers);
                addvars(model, Data.of(nonzeros, true), peers);
                getvars(Data.of(nonzeros, false));
            }
            attributes(100);
            attributes(1_000_000);
        }
    }
}
