import com.sun.jna.Native;

/** JNA's direct mapping, its faster way; it has no arrays of texts. */
public final class JnaPeer implements Bench.Peer {
    static { Native.register("korvex130"); }

    static native int KVXgetintattr(long model, String name, int[] value);
    static native int KVXaddvars(long model, int numvars, int numnz, int[] beg, int[] ind,
                                 double[] val, double[] obj, double[] lb, double[] ub, byte[] types,
                                 long names);

    @Override
    public void attribute(Bench.Workload workload) {
        int[] slot = new int[1];
        workload.with("jna", () -> KVXgetintattr(1, "NumVars", slot));
    }

    private static int add(Bench.Data d, byte[] types) {
        return KVXaddvars(1, d.vars(), d.nonzeros(), d.beg(), d.ind(), d.val(), d.obj(), d.lb(),
                          d.ub(), types, 0);
    }

    @Override
    public void addvars(Bench.Workload workload, Bench.Data d) {
        byte[] types = new byte[d.vars()];
        if (d.names() == null)
            workload.with("jna", () -> add(d, types));
    }
}
