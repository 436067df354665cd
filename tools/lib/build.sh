# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
# Configures and builds a preset. Runs in the IDE's environment.
# Usage: build.sh PRESET [TARGET...]
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

preset=$1
shift
cd "$PROJECT_DIR"
mkdir -p build
log=build/$preset-configure.log
say "configuring the $preset build"
cmake --preset "$preset" >"$log" 2>&1 || {
    cat "$log" >&2
    die "configuring failed: the lines above say why; if they name a stale path, remove build/$preset and run this again"
}
say "building ${*:-everything}"
ninja -C "build/$preset" "$@" >&2 || die "the build failed: the compiler's messages are above"
