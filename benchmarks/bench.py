# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""Measures how fast the plug-in is beside what the same work takes at least, and what the user feels of it."""

import argparse
import contextlib
import json
import os
import pathlib
import platform
import re
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import time

import floor
import report
from display import VirtualDisplay
from ide import Ide
from load import GitServer, Group, archive_of, files_of, make_tree
from sandbox import Sandbox
from waiting import wait_until

PROJECT = pathlib.Path(__file__).resolve().parents[1]
DOCUMENT = PROJECT / "docs/performance.md"
LONGEST_SECONDS = 60  # of one measuring program
NEEDLE = " main("
STALLS = "/api/v4/groups"  # the request that holds an update back until the IDE is in place
STORED_MEGABYTES = 32  # the plug-in compresses, fast, only what comes behind them
CALM_SECONDS = 0.02  # of processor time in one turn of the event loop
TOO_LONG = "1,000 take longer than a row may"


class Bench:
    """Where things are, and what was measured."""

    def __init__(self, build, memory, disk, repetitions):
        self.build, self.memory, self.disk, self.repetitions = build, memory, disk, repetitions
        self.rows, self.growths, self.steps = [], [], {}

    def times(self, act):
        return [act() for _ in range(self.repetitions)]

    def run(self, program, *arguments, place=None, **environment):
        """What a measuring program prints, with a home of its own."""
        directory = (place or self.memory) / "isolated"
        result = subprocess.run(
            [PROJECT / "cmake/run-isolated.sh", directory, self.build / "benchmarks" / program, *map(str, arguments)],
            env=os.environ | environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, check=False,
            timeout=LONGEST_SECONDS)
        lines = [line for line in result.stdout.splitlines() if line.startswith("{")]
        if result.returncode != 0 or not lines:
            raise RuntimeError(f"{program} ended with {result.returncode}: {result.stderr[-2000:]}")
        return json.loads(lines[-1])

    def install(self, group, place=None, *options):
        return self.run("bench_install", group.url, group.count, *options, place=place)


def seconds(results):
    return [result["seconds"] for result in results]


# An update in a process of its own

def install(bench):
    with Group(bench.build, 100, files=200, size=1_000_000) as group:
        with GitServer(group, bench.memory / "git") as git:
            floors, ours, clones = [], [], []
            for _ in range(bench.repetitions):
                floors.append(floor.download_and_unpack(group, bench.memory / "floor"))
                ours.append(bench.install(group, None, "split"))
                clones.append(floor.clone(git, bench.memory / "clones"))
        name = "100 examples of 1 MB, 200 files each, in a bare process"
        bench.rows.append(report.Row(
            name, seconds(ours), "`curl`, then `cmake -E tar`, two at a time", floors, "at most 1.25", 1.25, unit="s"))
        in_memory = seconds(ours)
        bench.steps = processor_steps(ours, group.count)
        bench.rows.append(report.Row(
            name, seconds(ours), "`git clone --depth 1`, two at a time", clones, "at most 0.5", 0.5, unit="s"))
        floors, ours = [], []
        for _ in range(bench.repetitions):
            floors.append(floor.download_and_unpack(group, bench.disk / "floor"))
            ours.append(bench.install(group, bench.disk))
        bench.rows.append(report.Row(f"{name}, on a disk", seconds(ours), "the same on that disk", floors, unit="s"))
        in_ide, stalls = install_in_ide(bench, group)
    with Group(bench.build, 10, files=200, size=1_000_000) as few:
        few_in_memory = seconds(bench.times(lambda: bench.install(few)))
        few_in_ide, few_stalls = zip(*bench.times(lambda: update_in_ide(bench, few, "Welcome")))
    for name, at_ten, at_hundred in (
            ("installation of examples of 1 MB", few_in_memory, in_memory),
            ("the same in the IDE, open on the Welcome screen", few_in_ide, in_ide),
            ("longest stall meanwhile, processor time", in_seconds(few_stalls, "processor time"), stalls)):
        bench.growths.append(report.Growth(name, {10: at_ten, 100: at_hundred}, note=TOO_LONG))


