/** SWIG's two ways; neither takes an array of texts. */
public final class SwigPeer implements Bench.Peer {
    static { System.loadLibrary("swigpeer"); }

    private static SWIGTYPE_p_int copy(int[] from) {
        SWIGTYPE_p_int to = Swig.new_ints(from.length);
        for (int k = 0; k < from.length; k++)
            Swig.ints_setitem(to, k, from[k]);
        return to;
    }

    private static SWIGTYPE_p_double copy(double[] from) {
        SWIGTYPE_p_double to = Swig.new_doubles(from.length);
        for (int k = 0; k < from.length; k++)
            Swig.doubles_setitem(to, k, from[k]);
        return to;
    }

    private static int addByElement(Bench.Data d, String types) {
        SWIGTYPE_p_int[] ints = {copy(d.beg()), copy(d.ind())};
        SWIGTYPE_p_double[] doubles = {copy(d.val()), copy(d.obj()), copy(d.lb()), copy(d.ub())};
        int status = Swig.KVXaddvars(null, d.vars(), d.nonzeros(), ints[0], ints[1], doubles[0],
                                     doubles[1], doubles[2], doubles[3], types, null);
        for (SWIGTYPE_p_int array : ints)
            Swig.delete_ints(array);
        for (SWIGTYPE_p_double array : doubles)
            Swig.delete_doubles(array);
        return status;
    }

    private static int addAsArrays(Bench.Data d, String types) {
        return Swig.addArrays(null, d.vars(), d.nonzeros(), d.beg(), d.ind(), d.val(), d.obj(),
                              d.lb(), d.ub(), types);
    }

    @Override
    public void attribute(Bench.Workload workload) {
        int[] slot = new int[1];
        workload.with("swig-arrays", () -> Swig.KVXgetintattr(null, "NumVars", slot));
    }

    @Override
    public void addvars(Bench.Workload workload, Bench.Data d) {
        if (d.names() != null || d.nonzeros() > 1_000_000)
            return; // ten millions would take minutes
        String types = new String(d.types());
        workload.with("swig-elements", () -> addByElement(d, types));
        workload.with("swig-arrays", () -> addAsArrays(d, types));
    }
}
