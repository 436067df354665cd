# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""How the report is shown: as a table, as JSON, as a page, and with what a server must not bring there."""

import json
import os
import pathlib
import re
import unicodedata
import unittest

import jsonschema

from checkcase import DETAILS, GROUP, CheckCase, archive, archive_route

SCHEMA = json.loads((pathlib.Path(__file__).resolve().parents[2] / "check/report.schema.json").read_text())
ODD = "a\x1b[31mb\x07\x9b2J\u202egnp\u2066\u200b\u061c\x7f\n\r\u2028<script>alert(1)</script>&\"'|\ufeff\U000e0041\u0600 %1 %2"
HARMLESS = {"\n"}


def hidden_characters(text):
    """What moves the cursor, turns the writing round or cannot be seen."""
    return {character for character in text
            if unicodedata.category(character) in ("Cc", "Cf", "Cs", "Co", "Cn", "Zl", "Zp")} - HARMLESS


class Schema(CheckCase):
    def assert_valid(self, *arguments):
        report = self.check("--json", *arguments).report
        jsonschema.validate(report, SCHEMA, cls=jsonschema.Draft202012Validator)
        return report

    def test_schema_is_one(self):
        jsonschema.Draft202012Validator.check_schema(SCHEMA)

    def test_report_on_the_samples_is_valid(self):
        self.assert_valid()

    def test_report_on_faults_is_valid(self):
        self.server.answer(archive_route(101), b"", status=404)
        self.server.answer(archive_route(102), b"no archive")
        self.server.answer(archive_route(103), archive("../evil"))
        self.server.answer(f"{DETAILS}/projects", b"", status=500)
        self.assertEqual(self.assert_valid()["summary"]["installable"], 4)

    def test_report_without_a_group_is_valid(self):
        self.server.answer(GROUP, b"", status=500)
        report = self.assert_valid()
        self.assertEqual(report["summary"], {
            "isComplete": False, "errors": 1, "warnings": 0, "installable": 0, "exitCode": 2})

    def test_report_on_odd_texts_is_valid(self):
        self.list_projects({"name": ODD, "description": ODD, "tag_list": [ODD, 7, ""], "path": ODD},
                           {"name": 7, "path": ODD})
        self.assert_valid()

    def test_exit_code_in_the_report_is_that_of_the_command(self):
        for arguments in ((), ("--only", "hello-qml"), ("--only", "maps", "--fail-on", "error")):
            result = self.check("--json", *arguments)
            self.assertEqual(result.report["summary"]["exitCode"], result.code)


class Escaping(CheckCase):
    """A hostile server's texts in every place where there are texts."""

    def setUp(self):
        super().setUp()
        group = {"id": 4711, "name": ODD, "full_path": ODD}
        self.answer_json(GROUP, [group, group])
        self.list_projects(
            {"name": ODD, "description": ODD, "tag_list": [ODD], "path": ODD, "avatar_url": "http://127.0.0.1/" + ODD},
            {"name": ODD, "description": "", "tag_list": ["x"], "id": 103, "path": "b"},
            {"name": "", "path": ODD})
        self.server.answer(archive_route(103), archive(*(f"b-{ODD.replace(chr(10), '')}/{name}" for name in (
            "CMakeLists.txt", "x\x1b]0;owned\x07", "\u202ey", "Z", "z"))))

    def test_table_shows_no_hidden_character(self):
        for arguments in ((), ("--quiet",)):
            output = self.check(*arguments).output
            self.assertIn("\\u{202e}", output)
            self.assertEqual(hidden_characters(output), set())

    def test_json_shows_no_hidden_character_and_loses_none(self):
        result = self.check("--json")
        self.assertEqual(hidden_characters(result.output), set())
        self.assertEqual(result.report["examples"][0]["title"], ODD)

    def test_page_shows_no_hidden_character_and_no_markup(self):
        page = self.directory / "page.html"
        self.check("--html", page)
        text = page.read_text(encoding="utf-8")
        self.assertEqual(hidden_characters(text), set())
        self.assertNotIn("<script", text)
        self.assertIn("&lt;script&gt;alert(1)&lt;/script&gt;&amp;&quot;&#39;", text)

    def test_marker_in_a_text_stays_one(self):
        self.assertIn("%1 %2", self.check().output)


