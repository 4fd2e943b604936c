#!/usr/bin/env bash
# Makes build/VekLib-VERSION-windows.zip: the DLLs of both C++ ABIs, 32 and 64 bit, with separate symbols, and all that
# hosts want of them. The same sources in the same folder give the same bytes. Details are in build/*.log.
#   ./package.sh            make it
#   ./package.sh --test     make it twice, the second time from nothing, and build hosts with what it holds
#   SOURCE_DATE_EPOCH=...   the time in it, otherwise that of the last commit
cd "$(dirname "${BASH_SOURCE[0]}")" || exit 1
. tools/build-steps.sh

version=$(sed -nE 's/^project\(VekLib VERSION ([0-9.]+).*/\1/p' CMakeLists.txt)
name=VekLib-$version-windows
stage=build/package/$name
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)} || exit 1
export SOURCE_DATE_EPOCH TZ=UTC LC_ALL=C.UTF-8
umask 022

tools/setup.sh --msvc < /dev/null || exit 1

# Symbols name files by where they stand in the repository.
build() {       # preset, options...
    local folder=build/package/$1
    cmake --preset "$1" -B "$folder" -DVEKLIB_TESTS=OFF "${@:2}" &&
        cmake --build "$folder" -j "$(nproc)" --target $targets &&
        cmake --install "$folder" --prefix "$stage"
}
build_gnu() {
    local targets='VekLib vek vekview'
    build "$1" -DCMAKE_CXX_FLAGS_RELEASE="-O2 -DNDEBUG -g -ffile-prefix-map=$PWD=."
}
build_msvc() {
    local targets=VekLib
    build "$1" -DVEKLIB_APPS=OFF \
        -DCMAKE_CXX_FLAGS_RELEASE="-O2 -DNDEBUG /Z7 -gno-codeview-command-line -fdebug-compilation-dir=. /clang:-ffile-prefix-map=$PWD=." \
        -DCMAKE_SHARED_LINKER_FLAGS_RELEASE="/INCREMENTAL:NO /DEBUG /OPT:REF /OPT:ICF /PDBALTPATH:%_PDB% /PDBSOURCEPATH:/VekLib"
}

take_symbols_out() {    # folder, prefix of the tools
    local objcopy=$2-w64-mingw32-objcopy strip=$2-w64-mingw32-strip
    cd "$stage/bin/$1" &&
        "$objcopy" --only-keep-debug VekLib.dll VekLib.dll.debug &&
        "$strip" --strip-all VekLib.dll vek.exe vekview.exe &&
        "$objcopy" --add-gnu-debuglink=VekLib.dll.debug VekLib.dll &&
        chmod -x VekLib.dll.debug
}

# The pages and the reference of the headers for a browser.
add_html() {
    [ ! -e tools/build-docs.sh ] || { tools/build-docs.sh && cp -r build/docs "$stage/docs/html"; }
}

finish() {
    (take_symbols_out win32-gnu i686) && (take_symbols_out win64-gnu x86_64) && add_html &&
        python3 tools/package/describe.py "$stage" "$version" "$(tools/setup.sh --where)" &&
        chmod -R u=rwX,go=rX "$stage" && find "$stage" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} + || return
    rm -f "build/$name.zip"
    (cd build/package && find "$name" | LC_ALL=C sort | zip -X -9 -q -@ "../$name.zip") &&
        (cd build && sha256sum "$name.zip" > "$name.zip.sha256")
}

# From nothing. The folder has to be the same: clang makes names for what is in unnamed namespaces out of its path.
make_it_again() {
    mv "build/$name.zip" build/package/first.zip &&
        rm -rf build/package/{win32,win64,msvc32,msvc64} &&
        CCACHE_DISABLE=1 ./package.sh && cmp "build/$name.zip" build/package/first.zip
}

rm -rf "$stage"
for preset in win32 win64; do step "build $preset" "package-$preset" build_gnu "$preset"; done
for preset in msvc32 msvc64; do step "build $preset" "package-$preset" build_msvc "$preset"; done
step "zip" package-zip finish
[ -e LICENSE ] || echo "there is no file LICENSE: its owner has not chosen VekLib's licence"
cat "build/$name.zip.sha256"
if [ "${1:-}" = --test ]; then
    step "test the zip" package-test bash tests/package/check-zip.sh "build/$name.zip" build/package/test
    step "make it again" package-again make_it_again
fi
