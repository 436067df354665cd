#!/usr/bin/env python3
# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Makes the Debian packages' changelog from CHANGELOG.md.

A release that has no date yet gets the time that --unreleased gives, so that the same tree makes the same packages.
"""

import argparse
import datetime
import email.utils
import pathlib
import re
import sys
import textwrap

_HEADING = re.compile(r"## (?P<version>\S+) \((?P<date>\d{4}-\d{2}-\d{2}|unreleased)\)")
_ENTRY = "varnel ({version}) unstable; urgency=medium\n\n{changes}\n\n -- {maintainer}  {time}\n"


class Malformed(Exception):
    """One sentence for whoever wrote the file."""


def _check_date(text):
    try:
        datetime.date.fromisoformat(text)
    except ValueError as error:
        raise Malformed(f"{text}: {error}") from None


def releases(text):
    """[(version, date or "unreleased", [change])], the newest first."""
    found = []
    for line in text.splitlines():
        if line.startswith("## "):
            heading = _HEADING.fullmatch(line)
            if not heading:
                raise Malformed(f'not "## VERSION (YYYY-MM-DD)" or "## VERSION (unreleased)": {line}')
            if heading["date"] != "unreleased":
                _check_date(heading["date"])
            found.append((heading["version"], heading["date"], []))
        elif found and line.startswith("- "):
            found[-1][2].append(line[2:].strip())
        elif found and line.startswith("  ") and found[-1][2]:
            found[-1][2][-1] += " " + line.strip()
    for version, _, changes in found:
        if not changes:
            raise Malformed(f"no changes are listed for {version}")
    if not found:
        raise Malformed("no release")
    return found


def debian(found, maintainer, unreleased):
    """The Debian changelog's text."""
    entries = []
    for version, date, changes in found:
        day = datetime.date.fromisoformat(date) if date != "unreleased" else None
        time = datetime.datetime(day.year, day.month, day.day, 12, tzinfo=datetime.UTC).timestamp() if day else unreleased
        entries.append(_ENTRY.format(
            version=version, maintainer=maintainer, time=email.utils.formatdate(time, localtime=False),
            changes="\n".join(textwrap.fill(change.replace("*", ""), 78, initial_indent="  * ",
                                            subsequent_indent="    ") for change in changes)))
    return "\n".join(entries)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("changelog", type=pathlib.Path)
    parser.add_argument("--maintainer", default="The Varnel authors <varnel@example.org>")
    parser.add_argument("--unreleased", type=int, default=0, metavar="SECONDS", help="since 1970")
    parser.add_argument("--print-newest", action="store_true", help="version and date of the newest release instead")
    arguments = parser.parse_args()
    try:
        found = releases(arguments.changelog.read_text(encoding="utf-8"))
    except Malformed as error:
        sys.exit(f"{arguments.changelog}: {error}")
    if arguments.print_newest:
        print(*found[0][:2])
    else:
        sys.stdout.write(debian(found, arguments.maintainer, arguments.unreleased))


if __name__ == "__main__":
    main()
