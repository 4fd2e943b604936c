#!/usr/bin/env bash
# Enters the present export tables of both DLLs into the checked-in lists. Look at the difference before committing it.
set -eu
cd "$(dirname "$0")/.."
tools/setup.sh
for pair in win32:i686 win64:x86_64; do
    preset=${pair%:*}
    cmake --preset "$preset" > /dev/null
    cmake --build --preset "$preset" --target VekLib > /dev/null
    list=tests/package/exports-$preset.txt
    bash tests/package/list-exports.sh "${pair#*:}-w64-mingw32-objdump" "build/$preset/bin/VekLib.dll" > "$list.new"
    [ -s "$list.new" ] || { rm "$list.new"; echo "$preset: the DLL exports nothing" >&2; exit 1; }
    mv "$list.new" "$list"
    echo "$list: $(wc -l < "$list") names"
done
