# shellcheck shell=sh
# How the game is started: sourced by ./play, and part of the launcher.

complain() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
}

# enter_data LIST FOLDER: enters the folder and names every file of the list that is not there as
# it should be. LIST holds lines of a size in bytes and a name. False where the game must not be
# started: nothing usable is there, or something that it would wait for without end, such as a pipe.
enter_data() {
    if ! cd -- "$2" 2>/dev/null; then
        complain "the data folder $2 is missing or cannot be entered"
        return 1
    fi
    usable=0
    endless=
    while read -r size name; do
        trouble=
        if [ ! -e "$name" ]; then
            trouble="is missing"
        elif [ ! -f "$name" ]; then
            trouble="is not a file"
            [ -d "$name" ] || endless=$name
        elif [ ! -r "$name" ]; then
            trouble="cannot be read"
        elif [ ! -s "$name" ]; then
            trouble="is empty"
        else
            usable=$((usable + 1))
            found=$(($(wc -c <"$name")))
            [ "$found" -eq "$size" ] || trouble="has $found bytes instead of $size"
        fi
        [ -z "$trouble" ] || complain "$name $trouble in $2"
    done <"$1"
    if [ -n "$endless" ]; then
        complain "$endless could keep the game waiting for ever"
        return 1
    fi
    if [ "$usable" -eq 0 ]; then
        complain "nothing to play with is left in $2"
        return 1
    fi
}

# start_game PROGRAM [WORD...]: becomes the program. Its few lines come out one by one, also into
# a file or a pipe.
start_game() {
    if command -v stdbuf >/dev/null; then
        exec stdbuf -oL "$@"
    fi
    exec "$@"
}
