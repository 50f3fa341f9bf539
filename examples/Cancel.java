import com.korvex.*;
import java.nio.file.Path;

/**
 * Solves on a thread of the run's own and cancels that when the answer is good enough for now. In a
 * service it is a request's deadline that cancels, or its client's leaving.
 */
public final class Cancel {
    private static volatile double best = KVX.INFINITY;

    /**
     * Runs the example.
     *
     * @param args none
     * @throws InterruptedException if the thread is interrupted while it waits
     */
    public static void main(String[] args) throws InterruptedException {
        String file =
            Path.of(System.getProperty("korvex.examples"), "models", "facilities.mps").toString();
        try (KVXEnv env = new KVXEnv(); KVXModel model = KVXModel.read(env, file)) {
            // Runs on the run's thread: it notes what this thread looks at.
            model.setCallback(context -> {
                if (context.where() == KVX.CB_MIPSOL)
                    best = context.getDouble(KVX.CB_MIPSOL_OBJBEST);
            });
            model.optimizeAsync();
            while (model.isRunning() && best > 8000)
                Thread.sleep(10); // or something more useful
            model.terminate();
            model.sync(); // what went wrong in the run would be thrown here

            boolean cancelled = model.getInt(KVXAttribute.STATUS) == KVX.STATUS_INTERRUPTED;
            System.out.println("Cancelled: " + cancelled);
            System.out.printf("Objective: %.1f%n", model.getDouble(KVXAttribute.OBJ_VAL));
            System.out.printf("Bound: %.1f%n", model.getDouble(KVXAttribute.OBJ_BOUND));
        }
    }
}
