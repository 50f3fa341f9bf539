package com.korvex;

import java.lang.reflect.Method;
import java.util.Map;
import java.util.function.Function;
import java.util.stream.*;

/** The natives of KorvexJni by name, for tables. */
final class Natives {
    private static final Map<String, Method> METHODS =
        Stream.of(KorvexJni.class.getMethods())
            .filter(m -> m.getDeclaringClass() == KorvexJni.class)
            .collect(Collectors.toMap(Method::getName, Function.identity()));

    private Natives() {}

    static Object call(String name, Object... args) {
        try {
            return METHODS.get(name).invoke(null, args);
        } catch (ReflectiveOperationException e) {
            throw new AssertionError(name, e);
        }
    }
}
