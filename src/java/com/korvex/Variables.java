package com.korvex;

/**
 * The variables of a model, with their columns of coefficients. What else belongs to them are
 * attributes: bounds ({@link KVXAttribute#LB}, {@link KVXAttribute#UB}), values ({@link
 * KVXAttribute#X}) and so on.
 */
public final class Variables extends ModelElements {
    Variables(ModelCalls model) { super(model, "NumVars", KorvexJni::delvars); }

    /**
     * Adds variables. To add many, one call for all is by far the fastest.
     *
     * @param columns the variables; all indices must be those of constraints that there are
     * @return index of the first; the others follow
     * @throws KVXException if the solver refuses a value; nothing is added then
     */
    public int add(Columns columns) {
        int count = columns.size();
        SparseMatrix coefficients = columns.coefficients();
        int[] beg = coefficients == null ? new int[count] : coefficients.begins();
        int[] ind = coefficients == null ? null : coefficients.ind();
        double[] val = coefficients == null ? null : coefficients.val();
        int numnz = coefficients == null ? 0 : ind.length;
        String[] names = Check.texts("names", columns.names());
        return add(m
                   -> KorvexJni.addvars(m, count, numnz, beg, ind, val, columns.obj(), columns.lb(),
                                        columns.ub(), columns.types(), names));
    }

    /**
     * Adds a variable.
     *
     * @param lb lower bound
     * @param ub upper bound
     * @param obj objective coefficient
     * @param type {@link KVX#CONTINUOUS} and so on
     * @param name its name, or null
     * @return its index
     * @throws KVXException if the solver refuses a value
     */
    public int add(double lb, double ub, double obj, char type, String name) {
        return add(Columns.of(obj).lower(lb).upper(ub).types(type).names(name));
    }

    /**
     * Finds a variable.
     *
     * @param name its name
     * @return the lowest index with that name
     * @throws KVXException with {@link KVX#ERROR_NOT_FOUND} if there is none
     */
    public int indexOf(String name) {
        int[] slot = new int[1];
        call(m -> KorvexJni.getvarbyname(m, name, slot));
        return slot[0];
    }

    /**
     * Reads a variable's coefficients.
     *
     * @param var its index
     * @return constraint indices and coefficients
     * @throws KVXException if there is no such variable
     */
    public SparseVector column(int var) { return single(columns(var, 1)); }

    /**
     * Reads the coefficients of successive variables.
     *
     * @param start index of the first
     * @param count how many
     * @return a list a variable, of constraint indices and coefficients
     * @throws KVXException if there aren't as many
     */
    public SparseMatrix columns(int start, int count) {
        return readLists(KorvexJni::getvars, start, count);
    }
}
