package com.korvex;

import static org.junit.jupiter.api.Assertions.*;

import java.nio.file.*;
import java.util.*;
import org.junit.jupiter.api.*;
import org.junit.jupiter.api.io.TempDir;

/** What can be had of a model: its basis, derived models, tuning, a batch. */
@Timeout(60)
class SolutionTest {
    private static final String MODELS = System.getProperty("korvex.examples") + "/models/";

    private KVXEnv env;
    private KVXModel model;

    @BeforeEach
    void solve() {
        env = Models.quietEnv();
        model = KVXModel.read(env, MODELS + "bakery.lp");
        model.optimize();
    }

    @AfterEach
    void close() {
        model.close();
        env.close();
    }

    /** A sparse result as a whole vector. */
    private static double[] whole(int size, int[] count, int[] ind, double[] val) {
        double[] vector = new double[size];
        for (int k = 0; k < count[0]; k++)
            vector[ind[k]] = val[k];
        return vector;
    }

    @Test
    void basisTimesItsInverseIsOne() {
        long m = model.handle();
        int rows = model.getInt("NumConstrs"), columns = model.getInt("NumVars");
        int[] head = new int[rows];
        head[0] = rows;
        assertEquals(0, KorvexJni.basishead(m, head));
        for (int k = 0; k < rows; k++) {
            double[] one = new double[rows];
            one[k] = 1;
            int j = head[k];
            int[] length = {rows}, ind = {j - columns, 0, 0, 0}, count = {rows},
                  xind = new int[rows];
            double[] val = {1, 0, 0, 0}, xval = new double[rows];
            if (j < columns)
                assertEquals(0, KorvexJni.getvars(m, length, new int[1], ind, val, j, 1));
            else
                length[0] = 1;
            assertEquals(0, KorvexJni.fsolve(m, length[0], ind, val, count, xind, xval));
            assertArrayEquals(one, whole(rows, count, xind, xval), 1e-9);
            // y B is the k-th unit vector, so y times the column is 1.
            count[0] = rows;
            assertEquals(
                0, KorvexJni.bsolve(m, 1, new int[] {k}, new double[] {1}, count, xind, xval));
            double[] y = whole(rows, count, xind, xval);
            double product = 0;
            for (int i = 0; i < length[0]; i++)
                product += y[ind[i]] * val[i];
            assertEquals(1, product, 1e-9);
            int[] wide = {rows + columns}, wideInd = new int[rows + columns];
            double[] wideVal = new double[rows + columns];
            assertEquals(0, KorvexJni.binvrowi(m, k, wide, wideInd, wideVal));
            assertEquals(1, whole(rows + columns, wide, wideInd, wideVal)[j], 1e-9);
        }
    }

    @Test
    void derivedModelsAreModelsOfTheirOwn() {
        try (KVXEnv other = Models.quietEnv()) {
            long[] slot = {0};
            assertEquals(0, KorvexJni.copymodel(model.handle(), other.handle(), slot));
            try (KVXModel copy = KVXModel.adopt(other, slot[0])) {
                model.close();
                copy.optimize();
                assertEquals(1073.1891891891892, copy.getDouble("ObjVal"), 1e-9);
            }
        }
        try (KVXModel split = Models.marketSplit(env, 12, 2, 3)) {
            split.optimize();
            for (String name : new String[] {"relaxmodel", "fixedmodel", "presolvemodel",
                                             "feasibility", "linearize", "singlescenariomodel"}) {
                long[] slot = {0};
                assertEquals(0, Natives.call(name, split.handle(), slot), name);
                try (KVXModel derived = KVXModel.adopt(env, slot[0])) {
                    derived.optimize();
                    assertEquals(KVX.STATUS_OPTIMAL, derived.getInt("Status"), name);
                    if (!name.equals("relaxmodel") && !name.equals("feasibility"))
                        assertEquals(split.getDouble("ObjVal"), derived.getDouble("ObjVal"), 1e-6,
                                     name);
                }
            }
            split.convertToFixed();
            assertEquals(0, split.getInt("IsMIP"));
            double[] penalty = {-1};
            assertEquals(0, KorvexJni.feasrelax(split.handle(), 0, 1, new double[16],
                                                new double[16], new double[2], penalty));
            assertEquals(0, penalty[0], 1e-9);
        }
    }

    @Test
    void tuningAndConflictsCallBack() {
        Set<Integer> reasons = new HashSet<>();
        try (KVXModel split = Models.marketSplit(env, 10, 1, 1)) {
            split.params().set("TuneTimeLimit", 1.0);
            split.setCallback(context -> reasons.add(context.where()));
            split.tune();
            split.loadTuneResult(0);
            assertTrue(split.getInt("TuneResultCount") > 0 && reasons.contains(KVX.CB_TUNE));
        }
        try (KVXModel shifts = KVXModel.read(env, MODELS + "shifts.lp")) {
            shifts.setCallback(context -> reasons.add(context.where()));
            shifts.computeIIS();
            assertTrue(reasons.contains(KVX.CB_IIS));
            assertArrayEquals(new int[] {0, 1, 1, 0, 0, 1, 1}, shifts.getInts("IISConstr", 0, 7));
        }
        assertThrows(KVXException.class, model::computeIIS); // it is feasible
    }

    @Test
    void aBatchEndsWithTheSameSolution(@TempDir Path directory) throws Exception {
        String id = model.optimizeBatch();
        Path file = directory.resolve("batch.json");
        try (KVXBatch batch = new KVXBatch(env, id)) {
            while (batch.getInt("BatchStatus") != KVX.BATCH_COMPLETED) {
                Thread.sleep(10);
                batch.update();
            }
            assertEquals(id, batch.getString("BatchID"));
            assertTrue(batch.jsonSolution().contains("\"objective\": 1073.18"));
            batch.writeJsonSolution(file.toString());
            assertEquals(batch.jsonSolution(), Files.readString(file));
            batch.discard();
        }
        Models.fails(KVX.ERROR_NOT_FOUND, () -> new KVXBatch(env, id));
    }
}
