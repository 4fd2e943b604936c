# Shared by the commands at the top level: quiet steps with their time, logs shown only when something fails.
# Source it from the repository's root.

mkdir -p build

# step TITLE LOG COMMAND...: one line with the seconds; on failure the log's errors and the script's end.
step() {
    local title=$1 log=build/$2.log begin=$SECONDS
    shift 2
    if "$@" > "$log" 2>&1 < /dev/null; then
        printf '%-28s ok %4d s\n' "$title" $((SECONDS - begin))
        return
    fi
    printf '%-28s FAILED after %d s\n' "$title" $((SECONDS - begin))
    show_errors "$log"
    exit 1
}

show_errors() {
    # The first errors tell most; the end tells what gave up.
    grep -nE -A4 'error:|undefined reference|FAILED:|Error ' "$1" | cut -c1-240 | head -n 60
    echo "--- end of $1"
    tail -n 8 "$1" | cut -c1-240
}

configure_and_build() {     # preset, options for the build...
    local preset=$1
    shift
    cmake --preset "$preset" && cmake --build --preset "$preset" -j "$(nproc)" "$@"
}
