#!/usr/bin/env bash
# The DLL exports what the checked-in list says, no more and no less, and a host that is linked for the other C++ ABI
# finds nothing there but the entry points: check-exports.sh OBJDUMP DLL LIST LIST-OF-THE-OTHER
# A wanted change is entered with tools/update-exports.sh.
set -u
actual=$(bash "$(dirname "$0")/list-exports.sh" "$1" "$2") || exit 1
[ -n "$actual" ] || { echo "$2 exports nothing"; exit 1; }
[ -r "$3" ] || { echo "$3 is missing; tools/update-exports.sh makes it"; exit 1; }
if ! difference=$(diff --label "$(basename "$3")" --label "$(basename "$2")" -U0 "$3" <(printf '%s\n' "$actual")); then
    echo "$difference"
    echo "If this is wanted, run tools/update-exports.sh and commit the list."
    exit 1
fi
common=$(LC_ALL=C comm -12 <(LC_ALL=C sort "$3") <(LC_ALL=C sort "$4") | tr '\n' ' ')
[ "$common" = 'VekLibDeinit VekLibInit VekLibVersion getVekLibKernel ' ] || { echo "exported for both ABIs: $common"; exit 1; }
