import com.korvex.KVX;
import com.korvex.KVXEnv;
import com.korvex.KVXModel;
import com.korvex.KorvexJni;
import java.util.Arrays;
import java.util.concurrent.atomic.AtomicLong;
import java.util.function.IntFunction;
import java.util.function.IntSupplier;

/**
 * Measures what crossing the bridge costs: bare calls, texts, arrays in and out, names, upcalls.
 * Each row is the median of several rounds after a warm-up; the solver's own work is part of it.
 */
public final class Bench {
    private static final int ROUNDS = 15;
    private static final int ELEMENTS = 1_000_000;
    private static final int NAMES = 100_000;

    private Bench() {}

    /** Prints the median time of a call, of which a round makes some, and the bytes it moves. */
    private static void measure(String what, int calls, long bytes, IntSupplier call) {
        long[] times = new long[ROUNDS];
        for (int round = -5; round < ROUNDS; round++) {
            long begin = System.nanoTime();
            for (int k = 0; k < calls; k++)
                if (call.getAsInt() != KVX.OK)
                    throw new IllegalStateException(what + " failed");
            if (round >= 0)
                times[round] = (System.nanoTime() - begin) / calls;
        }
        Arrays.sort(times);
        long median = times[ROUNDS / 2];
        String rate = bytes == 0 ? "" : String.format("%8.2f GB/s", (double)bytes / median);
        System.out.printf("%-45s %12d ns %s%n", what, median, rate);
    }

    private static KVXModel newModel(KVXEnv env, int count, IntFunction<String> name) {
        double[] zeros = new double[count];
        char[] types = new char[count];
        String[] names = new String[count];
        Arrays.fill(types, 'C');
        Arrays.setAll(names, name);
        return KVXModel.adopt(env, KorvexJni.newmodel(new int[1], env.handle(), "bench", count,
                                                      zeros, zeros, zeros, types, names));
    }

    public static void main(String[] args) {
        try (KVXEnv env = new KVXEnv()) {
            env.params().set("LogToConsole", 0);
            try (KVXModel model = newModel(env, ELEMENTS, k -> null);
                 KVXModel named = newModel(env, NAMES, k -> "x" + k)) {
                calls(env.handle(), model.handle());
                numbers(model.handle());
                names(named.handle());
            }
            AtomicLong lines = new AtomicLong();
            env.setLog(line -> lines.incrementAndGet());
            long handle = env.handle();
            measure("a log line, to the solver and back into Java", 10_000, 0,
                    () -> KorvexJni.message(handle, "a line of the log\n"));
        }
    }

    private static void calls(long env, long model) {
        int[] slot = new int[1];
        measure("a bare call", 1_000_000, 0, () -> KorvexJni.getenv(model) == 0 ? 1 : 0);
        measure("a call with a text (int parameter)", 200_000, 0,
                () -> KorvexJni.getintparam(env, "Threads", slot));
        measure("a call with a text (int attribute)", 200_000, 0,
                () -> KorvexJni.getintattrlist(model, "NumVars", 0, -1, null, slot));
    }

    private static void numbers(long model) {
        double[] doubles = new double[ELEMENTS];
        char[] chars = new char[ELEMENTS];
        int[] indices = new int[ELEMENTS];
        Arrays.setAll(indices, k -> k);
        Arrays.fill(chars, 'C');
        measure("a million doubles out", 20, 8L * ELEMENTS,
                () -> KorvexJni.getdblattrlist(model, "LB", 0, ELEMENTS, null, doubles));
        measure("a million doubles in", 20, 8L * ELEMENTS,
                () -> KorvexJni.setdblattrlist(model, "LB", 0, ELEMENTS, null, doubles));
        measure("a million doubles out, by index", 20, 12L * ELEMENTS,
                () -> KorvexJni.getdblattrlist(model, "LB", -1, ELEMENTS, indices, doubles));
        measure("a million chars out", 20, 2L * ELEMENTS,
                () -> KorvexJni.getcharattrlist(model, "VarType", 0, ELEMENTS, null, chars));
        measure("a million chars in", 20, 2L * ELEMENTS,
                () -> KorvexJni.setcharattrlist(model, "VarType", 0, ELEMENTS, null, chars));
    }

    private static void names(long model) {
        String[] names = new String[NAMES];
        Arrays.setAll(names, k -> "name" + k);
        measure("a hundred thousand names in", 5, 0,
                () -> KorvexJni.setstrattrlist(model, "VarName", 0, NAMES, null, names));
        measure("a hundred thousand names out", 5, 0,
                () -> KorvexJni.getstrattrlist(model, "VarName", 0, NAMES, null, names));
    }
}
