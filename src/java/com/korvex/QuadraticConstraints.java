package com.korvex;

/**
 * The quadratic constraints of a model. What else belongs to them are attributes: {@link
 * KVXAttribute#Q_CONSTR_SENSE}, {@link KVXAttribute#Q_CONSTR_RHS}, {@link
 * KVXAttribute#Q_CONSTR_NAME}.
 */
public final class QuadraticConstraints extends ModelElements {
    QuadraticConstraints(ModelCalls model) { super(model, "NumQConstrs", KorvexJni::delqconstrs); }

    /**
     * Adds a quadratic constraint.
     *
     * @param left its left-hand side
     * @param sense {@link KVX#LESS_EQUAL}, {@link KVX#GREATER_EQUAL} or {@link KVX#EQUAL}
     * @param rhs right-hand side
     * @param name its name, or null
     * @return its index
     * @throws KVXException if the solver refuses a value
     */
    public int add(QuadraticExpression left, char sense, double rhs, String name) {
        SparseVector linear = left.linear();
        Triplets terms = left.quadratic();
        Check.text("name", name);
        return add(m
                   -> KorvexJni.addqconstr(m, linear.size(), linear.ind(), linear.val(),
                                           terms.size(), terms.row(), terms.col(), terms.val(),
                                           sense, rhs, name));
    }

    /**
     * Reads a quadratic constraint. Its name, sense and right-hand side are attributes.
     *
     * @param qconstr its index
     * @return its left-hand side
     * @throws KVXException if there is no such constraint
     */
    public QuadraticExpression get(int qconstr) {
        return model.together(m -> {
            int[] lin = {0}, quad = {0};
            check(m, KorvexJni.getqconstr(m, qconstr, lin, null, null, quad, null, null, null));
            SparseVector linear = new SparseVector(new int[lin[0]], new double[lin[0]]);
            Triplets terms = new Triplets(new int[quad[0]], new int[quad[0]], new double[quad[0]]);
            check(m, KorvexJni.getqconstr(m, qconstr, lin, linear.ind(), linear.val(), quad,
                                          terms.row(), terms.col(), terms.val()));
            return new QuadraticExpression(linear, terms);
        });
    }
}
