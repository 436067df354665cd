# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Each fault of a server ends in a finding that names the request, the answer and what to do."""

import contextlib
import unittest

from checkcase import DETAILS, GROUP, CheckCase, archive_route

HELLO = 101
PAGES = f"{DETAILS}/projects"
ARCHIVE = archive_route(HELLO)
PICTURE = "/uploads/-/system/project/avatar/101/*"


class Faults(CheckCase):
    @contextlib.contextmanager
    def assert_found(self, route, code, expected, status, *arguments, alike=None):
        """Only this, or what is alike, is found, with the request, its status and some advice."""
        with self.subTest(route=route, expected=expected, status=status):
            self.server.restore()
            yield
            result = self.check("--json", "--only", "hello-qml", *arguments)
            found = [(alike or {}).get(identity, identity) for _, identity in result.findings]
            self.assertEqual((result.code, found), (code, expected))
            finding = result.report["findings"][0]
            self.assertTrue(finding["advice"])
            if finding.get("request") is None:  # an archive is refused for what is in it
                self.assertEqual(finding["id"], "archive-refused")
                return
            self.assertEqual(finding["request"]["status"], status)
            self.assertIn(route.rstrip("*"), finding["request"]["url"])
            if status != 200:
                self.assertTrue(finding["request"]["error"])

    ENDS = (
        (GROUP, 2, ["search-failed"]),
        (DETAILS, 2, ["listing-failed"]),
        (PAGES, 1, ["listing-not-compared"]),
        (ARCHIVE, 1, ["archive-failed"]),
        (PICTURE, 1, ["picture-failed", "picture-missing"]),
    )

    # For the network layer, an answer may end where its connection is closed.
    TAKEN_FOR_WHOLE = {
        "search-unusable": "search-failed",
        "listing-unusable": "listing-failed",
        "archive-refused": "archive-failed",
        "picture-unreadable": "picture-failed",
    }

    def on_every_route(self, status, act, *arguments, alike=None):
        for route, code, expected in self.ENDS:
            with self.assert_found(route, code, expected, status, *arguments, alike=alike):
                act(route)

    def test_statuses(self):
        for status in (401, 403, 404, 429, 500, 502, 503):
            self.on_every_route(status, lambda route, code=status: self.server.answer(
                route, b'{"message":"no"}', status=code, content_type="application/json"))

    def test_connections_that_are_reset(self):
        self.on_every_route(0, lambda route: self.server.fault(route, cut=-1))

    def test_connections_that_are_closed(self):
        self.on_every_route(0, lambda route: self.server.fault(route, cut=-1, end="close"))

    def test_answers_that_are_cut_short(self):
        self.on_every_route(200, lambda route: self.server.fault(route, cut=20, end="close"),
                            alike=self.TAKEN_FOR_WHOLE)

    def test_servers_that_never_answer(self):
        self.on_every_route(0, self.server.hold, "--timeout", "1")

    def test_answers_that_stall(self):
        self.on_every_route(200, lambda route: self.server.fault(route, cut=20, end="stall"), "--timeout", "1")

    def test_pages_in_place_of_answers(self):
        for route, code, expected in (
                (GROUP, 2, ["search-unusable"]), (DETAILS, 2, ["listing-unusable"]),
                (PAGES, 1, ["listing-not-compared"])):
            with self.assert_found(route, code, expected, 200):
                self.server.answer(route, b"<html>Sign in</html>", content_type="text/html")

    def test_answers_of_another_shape(self):
        for body in (b"{}", b'[{"id": "x"}]', b"[7]", b'"text"', b"null"):
            with self.assert_found(GROUP, 2, ["search-unusable"], 200):
                self.server.answer(GROUP, body, content_type="application/json")
        for body in (b"{}", b"[]", b"7"):
            with self.assert_found(DETAILS, 2, ["listing-unusable"], 200):
                self.server.answer(DETAILS, body, content_type="application/json")

    def test_server_that_is_not_there(self):
        url = self.server.url
        self.server.close()
        result = self.check("--json", url=url)
        self.assertEqual((result.code, result.findings), (2, [(None, "search-failed")]))
        self.assertIn("refused", result.report["findings"][0]["request"]["error"])

    def test_table_names_request_answer_and_advice(self):
        self.server.answer(ARCHIVE, b"", status=404)
        output = self.check("--only", "hello-qml").output
        self.assertIn("error: hello-qml [archive-failed]", output)
        self.assertIn(f"GET {self.address(ARCHIVE)}: status 404, ", output)
        self.assertIn("-> Push a first commit if the project is empty", output)


if __name__ == "__main__":
    unittest.main()
