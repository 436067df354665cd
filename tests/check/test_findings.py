# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the command finds in groups, texts, archives and pictures."""

import http.server
import json
import os
import struct
import tarfile
import threading
import unittest
import urllib.parse
import zlib

from checkcase import DETAILS, GROUP, CheckCase, archive, archive_route, entry

HELLO = 101
TOP = "hello-qml-main-1/"
PROJECT = (TOP + "CMakeLists.txt", TOP + "main.cpp")


def png(width, height):
    def chunk(kind, content):
        return struct.pack(">I", len(content)) + kind + content + struct.pack(">I", zlib.crc32(kind + content))
    rows = (b"\0" + b"\x80" * width) * height
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 0, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(rows)) + chunk(b"IEND", b""))


class PagedServer(http.server.ThreadingHTTPServer):
    """A group whose list has another hundred projects on each further page, @p filling bytes of them for nothing."""

    def __init__(self, group, filling=0):
        self.pages = pages = []

        class Handler(http.server.BaseHTTPRequestHandler):
            def log_message(self, *_):
                pass

            def do_GET(self):
                address = urllib.parse.urlparse(self.path)
                if address.path == GROUP:
                    answer = [{"id": group["id"], "path": "samples", "full_path": "samples", "name": "Samples"}]
                elif address.path == DETAILS:
                    answer = group
                else:
                    pages.append(int(urllib.parse.parse_qs(address.query)["page"][0]))
                    answer = [{"id": 10_000 + pages[-1] * 100 + number, "path": "p"} for number in range(100)]
                    answer[0]["description"] = "x" * filling
                body = json.dumps(answer).encode()
                self.send_response(200)
                self.send_header("Content-Length", str(len(body)))
                self.end_headers()
                self.wfile.write(body)
        super().__init__(("127.0.0.1", 0), Handler)
        self.url = f"http://127.0.0.1:{self.server_port}/samples"
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def __exit__(self, *arguments):
        self.shutdown()
        super().__exit__(*arguments)


