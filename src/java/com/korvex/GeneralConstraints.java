package com.korvex;

import com.korvex.GeneralConstraint.Aggregate;
import com.korvex.GeneralConstraint.Function;
import com.korvex.GeneralConstraint.Indicator;
import com.korvex.GeneralConstraint.PiecewiseLinear;
import com.korvex.GeneralConstraint.Polynomial;
import com.korvex.GeneralConstraint.Tree;
import java.util.Objects;
import java.util.function.LongToIntFunction;

/** The general constraints of a model. */
public final class GeneralConstraints extends ModelElements {
    GeneralConstraints(ModelCalls model) {
        super(model, "NumGenConstrs", KorvexJni::delgenconstrs);
    }

    /**
     * Adds a general constraint.
     *
     * @param constraint the constraint
     * @param name its name, or null
     * @return its index
     * @throws KVXException if the solver refuses a value or can't do the kind
     */
    public int add(GeneralConstraint constraint, String name) {
        return add(constraint, name, null);
    }

    /**
     * Adds a general constraint with options for the solver.
     *
     * @param constraint the constraint
     * @param name its name, or null
     * @param options the solver's options for a {@link GeneralConstraint.Function} or a {@link
     *     GeneralConstraint.Polynomial}, or null
     * @return its index
     * @throws IllegalArgumentException if there are options for another kind
     * @throws KVXException if the solver refuses a value or can't do the kind
     */
    public int add(GeneralConstraint constraint, String name, String options) {
        Check.text("name", name);
        Check.text("options", options);
        int kind = Objects.requireNonNull(constraint, "constraint").kind();
        if (options != null && (kind < KVX.GENCONSTR_POLY || kind > KVX.GENCONSTR_LOGISTIC))
            throw new IllegalArgumentException("kind " + kind + " takes no options");
        return add(adder(constraint, name, options));
    }

    private static LongToIntFunction adder(GeneralConstraint constraint, String name,
                                           String options) {
        if (constraint instanceof Aggregate c)
            return m -> addAggregate(m, c, name, c.result(), c.operands());
        if (constraint instanceof Function c)
            return m -> addFunction(m, c, name, c.x(), c.y(), options);
        if (constraint instanceof PiecewiseLinear c) {
            Points p = c.points();
            return m -> KorvexJni.addgenconstrpwl(m, name, c.x(), c.y(), p.size(), p.x(), p.y());
        }
        if (constraint instanceof Polynomial c) {
            double[] coefs = c.coefficients();
            return m
                -> KorvexJni.addgenconstrpoly(m, name, c.x(), c.y(), coefs.length, coefs, options);
        }
        if (constraint instanceof Indicator c) {
            SparseVector t = c.terms();
            return m
                -> KorvexJni.addgenconstrindicator(m, name, c.variable(), c.value(), t.size(),
                                                   t.ind(), t.val(), c.sense(), c.rhs());
        }
        Tree c = (Tree)constraint;
        int nodes = c.operations().length;
        return m
            -> KorvexJni.addgenconstrnl(m, name, c.result(), nodes, c.operations(), c.data(),
                                        c.parents());
    }

    private static int addAggregate(long m, Aggregate c, String name, int result, int[] ops) {
        int n = ops.length;
        return switch (c.kind()) {
            case KVX.GENCONSTR_MAX ->
                KorvexJni.addgenconstrmax(m, name, result, n, ops, c.number());
            case KVX.GENCONSTR_MIN ->
                KorvexJni.addgenconstrmin(m, name, result, n, ops, c.number());
            case KVX.GENCONSTR_AND -> KorvexJni.addgenconstrand(m, name, result, n, ops);
            case KVX.GENCONSTR_OR -> KorvexJni.addgenconstror(m, name, result, n, ops);
            default -> KorvexJni.addgenconstrnorm(m, name, result, n, ops, c.number());
        };
    }

    private static int addFunction(long m, Function c, String name, int x, int y, String options) {
        return switch (c.kind()) {
            case KVX.GENCONSTR_ABS -> KorvexJni.addgenconstrabs(m, name, y, x);
            case KVX.GENCONSTR_EXP -> KorvexJni.addgenconstrexp(m, name, x, y, options);
            case KVX.GENCONSTR_EXPA ->
                KorvexJni.addgenconstrexpa(m, name, x, y, options, c.number());
            case KVX.GENCONSTR_LOG -> KorvexJni.addgenconstrlog(m, name, x, y, options);
            case KVX.GENCONSTR_LOGA ->
                KorvexJni.addgenconstrloga(m, name, x, y, options, c.number());
            case KVX.GENCONSTR_POW -> KorvexJni.addgenconstrpow(m, name, x, y, options, c.number());
            case KVX.GENCONSTR_SIN -> KorvexJni.addgenconstrsin(m, name, x, y, options);
            case KVX.GENCONSTR_COS -> KorvexJni.addgenconstrcos(m, name, x, y, options);
            case KVX.GENCONSTR_TAN -> KorvexJni.addgenconstrtan(m, name, x, y, options);
            default -> KorvexJni.addgenconstrlogistic(m, name, x, y, options);
        };
    }

    /**
     * Reads a general constraint. Its name and options are attributes, {@link
     * KVXAttribute#GEN_CONSTR_NAME} and {@link KVXAttribute#GEN_CONSTR_OPTIONS}.
     *
     * @param index its index
     * @return the constraint, of the shape that its kind has
     * @throws KVXException if there is no such constraint, and with {@link
     *     KVX#ERROR_NOT_SUPPORTED} if its kind is unknown here
     */
    public GeneralConstraint get(int index) { return model.together(m -> read(m, index)); }

