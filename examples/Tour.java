import com.korvex.Columns;
import com.korvex.KVX;
import com.korvex.KVXAttribute;
import com.korvex.KVXCallbackContext;
import com.korvex.KVXEnv;
import com.korvex.KVXException;
import com.korvex.KVXModel;
import com.korvex.KVXParameter;
import com.korvex.Rows;
import com.korvex.SparseMatrix;
import com.korvex.SparseVector;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Locale;
import java.util.Random;

/**
 * Finds a shortest tour through cities and draws it. The model has a binary variable for the way
 * between every two cities and says that each city lies on two ways. That allows several small
 * tours in place of one: whenever the solver finds such a solution, a callback adds constraints
 * that forbid these small tours, and the search goes on.
 */
public final class Tour {
    // clang-format off
    private static final String USAGE = String.join("\n",
        "Usage: tour [OPTION VALUE]...",
        "Finds a shortest tour through cities at random points and draws it.",
        "",
        "  --cities N      number of cities, from 3 to 200; 40 by default",
        "  --seed S        another set of points; 1 by default",
        "  --time-limit S  end after S seconds, with the best tour so far",
        "  --out FILE      the drawing; tour.svg by default",
        "  -h, --help      show this",
        "",
        "Exit status: 0 optimal, 1 failure, 2 bad usage, 4 time limit.");
    // clang-format on

    private final double[][] cities;
    private int forbidden;
    private boolean optimal;

    private Tour(double[][] cities) { this.cities = cities; }

    /**
     * Runs the program.
     *
     * @param args the command line
     */
    public static void main(String[] args) {
        Locale.setDefault(Locale.ROOT);
        int count = 40;
        long seed = 1;
        double timeLimit = KVX.INFINITY;
        Path out = Path.of("tour.svg");
        try {
            for (int i = 0; i < args.length; i += 2) {
                if (args[i].equals("--help") || args[i].equals("-h")) {
                    System.out.println(USAGE);
                    return;
                }
                String value = i + 1 < args.length ? args[i + 1] : "";
                switch (args[i]) {
                case "--cities":
                    count = Integer.parseInt(value);
                    break;
                case "--seed":
                    seed = Long.parseLong(value);
                    break;
                case "--time-limit":
                    timeLimit = Double.parseDouble(value);
                    break;
                case "--out":
                    out = Path.of(value);
                    break;
                default:
                    throw new IllegalArgumentException("unknown option " + args[i]);
                }
            }
            if (count < 3 || count > 200)
                throw new IllegalArgumentException("--cities must be from 3 to 200");
        } catch (IllegalArgumentException e) {
            System.err.println("tour: " + e.getMessage() + "; see --help");
            System.exit(2);
        }

        Tour tour = new Tour(points(count, seed));
        try (KVXEnv env = KVXEnv.empty()) {
            env.params().set(KVXParameter.LOG_TO_CONSOLE, 0);
            env.params().set(KVXParameter.TIME_LIMIT, timeLimit);
            env.start();
            int[] order = tour.shortest(env);
            System.out.println("Small tours forbidden: " + tour.forbidden);
            System.out.println("Status: " + (tour.optimal ? "optimal" : "time_limit"));
            if (order != null) {
                System.out.println("Length: " + tour.length(order));
                Files.writeString(out, tour.draw(order));
                System.out.println("Drawing: " + out);
            }
        } catch (KVXException | IOException | UnsatisfiedLinkError e) {
            System.err.println("tour: " + e.getMessage());
            System.exit(1);
        }
        System.exit(tour.optimal ? 0 : 4);
    }

    private static double[][] points(int count, long seed) {
        Random random = new Random(seed);
        double[][] points = new double[count][];
        for (int i = 0; i < count; i++)
            points[i] = new double[] {100 * random.nextDouble(), 100 * random.nextDouble()};
        return points;
    }

    /**
     * Finds a shortest tour through cities.
     *
     * @param env the environment to solve in
     * @param cities x and y of each, at least three
     * @return the cities' numbers in the order of the tour, or null if a limit was reached first
     */
    public static int[] shortest(KVXEnv env, double[][] cities) {
        return new Tour(cities).shortest(env);
    }

    private int[] shortest(KVXEnv env) {
        try (KVXModel model = build(env)) {
            model.params().set(KVXParameter.LAZY_CONSTRAINTS, 1);
            model.setCallback(this::forbidSmallTours);
            model.optimize();
            optimal = model.getInt(KVXAttribute.STATUS) == KVX.STATUS_OPTIMAL;
            if (model.getInt(KVXAttribute.SOL_COUNT) == 0)
                return null;
            return walk(model.getDoubles(KVXAttribute.X), new boolean[size()], 0);
        }
    }

