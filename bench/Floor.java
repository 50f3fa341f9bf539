/**
 * The floor: natives written by hand that make the same calls and copies as the bridge's and do
 * nothing else; and the limit, the same memory traffic without a virtual machine.
 */
public final class Floor {
    long cbmodel;
    long cbdata;
    int where;
    long calls;

    /** Called by the solver's callbacks. */
    void fromjni() { calls++; }

    static native int getintattr(long model, String name, int[] value);
    static native int setintparam(long env, String name, int value);
    static native int updatemodel(long model);
    static native int addvars(long model, int numvars, int numnz, int[] beg, int[] ind,
                              double[] val, double[] obj, double[] lb, double[] ub, char[] types,
                              String[] names);
    static native int getvars(long model, int[] numnz, int[] beg, int[] ind, double[] val,
                              int start, int count);
    static native int getchars(long model, String name, int start, int count, char[] values);
    static native int setchars(long model, String name, int start, int count, char[] values);
    static native int getstrings(long model, String name, int start, int count, String[] values);

    /** Makes as many callbacks as the handle says. */
    native int optimize(long model);
    /** The same through the bridge, whose own native method isn't public. */
    native int optimizeThroughBridge(long model, String[] errorslot);

    /** Allocates, fills and frees what a call of {@link #addvars} allocates. */
    static native int limit(int numvars, int numnz);
}
