#!/usr/bin/env bash
# Public headers compile alone and in any order, as C++17 without a warning, and bring nothing along, but for VekStd.h,
# which brings the standard library, and which no other includes:
# check-headers.sh INCLUDE-FOLDER COMPILER FLAG...
set -u
folder=$1
shift
compile=("$@")
shopt -s nullglob
headers=("$folder"/*.h)
[ ${#headers[@]} -gt 0 ] || { echo "no headers in $folder"; exit 1; }
status=0

for header in "${headers[@]}"; do
    while read -r included; do
        case $included in
            '<stddef.h>' | '<stdarg.h>' | '<stdint.h>') ;;
            '"VekStd.h"') echo "$(basename "$header") includes VekStd.h"; status=1 ;;
            '<'*'.h>') echo "$(basename "$header") includes $included, which is not allowed in a public header"; status=1 ;;
            '<'*) [[ $header == */VekStd.h ]] ||
                { echo "$(basename "$header") includes $included, which is not allowed in a public header"; status=1; } ;;
            '"'*'"') name=${included//\"/}; [[ $name != */* && -e $folder/$name ]] ||
                { echo "$(basename "$header") includes $included, which is not a public header"; status=1; } ;;
            *) echo "$(basename "$header") includes $included, which is not allowed in a public header"; status=1 ;;
        esac
    done < <(sed -nE 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*([<"][^>"]*[>"]).*/\1/p' "$header")
done

compile() {     # description, headers...
    local what=$1 output
    shift
    output=$(printf '#include "%s"\n' "$@" | "${compile[@]}" -fsyntax-only -I "$folder" - 2>&1) || { echo "$what does not compile:"; echo "$output"; status=1; }
}
names=()
backwards=()
for header in "${headers[@]}"; do
    name=$(basename "$header")
    names+=("$name")
    backwards=("$name" ${backwards[@]+"${backwards[@]}"})
    compile "$name alone" "$name"
    compile "$name twice" "$name" "$name"
done
compile "all in order" "${names[@]}"
compile "all in reverse order" "${backwards[@]}"
exit $status
