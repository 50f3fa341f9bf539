import static java.lang.foreign.ValueLayout.*;

import java.lang.foreign.*;
import java.lang.invoke.MethodHandle;

/** The foreign-function interface: copies into an arena that lives for the call. */
public final class FfmPeer implements Bench.Peer {
    private interface Call {
        int in(Arena arena)throws Throwable;
    }

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

    private static int inArena(Call call) {
        try (Arena arena = Arena.ofConfined()) {
            return call.in(arena);
        } catch (Throwable t) {
            throw new IllegalStateException(t);
        }
    }

    private static int add(Arena arena, Bench.Data d) throws Throwable {
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
    }

    private static int getintattr(Arena arena) throws Throwable {
        MemorySegment value = arena.allocate(JAVA_INT);
        int status = (int)GETINTATTR.invokeExact(1L, arena.allocateFrom("NumVars"), value);
        return status + value.get(JAVA_INT, 0);
    }

    @Override
    public void attribute(Bench.Workload workload) {
        workload.with("ffm", () -> inArena(FfmPeer::getintattr));
    }

    @Override
    public void addvars(Bench.Workload workload, Bench.Data d) {
        workload.with("ffm", () -> inArena(arena -> add(arena, d)));
    }
}
