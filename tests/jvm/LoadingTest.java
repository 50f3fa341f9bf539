package com.korvex;

import static org.junit.jupiter.api.Assertions.*;

import java.io.*;
import java.net.*;
import java.nio.file.*;
import java.util.*;
import java.util.regex.*;
import java.util.stream.Stream;
import java.util.zip.*;
import org.junit.jupiter.api.*;
import org.junit.jupiter.api.io.TempDir;

/** Where the classes look for the native library. */
class LoadingTest {
    private static final String BRIDGE = "libkorvexjni130.so", SOLVER = "libkorvex130.so";

    /** Calls a native in class loaders of its own, and tells which libraries the process has. */
    static final class Probe {
        public static void main(String[] ways) throws Exception {
            for (String way : ways) {
                ClassLoader loader = way.equals("plain")     ? Probe.class.getClassLoader()
                                     : way.equals("another") ? new URLClassLoader(urls(), null)
                                                             : new Nested(Path.of(way));
                int[] version = new int[3];
                Class.forName("com.korvex.KorvexJni", true, loader)
                    .getMethod("version", int[].class)
                    .invoke(null, version);
                System.out.println(Arrays.toString(version));
            }
            for (String line : Files.readAllLines(Path.of("/proc/self/maps")))
                if (line.contains(" r-xp ") && line.contains(BRIDGE))
                    System.out.println(line.replaceFirst("[^/]*", ""));
        }

        private static URL[] urls() throws Exception {
            List<URL> urls = new ArrayList<>();
            for (String file : System.getProperty("java.class.path").split(":"))
                urls.add(Path.of(file).toUri().toURL());
            return urls.toArray(new URL[0]);
        }
    }

    /** Classes and resources out of jars in a jar. */
    private static final class Nested extends ClassLoader {
        private final Map<String, byte[]> contents = new HashMap<>();

        Nested(Path outer) throws IOException {
            super(null);
            try (ZipInputStream jars = new ZipInputStream(Files.newInputStream(outer))) {
                while (jars.getNextEntry() != null) {
                    ZipInputStream jar = new ZipInputStream(jars);
                    for (ZipEntry entry; (entry = jar.getNextEntry()) != null;)
                        contents.put(entry.getName(), jar.readAllBytes());
                }
            }
        }

        @Override
        protected Class<?> findClass(String name) throws ClassNotFoundException {
            byte[] code = contents.get(name.replace('.', '/') + ".class");
            if (code == null)
                throw new ClassNotFoundException(name);
            return defineClass(name, code, 0, code.length);
        }

        @Override
        public InputStream getResourceAsStream(String name) {
            byte[] content = contents.get(name);
            return content == null ? null : new ByteArrayInputStream(content);
        }
    }

    @TempDir Path directory;
    private Path jar, natives, empty, cache;

    @BeforeEach
    void lay() throws Exception {
        empty = Files.createDirectory(directory.resolve("empty"));
        cache = directory.resolve("cache of one user");
        jar = Files.copy(Launch.LIB.resolve("korvex.jar"), directory.resolve("korvex.jar"));
        String arch = System.getProperty("os.arch").replace("amd64", "x86_64");
        natives = zip("natives.jar", "com/korvex/natives/linux-" + arch + "/",
                      Launch.LIB.resolve(BRIDGE), Launch.LIB.resolve(SOLVER));
    }

    private Path zip(String name, String prefix, Path... files) throws IOException {
        Path zip = directory.resolve(name);
        try (ZipOutputStream out = new ZipOutputStream(Files.newOutputStream(zip))) {
            for (Path file : files) {
                out.putNextEntry(new ZipEntry(prefix + file.getFileName()));
                Files.copy(file, out);
            }
        }
        return zip;
    }

    private Path lay(String place) throws IOException {
        Path target = Files.createDirectories(directory.resolve(place));
        for (String file : List.of(BRIDGE, SOLVER))
            Files.copy(Launch.LIB.resolve(file), target.resolve(file));
        return target;
    }

