package com.korvex;

import static org.junit.jupiter.api.Assertions.*;

import java.lang.reflect.Method;
import java.nio.file.*;
import java.util.*;
import org.junit.jupiter.api.Test;
import org.junit.jupiter.api.io.TempDir;
import org.junit.jupiter.params.ParameterizedTest;
import org.junit.jupiter.params.provider.ValueSource;

/** Lazy constraints through callbacks: tours by the tour program against independent answers. */
class TourTest {
    private static double[][] cities(int count, long seed) {
        Random random = new Random(seed);
        double[][] cities = new double[count][];
        for (int i = 0; i < count; i++)
            cities[i] = new double[] {random.nextInt(50), random.nextInt(50)};
        return cities;
    }

    /** Length of the tour that the program finds; it must pass every city. */
    private static double found(double[][] cities) throws Exception {
        Method shortest =
            Class.forName("Tour").getMethod("shortest", KVXEnv.class, double[][].class);
        try (KVXEnv env = Models.quietEnv()) {
            int[] order = (int[])shortest.invoke(null, env, cities);
            assertEquals(cities.length, Arrays.stream(order).distinct().count());
            double length = distance(cities, order[order.length - 1], order[0]);
            for (int i = 1; i < order.length; i++)
                length += distance(cities, order[i - 1], order[i]);
            return length;
        }
    }

    private static double distance(double[][] cities, int i, int j) {
        return Math.hypot(cities[i][0] - cities[j][0], cities[i][1] - cities[j][1]);
    }

    /** The shortest way from a city through all that aren't visited, and back to city 0. */
    private static double exhaustive(double[][] cities, int at, int visited) {
        if (visited == (1 << cities.length) - 1)
            return distance(cities, at, 0);
        double best = Double.MAX_VALUE;
        for (int next = 1; next < cities.length; next++)
            if ((visited & 1 << next) == 0)
                best = Math.min(best, distance(cities, at, next) +
                                          exhaustive(cities, next, visited | 1 << next));
        return best;
    }

    @ParameterizedTest
    @ValueSource(longs = {1, 2, 3, 4, 5, 6, 7, 8})
    void smallToursAreShortest(long seed) throws Exception {
        double[][] cities = cities(5 + (int)seed % 5, seed);
        assertEquals(exhaustive(cities, 0, 1), found(cities), 1e-6);
    }

    @Test
    void theProgramDraws(@TempDir Path directory) throws Exception {
        Path file = directory.resolve("tour.svg");
        Launch tour = Launch.java("Tour", "--cities", "12", "--out", file.toString());
        assertEquals(0, tour.status(), tour.err());
        String svg = Files.readString(file);
        assertEquals(12, svg.split("<circle ").length - 1);
        assertTrue(svg.contains("12 cities, length " + tour.value("Length").substring(0, 5)), svg);
        assertEquals(2, Launch.java("Tour", "--cities", "2").status());
    }
}
