# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""What is measured: groups of examples with their archives on the demo server, the same as git repositories, and trees
of files."""

import concurrent.futures
import hashlib
import http.server
import io
import json
import os
import pathlib
import random
import re
import subprocess
import tarfile
import threading
import urllib.parse
import zlib

from demo import DemoServer

GROUP = "4711"  # the demo server's id of its group
SEED = 20
DESCRIPTION = "What a project says of itself, at some length. " * 18  # a project is then as long as on a real server


def text(random_numbers, size):
    """Compresses to about a half, as source code does."""
    return random_numbers.randbytes(size // 2 + 1).hex().encode()[:size]


def source_text(random_numbers, size):
    """With as many brackets as source code has: where there is none, a search for a call is too easy."""
    return re.sub(rb"[0-5]a", rb"n(", text(random_numbers, size))


def files_of(number, count, size, packs=True):
    """{path: content} of one example of so many files and bytes in all, which can be compressed or not."""
    numbers = random.Random(SEED + number)
    files = {"CMakeLists.txt": b"project(measured)\n", "main.cpp": b"int main() { return 0; }\n"}
    for index in range(count - len(files)):
        content = text(numbers, size // count) if packs else numbers.randbytes(size // count)
        files[f"src{index % 20}/file{index}.txt"] = content
    return files


def archive_of(path, files, packs=True):
    """As a GitLab server packs it: all below one directory, every entry with the time of the commit."""
    buffer = io.BytesIO()
    top = f"{path}-main-{hashlib.sha1(path.encode()).hexdigest()}"
    with tarfile.open(fileobj=buffer, mode="w", format=tarfile.GNU_FORMAT) as tar:
        for name, content in files.items():
            entry = tarfile.TarInfo(f"{top}/{name}")
            entry.size, entry.mtime = len(content), 1_700_000_000
            tar.addfile(entry, io.BytesIO(content))
    packer = zlib.compressobj(1 if packs else 0, zlib.DEFLATED, 31)
    return packer.compress(buffer.getvalue()) + packer.flush()


class Group:
    """So many examples alike on a demo server of its own; every other repetition gets the same bytes."""

    def __init__(self, build, count, files=0, size=0, packs=True):
        """Without files only the listing is there, however long: a real server gives a hundred at a time."""
        self.count = count
        self.paths = [f"example-{number:05}" for number in range(count)]
        self.server = DemoServer(build)
        self.url = self.server.url
        self._base = urllib.parse.urljoin(self.url, "/")
        self.listing_url = f"{self._base}api/v4/groups/{GROUP}"
        self._serve_listing()
        self.archive_bytes = 0
        self._content = (files, size, packs)
        if files:
            self._serve_archives()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.server.close()

    def files(self, number):
        return files_of(number, *self._content)

    def downloads(self):
        """The addresses of all archives and pictures."""
        for number in range(self.count):
            yield f"{self._base}api/v4/projects/{number + 1}/repository/archive.tar.gz"
            yield f"{self._base}picture/{number + 1}.png"

    def _serve_listing(self):
        answer = self.server.fetch(self.listing_url)
        model = answer["projects"][0]
        answer["projects"] = [
            model | {"id": number + 1, "description": DESCRIPTION, "path": path, "name": f"Example {number}",
                     "avatar_url": f"{self._base}picture/{number + 1}.png",
                     "web_url": f"{self._base}samples/{path}", "last_activity_at": "2024-01-01T00:00:00.000Z"}
            for number, path in enumerate(self.paths)]
        self.server.answer(f"/api/v4/groups/{GROUP}", json.dumps(answer).encode(), content_type="application/json")

    def _serve_archives(self):
        # One picture for all; the server's own samples have real ones.
        address = next(project["avatar_url"] for project in self.server.fetch(
            f"{self._base}api/v4/groups/{GROUP}/projects") if project["avatar_url"])
        self.server.answer("/picture/*", self.server.fetch_bytes(address), content_type="image/png")
        with concurrent.futures.ProcessPoolExecutor(2) as pool:
            wanted = ((path, number, self._content) for number, path in enumerate(self.paths))
            archives = pool.map(_archive, wanted, chunksize=8)
            for number, archive in enumerate(archives):
                self.archive_bytes += len(archive)
                self.server.answer(f"/api/v4/projects/{number + 1}/repository/archive.tar.gz", archive)


def _archive(arguments):
    path, number, (files, size, packs) = arguments
    return archive_of(path, files_of(number, files, size, packs), packs)


class GitServer:
    """The examples of a group as git repositories over http, by git's own back end."""

    def __init__(self, group, directory):
        self.root = directory
        self._paths = group.paths
        for number, path in enumerate(group.paths):
            self._import(directory / f"{path}.git", group.files(number))
        handler = type("Handler", (_GitHandler,), {"root": directory})
        self._server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
        threading.Thread(target=self._server.serve_forever, daemon=True).start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._server.shutdown()

    def urls(self):
        return [f"http://127.0.0.1:{self._server.server_port}/{path}.git" for path in self._paths]

    @staticmethod
    def _import(repository, files):
        subprocess.run(["git", "init", "--quiet", "--bare", "--initial-branch", "main", repository], check=True)
        stream = [b"commit refs/heads/main\ncommitter A <a@example.org> 1700000000 +0000\ndata 1\nx\n"]
        for name, content in files.items():
            stream.append(b"M 100644 inline %s\ndata %d\n%s\n" % (name.encode(), len(content), content))
        subprocess.run(["git", "-C", repository, "fast-import", "--quiet"], input=b"".join(stream), check=True)


