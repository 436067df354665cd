# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the tests in the IDE share: an IDE, a display and a demo server of their own for each test."""

import datetime
import json
import os
import pathlib
import shutil
import sys
import tempfile
import unittest

from demo import DemoServer
from display import VirtualDisplay
from ide import EXAMPLES_DIALOG, Ide
from sandbox import Sandbox
from waiting import wait_until

PROJECT = pathlib.Path(__file__).resolve().parents[2]
BUILD = pathlib.Path(os.environ.get("VARNEL_BUILD_DIR", PROJECT / "build/release"))
SAMPLES = PROJECT / "demo/samples"
LONG = os.environ.get("VARNEL_LONG_TESTS") == "1"

FAULTY = "sketches"  # the sample that has no project file
SAMPLE = {folder.parent.name: json.loads(folder.read_text(encoding="utf-8"))
          for folder in SAMPLES.glob("*/project.json")}
INSTALLABLE = sorted(set(SAMPLE) - {FAULTY})
TITLES = sorted(SAMPLE[path]["title"] for path in INSTALLABLE)


def stored_date(days_ago):
    """A date as the plug-in stores it."""
    return (datetime.date.today() - datetime.timedelta(days_ago)).strftime("%d.%m.%Y")


def archive_route(path):
    return f"/api/v4/projects/{SAMPLE[path]['id']}/repository/archive.tar.gz"


def archived(server):
    """The paths of the samples whose archives were asked for."""
    routes = {archive_route(path): path for path in SAMPLE}
    return sorted(routes[route] for route in server.requests() if route in routes)


class TalkativeIde(Ide):
    """Shows what it logged when something fails."""

    def __exit__(self, kind, *rest):
        if kind:
            print(f"\nthe end of the IDE's log:\n{self.log_tail()}", file=sys.stderr)
        super().__exit__(kind, *rest)


class IdeCase(unittest.TestCase):
    """A test with an empty data location and the demo repository in the installation-wide settings."""

    def setUp(self):
        self.sandbox = self.enterContext(Sandbox())
        self.display = self.enterContext(VirtualDisplay(self.sandbox))
        self.server = self.enterContext(DemoServer(BUILD))
        self.sandbox.install_repositories({"Demo": self.server.url})

    def ide(self, **options):
        return TalkativeIde(BUILD, self.sandbox, self.display, **options)

    def quit(self, ide):
        """Ends the IDE; it must do so without an error, and have had nothing to complain about."""
        self.assertEqual(ide.quit(), 0)
        self.assert_no_complaints(ide)

    def assert_no_complaints(self, ide):
        """Other plug-ins of the IDE complain in categories of their own when it ends amid their start-up, and the IDE
        itself when another one, of another test, ends while it looks for others."""
        complaints = [message for message in ide.messages()
                      if message.level != "debug" and not message.category.startswith("qtc.")
                      and not message.text.startswith("Failed to initialize instances shared memory")]
        self.assertEqual(complaints, [])

    def set_checked(self, days_ago):
        self.sandbox.change_settings("Varnel", UpdatesCheckedDate=[f"Demo|{stored_date(days_ago)}"])

    def set_removed(self, *paths):
        self.sandbox.change_settings("Varnel", Repositories=["|".join(["Demo", self.server.url, *(paths or [""])])])

    def wait_for_installed(self, paths, ide, seconds=60):
        """Waits until exactly these are installed; the IDE must live."""
        def installed():
            ide.do("state")
            return set(self.sandbox.manifests("Demo")) == set(paths)
        wait_until(installed, f"the installation of {sorted(paths)}", seconds)

    def wait_for_list(self, ide):
        """Waits until the repository's list is there, and with it the decision what to update; returns the list."""
        preferences, page = ide.open_options()

        def listed():
            page.find(name="addButton").click()
            wait_until(lambda: ide.message_boxes() or ide.find_all(kind=EXAMPLES_DIALOG, visible=True), "an answer")
            for box in ide.find_all(kind="QMessageBox", visible=True):
                ide.close(box, "OK")
            return ide.find_all(kind=EXAMPLES_DIALOG, visible=True)
        dialog = wait_until(listed, "the repository's list")[0]
        rows = dialog.find(name="examplesListWidget").row_texts()
        ide.close(dialog, "Cancel")
        ide.close(preferences, "Cancel")
        return rows


class InstalledCase(IdeCase):
    """A test that begins where all samples were installed today, by an IDE that has ended."""

    @classmethod
    def setUpClass(cls):
        cls._kept = pathlib.Path(tempfile.mkdtemp(prefix="varnel-ide-kept-", dir="/tmp"))
        cls.addClassCleanup(shutil.rmtree, cls._kept)
        cls._sandbox = cls.enterClassContext(Sandbox())
        with VirtualDisplay(cls._sandbox) as display, DemoServer(BUILD) as server:
            cls._sandbox.install_repositories({"Demo": server.url})
            with TalkativeIde(BUILD, cls._sandbox, display) as ide:
                ide.started()
                wait_until(lambda: set(cls._sandbox.manifests("Demo")) == set(INSTALLABLE), "the installation", 60)
                ide.wait_for_text("zel.varnel.plugin.service", "creating example mainfest")
                if (code := ide.quit()) != 0:
                    raise AssertionError(f"the IDE ended with {code}")
        cls._sandbox.copy_to(cls._kept / "state")

    def setUp(self):
        self.sandbox = self._sandbox
        self.sandbox.restore(self._kept / "state")
        self.display = self.enterContext(VirtualDisplay(self.sandbox))
        self.server = self.enterContext(DemoServer(BUILD))
        self.set_removed()
