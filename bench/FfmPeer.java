import static java.lang.foreign.ValueLayout.ADDRESS;
import static java.lang.foreign.ValueLayout.JAVA_BYTE;
import static java.lang.foreign.ValueLayout.JAVA_DOUBLE;
import static java.lang.foreign.ValueLayout.JAVA_INT;
import static java.lang.foreign.ValueLayout.JAVA_LONG;

import java.lang.foreign.Arena;
import java.lang.foreign.FunctionDescriptor;
import java.lang.foreign.Linker;
import java.lang.foreign.MemoryLayout;
import java.lang.foreign.MemorySegment;
import java.lang.foreign.SymbolLookup;
import java.lang.invoke.MethodHandle;
import java.util.Map;
import java.util.function.IntSupplier;

/** The foreign-function interface: copies into an arena that lives for the call. */
public final class FfmPeer implements Bench.Peer {
    private static final MethodHandle GETINTATTR =
        function("KVXgetintattr", JAVA_LONG, ADDRESS, ADDRESS);
    private static final MethodHandle ADDVARS =
        function("KVXaddvars", JAVA_LONG, JAVA_INT, JAVA_INT, ADDRESS, ADDRESS, ADDRESS, ADDRESS,
                 ADDRESS, ADDRESS, ADDRESS, ADDRESS);

    private static MethodHandle function(String name, MemoryLayout... parameters) {
        return Linker.nativeLinker().downcallHandle(
            SymbolLookup.libraryLookup("libkorvex130.so", Arena.global()).find(name).orElseThrow(),
            FunctionDescriptor.of(JAVA_INT, parameters));
    }

    private static int getintattr(String name, int[] slot) {
        try (Arena arena = Arena.ofConfined()) {
            MemorySegment value = arena.allocate(JAVA_INT);
            int status = (int)GETINTATTR.invokeExact(1L, arena.allocateFrom(name), value);
            slot[0] = value.get(JAVA_INT, 0);
            return status;
        } catch (Throwable t) {
            throw new IllegalStateException(t);
        }
    }

    private static int add(Bench.Data d) {
        try (Arena arena = Arena.ofConfined()) {
            MemorySegment types = arena.allocate(d.vars()), names = MemorySegment.NULL;
            for (int k = 0; k < d.vars(); k++)
                types.set(JAVA_BYTE, k, (byte)d.types()[k]);
            if (d.names() != null)
                names = arena.allocate(ADDRESS, d.vars());
            for (int k = 0; d.names() != null && k < d.vars(); k++)
                names.setAtIndex(ADDRESS, k, arena.allocateFrom(d.names()[k]));
            return (int)ADDVARS.invokeExact(
                1L, d.vars(), d.nonzeros(), arena.allocateFrom(JAVA_INT, d.beg()),
                arena.allocateFrom(JAVA_INT, d.ind()), arena.allocateFrom(JAVA_DOUBLE, d.val()),
                arena.allocateFrom(JAVA_DOUBLE, d.obj()), arena.allocateFrom(JAVA_DOUBLE, d.lb()),
                arena.allocateFrom(JAVA_DOUBLE, d.ub()), types, names);
        } catch (Throwable t) {
            throw new IllegalStateException(t);
        }
    }

    @Override
    public Map<String, IntSupplier> attribute() {
        int[] slot = new int[1];
        return Map.of("ffm", () -> getintattr("NumVars", slot));
    }

    @Override
    public Map<String, IntSupplier> addvars(Bench.Data d) {
        return Map.of("ffm", () -> add(d));
    }
}
