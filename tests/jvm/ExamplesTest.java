package com.korvex;

import static org.junit.jupiter.api.Assertions.*;
import static org.junit.jupiter.api.DynamicTest.dynamicTest;

import java.nio.file.*;
import java.util.List;
import java.util.regex.*;
import java.util.stream.Stream;
import org.junit.jupiter.api.*;
import org.junit.jupiter.api.io.TempDir;

/** The examples of a screen, and the program in README. */
class ExamplesTest {
    @TestFactory
    Stream<DynamicTest> examplesPrintWhatTheyFind() {
        String[][] rows = {
            {"FromArrays", "Cost: 1707.5", "plant0_market1: 300"},
            {"Cancel", "Cancelled: true", "Bound: 7"},
            {"Conflict", "together:\n  work\n  contract_ann\n  contract_bob\nOpt",
             "violation: 5.0 hours, then the cost is 1475.0"},
            {"Batch", "\"objective\": 1073.18"},
            {"Tableau", "wood: chairs -0.120", "wood: tables +0.080", "worth: 1.00"},
            {"Portfolio", "shares: 24.9 %", "deviation: 6.86 %"},
        };
        return Stream.of(rows).map(row -> dynamicTest(row[0], () -> {
                                       Launch run = Launch.java(row[0]);
                                       assertEquals("0 ", run.status() + " " + run.err());
                                       for (String part : List.of(row).subList(1, row.length))
                                           assertTrue(run.text().contains(part), run.text());
                                   }));
    }

    @Test
    void theProgramInReadmeRunsAsItSays(@TempDir Path directory) throws Exception {
        Path readme = Path.of(System.getProperty("korvex.examples")).resolveSibling("README.md");
        Matcher program =
            Pattern.compile("(?s)```java\n(.*?)```.*?```console\n\\$ java [^\n]*\n(.*?)```")
                .matcher(Files.readString(readme));
        assertTrue(program.find());
        Path source = Files.writeString(directory.resolve("Bakery.java"), program.group(1));
        Launch run = Launch.java(source.toString());
        assertEquals("0 ", run.status() + " " + run.err());
        // The log in between tells times.
        String said = program.group(2).replaceAll("[\\d.]+ seconds", "");
        assertEquals(said, run.text().replaceAll("[\\d.]+ seconds", "") + "\n");
    }
}