class _GitHandler(http.server.BaseHTTPRequestHandler):
    root = None

    def log_message(self, *_):
        pass

    def do_GET(self):
        self._answer(b"")

    def do_POST(self):
        self._answer(self.rfile.read(int(self.headers.get("Content-Length", 0))))

    def _answer(self, body):
        address = urllib.parse.urlsplit(self.path)
        environment = os.environ | {
            "GIT_PROJECT_ROOT": str(self.root), "GIT_HTTP_EXPORT_ALL": "1", "REQUEST_METHOD": self.command,
            "PATH_INFO": address.path, "QUERY_STRING": address.query, "REMOTE_ADDR": "127.0.0.1",
            "CONTENT_TYPE": self.headers.get("Content-Type", ""), "CONTENT_LENGTH": str(len(body)),
            "HTTP_CONTENT_ENCODING": self.headers.get("Content-Encoding", ""),
            "GIT_PROTOCOL": self.headers.get("Git-Protocol", "")}
        result = subprocess.run(["git", "http-backend"], env=environment, input=body, capture_output=True, check=True)
        head, _, content = result.stdout.partition(b"\r\n\r\n")
        headers = [line.split(": ", 1) for line in head.decode().splitlines()]
        status = next((value for name, value in headers if name == "Status"), "200 OK")
        self.send_response(int(status.split()[0]))
        for name, value in headers:
            if name != "Status":
                self.send_header(name, value)
        self.send_header("Content-Length", str(len(content)))
        self.end_headers()
        self.wfile.write(content)


def make_tree(directory, count, size, hit):
    """So many files and bytes in a chain of directories, where the deepest is read last. Only there, if at all, lies
    a file with what is searched for."""
    numbers = random.Random(SEED)
    per_directory = 200
    block = source_text(numbers, 1 << 20)
    directory = pathlib.Path(directory)
    directory.mkdir(parents=True)
    (directory / "CMakeLists.txt").write_text("project(measured)\n")
    for number in range(count):
        if number and number % per_directory == 0:
            directory /= "d"
            directory.mkdir()
        start = numbers.randrange(len(block) // 2)
        (directory / f"file{number}.txt").write_bytes(block[start:start + size // count])
    if hit:
        (directory / "d").mkdir()
        (directory / "d/found.cpp").write_text("int main() { return 0; }\n")
