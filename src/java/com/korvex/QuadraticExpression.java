package com.korvex;

import java.util.Objects;

/**
 * A linear and a quadratic part.
 *
 * @param linear indices of variables and their coefficients
 * @param quadratic indices of two variables a term, and its coefficient
 */
public record QuadraticExpression(SparseVector linear, Triplets quadratic) {
    /**
     * Checks that both parts are there; either may be empty.
     *
     * @param linear indices of variables and their coefficients
     * @param quadratic indices of two variables a term
     */
    public QuadraticExpression {
        Objects.requireNonNull(linear, "linear");
        Objects.requireNonNull(quadratic, "quadratic");
    }

    /**
     * Makes an expression without a quadratic part.
     *
     * @param linear the linear part
     * @return the expression
     */
    public static QuadraticExpression of(SparseVector linear) {
        return new QuadraticExpression(linear, Triplets.EMPTY);
    }

    /**
     * Makes an expression without a linear part.
     *
     * @param quadratic the quadratic part
     * @return the expression
     */
    public static QuadraticExpression of(Triplets quadratic) {
        return new QuadraticExpression(SparseVector.EMPTY, quadratic);
    }
}