STEPS = ("reading the archive", "judging it", "writing the fresh one", "reading that back",
         "choosing project, file and icon", "encoding the picture", "placing, manifest")


def processor_steps(results, count):
    """Seconds for each example."""
    def median(values):
        return statistics.median(values) / count
    return {name: median([result["steps"][name] for result in results]) for name in STEPS} | {
        name: median([result[key] for result in results]) for name, key in (
            ("**all of the main thread**", "mainThread"), ("**all of the other threads**", "workers"),
            ("**the unarchivers**", "unarchivers"))}


def check(bench):
    """The maintainers' command, which keeps nothing of what it unpacks."""
    with Group(bench.build, 100, files=200, size=1_000_000) as group:
        floors, ours = [], []
        for _ in range(bench.repetitions):
            floors.append(floor.download_and_unpack(group, bench.memory / "floor"))
            ours.append(floor.timed(lambda: run_check(bench, group)))
        bench.rows.append(report.Row(
            "`varnel-check` on 100 examples of 1 MB, 200 files each", ours,
            "`curl`, then `cmake -E tar`, two at a time", floors, "at most 1.3", 1.3, unit="s"))


def run_check(bench, group):
    with tempfile.TemporaryDirectory(dir=bench.memory) as directory:
        result = subprocess.run(
            [bench.build / "check/varnel-check", "--json", "--jobs", "2", group.url],
            env=os.environ | {"TMPDIR": directory, "HOME": directory, "XDG_DATA_HOME": directory},
            stdout=subprocess.PIPE, check=False, timeout=LONGEST_SECONDS)
    installable = json.loads(result.stdout)["summary"]["installable"]
    if installable != group.count: # other findings are many: the examples have nothing but files
        raise RuntimeError(f"varnel-check ended with {result.returncode}: {installable} of {group.count} install")


def peak_memory(bench):
    peaks = {}
    for count in (10, 100):
        with Group(bench.build, count, files=200, size=5_000_000, packs=False) as group:
            peaks[count] = [bench.install(group)["peakMemory"]]
    bench.growths.append(report.Growth(
        "peak memory, for each archive of 5 MB", peaks, unit="MB", note="1,000 would be 5 GB on the server, too"))
    bench.rows.append(report.Row(
        "peak memory while 100 archives of 5 MB are installed", peaks[100],
        "sum of the archives", [group.archive_bytes],
        "at most 1.15, and 60 MB", 1.15, slack=60e6, unit="MB"))


def install_growth(bench):
    times = {}
    name = "installation of small examples"
    for count in (10, 100, 1000):
        with Group(bench.build, count, files=5, size=5_000) as group:
            try:
                repetitions = 1 if count > 100 else bench.repetitions
                times[count] = [bench.install(group)["seconds"] for _ in range(repetitions)]
            except subprocess.TimeoutExpired:
                times[count] = [LONGEST_SECONDS]
                name += f"; {count:,} were not done after {LONGEST_SECONDS} s"
    bench.growths.append(report.Growth(name, times))


# An update inside the IDE

@contextlib.contextmanager
def calm_ide(bench, group, mode, arguments=()):
    """The IDE in a mode, started and at rest, while its update is held back."""
    with Sandbox("/dev/shm") as sandbox, VirtualDisplay(sandbox, (1440, 900)) as display:
        sandbox.install_repositories({"Demo": group.url})
        group.server.hold(STALLS)
        with Ide(bench.build, sandbox, display, rules="", arguments=arguments) as ide:
            ide.started()
            if mode == "Welcome":
                ide.show_examples("Demo")
            else:
                ide.do("mode", id=mode)
            wait_until(lambda: is_calm(ide), "the end of the IDE's own start", 30)
            yield ide, sandbox
            group.server.release(STALLS)
            ide.quit()


