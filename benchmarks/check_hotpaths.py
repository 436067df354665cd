# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Counts the instructions of the hot paths under valgrind, which any machine counts alike, and fails where one has
become dearer than the committed baseline allows."""

import argparse
import json
import os
import pathlib
import re
import subprocess
import sys

PATHS = ("archive", "copies", "listing", "page", "search")
ALLOWED = 1.10
CALLGRIND = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", "--toggle-collect=hotPath"]
# What would let the counts differ from run to run or from machine to machine.
ENVIRONMENT = {"QT_HASH_SEED": "0", "QT_ENABLE_REGEXP_JIT": "0", "LC_ALL": "C.UTF-8", "LANGUAGE": "C", "TZ": "UTC"}


def count(command, path):
    """The command ends in the program; valgrind goes before that."""
    result = subprocess.run([*command[:-1], *CALLGRIND, command[-1], path], env=os.environ | ENVIRONMENT,
                            capture_output=True, text=True, check=False)
    found = re.search(r"Collected : (\d+)", result.stderr)
    if result.returncode != 0 or not found or int(found[1]) == 0:
        sys.exit(f"hotpaths {path} ended with {result.returncode}:\n{result.stderr[-3000:]}")
    return int(found[1])


def is_dearer(path, counted, baseline):
    ratio = counted / baseline
    print(f"{path:<10} {counted / 1e6:10.2f} million instructions, baseline {baseline / 1e6:10.2f}, {ratio:.3f}")
    return ratio > ALLOWED


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--baseline", type=pathlib.Path, required=True)
    parser.add_argument("--update", action="store_true", help="make what is counted the new baseline")
    parser.add_argument("command", nargs="+", help="runs the program with an environment of its own")
    options = parser.parse_args()

    counted = {path: count(options.command, path) for path in PATHS}
    if options.update:
        options.baseline.write_text(json.dumps(counted, indent=2) + "\n")
        return
    baseline = json.loads(options.baseline.read_text())
    dearer = [path for path in PATHS if is_dearer(path, counted[path], baseline[path])]
    if dearer:
        sys.exit(f"more than {ALLOWED - 1:.0%} dearer: {', '.join(dearer)}; if it has to be, "
                 "tools/bench --update-hotpaths makes this the baseline")


if __name__ == "__main__":
    main()
