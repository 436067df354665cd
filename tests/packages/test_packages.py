# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The packages and the archive, tried as a user would on a machine with nothing but the IDE."""

import json
import os
import pathlib
import re
import shutil
import subprocess
import tarfile
import tempfile
import unittest

import inifile
from demo import DemoServer
from display import VirtualDisplay
from fresh import PROJECT, FreshIde, FreshMachine, User
from waiting import wait_until

BUILD = pathlib.Path(os.environ["VARNEL_BUILD_DIR"])
PACKAGES = pathlib.Path(os.environ["VARNEL_PACKAGES"])
SCREENSHOTS = BUILD / "screenshots"
OURS = ["varnel", "varnel-sdk-standin", "varnel-repositories"]
INSTALLABLE = 7  # of the demo's eight samples
EXTENSIONS_PAGE = "ExtensionManager.ExtensionManagerSettings"
PATIENCE = 180  # seconds: a machine that makes packages meanwhile is slow


def package(name):
    found = list(PACKAGES.glob(f"{name}_*.deb"))
    assert len(found) == 1, found
    return found[0]


def archive():
    found = list(PACKAGES.glob("varnel-*-linux-*.tar.gz"))
    assert len(found) == 1, found
    return found[0]


class PackagesCase(unittest.TestCase):

    def setUp(self):
        SCREENSHOTS.mkdir(exist_ok=True)
        self.scratch = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="varnel-packages-", dir="/tmp")))
        self.machine = self.enterContext(FreshMachine())
        self.user = self.enterContext(User())
        self.display = self.enterContext(VirtualDisplay(self.user, (1440, 900)))
        self.server = self.enterContext(DemoServer(BUILD))
        version = self.machine.run("dpkg-query", "--show", "--showformat", "${source:Upstream-Version}", "qtcreator")
        self.user.add_driver(BUILD, version.stdout)
        self.machine.apt("update")

    def repacked(self, name, change):
        """A package whose unpacked directory was changed."""
        folder = self.scratch / f"{name}-repacked"
        subprocess.run(["dpkg-deb", "--raw-extract", package(name), folder], check=True)
        change(folder)
        target = self.scratch / f"{name}_repacked.deb"
        subprocess.run(["dpkg-deb", "--root-owner-group", "--build", folder, target], check=True, capture_output=True)
        return target

    def configure_demo(self):
        inifile.change(self.user.user_settings, "Varnel", {"Repositories": [f"Demo|{self.server.url}|"]})
        inifile.change(self.user.user_settings, "Help", {"InstalledExamples": ["Demo|.|."]})

    def ide(self):
        return FreshIde(self.machine, self.user, self.display)

    def wait_for_examples(self, ide):
        def installed():
            ide.do("state")
            return len(self.user.manifests("Demo")) == INSTALLABLE
        wait_until(installed, "the examples", PATIENCE)

    def quit(self, ide):
        self.assertEqual(ide.quit(), 0)


