package com.korvex;

/** Environments and models that several tests use. */
final class Models {
    private Models() {}

    /** An environment that leaves the console alone. */
    static KVXEnv quietEnv() {
        KVXEnv env = KVXEnv.empty();
        env.params().set("LogToConsole", 0);
        env.start();
        return env;
    }
}
