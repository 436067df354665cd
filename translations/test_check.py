# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""That the check of the translations finds what it is there for."""

import pathlib
import tempfile
import unittest
from xml.sax.saxutils import escape

import check

IDE_WORDS = {"Add...": {"Hinzufügen..."}, "Apply": {"Anwenden"}}
GOOD = [
    ("Add...", "Hinzufügen..."),
    ("Remove", "Entfernen"),
    (check.NAMES_BUTTONS, "Wählen, dann Entfernen, dann Anwenden."),
    ("Repository:", "Repository:"),
    ("<b>Name:&nbsp;</b>%1\n%2", "<b>Titel:&nbsp;</b>%1\n%2"),
    ("Cut && Paste", "Ausschneiden && Einfügen"),
]


class Check(unittest.TestCase):

    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))

    def report(self, texts, found=None, kind="", language="de"):
        entries = "".join(f"<message><source>{escape(source)}</source>"
                          f"<translation{kind}>{escape(text)}</translation></message>" for source, text in texts)
        file = self.folder / f"Varnel_{language}.ts"
        file.write_text(f"<TS><context><name>C</name>{entries}</context></TS>", encoding="utf-8")
        keys = {("C", source) for source, _ in (texts if found is None else found)}
        return list(check.report_on(file, keys, IDE_WORDS))

    def assert_found(self, part, source, text):
        lines = self.report([*((s, t) for s, t in GOOD if s != source), (source, text)])
        self.assertTrue(any(part in line for line in lines), lines)

    def test_nothing_is_found_where_all_is_well(self):
        self.assertEqual(self.report(GOOD), [])

    def test_a_text_that_was_not_translated_is_found(self):
        self.assert_found("is the English text", "Examples", "Examples")

    def test_a_listed_text_that_is_no_longer_the_same_is_found(self):
        self.assert_found("listed as the same", "Repository:", "Ablage:")

    def test_a_missing_marker_is_found(self):
        self.assert_found("other markers", "Downloading %1", "Lade herunter")

    def test_a_lost_line_break_is_found(self):
        self.assert_found("other markers", "One\ntwo", "Eins zwei")

    def test_broken_markup_is_found(self):
        self.assert_found("other markers", "<b>Bold</b>", "<b>Fett<b>")

    def test_a_lost_accelerator_is_found(self):
        self.assert_found("accelerators", "&Open", "Öffnen")

    def test_an_accelerator_of_its_own_is_found(self):
        self.assert_found("accelerators", "Open", "Ö&ffnen")

    def test_another_end_is_found(self):
        self.assert_found("end alike", "Open...", "Öffnen")

    def test_an_empty_text_is_found(self):
        self.assert_found("is empty", "Open", "")

    def test_another_word_than_the_ides_is_found(self):
        self.assert_found("not as the IDE has it", "Add...", "Einfügen...")

    def test_a_button_by_another_name_is_found(self):
        self.assert_found("does not name the button", check.NAMES_BUTTONS, "Löschen, dann Anwenden.")

    def test_the_ides_button_by_another_name_is_found(self):
        self.assert_found("names none of the IDE's", check.NAMES_BUTTONS, "Entfernen, dann Übernehmen.")

    def test_unfinished_texts_are_found(self):
        lines = self.report(GOOD, kind=' type="unfinished"')
        self.assertEqual(len(lines), len(GOOD))
        self.assertTrue(all(line.startswith("is unfinished") for line in lines), lines)

    def test_a_text_that_is_missing_is_found(self):
        self.assertEqual(self.report(GOOD, [*GOOD, ("New", "")]), ["not in the translation: ('C', 'New')"])

    def test_a_stale_text_is_found(self):
        self.assertEqual(self.report([*GOOD, ("Old", "Alt")], GOOD), ["no longer in the sources: ('C', 'Old')"])

    def test_a_language_of_the_ide_that_is_missing_is_found(self):
        ide = self.folder / "ide"
        ide.mkdir()
        for name in ("qtcreator_en.qm", "qtcreator_de.qm", "qtcreator_ja.qm"):
            (ide / name).touch()
        (self.folder / "Varnel_de.ts").touch()
        (self.folder / "Varnel_tlh.ts").touch()

        self.assertEqual(list(check.report_on_languages(self.folder, ide)),
                         ["the IDE speaks ja, Varnel does not", "Varnel speaks tlh, the IDE does not"])


if __name__ == "__main__":
    unittest.main()
