# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What is configured and built with and without the tests, and where modules are missing that only tests need."""

import pathlib
import re
import subprocess
import tempfile
import unittest

PROJECT = pathlib.Path(__file__).resolve().parents[2]
NO_TESTS = "-DVARNEL_BUILD_TESTS=OFF"
NO_QT_TEST = "-DCMAKE_DISABLE_FIND_PACKAGE_Qt6Test=ON"
NO_HTTP_SERVER = "-DCMAKE_DISABLE_FIND_PACKAGE_Qt6HttpServer=ON"


class Configure(unittest.TestCase):

    def configure(self, *options):
        self.build = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory(prefix="varnel-configure-")))
        return subprocess.run(
            ["cmake", "--preset", "release", "-S", PROJECT, "-B", self.build, *options],
            cwd=PROJECT, capture_output=True, text=True, check=False)

    def assert_configured(self, *options):
        result = self.configure(*options)
        self.assertEqual(result.returncode, 0, result.stderr)
        return result.stdout

    def targets(self):
        text = subprocess.run(["ninja", "-C", self.build, "-t", "targets", "all"],
                              capture_output=True, text=True, check=True).stdout
        return set(re.findall(r"(?m)^(\S+): phony$", text))

    def built(self, *targets):
        """The names of the programs and libraries that building these, or everything, would make."""
        text = subprocess.run(["ninja", "-C", self.build, "-n", "-v", *targets],
                              capture_output=True, text=True, check=True).stdout
        return {pathlib.Path(file).name for file in re.findall(r" -o (\S+)", text) if not file.endswith(".o")}

    def count_tests(self):
        text = subprocess.run(["ctest", "--test-dir", self.build, "--show-only"],
                              capture_output=True, text=True, check=True).stdout
        return int(re.search(r"Total Tests: (\d+)", text)[1])

    def test_builds_neither_tests_nor_driver_when_told_not_to(self):
        self.assert_configured(NO_TESTS)
        built = self.built()
        self.assertIn("libVarnel.so", built)
        self.assertEqual([name for name in built if name.startswith(("tst_", "libVarnelDriver"))], [])
        self.assertEqual(self.count_tests(), 0)

    def test_shows_the_plug_in_without_tests(self):
        self.assert_configured(NO_TESTS)
        self.assertLessEqual({"libVarnel.so", "libVarnelDriver.so", "libFerronaOS.so", "varnel-demo-server"},
                             self.built("showcase"))

    def test_builds_all_of_it_otherwise(self):
        self.assert_configured()
        self.assertLessEqual({"libVarnel.so", "libVarnelDriver.so", "varnel-demo-server", "tst_example"}, self.built())
        self.assertGreater(self.count_tests(), 20)

    def test_needs_no_test_module_for_the_plug_in_alone(self):
        output = self.assert_configured(NO_TESTS, NO_QT_TEST, NO_HTTP_SERVER)
        self.assertIn("-- Without Qt's HTTP server module: no demo repository, no showcase", output)
        self.assertIn("-- Without Qt Test: no driver for the IDE, no showcase", output)
        self.assertIn("libVarnel.so", self.built())
        self.assertFalse({"showcase", "VarnelDriver", "varnel-demo-server", "demo_server"} & self.targets())

    def test_says_which_module_the_tests_miss(self):
        for option, module in ((NO_QT_TEST, "Test"), (NO_HTTP_SERVER, "HttpServer")):
            with self.subTest(module):
                result = self.configure(option)
                self.assertNotEqual(result.returncode, 0)
                self.assertRegex(result.stderr, rf"\bQt6{module}\b")


if __name__ == "__main__":
    unittest.main()
