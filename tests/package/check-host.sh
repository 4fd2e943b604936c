#!/usr/bin/env bash
# A host outside of the repository finds, builds, links and starts VekLib as docs/building.md tells it:
#   check-host.sh REPOSITORY FOLDER EMULATOR 'CMAKE COMMANDS THAT BRING VEKLIB' CMAKE-OPTION...
set -u
repository=$1 folder=$2 emulator=$3 bring=$4
shift 4
rm -rf "$folder"
mkdir -p "$folder"
cat > "$folder/CMakeLists.txt" << END
cmake_minimum_required(VERSION 3.23)
project(host LANGUAGES C CXX)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY \${CMAKE_BINARY_DIR}/bin)
$bring
add_executable(host $repository/examples/minimal/Main.cpp)
target_link_libraries(host PRIVATE VekLib::VekLib)
if(MINGW)
    target_link_options(host PRIVATE -municode -static)
endif()
END
# A cross-compiling host's own, which knows nothing of VekLib and looks for packages in its own root alone.
cat > "$folder/mingw.cmake" << 'END'
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
END
cd "$folder" || exit 1
{
    cmake -S . -B build -G Ninja "$@" && cmake --build build
} > build.log 2>&1 || { grep -E -A5 'error|Error' build.log | head -n 40; tail -n 10 build.log; exit 1; }
! grep -i -A5 'warning' build.log || exit 1
# An installed DLL has to be put beside the host.
[ -e build/bin/VekLib.dll ] || cp ../package_prefix/bin/*/VekLib.dll build/bin/ || exit 1
cp "$repository/examples/data/scene.xml" .
"$emulator" build/bin/host.exe scene.xml changed.xml > run.log 2>&1 || { cat run.log; exit 1; }
grep -q 'position="0, 0, 50, 1"\|0, 0, 50, 1' changed.xml || { echo "the host has not changed the scene"; cat run.log; exit 1; }
