#!/usr/bin/env bash
# What package.sh has made is whole, and hosts are built with it and run: check-zip.sh ZIP FOLDER
set -u
repository=$(cd "$(dirname "$0")/../.." && pwd)
zip=$(realpath "$1") folder=$2
here=$repository/tests/package
rm -rf "$folder"
mkdir -p "$folder/un packed"
folder=$(cd "$folder" && pwd)
cd "$folder" || exit 1
unzip -q "$zip" -d "un packed" || exit 1
root=$(echo "$folder/un packed"/*)
status=0
fail() { echo "error: $*"; status=1; }
toolchain() { # win32-gnu and the like
    case $1 in
        win32-gnu) echo i686 ;;
        win64-gnu) echo x86_64 ;;
        *-msvc) local bits=${1:3:2}; echo "msvc$bits" ;;
    esac
}

# --- what is in it ---

(cd "$root" && sha256sum --quiet --strict -c SHA256SUMS) || fail "a sum is wrong"
diff <(cd "$root" && find . -type f ! -name SHA256SUMS | sed 's|^\./||' | LC_ALL=C sort) \
    <(cut -c67- "$root/SHA256SUMS" | LC_ALL=C sort) || fail "SHA256SUMS has other files"
python3 - "$root" << 'END' || fail "the SBOM is wrong"
import glob, json, os, sys
root = sys.argv[1]
document = json.load(open(glob.glob(root + '/*.spdx.json')[0]))
ids = [document['SPDXID']] + [each['SPDXID'] for each in document['packages'] + document['files']]
assert len(ids) == len(set(ids)), 'an id stands twice'
for each in document['relationships']:
    assert each['spdxElementId'] in ids and each['relatedSpdxElement'] in ids, each
for each in document['files']:
    assert os.path.exists(os.path.join(root, each['fileName'])), each
links = {(each['spdxElementId'], each['relatedSpdxElement']) for each in document['relationships'] if each['relationshipType'] == 'STATIC_LINK'}
dlls = {each['SPDXID'] for each in document['files'] if each['fileName'].endswith('/VekLib.dll')}
assert len(dlls) == 4 and all((dll, 'SPDXRef-expat') in links for dll in dlls), 'a DLL without expat'
END
for file in README.md CHANGELOG.md THIRD-PARTY-NOTICES.txt licences/expat.txt licences/gcc-runtime.txt include/VekVersion.h \
    include/VekLib.natvis share/VekLib/gdb/veklib.py docs/building.md bin/win32-gnu/vek{,view}.exe bin/win64-gnu/vek{,view}.exe; do
    [ -s "$root/$file" ] || fail "$file is missing"
done
# There is no path of the repository's folder in anything, and no symbol in a program.
! grep -rlF "$repository" "$root" || fail "these have paths of this folder"
for program in "$root"/bin/*-gnu/*.exe; do
    x86_64-w64-mingw32-objdump -t "$program" | grep -q 'no symbols' || fail "$program has symbols"
done
for flavour in win32-gnu:win32:msvc32 win64-gnu:win64:msvc64 win32-msvc:msvc32:win32 win64-msvc:msvc64:win64; do
    IFS=: read -r flavour own other <<< "$flavour"
    dll=$root/bin/$flavour/VekLib.dll
    arch=x86_64
    [[ $flavour == win64* ]] || arch=i686
    bash "$here/check-exports.sh" "$arch-w64-mingw32-objdump" "$dll" "$here/exports-$own.txt" "$here/exports-$other.txt" || fail "exports of $flavour"
    runtime=msvcrt.dll
    [[ $flavour == *-gnu ]] || runtime=ucrtbase.dll
    bash "$here/check-imports.sh" "$arch-w64-mingw32-objdump" "$dll" $runtime || fail "imports of $flavour"
    # Debuggers find the symbols beside the DLL, and the file and line in them.
    if [[ $flavour == *-gnu ]]; then
        line=$("$arch-w64-mingw32-gdb" -nx -batch -ex 'info line VekLibVersion' "$dll" 2>&1)
    else
        address=$("$arch-w64-mingw32-objdump" -p "$dll" | awk '
            /Export Address Table/ { table = 1 } /Ordinal\/Name Pointer/ { table = 0 }
            table && match($0, /\[ *[0-9]+\] \+base/) { split($0, part, /[][]/); rva[part[2] + 0] = $(NF - 2) }
            / VekLibVersion$/ { split($0, part, /[][]/); print rva[part[2] + 0] }' )
        line=$(/usr/lib/llvm-19/bin/llvm-symbolizer --relative-address --obj="$dll" "0x$address" 2>&1)
    fi
    [[ $line == *Version.cpp* ]] || fail "no symbols of $flavour: $line"
done

# --- hosts ---

mkdir host
cat > host/CMakeLists.txt << 'END'
cmake_minimum_required(VERSION 3.23)
project(host LANGUAGES CXX)
find_package(VekLib 0.2 CONFIG REQUIRED)
add_executable(host ${MINIMAL})
target_link_libraries(host PRIVATE VekLib::VekLib)
target_link_options(host PRIVATE $<$<BOOL:${MINGW}>:-municode;-static>)
add_custom_command(TARGET host POST_BUILD COMMAND ${CMAKE_COMMAND} -E copy $<TARGET_RUNTIME_DLLS:host> $<TARGET_FILE_DIR:host>
    COMMAND_EXPAND_LISTS)
END
run() { # what, folder of the program, program
    cp "$root/examples/data/scene.xml" "$2/"
    (cd "$2" && rm -f changed.xml && "$repository/tools/wine-run" "$3" scene.xml changed.xml > run.log 2>&1 &&
        grep -q '0, 0, 50, 1' changed.xml) || { fail "$1 has not changed the scene"; cat "$2/run.log"; }
}
configure() { # flavour, source, build folder, options...
    cmake -S "$2" -B "$3" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE=-DNDEBUG \
        -DCMAKE_TOOLCHAIN_FILE="$repository/cmake/toolchain-$(toolchain "$1").cmake" "${@:4}"
}
for flavour in win32-gnu win64-gnu win32-msvc win64-msvc; do
    { configure $flavour host "host-$flavour" -DCMAKE_PREFIX_PATH="$root" -DMINIMAL="$root/examples/minimal/Main.cpp" &&
        cmake --build "host-$flavour"; } > "host-$flavour.log" 2>&1 || { tail -n 30 "host-$flavour.log"; fail "a host of $flavour is not built"; continue; }
    cmp "$root/bin/$flavour/VekLib.dll" "host-$flavour/VekLib.dll" || fail "the host of $flavour has another DLL"
    run "the host of $flavour" "host-$flavour" ./host.exe
done
for flavour in win32-gnu win64-msvc; do
    { configure $flavour "$root/examples" "examples-$flavour" && cmake --build "examples-$flavour"; } > "examples-$flavour.log" 2>&1 ||
        { tail -n 30 "examples-$flavour.log"; fail "the examples of $flavour are not built"; continue; }
    run "the example of $flavour" "examples-$flavour/bin" ./example_minimal.exe
done

# pkg-config leaves blanks in paths to the shell.
minimal=$root/examples/minimal/Main.cpp
mkdir pkg-config plain
flags=$(PKG_CONFIG_LIBDIR=$root/lib/win64-gnu/pkgconfig pkg-config --cflags --libs veklib) &&
    eval "x86_64-w64-mingw32-g++-posix -std=c++17 -municode -static \"\$minimal\" $flags -o pkg-config/host.exe" &&
    cp "$root/bin/win64-gnu/VekLib.dll" pkg-config/ || fail "a host is not built with pkg-config"
run "the host of pkg-config" pkg-config ./host.exe
[ "$(PKG_CONFIG_LIBDIR=$root/lib/win64-gnu/pkgconfig pkg-config --modversion veklib)" = "$(sed -nE 's/.*VERSION_TEXT "(.*)"/\1/p' "$root/include/VekVersion.h")" ] ||
    fail "pkg-config tells another version"

# The command line of docs/building.md as it stands, with its prefix and source.
ln -s "$root" plain/prefix
cp "$minimal" plain/
line=$(sed -nE 's/^    (i686-w64-mingw32-g\+\+-posix .*prefix\/lib.* -o host\.exe)$/\1/p' "$root/docs/building.md")
(cd plain && eval "$line" && cp prefix/bin/win32-gnu/VekLib.dll .) || fail "a host is not built as docs/building.md says: $line"
run "the host of docs/building.md" plain ./host.exe

# A compiler for which nothing is there is told so.
mv "$root/lib/win64-gnu" "$root/lib/gone"
if configure win64-gnu host refused -DCMAKE_PREFIX_PATH="$root" -DMINIMAL="$minimal" > refused.log 2>&1; then
    fail "find_package has found a library that is not there"
fi
grep -q 'has no VekLib' refused.log || { cat refused.log; fail "find_package does not tell what is missing"; }
mv "$root/lib/gone" "$root/lib/win64-gnu"
exit $status
