# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What an example is installed for: a click on its tile opens the project, and the IDE understands it."""

import unittest

from case import SAMPLE, InstalledCase
from waiting import wait_until

# One project of each kind that needs no more than what the IDE's tests need, and a source file of it.
SOURCES = {"word-count": "wordcounter.cpp", "stopwatch": "stopwatch.cpp", "unit-converter": "converterwidget.cpp"}


class Projects(InstalledCase):

    def test_each_example_opens_and_is_understood(self):
        with self.ide() as ide:
            ide.started()
            for path, source in SOURCES.items():
                with self.subTest(path):
                    self.open_from_welcome_screen(ide, path)
                    ide.wait_for(kind="QPushButton", text="Configure Project").click()
                    ide.do("mode", id="Edit")
                    wait_until(lambda source=source: source in self.project_tree(ide), f"{source} in the tree", 60)
            self.assertEqual(ide.quit(), 0)

    def open_from_welcome_screen(self, ide, path):
        title = SAMPLE[path]["title"]
        ide.show_examples("Demo")
        wait_until(lambda: title in ide.tiles(), "the tile")
        ide.do("click tile", title=title)
        # The IDE takes the file to open for one in the root directory, says so, and goes on.
        box = ide.wait_for(kind="QMessageBox")
        self.assertIn("Could not open", box.text)
        ide.close(box, "OK")

    @staticmethod
    def project_tree(ide):
        trees = ide.find_all(name="projectTreeView", visible=True)
        return [text for tree in trees for text in tree.texts()]


if __name__ == "__main__":
    unittest.main()
