import com.korvex.*;

/**
 * Builds a whole model from arrays, as a program does that has its data in them: what to ship from
 * plants to markets. One call adds all variables, one all constraints, however many there are.
 */
public final class FromArrays {
    /**
     * Runs the example.
     *
     * @param args none
     */
    public static void main(String[] args) {
        double[] supply = {350, 600}, demand = {325, 300, 275};
        double[][] cost = {{2.5, 1.7, 1.8}, {2.5, 1.8, 1.4}};
        int plants = supply.length, markets = demand.length, ways = plants * markets;

        // Variable i * markets + j is what goes from plant i to market j.
        double[] costs = new double[ways];
        String[] names = new String[ways];
        // One row a plant and one a market; row k begins at begin[k].
        int[] begin = new int[plants + markets], ind = new int[2 * ways];
        double[] ones = new double[2 * ways], rhs = new double[plants + markets];
        char[] senses = new char[plants + markets];
        int at = 0;
        for (int i = 0; i < plants; i++) {
            begin[i] = at;
            senses[i] = KVX.LESS_EQUAL;
            rhs[i] = supply[i];
            for (int j = 0; j < markets; j++) {
                int way = i * markets + j;
                costs[way] = cost[i][j];
                names[way] = "plant" + i + "_market" + j;
                ind[at++] = way;
            }
        }
        for (int j = 0; j < markets; j++) {
            begin[plants + j] = at;
            senses[plants + j] = KVX.GREATER_EQUAL;
            rhs[plants + j] = demand[j];
            for (int i = 0; i < plants; i++)
                ind[at++] = i * markets + j;
        }
        java.util.Arrays.fill(ones, 1);

        try (KVXEnv env = new KVXEnv();
             KVXModel model = new KVXModel(env, "shipping", Columns.of(costs).names(names))) {
            model.constraints().add(Rows.of(new SparseMatrix(begin, ind, ones), senses, rhs));
            model.optimize();
            System.out.printf("Cost: %.1f%n", model.getDouble(KVXAttribute.OBJ_VAL));
            double[] shipped = model.getDoubles(KVXAttribute.X);
            for (int way = 0; way < ways; way++)
                if (shipped[way] > 0)
                    System.out.printf("%s: %.0f%n", names[way], shipped[way]);
        }
    }
}
