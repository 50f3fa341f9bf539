package com.korvex;

import java.util.function.LongToIntFunction;

/** A part of a model that has elements of its own: they are counted, added and deleted. */
abstract class ModelElements extends ModelPart {
    private final String counter;
    private final Deleter deleter;

    /** A native that removes elements by their indices. */
    interface Deleter {
        int delete(long model, int num, int[] ind);
    }

    /** @param counter the attribute that counts the elements */
    ModelElements(ModelCalls model, String counter, Deleter deleter) {
        super(model);
        this.counter = counter;
        this.deleter = deleter;
    }

    /**
     * Returns how many there are.
     *
     * @return their number, as of the last update
     */
    public int count() { return model.together(m -> count(m, counter)); }

    /**
     * Deletes some; the others are renumbered.
     *
     * @param ind their indices, in any order
     * @throws KVXException if there is no such element, or another depends on it: nothing is
     *     deleted then
     */
    public void delete(int... ind) {
        int num = ind.length;
        call(m -> deleter.delete(m, num, ind));
    }

    /** Adds elements and returns the index of the first, which pending changes may decide. */
    int add(LongToIntFunction adder) {
        return model.together(m -> {
            check(m, KorvexJni.updatemodel(m));
            int first = count(m, counter);
            check(m, adder.applyAsInt(m));
            return first;
        });
    }
}
