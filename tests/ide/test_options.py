# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The page in the preferences: adding and removing examples, and when updates are looked for."""

import os
import time
import unittest

import inifile
from case import BUILD, INSTALLABLE, SAMPLE, IdeCase, InstalledCase, archived
from ide import EXAMPLES_DIALOG
from waiting import wait_until

UPDATE_COLOUR = "#e2b2b6"
SPIN_BOX = "timeoutSpinBox"


def title(path):
    return SAMPLE[path]["title"]


class PageCase:
    """The page's widgets, by what a user does with them."""

    INSTALLED = 0

    def open_page(self, ide):
        self.preferences, self.page = ide.open_options(self.INSTALLED)
        return self.page

    def widget(self, name):
        return self.page.find(name=name)

    def rows(self):
        return {row["text"]: row for row in self.widget("examplesListWidget").rows()}

    def open_dialog(self, ide):
        """The dialog needs the repository's list, which may still be on its way."""
        def opened():
            self.widget("addButton").click()
            wait_until(lambda: ide.message_boxes() or ide.find_all(kind=EXAMPLES_DIALOG, visible=True), "an answer")
            for box in ide.find_all(kind="QMessageBox", visible=True):
                ide.close(box, "OK")
            return ide.find_all(kind=EXAMPLES_DIALOG, visible=True)
        return wait_until(opened, "the selection dialog")[0]

    def add(self, ide, *paths):
        dialog = self.open_dialog(ide)
        dialog.find(name="examplesListWidget").select(*paths)
        ide.close(dialog, "OK")
        wait_until(lambda: set(paths) <= set(self.rows()), f"the rows {paths}")

    def remove(self, *paths):
        wait_until(lambda: set(paths) <= set(self.rows()), f"the rows {paths}")
        self.widget("examplesListWidget").select(*paths)
        self.widget("removeButton").click()

    def press(self, button):
        self.preferences.find(kind="QPushButton", text=button, visible=True).click()

    def wait_for_tiles(self, ide, *paths):
        titles = sorted(map(title, paths))
        wait_until(lambda: sorted(ide.tiles()) == titles, f"the tiles {titles}")

    def stored_removed(self):
        entry = inifile.as_list(self.sandbox.settings("Varnel")["Repositories"])[0]
        return sorted(filter(None, entry.split("|")[2:]))


class EmptyPage(PageCase, IdeCase):
    """Nothing is installed, and nothing is due."""

    def setUp(self):
        super().setUp()
        self.set_checked(0)

    def test_added_examples_reach_the_welcome_screen_and_removed_ones_leave_it(self):
        with self.ide() as ide:
            ide.started()
            ide.main_window().call("showMaximized")
            ide.show_examples("Demo")
            self.open_page(ide)
            self.assertEqual(self.rows(), {})

            self.add(ide, "maps", "word-count")
            self.assertEqual(sorted(self.rows()), ["maps", "word-count"])
            self.assertEqual(archived(self.server), [])
            self.press("Apply")
            self.wait_for_installed(["maps", "word-count"], ide)
            self.wait_for_tiles(ide, "maps", "word-count")
            ide.close(self.preferences, "Cancel")

            self.open_page(ide)
            self.remove("maps")
            self.assertEqual(sorted(self.rows()), ["word-count"])
            self.assertIn("maps", self.sandbox.manifests("Demo"))
            self.press("Apply")
            self.wait_for_installed(["word-count"], ide)
            self.wait_for_tiles(ide, "word-count")
            ide.close(self.preferences, "Cancel")
            self.quit(ide)
        self.assertFalse((self.sandbox.repository("Demo") / "maps").exists())
        self.assertEqual(self.stored_removed(), ["maps"])

    def test_a_removed_example_can_be_added_again(self):
        self.set_removed("maps")
        with self.ide() as ide:
            ide.started()
            self.open_page(ide)
            self.add(ide, "maps")
            ide.close(self.preferences, "OK")
            self.wait_for_installed(["maps"], ide)
            self.quit(ide)
        self.assertEqual(self.stored_removed(), [])

    def test_cancelling_the_dialog_adds_nothing(self):
        with self.ide() as ide:
            ide.started()
            self.open_page(ide)
            dialog = self.open_dialog(ide)
            dialog.find(name="examplesListWidget").select("maps")
            ide.close(dialog, "Cancel")
            self.assertEqual(self.rows(), {})
            ide.close(self.preferences, "OK")
            self.quit(ide)
        self.assertEqual(archived(self.server), [])

    def test_all_can_be_done_from_the_keyboard(self):
        with self.ide() as ide:
            ide.started()
            self.open_page(ide)
            ide.close(self.open_dialog(ide), "Cancel")  # the list has come
            self.widget("repositoryComboBox").call("setFocus")
            wait_until(lambda: ide.focus() == self.widget("repositoryComboBox"), "the first focus")
            order = [self.next_focus(ide) for _ in range(5)]
            self.assertEqual(order, ["examplesListWidget", "filterLineEdit", "addButton", "removeButton", SPIN_BOX])

            ide.keyboard("", "Shift+Tab", "Shift+Tab", "Space")
            dialog = ide.wait_for(kind=EXAMPLES_DIALOG)
            wait_until(lambda: ide.focus() == dialog.find(name="examplesListWidget"), "the focus in the dialog")
            ide.keyboard("", "Down", "Shift+Down")
            self.assertEqual([row["text"] for row in dialog.find(name="examplesListWidget").rows() if row["selected"]],
                             sorted(SAMPLE)[1:3])
            ide.keyboard("", "Return")
            wait_until(lambda: sorted(self.rows()) == sorted(SAMPLE)[1:3], "the rows")
            wait_until(lambda: ide.focus() == self.widget("addButton"), "the end of the dialog")
            while ide.focus().text != "OK":
                self.next_focus(ide)
            ide.keyboard("", "Space")
            wait_until(lambda: not self.preferences.is_visible(), "the end of the preferences")
            self.wait_for_installed(sorted(SAMPLE)[1:3], ide)
            self.quit(ide)

    def next_focus(self, ide):
        before = ide.focus()
        ide.keyboard("", "Tab")
        wait_until(lambda: ide.focus() and ide.focus() != before, "the next focus")
        return ide.focus().name

    def test_without_a_connection_there_is_nothing_to_add(self):
        self.server.close()
        with self.ide() as ide:
            ide.started()
            ide.wait_for_text("zel.varnel.plugin.api", "Network error")
            self.open_page(ide)
            self.widget("addButton").click()
            wait_until(ide.message_boxes, "a message box")
            self.assertEqual(ide.message_boxes(), [
                ("Examples Not Found", "Check your online connection and try again later!")])
            self.quit(ide)


