#!/usr/bin/env bash
# Hosts of both C++ ABIs and of both widths see every operation in the slot that the checked-in list says:
# check-slots.sh INCLUDE-FOLDER LIST
set -u
here=$(dirname "$0")
status=0
for target in i686-w64-windows-gnu x86_64-w64-windows-gnu i686-pc-windows-msvc x86_64-pc-windows-msvc; do
    actual=$(bash "$here/list-slots.sh" "$1" "$target") || { echo "$target: the tables can't be listed"; exit 1; }
    diff --label "$(basename "$2")" --label "$target" -U0 "$2" <(printf '%s\n' "$actual") || status=1
done
[ $status = 0 ] || echo "Hosts call by slot: tools/update-exports.sh enters a new class; what hosts have never moves."
exit $status
