package com.korvex;

import java.util.function.LongToIntFunction;

/**
 * A local object for one batch request, whose attributes are those of the last {@link #update}.
 * Closing it leaves the request alone. A use after closing throws {@link IllegalStateException},
 * and what the solver refuses, in the request's present state for example, is a {@link
 * KVXException}. Any thread may use it: it waits while another one does.
 */
public final class KVXBatch implements AutoCloseable {
    private final KVXEnv env;
    private final Handle handle;

    /**
     * Makes an object for a request.
     *
     * @param env the environment to reach it by
     * @param id the request's ID, as {@link KVXModel#optimizeBatch} returned it
     * @throws KVXException if there is no such request
     */
    public KVXBatch(KVXEnv env, String id) {
        this.env = env;
        long[] slot = new long[1];
        env.handle.pin();
        try {
            env.logging(() -> env.handle.call(e -> KorvexJni.newbatch(slot, e, id)));
            handle = new Handle("the batch", slot[0], batch -> env.errorText(), this::free);
        } catch (Throwable t) {
            if (slot[0] != 0)
                KorvexJni.freebatch(slot[0]);
            env.handle.unpin();
            throw t;
        }
    }

    private void free(long batch) {
        KorvexJni.freebatch(batch);
        env.handle.unpin();
    }

    /** Makes a native call that may reach the request, and log. */
    private void call(LongToIntFunction nativeCall) { env.logging(() -> handle.call(nativeCall)); }

    /** Fetches the request's present state. */
    public void update() { call(this::jniupdate); }

    /**
     * Reads an int attribute, as of the last update.
     *
     * @param attribute its name
     * @return its value
     */
    public int getInt(String attribute) {
        int[] slot = new int[1];
        handle.call(batch -> getintattr(batch, attribute, slot));
        return slot[0];
    }

    /**
     * Reads a text attribute, as of the last update.
     *
     * @param attribute its name
     * @return its value
     */
    public String getString(String attribute) {
        String[] slot = new String[1];
        handle.call(batch -> getstrattr(batch, attribute, slot));
        return slot[0];
    }

    /** Submits the failed or aborted request again. */
    public void retry() { call(this::jniretry); }

    /** Aborts the request. */
    public void abort() { call(this::jniabort); }

    /** Removes the ended request and its data: its ID is unknown from now on. */
    public void discard() { call(this::jnidiscard); }

    /**
     * Returns the solution of the completed request as JSON.
     *
     * @return the text
     */
    public String jsonSolution() {
        String[] slot = new String[1];
        call(batch -> jnigetjsonsolution(batch, slot));
        return slot[0];
    }

    /**
     * Writes the solution of the completed request to a JSON file.
     *
     * @param file name of the file
     */
    public void writeJsonSolution(String file) { call(batch -> jniwritejsonsolution(batch, file)); }

    /**
     * Returns the native handle, for {@link KorvexJni}. Keep this object open while using it.
     *
     * @return the handle
     */
    public long handle() { return handle.value(); }

    /** Frees this object; the request goes on. Does nothing the second time. */
    @Override
    public void close() {
        if (handle.shut())
            handle.unpin();
    }

    /**
     * Refreshes the attributes.
     *
     * @return the solver's status
     */
    native int jniupdate(long batch);

    /**
     * Reads an int attribute.
     *
     * @param valueslot element 0 receives it if the result is 0
     * @return 0, {@link KVX#ERROR_NULL_ARGUMENT} for a null name, or the solver's status
     */
    native int getintattr(long batch, String attrname, int[] valueslot);

    /**
     * Reads a text attribute.
     *
     * @param valueslot element 0 receives it if the result is 0
     * @return 0, {@link KVX#ERROR_NULL_ARGUMENT} for a null name, or the solver's status
     */
    native int getstrattr(long batch, String attrname, String[] valueslot);

    /**
     * Submits a failed or aborted request again.
     *
     * @return the solver's status
     */
    native int jniretry(long batch);

    /**
     * Aborts a request.
     *
     * @return the solver's status
     */
    native int jniabort(long batch);

    /**
     * Removes an ended request.
     *
     * @return the solver's status
     */
    native int jnidiscard(long batch);

    /**
     * Reads the solution as JSON.
     *
     * @param textslot element 0 receives it if the result is 0
     * @return the solver's status
     */
    native int jnigetjsonsolution(long batch, String[] textslot);

    /**
     * Writes the solution to a JSON file.
     *
     * @return 0, {@link KVX#ERROR_NULL_ARGUMENT} for a null name, or the solver's status
     */
    native int jniwritejsonsolution(long batch, String filename);
}
