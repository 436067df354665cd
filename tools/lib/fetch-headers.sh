# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
# Fetches the IDE's source archive with apt's own downloader, checks it against the signed index and
# keeps its plug-in headers. Runs in the IDE's environment.
# Usage: fetch-headers.sh UPSTREAM-VERSION DIRECTORY
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

version=$1 target=$2
archive=qtcreator_$version.orig.tar.xz
work=$target.partial
rm -rf "$work"
mkdir -p "$work/lists/partial" "$work/archives/partial" "$work/tree"

# A source index of our own: the machine's list of package sources stays as it is.
mirror=$(configured_mirror trixie)
[ -n "$mirror" ] || mirror=$(configured_mirror stable)
[ -n "$mirror" ] || die "the package sources name no Debian 13 repository: add one, then run this again"
echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $mirror trixie main" >"$work/sources.list"
options=(-o "Dir::Etc::sourcelist=$work/sources.list" -o "Dir::Etc::sourceparts=-"
    -o "Dir::State::lists=$work/lists" -o "Dir::Cache=$work" -o "APT::Sandbox::User=root")
apt-get "${options[@]}" update

read -r directory checksum < <(apt-cache "${options[@]}" showsrc qtcreator | awk -v file="$archive" '
    /^Directory:/ { directory = $2 }
    /^Checksums-Sha256:/ { sums = 1; next }
    /^[^ ]/ { sums = 0 }
    sums && $3 == file { sum = $1 }
    /^$/ && sum { print directory, sum; sum = ""; exit }')
[ -n "${checksum:-}" ] || die "the mirror's source index has no $archive"

/usr/lib/apt/apt-helper -o APT::Sandbox::User=root download-file \
    "${mirror%/}/$directory/$archive" "$work/$archive" "SHA256:$checksum"
tar --extract --xz --file "$work/$archive" --directory "$work/tree" --strip-components=1 \
    --wildcards '*/src/libs/*.h' '*/src/libs/*.hpp' '*/src/plugins/coreplugin/*.h' '*/src/plugins/help/*.h' \
    '*/src/plugins/projectexplorer/*.h'
rm -rf "$target"
mv "$work/tree" "$target"
rm -rf "$work"