class Secrets(CheckCase):
    def test_password_in_an_address_is_shown_nowhere(self):
        page = self.directory / "page.html"
        url = self.server.url.replace("//", "//somebody:secret-word@")
        self.list_projects({"avatar_url": self.address("/none").replace("//", "//somebody:secret-word@")})
        self.server.answer(archive_route(101), b"", status=404)
        for arguments in ((), ("--json",), ("--quiet",)):
            self.assertNotIn("secret-word", self.check("--html", page, *arguments, url=url).output)
        self.assertIn("somebody@", page.read_text())
        self.assertNotIn("secret-word", page.read_text())


class Length(CheckCase):
    def test_text_without_end_fills_no_screen_and_no_page(self):
        page = self.directory / "page.html"
        self.list_projects({"path": "x" * 1_000_000, "name": "x" * 1_000_000, "description": "x" * 1_000_000},
                           {"path": "y", "id": 103, "name": "x" * 1_000_000})
        self.assertLess(len(self.check("--html", page).output), 20_000)
        self.assertLess(len(page.read_text()), 60_000)


class Page(CheckCase):
    def test_page_is_of_its_own(self):
        page = self.directory / "page.html"
        self.check("--html", page)
        text = page.read_text(encoding="utf-8")
        self.assertEqual(re.findall(r"<(?:script|link|iframe|object|embed|a)\b", text), [])
        self.assertEqual({source[:22] for source in re.findall(r'src="([^"]*)"', text)}, {"data:image/png;base64,"})
        self.assertNotIn("url(", text)

    def test_page_names_the_group_and_counts_its_projects(self):
        page = self.directory / "page.html"
        self.check("--html", page)
        self.assertIn("Group &quot;Samples&quot; (samples, number 4711): 8 projects listed, 0 dropped, none missing",
                      page.read_text(encoding="utf-8"))

    def test_page_goes_into_a_pipe_which_stays_one(self):
        pipe = self.directory / "pipe"
        os.mkfifo(pipe)
        reader = os.open(pipe, os.O_RDONLY | os.O_NONBLOCK)
        self.check("--html", pipe, "--only", "stopwatch")
        self.assertTrue(os.read(reader, 65536).endswith(b"</html>\n"))
        os.close(reader)
        self.assertTrue(pipe.is_fifo())

    def test_page_into_a_pipe_without_a_reader_is_told(self):
        pipe = self.directory / "pipe"
        os.mkfifo(pipe)
        result = self.check("--html", pipe, "--only", "stopwatch")
        self.assertEqual(result.code, 2)
        self.assertIn("pipe cannot be written", result.errors)

    def test_page_that_cannot_be_written_is_told(self):
        result = self.check("--html", self.directory / "missing/page.html")
        self.assertEqual(result.code, 2)
        self.assertIn("page.html cannot be written", result.errors)


class Table(CheckCase):
    def test_quiet_command_prints_findings_only(self):
        self.assertEqual(self.check("--quiet", "--only", "hello-qml").output, "")
        output = self.check("--quiet", "--only", "stopwatch").output
        self.assertEqual(len(output.splitlines()), 3)
        self.assertTrue(output.startswith("warning: stopwatch [picture-missing]\n"))

    def test_no_colours_and_no_progress_where_there_is_no_terminal(self):
        result = self.check()
        self.assertNotIn("\x1b", result.output)
        self.assertEqual(result.errors, "")

    def test_wide_letters_keep_the_columns(self):
        self.list_projects({"name": "地図と天気"}, {"name": "Maps", "path": "b", "id": 103})
        lines = [line for line in self.check().output.splitlines() if line.startswith(("  PATH", "  hello", "  b "))]
        columns = [re.search(r"(ARCHIVE|[0-9.]+ k?B)", line).start() for line in lines]
        self.assertEqual(columns, [columns[0], columns[0] - 5, columns[0]])

    def test_summary_counts(self):
        self.assertTrue(self.check().output.endswith("1 error, 2 warnings; 7 of 8 examples install.\n"))


if __name__ == "__main__":
    unittest.main()
