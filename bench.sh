#!/usr/bin/env bash
# Builds the release DLL and runs the benchmarks under Wine: bench.sh [--peers] [PRESET] [ARGUMENT...]
# With --peers the library is measured beside others that do the same work, which are fetched and built for that.
# The preset is win32 unless win64, msvc32 or msvc64 is named; the arguments go to the benchmark program.
cd "$(dirname "${BASH_SOURCE[0]}")" || exit 1
. tools/build-steps.sh

program=veklib_bench
setup=()
options=()
[[ ${1:-} != --peers ]] || { program=veklib_peers setup=(--peers) options=(-DVEKLIB_PEERS=ON) && shift; }
preset=win32
case ${1:-} in
    win32 | win64 | msvc32 | msvc64) preset=$1 && shift ;;
esac
[[ $preset != msvc* ]] || setup+=(--msvc)
tools/setup.sh ${setup[@]+"${setup[@]}"} < /dev/null || exit 1
configure_and_build_bench() {
    cmake --preset "$preset" ${options[@]+"${options[@]}"} && cmake --build --preset "$preset" -j "$(nproc)" --target "$program"
}
step "build the benchmarks" build-bench configure_and_build_bench
exec tools/wine-run "build/$preset/bin/$program.exe" "$@"
