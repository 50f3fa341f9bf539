import java.util.Locale;
import java.util.Random;

/**
 * Writes a capacitated facility location model as MPS. Warehouses and customers lie at random
 * points of a square; opening warehouse i costs a fixed sum, and x(i,j) is the part of customer j's
 * demand that it delivers, at a cost that grows with distance. Least total cost, such that every
 * customer is served and no warehouse delivers more than its capacity, and nothing if it is closed.
 *
 * <p>Usage: {@code java Facilities.java WAREHOUSES CUSTOMERS SEED > FILE}. The file
 * facilities.mps was made with {@code 40 80 3}.
 */
public final class Facilities {
    /**
     * Writes the model to standard output.
     *
     * @param args number of warehouses, number of customers, seed
     */
    public static void main(String[] args) {
        int warehouses = Integer.parseInt(args[0]);
        int customers = Integer.parseInt(args[1]);
        Random random = new Random(Long.parseLong(args[2]));

        double[][] from = points(random, warehouses);
        double[][] to = points(random, customers);
        int[] demand = random.ints(customers, 5, 36).toArray();
        int total = 0;
        for (int d : demand)
            total += d;
        // Together the warehouses could serve all customers about four times.
        int[] capacity =
            random.ints(warehouses, 3 * total / warehouses, 5 * total / warehouses).toArray();

        StringBuilder mps = new StringBuilder("* Capacitated facility location, made by "
                                              + "Facilities.java " + String.join(" ", args) +
                                              "\nNAME FACILITIES\nROWS\n N COST\n");
        for (int j = 0; j < customers; j++)
            mps.append(" E SERVE").append(j).append('\n');
        for (int i = 0; i < warehouses; i++)
            mps.append(" L CAP").append(i).append('\n');

        mps.append("COLUMNS\n MARKER 'MARKER' 'INTORG'\n");
        for (int i = 0; i < warehouses; i++) {
            int fixed = 3 * capacity[i] + 100 + random.nextInt(150);
            mps.append(String.format(" OPEN%d COST %d CAP%d %d\n", i, fixed, i, -capacity[i]));
        }
        mps.append(" MARKER 'MARKER' 'INTEND'\n");
        for (int i = 0; i < warehouses; i++) {
            for (int j = 0; j < customers; j++) {
                double distance = Math.hypot(from[i][0] - to[j][0], from[i][1] - to[j][1]);
                mps.append(String.format(Locale.ROOT, " X%d_%d COST %.1f SERVE%d 1\n", i, j,
                                         distance * demand[j] / 10, j));
                mps.append(String.format(" X%d_%d CAP%d %d\n", i, j, i, demand[j]));
            }
        }

        mps.append("RHS\n");
        for (int j = 0; j < customers; j++)
            mps.append(" RHS SERVE").append(j).append(" 1\n");
        mps.append("BOUNDS\n");
        for (int i = 0; i < warehouses; i++)
            mps.append(" BV BND OPEN").append(i).append('\n');
        System.out.print(mps.append("ENDATA\n"));
    }

    private static double[][] points(Random random, int count) {
        double[][] points = new double[count][2];
        for (double[] point : points) {
            point[0] = 100 * random.nextDouble();
            point[1] = 100 * random.nextDouble();
        }
        return points;
    }
}
