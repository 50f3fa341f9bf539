import com.korvex.KVX;
import com.korvex.KVXCallback;
import com.korvex.KVXCallbackContext;
import java.util.List;
import java.util.Objects;

/**
 * Shows the progress that callbacks report: as one line that is written again and again on a
 * terminal, elsewhere as a line every few seconds.
 */
final class Progress implements KVXCallback {
    private static final boolean TERMINAL =
        System.console() != null &&
        !List.of("", "dumb").contains(Objects.requireNonNullElse(System.getenv("TERM"), ""));
    private static final double INTERVAL = TERMINAL ? 0.1 : 3; // seconds
    private static final String CLEAR_LINE = "\r\033[K";
    // Between these a line that is too long for the terminal is cut off, not continued below.
    private static final String CUT_OFF = "\033[?7l", CONTINUE = "\033[?7h";

    private final Thread starter = Thread.currentThread();
    private int calls, foreignCalls;
    private double lastShown;
    private boolean lineOpen;
    private String phase = "start";
    private double iterations, nodes, best = KVX.INFINITY, bound = -KVX.INFINITY;

    @Override
    public synchronized void call(KVXCallbackContext context) {
        calls++;
        if (Thread.currentThread() != starter)
            foreignCalls++;
        switch (context.where()) {
        case KVX.CB_PRESOLVE:
            phase = "presolve";
            break;
        case KVX.CB_SIMPLEX:
            phase = "simplex";
            iterations = context.getDouble(KVX.CB_SPX_ITERATIONS);
            break;
        case KVX.CB_MIP:
            phase = "search";
            nodes = context.getDouble(KVX.CB_MIP_NODES);
            best = context.getDouble(KVX.CB_MIP_OBJBEST);
            bound = context.getDouble(KVX.CB_MIP_OBJBOUND);
            break;
        case KVX.CB_MIPSOL:
            phase = "search";
            nodes = context.getDouble(KVX.CB_MIPSOL_NODES);
            best = context.getDouble(KVX.CB_MIPSOL_OBJBEST);
            bound = context.getDouble(KVX.CB_MIPSOL_OBJBOUND);
            break;
        default:
        }
        double now = context.runtime();
        if (now - lastShown >= INTERVAL) {
            lastShown = now;
            show(now);
        }
    }

    private void show(double now) {
        String text = phase.equals("search")
                          ? String.format("%8.1fs  nodes %-8.0f best %-14s bound %-14s gap %s", now,
                                          nodes, shown(best), shown(bound), gap())
                          : String.format("%8.1fs  %s, %.0f iterations", now, phase, iterations);
        if (TERMINAL)
            System.out.print(CLEAR_LINE + CUT_OFF + text + CONTINUE);
        else
            System.out.println(text);
        System.out.flush();
        lineOpen = TERMINAL;
    }

    /** Writes a line of another's, so that it doesn't mix with the live one. */
    synchronized void line(String text) {
        end();
        System.out.println(text);
    }

    /** Takes the live line away. */
    synchronized void end() {
        if (lineOpen)
            System.out.print(CLEAR_LINE);
        lineOpen = false;
    }

    /** Says how many calls there were, and from whose thread. */
    synchronized String origin() {
        String from = foreignCalls == 0       ? "on the thread that started the run"
                      : foreignCalls == calls ? "on a thread of the run's own"
                                              : foreignCalls + " on other threads";
        return "Callbacks: " + calls + ", " + from;
    }

    private String gap() {
        if (Math.abs(best) >= KVX.INFINITY || Math.abs(bound) >= KVX.INFINITY)
            return "-";
        return String.format("%.2f%%",
                             100 * Math.abs(best - bound) / Math.max(Math.abs(best), 1e-10));
    }

    private static String shown(double value) {
        return Math.abs(value) >= KVX.INFINITY ? "-" : String.format("%.8g", value);
    }
}
