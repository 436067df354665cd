# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Throw-away directories and settings for one IDE: the user's own are neither seen nor touched."""

import os
import pathlib
import shutil
import tempfile

import inifile

# Questions that the IDE asks at its first start, answered before they come.
_ANSWERED = ["TakeUITour", "LinkWithQtInstallation", "UpdateAvailable", "Clang.MissingTools"]

_DIRECTORIES = ("home", "data", "config", "cache", "runtime", "tmp", "user", "installed")
_PROXIES = {"http_proxy", "https_proxy", "all_proxy", "HTTP_PROXY", "HTTPS_PROXY", "ALL_PROXY"}


def _without_sockets(directory, names):
    return [name for name in names if (pathlib.Path(directory) / name).is_socket()]


class Sandbox:
    """The directories stay until close() or the end of a with block."""

    def __init__(self, place="/tmp"):
        # Not in TMPDIR, which may be long: the name of a socket has little room.
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="varnel-ide-", dir=place))
        for name in _DIRECTORIES:
            (self.root / name).mkdir()
        (self.root / "runtime").chmod(0o700)
        self.temporary = self.root / "tmp"
        self.user_settings = self.root / "user/QtProject/QtCreator.ini"
        self.installed_settings = self.root / "installed/QtProject/QtCreator.ini"
        inifile.write(self.user_settings, {"General": {"SuppressedWarnings": _ANSWERED}})

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        shutil.rmtree(self.root, ignore_errors=True)

    def copy_to(self, directory):
        """Keeps the present state of all directories."""
        shutil.copytree(self.root, directory, symlinks=True, ignore=_without_sockets)

    def restore(self, directory):
        """Goes back to the state that was kept."""
        for name in _DIRECTORIES:
            shutil.rmtree(self.root / name)
            shutil.copytree(directory / name, self.root / name, symlinks=True)

    def environment(self):
        """An environment in which every program keeps to these directories."""
        environment = {key: value for key, value in os.environ.items() if key not in _PROXIES}
        environment.update(
            HOME=str(self.root / "home"),
            XDG_DATA_HOME=str(self.root / "data"),
            XDG_CONFIG_HOME=str(self.root / "config"),
            XDG_CACHE_HOME=str(self.root / "cache"),
            XDG_RUNTIME_DIR=str(self.root / "runtime"),
            TMPDIR=str(self.temporary))
        return environment

    def settings_arguments(self):
        return ["-settingspath", str(self.root / "user"), "-installsettingspath", str(self.root / "installed")]

    def install_repositories(self, repositories, **varnel):
        """Configures {name: URL} as an SDK would: for all users of the machine, with a place for each on the
        Welcome screen. Further settings are those of the plug-in's section."""
        inifile.write(self.installed_settings, {
            "Varnel": {"Repositories": [f"{name}|{url}|" for name, url in repositories.items()], **varnel},
            "Help": {"InstalledExamples": [f"{name}|{self.root}|{self.root}" for name in repositories]}})

    def change_settings(self, section, **values):
        """Changes the user's settings; only while no IDE runs."""
        inifile.change(self.user_settings, section, values)

    def settings(self, section):
        return inifile.read(self.user_settings).get(section, {})

    def repository(self, name):
        """Where the plug-in installs the examples of a repository; the level in between names the SDK's release."""
        found = list((self.root / "data").glob(f"*/{name}"))
        return found[0] if found else self.root / "data" / "none" / name

    def manifests(self, name):
        """{path: manifest} of the examples of a repository that are installed."""
        return {file.parent.name: file for file in self.repository(name).glob("*/examples-manifest.xml")}
