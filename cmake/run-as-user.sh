#!/bin/sh
# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs a command as an ordinary user without any privilege, who owns DIRECTORY, made afresh, and nothing else. Only
# root can. Ends with 77 if the checkout cannot be shown to that user.
# Usage: run-as-user.sh DIRECTORY COMMAND...
set -eu

USER_ID=65533 # nobody's on an ordinary machine, and mapped in a user namespace, too
as_user() {
    setpriv --reuid="$USER_ID" --regid="$USER_ID" --clear-groups --bounding-set=-all --no-new-privs "$@"
}

# The first directory on the way to a path that the user cannot enter, such as root's home.
closed_above() { # PATH
    above=$(dirname "$1")
    if [ "$above" != / ] && ! as_user test -x "$above"; then
        closed_above "$above"
    else
        printf '%s\n' "$1"
    fi
}

# A private view of the file system, in which nothing is below the closed directory but the checkout.
show_checkout() {
    project=$(cd "$(dirname "$0")/.." && pwd -P)
    closed=$(closed_above "$project")
    [ "$closed" != "$project" ] && command -v mount >/dev/null || return 1
    stage=$(mktemp -d)
    mount --bind "$project" "$stage" \
        && mount -t tmpfs -o mode=755 tmpfs "$closed" \
        && mkdir -p "$project" \
        && mount --move "$stage" "$project"
    moved=$?
    rmdir "$stage"
    return "$moved"
}

directory=$1
rm -rf "$directory"
mkdir -p "$directory"
chown "$USER_ID:$USER_ID" "$directory"

if ! as_user test -w "$directory"; then
    if [ -z "${VARNEL_PRIVATE_VIEW:-}" ] && unshare --mount true 2>/dev/null; then
        VARNEL_PRIVATE_VIEW=1 exec unshare --mount --propagation private "$0" "$@"
    fi
    { [ -n "${VARNEL_PRIVATE_VIEW:-}" ] && show_checkout && as_user test -w "$directory"; } || {
        echo "another user cannot enter $directory: make the checkout readable for all" >&2
        exit 77
    }
fi
unset VARNEL_PRIVATE_VIEW
shift
exec setpriv --reuid="$USER_ID" --regid="$USER_ID" --clear-groups --bounding-set=-all --no-new-privs "$@"
