# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The real IDE with the plug-in and the driver, as a process to look at and to use."""

import contextlib
import json
import re
import shutil
import signal
import socket
import subprocess

from waiting import Timeout, wait_until

OPTIONS_PAGE = "Zel.Varnel.Plugin.Settings.Page"
OPTIONS_WIDGET = "Varnel::Internal::OptionsWidget"
EXAMPLES_DIALOG = "Varnel::Internal::ExamplesDialog"
LOG_EVERYTHING = "zel.varnel.plugin*=true"

# One line a message, whatever it says; the control character cannot stand in one.
_MESSAGE_PATTERN = "\x1e%{type} %{category}: %{message}"
_MESSAGE = re.compile(r"(\w+) ([^\s:]+): (.*)", re.DOTALL)


class CommandFailed(AssertionError):
    """The IDE could not do as it was told."""


class Message:
    """One message of the IDE's log."""

    def __init__(self, level, category, text):
        self.level, self.category, self.text = level, category, text

    def __repr__(self):
        return f"{self.level} {self.category}: {self.text}"


class Widget:
    """An object of the IDE."""

    def __init__(self, ide, description):
        self._ide = ide
        self._number = description["object"]
        self.kind = description["class"]
        self.name = description["name"]
        self.text = description["text"]

    def __repr__(self):
        return f"<{self.kind} {self.name!r} {self.text!r}>"

    def __eq__(self, other):
        return isinstance(other, Widget) and self._number == other._number

    def _do(self, command, **arguments):
        return self._ide.do(command, object=self._number, **arguments)

    def find_all(self, **wanted):
        return [Widget(self._ide, found) for found in self._do("find", **_keys(wanted))]

    def find(self, **wanted):
        return _only(self.find_all(**wanted), wanted)

    def get(self, name):
        value = self._do("get", property=name)
        return Widget(self._ide, value) if isinstance(value, dict) and "object" in value else value

    def set(self, name, value):
        self._do("set", property=name, to=value)

    def is_visible(self):
        try:
            return self.get("visible")
        except CommandFailed:
            return False  # gone altogether

    def call(self, method):
        self._do("call", method=method)

    def click(self):
        self._do("click")

    def rows(self):
        return self._do("rows")

    def row_texts(self, visible_only=False):
        return [row["text"] for row in self.rows() if not (visible_only and row["hidden"])]

    def texts(self):
        return self._do("texts")

    def select(self, *rows):
        self._do("select", rows=rows)

    def items(self):
        return self._do("items")

    def choose_item(self, text):
        self._do("choose item", text=text)

    def context_menu(self):
        self._do("context menu")

    def screenshot(self, file):
        self._do("screenshot", file=str(file))


def _keys(wanted):
    return {"class" if key == "kind" else key: value for key, value in wanted.items()}


def _only(found, wanted):
    if len(found) != 1:
        raise CommandFailed(f"{len(found)} objects instead of one match {wanted}: {found}")
    return found[0]


