# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The manual page and the completions, which the build makes of the program's own tables."""

import pathlib
import re
import subprocess
import unittest

from checkcase import BUILD, PROGRAM

DOCUMENTS = BUILD / "check"
PROJECT = pathlib.Path(__file__).resolve().parents[2]
HELP = subprocess.run([PROGRAM, "--help"], capture_output=True, text=True, check=True).stdout
OPTIONS = re.findall(r"--([a-z-]+)", HELP[HELP.index("Options:"):].replace("With --install", ""))


def output_of(*command, text=None):
    return subprocess.run(command, input=text, capture_output=True, text=True, check=True)


class Manual(unittest.TestCase):
    def test_manual_has_no_faults(self):
        result = output_of("groff", "-man", "-Tutf8", "-ww", "-z", DOCUMENTS / "varnel-check.1")
        self.assertEqual(result.stderr, "")

    def test_manual_names_all_options_and_findings(self):
        text = output_of("groff", "-man", "-Tascii", "-P-c", DOCUMENTS / "varnel-check.1").stdout
        text = re.sub(".\b", "", text)
        self.assertGreater(len(OPTIONS), 10)
        for option in OPTIONS:
            self.assertRegex(text, rf"(?m)^ +(-., )?--{option}\b")
        kinds = re.findall(r'\{"([a-z-]+)"_L1', (PROJECT / "check/finding.cpp").read_text())
        self.assertGreater(len(kinds), 30)
        for kind in kinds:
            self.assertRegex(text, rf"(?m)^ +{kind} \((error|warning)\)")


class Completions(unittest.TestCase):
    def bash(self, *words):
        script = (f"source {DOCUMENTS}/varnel-check.bash; COMP_WORDS=({' '.join(words)}); "
                  "COMP_CWORD=$((${#COMP_WORDS[@]} - 1)); _varnel_check; printf '%s\\n' \"${COMPREPLY[@]}\"")
        return output_of("bash", "-c", script).stdout.split()

    def fish(self, line):
        script = f"source {DOCUMENTS}/varnel-check.fish; complete -C '{line}'"
        return [entry.split("\t")[0] for entry in output_of("fish", "--private", "-c", script).stdout.splitlines()]

    def test_bash_completes_options_and_values(self):
        self.assertEqual(self.bash("varnel-check", "--js"), ["--json"])
        self.assertEqual(self.bash("varnel-check", "--fail-on", "e"), ["error"])
        self.assertEqual(set(self.bash("varnel-check", "--")), {f"--{option}" for option in OPTIONS})

    def test_fish_completes_options_and_values(self):
        self.assertEqual(self.fish("varnel-check --jso"), ["--json"])
        self.assertEqual(self.fish("varnel-check --fail-on e"), ["error"])
        self.assertEqual(set(self.fish("varnel-check --")), {f"--{option}" for option in OPTIONS})

    def test_zsh_reads_its_completion_and_finds_all_options(self):
        text = (DOCUMENTS / "_varnel-check").read_text()
        output_of("zsh", "-n", DOCUMENTS / "_varnel-check")
        self.assertTrue(text.startswith("#compdef varnel-check\n"))
        script = f"autoload -U compinit; _arguments() {{ print -l -- \"$@\" }}; source {DOCUMENTS}/_varnel-check"
        specifications = output_of("zsh", "-f", "-c", script).stdout
        for option in OPTIONS:
            self.assertRegex(specifications, rf"(?m)^\([^)]*\)--{option}\[[^\]]+\]")


if __name__ == "__main__":
    unittest.main()
