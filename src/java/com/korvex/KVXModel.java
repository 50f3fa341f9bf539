package com.korvex;

/** A model. */
public final class KVXModel {
    KVXModel() {}

    native int jnioptimize(long model, int useCallback, int async, long[] recordslot,
                           String[] errorslot, int cbarg);

    native int jnitune(long model, int useCallback, String[] errorslot, int cbarg);

    native int jnicomputeIIS(long model, int useCallback, String[] errorslot, int cbarg);

    native int jniunsetcallback(long model);

    native int jnioptimizebatch(long model, String[] idslot);

    native int jniconverttofixed(long model);
}
