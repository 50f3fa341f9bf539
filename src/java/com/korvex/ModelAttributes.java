package com.korvex;

/**
 * The attributes of a model and its elements: the part of {@link KVXModel} that reads and sets.
 * {@link KVXAttribute} lists them; names are matched without regard to case. The methods throw
 * {@link KVXException} for an unknown name, an attribute of another type or shape, an index that
 * doesn't exist, and a datum that isn't there; and {@link IndexOutOfBoundsException} for a range
 * that begins below 0. Of no elements at all, nothing but the name is looked at.
 */
abstract class ModelAttributes extends ModelCalls {
    /**
     * Describes an attribute.
     *
     * @param attribute its name
     * @return its type, what it belongs to, and whether it can be set
     */
    public AttributeInfo attributeInfo(String attribute) {
        return together(model -> info(model, attribute));
    }

    /**
     * Says that an attribute will be read soon: a library may compute it now.
     *
     * @param attribute its name
     */
    public void prefetch(String attribute) {
        call(model -> KorvexJni.prefetchattr(model, attribute));
    }

    /**
     * Reads an int attribute of the model.
     *
     * @param attribute its name
     * @return its value
     */
    public int getInt(String attribute) {
        return ofModel(KorvexJni::getintattrlist, attribute, new int[1])[0];
    }

    /**
     * Reads an int attribute of one variable, constraint and so on.
     *
     * @param attribute its name
     * @param element index of the element
     * @return its value
     */
    public int getInt(String attribute, int element) {
        return ofElement(KorvexJni::getintattrlist, attribute, element, new int[1])[0];
    }

    /**
     * Reads an int attribute of all variables, constraints and so on.
     *
     * @param attribute its name
     * @return a value an element
     * @throws IllegalArgumentException if it has a single value
     */
    public int[] getInts(String attribute) {
        return readAll(KorvexJni::getintattrlist, attribute, int[] ::new);
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
        return read(KorvexJni::getintattrlist, attribute, start, count, int[] ::new);
    }

    /**
     * Reads an int attribute of some variables, constraints and so on.
     *
     * @param attribute its name
     * @param ind indices of the elements
     * @return a value an element
     */
    public int[] getInts(String attribute, int[] ind) {
        return ofList(KorvexJni::getintattrlist, attribute, ind, new int[ind.length]);
    }

    /**
     * Reads a double attribute of the model.
     *
     * @param attribute its name
     * @return its value
     */
    public double getDouble(String attribute) {
        return ofModel(KorvexJni::getdblattrlist, attribute, new double[1])[0];
    }

    /**
     * Reads a double attribute of one variable, constraint and so on.
     *
     * @param attribute its name
     * @param element index of the element
     * @return its value
     */
    public double getDouble(String attribute, int element) {
        return ofElement(KorvexJni::getdblattrlist, attribute, element, new double[1])[0];
    }

    /**
     * Reads a double attribute of all variables, constraints and so on.
     *
     * @param attribute its name
     * @return a value an element
     * @throws IllegalArgumentException if it has a single value
     */
    public double[] getDoubles(String attribute) {
        return readAll(KorvexJni::getdblattrlist, attribute, double[] ::new);
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
        return read(KorvexJni::getdblattrlist, attribute, start, count, double[] ::new);
    }

    /**
     * Reads a double attribute of some variables, constraints and so on.
     *
     * @param attribute its name
     * @param ind indices of the elements
     * @return a value an element
     */
    public double[] getDoubles(String attribute, int[] ind) {
        return ofList(KorvexJni::getdblattrlist, attribute, ind, new double[ind.length]);
    }

    /**
     * Reads a character attribute of one variable, constraint and so on.
     *
     * @param attribute its name
     * @param element index of the element
     * @return its value
     */
    public char getChar(String attribute, int element) {
        return ofElement(KorvexJni::getcharattrlist, attribute, element, new char[1])[0];
    }

    /**
     * Reads a character attribute of all variables, constraints and so on.
     *
     * @param attribute its name
     * @return a value an element
     * @throws IllegalArgumentException if it has a single value
     */
    public char[] getChars(String attribute) {
        return readAll(KorvexJni::getcharattrlist, attribute, char[] ::new);
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
        return read(KorvexJni::getcharattrlist, attribute, start, count, char[] ::new);
    }

    /**
     * Reads a character attribute of some variables, constraints and so on.
     *
     * @param attribute its name
     * @param ind indices of the elements
     * @return a value an element
     */
    public char[] getChars(String attribute, int[] ind) {
        return ofList(KorvexJni::getcharattrlist, attribute, ind, new char[ind.length]);
    }

    /**
     * Reads a text attribute of the model.
     *
     * @param attribute its name
     * @return its value
     */
    public String getString(String attribute) {
        return ofModel(KorvexJni::getstrattrlist, attribute, new String[1])[0];
    }

    /**
     * Reads a text attribute of one variable, constraint and so on.
     *
     * @param attribute its name
     * @param element index of the element
     * @return its value
     */
    public String getString(String attribute, int element) {
        return ofElement(KorvexJni::getstrattrlist, attribute, element, new String[1])[0];
    }

