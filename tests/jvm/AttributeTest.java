package com.korvex;

import static org.junit.jupiter.api.Assertions.*;

import java.lang.invoke.MethodType;
import java.lang.reflect.*;
import java.nio.file.*;
import java.util.List;
import java.util.regex.*;
import java.util.stream.*;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.MethodSource;

/** Attributes of all types in all shapes, and parameters of all types. */
class AttributeTest extends EnvCase {
    /** Five equal variables. */
    private KVXModel model() {
        return new KVXModel(env, "five", Columns.of(new double[5]).upper(new double[5]));
    }

    /** Calls a method that there is for all types of values. */
    private static Object call(KVXModel model, String name, Object... args) throws Exception {
        Class<?>[] types = Stream.of(args)
                               .map(a -> MethodType.methodType(a.getClass()).unwrap().returnType())
                               .toArray(Class<?>[] ::new);
        return KVXModel.class.getMethod(name, types).invoke(model, args);
    }

    static Object[][] types() {
        // Type, attribute of variables with three values, attribute of the model with one.
        return new Object[][] {
            {"Int", "VarBasis", new int[] {-1, -2, -3}, "ModelSense", -1},
            {"Double", "LB", new double[] {-1.5, -KVX.INFINITY, 0}, "ObjCon", 2.25},
            {"Char", "VarType", new char[] {'I', 'B', 'S'}, null, null},
            {"String", "VarName", new String[] {"p", "q r", "\u00e4\u4e2d"}, "ModelName",
             "m\u00fc"},
        };
    }

    @ParameterizedTest
    @MethodSource("types")
    void everyTypeInEveryShape(String type, String name, Object abc, String single, Object value)
        throws Exception {
        String get = "get" + type, gets = get + "s";
        Object a = Array.get(abc, 0), b = Array.get(abc, 1), c = Array.get(abc, 2);
        try (KVXModel model = model()) {
            call(model, "set", name, 1, abc); // 1 2 3 = a b c
            Object cab = call(model, gets, name, new int[] {3, 1, 2});
            assertEquals(List.of(c, a, b) + "", Models.show(cab));
            call(model, "set", name, new int[] {4, 1, 0}, cab); // 4 1 0 = c a b
            call(model, "set", name, 2, a);
            assertEquals(List.of(a, c) + "", Models.show(call(model, gets, name, 2, 2)));
            assertEquals(List.of(b, a, a, c, c) + "", Models.show(call(model, gets, name)));
            assertEquals(b, call(model, get, name, 0));
            assertEquals("[]", Models.show(call(model, gets, name, 5, 0)));
            assertEquals("[]", Models.show(call(model, gets, name, new int[0])));
            for (Object[] beyond : new Object[][] {{name, 3, 3}, {name, new int[] {-1}}}) {
                Throwable refused =
                    assertThrows(InvocationTargetException.class, () -> call(model, gets, beyond));
                Models.fails(KVX.ERROR_INDEX_OUT_OF_RANGE, () -> { throw refused.getCause(); });
            }
            if (single == null)
                return;
            call(model, "set", single, value);
            assertEquals(value, call(model, get, single));
        }
    }

    @Test
    void whatAttributesAreLike() {
        try (KVXModel model = model()) {
            Models.fails(KVX.ERROR_INVALID_ARGUMENT,
                         () -> model.set("VarName", 0, new String[] {"a", null, "c"}));
            assertEquals("C0", model.getString("VarName", 0)); // all or nothing
            Models.fails(KVX.ERROR_UNKNOWN_ATTRIBUTE, () -> model.set("Nothing", 0, new int[0]));
            model.prefetch("X");
            Models.fails(KVX.ERROR_UNKNOWN_ATTRIBUTE, () -> model.prefetch("Y"));
            // A whole number for a double attribute.
            model.set("ObjCon", 3);
            model.set("UB", 4, 1);
            assertEquals("3.0 1.0", model.getDouble("ObjCon") + " " + model.getDouble("UB", 4));
            // An array so long is made only if the model fills it.
            assertThrows(IndexOutOfBoundsException.class,
                         () -> model.getInts("VarBasis", 0, 1 << 30));
        }
    }

