import com.korvex.*;
import java.util.Arrays;

/**
 * A model without solutions: tells which constraints contradict each other (an irreducible
 * infeasible subsystem), then by how little it must be relaxed.
 */
public final class Conflict {
    /**
     * Runs the example.
     *
     * @param args none
     */
    public static void main(String[] args) {
        try (KVXEnv env = new KVXEnv();
             KVXModel model = new KVXModel(env, "shifts", Columns.of(20, 25).names("ann", "bob"))) {
            int[] both = {0, 1};
            Constraints constraints = model.constraints();
            constraints.add(SparseVector.ones(both), KVX.GREATER_EQUAL, 70, "work");
            constraints.add(SparseVector.ones(0), KVX.LESS_EQUAL, 30, "contract_ann");
            constraints.add(SparseVector.ones(1), KVX.LESS_EQUAL, 35, "contract_bob");
            constraints.add(new SparseVector(both, 20, 25), KVX.LESS_EQUAL, 9000, "budget");
            model.optimize();
            if (model.getInt(KVXAttribute.STATUS) != KVX.STATUS_INFEASIBLE)
                throw new IllegalStateException("there is a solution");

            model.computeIIS();
            String[] names = model.getStrings(KVXAttribute.CONSTR_NAME);
            int[] belongs = model.getInts(KVXAttribute.IIS_CONSTR);
            System.out.println("These can't hold together:");
            for (int i = 0; i < names.length; i++)
                if (belongs[i] != 0)
                    System.out.println("  " + names[i]);

            // Every constraint may be violated, at a price of 1 a unit. The model is changed: it
            // becomes the relaxed one.
            double[] prices = new double[names.length];
            Arrays.fill(prices, 1);
            double violation = model.relaxFeasibility(0, true, null, null, prices);
            model.optimize();
            System.out.printf("Least violation: %.1f hours, then the cost is %.1f%n", violation,
                              model.getDouble(KVXAttribute.OBJ_VAL));
        }
    }
}
