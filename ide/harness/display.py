# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Where the IDE shows itself."""

import os
import subprocess

from waiting import wait_until


class UsersDisplay:
    """The one that the environment names."""

    @staticmethod
    def environment():
        names = ("XDG_RUNTIME_DIR", "WAYLAND_DISPLAY", "DISPLAY", "XAUTHORITY")
        return {name: os.environ[name] for name in names if name in os.environ}


class VirtualDisplay:
    """An X server without a screen, on any number that is free, with a window manager, without which dialogs stay
    black."""

    def __init__(self, sandbox, size=(1280, 800)):
        self._processes = []
        read_end, write_end = os.pipe()
        geometry = f"{size[0]}x{size[1]}x24"
        self._start(["Xvfb", "-displayfd", str(write_end), "-screen", "0", geometry, "-nolisten", "tcp", "-noreset"],
                    pass_fds=[write_end])
        os.close(write_end)
        with os.fdopen(read_end) as answer:
            number = answer.readline().strip()
        if not number:
            raise RuntimeError("the virtual display did not start: is Xvfb installed?")
        self.name = f":{number}"

        managed = sandbox.root / "managed"
        self._start(["openbox", "--startup", f"touch {managed}"], env=sandbox.environment() | self.environment())
        wait_until(managed.exists, "the window manager")

    def _start(self, command, **options):
        self._processes.append(
            subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **options))

    def environment(self):
        return {"DISPLAY": self.name, "QT_QPA_PLATFORM": "xcb"}

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        for process in reversed(self._processes):
            process.terminate()
            process.wait()
