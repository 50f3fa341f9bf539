package com.korvex;

import java.util.Objects;

/** The special ordered sets (SOS) of a model: few of the variables of each may differ from 0. */
public final class SpecialOrderedSets extends ModelElements {
    SpecialOrderedSets(ModelCalls model) { super(model, "NumSOS", KorvexJni::delsos); }

    /**
     * Successive sets.
     *
     * @param types {@link KVX#SOS_TYPE1} or {@link KVX#SOS_TYPE2} a set
     * @param members a list a set, of variable indices and weights that give the order
     */
    public record Sets(int[] types, SparseMatrix members) {
        /**
         * Checks the shape.
         *
         * @param types {@link KVX#SOS_TYPE1} or {@link KVX#SOS_TYPE2} a set
         * @param members a list a set
         * @throws IllegalArgumentException if there isn't a type a set
         */
        public Sets {
            Objects.requireNonNull(types, "types");
            Objects.requireNonNull(members, "members");
            Check.length("types", types.length, members.size(), "sets");
        }

        @Override
        public boolean equals(Object other) {
            return Contents.equal(this, other);
        }

        @Override
        public int hashCode() {
            return Contents.hash(this);
        }

        @Override
        public String toString() {
            return Contents.text(this);
        }
    }

    /**
     * Adds sets.
     *
     * @param sets the sets
     * @return index of the first; the others follow
     * @throws IllegalArgumentException if none of the sets has a member
     * @throws KVXException if the solver refuses a value; nothing is added then
     */
    public int add(Sets sets) {
        SparseMatrix members = sets.members();
        int[] beg = members.begins();
        int nummembers = members.ind().length;
        // The native would add nothing then, and say nothing.
        if (beg.length > 0 && nummembers == 0)
            throw new IllegalArgumentException("none of the sets has a member");
        return add(m
                   -> KorvexJni.addsos(m, beg.length, nummembers, sets.types(), beg, members.ind(),
                                       members.val()));
    }

    /**
     * Adds a set.
     *
     * @param type {@link KVX#SOS_TYPE1} or {@link KVX#SOS_TYPE2}
     * @param members variable indices, and weights that give the order
     * @return its index
     * @throws IllegalArgumentException if it has no members
     * @throws KVXException if the solver refuses a value
     */
    public int add(int type, SparseVector members) {
        return add(
            new Sets(new int[] {type}, new SparseMatrix(new int[1], members.ind(), members.val())));
    }

    /**
     * Reads successive sets.
     *
     * @param start index of the first
     * @param count how many
     * @return the sets
     * @throws KVXException if there aren't as many, and with {@link KVX#ERROR_DATA_NOT_AVAILABLE}
     *     if none of them has a member left: types can't be told then
     */
    public Sets get(int start, int count) {
        int[][] types = {{}};
        SparseMatrix members = readLists((m, room, beg, ind, val, from, number) -> {
            if (beg == null)
                return KorvexJni.getsos(m, room, null, null, null, null, from, number);
            types[0] = new int[number];
            int[] closed = new int[number + 1];
            int status = KorvexJni.getsos(m, room, types[0], closed, ind, val, from, number);
            System.arraycopy(closed, 0, beg, 0, number);
            return status;
        }, start, count);
        if (types[0].length < count)
            throw new KVXException(KVX.ERROR_DATA_NOT_AVAILABLE, "none of the sets has a member");
        return new Sets(types[0], members);
    }
}
