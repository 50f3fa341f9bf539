package com.korvex;

import static org.junit.jupiter.api.Assertions.*;

import java.lang.reflect.*;
import java.nio.file.*;
import java.util.*;
import java.util.regex.*;
import java.util.stream.*;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/** The shared library as it lies on disk, and how it is loaded. */
class LibraryTest {
    private static final Path LIBRARY = Launch.LIB.resolve("libkorvexjni130.so");

    @Test
    void exportsAreTheDeclaredNatives() throws Exception {
        Set<String> declared =
            Stream.of(KorvexJni.class, KVXModel.class, KVXEnv.class, KVXBatch.class)
                .flatMap(c -> Stream.of(c.getDeclaredMethods()))
                .filter(m -> Modifier.isNative(m.getModifiers()))
                .map(m
                     -> "Java_com_korvex_" + m.getDeclaringClass().getSimpleName() + "_" +
                            m.getName())
                .collect(Collectors.toCollection(TreeSet::new));
        Set<String> exported = Launch.of("nm", "-D", "--defined-only", LIBRARY.toString())
                                   .out()
                                   .stream()
                                   .map(line -> line.replaceFirst(".* ", ""))
                                   .collect(Collectors.toCollection(TreeSet::new));
        assertEquals(declared, exported);
        assertEquals(155, exported.size());
    }

    @Test
    void needsNothingButTheCLibraryAndTheSolverBesideIt() throws Exception {
        TreeSet<String> entries = new TreeSet<>();
        for (String line : Launch.of("readelf", "-d", LIBRARY.toString()).out()) {
            Matcher m = Pattern.compile("\\((NEEDED|RUNPATH|RPATH)\\).*\\[(.*)\\]").matcher(line);
            if (m.find())
                entries.add(m.group(1) + " " + m.group(2));
        }
        assertEquals(Set.of("NEEDED libc.so.6", "NEEDED libkorvex130.so", "RUNPATH $ORIGIN"),
                     entries);
    }

    /** The parts of the solver's header, one after the other. */
    private static String header() throws Exception {
        StringBuilder text = new StringBuilder();
        try (Stream<Path> parts = Files.list(Path.of(System.getProperty("korvex.header")))) {
            for (Path part : (Iterable<Path>)parts::iterator)
                text.append(Files.readString(part));
        }
        return text.toString();
    }

    @Test
    void constantsAreThoseOfTheHeader() throws Exception {
        TreeMap<String, Double> defined = new TreeMap<>();
        Matcher m = Pattern.compile("(?m)^#define KVX_(\\w+) +\\(?('.'|[-0-9.e]+)\\)?( .*)?$")
                        .matcher(header());
        while (m.find())
            defined.put(m.group(1), m.group(2).startsWith("'") ? (double)m.group(2).charAt(1)
                                                               : Double.parseDouble(m.group(2)));
        defined.keySet().removeAll(Set.of("INTERFACE_JAVA", "TEXT_SIZE")); // of the bridge alone
        TreeMap<String, Double> java = new TreeMap<>();
        for (Field field : KVX.class.getFields()) {
            Object value = field.get(null);
            java.put(field.getName(), value instanceof Character ? (double)(Character)value
                                                                 : ((Number)value).doubleValue());
        }
        Set<Object> differences = new HashSet<>(defined.entrySet());
        differences.addAll(java.entrySet());
        differences.removeIf(
            entry -> defined.entrySet().contains(entry) && java.entrySet().contains(entry));
        assertEquals(Set.of(), differences);
    }

    @Test
    void missingLibrariesAreNamedWithTheWayOut(@TempDir Path empty) throws Exception {
        Launch missing = Launch.of(Launch.javaCommand(empty, "Solve"), (process, out) -> {});
        assertEquals(1, missing.status());
        assertTrue(missing.err().contains("libkorvexjni130.so is in no directory of "
                                          + "java.library.path (" + empty),
                   missing.err());
        // The bridge without the solver beside it.
        Files.copy(LIBRARY, empty.resolve(LIBRARY.getFileName()));
        Launch alone = Launch.of(Launch.javaCommand(empty, "Solve"), (process, out) -> {});
        assertEquals(1, alone.status());
        assertTrue(alone.err().contains("libkorvex130.so, must lie beside it or in a directory of "
                                        + "the environment variable LD_LIBRARY_PATH"),
                   alone.err());
    }
}
