package com.korvex;

import static org.junit.jupiter.api.Assertions.*;
import static org.junit.jupiter.api.DynamicTest.dynamicTest;

import java.lang.reflect.Array;
import java.util.stream.Stream;
import org.junit.jupiter.api.*;

/** Attributes of all types in all shapes, and parameters of all types. */
class AttributeTest {
    /** Five equal variables. */
    private static KVXModel model(KVXEnv env) {
        return KVXModel.adopt(env, KorvexJni.newmodel(new int[1], env.handle(), "five", 5,
                                                      new double[5], new double[5], new double[5],
                                                      "CCCCC".toCharArray(), new String[5]));
    }

    private static void ok(String method, Object... args) throws Exception {
        assertEquals(0, Natives.call(method, args), method);
    }

    private static void assertHolds(Object array, Object... expected) {
        for (int i = 0; i < expected.length; i++)
            assertEquals(expected[i], Array.get(array, i), "element " + i);
    }

    @TestFactory
    Stream<DynamicTest> everyTypeInEveryShape() {
        // Type, attribute of variables with three values, attribute of the model with one.
        Object[][] rows = {
            {"int", "VarBasis", new int[] {-1, -2, -3}, "ModelSense", -1},
            {"dbl", "LB", new double[] {-1.5, -KVX.INFINITY, 0}, "ObjCon", 2.25},
            {"char", "VarType", new char[] {'I', '\u0142', 'S'}, null, null},
            {"str", "VarName", new String[] {"p", "q r", "\u00e4\u4e2d"}, "ModelName", "m\u00fc"},
        };
        return Stream.of(rows).map(
            row -> dynamicTest((String)row[0], () -> {
                String get = "get" + row[0] + "attrlist", set = "set" + row[0] + "attrlist";
                Object values = row[2], of =
                                            Array.newInstance(values.getClass().componentType(), 3);
                try (KVXEnv env = Models.quietEnv(); KVXModel model = model(env)) {
                    long m = model.handle();
                    Object a = Array.get(values, 0), c = Array.get(values, 2);
                    Object b = row[0].equals("char") ? (Object)'B' : Array.get(values, 1);
                    int[] none = null;
                    ok(set, m, row[1], 1, 3, none, values); // 1 2 3 = a b c
                    ok(get, m, row[1], -1, 3, new int[] {3, 1, 2}, of);
                    assertHolds(of, c, a, b);
                    ok(set, m, row[1], -1, 2, new int[] {4, 1}, of); // 4 1 = c a
                    ok(get, m, row[1], 2, 3, none, of);
                    assertHolds(of, b, c, c);
                    ok(set, m, row[1], 2, 0, none, values); // 2 = a
                    ok(get, m, row[1], 2, 0, none, of);
                    assertHolds(of, a, c, c); // only element 0 of the slot is written
                    assertEquals(KVX.ERROR_INDEX_OUT_OF_RANGE,
                                 Natives.call(get, m, row[1], 3, 3, none, of));
                    assertHolds(of, a, c, c);
                    if (row[3] == null)
                        return;
                    Array.set(of, 0, row[4]);
                    ok(set, m, row[3], 7, -1, none, of);
                    Array.set(of, 0, a);
                    ok(get, m, row[3], 7, -1, none, of);
                    assertHolds(of, row[4], c, c);
                }
            }));
    }

    @Test
    void whatAttributesAreLike() {
        try (KVXEnv env = Models.quietEnv(); KVXModel model = model(env)) {
            long m = model.handle();
            String[] names = {"a", null, "c"};
            assertEquals(KVX.ERROR_INVALID_ARGUMENT,
                         KorvexJni.setstrattrlist(m, "VarName", 0, 3, null, names));
            assertEquals("C0", model.getStrings("VarName", 0, 1)[0]); // all or nothing
            int[] info = new int[3];
            assertEquals(0, KorvexJni.getattrinfo(m, "X", info));
            assertArrayEquals(new int[] {KVX.TYPE_DOUBLE, KVX.OF_VARIABLE, 0}, info);
            assertEquals(0, KorvexJni.prefetchattr(m, "X"));
        }
    }

    @Test
    void parameters() {
        try (KVXEnv env = Models.quietEnv()) {
            String name = "/tmp/"
                          + "long".repeat(200) + "\u00e9"; // needs more than one buffer
            KVXParams params = env.params();
            params.set("ResultFile", name);
            params.set("TimeLimit", 12.5);
            params.parse("threads", "3");
            assertEquals(name, params.getString("resultfile"));
            assertEquals("12.5 3", params.getDouble("TimeLimit") + " " + params.getInt("Threads"));
            assertEquals(
                KVX.ERROR_VALUE_OUT_OF_RANGE,
                assertThrows(KVXException.class, () -> params.set("Threads", -1)).status());
            int[] ints = new int[4];
            double[] doubles = new double[4];
            String[] texts = new String[2];
            assertEquals(0, KorvexJni.getintparaminfo(env.handle(), "Threads", ints));
            assertArrayEquals(new int[] {3, 0, 1024, 0}, ints);
            assertEquals(0, KorvexJni.getdblparaminfo(env.handle(), "MIPGap", doubles));
            assertArrayEquals(new double[] {1e-4, 0, 1e100, 1e-4}, doubles);
            assertEquals(0, KorvexJni.getstrparaminfo(env.handle(), "ResultFile", texts));
            assertTrue(name.startsWith(texts[0]) && texts[0].length() > 500, texts[0]);
            assertEquals("", texts[1]);
            params.reset();
            assertEquals("", params.getString("ResultFile"));
        }
    }
}
