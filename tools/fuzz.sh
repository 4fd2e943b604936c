#!/usr/bin/env bash
# Feeds a target with inputs made from its corpus until the time is over or one of them finds a fault:
#     tools/fuzz.sh TARGET SECONDS
#     tools/fuzz.sh --keep TARGET [BYTES]   add to the corpus of the tests what was found new, the smallest first
#     tools/fuzz.sh --add TARGET FILE...    add these inputs to it
#     tools/fuzz.sh --replay TARGET FILE... run these on the guard heap, to see where one goes wrong
#     tools/fuzz.sh --extract TARGET        each input of it as a file, in build/fuzz/TARGET.inputs
# Without a target it names them all. New inputs are collected in build/fuzz/TARGET, the one of a fault is left in
# build/fuzz/TARGET.fault. The same seed in VEK_FUZZ_SEED and the same inputs to begin with give the same run.
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
. tools/build-steps.sh

option=
case ${1:-} in --*) option=$1; shift ;; esac
target=${1:-} number=${2:-32000}
tools/setup.sh < /dev/null || exit 1
step "build the fuzzer" build-fuzz configure_and_build win32-fuzz --target veklib_fuzz
fuzzer=(tools/wine-run build/win32-fuzz/bin/veklib_fuzz.exe)
[ -n "$target" ] || exec "${fuzzer[@]}" '?' 0 .
grown=build/fuzz/$target pack=tests/fuzz/corpus/$target.pack
mkdir -p "$grown"
case $option in
    --keep) exec "${fuzzer[@]}" --minimise "$target" "$number" "$pack" "$grown" "$pack" ;;
    --replay) exec "${fuzzer[@]}" --replay "$target" "${@:2}" ;;
    --add) exec "${fuzzer[@]}" --pack "$pack" "$pack" "${@:2}" ;;
    --extract) mkdir -p "$grown.inputs" && exec "${fuzzer[@]}" --unpack "$grown.inputs" "$pack" ;;
esac
"${fuzzer[@]}" "$target" "$number" "$grown" "$pack"
status=$?
if [ $status != 0 ]; then
    size=$(od -An -tu4 -N4 "$grown/current" | tr -d " ")
    tail -c +9 "$grown/current" | head -c "$size" > "$grown.fault"
    echo "fuzz: the input is in $grown.fault ($size bytes); it runs on the guard heap:"
    "${fuzzer[@]}" --replay "$target" "$grown.fault"
fi
exit $status
