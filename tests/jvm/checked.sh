#!/usr/bin/env bash
# Runs a command that has -Xcheck:jni in it and fails if the virtual machine complains. Two of its
# warnings say no more than how the bridge is made: it never asks for a pending exception, which the
# Java caller finds anyway, and it holds a reference for every name of an array at once.
set -o pipefail
output=$(mktemp)
trap 'rm -f "$output"' EXIT
"$@" 2>&1 | tee "$output"
status=$?
complaints=$(grep -E 'WARNING|FATAL ERROR' "$output" |
    grep -vE 'JNI call made without checking exceptions|JNI local refs: [0-9]+, exceeds capacity')
if [ -n "$complaints" ]; then
    echo "Complaints of the virtual machine:"
    echo "$complaints"
    exit 1
fi
exit $status
