import com.korvex.*;

/**
 * A convex quadratic objective: how to spread money over assets so that a return is expected and
 * its variance is least.
 */
public final class Portfolio {
    /**
     * Runs the example.
     *
     * @param args none
     */
    public static void main(String[] args) {
        String[] assets = {"bonds", "property", "shares", "metals"};
        double[] expected = {0.02, 0.05, 0.09, 0.04};
        double[][] covariance = {{0.0004, 0.0002, -0.0001, 0.0000},
                                 {0.0002, 0.0100, 0.0060, 0.0010},
                                 {-0.0001, 0.0060, 0.0400, -0.0050},
                                 {0.0000, 0.0010, -0.0050, 0.0225}};
        int n = assets.length, at = 0;
        int[] all = new int[n], row = new int[n * n], col = new int[n * n];
        double[] terms = new double[n * n];
        for (int i = 0; i < n; i++) {
            all[i] = i;
            for (int j = 0; j < n; j++) {
                row[at] = i;
                col[at] = j;
                terms[at++] = covariance[i][j];
            }
        }
        try (KVXEnv env = new KVXEnv();
             KVXModel model =
                 new KVXModel(env, "portfolio", Columns.of(new double[n]).names(assets))) {
            model.objective().addQuadraticTerms(new Triplets(row, col, terms));
            model.constraints().add(SparseVector.ones(all), KVX.EQUAL, 1, "shares");
            model.constraints().add(new SparseVector(all, expected), KVX.GREATER_EQUAL, 0.05,
                                    "return");
            model.optimize();
            double[] x = model.getDoubles(KVXAttribute.X);
            for (int i = 0; i < n; i++)
                System.out.printf("%s: %.1f %%%n", assets[i], 100 * x[i]);
            System.out.printf("Standard deviation: %.2f %%%n",
                              100 * Math.sqrt(model.getDouble(KVXAttribute.OBJ_VAL)));
            // The multiplier of the second constraint.
            double price = model.getDoubles(KVXAttribute.DUAL)[1];
            System.out.printf("Variance for each percent more: %.5f%n", price / 100);
        }
    }
}