    /** What a class of constants says about each name, split up by a pattern. */
    private static List<MatchResult> documented(String type, String pattern) throws Exception {
        Path source = Path.of(System.getProperty("korvex.constants"), type + ".java");
        Matcher m =
            Pattern.compile("/\\*\\* \"(\\w+)\": " + pattern).matcher(Files.readString(source));
        List<MatchResult> found = m.results().toList();
        assertEquals(Class.forName("com.korvex." + type).getFields().length, found.size());
        return found;
    }

    @Test
    void documentationTellsWhatTheLibraryTells() throws Exception {
        List<String> types = List.of("", "int", "double", "string", "char");
        List<String> elements = List.of("model", "variable", "constraint", "sos",
                                        "quadratic constraint", "general constraint");
        try (KVXModel model = model()) {
            for (MatchResult m :
                 documented("KVXAttribute", "(\\w+) of a ([\\w ]+)(, can be set)?\\.")) {
                if (!m.group(3).equals("batch"))
                    assertEquals(new AttributeInfo(types.indexOf(m.group(2)),
                                                   elements.indexOf(m.group(3)),
                                                   m.group(4) != null),
                                 model.attributeInfo(m.group(1)), m.group(1));
            }
            env.params().reset();
            for (MatchResult m :
                 documented("KVXParameter",
                            "(\\w+), (?:any text|from (\\S+) to (\\S+)), (\\S+) by default")) {
                String name = m.group(1), standard = m.group(5).replace("\"", "");
                if (m.group(2).equals("string"))
                    assertEquals(new KVXParams.StringInfo(standard, standard),
                                 env.params().stringInfo(name), name);
                else
                    assertEquals(new KVXParams.DoubleInfo(number(standard), number(m.group(3)),
                                                          number(m.group(4)), number(standard)),
                                 info(m.group(2), name), name);
            }
        }
    }

    private KVXParams.DoubleInfo info(String type, String name) {
        if (type.equals("double"))
            return env.params().doubleInfo(name);
        KVXParams.IntInfo i = env.params().intInfo(name);
        return new KVXParams.DoubleInfo(i.value(), i.minimum(), i.maximum(), i.standard());
    }

    private static double number(String text) {
        return text.equals("2^31-1") ? Integer.MAX_VALUE : Double.parseDouble(text);
    }

    @Test
    void parameters(@TempDir Path directory) {
        String name = "/tmp/"
                      + "long".repeat(200) + "\u00e9"; // needs more than one buffer
        KVXParams params = env.params();
        params.set("ResultFile", name);
        params.set("TimeLimit", 12.5);
        params.parse("threads", "3");
        assertEquals(name, params.getString("resultfile"));
        assertEquals("12.5 3", params.getDouble("TimeLimit") + " " + params.getInt("Threads"));
        KVXException refused = assertThrows(KVXException.class, () -> params.set("Threads", -1));
        assertEquals(KVX.ERROR_VALUE_OUT_OF_RANGE, refused.status());
        assertTrue(refused.getMessage().contains("Threads"), refused::getMessage);
        assertEquals("3 12.5", params.intInfo("Threads").value() + " " +
                                   params.doubleInfo("TimeLimit").value());
        String cut = params.stringInfo("ResultFile").value();
        assertTrue(name.startsWith(cut) && cut.length() > 500, cut);
        String file = directory.resolve("some.prm").toString();
        params.write(file);
        params.reset();
        assertEquals("", params.getString("ResultFile"));
        params.read(file);
        assertEquals(3, params.getInt("Threads"));
        String log = directory.resolve("nowhere/log").toString();
        refused = assertThrows(KVXException.class, () -> new KVXEnv(log));
        assertTrue(refused.getMessage().contains(log), refused::getMessage);
    }

    @Test
    void versionAndFileNames() {
        assertEquals(
            new KVXEnv.Version(KVX.VERSION_MAJOR, KVX.VERSION_MINOR, KVX.VERSION_TECHNICAL),
            KVXEnv.version());
        String[] names = {"a.mps", "a.LP.gz", "a.sol", "a.mst.bz2", "a.bas", "a.prm", "a.json"};
        assertEquals("MPS LP SOLUTION START BASIS PARAMETERS ",
                     Stream.of(names)
                         .map(name -> FileFormat.of(name).map(f -> f + " ").orElse(""))
                         .collect(Collectors.joining()));
    }
}
