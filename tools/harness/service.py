"""The local service as a child process."""

import json
import pathlib
import subprocess
import urllib.error
import urllib.request

from . import process

MARKER = "listening on "


class Service:
    """A running local service; `url` is its address, `data` the folder of received files."""

    def __init__(self, program, web, data, port=0, log=None, options=()):
        self.data = pathlib.Path(data)
        self._process = process.start(
            [program, "--port", port, "--data", data, "--web", web, *options],
            stdout=subprocess.PIPE,
            stderr=log,
            text=True,
        )
        line = self._process.stdout.readline()
        if MARKER not in line:
            process.stop(self._process)
            raise process.Failure("the local service did not start; see its messages above")
        self.url = line.split(MARKER, 1)[1].split()[0]

    def request(self, method, path, body=None, headers=None):
        """Sends JSON to the service and returns the response's JSON."""
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.url + path, data=data, method=method,
                                         headers={"Content-Type": "application/json", **(headers or {})})
        with urllib.request.urlopen(request, timeout=30) as response:
            text = response.read()
        return json.loads(text) if text else None

    def arrived(self):
        """Maps the paths of received files below their message's folder to the files."""
        found = {}
        for folder in self.data.glob("messages/*/files"):
            for path in folder.rglob("*"):
                if path.is_file():
                    found[str(path.relative_to(folder))] = path
        return found

    def stop(self):
        code = process.stop(self._process)
        self._process.stdout.close()
        return code
