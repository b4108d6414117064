"""Child processes that end with their parent, however it ends."""

import ctypes
import os
import pathlib
import signal
import subprocess

PR_SET_PDEATHSIG = 1
_libc = ctypes.CDLL(None, use_errno=True)


class Failure(Exception):
    """A failure to be reported to the user in one line."""


def _die_with_parent():
    _libc.prctl(PR_SET_PDEATHSIG, signal.SIGTERM)


def start(arguments, **options):
    """Starts a program in its own session, so that Ctrl-C reaches only its parent."""
    try:
        return subprocess.Popen(
            [str(argument) for argument in arguments],
            start_new_session=True,
            preexec_fn=_die_with_parent,
            **options,
        )
    except OSError as error:
        raise Failure(f"{arguments[0]} could not be started: {error.strerror}") from error


def stop(process, grace_seconds=15):
    """Terminates a child, kills it after the grace period; returns its exit code."""
    if process.poll() is None:
        process.terminate()
        try:
            process.wait(grace_seconds)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()
    return process.returncode


def name(pid):
    """The process's name; empty if it has ended."""
    return _read(pid, "comm").decode().strip()


def command_line(pid):
    """The process's arguments in bytes, each ended by a NUL; empty if it has ended."""
    return _read(pid, "cmdline")


def _read(pid, file):
    try:
        return pathlib.Path(f"/proc/{pid}/{file}").read_bytes()
    except OSError:
        return b""


def running(pids):
    """Those of the processes that have not ended."""
    return [pid for pid in pids if os.path.exists(f"/proc/{pid}/exe")]


def descendants(pid):
    """Returns the process ids of all living descendants."""
    children = {}
    for entry in os.listdir("/proc"):
        if not entry.isdigit():
            continue
        try:
            with open(f"/proc/{entry}/stat", encoding="utf-8", errors="replace") as stat:
                fields = stat.read().rpartition(")")[2].split()
        except OSError:
            continue
        if fields[0] != "Z":
            children.setdefault(int(fields[1]), []).append(int(entry))
    found, waiting = [], [pid]
    while waiting:
        for child in children.get(waiting.pop(), []):
            found.append(child)
            waiting.append(child)
    return found
