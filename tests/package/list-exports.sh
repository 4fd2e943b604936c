#!/usr/bin/env bash
# Prints the names a DLL exports, sorted: list-exports.sh OBJDUMP DLL
set -o pipefail
"$1" -p "$2" | awk '
    /^\[Ordinal\/Name Pointer\] Table/ { inside = 1; next }
    inside && /^[ \t]*\[ *[0-9]+\]/ { print $NF; next }
    { inside = 0 }' | LC_ALL=C sort
