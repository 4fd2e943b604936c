#!/usr/bin/env bash
# Builds VekLib and shows what it does, through its command line program vek.exe.
cd "$(dirname "${BASH_SOURCE[0]}")" || exit 1
. tools/build-steps.sh

set_up() {
    tools/setup.sh < /dev/null || exit 1
}

build() {
    step "build win32" build-win32 configure_and_build win32
}

show() {
    tools/demo-run.sh build/win32/bin/vek.exe
}

set_up
build
show
