package com.korvex;

import java.lang.reflect.Array;
import java.lang.reflect.RecordComponent;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;

/**
 * Records by what their arrays hold: left to themselves, they compare and print mere references.
 */
final class Contents {
    /** As much of an array as is printed. */
    private static final int PRINTED = 20;

    private Contents() {}

    static boolean equal(Record record, Object other) {
        return other != null && record.getClass() == other.getClass() &&
            Arrays.deepEquals(of(record), of((Record)other));
    }

    static int hash(Record record) { return Arrays.deepHashCode(of(record)); }

    static String text(Record record) {
        List<String> parts = new ArrayList<>();
        Object[] contents = of(record);
        RecordComponent[] components = record.getClass().getRecordComponents();
        for (int k = 0; k < contents.length; k++)
            parts.add(components[k].getName() + "=" + text(contents[k]));
        return record.getClass().getSimpleName() + parts;
    }

    private static String text(Object part) {
        if (part == null || !part.getClass().isArray())
            return "" + part;
        int length = Array.getLength(part);
        List<Object> elements = new ArrayList<>();
        for (int k = 0; k < length && k < PRINTED; k++)
            elements.add(Array.get(part, k));
        return elements + (length > PRINTED ? " of " + length : "");
    }

    private static Object[] of(Record record) {
        RecordComponent[] components = record.getClass().getRecordComponents();
        Object[] contents = new Object[components.length];
        try {
            for (int k = 0; k < contents.length; k++)
                contents[k] = components[k].getAccessor().invoke(record);
        } catch (ReflectiveOperationException e) {
            throw new AssertionError(e); // they are public records of this package
        }
        return contents;
    }
}
