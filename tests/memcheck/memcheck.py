#!/usr/bin/env python3
# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs the real IDE under valgrind for one whole update: with the core, the help and the two plug-ins of the SDK, from
its start to its quitting. An error with a frame of the plug-in is a failure, others are the libraries' own affair."""

import argparse
import collections
import pathlib
import sys
import xml.etree.ElementTree as ElementTree

from demo import DemoServer
from ide import Ide
from sandbox import Sandbox
from waiting import wait_until

SECONDS = 1200  # that each step may take; valgrind is slow
PLUGINS = ("core", "help", "ferronaos", "varnel", "varneldriver")
LIBRARY = "libVarnel.so"


class OffScreen:
    """No display, and no code compiled at run time: valgrind could not tell who called it."""

    @staticmethod
    def environment():
        return {"QT_QPA_PLATFORM": "offscreen", "QT_ENABLE_REGEXP_JIT": "0", "QV4_FORCE_INTERPRETER": "1"}


def valgrind(report):
    return ["valgrind", "--tool=memcheck", "--leak-check=full", "--show-leak-kinds=definite", "--error-limit=no",
            "--num-callers=40", "--xml=yes", f"--xml-file={report}", "--child-silent-after-fork=yes"]


def run(build, report):
    """Returns the number of installed examples."""
    only_these = ["-noload", "all"] + [part for plugin in PLUGINS for part in ("-load", plugin)]
    with Sandbox() as sandbox, DemoServer(build) as server:
        sandbox.install_repositories({"Demo": server.url})
        with Ide(build, sandbox, OffScreen(), arguments=only_these, prefix=valgrind(report)) as ide:
            ide.started(SECONDS)
            wait_until(lambda: is_over(ide, sandbox), "the end of the update", SECONDS)
            code = ide.quit(SECONDS)
        if code != 0:
            raise SystemExit(f"memcheck: the IDE ended with {code}:\n{ide.log_tail()}")
        return len(sandbox.manifests("Demo"))


def is_over(ide, sandbox):
    """Every listed example is installed, or its registration has failed."""
    lines = ide.texts("zel.varnel.plugin.service")
    listed = [line for line in lines if line.startswith("Updating examples")]
    failed = [line for line in lines if "example mainfest" in line]
    return listed and len(sandbox.manifests("Demo")) + len(failed) >= int(listed[0].split()[-1])


def errors(report):
    """(kind, text, whether the plug-in is in it) of each."""
    for error in ElementTree.parse(report).iter("error"):
        objects = [frame.findtext("obj", "") for frame in error.iter("frame")]
        text = "\n".join(f"    {frame.findtext('fn', '?')} ({frame.findtext('file', '')}:{frame.findtext('line', '')})"
                         for frame in error.iter("frame"))
        yield error.findtext("kind"), text, any(pathlib.Path(file).name == LIBRARY for file in objects)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build-dir", type=pathlib.Path, required=True)
    arguments = parser.parse_args()

    report = arguments.build_dir / "memcheck.xml"
    installed = run(arguments.build_dir, report)
    found = list(errors(report))
    ours = [(kind, text) for kind, text, is_ours in found if is_ours]
    for kind, text in ours:
        print(f"{kind}:\n{text}\n", file=sys.stderr)
    kinds = collections.Counter(kind for kind, _, is_ours in found if not is_ours)
    print(f"{installed} examples installed; {len(ours)} errors with a frame of the plug-in; "
          f"of the libraries alone: {dict(kinds) or 'none'}")
    return 1 if ours or not installed else 0


if __name__ == "__main__":
    sys.exit(main())
