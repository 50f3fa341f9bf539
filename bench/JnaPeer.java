import com.sun.jna.Native;
import java.util.Map;
import java.util.function.IntSupplier;

/** JNA's direct mapping, its faster way; it has no arrays of texts. */
public final class JnaPeer implements Bench.Peer {
    static { Native.register("korvex130"); }

    static native int KVXgetintattr(long model, String name, int[] value);
    static native int KVXaddvars(long model, int numvars, int numnz, int[] beg, int[] ind,
                                 double[] val, double[] obj, double[] lb, double[] ub, byte[] types,
                                 long names);

    @Override
    public Map<String, IntSupplier> attribute() {
        int[] slot = new int[1];
        return Map.of("jna", () -> KVXgetintattr(1, "NumVars", slot));
    }

    @Override
    public Map<String, IntSupplier> addvars(Bench.Data d) {
        byte[] types = new byte[d.vars()];
        IntSupplier call = ()
            -> KVXaddvars(1, d.vars(), d.nonzeros(), d.beg(), d.ind(), d.val(), d.obj(), d.lb(),
                          d.ub(), types, 0);
        return d.names() == null ? Map.of("jna", call) : Map.of();
    }
}
