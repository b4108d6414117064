"""The client as a child process with its own home folder."""

import os
import pathlib
import subprocess

from . import process
from .page import Page, free_port

DATA_FOLDER = "Library/Application Support/Zantrio CEF"


class Client:
    """A running client. With `debuggable`, `page()` reaches its page. `folder` is its working folder."""

    def __init__(self, bundle, files=(), home=None, environment=None, debuggable=False, stderr=None,
                 folder=None):
        self.home = pathlib.Path(home or os.path.expanduser("~"))
        self._port = free_port() if debuggable else None
        variables = {**os.environ, **(environment or {}), "HOME": str(self.home)}
        if debuggable:
            variables["QTWEBENGINE_REMOTE_DEBUGGING"] = f"127.0.0.1:{self._port}"
        self.process = process.start([bundle / "bin" / "zantrio", *files], env=variables,
                                     cwd=folder, stdout=stderr, stderr=stderr)

    @property
    def data_folder(self):
        return self.home / DATA_FOLDER

    def log(self):
        """The application log's text; empty if there is none yet."""
        try:
            return (self.data_folder / "zt_app.log").read_text(encoding="utf-8", errors="replace")
        except FileNotFoundError:
            return ""

    def messages(self):
        """The log's messages, without their time, thread and priority."""
        return [line.split("] ", 3)[-1] for line in self.log().splitlines()]

    def page(self, url_part="/app", limit_seconds=90):
        return Page(self._port, url_part, limit_seconds)

    def wait(self, limit_seconds):
        try:
            return self.process.wait(limit_seconds)
        except subprocess.TimeoutExpired:
            raise process.Failure(f"the client did not end within {limit_seconds} s") from None

    def stop(self):
        return process.stop(self.process)
