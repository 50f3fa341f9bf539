package com.korvex;

public final class KorvexJni {
    private KorvexJni() {}
}