class FilledPage(PageCase, InstalledCase):
    """All samples are installed, and nothing is due."""

    INSTALLED = len(INSTALLABLE)

    def test_lists_what_is_installed_as_up_to_date(self):
        with self.ide() as ide:
            ide.started()
            self.open_page(ide)
            rows = self.rows()
            self.assertEqual(list(rows), INSTALLABLE)
            for path, row in rows.items():
                self.assertIn(">Updated<", row["toolTip"])
                self.assertIn(str(self.sandbox.repository("Demo") / path), row["toolTip"])
                self.assertIsNone(row["background"])
            self.assertEqual([item["text"] for item in self.widget("repositoryComboBox").items()], ["Demo"])
            self.quit(ide)

    def test_the_filter_hides_what_does_not_contain_its_text(self):
        with self.ide() as ide:
            ide.started()
            self.open_page(ide)
            self.widget("filterLineEdit").call("setFocus")
            wait_until(lambda: ide.focus() == self.widget("filterLineEdit"), "the focus")
            ide.keyboard("MAPS")
            wait_until(lambda: len(self.widget("examplesListWidget").row_texts(visible_only=True)) == 2, "the filter")
            self.assertEqual(self.widget("examplesListWidget").row_texts(visible_only=True), ["maps", "maps-offline"])
            self.quit(ide)

    def test_return_in_a_filter_field_presses_no_button(self):
        with self.ide() as ide:
            ide.started()
            self.open_page(ide)
            self.remove("maps")
            self.widget("filterLineEdit").call("setFocus")
            wait_until(lambda: ide.focus() == self.widget("filterLineEdit"), "the focus")
            ide.keyboard("word", "Return", "Enter")
            wait_until(lambda: self.widget("filterLineEdit").text == "word", "the text")
            self.assertTrue(self.preferences.is_visible())
            self.assertIn("maps", self.sandbox.manifests("Demo"))

            dialog = self.open_dialog(ide)
            dialog.find(name="filterLineEdit").call("setFocus")
            wait_until(lambda: ide.focus() == dialog.find(name="filterLineEdit"), "the focus")
            ide.keyboard("maps", "Return")
            wait_until(lambda: dialog.find(name="filterLineEdit").text == "maps", "the text")
            self.assertTrue(dialog.is_visible())
            ide.close(dialog, "Cancel")
            ide.close(self.preferences, "Cancel")
            self.quit(ide)
        self.assertEqual(sorted(self.sandbox.manifests("Demo")), INSTALLABLE)

    def test_cancel_forgets_and_ok_keeps_what_was_chosen(self):
        with self.ide() as ide:
            ide.started()
            self.open_page(ide)
            self.widget(SPIN_BOX).set("value", 7)
            self.remove("maps")
            ide.close(self.preferences, "Cancel")
            self.open_page(ide)
            self.assertEqual(self.widget(SPIN_BOX).get("value"), 1)
            self.assertIn("maps", self.rows())

            self.widget(SPIN_BOX).set("value", 7)
            ide.close(self.preferences, "OK")
            self.open_page(ide)
            self.assertEqual(self.widget(SPIN_BOX).get("value"), 7)
            ide.close(self.preferences, "Cancel")
            self.quit(ide)
        self.assertEqual(self.sandbox.settings("Varnel")["UpdatesCheckTimeoutDays"], "7")
        self.assertEqual(sorted(self.sandbox.manifests("Demo")), INSTALLABLE)
        self.assertEqual(archived(self.server), [])

    def test_removing_needs_a_selection(self):
        with self.ide() as ide:
            ide.started()
            self.open_page(ide)
            self.widget("removeButton").click()
            wait_until(ide.message_boxes, "a message box")
            self.assertEqual(ide.message_boxes(), [(
                "Examples Not Selected",
                "Select examples to remove, press Remove button, then press Apply button to apply changes.")])
            ide.close(ide.wait_for(kind="QMessageBox"), "OK")
            self.assertEqual(sorted(self.rows()), INSTALLABLE)
            self.quit(ide)

    def test_the_menu_opens_the_folders_of_all_selected_rows(self):
        with self.ide() as ide:
            ide.started()
            ide.do("record urls")
            self.open_page(ide)
            examples = self.widget("examplesListWidget")
            examples.select("maps", "stopwatch", "word-count")
            examples.context_menu()
            self.assertEqual(wait_until(lambda: ide.do("popup"), "the menu"), ["Open location..."])
            ide.do("choose", text="Open location...")
            wait_until(lambda: len(ide.do("record urls")) == 3, "three opened folders")
            folder = self.sandbox.repository("Demo")
            self.assertEqual(sorted(ide.do("record urls")),
                             [f"file://{folder / path}" for path in ("maps", "stopwatch", "word-count")])
            self.quit(ide)

    def let_an_hour_pass(self):
        """Since the installation: what is not a whole second newer is no update."""
        an_hour_ago = time.time() - 3600
        for manifest in self.sandbox.manifests("Demo").values():
            os.utime(manifest, (an_hour_ago, an_hour_ago))

    def test_a_newer_version_online_is_marked_until_it_is_installed(self):
        self.let_an_hour_pass()
        self.server.push("maps")
        with self.ide() as ide:
            ide.started()
            self.open_page(ide)
            ide.close(self.open_dialog(ide), "Cancel")  # the list has come
            ide.close(self.preferences, "Cancel")
            self.open_page(ide)
            marked = [path for path, row in self.rows().items() if row["background"] == UPDATE_COLOUR]
            self.assertEqual(marked, ["maps"])
            self.assertIn(">Update available<", self.rows()["maps"]["toolTip"])
            self.quit(ide)
        self.assertEqual(archived(self.server), [])

        self.set_checked(2)
        with self.ide() as ide:
            ide.started()
            self.open_page(ide)
            wait_until(lambda: "maps" in archived(self.server), "the download")
            wait_until(lambda: [row["background"] for row in self.rows().values()] == [None] * len(INSTALLABLE),
                       "the end of the mark")
            self.quit(ide)

    def test_is_shown_in_the_light_and_the_dark_theme(self):
        self.let_an_hour_pass()
        self.server.push("maps")
        lightness = {}
        for theme in ("light-2024", "dark-2024"):
            with self.subTest(theme), self.ide(arguments=["-theme", theme]) as ide:
                ide.started()
                self.open_page(ide)
                dialog = self.open_dialog(ide)
                dialog_pixels = self.take_screenshot(dialog, f"dialog-{theme}")
                ide.close(dialog, "Cancel")
                ide.close(self.preferences, "Cancel")
                self.open_page(ide)
                page_pixels = self.take_screenshot(self.preferences, f"options-{theme}")
                self.assertGreater(page_pixels.count(bytes.fromhex(UPDATE_COLOUR[1:])), 500)  # the marked row
                lightness[theme] = dialog_pixels.lightness(), page_pixels.lightness()
                self.quit(ide)
        self.assertGreater(min(lightness["light-2024"]), 160)
        self.assertLess(max(lightness["dark-2024"]), 96)

    def take_screenshot(self, window, name):
        """Saves it for people and returns its pixels."""
        folder = BUILD / "screenshots"
        folder.mkdir(exist_ok=True)
        window.screenshot(folder / f"{name}.png")
        plain = self.sandbox.root / f"{name}.ppm"
        window.screenshot(plain)
        return Pixels(plain)


class Pixels:
    """Of a picture in the plain format of three bytes a pixel."""

    def __init__(self, file):
        magic, _, depth, self._bytes = file.read_bytes().split(b"\n", 3)
        if (magic, depth) != (b"P6", b"255"):
            raise ValueError(f"{file} is no such picture")

    def count(self, colour):
        return sum(self._bytes[i:i + 3] == colour for i in range(0, len(self._bytes), 3))

    def lightness(self):
        """The mean, from 0 to 255."""
        return sum(self._bytes) / len(self._bytes)


if __name__ == "__main__":
    unittest.main()
