# Sourced by tools/cost and tools/soak: runs the real program on a virtual display, with its
# frames logged. Needs tools/setup.sh, the target frames of the release preset, $root and
# $scratch, an empty folder.
# shellcheck shell=bash disable=SC2154

frame_log=$scratch/frames
program=0  # process id, while one runs

frames() {
    wc -l <"$frame_log"
}

# wait_frames NUMBER: waits until that many more frames have been shown.
wait_frames() {
    local target=$(($(frames) + $1))
    until [ "$(frames)" -ge "$target" ]; do
        kill -0 "$program" 2>/dev/null || fail "the program ended after $(frames) frames"
        sleep 0.05
    done
}

# start PROGRAM FOLDER: starts the program in a folder and waits for its first frame.
start() {
    : >"$frame_log"
    (cd "$2" && FRAME_LOG=$frame_log LD_PRELOAD=$root/build/release/tools/libframes.so \
        exec "$1" >"$scratch/output") &
    program=$!
    wait_frames 1
    xdotool mousemove 640 512
}

stop() {
    [ "$program" -ne 0 ] || return 0
    kill "$program" 2>/dev/null || true
    wait "$program" 2>/dev/null || true
    program=0
}

# press KEY [TIMES]: short presses, each a key event of its own.
press() {
    xdotool key --delay 25 --repeat "${2:-1}" --repeat-delay 25 "$1"
}

# memory VmRSS|VmHWM: of the program, resident now or at its peak, in kB.
memory() {
    awk -v field="$1:" '$1 == field {print $2}' "/proc/$program/status"
}

trap 'stop; rm -rf "$scratch"' EXIT
