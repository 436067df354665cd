# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""A machine with nothing but the IDE: a layer over a root directory that goes away, and the user who sits there."""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile

import inifile
from ide import LOG_EVERYTHING, Ide
from sandbox import Sandbox

PROJECT = pathlib.Path(__file__).resolve().parents[2]
CACHE = os.environ["VARNEL_CACHE"]
BASE = os.environ["VARNEL_FRESH_ROOT"]
_ENTER = PROJECT / "tools/lib/enter-root.sh"
# What a package manager keeps for itself, and what the mounts of a command leave.
_NOT_COMPARED = re.compile(r"(var/(lib/(dpkg|apt|ucf)|cache|log)|etc/ld\.so\.cache|tmp|proc|sys|dev|run|root|work)(/|$)")


class FreshMachine:
    """Gone at the end of a with block. Needs a private mount namespace, in which it stays."""

    def __init__(self):
        self._layers = pathlib.Path(tempfile.mkdtemp(prefix="varnel-fresh-", dir="/tmp"))
        self.root = self._layers / "root"
        self._mount("-t", "tmpfs", "tmpfs", self._layers)
        for name in ("upper", "work", "root"):
            (self._layers / name).mkdir()
        self._mount("-t", "overlay", "overlay", "-o",
                    f"lowerdir={BASE},upperdir={self._layers}/upper,workdir={self._layers}/work", self.root)

    @staticmethod
    def _mount(*arguments):
        subprocess.run(["mount", *map(str, arguments)], check=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for path in (self.root, self._layers):
            subprocess.run(["umount", "--lazy", path], check=True)
        shutil.rmtree(self._layers)

    def command(self, *command):
        """What runs a command on this machine; the process is the command's own."""
        return ["unshare", "--mount", "--propagation", "unchanged",
                "bash", str(_ENTER), str(self.root), str(PROJECT), CACHE, "/", *map(str, command)]

    def run(self, *command, check=True):
        done = subprocess.run(self.command(*command), text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              env={"PATH": os.environ["PATH"], "HOME": "/root", "DEBIAN_FRONTEND": "noninteractive"})
        if check and done.returncode != 0:
            raise AssertionError(f"{command} ended with {done.returncode}:\n{done.stdout}")
        return done

    def apt(self, *arguments, check=True):
        return self.run("apt-get", "--yes", *arguments, check=check)

    def files(self):
        """All paths, without those of the package manager."""
        found = set()
        for folder, folders, names in os.walk(self.root):
            relative = pathlib.Path(folder).relative_to(self.root)
            folders[:] = [name for name in folders if not _NOT_COMPARED.match(str(relative / name))]
            found |= {str(relative / name) for name in names + folders
                      if not _NOT_COMPARED.match(str(relative / name))}
        return found


class User(Sandbox):
    """Somebody with a home of his own and the IDE's usual places in it."""

    def __init__(self):
        super().__init__()
        answered = inifile.read(self.user_settings)
        self.user_settings = self.root / "config/QtProject/QtCreator.ini"
        inifile.write(self.user_settings, answered)
        self.plugins = self.root / "data/data/QtProject/qtcreator/plugins"

    def settings_arguments(self):
        return []

    def add_driver(self, build, version):
        """The plug-in that the tests talk to comes as one of the user's own, so that the IDE needs no argument."""
        folder = self.plugins / version
        folder.mkdir(parents=True, exist_ok=True)
        shutil.copy(build / "driver/libVarnelDriver.so", folder)


class FreshIde(Ide):
    """The IDE of a fresh machine, started without an argument."""

    def __init__(self, machine, user, display, environment=None):  # pylint: disable=super-init-not-called
        self._socket = None
        self._socket_path = user.root / "driver"
        self._socket_path.unlink(missing_ok=True)
        self.log_file = user.root / "ide.log"
        own = user.environment() | display.environment() | {
            "VARNEL_DRIVER_SOCKET": str(self._socket_path), "QT_FORCE_STDERR_LOGGING": "1",
            "QT_MESSAGE_PATTERN": "\x1e%{type} %{category}: %{message}", "QT_LOGGING_RULES": LOG_EVERYTHING,
            **(environment or {})}
        with self.log_file.open("wb") as log:
            self.process = subprocess.Popen(
                machine.command("env", f"HOME={user.root / 'home'}", "qtcreator"),
                env=own, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=log)
