"""The base of every end-to-end test: a service, a display, and the real client in its own home folder."""

import os
import pathlib
import queue
import subprocess
import tempfile
import threading
import unittest

from harness import bundle, checksums, display, process
from harness.client import Client
from harness.display import VirtualDisplay
from harness.send_page import SendPage
from harness.service import Service
from harness.session_bus import SessionBus
from harness.wait import wait_until

BUILD = pathlib.Path(os.environ["ZANTRIO_BUILD"])
ROOT = pathlib.Path(__file__).resolve().parents[2]

# Tests must not reach the desktop services of the user who runs them.
for bus in ("DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"):
    os.environ[bus] = "unix:path=/nonexistent/bus"


class Sandbox(unittest.TestCase):
    """Creates a temporary folder for each test and ends everything that the test started."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="zantrio-e2e-", ignore_cleanup_errors=True)
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.home = self.folder / "home"
        self.home.mkdir()
        self._display = None
        self._variables = {}

    @property
    def environment(self):
        """Variables of the virtual display, which starts at the first use, and of the test."""
        if self._display is None:
            self._display = VirtualDisplay()
            self.addCleanup(self._display.stop)
        return {**os.environ, **self._display.environment(), **self._variables}

    def start_session_bus(self, **options):
        """Starts a session bus for the client and desktop services."""
        bus = SessionBus(**options)
        self.addCleanup(bus.stop)
        self._variables.update(bus.environment())
        return bus

    def replace_opener(self):
        """Replaces xdg-open; returns a function that lists the arguments of its starts."""
        opened = self.folder / "opened"
        program = self.folder / "programs" / "xdg-open"
        program.parent.mkdir()
        program.write_text(f"#!/bin/sh\nprintf '%s\\n' \"$*\" >> '{opened}'\n")
        program.chmod(0o755)
        self._variables["PATH"] = f"{program.parent}:{os.environ['PATH']}"
        return lambda: opened.read_text().splitlines() if opened.exists() else []

    def start_service(self, port=0, options=()):
        data = self.folder / "service"
        data.mkdir(exist_ok=True)
        service = Service(BUILD / "bin/zantrio-devservice", ROOT / "webapp", data, port, options=options)
        self.addCleanup(service.stop)
        return service

    def make_bundle(self, base_url):
        return bundle.copy_to(BUILD / "Zantrio", self.folder / "Zantrio", base_url)

    def start_client(self, bundle_folder, *files, environment=None, **options):
        self.client_output = self.folder / "client.log"
        output = self.client_output.open("ab")
        self.addCleanup(output.close)
        client = Client(bundle_folder, files, self.home, environment or self.environment,
                        debuggable=True, stderr=output, **options)
        self.addCleanup(client.stop)
        return client

    def start_all(self, *files):
        """Starts a service and a client that shows its page; returns (service, client, page)."""
        service = self.start_service()
        client = self.start_client(self.make_bundle(service.url), *files)
        return service, client, self.send_page(client)

    def send_page(self, client):
        page = SendPage(client.page())
        self.addCleanup(page.close)
        return page

    def make_files(self, folder, count, size):
        """Creates `count` different files of about `size` bytes in nested folders."""
        for number in range(count):
            path = folder / f"series {number // 100:03}" / f"Ünit {number:05} 100%.bin"
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(os.urandom(size + number % 97))
        return folder

    def answer_dialog(self, title, path):
        """Types the path into the system's dialog and accepts it."""
        dialog = self.wait_for_window(title)
        display.xdotool(self.environment, "windowfocus", "--sync", dialog)
        display.xdotool(self.environment, "key", "ctrl+a")
        display.xdotool(self.environment, "type", "--delay", "2", str(path))
        display.xdotool(self.environment, "key", "Return")
        self.wait_for_no_window(title)

    def press_key(self, title, key):
        """Presses a key in the window of that title."""
        window = self.wait_for_window(title)
        display.xdotool(self.environment, "windowfocus", "--sync", window)
        display.xdotool(self.environment, "key", key)

    def wait_for_window(self, title):
        return wait_until(lambda: display.windows(self.environment, f"^{title}$"), 30,
                          f'a window "{title}"')[0]

    def wait_for_no_window(self, title):
        wait_until(lambda: not display.windows(self.environment, f"^{title}$"), 30,
                   f'the end of the window "{title}"')

    def drag_to_window(self, path):
        """Drags the path from another program's window to the client's with the pointer."""
        screen, said = self.move_over_window(path)
        # The window answers each movement; the first answers come before the page's.
        wait_until(lambda: display.xdotool(screen, "mousemove_relative", 1, 0) == ""
                   and not said.empty() and said.get() == "offered 1", 30, "the page's consent")
        display.xdotool(screen, "mouseup", 1)
        self.assertEqual(said.get(timeout=30), "dropped 1")

    def move_over_window(self, path):
        """Begins such a drag; returns the display's variables and a queue of the other program's lines."""
        screen = self.environment
        source = process.start([BUILD / "bin/drag_source", path], env=screen, text=True, stdout=subprocess.PIPE)
        self.addCleanup(source.stdout.close)
        said = queue.SimpleQueue()
        reader = threading.Thread(target=lambda: [said.put(line.strip()) for line in source.stdout])
        reader.start()
        self.addCleanup(reader.join)
        self.addCleanup(process.stop, source)
        self.assertEqual(said.get(timeout=30), "ready")
        for step in (["mousemove", 50, 30], ["mousedown", 1], ["mousemove", 60, 35],
                     ["mousemove", 200, 200], ["mousemove", 600, 400]):
            display.xdotool(screen, *step)
        return screen, said

    def assert_arrived(self, service, *sent):
        expected = {}
        for path in sent:
            expected.update(checksums.files_below(path))
        self.assertEqual(checksums.differences(expected, service.arrived()), [])

    def assert_leaves_cleanly(self, client, page):
        """Quits through the page: exit code 0, the log's lines in order, no process left."""
        family = process.descendants(client.process.pid)
        page.leave()
        self.assertEqual(client.wait(60), 0, self.client_output.read_text(errors="replace"))
        self.assert_in_order(client.messages(), [
            "Browser instance created!",
            "onStartup called! App loaded",
            "Starting up download manager",
            "Starting up Upload Manager",
            "QueryHandlerNativeApp: onAppExit called",
            "onShutdown: Shutdown was initiated by the app!",
            "Closing all browsers!",
            "Close proces initiated!",
            "OnBeforeClose: Shutting down!",
            "Shutting down download manager",
            "Shutting down Upload Manager",
        ])
        self.assert_ended(family)

    def assert_ended(self, pids):
        """Waits until the processes have ended; the browser's own may do so a moment after the client."""
        wait_until(lambda: not process.running(pids), 30, "the end of the client's processes")

    def assert_in_order(self, lines, expected):
        position = 0
        for text in expected:
            self.assertIn(text, lines[position:], f"after line {position} of the log")
            position += lines[position:].index(text) + 1
