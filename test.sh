#!/usr/bin/env bash
# Builds and tests everything: the DLLs of both C++ ABIs, 32 and 64 bit, and the guarded static build.
# Details are in build/*.log. Takes the names of presets to test only those.
cd "$(dirname "${BASH_SOURCE[0]}")" || exit 1
. tools/build-steps.sh

tools/setup.sh --msvc < /dev/null || exit 1

# What runs beside the rest: in a process group of its own, which ends with this script.
beside() {
    set -m
    "$@" &
    set +m
}
trap 'for job in $(jobs -p); do kill -- "-$job" 2> /dev/null; done' EXIT

# Of the sources, whatever they are built for, in the time that builds and tests leave.
checks=
check() { nice -n 19 tools/check-static.sh > build/check-static.txt 2>&1 < /dev/null; }
if [ $# = 0 ]; then
    beside check
    checks=$!
fi
end_checks() {
    wait "$checks"
    local code=$?
    cat build/check-static.txt
    return $code
}

run_tests() { # preset
    local begin=$SECONDS
    exec > "build/tested-$1.txt"
    if ctest --preset "$1" -j $(($(nproc) + 2)) > "build/test-$1.log" 2>&1 < /dev/null; then
        printf '%-28s ok %4d s\n' "test $1" $((SECONDS - begin))
        grep 'tests passed' "build/test-$1.log"
    else
        printf '%-28s FAILED after %d s\n' "test $1" $((SECONDS - begin))
        tail -n 200 "build/test-$1.log"
        return 1
    fi
}

# Many tests wait rather than work: the next preset is built while the tests of the last one run.
status=0
running= # whose tests
end_tests() {
    [ -n "$running" ] || return
    wait "$tests" || status=1
    cat "build/tested-$running.txt"
    running=
}

presets=("$@")
if [ ${#presets[@]} = 0 ]; then
    presets=(win32 win64 msvc32 msvc64 win32-guard) # hosts of the third and fourth run with the DLLs of the first two
    export VEK_TEST_ALL=1
fi
for preset in "${presets[@]}"; do
    step "build $preset" "build-$preset" configure_and_build "$preset"
    end_tests
    running=$preset
    beside run_tests "$preset"
    tests=$!
done
end_tests
[ -z "$checks" ] || step "static checks" check-static end_checks
exit $status
