package com.korvex;

import java.util.function.LongFunction;

/**
 * The simplex basis of a solved linear model: which variables are basic, and solves with the matrix
 * of their columns. Variable {@code NumVars + i} is the logical variable of constraint i, whose
 * column is the i-th unit vector. Every method throws {@link KVXException} if there is no basis.
 */
public final class Basis extends ModelPart {
    Basis(ModelCalls model) { super(model); }

    /**
     * Reads which variables are basic.
     *
     * @return a variable index a constraint; none, with a basis or without, in a model without
     *     constraints
     */
    public int[] head() {
        return model.together(m -> {
            int[] head = new int[count(m, "NumConstrs")];
            // Element 0 tells the native how many there are.
            if (head.length > 0) {
                head[0] = head.length;
                check(m, KorvexJni.basishead(m, head));
            }
            return head;
        });
    }

    private interface Solve {
        int solve(long model, int length, int[] bind, double[] bval, int[] capacity, int[] xind,
                  double[] xval);
    }

    /**
     * Solves B x = b with the basis matrix B.
     *
     * @param b constraint indices and values
     * @return x: positions in the {@link #head} and values
     */
    public SparseVector solve(SparseVector b) { return solve(KorvexJni::fsolve, b); }

    /**
     * Solves B<sup>T</sup> x = b with the basis matrix B.
     *
     * @param b positions in the {@link #head} and values
     * @return x: constraint indices and values
     */
    public SparseVector solveTransposed(SparseVector b) { return solve(KorvexJni::bsolve, b); }

    private SparseVector solve(Solve solve, SparseVector b) {
        int length = b.size();
        return read(m
                    -> count(m, "NumConstrs"),
                    (m, capacity, ind,
                     val) -> solve.solve(m, length, b.ind(), b.val(), capacity, ind, val));
    }

    /**
     * Reads a column of the tableau B<sup>-1</sup>A, A being the matrix of all columns.
     *
     * @param var index of a variable, also a logical one
     * @return positions in the {@link #head} and values
     */
    public SparseVector column(int var) {
        return read(m
                    -> count(m, "NumConstrs"),
                    (m, capacity, ind, val) -> KorvexJni.binvcolj(m, var, capacity, ind, val));
    }

    /**
     * Reads a row of the tableau B<sup>-1</sup>A, A being the matrix of all columns.
     *
     * @param position a position in the {@link #head}
     * @return variable indices, also of logical ones, and values
     */
    public SparseVector row(int position) {
        return read(m
                    -> count(m, "NumVars") + count(m, "NumConstrs"),
                    (m, capacity, ind, val) -> KorvexJni.binvrowi(m, position, capacity, ind, val));
    }

    private interface Reader {
        int read(long model, int[] capacity, int[] ind, double[] val);
    }

    /** Reads a vector into the room that is always enough for it. */
    private SparseVector read(LongFunction<Integer> room, Reader reader) {
        return model.together(m -> {
            int[] capacity = {room.apply(m)};
            int[] ind = new int[capacity[0]];
            double[] val = new double[capacity[0]];
            check(m, reader.read(m, capacity, ind, val));
            return SparseVector.first(capacity[0], ind, val);
        });
    }
}
