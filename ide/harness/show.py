#!/usr/bin/env python3
# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Shows the plug-in at work in the real IDE, in throw-away settings: on the user's display until it is closed, or
on a virtual one until every example is there, with a table of them and screenshots."""

import argparse
import contextlib
import html
import pathlib
import re
import sys

from demo import DemoServer
from display import UsersDisplay, VirtualDisplay
from ide import EXAMPLES_DIALOG, CommandFailed, Ide
from sandbox import Sandbox
from waiting import Timeout, wait_until

INSTALLATION_SECONDS = 600
SIZE = (1440, 900)

# Each of these ends an example's road without success.
_REGISTRATION_FAILURE = "There was an error while creating example mainfest"
_FAILURES = ("Downloaded file is not an archive", "There was an error while unarchiving",
             _REGISTRATION_FAILURE, "The data is not downloaded for example",
             "Skip saving example", "Skip registering example", "Network error")


class Failed(Exception):
    """One sentence for the user."""


def statuses(ide):
    """What went on; a failed registration is preceded by what was wrong."""
    for category in ("zel.varnel.plugin.api", "zel.varnel.plugin.service"):
        before = ""
        for text in ide.texts(category):
            if text.startswith("Status: "):
                status = text.removeprefix("Status: ").strip('"').replace('\\"', '"')
                yield f"{status}: {before}" if status.startswith(_REGISTRATION_FAILURE) else status
            before = text


def failures(ide):
    """The reasons, in no order; a missing picture is none."""
    found = [status for status in statuses(ide) if status.startswith(_FAILURES)]
    for status in statuses(ide):
        if status.startswith("Unable to download image"):
            network_errors = [failure for failure in found if failure.startswith("Network error")]
            found.remove(network_errors[0])
    return found


def listed_count(ide):
    for text in ide.texts("zel.varnel.plugin.service"):
        if match := re.match(r"Updating examples: (\d+)", text):
            return match
    return None


def wait_for_examples(ide, sandbox, name, url, patience):
    """Waits until each listed example is either installed or failed."""
    try:
        count = int(wait_until(lambda: listed_count(ide), "the list", patience)[1])
    except Timeout:
        errors = [status for status in statuses(ide) if "error" in status.lower()] or ["it did not answer"]
        raise Failed(f"the repository {name} did not come up: {url} lists no examples ({errors[-1]})") from None
    try:
        wait_until(lambda: len(sandbox.manifests(name)) + len(failures(ide)) >= count, "the examples",
                   INSTALLATION_SECONDS)
    except Timeout:
        done = len(sandbox.manifests(name))
        raise Failed(f"only {done} of {count} examples were installed within {INSTALLATION_SECONDS} s") from None


def listed(dialog):
    """[(path, title)] of what the selection dialog offers."""
    rows = dialog.find(name="examplesListWidget").rows()
    titles = [re.search(r"60%;\">(.*?)</td>", row["toolTip"], re.DOTALL)[1] for row in rows]
    return [(row["text"], html.unescape(title)) for row, title in zip(rows, titles)]


def print_table(rows):
    header = ("path", "title", "state", "picture")
    widths = [max(len(row[column]) for row in [header, *rows]) for column in range(len(header))]
    for row in [header, tuple("-" * width for width in widths), *rows]:
        print("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip())


def table(ide, sandbox, name, examples, tiles):
    installed = sandbox.manifests(name)
    reasons = sorted(set(failures(ide)))
    for path, title in examples:
        if path in installed:
            picture = "yes" if tiles.get(title, {}).get("hasPicture") else "no"
            yield path, title, "installed", picture
        else:
            yield path, title, "failed: " + (" or ".join(reasons) or "not downloaded"), "no"


def take_pictures(ide, sandbox, name, out):
    """Saves the screenshots; returns what was listed and what the Welcome screen shows of it."""
    window = ide.main_window()
    window.call("showMaximized")
    ide.show_examples(name)
    count = len(sandbox.manifests(name))
    wait_until(lambda: len(ide.tiles()) >= count, "the tiles on the Welcome screen")
    tiles = ide.tiles()
    wait_until(lambda: not ide.find_all(kind="Core::FutureProgress", visible=True), "the end of the IDE's own work", 60)
    ide.screenshot(out / "welcome.png")

    preferences, page = ide.open_options(count)
    page.find(name="repositoryComboBox").choose_item(name)
    preferences.screenshot(out / "options.png")
    page.find(name="addButton").click()
    dialog = ide.wait_for(kind=EXAMPLES_DIALOG)
    examples = listed(dialog)
    dialog.screenshot(out / "dialog.png")
    ide.close(dialog, "Cancel")
    ide.close(preferences, "Cancel")
    return examples, tiles


def show_headless(build, out, name, url, patience):
    out.mkdir(parents=True, exist_ok=True)
    with Sandbox() as sandbox, VirtualDisplay(sandbox, SIZE) as display:
        sandbox.install_repositories({name: url})
        with Ide(build, sandbox, display) as ide:
            ide.started()
            wait_for_examples(ide, sandbox, name, url, patience)
            examples, tiles = take_pictures(ide, sandbox, name, out)
            rows = list(table(ide, sandbox, name, examples, tiles))
            code = ide.quit()
        print_table(rows)
        print(f"\nscreenshots: {out}/welcome.png, options.png, dialog.png")
        if code != 0:
            raise Failed(f"the IDE ended with exit code {code}")


def show_windowed(build, name, url):
    with Sandbox() as sandbox:
        sandbox.install_repositories({name: url})
        print(f"the IDE's settings and examples are in {sandbox.root} until it is closed")
        with Ide(build, sandbox, UsersDisplay()) as ide:
            code = ide.process.wait()
        if code != 0:
            raise Failed(f"the IDE ended with exit code {code}")


def parse(arguments):
    parser = argparse.ArgumentParser(description=__doc__)
    mode = parser.add_mutually_exclusive_group(required=True)
    mode.add_argument("--headless", action="store_true", help="on a virtual display, with a table and screenshots")
    mode.add_argument("--windowed", action="store_true", help="on the display of the environment, until it is closed")
    parser.add_argument("--build-dir", type=pathlib.Path, required=True, help="where the plug-ins were built")
    parser.add_argument("--out", type=pathlib.Path, default=pathlib.Path("."), help="where the screenshots go")
    parser.add_argument("--patience", type=float, default=45, metavar="SECONDS",
                        help="how long the repository may take to list its examples")
    parser.add_argument("--group", metavar="NAME=URL", help="a GitLab group instead of the demo repository")
    return parser.parse_args(arguments)


def main():
    options = parse(sys.argv[1:])
    with contextlib.ExitStack() as stack:
        if options.group:
            name, _, url = options.group.partition("=")
        else:
            name, url = "Demo", stack.enter_context(DemoServer(options.build_dir)).url
        if options.headless:
            show_headless(options.build_dir, options.out.resolve(), name, url, options.patience)
        else:
            show_windowed(options.build_dir, name, url)


if __name__ == "__main__":
    try:
        main()
    except (Failed, CommandFailed, Timeout, RuntimeError) as error:
        sys.exit(f"varnel: error: {error}")
    except KeyboardInterrupt:
        sys.exit(130)
