package com.korvex;

import java.util.Objects;

/**
 * A general constraint: an equation between variables that isn't linear, or one that holds under a
 * condition. The nineteen kinds have six shapes, a record each; each kind has a maker here.
 * Variables are given by their indices. Arrays are kept, not copied; equality is that of
 * the contents.
 */
public sealed interface GeneralConstraint {
    /**
     * Returns the kind.
     *
     * @return {@link KVX#GENCONSTR_MAX} and so on
     */
    int kind();

    /**
     * {@code result = maximum, minimum, conjunction, disjunction or norm of operands}.
     *
     * @param kind {@link KVX#GENCONSTR_MAX}, {@code _MIN}, {@code _AND}, {@code _OR} or {@code
     *     _NORM}
     * @param result the result's variable
     * @param operands the operands' variables
     * @param number a constant operand of maximum and minimum; which norm; else unused
     */
    record Aggregate(int kind, int result, int[] operands, double number)
        implements GeneralConstraint {
        /**
         * Checks kind and operands.
         *
         * @param kind the kind
         * @param result the result's variable
         * @param operands the operands' variables
         * @param number the constant operand, or which norm
         * @throws IllegalArgumentException if it is no such kind
         */
        public Aggregate {
            Objects.requireNonNull(operands, "operands");
            requireKind(kind, kind == KVX.GENCONSTR_MAX || kind == KVX.GENCONSTR_MIN ||
                                  kind == KVX.GENCONSTR_AND || kind == KVX.GENCONSTR_OR ||
                                  kind == KVX.GENCONSTR_NORM);
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

    /**
     * {@code y = function of x}.
     *
     * @param kind {@link KVX#GENCONSTR_ABS}, or {@link KVX#GENCONSTR_EXP} to {@link
     *     KVX#GENCONSTR_LOGISTIC}
     * @param x the argument's variable
     * @param y the result's variable
     * @param number base of {@code EXPA} and {@code LOGA}, exponent of {@code POW}; else unused
     */
    record Function(int kind, int x, int y, double number) implements GeneralConstraint {
        /**
         * Checks the kind.
         *
         * @param kind the kind
         * @param x the argument's variable
         * @param y the result's variable
         * @param number base or exponent
         * @throws IllegalArgumentException if it is no such kind
         */
        public Function {
            requireKind(kind, kind == KVX.GENCONSTR_ABS ||
                                  kind >= KVX.GENCONSTR_EXP && kind <= KVX.GENCONSTR_LOGISTIC);
        }
    }

    /**
     * {@code y = piecewise-linear function of x}; beyond the points the first and the last segment
     * go on, at a jump y is anywhere between both values.
     *
     * @param x the argument's variable
     * @param y the result's variable
     * @param points the breakpoints
     */
    record PiecewiseLinear(int x, int y, Points points) implements GeneralConstraint {
        /**
         * Checks that there are points.
         *
         * @param x the argument's variable
         * @param y the result's variable
         * @param points the breakpoints
         */
        public PiecewiseLinear { Objects.requireNonNull(points, "points"); }

        @Override
        public int kind() {
            return KVX.GENCONSTR_PWL;
        }
    }

    /**
     * {@code y = polynomial of x}.
     *
     * @param x the argument's variable
     * @param y the result's variable
     * @param coefficients the coefficients, that of the highest power first
     */
    record Polynomial(int x, int y, double... coefficients) implements GeneralConstraint {
        /**
         * Checks that there are coefficients.
         *
         * @param x the argument's variable
         * @param y the result's variable
         * @param coefficients the coefficients
         */
        public Polynomial { Objects.requireNonNull(coefficients, "coefficients"); }

        @Override
        public int kind() {
            return KVX.GENCONSTR_POLY;
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

    /**
     * {@code if variable = value then terms <=, >= or = rhs}.
     *
     * @param variable a binary variable
     * @param value 0 or 1
     * @param terms variable indices and coefficients
     * @param sense {@link KVX#LESS_EQUAL}, {@link KVX#GREATER_EQUAL} or {@link KVX#EQUAL}
     * @param rhs right-hand side
     */
    record Indicator(int variable, int value, SparseVector terms, char sense, double rhs)
        implements GeneralConstraint {
        /**
         * Checks that there are terms.
         *
         * @param variable a binary variable
         * @param value 0 or 1
         * @param terms variable indices and coefficients
         * @param sense the sense
         * @param rhs right-hand side
         */
        public Indicator { Objects.requireNonNull(terms, "terms"); }

        @Override
        public int kind() {
            return KVX.GENCONSTR_INDICATOR;
        }
    }

    /**
     * {@code result = value of an expression tree}. The first node is the root; every other comes
     * after its parent, operands in their order.
     *
     * @param result the result's variable
     * @param operations {@link KVX#NL_CONSTANT} and so on, a node
     * @param data a number or a variable's index a node; unused for all others
     * @param parents the number of its parent a node; -1 for the root
     */
    record Tree(int result, int[] operations, double[] data, int[] parents)
        implements GeneralConstraint {
        /**
         * Checks the shape.
         *
         * @param result the result's variable
         * @param operations {@link KVX#NL_CONSTANT} and so on
         * @param data a number or a variable's index a node
         * @param parents the number of its parent a node
         * @throws IllegalArgumentException if the lengths differ
         */
        public Tree {
            Objects.requireNonNull(operations, "operations");
            Objects.requireNonNull(data, "data");
            Objects.requireNonNull(parents, "parents");
            Check.length("data", data.length, operations.length, "operations");
            Check.length("parents", parents.length, operations.length, "operations");
        }

        @Override
        public int kind() {
            return KVX.GENCONSTR_NL;
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

    private static void requireKind(int kind, boolean right) {
        if (!right)
            throw new IllegalArgumentException("kind " + kind + " is of another shape");
    }

    /**
     * {@code result = max(operands, constant)}.
     *
     * @param result the result's variable
     * @param operands the operands' variables
     * @param constant constant operand, {@code -}{@link KVX#INFINITY} for none
     * @return the constraint
     */
    static GeneralConstraint max(int result, int[] operands, double constant) {
        return new Aggregate(KVX.GENCONSTR_MAX, result, operands, constant);
    }

    /**
     * {@code result = min(operands, constant)}.
     *
     * @param result the result's variable
     * @param operands the operands' variables
     * @param constant constant operand, {@link KVX#INFINITY} for none
     * @return the constraint
     */
    static GeneralConstraint min(int result, int[] operands, double constant) {
        return new Aggregate(KVX.GENCONSTR_MIN, result, operands, constant);
    }

    /**
     * {@code result = 1} if all operands are 1, else 0.
     *
     * @param result the result's variable
     * @param operands the operands' binary variables
     * @return the constraint
     */
    static GeneralConstraint and(int result, int... operands) {
        return new Aggregate(KVX.GENCONSTR_AND, result, operands, 0);
    }

    /**
     * {@code result = 1} if any operand is 1, else 0.
     *
     * @param result the result's variable
     * @param operands the operands' binary variables
     * @return the constraint
     */
    static GeneralConstraint or(int result, int... operands) {
        return new Aggregate(KVX.GENCONSTR_OR, result, operands, 0);
    }

    /**
     * {@code result = norm of operands}.
     *
     * @param result the result's variable
     * @param operands the operands' variables
     * @param which 0, 1, 2 or {@link KVX#INFINITY}
     * @return the constraint
     */
    static GeneralConstraint norm(int result, int[] operands, double which) {
        return new Aggregate(KVX.GENCONSTR_NORM, result, operands, which);
    }

    /**
     * {@code y = |x|}.
     *
     * @param x the argument's variable
     * @param y the result's variable
     * @return the constraint
     */
    static GeneralConstraint abs(int x, int y) { return new Function(KVX.GENCONSTR_ABS, x, y, 0); }

    /**
     * {@code y = e^x}.
     *
     * @param x the argument's variable
     * @param y the result's variable
     * @return the constraint
     */
    static GeneralConstraint exp(int x, int y) { return new Function(KVX.GENCONSTR_EXP, x, y, 0); }

    /**
     * {@code y = base^x}.
     *
     * @param x the argument's variable
     * @param y the result's variable
     * @param base the base
     * @return the constraint
     */
    static GeneralConstraint exp(int x, int y, double base) {
        return new Function(KVX.GENCONSTR_EXPA, x, y, base);
    }

    /**
     * {@code y = ln x}.
     *
     * @param x the argument's variable
     * @param y the result's variable
     * @return the constraint
     */
    static GeneralConstraint log(int x, int y) { return new Function(KVX.GENCONSTR_LOG, x, y, 0); }

    /**
     * {@code y = log x to a base}.
     *
     * @param x the argument's variable
     * @param y the result's variable
     * @param base the base
     * @return the constraint
     */
    static GeneralConstraint log(int x, int y, double base) {
        return new Function(KVX.GENCONSTR_LOGA, x, y, base);
    }

    /**
     * {@code y = x^exponent}.
     *
     * @param x the argument's variable
     * @param y the result's variable
     * @param exponent the exponent
     * @return the constraint
     */
    static GeneralConstraint pow(int x, int y, double exponent) {
        return new Function(KVX.GENCONSTR_POW, x, y, exponent);
    }

    /**
     * {@code y = sin x}.
     *
     * @param x the argument's variable
     * @param y the result's variable
     * @return the constraint
     */
    static GeneralConstraint sin(int x, int y) { return new Function(KVX.GENCONSTR_SIN, x, y, 0); }

    /**
     * {@code y = cos x}.
     *
     * @param x the argument's variable
     * @param y the result's variable
     * @return the constraint
     */
    static GeneralConstraint cos(int x, int y) { return new Function(KVX.GENCONSTR_COS, x, y, 0); }

    /**
     * {@code y = tan x}.
     *
     * @param x the argument's variable
     * @param y the result's variable
     * @return the constraint
     */
    static GeneralConstraint tan(int x, int y) { return new Function(KVX.GENCONSTR_TAN, x, y, 0); }

    /**
     * {@code y = 1 / (1 + e^-x)}.
     *
     * @param x the argument's variable
     * @param y the result's variable
     * @return the constraint
     */
    static GeneralConstraint logistic(int x, int y) {
        return new Function(KVX.GENCONSTR_LOGISTIC, x, y, 0);
    }
}
