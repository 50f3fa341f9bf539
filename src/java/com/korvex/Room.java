package com.korvex;

/** Room on the stack. */
final class Room {
    /** For a run: what it does before, in callbacks and after, with the solver's own frames. */
    static final int RUN = 640;

    /** For giving back the turn of a log. */
    static final int TURN = 60;

    private Room() {}

    /**
     * Throws {@link StackOverflowError} unless the stack has room for that many frames: so that
     * what needs them fails before anything has begun, not halfway.
     */
    static void require(int frames) { descend(frames, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12); }

    /**
     * All values are needed after the call, so that compiling makes no frame smaller than 112
     * bytes; an interpreted one takes 304.
     */
    private static long descend(int frames, long a, long b, long c, long d, long e, long f, long g,
                                long h, long i, long j, long k, long l) {
        if (frames == 0)
            return a;
        long deeper = descend(frames - 1, b, c, d, e, f, g, h, i, j, k, l, a);
        return deeper ^ a * b ^ c * d ^ e * f ^ g * h ^ i * j ^ k * l;
    }
}
