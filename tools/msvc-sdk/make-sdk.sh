#!/usr/bin/env bash
# Makes what Microsoft's C++ ABI needs beside clang-cl and lld-link, out of Debian's packages: import libraries,
# start-up code, wrapped headers, a C++ library for programs.
#   make-sdk.sh i686|x86_64 FOLDER LIBCXX-SOURCE
# The folder is made whole and may be moved afterwards; cmake/toolchain-msvc-common.cmake uses it.
set -eu -o pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
arch=$1 sdk=$2 libcxx=$3/src
llvm=/usr/lib/llvm-19 wine=/usr/include/wine/wine
case $arch in
    # Debian's clang makes no SSE2 for 32 bits unless it is told to.
    i686) machine=i386 cpu=-msse2 ;;
    x86_64) machine=i386:x86-64 cpu= ;;
esac
mkdir -p "$sdk"/{bin,lib,objects}
cp -r "$here/include" "$sdk/include"

# The compiler with all that belongs to the target, wherever the folder stands.
cat > "$sdk/bin/clang-cl" << END
#!/bin/sh
sdk=\${0%/bin/*}
exec $llvm/bin/clang --driver-mode=cl --target=$arch-pc-windows-msvc -fms-compatibility-version=19.38 $cpu /X -nobuiltininc \\
    -imsvc "\$sdk/include" -imsvc $llvm/include/c++/v1 -imsvc $llvm/lib/clang/19/include -imsvc $wine/msvcrt -imsvc $wine/windows \\
    -D_UCRT -DWINE_UNICODE_NATIVE -Wno-inconsistent-dllimport -Wno-unused-command-line-argument "\$@"
END
chmod +x "$sdk/bin/clang-cl"
compile() { "$sdk/bin/clang-cl" /nologo /c "$@"; }
export -f compile
export sdk libcxx

# --- import libraries -------------------------------------------------------------------------------------------------

# The names are those of MinGW-w64's libraries, which carry the size of the arguments where it belongs to the name.
import_library() {      # library, DLL, its name here, names
    local names
    names=${4:-$("$arch-w64-mingw32-nm" "/usr/$arch-w64-mingw32/lib/lib$1.a" 2> /dev/null | sed -n 's/^[0-9a-f]* I __imp_//p' |
        { if [ "$arch" = i686 ]; then sed 's/^_//'; else cat; fi; } | sort -u)}
    printf 'LIBRARY %s\nEXPORTS\n%s\n' "$2" "$names" > "$sdk/objects/$1.def"
    "$llvm/bin/llvm-dlltool" -m "$machine" -k -d "$sdk/objects/$1.def" -l "$sdk/lib/${3:-$1}.lib"
}
for name in kernel32 user32 ole32 shlwapi gdi32 shell32 advapi32 oleaut32 comdlg32; do import_library "$name" "$name.dll"; done
import_library winspool winspool.drv
# The C runtime that is part of Windows. It has what compiled code asks for, too.
import_library ucrtbase ucrtbase.dll ucrt
printf '!<arch>\n' | tee "$sdk/lib/oldnames.lib" > "$sdk/lib/uuid.lib"

# --- start-up code ----------------------------------------------------------------------------------------------------

startup() {     # object, source, flags...
    local object=$1 source=$2
    shift 2
    compile "$here/startup/$source" "/Fo$sdk/objects/$object.obj" /std:c++20 /O2 /Zl /W4 /WX /guard:cf /EHs-c- "$@"
    objects+=("$sdk/objects/$object.obj")
}
objects=()
for source in Module Cookie Exceptions StaticOnce DllEntry Allocator NoThrow; do startup "$source" "$source.cpp"; done
startup TypeInfo TypeInfo.cpp /GR-
startup main ProgramEntry.cpp
startup wmain ProgramEntry.cpp -DWIDE_MAIN
startup FloatMath FloatMath.cpp -fno-builtin
[ "$arch" != i686 ] || startup Divide64 Divide64.cpp
"$llvm/bin/clang" "--target=$arch-pc-windows-msvc" -c "$here/startup/Machine.S" -o "$sdk/objects/Machine.obj"
"$llvm/bin/llvm-lib" /nologo "/out:$sdk/lib/libcmt.lib" "${objects[@]}" "$sdk/objects/Machine.obj"
# What /MD asks for; the two differ in Microsoft's own runtime only.
cp "$sdk/lib/libcmt.lib" "$sdk/lib/msvcrt.lib"

# --- the C++ library, for tests and programs --------------------------------------------------------------------------

compile_libcxx() {
    local name flags=()
    name=$(basename "$1" .cpp)
    [ "$name" != new_helpers ] || flags=(-Dnothrow=nothrow_of_libcxx)    # the start-up code has it
    compile "$1" "/Fo$sdk/objects/libcxx/$name.obj" /MT /O2 /EHsc /GR /std:c++latest /Zc:__cplusplus -w -DUNICODE -D_UNICODE -DNOMINMAX \
        -DWIN32_LEAN_AND_MEAN -D_LIBCPP_BUILDING_LIBRARY /I "$libcxx" /I "$libcxx/include" ${flags[@]+"${flags[@]}"}
}
export -f compile_libcxx
mkdir -p "$sdk/objects/libcxx"
find "$libcxx" "$libcxx"/{filesystem,ryu,support/win32} -maxdepth 1 -name '*.cpp' |
    grep -vE '/(legacy_[a-z_]*|tzdb[a-z_]*|time_zone)\.cpp$' |
    xargs -P "$(nproc)" -n 1 bash -c 'compile_libcxx "$1"' compile
# It leaves the transport of exceptions between threads to Microsoft's library, which programs that use it need.
import_library msvcp140 msvcp140.dll msvcp140 "$("$llvm/bin/llvm-nm" -u "$sdk/objects/libcxx/exception.obj" | grep -o '?__ExceptionPtr.*')"
"$llvm/bin/llvm-lib" /nologo "/out:$sdk/lib/libc++.lib" "$sdk"/objects/libcxx/*.obj "$sdk/lib/msvcp140.lib"
rm -r "$sdk/objects"
