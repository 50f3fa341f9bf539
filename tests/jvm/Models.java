package com.korvex;

import java.util.*;
import java.util.stream.IntStream;

/** What several tests use: environments, models, a throw. */
final class Models {
    private Models() {}

    /** An environment that leaves the console alone. */
    static KVXEnv quietEnv() {
        KVXEnv env = KVXEnv.empty();
        try {
            env.params().set("LogToConsole", 0);
            env.start();
            return env;
        } catch (Throwable t) {
            env.close();
            throw t;
        }
    }

    /**
     * Every shop has a random share in every market; the shops are to be split into two halves that
     * are equal in all markets, or nearly. With a few markets the search takes longer than anybody
     * waits.
     */
    static KVXModel marketSplit(KVXEnv env, int shops, int markets, long seed) {
        Random random = new Random(seed);
        KVXModel model = new KVXModel(env, "split", Columns.of(new double[shops]).allOf('B'));
        for (int market = 0; market < markets; market++) {
            int more = model.variables().add(Columns.of(1, 1)), less = more + 1;
            double[] shares = random.ints(shops, 0, 100).asDoubleStream().toArray();
            double[] val = Arrays.copyOf(shares, shops + 2);
            val[shops] = 1;
            val[shops + 1] = -1;
            int[] ind = IntStream.range(0, shops + 2).toArray();
            ind[shops] = more;
            ind[shops + 1] = less;
            double half = Math.floor(Arrays.stream(shares).sum() / 2);
            model.constraints().add(new SparseVector(ind, val), KVX.EQUAL, half, null);
        }
        return model;
    }

    /** Throws what its callers needn't declare. */
    @SuppressWarnings("unchecked")
    static <T extends Throwable> void escape(Throwable t) throws T {
        throw(T) t;
    }
}
