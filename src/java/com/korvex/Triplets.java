package com.korvex;

import java.util.Arrays;
import java.util.Objects;

/**
 * Numbers with two indices each. As coefficients, {@code row} counts constraints and {@code col}
 * variables; as quadratic terms both count variables, and the term is {@code val[k] * x[row[k]] *
 * x[col[k]]}.
 *
 * <p>The arrays are kept, not copied: what is done to them later changes these triplets. Equality
 * is that of the contents.
 *
 * @param row the first indices
 * @param col the second indices, as many
 * @param val the values, as many
 */
public record Triplets(int[] row, int[] col, double... val) {
    /** No entries. */
    static final Triplets EMPTY = new Triplets(new int[0], new int[0]);

    /**
     * Checks the shape.
     *
     * @param row the first indices
     * @param col the second indices
     * @param val the values
     * @throws IllegalArgumentException if the lengths differ
     */
    public Triplets {
        Objects.requireNonNull(row, "row");
        Objects.requireNonNull(col, "col");
        Objects.requireNonNull(val, "val");
        Check.length("col", col.length, row.length, "first indices");
        Check.length("val", val.length, row.length, "first indices");
    }

    /**
     * Returns the number of entries.
     *
     * @return the length of the arrays
     */
    public int size() { return row.length; }

    /**
     * Returns a clean copy: sorted by both indices, entries of equal indices summed, zeros dropped.
     *
     * @return the copy
     * @throws KVXException with {@link KVX#ERROR_OUT_OF_MEMORY} if native memory doesn't suffice
     */
    public Triplets cleaned() {
        int[] length = {row.length}, rows = row.clone(), columns = col.clone();
        double[] values = val.clone();
        int status = KorvexJni.clean3(length, rows, columns, values);
        if (status != KVX.OK)
            throw new KVXException(status, "no memory to clean triplets");
        return new Triplets(Arrays.copyOf(rows, length[0]), Arrays.copyOf(columns, length[0]),
                            Arrays.copyOf(values, length[0]));
    }

    @Override
    public boolean equals(Object other) {
        return Contents.equal(this, other);
    }

    @Override
    public int hashCode() {
        return Contents.hash(this);
    }

    @Override
    public String toString() {
        return Contents.text(this);
    }
}
