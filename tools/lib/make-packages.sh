# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
# Builds the packages from a copy of the tree. Runs in the IDE's environment.
# Usage: make-packages.sh WORK OUTPUT
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

work=$1 output=$2
tree=$work/varnel
changelog=$PROJECT_DIR/packaging/changelog.py
cd "$PROJECT_DIR"

copy_tree() {
    rm -rf "$work"
    mkdir -p "$tree" "$output"
    git ls-files -z --cached --others --exclude-standard | while IFS= read -r -d '' file; do
        [ ! -f "$file" ] || printf '%s\0' "$file" # deleted, but not yet in the index
    done | tar --create --null --files-from=- | tar --extract --directory "$tree"
    cp -r packaging/debian "$tree/debian"
    python3 "$changelog" CHANGELOG.md --unreleased "$(git log -1 --format=%ct)" >"$tree/debian/changelog"
}

# What is needed is what set-up has installed; the package manager would ask for a meta package besides.
build_packages() {
    (cd "$tree" && dpkg-buildpackage --build=binary --no-sign --no-check-builddeps >"$work/build.log" 2>&1) || {
        tail -n 60 "$work/build.log" >&2
        die "building the packages failed: the end of $work/build.log is above"
    }
}

# The same modules as in the packages. The IDE's dialog takes an archive with one plug-in, whose dependencies must be
# there already, and copies all that is in it; the IDE itself loads whatever is named like a library. So the dialog is
# shown the stand-in, and the plug-in under a name that only the IDE looks at.
make_extension_archive() {
    local version epoch folder=$work/extension plugins
    plugins=usr/lib/$(dpkg-architecture --query DEB_HOST_MULTIARCH)/qtcreator/plugins
    read -r version _ < <(python3 "$changelog" CHANGELOG.md --print-newest)
    epoch=$(dpkg-parsechangelog --file "$tree/debian/changelog" --show-field Timestamp)
    mkdir -p "$folder"
    cp "$tree/debian/varnel/$plugins/libVarnel.so" "$folder"
    if [ -f "$tree/debian/varnel-sdk-standin/$plugins/libFerronaOS.so" ]; then
        cp "$tree/debian/varnel-sdk-standin/$plugins/libFerronaOS.so" "$folder"
        mv "$folder/libVarnel.so" "$folder/libVarnel.so.${version%%.*}"
    fi
    (cd "$folder" && tar --create --sort=name --mtime="@$epoch" --owner=0 --group=0 --numeric-owner \
        --mode=u=rw,go=r --file - lib*) | gzip --no-name -9 \
        >"$output/varnel-$version-linux-$(dpkg --print-architecture).tar.gz"
}

say "copying the tree to $tree"
copy_tree
rm -f "$output"/*.deb "$output"/varnel*.changes "$output"/varnel*.buildinfo "$output"/varnel-*.tar.gz
say "building the packages"
build_packages
make_extension_archive
say "looking at the packages with lintian"
lintian --fail-on error,warning --tag-display-limit 0 "$work"/varnel_*.changes >&2 \
    || die "lintian has findings, listed above"
mv "$work"/*.deb "$work"/varnel_*.changes "$work"/varnel_*.buildinfo "$output"
(cd "$output" && stat --format '%s %n' -- *.deb varnel-*.tar.gz)
