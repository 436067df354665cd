# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The command as a user at a terminal has it: options, help, progress and Ctrl+C."""

import fcntl
import os
import pathlib
import pty
import re
import select
import signal
import struct
import subprocess
import termios
import time
import unittest

from checkcase import DETAILS, GROUP, PATIENCE, PROGRAM, CheckCase, archive, archive_route, entry
from waiting import wait_until

HELLO = 101
ENDLESS = "int x;\n" * 10_000_000


def at_terminal(command, environment):
    """Exit code and all that the command writes to a terminal of 80 by 24."""
    ours, theirs = pty.openpty()
    fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 80, 0, 0))
    with subprocess.Popen(command, env=environment, stdin=theirs, stdout=theirs, stderr=theirs) as process:
        os.close(theirs)
        output = b""
        while True:
            try:
                piece = os.read(ours, 65536)
            except OSError: # the end, as Linux tells it
                piece = b""
            if not piece:
                break
            output += piece
        os.close(ours)
        return process.wait(PATIENCE), output.decode()


def is_asleep(process):
    """Whether all of its threads wait: what it was going to ask for, it has asked for."""
    try:
        states = [task.read_text().rpartition(")")[2].split()[0]
                  for task in pathlib.Path(f"/proc/{process.pid}/task").glob("*/stat")]
    except OSError: # a thread that has ended meanwhile
        return False
    return set(states) == {"S"}


class Options(CheckCase):
    def run_alone(self, *arguments):
        return subprocess.run([PROGRAM, *arguments], env=self.environment(), capture_output=True, text=True,
                              timeout=PATIENCE, check=False)

    def test_help_fits_a_terminal(self):
        for option in ("--help", "-h"):
            result = self.run_alone(option)
            self.assertEqual(result.returncode, 0)
            lines = result.stdout.splitlines()
            self.assertLessEqual(len(lines), 24)
            self.assertLess(max(map(len, lines)), 80)
            self.assertEqual(lines[0], "Usage: varnel-check [options] URL")

    def test_help_names_each_option_in_one_line(self):
        names = re.findall(r"^  (?:-., )?--([a-z-]+) .*\S$", self.run_alone("--help").stdout, re.MULTILINE)
        self.assertEqual(names, ["name", "only", "fail-on", "json", "html", "install", "settings", "force", "jobs",
                                 "timeout", "quiet", "version", "help"])

    def test_version_is_printed(self):
        for option in ("--version", "-v"):
            self.assertRegex(self.run_alone(option).stdout, r"^varnel-check \d+\.\d+\.\d+\n$")

    def test_wrong_uses_are_told_and_nothing_is_requested(self):
        url = self.server.url
        for arguments, text in (
                ((), "give the web address of one group"),
                ((url, url), "give the web address of one group"),
                (("--frob", url), "Unknown option 'frob'"),
                (("file:///etc",), "is no web address of a group"),
                (("http://127.0.0.1/",), "is no web address of a group"),
                (("--jobs", "0", url), "--jobs needs a number from 1 to 64"),
                (("--jobs", "65", url), "--jobs needs a number from 1 to 64"),
                (("--timeout", "soon", url), "--timeout needs a number"),
                (("--fail-on", "x", url), '--fail-on needs "warning" or "error"'),
                (("--html", "", url), "--html needs a value"),
                (("--name", "a|b", url), "--name must not contain"),
                (("--force", url), "go with --install only"),
                (("--settings", "x", url), "go with --install only")):
            with self.subTest(arguments):
                result = self.run_alone(*arguments)
                self.assertEqual((result.returncode, result.stdout), (2, ""))
                self.assertIn(text, result.stderr)
                self.assertIn("varnel-check --help says more", result.stderr)
        self.assertEqual(self.server.requests(GROUP), [])

    def test_jobs_bound_the_downloads_at_a_time(self):
        for jobs in (1, 3):
            self.server.hold("/api/v4/projects/*")
            with self.running("--jobs", str(jobs)) as process:
                wait_until(lambda: self.server.held("/api/v4/projects/*") == jobs, "the downloads", 20)
                wait_until(lambda: is_asleep(process), "the command to have no more to ask for", 20)
                self.assertEqual(self.server.held("/api/v4/projects/*"), jobs)
                self.server.release("/api/v4/projects/*")
                process.communicate(timeout=PATIENCE)


