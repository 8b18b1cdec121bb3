#!/usr/bin/env bash
# Makes the Debian packages and checks what a player gets: the files, the tools' verdicts on them,
# and that the unpacked tree starts wherever it lies and says what is wrong where it cannot.
#
# Usage: packages.sh SOURCE_FOLDER WORK_FOLDER
set -euo pipefail
umask 077  # what is installed is for everybody, whoever built it
root=$(realpath "$(dirname "${BASH_SOURCE[0]}")/..")
. "$root/tools/setup.sh"
arguments 2 2 "$@"
need cmake dpkg-deb dpkg-shlibdeps file lintian desktop-file-validate appstreamcli mandoc \
    xvfb-run xauth xdotool import
source=$1 work=$2
on_virtual_display "$@"

fail() {
    printf 'look at %s: %s\n' "$work" "$*" >&2
    exit 1
}

rm -rf "$work"/*.deb "$work/moved there"
cmake --preset package -S "$source" -B "$work" -DTALVERY_URL=https://talvery.invalid/docs
cmake --build "$work" --parallel "$(nproc)" --target package
game=$(echo "$work"/talvery_*.deb) data=$(echo "$work"/talvery-data_*_all.deb)

# files PACKAGE: access rights, owner and path of each, and of folders that are not as usual.
files() {
    dpkg-deb -c "$1" | awk '!/^drwxr-xr-x root\/root / {print $1, $2, $6}' | sort -k 3
}
at="-rw-r--r-- root/root ./usr"
diff <({
    echo "-rwxr-xr-x root/root ./usr/games/talvery"
    echo "-rwxr-xr-x root/root ./usr/libexec/talvery/talvery"
    printf -- "$at/share/%s\n" applications/talvery.desktop metainfo/talvery.metainfo.xml \
        doc/talvery/{changelog,changelog.Debian}.gz doc/talvery/copyright \
        lintian/overrides/talvery man/man6/talvery.6.gz \
        icons/hicolor/{16x16,24x24,32x32,48x48,64x64,128x128,256x256,512x512}/apps/talvery.png
    echo "$at/libexec/talvery/data.list"
} | sort -k 3) <(files "$game") || fail "the program's package has other files"
diff <({
    printf -- "$at/share/%s\n" doc/talvery-data/{changelog,changelog.Debian}.gz \
        doc/talvery-data/copyright lintian/overrides/talvery-data
    cd "$source/data" && printf -- "$at/share/games/talvery/%s\n" *.bmp *.obj *.txt
} | sort -k 3) <(files "$data") || fail "the data's package has other files"

# The metainfo has its turn below: newer lintian has it checked with nothing allowed.
lintian --allow-root --fail-on error,warning --dont-check-part appstream-metadata "$game" "$data"
mkdir "$work/moved there"
dpkg-deb -x "$game" "$work/moved there"
dpkg-deb -x "$data" "$work/moved there"
cd "$work/moved there/usr"
tree=$PWD data=$PWD/share/games/talvery
desktop-file-validate share/applications/*
# No domain belongs to the game yet that its identifier could start with.
appstreamcli validate --no-net --pedantic --override=cid-desktopapp-is-not-rdns=info \
    share/metainfo/*
# Without a folder for the screenshots on the network there is no homepage either, which newer
# appstreamcli asks for: all else is the same.
cmake "$work" -DTALVERY_URL= >/dev/null
diff -bB <(sed '/<screenshots>/,/<url/d' share/metainfo/*) "$work/packaging/talvery.metainfo.xml" ||
    fail "without a homepage the metainfo differs"
zcat share/man/man6/talvery.6.gz | mandoc -T lint -W all

# refused LINE COMMAND...: the command says this alone, on standard error, and returns 1.
refused() {
    local line=$1 said status=0
    shift
    said=$("$@" 2>&1) || status=$?
    [ "$status $said" = "1 $line" ] || fail "instead of '$line': status $status, '$said'"
}

title_shown() {
    [ "$(import -silent -window root -resize '1x1!' -format '%[fx:mean>0.02]' info:)" = 1 ]
}

# started COMMAND...: runs it until it shows the title; $game is its process.
started() {
    "$@" >"$work/output" 2>"$work/errors" &
    game=$!
    local deadline=$((SECONDS + 60))
    until title_shown; do
        kill -0 "$game" || fail "the game ended before its title was shown"
        [ "$SECONDS" -lt "$deadline" ] || fail "no title came up"
    done
}

cd /
launcher=$tree/games/talvery
refused "talvery: no X display to play on: DISPLAY is not set, and no -display is given" \
    env -u DISPLAY "$launcher"
started env -i DISPLAY="$DISPLAY" XAUTHORITY="$XAUTHORITY" LIBGL_ALWAYS_SOFTWARE=1 "$launcher"
xdotool key Escape
wait "$game" || fail "Escape ended the game with status $?"
[ ! -s "$work/errors" ] || fail "the game said: $(cat "$work/errors")"

# Broken data is told, and does not keep the game from starting. Its own lines are out at once.
ln -s "$launcher" "$work/moved there/a link"
rm "$data/NPC.obj"
mkdir "$data/NPC.obj"
: >"$data/brick.bmp"
truncate -s 100 "$data/Tree.obj"
tree_trouble="has 100 bytes instead of $(stat -c %s "$source/data/Tree.obj")"
mv "$data/walk.txt" "$data/walk.away"
started env -u DISPLAY "$work/moved there/a link" -display "$DISPLAY"
diff - "$work/errors" <<END || fail "broken data is told otherwise"
a link: NPC.obj is not a file in $data
a link: Tree.obj $tree_trouble in $data
a link: brick.bmp is empty in $data
a link: walk.txt is missing in $data
END
grep -qx "Error Opening File" "$work/output" || fail "the game's line did not come out"
kill "$game"
status=0
wait "$game" || status=$?
[ "$status" -eq 143 ] || fail "the signal did not reach the game: status $status"

# What the game would wait for without end is told, and keeps it from starting.
rm -r "$data/NPC.obj" "$data/brick.bmp"
ln -s /dev/zero "$data/NPC.obj"
mkfifo "$data/brick.bmp"
refused "talvery: NPC.obj is not a file in $data
talvery: Tree.obj $tree_trouble in $data
talvery: brick.bmp is not a file in $data
talvery: walk.txt is missing in $data
talvery: brick.bmp could keep the game waiting for ever" timeout 60 "$launcher"

rm "$data"/*
everything=$(sed "s|.* \(.*\)|talvery: \1 is missing in $data|" "$tree/libexec/talvery/data.list")
refused "$everything
talvery: nothing to play with is left in $data" "$launcher"
rmdir "$data"
refused "talvery: the data folder $data is missing or cannot be entered" "$launcher"
