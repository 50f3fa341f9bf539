import com.korvex.Columns;
import com.korvex.KVXEnv;
import com.korvex.KVXModel;
import com.korvex.KorvexJni;
import com.korvex.SparseMatrix;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.HashMap;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.function.IntSupplier;

/**
 * Times calls through the bridge against the floor, the limit and the peers named as arguments, all
 * on a solver that does nothing. Prints "workload items variant nanoseconds" lines: the least of
 * many rounds, with the floor first.
 */
public final class Bench {
    /** Another way from Java to native code: adds its variants where it has any. */
    interface Peer {
        void attribute(Workload workload);
        void addvars(Workload workload, Data data);
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

        /** With the checks of the checked classes: one pass over the begins. */
        Columns columns() {
            return new Columns(obj, new SparseMatrix(beg, ind, val), lb, ub, types, names);
        }
    }

    /** The same done in several ways. */
    record Workload(String name, int items, Map<String, IntSupplier> calls) {
        // Nanoseconds: a round of a variant takes at least the first, all of its rounds the second;
        // the third makes the compiler finish before the first of them.
        private static final long ROUND = 1_000_000, VARIANT = 250_000_000, WARM_UP = 1_000_000_000;
        // What to measure, as patterns.
        private static final String WORKLOADS = System.getProperty("bench.workloads", ".*");
        private static final String VARIANTS = System.getProperty("bench.variants", ".*");

        Workload(String name, int items) { this(name, items, new LinkedHashMap<>()); }

        Workload with(String variant, IntSupplier call) {
            if (variant.matches(VARIANTS))
                calls.put(variant, call);
            return variant.equals("floor") ? with("control", call) : this;
        }

        void measure() {
            if (!(name + " " + items).matches(WORKLOADS))
                return;
            System.err.printf("\r%-20s %9d", name, items);
            Map<String, Double> least = new HashMap<>();
            Map<String, Integer> times = new HashMap<>();
            calls.forEach((variant, call) -> times.put(variant, timesInRound(call)));
            // In changing order, since a call leaves the heap to the next as its frees left it.
            List<String> order = new ArrayList<>(calls.keySet());
            long end = System.nanoTime() + VARIANT * order.size();
            for (int round = 0; round < 5 || System.nanoTime() < end; round++) {
                Collections.shuffle(order);
                for (String variant : order)
                    least.merge(variant, time(calls.get(variant), times.get(variant)), Math::min);
            }
            for (String variant : calls.keySet())
                System.out.printf("%s %d %s %.1f%n", name, items, variant, least.get(variant));
        }

        private int timesInRound(IntSupplier call) {
            for (long end = System.nanoTime() + WARM_UP; items <= 10 && System.nanoTime() < end;)
                time(call, 100);
            int times = 1;
            while (times < 1 << 20 && time(call, times) * times < ROUND)
                times *= 2;
            return times;
        }

        /** Nanoseconds of one of so many calls. */
        private static double time(IntSupplier call, int times) {
            int status = 0;
            long begin = System.nanoTime();
            for (int k = 0; k < times; k++)
                status |= call.getAsInt();
            double taken = System.nanoTime() - begin;
            if (status != 0)
                throw new IllegalStateException("status " + status);
            return taken / times;
        }
    }

    private static final String NAME = "NumVars";

    private Bench() {}

    private static void smallCalls(KVXModel model, List<Peer> peers) {
        int[] slot = new int[1];
        String[] error = new String[1];
        Floor object = new Floor();
        Workload attribute =
            new Workload("attribute", 1)
                .with("floor", () -> Floor.getintattr(1, NAME, slot))
                .with("bridge", () -> KorvexJni.getintattrlist(1, NAME, 0, -1, null, slot))
                .with("checked", () -> model.getInt(NAME));
        peers.forEach(peer -> peer.attribute(attribute));
        attribute.measure();
        new Workload("parameter", 1)
            .with("floor", () -> Floor.setintparam(1, NAME, 1))
            .with("bridge", () -> KorvexJni.setintparam(1, NAME, 1))
            .measure();
        new Workload("upcalls", 1000)
            .with("floor", () -> object.optimize(1000))
            .with("bridge", () -> object.optimizeThroughBridge(1000, error))
            .measure();
    }

    private static void attributes(int n) {
        char[] chars = new char[n];
        String[] texts = new String[n];
        new Workload("getchars", n)
            .with("floor", () -> Floor.getchars(1, NAME, 0, n, chars))
            .with("bridge", () -> KorvexJni.getcharattrlist(1, NAME, 0, n, null, chars))
            .measure();
        new Workload("setchars", n)
            .with("floor", () -> Floor.setchars(1, NAME, 0, n, chars))
            .with("bridge", () -> KorvexJni.setcharattrlist(1, NAME, 0, n, null, chars))
            .measure();
        new Workload("getstrings", n)
            .with("floor", () -> Floor.getstrings(1, NAME, 0, n, texts))
            .with("bridge", () -> KorvexJni.getstrattrlist(1, NAME, 0, n, null, texts))
            .measure();
    }

    private static int add(Data d) {
        return KorvexJni.addvars(1, d.vars, d.nonzeros, d.beg, d.ind, d.val, d.obj, d.lb, d.ub,
                                 d.types, d.names);
    }

    private static int addByFloor(Data d) {
        return Floor.addvars(1, d.vars, d.nonzeros, d.beg, d.ind, d.val, d.obj, d.lb, d.ub, d.types,
                             d.names);
    }

    private static void addvars(KVXModel model, Data d, List<Peer> peers) {
        Workload addvars = new Workload(d.names == null ? "addvars" : "addvars+names", d.nonzeros)
                               .with("floor", () -> addByFloor(d))
                               .with("bridge", () -> add(d))
                               .with("checked", () -> model.variables().add(d.columns()));
        if (d.names == null)
            addvars.with("checks", () -> d.columns().size() - d.vars)
                .with("limit", () -> Floor.limit(d.vars, d.nonzeros));
        peers.forEach(peer -> peer.addvars(addvars, d));
        addvars.measure();
    }

    private static void getvars(Data d) {
        int[] room = {d.nonzeros};
        new Workload("getvars", d.nonzeros)
            .with("floor", () -> Floor.getvars(d.nonzeros, room, d.beg, d.ind, d.val, 0, d.vars))
            .with("bridge",
                  () -> KorvexJni.getvars(d.nonzeros, room, d.beg, d.ind, d.val, 0, d.vars))
            .measure();
    }

    public static void main(String[] args) throws ReflectiveOperationException {
        System.loadLibrary("floor");
        List<Peer> peers = new ArrayList<>();
        for (String name : args)
            peers.add((Peer)Class.forName(name).getDeclaredConstructor().newInstance());
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
