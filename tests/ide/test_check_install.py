# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What varnel-check lays out, beside what a real IDE has installed from the same server and still shows."""

import json
import os
import pathlib
import shutil
import stat
import subprocess
import unittest

from case import BUILD, INSTALLABLE, SAMPLES, IdeCase
from demo import DemoServer
from waiting import wait_until

SERVICE = "zel.varnel.plugin.service"
AWKWARD = "awkward"
MADE_BY_INSTALLATION = {"examples-manifest.xml", "example-icon.png"}  # and so bear its time


def contents(directory):
    """Everything in it: kind, rights, time, and bytes or target, by path; in its manifests its name as DIRECTORY."""
    result = {}
    for path in directory.rglob("*"):
        status = path.lstat()
        is_file = stat.S_ISREG(status.st_mode)
        time = status.st_mtime_ns if is_file and path.name not in MADE_BY_INSTALLATION else None
        content = os.readlink(path) if path.is_symlink() else path.read_bytes() if is_file else None
        if path.name == "examples-manifest.xml":
            content = content.replace(os.fsencode(directory), b"DIRECTORY")
        result[str(path.relative_to(directory))] = (oct(status.st_mode), time, content)
    return result


class CheckInstall(IdeCase):
    def setUp(self):
        super().setUp()
        folder = self.sandbox.root / "samples"
        shutil.copytree(SAMPLES, folder)
        self.add_awkward_sample(folder / AWKWARD)
        self.server.close()
        self.server = self.enterContext(DemoServer(BUILD, folder))
        self.sandbox.install_repositories({"Demo": self.server.url})

    @staticmethod
    def add_awkward_sample(folder):
        shutil.copytree(SAMPLES / "stopwatch", folder)
        description = json.loads((folder / "project.json").read_text(encoding="utf-8"))
        (folder / "project.json").write_text(json.dumps(description | {
            "id": 900, "title": 'A <b>"bold"</b> title & ]]> \u202e', "description": "Not ]]> the end\x1b[31m\n"}))
        files = next(path for path in folder.iterdir() if path.is_dir())
        (files / "run.sh").write_text("#!/bin/sh\n")
        (files / "run.sh").chmod(0o755)
        (files / "größe.txt").write_text("ß\n")

    def install(self, directory):
        return subprocess.run(
            [BUILD / "check/varnel-check", "--quiet", "--name", "Demo", "--install", directory, self.server.url],
            env=self.sandbox.environment(), capture_output=True, timeout=120, check=False)

    def test_it_lays_out_the_same_beside_a_running_ide(self):
        ours = self.sandbox.root / "laid out"
        with self.ide() as ide:
            ide.started()
            self.wait_for_installed([*INSTALLABLE, AWKWARD], ide)
            ide.wait_for_text(SERVICE, "creating example mainfest")
            theirs = self.sandbox.repository("Demo")
            wait_until(lambda: set(os.listdir(theirs)) == {*INSTALLABLE, AWKWARD}, "the last copy to go")
            before = contents(theirs)

            result = self.install(ours)
            refused = self.install(theirs)

            self.assertEqual(contents(theirs), before)
            self.quit(ide)
        self.assertEqual((result.returncode, result.stderr), (1, b""))  # one sample has no project file
        self.assertEqual(refused.returncode, 2)
        self.assertIn(b"belongs to the IDE", refused.stderr)
        self.assertEqual(contents(ours), before)
        self.assertEqual({path.parts[0] for path in map(pathlib.Path, before)}, {*INSTALLABLE, AWKWARD})


if __name__ == "__main__":
    unittest.main()
