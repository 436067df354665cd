# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The reader and writer of settings files that the tests in the IDE rely on."""

import pathlib
import tempfile
import unittest

import inifile


class IniFile(unittest.TestCase):

    def setUp(self):
        self.file = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory())) / "settings.ini"

    def assert_kept(self, value):
        inifile.write(self.file, {"Group": {"key": value}})
        self.assertEqual(inifile.read(self.file), {"Group": {"key": value}})

    def test_keeps_texts(self):
        for value in ("", "a", "Demo|http://127.0.0.1:1/a|", "a, b", "a; b", 'say "x"', "back\\slash", "@at", "Größe"):
            with self.subTest(value):
                self.assert_kept(value)

    def test_keeps_lists(self):
        for value in (["a", "b"], ["a,b", "c"], ["", "a"], ["a", ""], ["a;b", 'c"d', ""]):
            with self.subTest(value):
                self.assert_kept(value)

    def test_reads_an_empty_list_and_a_list_of_one(self):
        self.file.write_text("[Group]\nempty=@Invalid()\none=a\n")
        group = inifile.read(self.file)["Group"]
        self.assertEqual(inifile.as_list(group["empty"]), [])
        self.assertEqual(inifile.as_list(group["one"]), ["a"])

    def test_a_change_leaves_everything_else_as_it_is(self):
        self.file.write_text("[A]\nx=@ByteArray(\\0\\x1)\ny=1\n\n[B]\ny=2\n")
        inifile.change(self.file, "A", {"y": "3", "z": "4"})
        inifile.change(self.file, "C", {"w": "5"})
        self.assertEqual(sorted(filter(None, self.file.read_text().splitlines())),
                         sorted(["[A]", "x=@ByteArray(\\0\\x1)", "y=3", "z=4", "[B]", "y=2", "[C]", "w=5"]))
        self.assertEqual(inifile.read(self.file)["B"], {"y": "2"})


if __name__ == "__main__":
    unittest.main()
