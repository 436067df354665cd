# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The Debian changelog that is made from CHANGELOG.md."""

import unittest

import changelog

TEXT = """# Changes

An introduction.

## 2.0.0 (unreleased)

- Does this,
  and on two lines.
- Does *that*.

## 1.0.0 (2026-01-31)

- Begins.
"""


class Changelog(unittest.TestCase):

    def test_releases_are_read_with_their_changes(self):
        self.assertEqual(changelog.releases(TEXT), [
            ("2.0.0", "unreleased", ["Does this, and on two lines.", "Does *that*."]),
            ("1.0.0", "2026-01-31", ["Begins."])])

    def test_entries_are_as_debian_wants_them(self):
        text = changelog.debian(changelog.releases(TEXT), "Someone <someone@example.org>", 1_800_000_000)

        self.assertEqual(text, """varnel (2.0.0) unstable; urgency=medium

  * Does this, and on two lines.
  * Does that.

 -- Someone <someone@example.org>  Fri, 15 Jan 2027 08:00:00 -0000

varnel (1.0.0) unstable; urgency=medium

  * Begins.

 -- Someone <someone@example.org>  Sat, 31 Jan 2026 12:00:00 -0000
""")

    def test_what_is_malformed_is_refused(self):
        for text in ("", "## 1.0.0\n\n- Begins.\n", "## 1.0.0 (soon)\n\n- Begins.\n", "## 1.0.0 (unreleased)\n"):
            with self.subTest(text), self.assertRaises(changelog.Malformed):
                changelog.releases(text)

    def test_a_date_that_is_none_is_refused(self):
        with self.assertRaises(changelog.Malformed):
            changelog.releases("## 1.0.0 (2026-02-30)\n\n- Begins.\n")


if __name__ == "__main__":
    unittest.main()
