#!/usr/bin/env bash
# gdb, with tools/gdb/veklib.py, shows a program's objects as the program's own comments say:
#   check-gdb.sh REPOSITORY GDB GDBSERVER.exe PROGRAM.exe
set -u
repository=$1 gdb=$2 server=$3 program=$4
folder=$(dirname "$program")/../tmp/package_gdb
mkdir -p "$folder"
cd "$folder" || exit 1
: > server.log

timeout 60 "$repository/tools/wine-run" "$server" localhost:0 "$program" >> server.log 2>&1 < /dev/null &
running=$!
trap 'kill $running 2> /dev/null' EXIT
for (( tries = 0; tries < 300; ++tries )); do
    port=$(sed -n 's|.*on port \([0-9]*\)\r.*|\1|p' server.log) # whole, as it is written digit by digit
    [ -z "$port" ] && kill -0 $running 2> /dev/null || break
    sleep 0.1
done
[ -n "$port" ] || { echo "no program can be debugged on this machine:"; cat server.log; exit 77; }

LC_ALL=C.UTF-8 timeout 60 "$gdb" -nx -batch -ex 'set sysroot /nonexistent' -ex "set solib-search-path $(dirname "$program")" \
    -ex 'set print frame-arguments none' -ex "source $repository/tools/gdb/veklib.py" -ex "target remote localhost:$port" \
    -ex 'break Stop' -ex continue -ex up -ex 'info locals' -ex kill "$program" < /dev/null > gdb.log 2>&1
sed -E 's/0x[0-9a-f]+/@/g' gdb.log > shown.log
status=0
while IFS= read -r line; do
    grep -qxF -e "$line" shown.log && continue
    echo "not shown: $line"
    grep -e "^${line%% *} = " shown.log
    status=1
done < <(sed -n 's|^.*//: ||p' "$repository/tests/package/gdb/Main.cpp")
[ $status = 0 ] || tail -n 5 gdb.log
exit $status
