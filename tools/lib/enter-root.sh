# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
# The inside of run_in_root: binds what a command needs into the root directory, then runs it there.
# Runs in a private mount namespace, so that nothing stays mounted.
# Usage: enter-root.sh ROOT PROJECT CACHE DIRECTORY COMMAND...
set -euo pipefail

root=$1 project=$2 cache=$3 directory=$4
shift 4

bind() { # PATH: the same path inside
    if [ -d "$1" ]; then
        mkdir -p "$root$1"
    else
        mkdir -p "$(dirname "$root$1")"
        [ -e "$root$1" ] || : >"$root$1"
    fi
    mount --rbind "$1" "$root$1"
}

for path in /proc /sys /dev /tmp "$project" "$cache"; do
    bind "$path"
done
for path in /etc/resolv.conf /etc/hosts; do
    [ ! -e "$path" ] || bind "$path"
done

# The X11 socket lies in /tmp; a Wayland socket and a login's X authority have places of their own.
if [ -n "${XDG_RUNTIME_DIR:-}" ] && [ -d "$XDG_RUNTIME_DIR" ]; then
    bind "$XDG_RUNTIME_DIR"
fi
if [ -n "${DISPLAY:-}" ] && [ -z "${XAUTHORITY:-}" ] && [ -f "$HOME/.Xauthority" ]; then
    export XAUTHORITY=$HOME/.Xauthority
fi
if [ -n "${XAUTHORITY:-}" ] && [ -f "$XAUTHORITY" ]; then
    bind "$XAUTHORITY"
fi

[ -d "$root$directory" ] || directory=$project

# The other system's library and tool paths would mislead programs of this one.
unset LD_LIBRARY_PATH LD_PRELOAD QT_PLUGIN_PATH PYTHONPATH PYTHONHOME CC CXX
export HOME=/root PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin
# Checkouts in other places share the compiler cache.
export CCACHE_BASEDIR=$project CCACHE_NOHASHDIR=1
export CCACHE_DIR=${CCACHE_DIR:-$cache/ccache} LANG=C.UTF-8 LC_ALL=C.UTF-8
exec chroot "$root" /usr/bin/env --chdir="$directory" -- "$@"
