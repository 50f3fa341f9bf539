package com.korvex;

import static org.junit.jupiter.api.Assertions.*;

import java.util.*;
import org.junit.jupiter.api.*;
import org.junit.jupiter.api.function.Executable;

/** What is built is read back as it was, and what makes no sense is refused before it can hurt. */
class BuildTest extends EnvCase {
    private KVXModel model;

    /**
     * Columns 0 to 3 and rows 0 to 2:
     * <pre>
     *   1 2 . .  at most 10
     *   . . 3 .  at least 1
     *   4 . . 5  from 2 to 8
     * </pre>
     */
    @BeforeEach
    void build() {
        model = new KVXModel(env, "built");
        assertEquals(0, model.variables().add(Columns.of(1, -1, 0, 2)
                                                  .upper(9, 9, 9, KVX.INFINITY)
                                                  .types('C', 'B', 'I', 'C')
                                                  .names("w", "x", null, "z")));
        SparseMatrix rows =
            SparseMatrix.of(List.of(vector(0, 1, 1, 2), new SparseVector(ints(2), 3)));
        assertEquals(0, model.constraints().add(
                            Rows.of(rows, "<>".toCharArray(), 10, 1).names("top", null)));
        assertEquals(2, model.constraints().addRange(vector(0, 4, 3, 5), 2, 8, null));
    }

    @AfterEach
    void close() {
        model.close();
    }

    private static int[] ints(int... values) { return values; }

    private static double[] doubles(double... values) { return values; }

    /** Two entries. */
    private static SparseVector vector(int i, double x, int j, double y) {
        return new SparseVector(ints(i, j), x, y);
    }

    private static SparseMatrix matrix(int[] beg, int[] ind, double... val) {
        return new SparseMatrix(beg, ind, val);
    }

    @Test
    void generalConstraints() {
        int[] ops = {0, 1, 2};
        GeneralConstraint[] kinds = {
            GeneralConstraint.max(3, ops, 4.5),
            GeneralConstraint.min(3, ints(2, 0), -KVX.INFINITY),
            GeneralConstraint.abs(2, 3),
            GeneralConstraint.and(1, ops),
            GeneralConstraint.or(1, 1),
            GeneralConstraint.norm(3, ops, KVX.INFINITY),
            new GeneralConstraint.Indicator(1, 0, vector(3, 1.5, 0, -2), '>', 7.25),
            new GeneralConstraint.PiecewiseLinear(0, 3, new Points(doubles(-1, 0, 2.5), 3, 1, 1)),
            new GeneralConstraint.Polynomial(0, 3, 2, 0, -1.5),
            GeneralConstraint.exp(0, 3),
            GeneralConstraint.exp(0, 3, 3),
            GeneralConstraint.log(0, 3),
            GeneralConstraint.log(0, 3, 10),
            GeneralConstraint.pow(0, 3, 0.5),
            GeneralConstraint.sin(0, 3),
            GeneralConstraint.cos(2, 0),
            GeneralConstraint.tan(0, 3),
            GeneralConstraint.logistic(0, 3),
            new GeneralConstraint.Tree(3, ints(KVX.NL_PLUS, KVX.NL_CONSTANT, KVX.NL_VARIABLE),
                                       doubles(0, 2.5, 1), ints(-1, 0, 0)),
        };
        GeneralConstraints all = model.generalConstraints();
        for (int index = 0; index < kinds.length; index++) {
            int kind = kinds.length - 1 - index; // another number than the index
            assertEquals(index, all.add(kinds[kind], "name " + kind));
            assertEquals(kind, kinds[kind].kind());
            assertEquals(kind, model.getInt(KVXAttribute.GEN_CONSTR_TYPE, index));
            assertEquals("name " + kind, model.getString(KVXAttribute.GEN_CONSTR_NAME, index));
            assertEquals(kinds[kind], all.get(index));
        }
        fails(KVX.ERROR_INDEX_OUT_OF_RANGE, () -> all.get(kinds.length));
    }