    private static GeneralConstraint read(long m, int index) {
        int kind = kind(m, index);
        return switch (kind) {
            case KVX.GENCONSTR_MAX -> readAggregate(m, kind, index, KorvexJni::getgenconstrmax);
            case KVX.GENCONSTR_MIN -> readAggregate(m, kind, index, KorvexJni::getgenconstrmin);
            case KVX.GENCONSTR_NORM -> readAggregate(m, kind, index, KorvexJni::getgenconstrnorm);
            case KVX.GENCONSTR_AND -> readAggregate(m, kind, index, (model, i, r, n, ops, none)
                -> KorvexJni.getgenconstrand(model, i, r, n, ops));
            case KVX.GENCONSTR_OR -> readAggregate(m, kind, index, (model, i, r, n, ops, none)
                -> KorvexJni.getgenconstror(model, i, r, n, ops));
            case KVX.GENCONSTR_PWL -> readPiecewiseLinear(m, index);
            case KVX.GENCONSTR_POLY -> readPolynomial(m, index);
            case KVX.GENCONSTR_INDICATOR -> readIndicator(m, index);
            case KVX.GENCONSTR_NL -> readTree(m, index);
            default -> readFunction(m, kind, index);
        };
    }

    private static int kind(long m, int index) {
        int[] slot = new int[1];
        check(m, KorvexJni.getintattrlist(m, "GenConstrType", index, 0, null, slot));
        return slot[0];
    }

    private interface AggregateReader {
        int read(long model, int index, int[] result, int[] count, int[] operands, double[] number);
    }

    private static Aggregate readAggregate(long m, int kind, int index, AggregateReader reader) {
        int[] result = new int[1], count = new int[1];
        double[] number = new double[1];
        check(m, reader.read(m, index, result, count, null, number));
        int[] operands = new int[count[0]];
        check(m, reader.read(m, index, null, null, operands, null));
        return new Aggregate(kind, result[0], operands, number[0]);
    }

    private static Function readFunction(long m, int kind, int index) {
        int[] x = new int[1], y = new int[1];
        double[] number = new double[1];
        check(m, switch (kind) {
            case KVX.GENCONSTR_ABS -> KorvexJni.getgenconstrabs(m, index, y, x);
            case KVX.GENCONSTR_EXP -> KorvexJni.getgenconstrexp(m, index, x, y);
            case KVX.GENCONSTR_EXPA -> KorvexJni.getgenconstrexpa(m, index, x, y, number);
            case KVX.GENCONSTR_LOG -> KorvexJni.getgenconstrlog(m, index, x, y);
            case KVX.GENCONSTR_LOGA -> KorvexJni.getgenconstrloga(m, index, x, y, number);
            case KVX.GENCONSTR_POW -> KorvexJni.getgenconstrpow(m, index, x, y, number);
            case KVX.GENCONSTR_SIN -> KorvexJni.getgenconstrsin(m, index, x, y);
            case KVX.GENCONSTR_COS -> KorvexJni.getgenconstrcos(m, index, x, y);
            case KVX.GENCONSTR_TAN -> KorvexJni.getgenconstrtan(m, index, x, y);
            case KVX.GENCONSTR_LOGISTIC -> KorvexJni.getgenconstrlogistic(m, index, x, y);
            default -> throw new KVXException(KVX.ERROR_NOT_SUPPORTED, "general constraint " +
                                              index + " is of the unknown kind " + kind);
        });
        return new Function(kind, x[0], y[0], number[0]);
    }

    private static PiecewiseLinear readPiecewiseLinear(long m, int index) {
        int[] x = new int[1], y = new int[1], count = new int[1];
        check(m, KorvexJni.getgenconstrpwl(m, index, x, y, count, null, null));
        Points points = new Points(new double[count[0]], new double[count[0]]);
        check(m, KorvexJni.getgenconstrpwl(m, index, null, null, null, points.x(), points.y()));
        return new PiecewiseLinear(x[0], y[0], points);
    }

    private static Polynomial readPolynomial(long m, int index) {
        int[] x = new int[1], y = new int[1], count = new int[1];
        check(m, KorvexJni.getgenconstrpoly(m, index, x, y, count, null));
        double[] coefficients = new double[count[0]];
        check(m, KorvexJni.getgenconstrpoly(m, index, null, null, null, coefficients));
        return new Polynomial(x[0], y[0], coefficients);
    }

    private static Indicator readIndicator(long m, int index) {
        int[] variable = new int[1], value = new int[1], count = new int[1];
        char[] sense = new char[1];
        double[] rhs = new double[1];
        check(m, KorvexJni.getgenconstrindicator(m, index, variable, value, count, null, null,
                                                 sense, rhs));
        SparseVector terms = new SparseVector(new int[count[0]], new double[count[0]]);
        check(m, KorvexJni.getgenconstrindicator(m, index, null, null, null, terms.ind(),
                                                 terms.val(), null, null));
        return new Indicator(variable[0], value[0], terms, sense[0], rhs[0]);
    }

    private static Tree readTree(long m, int index) {
        int[] result = new int[1], count = new int[1];
        check(m, KorvexJni.getgenconstrnl(m, index, result, count, null, null, null));
        int nodes = count[0];
        Tree tree = new Tree(result[0], new int[nodes], new double[nodes], new int[nodes]);
        check(m, KorvexJni.getgenconstrnl(m, index, null, null, tree.operations(), tree.data(),
                                          tree.parents()));
        return tree;
    }
}
