package com.korvex;

import java.nio.charset.StandardCharsets;
import java.nio.file.*;
import java.util.*;
import java.util.concurrent.TimeUnit;
import java.util.stream.Stream;

/** A program that ran: its exit status and what it wrote. */
record Launch(int status, List<String> out, String err) {
    static final Path LIB = Path.of(System.getProperty("java.library.path"));
    static final String JAVA = Path.of(System.getProperty("java.home"), "bin", "java").toString();

    /** What a test does to the program while it runs. */
    interface Meddling {
        void with(Process process, Path out) throws Exception;
    }

    static Launch of(String... command) throws Exception {
        return of(List.of(command), (process, out) -> {});
    }

    static Launch of(List<String> command, Meddling meddling) throws Exception {
        return in(Path.of("."), command, meddling);
    }

    /** All that it wrote. */
    String text() { return String.join("\n", out); }

    private static Launch in(Path directory, List<String> command, Meddling meddling)
        throws Exception {
        Path out = Files.createTempFile("launch", ".out");
        Path err = Files.createTempFile("launch", ".err");
        try {
            Process process = new ProcessBuilder(command)
                                  .directory(directory.toFile())
                                  .redirectOutput(out.toFile())
                                  .redirectError(err.toFile())
                                  .start();
            meddling.with(process, out);
            if (!process.waitFor(120, TimeUnit.SECONDS)) {
                process.destroyForcibly();
                throw new AssertionError(command + " doesn't end");
            }
            String text = new String(Files.readAllBytes(out), StandardCharsets.UTF_8);
            return new Launch(process.exitValue(), text.lines().toList(),
                              Files.readString(err, StandardCharsets.UTF_8));
        } finally {
            Files.delete(out);
            Files.delete(err);
        }
    }

    /** Runs an example program with this virtual machine's settings. */
    static Launch java(String main, String... args) throws Exception {
        return of(javaCommand(LIB, main, args), (process, out) -> {});
    }

    /** Runs a test program; fails if the virtual machine complains about calls through JNI. */
    static Launch fresh(Path directory, List<String> options, String main, Object... args)
        throws Exception {
        List<String> command = new ArrayList<>(List.of(System.getProperty("korvex.checked"), JAVA));
        command.addAll(options);
        command.addAll(List.of("--enable-native-access=ALL-UNNAMED", "-Djava.library.path=" + LIB,
                               "-cp", System.getProperty("korvex.classes"), main));
        for (Object arg : args)
            command.add(arg.toString());
        return in(directory, command, (process, out) -> {});
    }

    static List<String> javaCommand(Path library, String main, String... args) {
        List<String> command =
            List.of(JAVA, "--enable-native-access=ALL-UNNAMED", "-Djava.library.path=" + library,
                    "-Dkorvex.examples=" + System.getProperty("korvex.examples"), "-cp",
                    LIB.resolve("korvex.jar") + ":" + LIB + "/*", main);
        return Stream.of(command, List.of(args)).flatMap(List::stream).toList();
    }

    /** The rest of the line that begins with a label. */
    String value(String label) {
        for (String line : out)
            if (line.startsWith(label + ": "))
                return line.substring(label.length() + 2);
        throw new AssertionError("no line \"" + label + ":\" in " + out + err);
    }
}
