package com.korvex;

import java.io.IOException;
import java.lang.reflect.*;
import java.nio.file.*;
import java.util.*;
import java.util.function.Consumer;
import java.util.stream.*;

/**
 * Arguments as a careless or hostile caller may have them, drawn from a seed: half of them right in
 * kind and size, so that calls get somewhere.
 */
final class Hostile {
    /** What callbacks throw; nothing else throws it. */
    @SuppressWarnings("serial")
    static final class Marker extends Throwable {}

    private static final List<String> ATTRIBUTES = constants(KVXAttribute.class, String.class);
    private static final List<String> PARAMETERS = constants(KVXParameter.class, String.class);
    private static final List<String> NAMES = List.of(
        "", "x", "C0", "R0", "a b", "0", "1e400", "%s%n", "\n", "a\0b", "\ud800", "\udc00x",
        "\u4e2d", "\ud83d\ude00", "x".repeat(300), "NaN", "Infinity", "-1", "TimeLimit", "d");
    private static final List<String> ENDINGS =
        List.of(".mps", ".lp", ".sol", ".mst", ".bas", ".prm", ".hnt", ".rlp", ".mps.bz2", ".json",
                "", ".lp.gz");
    private static final List<Integer> INTS =
        List.of(Integer.MAX_VALUE, Integer.MIN_VALUE, 1 << 30, -(1 << 30), 65536, 1_000_000,
                -1_000_000, 32767);
    private static final List<Integer> CODES = constants(KVX.class, Integer.class);
    private static final List<Double> DOUBLES =
        List.of(Double.NaN, Double.POSITIVE_INFINITY, Double.NEGATIVE_INFINITY, Double.MAX_VALUE,
                Double.MIN_VALUE, -0.0, 1e100, -1e100, 1e30, 1e25, 1e15, 1e20, -1e20, 1e-9, 1e-300,
                2147483648.0, 1e9);
    private static final String CHARS = "<>=CBISN\0\uffff\ud800\u0142 1";

    private final Fuzz.World world;
    final Random random;
    /** Most arrays of a call are as long as this. */
    private int length;
    /** What is likely to mean something to a call. */
    private boolean files;
    private List<String> texts = ATTRIBUTES;
    private List<Integer> codes = CODES;

    Hostile(Fuzz.World world, long seed) {
        this.world = world;
        random = new Random(seed);
    }

    private static <T> List<T> constants(Class<?> c, Class<T> type) {
        List<T> found = new ArrayList<>();
        try {
            for (Field field : c.getFields())
                if (type.isInstance(field.get(null)))
                    found.add(type.cast(field.get(null)));
        } catch (IllegalAccessException e) {
            throw new AssertionError(e);
        }
        return found;
    }

    boolean once(int in) { return random.nextInt(in) == 0; }

    <T> T any(List<T> values) { return values.get(random.nextInt(values.size())); }

    Object[] forCall(Executable method, Object target) {
        length = once(3) ? random.nextInt(12) : random.nextInt(4);
        String name = method.getDeclaringClass().getSimpleName() + "." + method.getName();
        files = name.matches(".*(read|write|writeJsonSolution|KVXEnv)|FileFormat.of");
        texts = name.matches("KVXParams.*|.*Context.set") ? PARAMETERS : ATTRIBUTES;
        codes = CODES;
        try {
            if (target instanceof KVXCallbackContext context) {
                codes = IntStream.range(0, 6).mapToObj(i -> 1000 * context.where() + i).toList();
                if (once(2))
                    length = context.model().variables().count();
            } else if (target instanceof KVXModel model && once(2)) {
                length = once(3) ? model.constraints().count() : model.variables().count();
            }
        } catch (IllegalStateException e) {
            // It is closed, or at work.
        }
        return arguments(method);
    }

    private Object[] arguments(Executable method) {
        return Stream.of(method.getParameters())
            .map(p -> make(p.getType(), p.getParameterizedType()))
            .toArray();
    }

    private int integer() {
        if (once(10))
            return any(INTS);
        return once(4) || codes != CODES && once(2) ? any(codes) : random.nextInt(8) - 1;
    }

    private String text() {
        if (once(12))
            return once(20) ? "m".repeat(1_000_000) : null;
        if (once(12))
            return world.any(String.class, random);
        if (once(6))
            return any(NAMES);
        return files || once(10) ? "f" + random.nextInt(2) + any(ENDINGS) : any(texts);
    }

