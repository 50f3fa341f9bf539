package com.korvex;

import java.util.Arrays;
import java.util.Objects;
import java.util.function.LongUnaryOperator;

/**
 * Variables to be added, all at once: {@code Columns.of(3, 2, 4).upper(9, 9, 1).names("x", "y",
 * "z")}. Everything but the objective is optional and null by default. Every array has an element
 * a variable. The arrays are kept, not copied; equality is that of the contents.
 *
 * @param obj objective coefficients; their number is that of the variables
 * @param coefficients a list a variable, of constraint indices and coefficients; null for none
 * @param lb lower bounds, {@code -}{@link KVX#INFINITY} or less for none; null for all 0
 * @param ub upper bounds, {@link KVX#INFINITY} or more for none; null for none
 * @param types {@link KVX#CONTINUOUS} and so on; null for all continuous
 * @param names names, each of which may be null, as the array may be: the solver makes one then
 */
public record Columns(double[] obj, SparseMatrix coefficients, double[] lb, double[] ub,
                      char[] types, String[] names) {
    /**
     * Checks the shape.
     *
     * @param obj objective coefficients
     * @param coefficients a list a variable
     * @param lb lower bounds
     * @param ub upper bounds
     * @param types {@link KVX#CONTINUOUS} and so on
     * @param names names
     * @throws IllegalArgumentException if an array isn't as long as {@code obj}
     */
    public Columns {
        Objects.requireNonNull(obj, "obj");
        int count = obj.length;
        if (coefficients != null)
            Check.length("coefficients", coefficients.size(), count, "variables");
        if (lb != null)
            Check.length("lb", lb.length, count, "variables");
        if (ub != null)
            Check.length("ub", ub.length, count, "variables");
        if (types != null)
            Check.length("types", types.length, count, "variables");
        if (names != null)
            Check.length("names", names.length, count, "variables");
    }

    /**
     * Begins with the objective.
     *
     * @param obj objective coefficients
     * @return continuous variables of 0 or more with these coefficients
     */
    public static Columns of(double... obj) {
        return new Columns(obj, null, null, null, null, null);
    }

    /**
     * Adds coefficients in constraints that there are.
     *
     * @param coefficients a list a variable, of constraint indices and coefficients
     * @return the columns with these coefficients
     */
    public Columns coefficients(SparseMatrix coefficients) {
        return new Columns(obj, coefficients, lb, ub, types, names);
    }

    /**
     * Sets lower bounds.
     *
     * @param lb a bound a variable
     * @return the columns with these bounds
     */
    public Columns lower(double... lb) {
        return new Columns(obj, coefficients, lb, ub, types, names);
    }

    /**
     * Sets upper bounds.
     *
     * @param ub a bound a variable
     * @return the columns with these bounds
     */
    public Columns upper(double... ub) {
        return new Columns(obj, coefficients, lb, ub, types, names);
    }

    /**
     * Sets the types.
     *
     * @param types a type a variable
     * @return the columns with these types
     */
    public Columns types(char... types) {
        return new Columns(obj, coefficients, lb, ub, types, names);
    }

    /**
     * Sets one type for all.
     *
     * @param type the type
     * @return the columns with this type
     */
    public Columns allOf(char type) { return types(filled(type)); }

    /**
     * Sets the names.
     *
     * @param names a name a variable, or null
     * @return the columns with these names
     */
    public Columns names(String... names) {
        return new Columns(obj, coefficients, lb, ub, types, names);
    }

    /**
     * Returns the number of variables.
     *
     * @return the length of {@code obj}
     */
    public int size() { return obj.length; }

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

    /** A maker of a model with these variables. */
    LongUnaryOperator newModel(String name) {
        if (coefficients != null)
            throw new IllegalArgumentException("coefficients, but no constraints yet");
        Check.text("name", name);
        Columns all = whole(null);
        return env
            -> KorvexJni.newmodel(new int[1], env, name, size(), all.obj, all.lb, all.ub, all.types,
                                  all.names);
    }

    /** A maker of a model with these variables and the constraints' coefficients. */
    LongUnaryOperator load(String name, int sense, double constant, Rows rows) {
        if (rows.coefficients() != null || rows.lower() != null)
            throw new IllegalArgumentException("rows with coefficients or lower bounds");
        Check.text("name", name);
        Columns all = whole("C");
        int[] beg = all.coefficients.begins(), len = all.coefficients.lengths(beg);
        String[] constrNames = filled(rows.names(), rows.size(), "R");
        return env
            -> KorvexJni.loadmodel(env, name, size(), rows.size(), sense, constant, all.obj,
                                   rows.senses(), rows.rhs(), beg, len, all.coefficients.ind(),
                                   all.coefficients.val(), all.lb, all.ub, all.types, all.names,
                                   constrNames);
    }

    /** The columns with the defaults as arrays, for natives that need all of them. */
    private Columns whole(String letter) {
        double[] infinite = new double[ub == null ? size() : 0];
        Arrays.fill(infinite, KVX.INFINITY);
        int[] noEntries = new int[0];
        return new Columns(
            obj,
            coefficients == null ? new SparseMatrix(new int[size()], noEntries, new double[0])
                                 : coefficients,
            lb == null ? new double[size()] : lb, ub == null ? infinite : ub,
            types == null ? filled(KVX.CONTINUOUS) : types, filled(names, size(), letter));
    }

    private char[] filled(char type) {
        char[] all = new char[size()];
        Arrays.fill(all, type);
        return all;
    }

    /** Names, and for those that aren't there the solver's own, a letter and a number. */
    private static String[] filled(String[] names, int count, String letter) {
        String[] all = new String[count];
        for (int k = 0; k < count; k++)
            all[k] = names != null && names[k] != null ? names[k]
                     : letter == null                  ? null
                                                       : letter + k;
        return Check.texts("names", all);
    }
}
