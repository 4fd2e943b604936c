#!/usr/bin/env bash
# Feeds a target with inputs made from its corpus until the time is over or one of them finds a fault:
#     tools/fuzz.sh TARGET SECONDS
#     tools/fuzz.sh --keep TARGET [BYTES]   add to the corpus of the tests what was found new, the smallest first
# Without a target it names them all. New inputs are collected in build/fuzz/TARGET, the one of a fault is left in
# build/fuzz/TARGET.fault. The same seed in VEK_FUZZ_SEED and the same inputs to begin with give the same run.
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
. tools/build-steps.sh

keep=
if [ "${1:-}" = --keep ]; then keep=yes; shift; fi
target=${1:-} number=${2:-32000}
tools/setup.sh < /dev/null || exit 1
step "build the fuzzer" build-fuzz configure_and_build win32-fuzz --target veklib_fuzz
fuzzer=(tools/wine-run build/win32-fuzz/bin/veklib_fuzz.exe)
[ -n "$target" ] || exec "${fuzzer[@]}" '?' 0 .
grown=build/fuzz/$target corpus=tests/fuzz/corpus/$target
mkdir -p "$grown" "$corpus"
if [ -n "$keep" ]; then
    kept=$(mktemp -d)
    "${fuzzer[@]}" --minimise "$target" "$number" "Z:$kept" "$grown" "$corpus" || exit 1
    rm -f "$corpus"/*
    mv "$kept"/* "$corpus" && rmdir "$kept"
    exit
fi
"${fuzzer[@]}" "$target" "$number" "$grown" "$corpus"
status=$?
if [ $status != 0 ]; then
    size=$(od -An -tu4 -N4 "$grown/current" | tr -d " ")
    tail -c +5 "$grown/current" | head -c "$size" > "$grown.fault"
    echo "fuzz: the input is in $grown.fault ($size bytes)"
fi
exit $status
