# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The demo repository's program, as an independent client of the GitLab API and as a user at a terminal see it.

The program's path is in the environment variable DEMO_SERVER.
"""

import io
import json
import os
import pathlib
import signal
import socket
import subprocess
import tarfile
import tempfile
import unittest
import urllib.error
import urllib.parse
import urllib.request

import gitlab

PROGRAM = os.environ["DEMO_SERVER"]
DESCRIPTION = {
    "id": 1,
    "title": "One",
    "branch": "main",
    "created": "2024-01-01T00:00:00Z",
    "commit": "2024-01-01T00:00:00Z",
    "activity": "2024-01-01T00:00:00Z",
}


class Server:
    """A running program, ended by leaving the context."""

    def __init__(self, *arguments):
        self.arguments = arguments

    def __enter__(self):
        self.process = subprocess.Popen([PROGRAM, *self.arguments], stdout=subprocess.PIPE, text=True)
        self.url = self.process.stdout.readline().strip()
        address = urllib.parse.urlsplit(self.url)
        self.base, self.group = f"{address.scheme}://{address.netloc}", address.path.strip("/")
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()

    def control(self, command, method="GET", **query):
        address = f"{self.base}/control/{command}?{urllib.parse.urlencode(query)}"
        with urllib.request.urlopen(urllib.request.Request(address, method=method)) as answer:
            return json.load(answer)


def failure(*arguments):
    """Exit code and error text of a program that is expected to end by itself."""
    result = subprocess.run([PROGRAM, *arguments], capture_output=True, text=True, timeout=30)
    return result.returncode, result.stderr


class Client(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.server = cls.enterClassContext(Server("--group", "demo/samples"))
        cls.gitlab = cls.enterClassContext(gitlab.Gitlab(cls.server.base))

    def group(self):
        found = self.gitlab.groups.list(search=self.server.group, get_all=True)
        self.assertEqual([group.full_path for group in found], ["demo/samples"])
        return found[0]

    def project(self, path):
        return self.gitlab.projects.get(f"demo/samples/{path}")

    def test_the_group_is_found_by_search(self):
        self.assertEqual(self.group().name, "Samples")

    def test_an_unknown_group_is_not_found(self):
        self.assertEqual(self.gitlab.groups.list(search="nothing-like-it", get_all=True), [])
        with self.assertRaises(gitlab.exceptions.GitlabGetError) as caught:
            self.gitlab.groups.get(1)
        self.assertEqual(caught.exception.response_code, 404)
        self.assertEqual(caught.exception.error_message, "404 Group Not Found")

    def test_the_projects_are_read_over_several_pages(self):
        projects = self.group().projects.list(per_page=3, iterator=True)
        paths = [project.path for project in projects]
        self.assertEqual(len(paths), len(set(paths)))
        self.assertLessEqual({"hello-qml", "maps", "maps-offline", "unit-converter"}, set(paths))
        details = self.gitlab.groups.get(self.group().id)
        self.assertEqual([project["path"] for project in details.attributes["projects"]], paths)

    def test_texts_arrive_with_their_letters(self):
        project = self.project("unit-converter")
        self.assertEqual(project.name, "Größenumrechner")
        self.assertIn("°C", project.description)
        self.assertIn("größen", project.topics)

    def test_an_archive_unpacks_to_one_directory_of_the_commits_time(self):
        for path, branch in (("hello-qml", "main"), ("maps-offline", "release-1.0")):
            with self.subTest(path):
                data = self.project(path).repository_archive(format="tar.gz")
                with tarfile.open(fileobj=io.BytesIO(data), mode="r:gz") as archive:
                    members = archive.getmembers()
                    self.assertEqual(len(archive.pax_headers["comment"]), 40)
                    top = f"{path}-{branch}-{archive.pax_headers['comment']}"
                self.assertEqual(members[0].name, top)
                self.assertTrue(members[0].isdir())
                self.assertTrue(all(member.name.startswith(top + "/") for member in members[1:]))
                self.assertIn(f"{top}/CMakeLists.txt", [member.name for member in members])
                self.assertEqual(len({member.mtime for member in members}), 1)
                self.assertEqual({member.uname for member in members}, {"root"})

    def test_an_icon_lies_in_the_archive_of_a_project_without_avatar(self):
        project = self.project("weather-station")
        self.assertIsNone(project.avatar_url)
        with tarfile.open(fileobj=io.BytesIO(project.repository_archive()), mode="r:gz") as archive:
            icons = [member for member in archive if "/icons/128x128/" in member.name]
            self.assertEqual(len(icons), 1)
            self.assertTrue(archive.extractfile(icons[0]).read().startswith(b"\x89PNG\r\n"))

    def test_an_avatar_is_a_picture(self):
        with urllib.request.urlopen(self.project("maps").avatar_url) as answer:
            self.assertEqual(answer.headers["Content-Type"], "image/png")
            self.assertTrue(answer.read().startswith(b"\x89PNG\r\n"))


class Control(unittest.TestCase):
    def setUp(self):
        self.server = self.enterContext(Server())

    def project(self, path):
        with gitlab.Gitlab(self.server.base) as client:
            return client.projects.get(f"samples/{path}")

    def test_a_commit_changes_archive_and_activity_of_one_project(self):
        before = {path: self.project(path) for path in ("maps", "maps-offline")}
        archives = {path: project.repository_archive() for path, project in before.items()}
        self.server.control("commit", "POST", project="maps")
        changed, other = self.project("maps"), self.project("maps-offline")
        self.assertGreater(changed.last_activity_at, before["maps"].last_activity_at)
        self.assertNotEqual(changed.repository_archive(), archives["maps"])
        self.assertEqual(other.last_activity_at, before["maps-offline"].last_activity_at)
        self.assertEqual(other.repository_archive(), archives["maps-offline"])

    def test_requests_are_counted_and_forgotten(self):
        self.project("maps").repository_archive()
        self.project("maps")
        self.assertEqual(self.server.control("requests", route="/api/v4/projects/*")["count"], 3)
        self.assertEqual(
            [request["method"] for request in self.server.control("requests")["requests"]], ["GET"] * 3)
        self.server.control("requests", "DELETE")
        self.assertEqual(self.server.control("requests")["count"], 0)

    def test_a_project_can_be_removed(self):
        self.server.control("remove", "POST", project="maps")
        with self.assertRaises(gitlab.exceptions.GitlabGetError):
            self.project("maps")

    def test_an_answer_can_be_replaced_and_restored(self):
        self.server.control("answer", "POST", route="/api/v4/groups", status=503)
        with self.assertRaises(urllib.error.HTTPError) as caught:
            urllib.request.urlopen(f"{self.server.base}/api/v4/groups")
        caught.exception.close()
        self.assertEqual(caught.exception.code, 503)
        self.server.control("restore", "POST")
        with urllib.request.urlopen(f"{self.server.base}/api/v4/groups") as answer:
            self.assertEqual(answer.status, 200)

    def test_a_held_request_waits_for_its_release(self):
        self.server.control("hold", "POST", route="/api/v4/groups")
        address = urllib.parse.urlsplit(self.server.base)
        with socket.create_connection((address.hostname, address.port)) as connection:
            connection.sendall(b"GET /api/v4/groups HTTP/1.1\r\nHost: localhost\r\n\r\n")
            while self.server.control("held")["count"] == 0:
                pass
            self.server.control("release", "POST", route="/api/v4/groups")
            self.assertTrue(connection.recv(12).startswith(b"HTTP/1.1 200"))

    def test_an_answer_can_be_cut_short(self):
        self.server.control("fault", "POST", route="/api/v4/groups", cut=5, end="close")
        address = urllib.parse.urlsplit(self.server.base)
        with socket.create_connection((address.hostname, address.port)) as connection:
            connection.sendall(b"GET /api/v4/groups HTTP/1.1\r\nHost: localhost\r\n\r\n")
            received = b"".join(iter(lambda: connection.recv(4096), b""))
        self.assertEqual(len(received.split(b"\r\n\r\n", 1)[1]), 5)

    def test_nonsense_is_refused(self):
        for command, method in (("nothing", "GET"), ("commit", "GET"), ("commit", "POST"), ("nothing", "POST")):
            with self.subTest(command=command, method=method):
                with self.assertRaises(urllib.error.HTTPError) as caught:
                    self.server.control(command, method)
                caught.exception.close()
                self.assertEqual(caught.exception.code, 400)


class Program(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))

    def sample(self, name="one", files=True, **changes):
        (self.folder / name).mkdir()
        (self.folder / name / "project.json").write_text(json.dumps(DESCRIPTION | changes))
        if files:
            (self.folder / name / "files").mkdir()

    def assert_fails(self, text, *arguments):
        code, error = failure(*arguments)
        self.assertEqual(code, 1)
        self.assertIn(text, error)
        self.assertEqual(error.count("\n"), 1, error)

    def test_it_ends_cleanly_when_asked_to(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            with self.subTest(number), Server() as server:
                server.process.send_signal(number)
                self.assertEqual(server.process.wait(10), 0)

    def test_it_ends_cleanly_while_a_request_waits(self):
        with Server() as server:
            server.control("hold", "POST", route="/api/v4/groups")
            address = urllib.parse.urlsplit(server.base)
            with socket.create_connection((address.hostname, address.port)) as connection:
                connection.sendall(b"GET /api/v4/groups HTTP/1.1\r\nHost: localhost\r\n\r\n")
                while server.control("held")["count"] == 0:
                    pass
                server.process.send_signal(signal.SIGINT)
                self.assertEqual(server.process.wait(10), 0)

    def test_it_listens_on_the_loopback_address_only(self):
        with Server() as server:
            port = urllib.parse.urlsplit(server.base).port
            listening = pathlib.Path("/proc/net/tcp").read_text().splitlines()
            addresses = [line.split()[1] for line in listening if line.split()[3] == "0A"]
            self.assertEqual([entry for entry in addresses if entry.endswith(f":{port:04X}")], [f"0100007F:{port:04X}"])

    def test_it_listens_on_the_port_that_is_asked_for(self):
        with Server() as first:
            port = urllib.parse.urlsplit(first.base).port
        with Server("--port", str(port)) as server:
            self.assertEqual(server.url, f"http://127.0.0.1:{port}/samples")

    def test_a_port_in_use_is_an_error(self):
        with Server() as server:
            port = str(urllib.parse.urlsplit(server.base).port)
            self.assert_fails(f"cannot listen on port {port}: ", "--port", port)

    def test_a_wrong_port_is_an_error(self):
        for port in ("many", "70000", "-1"):
            with self.subTest(port):
                self.assert_fails("the port must be a number up to 65535", "--port", port)

    def test_a_missing_folder_is_an_error(self):
        self.assert_fails("there is no such folder", "--folder", str(self.folder / "missing"))

    def test_an_empty_folder_is_an_error(self):
        self.assert_fails("there is no project in this folder", "--folder", str(self.folder))

    def test_a_broken_description_is_an_error(self):
        self.sample()
        (self.folder / "one" / "project.json").write_text("{")
        self.assert_fails("one/project.json: ", "--folder", str(self.folder))

    def test_a_sample_without_files_is_an_error(self):
        self.sample(files=False)
        self.assert_fails("one/files: ", "--folder", str(self.folder))

    def test_two_samples_of_one_id_are_an_error(self):
        self.sample("one")
        self.sample("two")
        self.assert_fails("two: another project, too, has the id 1", "--folder", str(self.folder))


if __name__ == "__main__":
    unittest.main()
