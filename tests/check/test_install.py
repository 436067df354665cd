# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Examples that are laid out for others: what is kept, refused, repeated and printed."""

import configparser
import os
import shutil
import unittest

from checkcase import PATIENCE, CheckCase, archive, archive_route
from waiting import wait_until

LISTED = {"hello-qml", "maps", "maps-offline", "stopwatch", "unit-converter", "weather-station", "word-count"}


class Install(CheckCase):
    def setUp(self):
        super().setUp()
        self.target = self.directory / "examples"

    def install(self, *arguments):
        return self.check("--install", self.target, *arguments)

    def contents(self):
        """Everything in the directory; of a manifest and a directory not the time, which is that of the installation."""
        return {str(path.relative_to(self.target)): path.read_bytes() if path.is_file() else None
                for path in self.target.rglob("*")}

    def test_examples_that_install_are_there_and_nothing_else(self):
        result = self.install("--fail-on", "error")
        self.assertEqual(result.code, 1) # one sample has no project file
        self.assertEqual(set(os.listdir(self.target)), LISTED)

    def test_repeating_it_changes_nothing(self):
        self.install()
        before = self.contents()
        result = self.install()
        self.assertEqual(result.errors, "")
        self.assertEqual(self.contents(), before)

    def test_new_commit_replaces_the_old_one(self):
        self.install()
        (self.target / "maps/left-behind").write_text("old")
        self.server.push("maps")
        self.install()
        self.assertFalse((self.target / "maps/left-behind").exists())

    def test_examples_that_are_no_longer_listed_stay(self):
        self.install()
        self.list_projects({})
        self.install()
        self.assertEqual(set(os.listdir(self.target)), LISTED)

    def test_strange_directory_is_refused_and_untouched(self):
        for name in ("maps", "maps-of-mine", "notes.txt", ".hidden"):
            with self.subTest(name):
                target = self.directory / f"strange-{name}"
                target.mkdir()
                path = target / name
                path.write_text("mine") if "." in name else (path.mkdir(), (path / "file").write_text("mine"))
                result = self.check("--install", target)
                self.assertEqual((result.code, result.output), (2, ""))
                self.assertIn(f'holds "{name}"', result.errors)
                self.assertEqual(os.listdir(target), [name])

    def test_directory_of_another_repository_is_refused(self):
        self.install()
        result = self.install("--name", "Other")
        self.assertEqual(result.code, 2)
        self.assertIn('is no example of "Other"', result.errors)

    def test_directories_of_the_ide_take_force(self):
        root = self.directory / "data/ferrona-sdk-5"
        settings = self.directory / "config/QtProject"
        extensions = self.directory / "data/data/QtProject/qtcreator/plugins"
        cache = self.directory / "cache/QtProject/qtcreator"
        for target in (root / "samples", root / "samples/below", root, self.directory / "data", self.directory,
                       settings, settings / "qtcreator", self.directory / "data/data", extensions, cache):
            result = self.check("--install", target)
            self.assertEqual(result.code, 2, target)
            self.assertIn("belongs to the IDE", result.errors)
        self.assertEqual(os.listdir(self.directory), ["tmp"])
        self.assertEqual(self.check("--install", root / "samples", "--force").code, 1)
        self.assertEqual(set(os.listdir(root / "samples")), LISTED)

    def test_link_to_the_directory_of_the_ide_is_seen_through(self):
        (self.directory / "data/ferrona-sdk-5/samples").mkdir(parents=True)
        self.target.symlink_to(self.directory / "data/ferrona-sdk-5/samples")
        self.assertIn("belongs to the IDE", self.install().errors)

    def test_second_installation_at_a_time_is_refused(self):
        self.server.hold(archive_route(101))
        with self.running("--install", str(self.target)) as process:
            wait_until(lambda: self.server.held(archive_route(101)) == 1, "the download", 20)
            result = self.install()
            self.assertEqual(result.code, 2)
            self.assertIn("another installation", result.errors)
            self.server.release(archive_route(101))
            process.communicate(timeout=PATIENCE)
        self.assertEqual(set(os.listdir(self.target)), LISTED)

    def test_what_a_killed_installation_left_is_cleared(self):
        self.server.hold(archive_route(101))
        with self.running("--install", str(self.target)) as process:
            wait_until(lambda: self.server.held(archive_route(101)) == 1, "the download", 20)
            process.kill()
        for leftover in self.temporary.iterdir(): # nobody is left to do it
            shutil.rmtree(leftover)
        (self.target / ("maps@" + "0" * 32)).mkdir()
        (self.target / ("maps-main-" + "0" * 40)).mkdir()
        self.server.release(archive_route(101))
        self.assertEqual(self.install().code, 1)
        self.assertEqual(set(os.listdir(self.target)), LISTED)

    def test_lock_of_a_container_that_was_killed_keeps_nobody_out(self):
        self.target.mkdir()
        (self.target / ".varnel-check.lock").write_text("7\nvarnel-check\nf3a9c1d2\n\n\n")
        result = self.install()
        self.assertEqual((result.code, result.errors), (1, ""))
        self.assertEqual(set(os.listdir(self.target)), LISTED)

    def test_lock_is_taken_through_no_link(self):
        victim = self.directory / "victim"
        self.target.mkdir()
        (self.target / ".varnel-check.lock").symlink_to(victim)
        result = self.install()
        self.assertEqual(result.code, 2)
        self.assertIn("cannot be written to", result.errors)
        self.assertFalse(victim.exists())

    def test_what_belongs_to_no_example_does_not_stay(self):
        self.install()
        self.server.answer(archive_route(101), archive("stray/CMakeLists.txt", "loose"))
        self.server.answer(archive_route(102), archive("foreign-1/CMakeLists.txt"))
        for _ in range(2): # nor is it in the way of the next one
            result = self.install()
            self.assertEqual((result.code, result.errors), (1, ""))
            self.assertLessEqual(set(os.listdir(self.target)), LISTED)

    def test_what_was_there_stays_under_force(self):
        self.target.mkdir()
        (self.target / "stray").mkdir()
        (self.target / "stray/mine").write_text("mine")
        self.server.answer(archive_route(101), archive("stray/CMakeLists.txt", "loose"))
        self.install("--force")
        self.assertEqual((self.target / "stray/mine").read_text(), "mine")
        self.assertFalse((self.target / "loose").exists())

    def test_settings_are_printed(self):
        output = self.install("--name", "Class room").output
        self.assertTrue(output.endswith(
            f'[Help]\nInstalledExamples="Class room|{self.target}|{self.target}"\n'), output)

    def test_place_of_the_ide_comes_with_its_repository(self):
        target = self.directory / "data/ferrona-sdk-5/Mine"
        output = self.check("--install", target, "--force", "--name", "Mine").output
        self.assertTrue(output.endswith(
            f'InstalledExamples="Mine|{target}|{target}"\n\n[Varnel]\nRepositories="Mine|{self.server.url}|"\n'), output)

    def test_settings_are_written_beside_others(self):
        file = self.directory / "settings.ini"
        file.write_text('[Help]\nInstalledExamples=Other|/a|/a, Mine|/b|/b\n\n[Else]\nKey=value\n')
        for _ in range(2):
            self.assertNotIn("InstalledExamples", self.install("--settings", file, "--name", "Mine").output)
        settings = configparser.ConfigParser(interpolation=None)
        settings.optionxform = str
        settings.read(file)
        self.assertEqual(settings["Help"]["InstalledExamples"], f"Other|/a|/a, Mine|{self.target}|{self.target}")
        self.assertEqual(settings["Else"]["Key"], "value")

    def test_settings_that_cannot_be_written_are_told(self):
        (self.directory / "file").write_text("none")
        result = self.install("--settings", self.directory / "file/settings.ini")
        self.assertEqual(result.code, 2)
        self.assertIn("settings.ini cannot be written", result.errors)

    def test_settings_take_the_place_of_a_file_only(self):
        pipe = self.directory / "pipe"
        os.mkfifo(pipe)
        result = self.install("--settings", pipe, "--only", "maps")
        self.assertEqual(result.code, 2)
        self.assertIn("pipe cannot be written", result.errors)
        self.assertTrue(pipe.is_fifo())

    def test_example_that_fails_takes_its_old_one_along_as_in_the_ide(self):
        self.install()
        self.server.answer(archive_route(106), archive("maps-main-2/nothing"))
        self.install()
        self.assertFalse((self.target / "maps").exists())

    def test_archive_that_is_refused_leaves_the_old_example(self):
        self.install()
        before = self.contents()
        self.server.answer(archive_route(106), archive("maps-main-2/CMakeLists.txt", "../evil"))
        self.install()
        self.assertEqual(self.contents(), before)


if __name__ == "__main__":
    unittest.main()
