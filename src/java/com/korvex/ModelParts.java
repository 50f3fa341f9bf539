package com.korvex;

/**
 * The parts of a model, the models derived from it, and what changes it as a whole: the side of
 * {@link KVXModel} that builds. All indices count from 0, in the order of adding. Whoever adds gets
 * an index back, for which pending changes are applied first: so to add many elements at once is
 * much faster than one by one.
 */
abstract class ModelParts extends ModelAttributes {
    /**
     * Returns the environment that the model was made in.
     *
     * @return the environment
     */
    public abstract KVXEnv env();

    /** Makes the object for a model that a native derives from this one. */
    abstract KVXModel derived(KVXEnv target, Deriver deriver);

    /** A native that makes a model of a model. */
    interface Deriver {
        int derive(long model, long environment, long[] slot);
    }

    /**
     * Returns the variables.
     *
     * @return that part of this model
     */
    public Variables variables() { return new Variables(this); }

    /**
     * Returns the linear constraints, range constraints among them.
     *
     * @return that part of this model
     */
    public Constraints constraints() { return new Constraints(this); }

    /**
     * Returns the quadratic constraints.
     *
     * @return that part of this model
     */
    public QuadraticConstraints quadraticConstraints() { return new QuadraticConstraints(this); }

    /**
     * Returns the special ordered sets.
     *
     * @return that part of this model
     */
    public SpecialOrderedSets sos() { return new SpecialOrderedSets(this); }

    /**
     * Returns the general constraints.
     *
     * @return that part of this model
     */
    public GeneralConstraints generalConstraints() { return new GeneralConstraints(this); }

    /**
     * Returns the objective.
     *
     * @return that part of this model
     */
    public Objective objective() { return new Objective(this); }

    /**
     * Returns the simplex basis.
     *
     * @return that part of this model
     */
    public Basis basis() { return new Basis(this); }

    /**
     * Applies pending changes. A library may change the model at once, as the development solver
     * does; with another, what was added, deleted or set can be read, and be referred to by its
     * index, only after this. A run, and whatever adds elements or needs their number, does it by
     * itself before anything else.
     *
     * @throws KVXException if the solver refuses
     */
    public void update() { call(KorvexJni::updatemodel); }

    /**
     * Forgets the solution.
     *
     * @param all true to forget start values and basis, too
     * @throws KVXException if the solver refuses
     */
    public void reset(boolean all) { call(model -> KorvexJni.reset(model, all ? 1 : 0)); }

    /**
     * Turns the model into its feasibility relaxation: bounds and constraints may be violated at a
     * price, which becomes the objective. The violations are new variables.
     *
     * @param penalty 0: sum of violations; 1: sum of squares; 2: number of violations
     * @param minrelax false: minimise the penalty alone; true: find the least penalty, then the
     *     best original objective at that penalty
     * @param lbpen a weight of 0 or more a variable for violated lower bounds, or null to keep
     *     these; {@link KVX#INFINITY} keeps one
     * @param ubpen a weight a variable for violated upper bounds likewise, or null to keep these
     * @param conpen a weight a constraint for violations likewise, or null to keep all
     * @return the least penalty if {@code minrelax} is true, else 0
     * @throws IllegalArgumentException if an array hasn't an element a variable or constraint
     * @throws KVXException if the solver refuses, or what may be violated isn't enough: nothing is
     *     changed then
     */
    public double relaxFeasibility(int penalty, boolean minrelax, double[] lbpen, double[] ubpen,
                                   double[] conpen) {
        double[] slot = new double[1];
        atLength(model -> {
            check(model, KorvexJni.updatemodel(model));
            int variables = count(model, "NumVars");
            if (lbpen != null)
                Check.length("lbpen", lbpen.length, variables, "variables");
            if (ubpen != null)
                Check.length("ubpen", ubpen.length, variables, "variables");
            if (conpen != null)
                Check.length("conpen", conpen.length, count(model, "NumConstrs"), "constraints");
            return KorvexJni.feasrelax(model, penalty, minrelax ? 1 : 0, lbpen, ubpen, conpen,
                                       slot);
        });
        return slot[0];
    }

    /**
     * Copies the model into an environment.
     *
     * @param env the environment, this model's own or another
     * @return the copy, a model of its own
     * @throws KVXException if the solver refuses
     */
    public KVXModel copy(KVXEnv env) { return derived(env, KorvexJni::copymodel); }

    /**
     * Makes the model without integrality, SOS and general constraints.
     *
     * @return a model of its own, in the same environment
     * @throws KVXException if the solver refuses
     */
    public KVXModel relaxed() { return derived(KorvexJni::relaxmodel); }

    /**
     * Makes the linear model in which discrete variables are fixed at the best solution.
     *
     * @return a model of its own, in the same environment
     * @throws KVXException if there is no solution, or the solver refuses
     */
    public KVXModel fixed() { return derived(KorvexJni::fixedmodel); }

    /**
     * Makes the model as it is after presolve, with the same optimal value.
     *
     * @return a model of its own, in the same environment
     * @throws KVXException if the solver refuses
     */
    public KVXModel presolved() { return derived(KorvexJni::presolvemodel); }

    /**
     * Makes the dual of a linear model, with the same optimal value.
     *
     * @return a model of its own, in the same environment
     * @throws KVXException if the model isn't linear, or the solver refuses
     */
    public KVXModel dual() { return derived(KorvexJni::dualmodel); }

    /**
     * Makes the model that minimises the sum of violations of the linear constraints.
     *
     * @return a model of its own, in the same environment
     * @throws KVXException if the solver refuses
     */
    public KVXModel feasibility() { return derived(KorvexJni::feasibility); }

    /**
     * Makes the model with general constraints, semi-continuous variables and piecewise-linear
     * objective terms replaced by linear constraints, integer variables and SOS.
     *
     * @return a model of its own, in the same environment
     * @throws KVXException if the solver refuses
     */
    public KVXModel linearized() { return derived(KorvexJni::linearize); }

    /**
     * Makes the model of the current scenario, {@link KVXAttribute#SCENARIO_NUMBER}.
     *
     * @return a model of its own, in the same environment
     * @throws KVXException if the solver refuses
     */
    public KVXModel singleScenario() { return derived(KorvexJni::singlescenariomodel); }

    private interface Maker {
        int make(long model, long[] slot);
    }

    private KVXModel derived(Maker maker) {
        return derived(env(), (model, environment, slot) -> maker.make(model, slot));
    }

    /** Gives up all {@link KVXModel#concurrentParams} that were set. */
    public void discardConcurrentParams() {
        call(model -> {
            KorvexJni.discardconcurrentenvs(model);
            return KVX.OK;
        });
    }

    /** Gives up all {@link KVXModel#goalParams} that were set. */
    public void discardGoalParams() {
        call(model -> {
            KorvexJni.discardmultiobjenvs(model);
            return KVX.OK;
        });
    }
}
