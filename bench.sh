#!/usr/bin/env bash
# Builds the release DLL and runs the benchmarks under Wine; arguments go to the benchmark program.
cd "$(dirname "${BASH_SOURCE[0]}")" || exit 1
. tools/build-steps.sh

tools/setup.sh < /dev/null || exit 1
step "build the benchmarks" build-bench configure_and_build win32 --target veklib_bench
exec tools/wine-run build/win32/bin/veklib_bench.exe "$@"
