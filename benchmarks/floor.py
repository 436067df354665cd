# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What the same work takes with the least that could do it, each two at a time."""

import pathlib
import resource
import shutil
import subprocess
import time


def timed(act):
    start = time.monotonic()
    act()
    return time.monotonic() - start


def processor_timed(act):
    """For work of one thread in memory: unlike the time on the clock, it does not count who else wanted to run."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    act()
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def _run(command, **options):
    subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, **options)


def _each(items, command, directory):
    """Runs a shell command for each item, two at a time; the item is its $1."""
    _run(["xargs", "--delimiter=\\n", "--max-procs=2", "--max-args=1", "sh", "-ec", command, "sh"],
         input="\n".join(map(str, items)).encode(), cwd=directory)


def download_and_unpack(group, directory):
    """Seconds for curl and then the unarchiver's own command."""
    directory = _fresh(directory)
    downloads = directory / "downloads"
    downloads.mkdir()
    config = directory / "curl.config"
    config.write_text("".join(f'url = "{url}"\noutput = "{downloads}/{number:05}-{pathlib.PurePath(url).name}"\n'
                              for number, url in enumerate(group.downloads())))
    archives = [downloads / f"{2 * number:05}-archive.tar.gz" for number in range(group.count)]

    def act():
        _run(["curl", "--silent", "--show-error", "--fail", "--noproxy", "*", "--parallel", "--parallel-max", "2",
              "--config", config])
        _each(archives, "cmake -E tar xzf \"$1\"", directory)
    seconds = timed(act)
    unpacked = len(list(directory.glob("example-*")))
    if unpacked != group.count:
        raise RuntimeError(f"{unpacked} of {group.count} examples were unpacked")
    return seconds


def clone(git_server, directory):
    """Seconds for cloning the newest commit of each repository."""
    directory = _fresh(directory)
    return timed(lambda: _each(git_server.urls(), "git clone --quiet --depth 1 \"$1\"", directory))


def copy_archive(archive, copy, level):
    """Processor seconds for libarchive's own reading and writing of an archive, compressed at a level, 0 for stored."""
    options = f"gzip:compression-level={level}"
    return processor_timed(lambda: _run(["bsdtar", "-czf", copy, "--options", options, f"@{archive}"]))


def search(directory, needle):
    """Processor seconds for one look through a tree."""
    return processor_timed(lambda: subprocess.run(["grep", "-rlF", "-m1", needle, directory], check=False,
                                        stdout=subprocess.DEVNULL))


def _fresh(directory):
    shutil.rmtree(directory, ignore_errors=True)
    directory.mkdir(parents=True)
    return directory