    @Test
    void quadraticTermsAndConstraints() {
        Objective objective = model.objective();
        Triplets terms = new Triplets(ints(0, 1), ints(3, 1), 2, -1);
        objective.addQuadraticTerms(new Triplets(ints(1, 3), ints(1, 0), -1, 2));
        assertEquals(terms, objective.quadraticTerms());
        objective.deleteQuadraticTerms();
        assertEquals(0, objective.quadraticTerms().size());
        QuadraticConstraints quadratic = model.quadraticConstraints();
        QuadraticExpression both = new QuadraticExpression(vector(0, 1.5, 2, 3), terms);
        assertEquals(0, quadratic.add(QuadraticExpression.of(terms), KVX.EQUAL, 6.5, "first"));
        assertEquals(1, quadratic.add(both, KVX.LESS_EQUAL, -1, "second"));
        assertEquals(QuadraticExpression.of(terms), quadratic.get(0));
        quadratic.delete(0);
        assertEquals(both, quadratic.get(0));
        assertArrayEquals(new String[] {"second"}, model.getStrings(KVXAttribute.Q_CONSTR_NAME));
        assertArrayEquals(new char[] {'<'}, model.getChars(KVXAttribute.Q_CONSTR_SENSE));
        assertArrayEquals(doubles(-1), model.getDoubles(KVXAttribute.Q_CONSTR_RHS));
        objective.set(KVX.MINIMIZE, both, 0);
        assertEquals(terms, objective.quadraticTerms());
        assertArrayEquals(doubles(1.5, 0, 3, 0), model.getDoubles(KVXAttribute.OBJ));
        fails(KVX.ERROR_NOT_SUPPORTED, model::optimize);
        fails(KVX.ERROR_NOT_SUPPORTED, model::tune);
        model.setCallback(context -> {});
        fails(KVX.ERROR_NOT_SUPPORTED, model::tune);
    }

    @Test
    void setsAndPiecewiseLinearTerms() {
        SpecialOrderedSets sos = model.sos();
        SparseVector pair = vector(0, 1, 1, 2), three = new SparseVector(ints(1, 2, 3), 1, 2, 3);
        assertEquals(0, sos.add(new SpecialOrderedSets.Sets(
                            ints(1, 2), SparseMatrix.of(List.of(pair, three)))));
        assertEquals(2, sos.add(KVX.SOS_TYPE1, pair));
        assertEquals(new SpecialOrderedSets.Sets(ints(2, 1), SparseMatrix.of(List.of(three, pair))),
                     sos.get(1, 2));
        assertEquals(0, sos.get(3, 0).members().size());
        sos.delete(1, 0);
        assertEquals("Sets[types=[1], members=SparseMatrix[beg=[0], ind=[0, 1], val=[1.0, 2.0]]]",
                     sos.get(0, sos.count()).toString());
        Points points = new Points(doubles(0, 1, 5), 0, 2, 3);
        model.objective().setPiecewiseLinear(3, points);
        assertEquals(points, model.objective().piecewiseLinear(3));
        assertEquals(0, model.objective().piecewiseLinear(2).size());
        model.variables().delete(0, 1);
        fails(KVX.ERROR_DATA_NOT_AVAILABLE, () -> sos.get(0, sos.count()));
    }

    @Test
    void rowsAndColumns() {
        Constraints rows = model.constraints();
        assertEquals(matrix(ints(0, 1), ints(2, 0, 3), 3, 4, 5), rows.rows(1, 2));
        assertEquals(matrix(ints(0, 2, 3), ints(0, 2, 0, 1), 1, 4, 2, 3),
                     model.variables().columns(0, 3));
        assertEquals(new SparseVector(ints(2), 5), model.variables().column(3));
        assertArrayEquals("<>".toCharArray(), model.getChars(KVXAttribute.SENSE, 0, 2));
        assertArrayEquals(doubles(-KVX.INFINITY, 1, 2), model.getDoubles(KVXAttribute.ROW_LOWER));
        assertArrayEquals(doubles(10, KVX.INFINITY, 8), model.getDoubles(KVXAttribute.ROW_UPPER));
        assertEquals(5, rows.coefficient(2, 3));
        rows.setCoefficients(new Triplets(ints(2, 0), ints(3, 2), 0, 6));
        assertEquals(5, model.getInt(KVXAttribute.NUM_NZS));
        assertEquals("3 0", model.variables().indexOf("z") + " " + rows.indexOf("top"));
        fails(KVX.ERROR_NOT_FOUND, () -> rows.indexOf("z"));
        assertEquals(new SparseVector(ints(0), 4), rows.rows(1, 2).list(1));
        fails(KVX.ERROR_INDEX_OUT_OF_RANGE, () -> rows.rows(1, 3));
        // A variable with coefficients in rows that there are, one without any, and a row likewise.
        assertEquals(4, model.variables().add(Columns.of(0, 1).coefficients(SparseMatrix.of(
                            List.of(vector(1, 2, 2, 3), new SparseVector(ints()))))));
        assertEquals(matrix(ints(0, 2), ints(1, 2), 2, 3), model.variables().columns(4, 2));
        assertEquals(3, rows.add(Rows.of(null, new char[] {'='}, 0)));
        assertEquals(0, rows.row(3).size());
        SparseVector untidy = new SparseVector(ints(3, 1, 2, 1), 1, 2, 0, 1);
        assertEquals(vector(1, 3, 3, 1), untidy.cleaned());
        assertEquals(3, untidy.ind()[0]); // it stays as it was
        assertEquals(new Triplets(ints(0, 1), ints(2, 0), 4, 1),
                     new Triplets(ints(1, 0, 0), ints(0, 2, 2), 1, 1, 3).cleaned());
    }

