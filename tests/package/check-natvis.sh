#!/usr/bin/env bash
# VekLib.natvis is well-formed, and each expression in it is one of the type that it is for: a compiler reads them.
#   check-natvis.sh INCLUDE-FOLDER COMPILER FLAG...
set -u
natvis=$1/VekLib.natvis include=$1
shift
xmllint --noout "$natvis" || exit 1

number=0
check() { # an expression, what the debugger is told about how to show it taken off
    local shown=$1
    if [[ $shown =~ ^(.*),\[(.*)\][a-z]*$ ]]; then
        shown=${BASH_REMATCH[1]}
        check "${BASH_REMATCH[2]}"
    elif [[ $shown =~ ^(.*),[a-z]+$ ]]; then
        shown=${BASH_REMATCH[1]}
    fi
    [ "$context" = '' ] || shown="$context$shown"
    printf '#line %d "VekLib.natvis"\n    (void)(%s);\n' $number "${shown//\$T1/float}"
}
program() {
    local line text rest open='' context
    echo '#include <VekLib.h>'
    while IFS= read -r line; do
        number=$((number + 1)) context=
        line=${line//&lt;/<} line=${line//&gt;/>} line=${line//&amp;/'&'}
        line=${line//\$i/0}
        if [[ $line =~ \<Type\ Name=\"(.*)\"\> ]]; then
            [ -z "$open" ] || echo '} };'
            open=${BASH_REMATCH[1]/DirectLinkedList<\*>/DirectLinkedList<float \*>}
            open=${open/<\*>/<float>}
            printf '#line %d "VekLib.natvis"\nstruct Check%d : %s { void Run() {\n' $number $number "$open"
            continue
        fi
        if [[ $line =~ Condition=\"([^\"]*)\" ]]; then check "${BASH_REMATCH[1]}"; fi
        if [[ $line =~ \<(DisplayString)[^\"\>]*(\"[^\"]*\")?\>(.*)\</DisplayString\> ]]; then
            rest=${BASH_REMATCH[3]}
            while [[ $rest =~ ^[^{]*\{([^}]*)\}(.*)$ ]]; do
                rest=${BASH_REMATCH[2]}
                check "${BASH_REMATCH[1]}"
            done
        elif [[ $line =~ \<NextPointer\>(.*)\</ ]]; then
            context='this->m_head->'
            check "${BASH_REMATCH[1]}"
        elif [[ $line =~ \<(Item|Size|ValuePointer|HeadPointer|StringView|SmartPointer|ExpandedItem)(\ .*\"|)\>(.*)\</ ]]; then
            check "${BASH_REMATCH[3]}"
        fi
    done < "$natvis"
    echo '} };'
}
checks=$(program)
[ "$(grep -c '(void)' <<< "$checks")" -gt 100 ] || { echo "the expressions of $natvis are not found"; exit 1; }
"$@" -fno-access-control -fsyntax-only -I "$include" - <<< "$checks"
