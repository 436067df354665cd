# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Installations one after the other into one directory: what a hostile archive, or a full disk, leaves for the next."""

import os
import resource
import signal
import subprocess
import tarfile
import unittest
import xml.etree.ElementTree

from checkcase import PATIENCE, CheckCase, archive, archive_route, entry

NUMBERS = {"hello-qml": 101, "maps": 106}
OTHER = {"hello-qml": "maps", "maps": "hello-qml"}


def link(path, target):
    return entry(path, tarfile.SYMTYPE, str(target))


class Kinds:
    """Ways to be an archive of the project @p path, of a server that wants to write into @p home."""

    def __init__(self, home):
        self.home = home

    @staticmethod
    def honest(path):
        return f"{path}-main-1/CMakeLists.txt", f"{path}-main-1/main.cpp"

    def plants_links(self, path):
        top = f"{path}-main-1/"
        return (*self.honest(path), link(top + "l", self.home), link(top + "examples-manifest.xml", self.home / "canary"),
                link(top + "example-icon.png", self.home / "evil"))

    def writes_where_a_link_was(self, path):
        return *self.honest(path), f"{path}-main-1/l/canary"

    def stops_half_way(self, path):
        return *self.honest(path), link(f"{path}-main-1/l", self.home), entry(
            f"{path}-main-1/h", tarfile.LNKTYPE, f"{path}-main-1/later")

    def has_no_top_directory(self, _):
        return "loose/CMakeLists.txt", link("loose/l", "../free"), "free"

    def takes_the_others_directory(self, path):
        return f"{OTHER[path]}/CMakeLists.txt", link(f"{OTHER[path]}/l", self.home)

    def is_called_like_the_others_copy(self, path):
        return f"{OTHER[path]}-main-1/CMakeLists.txt", link(f"{OTHER[path]}-main-1/l", self.home)

    def all(self):
        return [self.honest, self.plants_links, self.writes_where_a_link_was, self.stops_half_way,
                self.has_no_top_directory, self.takes_the_others_directory, self.is_called_like_the_others_copy]


def each_after_each(items):
    """A row in which each item follows each other, and itself, once."""
    follows = {index: list(range(len(items))) for index in range(len(items))}
    path, row = [0], []
    while path:
        if follows[path[-1]]:
            path.append(follows[path[-1]].pop())
        else:
            row.append(items[path.pop()])
    return row


class Sequences(CheckCase):
    def setUp(self):
        super().setUp()
        self.target = self.directory / "examples"
        self.home = self.directory / "victim"
        self.home.mkdir()
        (self.home / "canary").write_text("alive")
        projects = [project for project in self.group["projects"] if project["path"] in NUMBERS]
        self.answer_json("/api/v4/groups/4711", self.group | {"projects": projects})

    def serve(self, kind):
        for path, number in NUMBERS.items():
            self.server.answer(archive_route(number), archive(*kind(path)))

    def install(self, limit=None):
        def limit_files():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))
        result = subprocess.run(self.command("--install", self.target), env=self.environment(), capture_output=True,
                                timeout=PATIENCE, check=False, preexec_fn=limit_files if limit is not None else None)
        self.assertIn(result.returncode, (0, 1), result.stderr)
        self.assertEqual(result.stderr, b"")

    def assert_nothing_but_examples(self):
        self.assertEqual({path.name: path.read_text() for path in self.home.iterdir()}, {"canary": "alive"})
        if not self.target.exists():
            return # a new directory without an example goes
        self.assertLessEqual(set(os.listdir(self.target)), set(NUMBERS))
        for path in self.target.iterdir():
            self.assertFalse(path.is_symlink())
            manifest = path / "examples-manifest.xml"
            self.assertFalse(manifest.is_symlink())
            self.assertEqual(xml.etree.ElementTree.parse(manifest).getroot().get("module"), "samples")

    def test_row_of_helper_has_each_pair_once(self):
        row = each_after_each("abc")
        self.assertEqual(sorted(zip(row, row[1:])), [(x, y) for x in "abc" for y in "abc"])

    def test_whatever_came_before_the_honest_archive_installs(self):
        kinds = Kinds(self.home)
        for step, kind in enumerate([*each_after_each(kinds.all()), kinds.honest]):
            with self.subTest(step=step, kind=kind.__name__):
                self.serve(kind)
                self.install()
                self.assert_nothing_but_examples()
                if kind == kinds.honest:
                    self.assertEqual(set(os.listdir(self.target)), set(NUMBERS))

    def test_disk_that_is_full_leaves_nothing_half(self):
        kinds = Kinds(self.home)
        top = "maps-main-1/"
        self.serve(kinds.honest)
        self.server.answer(archive_route(106), archive(*kinds.honest("maps"), entry(top + "large", content=b"x" * 50_000)))
        for limit in (0, 100, 1_000, 5_000, 30_000, 70_000):
            with self.subTest(limit):
                self.install(limit)
                self.assert_nothing_but_examples()
                large = self.target / "maps/large"
                self.assertTrue(not large.exists() or large.stat().st_size == 50_000)
        self.install()
        self.assertEqual(set(os.listdir(self.target)), set(NUMBERS))


if __name__ == "__main__":
    unittest.main()
