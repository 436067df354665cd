#!/usr/bin/env python3
# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks that a translation has every text of the sources and nothing else, and that no translated text lacks
anything that the program or the user needs of it."""

import argparse
import collections
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree

# What a translation must have as often as its source: markers, tags, entities, line breaks.
PARTS = re.compile(r"%\d|<[^>]*>|&\w+;|\n")
# What it must end with if its source does.
ENDS = ("...", ":", "\n", " ")


def messages(ts_file):
    """(context, source): translation element"""
    result = {}
    for context in ElementTree.parse(ts_file).iter("context"):
        for message in context.iter("message"):
            key = (context.findtext("name"), message.findtext("source"))
            result[key] = message.find("translation")
    return result


def extracted(lupdate, sources):
    with tempfile.TemporaryDirectory() as directory:
        ts_file = pathlib.Path(directory) / "fresh_de.ts"
        subprocess.run([lupdate, "-silent", "-no-obsolete", sources, "-ts", ts_file], check=True)
        return set(messages(ts_file))


def faults(source, translation):
    text = translation.text or ""
    if translation.get("type"):
        yield f"is {translation.get('type')}"
    if not text:
        yield "is empty"
        return
    if collections.Counter(PARTS.findall(source)) != collections.Counter(PARTS.findall(text)):
        yield "has other markers, tags or line breaks"
    for end in ENDS:
        if source.endswith(end) != text.endswith(end):
            yield f"does not end alike ({end!r})"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--lupdate", default=shutil.which("lupdate"))
    parser.add_argument("sources", type=pathlib.Path)
    parser.add_argument("ts_file", type=pathlib.Path)
    arguments = parser.parse_args()

    translated = messages(arguments.ts_file)
    found = extracted(arguments.lupdate, arguments.sources)
    report = [f"not in the translation: {key}" for key in sorted(found - set(translated))]
    report += [f"no longer in the sources: {key}" for key in sorted(set(translated) - found)]
    for key, translation in translated.items():
        report += [f"{fault}: {key}" for fault in faults(key[1], translation)]

    print("\n".join(report) or f"{len(translated)} texts are translated.")
    return 1 if report or not translated else 0


if __name__ == "__main__":
    sys.exit(main())
