package com.korvex;

/**
 * Is told of a run's progress and may act on it.
 *
 * <p>Meanwhile the run's model can be read: its data, {@link KVXAttribute#STATUS} and {@link
 * KVXAttribute#RUNTIME}. What would change it, or needs a solution, is refused. Other models, their
 * runs, and environments can be used as elsewhere, with a log, too; only on a thread of the
 * solver's own, whatever may log is refused while the log has a consumer.
 */
@FunctionalInterface
public interface KVXCallback {
    /**
     * Called by the solver during a run: on the thread that runs {@link KVXModel#optimize}, or the
     * one that {@link KVXModel#optimizeAsync} has started for the run, unless the solver calls from
     * a thread of its own; never by two threads at once for one model. Whatever it throws ends the
     * run and is thrown on by the method that started the run, or waits for it; no further call is
     * made then.
     *
     * @param context the present call; of no use after it
     */
    void call(KVXCallbackContext context);
}