    private List<String> command(String ways, String... options) {
        List<String> command = new ArrayList<>(
            List.of("env", "-u", "LD_LIBRARY_PATH", "-u", "LD_PRELOAD", Launch.JAVA,
                    "--enable-native-access=ALL-UNNAMED", "-Djava.library.path=" + empty,
                    "-Dcom.korvex.library.cache=" + cache));
        command.addAll(List.of(options));
        String probe = Launch.LIB.resolveSibling("tests").resolve("jvm_tests.jar").toString();
        command.addAll(List.of("-cp", jar + ":" + natives + ":" + probe, Probe.class.getName()));
        command.addAll(List.of(ways.split(",")));
        return command;
    }

    private List<String> loaded(String ways, String... options) throws Exception {
        Launch run = Launch.of(command(ways, options), (process, out) -> {});
        assertEquals(0, run.status(), run.err());
        return run.out().stream().filter(line -> line.startsWith("/")).toList();
    }

    /** The one library that was unpacked, which the jar's users share. */
    private Path unpacked() throws IOException {
        try (Stream<Path> files = Files.walk(cache)) {
            List<Path> all = files.filter(Files::isRegularFile).sorted().toList();
            Path place = all.get(0).getParent();
            assertEquals(List.of(place.resolve(SOLVER), place.resolve(BRIDGE)), all);
            return all.get(1);
        }
    }

    @Test
    void firstPlaceThatHasItIsTaken() throws Exception {
        assertEquals(loaded("plain"), List.of(unpacked().toString()));
        Path beside = lay("").resolve(BRIDGE);
        assertEquals(List.of(beside.toString()), loaded("plain"));
        Path inPath = lay("path").resolve(BRIDGE);
        String option = "-Djava.library.path=" + empty + ":" + inPath.getParent();
        assertEquals(List.of(inPath.toString()), loaded("plain", option));
        Path named = lay("named").resolve(BRIDGE);
        for (Path way : List.of(named, named.getParent()))
            assertEquals(List.of(named.toString()),
                         loaded("plain", option, "-Dcom.korvex.library.path=" + way));
    }

    @Test
    void failureTellsEachTryWithItsCause() throws Exception {
        Path lone = Files.copy(Launch.LIB.resolve(BRIDGE), empty.resolve(BRIDGE));
        Files.delete(natives);
        Launch run =
            Launch.of(command("plain", "-Dcom.korvex.library.path=nowhere"), (process, out) -> {});
        assertEquals(1, run.status());
        Matcher tries =
            Pattern
                .compile("(?s)" + BRIDGE + " can't be loaded:\n"
                         + "  com.korvex.library.path \\(nowhere\\): there is no file .*\n"
                         + "  java.library.path \\(.*\\): .*" + SOLVER + ": cannot open .*\n"
                         + "  beside the jar: there is no file .*\n"
                         + "  class path .*: no jar with natives of linux-.* is there\n"
                         + ".*LD_LIBRARY_PATH \\(null\\).*com.korvex.library.cache=.*")
                .matcher(run.err());
        assertTrue(tries.find(), run.err());
    }

    @Test
    void processesUnpackOnceAndMendWhatWasDamaged() throws Exception {
        List<Process> processes = new ArrayList<>();
        for (int k = 0; k < 2; k++)
            processes.add(new ProcessBuilder(command("plain")).redirectErrorStream(true).start());
        for (Process process : processes)
            assertEquals(0, process.waitFor());
        Object made = Files.getAttribute(unpacked(), "unix:ino");
        loaded("plain");
        assertEquals(made, Files.getAttribute(unpacked(), "unix:ino"));
        Files.write(unpacked(), new byte[5]);
        loaded("plain");
        assertEquals(-1, Files.mismatch(unpacked(), Launch.LIB.resolve(BRIDGE)));
    }

    @Test
    void eachClassLoaderHasALibraryOfItsOwn() throws Exception {
        Path nested = zip("nested.jar", "lib/", jar, natives);
        List<String> all = loaded("plain,another," + nested);
        assertTrue(all.contains(unpacked().toString()), all.toString());
        assertEquals(3, Set.copyOf(all).size(), all.toString());
    }
}
