# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Later starts of the IDE: what is downloaded again, and what is not."""

import shutil
import unittest

from case import FAULTY, INSTALLABLE, SAMPLE, InstalledCase, archived, stored_date
from waiting import wait_until

SERVICE = "zel.varnel.plugin.service"


class LaterStart(InstalledCase):

    def written(self, path):
        return self.sandbox.manifests("Demo")[path].stat().st_mtime_ns

    def test_nothing_is_downloaded_again_on_the_same_day(self):
        with self.ide() as ide:
            ide.started()
            self.assertEqual(self.wait_for_list(ide), sorted(SAMPLE))
            self.quit(ide)
        self.assertEqual(archived(self.server), [])
        self.assertEqual(sorted(self.sandbox.manifests("Demo")), INSTALLABLE)

    def test_only_the_project_that_changed_is_downloaded_when_due(self):
        self.set_checked(2)
        self.set_removed(FAULTY)  # it is never there, so it would be downloaded each time
        self.server.push("word-count")
        before = {path: self.written(path) for path in INSTALLABLE}
        with self.ide() as ide:
            ide.started()
            wait_until(lambda: self.written("word-count") != before["word-count"], "the new copy")
            self.quit(ide)
        self.assertEqual(archived(self.server), ["word-count"])
        changed = [path for path in INSTALLABLE if self.written(path) != before[path]]
        self.assertEqual(changed, ["word-count"])
        self.assertEqual(self.sandbox.settings("Varnel")["UpdatesCheckedDate"], f"Demo|{stored_date(0)}")

    def test_a_deleted_example_comes_back_when_due(self):
        self.set_checked(2)
        self.set_removed(FAULTY)
        shutil.rmtree(self.sandbox.repository("Demo") / "maps")
        with self.ide() as ide:
            ide.started()
            self.wait_for_installed(INSTALLABLE, ide)
            self.quit(ide)
        self.assertEqual(archived(self.server), ["maps"])

    def test_a_removed_example_does_not_come_back(self):
        self.set_checked(2)
        self.set_removed(FAULTY, "maps")
        shutil.rmtree(self.sandbox.repository("Demo") / "maps")
        with self.ide() as ide:
            ide.started()
            ide.wait_for_text(SERVICE, f"Updating examples: {len(SAMPLE)}")
            self.wait_for_list(ide)
            self.quit(ide)
        self.assertEqual(archived(self.server), [])
        self.assertNotIn("maps", self.sandbox.manifests("Demo"))
        self.assertIn('Skip example: "Maps"', ide.texts(SERVICE))

    def test_without_automatic_updates_only_the_list_is_fetched(self):
        self.set_checked(400)
        self.sandbox.change_settings("Varnel", UpdatesCheckTimeoutDays=0)
        shutil.rmtree(self.sandbox.repository("Demo") / "maps")
        with self.ide() as ide:
            ide.started()
            ide.wait_for_text(SERVICE, "Automatic updates disabled")
            self.assertEqual(self.wait_for_list(ide), sorted(SAMPLE))
            self.quit(ide)
        self.assertEqual(archived(self.server), [])
        self.assertEqual(self.sandbox.settings("Varnel")["UpdatesCheckedDate"], f"Demo|{stored_date(400)}")

    def test_a_server_that_is_not_there_harms_nothing(self):
        self.set_checked(2)
        self.server.close()
        with self.ide() as ide:
            ide.started()
            ide.wait_for_text("zel.varnel.plugin.api", "Network error")
            ide.show_examples("Demo")
            wait_until(lambda: len(ide.tiles()) == len(INSTALLABLE), "the tiles")
            self.quit(ide)
        self.assertEqual(sorted(self.sandbox.manifests("Demo")), INSTALLABLE)

    def test_the_watchdog_tries_again_until_the_server_is_there(self):
        self.set_checked(2)
        self.sandbox.change_settings("Varnel", ServiceRestartTimeoutSeconds=1)
        shutil.rmtree(self.sandbox.repository("Demo") / "maps")
        self.server.answer("/api/v4/groups", b"{}", status=503, content_type="application/json")
        with self.ide() as ide:
            ide.started()
            ide.wait_for_text(SERVICE, "API client is not ready - restarting")
            self.server.restore()
            self.wait_for_installed(INSTALLABLE, ide)
            self.quit(ide)


if __name__ == "__main__":
    unittest.main()
