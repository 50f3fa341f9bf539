package com.korvex;

/** Room on the stack. */
final class Room {
    /** For a run: what it does before, in callbacks and after, with the solver's own frames. */
    static final int RUN = 600;

    /** For giving back the turn of a log. */
    static final int TURN = 60;

    private Room() {}

    /**
     * Throws {@link StackOverflowError} unless the stack has room for that many frames: so that
     * what needs them fails before anything has begun, not halfway.
     */
    static void require(int frames) { descend(frames, 1, 2, 3, 4); }

    private static long descend(int frames, long a, long b, long c, long d) {
        return frames == 0 ? a + b + c + d : descend(frames - 1, b, c, d, a) + 1;
    }
}
