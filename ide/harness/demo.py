# SPDX-FileCopyrightText: The Varnel authors
# SPDX-License-Identifier: GPL-3.0-or-later
"""The demo repository's server as a program, and its controls."""

import json
import subprocess
import urllib.parse
import urllib.request

_NO_PROXY = urllib.request.build_opener(urllib.request.ProxyHandler({}))


class DemoServer:
    """Runs until close() or the end of a with block."""

    def __init__(self, build, folder=None):
        command = [str(build / "demo/varnel-demo-server")]
        if folder:
            command += ["--folder", str(folder)]
        self._process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.url = self._process.stdout.readline().strip()
        if not self.url:
            raise RuntimeError(self._process.communicate()[1].strip() or "the demo server did not start")
        self._control = urllib.parse.urljoin(self.url, "/control/")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        self._process.terminate()
        self._process.communicate()

    def _ask(self, method, command, body=None, **query):
        address = f"{self._control}{command}?{urllib.parse.urlencode(query)}"
        request = urllib.request.Request(address, data=body, method=method)
        with _NO_PROXY.open(request, timeout=20) as answer:
            return json.load(answer)

    @staticmethod
    def fetch_bytes(address):
        """What anybody gets from this address."""
        with _NO_PROXY.open(address, timeout=60) as answer:
            return answer.read()

    def fetch(self, address):
        return json.loads(self.fetch_bytes(address))

    def requests(self, route="*"):
        """The paths of what came in, in that order."""
        return [request["path"] for request in self._ask("GET", "requests", route=route)["requests"]]

    def push(self, project, time=None):
        self._ask("POST", "commit", project=project, **({"time": time} if time else {}))

    def hold(self, route):
        self._ask("POST", "hold", route=route)

    def held(self, route):
        return self._ask("GET", "held", route=route)["count"]

    def release(self, route):
        self._ask("POST", "release", route=route)

    def answer(self, route, body, status=200, content_type="application/octet-stream"):
        self._ask("POST", "answer", body, route=route, status=status, type=content_type)

    def fault(self, route, cut=None, end="reset", delay=0):
        self._ask("POST", "fault", route=route, delay=delay, **({"cut": cut, "end": end} if cut is not None else {}))

    def restore(self):
        self._ask("POST", "restore")
