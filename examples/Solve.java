import com.korvex.FileFormat;
import com.korvex.KVX;
import com.korvex.KVXEnv;
import com.korvex.KVXException;
import com.korvex.KVXModel;
import java.io.IOException;
import java.math.BigDecimal;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import java.util.concurrent.CountDownLatch;
import java.util.function.DoubleSupplier;
import java.util.function.IntFunction;

/** Solves a model file, shows the progress that callbacks report, and prints the result. */
public final class Solve {
    // clang-format off
    private static final String USAGE = String.join("\n",
        "Usage: solve [MODEL] [OPTION]...",
        "Solves a model file (.mps or .lp, also .gz or .bz2); by default one of a facility location.",
        "",
        "  --set NAME=VALUE  set a parameter of the solver; may be given several times",
        "  --time-limit S    end after S seconds",
        "  --threads N       use N threads",
        "  --async           solve on a thread of the run's own and wait for it",
        "  --quiet           show no progress",
        "  --log             show the solver's log",
        "  --solution        print the variables that aren't 0",
        "  --plot FILE       draw best objective value and bound over the time, as SVG",
        "  --json FILE       write the solution as JSON",
        "  --write FILE      write the solution (.sol), start (.mst), basis (.bas) or model",
        "  --iis             name the constraints and bounds that make a model infeasible",
        "  -h, --help        show this",
        "  --                end of the options: a model's name may begin with '-' after it",
        "",
        "Exit status: 0 optimal, 1 failure, 2 bad usage or unreadable model, 3 infeasible or",
        "unbounded, 4 ended by a limit or an interruption (Ctrl-C).");
    // clang-format on

    /** The words for the values of the attribute "Status", from KVX.STATUS_LOADED on. */
    private static final List<String> WORDS = List.of(
        "error", "optimal", "infeasible", "unbounded", "infeasible_or_unbounded", "time_limit",
        "node_limit", "iteration_limit", "solution_limit", "interrupted", "numeric");

    private static final String MODELS = ".mps or .lp, plain or with .gz or .bz2";

    private static final class UsageException extends Exception {
        private static final long serialVersionUID = 1;

        UsageException(String message) { super(message); }
    }

    private String modelFile =
        Path.of(System.getProperty("korvex.examples", "examples"), "models", "facilities.mps")
            .toString();
    private final List<String[]> parameters = new ArrayList<>();
    private boolean async, quiet, log, iis, solution;
    private String jsonFile, resultFile, plotFile;

    private final Progress progress = new Progress();
    private final Chart chart = new Chart();
    private final CountDownLatch reported = new CountDownLatch(1);
    private volatile int exitStatus = 1;

    /**
     * Runs the program.
     *
     * @param args the command line
     */
    public static void main(String[] args) {
        Locale.setDefault(Locale.ROOT);
        Solve solve = new Solve();
        try {
            if (solve.parse(args)) {
                solve.checkFiles();
                solve.run();
            } else {
                System.out.println(USAGE);
                solve.exitStatus = 0;
            }
        } catch (UsageException e) {
            System.err.println("solve: " + e.getMessage());
            solve.exitStatus = 2;
        } catch (KVXException | UnsatisfiedLinkError e) {
            System.err.println("solve: " + e.getMessage());
        } finally {
            solve.endOutput();
            solve.reported.countDown();
        }
        System.exit(solve.exitStatus);
    }

    /** What couldn't be written, to a full disk for instance, is a failure, too. */
    private void endOutput() {
        if (System.out.checkError()) {
            System.err.println("solve: the output can't be written");
            exitStatus = 1;
        }
    }

