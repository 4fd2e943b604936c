#!/usr/bin/env bash
# Runs a host with the DLL of the other C++ ABI, and with both:
#   check-cross.sh EMULATOR FOLDER HOST DLL OTHER-DLL
# Where the other preset has not been built the test is skipped, unless VEK_TEST_ALL says that all of them are.
set -u
emulator=$1 host=$3
folder=$2/$(basename "$(dirname "$(dirname "$3")")")-host
for file in "${@:3}"; do
    if [ ! -e "$file" ]; then
        echo "$file is missing: build that preset first"
        [ -z "${VEK_TEST_ALL:-}" ] && exit 77
        exit 1
    fi
done
mkdir -p "$folder"
exec "$emulator" "$host" "Z:$4" "Z:$folder" "Z:$5"