    private int size() { return cities.length; }

    private double distance(int i, int j) {
        return Math.hypot(cities[i][0] - cities[j][0], cities[i][1] - cities[j][1]);
    }

    private double length(int[] order) {
        double length = 0;
        for (int i = 0; i < order.length; i++)
            length += distance(order[i], order[(i + 1) % order.length]);
        return length;
    }

    /** The variable of the way between two cities. */
    private int way(int i, int j) {
        int low = Math.min(i, j), high = Math.max(i, j);
        return low * size() - low * (low + 1) / 2 + high - low - 1;
    }

    private KVXModel build(KVXEnv env) {
        int n = size(), ways = n * (n - 1) / 2;
        double[] lengths = new double[ways], twos = new double[n];
        char[] equal = new char[n];
        String[] names = new String[ways];
        List<SparseVector> waysOfCities = new ArrayList<>();
        for (int i = 0; i < n; i++) {
            int[] ind = new int[n - 1];
            for (int j = 0; j < n; j++) {
                if (j == i)
                    continue;
                ind[j < i ? j : j - 1] = way(i, j);
                lengths[way(i, j)] = distance(i, j);
                names[way(i, j)] = "way_" + Math.min(i, j) + "_" + Math.max(i, j);
            }
            waysOfCities.add(SparseVector.ones(ind));
        }
        Arrays.fill(twos, 2);
        Arrays.fill(equal, KVX.EQUAL);
        KVXModel model =
            new KVXModel(env, "tour", Columns.of(lengths).allOf(KVX.BINARY).names(names));
        model.constraints().add(Rows.of(SparseMatrix.of(waysOfCities), equal, twos));
        return model;
    }

    private void forbidSmallTours(KVXCallbackContext context) {
        if (context.where() != KVX.CB_MIPSOL)
            return;
        double[] x = context.getVector(KVX.CB_MIPSOL_SOL);
        boolean[] seen = new boolean[size()];
        for (int start = 0; start < size(); start++)
            if (!seen[start])
                forbid(walk(x, seen, start), context);
    }

    /** Among the cities of a small tour there must be fewer ways than it needs. */
    private void forbid(int[] tour, KVXCallbackContext context) {
        if (tour.length == size())
            return;
        int[] ind = new int[tour.length * (tour.length - 1) / 2];
        double[] ones = new double[ind.length];
        Arrays.fill(ones, 1);
        int at = 0;
        for (int i = 0; i < tour.length; i++)
            for (int j = 0; j < i; j++)
                ind[at++] = way(tour[i], tour[j]);
        context.addLazy(ind, ones, KVX.LESS_EQUAL, tour.length - 1);
        forbidden++;
    }

    /** Follows the chosen ways from a city until they lead back, and marks the cities. */
    private int[] walk(double[] x, boolean[] seen, int start) {
        int[] tour = new int[size()];
        int count = 0;
        for (int city = start; city >= 0;) {
            seen[city] = true;
            tour[count++] = city;
            int next = -1;
            for (int j = 0; j < size(); j++)
                if (j != city && !seen[j] && x[way(city, j)] > 0.5)
                    next = j;
            city = next;
        }
        return Arrays.copyOf(tour, count);
    }

    private String draw(int[] order) {
        StringBuilder line = new StringBuilder(), dots = new StringBuilder();
        for (int city : order) {
            String x = String.format("%.1f", 8 * cities[city][0]);
            String y = String.format("%.1f", 8 * cities[city][1]);
            line.append(x).append(',').append(y).append(' ');
            dots.append("<circle cx=\"").append(x).append("\" cy=\"").append(y);
            dots.append("\" r=\"5\"><title>city ").append(city).append("</title></circle>\n");
        }
        return "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"-20 -20 840 880\" "
            + "font-family=\"sans-serif\">\n<rect x=\"-20\" y=\"-20\" width=\"840\" "
            + "height=\"880\" fill=\"#fbfaf7\"/>\n<polygon points=\"" + line.toString().trim() +
            "\" fill=\"#e8eef4\" stroke=\"#2b5d8a\" stroke-width=\"3\" "
            + "stroke-linejoin=\"round\"/>\n<g fill=\"#b5442d\">\n" + dots + "</g>\n"
            + "<text x=\"0\" y=\"842\" font-size=\"22\" fill=\"#333\">" +
            String.format("%d cities, length %.2f%s", order.length, length(order),
                          optimal ? "" : " (not proven shortest)") +
            "</text>\n</svg>\n";
    }
}
