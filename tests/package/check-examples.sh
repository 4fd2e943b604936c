#!/usr/bin/env bash
# Each public header shows an example, and a host's compiler takes all examples in the headers:
# check-examples.sh INCLUDE-FOLDER COMPILER FLAG...
set -u
folder=$1
shift
compile=("$@")
status=0

# The examples of a header, each the body of a function; the lines count as in the header.
as_functions() {
    awk '
        /^ *\/\/\/ @endcode/ { print "}"; inside = 0; next }
        /^ *\/\/\/ @code/ { print "void Example" ++count "(); void Example" count "() {"; inside = 1; next }
        !inside { print ""; next }
        { sub(/^ *\/\/\/ ?/, ""); print }
    ' "$1"
}

for header in "$folder"/*.h; do
    name=$(basename "$header")
    sed '/^#ifndef/q' "$header" | grep -q '^/// @code' || { echo "$name shows no example at its top"; status=1; }
    {
        printf '#include "%s"\n' VekLib.h "$name"
        printf '#include <cstdio>\n#line 1 "%s"\n' "$name"
        as_functions "$header"
    } | "${compile[@]}" -Wno-unused-variable -Wno-unused-but-set-variable -fsyntax-only -I "$folder" - 2>&1 ||
        { echo "an example in $name does not compile"; status=1; }
done
exit $status
