#!/usr/bin/env bash
# Static checks of the library's own code: clang-tidy with the root's .clang-tidy, cppcheck, clang-format, and
# Doxygen, which tells what is public and has no text. Every finding is fixed, or justified where it stands.
#   tools/check-static.sh [FILE.cpp...]     all of the library without a file
cd "$(dirname "${BASH_SOURCE[0]}")/.." || exit 1
shopt -s nullglob

files=("$@")
[ ${#files[@]} -gt 0 ] || files=({base,text,math,thread,xml,io,lexer,core}/*.cpp)
deps=$(tools/setup.sh --where)
includes=$(dirname "$(i686-w64-mingw32-g++-posix -print-libgcc-file-name)")/include/c++
export CHECK_OPTIONS="--target=i686-w64-mingw32 -std=c++20 -O1 -msse2 -DUNICODE -D_UNICODE -DVEKLIB_BUILD -DXML_STATIC
    -DXML_UNICODE_WCHAR_T -Iinclude -I. -isystem $deps/expat-i686/include -isystem $includes
    -isystem $includes/i686-w64-mingw32 -isystem $deps/peers/usr/include -isystem $deps/peers/usr/include/eigen3
    -isystem $deps/peers/pugixml/src -isystem $deps/peers/tinyxml2 -DPUGIXML_WCHAR_MODE -DPUGIXML_NO_XPATH
    -DMSGPACK_NO_BOOST -Wno-unknown-attributes"

# A room's files are looked at as one, as their headers are most of the work; those that share names with others alone.
alone=(math/Math64.cpp xml/XMLMarkup.cpp xml/XMLParserExtras.cpp xml/XMLPositions.cpp)
joined=build/check-static
rm -rf "$joined" && mkdir -p "$joined"
if [ $# = 0 ]; then
    for file in "${files[@]}"; do
        [[ " ${alone[*]} " = *" $file "* ]] || echo "#include \"$PWD/$file\"" >> "$joined/$(dirname "$file").cpp"
    done
    units=("$joined"/*.cpp "${alone[@]}")
else
    units=("$@")
fi

tidy() {
    # shellcheck disable=SC2086 # the options are words
    clang-tidy --quiet --warnings-as-errors='*' --config-file=.clang-tidy --checks=-bugprone-suspicious-include "$1" \
        -- $CHECK_OPTIONS 2> "$joined/$(basename "$1").log" || { grep -h 'error:' "$joined/$(basename "$1").log"; false; }
}
export -f tidy
export joined

status=0
printf '%s\0' "${units[@]}" | xargs -0 -P "$(nproc)" -I{} bash -c 'tidy {}' || { echo "clang-tidy has findings"; status=1; }

# A destructor that calls an operation of its own class means that one.
cppcheck --quiet --error-exitcode=1 --enable=warning,performance,portability --inline-suppr --platform=win32W \
    --std=c++20 --language=c++ -j "$(nproc)" -Iinclude -I. -DUNICODE -D_UNICODE -D_WIN32 -D__GNUC__=12 \
    --suppress=missingIncludeSystem --suppress=virtualCallInConstructor "${units[@]}" || { echo "cppcheck has findings"; status=1; }

find include base text math thread xml io lexer core apps bench examples tests -name '*.cpp' -o -name '*.h' |
    xargs clang-format --dry-run --Werror || { echo "clang-format would change files"; status=1; }
[ $# -gt 0 ] || tools/build-docs.sh || { echo "the reference has gaps"; status=1; }
exit $status
