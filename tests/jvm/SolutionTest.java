package com.korvex;

import static org.junit.jupiter.api.Assertions.*;

import java.nio.file.*;
import java.util.*;
import java.util.function.Function;
import org.junit.jupiter.api.*;
import org.junit.jupiter.api.io.TempDir;

/** What can be had of a model: its basis, derived models, tuning, a batch. */
class SolutionTest extends EnvCase {
    private static final String MODELS = System.getProperty("korvex.examples") + "/models/";

    private KVXModel model;

    @BeforeEach
    void solve() {
        model = KVXModel.read(env, MODELS + "bakery.lp");
        model.optimize();
    }

    @AfterEach
    void close() {
        model.close();
    }

    /** A sparse result as a whole vector. */
    private static double[] whole(int size, SparseVector sparse) {
        double[] vector = new double[size];
        for (int k = 0; k < sparse.size(); k++)
            vector[sparse.ind()[k]] = sparse.val()[k];
        return vector;
    }

    @Test
    void basisTimesItsInverseIsOne() {
        Basis basis = model.basis();
        int rows = model.constraints().count(), columns = model.variables().count();
        int[] head = basis.head();
        for (int k = 0; k < rows; k++) {
            double[] one = new double[rows];
            one[k] = 1;
            int j = head[k];
            SparseVector column =
                j < columns ? model.variables().column(j) : SparseVector.ones(j - columns);
            assertArrayEquals(one, whole(rows, basis.solve(column)), 1e-9);
            assertArrayEquals(one, whole(rows, basis.column(j)), 1e-9);
            // y B is the k-th unit vector, so y times the column is 1.
            double[] y = whole(rows, basis.solveTransposed(SparseVector.ones(k)));
            double product = 0;
            for (int i = 0; i < column.size(); i++)
                product += y[column.ind()[i]] * column.val()[i];
            assertEquals(1, product, 1e-9);
            assertEquals(1, whole(rows + columns, basis.row(k))[j], 1e-9);
        }
        try (KVXModel wide = new KVXModel(env, "wide", Columns.of(1, 2, 3))) {
            assertEquals(0, wide.basis().head().length);
            wide.constraints().add(SparseVector.ones(0, 1, 2), KVX.EQUAL, 1, null);
            fails(KVX.ERROR_DATA_NOT_AVAILABLE, wide.basis()::head);
            wide.optimize();
            assertEquals(4, wide.basis().row(0).size()); // more than there are rows
        }
    }

    @Test
    void derivedModelsAreModelsOfTheirOwn() {
        try (KVXEnv other = Models.quietEnv()) {
            other.params().set("Seed", 7);
            KVXModel copy = model.copy(other), dual = model.dual();
            model.close();
            assertEquals(7, copy.params().getInt("Seed"));
            for (KVXModel one : List.of(copy, dual)) {
                one.optimize();
                assertEquals(1073.1891891891892, one.getDouble("ObjVal"), 1e-9);
            }
            copy.set("Start", 0, 1);
            copy.reset(false);
            assertEquals(1, copy.getDouble("Start", 0));
            copy.reset(true);
            assertEquals(KVX.UNDEFINED, copy.getDouble("Start", 0));
            copy.update();
            assertEquals(KVX.STATUS_LOADED, copy.getInt("Status"));
            copy.close();
            dual.close();
        }
    }