class Reader(CheckCase):
    TOLD = b"varnel-check: the output cannot be written\n"

    def test_reader_that_goes_is_told_and_leaves_nothing_behind(self):
        for command in (self.command("--json"), [PROGRAM, "--help"]): # a network library is in the first one only
            ours, theirs = os.pipe()
            os.close(ours)
            with self.subTest(command):
                result = subprocess.run(command, env=self.environment(), stdout=theirs, stderr=subprocess.PIPE,
                                        timeout=PATIENCE, check=False)
                self.assertEqual((result.returncode, result.stderr), (2, self.TOLD))
            os.close(theirs)

    def test_output_that_cannot_be_written_is_told(self):
        install = self.command("--only", "maps", "--fail-on", "error", "--install", self.directory / "examples")
        for command in (self.command(), self.command("--json"), install, [PROGRAM, "--help"], [PROGRAM, "--version"]):
            with self.subTest(command), open("/dev/full", "wb") as full:
                result = subprocess.run(command, env=self.environment(), stdout=full, stderr=subprocess.PIPE,
                                        timeout=PATIENCE, check=False)
                self.assertEqual(result.returncode, 2)
                self.assertEqual(result.stderr, self.TOLD * (2 if command is install else 1))

    def test_closed_output_is_told_and_takes_no_other_file_for_it(self):
        page = self.directory / "page.html"
        result = subprocess.run(["sh", "-c", 'exec "$@" >&-', "sh", *self.command("--html", page)],
                                env=self.environment(), capture_output=True, timeout=PATIENCE, check=False)
        self.assertEqual((result.returncode, result.stderr), (2, self.TOLD))
        self.assertTrue(page.read_text().endswith("</html>\n"))

    def test_place_of_a_closed_descriptor_is_taken_by_nothing_that_matters(self):
        self.server.hold(DETAILS)
        with subprocess.Popen(["sh", "-c", 'exec "$@" <&- >&- 2>&-', "sh", *self.command()],
                              env=self.environment()) as process:
            wait_until(lambda: self.server.held(DETAILS), "the request", 20)
            taken = [os.readlink(f"/proc/{process.pid}/fd/{descriptor}") for descriptor in range(3)]
            self.server.release(DETAILS)
        self.assertEqual(taken, ["/dev/null"] * 3)

    def test_report_is_given_up_when_nobody_reads_it(self):
        self.list_projects({"description": "long " * 100_000}) # more than a pipe holds
        with self.running("--json", "--only", "hello-qml") as process:
            wait_until(lambda: select.select([process.stdout], [], [], 0)[0], "the report", 40)
            process.send_signal(signal.SIGTERM)
            self.assertEqual(process.wait(PATIENCE), 130)
            self.assertEqual(process.stderr.read(), b"")


class Machine(CheckCase):
    def assert_refused(self, fault, **environment):
        result = subprocess.run(self.command(), env=self.environment() | environment, capture_output=True, text=True,
                                timeout=PATIENCE, check=False)
        self.assertEqual((result.returncode, result.stdout, result.stderr), (2, "", f"varnel-check: {fault}\n"))
        self.assertEqual(self.server.requests(GROUP), [])

    def test_missing_temporary_directory_is_named(self):
        missing = self.directory / "missing"
        self.assert_refused(f"no directory can be made in {missing}", TMPDIR=str(missing))
        self.assertEqual([name for name in os.listdir("/") if name.startswith("varnel-check")], [])

    def test_machine_without_unarchiver_is_told(self):
        self.assert_refused("this machine has no program that unpacks archives: install cmake or tar",
                            PATH=str(self.directory))


class Locale(CheckCase):
    def test_machine_without_a_locale_is_fine(self):
        for locale in ("C", "POSIX", "no_SUCH"):
            result = subprocess.run(self.command("--only", "unit-converter"), env=self.environment() | {"LC_ALL": locale},
                                    capture_output=True, timeout=PATIENCE, check=False)
            self.assertEqual((result.returncode, result.stderr), (0, b""))
            self.assertIn("Größenumrechner".encode(), result.stdout)


class Terminal(CheckCase):
    def test_terminal_has_colours_and_progress(self):
        code, output = at_terminal(self.command(), self.environment() | {"TERM": "xterm"})
        self.assertEqual(code, 1)
        self.assertIn("\x1b[31merror:\x1b[0m", output)
        self.assertRegex(output, r"\r\x1b\[K[1-7] of 8 examples, 0\.0 MB, about \d+ s left")

    def test_colours_can_be_refused(self):
        for refusal in ({"NO_COLOR": "1"}, {"TERM": "dumb"}):
            self.assertNotIn("\x1b[31m", at_terminal(self.command(), self.environment() | refusal)[1])

    def test_quiet_command_shows_no_progress(self):
        self.assertNotIn("examples,", at_terminal(self.command("--quiet"), self.environment())[1])


