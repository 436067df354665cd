#!/bin/sh
# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
# Runs a test with a home, data, settings and temporary directory of its own, made afresh each time:
# neither the user's nor an earlier run's files are seen or touched.
# Usage: run-isolated.sh DIRECTORY COMMAND...
set -eu

directory=$1
shift
# What a test unpacked may be without the rights that its removal takes.
[ ! -d "$directory" ] || chmod -R u+rwx "$directory"
rm -rf "$directory"
for name in home data config cache tmp runtime; do
    mkdir -p "$directory/$name"
done
chmod 700 "$directory/runtime"

export HOME="$directory/home" XDG_DATA_HOME="$directory/data" XDG_CONFIG_HOME="$directory/config" \
    XDG_CACHE_HOME="$directory/cache" XDG_RUNTIME_DIR="$directory/runtime" TMPDIR="$directory/tmp"
export QT_QPA_PLATFORM=offscreen QT_FORCE_STDERR_LOGGING=1
# The servers of the tests are on this machine; a proxy would not find them.
unset http_proxy https_proxy all_proxy HTTP_PROXY HTTPS_PROXY ALL_PROXY
# What is logged, and how it looks, is for the tests to say.
unset QT_LOGGING_RULES QT_LOGGING_CONF QT_MESSAGE_PATTERN
exec "$@"