    private Object array(Class<?> type) {
        if (once(40))
            return null;
        int size = once(8) ? random.nextInt(8) : once(300) ? 100_000 : length;
        Object array = Array.newInstance(type, size);
        for (int k = 0; k < size; k++)
            Array.set(array, k, make(type, type));
        return array;
    }

    private Object make(Class<?> type, Type generic) {
        if (type == int.class)
            return integer();
        if (type == double.class)
            return once(6) ? any(DOUBLES) : Double.valueOf(random.nextInt(21) - 10);
        if (type == char.class)
            return CHARS.charAt(random.nextInt(once(4) ? CHARS.length() : 5));
        if (type == boolean.class)
            return random.nextBoolean();
        if (type == long.class)
            return 0L; // a handle, and no other is one that the caller may invent
        if (type == String.class)
            return text();
        if (type.isArray())
            return array(type.componentType());
        if (once(25))
            return null;
        Fuzz.Caller caller = new Fuzz.Caller(world, random.nextLong(), 0);
        if (type == Consumer.class)
            return (Consumer<String>)line -> caller.meddle(null);
        if (type == KVXCallback.class)
            return (KVXCallback)caller::meddle;
        if (type == List.class) {
            Class<?> element = (Class<?>)((ParameterizedType)generic).getActualTypeArguments()[0];
            return IntStream.range(0, length)
                .mapToObj(i -> make(element, element))
                .collect(Collectors.toCollection(ArrayList::new));
        }
        Object known = world.any(type, random);
        List<Executable> makers = Fuzz.makers(type);
        return makers.isEmpty() || known != null && once(2) ? known : record(any(makers));
    }

    /** A record of the shape that its maker accepts, if a few trials find one. */
    private Object record(Executable maker) {
        for (int trial = 0; trial < 3; trial++) {
            Object[] args = arguments(maker);
            try {
                return Fuzz.invoke(maker, null, args);
            } catch (Throwable t) {
                world.judge(t, () -> Fuzz.describe(maker, args));
            }
        }
        return null;
    }

    /** Adds a model that the solver can solve to the world, with a bit of everything. */
    void addModel(KVXEnv env) {
        if (once(10)) {
            world.remember(Models.marketSplit(env, 30, 3, random.nextLong()), random);
            return;
        }
        boolean linear = once(2);
        int n = 1 + random.nextInt(6);
        double[] obj = random.ints(n, -5, 6).asDoubleStream().toArray();
        double[] ub = random.ints(n, 1, 10).asDoubleStream().toArray();
        char[] types = new char[n];
        for (int j = 0; j < n; j++)
            types[j] = linear ? 'C' : "CCBIISN".charAt(random.nextInt(7));
        KVXModel model = new KVXModel(env, "valid", Columns.of(obj).upper(ub).types(types));
        world.remember(model, random);
        for (int i = random.nextInt(5); i > 0; i--)
            model.constraints().add(
                new SparseVector(new int[] {random.nextInt(n)}, 1 + random.nextInt(3)),
                "<>=".charAt(random.nextInt(3)), random.nextInt(8), null);
        if (linear && once(2)) // with a basis, then
            model.optimize();
        if (!linear && once(2))
            model.sos().add(KVX.SOS_TYPE1, SparseVector.ones(IntStream.range(0, n).toArray()));
        if (!linear && once(2))
            model.generalConstraints().add(GeneralConstraint.max(0, new int[] {n - 1}, 1), null);
        if (once(4))
            model.objective().setGoal(0, Goal.of(SparseVector.ones(0)));
        if (once(3))
            model.params().set("LazyConstraints", 1);
        model.params().set("TimeLimit", 0.2);
        if (!once(3))
            model.setCallback(new Fuzz.Caller(world, random.nextLong(), 0)::meddle);
    }

    /** Changes some bytes of a file that a call has written. */
    void corrupt() throws IOException {
        Path file = Path.of("f" + random.nextInt(2) + any(ENDINGS));
        if (!Files.isRegularFile(file) || Files.size(file) > 100_000 || Files.size(file) == 0)
            return;
        byte[] bytes = Files.readAllBytes(file);
        for (int i = random.nextInt(4); i >= 0; i--)
            bytes[random.nextInt(bytes.length)] = (byte)random.nextInt(once(3) ? 256 : 128);
        Files.write(file, bytes);
    }
}
