# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the command that shows the plug-in prints, and how it ends."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

from case import BUILD, FAULTY, INSTALLABLE, PROJECT, SAMPLE

SCRIPT = PROJECT / "ide/harness/show.py"


class Show(unittest.TestCase):

    def show(self, *arguments):
        self.out = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        return subprocess.run(
            [sys.executable, str(SCRIPT), "--headless", "--build-dir", str(BUILD), "--out", str(self.out), *arguments],
            capture_output=True, text=True, check=False)

    def test_prints_a_table_and_saves_screenshots(self):
        result = self.show()
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        rows = {line.split()[0]: line for line in result.stdout.splitlines() if line}
        for path in INSTALLABLE:
            self.assertRegex(rows[path], rf"{SAMPLE[path]['title']} +installed +{'no' if path == 'stopwatch' else 'yes'}$")
        self.assertRegex(rows[FAULTY], r"failed: .*Project file not found +no$")
        self.assertEqual(sorted(file.name for file in self.out.iterdir()), ["dialog.png", "options.png", "welcome.png"])

    def test_says_in_one_sentence_that_a_repository_is_not_there(self):
        result = self.show("--group", "Nothing=http://127.0.0.1:1/samples", "--patience", "3")
        self.assertEqual(result.returncode, 1)
        self.assertRegex(result.stderr, r"^varnel: error: the repository Nothing did not come up: [^\n]*\n$")
        self.assertEqual(result.stdout, "")


if __name__ == "__main__":
    unittest.main()
