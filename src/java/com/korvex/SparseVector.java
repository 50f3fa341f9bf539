package com.korvex;

import java.util.Arrays;
import java.util.Objects;

/**
 * A sparse list of numbers: {@code val[k]} belongs to index {@code ind[k]}. What the indices count,
 * and whether one may occur twice, depends on the use; linear terms of equal index are summed.
 *
 * <p>The arrays are kept, not copied: what is done to them later changes this vector. Equality is
 * that of the contents.
 *
 * @param ind the indices
 * @param val their values, as many
 */
public record SparseVector(int[] ind, double... val) {
    /** No entries. */
    static final SparseVector EMPTY = new SparseVector(new int[0]);

    /**
     * Checks the shape.
     *
     * @param ind the indices
     * @param val their values
     * @throws IllegalArgumentException if the lengths differ
     */
    public SparseVector {
        Objects.requireNonNull(ind, "ind");
        Objects.requireNonNull(val, "val");
        Check.length("val", val.length, ind.length, "indices");
    }

    /**
     * Makes a vector with the value 1 at every index: a plain sum.
     *
     * @param ind the indices
     * @return the vector
     */
    public static SparseVector ones(int... ind) {
        double[] val = new double[ind.length];
        Arrays.fill(val, 1);
        return new SparseVector(ind, val);
    }

    /**
     * Returns the number of entries.
     *
     * @return the length of both arrays
     */
    public int size() { return ind.length; }

    /**
     * Returns a clean copy: sorted by index, entries of equal index summed, zeros dropped.
     *
     * @return the copy
     * @throws KVXException with {@link KVX#ERROR_OUT_OF_MEMORY} if native memory doesn't suffice
     */
    public SparseVector cleaned() {
        int[] length = {ind.length}, indices = ind.clone();
        double[] values = val.clone();
        int status = KorvexJni.clean2(length, indices, values);
        if (status != KVX.OK)
            throw new KVXException(status, "no memory to clean a sparse vector");
        return first(length[0], indices, values);
    }

    /** The first entries of two arrays that may be longer. */
    static SparseVector first(int length, int[] ind, double[] val) {
        return new SparseVector(Arrays.copyOf(ind, length), Arrays.copyOf(val, length));
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
