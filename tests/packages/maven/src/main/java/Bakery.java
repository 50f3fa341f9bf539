import com.korvex.*;

/** Sells as many loaves as the flour allows. */
public final class Bakery {
    private Bakery() {}

    public static void main(String[] args) {
        try (KVXEnv env = new KVXEnv(); KVXModel model = new KVXModel(env, "bakery")) {
            int white = model.variables().add(0, 40, 2.5, KVX.INTEGER, "white");
            int rye = model.variables().add(0, 40, 3.1, KVX.INTEGER, "rye");
            int[] loaves = {white, rye};
            model.constraints().add(new SparseVector(loaves, 0.5, 0.6), KVX.LESS_EQUAL, 30,
                                    "flour");
            model.set(KVXAttribute.MODEL_SENSE, KVX.MAXIMIZE);
            model.optimize();
            System.out.println("Profit: " + model.getDouble(KVXAttribute.OBJ_VAL));
        }
    }
}
