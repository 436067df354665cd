#!/usr/bin/env python3
# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Runs a command that sees one directory in the place of another; nobody else does.

Usage: in_place_of.py DIRECTORY OTHER COMMAND...
"""

import ctypes
import errno
import os
import pathlib
import sys

_MS_BIND, _MS_REC, _MS_PRIVATE = 0x1000, 0x4000, 0x40000
_LIBC = ctypes.CDLL(None, use_errno=True)


def _mount(source, target, flags):
    if _LIBC.mount(os.fsencode(source), os.fsencode(target), None, flags, None) != 0:
        number = ctypes.get_errno()
        raise OSError(number, os.strerror(number), target)


def _take_mount_rights():
    """A namespace of one's own; who is not root needs one of users, too."""
    user, group = os.geteuid(), os.getegid()
    if user == 0:
        os.unshare(os.CLONE_NEWNS)
        return
    os.unshare(os.CLONE_NEWNS | os.CLONE_NEWUSER)
    pathlib.Path("/proc/self/setgroups").write_text("deny")
    pathlib.Path("/proc/self/uid_map").write_text(f"{user} {user} 1")
    pathlib.Path("/proc/self/gid_map").write_text(f"{group} {group} 1")


def main():
    directory, other, *command = sys.argv[1:]
    _take_mount_rights()
    try:
        _mount("none", "/", _MS_REC | _MS_PRIVATE)
    except OSError as error:
        if error.errno != errno.EINVAL:  # a root that is no mount point lies in what is private already
            raise
    _mount(directory, other, _MS_BIND)
    os.execvp(command[0], command)


if __name__ == "__main__":
    main()
