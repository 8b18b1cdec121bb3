# shellcheck shell=bash disable=SC2154
# Sourced by ./play, ./check and the tools: installs what is missing and builds. Needs $root, the
# folder of the repository. Every function ends the script on failure.

# Programs read and write the same in every language: elsewhere awk takes "0.02" for 0, and
# ImageMagick does not know "info:".
export LC_ALL=C
# A relative folder is one of the current folder's.
unset CDPATH

say() {
    printf '== %s\n' "$*"
}

fail() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2
    exit 1
}

# usage: what the script says of itself, the comment that it opens with.
usage() {
    sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0"
}

# misuse WORD...: says so, with the usage, and ends with status 2.
misuse() {
    printf '%s: %s\n\n' "${0##*/}" "$*" >&2
    usage >&2
    exit 2
}

# arguments LEAST MOST WORD...: answers --help, and a wrong number of words with the usage and
# status 2. Options that a script takes are to be taken off the words before.
arguments() {
    local least=$1 most=$2
    shift 2
    case ${1:-} in
    -h | --help) usage && exit 0 ;;
    -*) misuse "what is $1?" ;;
    esac
    [ $# -ge "$least" ] || misuse "too few words"
    [ $# -le "$most" ] || misuse "too many words"
}

# number WORD...: ends as a misuse unless each is a number that is at least 0.
number() {
    local word
    for word; do
        [[ $word =~ ^[0-9]+(\.[0-9]+)?$ ]] || misuse "$word is no number"
    done
}

# need PROGRAM...: ends with the command that installs what is missing of them.
need() {
    local program missing=() wanted=() list
    for program; do
        command -v "$program" >/dev/null && continue
        missing+=("$program")
        case $program in
        clang++) wanted+=(clang libclang-rt-dev) ;;
        xvfb-run) wanted+=(xvfb xauth) ;;
        import | convert | compare | montage) wanted+=(imagemagick) ;;
        dpkg-deb) wanted+=(dpkg) ;;
        dpkg-shlibdeps) wanted+=(dpkg-dev) ;;
        desktop-file-validate) wanted+=(desktop-file-utils) ;;
        appstreamcli) wanted+=(appstream) ;;
        cwebp | dwebp | webpmux) wanted+=(webp) ;;
        *) wanted+=("$program") ;;
        esac
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    list=$(printf '%s\n' "${wanted[@]}" | sort -u | xargs)
    command -v apt-get >/dev/null || fail "${missing[*]} missing; Debian's packages for that: $list"
    fail "${missing[*]} missing; as root: apt-get install --no-install-recommends $list"
}

# on_virtual_display ARGUMENT...: starts this script again on a display of its own, drawn in
# software; does nothing where it is on that one. SERVER_OPTIONS are the X server's. It must not
# start afresh when the last window or tool leaves: that would refuse a game just coming up.
on_virtual_display() {
    [ "${TALVERY_DISPLAY:-}" != "$0" ] || return 0
    TALVERY_DISPLAY=$0 LIBGL_ALWAYS_SOFTWARE=1 exec xvfb-run --auto-servernum \
        --server-args="-screen 0 1280x1024x24 -nolisten tcp -noreset ${SERVER_OPTIONS:-}" "$0" "$@"
}

# packages PART...: what packages.txt lists in these parts.
packages() {
    local part
    for part; do
        grep -qxF "[$part]" "$root/packages.txt" || fail "packages.txt has no part [$part]"
    done
    awk -v parts=" $* " '
        {sub(/#.*/, "")}
        /^\[/ {wanted = index(parts, " " substr($1, 2, length($1) - 2) " "); next}
        wanted && NF {print $1}' "$root/packages.txt"
}

# not_installed PACKAGE...: those of them that this machine lacks. Where it has several
# architectures, a package may be there more than once, or for another one alone.
not_installed() {
    local installed
    installed=$(dpkg-query -W -f='${db:Status-Status} ${Architecture} ${Package}\n' "$@" 2>/dev/null |
        sed -nE "s/^installed ($(dpkg --print-architecture)|all) //p") || true
    printf '%s\n' "$@" | grep -vxF -e "$installed" || true
}

# install_missing PART...: of packages.txt. Where there is no apt, all may be there all the same.
install_missing() {
    local list wanted missing
    list=$(packages "$@") || exit
    mapfile -t wanted <<<"$list"
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        return 0
    fi
    mapfile -t missing < <(not_installed "${wanted[@]}")
    [ ${#missing[@]} -gt 0 ] || return 0

    local install=(apt-get install --yes --no-install-recommends "${missing[@]}") as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null ||
            fail "packages are missing; as root, run: apt-get update && ${install[*]}"
        as_root=(sudo)
    fi
    say "installing ${missing[*]}"
    "${as_root[@]}" apt-get update --quiet || fail "apt-get update failed, see above"
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive "${install[@]}" ||
        fail "could not install ${missing[*]}, see above"
}

# configure PRESET [OPTION...]: with these options for cmake, in build/PRESET.
configure() {
    local log=$root/build/$1.log
    need cmake
    mkdir -p "$root/build"
    (cd "$root" && cmake --preset "$@" >"$log" 2>&1) || {
        cat "$log"
        fail "cmake could not configure ($1), see above; packages.txt lists what it needs," \
            "and ./check installs that on Debian"
    }
}

# build PRESET [OPTION...] [-- TARGET...]: configures with these options and builds these targets,
# or all, into build/PRESET.
build() {
    local preset=$1 options=()
    shift
    while [ $# -gt 0 ] && [ "$1" != -- ]; do
        options+=("$1")
        shift
    done
    [ $# -eq 0 ] || set -- --target "${@:2}"
    say "building ($preset)"
    configure "$preset" "${options[@]}"
    (cd "$root" && cmake --build --preset "$preset" --parallel "$(nproc)" "$@") ||
        fail "the build failed, see above"
}
