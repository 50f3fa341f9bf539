package com.korvex;

/** Room on the stack. */
final class Room {
    private static final int FRAMES = 600;

    private Room() {}

    /**
     * Throws {@link StackOverflowError} unless the stack has room for what a run, or a call that
     * logs, does before and after: so that it fails before anything has begun, not halfway.
     */
    static void require() { descend(FRAMES, 1, 2, 3, 4); }

    private static long descend(int frames, long a, long b, long c, long d) {
        return frames == 0 ? a + b + c + d : descend(frames - 1, b, c, d, a) + 1;
    }
}