    @Test
    void deletionRenumbers() {
        GeneralConstraints general = model.generalConstraints();
        for (GeneralConstraint curve :
             List.of(GeneralConstraint.sin(0, 3), GeneralConstraint.exp(0, 3))) {
            general.add(curve, null, "way=1");
            assertEquals("way=1", model.getString(KVXAttribute.GEN_CONSTR_OPTIONS, 0));
            general.delete(0);
        }
        for (String name : new String[] {"first", "second"})
            general.add(GeneralConstraint.abs(0, 3), name);
        general.delete(0);
        fails(KVX.ERROR_INDEX_OUT_OF_RANGE, () -> general.delete(1));
        assertArrayEquals(new String[] {"second"}, model.getStrings(KVXAttribute.GEN_CONSTR_NAME));
        general.delete(0);
        model.quadraticConstraints().delete();
        model.variables().delete(2, 0);
        model.constraints().delete(1);
        assertArrayEquals(new String[] {"x", "z"}, model.getStrings(KVXAttribute.VAR_NAME));
        assertEquals(matrix(ints(0, 1), ints(0, 1), 2, 5), model.constraints().rows(0, 2));
    }

    @Test
    void objectives() {
        Objective objective = model.objective();
        objective.set(KVX.MAXIMIZE, vector(3, 7, 1, 8), -3.5);
        assertArrayEquals(doubles(0, 8, 0, 7), model.getDoubles(KVXAttribute.OBJ));
        assertEquals("-1 -3.5", model.getInt(KVXAttribute.MODEL_SENSE) + " " +
                                    model.getDouble(KVXAttribute.OBJ_CON));
        objective.deleteQuadraticTerms();
        for (int i = 0; i < 2; i++)
            objective.setGoal(i, Goal.of(new SparseVector(ints(i), 10 + i))
                                     .priority(2 - i)
                                     .constant(0.5)
                                     .tolerances(0, 0.1)
                                     .name("goal" + i));
        assertEquals(2, model.getInt(KVXAttribute.NUM_OBJ));
        model.set(KVXAttribute.OBJ_NUMBER, 1);
        assertArrayEquals(doubles(0, 11, 0, 0), model.getDoubles(KVXAttribute.OBJ_N));
        fails(KVX.ERROR_INDEX_OUT_OF_RANGE,
              () -> objective.setGoal(5, Goal.of(SparseVector.ones(0))));
        // First w alone, then z, for which w may give way by a quarter: 2 = 4 w + 5 z.
        model.set(KVXAttribute.MODEL_SENSE, KVX.MINIMIZE);
        objective.setGoal(0, Goal.of(SparseVector.ones(3)).priority(1));
        objective.setGoal(
            1, Goal.of(SparseVector.ones(0)).priority(2).constant(7).tolerances(0.25, 0));
        model.optimize();
        assertArrayEquals(doubles(0.25, 0.2), model.getDoubles(KVXAttribute.X, ints(0, 3)), 1e-6);
        assertEquals(7.25, model.getDouble(KVXAttribute.OBJ_VAL), 1e-6);
        model.goalParams(1).set(KVXParameter.SEED, 5);
        assertEquals("0 5 0", model.goalParams(0).getInt("Seed") + " " +
                                  model.goalParams(1).getInt("Seed") + " " +
                                  model.params().getInt("Seed"));
        model.discardGoalParams();
        assertEquals(0, model.goalParams(1).getInt("Seed"));
        model.discardConcurrentParams();
        fails(KVX.ERROR_NOT_SUPPORTED, () -> model.concurrentParams(0).getInt("Threads"));
    }

