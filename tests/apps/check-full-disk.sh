#!/usr/bin/env bash
# vek on a disk that is full: a lost byte is never a success, and what was there before stays.
#     check-full-disk.sh WINE-RUN VEK.EXE DATA.XML FOLDER
set -u
run=$1 vek=$2 data=$3 folder=$4
mkdir -p "$folder" && cd "$folder" && rm -f ./* || exit 1
status=0

fail() {
    echo "$*"
    cat messages 2>/dev/null
    status=1
}

echo '<old/>' > target.xml
"$run" "$vek" xml format "$data" whole.xml > /dev/null 2>&1 || fail "$data can't be formatted at all"

# A file that may not grow beyond so many KB stands for the disk; the last size loses only what the last flush writes.
last=$(($(stat -c %s whole.xml "$data" | sort -n | head -1) / 1024))
for kilobytes in 1 64 200 $last; do
    (
        trap '' XFSZ
        ulimit -f $kilobytes
        "$run" "$vek" xml format "$data" target.xml
        echo "code $?"
        "$run" "$vek" xml set "$data" / full yes -o target.xml
        echo "code $?"
    ) > messages 2>&1
    [ "$(grep -c '^code 1$' messages)" = 2 ] || fail "$kilobytes KB: another exit code than 1"
    [ "$(grep -c "target.xml: can't be written whole" messages)" = 2 ] || fail "$kilobytes KB: no message"
    [ "$(cat target.xml)" = '<old/>' ] || fail "$kilobytes KB: the old file has changed"
    [ "$(ls ./*vek-new 2>/dev/null)" = "" ] || fail "$kilobytes KB: a half-written file was left"
done

# A link stays one.
ln -s target.xml link.xml
"$run" "$vek" xml set link.xml / a 1 2> messages || fail "a link can't be followed"
[ "$(cat target.xml)" = '<old a="1"/>' ] && [ -L link.xml ] || fail "a link was replaced"

# A file that changes between its reading and its replacement: the list of edits comes late.
mkfifo list
"$run" "$vek" xml set target.xml --list - < list 2> messages &
exec 9> list
sleep 5 # for vek to start, and read the file
echo '<new/>' > target.xml
printf '/\ta\t2\n' >&9
exec 9>&-
wait $! && fail "a file that has changed was replaced"
grep -q "target.xml: not replaced: it has changed since it was read" messages || fail "no message about a change"
[ "$(cat target.xml)" = '<new/>' ] || fail "a change was lost"

"$run" "$vek" xml tree "$data" > /dev/full 2> messages
code=$?
[ $code = 1 ] || fail "output to a full disk: exit code $code instead of 1"
grep -q "can.t write the output: " messages || fail "output to a full disk: no message"
exit $status
