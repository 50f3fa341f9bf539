package com.korvex;

import java.io.IOException;
import java.io.InputStream;
import java.net.*;
import java.nio.file.*;
import java.security.*;
import java.util.*;
import java.util.regex.*;

/**
 * Finds the native library and loads it, from the first of these places where that succeeds: the
 * file or directory that the system property {@code com.korvex.library.path} names, the directories
 * of {@code java.library.path}, the directory of the jar, the class path, where the jar of a
 * platform holds it.
 */
final class NativeLibrary {
    private static final String NAME = "korvexjni130";
    private static final String FILE = System.mapLibraryName(NAME);
    private static final String SOLVER_FILE = "libkorvex130.so";
    private static final String PATH_PROPERTY = "com.korvex.library.path";
    private static final String CACHE_PROPERTY = "com.korvex.library.cache";

    /** One way to load the library. */
    private interface Way {
        void go() throws IOException;
    }

    private final StringBuilder tried = new StringBuilder();

    private NativeLibrary() {}

    static void load() {
        NativeLibrary library = new NativeLibrary();
        String path = System.getProperty(PATH_PROPERTY);
        if (library.loads(PATH_PROPERTY + " (" + path + ")", () -> loadFile(named(path))))
            return;
        String systemPath = System.getProperty("java.library.path");
        if (library.loads("java.library.path (" + systemPath + ")", () -> System.loadLibrary(NAME)))
            return;
        if (library.loads("beside the jar", () -> loadFile(besideJar())))
            return;
        String resources = "com/korvex/natives/" + platform() + "/";
        if (library.loads("class path (" + resources + FILE + ")",
                          () -> loadFile(unpacked(resources))))
            return;
        throw new UnsatisfiedLinkError(
            FILE + " can't be loaded:" + library.tried + "\nName its directory with java -D" +
            PATH_PROPERTY + "=DIRECTORY. The solver, " + SOLVER_FILE +
            ", must lie beside it or in a directory of the environment variable LD_LIBRARY_PATH (" +
            System.getenv("LD_LIBRARY_PATH") + "). Libraries in jars are unpacked into a cache, " +
            System.getProperty(CACHE_PROPERTY, "korvex in the user's cache directory") +
            "; if nothing may be executed there, name another directory with -D" + CACHE_PROPERTY +
            "=DIRECTORY.");
    }

    private boolean loads(String place, Way way) {
        try {
            try {
                way.go();
            } catch (UnsatisfiedLinkError e) {
                loadCopyOfLoaded(e);
            }
            return true;
        } catch (IOException | InvalidPathException | UnsatisfiedLinkError e) {
            tried.append("\n  ").append(place).append(": ").append(e.getMessage());
            return false;
        }
    }

    private static void loadFile(Path file) throws IOException {
        if (!Files.isRegularFile(file))
            throw new IOException("there is no file " + file);
        System.load(file.toAbsolutePath().toString());
    }

    /** A file belongs to the class loader that loaded it; another class loader gets a copy. */
    private static void loadCopyOfLoaded(UnsatisfiedLinkError error) throws IOException {
        Matcher loaded =
            Pattern.compile("Native Library (.+) already loaded in another classloader")
                .matcher(String.valueOf(error.getMessage()));
        if (!loaded.matches())
            throw error;
        Path copy = Files.createTempFile(cache(), "copy", FILE);
        try {
            Files.copy(Path.of(loaded.group(1)), copy, StandardCopyOption.REPLACE_EXISTING);
            System.load(copy.toString());
        } finally {
            Files.delete(copy); // the mapped pages stay
        }
    }

    private static Path named(String path) throws IOException {
        if (path == null)
            throw new IOException("isn't set");
        Path named = Path.of(path);
        return Files.isDirectory(named) ? named.resolve(FILE) : named;
    }

    private static Path besideJar() throws IOException {
        CodeSource source = NativeLibrary.class.getProtectionDomain().getCodeSource();
        URL location = source == null ? null : source.getLocation();
        if (location == null || !location.getProtocol().equals("file"))
            throw new IOException("the classes come from no directory, but from " + location);
        try {
            return Path.of(location.toURI()).toRealPath().resolveSibling(FILE);
        } catch (URISyntaxException e) {
            throw new IOException("the classes come from no valid address: " + e.getMessage());
        }
    }

    /** As the jars are called: linux-x86_64, linux-aarch64. */
    private static String platform() {
        String arch = System.getProperty("os.arch");
        return System.getProperty("os.name").toLowerCase(Locale.ROOT) + "-" +
            (arch.equals("amd64") ? "x86_64" : arch);
    }

    /**
     * Unpacks the library, and the solver if that is there, too, into a directory named after their
     * content, so that nothing is ever replaced while it is in use.
     */
    private static Path unpacked(String resources) throws IOException {
        Map<String, byte[]> contents = new LinkedHashMap<>();
        for (String name : List.of(FILE, SOLVER_FILE)) {
            try (InputStream in =
                     NativeLibrary.class.getClassLoader().getResourceAsStream(resources + name)) {
                if (in != null)
                    contents.put(name, in.readAllBytes());
            }
        }
        if (!contents.containsKey(FILE))
            throw new IOException("no jar with natives of " + platform() + " is there");
        Path directory = cache().resolve(hash(contents));
        Files.createDirectories(directory);
        for (Map.Entry<String, byte[]> entry : contents.entrySet())
            write(directory.resolve(entry.getKey()), entry.getValue());
        return directory.resolve(FILE);
    }

    private static Path cache() throws IOException {
        try {
            return Files.createDirectories(cacheDirectory());
        } catch (IOException e) {
            throw new IOException("can't make a directory: " + e);
        }
    }

    private static Path cacheDirectory() {
        String named = System.getProperty(CACHE_PROPERTY);
        if (named != null)
            return Path.of(named);
        String caches = System.getenv("XDG_CACHE_HOME");
        return caches != null && !caches.isEmpty()
            ? Path.of(caches, "korvex")
            : Path.of(System.getProperty("user.home"), ".cache", "korvex");
    }

    private static String hash(Map<String, byte[]> contents) {
        try {
            MessageDigest digest = MessageDigest.getInstance("SHA-256");
            contents.values().forEach(digest::update);
            return HexFormat.of().formatHex(digest.digest());
        } catch (NoSuchAlgorithmException e) {
            throw new AssertionError("every Java platform has SHA-256", e);
        }
    }

    /**
     * Leaves a file that is as it should be; makes any other anew, in one step for all who look.
     */
    private static void write(Path file, byte[] content) throws IOException {
        if (Files.isRegularFile(file) && Arrays.equals(Files.readAllBytes(file), content))
            return;
        Path made = Files.createTempFile(file.getParent(), "new", null);
        try {
            Files.write(made, content);
            Files.move(made, file, StandardCopyOption.ATOMIC_MOVE);
        } finally {
            Files.deleteIfExists(made);
        }
    }
}