    /** Returns false if help is wanted. */
    private boolean parse(String[] args) throws UsageException {
        boolean modelGiven = false, optionsOver = false;
        for (int i = 0; i < args.length; i++) {
            String option = args[i];
            if (optionsOver || !option.startsWith("-")) {
                if (modelGiven)
                    throw new UsageException("more than one model: " + option);
                modelGiven = true;
                modelFile = option;
                continue;
            }
            switch (option) {
            case "-h":
            case "--help":
                return false;
            case "--":
                optionsOver = true;
                continue;
            case "--async":
                async = true;
                continue;
            case "--quiet":
                quiet = true;
                continue;
            case "--log":
                log = true;
                continue;
            case "--iis":
                iis = true;
                continue;
            case "--solution":
                solution = true;
                continue;
            default:
            }
            if (!List.of("--set", "--time-limit", "--threads", "--json", "--write", "--plot")
                     .contains(option))
                throw new UsageException("unknown option " + option + "; see --help");
            if (++i == args.length)
                throw new UsageException(option + " needs a value");
            String value = args[i];
            switch (option) {
            case "--set":
                int equals = value.indexOf('=');
                if (equals < 1)
                    throw new UsageException("--set needs NAME=VALUE, not " + value);
                parameters.add(
                    new String[] {value.substring(0, equals), value.substring(equals + 1)});
                break;
            case "--time-limit":
                parameters.add(new String[] {"TimeLimit", value});
                break;
            case "--threads":
                parameters.add(new String[] {"Threads", value});
                break;
            case "--json":
                jsonFile = value;
                break;
            case "--plot":
                plotFile = value;
                break;
            default:
                resultFile = value;
            }
        }
        return true;
    }

    /** What would fail only after a long run is found now. */
    private void checkFiles() throws UsageException {
        if (!FileFormat.of(modelFile).map(FileFormat::isModel).orElse(false))
            throw new UsageException(modelFile + ": the name of a model must end in " + MODELS);
        if (resultFile != null && FileFormat.of(resultFile).isEmpty() &&
            !resultFile.toLowerCase(Locale.ROOT).matches(".*\\.json(\\.gz|\\.bz2)?"))
            throw new UsageException(resultFile + ": the name of a result must end in .sol, .mst, "
                                     + ".bas, .prm, .json, " + MODELS);
        for (String file : new String[] {jsonFile, resultFile, plotFile})
            if (file != null && !isWritable(Path.of(file)))
                throw new UsageException(file + ": can't be written");
    }

    private static boolean isWritable(Path file) {
        Path directory = file.toAbsolutePath().getParent();
        return Files.exists(file) ? Files.isWritable(file) && !Files.isDirectory(file)
                                  : directory != null && Files.isWritable(directory);
    }

    private void run() throws UsageException {
        try (KVXEnv env = KVXEnv.empty()) {
            env.params().set("LogToConsole", 0);
            for (String[] parameter : parameters)
                setParameter(env, parameter[0], parameter[1]);
            env.start();
            if (log)
                env.setLog(progress::line);
            try (KVXModel model = read(env)) {
                if (!quiet)
                    describe(model);
                solve(model);
                report(model);
            }
        }
    }

    private static void setParameter(KVXEnv env, String name, String value) throws UsageException {
        try {
            env.params().parse(name, value);
        } catch (KVXException e) {
            throw new UsageException(e.getMessage());
        }
    }

    private KVXModel read(KVXEnv env) throws UsageException {
        try {
            return KVXModel.read(env, modelFile);
        } catch (KVXException e) {
            throw new UsageException(e.getMessage());
        }
    }

    private void describe(KVXModel model) {
        System.out.printf("Model: %s, %d variables (%d discrete), %d constraints, %d nonzeros%n",
                          modelFile, model.getInt("NumVars"), model.getInt("NumIntVars"),
                          model.getInt("NumConstrs"), model.getInt("NumNZs"));
    }

    private void solve(KVXModel model) {
        if (plotFile != null)
            model.setCallback(context -> {
                chart.call(context);
                if (!quiet)
                    progress.call(context);
            });
        else if (!quiet)
            model.setCallback(progress);
        // Ctrl-C ends the process by running its shutdown hooks: this one lets the result be
        // printed first. It is the last to know the exit status, so it ends the process with it.
        Runtime.getRuntime().addShutdownHook(new Thread(() -> {
            if (reported.getCount() == 0)
                return;
            model.terminate();
            try {
                reported.await();
            } catch (InterruptedException e) {
                Thread.currentThread().interrupt();
            }
            System.out.flush();
            Runtime.getRuntime().halt(exitStatus);
        }));
        if (async) {
            model.optimizeAsync();
            model.sync();
        } else {
            model.optimize();
        }
        progress.end();
    }

