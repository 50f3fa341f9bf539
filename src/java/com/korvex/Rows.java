package com.korvex;

import java.util.Objects;

/**
 * Linear constraints to be added, all at once. With senses they are {@code row <= rhs}, {@code row
 * >= rhs} or {@code row = rhs}; with lower bounds, {@code lower <= row <= rhs}. Every array has an
 * element a constraint. The arrays are kept, not copied; equality is that of the contents.
 *
 * @param coefficients a list a constraint, of variable indices and coefficients; null for none
 * @param senses {@link KVX#LESS_EQUAL} and so on; null if there are lower bounds
 * @param lower lower bounds; null if there are senses
 * @param rhs right-hand sides, or upper bounds; their number is that of the constraints
 * @param names names, each of which may be null, as the array may be: the solver makes one then
 */
public record Rows(SparseMatrix coefficients, char[] senses, double[] lower, double[] rhs,
                   String[] names) {
    /**
     * Checks the shape.
     *
     * @param coefficients a list a constraint
     * @param senses {@link KVX#LESS_EQUAL} and so on
     * @param lower lower bounds
     * @param rhs right-hand sides
     * @param names names
     * @throws IllegalArgumentException if an array isn't as long as {@code rhs}, or there are both
     *     senses and lower bounds, or neither
     */
    public Rows {
        Objects.requireNonNull(rhs, "rhs");
        int count = rhs.length;
        if ((senses == null) == (lower == null))
            throw new IllegalArgumentException("rows have either senses or lower bounds");
        if (coefficients != null)
            Check.length("coefficients", coefficients.size(), count, "constraints");
        if (senses != null)
            Check.length("senses", senses.length, count, "constraints");
        if (lower != null)
            Check.length("lower", lower.length, count, "constraints");
        if (names != null)
            Check.length("names", names.length, count, "constraints");
    }

    /**
     * Makes constraints with senses.
     *
     * @param coefficients a list a constraint; null for none
     * @param senses a sense a constraint
     * @param rhs a right-hand side a constraint
     * @return the constraints, without names
     */
    public static Rows of(SparseMatrix coefficients, char[] senses, double... rhs) {
        Objects.requireNonNull(senses, "senses");
        return new Rows(coefficients, senses, null, rhs, null);
    }

    /**
     * Makes range constraints.
     *
     * @param coefficients a list a constraint; null for none
     * @param lower a lower bound a constraint
     * @param upper an upper bound a constraint
     * @return the constraints, without names
     */
    public static Rows ranges(SparseMatrix coefficients, double[] lower, double... upper) {
        Objects.requireNonNull(lower, "lower");
        Objects.requireNonNull(upper, "upper");
        return new Rows(coefficients, null, lower, upper, null);
    }

    /**
     * Sets the names.
     *
     * @param names a name a constraint, or null
     * @return the constraints with these names
     */
    public Rows names(String... names) { return new Rows(coefficients, senses, lower, rhs, names); }

    /**
     * Returns the number of constraints.
     *
     * @return the length of {@code rhs}
     */
    public int size() { return rhs.length; }

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
