# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The reader and writer of settings files that the tests in the IDE rely on, against the IDE's own."""

import json
import pathlib
import subprocess
import tempfile
import unittest

import inifile
from case import BUILD

TEXTS = ["", "a", "Demo|http://127.0.0.1:1/a|", "a, b", "a; b", "a=b", 'say "x"', "back\\slash", "@at", "@@at", "Größe",
         "日本", "two\nlines", "tab\tand\rreturn", " blanks ", "%General", "[x]", "100 %", "\x01f", "#no comment"]
LISTS = [["a", "b"], ["a,b", "c"], ["", "a"], ["a", ""], ["", ""], ["a;b", 'c"d', ""], ["@a", "Größe", " x "]]


def key(number):
    return f"key{number:02}"


class IniFile(unittest.TestCase):

    def setUp(self):
        self.file = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory())) / "settings.ini"

    def qt(self, action, values=None):
        result = subprocess.run([BUILD / "tests/ide/qsettings_file", action, self.file],
                                input=json.dumps(values), capture_output=True, text=True, check=True)
        return json.loads(result.stdout) if action == "read" else None

    def test_reads_what_the_ide_writes(self):
        values = {key(number): value for number, value in enumerate(TEXTS + LISTS)}
        self.qt("write", {f"Group/{name}": value for name, value in values.items()})
        found = inifile.read(self.file)["Group"]
        self.assertEqual(found, values)

    def test_writes_what_the_ide_reads(self):
        values = {key(number): value for number, value in enumerate(TEXTS + LISTS)}
        inifile.write(self.file, {"Group": values})
        self.assertEqual(self.qt("read"), {f"Group/{name}": value for name, value in values.items()})

    def test_takes_an_empty_list_and_a_list_of_one_as_the_ide_does(self):
        self.qt("write", {"Group/empty": [], "Group/one": ["a"], "Group/blank": [""]})
        group = inifile.read(self.file)["Group"]
        self.assertEqual(inifile.as_list(group["empty"]), [])
        self.assertEqual(inifile.as_list(group["one"]), ["a"])
        self.assertEqual(group["blank"], "")

    def test_names_sections_as_the_ide_does(self):
        self.qt("write", {"bare": "1", "General/OverrideLanguage": "de", "Help/InstalledExamples": "x"})
        self.assertEqual(inifile.read(self.file), {
            "General": {"bare": "1"}, "%General": {"OverrideLanguage": "de"}, "Help": {"InstalledExamples": "x"}})

    def test_a_change_leaves_everything_else_as_it_is(self):
        self.file.write_text("[A]\nx=@ByteArray(\\0\\x1)\ny=1\n\n[B]\ny=2\n")
        inifile.change(self.file, "A", {"y": "3", "z": "4"})
        inifile.change(self.file, "C", {"w": "5"})
        self.assertEqual(sorted(filter(None, self.file.read_text().splitlines())),
                         sorted(["[A]", "x=@ByteArray(\\0\\x1)", "y=3", "z=4", "[B]", "y=2", "[C]", "w=5"]))
        self.assertEqual(inifile.read(self.file)["B"], {"y": "2"})

    def test_a_change_is_seen_by_the_ide(self):
        self.qt("write", {"A/kept": ["a, b", "c"], "A/changed": "old", "General/kept": "x"})
        inifile.change(self.file, "A", {"changed": ["new", 'one"']})
        inifile.change(self.file, "%General", {"added": "y"})
        self.assertEqual(self.qt("read"), {"A/kept": ["a, b", "c"], "A/changed": ["new", 'one"'],
                                           "General/kept": "x", "General/added": "y"})


if __name__ == "__main__":
    unittest.main()
