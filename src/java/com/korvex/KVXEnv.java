package com.korvex;

/** An environment. */
public final class KVXEnv {
    KVXEnv() {}

    native int jniSetLogCB(long env, int enable);
}
