package com.korvex;

import java.util.function.LongToIntFunction;
import java.util.function.LongUnaryOperator;

/**
 * The parameters of an environment ({@link KVXEnv#params}) or of a model ({@link KVXModel#params}).
 * Names are matched without regard to case. Every method throws {@link KVXException} for an unknown
 * name, a parameter of another type or a value outside its range.
 */
public final class KVXParams {
    private final KVXEnv log;
    private final Handle owner;
    private final LongUnaryOperator environment;

    /** The parameters of the environment that the operator finds for the owner's handle. */
    KVXParams(KVXEnv log, Handle owner, LongUnaryOperator environment) {
        this.log = log;
        this.owner = owner;
        this.environment = environment;
    }

    private void call(LongToIntFunction nativeCall) {
        owner.call(handle -> {
            long env = environment.applyAsLong(handle);
            int status = nativeCall.applyAsInt(env);
            if (status != KVX.OK) // The text is there, too, which needn't be the owner's.
                throw new KVXException(status, KorvexJni.geterrormsg(env));
            return status;
        });
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
     * Sets an int parameter, or a double one to that value.
     *
     * @param name its name
     * @param value its new value
     */
    public void set(String name, int value) {
        call(env -> {
            int status = KorvexJni.setintparam(env, name, value);
            if (status == KVX.ERROR_UNKNOWN_PARAMETER)
                status = KorvexJni.setdblparam(env, name, value);
            return status;
        });
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
     * Reads a parameter file, a line "name value" for each parameter that is to be set.
     *
     * @param file its name
     * @throws KVXException if that fails; its message names file and line, and nothing is changed
     */
    public void read(String file) {
        log.logging(() -> call(env -> KorvexJni.readparams(env, file)));
    }

    /**
     * Writes the parameters that differ from their defaults.
     *
     * @param file name of the file
     * @throws KVXException if the file can't be written
     */
    public void write(String file) {
        log.logging(() -> call(env -> KorvexJni.writeparams(env, file)));
    }

    /**
     * What an int parameter is like.
     *
     * @param value its present value
     * @param minimum its least value
     * @param maximum its greatest value
     * @param standard its default
     */
    public record IntInfo(int value, int minimum, int maximum, int standard) {}

    /**
     * What a double parameter is like.
     *
     * @param value its present value
     * @param minimum its least value
     * @param maximum its greatest value
     * @param standard its default
     */
    public record DoubleInfo(double value, double minimum, double maximum, double standard) {}

    /**
     * What a text parameter is like.
     *
     * @param value its present value, cut off at 511 bytes
     * @param standard its default, cut off likewise
     */
    public record StringInfo(String value, String standard) {}

    /**
     * Describes an int parameter.
     *
     * @param name its name
     * @return value, range and default
     */
    public IntInfo intInfo(String name) {
        int[] info = new int[4];
        call(env -> KorvexJni.getintparaminfo(env, name, info));
        return new IntInfo(info[0], info[1], info[2], info[3]);
    }

    /**
     * Describes a double parameter.
     *
     * @param name its name
     * @return value, range and default
     */
    public DoubleInfo doubleInfo(String name) {
        double[] info = new double[4];
        call(env -> KorvexJni.getdblparaminfo(env, name, info));
        return new DoubleInfo(info[0], info[1], info[2], info[3]);
    }

    /**
     * Describes a text parameter.
     *
     * @param name its name
     * @return value and default
     */
    public StringInfo stringInfo(String name) {
        String[] info = new String[2];
        call(env -> KorvexJni.getstrparaminfo(env, name, info));
        return new StringInfo(info[0], info[1]);
    }
}