class Interruption(CheckCase):
    def assert_ends_at_once(self, *arguments, when, by=signal.SIGINT):
        """A terminal tells all that run in it; others tell the command alone."""
        with self.running(*arguments) as process:
            when()
            start = time.monotonic()
            if by == signal.SIGINT:
                os.killpg(process.pid, by)
            else:
                process.send_signal(by)
            output, errors = process.communicate(timeout=PATIENCE)
            self.assertLess(time.monotonic() - start, 3)
            self.assertEqual((process.returncode, output, errors), (130, b"", b""))

    def assert_ends_while_held(self, route, *arguments, by=signal.SIGINT):
        self.server.hold(route)
        self.assert_ends_at_once(
            *arguments, when=lambda: wait_until(lambda: self.server.held(route) > 0, "the request", 20), by=by)
        self.server.restore()

    def many_files(self):
        """The group is one project whose unpacking takes a while."""
        top = "hello-qml-main-1/"
        self.list_projects({})
        self.server.answer(archive_route(HELLO), archive(
            top + "CMakeLists.txt", *(f"{top}{number}" for number in range(20_000))))

    def test_it_ends_in_each_request(self):
        for route in (GROUP, DETAILS, f"{DETAILS}/projects", archive_route(HELLO), "/uploads/*"):
            with self.subTest(route):
                self.assert_ends_while_held(route)

    def test_others_than_the_terminal_end_it_as_well(self):
        for by in (signal.SIGTERM, signal.SIGHUP):
            with self.subTest(by):
                self.assert_ends_while_held(archive_route(HELLO), by=by)

    def test_what_its_parent_ignores_it_ignores(self):
        self.server.hold(archive_route(HELLO))
        with subprocess.Popen(["sh", "-c", 'trap "" HUP; exec "$@"', "sh", *self.command()], env=self.environment(),
                              stdout=subprocess.DEVNULL) as process:
            wait_until(lambda: self.server.held(archive_route(HELLO)) > 0, "the request", 20)
            process.send_signal(signal.SIGHUP)
            self.server.release(archive_route(HELLO))
            self.assertEqual(process.wait(PATIENCE), 1)

    def test_it_ends_while_it_unpacks(self):
        self.many_files()
        for by in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(by):
                self.assert_ends_at_once(by=by, when=lambda: wait_until(
                    lambda: any(self.temporary.glob("*/examples/*/1*")), "the unpacking", 40))
                self.assertEqual(os.listdir(self.temporary), [])

    def test_an_unarchiver_that_is_ended_leaves_nothing_in_an_installation(self):
        self.many_files()
        target = self.directory / "below/examples"
        for by in (signal.SIGINT, signal.SIGTERM):
            with self.subTest(by):
                self.assert_ends_at_once("--install", str(target), by=by, when=lambda: wait_until(
                    lambda: any(target.glob("*/1*")), "the unpacking", 40))
                self.assertFalse((self.directory / "below").exists())

    def test_an_unarchiver_that_takes_its_time_to_end_is_waited_for(self):
        """It still writes then, and would do so after all has been cleared."""
        tools = self.directory / "tools"
        tools.mkdir()
        (tools / "cmake").write_text(
            "#!/bin/sh\nmkdir -p hello-qml-main-1\n"
            f"trap 'kill %1; sleep 0.3; mkdir -p hello-qml-main-1/late; touch {tools}/ended; exit' TERM INT\n"
            "sleep 60 &\nwait\n")
        (tools / "cmake").chmod(0o755)
        self.list_projects({})
        self.server.answer(archive_route(HELLO), archive("hello-qml-main-1/CMakeLists.txt"))
        target = self.directory / "examples"
        target.mkdir() # and so stays
        with self.running("--install", str(target), PATH=f"{tools}:{os.environ['PATH']}") as process:
            wait_until(lambda: (target / "hello-qml-main-1").exists(), "the unarchiver", 40)
            process.send_signal(signal.SIGTERM)
            self.assertEqual(process.wait(PATIENCE), 130)
        wait_until((tools / "ended").exists, "the unarchiver's end")
        self.assertEqual(os.listdir(target), [])

    def test_it_ends_while_it_vets(self):
        top = "hello-qml-main-1/"
        self.list_projects({})
        self.server.answer(archive_route(HELLO), archive(
            entry(top + "CMakeLists.txt"), *(entry(f"{top}{number}", content=ENDLESS.encode()) for number in range(5))))
        self.assert_ends_at_once(when=lambda: wait_until(
            lambda: any(self.temporary.glob("*/archives/*.fresh")), "the vetting", 40))

    def test_an_installation_leaves_nothing_half(self):
        directory = self.directory / "examples"
        self.server.hold(archive_route(HELLO))
        self.assert_ends_at_once("--install", str(directory), when=lambda: wait_until(
            lambda: (directory / "maps/examples-manifest.xml").exists(), "another example", 20))
        for path in directory.iterdir():
            self.assertTrue((path / "examples-manifest.xml").exists(), path)

    def test_an_installation_that_came_to_nothing_leaves_no_directory(self):
        self.assert_ends_while_held(DETAILS, "--install", str(self.directory / "examples"))
        self.assertFalse((self.directory / "examples").exists())


if __name__ == "__main__":
    unittest.main()
