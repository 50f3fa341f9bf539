package com.korvex;

import static org.junit.jupiter.api.Assertions.*;

import java.lang.reflect.Array;
import java.util.*;
import java.util.stream.IntStream;
import org.junit.jupiter.api.function.Executable;

/** Environments, models and checks that several tests use. */
final class Models {
    private Models() {}

    /** An environment that leaves the console alone. */
    static KVXEnv quietEnv() {
        KVXEnv env = KVXEnv.empty();
        try {
            env.params().set("LogToConsole", 0);
            env.start();
        } catch (RuntimeException | Error e) {
            env.close();
            throw e;
        }
        return env;
    }

    static void fails(int status, Executable use) {
        assertEquals(status, assertThrows(KVXException.class, use).status());
    }

    /**
     * Every shop has a random share in every market; the shops are to be split into two halves that
     * are equal in all markets, or nearly. With a few markets the search takes longer than anybody
     * waits.
     */
    static KVXModel marketSplit(KVXEnv env, int shops, int markets, long seed) {
        Random random = new Random(seed);
        int columns = shops + 2 * markets;
        List<SparseVector> entries = new ArrayList<>();
        double[] obj = new double[columns], rhs = new double[markets], ub = new double[columns];
        char[] types = new char[columns], senses = new char[markets];
        String[] names = new String[columns], rows = new String[markets];
        for (int j = 0; j < columns; j++) {
            boolean slack = j >= shops;
            int row = (j - shops) / 2;
            entries.add(
                slack ? new SparseVector(new int[] {row}, 1 - 2 * ((j - shops) % 2))
                      : new SparseVector(IntStream.range(0, markets).toArray(),
                                         random.ints(markets, 0, 100).asDoubleStream().toArray()));
            for (int k = 0; !slack && k < markets; k++)
                rhs[k] += entries.get(j).val()[k] / 2;
            obj[j] = slack ? 1 : 0;
            ub[j] = slack ? KVX.INFINITY : 1;
            types[j] = slack ? KVX.CONTINUOUS : KVX.BINARY;
            names[j] = (slack ? "off" : "shop") + j;
        }
        for (int row = 0; row < markets; row++) {
            rhs[row] = Math.floor(rhs[row]);
            senses[row] = KVX.EQUAL;
            rows[row] = "market" + row;
        }
        Columns data =
            Columns.of(obj).coefficients(SparseMatrix.of(entries)).upper(ub).types(types);
        return KVXModel.load(env, "split", KVX.MINIMIZE, 0, data.names(names),
                             Rows.of(null, senses, rhs).names(rows));
    }

    /** What an array of any type holds, as text. */
    static String show(Object array) { return show(array, Integer.MAX_VALUE); }

    /** The first elements alone. */
    static String show(Object array, int most) {
        IntStream indices = IntStream.range(0, Math.min(most, Array.getLength(array)));
        return indices.mapToObj(i -> Array.get(array, i)).toList() + "";
    }
}