class Ide:
    """Starts at once; started() waits until it is ready for use.

    The log is complete only after the end. Leaving a with block kills what is still running.
    The program is the installed one unless another is named.
    """

    def __init__(self, build, sandbox, display, rules=LOG_EVERYTHING, arguments=(), prefix=(), environment=None,
                 program=None):
        self._socket = None
        self._socket_path = sandbox.root / "driver"
        self._socket_path.unlink(missing_ok=True)
        self.log_file = sandbox.root / "ide.log"
        program = program or shutil.which("qtcreator")
        if not program:
            raise RuntimeError("the IDE is not installed")
        with self.log_file.open("wb") as log:
            self.process = subprocess.Popen(
                [*prefix, program, "-pluginpath", str(build / "plugins"), "-pluginpath", str(build / "driver"),
                 *sandbox.settings_arguments(), *arguments],
                env=sandbox.environment() | display.environment() | {
                    "VARNEL_DRIVER_SOCKET": str(self._socket_path), "QT_FORCE_STDERR_LOGGING": "1",
                    "QT_MESSAGE_PATTERN": _MESSAGE_PATTERN, "QT_LOGGING_RULES": rules,
                    **(environment or {})},
                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=log)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self._socket:
            with contextlib.suppress(BrokenPipeError):
                self._socket.close()
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()

    # The process

    def started(self, seconds=60):
        """Waits until all plug-ins are up."""
        self.connect(seconds)
        wait_until(lambda: self.do("state")["started"], "the IDE's plug-ins", seconds)
        return self

    def connect(self, seconds=60):
        """Waits until the IDE takes commands; some of its plug-ins may still start then."""
        with socket.socket(socket.AF_UNIX) as connection:
            connection.settimeout(seconds)
            wait_until(lambda: self._alive() and self._is_connected(connection), "the IDE", seconds)
            self._socket = connection.makefile("rwb")

    def _is_connected(self, connection):
        try:
            connection.connect(str(self._socket_path))
        except (FileNotFoundError, ConnectionRefusedError):  # not there yet, or nobody listens yet
            return False
        return True

    def _alive(self):
        if self.process.poll() is not None:
            raise CommandFailed(f"the IDE ended with {self.process.returncode}")
        return True

    def quit(self, seconds=20):
        """Ends the IDE as its user would, and returns the exit code."""
        self.do("quit")
        return self.ended(seconds)

    def ended(self, seconds=20):
        try:
            return self.process.wait(seconds)
        except subprocess.TimeoutExpired:
            self.process.send_signal(signal.SIGABRT)
            raise Timeout(f"the IDE did not end within {seconds} s") from None

    # The log

    def messages(self, category=None):
        found = [_MESSAGE.fullmatch(part.rstrip("\n")) for part in self._log().split("\x1e")[1:]]
        messages = [Message(*match.groups()) for match in found if match]
        return [message for message in messages if category in (None, message.category)]

    def _log(self):
        return self.log_file.read_text(encoding="utf-8", errors="replace")

    def texts(self, category):
        return [message.text for message in self.messages(category)]

    def log_tail(self, count=40):
        return "\n".join(map(repr, self.messages()[-count:])) or self._log()

    def wait_for_text(self, category, text, seconds=20):
        """Waits for a message that contains a text."""
        def logged():
            self._alive()
            return any(text in line for line in self.texts(category))
        wait_until(logged, f'"{text}" in the log', seconds)

    # Commands

    def do(self, command, **arguments):
        self._socket.write(json.dumps({"command": command, **arguments}).encode() + b"\n")
        self._socket.flush()
        line = self._socket.readline()
        if not line:
            self.ended()
            raise CommandFailed(f"the IDE ended with {self.process.returncode}")
        answer = json.loads(line)
        if "error" in answer:
            raise CommandFailed(f"{command} {arguments}: {answer['error']}")
        return answer["value"]

    def find_all(self, **wanted):
        return [Widget(self, found) for found in self.do("find", **_keys(wanted))]

    def find(self, **wanted):
        return _only(self.find_all(**wanted), wanted)

    def wait_for(self, seconds=20, **wanted):
        """Waits until one visible widget is as wanted."""
        wanted = {"visible": True, **wanted}
        return wait_until(lambda: self.find_all(**wanted), f"a widget like {wanted}", seconds)[0]

    def main_window(self):
        return Widget(self, self.do("state")["window"])

    def keyboard(self, text="", *keys):
        """Types; a window gets the focus a little after it is shown or another one is closed."""
        wait_until(self.focus, "something that takes keys")
        self.do("keyboard", text=text, keys=keys)

    def focus(self):
        found = self.do("focus")
        return Widget(self, found) if found else None

    def screenshot(self, file):
        """The whole display."""
        self.do("screenshot", file=str(file))

    def message_boxes(self):
        return [(box.get("windowTitle"), box.get("text")) for box in self.find_all(kind="QMessageBox", visible=True)]

    # The Welcome screen

    def tiles(self):
        """What the page in sight shows, by title."""
        return {tile["title"]: tile for tile in self.do("tiles")}

    def show_examples(self, collection, page="Examples"):
        """Goes to the Welcome screen's page of examples and there to one collection."""
        self.do("mode", id="Welcome")
        self.wait_for(kind="QAbstractButton", text=page).click()

        def box():
            boxes = self.main_window().find_all(kind="QComboBox", visible=True)
            return next((box for box in boxes if collection in [item["text"] for item in box.items()]), None)
        wait_until(box, f'the collection "{collection}"').choose_item(collection)

    # The preferences

    def open_preferences(self, page=OPTIONS_PAGE):
        """Opens the preferences at a page and returns their window."""
        self.do("preferences", page=page)
        return self.wait_for(window=True, modal=True, kind="QDialog")

    def open_options(self, rows=0):
        """Opens the preferences at the plug-in's page; returns their window and the page, which lists so many rows."""
        window = self.open_preferences()
        page = self.wait_for(kind=OPTIONS_WIDGET)
        # On a busy machine it is there before it knows what is installed.
        wait_until(lambda: len(page.find(name="examplesListWidget").row_texts()) >= rows, f"{rows} rows")
        return window, page

    def close(self, window, button):
        """Closes a window by one of its buttons."""
        window.find(kind="QPushButton", text=button, visible=True).click()
        wait_until(lambda: not window.is_visible(), f"the end of {window}")
