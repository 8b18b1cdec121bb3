#!/usr/bin/env bash
# Checks what ./play finds out before it starts the game: which packages are not installed, and
# which sizes the data should have.
#
# Usage: setup.sh WORK_FOLDER
set -euo pipefail
root=$(realpath "$(dirname "${BASH_SOURCE[0]}")/..")
. "$root/tools/setup.sh"
arguments 1 1 "$@"
need cmake dpkg-query git
rm -rf "$1"
mkdir -p "$1/dpkg" "$1/a clone/data"
cd "$1"

# What counts as installed on a machine of two architectures: what is there for its own or for all,
# whether or not for the other one too.
while read -r name architecture shared; do
    printf '%s\n' "Package: $name" "Architecture: $architecture" "Multi-Arch: $shared" \
        "Status: install ok installed" "Version: 1" "Maintainer: x" "Description: x" ""
done >dpkg/status <<END
both $(dpkg --print-architecture) same
both other same
data all foreign
foreign other same
END
lacking=$(DPKG_ADMINDIR=$PWD/dpkg not_installed both data foreign unknown | xargs)
[ "$lacking" = "foreign unknown" ] || fail "these count as not installed: $lacking"

# listed LINE: what the data should be, by the data_list target.
listed() {
    cmake -DRECORDED=ON -DFOLDER="$PWD/data" -DLIST="$PWD/list" -P "$root/packaging/data_list.cmake"
    [ "$(cat list)" = "$1" ] || fail "the data is listed as $(cat list) instead of $1"
}

# What git has recorded counts, from the first build on; what is added to it, from the next one.
cd "a clone"
# shellcheck disable=SC2046
unset $(git rev-parse --local-env-vars)
git init --quiet
echo whole >data/walk.txt
git add data
echo cut >data/walk.txt
listed "6 walk.txt"
git add data
listed "4 walk.txt"