    @Test
    void modelsOfASolvedOne() {
        try (KVXModel split = Models.marketSplit(env, 12, 2, 3)) {
            fails(KVX.ERROR_DATA_NOT_AVAILABLE, split::fixed);
            split.optimize();
            Map<String, Function<KVXModel, KVXModel>> makers =
                Map.of("relaxed", KVXModel::relaxed, "fixed", KVXModel::fixed, "presolved",
                       KVXModel::presolved, "linearized", KVXModel::linearized, "scenario",
                       KVXModel::singleScenario);
            makers.forEach((name, maker) -> {
                try (KVXModel derived = maker.apply(split)) {
                    derived.optimize();
                    assertEquals(KVX.STATUS_OPTIMAL, derived.getInt("Status"), name);
                    if (!name.equals("relaxed"))
                        assertEquals(split.getDouble("ObjVal"), derived.getDouble("ObjVal"), 1e-6,
                                     name);
                }
            });
            split.convertToFixed();
            assertEquals(0, split.getInt("IsMIP"));
        }
        // x and y up to 1, but x + y at least 5: one upper bound gives way.
        try (KVXModel tight = new KVXModel(env, "tight", Columns.of(1, 1).upper(1, 1))) {
            tight.constraints().add(SparseVector.ones(0, 1), KVX.GREATER_EQUAL, 5, null);
            try (KVXModel feasibility = tight.feasibility()) {
                feasibility.optimize();
                assertEquals(3, feasibility.getDouble("ObjVal"), 1e-9);
            }
            assertEquals(6, tight.relaxFeasibility(0, true, null, new double[] {2, 9}, null), 1e-9);
        }
    }

    @Test
    void tuningAndConflictsCallBack() {
        Set<Integer> reasons = new HashSet<>();
        try (KVXModel split = Models.marketSplit(env, 10, 1, 1)) {
            split.params().set("TuneTimeLimit", 1.0);
            split.setCallback(context -> reasons.add(context.where()));
            split.tune();
            int results = split.getInt("TuneResultCount");
            split.loadTuneResult(results - 1);
            fails(KVX.ERROR_INDEX_OUT_OF_RANGE, () -> split.loadTuneResult(results));
            assertTrue(reasons.contains(KVX.CB_TUNE));
        }
        try (KVXModel shifts = KVXModel.read(env, MODELS + "shifts.lp")) {
            shifts.setCallback(context -> reasons.add(context.where()));
            shifts.computeIIS();
            assertTrue(reasons.contains(KVX.CB_IIS));
            assertArrayEquals(new int[] {0, 1, 1, 0, 0, 1, 1}, shifts.getInts("IISConstr", 0, 7));
        }
        fails(KVX.ERROR_INVALID_ARGUMENT, model::computeIIS); // it is feasible
        assertFalse(model.isRunning());
        fails(KVX.ERROR_INVALID_ARGUMENT, () -> KVXModel.adopt(env, 0));
    }

    @Test
    void aBatchEndsWithTheSameSolution(@TempDir Path directory) throws Exception {
        String id = model.optimizeBatch(), objective = "\"objective\": 1073.18";
        assertTrue(model.jsonSolution().contains(objective));
        String start = directory.resolve("bakery.sol").toString();
        model.write(start);
        model.read(start);
        assertArrayEquals(model.getDoubles("X"), model.getDoubles("Start"));
        Path file = directory.resolve("batch.json");
        try (KVXBatch batch = new KVXBatch(env, id)) {
            while (batch.getInt("BatchStatus") != KVX.BATCH_COMPLETED) {
                Thread.sleep(10);
                batch.update();
            }
            assertEquals(id, batch.getString("BatchID"));
            assertTrue(batch.jsonSolution().contains(objective));
            batch.writeJsonSolution(file.toString());
            assertEquals(batch.jsonSolution(), Files.readString(file));
            batch.discard();
        }
        fails(KVX.ERROR_NOT_FOUND, () -> new KVXBatch(env, id));
    }

    @Test
    void aBatchIsAbortedAndTriedAgain() {
        try (KVXModel split = endless();
             KVXBatch batch = new KVXBatch(env, split.optimizeBatch())) {
            for (int round = 0; round < 2; round++) {
                batch.abort();
                batch.update();
                assertEquals(KVX.BATCH_ABORTED, batch.getInt("BatchStatus"));
                batch.retry();
                batch.update();
                assertEquals(KVX.BATCH_RUNNING, batch.getInt("BatchStatus"));
            }
            batch.abort();
            batch.discard();
        }
    }
}
