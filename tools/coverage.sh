#!/usr/bin/env bash
# Which lines and branches of the library its tests run through: tools/coverage.sh [--missed]
# Builds the DLL and the guarded static library with counters, runs all tests of both, and adds the counts up.
# --missed lists every line and branch that was not run. Details are in build/coverage.txt and build/coverage/.
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
. tools/build-steps.sh

tools/setup.sh < /dev/null || exit 1
if ! command -v gcovr > /dev/null; then
    echo "coverage: gcovr is missing; install the package gcovr" >&2
    exit 1
fi
for preset in win32-coverage win32-guard-coverage; do
    step "build $preset" "build-$preset" configure_and_build "$preset"
    find "build/$preset" -name '*.gcda' -delete
    # One at a time: programs that end together would overwrite each other's counts.
    step "test $preset" "test-$preset" ctest --preset "$preset" -j 1 -E '^(package|apps_full_disk)'
done
mkdir -p build/coverage
filters=()
for room in include base text math thread xml io lexer core; do filters+=(--filter "$room/"); done
step "add up" coverage gcovr --root . --gcov-executable i686-w64-mingw32-gcov-posix --object-directory build \
    "${filters[@]}" --exclude-throw-branches --exclude-unreachable-branches --gcov-ignore-parse-errors \
    --txt build/coverage.txt --json build/coverage/coverage.json --html-details build/coverage/index.html \
    build/win32-coverage build/win32-guard-coverage
awk '/^TOTAL/' build/coverage.txt
gcovr --root . --add-tracefile build/coverage/coverage.json --branches --exclude-throw-branches | awk '/^TOTAL/'
[ "${1:-}" != --missed ] || gcovr --root . --add-tracefile build/coverage/coverage.json
