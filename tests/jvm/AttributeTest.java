package com.korvex;

import static org.junit.jupiter.api.Assertions.*;

import java.lang.invoke.MethodType;
import java.lang.reflect.*;
import java.nio.file.*;
import java.util.*;
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
    private static Object call(KVXModel model, String name, Object... args) throws Throwable {
        Class<?>[] types = Stream.of(args)
                               .map(a -> MethodType.methodType(a.getClass()).unwrap().returnType())
                               .toArray(Class<?>[] ::new);
        try {
            return KVXModel.class.getMethod(name, types).invoke(model, args);
        } catch (InvocationTargetException e) {
            throw e.getCause();
        }
    }

    private static void holds(Object array, Object... elements) {
        assertEquals("[" + List.of(elements) + "]", Arrays.deepToString(new Object[] {array}));
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
        throws Throwable {
        String get = "get" + type, gets = get + "s";
        Object a = Array.get(abc, 0), b = Array.get(abc, 1), c = Array.get(abc, 2);
        try (KVXModel model = model()) {
            call(model, "set", name, 1, abc); // 1 2 3 = a b c
            Object cab = call(model, gets, name, new int[] {3, 1, 2});
            holds(cab, c, a, b);
            call(model, "set", name, new int[] {4, 1, 0}, cab); // 4 1 0 = c a b
            call(model, "set", name, 2, a);
            holds(call(model, gets, name, 2, 2), a, c);
            holds(call(model, gets, name), b, a, a, c, c);
            assertEquals(b, call(model, get, name, 0));
            holds(call(model, gets, name, 5, 0));
            holds(call(model, gets, name, new int[0]));
            int beyond = KVX.ERROR_INDEX_OUT_OF_RANGE;
            fails(beyond, () -> call(model, gets, name, 3, 3));
            fails(beyond, () -> call(model, gets, name, new int[] {-1}));
            if (single == null)
                return;
            call(model, "set", single, value);
            assertEquals(value, call(model, get, single));
        }
    }

    @Test
    void whatAttributesAreLike() {
        try (KVXModel model = model()) {
            String[] incomplete = {"a", null, "c"};
            fails(KVX.ERROR_INVALID_ARGUMENT, () -> model.set("VarName", 0, incomplete));
            assertEquals("C0", model.getString("VarName", 0)); // all or nothing
            fails(KVX.ERROR_UNKNOWN_ATTRIBUTE, () -> model.set("Nothing", 0, new int[0]));
            model.prefetch("X");
            fails(KVX.ERROR_UNKNOWN_ATTRIBUTE, () -> model.prefetch("Y"));
            // A whole number for a double attribute.
            model.set("ObjCon", 3);
            model.set("UB", 4, 1);
            assertEquals("3.0 1.0", model.getDouble("ObjCon") + " " + model.getDouble("UB", 4));
            // An array so long is made only if the model fills it.
            fails(KVX.ERROR_INDEX_OUT_OF_RANGE, () -> model.getInts("VarBasis", 1, 0x7fffffff));
            assertThrows(IndexOutOfBoundsException.class,
                         () -> model.getStrings("VarName", 1 << 31, 0x7fffffff));
        }
    }

    /** What a class of constants says about each name, split up by a pattern. */
    private static List<MatchResult> documented(String type, String pattern) throws Exception {
        Path source = Path.of(System.getProperty("korvex.constants"), type + ".java");
        String text = Files.readString(source).replace("2^31-1", Integer.MAX_VALUE + "");
        List<MatchResult> found =
            Pattern.compile("/\\*\\* \"(\\w+)\": " + pattern).matcher(text).results().toList();
        assertEquals(Class.forName("com.korvex." + type).getFields().length, found.size());
        return found;
    }

    private static List<Double> numbers(Object told) {
        Matcher m = Pattern.compile("-?\\d[-\\deE.]*").matcher(told.toString());
        return m.results().map(number -> Double.valueOf(number.group())).toList();
    }

    @Test
    void documentationTellsWhatTheLibraryTells() throws Exception {
        List<String> types = List.of("", "int", "double", "string", "char");
        List<String> elements = List.of("model", "variable", "constraint", "sos",
                                        "quadratic constraint", "general constraint");
        KVXParams params = env.params();
        params.reset();
        try (KVXModel model = model()) {
            String pattern = "(\\w+) of a ([\\w ]+)(, can be set)?\\.";
            for (MatchResult m : documented("KVXAttribute", pattern)) {
                int type = types.indexOf(m.group(2)), element = elements.indexOf(m.group(3));
                if (!m.group(3).equals("batch"))
                    assertEquals(new AttributeInfo(type, element, m.group(4) != null),
                                 model.attributeInfo(m.group(1)), m.group(1));
            }
        }
        String pattern = "(\\w+), (?:any text|from (\\S+) to (\\S+)), (\\S+) by default";
        for (MatchResult m : documented("KVXParameter", pattern)) {
            String name = m.group(1), standard = m.group(5);
            Object info = switch (m.group(2)) {
                case "int" -> params.intInfo(name);
                case "double" -> params.doubleInfo(name);
                default -> params.stringInfo(name);
            };
            List<String> values = Arrays.asList(standard, m.group(3), m.group(4), standard);
            assertEquals(numbers(values), numbers(info), name);
        }
    }

    @Test
    void parameters(@TempDir Path directory) {
        String name = "/" + "long".repeat(200) + "\u00e9"; // needs more than one buffer
        KVXParams params = env.params();
        params.set("ResultFile", name);
        params.set("TimeLimit", 12.5);
        params.parse("threads", "3");
        assertEquals(name, params.getString("resultfile"));
        assertEquals("12.5 3", params.getDouble("TimeLimit") + " " + params.getInt("Threads"));
        KVXException refused = assertThrows(KVXException.class, () -> params.set("Threads", -1));
        assertEquals(KVX.ERROR_VALUE_OUT_OF_RANGE, refused.status());
        assertTrue(refused.getMessage().contains("Threads"), refused::getMessage);
        assertEquals(List.of(3.0, 0.0, 1024.0, 0.0), numbers(params.intInfo("Threads")));
        assertEquals(12.5, params.doubleInfo("TimeLimit").value());
        KVXParams.StringInfo cut = params.stringInfo("ResultFile");
        assertTrue(name.startsWith(cut.value()) && cut.value().length() > 500, cut.value());
        assertEquals("", cut.standard());
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
        KVXEnv.Version version = KVXEnv.version();
        assertEquals(List.of(KVX.VERSION_MAJOR, KVX.VERSION_MINOR, KVX.VERSION_TECHNICAL),
                     List.of(version.major(), version.minor(), version.technical()));
        Object[] formats =
            Stream.of("a.mps", "a.LP.gz", "a.sol", "a.mst.bz2", "a.bas", "a.prm", "a.json")
                .flatMap(name -> FileFormat.of(name).stream())
                .toArray();
        assertEquals("[MPS, LP, SOLUTION, START, BASIS, PARAMETERS]", Arrays.toString(formats));
    }
}
