#!/usr/bin/env bash
# Runs 8 threads over every service at once on the guarded build: tools/soak.sh [SECONDS], 60 unless told otherwise.
# Fails when something answers wrongly, hangs, or is left over.
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
. tools/build-steps.sh

seconds=${1:-60}
tools/setup.sh < /dev/null || exit 1
step "build the soak" build-soak configure_and_build win32-guard --target veklib_soak
exec timeout --foreground $((seconds + 240)) tools/wine-run build/win32-guard/bin/veklib_soak.exe "$seconds"
