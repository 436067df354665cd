# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the plug-in writes to the IDE's log, and what the IDE says of the plug-in."""

import subprocess
import unittest

from case import BUILD, INSTALLABLE, IdeCase
from ide import LOG_EVERYTHING

CATEGORIES = {"zel.varnel.plugin", "zel.varnel.plugin.api", "zel.varnel.plugin.archive", "zel.varnel.plugin.service"}


class Log(IdeCase):

    def categories_with(self, rules):
        """The plug-in's categories that a whole update writes to under these rules."""
        with self.ide(rules=rules) as ide:
            ide.started()
            self.wait_for_installed(INSTALLABLE, ide)
            self.quit(ide)
        return {message.category for message in ide.messages() if message.category.startswith("zel.")}

    def test_is_silent_unless_asked(self):
        self.assertEqual(self.categories_with(""), set())

    def test_is_complete_when_asked(self):
        self.assertEqual(self.categories_with(LOG_EVERYTHING), CATEGORIES)

    def test_has_one_category_alone_when_asked(self):
        self.assertEqual(self.categories_with("zel.varnel.plugin.service.debug=true"), {"zel.varnel.plugin.service"})


class PluginList(IdeCase):

    def test_names_the_plug_in_and_its_version(self):
        output = subprocess.run(
            ["qtcreator", "-version", "-pluginpath", str(BUILD / "plugins"), *self.sandbox.settings_arguments()],
            env=self.sandbox.environment() | self.display.environment(), check=True, capture_output=True, text=True).stdout
        self.assertRegex(output, r"(?m)^  varnel 16\.0\.0 .*Ferrona OS")
        self.assertRegex(output, r"(?m)^  ferronaos 16\.0\.0 ")

    def test_a_missing_dependency_keeps_the_plug_in_from_loading(self):
        with self.ide(arguments=["-noload", "ferronaos"]) as ide:
            ide.started()
            self.quit(ide)
        self.assertEqual([message for message in ide.messages() if message.category == "zel.varnel.plugin.api"], [])


if __name__ == "__main__":
    unittest.main()
