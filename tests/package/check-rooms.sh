#!/usr/bin/env bash
# A room includes only rooms on lower floors, and its own: check-rooms.sh REPOSITORY
# core/ and thread/ have files on several floors; there a file may also include its own room's files, but not upward.
set -u
cd "$1" || exit 1
status=0
shopt -s nullglob

floor_of() {
    case $1 in
        core/Kernel* | core/Factory* | core/Startup* | core/StartUp* | core/DllMain* | core/Main* | core/Entry* | core/VekLib*) floor=4 ;;
        xml/* | io/* | lexer/*) floor=3 ;;
        core/Memory* | core/Event* | core/Progress* | core/Timer* | core/Random* | core/CPU* | core/Cpu*) floor=2 ;;
        thread/Worker* | thread/Thread* | thread/MemberFunctor* | thread/CurrentThread* | thread/WaitCursor* | thread/SetCurrent*) floor=2 ;;
        text/* | math/*) floor=1 ;;
        *) floor=0 ;;
    esac
}

checked=0
for file in {core,text,io,xml,lexer,thread,math}/*.{h,cpp}; do
    room=${file%%/*}
    floor_of "$file"
    own_floor=$floor
    while read -r included; do
        [ -e "$included" ] || { [ -e "$room/$included" ] && included=$room/$included; } || {
            [ -e "include/$included" ] || { echo "$file includes \"$included\", which does not exist"; status=1; }
            continue
        }
        checked=$((checked + 1))
        case ${included%%/*} in
            core | text | io | xml | lexer | thread | math) ;;
            *) echo "$file includes $included, which is no room of the library"; status=1; continue ;;
        esac
        floor_of "$included"
        if [ "$floor" -gt "$own_floor" ] || { [ "$floor" = "$own_floor" ] && [ "${included%%/*}" != "$room" ]; }; then
            echo "$file (floor $own_floor) includes $included (floor $floor)"
            status=1
        fi
    done < <(sed -nE 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*"([^"]*)".*/\1/p' "$file")
done
for file in include/*.h; do
    while read -r included; do
        [[ $included != */* && -e include/$included ]] || { echo "$file includes \"$included\" from outside include/"; status=1; }
    done < <(sed -nE 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*"([^"]*)".*/\1/p' "$file")
done
[ $checked -gt 0 ] || { echo "no include between rooms was found: wrong folder?"; status=1; }
exit $status
