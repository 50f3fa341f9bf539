/**
 * The Java interface of the Korvex solver for linear, mixed-integer and quadratic optimisation.
 *
 * <p>An environment, {@link KVXEnv}, holds parameters and the log; a model, {@link KVXModel}, is
 * made in it, from data or from a file. A model is built through its parts: {@link
 * KVXModel#variables}, {@link KVXModel#constraints}, {@link KVXModel#quadraticConstraints}, {@link
 * KVXModel#sos}, {@link KVXModel#generalConstraints}, {@link KVXModel#objective}. Everything
 * counts from 0 in the order of adding. {@link KVXModel#optimize} solves it; {@link KVXAttribute}
 * lists what can be asked then, {@link KVXParameter} what can be set before, {@link KVX} the codes
 * that numbers and characters mean.
 *
 * <pre>{@code
 * try (KVXEnv env = new KVXEnv(); KVXModel model = new KVXModel(env, "bakery")) {
 *     int white = model.variables().add(0, 40, 2.5, KVX.INTEGER, "white");
 *     int rye = model.variables().add(0, 40, 3.1, KVX.INTEGER, "rye");
 *     int[] loaves = {white, rye};
 *     model.constraints().add(new SparseVector(loaves, 0.5, 0.6), KVX.LESS_EQUAL, 30, "flour");
 *     model.set(KVXAttribute.MODEL_SENSE, KVX.MAXIMIZE);
 *     model.optimize();
 *     double profit = model.getDouble(KVXAttribute.OBJ_VAL);
 * }
 * }</pre>
 *
 * <p><b>Errors.</b> What the solver refuses is a {@link KVXException} with its status and text, and
 * the model stays as it was. Arguments that make no sense to Java give what Java programmers
 * expect: {@link NullPointerException} for a null array, {@link IllegalArgumentException} for
 * lengths that don't match, {@link IndexOutOfBoundsException}, and {@link IllegalStateException}
 * for what was closed or is at work elsewhere.
 *
 * <p><b>Arrays</b> that are handed over are kept or read, never changed; those handed out are the
 * caller's own.
 *
 * <p>{@link KorvexJni} is the raw level beneath, for authors of other interfaces: it checks
 * nothing.
 */
package com.korvex;
