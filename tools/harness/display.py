"""A virtual display, its screenshots, pointer and keys."""

import os
import shutil
import subprocess
import time

from Xlib import X
from Xlib.display import Display
from Xlib.protocol.event import ClientMessage

from . import process


def needed():
    """Whether this session has no display."""
    return not (os.environ.get("DISPLAY") or os.environ.get("WAYLAND_DISPLAY"))


class VirtualDisplay:
    """An X server without a screen, on the first free display number."""

    def __init__(self, width=1600, height=1000):
        reading, writing = os.pipe()
        self._server = process.start(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", f"{width}x{height}x24",
             "-nolisten", "tcp", "-noreset"],
            pass_fds=[writing],
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        )
        os.close(writing)
        with os.fdopen(reading) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise process.Failure("the virtual display (Xvfb) did not start")
        self.name = f":{number}"

    def environment(self):
        return {"DISPLAY": self.name, "QT_QPA_PLATFORM": "xcb"}

    def stop(self):
        process.stop(self._server)


def screenshot(environment, path, limit_seconds=3):
    """Saves the display's picture once it stops changing, or at the limit; returns whether that was possible."""
    if not shutil.which("import"):
        return False
    deadline = time.monotonic() + limit_seconds
    before = None
    while True:
        picture = subprocess.run(["import", "-window", "root", "png:-"], env=environment, check=False,
                                 capture_output=True)
        if picture.returncode != 0:
            return False
        if picture.stdout == before or time.monotonic() > deadline:
            path.write_bytes(picture.stdout)
            return True
        before = picture.stdout


def xdotool(environment, *arguments):
    """Runs xdotool and returns its output; raises if it fails."""
    done = subprocess.run(["xdotool", *[str(argument) for argument in arguments]],
                          env=environment, check=True, capture_output=True, text=True)
    return done.stdout.strip()


def windows(environment, title):
    """Returns the ids of the visible windows whose title matches the expression."""
    done = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", title],
                          env=environment, check=False, capture_output=True, text=True)
    return done.stdout.split()


def close_window(environment, window):
    """Asks a window to close, as a window manager does after a click on its X."""
    connection = Display(environment["DISPLAY"])
    message = ClientMessage(
        window=connection.create_resource_object("window", int(window)),
        client_type=connection.intern_atom("WM_PROTOCOLS"),
        data=(32, [connection.intern_atom("WM_DELETE_WINDOW"), X.CurrentTime, 0, 0, 0]))
    message.window.send_event(message)
    connection.sync()
    connection.close()
