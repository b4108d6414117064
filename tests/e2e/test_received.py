"""Downloads from the page of received messages: all files or some, into either folder."""

import hashlib
import time
import unittest

from harness import checksums
from harness.received_page import ReceivedPage
from harness.wait import wait_until
from sandbox import Sandbox

WELCOME = "sample-welcome"


class Received(Sandbox):
    def start_page(self, *files, service_options=()):
        self.automatic = self.home / "Downloads" / "Zantrio"
        self.automatic.parent.mkdir()
        self.opened = self.replace_opener()
        self.service = self.start_service(options=service_options)
        self.bundle = self.make_bundle(self.service.url)
        self.open_page(*files)

    def open_page(self, *files):
        self.client = self.start_client(self.bundle, *files)
        self.page = self.send_page(self.client)
        self.received = ReceivedPage(self.page.inner)
        self.page.wait_for("document.querySelector('#nav-received') !== null")

    def offered(self, bucket_id):
        """Maps a message's paths to their checksums."""
        files = self.service.request("GET", f"/api/received/{bucket_id}/files")["files"]
        return {file["path"]: file["md5Digest"] for file in files}

    def assert_downloaded(self, folder, expected):
        found = {str(path.relative_to(folder)): hashlib.md5(path.read_bytes()).hexdigest()
                 for path in folder.rglob("*") if path.is_file()}
        self.assertEqual(found, expected)

    def test_downloads_files_chosen_by_keyboard_to_a_chosen_folder(self):
        self.start_page()
        self.received.open(WELCOME)
        for key, shift in ((" ", False), ("ArrowDown", False), ("ArrowDown", False), ("ArrowDown", True)):
            self.received.press(key, shift)
        self.received.press("End")
        self.received.press("ArrowUp")
        self.received.press(" ")
        self.assertIn("4 of 9 files", self.received.chosen_sum())
        target = self.folder / "my own"
        target.mkdir()
        self.received.download_to()
        self.answer_dialog("Choose a folder", target)
        self.received.wait_for_state("COMPLETED")
        offered = self.offered(WELCOME)
        chosen = [path for number, path in enumerate(offered) if number in (0, 2, 3, 7)]
        self.assert_downloaded(target / "Welcome files to try", {path: offered[path] for path in chosen})
        self.assertFalse(self.automatic.exists())

    def test_downloads_ten_thousand_files_while_the_page_stays_responsive(self):
        self.start_page()
        self.received.open("sample-many")
        self.page.evaluate("window.longest = 0; window.last = performance.now(); setInterval(() => {"
                           " const now = performance.now(); longest = Math.max(longest, now - last); last = now; }, 10); 0")
        begun = time.monotonic()
        self.received.download()
        self.received.wait_for_state("COMPLETED", 300)
        seconds = time.monotonic() - begun
        files = {}
        for page in ("0", "5000"):
            listed = self.service.request("GET", f"/api/received/sample-many/files?count=5000&after={page}")
            files.update({file["path"]: file["md5Digest"] for file in listed["files"]})
        self.assertEqual(len(files), 10_000)
        self.assert_downloaded(self.automatic / "10,000 small files", files)
        # On a busy machine both take longer, but the page never stands still for most of the time.
        self.assertLess(self.page.evaluate("longest") / 1000, seconds / 2, "the page stood still")
        wait_until(self.opened, 30, "the folder to be opened")
        self.assertEqual(len(self.opened()), 1, self.opened())

    def test_renews_expired_urls(self):
        self.start_page(service_options=("--url-lifetime", "1"))
        self.service.request("POST", "/faults", {
            "method": "GET", "path": "/storage/*/Read*", "type": "delay", "milliseconds": 2500, "count": 1})
        self.received.open(WELCOME)
        self.page.query("downloadManagerBridge_IPC", "setConfiguration", {"maxConcurrentTransfers": 1})
        self.received.download()
        self.received.wait_for_state("COMPLETED")
        self.assert_downloaded(self.automatic / "Welcome files to try", self.offered(WELCOME))
        queued = [line for line in self.client.messages() if line.startswith("QueryHandlerDownloadManager: Adding")]
        self.assertGreater(len(queued), 1, "no URL was renewed")

    def test_downloads_a_sent_message_unchanged(self):
        folder = self.make_files(self.folder / "Série 100% 日本", 30, 20_000)
        (folder / "empty").write_bytes(b"")
        self.start_page(folder)
        self.page.wait_for_files(31)
        self.page.describe("Über/alles", "me@example.org")
        self.page.send()
        self.assertEqual(self.page.wait_until_over(60), "COMPLETED")
        self.page.wait_for("document.querySelector('[data-test=group-state]').dataset.phase === 'delivered'")
        newest = self.service.request("GET", "/api/received")["messages"][0]
        self.received.open(newest["bucketId"])
        self.received.download()
        self.received.wait_for_state("COMPLETED")
        self.assertEqual(
            checksums.differences(checksums.files_below(folder), checksums.files_below(self.automatic / "Über alles")), [])

    def test_resumes_a_download_after_the_application_was_killed(self):
        self.start_page()
        self.service.request("POST", "/faults", {
            "method": "GET", "path": "/storage/*/Large/*", "type": "rate", "bytesPerSecond": 8_000_000})
        self.received.open(WELCOME)
        self.received.download()
        self.page.wait_for("Number(document.querySelector('.message-download [data-test=group-progress]')"
                           "?.getAttribute('aria-valuenow')) >= 20")
        self.client.process.kill()
        self.client.wait(30)
        self.service.request("DELETE", "/faults")
        self.open_page()
        self.received.open(WELCOME)
        self.received.wait_for_state("COMPLETED")
        self.assert_downloaded(self.automatic / "Welcome files to try", self.offered(WELCOME))
        self.assertEqual([path for path in self.automatic.rglob(".*")], [], "partial files are left")


if __name__ == "__main__":
    unittest.main()
