# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The first start of the IDE: an empty data location, and a repository in the installation-wide settings."""

import re
import unittest
import xml.etree.ElementTree

import inifile
from case import BUILD, FAULTY, INSTALLABLE, SAMPLE, TITLES, TalkativeIde, archive_route, stored_date
from demo import DemoServer
from display import VirtualDisplay
from sandbox import Sandbox
from waiting import wait_until

API = "zel.varnel.plugin.api"
SERVICE = "zel.varnel.plugin.service"


class FirstStart(unittest.TestCase):
    """One start; each test looks at another trace that it left."""

    @classmethod
    def setUpClass(cls):
        cls.sandbox = cls.enterClassContext(Sandbox())
        with VirtualDisplay(cls.sandbox, (1440, 900)) as display, DemoServer(BUILD) as server:
            cls.url = server.url
            cls.sandbox.install_repositories({"Demo": server.url})
            with TalkativeIde(BUILD, cls.sandbox, display) as cls.ide:
                cls._use(cls.ide)
                cls.exit_code = cls.ide.quit()
            cls.requests = server.requests()
        cls.repository = cls.sandbox.repository("Demo")

    @classmethod
    def _use(cls, ide):
        ide.started()
        wait_until(lambda: set(cls.sandbox.manifests("Demo")) == set(INSTALLABLE), "the installation", 60)
        ide.wait_for_text(SERVICE, "creating example mainfest")
        ide.main_window().call("showMaximized")
        ide.show_examples("Demo")
        wait_until(lambda: len(ide.tiles()) >= len(INSTALLABLE), "the tiles")
        cls.tiles = ide.tiles()
        (BUILD / "screenshots").mkdir(exist_ok=True)
        ide.screenshot(BUILD / "screenshots/welcome.png")

    def manifest(self, path):
        return xml.etree.ElementTree.parse(self.repository / path / "examples-manifest.xml").getroot()

    def test_the_ide_ends_without_an_error(self):
        self.assertEqual(self.exit_code, 0)

    def test_nothing_is_complained_about(self):
        self.assertEqual([message for message in self.ide.messages() if message.level != "debug"], [])

    def test_each_project_has_a_directory_of_its_own_but_for_the_faulty_one(self):
        self.assertEqual(sorted(entry.name for entry in self.repository.iterdir()), INSTALLABLE)

    def test_the_faulty_project_is_reported(self):
        texts = self.ide.texts(SERVICE)
        failure = texts.index('Status: "There was an error while creating example mainfest"')
        self.assertEqual(texts[failure - 1], "Project file not found")
        self.assertEqual(sum("mainfest" in text for text in texts), 1)

    def test_no_temporary_file_is_left(self):
        self.assertEqual(sorted(self.sandbox.temporary.glob("*.tar.gz")), [])

    def test_manifests_name_the_project_and_its_texts(self):
        for path in INSTALLABLE:
            with self.subTest(path):
                root = self.manifest(path)
                example = root.find("examples/example")
                self.assertEqual(root.get("module"), "Demo")
                self.assertEqual(example.get("name"), SAMPLE[path]["title"])
                self.assertEqual(example.findtext("description"), SAMPLE[path]["description"])
                self.assertEqual(example.findtext("tags"), ",".join(SAMPLE[path]["topics"]))
                self.assertTrue((self.repository / path / example.get("projectPath")).is_file())

    def test_manifests_name_the_file_to_open(self):
        self.assertEqual(self.manifest("hello-qml").findtext("examples/example/fileToOpen"), "/Main.qml")
        self.assertEqual(self.manifest("word-count").findtext("examples/example/fileToOpen"), "/main.cpp")

    def test_pictures_come_from_the_project_its_icons_or_nowhere(self):
        def url(path):
            return self.manifest(path).find("examples/example").get("imageUrl")
        self.assertEqual(url("hello-qml"), str(self.repository / "hello-qml/example-icon.png"))
        self.assertEqual(url("weather-station"), str(self.repository / "weather-station/icons/128x128/weather-station.png"))
        self.assertEqual(url("stopwatch"), "dummy.png")

    def test_the_check_is_stored_as_done_today(self):
        self.assertEqual(inifile.as_list(self.sandbox.settings("Varnel")["UpdatesCheckedDate"]),
                         [f"Demo|{stored_date(0)}"])

    def test_the_repository_is_stored_for_the_user(self):
        self.assertEqual(self.sandbox.settings("Varnel")["Repositories"], f"Demo|{self.url}|")

    def test_the_ide_is_told_where_the_examples_are(self):
        self.assertEqual(self.sandbox.settings("Help")["InstalledExamples"],
                         f"Demo|{self.repository}|{self.repository}")

    def test_every_archive_is_asked_for_once(self):
        wanted = [archive_route(path) for path in SAMPLE]
        self.assertEqual(sorted(request for request in self.requests if "archive" in request), sorted(wanted))

    def test_the_group_is_searched_then_listed_then_downloaded(self):
        self.assertEqual(self.requests[0], "/api/v4/groups")
        self.assertRegex(self.requests[1], r"^/api/v4/groups/\d+$")
        self.assertRegex(self.requests[2], r"archive\.tar\.gz$")

    def test_the_log_tells_the_road_in_its_order(self):
        api = [text for text in self.ide.texts(API) if text.startswith("Status: ")]
        self.assertEqual(api[:3], [
            'Status: "Searching examples"', 'Status: "API client is ready"', 'Status: "Fetch examples"'])
        self.assertRegex(api[3], r'^Status: "Downloading example: ')
        service = self.ide.texts(SERVICE)
        self.assertEqual(service[0], f"Updating examples: {len(SAMPLE)}")
        unpacked = sorted(re.findall(r'Unpacking example: (.*)"', "\n".join(service)))
        self.assertEqual(unpacked, sorted(sample["title"] for sample in SAMPLE.values()))

    def test_the_welcome_screen_shows_what_is_installed(self):
        self.assertEqual(sorted(self.tiles), TITLES)
        for path in INSTALLABLE:
            with self.subTest(path):
                tile = self.tiles[SAMPLE[path]["title"]]
                self.assertEqual(tile["description"], SAMPLE[path]["description"])
                self.assertEqual(tile["tags"], SAMPLE[path]["topics"])
                self.assertEqual(tile["hasPicture"], path != "stopwatch")

    def test_the_faulty_project_is_not_on_the_welcome_screen(self):
        self.assertNotIn(SAMPLE[FAULTY]["title"], self.tiles)


if __name__ == "__main__":
    unittest.main()
