"""One run of a command: its time, processor time and memory."""

import dataclasses
import os
import pathlib
import select
import time

from harness import process


@dataclasses.dataclass(frozen=True)
class Cost:
    wall: float    # seconds
    cpu: float     # seconds, of user and system
    memory: float  # MiB at the most


def wait_for_end(pid, limit_seconds):
    """Returns as soon as the child has ended, without reaping it; wait() with a limit would poll."""
    ended = os.pidfd_open(pid)
    try:
        if not select.select([ended], [], [], limit_seconds)[0]:
            raise process.Failure(f"not done after {limit_seconds} s")
    finally:
        os.close(ended)


def run(arguments, standard_input, work, limit_seconds):
    """Runs the command to its end; raises with its messages if it fails."""
    usage, messages = pathlib.Path(work) / "usage", pathlib.Path(work) / "messages"
    # A program inherits the peak memory of the process that starts it; this starter's is 2 MiB.
    command = ["/usr/bin/time", "--quiet", "--format", "%U %S %M", "--output", usage, *arguments]
    environment = {name: value for name, value in os.environ.items() if "proxy" not in name.lower()}
    with messages.open("wb") as output, open(standard_input or os.devnull, "rb") as given:
        begin = time.monotonic()
        started = process.start(command, stdin=given, stdout=output, stderr=output, env=environment)
        try:
            wait_for_end(started.pid, limit_seconds)
            wall = time.monotonic() - begin
        finally:
            code = process.stop(started)
    if code != 0:
        raise process.Failure(f"ended with {code}: {messages.read_text()[-2000:].strip()}")
    user, system, kilobytes = usage.read_text().split()
    return Cost(wall, float(user) + float(system), int(kilobytes) / 1024)