class InstalledByThePackageManager(PackagesCase):

    def test_settings_alone_make_the_examples_appear(self):
        self.machine.apt("install", *map(package, OURS))
        self.configure_demo()

        with self.ide() as ide:
            ide.started(PATIENCE)
            self.wait_for_examples(ide)
            ide.show_examples("Demo")
            wait_until(lambda: len(ide.tiles()) == INSTALLABLE, "the tiles")
            ide.screenshot(SCREENSHOTS / "packages-welcome.png")
            self.quit(ide)

    def test_the_package_of_repositories_is_all_the_configuration_that_is_needed(self):
        def add_settings(folder):
            subprocess.run(["cmake", "-S", PROJECT, "-B", self.scratch / "build", "-G", "Ninja",
                            "-D", "VARNEL_BUILD_TESTS=OFF", "-D", f"VARNEL_REPOSITORIES=Demo={self.server.url}"],
                           check=True, capture_output=True)
            shutil.copy(self.scratch / "build/packaging/repositories.ini",
                        folder / "usr/share/qtcreator/QtProject/QtCreator.ini")
        self.machine.apt("install", package("varnel"), package("varnel-sdk-standin"),
                         self.repacked("varnel-repositories", add_settings))

        with self.ide() as ide:
            ide.started(PATIENCE)
            self.wait_for_examples(ide)
            ide.show_examples("Demo")
            wait_until(lambda: len(ide.tiles()) == INSTALLABLE, "the tiles")
            self.quit(ide)

    def test_the_command_for_maintainers_needs_nothing_else(self):
        self.machine.apt("install", package("varnel"), package("varnel-sdk-standin"))
        result = self.machine.run("varnel-check", "--json", "--fail-on", "error", "--only", "maps*", self.server.url)
        self.assertEqual(json.loads(result.stdout)["summary"]["installable"], 2)
        self.machine.run("test", "-f", "/usr/share/bash-completion/completions/varnel-check")

    def test_the_languages_are_found(self):
        self.machine.apt("install", "--install-recommends", package("varnel"), package("varnel-sdk-standin"))
        self.user.change_settings("%General", OverrideLanguage="ja")

        with self.ide() as ide:
            ide.started(PATIENCE)
            preferences, page = ide.open_options()
            self.assertEqual(page.find(name="removeButton").text, "削除")
            preferences.screenshot(SCREENSHOTS / "packages-japanese.png")

    def test_an_upgrade_keeps_settings_and_examples(self):
        def make_older(folder):
            control = folder / "DEBIAN/control"
            control.write_text(re.sub(r"(?m)^Version: .*", "Version: 15.99.0", control.read_text()))
        self.machine.apt("install", self.repacked("varnel", make_older), package("varnel-sdk-standin"))
        self.configure_demo()
        with self.ide() as ide:
            ide.started(PATIENCE)
            self.wait_for_examples(ide)
            self.quit(ide)
        examples = self.user.root / "data"
        before = self.contents(examples), self.user.settings("Varnel")

        installed = self.machine.apt("install", package("varnel"))

        self.assertIn("(15.99.0)", installed.stdout)
        self.assertEqual((self.contents(examples), self.user.settings("Varnel")), before)
        with self.ide() as ide:
            ide.started(PATIENCE)
            ide.show_examples("Demo")
            wait_until(lambda: len(ide.tiles()) == INSTALLABLE, "the tiles")
            self.quit(ide)
        self.assertEqual(self.user.settings("Varnel"), before[1])
        self.assertEqual(len(self.user.manifests("Demo")), INSTALLABLE)

    @staticmethod
    def contents(folder):
        return {str(file.relative_to(folder)): file.read_bytes() for file in folder.rglob("*")
                if file.is_file() and "QtProject" not in file.parts}

    def test_a_purge_leaves_nothing(self):
        before = self.machine.files()
        # What the IDE itself recommends would rightly stay.
        self.machine.apt("install", "--no-install-recommends", *map(package, OURS))
        self.assertTrue(any("libVarnel" in file for file in self.machine.files() - before))
        self.configure_demo()
        with self.ide() as ide:
            ide.started(PATIENCE)
            self.wait_for_examples(ide)
            self.quit(ide)

        self.machine.apt("remove", "varnel")
        self.assertEqual([file for file in self.machine.files() if "libVarnel" in file or "Varnel_" in file], [])
        self.machine.apt("purge", *OURS)
        self.machine.apt("autoremove", "--purge")

        self.assertEqual(sorted(self.machine.files() - before), [])
        self.assertEqual(sorted(before - self.machine.files()), [])
        self.assertEqual(len(self.user.manifests("Demo")), INSTALLABLE)
        self.assertIn("Repositories", self.user.settings("Varnel"))

    def test_the_sdk_takes_the_stand_ins_place(self):
        self.machine.apt("install", package("varnel"), package("varnel-sdk-standin"))
        sdk = self.empty_package("ferronaos-sdk", "1.0")

        self.machine.apt("install", sdk)

        states = self.machine.run("dpkg-query", "--show", "--showformat", "${Package} ${db:Status-Status}\n").stdout
        self.assertIn("varnel installed\n", states)
        self.assertIn("ferronaos-sdk installed\n", states)
        self.assertNotIn("varnel-sdk-standin installed\n", states)

    def test_another_version_of_the_ide_is_refused(self):
        for version in ("15.0.0", "17.0.0"):
            with self.subTest(version):
                ide = self.empty_package("qtcreator", version)
                tried = self.machine.apt("install", "--simulate", "--allow-downgrades", ide,
                                         package("varnel"), package("varnel-sdk-standin"), check=False)
                self.assertNotEqual(tried.returncode, 0)
                self.assertRegex(tried.stdout, rf"varnel : Depends: qtcreator \((>=|<) 1[67]\) but {version} is to be")

    def empty_package(self, name, version):
        folder = self.scratch / f"{name}-{version}"
        (folder / "DEBIAN").mkdir(parents=True)
        (folder / "DEBIAN/control").write_text(
            f"Package: {name}\nVersion: {version}\nArchitecture: all\nMaintainer: Nobody <nobody@localhost>\n"
            "Description: nothing\n")
        target = self.scratch / f"{name}_{version}.deb"
        subprocess.run(["dpkg-deb", "--root-owner-group", "--build", folder, target], check=True, capture_output=True)
        return target


