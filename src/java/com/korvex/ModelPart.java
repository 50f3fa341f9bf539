package com.korvex;

import java.util.function.LongToIntFunction;

/** What the parts that a model hands out share. They hold nothing but the model. */
abstract class ModelPart {
    final ModelCalls model;

    ModelPart(ModelCalls model) { this.model = model; }

    /** Makes a native call on the model that returns a status. */
    void call(LongToIntFunction nativeCall) { model.call(nativeCall); }

    static void check(long model, int status) { ModelCalls.check(model, status); }

    static int count(long model, String attribute) { return ModelCalls.count(model, attribute); }

    /** A reader of successive rows or columns: it measures first, then fills what has the room. */
    interface ListReader {
        int read(long model, int[] room, int[] beg, int[] ind, double[] val, int start, int count);
    }

    /** Reads successive rows or columns. */
    SparseMatrix readLists(ListReader reader, int start, int count) {
        return model.together(m -> {
            int[] room = {0};
            check(m, reader.read(m, room, null, null, null, start, count));
            int[] beg = new int[count], ind = new int[room[0]];
            double[] val = new double[room[0]];
            // Without entries all begins are 0, and the native wouldn't even write those.
            if (room[0] > 0)
                check(m, reader.read(m, room, beg, ind, val, start, count));
            return new SparseMatrix(beg, ind, val);
        });
    }

    /** The single list of such a matrix. */
    static SparseVector single(SparseMatrix matrix) {
        return new SparseVector(matrix.ind(), matrix.val());
    }
}
