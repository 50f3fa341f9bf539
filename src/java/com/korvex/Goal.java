package com.korvex;

import java.util.Objects;

/**
 * One of several objectives: {@code Goal.of(terms).priority(2).name("cost")}. All share the model's
 * sense; a negative weight turns one around.
 *
 * @param linear variable indices and coefficients
 * @param constant its constant
 * @param priority higher ones are optimised first; equal ones are blended by weight
 * @param weight its factor in the blend
 * @param abstol how much later goals may worsen it, 0 or more, in its own units
 * @param reltol the same, relative to its value; the larger of the two counts
 * @param name its name, or null
 */
public record Goal(SparseVector linear, double constant, int priority, double weight, double abstol,
                   double reltol, String name) {
    /**
     * Checks that the terms are there and the name is a C text.
     *
     * @param linear variable indices and coefficients
     * @param constant its constant
     * @param priority its priority
     * @param weight its factor in the blend
     * @param abstol how much later goals may worsen it
     * @param reltol the same, relative to its value
     * @param name its name
     */
    public Goal {
        Objects.requireNonNull(linear, "linear");
        Check.text("name", name);
    }

    /**
     * Makes a goal of priority 0 and weight 1, without constant, tolerances and name.
     *
     * @param linear variable indices and coefficients
     * @return the goal
     */
    public static Goal of(SparseVector linear) { return new Goal(linear, 0, 0, 1, 0, 0, null); }

    /**
     * Sets the constant.
     *
     * @param constant the constant
     * @return the goal with it
     */
    public Goal constant(double constant) {
        return new Goal(linear, constant, priority, weight, abstol, reltol, name);
    }

    /**
     * Sets the priority.
     *
     * @param priority the priority
     * @return the goal with it
     */
    public Goal priority(int priority) {
        return new Goal(linear, constant, priority, weight, abstol, reltol, name);
    }

    /**
     * Sets the weight.
     *
     * @param weight the weight
     * @return the goal with it
     */
    public Goal weight(double weight) {
        return new Goal(linear, constant, priority, weight, abstol, reltol, name);
    }

    /**
     * Sets both tolerances.
     *
     * @param abstol how much later goals may worsen this one
     * @param reltol the same, relative to its value
     * @return the goal with them
     */
    public Goal tolerances(double abstol, double reltol) {
        return new Goal(linear, constant, priority, weight, abstol, reltol, name);
    }

    /**
     * Sets the name.
     *
     * @param name the name, or null
     * @return the goal with it
     */
    public Goal name(String name) {
        return new Goal(linear, constant, priority, weight, abstol, reltol, name);
    }
}
