package com.korvex;

import static org.junit.jupiter.api.Assertions.*;

import java.util.Random;
import org.junit.jupiter.api.function.Executable;

/** Environments, models and checks that several tests use. */
final class Models {
    private Models() {}

    /** An environment that leaves the console alone. */
    static KVXEnv quietEnv() {
        KVXEnv env = KVXEnv.empty();
        env.params().set("LogToConsole", 0);
        env.start();
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
        int[] beg = new int[columns], len = new int[columns];
        int[] ind = new int[shops * markets + 2 * markets];
        double[] val = new double[ind.length], obj = new double[columns], rhs = new double[markets];
        double[] ub = new double[columns];
        char[] types = new char[columns], senses = new char[markets];
        String[] names = new String[columns], rows = new String[markets];
        int at = 0;
        for (int j = 0; j < columns; j++) {
            boolean slack = j >= shops;
            beg[j] = at;
            len[j] = slack ? 1 : markets;
            for (int k = 0; k < len[j]; k++, at++) {
                int row = slack ? (j - shops) / 2 : k;
                ind[at] = row;
                val[at] = slack ? 1 - 2 * ((j - shops) % 2) : random.nextInt(100);
                if (!slack)
                    rhs[row] += val[at] / 2;
            }
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
        return KVXModel.adopt(env, KorvexJni.loadmodel(env.handle(), "split", columns, markets,
                                                       KVX.MINIMIZE, 0, obj, senses, rhs, beg, len,
                                                       ind, val, new double[columns], ub, types,
                                                       names, rows));
    }
}
