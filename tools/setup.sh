# Sourced by ./play and ./check: installs what is missing and builds. Needs $root, the
# folder of the repository. Every function ends the script on failure.

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

# arguments LEAST MOST WORD...: answers --help, and a wrong number of words with the usage and
# status 2. Options that a script takes are to be taken off the words before.
arguments() {
    local least=$1 most=$2
    shift 2
    case ${1:-} in
    -h | --help) usage && exit 0 ;;
    -*) printf '%s: what is %s?\n' "${0##*/}" "$1" >&2 ;;
    *) [ $# -lt "$least" ] || [ $# -gt "$most" ] || return 0 ;;
    esac
    usage >&2
    exit 2
}

# need PROGRAM...: ends with the command that installs what is missing of them.
need() {
    local program missing=() wanted=()
    for program; do
        command -v "$program" >/dev/null && continue
        missing+=("$program")
        case $program in
        xvfb-run) wanted+=(xvfb xauth) ;;
        import | convert | compare) wanted+=(imagemagick) ;;
        img2webp) wanted+=(webp) ;;
        *) wanted+=("$program") ;;
        esac
    done
    [ ${#missing[@]} -eq 0 ] ||
        fail "${missing[*]} missing; as root: apt-get install --no-install-recommends" \
            "$(printf '%s\n' "${wanted[@]}" | sort -u | xargs)"
}

packages() {
    sed -e 's/#.*//' -e '/^[[:space:]]*$/d' "$root/packages.txt"
}

is_installed() {
    [ "$(dpkg-query -W -f='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

install_missing() {
    command -v dpkg-query >/dev/null && command -v apt-get >/dev/null ||
        fail "this is no Debian machine; install the like of these and use cmake:" $(packages)
    local missing=() package
    for package in $(packages); do
        is_installed "$package" || missing+=("$package")
    done
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

# build PRESET [OPTION...]: configures and builds into build/PRESET.
build() {
    local preset=$1
    shift
    say "building ($preset)"
    local log=$root/build/$preset.log
    mkdir -p "$root/build"
    (cd "$root" && cmake --preset "$preset" "$@" >"$log" 2>&1) || {
        cat "$log"
        fail "cmake could not configure, see above"
    }
    (cd "$root" && cmake --build --preset "$preset" --parallel "$(nproc)") ||
        fail "the build failed, see above"
}
