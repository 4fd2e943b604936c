#!/usr/bin/env bash
# Prints the tables of virtual operations of all public classes as a target's C++ ABI lays them out, one line for each
# operation that a class brings in: list-slots.sh INCLUDE-FOLDER TARGET
# A virtual destructor counts as one slot, though GCC's layout gives it two entries. Class templates are left out.
set -u -o pipefail
folder=$1
headers=$(cd "$folder" && printf '#include "%s"\n' *.h | grep -v VekStd.h) # not every target has a standard library
compile=(clang++ "--target=$2" -std=c++17 -Dfinal= -I "$folder" -x c++ -)

# Every class with a table; the syntax tree is indented by two a level.
classes=$("${compile[@]}" -fsyntax-only -Xclang -ast-dump <<< "$headers" | awk '
    match($0, /[A-Za-z]+Decl 0x/) {
        kind[RSTART] = substr($0, RSTART, RLENGTH - 3)
        name[RSTART] = ""
        if (/CXXRecordDecl .* (class|struct) [A-Za-z_0-9]+ definition$/ && kind[RSTART - 2] != "ClassTemplateDecl")
            name[RSTART] = (name[RSTART - 2] != "" ? name[RSTART - 2] "::" : "") $(NF - 1)
    }
    match($0, /DefinitionData .*polymorphic/) && name[RSTART - 2] != "" { print name[RSTART - 2] }') || exit 1

# A destructor that calls something sets the table of its class first, and so has the compiler make it.
derived=$(for class in $classes; do
    echo "struct Of_${class//::/__} : $class { ~Of_${class//::/__}(); }; Of_${class//::/__}::~Of_${class//::/__}() { Touch(); }"
done)
"${compile[@]}" -S -emit-llvm -o /dev/null -Xclang -fdump-vtable-layouts <<< "$headers
void Touch();
$derived" | awk '
    /^VF?[Tt]able for / {
        inside = match($0, /Of_[A-Za-z_0-9]+/)
        class = substr($0, RSTART + 3, RLENGTH - 3)
        gsub(/__/, "::", class)
        slot = -1
    }
    /^$/ { inside = 0 }
    # Of the two entries of a destructor the second counts.
    !inside || !/^ *[0-9]+ \| / || / offset_to_top | RTTI$| \[complete\]$/ { next }
    {
        ++slot
        sub(/^ *[0-9]+ \| /, "")
        sub(/ \[[a-z ]+\]$/, "")
        sub(/^Of_[A-Za-z_0-9]+::~.*/, class "::~()")
        if (!index($0, class "::")) next
        gsub("[CI]" substr(class, 2) "::", "")
        owner[++count] = class
        operation[count] = slot " " $0
        if (class ~ /^IVek/) declared[operation[count]] = 1
    }
    # What an exported class only overrides is in the list as its interface'\''s.
    END {
        for (i = 1; i <= count; ++i)
            if (owner[i] ~ /^IVek/ || !(operation[i] in declared)) print owner[i], operation[i]
    }' | LC_ALL=C sort -k1,1 -k2,2n
