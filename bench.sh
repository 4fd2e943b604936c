#!/usr/bin/env bash
# Builds the release DLL and runs the benchmarks under Wine: bench.sh [PRESET] [ARGUMENT...]
# The preset is win32 unless the first argument is win64, msvc32 or msvc64; the arguments go to the benchmark program.
cd "$(dirname "${BASH_SOURCE[0]}")" || exit 1
. tools/build-steps.sh

preset=win32
case ${1:-} in
    win32 | win64 | msvc32 | msvc64) preset=$1 && shift ;;
esac
setup=()
[[ $preset != msvc* ]] || setup=(--msvc)
tools/setup.sh "${setup[@]}" < /dev/null || exit 1
step "build the benchmarks" build-bench configure_and_build "$preset" --target veklib_bench
exec tools/wine-run "build/$preset/bin/veklib_bench.exe" "$@"
