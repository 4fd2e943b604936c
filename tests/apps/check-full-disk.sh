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
last=$(($(stat -c %s whole.xml) / 1024))
for kilobytes in 1 64 200 $last; do
    (
        trap '' XFSZ
        ulimit -f $kilobytes
        "$run" "$vek" --verbose xml format "$data" target.xml
    ) > messages 2>&1
    code=$?
    [ $code = 1 ] || fail "$kilobytes KB: exit code $code instead of 1"
    grep -q "target.xml: can't be written whole" messages || fail "$kilobytes KB: no message of vek's"
    grep -q "CVekXMLWriter::WriteXMLFile --> Failed to write XML" messages || fail "$kilobytes KB: no message of the library's"
    [ "$(cat target.xml)" = '<old/>' ] || fail "$kilobytes KB: the old file has changed"
    [ "$(ls ./*vek-new 2>/dev/null)" = "" ] || fail "$kilobytes KB: a half-written file was left"
done

"$run" "$vek" xml tree "$data" > /dev/full 2> messages
code=$?
[ $code = 1 ] || fail "output to a full disk: exit code $code instead of 1"
grep -q "can.t write the output: " messages || fail "output to a full disk: no message"
exit $status
