# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The settings for all users that are made from the repositories that the integrator names."""

import pathlib
import subprocess
import tempfile
import unittest

import inifile

PROJECT = pathlib.Path(__file__).resolve().parents[1]
ADDRESS = "https://gitlab.example.org/samples"


class Repositories(unittest.TestCase):

    def setUp(self):
        self.build = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))

    def configure(self, repositories):
        return subprocess.run(["cmake", "-S", PROJECT, "-B", self.build, "-G", "Ninja", "-D", "VARNEL_BUILD_TESTS=OFF",
                               "-D", f"VARNEL_REPOSITORIES={repositories}"], capture_output=True, text=True)

    def settings(self, repositories):
        configured = self.configure(repositories)
        self.assertEqual(configured.returncode, 0, configured.stderr)
        return inifile.read(self.build / "packaging/repositories.ini")

    def test_none_gives_no_settings(self):
        self.assertEqual(self.settings(""), {})

    def test_one_gives_its_entry_and_its_collection(self):
        self.assertEqual(self.settings(f"My Samples={ADDRESS}"), {
            "Help": {"InstalledExamples": "My Samples|.|."},
            "Varnel": {"Repositories": f"My Samples|{ADDRESS}|"}})

    def test_several_keep_their_order(self):
        self.assertEqual(self.settings(f"B={ADDRESS}/b;Ä={ADDRESS}/a"), {
            "Help": {"InstalledExamples": ["B|.|.", "Ä|.|."]},
            "Varnel": {"Repositories": [f"B|{ADDRESS}/b|", f"Ä|{ADDRESS}/a|"]}})

    def test_what_the_settings_would_stumble_over_is_refused(self):
        for repository in ("My Samples", f"A|B={ADDRESS}", f'A"={ADDRESS}', f"A,B={ADDRESS}", "A=ftp://example.org/a",
                           f"A={ADDRESS}|"):
            with self.subTest(repository):
                self.assertIn("is not NAME=URL", " ".join(self.configure(repository).stderr.split()))


if __name__ == "__main__":
    unittest.main()
