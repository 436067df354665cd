# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
# Sets up the IDE's environment: this machine if it is a Debian 13, else a Debian 13 root directory.
# Needs common.sh. Every step is redone from its start after an interruption: a directory gets its
# final name only when it is complete.
# shellcheck disable=SC2153 # CACHE_DIR comes from common.sh, and is not a misspelt CCACHE_DIR

HOST_RELEASE=trixie
PACKAGE_LIST=$PROJECT_DIR/tools/host-packages.txt
FETCH_HEADERS=$PROJECT_DIR/tools/lib/fetch-headers.sh

host_packages() { sed -e 's/#.*//' -e '/^[[:space:]]*$/d' "$PACKAGE_LIST"; }

is_host_release() {
    [ -z "${VARNEL_FORCE_ROOT:-}" ] && (. /etc/os-release && [ "${ID:-}/${VERSION_CODENAME:-}" = "debian/$HOST_RELEASE" ])
}

is_root() { [ "$(id -u)" = 0 ]; }

# Holds the set-up lock for the rest of the script: two commands started together set up once.
lock_setup() {
    mkdir -p "$CACHE_DIR" || die "cannot create the cache directory $CACHE_DIR: make it writable or set VARNEL_CACHE_DIR"
    exec 9>"$CACHE_DIR/setup.lock"
    flock --nonblock 9 || { say "waiting for another set-up to finish"; flock 9; }
}

unlock_setup() { exec 9>&-; }

need_space() { # MEGABYTES WHAT
    local free
    free=$(df --output=avail --block-size=1M "$CACHE_DIR" | tail -n 1)
    [ "$free" -ge "$1" ] || die "$2 needs $1 MB in $CACHE_DIR, but only $((free)) MB are free: make room or set VARNEL_CACHE_DIR"
}

apt_install() { # PACKAGE...
    is_root || die "missing packages: $*; install them with: apt-get install --no-install-recommends $*"
    say "installing $# package(s) with apt-get"
    DEBIAN_FRONTEND=noninteractive apt-get update >&2 \
        || die "apt-get update failed: check the network and the machine's package sources, then run this again"
    DEBIAN_FRONTEND=noninteractive apt-get install --yes --no-install-recommends "$@" >&2 \
        || die "apt-get install failed: check the network and the free disk space, then run this again"
}

is_installed() { dpkg-query --show --showformat '${db:Status-Status}\n' "$1" 2>/dev/null | grep -qx installed; }

install_missing() { # PACKAGE...
    local missing=() package
    for package; do
        is_installed "$package" || missing+=("$package")
    done
    [ ${#missing[@]} = 0 ] || apt_install "${missing[@]}"
}

# The machine's own package mirror, so that the project names none.
machine_mirror() { (. /etc/os-release && [ "$ID" = debian ] && configured_mirror "$VERSION_CODENAME") || true; }

# The machine's download options (proxies, date checks) as apt options.
machine_apt_options() {
    apt-config dump 2>/dev/null | grep -E '^Acquire::(https?::|ftp::|Check-|Retries)' || true
}

host_root() { printf '%s/host-%s\n' "$CACHE_DIR" "$(host_packages | sha256sum | cut -c1-12)"; }

# Without root rights the whole command runs in a user namespace in which it has them.
enter_user_namespace() { # SCRIPT ARGUMENT...
    unshare --user --map-root-user --map-auto --mount true 2>/dev/null \
        || die "setting up a Debian 13 root needs root rights or user namespaces with sub-ids: run this as root, or install uidmap and allow user namespaces"
    exec unshare --user --map-root-user --map-auto --mount "$@"
}

make_host_root() { # ROOT
    local root=$1 partial=$1.partial mirror option options=()
    need_space 4500 "the Debian 13 root"
    is_installed mmdebstrap || apt_install mmdebstrap
    if [ -e "$partial" ]; then
        say "removing what an interrupted set-up left behind"
        rm -rf --one-file-system "$partial"
    fi
    mirror=$(machine_mirror)
    while IFS= read -r option; do
        [ -z "$option" ] || options+=("--aptopt=$option")
    done < <(machine_apt_options)
    say "making a Debian 13 root with the IDE in $root (about 1 GB to download, a few minutes)"
    mmdebstrap --variant=apt --format=directory "${options[@]}" \
        --dpkgopt='path-exclude=/usr/share/man/*' \
        --include="$(host_packages | paste --serial --delimiters=,)" \
        "$HOST_RELEASE" "$partial" ${mirror:+"$mirror"} >&2 9>&- \
        || die "making the Debian 13 root failed: check the network, the package mirror and the free disk space, then run this again"
    mv "$partial" "$root"
}

ensure_host_root() { # prints nothing; the root is there afterwards
    local root
    root=$(host_root)
    [ -d "$root" ] || make_host_root "$root"
}

# Runs a command on a machine that is a Debian 13 itself. Its compiler cache goes where the project's other files go.
# A machine without a locale warns about that in every step of the build.
run_on_machine() { # COMMAND...
    export CCACHE_DIR=${CCACHE_DIR:-$CACHE_DIR/ccache}
    [ "$(locale charmap 2>/dev/null)" = UTF-8 ] || export LC_ALL=C.UTF-8
    exec "$@"
}

# Runs a command inside ROOT with the checkout, the cache and /tmp at the same paths as outside.
# The mounts are private to the command and vanish with it.
run_in_root() { # ROOT COMMAND...
    local root=$1
    shift
    [ "$root" != / ] || run_on_machine "$@"
    exec unshare --mount --propagation private \
        bash "$PROJECT_DIR/tools/lib/enter-root.sh" "$root" "$PROJECT_DIR" "$CACHE_DIR" "$PWD" "$@"
}

headers_dir() { # UPSTREAM-VERSION; the script that fills it decides what is in it
    printf '%s/ide-headers-%s-%s\n' "$CACHE_DIR" "$1" "$(sha256sum "$FETCH_HEADERS" | cut -c1-8)"
}

# The plug-in headers are not packaged; they come from the source archive of the installed version.
ensure_headers() { # ROOT
    local root=$1 version
    version=$(dpkg-query --root="$root" --show --showformat '${source:Upstream-Version}' qtcreator 2>/dev/null) \
        || die "the IDE is not installed in $root: remove that directory and run this again"
    VARNEL_IDE_HEADERS=$(headers_dir "$version")
    export VARNEL_IDE_HEADERS
    [ -d "$VARNEL_IDE_HEADERS" ] && return
    say "fetching the plug-in headers of the IDE $version (53 MB)"
    (run_in_root "$root" bash "$FETCH_HEADERS" "$version" "$VARNEL_IDE_HEADERS" 9>&-) >&2 \
        || die "fetching the IDE's plug-in headers failed: check the network and that the mirror carries source packages, then run this again"
}

# Everything that a command in the IDE's environment needs; sets HOST_ROOT and VARNEL_IDE_HEADERS.
ensure_host() {
    lock_setup
    if is_host_release; then
        local packages
        mapfile -t packages < <(host_packages)
        install_missing "${packages[@]}"
        HOST_ROOT=/
    else
        ensure_host_root
        HOST_ROOT=$(host_root)
    fi
    ensure_headers "$HOST_ROOT"
    unlock_setup
}
