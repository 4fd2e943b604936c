#!/usr/bin/env bash
# The README shows an example as it is built and run: check-readme.sh README.md MAIN.CPP
set -u
readme=$1 source=$2
shown=$(awk '/^```cpp$/ { inside = 1; next } /^```$/ { if (inside) exit } inside' "$readme")
[ -n "$shown" ] || { echo "$readme has no block of C++"; exit 1; }
diff <(printf '%s\n' "$shown") "$source" || { echo "$readme does not show $source as it is"; exit 1; }
lines=$(wc -l < "$source")
[ "$lines" -lt 60 ] || { echo "$source has $lines lines; below 60 are wanted"; exit 1; }
