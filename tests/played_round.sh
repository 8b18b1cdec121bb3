#!/usr/bin/env bash
# Plays a round of the real program, or of the site in a browser, with real key events and checks
# what it left behind. The tour itself fails where a text does not appear on the screen, or on an
# exit status.
#
# Usage: played_round.sh TOUR WORD... PICTURE_FOLDER
set -euo pipefail
root=$(realpath "$(dirname "${BASH_SOURCE[0]}")/..")
. "$root/tools/setup.sh"
arguments 4 5 "$@"
need compare
pictures=${!#}

output=$("$@")
printf '%s\n' "$output"

look_at_pictures() {
    fail "$1: look at $pictures"
}

if grep -E 'Error|Planes|Bpp' <<<"$output"; then
    look_at_pictures "the game could not read one of its files"
fi

# difference A B: root mean square over all pixels, 0 to 1.
difference() {
    compare -metric RMSE "$1" "$2" null: 2>&1 | sed 's/.*(\(.*\))/\1/' || true
}

exceeds() {
    awk -v a="$1" -v b="$2" 'BEGIN {exit !(a > b)}'
}

cd "$pictures"
previous=
for picture in [0-9][0-9]-*.png; do
    if [ -n "$previous" ] && ! exceeds "$(difference "$previous" "$picture")" 0.005; then
        look_at_pictures "$picture shows the same as $previous"
    fi
    previous=$picture
done
exceeds 0.02 "$(difference 01-title.png ./*-title-again.png)" ||
    look_at_pictures "the title looks different after the game"
