# shellcheck shell=bash disable=SC2034,SC2154
# Sourced by tools/tour and tools/front_page: plays the game with real key events and looks at what the
# screen shows. Needs tools/setup.sh, $pictures, a folder, and $patience, the seconds that a step
# may take. The script that sources it defines `frames COUNT`, which lets the game draw so many;
# it may do nothing where the game goes on by itself.

game=0   # process id, while it runs
taken=0  # pictures

# launch FOLDER COMMAND...: starts the game there.
launch() {
    rm -f "$pictures"/[0-9][0-9]-*.png
    (cd "$1" && exec "${@:2}") &
    game=$!
    trap 'kill "$game" 2>/dev/null || true' EXIT
}

give_up() {
    local last=$pictures/99-failed.png
    import -silent -window root "$last" || fail "$1"
    fail "$1 (see $last)"
}

# picture NAME: takes the next numbered picture.
picture() {
    taken=$((taken + 1))
    local name
    name=$(printf '%02d-%s.png' "$taken" "$1")
    import -silent -window root "$pictures/$name"
    printf '   %s\n' "$name"
}

# press KEY [TIMES]: short presses, each a key event of its own, four of them to a frame at most.
press() {
    local left=${2:-1} now
    while [ "$left" -gt 0 ]; do
        now=$((left < 4 ? left : 4))
        xdotool key --delay 25 --repeat "$now" --repeat-delay 25 "$1"
        frames 1
        left=$((left - now))
    done
}

# wait_for WHAT KEY CONDITION...: waits until the condition holds; presses KEY, where it is not
# empty, again and again meanwhile.
wait_for() {
    local what=$1 key=$2 deadline=$((SECONDS + patience))
    shift 2
    until "$@"; do
        kill -0 "$game" 2>/dev/null || give_up "the program ended while waiting for $what"
        [ "$SECONDS" -lt "$deadline" ] || give_up "waited in vain for $what"
        [ -z "$key" ] || press "$key"
        frames 3
    done
}

# From the start of the program to its title.
reach_title() {
    wait_for "the title" "" title_shown
    # Without a window manager, freeglut's full screen begins at (1, 1).
    xdotool search --limit 1 --name '^Talvery$' windowmove 0 0 || true
    xdotool mousemove 640 512
    sleep 1
    wait_for "the title without buttons" "" title_shown
    picture title
}

# From the title to the end of the program.
leave() {
    xdotool key Escape
    local deadline=$((SECONDS + 30))
    while kill -0 "$game" 2>/dev/null; do
        [ "$SECONDS" -lt "$deadline" ] || give_up "Escape on the title did not end the program"
        sleep 0.2
    done
    trap - EXIT
    wait "$game" || fail "the program ended with status $?"
}

# What can be told of the screen, as conditions for wait_for.

# Where the texts stand at 1280x1024.
talk_title=260x24+16+12
fight_options=150x24+16+846
status_panel=210x24+952+846

# Pixels of pure white within GEOMETRY, as a list of their columns.
white_columns() {
    import -silent -window root -crop "$1" +repage -depth 8 rgb:- | od -An -v -tx1 -w3 |
        awk -v width="${1%%x*}" '/ff ff ff/ {print (NR - 1) % width}'
}

# True where there are hundreds of them: text stands there.
text_in() {
    [ "$(white_columns "$1" | wc -l)" -ge 100 ]
}

no_text_in() {
    ! text_in "$1"
}

# The battle message on the screen, told by the gaps between its words: defended, enemy,
# player or none.
message() {
    white_columns 480x24+16+40 | awk '
        { all++ }
        $1 >= 200 && $1 < 220 { after_enemy_caused++ }
        $1 >= 454 { end++ }
        END {
            if (all < 100) print "none"
            else if (after_enemy_caused < 10) print "enemy"
            else if (end < 10) print "player"
            else print "defended"
        }'
}

message_is() {
    [ "$(message)" = "$1" ]
}

# The cube before black. A page has another background until it starts the game, and shows buttons on
# top for some seconds then and after the pointer has moved.
title_shown() {
    [ "$(import -silent -window root -format '%[fx:mean>0.02]' info:)" = 1 ] &&
        [ "$(import -silent -window root -crop 1280x64+0+0 -format '%[fx:maxima==0]' info:)" = 1 ]
}

# A sum of what the screen shows.
screen() {
    import -silent -window root rgb:- | md5sum
}

changed_from() {
    [ "$1" != "$(screen)" ]
}

# True where nothing has moved for a second: on the title, the cube has come to rest.
still() {
    local before
    before=$(screen)
    sleep 1
    ! changed_from "$before"
}
