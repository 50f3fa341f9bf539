import com.korvex.*;

/**
 * The basis behind a linear model's solution: which variables are basic, a row of the tableau, and
 * a solve with the basis matrix that tells what one more unit of a resource changes.
 */
public final class Tableau {
    /**
     * Runs the example.
     *
     * @param args none
     */
    public static void main(String[] args) {
        String[] names = {"chairs", "tables", "wood", "hours"}; // logical variables behind others
        try (KVXEnv env = new KVXEnv();
             KVXModel model =
                 new KVXModel(env, "workshop", Columns.of(45, 80).names("chairs", "tables"))) {
            int[] both = {0, 1};
            model.constraints().add(new SparseVector(both, 5, 20), KVX.LESS_EQUAL, 400, "wood");
            model.constraints().add(new SparseVector(both, 10, 15), KVX.LESS_EQUAL, 450, "hours");
            model.set(KVXAttribute.MODEL_SENSE, KVX.MAXIMIZE);
            model.optimize();

            Basis basis = model.basis();
            int[] head = basis.head();
            SparseVector row = basis.row(0);
            StringBuilder text = new StringBuilder("Row of " + names[head[0]] + ":");
            for (int k = 0; k < row.size(); k++)
                text.append(String.format("  %s %.3f", names[row.ind()[k]], row.val()[k]));
            System.out.println(text);

            SparseVector change = basis.solve(SparseVector.ones(0)); // of constraint 0, the wood
            for (int k = 0; k < change.size(); k++)
                System.out.printf("One more unit of wood: %s %+.3f%n", names[head[change.ind()[k]]],
                                  change.val()[k]);
            double[] prices = model.getDoubles(KVXAttribute.DUAL);
            System.out.printf("Its worth: %.2f%n", prices[0]);
        }
    }
}
