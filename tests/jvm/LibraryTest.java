package com.korvex;

import static org.junit.jupiter.api.Assertions.*;

import java.io.*;
import java.lang.reflect.*;
import java.nio.file.*;
import java.util.*;
import java.util.jar.JarFile;
import java.util.regex.*;
import java.util.spi.ToolProvider;
import java.util.stream.*;
import org.junit.jupiter.api.Test;

/** The shared library as it lies on disk. */
class LibraryTest {
    private static final Path LIBRARY = Launch.LIB.resolve("libkorvexjni130.so");

    private static Set<String> natives(Class<?> type) {
        return Stream.of(type.getDeclaredMethods())
            .filter(m -> Modifier.isNative(m.getModifiers()))
            .map(Method::getName)
            .collect(Collectors.toCollection(TreeSet::new));
    }

    @Test
    void exportsAreTheDeclaredNatives() throws Exception {
        Set<String> declared = new TreeSet<>(), exported = new TreeSet<>();
        for (Class<?> type : List.of(KorvexJni.class, KVXModel.class, KVXEnv.class, KVXBatch.class))
            for (String name : natives(type))
                declared.add("Java_com_korvex_" + type.getSimpleName() + "_" + name);
        for (String line : Launch.of("nm", "-D", "--defined-only", LIBRARY.toString()).out())
            exported.add(line.replaceFirst(".* ", ""));
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
        Set<String> natives = natives(KorvexJni.class);
        StringWriter listing = new StringWriter();
        PrintWriter writer = new PrintWriter(listing);
        try (JarFile jar = new JarFile(Launch.LIB.resolve("korvex.jar").toFile())) {
            Stream<String> classes =
                jar.stream().map(Object::toString).filter(name -> name.endsWith(".class"));
            Stream<String> others = classes.filter(name -> !name.endsWith("/KorvexJni.class"))
                                        .map(name -> name.replaceFirst("[.]class$", ""));
            ToolProvider.findFirst("javap").orElseThrow().run(
                writer, writer,
                Stream.concat(Stream.of("-v", "-p", "-cp", jar.getName()), others)
                    .toArray(String[] ::new));
        }
        Matcher use = Pattern.compile("com/korvex/KorvexJni\\.(\\w+):").matcher(listing + "");
        while (use.find())
            natives.remove(use.group(1));
        // The checked classes have threads of their own for asynchronous runs.
        assertEquals(Set.of("sync"), natives);
    }
}
