package com.korvex;

import java.nio.file.*;
import java.util.*;
import java.util.concurrent.TimeUnit;

/** A test program that ran in a virtual machine of its own: how it ended, and what it wrote. */
record Launch(int status, String out) {
    /** Fails if the virtual machine complains about calls through JNI. */
    static Launch of(Path directory, List<String> options, Class<?> main, Object... args)
        throws Exception {
        List<String> command = new ArrayList<>(List.of(System.getProperty("korvex.checked")));
        command.add(Path.of(System.getProperty("java.home"), "bin", "java").toString());
        command.addAll(options);
        for (String name : List.of("java.library.path", "korvex.checked", "korvex.classes"))
            command.add("-D" + name + "=" + System.getProperty(name));
        command.addAll(List.of("--enable-native-access=ALL-UNNAMED", "-cp",
                               System.getProperty("korvex.classes"), main.getName()));
        for (Object arg : args)
            command.add(arg.toString());
        Path out = Files.createTempFile("launch", ".out");
        Process process = new ProcessBuilder(command)
                              .directory(directory.toFile())
                              .redirectErrorStream(true)
                              .redirectOutput(out.toFile())
                              .start();
        try {
            if (!process.waitFor(120, TimeUnit.SECONDS))
                throw new AssertionError(command + " doesn't end");
            return new Launch(process.exitValue(), new String(Files.readAllBytes(out)).strip());
        } finally {
            process.descendants().forEach(ProcessHandle::destroyForcibly);
            process.destroyForcibly();
            Files.delete(out);
        }
    }
}
