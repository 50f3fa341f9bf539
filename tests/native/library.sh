#!/usr/bin/env bash
# library.sh NM READELF LIBRARY EXPORTS [JAVA JAR]: checks that the library exports the natives of
# EXPORTS, and needs the C library, no newer than promised, and the solver beside it; and that all but
# one of the natives of KorvexJni are used by other classes of the jar.
set -euo pipefail
exports=$(sed 's/EXPORT(\(.*\))/\1/' "$4" | sort)
diff <("$1" -D --defined-only "$3" | sed 's/.* //' | sort) - <<<"$exports"
needed=$("$2" -d "$3" | sed -nE 's/.*\((NEEDED|RUNPATH|RPATH)\).*\[(.*)\]/\2/p' |
    grep -v '^ld-linux' | sort | xargs)
[ "$needed" = '$ORIGIN libc.so.6 libkorvex130.so' ] || { echo "needs $needed" && exit 1; }
newer=$("$1" -D "$3" | awk -F'GLIBC_2[.]' '$2 > 30')
[ -z "$newer" ] || { echo "needs a newer C library: $newer" && exit 1; }

# The checked classes have threads of their own for asynchronous runs, and don't call sync.
[ $# -gt 4 ] || exit 0
classes=$("${5%java}jar" --list --file "$6" | sed -n 's/[.]class$//p' | grep -v '/KorvexJni$')
used=$("${5%java}javap" -v -p -cp "$6" $classes |
    sed -nE 's,.*com/korvex/KorvexJni\.(\w+):.*,\1,p' | sort -u)
unused=$(comm -23 <(sed -n 's/^Java_com_korvex_KorvexJni_//p' <<<"$exports" | sort) - <<<"$used")
[ "$unused" = sync ] || { echo "no checked method calls $unused" && exit 1; }
