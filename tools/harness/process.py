"""Child processes that end with their starter, whatever ends it."""

import ctypes
import os
import signal
import subprocess

PR_SET_PDEATHSIG = 1
_libc = ctypes.CDLL(None, use_errno=True)


class Failure(Exception):
    """Something that a person is to be told in one line."""


def _die_with_parent():
    _libc.prctl(PR_SET_PDEATHSIG, signal.SIGTERM)


def start(arguments, **options):
    """Starts a program in a session of its own, so that a Ctrl-C reaches its starter alone."""
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
    """Asks a child to end, then makes it; gives its exit code."""
    if process.poll() is None:
        process.terminate()
        try:
            process.wait(grace_seconds)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()
    return process.returncode


def descendants(pid):
    """The process ids of all living descendants."""
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
