#!/usr/bin/env bash
# Copies every XML file of the folders through the library, with everything kept, and compares canonical forms:
#     tools/check-conformance.sh FOLDER...
# A file passes when `xmllint --c14n` says the same of it and of its copy. Files that xmllint doesn't take for XML are
# counted by themselves, and ought to be refused. Ends with 1 when a copy differs, or a well-formed file was refused.
# KEEP=FOLDER keeps the lists of what happened there. VEK_XMLCOPY names the program, where it is built already.
set -u
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
command -v xmllint > /dev/null || { echo "xmllint is needed (libxml2-utils)" >&2; exit 2; }
[ $# -gt 0 ] || { sed -n '2,6s/^# //p' "$0" >&2; exit 2; }
program=${VEK_XMLCOPY:-$here/build/win32/bin/example_xmlcopy.exe}
[ -e "$program" ] || { echo "$program isn't built" >&2; exit 2; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
lists=${KEEP:-$work}
mkdir -p "$lists"
export VEK_FLAGS="--nonet --c14n"

# By what they begin with, whatever they are called.
begin='\A(\xEF\xBB\xBF)?\s*<(\?xml\s|!DOCTYPE\s|!--|svg\s)|\A(\xFF\xFE)?<\z|\A\xFE\xFF\z'
{
    find "$@" -type f -size -64M -size +0 -print0 | LC_ALL=C xargs -0 -r grep -lazP -m1 "$begin" 2> /dev/null
    find "$@" -type f \( -name '*.xml' -o -name '*.svg' -o -name '*.xsd' -o -name '*.xsl' -o -name '*.rng' \) -print
} | grep -v '\.html$' | sort -u > "$lists/files"

number=0
while IFS= read -r file; do
    number=$((number + 1))
    ln -s "$(realpath "$file")" "$work/$number.source" # names of any kind
    printf 'Z:%s\0Z:%s\0' "$work/$number.source" "$work/$number.xml"
done < "$lists/files" > "$work/arguments"
xargs -0 -r -n 100 "$here/tools/wine-run" "$program" < "$work/arguments" 2> /dev/null | tr -d '\r' |
    grep -xE 'copied|refused' > "$work/results"
[ "$(wc -l < "$work/results")" = "$(wc -l < "$lists/files")" ] || { echo "the program ended early" >&2; exit 2; }

# One file: its number, the program's word, its name. Prints what came of it.
judge() {
    local folder original copy status=0
    folder=$(dirname "$3")
    original=$(cd "$folder" && timeout 60 xmllint $VEK_FLAGS "$3" 2> /dev/null | md5sum; exit "${PIPESTATUS[0]}") || status=$?
    if [ $status != 0 ]; then
        if timeout 60 xmllint --nonet --noout "$3" 2> /dev/null; then
            echo "not-canonical $2 $3"    # well-formed, but for a relative namespace and the like
        else
            echo "malformed $2 $3"
        fi
    elif [ "$2" = refused ]; then
        echo "refused - $3"
    else
        copy=$(cd "$folder" && timeout 60 xmllint $VEK_FLAGS --path "$folder" "$4/$1.xml" 2> /dev/null | md5sum)
        if [ "$copy" = "$original" ]; then echo "equal - $3"; else echo "different - $3"; fi
    fi
}
export -f judge
number=0
paste -d '\t' "$work/results" "$lists/files" | while IFS=$'\t' read -r result file; do
    number=$((number + 1))
    printf '%s\0%s\0%s\0%s\0' "$number" "$result" "$file" "$work"
done | xargs -0 -r -n 4 -P "$(nproc)" bash -c 'judge "$@"' judge | sort > "$lists/verdicts"

count() { grep -c "^$1" "$lists/verdicts"; }
echo "files                                    $(wc -l < "$lists/verdicts")"
echo "canonical forms equal                    $(count 'equal ')"
echo "canonical forms different                $(count 'different ')"
echo "well-formed to xmllint, but refused      $(count 'refused ')"
echo "without a canonical form, copied         $(count 'not-canonical copied')"
echo "without a canonical form, refused        $(count 'not-canonical refused')"
echo "malformed to xmllint, refused            $(count 'malformed refused')"
echo "malformed to xmllint, but copied         $(count 'malformed copied')"
grep -E '^(different|refused) ' "$lists/verdicts" | head -20
[ "$(count 'different ')" = 0 ] && [ "$(count 'refused ')" = 0 ]
