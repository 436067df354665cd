# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads files as what their names say they are, and lists those that cannot be read so."""

import ast
import json
import pathlib
import sys
import xml.etree.ElementTree as ElementTree

_READERS = {".json": json.loads, ".py": ast.parse}  # all others are XML


def fault(file):
    try:
        _READERS.get(file.suffix, ElementTree.fromstring)(file.read_text(encoding="utf-8"))
    except (ValueError, SyntaxError, ElementTree.ParseError) as error:
        return f"{file}: {error}"
    return None


def main():
    faults = [found for found in map(fault, map(pathlib.Path, sys.argv[1:])) if found]
    for line in faults:
        print(line, file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
