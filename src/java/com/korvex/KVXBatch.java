package com.korvex;

/** A local object for one batch request. */
public final class KVXBatch {
    KVXBatch() {}

    native int jniupdate(long batch);

    native int getintattr(long batch, String attrname, int[] valueslot);

    native int getstrattr(long batch, String attrname, String[] valueslot);

    native int jniretry(long batch);

    native int jniabort(long batch);

    native int jnidiscard(long batch);

    native int jnigetjsonsolution(long batch, String[] textslot);

    native int jniwritejsonsolution(long batch, String filename);
}
