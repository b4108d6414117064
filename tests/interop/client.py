"""Runs the transfer library in a process of its own, which can be killed."""

import hashlib
import os
import pathlib
import signal
import subprocess
import time

PATIENCE = 180  # seconds for anything that must happen


class Failed(Exception):
    pass


def wait_for(condition, what, limit=PATIENCE):
    end = time.monotonic() + limit
    while not condition():
        if time.monotonic() > end:
            raise Failed(f"{what}: not within {limit} s")
        time.sleep(0.05)


class Client:
    """Downloads the files to `folder`/target, or uploads them from `folder` with direction "up"."""

    def __init__(self, probe, folder, server, told_digest=True, prefix=(), environment=None, direction="down"):
        self.folder = pathlib.Path(folder)
        number = str(len(server.files))
        counts = ("0", number) if direction == "down" else (number, "0")
        self.command = [*prefix, probe, str(folder), server.url, *counts]
        self.environment = {**os.environ, **(environment or {})}
        self.told = set()
        self.process = None
        lines = [
            f"{len(content)} {hashlib.md5(content).hexdigest() if told_digest else '-'}"
            for content in server.files.values()
        ]
        (self.folder / "downloads").write_text("\n".join(lines) + "\n")

    def start(self):
        self.process = subprocess.Popen(
            self.command, stdout=subprocess.PIPE, text=True, env=self.environment
        )

    def kill(self):
        self.process.send_signal(signal.SIGKILL)
        self._read()

    def finish(self):
        end = time.monotonic() + PATIENCE
        while self.process.poll() is None:
            if time.monotonic() > end:
                self.kill()
                raise Failed(f"the transfers did not end within {PATIENCE} s\n" + self.log())
            time.sleep(0.05)
        self._read()
        if self.process.returncode != 0:
            raise Failed(f"the client ended with {self.process.returncode}\n" + self.log())

    def _read(self):
        out, _ = self.process.communicate()
        self.told |= {line.split("/")[1] for line in out.splitlines() if "/" in line}

    def log(self):
        path = self.folder / "zt_transfers.log"
        return path.read_text() if path.exists() else ""


def check_files(target, server, names=None):
    """All of these are whole, and nothing else lies there."""
    target = pathlib.Path(target)
    for name in server.files if names is None else names:
        path = target / f"file{name}"
        if not path.exists():
            raise Failed(f"{path.name} is missing")
        if path.read_bytes() != server.files[name]:
            raise Failed(f"{path.name} has other bytes than the server")
    if names is None:
        others = {entry.name for entry in target.iterdir()} - {f"file{name}" for name in server.files}
        others.discard("lost+found")
        if others:
            raise Failed(f"left behind: {sorted(others)}")
