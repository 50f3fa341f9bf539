package com.korvex;

import java.util.ArrayList;
import java.util.List;
import java.util.function.IntFunction;
import java.util.function.LongFunction;
import java.util.function.LongToIntFunction;

/**
 * How native calls on a model are made: one, or several with nothing in between; and the shapes in
 * which attributes are read and set.
 */
abstract class ModelCalls {
    /** From this length on, an array is made only once it is known that the model fills it. */
    private static final int LONG = 1 << 16;

    /** Makes a native call on the model that returns a status. */
    abstract void call(LongToIntFunction nativeCall);

    /**
     * Makes native calls that take as long as a run, and log: other threads don't wait for them.
     */
    abstract void atLength(LongToIntFunction nativeCalls);

    /** Makes several native calls on the model, between which no other thread uses it. */
    <T> T together(LongFunction<T> calls) {
        List<T> result = new ArrayList<>(1);
        call(model -> {
            result.add(calls.apply(model));
            return KVX.OK;
        });
        return result.get(0);
    }

    /** Fails as {@link #call} does, for a status inside {@link #together}. */
    static void check(long model, int status) {
        if (status != KVX.OK)
            throw new KVXException(status, KorvexJni.geterrormsg(KorvexJni.getenv(model)));
    }

    /** Reads an int attribute of the model inside {@link #together}. */
    static int count(long model, String attribute) {
        int[] slot = new int[1];
        check(model, KorvexJni.getintattrlist(model, attribute, 0, -1, null, slot));
        return slot[0];
    }

    /** The natives' common form: some values of an attribute go to or come from an array. */
    interface Access<A> {
        int values(long model, String attribute, int start, int count, int[] ind, A values);
    }

    /** The model's own value. */
    <A> A ofModel(Access<A> access, String attribute, A slot) {
        call(model -> access.values(model, attribute, 0, -1, null, slot));
        return slot;
    }

    <A> A ofElement(Access<A> access, String attribute, int element, A slot) {
        call(model -> access.values(model, attribute, element, 0, null, slot));
        return slot;
    }

    /** A count of 0 would stand for one element: then the name alone is looked at. */
    <A> A ofRange(Access<A> access, String attribute, int start, int count, A values) {
        Check.start(start);
        call(model
             -> count == 0 ? KorvexJni.getattrinfo(model, attribute, new int[3])
                           : access.values(model, attribute, start, count, null, values));
        return values;
    }

    <A> A ofList(Access<A> access, String attribute, int[] ind, A values) {
        int count = ind.length;
        call(model
             -> count == 0 ? KorvexJni.getattrinfo(model, attribute, new int[3])
                           : access.values(model, attribute, -1, count, ind, values));
        return values;
    }

    <A> A read(Access<A> access, String attribute, int start, int count, IntFunction<A> array) {
        Check.notNegative("count", count);
        Check.start(start);
        if (count >= LONG) {
            int there = together(model -> count(model, counterOf(model, attribute)));
            if (start > there - count)
                throw new KVXException(KVX.ERROR_INDEX_OUT_OF_RANGE, count + " elements from " +
                                                                         start + " on: there are " +
                                                                         there);
        }
        return ofRange(access, attribute, start, count, array.apply(count));
    }

    <A> A readAll(Access<A> access, String attribute, IntFunction<A> array) {
        return together(model -> {
            int count = count(model, counterOf(model, attribute));
            A values = array.apply(count);
            if (count > 0)
                check(model, access.values(model, attribute, 0, count, null, values));
            return values;
        });
    }

    /** The attribute that counts the elements that an attribute belongs to. */
    private static String counterOf(long model, String attribute) {
        return switch (info(model, attribute).element()) {
            case KVX.OF_VARIABLE -> "NumVars";
            case KVX.OF_CONSTRAINT -> "NumConstrs";
            case KVX.OF_SOS -> "NumSOS";
            case KVX.OF_QCONSTRAINT -> "NumQConstrs";
            case KVX.OF_GENCONSTRAINT -> "NumGenConstrs";
            default -> throw new IllegalArgumentException(attribute + " has a single value");
        };
    }

    static AttributeInfo info(long model, String attribute) {
        int[] info = new int[3];
        check(model, KorvexJni.getattrinfo(model, attribute, info));
        return new AttributeInfo(info[0], info[1], info[2] != 0);
    }

    /** An int for an int attribute, or for a double one: Java prefers the setter of ints. */
    void setNumber(String attribute, int start, int count, int value) {
        int[] slot = {value};
        double[] wide = {value};
        call(model -> {
            int status = KorvexJni.setintattrlist(model, attribute, start, count, null, slot);
            if (status == KVX.ERROR_UNKNOWN_ATTRIBUTE)
                status = KorvexJni.setdblattrlist(model, attribute, start, count, null, wide);
            return status;
        });
    }
}
