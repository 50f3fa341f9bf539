#!/usr/bin/env bash
# Runs a command that has -Xcheck:jni in it, passes its output on and fails if the virtual machine
# complains. Two of its warnings say no more than how the bridge is made: it never asks for a
# pending exception, which the Java caller finds anyway, and it holds a reference for every name of
# an array at once. They come by the hundred thousand, with stack traces: none of them is passed on.
set -o pipefail
"$@" 2>&1 | LC_ALL=C awk '
    /^WARNING in native method: JNI call made without checking exceptions/ ||
    /^WARNING: JNI local refs: [0-9]+, exceeds capacity/ { dropping = 1; next }
    dropping && /^\tat / { next }
    /^WARNING: Delegated to the .execute. command/ { next } # by later versions of JUnit
    { dropping = 0; print; fflush() }
    /WARNING|FATAL ERROR/ { complaints++ }
    END {
        if (complaints) { print complaints " complaints of the virtual machine, above"; exit 1 }
    }'
