#!/usr/bin/env bash
# A host works as a tool does, over all files of some folders: tools/life.sh [PRESET] [SECONDS] [OPTION or FOLDER...]
# 600 seconds with the DLL of win32 over /usr/share, unless told otherwise; --tight MB is one of the options.
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
. tools/build-steps.sh

preset=win32
case ${1:-} in win* | msvc*) preset=$1 && shift ;; esac
seconds=${1:-600}
[ $# = 0 ] || shift
folders=()
for folder in "${@:-/usr/share}"; do
    [ ! -d "$folder" ] || folder=Z:$(realpath "$folder")
    folders+=("$folder")
done
setup=()
[[ $preset != msvc* ]] || setup=(--msvc)
tools/setup.sh ${setup[@]+"${setup[@]}"} < /dev/null || exit 1
step "build" build-life configure_and_build "$preset" --target veklib_life
exec timeout --foreground $((seconds + 240)) tools/wine-run "build/$preset/bin/veklib_life.exe" "$seconds" "${folders[@]}"
