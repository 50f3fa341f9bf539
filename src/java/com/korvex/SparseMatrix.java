package com.korvex;

import java.util.Arrays;
import java.util.List;
import java.util.Objects;

/**
 * Sparse lists one after the other: list k has the entries of {@code ind} and {@code val} from
 * {@code beg[k]} up to {@code beg[k+1]}, the last one up to their end. As columns the indices are
 * those of constraints; as rows and sets, of variables.
 *
 * <p>Equality is that of the contents.
 *
 * <p>The arrays are kept, not copied: what is done to them later changes this matrix. The begins
 * are therefore checked whenever the matrix is used: begins that descend, are negative or lie
 * beyond the entries give an {@link IllegalArgumentException} then.
 *
 * @param beg the position of each list's first entry
 * @param ind the indices
 * @param val their values, as many
 */
public record SparseMatrix(int[] beg, int[] ind, double[] val) {
    /**
     * Checks the shape.
     *
     * @param beg the position of each list's first entry
     * @param ind the indices
     * @param val their values
     * @throws IllegalArgumentException if {@code ind} and {@code val} differ in length, or the
     *     begins don't fit them
     */
    public SparseMatrix {
        Objects.requireNonNull(beg, "beg");
        Objects.requireNonNull(ind, "ind");
        Objects.requireNonNull(val, "val");
        Check.length("val", val.length, ind.length, "indices");
        checkBegins(beg, ind.length);
    }

    /**
     * Makes a matrix of lists.
     *
     * @param lists the lists, in order
     * @return the matrix
     * @throws IllegalArgumentException if they have more than 2^31 - 1 entries together
     */
    public static SparseMatrix of(List<SparseVector> lists) {
        List<SparseVector> all = List.copyOf(Objects.requireNonNull(lists, "lists"));
        long total = all.stream().mapToLong(SparseVector::size).sum();
        if (total > Integer.MAX_VALUE)
            throw new IllegalArgumentException("the lists have " + total +
                                               " entries, more than 2^31 - 1");
        int[] beg = new int[all.size()], ind = new int[(int)total];
        double[] val = new double[(int)total];
        int at = 0, k = 0;
        for (SparseVector list : all) {
            beg[k++] = at;
            System.arraycopy(list.ind(), 0, ind, at, list.size());
            System.arraycopy(list.val(), 0, val, at, list.size());
            at += list.size();
        }
        return new SparseMatrix(beg, ind, val);
    }

    /**
     * Returns the number of lists.
     *
     * @return the length of {@code beg}
     */
    public int size() { return beg.length; }

    /**
     * Copies a list.
     *
     * @param k its number
     * @return its entries
     * @throws IndexOutOfBoundsException if there is no such list
     */
    public SparseVector list(int k) {
        int[] begins = begins();
        int from = begins[Objects.checkIndex(k, begins.length)];
        int to = k + 1 < begins.length ? begins[k + 1] : ind.length;
        return new SparseVector(Arrays.copyOfRange(ind, from, to),
                                Arrays.copyOfRange(val, from, to));
    }

    /** A checked copy of the begins: another thread may change the array meanwhile. */
    int[] begins() {
        int[] begins = beg.clone();
        checkBegins(begins, ind.length);
        return begins;
    }

    /** The lengths of the lists with those begins. */
    int[] lengths(int[] begins) {
        int[] lengths = new int[begins.length];
        for (int k = 0; k < lengths.length; k++)
            lengths[k] = (k + 1 < begins.length ? begins[k + 1] : ind.length) - begins[k];
        return lengths;
    }

    private static void checkBegins(int[] beg, int entries) {
        int last = 0;
        for (int k = 0; k < beg.length; k++) {
            if (beg[k] < last)
                throw new IllegalArgumentException("beg[" + k + "] is " + beg[k] + ", less than " +
                                                   last);
            last = beg[k];
        }
        if (last > entries) // It is the greatest of them.
            throw new IllegalArgumentException("the last of beg is " + last +
                                               ", and there are only " + entries + " entries");
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
