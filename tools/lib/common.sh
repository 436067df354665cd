# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
# What every script of the project shares: where things are, and how to speak to the user.
# shellcheck disable=SC2034 # they are for whoever reads this file

PROJECT_DIR=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd -P)
CACHE_DIR=${VARNEL_CACHE_DIR:-${XDG_CACHE_HOME:-$HOME/.cache}/varnel}

# All progress goes to standard error, so that a command's own output stays usable in a pipe.
say() { printf 'varnel: %s\n' "$*" >&2; }

die() {
    printf 'varnel: error: %s\n' "$*" >&2
    exit 1
}

# The address of the repository that the machine's package sources name for a release, if any.
configured_mirror() { # RELEASE
    apt-get update --print-uris 2>/dev/null | sed -nE "s|^'([^']*)/dists/$1/InRelease'.*|\1|p" | head -n 1
}
