"""What every end-to-end test stands on: a service, a display, and the real client in a home of its own."""

import os
import pathlib
import tempfile
import unittest

from harness import bundle, checksums, process
from harness.client import Client
from harness.display import VirtualDisplay
from harness.send_page import SendPage
from harness.service import Service

BUILD = pathlib.Path(os.environ["ZANTRIO_BUILD"])
ROOT = pathlib.Path(__file__).resolve().parents[2]


class Sandbox(unittest.TestCase):
    """Makes a temporary folder for each test and ends everything that the test started."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="zantrio-e2e-", ignore_cleanup_errors=True)
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.home = self.folder / "home"
        self.home.mkdir()
        self._display = None

    @property
    def environment(self):
        """Variables of the virtual display, which starts when it is first needed."""
        if self._display is None:
            self._display = VirtualDisplay()
            self.addCleanup(self._display.stop)
        return dict(os.environ, **self._display.environment())

    def start_service(self, port=0):
        data = self.folder / "service"
        data.mkdir(exist_ok=True)
        service = Service(BUILD / "bin/zantrio-devservice", ROOT / "webapp", data, port)
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
        """A service and a client that shows its page; gives (service, client, page)."""
        service = self.start_service()
        client = self.start_client(self.make_bundle(service.url), *files)
        page = SendPage(client.page())
        self.addCleanup(page.close)
        return service, client, page

    def make_files(self, folder, count, size):
        """Makes `count` files of about `size` bytes, all different, in nested folders."""
        for number in range(count):
            path = folder / f"series {number // 100:03}" / f"Ünit {number:05} 100%.bin"
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(os.urandom(size + number % 97))
        return folder

    def assert_arrived(self, service, *sent):
        expected = {}
        for path in sent:
            expected.update(checksums.files_below(path))
        self.assertEqual(checksums.differences(expected, service.arrived()), [])

    def assert_leaves_cleanly(self, client, page):
        """Leaves through the page: exit code 0, the log's lines in order, no process left."""
        family = process.descendants(client.process.pid)
        page.leave()
        self.assertEqual(client.wait(60), 0, self.client_output.read_text(errors="replace"))
        self.assert_in_order(client.messages(), [
            "Browser instance created!",
            "onStartup called! App loaded",
            "Starting up Upload Manager",
            "QueryHandlerNativeApp: onAppExit called",
            "onShutdown: Shutdown was initiated by the app!",
            "Closing all browsers!",
            "Close proces initiated!",
            "OnBeforeClose: Shutting down!",
            "Shutting down Upload Manager",
        ])
        left = [pid for pid in family if pathlib.Path(f"/proc/{pid}/exe").exists()]
        self.assertEqual(left, [], "processes of the client are still running")

    def assert_in_order(self, lines, expected):
        position = 0
        for text in expected:
            self.assertIn(text, lines[position:], f"after line {position} of the log")
            position += lines[position:].index(text) + 1
