package com.korvex;

import java.io.*;
import java.lang.reflect.*;
import java.net.URI;
import java.nio.*;
import java.nio.channels.FileChannel;
import java.nio.charset.StandardCharsets;
import java.nio.file.*;
import java.util.*;
import java.util.concurrent.*;
import java.util.concurrent.atomic.AtomicLong;
import java.util.function.*;
import java.util.jar.JarFile;
import java.util.stream.*;

/**
 * Calls everything public but {@link KorvexJni} with {@link Hostile} arguments: on one thread, and
 * on four with the same objects; also from inside callbacks and consumers. A call may return or
 * throw what its documentation lists; a crash, a hang, any other throwable or a handle that is left
 * over is a finding. Episodes have seeds of their own: {@code ./run fuzz 1 SEED} repeats one.
 */
final class Fuzz {
    private static final int CALLS = 400, THREADS = 4, HANG_SECONDS = 60, NOTE = 4000;

    private static final List<Class<?>> CLASSES = publicClasses();
    private static final Map<Class<?>, List<Executable>> METHODS = new HashMap<>();
    private static final Map<Class<?>, List<Executable>> MAKERS = new ConcurrentHashMap<>();
    private static final AtomicLong calls = new AtomicLong();
    private static MappedByteBuffer notes;

    private Fuzz() {}

    private static List<Class<?>> publicClasses() {
        var place = KVX.class.getProtectionDomain().getCodeSource().getLocation();
        try (JarFile jar = new JarFile(new File(URI.create(place.toString())))) {
            List<Class<?>> classes = new ArrayList<>();
            for (String name : jar.stream().map(Object::toString).sorted().toList())
                if (name.startsWith("com/korvex/") && name.endsWith(".class"))
                    classes.add(
                        Class.forName(name.substring(0, name.length() - 6).replace('/', '.'), false,
                                      Fuzz.class.getClassLoader()));
            classes.removeIf(c -> !Modifier.isPublic(c.getModifiers()) || c == KorvexJni.class);
            return classes;
        } catch (IOException | ReflectiveOperationException e) {
            throw new AssertionError(e);
        }
    }

    static {
        for (Class<?> c : CLASSES) {
            List<Executable> all = new ArrayList<>();
            for (Method method : c.getMethods())
                if (method.getDeclaringClass().getPackage() == KVX.class.getPackage())
                    all.add(method);
            if (!Modifier.isAbstract(c.getModifiers()))
                all.addAll(List.of(c.getConstructors()));
            all.removeIf(e -> e.getDeclaringClass() == KVXCallback.class);
            all.sort(Comparator.comparing(Executable::toString));
            if (!all.isEmpty())
                METHODS.put(c, all);
        }
        CLASSES.removeIf(c -> !METHODS.containsKey(c));
        // What has native code behind it, more often; above all a model.
        for (Class<?> c : List.copyOf(CLASSES))
            for (int i = c == KVXModel.class ? 30 : 4; i > 0 && makers(c).isEmpty(); i--)
                CLASSES.add(c);
    }

    /** Constructors and static makers of a record, or of an interface that records implement. */
    static List<Executable> makers(Class<?> type) {
        return MAKERS.computeIfAbsent(
            type,
            t
            -> CLASSES.stream()
                   .distinct()
                   .filter(t::isAssignableFrom)
                   .filter(c -> c.isRecord() || c == GeneralConstraint.class)
                   .flatMap(c -> METHODS.get(c).stream())
                   .filter(e
                           -> e instanceof Constructor<?> ||
                                  Modifier.isStatic(e.getModifiers()) &&
                                      t.isAssignableFrom(((Method)e).getReturnType()))
                   .toList());
    }

    /** The beginning alone: arguments may be very long. */
    private static String text(Object o) {
        if (o == null || !o.getClass().isArray())
            return String.valueOf(o).replaceFirst("(?s)(.{200}).*", "$1...");
        int length = Array.getLength(o), shown = Math.min(12, length);
        return length +
            IntStream.range(0, shown).mapToObj(i -> text(Array.get(o, i))).toList().toString();
    }

    static Object invoke(Executable method, Object target, Object[] args) throws Throwable {
        try {
            return method instanceof Constructor<?> c ? c.newInstance(args)
                                                      : ((Method)method).invoke(target, args);
        } catch (InvocationTargetException e) {
            throw e.getCause();
        }
    }

    static String describe(Executable method, Object[] args) {
        return method.getDeclaringClass().getSimpleName() + "." + method.getName() + " " +
            text(args);
    }

