#!/usr/bin/env bash
# library.sh NM READELF LIBRARY EXPORTS: checks that the library exports the natives of EXPORTS and
# needs the C library and the solver only. Where there is a virtual machine its tests look closer.
set -euo pipefail
diff <("$1" -D --defined-only "$3" | sed 's/.* //' | sort) <(sed 's/EXPORT(\(.*\))/\1/' "$4" | sort)
needed=$("$2" -d "$3" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | grep -v '^ld-linux' | sort | xargs)
[ "$needed" = "libc.so.6 libkorvex130.so" ] || { echo "needs $needed" && exit 1; }