    @Test
    void wholeModelEqualsTheOneBuiltPieceByPiece() {
        // Entries before the first column's belong to none.
        SparseMatrix columns =
            new SparseMatrix(ints(1, 3, 4, 5), ints(99, 0, 2, 0, 1, 2), doubles(99, 1, 4, 2, 3, 5));
        Columns data = Columns.of(1, -1, 0, 2)
                           .coefficients(columns)
                           .upper(9, 9, 9, KVX.INFINITY)
                           .types('C', 'B', 'I', 'C');
        Rows rows = Rows.of(null, "<>=".toCharArray(), 10, 1, 8).names("p", null, "r");
        try (KVXModel whole = KVXModel.load(env, "loaded", KVX.MAXIMIZE, 2.5, data, rows)) {
            assertEquals(model.variables().columns(0, 4), whole.variables().columns(0, 4));
            assertEquals("loaded -1 2.5", whole.getString(KVXAttribute.MODEL_NAME) + " " +
                                              whole.getInt(KVXAttribute.MODEL_SENSE) + " " +
                                              whole.getDouble(KVXAttribute.OBJ_CON));
            assertEquals("[C0, C1, C2, C3] [p, R1, r]",
                         List.of(whole.getStrings(KVXAttribute.VAR_NAME)) + " " +
                             List.of(whole.getStrings(KVXAttribute.CONSTR_NAME)));
            assertArrayEquals(doubles(9, 1, 9, KVX.INFINITY), whole.getDoubles(KVXAttribute.UB));
        }
        try (KVXModel bare = KVXModel.load(env, null, KVX.MINIMIZE, 0, Columns.of(1, 1),
                                           Rows.of(null, new char[0]));
             KVXModel made = new KVXModel(env, "n", Columns.of(4, 5).allOf(KVX.BINARY))) {
            assertArrayEquals(doubles(KVX.INFINITY, KVX.INFINITY),
                              bare.getDoubles(KVXAttribute.UB));
            assertArrayEquals("BB".toCharArray(), made.getChars(KVXAttribute.VAR_TYPE));
            assertEquals(Columns.of(4, 5).allOf('B'), Columns.of(4, 5).types('B', 'B'));
            assertEquals(Rows.of(null, "<".toCharArray(), 1), Rows.of(null, new char[] {'<'}, 1));
        }
    }

    private static void refused(Class<?> type, String part, Executable use) {
        Throwable thrown = assertThrows(Throwable.class, use, part);
        assertTrue(type.isInstance(thrown), thrown::toString);
        assertTrue(thrown.getMessage().contains(part), thrown::getMessage);
    }

    private static void missing(String parameter, Executable use) {
        refused(NullPointerException.class, parameter, use);
    }

    private static void beyond(String index, Executable use) {
        refused(IndexOutOfBoundsException.class, index, use);
    }

    private static void wrong(String part, Executable use) {
        refused(IllegalArgumentException.class, part, use);
    }

