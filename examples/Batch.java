import com.korvex.*;
import java.nio.file.Path;

/**
 * Submits a model as a batch request, lets the model go, and fetches the solution by the request's
 * ID when it is there.
 */
public final class Batch {
    /**
     * Runs the example.
     *
     * @param args none
     * @throws InterruptedException if the thread is interrupted while it waits
     */
    public static void main(String[] args) throws InterruptedException {
        String file =
            Path.of(System.getProperty("korvex.examples"), "models", "bakery.lp").toString();
        try (KVXEnv env = new KVXEnv()) {
            String id;
            try (KVXModel model = KVXModel.read(env, file)) {
                id = model.optimizeBatch();
            }
            try (KVXBatch batch = new KVXBatch(env, id)) {
                while (batch.getInt(KVXAttribute.BATCH_STATUS) <= KVX.BATCH_RUNNING) {
                    Thread.sleep(20);
                    batch.update();
                }
                if (batch.getInt(KVXAttribute.BATCH_STATUS) != KVX.BATCH_COMPLETED)
                    throw new IllegalStateException(
                        batch.getString(KVXAttribute.BATCH_ERROR_MESSAGE));
                System.out.println(batch.jsonSolution());
                batch.discard();
            }
        }
    }
}
