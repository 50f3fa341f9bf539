package com.korvex;

/**
 * The checks of arguments: what would be undefined in native code ends in an exception before.
 * Whether indices exist and numbers make sense, the solver judges.
 */
final class Check {
    private Check() {}

    /**
     * Checks that an array is as long as it must be.
     *
     * @param parameter what the array is called
     * @param per what there is an element of it for
     */
    static void length(String parameter, int length, int expected, String per) {
        if (length != expected)
            throw new IllegalArgumentException(parameter + " has " + length + " elements, not " +
                                               expected + ", the number of " + per);
    }

    static void notNegative(String parameter, int value) {
        if (value < 0)
            throw new IllegalArgumentException(parameter + " is negative: " + value);
    }

    /** Checks where a range begins; where it may end, the solver knows. */
    static void start(int start) {
        if (start < 0)
            throw new IndexOutOfBoundsException("start " + start);
    }

    /** A text for native code, where a character U+0000 can't be told from the end; may be null. */
    static String text(String parameter, String text) {
        if (text != null && text.indexOf('\0') >= 0)
            throw new IllegalArgumentException(parameter + " contains the character U+0000");
        return text;
    }

    /** Checks texts, each of which may be null, as may be the array. */
    static String[] texts(String parameter, String[] texts) {
        for (int k = 0; texts != null && k < texts.length; k++) {
            if (texts[k] != null && texts[k].indexOf('\0') >= 0)
                throw new IllegalArgumentException("element " + k + " of " + parameter +
                                                   " contains the character U+0000");
        }
        return texts;
    }
}
