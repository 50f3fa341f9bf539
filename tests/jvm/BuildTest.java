package com.korvex;

import static org.junit.jupiter.api.Assertions.*;
import static org.junit.jupiter.api.DynamicTest.dynamicTest;

import java.lang.reflect.Array;
import java.util.*;
import java.util.stream.*;
import org.junit.jupiter.api.*;

/** What is built through the natives is read back as it was. */
class BuildTest {
    private static final int UNTOUCHED = -77;

    private KVXEnv env;
    private KVXModel model;
    private long handle;

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
        env = Models.quietEnv();
        model = new KVXModel(env, "built");
        handle = model.handle();
        ok("addvars", handle, 4, 0, new int[4], null, null, new double[] {1, -1, 0, 2}, null,
           new double[] {9, 9, 9, KVX.INFINITY}, "CBIC".toCharArray(),
           new String[] {"w", "x", null, "z"});
        ok("addconstrs", handle, 2, 3, new int[] {0, 2}, new int[] {0, 1, 2},
           new double[] {1, 2, 3}, "<>".toCharArray(), null, new double[] {10, 1},
           new String[] {"top", null});
        ok("addconstrs", handle, 1, 2, new int[] {0}, new int[] {0, 3}, new double[] {4, 5},
           new char[1], new double[] {2}, new double[] {8}, null);
    }

    @AfterEach
    void close() {
        model.close();
        env.close();
    }

    private void ok(String name, Object... args) {
        assertEquals(0, Natives.call(name, args),
                     () -> name + ": " + KorvexJni.geterrormsg(KorvexJni.getenv(handle)));
    }

    private static Object[] join(Object[]... parts) {
        return Stream.of(parts).flatMap(Stream::of).toArray();
    }

    /** A slot for a value, or for an array of the same length, filled with a mark. */
    private static Object slotFor(Object value) {
        int length = value.getClass().isArray() ? Array.getLength(value) : 1;
        Class<?> type = value instanceof Integer || value instanceof int[]      ? int.class
                        : value instanceof Character || value instanceof char[] ? char.class
                                                                                : double.class;
        Object slot = Array.newInstance(type, length);
        for (int i = 0; i < length && type != char.class; i++)
            Array.set(slot, i, UNTOUCHED);
        return slot;
    }

    private static void assertHolds(Object expected, Object slot) {
        if (!expected.getClass().isArray())
            assertEquals(expected, Array.get(slot, 0));
        else if (expected instanceof int[])
            assertArrayEquals((int[])expected, (int[])slot);
        else
            assertArrayEquals((double[])expected, (double[])slot);
    }

    @TestFactory
    Stream<DynamicTest> generalConstraints() {
        int[] ops = {0, 1, 2};
        double[] ascending = {-1, 0, 2.5};
        // What the adder takes after model and name; the reader gives it back.
        Object[][] kinds = {
            {"max", 3, 3, ops, 4.5},
            {"min", 3, 2, new int[] {2, 0}, -KVX.INFINITY},
            {"abs", 3, 2},
            {"and", 1, 3, ops},
            {"or", 1, 1, new int[] {1}},
            {"norm", 3, 3, ops, KVX.INFINITY},
            {"indicator", 1, 0, 2, new int[] {3, 0}, new double[] {1.5, -2}, '>', 7.25},
            {"pwl", 0, 3, 3, ascending, new double[] {3, 1, 1}},
        };
        return Stream.of(kinds).map(
            row -> dynamicTest((String)row[0], () -> {
                Object[] data = List.of(row).subList(1, row.length).toArray();
                Object[] named = {handle, "name of " + row[0]};
                ok("addgenconstr" + row[0], join(named, data));
                Object[] slots = Stream.of(data).map(BuildTest::slotFor).toArray();
                int index = model.getInt("NumGenConstrs") - 1;
                ok("getgenconstr" + row[0], join(new Object[] {handle, index}, slots));
                for (int i = 0; i < data.length; i++)
                    assertHolds(data[i], slots[i]);
                // Nothing asked for, another kind, no such constraint.
                Object[] nothing = new Object[slots.length];
                ok("getgenconstr" + row[0], join(new Object[] {handle, index}, nothing));
                ok("addgenconstrabs", handle, null, 0, 1);
                if (!row[0].equals("abs"))
                    assertEquals(KVX.ERROR_INVALID_ARGUMENT,
                                 Natives.call("getgenconstr" + row[0],
                                              join(new Object[] {handle, index + 1}, nothing)));
                assertEquals("name of " + row[0], model.getStrings("GenConstrName", index, 1)[0]);
                assertEquals(List.of(kinds).indexOf(row),
                             model.getInts("GenConstrType", index, 1)[0]);
            }));
    }

    /** What the development solver can't solve it doesn't take, and says what it is. */
    @Test
    void whatIsRefusedIsNamed() {
        int[] one = {0};
        double[] number = {1};
        Object[][] refused = {
            {"addqconstr", 0, null, null, 1, one, one, number, '\u013c', 6.5, "N"},
            {"addgenconstrnorm", "N", 3, 1, one, 2.0},
            {"addgenconstrpoly", "N", 0, 3, 1, number, "options"},
            {"addgenconstrexp", "N", 0, 3, ""},
            {"addgenconstrexpa", "N", 0, 3, "o", 3.0},
            {"addgenconstrlog", "N", 0, 3, "o"},
            {"addgenconstrloga", "N", 0, 3, "o", 10.0},
            {"addgenconstrpow", "N", 0, 3, "o", 0.5},
            {"addgenconstrsin", "N", 0, 3, "o"},
            {"addgenconstrcos", "N", 2, 0, "o"},
            {"addgenconstrtan", "N", 0, 3, "o"},
            {"addgenconstrlogistic", "N", 0, 3, "o"},
            {"addgenconstrnl", "N", 3, 1, new int[] {KVX.NL_VARIABLE}, number, new int[] {-1}},
            {"addqpterms", 1, one, one, number},
        };
        for (Object[] row : refused) {
            Object[] data = Arrays.copyOfRange(row, 1, row.length);
            assertEquals(KVX.ERROR_NOT_SUPPORTED,
                         Natives.call((String)row[0], join(new Object[] {handle}, data)),
                         () -> "" + row[0]);
            String text = KorvexJni.geterrormsg(KorvexJni.getenv(handle));
            assertTrue(text.contains(row[0].equals("addqpterms") ? "quadratic" : "N"), text);
        }
        assertEquals(0, model.getInt("NumGenConstrs") + model.getInt("NumQConstrs") +
                            model.getInt("NumQNZs"));
    }

    /** Readers that fill arrays only if the caller's room suffices. */
    @TestFactory
    Stream<DynamicTest> capacityHandshakes() {
        ok("addsos", handle, 2, 5, new int[] {1, 2}, new int[] {0, 2}, new int[] {0, 1, 1, 2, 3},
           new double[] {1, 2, 1, 2, 3});
        ok("setpwlobj", handle, 3, 3, new double[] {0, 1, 5}, new double[] {0, 2, 3});
        Object[] none = {};
        // Name, arguments before the slots, the count and the arrays, arguments after them.
        Object[][][] readers = {
            {{"getsos"},
             none,
             {5, new int[] {1, 2}, new int[] {0, 2, 5}, new int[] {0, 1, 1, 2, 3},
              new double[] {1, 2, 1, 2, 3}},
             {0, 2}},
            {{"getsos"},
             none,
             {3, new int[] {2}, new int[] {0, 3}, new int[] {1, 2, 3}, new double[] {1, 2, 3}},
             {1, 1}},
            {{"getpwlobj"}, {3}, {3, new double[] {0, 1, 5}, new double[] {0, 2, 3}}, none},
            {{"getconstrs"},
             none,
             {3, new int[] {0, 1}, new int[] {2, 0, 3}, new double[] {3, 4, 5}},
             {1, 2}},
            {{"getvars"},
             none,
             {4, new int[] {0, 2, 3}, new int[] {0, 2, 0, 1}, new double[] {1, 4, 2, 3}},
             {0, 3}},
        };
        // The fixture is built anew for this factory, not for each of its tests: they only read.
        return Stream.of(readers).map(
            row -> dynamicTest((String)row[0][0], () -> {
                Object[] data = row[2];
                int count = (int)data[0];
                for (int room : new int[] {0, count - 1, count, count + 1}) {
                    Object[] slots = Stream.of(data).map(BuildTest::slotFor).toArray();
                    Array.set(slots[0], 0, room);
                    ok((String)row[0][0], join(new Object[] {handle}, row[1], slots, row[3]));
                    assertHolds(count, slots[0]);
                    for (int i = 1; i < data.length; i++)
                        assertHolds(room < count ? slotFor(data[i]) : data[i], slots[i]);
                }
            }));
    }

    @Test
    void rowsKeepTheirKindOfBounds() {
        assertEquals(
            "[<, >]",
            List.of(model.getChars("Sense", 0, 1)[0], model.getChars("Sense", 1, 1)[0]).toString());
        assertArrayEquals(new double[] {-KVX.INFINITY, 1, 2}, model.getDoubles("RowLower", 0, 3));
        assertArrayEquals(new double[] {10, KVX.INFINITY, 8}, model.getDoubles("RowUpper", 0, 3));
        double[] value = new double[1];
        ok("getcoeff", handle, 2, 3, value);
        assertEquals(5, value[0]);
        ok("chgcoeffs", handle, 2, new int[] {2, 0}, new int[] {3, 2}, new double[] {0, 6});
        assertEquals(5, model.getInt("NumNZs"));
        int[] index = {UNTOUCHED};
        ok("getvarbyname", handle, "z", index);
        assertEquals(3, index[0]);
        assertEquals(KVX.ERROR_NOT_FOUND, Natives.call("getconstrbyname", handle, "z", index));
        assertEquals(3, index[0]);
    }

    @Test
    void wholeModelEqualsTheOneBuiltPieceByPiece() {
        // The columns lie out of order, with an entry that belongs to none.
        long loaded = KorvexJni.loadmodel(
            env.handle(), "loaded", 4, 3, KVX.MAXIMIZE, 2.5, new double[] {1, -1, 0, 2},
            "<>=".toCharArray(), new double[] {10, 1, 8}, new int[] {4, 3, 0, 1},
            new int[] {2, 1, 1, 1}, new int[] {1, 2, 99, 0, 0, 2}, new double[] {3, 5, 99, 2, 1, 4},
            new double[4], new double[] {9, 9, 9, KVX.INFINITY}, "CBIC".toCharArray(),
            new String[] {"a", "b", "c", "d"}, new String[] {"p", "q", "r"});
        try (KVXModel whole = KVXModel.adopt(env, loaded)) {
            assertEquals(columns(handle), columns(loaded));
            assertEquals("loaded MAX 2.5", whole.getString("ModelName") +
                                               (whole.getInt("ModelSense") < 0 ? " MAX " : " ") +
                                               whole.getDouble("ObjCon"));
            assertArrayEquals(new String[] {"p", "q", "r"}, whole.getStrings("ConstrName", 0, 3));
        }
        // Lengths that would write outside of the compacted copy.
        for (int[] len : new int[][] {{-1}, {Integer.MAX_VALUE, Integer.MAX_VALUE}}) {
            int n = len.length;
            double[] zeros = new double[n];
            assertEquals(0, KorvexJni.loadmodel(env.handle(), null, n, 0, 1, 0, zeros, new char[0],
                                                new double[0], new int[n], len, new int[1],
                                                new double[1], zeros, zeros, new char[n],
                                                new String[] {"a", "b"}, new String[0]));
        }
    }

    private List<Object> columns(long of) {
        int[] count = {99}, beg = new int[4], ind = new int[5];
        double[] val = new double[5];
        ok("getvars", of, count, beg, ind, val, 0, 4);
        List<Object> all = new ArrayList<>(List.of(count[0]));
        IntStream.of(beg).forEach(all::add);
        IntStream.of(ind).forEach(all::add);
        for (double v : val)
            all.add(v);
        return all;
    }

    @Test
    void deletionRenumbers() {
        ok("addsos", handle, 2, 3, new int[] {1, 2}, new int[] {0, 1}, new int[] {3, 0, 2},
           new double[] {1, 1, 2});
        for (String name : new String[] {"first", "second"})
            ok("addgenconstrabs", handle, name, 3, 0);
        for (String kind : new String[] {"sos", "genconstrs"}) {
            ok("del" + kind, handle, 1, new int[] {0});
            assertEquals(KVX.ERROR_INDEX_OUT_OF_RANGE,
                         Natives.call("del" + kind, handle, 1, new int[] {1}));
        }
        assertEquals("second", model.getStrings("GenConstrName", 0, 1)[0]);
        ok("delsos", handle, 1, new int[] {0});
        ok("delqconstrs", handle, 0, null);
        ok("delgenconstrs", handle, 1, new int[] {0});
        ok("delvars", handle, 2, new int[] {2, 0});
        ok("delconstrs", handle, 1, new int[] {1});
        assertEquals("[x, z]", List.of(model.getStrings("VarName", 0, 2)).toString());
        int[] count = {9}, beg = new int[2], ind = new int[2];
        double[] val = new double[2];
        ok("getconstrs", handle, count, beg, ind, val, 0, 2);
        assertArrayEquals(new int[] {0, 1}, beg);
        assertArrayEquals(new int[] {0, 1}, ind);
        assertArrayEquals(new double[] {2, 5}, val);
    }

    @Test
    void objectives() {
        ok("setobjective", handle, KVX.MAXIMIZE, 2, new int[] {3, 1}, new double[] {7, 8}, 0, null,
           null, null, -3.5);
        assertArrayEquals(new double[] {0, 8, 0, 7}, model.getDoubles("Obj", 0, 4));
        assertEquals("-1 -3.5", model.getInt("ModelSense") + " " + model.getDouble("ObjCon"));
        ok("delq", handle);
        for (int i = 0; i < 2; i++)
            ok("setobjectiven", handle, i, 2 - i, "goal" + i, 1, new int[] {i},
               new double[] {10 + i}, 0.5, 1.0, 0.0, 0.0);
        assertEquals(2, model.getInt("NumObj"));
        model.set("ObjNumber", 1);
        assertArrayEquals(new double[] {0, 11, 0, 0}, model.getDoubles("ObjN", 0, 4));
        assertNotEquals(0, KorvexJni.setobjectiven(handle, 5, 0, null, 0, null, null, 0, 1, 0, 0));
    }
}
