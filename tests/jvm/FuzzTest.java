package com.korvex;

import static org.junit.jupiter.api.Assertions.assertTrue;

import java.lang.management.ManagementFactory;
import java.nio.charset.StandardCharsets;
import java.nio.file.*;
import java.util.*;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;

/** A few seconds of {@link Fuzz} in a virtual machine of its own; {@code ./run fuzz} does more. */
class FuzzTest {
    /** Returns how many calls were made. */
    private static long fuzz(Path directory, boolean checked, long seed, long seconds, long calls)
        throws Exception {
        Path notes = directory.resolve("notes"), error = directory.resolve("hs_err");
        List<String> options = List.of("-Xmx1g", "-XX:-CreateCoredumpOnCrash",
                                       "-XX:ErrorFile=" + error, checked ? "-Xcheck:jni" : "-ea");
        Path files = Files.createDirectories(directory.resolve("files"));
        Launch child = Launch.of(files, options, Fuzz.class, seed, seconds, calls, notes);
        String text = child.out();
        if (child.status() != 0) // the end of what it said, what it called, and where it crashed
            throw new AssertionError("status " + child.status() + "\n" +
                                     text.substring(Math.max(0, text.length() - 20_000)) + "\n" +
                                     Files.readString(notes).replaceAll("\0+", "\n") +
                                     (Files.exists(error) ? Files.readString(error) : ""));
        return Long.parseLong(text.replaceFirst("(?s).*?(\\d+) calls$", "$1"));
    }

    @Test
    void hostileCallsAreAnswered(@TempDir Path directory) throws Exception {
        boolean checked =
            ManagementFactory.getRuntimeMXBean().getInputArguments().contains("-Xcheck:jni");
        assertTrue(fuzz(directory, checked, 1, 6, Long.MAX_VALUE) > 100);
    }

    /** Arguments: a number of calls, or of seconds, as in 60s; and a seed. A third is checked. */
    public static void main(String[] args) throws Exception {
        String amount = args.length > 0 ? args[0] : "60s";
        long seed = args.length > 1 ? Long.parseLong(args[1]) : System.nanoTime();
        boolean timed = amount.endsWith("s");
        long wanted = Long.parseLong(amount.replace("s", "")), done = 0, made = 0;
        long begun = System.nanoTime();
        Random seeds = new Random(seed);
        for (int part = 0; done < wanted; part++) {
            Path directory = Files.createTempDirectory("fuzz");
            long seconds = timed ? Math.min(30, wanted - done) : 30;
            made += fuzz(directory, part % 3 == 2, seed, seconds,
                         timed ? Long.MAX_VALUE : wanted - done);
            done = timed ? (System.nanoTime() - begun) / 1_000_000_000 : made;
            System.out.println(made + " calls without a finding; the last began with seed " + seed);
            new ProcessBuilder("rm", "-r", directory.toString()).start().waitFor();
            seed = seeds.nextLong();
        }
    }
}
