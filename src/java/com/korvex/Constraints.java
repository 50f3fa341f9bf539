package com.korvex;

/**
 * The linear constraints of a model, range constraints among them. What else belongs to them are
 * attributes: {@link KVXAttribute#SENSE}, {@link KVXAttribute#RHS}, {@link KVXAttribute#DUAL} and
 * so on.
 */
public final class Constraints extends ModelElements {
    Constraints(ModelCalls model) { super(model, "NumConstrs", KorvexJni::delconstrs); }

    /**
     * Adds constraints. To add many, one call for all is by far the fastest.
     *
     * @param rows the constraints; all indices must be those of variables that there are
     * @return index of the first; the others follow
     * @throws KVXException if the solver refuses a value; nothing is added then
     */
    public int add(Rows rows) {
        int count = rows.size();
        SparseMatrix coefficients = rows.coefficients();
        int[] beg = coefficients == null ? new int[count] : coefficients.begins();
        int[] ind = coefficients == null ? null : coefficients.ind();
        double[] val = coefficients == null ? null : coefficients.val();
        int numnz = coefficients == null ? 0 : ind.length;
        // The native copies senses even where bounds take their place.
        char[] senses = rows.senses() == null ? new char[count] : rows.senses();
        String[] names = Check.texts("names", rows.names());
        return add(m
                   -> KorvexJni.addconstrs(m, count, numnz, beg, ind, val, senses, rows.lower(),
                                           rows.rhs(), names));
    }

    /**
     * Adds a constraint.
     *
     * @param terms variable indices and coefficients
     * @param sense {@link KVX#LESS_EQUAL}, {@link KVX#GREATER_EQUAL} or {@link KVX#EQUAL}
     * @param rhs right-hand side
     * @param name its name, or null
     * @return its index
     * @throws KVXException if the solver refuses a value
     */
    public int add(SparseVector terms, char sense, double rhs, String name) {
        return add(Rows.of(row(terms), new char[] {sense}, rhs).names(name));
    }

    /**
     * Adds a range constraint.
     *
     * @param terms variable indices and coefficients
     * @param lower lower bound
     * @param upper upper bound
     * @param name its name, or null
     * @return its index
     * @throws KVXException if the solver refuses a value
     */
    public int addRange(SparseVector terms, double lower, double upper, String name) {
        return add(Rows.ranges(row(terms), new double[] {lower}, upper).names(name));
    }

    private static SparseMatrix row(SparseVector terms) {
        return new SparseMatrix(new int[1], terms.ind(), terms.val());
    }

    /**
     * Finds a constraint.
     *
     * @param name its name
     * @return the lowest index with that name
     * @throws KVXException with {@link KVX#ERROR_NOT_FOUND} if there is none
     */
    public int indexOf(String name) {
        int[] slot = new int[1];
        call(m -> KorvexJni.getconstrbyname(m, name, slot));
        return slot[0];
    }

    /**
     * Reads a constraint's coefficients.
     *
     * @param constr its index
     * @return variable indices and coefficients
     * @throws KVXException if there is no such constraint
     */
    public SparseVector row(int constr) { return single(rows(constr, 1)); }

    /**
     * Reads the coefficients of successive constraints.
     *
     * @param start index of the first
     * @param count how many
     * @return a list a constraint, of variable indices and coefficients
     * @throws KVXException if there aren't as many
     */
    public SparseMatrix rows(int start, int count) {
        return readLists(KorvexJni::getconstrs, start, count);
    }

    /**
     * Reads a coefficient.
     *
     * @param constr index of the constraint
     * @param var index of the variable
     * @return the coefficient, 0 if there is none
     * @throws KVXException if there is no such constraint or variable
     */
    public double coefficient(int constr, int var) {
        double[] slot = new double[1];
        call(m -> KorvexJni.getcoeff(m, constr, var, slot));
        return slot[0];
    }

    /**
     * Changes coefficients.
     *
     * @param changes constraint indices, variable indices and the new coefficients, 0 for none
     * @throws KVXException if there is no such constraint or variable; nothing is changed then
     */
    public void setCoefficients(Triplets changes) {
        call(
            m
            -> KorvexJni.chgcoeffs(m, changes.size(), changes.row(), changes.col(), changes.val()));
    }
}
