# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What tests of varnel-check begin with: a demo server, and the command in directories of its own.

The build tree is in the environment variable VARNEL_BUILD_DIR.
"""

import contextlib
import gzip
import io
import json
import os
import pathlib
import subprocess
import tarfile
import tempfile
import unittest
import urllib.parse

from demo import DemoServer

BUILD = pathlib.Path(os.environ["VARNEL_BUILD_DIR"])
PROGRAM = BUILD / "check/varnel-check"
GROUP = "/api/v4/groups"
DETAILS = "/api/v4/groups/4711"
PATIENCE = 60  # seconds that the command may take


def archive_route(number):
    return f"/api/v4/projects/{number}/repository/archive.tar.gz"


def entry(path, kind=tarfile.REGTYPE, target="", content=b"content\n"):
    info = tarfile.TarInfo(path)
    info.type, info.linkname, info.mtime = kind, target, 1_700_000_000
    info.size = len(content) if kind == tarfile.REGTYPE else 0
    return info, content


def archive(*entries):
    """A compressed tar of entries, which are paths of files unless entry() made them."""
    buffer = io.BytesIO()
    with tarfile.open(fileobj=buffer, mode="w") as tar:
        for item in entries:
            info, content = item if isinstance(item, tuple) else entry(item)
            tar.addfile(info, io.BytesIO(content))
    return gzip.compress(buffer.getvalue(), compresslevel=0)


class Result:
    """What the command gave."""

    def __init__(self, code, output, errors):
        self.code, self.output, self.errors = code, output, errors

    @property
    def report(self):
        return json.loads(self.output)

    @property
    def findings(self):
        """(subject, id) of each."""
        return [(finding["subject"], finding["id"]) for finding in self.report["findings"]]


class CheckCase(unittest.TestCase):
    """Each test has a server with the samples, and directories; no temporary file may be left in the end.

    The group is remembered as the server described it in the beginning.
    """

    maxDiff = None
    samples = None

    def setUp(self):
        self.directory = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.temporary = self.directory / "tmp"
        self.temporary.mkdir()
        self.server = self.enterContext(DemoServer(BUILD, self.samples))
        self.group = self.server.fetch(self.address(DETAILS))

    def tearDown(self):
        self.assertEqual(os.listdir(self.temporary), [])

    def command(self, *arguments, url=None):
        return [PROGRAM, url or self.server.url, *map(str, arguments)]

    def environment(self):
        places = {f"XDG_{kind.upper()}_HOME": str(self.directory / kind) for kind in ("data", "config", "cache")}
        return os.environ | places | {"TMPDIR": str(self.temporary), "HOME": str(self.directory)}

    def check(self, *arguments, url=None):
        result = subprocess.run(self.command(*arguments, url=url), env=self.environment(), capture_output=True,
                                timeout=PATIENCE, check=False)
        return Result(result.returncode, result.stdout.decode(), result.stderr.decode())

    @contextlib.contextmanager
    def running(self, *arguments, **environment):
        """The command while it runs, in a process group of its own as in a terminal."""
        with subprocess.Popen(self.command(*arguments), env=self.environment() | environment, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, process_group=0) as process:
            try:
                yield process
                process.communicate(timeout=PATIENCE)
            finally:
                process.kill() # a test that has failed must not wait for it

    def address(self, path):
        return urllib.parse.urljoin(self.server.url, path)

    def answer_json(self, route, value):
        self.server.answer(route, json.dumps(value).encode(), content_type="application/json")

    def list_projects(self, *changes):
        """Only this project is listed, once for each dictionary of changes; None takes a key away."""
        original = next(project for project in self.group["projects"] if project["path"] == "hello-qml")
        projects = [{key: value for key, value in (original | change).items() if value is not None}
                    for change in changes]
        self.answer_json(DETAILS, self.group | {"projects": projects})
        self.answer_json(f"{DETAILS}/projects", projects)