    @Test
    void whatMakesNoSenseIsRefused() {
        SparseMatrix kept = new SparseMatrix(ints(0, 1), ints(0, 1), doubles(1, 1));
        kept.beg()[0] = 7;
        SparseVector huge = new SparseVector(new int[1 << 20], new double[1 << 20]);
        Columns columns = Columns.of(1, 2), bad = columns.coefficients(kept);
        Rows rows = Rows.of(null, "<".toCharArray(), 1);
        Objective objective = model.objective();
        GeneralConstraints general = model.generalConstraints();
        missing("ind", () -> new SparseVector(null, 1));
        missing("beg", () -> matrix(null, ints()));
        missing("obj", () -> Columns.of((double[])null));
        missing("senses", () -> Rows.of(null, null, 1));
        missing("operands", () -> GeneralConstraint.and(0, (int[])null));
        missing("ind", () -> model.variables().delete((int[])null));
        missing("values", () -> model.set("LB", 0, (double[])null));
        missing("columns", () -> model.variables().add((Columns)null));
        missing("constraint", () -> general.add(null, ""));
        missing("text", () -> env.message(null));
        wrong("2 elements, not 1", () -> new SparseVector(ints(1), 1, 2));
        wrong("1 elements, not 2", () -> new Triplets(ints(1, 2), ints(1), 1, 2));
        wrong("0 elements, not 1", () -> matrix(ints(0), ints(0)));
        wrong("2 elements, not 1", () -> new Points(doubles(1), 2, 3));
        wrong("0 elements, not 1",
              () -> new GeneralConstraint.Tree(0, ints(1), doubles(), ints(1)));
        wrong("0 elements, not 1",
              () -> new GeneralConstraint.Tree(0, ints(1), doubles(1), ints()));
        wrong("1 elements, not 2", () -> new SpecialOrderedSets.Sets(ints(1), kept));
        wrong("0 elements, not 2", () -> columns.coefficients(matrix(ints(), ints())));
        wrong("3 elements, not 2", () -> columns.lower(1, 2, 3));
        wrong("1 elements, not 2", () -> columns.upper(1));
        wrong("0 elements, not 2", () -> columns.types(new char[0]));
        wrong("1 elements, not 2", () -> columns.names("x"));
        wrong("2 elements, not 1", () -> rows.names("x", "y"));
        wrong("2 elements, not 1", () -> Rows.of(kept, new char[1], 1));
        wrong("2 elements, not 1", () -> model.set("LB", ints(0), doubles(1, 2)));
        wrong("2 elements, not 1", () -> model.set("VarBasis", ints(0), ints(0, 0)));
        wrong("2 elements, not 1", () -> model.set("VarType", ints(0), new char[2]));
        wrong("2 elements, not 1", () -> model.set("VarName", ints(0), new String[2]));
        wrong("3 elements, not 4",
              () -> model.relaxFeasibility(0, false, doubles(1, 1, 1), null, null));
        wrong("3 elements, not 4",
              () -> model.relaxFeasibility(0, false, null, doubles(1, 1, 1), null));
        wrong("4 elements, not 3",
              () -> model.relaxFeasibility(0, false, null, null, doubles(1, 1, 1, 1)));
        wrong("either", () -> new Rows(null, new char[1], doubles(1), doubles(1), null));
        wrong("2147483648 entries", () -> SparseMatrix.of(Collections.nCopies(2048, huge)));
        wrong("beg[1] is 0", () -> matrix(ints(1, 0), ints(0), 1));
        wrong("beg[0] is -1", () -> matrix(ints(-1), ints(0), 1));
        wrong("last of beg is 2", () -> matrix(ints(2), ints(0), 1));
        wrong("less than 7", () -> model.variables().add(bad));
        wrong("less than 7", () -> model.constraints().add(Rows.of(kept, new char[2], 1, 1)));
        wrong("less than 7", () -> model.sos().add(new SpecialOrderedSets.Sets(ints(1, 1), kept)));
        wrong("less than 7", () -> KVXModel.load(env, "", 1, 0, bad, rows));
        wrong("no constraints", () -> new KVXModel(env, "", bad));
        wrong("rows with",
              () -> KVXModel.load(env, "", 1, 0, columns, Rows.ranges(null, doubles(1), 2)));
        wrong("U+0000", () -> model.variables().add(0, 1, 1, 'C', "a\0b"));
        wrong("U+0000", () -> model.set("VarName", 0, "\0"));
        wrong("U+0000", () -> model.set("VarName", 0, new String[] {"a", "\0"}));
        wrong("U+0000", () -> model.set("VarName", ints(0), new String[] {"\0"}));
        wrong("U+0000", () -> new KVXModel(env, "\0"));
        wrong("U+0000", () -> Goal.of(SparseVector.ones(1)).name("\0"));
        wrong("options", () -> general.add(GeneralConstraint.abs(0, 1), null, "x"));
        wrong("kind", () -> new GeneralConstraint.Function(KVX.GENCONSTR_MAX, 0, 1, 0));
        wrong("kind", () -> new GeneralConstraint.Aggregate(KVX.GENCONSTR_ABS, 0, ints(1), 0));
        wrong("no points", () -> objective.setPiecewiseLinear(0, new Points(doubles())));
        wrong("member", () -> model.sos().add(1, new SparseVector(ints())));
        wrong("count", () -> model.getInts("VarBasis", 0, -1));
        wrong("single", () -> model.getInts("NumVars"));
        beyond("-1", () -> model.getInts("VarBasis", -1, 1));
        beyond("2", () -> matrix(ints(0, 0), ints()).list(2));
        assertEquals("4 3", model.variables().count() + " " + model.constraints().count());
    }
}
