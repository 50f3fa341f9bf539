package com.korvex;

import static org.junit.jupiter.api.Assertions.*;
import static org.junit.jupiter.api.DynamicTest.dynamicTest;

import java.nio.file.*;
import java.util.*;
import java.util.stream.Stream;
import org.junit.jupiter.api.*;
import org.junit.jupiter.api.io.TempDir;

/** The command line of the solve program. */
class SolveTest {
    private static final Path MODELS = Path.of(System.getProperty("korvex.examples"), "models");
    private static final String BAKERY = MODELS.resolve("bakery.lp").toString();
    private static final String SHIFTS = MODELS.resolve("shifts.lp").toString();
    private static final String UNBOUNDED = "Maximize\n x + y\nSubject To\n c: x - y <= 1\nEnd\n";

    @TempDir static Path directory;

    private static String file(String name, String text) throws Exception {
        return Files.writeString(directory.resolve(name), text).toString();
    }

    @TestFactory
    Stream<DynamicTest> statusesAndExits() throws Exception {
        String[][] rows = {
            {"0", "optimal", BAKERY},
            {"0", "optimal", BAKERY, "--async", "--log", "--set", "method=0"},
            {"3", "infeasible", SHIFTS},
            {"3", "unbounded", file("unbounded.lp", UNBOUNDED), "--quiet"},
            {"4", "time_limit", "--time-limit", "0.2"},
            {"4", "node_limit", "--set", "NodeLimit=1", "--threads", "1"},
            {"4", "solution_limit", "--async", "--set", "SolutionLimit=1"},
        };
        return Stream.of(rows).map(
            row -> dynamicTest(row[1], () -> {
                Launch run = Launch.java("Solve", Arrays.copyOfRange(row, 2, row.length));
                assertEquals(row[0] + " " + row[1], run.status() + " " + run.value("Status"));
                assertEquals("", run.err());
                if (!row[1].equals("time_limit")) // then it depends on the machine
                    assertEquals(row[0].equals("3"), run.value("Objective").equals("-"));
                if (row[1].equals("optimal"))
                    assertEquals(1073.1891891891892, Double.parseDouble(run.value("Objective")),
                                 1e-6);
            }));
    }

    @TestFactory
    Stream<DynamicTest> badUsageIsSaidInOneLine() throws Exception {
        String damaged = file("damaged.lp", "Minimize\n x\nSubject To\n c: x >= >= 1\nEnd\n");
        String[][] rows = {
            {"--bogus", "--bogus"},
            {"needs a value", "--json"},
            {"more than one model", BAKERY, SHIFTS},
            {"NAME=VALUE", "--set", "Threads"},
            {"nonsense", BAKERY, "--set", "nonsense=1"},
            {"Threads", "--threads", "many"},
            {"TimeLimit", "--time-limit", "-1"},
            {"absent.mps", "absent.mps"},
            {"damaged.lp, line 4", damaged},
            {".mps or .lp", "model.xyz"},
            {".sol, .mst, .bas", "--write", "result.xyz"},
            {"/no/such/file: can't be written", "--json", "/no/such/file"},
            {"-bogus.lp: No such file", "--", "-bogus.lp"},
        };
        return Stream.of(rows).map(row -> dynamicTest(row[0], () -> {
                                       Launch run = Launch.java(
                                           "Solve", Arrays.copyOfRange(row, 1, row.length));
                                       assertEquals(2, run.status());
                                       assertEquals(List.of(), run.out());
                                       assertTrue(run.err().contains(row[0]), run.err());
                                       assertEquals(1, run.err().lines().count(), run.err());
                                   }));
    }

    @Test
    void helpNamesEveryOption() throws Exception {
        Launch help = Launch.java("Solve", "--help");
        assertEquals(0, help.status());
        assertEquals(help, Launch.java("Solve", "-h"));
        for (String option : List.of("--set", "--time-limit", "--threads", "--async", "--quiet",
                                     "--json", "--write", "--solution", "--plot", "--help"))
            assertTrue(help.text().contains(option), option);
    }

    @Test
    void resultFiles() throws Exception {
        String json = directory.resolve("result.json").toString();
        String solution = directory.resolve("result.sol").toString();
        Path plot = directory.resolve("result.svg");
        Launch run = Launch.java("Solve", BAKERY, "--json", json, "--write", solution, "--plot",
                                 plot.toString(), "--solution");
        assertEquals(0, run.status(), run.err());
        assertTrue(run.out().contains("  rye = 4"), run.text());
        // The axes and two lines, which end at the same height: the model is solved.
        String[] lines = Files.readString(plot).split("d=\"M");
        assertEquals(4, lines.length);
        String height = "(?s).*[V ]([\\d.]+)H800.*";
        assertEquals(lines[2].replaceAll(height, "$1"), lines[3].replaceAll(height, "$1"));
        assertTrue(Files.readString(Path.of(json)).contains("\"objective\": 1073.18"));
        assertTrue(Files.readString(Path.of(solution)).contains("white 24.3"));
        // A full disk.
        Launch full = Launch.java("Solve", BAKERY, "--json", "/dev/full");
        assertEquals("1 optimal", full.status() + " " + full.value("Status"));
        assertTrue(full.err().contains("/dev/full: No space left on device"), full.err());
        String command = String.join(" ", Launch.javaCommand(Launch.LIB, "Solve", BAKERY));
        Launch mute = Launch.of("sh", "-c", command + " > /dev/full");
        assertEquals(1, mute.status());
        assertTrue(mute.err().contains("the output can't be written"), mute.err());
    }

    @Test
    void aConflictIsNamed() throws Exception {
        Launch run = Launch.java("Solve", SHIFTS, "--iis", "--write", directory + "/none.sol");
        assertEquals("1 solve: there is no solution",
                     run.status() + " " + run.err().split(" \\(")[0]);
        String conflict = run.text().replace("\n", ";");
        assertTrue(conflict.contains("one of them:;  constraint demand_tue;  constraint demand_wed;"
                                     + "  constraint limit_eva;  constraint day_off;  bound "),
                   conflict);
    }

    @Test
    void anInterruptionStillReports() throws Exception {
        for (String mode : List.of("--async", "--log")) {
            Launch run = null; // later and later, until there is a solution to report
            for (int wait = 500; run == null || run.value("Objective").equals("-"); wait *= 2) {
                assertTrue(wait < 20_000, "no solution in time");
                int pause = wait;
                run = Launch.of(Launch.javaCommand(Launch.LIB, "Solve", mode), (process, out) -> {
                    while (!Files.readString(out).contains("Model:"))
                        Thread.sleep(20);
                    Thread.sleep(pause);
                    Launch.of("sh", "-c", "kill -INT " + process.pid());
                });
            }
            assertEquals("4 interrupted", run.status() + " " + run.value("Status"));
            double objective = Double.parseDouble(run.value("Objective"));
            assertTrue(objective >= 7830.925 && objective < 12000, run.value("Objective"));
            assertTrue(Double.parseDouble(run.value("Bound")) <= objective);
            assertEquals(mode.equals("--async"),
                         run.value("Callbacks").endsWith("on a thread of the run's own"));
        }
    }
}
