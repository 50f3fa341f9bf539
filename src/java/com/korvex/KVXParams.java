package com.korvex;

import java.util.function.LongToIntFunction;
import java.util.function.LongUnaryOperator;

/**
 * The parameters of an environment ({@link KVXEnv#params}) or of a model ({@link KVXModel#params}).
 * Names are matched without regard to case. Every method throws {@link KVXException} for an unknown
 * name, a parameter of another type or a value outside its range.
 */
public final class KVXParams {
    private final Handle owner;
    private final LongUnaryOperator environment;

    /** The parameters of the environment that the operator finds for the owner's handle. */
    KVXParams(Handle owner, LongUnaryOperator environment) {
        this.owner = owner;
        this.environment = environment;
    }

    private void call(LongToIntFunction nativeCall) {
        owner.call(handle -> nativeCall.applyAsInt(environment.applyAsLong(handle)));
    }

    /**
     * Reads an int parameter.
     *
     * @param name its name
     * @return its value
     */
    public int getInt(String name) {
        int[] slot = new int[1];
        call(env -> KorvexJni.getintparam(env, name, slot));
        return slot[0];
    }

    /**
     * Reads a double parameter.
     *
     * @param name its name
     * @return its value
     */
    public double getDouble(String name) {
        double[] slot = new double[1];
        call(env -> KorvexJni.getdblparam(env, name, slot));
        return slot[0];
    }

    /**
     * Reads a text parameter.
     *
     * @param name its name
     * @return its value
     */
    public String getString(String name) {
        String[] slot = new String[1];
        call(env -> KorvexJni.getstrparam(env, name, slot));
        return slot[0];
    }

    /**
     * Sets an int parameter.
     *
     * @param name its name
     * @param value its new value
     */
    public void set(String name, int value) {
        call(env -> KorvexJni.setintparam(env, name, value));
    }

    /**
     * Sets a double parameter.
     *
     * @param name its name
     * @param value its new value
     */
    public void set(String name, double value) {
        call(env -> KorvexJni.setdblparam(env, name, value));
    }

    /**
     * Sets a text parameter.
     *
     * @param name its name
     * @param value its new value
     */
    public void set(String name, String value) {
        call(env -> KorvexJni.setstrparam(env, name, value));
    }

    /**
     * Sets a parameter of any type from its text.
     *
     * @param name its name
     * @param text its new value, as text
     */
    public void parse(String name, String text) {
        call(env -> KorvexJni.setparam(env, name, text));
    }

    /** Sets every parameter to its default. */
    public void reset() { call(KorvexJni::resetparams); }

    /**
     * Reads a parameter file.
     *
     * @param file its name
     */
    public void read(String file) { call(env -> KorvexJni.readparams(env, file)); }

    /**
     * Writes the parameters that differ from their defaults.
     *
     * @param file name of the file
     */
    public void write(String file) { call(env -> KorvexJni.writeparams(env, file)); }
}