def is_calm(ide):
    ide.do("longest stall")
    time.sleep(0.5)
    return ide.do("longest stall")["processor time"] < CALM_SECONDS * 1e3


def count_installed(sandbox):
    with contextlib.suppress(FileNotFoundError):
        return sum(os.path.exists(f"{entry.path}/examples-manifest.xml")
                   for entry in os.scandir(sandbox.repository("Demo")) if "@" not in entry.name)
    return 0


def update_in_ide(bench, group, mode):
    """(seconds, longest stall) of one update."""
    with calm_ide(bench, group, mode) as (ide, sandbox):
        wait_until(lambda: group.server.held(STALLS), "the beginning of the update", 30)
        ide.do("longest stall")
        start = time.monotonic()
        group.server.release(STALLS)
        wait_until(lambda: count_installed(sandbox) == group.count, "the examples", LONGEST_SECONDS)
        taken = time.monotonic() - start
        return taken, ide.do("longest stall")


def stall_without_plugin(bench, group):
    """The same IDE without the plug-in, while the machine has the same work to do."""
    with calm_ide(bench, group, "Welcome", ["-noload", "varnel"]) as (ide, _):
        ide.do("longest stall")
        floor.download_and_unpack(group, bench.memory / "floor")
        return ide.do("longest stall")


def in_seconds(stalls, key):
    return [stall[key] / 1e3 for stall in stalls]


def install_in_ide(bench, group):
    """Seconds of each installation, and of processor time of its longest stall."""
    floors, welcome, edit, others = [], [], [], []
    for _ in range(bench.repetitions):
        floors.append(floor.download_and_unpack(group, bench.memory / "floor"))
        welcome.append(update_in_ide(bench, group, "Welcome"))
        edit.append(update_in_ide(bench, group, "Edit"))
        others.append(stall_without_plugin(bench, group))
    taken, stalls = zip(*welcome)
    edit_taken, edit_stalls = zip(*edit)
    share = 1 - statistics.median(edit_taken) / statistics.median(taken)
    bench.rows.append(report.Row(
        "the same in the IDE, open on the Welcome screen", taken,
        "`curl`, then `cmake -E tar`, two at a time", floors, "at most 2", 2, unit="s",
        note=f"share of the Welcome screen's own reading {share:.0%}"))
    for key, name in (("time", "longest stall of the event loop meanwhile"),
                      ("processor time", "the same, only its processor time")):
        without_reading = statistics.median(in_seconds(edit_stalls, key)) * 1e3
        bench.rows.append(report.Row(
            name, in_seconds(stalls, key), "the IDE without the plug-in beside the floor's work",
            in_seconds(others, key),
            "at most 16 ms more", 1, slack=0.016,
            note=f"{without_reading:.0f} ms where the Welcome screen is not open and reads nothing"))
    return taken, in_seconds(stalls, "processor time")


# Single steps

def archive(bench):
    times = {}
    for megabytes in (1, 10, 100):
        file = bench.memory / "archive.tar.gz"
        file.write_bytes(archive_of("measured", files_of(0, 200, megabytes * 1_000_000)))
        level = 0 if megabytes < STORED_MEGABYTES else 1
        floors, ours = [], []
        for _ in range(bench.repetitions):
            floors.append(floor.copy_archive(file, bench.memory / "copy.tar.gz", level))
            ours.append(bench.run("bench_archive", file)["seconds"])
        times[megabytes] = ours
        bench.rows.append(report.Row(
            f"reading, judging and writing an archive of {megabytes} MB, processor time", ours,
            "`bsdtar -czf - @archive`", floors, "at most 1.2", 1.2))
    bench.growths.append(report.Growth(
        "an archive, for each MB", times, note=f"from {STORED_MEGABYTES} MB on it is compressed"))


