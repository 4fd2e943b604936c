#!/usr/bin/env bash
# Enters the present export tables of all DLLs and the slots of all interfaces into the checked-in lists. Look at the
# difference before committing it: a slot that hosts have never moves.
set -eu
cd "$(dirname "$0")/.."
tools/setup.sh --msvc
enter() {       # list; the new one comes from the standard input
    cat > "$1.new"
    [ -s "$1.new" ] || { rm "$1.new"; echo "nothing to enter into $1" >&2; exit 1; }
    mv "$1.new" "$1"
    echo "$1: $(wc -l < "$1") lines"
}
for pair in win32:i686 win64:x86_64 msvc32:i686 msvc64:x86_64; do
    preset=${pair%:*}
    cmake --preset "$preset" > /dev/null
    cmake --build --preset "$preset" --target VekLib > /dev/null
    bash tests/package/list-exports.sh "${pair#*:}-w64-mingw32-objdump" "build/$preset/bin/VekLib.dll" |
        enter "tests/package/exports-$preset.txt"
done
bash tests/package/list-slots.sh include i686-w64-windows-gnu | enter tests/package/slots.txt
