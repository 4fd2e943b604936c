#!/usr/bin/env bash
# A room includes its own files and those of the floors below it, never a room above or beside it: check-rooms.sh REPOSITORY
set -u
cd "$1" || exit 1
shopt -s nullglob

# From the ground up; rooms in one line stand side by side.
floors=(
    "base"
    "text math"
    "thread"
    "xml io lexer"
    "core"
)

declare -A floor_of
for i in "${!floors[@]}"; do
    for room in ${floors[i]}; do floor_of[$room]=$i; done
done

includes() { sed -nE 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*"([^"]*)".*/\1/p' "$1"; }

status=0
wrong() { echo "$1 includes \"$2\", $3"; status=1; }
checked=0
for room in "${!floor_of[@]}"; do
    for file in "$room"/*.{h,cpp}; do
        while read -r included; do
            [ -e "include/$included" ] && continue
            checked=$((checked + 1))
            other=${included%%/*}
            if [ ! -e "$included" ] || [ -z "${floor_of[$other]:-}" ]; then
                wrong "$file" "$included" "which is no file of a room"
            elif [ "$other" != "$room" ] && [ "${floor_of[$other]}" -ge "${floor_of[$room]}" ]; then
                wrong "$file" "$included" "which stands on floor ${floor_of[$other]}, not below floor ${floor_of[$room]}"
            fi
        done < <(includes "$file")
    done
done
for file in include/*.h; do
    while read -r included; do
        [[ $included != */* && -e include/$included ]] || wrong "$file" "$included" "from outside include/"
    done < <(includes "$file")
done
# What has sources of the library's own and stands on no floor would not be looked at.
for room in $(sed -nE 's/^foreach\(room (.*)\)$/\1/p' CMakeLists.txt); do
    [ -n "${floor_of[$room]:-}" ] || { echo "$room/ stands on no floor"; status=1; }
done
[ $checked -gt 0 ] || { echo "no include between rooms was found: wrong folder?"; status=1; }
exit $status
