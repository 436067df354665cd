# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Many due examples at the start of a complete IDE, which at the same time looks for the documentation of a Qt
version: its main thread then waits for jobs on the pool that it shares with everybody."""

import json
import shutil
import time
import unittest
import xml.etree.ElementTree

from case import BUILD, IdeCase
from demo import DemoServer

COUNT = 50
UNRESPONSIVE_SECONDS = 5


class ManyExamples(IdeCase):

    def setUp(self):
        super().setUp()
        folder = self.sandbox.root / "samples"
        for number in range(COUNT):
            self.add_sample(folder / f"sample-{number}", number)
        self.server = self.enterContext(DemoServer(BUILD, folder))
        self.sandbox.install_repositories({"Demo": self.server.url})

    @staticmethod
    def add_sample(folder, number):
        (folder / "files").mkdir(parents=True)
        (folder / "files/CMakeLists.txt").write_text("cmake_minimum_required(VERSION 3.16)\nproject(sample)\n")
        (folder / "files/main.cpp").write_text("int main() { return 0; }\n")
        (folder / "project.json").write_text(json.dumps({
            "id": 1000 + number, "title": f"Sample {number}", "branch": "main", "created": "2024-01-01T00:00:00Z",
            "commit": "2024-01-01T00:00:00Z", "activity": "2024-01-01T00:00:00Z",
            "avatar": {"text": f"{number}", "colour": "#2f855a"}}))

    def known_qt_versions(self):
        root = xml.etree.ElementTree.parse(self.sandbox.root / "user/QtProject/qtcreator/qtversion.xml")
        return [value.text for value in root.iter("value") if value.get("key") == "QMakePath"]

    def test_a_complete_ide_installs_them_and_stays_responsive(self):
        paths = [f"sample-{number}" for number in range(COUNT)]
        for _ in range(2):  # in the second start a Qt version is known from the beginning
            with self.ide() as ide:
                ide.started()
                self.assert_complete(ide)
                longest = self.longest_answer(ide, paths)
                self.quit(ide)
            self.assertLess(longest, UNRESPONSIVE_SECONDS)
            self.assertEqual(sorted(self.sandbox.manifests("Demo")), sorted(paths))
            self.assertNotEqual(self.known_qt_versions(), [])
            self.make_all_due()

    def assert_complete(self, ide):
        plugins = ide.do("plugins")
        self.assertEqual({name: trouble for name, trouble in plugins.items() if trouble}, {})
        self.assertLessEqual({"projectexplorer", "qtsupport", "welcome", "varnel"}, set(plugins))

    def longest_answer(self, ide, paths):
        """How long the IDE's main thread was busy at most until all are installed."""
        longest = 0
        deadline = time.monotonic() + 120
        while set(self.sandbox.manifests("Demo")) != set(paths):
            before = time.monotonic()
            ide.do("state")
            longest = max(longest, time.monotonic() - before)
            self.assertLess(before, deadline, "the examples are not installed")
        return longest

    def make_all_due(self):
        self.set_checked(10)
        shutil.rmtree(self.sandbox.repository("Demo"))


if __name__ == "__main__":
    unittest.main()