    private void report(KVXModel model) {
        int status = model.getInt("Status");
        if (!quiet)
            System.out.println(progress.origin());
        System.out.println("Status: " + WORDS.get(status - KVX.STATUS_LOADED));
        System.out.println("Objective: " + number(() -> model.getDouble("ObjVal")));
        System.out.println("Bound: " + number(() -> model.getDouble("ObjBound")));
        System.out.println("Gap: " + number(() -> model.getDouble("MIPGap")));
        System.out.printf("Time: %.2f s%n", model.getDouble("Runtime"));
        if (solution)
            printSolution(model);
        boolean saved = save(jsonFile, () -> write(jsonFile, model.jsonSolution() + "\n"));
        saved &= save(plotFile, () -> write(plotFile, drawing(model)));
        saved &= save(resultFile, () -> model.write(resultFile));
        exitStatus = saved ? exitStatus(status) : 1;
        if (iis &&
            (status == KVX.STATUS_INFEASIBLE || status == KVX.STATUS_INFEASIBLE_OR_UNBOUNDED))
            reportConflict(model);
    }

    private interface Saving {
        void save() throws IOException;
    }

    /** Saves to a file if one is named. What fails here keeps nothing else from being saved. */
    private static boolean save(String file, Saving saving) {
        try {
            if (file != null)
                saving.save();
            return true;
        } catch (KVXException | IOException e) {
            System.err.println("solve: " + e.getMessage());
            return false;
        }
    }

    private static void write(String file, String text) throws IOException {
        try {
            Files.writeString(Path.of(file), text);
        } catch (IOException e) { // A full disk has no name.
            throw new IOException(file + ": " + e.getMessage(), e);
        }
    }

    private String drawing(KVXModel model) {
        return chart.svg(model.getDouble("Runtime"), value(() -> model.getDouble("ObjVal")),
                         value(() -> model.getDouble("ObjBound")));
    }

    private static void printSolution(KVXModel model) {
        if (model.getInt("SolCount") == 0)
            return;
        String[] names = model.getStrings("VarName");
        double[] x = model.getDoubles("X");
        for (int j = 0; j < x.length; j++)
            if (x[j] != 0)
                System.out.println("  " + names[j] + " = " + text(x[j]));
    }

    private static void reportConflict(KVXModel model) {
        model.computeIIS();
        int numConstrs = model.getInt("NumConstrs"), numVars = model.getInt("NumVars");
        String[] variables = model.getStrings("VarName", 0, numVars);
        double[] lb = model.getDoubles("LB", 0, numVars), ub = model.getDoubles("UB", 0, numVars);
        System.out.println("These can't hold together, but could without any one of them:");
        list(model.getInts("IISConstr", 0, numConstrs),
             i -> "constraint " + model.getStrings("ConstrName", i, 1)[0]);
        list(model.getInts("IISLB", 0, numVars),
             j -> "bound " + variables[j] + " >= " + number(() -> lb[j]));
        list(model.getInts("IISUB", 0, numVars),
             j -> "bound " + variables[j] + " <= " + number(() -> ub[j]));
    }

    private static void list(int[] belongs, IntFunction<String> text) {
        for (int i = 0; i < belongs.length; i++)
            if (belongs[i] != 0)
                System.out.println("  " + text.apply(i));
    }

    private static int exitStatus(int status) {
        switch (status) {
        case KVX.STATUS_OPTIMAL:
            return 0;
        case KVX.STATUS_INFEASIBLE:
        case KVX.STATUS_UNBOUNDED:
        case KVX.STATUS_INFEASIBLE_OR_UNBOUNDED:
            return 3;
        case KVX.STATUS_TIME_LIMIT:
        case KVX.STATUS_NODE_LIMIT:
        case KVX.STATUS_ITERATION_LIMIT:
        case KVX.STATUS_SOLUTION_LIMIT:
        case KVX.STATUS_INTERRUPTED:
            return 4;
        default:
            return 1;
        }
    }

    /** A value in full precision, or "-" when there is none. */
    private static String number(DoubleSupplier attribute) {
        double value = value(attribute);
        return Math.abs(value) < KVX.INFINITY ? text(value) : "-";
    }

    /** A value, infinite when there is none. */
    private static double value(DoubleSupplier attribute) {
        try {
            double value = attribute.getAsDouble();
            return Double.isNaN(value) ? KVX.INFINITY : value;
        } catch (KVXException e) {
            if (e.status() != KVX.ERROR_DATA_NOT_AVAILABLE)
                throw e;
            return KVX.INFINITY;
        }
    }

    private static String text(double value) {
        return new BigDecimal(Double.toString(value)).stripTrailingZeros().toPlainString();
    }
}
