#!/usr/bin/env bash
# The DLL's protection and its version resource: check-hardening.sh OBJDUMP WINDRES DLL VERSION FLAGS GUARD OBJECT...
# FLAGS are those of the header, GUARD is what functions call that find their return address changed.
set -u
objdump=$1 windres=$2 dll=$3 version=$4 flags=$5 guard=$6
shift 6
status=0
fail() { echo "$*"; status=1; }

headers=$("$objdump" -p "$dll") || exit 1
for flag in $flags; do
    grep -qw "$flag" <<< "$headers" || fail "flag $flag is not set"
done

# windres prints the numbers of FILEVERSION separated by commas.
resource=$("$windres" -J coff -O rc "$dll" 2>/dev/null)
wanted=$(sed 's/\./, */g' <<< "$version")
grep -qE "FILEVERSION +$wanted, *0" <<< "$resource" || fail "no version resource with FILEVERSION $version"

protected=0
for object in "$@"; do
    case $object in *.cpp.obj) "$objdump" -t "$object" | grep -qE "$guard(@4)?$" && protected=$((protected + 1)) ;; esac
done
[ $protected -gt 0 ] || fail "no object file calls the stack protector"
exit $status
