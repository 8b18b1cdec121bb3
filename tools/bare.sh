# Sourced by tools/try_package and tools/try_release: sets up bare Debian systems. Needs
# tools/setup.sh, $root, and the programs mmdebstrap and apt-get.
# shellcheck shell=bash disable=SC2154

# need_root: ends where the script could not enter a bare system.
need_root() {
    [ "$(id -u)" -eq 0 ] || fail "needs root, to enter the bare system and install there"
}

# in_bare_system RELEASE PACKAGES COMMAND...: sets up that release of Debian, a codename, in a
# folder of its own, with these packages, separated by commas, and nothing else; runs the command
# with the folder as its last word; and throws the system away. Its packages come from where this
# machine has its own, by the same way.
in_bare_system() {
    local release=$1 packages=$2 sources settings certificates=/etc/ssl/certs/ca-certificates.crt
    shift 2
    # shellcheck disable=SC2016
    sources=$(apt-get indextargets 'Created-By: Packages' 'Origin: Debian' --format \
        'deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $(REPO_URI) $(RELEASE) $(COMPONENT)' |
        sed "s/ $(. /etc/os-release && echo "$VERSION_CODENAME")\([- ]\)/ $release\1/")
    [ -n "$sources" ] || fail "apt knows no source of Debian packages; run apt-get update"
    settings=$(mktemp)
    apt-config dump | grep -iE '^Acquire::https?::' >"$settings" || true

    say "setting up a bare Debian system ($release)"
    mmdebstrap --mode=root --variant=apt --include="$packages" --format=null \
        --aptopt="$settings" \
        --setup-hook="[ ! -r $certificates ] || install -D -m 644 $certificates \"\$1$certificates\"" \
        --customize-hook="${*@Q} \"\$1\"" \
        "$release" /dev/null - <<<"$sources" || fail "the try ended early, see above"
    rm "$settings"
}