    /** The objects that an episode's calls share. */
    static final class World {
        private final long seed;
        private final Map<Class<?>, Object[]> known = new ConcurrentHashMap<>();
        private final Set<AutoCloseable> open = ConcurrentHashMap.newKeySet();
        private final Map<Thread, Long> begun = new ConcurrentHashMap<>();
        volatile boolean overflowed;

        World(long seed) { this.seed = seed; }

        /** An object of that class, or null if none is known. Closed models are rare among them. */
        <T> T any(Class<T> type, Random random) {
            int slot = random.nextInt(6);
            Object[] slots = known.get(type);
            for (int i = 0; slots != null && i < 6; i++) {
                Object object = slots[(slot + i) % 6];
                if (object != null && (!(object instanceof KVXModel) || open.contains(object) ||
                                       random.nextInt(8) == 0))
                    return type.cast(object);
            }
            return null;
        }

        /** An object to call methods of; a part mostly of a model that is open. */
        private Object target(Class<?> type, Random random) throws ReflectiveOperationException {
            KVXModel model = any(KVXModel.class, random);
            if (model != null && random.nextInt(4) > 0)
                for (Executable method : METHODS.get(KVXModel.class))
                    if (method instanceof Method m && m.getReturnType() == type &&
                        type != KVXModel.class && m.getParameterCount() == 0)
                        return m.invoke(model);
            return any(type, random);
        }

        /** Keeps an object in place of another; what can be closed is closed some day. */
        void remember(Object object, Random random) {
            int slot = random.nextInt(6);
            if (object instanceof AutoCloseable resource)
                open.add(resource);
            Object[] slots = known.computeIfAbsent(object.getClass(), c -> new Object[6]);
            if (slots[slot] instanceof AutoCloseable former && former != object)
                close(former);
            slots[slot] = object;
        }

        private void close(AutoCloseable resource) {
            try {
                resource.close();
                open.remove(resource);
            } catch (IllegalStateException e) {
                // Inside callbacks and consumers; the end of the episode tries again.
            } catch (Throwable t) {
                judge(t, () -> "close");
                open.remove(resource);
            }
        }

        void judge(Throwable t, Supplier<String> call) {
            if (t instanceof NullPointerException || t instanceof IllegalArgumentException ||
                t instanceof IndexOutOfBoundsException || t instanceof IllegalStateException ||
                t instanceof KVXException || t instanceof Hostile.Marker ||
                t instanceof StackOverflowError && overflowed)
                return;
            t.printStackTrace();
            finding(this, "throws " + t + ": " + call.get());
        }

        /** Ends runs that go on for longer than a moment, and finds calls that never end. */
        private void watch() {
            for (AutoCloseable resource : open)
                if (resource instanceof KVXModel model && model.isRunning())
                    model.terminate();
            for (Map.Entry<Thread, Long> entry : begun.entrySet()) {
                if (System.nanoTime() - entry.getValue() < HANG_SECONDS * 1_000_000_000L)
                    continue;
                Thread.getAllStackTraces().forEach(
                    (thread, trace) -> System.err.println(thread + " " + List.of(trace)));
                finding(this, "hangs: " + entry.getKey().getName());
            }
        }

        private void end() throws InterruptedException {
            // A watch that terminates a run meanwhile may be the one that frees the model.
            for (int i = 0; i < 1000 && (Handle.alive() != 0 || !open.isEmpty()); i++) {
                open.forEach(this::close);
                Thread.sleep(i > 0 ? 5 : 0);
            }
            if (Handle.alive() != 0 || !open.isEmpty())
                finding(this,
                        Handle.alive() + " handles and " + open.size() + " objects are left\n");
        }
    }

    private static synchronized void finding(World world, String what) {
        System.err.println("FINDING in episode " + world.seed + ": " + what);
        Runtime.getRuntime().halt(1);
    }

    /** Makes calls on a world's objects, drawn from a seed. */
    static final class Caller {
        private static final ThreadLocal<Integer> DEPTH = ThreadLocal.withInitial(() -> 0);

        private final World world;
        final Hostile hostile;
        private final int note;
        private int meddled;

        /** Notes its calls at a place that others may share. */
        Caller(World world, long seed, int note) {
            this.world = world;
            this.note = note;
            hostile = new Hostile(world, seed);
        }

        private void run(int count) {
            Thread thread = Thread.currentThread();
            for (int i = 0; i < count; i++) {
                world.begun.put(thread, System.nanoTime());
                step();
                Thread.interrupted();
            }
            world.begun.remove(thread);
        }

