# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Archives of a real git repository, whose entries all carry the time of the commit, whenever that was."""

import subprocess
import unittest

from case import SAMPLE, IdeCase, archive_route
from waiting import wait_until

PATH = "word-count"
BRANCH = "feature/new-look"
YEARS_AGO, NOW, FUTURE = "2009-03-01T12:00:00+0000", "now", "2035-03-01T12:00:00+0000"


class GitRepository:

    def __init__(self, directory, environment):
        directory.mkdir()
        self._directory = directory
        self._environment = environment
        self._git("init", "--quiet", "--initial-branch", BRANCH)
        (directory / "main.cpp").write_text("int main() { return 0; }\n")

    def _git(self, *arguments, **environment):
        identity = {"GIT_AUTHOR_NAME": "A", "GIT_AUTHOR_EMAIL": "a@example.org",
                    "GIT_COMMITTER_NAME": "A", "GIT_COMMITTER_EMAIL": "a@example.org"}
        return subprocess.run(["git", *arguments], cwd=self._directory, check=True, capture_output=True,
                              env=self._environment | identity | environment).stdout

    def commit(self, text, time):
        """Returns the archive of the new commit, with the top directory that the server gives it."""
        (self._directory / "CMakeLists.txt").write_text(f"# {text}\nproject(demo)\n")
        self._git("add", ".")
        date = {} if time == NOW else {"GIT_AUTHOR_DATE": time, "GIT_COMMITTER_DATE": time}
        self._git("commit", "--quiet", "--message", text, **date)
        sha = self._git("rev-parse", "HEAD").decode().strip()
        top = f"{PATH}-{BRANCH.replace('/', '-')}-{sha}"
        return self._git("archive", "--format=tar.gz", f"--prefix={top}/", "HEAD")


class GitArchive(IdeCase):

    def setUp(self):
        super().setUp()
        self.git = GitRepository(self.sandbox.root / "repository", self.sandbox.environment())
        self.set_removed(*(set(SAMPLE) - {PATH}))

    def installed_project(self):
        """The text of the project file, once it is installed together with a manifest."""
        manifest = self.sandbox.manifests("Demo").get(PATH)
        return manifest.with_name("CMakeLists.txt").read_text() if manifest else ""

    def update(self, text, time):
        """One start of the IDE, in which this commit is the newest one online."""
        self.server.answer(archive_route(PATH), self.git.commit(text, time))
        self.server.push(PATH)
        self.set_checked(2)
        with self.ide() as ide:
            ide.started()
            wait_until(lambda: text in self.installed_project(), f"the commit {text}")
            self.quit(ide)
        self.assertEqual([entry.name for entry in self.sandbox.repository("Demo").iterdir()], [PATH])

    def test_of_a_commit_years_ago_replaces_a_newer_one(self):
        self.update("of today", NOW)
        self.update("years old", YEARS_AGO)

    def test_of_a_commit_in_the_future_is_replaced_by_an_older_one(self):
        self.update("of the future", FUTURE)
        self.update("of today", NOW)
        self.update("of the future again", FUTURE)


if __name__ == "__main__":
    unittest.main()
