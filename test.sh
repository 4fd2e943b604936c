#!/usr/bin/env bash
# Builds and tests everything: the DLLs of both C++ ABIs, 32 and 64 bit, and the guarded static build.
# Details are in build/*.log. Takes the names of presets to test only those.
cd "$(dirname "${BASH_SOURCE[0]}")" || exit 1
. tools/build-steps.sh

tools/setup.sh --msvc < /dev/null || exit 1

# Of the sources, whatever they are built for, in the time that builds and tests leave.
checks=
if [ $# = 0 ]; then
    set -m # a process group of its own, to end it as one
    nice -n 19 tools/check-static.sh > build/check-static.txt 2>&1 < /dev/null &
    set +m
    checks=$!
    trap 'kill -- -$checks 2> /dev/null' EXIT
fi
checks_end() {
    wait "$checks"
    local code=$?
    cat build/check-static.txt
    return $code
}

presets=("$@")
if [ ${#presets[@]} = 0 ]; then
    presets=(win32 win64 msvc32 msvc64 win32-guard) # hosts of the third and fourth run with the DLLs of the first two
    export VEK_TEST_ALL=1
fi
status=0
for preset in "${presets[@]}"; do
    step "build $preset" "build-$preset" configure_and_build "$preset"
    begin=$SECONDS
    # Many tests wait rather than work.
    if ctest --preset "$preset" -j $(($(nproc) + 2)) > "build/test-$preset.log" 2>&1 < /dev/null; then
        printf '%-28s ok %4d s\n' "test $preset" $((SECONDS - begin))
        grep 'tests passed' "build/test-$preset.log"
    else
        printf '%-28s FAILED after %d s\n' "test $preset" $((SECONDS - begin))
        tail -n 200 "build/test-$preset.log"
        status=1
    fi
done
[ -z "$checks" ] || step "static checks" check-static checks_end
exit $status
