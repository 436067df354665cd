# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Takes the screenshots: those of the documents, in both themes, or those of some languages."""

import argparse
import pathlib
import tempfile

from demo import DemoServer
from display import VirtualDisplay
from ide import EXAMPLES_DIALOG, Ide
from sandbox import Sandbox
from show import SIZE
from translated import ide_that_speaks
from waiting import wait_until

NAME = "Demo"
SAMPLES = pathlib.Path(__file__).resolve().parents[2] / "demo/samples"
# What has no project file is listed, but never installed.
INSTALLABLE = {sample.parent.name for sample in SAMPLES.glob("*/files")
               if (sample / "CMakeLists.txt").exists() or list(sample.glob("*.pro"))}
DARK = {"CreatorTheme": "flat-dark"}


def photograph_welcome(ide, sandbox, file):
    ide.main_window().call("showMaximized")
    ide.show_examples(NAME)
    wait_until(lambda: len(ide.tiles()) >= len(sandbox.manifests(NAME)), "the tiles on the Welcome screen")
    wait_until(lambda: not ide.find_all(kind="Core::FutureProgress", visible=True), "the end of the IDE's own work", 60)
    ide.screenshot(file)


def photograph_page_and_dialog(ide, out, suffix):
    preferences, page = ide.open_options(len(INSTALLABLE))
    page.find(name="repositoryComboBox").choose_item(NAME)
    preferences.screenshot(out / f"options{suffix}.png")
    page.find(name="addButton").click()
    ide.wait_for(kind=EXAMPLES_DIALOG).screenshot(out / f"dialog{suffix}.png")


def take(build, out, suffix="", section=None, program=None, welcome=False):
    """Starts an IDE with settings and takes its pictures; a section is (name, {key: value})."""
    with Sandbox() as sandbox, VirtualDisplay(sandbox, SIZE) as display, DemoServer(build) as server:
        sandbox.install_repositories({NAME: server.url})
        if section:
            sandbox.change_settings(section[0], **section[1])
        with Ide(build, sandbox, display, program=program) as ide:
            ide.started()
            wait_until(lambda: set(sandbox.manifests(NAME)) == INSTALLABLE, "the examples", 60)
            if welcome:
                photograph_welcome(ide, sandbox, out / "welcome.png")
            photograph_page_and_dialog(ide, out, suffix)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build-dir", type=pathlib.Path, required=True)
    parser.add_argument("--out", type=pathlib.Path, required=True)
    parser.add_argument("--languages", nargs="*", default=[])
    options = parser.parse_args()
    options.out.mkdir(parents=True, exist_ok=True)
    if not options.languages:
        take(options.build_dir, options.out, welcome=True)
        take(options.build_dir, options.out, "-dark", ("Core", DARK))
    for language in options.languages:
        with tempfile.TemporaryDirectory(prefix="varnel-language-", dir="/tmp") as directory:
            program = ide_that_speaks(language, options.build_dir, pathlib.Path(directory) / "ide")
            take(options.build_dir, options.out, f"-{language}", ("%General", {"OverrideLanguage": language}), program)


if __name__ == "__main__":
    main()
