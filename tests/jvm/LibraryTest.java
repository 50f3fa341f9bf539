package com.korvex;

import static org.junit.jupiter.api.Assertions.*;

import java.io.*;
import java.lang.reflect.*;
import java.nio.file.*;
import java.util.*;
import java.util.regex.*;
import java.util.spi.ToolProvider;
import java.util.stream.*;
import org.junit.jupiter.api.Test;

/** The shared library as it lies on disk. */
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

    @Test
    void needsNoNewerCLibraryThanIsPromised() throws Exception {
        for (String line : Launch.of("objdump", "-T", LIBRARY.toString()).out()) {
            Matcher m = Pattern.compile("GLIBC_2\\.(\\d+)").matcher(line);
            assertTrue(!m.find() || Integer.parseInt(m.group(1)) <= 30, line);
        }
    }

    /** Whom the natives of KorvexJni are for: each is behind a method of another class. */
    @Test
    void everyNativeHasACheckedMethod() throws Exception {
        TreeSet<String> natives = Stream.of(KorvexJni.class.getDeclaredMethods())
                                      .filter(m -> Modifier.isNative(m.getModifiers()))
                                      .map(Method::getName)
                                      .collect(Collectors.toCollection(TreeSet::new));
        StringWriter listing = new StringWriter();
        try (FileSystem jar = FileSystems.newFileSystem(Launch.LIB.resolve("korvex.jar"));
             Stream<Path> classes = Files.list(jar.getPath("com/korvex"))) {
            Path directory = Files.createTempDirectory("classes");
            List<String> args = new ArrayList<>(List.of("-v", "-p"));
            for (Path type : (Iterable<Path>)classes::iterator)
                if (!type.endsWith("KorvexJni.class"))
                    args.add(Files.copy(type, directory.resolve("" + type.getFileName())) + "");
            ToolProvider.findFirst("javap").orElseThrow().run(
                new PrintWriter(listing), new PrintWriter(listing), args.toArray(new String[0]));
            for (String file : args.subList(2, args.size()))
                Files.delete(Path.of(file));
            Files.delete(directory);
        }
        Matcher use = Pattern.compile("com/korvex/KorvexJni\\.(\\w+):").matcher(listing + "");
        while (use.find())
            natives.remove(use.group(1));
        // The checked classes have threads of their own for asynchronous runs.
        assertEquals(Set.of("sync"), natives);
    }
}