class InstalledByTheIde(PackagesCase):

    def setUp(self):
        super().setUp()
        self.machine.apt("install", "libarchive13t64")

    def install(self, ide, file):
        """Goes through the dialog as far as it goes, and returns what it said last and whether it got to its end."""
        preferences = ide.open_preferences(EXTENSIONS_PAGE)
        ide.wait_for(text="Install Extension...").click()
        wizard = ide.wait_for(kind="Utils::Wizard")
        wizard.find(kind="Utils::FancyLineEdit", visible=True).set("text", str(file))
        silent = self.labels(wizard) | {"", "Checking archive..."}
        self.press(wizard, "Next >")
        said, = wait_until(lambda: self.labels(wizard) - silent, "the dialog's verdict", 30)
        if said != "Archive is OK.":
            wizard.screenshot(SCREENSHOTS / "extension-refused.png")
            ide.close(wizard, "Cancel")
            ide.close(preferences, "Cancel")
            return said
        self.press(wizard, "Next >")
        wizard.screenshot(SCREENSHOTS / "extension-summary.png")
        self.press(wizard, "Finish")
        wait_until(lambda: not wizard.is_visible(), "the dialog's end")
        for box in wait_until(lambda: ide.find_all(kind="QMessageBox", visible=True), "the question about a restart"):
            ide.close(box, "Later")
        ide.close(preferences, "Cancel")
        return said

    @staticmethod
    def press(wizard, text):
        def button():
            return [found for found in wizard.find_all(kind="QPushButton", text=text, visible=True)
                    if found.get("enabled")]
        wait_until(button, f"the button {text}")[0].click()

    @staticmethod
    def labels(wizard):
        return {widget.text for widget in wizard.find_all(visible=True) if "Label" in widget.kind}

    def test_the_archive_goes_through_the_dialog_and_runs_after_a_restart(self):
        self.configure_demo()
        with self.ide() as ide:
            ide.started(PATIENCE)
            said = self.install(ide, archive())
            self.quit(ide)
        self.assertEqual(said, "Archive is OK.")

        with self.ide() as ide:
            ide.started(PATIENCE)
            self.wait_for_examples(ide)
            ide.show_examples("Demo")
            wait_until(lambda: len(ide.tiles()) == INSTALLABLE, "the tiles")
            ide.screenshot(SCREENSHOTS / "extension-welcome.png")
            self.quit(ide)

    def test_an_archive_for_another_version_of_the_ide_is_refused_in_the_ides_own_words(self):
        folder = self.scratch / "other"
        with tarfile.open(archive()) as original:
            original.extractall(folder, filter="data")
        other = self.scratch / "varnel-17.0.0-linux-amd64.tar.gz"
        with tarfile.open(other, "w:gz") as changed:
            for file in sorted(folder.iterdir()):
                # The metadata stands in the library as it is; a version of the same length keeps its shape.
                content = file.read_bytes()
                self.assertIn(b"16.0.0", content)
                file.write_bytes(content.replace(b"16.0.0", b"17.0.0"))
                changed.add(file, file.name)

        with self.ide() as ide:
            ide.started(PATIENCE)
            said = self.install(ide, other)
            self.quit(ide)

        self.assertEqual(said, "Plugin failed to resolve dependencies: Could not resolve dependency 'core(17.0.0)'")


class Reproducible(unittest.TestCase):

    def test_two_builds_in_two_directories_give_the_same_bytes(self):
        with tempfile.TemporaryDirectory(prefix="varnel-elsewhere-", dir="/tmp") as elsewhere:
            headers = pathlib.Path(elsewhere) / "headers-of-the-ide"
            shutil.copytree(os.environ["VARNEL_IDE_HEADERS"], headers)
            work, output = pathlib.Path(elsewhere) / "a/rather/deep/directory", pathlib.Path(elsewhere) / "output"
            subprocess.run(
                ["bash", PROJECT / "tools/lib/make-packages.sh", work, output], check=True, umask=0o077,
                env=os.environ | {"VARNEL_IDE_HEADERS": str(headers), "TZ": "Asia/Tokyo", "LC_ALL": "C"})
            for file in sorted([*PACKAGES.glob("*.deb"), archive()]):
                with self.subTest(file.name):
                    self.assertTrue(file.read_bytes() == (output / file.name).read_bytes(), "the bytes differ")

    def test_no_binary_tells_where_it_was_built(self):
        with tempfile.TemporaryDirectory(prefix="varnel-unpacked-", dir="/tmp") as folder:
            for file in PACKAGES.glob("*.deb"):
                subprocess.run(["dpkg-deb", "--extract", file, folder], check=True)
            contents = {file: file.read_bytes() for file in pathlib.Path(folder).rglob("*") if file.is_file()}
            binaries = {file: content for file, content in contents.items() if content.startswith(b"\x7fELF")}
            # The plug-in, the stand-in and varnel-check, each with its symbols, and those that two of them share.
            self.assertEqual(len(binaries), 7)
            for file, content in binaries.items():
                for path in (str(PROJECT), os.environ["VARNEL_IDE_HEADERS"], os.environ["VARNEL_CACHE"]):
                    self.assertNotIn(path.encode(), content, file)


if __name__ == "__main__":
    unittest.main()
