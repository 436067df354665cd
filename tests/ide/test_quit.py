# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Ending the IDE in the middle of an update: it ends soon and without an error, whatever goes on."""

import io
import pathlib
import tarfile
import time
import unittest

from case import INSTALLABLE, LONG, IdeCase, archive_route
from ide import EXAMPLES_DIALOG
from waiting import wait_until

SERVICE = "zel.varnel.plugin.service"
TIMES = 20 if LONG else 3
FEWER_TIMES = 20 if LONG else 1
SECONDS = 3


def archive(path, files=0, size=0):
    """An archive with many small files, or one that takes long to read."""
    top = f"{path}-main-{'0' * 40}"
    buffer = io.BytesIO()
    with tarfile.open(fileobj=buffer, mode="w:gz", compresslevel=1) as tar:
        def add(name, content):
            entry = tarfile.TarInfo(f"{top}/{name}")
            entry.size = len(content)
            tar.addfile(entry, io.BytesIO(content))
        add("CMakeLists.txt", b"project(big)\n")
        for number in range(files):
            add(f"{number % 100}/{number}.txt", b"nothing to see here\n")
        if size:
            add("zeros", bytes(size))
    return buffer.getvalue()


class Missed(Exception):
    """What was to be interrupted is over already."""


class Quit(IdeCase):

    @classmethod
    def setUpClass(cls):
        cls.many_files = archive("stopwatch", files=20_000)
        cls.long_to_read = archive("stopwatch", size=1_000_000_000)

    def repeatedly(self, stage, times=TIMES, limit=SECONDS):
        """Runs a stage, which returns when its moment to quit has come, in fresh directories each time."""
        missed = 0
        while times > 0:
            with self.ide(rules=f"{SERVICE}=true") as ide:
                try:
                    stage(ide)
                    times -= 1
                except Missed:
                    missed += 1
                    self.assertLess(missed, TIMES, "the moment to quit is too short to be met")
                self.quit_soon(ide, limit)
            self.doCleanups()
            self.setUp()

    def quit_soon(self, ide, limit):
        start = time.monotonic()
        ide.do("quit")
        code = ide.ended()
        seconds = time.monotonic() - start
        self.assertEqual(code, 0)
        self.assertLessEqual(seconds, limit)
        self.assert_no_complaints(ide)
        self.assertEqual(list(self.sandbox.temporary.glob("*.tar.gz")), [])
        self.assertEqual(self.processes_left(), [])
        stored = self.sandbox.settings("Varnel").get("Repositories")
        self.assertIn(stored, (None, f"Demo|{self.server.url}|"))

    def processes_left(self):
        """Unpacking processes name the files that they work on."""
        left = []
        for file in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
            try:
                arguments = file.read_bytes()
            except OSError:
                continue  # it has just ended
            if b".tar.gz" in arguments and bytes(self.sandbox.root) in arguments:
                left.append(arguments)
        return left

    @staticmethod
    def require(is_the_moment):
        if not is_the_moment:
            raise Missed

    def wait_for_held(self, route):
        wait_until(lambda: self.server.held(route) > 0, f"a request of {route}")

    def held_at(self, route):
        def stage(ide):
            self.server.hold(route)
            ide.started()
            self.wait_for_held(route)
        return stage

    def serve_big(self, content):
        self.server.answer(archive_route("stopwatch"), content)

    def copies(self):
        return list(self.sandbox.repository("Demo").glob("stopwatch-main-*"))

    def test_while_the_group_is_searched(self):
        self.repeatedly(self.held_at("/api/v4/groups"))

    def test_while_the_projects_are_listed(self):
        self.repeatedly(self.held_at("/api/v4/groups/*"))

    def test_while_archives_are_downloaded(self):
        self.repeatedly(self.held_at("/api/v4/projects/*"))

    def test_while_an_archive_is_half_received(self):
        def stage(ide):
            self.server.fault("/api/v4/projects/*", cut=100, end="stall")
            ide.started()
            wait_until(lambda: len(self.server.requests("/api/v4/projects/*")) > 1, "requests for archives")
        self.repeatedly(stage, FEWER_TIMES)

    def test_while_pictures_are_downloaded(self):
        self.repeatedly(self.held_at("/uploads/*"))

    def test_while_an_archive_is_read_before_it_is_unpacked(self):
        def stage(ide):
            self.serve_big(self.long_to_read)
            ide.started()
            ide.wait_for_text(SERVICE, 'Unpacking example: Stopwatch')
            self.require(not self.copies())
        self.repeatedly(stage, FEWER_TIMES)

    def test_while_an_archive_is_unpacked(self):
        def stage(ide):
            self.serve_big(self.many_files)
            ide.started()
            wait_until(self.copies, "the beginning of the unpacking")
            self.require(self.processes_left())
        self.repeatedly(stage)

    def test_while_a_project_is_looked_through(self):
        def stage(ide):
            self.serve_big(self.many_files)
            ide.started()
            wait_until(
                lambda: list(self.sandbox.repository("Demo").glob("stopwatch@*")),
                "the unpacked project under its new name")
            self.require("stopwatch" not in self.sandbox.manifests("Demo"))
        self.repeatedly(stage)

    def test_when_the_first_example_is_there(self):
        def stage(ide):
            ide.started()
            wait_until(lambda: self.sandbox.manifests("Demo"), "the first example")
        self.repeatedly(stage, FEWER_TIMES)

    def test_while_the_ide_still_starts(self):
        def stage(ide):
            ide.connect()
        self.repeatedly(stage, FEWER_TIMES, limit=20)  # the IDE first starts to its end

    def test_with_additions_in_the_preferences_which_the_ide_applies_then(self):
        def stage(ide):
            self.set_checked(0)
            ide.started()
            self.wait_for_list(ide)
            _, page = ide.open_options()
            page.find(name="addButton").click()
            dialog = ide.wait_for(kind=EXAMPLES_DIALOG)
            dialog.find(name="examplesListWidget").select("maps", "word-count")
            ide.close(dialog, "OK")
        self.repeatedly(stage, FEWER_TIMES)

    def test_with_the_preferences_and_the_selection_dialog_open(self):
        def stage(ide):
            ide.started()
            self.wait_for_installed(INSTALLABLE, ide)
            _, page = ide.open_options()
            page.find(name="addButton").click()
            ide.wait_for(kind=EXAMPLES_DIALOG)
        self.repeatedly(stage, FEWER_TIMES)


if __name__ == "__main__":
    unittest.main()
