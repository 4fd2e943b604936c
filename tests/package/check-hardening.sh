#!/usr/bin/env bash
# The DLL's protection and its version resource: check-hardening.sh OBJDUMP WINDRES DLL VERSION OBJECT...
set -u
objdump=$1 windres=$2 dll=$3 version=$4
shift 4
status=0
fail() { echo "$*"; status=1; }

headers=$("$objdump" -p "$dll") || exit 1
flags='DYNAMIC_BASE NX_COMPAT'
case $headers in
    *pei-x86-64*) flags="$flags HIGH_ENTROPY_VA" ;;
esac
for flag in $flags; do
    grep -qw "$flag" <<< "$headers" || fail "flag $flag is not set"
done

# windres prints the numbers of FILEVERSION separated by commas.
resource=$("$windres" -J coff -O rc "$dll" 2>/dev/null)
wanted=$(sed 's/\./, */g' <<< "$version")
grep -qE "FILEVERSION +$wanted, *0" <<< "$resource" || fail "no version resource with FILEVERSION $version"

protected=0
for object in "$@"; do
    case $object in *.cpp.obj) "$objdump" -t "$object" | grep -q '__stack_chk_fail$' && protected=$((protected + 1)) ;; esac
done
[ $protected -gt 0 ] || fail "no object file calls the stack protector"
exit $status
