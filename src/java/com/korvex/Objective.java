package com.korvex;

/**
 * The objective of a model, or its several goals. Its linear terms, constant and sense are the
 * attributes {@link KVXAttribute#OBJ}, {@link KVXAttribute#OBJ_CON} and {@link
 * KVXAttribute#MODEL_SENSE}, too.
 */
public final class Objective extends ModelPart {
    Objective(ModelCalls model) { super(model); }

    /**
     * Sets the whole objective: all other linear coefficients become 0.
     *
     * @param sense {@link KVX#MINIMIZE}, {@link KVX#MAXIMIZE}, or 0 to leave it
     * @param linear variable indices and coefficients
     * @param constant the constant
     * @throws KVXException if the solver refuses a value
     */
    public void set(int sense, SparseVector linear, double constant) {
        set(sense, QuadraticExpression.of(linear), constant);
    }

    /**
     * Sets the whole objective: all other terms are removed.
     *
     * @param sense {@link KVX#MINIMIZE}, {@link KVX#MAXIMIZE}, or 0 to leave it
     * @param terms linear and quadratic terms
     * @param constant the constant
     * @throws KVXException if the solver refuses a value
     */
    public void set(int sense, QuadraticExpression terms, double constant) {
        SparseVector linear = terms.linear();
        Triplets quadratic = terms.quadratic();
        call(m
             -> KorvexJni.setobjective(m, sense, linear.size(), linear.ind(), linear.val(),
                                       quadratic.size(), quadratic.row(), quadratic.col(),
                                       quadratic.val(), constant));
    }

    /**
     * Adds quadratic terms.
     *
     * @param terms indices of two variables a term, and its coefficient
     * @throws KVXException if the solver refuses a value
     */
    public void addQuadraticTerms(Triplets terms) {
        call(m -> KorvexJni.addqpterms(m, terms.size(), terms.row(), terms.col(), terms.val()));
    }

    /** Removes all quadratic terms. */
    public void deleteQuadraticTerms() { call(KorvexJni::delq); }

    /**
     * Reads the quadratic terms.
     *
     * @return indices of two variables a term, and its coefficient
     */
    public Triplets quadraticTerms() {
        return model.together(m -> {
            int[] room = {count(m, "NumQNZs")};
            Triplets terms = new Triplets(new int[room[0]], new int[room[0]], new double[room[0]]);
            check(m, KorvexJni.getq(m, room, terms.row(), terms.col(), terms.val()));
            return terms;
        });
    }

    /**
     * Sets one of several goals; with the first of them the model becomes multi-objective, and its
     * own linear objective counts for nothing. Their number is {@link KVXAttribute#NUM_OBJ}, and
     * the coefficients are {@link KVXAttribute#OBJ_N}.
     *
     * @param index its number, from 0, at most the number there are
     * @param goal the goal
     * @throws KVXException if the solver refuses a value, or the objective has quadratic or
     *     piecewise-linear terms
     */
    public void setGoal(int index, Goal goal) {
        SparseVector linear = goal.linear();
        call(m
             -> KorvexJni.setobjectiven(m, index, goal.priority(), goal.name(), linear.size(),
                                        linear.ind(), linear.val(), goal.constant(), goal.weight(),
                                        goal.abstol(), goal.reltol()));
    }

    /**
     * Gives a variable a piecewise-linear term in place of its linear one.
     *
     * @param var index of the variable
     * @param points its breakpoints, at least one
     * @throws IllegalArgumentException if there are no points
     * @throws KVXException if abscissae decrease, or there is no such variable
     */
    public void setPiecewiseLinear(int var, Points points) {
        // The native would do nothing then, and say nothing.
        if (points.size() == 0)
            throw new IllegalArgumentException("no points");
        call(m -> KorvexJni.setpwlobj(m, var, points.size(), points.x(), points.y()));
    }

    /**
     * Reads a variable's piecewise-linear term.
     *
     * @param var index of the variable
     * @return its breakpoints; none if it has a linear term
     * @throws KVXException if there is no such variable
     */
    public Points piecewiseLinear(int var) {
        return model.together(m -> {
            int[] room = {0};
            check(m, KorvexJni.getpwlobj(m, var, room, null, null));
            Points points = new Points(new double[room[0]], new double[room[0]]);
            check(m, KorvexJni.getpwlobj(m, var, room, points.x(), points.y()));
            return points;
        });
    }
}
