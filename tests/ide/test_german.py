# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The plug-in in German, by the IDE's language setting or by the system's language."""

import unittest
import xml.etree.ElementTree

from case import BUILD, PROJECT, IdeCase
from display import VirtualDisplay
from ide import EXAMPLES_DIALOG
from translated import ide_that_speaks
from waiting import wait_until

# Whoever speaks German need not have that locale installed: a list of languages is enough.
GERMAN_SYSTEM = {"LC_ALL": "C.UTF-8", "LANGUAGE": "de_DE:en"}


def translations():
    """{(context, text): German}."""
    root = xml.etree.ElementTree.parse(PROJECT / "translations/Varnel_de.ts").getroot()
    return {(context.findtext("name"), message.findtext("source")): message.findtext("translation")
            for context in root.iter("context") for message in context.iter("message")}


class German(IdeCase):

    def setUp(self):
        super().setUp()
        self.set_checked(0)
        self.german = translations()

    def set_language(self, language):
        # "General/OverrideLanguage" as settings files write it.
        self.sandbox.change_settings("%General", OverrideLanguage=language)

    def ide_with_german(self, display, **environment):
        program = ide_that_speaks("de", BUILD, self.sandbox.root / "ide")
        self.display = display
        return self.ide(program=program, environment=environment)

    def text(self, context, source):
        return self.german[f"Varnel::Internal::{context}", source]

    def check_page(self, ide, suffix):
        preferences, page = ide.open_options()
        self.assertEqual(preferences.text, "Einstellungen")
        self.assertEqual(page.find(name="groupBox").text, self.text("OptionsWidget", "Installed Examples"))
        self.assertEqual(page.find(name="addButton").text, self.text("OptionsWidget", "Add..."))
        self.assertEqual(page.find(name="removeButton").text, self.text("OptionsWidget", "Remove"))
        self.assertEqual(page.find(name="label").text, self.text("OptionsWidget", "Check every"))
        self.assertEqual(preferences.find(kind="QTabBar", visible=True).text,
                         "Ferrona OS " + self.text("VarnelPlugin", "Examples"))
        self.assert_texts_fit(page)
        self.save_screenshot(preferences, f"options-german{suffix}.png")
        return preferences, page

    def check_dialog(self, ide, page, suffix):
        def opened():
            page.find(name="addButton").click()
            wait_until(lambda: ide.message_boxes() or ide.find_all(kind=EXAMPLES_DIALOG, visible=True), "an answer")
            for box in ide.find_all(kind="QMessageBox", visible=True):
                ide.close(box, "OK")
            return ide.find_all(kind=EXAMPLES_DIALOG, visible=True)
        dialog = wait_until(opened, "the selection dialog")[0]
        self.assertEqual(dialog.text, self.text("ExamplesDialog", "Select Examples to Install"))
        self.save_screenshot(dialog, f"dialog-german{suffix}.png")
        self.assert_texts_fit(dialog)
        ide.keyboard("", "Escape")

    def assert_texts_fit(self, parent):
        for kind in ("QLabel", "QPushButton", "QSpinBox", "QComboBox", "QGroupBox"):
            for widget in parent.find_all(kind=kind, visible=True):
                needed = widget.get("minimumSizeHint")
                size = widget.get("size")
                self.assertGreaterEqual(size["width"], needed["width"], widget)
                self.assertGreaterEqual(size["height"], needed["height"], widget)

    def save_screenshot(self, window, name):
        (BUILD / "screenshots").mkdir(exist_ok=True)
        window.screenshot(BUILD / "screenshots" / name)

    def test_is_spoken_by_page_and_dialog(self):
        self.set_language("de")
        with self.ide_with_german(self.display) as ide:
            ide.started()
            _, page = self.check_page(ide, "")
            self.check_dialog(ide, page, "")
            self.quit(ide)
        self.assertNotIn("Failed to load translator", "".join(ide.texts("zel.varnel.plugin")))

    def test_fits_at_double_scale(self):
        self.set_language("de")
        with VirtualDisplay(self.sandbox, (2560, 1600)) as display:
            with self.ide_with_german(display, QT_SCALE_FACTOR="2") as ide:
                ide.started()
                _, page = self.check_page(ide, "-double")
                self.check_dialog(ide, page, "-double")
                self.quit(ide)

    def test_is_spoken_by_the_systems_language_without_an_override(self):
        with self.ide_with_german(self.display, **GERMAN_SYSTEM) as ide:
            ide.started()
            self.check_page(ide, "-by-system")
            self.quit(ide)

    def test_the_override_beats_the_systems_language(self):
        self.set_language("en")
        with self.ide_with_german(self.display, **GERMAN_SYSTEM) as ide:
            ide.started()
            preferences, page = ide.open_options()
            self.assertEqual(preferences.find(kind="QTabBar", visible=True).text, "Ferrona OS Examples")
            self.assertEqual(page.find(name="groupBox").text, "Installed Examples")
            self.assertEqual(page.find(name="removeButton").text, "Remove")
            self.quit(ide)


if __name__ == "__main__":
    unittest.main()