class Group(CheckCase):
    def test_samples_have_what_they_were_made_to_have(self):
        result = self.check("--json")
        self.assertEqual(result.findings, [
            ("sketches", "project-file-missing"), ("maps", "path-prefix"), ("stopwatch", "picture-missing")])
        self.assertEqual(result.code, 1)
        self.assertEqual(result.report["summary"]["installable"], 7)

    def test_facts_of_an_example_are_those_of_its_project(self):
        report = self.check("--json", "--only", "hello-qml", "--name", "Mine").report
        example, = report["examples"]
        self.assertEqual(report["repository"], "Mine")
        self.assertEqual(example["title"], "Hello QML")
        self.assertEqual(example["tags"], ["qml", "quick", "ui"])
        self.assertEqual(example["lastActivity"], "2025-05-20T14:02:11Z")
        self.assertEqual(example["archive"]["commitTime"], "2025-05-20T13:58:40Z")
        self.assertRegex(example["archive"]["topDirectory"], r"^hello-qml-main-[0-9a-f]{40}$")
        self.assertEqual(example["archive"]["entries"], 6)
        self.assertEqual(example["picture"]["size"], {"width": 256, "height": 256})
        self.assertEqual(example["manifest"], {
            "name": "Hello QML", "projectPath": "CMakeLists.txt", "imageUrl": "./example-icon.png",
            "description": example["description"], "tags": ["qml", "quick", "ui"], "fileToOpen": "/Main.qml"})

    def test_icon_of_the_repository_is_a_picture(self):
        example, = self.check("--json", "--only", "weather-station").report["examples"]
        self.assertEqual(example["picture"], {
            "source": "icon", "place": "icons/128x128/weather-station.png", "size": {"width": 128, "height": 128}})

    def test_only_what_matches_is_downloaded(self):
        result = self.check("--only", "h*")
        self.assertEqual(result.code, 0)
        self.assertEqual(self.server.requests("/api/v4/projects/*"), [archive_route(HELLO)])

    def test_findings_below_the_limit_are_no_failure(self):
        self.assertEqual(self.check("--only", "maps").code, 1)
        self.assertEqual(self.check("--only", "maps", "--fail-on", "error").code, 0)
        self.assertEqual(self.check("--only", "sketches", "--fail-on", "error").code, 1)

    def test_another_group_is_told_with_all_that_match(self):
        group = self.server.fetch(self.address(GROUP + '?search="samples"'))[0]
        self.answer_json(GROUP, [group | {"full_path": "samples/attic"}, group | {"id": 5, "full_path": "samples"}])
        finding = next(f for f in self.check("--json").report["findings"] if f["id"] == "group-other")
        self.assertIn('"samples/attic" (number 4711)', finding["text"])
        self.assertIn('"samples" (number 5)', finding["text"])

    def test_group_that_is_not_found_cannot_be_checked(self):
        result = self.check("--json", url=self.address("/stranger"))
        self.assertEqual((result.code, result.findings), (2, [(None, "group-not-found")]))

    def test_dropped_projects_are_told_with_the_reason(self):
        self.list_projects({}, {"id": 7, "path": "a", "name": ""}, {"path": "b", "id": None, "web_url": None})
        report = self.check("--json").report
        self.assertEqual(report["group"]["dropped"], [
            {"path": "a", "title": "", "reasons": ["it has no title"]},
            {"path": "b", "title": "Hello QML", "reasons": ["it has no number", "it has no web address"]}])
        self.assertEqual([f["id"] for f in report["findings"]], ["project-dropped", "project-dropped"])

    def test_empty_group_is_told(self):
        self.list_projects()
        self.assertEqual(self.check("--json").findings, [(None, "listing-empty")])

    def test_projects_that_one_answer_does_not_carry_are_told(self):
        projects = self.group["projects"]
        self.list_projects({})
        self.answer_json(f"{DETAILS}/projects", projects)
        report = self.check("--json").report
        self.assertIn("listing-cut", [f["id"] for f in report["findings"]])
        self.assertEqual(len(report["group"]["beyondListing"]), len(projects) - 1)
        self.assertNotIn("hello-qml", report["group"]["beyondListing"])

    def many(self, count):
        return [{"id": 5000 + number, "path": f"p{number}"} for number in range(count)]

    def compared(self, pages):
        self.list_projects({})
        self.answer_json(f"{DETAILS}/projects", pages)
        report = self.check("--json").report
        text, = [f["text"] for f in report["findings"] if f["id"] == "listing-cut"]
        return report, text

    def test_page_that_comes_again_and_again_is_taken_once(self):
        report, text = self.compared(self.many(100))
        self.assertEqual(len(report["group"]["beyondListing"]), 100)
        self.assertEqual(len(self.server.requests(f"{DETAILS}/projects")), 2)
        self.assertTrue(text.endswith(", p19 and 80 more"), text)

    def test_pages_without_end_are_not_all_asked_for(self):
        with PagedServer(self.group) as server:
            report = self.check("--json", "--only", "none", url=server.url).report
            self.assertEqual(server.pages, list(range(1, 101)))
        text, = [f["text"] for f in report["findings"] if f["id"] == "listing-cut"]
        self.assertIn("10000 of more than 10000 projects: ", text)

    def test_pages_that_are_too_much_for_the_memory_are_given_up(self):
        with PagedServer(self.group, filling=40_000_000) as server:
            report = self.check("--json", "--only", "none", url=server.url).report
            self.assertLessEqual(len(server.pages), 7)
        finding, = [f for f in report["findings"] if f["id"] == "listing-not-compared"]
        self.assertEqual(finding["request"]["error"], "the list is too long")

    def test_pattern_that_matches_nothing_is_told(self):
        result = self.check("--json", "--only", "helo*")
        self.assertEqual((result.code, result.findings), (1, [(None, "selection-empty")]))
        self.assertIn("helo*", result.report["findings"][0]["text"])


class Texts(CheckCase):
    def findings(self, *changes):
        self.list_projects(*changes)
        return self.check("--json").findings

    def test_path_that_is_no_name_is_told(self):
        for path in ("a/b", "..", "a*"):
            with self.subTest(path):
                self.assertEqual(self.findings({"path": path}), [(path, "path-not-plain")])

    def test_paths_that_differ_in_letter_case_are_told(self):
        self.assertEqual(self.findings({"path": "one", "name": "1"}, {"path": "ONE", "name": "2"})[:1],
                         [("one", "path-twice")])

    def test_equal_titles_are_told(self):
        found = self.findings({"path": "hello-qml"}, {"path": "second", "id": 102})
        self.assertIn(("hello-qml", "title-twice"), found)

    def test_missing_texts_are_told(self):
        self.assertEqual(self.findings({"description": " \n", "tag_list": [], "last_activity_at": "yesterday"}), [
            ("hello-qml", "description-missing"), ("hello-qml", "tags-missing"), ("hello-qml", "activity-unknown")])


