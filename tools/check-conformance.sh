#!/usr/bin/env bash
# Copies every XML file of the folders through the library, with everything kept, and compares canonical forms:
#     tools/check-conformance.sh FOLDER...
# A file passes when `xmllint --c14n` says the same of it and of its copy, which stands in a tree of links to the same
# files. Then vek adds an attribute to each one's outermost element, and takes it out again: the first may add these
# bytes and no other one, the second has to give the file back. Ends with 1 when a copy or a file differs, or one was
# refused that xmllint and xmlwf take for XML.
# KEEP=FOLDER keeps the lists of what happened there. VEK_XMLCOPY and VEK name the programs, where they are built already.
set -u
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
command -v xmllint > /dev/null || { echo "xmllint is needed (libxml2-utils)" >&2; exit 2; }
command -v xmlwf > /dev/null || { echo "xmlwf is needed (expat)" >&2; exit 2; }
[ $# -gt 0 ] || { sed -n '2,9s/^# //p' "$0" >&2; exit 2; }
program=${VEK_XMLCOPY:-$here/build/win32/bin/example_xmlcopy.exe}
vek=${VEK:-$here/build/win32/bin/vek.exe}
for needed in "$program" "$vek"; do [ -e "$needed" ] || { echo "$needed isn't built" >&2; exit 2; }; done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
lists=${KEEP:-$work}
mkdir -p "$lists"

# By what they begin with, whatever they are called.
begins() {
    case $(head -c 64 "$1" 2> /dev/null | tr -d '\000\357\273\277\376\377 \t\r\n' | head -c 5) in
    '<?xml' | '<!DOC' | '<!--'* | '<svg'*) return 0 ;;
    *) return 1 ;;
    esac
}
begin='\A(\xEF\xBB\xBF)?\s*<(\?xml\s|!DOCTYPE\s|!--|svg\s)|\A(\xFF\xFE)?<\z|\A\xFE\xFF\z'
{
    find "$@" -type f -size -64M -size +0 -print0 | LC_ALL=C xargs -0 -r grep -lazP -m1 "$begin" 2> /dev/null |
        while IFS= read -r file; do begins "$file" && echo "$file"; done
    find "$@" -type f \( -name '*.xml' -o -name '*.svg' -o -name '*.xsd' -o -name '*.xsl' -o -name '*.rng' \) -print
} | grep -v '\.html$' | xargs -d '\n' -r realpath | sort -u > "$lists/files"

# What a file refers to is found from its copy's place, too.
mkdir "$work/tree"
for folder in "$@"; do
    folder=$(realpath "$folder")
    mkdir -p "$work/tree$(dirname "$folder")"
    cp -rs "$folder" "$work/tree$(dirname "$folder")" 2> /dev/null
done

number=0
while IFS= read -r file; do
    number=$((number + 1))
    ln -s "$file" "$work/$number.source" # names of any kind
    printf 'Z:%s\0Z:%s\0' "$work/$number.source" "$work/$number.xml"
done < "$lists/files" > "$work/arguments"
xargs -0 -r -n 100 "$here/tools/wine-run" "$program" < "$work/arguments" 2> /dev/null | tr -d '\r' |
    grep -xE 'copied|refused' > "$work/results"
[ "$(wc -l < "$work/results")" = "$(wc -l < "$lists/files")" ] || { echo "the program ended early" >&2; exit 2; }

# The canonical form as one word; false without one.
canonical() { (cd "$(dirname "$1")" && timeout 60 xmllint --nonet --c14n "$1" 2> /dev/null | md5sum; exit "${PIPESTATUS[0]}"); }
# One file: its number, the program's word, its name, the folder. Prints what came of it.
judge() {
    local copy original word=malformed
    if [ "$2" = copied ]; then
        rm -f "$4/tree$3"
        mv "$4/$1.xml" "$4/tree$3"
    fi
    if ! original=$(canonical "$3"); then
        timeout 60 xmllint --nonet --noout "$3" 2> /dev/null && word=not-canonical # a relative namespace, or the like
        echo "$word $2 $3"
    elif [ "$2" = refused ]; then
        if xmlwf "$3" | grep -q .; then echo "refused by-xmlwf $3"; else echo "refused alone $3"; fi
    else
        copy=$(canonical "$4/tree$3")
        if [ "$copy" = "$original" ]; then echo "equal - $3"; else echo "different - $3"; fi
    fi
}
export -f judge canonical
number=0
paste -d '\t' "$work/results" "$lists/files" | while IFS=$'\t' read -r result file; do
    number=$((number + 1))
    printf '%s\0%s\0%s\0%s\0' "$number" "$result" "$file" "$work"
done | xargs -0 -r -n 4 -P "$(nproc)" bash -c 'judge "$@"' judge | sort > "$lists/verdicts"

# One file: its name, the program and what runs it, a folder. An attribute in UTF-16 has twice the bytes.
edit() {
    local new="$4/$BASHPID.xml" more at message
    cp "$1" "$new" && chmod u+w "$new"
    if ! message=$("$3" "$2" xml set "Z:$new" / vek-check 1 2>&1); then
        echo "unedited $1: ${message//[$'\r\n']/ }"
    else
        more=$(($(stat -c %s "$new") - $(stat -Lc %s "$1")))
        at=$(cmp "$1" "$new" 2>&1 | sed -nE 's/.* (byte|char) ([0-9]+),.*/\2/p') # it says "char" where no locale is set
        if { [ $more = 14 ] || [ $more = 28 ]; } && cmp -s <(tail -c +"$at" "$1") <(tail -c +$((at + more)) "$new") &&
            "$3" "$2" xml remove "Z:$new" / vek-check 2> /dev/null && cmp -s "$1" "$new"; then
            echo "edited $1"
        else
            echo "damaged $1"
        fi
    fi
    rm -f "$new"
}
export -f edit
grep -E '^(equal -|not-canonical copied) ' "$lists/verdicts" | cut -d ' ' -f 3- | while IFS= read -r file; do
    printf '%s\0%s\0%s\0%s\0' "$file" "$vek" "$here/tools/wine-run" "$work"
done | xargs -0 -r -n 4 -P "$(nproc)" bash -c 'edit "$@"' edit | sort > "$lists/edits"

count() { grep -c "^$1" "$lists/verdicts"; }
echo "files                                        $(wc -l < "$lists/verdicts")"
echo "canonical forms equal                        $(count 'equal ')"
echo "canonical forms different                    $(count 'different ')"
echo "refused, well-formed to xmllint and xmlwf    $(count 'refused alone')"
echo "refused, well-formed to xmllint alone        $(count 'refused by-xmlwf')"
echo "well-formed without canonical form, copied   $(count 'not-canonical copied')"
echo "well-formed without canonical form, refused  $(count 'not-canonical refused')"
echo "malformed to xmllint, refused                $(count 'malformed refused')"
echo "malformed to xmllint, copied                 $(count 'malformed copied')"
echo "an attribute added and removed, all else kept $(grep -c '^edited ' "$lists/edits")"
echo "refused to be changed                        $(grep -c '^unedited ' "$lists/edits")"
echo "damaged                                      $(grep -c '^damaged ' "$lists/edits")"
grep -hE '^(different|refused alone|damaged|unedited) ' "$lists/verdicts" "$lists/edits" | head -20
! grep -q '^damaged ' "$lists/edits" && [ "$(count 'equal ')" != 0 ] && [ "$(count 'different ')" = 0 ] && [ "$(count 'refused alone')" = 0 ]