def search(bench):
    times = {}
    for count, hit in ((20_000, True), (20_000, False), (2_000, False), (200, False)):
        tree = bench.memory / "tree"
        make_tree(tree, count, count * 20_000, hit)
        floors, ours = [], []
        for _ in range(bench.repetitions):
            floors.append(floor.search(tree, NEEDLE))
            result = bench.run("bench_search", tree)
            if result["file"].endswith("found.cpp") != hit:
                raise RuntimeError(f"the search has found {result['file']}")
            ours.append(result["seconds"])
        shutil.rmtree(tree)
        if not hit:
            times[count] = ours
        if count == 20_000:
            end = "hit last" if hit else "no hit"
            bench.rows.append(report.Row(
                f"choosing the file to open among 20,000 files, 400 MB, {end}, processor time", ours,
                "`grep -rlF -m1`", floors, "at most 1.2", 1.2))
    bench.growths.append(report.Growth("choosing the file to open, for each file", times))


def listing(bench):
    times = {}
    for count in (100, 1_000, 10_000):
        with Group(bench.build, count) as group:
            results = bench.times(lambda group=group: bench.run("bench_listing", group.url, group.listing_url))
        if results[0]["examples"] != count:
            raise RuntimeError(f"{results[0]['examples']} of {count} projects were listed")
        times[count] = seconds(results)
    megabytes = results[0]["bytes"] / 1e6
    transfer = sorted(result["transfer"] for result in results)[len(results) // 2] * 1e3
    bench.rows.append(report.Row(
        f"listing of 10,000 projects, {megabytes:.0f} MB, its transfer included", times[10_000],
        "parsing the same bytes alone", [result["parse"] for result in results], "at most 1.3", 1.3,
        note=f"{transfer:.0f} ms of it are the transfer by the network layer alone"))
    bench.growths.append(report.Growth("listing, for each project", times))


def start_up(bench):
    ours, tls = [], []
    for _ in range(3 * bench.repetitions):  # each is soon done, and some milliseconds are easily disturbed
        tls.append(bench.run("bench_tls")["seconds"])
        ours.append(profile(bench))
    bench.rows.append(report.Row(
        "the plug-in's row in the IDE's `-profile`", ours, "loading the TLS library alone", tls,
        "at most 1.5, and 2 ms", 1.5, slack=0.002))


def profile(bench):
    """Seconds for loading and initialising, as the IDE says: in whole milliseconds."""
    with Sandbox() as sandbox, VirtualDisplay(sandbox) as display, Group(bench.build, 1) as group:
        sandbox.install_repositories({"Demo": group.url})
        with Ide(bench.build, sandbox, display, rules="", arguments=["-profile"]) as ide:
            ide.started()
            ide.quit()
        return profiled_seconds(ide.log_file.read_text(encoding="utf-8", errors="replace"))


def profiled_seconds(log):
    found = re.search(r"(?m)^varnel\s+(\d+)ms\s+\(", log)
    if not found:
        raise RuntimeError(f"the IDE's profile has no row of the plug-in:\n{log[-3000:]}")
    return int(found[1]) / 1e3


# The page and the dialog

PAGE = {"page: open": ("page with 1,000 installed and 10,000 online: open", 0.150),
        "page: scan and redraw after an update": ("the same: redraw after an update", 0.100),
        "page: filter, per keystroke": ("the same: keystroke in the filter", 0.016)}
DIALOG = {"dialog: open": ("selection dialog with 10,000 rows: open", 0.200),
          "dialog: filter, per keystroke": ("the same: keystroke in the filter", 0.016)}


def user_interface(bench):
    results = {count: bench.run("bench_userinterface", BENCH_INSTALLED=str(count), BENCH_ONLINE=str(10 * count))
               for count in (10, 100, 1000)}
    largest = results[1000]
    for key, (name, limit) in (PAGE | DIALOG).items():
        empty = f"empty {key}"
        bench.rows.append(report.Row(
            name, largest[key], f"an empty page: {sorted(largest[empty])[len(largest[empty]) // 2] * 1e3:.1f} ms" if
            empty in largest else "", (), f"at most {limit * 1e3:.0f} ms", limit))
        scale = 10 if key in DIALOG else 1
        bench.growths.append(report.Growth(
            f"{key}, for each row", {scale * count: result[key] for count, result in results.items()}))


GROUPS = {"archive": archive, "search": search, "listing": listing, "start": start_up, "page": user_interface,
          "install": install, "check": check, "memory": peak_memory, "growth": install_growth}


def machine():
    model = re.search(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())
    memory = os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES") / 2**30
    return {"processor": model[1] if model else platform.machine(), "processors": os.cpu_count(),
            "memory": f"{memory:.0f} GiB", "kernel": platform.release(), "load before": os.getloadavg()[0],
            "date": time.strftime("%Y-%m-%d")}


def parse(arguments):
    parser = argparse.ArgumentParser(prog="tools/bench", description=__doc__)
    parser.add_argument("groups", nargs="*", metavar="GROUP", help=f"what to measure: {', '.join(GROUPS)}; else all")
    parser.add_argument("--repetitions", type=int, default=3, metavar="N", help="how often each is measured")
    parser.add_argument("--document", action="store_true", help="also put table and plot into docs/performance.md")
    parser.add_argument("--build-dir", type=pathlib.Path, required=True, help=argparse.SUPPRESS)
    options = parser.parse_args(arguments)
    if options.document and options.groups:
        parser.error("a document has to have all groups")
    if unknown := set(options.groups) - set(GROUPS):
        parser.error(f"there is no {', '.join(sorted(unknown))}")
    return options


def write_results(out, this_machine, bench):
    """Returns the table and the plot."""
    table = report.table(bench.rows, bench.growths, bench.steps)
    plot = report.plot(bench.growths) if bench.growths else ""
    (out / "table.md").write_text(table)
    (out / "results.json").write_text(report.as_json(this_machine, bench.rows, bench.growths, bench.steps))
    (out / "growth.svg").write_text(plot)
    return table, plot


def write_document(this_machine, table, plot):
    text = DOCUMENT.read_text(encoding="utf-8")
    begin, end = "<!-- figures -->\n", "<!-- end of figures -->"
    before, _, rest = text.partition(begin)
    _, _, after = rest.partition(end)
    about = (f"{this_machine['date']}, {this_machine['processors']} processors ({this_machine['processor']}), "
             f"{this_machine['memory']}, load {this_machine['load before']:.1f} before it began.")
    DOCUMENT.write_text(f"{before}{begin}\n{about}\n\n{table}\n{end}{after}", encoding="utf-8")
    (DOCUMENT.parent / "images/growth.svg").write_text(plot)


def main():
    options = parse(sys.argv[1:])
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))  # what runs and lies in memory goes, too
    out = options.build_dir.parent / "bench"
    out.mkdir(exist_ok=True)
    this_machine = machine()
    with tempfile.TemporaryDirectory(prefix="varnel-bench-", dir="/dev/shm") as memory, \
            tempfile.TemporaryDirectory(prefix="work-", dir=out) as disk:
        bench = Bench(options.build_dir, pathlib.Path(memory), pathlib.Path(disk), options.repetitions)
        for name in options.groups or GROUPS:
            start = time.monotonic()
            GROUPS[name](bench)
            table, plot = write_results(out, this_machine, bench)  # an end in the middle loses nothing
            print(f"varnel: {name} took {time.monotonic() - start:.0f} s", file=sys.stderr, flush=True)
        if options.document:
            write_document(this_machine, table, plot)
        print(f"{table}\n{this_machine}\n\nalso in {out}: results.json, table.md, growth.svg", flush=True)


if __name__ == "__main__":
    main()
