#!/usr/bin/env python3
# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Checks that a translation has every text of the sources and nothing else, that no translated text lacks anything
that the program or the user needs of it, and that it speaks as the IDE does in that language."""

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
# What is left of a text once its entities and doubled ampersands are gone: an ampersand before a letter.
NO_ACCELERATOR = re.compile(r"&\w+;|&&")
# What it must end with if its source does; some languages have signs of their own.
ENDS = {"ellipsis": ("...", "…"), "colon": (":", "："), "line break": ("\n",), "space": (" ",)}

# Texts that are the same in English, by language.
SAME_AS_ENGLISH = {
    "da": {"Repository:"},
    "de": {"Repository:"},
    "fr": {"Description"},
}
# Texts for which the IDE has another word, because there it says something else.
OTHER_THAN_IN_THE_IDE = {
    "ja": {"Updated"},  # there: when; here: that
}
# The text that names two buttons, one of ours and one of the preferences.
NAMES_BUTTONS = "Select examples to remove, press Remove button, then press Apply button to apply changes."


def messages(ts_file):
    """{(context, source): translation element}"""
    result = {}
    for context in ElementTree.parse(ts_file).iter("context"):
        for message in context.iter("message"):
            key = (context.findtext("name"), message.findtext("source"))
            result[key] = message.find("translation")
    return result


def extracted(lupdate, sources):
    """The texts of the sources, as the platform's tool finds them."""
    with tempfile.TemporaryDirectory() as directory:
        ts_file = pathlib.Path(directory) / "fresh_de.ts"
        subprocess.run([lupdate, "-silent", "-no-obsolete", sources, "-ts", ts_file], check=True)
        return set(messages(ts_file))


def vocabulary(lconvert, qm_file):
    """{source: {translation}} of the IDE."""
    converted = subprocess.run([lconvert, "-i", qm_file, "-of", "ts"], check=True, capture_output=True).stdout
    words = collections.defaultdict(set)
    for message in ElementTree.fromstring(converted).iter("message"):
        if text := message.findtext("translation"):
            words[message.findtext("source")].add(plain(text))
    return words


def plain(text):
    """Without what is a matter of typesetting: which kind of space, dots or colon."""
    return re.sub(r"\s", " ", text).replace("…", "...").replace("：", ":").replace(" ...", "...").replace(" :", ":")


def accelerators(text):
    return NO_ACCELERATOR.sub("", text).count("&")


def faults_of_form(source, translation):
    text = translation.text or ""
    if translation.get("type"):
        yield f"is {translation.get('type')}"
    if not text.strip():
        yield "is empty"
        return
    if collections.Counter(PARTS.findall(source)) != collections.Counter(PARTS.findall(text)):
        yield "has other markers, tags or line breaks"
    if accelerators(source) != accelerators(text):
        yield "has another number of accelerators"
    for name, ends in ENDS.items():
        if source.endswith(ends) != text.endswith(ends):
            yield f"does not end alike ({name})"


def faults_of_words(source, text, language, ide_words):
    if (text == source) != (source in SAME_AS_ENGLISH.get(language, ())):
        yield "is the English text" if text == source else "differs from the English text, but is listed as the same"
    in_the_ide = ide_words.get(source, set())
    if in_the_ide and (plain(text) in in_the_ide) == (source in OTHER_THAN_IN_THE_IDE.get(language, ())):
        yield f"is not as the IDE has it, or listed although it is: {sorted(in_the_ide)}"


def faults_of_button_names(translated, ide_words):
    """The message that tells which buttons to press, must call them as they are called."""
    texts = {source: element.text or "" for (_, source), element in translated.items()}
    message = texts.get(NAMES_BUTTONS, "")
    if texts.get("Remove", "") not in message:
        yield f"does not name the button {texts.get('Remove')!r}: {message!r}"
    if ide_words.get("Apply") and not any(word in message for word in ide_words["Apply"]):
        yield f"names none of the IDE's {sorted(ide_words['Apply'])}: {message!r}"


def report_on(ts_file, found, ide_words):
    """Everything that is wrong with a file, given the texts of the sources and the IDE's words."""
    language = ts_file.stem.partition("_")[2]
    translated = messages(ts_file)
    yield from (f"not in the translation: {key}" for key in sorted(found - set(translated)))
    yield from (f"no longer in the sources: {key}" for key in sorted(set(translated) - found))
    for key, translation in translated.items():
        yield from (f"{fault}: {key}" for fault in faults_of_form(key[1], translation))
        yield from (f"{fault}: {key}" for fault in faults_of_words(key[1], translation.text, language, ide_words))
    yield from faults_of_button_names(translated, ide_words)


def report_on_languages(directory, ide_translations):
    """The IDE's languages and ours must be the same."""
    of_the_ide = {file.stem.removeprefix("qtcreator_") for file in ide_translations.glob("qtcreator_*.qm")} - {"en"}
    ours = {file.stem.removeprefix("Varnel_") for file in directory.glob("Varnel_*.ts")}
    yield from (f"the IDE speaks {language}, Varnel does not" for language in sorted(of_the_ide - ours))
    yield from (f"Varnel speaks {language}, the IDE does not" for language in sorted(ours - of_the_ide))


def ide_translations():
    program = shutil.which("qtcreator")
    if not program:
        sys.exit("the IDE is not installed")
    return pathlib.Path(program).resolve().parents[1] / "share/qtcreator/translations"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--lupdate", default="lupdate")
    parser.add_argument("--lconvert", default="lconvert")
    parser.add_argument("--sources", type=pathlib.Path, required=True)
    parser.add_argument("translation", type=pathlib.Path, help="a .ts file, or the folder of them all")
    arguments = parser.parse_args()

    if arguments.translation.is_dir():
        report = list(report_on_languages(arguments.translation, ide_translations()))
    else:
        found = extracted(arguments.lupdate, arguments.sources)
        if not found:
            sys.exit(f"no texts in {arguments.sources}")
        words = ide_translations() / f"qtcreator_{arguments.translation.stem.partition('_')[2]}.qm"
        report = list(report_on(arguments.translation, found, vocabulary(arguments.lconvert, words)))
    print("\n".join(report) or "complete")
    return 1 if report else 0


if __name__ == "__main__":
    sys.exit(main())
