package com.korvex;

import java.util.Objects;

/**
 * The breakpoints of a piecewise-linear function, by abscissae that don't decrease. The arrays are
 * kept, not copied; equality is that of the contents.
 *
 * @param x the abscissae
 * @param y the ordinates, as many
 */
public record Points(double[] x, double... y) {
    /**
     * Checks the shape.
     *
     * @param x the abscissae
     * @param y the ordinates
     * @throws IllegalArgumentException if the lengths differ
     */
    public Points {
        Objects.requireNonNull(x, "x");
        Objects.requireNonNull(y, "y");
        Check.length("y", y.length, x.length, "abscissae");
    }

    /**
     * Returns the number of points.
     *
     * @return the length of both arrays
     */
    public int size() { return x.length; }

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