    /**
     * Reads a text attribute of all variables, constraints and so on.
     *
     * @param attribute its name
     * @return a value an element
     * @throws IllegalArgumentException if it has a single value
     */
    public String[] getStrings(String attribute) {
        return readAll(KorvexJni::getstrattrlist, attribute, String[] ::new);
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
        return read(KorvexJni::getstrattrlist, attribute, start, count, String[] ::new);
    }

    /**
     * Reads a text attribute of some variables, constraints and so on.
     *
     * @param attribute its name
     * @param ind indices of the elements
     * @return a value an element
     */
    public String[] getStrings(String attribute, int[] ind) {
        return ofList(KorvexJni::getstrattrlist, attribute, ind, new String[ind.length]);
    }

    /**
     * Sets an int attribute of the model, or a double attribute to a whole number.
     *
     * @param attribute its name
     * @param value its value
     */
    public void set(String attribute, int value) { setNumber(attribute, 0, -1, value); }

    /**
     * Sets an int attribute of one variable, constraint and so on, or a double attribute to a whole
     * number.
     *
     * @param attribute its name
     * @param element index of the element
     * @param value its value
     */
    public void set(String attribute, int element, int value) {
        setNumber(attribute, element, 0, value);
    }

    /**
     * Sets an int attribute of successive variables, constraints and so on.
     *
     * @param attribute its name
     * @param start index of the first element
     * @param values a value an element
     */
    public void set(String attribute, int start, int[] values) {
        ofRange(KorvexJni::setintattrlist, attribute, start, values.length, values);
    }

    /**
     * Sets an int attribute of some variables, constraints and so on.
     *
     * @param attribute its name
     * @param ind indices of the elements
     * @param values a value an element of {@code ind}
     */
    public void set(String attribute, int[] ind, int[] values) {
        Check.length("values", values.length, ind.length, "indices");
        ofList(KorvexJni::setintattrlist, attribute, ind, values);
    }

    /**
     * Sets a double attribute of the model.
     *
     * @param attribute its name
     * @param value its value
     */
    public void set(String attribute, double value) {
        ofModel(KorvexJni::setdblattrlist, attribute, new double[] {value});
    }

    /**
     * Sets a double attribute of one variable, constraint and so on.
     *
     * @param attribute its name
     * @param element index of the element
     * @param value its value
     */
    public void set(String attribute, int element, double value) {
        ofElement(KorvexJni::setdblattrlist, attribute, element, new double[] {value});
    }

    /**
     * Sets a double attribute of successive variables, constraints and so on.
     *
     * @param attribute its name
     * @param start index of the first element
     * @param values a value an element
     */
    public void set(String attribute, int start, double[] values) {
        ofRange(KorvexJni::setdblattrlist, attribute, start, values.length, values);
    }

    /**
     * Sets a double attribute of some variables, constraints and so on.
     *
     * @param attribute its name
     * @param ind indices of the elements
     * @param values a value an element of {@code ind}
     */
    public void set(String attribute, int[] ind, double[] values) {
        Check.length("values", values.length, ind.length, "indices");
        ofList(KorvexJni::setdblattrlist, attribute, ind, values);
    }

    /**
     * Sets a character attribute of one variable, constraint and so on.
     *
     * @param attribute its name
     * @param element index of the element
     * @param value its value
     */
    public void set(String attribute, int element, char value) {
        ofElement(KorvexJni::setcharattrlist, attribute, element, new char[] {value});
    }

    /**
     * Sets a character attribute of successive variables, constraints and so on.
     *
     * @param attribute its name
     * @param start index of the first element
     * @param values a value an element
     */
    public void set(String attribute, int start, char[] values) {
        ofRange(KorvexJni::setcharattrlist, attribute, start, values.length, values);
    }

    /**
     * Sets a character attribute of some variables, constraints and so on.
     *
     * @param attribute its name
     * @param ind indices of the elements
     * @param values a value an element of {@code ind}
     */
    public void set(String attribute, int[] ind, char[] values) {
        Check.length("values", values.length, ind.length, "indices");
        ofList(KorvexJni::setcharattrlist, attribute, ind, values);
    }

    /**
     * Sets a text attribute of the model.
     *
     * @param attribute its name
     * @param value its value; null for none
     */
    public void set(String attribute, String value) {
        ofModel(KorvexJni::setstrattrlist, attribute, new String[] {Check.text("value", value)});
    }

    /**
     * Sets a text attribute of one variable, constraint and so on.
     *
     * @param attribute its name
     * @param element index of the element
     * @param value its value
     */
    public void set(String attribute, int element, String value) {
        ofElement(KorvexJni::setstrattrlist, attribute, element,
                  new String[] {Check.text("value", value)});
    }

    /**
     * Sets a text attribute of successive variables, constraints and so on.
     *
     * @param attribute its name
     * @param start index of the first element
     * @param values a value an element
     */
    public void set(String attribute, int start, String[] values) {
        ofRange(KorvexJni::setstrattrlist, attribute, start, values.length,
                Check.texts("values", values));
    }

    /**
     * Sets a text attribute of some variables, constraints and so on.
     *
     * @param attribute its name
     * @param ind indices of the elements
     * @param values a value an element of {@code ind}
     */
    public void set(String attribute, int[] ind, String[] values) {
        Check.length("values", values.length, ind.length, "indices");
        ofList(KorvexJni::setstrattrlist, attribute, ind, Check.texts("values", values));
    }
}