        private void step() {
            if (hostile.once(60))
                build();
            if (hostile.once(50))
                attempt(hostile::corrupt);
            if (hostile.once(200))
                Thread.currentThread().interrupt();
            Class<?> type = hostile.any(CLASSES);
            attempt(() -> call(type, world.target(type, hostile.random)));
        }

        private interface Action {
            void run() throws Throwable;
        }

        private void attempt(Action action) {
            try {
                action.run();
            } catch (IOException e) {
                // A file that another thread is writing.
            } catch (Throwable t) {
                world.judge(t, () -> "building");
            }
        }

        private void build() {
            attempt(() -> {
                KVXEnv env = world.any(KVXEnv.class, hostile.random);
                if (env == null || hostile.once(3))
                    world.remember(env = Models.quietEnv(), hostile.random);
                hostile.addModel(env);
            });
        }

        private void call(Class<?> type, Object target) {
            Executable method = hostile.any(METHODS.get(type));
            boolean needsTarget =
                method instanceof Method && !Modifier.isStatic(method.getModifiers());
            if (needsTarget && target == null)
                return;
            Object[] args = hostile.forCall(method, target);
            // What is about to be called can be read after a crash.
            String text = "episode " + world.seed + ", call " + calls.incrementAndGet() + ": " +
                          describe(method, args);
            notes.put(note * NOTE, Arrays.copyOf(text.getBytes(StandardCharsets.UTF_8), NOTE));
            try {
                Object result = invoke(method, target, args);
                if (result != null && (result.getClass().getPackage() == KVX.class.getPackage() ||
                                       result instanceof String s && s.length() < 100))
                    world.remember(result, hostile.random);
            } catch (Throwable t) {
                world.judge(t, () -> text);
            }
            if (target instanceof AutoCloseable resource && method.getName().equals("close"))
                world.close(resource);
        }

        /** Inside a callback, with its context, or a consumer. */
        void meddle(KVXCallbackContext context) {
            if (context != null)
                world.remember(context, hostile.random);
            int depth = DEPTH.get();
            if (depth > 2 || ++meddled > 20)
                return;
            DEPTH.set(depth + 1);
            try {
                for (int i = hostile.random.nextInt(8); i > 0; i--) {
                    if (context == null || hostile.once(3))
                        step();
                    else
                        call(KVXCallbackContext.class, context);
                }
                if (hostile.once(30))
                    Models.<RuntimeException>escape(new Hostile.Marker());
                if (hostile.once(200)) {
                    world.overflowed = true;
                    meddleForever();
                }
            } finally {
                DEPTH.set(depth);
            }
        }

        private int meddleForever() { return meddleForever() + 1; }
    }

    private static void episode(long seed, ScheduledExecutorService clock) throws Exception {
        World world = new World(seed);
        Random random = new Random(seed);
        Future<?> watch = clock.scheduleAtFixedRate(world::watch, 10, 10, TimeUnit.MILLISECONDS);
        List<Thread> threads = new ArrayList<>();
        for (int i = random.nextInt(4) > 0 ? 1 : THREADS; i > 0; i--) {
            Caller caller = new Caller(world, random.nextLong(), i);
            threads.add(new Thread(() -> caller.run(CALLS), "caller " + i));
        }
        threads.forEach(Thread::start);
        for (Thread thread : threads)
            thread.join();
        world.begun.put(Thread.currentThread(), System.nanoTime());
        world.end();
        watch.cancel(false);
    }

    /** In a virtual machine of its own: arguments are seed, seconds, calls and the notes' file. */
    public static void main(String[] args) throws Exception {
        Random seeds = new Random(Long.parseLong(args[0]));
        long seconds = Long.parseLong(args[1]), least = Long.parseLong(args[2]);
        try (FileChannel file =
                 FileChannel.open(Path.of(args[3]), StandardOpenOption.READ,
                                  StandardOpenOption.WRITE, StandardOpenOption.CREATE)) {
            notes = file.map(FileChannel.MapMode.READ_WRITE, 0, (THREADS + 1) * NOTE);
        }
        ScheduledExecutorService clock = Executors.newScheduledThreadPool(1);
        Thread.setDefaultUncaughtExceptionHandler((thread, thrown) -> {
            thrown.printStackTrace();
            Runtime.getRuntime().halt(1);
        });
        long end = System.nanoTime() + seconds * 1_000_000_000L;
        long seed = Long.parseLong(args[0]);
        do {
            episode(seed, clock);
            seed = seeds.nextLong();
        } while (System.nanoTime() < end && calls.get() < least);
        System.err.println(calls + " calls");
        System.err.flush();
        Runtime.getRuntime().halt(0);
    }
}