class Archives(CheckCase):
    def findings(self, *entries):
        self.list_projects({})
        self.server.answer(archive_route(HELLO), archive(*entries))
        return [identity for _, identity in self.check("--json").findings]

    def test_honest_archive_is_not_complained_of(self):
        self.assertEqual(self.findings(*PROJECT), [])

    def test_archive_that_leads_out_is_refused(self):
        self.assertEqual(self.findings(*PROJECT, "../evil"), ["archive-refused"])

    def test_archive_that_was_cut_short_is_refused(self):
        self.list_projects({})
        self.server.answer(archive_route(HELLO), archive(*PROJECT)[:-3000])
        result = self.check("--json")
        self.assertEqual(result.findings, [("hello-qml", "archive-refused")])
        self.assertFalse(result.report["examples"][0]["archive"]["isAccepted"])
        self.assertTrue(result.report["examples"][0]["archive"]["reason"])

    def test_page_in_place_of_an_archive_is_refused(self):
        self.list_projects({})
        self.server.answer(archive_route(HELLO), b"<html>Sign in</html>", content_type="text/html")
        self.assertEqual(self.check("--json").findings, [("hello-qml", "archive-refused")])

    def test_archive_without_bytes_is_told(self):
        self.list_projects({})
        self.server.answer(archive_route(HELLO), b"")
        self.assertEqual(self.check("--json").findings, [("hello-qml", "archive-empty")])

    def test_missing_project_file_is_told(self):
        self.assertEqual(self.findings(TOP + "below/CMakeLists.txt"), ["project-file-missing"])

    def test_manifest_of_its_own_is_told(self):
        self.assertEqual(self.findings(*PROJECT, TOP + "examples-manifest.xml"), ["manifest-ignored"])

    def test_links_that_lead_out_or_nowhere_are_told(self):
        for target in ("/etc/hostname", "../../up", "..", "../" + TOP + "main.cpp", "missing", "main.cpp/x", "link"):
            with self.subTest(target):
                self.assertEqual(self.findings(*PROJECT, entry(TOP + "link", tarfile.SYMTYPE, target)), ["link-out"])

    def test_links_that_lead_out_through_others_are_told(self):
        self.findings(*PROJECT, TOP + "a/b/file", entry(TOP + "up", tarfile.SYMTYPE, "a/b"),
                      entry(TOP + "a/out", tarfile.SYMTYPE, "../up/../../.."),
                      entry(TOP + "a/in", tarfile.SYMTYPE, "../up/../.."))
        finding, = [f for f in self.check("--json").report["findings"] if f["id"] == "link-out"]
        self.assertEqual(finding["text"], f"{TOP}a/out -> ../up/../../..")

    def test_links_within_are_not_complained_of(self):
        for target in ("main.cpp", ".", "./a/../main.cpp", "a//b/file", "a/b/", "a/b/../../main.cpp"):
            with self.subTest(target):
                self.assertEqual(
                    self.findings(*PROJECT, TOP + "a/b/file", entry(TOP + "link", tarfile.SYMTYPE, target)), [])

    def test_names_that_differ_in_letter_case_are_told(self):
        self.assertEqual(self.findings(*PROJECT, TOP + "Readme", TOP + "README"), ["name-case"])

    def test_names_that_other_systems_refuse_are_told(self):
        for name in ("a:b", "aux.h", "dot.", "blank ", "bell\a", "que?", "COM1"):
            with self.subTest(name):
                self.assertEqual(self.findings(*PROJECT, TOP + name), ["name-unportable"])

    def test_names_like_devices_are_fine(self):
        self.assertEqual(self.findings(*PROJECT, TOP + "console.h", TOP + "com10.txt", TOP + "größe"), [])

    def test_archive_without_one_top_directory_is_told(self):
        self.assertIn("archive-scattered", self.findings("hello-qml/CMakeLists.txt", "second/file"))

    def test_top_directory_of_another_name_is_told(self):
        self.assertEqual(self.findings("other-1/CMakeLists.txt"), ["archive-foreign", "project-file-missing"])

    def test_large_archive_is_told(self):
        self.list_projects({})
        large = entry(TOP + "large", content=os.urandom(50_100_000))
        self.server.answer(archive_route(HELLO), archive(*PROJECT, large))
        self.assertEqual(self.check("--json").findings, [("hello-qml", "archive-large")])


class Pictures(CheckCase):
    def findings(self, picture):
        self.list_projects({"avatar_url": self.address("/picture")})
        if picture is not None:
            self.server.answer("/picture", picture, content_type="image/png")
        return self.check("--json").findings

    def test_good_picture_is_not_complained_of(self):
        self.assertEqual(self.findings(png(128, 128)), [])
        self.assertEqual(self.findings(png(180, 128)), [])

    def test_small_picture_is_told(self):
        self.assertEqual(self.findings(png(100, 100)), [("hello-qml", "picture-small")])

    def test_oblong_picture_is_told(self):
        self.assertEqual(self.findings(png(400, 200)), [("hello-qml", "picture-not-square")])
        self.assertEqual(self.findings(png(200, 400)), [("hello-qml", "picture-not-square")])

    def test_picture_that_is_none_is_told(self):
        self.assertEqual(self.findings(b"<html>Sign in</html>"), [
            ("hello-qml", "picture-unreadable"), ("hello-qml", "picture-missing")])

    def test_picture_that_does_not_come_is_told_with_its_request(self):
        self.list_projects({"avatar_url": self.address("/picture")})
        self.server.answer("/picture", b"", status=500)
        finding = self.check("--json").report["findings"][0]
        self.assertEqual(finding["id"], "picture-failed")
        self.assertEqual((finding["request"]["url"], finding["request"]["status"]), (self.address("/picture"), 500))


if __name__ == "__main__":
    unittest.main()
