# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The page in a real browser, light and dark. The pictures stay in the build tree, to be looked at."""

import http.server
import re
import struct
import subprocess
import threading
import unittest
import zlib

from checkcase import BUILD, CheckCase

SCREENSHOTS = BUILD / "screenshots"
SIZE = (1100, 2400)


def pixels(file):
    """The rows of an eight bit PNG, each the bytes of its pixels, and how many bytes a pixel has."""
    data, position, image = file.read_bytes(), 8, b""
    while position < len(data):
        length, kind = struct.unpack(">I4s", data[position:position + 8])
        content = data[position + 8:position + 8 + length]
        if kind == b"IHDR":
            width, _, _, colour = struct.unpack(">IIBB", content[:10])
        elif kind == b"IDAT":
            image += content
        position += length + 12
    step = {2: 3, 6: 4}[colour]
    image, size = zlib.decompress(image), width * step
    rows, before = [], bytearray(size)
    for start in range(0, len(image), size + 1):
        row = bytearray(image[start + 1:start + 1 + size])
        undo_filter(image[start], row, before, step)
        rows.append(bytes(row))
        before = row
    return rows, step


def undo_filter(kind, row, above, step):
    for i, value in enumerate(row):
        left = row[i - step] if i >= step else 0
        corner = above[i - step] if i >= step else 0
        estimate = left + above[i] - corner
        nearest = min((left, above[i], corner), key=lambda candidate: abs(estimate - candidate))
        row[i] = (value + (0, left, above[i], (left + above[i]) // 2, nearest)[kind]) & 255


class Page(CheckCase):
    def setUp(self):
        super().setUp()
        self.page = self.directory / "page.html"

    def browse(self, *arguments):
        """What the browser prints; as root it has no sandbox."""
        return subprocess.run(
            ["chromium-headless-shell", "--no-sandbox", "--disable-gpu", "--hide-scrollbars", "--no-first-run",
             f"--user-data-dir={self.directory / 'browser'}", f"--window-size={SIZE[0]},{SIZE[1]}",
             *arguments, self.page.as_uri()],
            capture_output=True, text=True, check=True, timeout=120).stdout

    def test_samples_look_right_light_and_dark(self):
        self.check("--html", self.page)
        SCREENSHOTS.mkdir(exist_ok=True)
        backgrounds = {}
        for name, scheme in (("light", 1), ("dark", 0)):
            file = SCREENSHOTS / f"check-page-{name}.png"
            self.browse(f"--blink-settings=preferredColorScheme={scheme}", f"--screenshot={file}")
            rows, step = pixels(file)
            backgrounds[name] = tuple(rows[0][:3])
            colours = {row[i:i + 3] for row in rows for i in range(0, len(row), step)}
            self.assertGreater(len(colours), 1000) # text and pictures
        self.assertEqual(backgrounds, {"light": (255, 255, 255), "dark": (0x1b, 0x1d, 0x20)})

    def test_cards_pictures_and_findings_are_there(self):
        self.check("--html", self.page)
        shown = self.browse("--dump-dom")
        self.assertEqual(shown.count('<section class="example">'), 8)
        self.assertEqual(shown.count("<img "), 7) # one sample has none
        self.assertEqual(re.findall(r"\[([a-z-]+)\]</span>", shown), [
            "project-file-missing", "path-prefix", "picture-missing"])

    def test_nothing_of_the_server_is_run_or_asked_for(self):
        asked = []

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                asked.append(self.path)
                self.send_response(204)
                self.end_headers()

        with http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler) as stranger:
            threading.Thread(target=stranger.serve_forever, daemon=True).start()
            address = f"http://127.0.0.1:{stranger.server_port}"
            attack = (f'"><script>document.title="owned"</script><img src="{address}/img" onerror="document.title=1">'
                      f'</style><style>body{{background:url({address}/css)}}</style><iframe src={address}/frame>')
            self.list_projects({"name": attack, "description": attack, "tag_list": [attack], "path": attack},
                               {"id": 102, "path": "b", "name": attack, "avatar_url": f"{self.server.url}/{attack}"})
            self.check("--html", self.page, "--name", attack.replace("|", ""))
            shown = self.browse("--dump-dom")
            stranger.shutdown()
        self.assertEqual(asked, [])
        self.assertNotIn("<title>owned", shown)
        self.assertNotIn("<iframe", shown)
        self.assertEqual(shown.count("<style>"), 1)
        self.assertIn("&lt;iframe", shown)


if __name__ == "__main__":
    unittest.main()
