import com.korvex.KVX;
import com.korvex.KVXCallback;
import com.korvex.KVXCallbackContext;
import java.util.ArrayList;
import java.util.List;

/**
 * Notes the best objective value and the bound while a search goes on, and draws both over the
 * time.
 */
final class Chart implements KVXCallback {
    private static final int WIDTH = 800, HEIGHT = 400; // of the chart without its margins
    private static final String BEST_COLOR = "#b5442d", BOUND_COLOR = "#2b5d8a";

    /** What held from that second on. */
    private record Moment(double time, double value) {}

    private final List<Moment> best = new ArrayList<>(), bound = new ArrayList<>();

    @Override
    public void call(KVXCallbackContext context) {
        if (context.where() == KVX.CB_MIP)
            note(context.runtime(), context.getDouble(KVX.CB_MIP_OBJBEST),
                 context.getDouble(KVX.CB_MIP_OBJBOUND));
        else if (context.where() == KVX.CB_MIPSOL)
            note(context.runtime(), context.getDouble(KVX.CB_MIPSOL_OBJBEST),
                 context.getDouble(KVX.CB_MIPSOL_OBJBOUND));
    }

    private void note(double time, double bestNow, double boundNow) {
        note(best, time, bestNow);
        note(bound, time, boundNow);
    }

    private static void note(List<Moment> line, double time, double value) {
        boolean known = Math.abs(value) < KVX.INFINITY;
        if (known && (line.isEmpty() || line.get(line.size() - 1).value() != value))
            line.add(new Moment(time, value));
    }

    /** Draws both lines, up to the end of the run with the values that it ended with. */
    String svg(double seconds, double lastBest, double lastBound) {
        note(seconds, lastBest, lastBound);
        double low = KVX.INFINITY, high = -KVX.INFINITY;
        for (List<Moment> line : List.of(best, bound)) {
            for (Moment moment : line) {
                low = Math.min(low, moment.value());
                high = Math.max(high, moment.value());
            }
        }
        StringBuilder svg = new StringBuilder(String.format(
            "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"-110 -50 %d %d\" "
                + "font-family=\"sans-serif\" font-size=\"14\" fill=\"#333\">%n"
                + "<rect x=\"-110\" y=\"-50\" width=\"%d\" height=\"%d\" fill=\"#fbfaf7\"/>%n"
                + "<path d=\"M0 0V%dH%d\" fill=\"none\" stroke=\"#888\"/>%n",
            WIDTH + 150, HEIGHT + 100, WIDTH + 150, HEIGHT + 100, HEIGHT, WIDTH));
        text(svg, WIDTH, HEIGHT + 20, "end", "#333", String.format("%.2f s", seconds));
        if (low <= high) {
            text(svg, -8, 5, "end", "#333", String.format("%.6g", high));
            text(svg, -8, HEIGHT, "end", "#333", String.format("%.6g", low));
        }
        text(svg, 0, -20, "start", BEST_COLOR, "best objective value");
        text(svg, 200, -20, "start", BOUND_COLOR, "bound");
        double scale = HEIGHT / Math.max(high - low, 1e-9);
        steps(svg, best, BEST_COLOR, seconds, high, scale);
        steps(svg, bound, BOUND_COLOR, seconds, high, scale);
        return svg.append("</svg>\n").toString();
    }

    private static void text(StringBuilder svg, int x, int y, String anchor, String color,
                             String text) {
        svg.append(
            String.format("<text x=\"%d\" y=\"%d\" text-anchor=\"%s\" fill=\"%s\">%s</text>%n", x,
                          y, anchor, color, text));
    }

    private static void steps(StringBuilder svg, List<Moment> line, String color, double seconds,
                              double high, double scale) {
        if (line.isEmpty())
            return;
        StringBuilder path = new StringBuilder();
        for (Moment moment : line)
            path.append(String.format(path.isEmpty() ? "M%.1f %.1f" : "H%.1fV%.1f",
                                      WIDTH * moment.time() / Math.max(seconds, 1e-9),
                                      (high - moment.value()) * scale));
        svg.append(String.format("<path d=\"%sH%d\" fill=\"none\" stroke=\"%s\" "
                                     + "stroke-width=\"2.5\"/>%n",
                                 path, WIDTH, color));
    }
}
