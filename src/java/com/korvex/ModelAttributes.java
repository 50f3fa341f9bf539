package com.korvex;

import java.util.function.LongToIntFunction;

/** The attributes of a model and its elements: the part of {@link KVXModel} that reads and sets. */
abstract class ModelAttributes {
    /** Makes a native call on the model that returns a status. */
    abstract void call(LongToIntFunction nativeCall);

    /**
     * Reads an int attribute of the model.
     *
     * @param attribute its name
     * @return its value
     */
    public int getInt(String attribute) {
        int[] slot = new int[1];
        call(model -> KorvexJni.getintattrlist(model, attribute, 0, -1, null, slot));
        return slot[0];
    }

    /**
     * Reads a double attribute of the model.
     *
     * @param attribute its name
     * @return its value
     */
    public double getDouble(String attribute) {
        double[] slot = new double[1];
        call(model -> KorvexJni.getdblattrlist(model, attribute, 0, -1, null, slot));
        return slot[0];
    }

    /**
     * Reads a text attribute of the model.
     *
     * @param attribute its name
     * @return its value
     */
    public String getString(String attribute) {
        String[] slot = new String[1];
        call(model -> KorvexJni.getstrattrlist(model, attribute, 0, -1, null, slot));
        return slot[0];
    }

    /**
     * Reads an int attribute of successive variables, constraints and so on.
     *
     * @param attribute its name
     * @param start index of the first element
     * @param count number of elements
     * @return a value an element
     */
    public int[] getInts(String attribute, int start, int count) {
        int[] values = new int[count];
        if (isRange(start, count))
            call(model -> KorvexJni.getintattrlist(model, attribute, start, count, null, values));
        return values;
    }

    /**
     * Reads a double attribute of successive variables, constraints and so on.
     *
     * @param attribute its name
     * @param start index of the first element
     * @param count number of elements
     * @return a value an element
     */
    public double[] getDoubles(String attribute, int start, int count) {
        double[] values = new double[count];
        if (isRange(start, count))
            call(model -> KorvexJni.getdblattrlist(model, attribute, start, count, null, values));
        return values;
    }

    /**
     * Reads a character attribute of successive variables, constraints and so on.
     *
     * @param attribute its name
     * @param start index of the first element
     * @param count number of elements
     * @return a value an element
     */
    public char[] getChars(String attribute, int start, int count) {
        char[] values = new char[count];
        if (isRange(start, count))
            call(model -> KorvexJni.getcharattrlist(model, attribute, start, count, null, values));
        return values;
    }

    /**
     * Reads a text attribute of successive variables, constraints and so on.
     *
     * @param attribute its name
     * @param start index of the first element
     * @param count number of elements
     * @return a value an element
     */
    public String[] getStrings(String attribute, int start, int count) {
        String[] values = new String[count];
        if (isRange(start, count))
            call(model -> KorvexJni.getstrattrlist(model, attribute, start, count, null, values));
        return values;
    }

    /**
     * Sets an int attribute of the model.
     *
     * @param attribute its name
     * @param value its value
     */
    public void set(String attribute, int value) {
        int[] slot = {value};
        call(model -> KorvexJni.setintattrlist(model, attribute, 0, -1, null, slot));
    }

    /**
     * Sets a double attribute of the model.
     *
     * @param attribute its name
     * @param value its value
     */
    public void set(String attribute, double value) {
        double[] slot = {value};
        call(model -> KorvexJni.setdblattrlist(model, attribute, 0, -1, null, slot));
    }

    /**
     * Sets a text attribute of the model.
     *
     * @param attribute its name
     * @param value its value; may be null
     */
    public void set(String attribute, String value) {
        String[] slot = {value};
        call(model -> KorvexJni.setstrattrlist(model, attribute, 0, -1, null, slot));
    }

    /**
     * Sets an int attribute of successive variables, constraints and so on.
     *
     * @param attribute its name
     * @param start index of the first element
     * @param values a value an element
     */
    public void set(String attribute, int start, int[] values) {
        int count = values.length;
        if (isRange(start, count))
            call(model -> KorvexJni.setintattrlist(model, attribute, start, count, null, values));
    }

    /**
     * Sets a double attribute of successive variables, constraints and so on.
     *
     * @param attribute its name
     * @param start index of the first element
     * @param values a value an element
     */
    public void set(String attribute, int start, double[] values) {
        int count = values.length;
        if (isRange(start, count))
            call(model -> KorvexJni.setdblattrlist(model, attribute, start, count, null, values));
    }

    /**
     * Sets a character attribute of successive variables, constraints and so on.
     *
     * @param attribute its name
     * @param start index of the first element
     * @param values a value an element
     */
    public void set(String attribute, int start, char[] values) {
        int count = values.length;
        if (isRange(start, count))
            call(model -> KorvexJni.setcharattrlist(model, attribute, start, count, null, values));
    }

    /**
     * Sets a text attribute of successive variables, constraints and so on.
     *
     * @param attribute its name
     * @param start index of the first element
     * @param values a value an element; they may be null
     */
    public void set(String attribute, int start, String[] values) {
        int count = values.length;
        if (isRange(start, count))
            call(model -> KorvexJni.setstrattrlist(model, attribute, start, count, null, values));
    }

    /** A start of -1 or a count of 0 would ask for something else. */
    private static boolean isRange(int start, int count) {
        if (start < 0)
            throw new IndexOutOfBoundsException("start " + start);
        return count > 0;
    }
}
