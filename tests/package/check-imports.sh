#!/usr/bin/env bash
# The DLL needs nothing but what every Windows has, and loads no more with itself: check-imports.sh OBJDUMP DLL C-RUNTIME
set -u
allowed="kernel32.dll $3"

imports=$("$1" -p "$2" | awk '/DLL Name:/ { print tolower($3) }' | LC_ALL=C sort -u)
[ -n "$imports" ] || { echo "no import table found in $2"; exit 1; }
status=0
for name in $imports; do
    case " $allowed " in
        *" $name "*) ;;
        *) echo "needs $name, which is not one of: $allowed"; status=1 ;;
    esac
done
exit $status
