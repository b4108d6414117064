"""Real downloads: content, destination, and failures."""

import os
import unittest
import urllib.parse

from bridge_transfers import DOWNLOADS, BridgeTransfers
from harness import checksums
from harness.send_page import SendPage
from harness.session_bus import RecordedFileManager
from harness.wait import wait_until
from sandbox import Sandbox

SAMPLE = {
    "plain.txt": b"plain",
    "two words  100%41.bin": os.urandom(70_000),
    "Ünï \u65e5\u672c \U0001f600 #1?&;'.bin": os.urandom(123_457),
    "empty": b"",
    "nested/deep er/x.bin": os.urandom(1_000_003),
    "nested/empty.log": b"",
    "big.bin": os.urandom(24_000_000),
}


class Downloads(Sandbox):
    def setUp(self):
        super().setUp()
        self.downloads = self.home / "Downloads"
        self.downloads.mkdir()
        self.file_manager = RecordedFileManager(self.start_session_bus(), self.environment)

    def start(self):
        self.service, self.client, self.page = self.start_all()
        self.page.wait_until_ready()
        self.transfers = BridgeTransfers(self.page, self.service)

    def make_sample(self, files):
        folder = self.folder / "sample"
        for name, content in files.items():
            path = folder / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(content)
            os.utime(path, ns=(0, 1_600_000_000_123_000_000))
        return folder

    def send(self, files):
        """Sends these files with the client; returns the message and its files for downloads."""
        self.start()
        return self.transfers.send("A sample", self.make_sample(files))

    def fetch(self, message, files, summary, state="COMPLETED"):
        """Downloads files into their own folder in the automatic one; returns the group's id."""
        group = self.transfers.start_download(message, files, summary)
        self.transfers.wait_until_over("download", group, state)
        return group

    def fetched(self, summary):
        """Maps names to paths for all files in the folder, including hidden ones."""
        folder = self.downloads / "Zantrio" / summary
        return {str(path.relative_to(folder)): path for path in folder.rglob("*") if path.is_file()}

    def assert_fetched(self, summary, files):
        self.assertEqual(checksums.differences(checksums.files_below(self.make_sample(files)),
                                               self.fetched(summary)), [])

    def shown_folders(self):
        """Returns the folders that the file manager was asked to show."""
        return [urllib.parse.unquote(url) for url in self.file_manager.shown()]

    # Destination

    def test_downloads_what_was_sent_byte_by_byte(self):
        message, files = self.send(SAMPLE)
        group = self.fetch(message, files, "Zurück: 100% da")
        self.assert_fetched("Zurück: 100% da", SAMPLE)
        for path in self.fetched("Zurück: 100% da").values():
            self.assertEqual(path.stat().st_mtime_ns, 1_600_000_000_123_000_000, path)
        last = self.transfers.group_events(group)[-1]
        self.assertEqual(last["percentTransferred"], 100)
        self.assertEqual(last["bytesTransferred"], sum(map(len, SAMPLE.values())))
        self.assertEqual(set(self.transfers.file_states(group).values()), {"COMPLETED"})
        folder = self.downloads / "Zantrio" / "Zurück: 100% da"
        wait_until(self.shown_folders, 30, "the folder to be shown")
        self.assertEqual(self.shown_folders(), [f"file://{folder}/"])
        self.assert_leaves_cleanly(self.client, self.page)

    def test_downloads_to_the_folder_that_the_user_chooses(self):
        chosen = self.folder / "chosen by hand"
        chosen.mkdir()
        message, files = self.send({"a.txt": b"a"})
        self.page.evaluate(
            f"window.created = null; {DOWNLOADS}({{request: JSON.stringify({{method: 'createGroup',"
            f" parameters: {{bucketId: '{message.bucket}', summary: 'day 1/../../two'}}}}),"
            f" onSuccess: text => {{ created = text; }}, onFailure: (_, text) => {{ created = text; }}}}); 0")
        self.answer_dialog("Choose a folder", chosen)
        self.page.wait_for("created")
        group = self.page.evaluate("JSON.parse(created).id")
        self.transfers.ask(DOWNLOADS, "queueFiles", {"groupId": group, "files": files})
        self.transfers.wait_until_over("download", group, "COMPLETED")
        self.assertEqual((chosen / "day 1/two/a.txt").read_bytes(), b"a")
        self.assertEqual(list(self.downloads.iterdir()), [])

    def test_opens_the_folder_once_and_not_again_at_the_next_start(self):
        message, files = self.send({"a.txt": b"a"})
        self.fetch(message, files, "first")
        wait_until(self.shown_folders, 30, "the folder to be shown")
        self.assert_leaves_cleanly(self.client, self.page)
        self.page = SendPage(self.start_client(self.folder / "Zantrio").page())
        self.addCleanup(self.page.close)
        self.page.wait_until_ready()
        self.transfers = BridgeTransfers(self.page, self.service)
        self.fetch(message, files, "second")
        wait_until(lambda: len(self.shown_folders()) > 1, 30, "the second folder to be shown")
        self.assertEqual(self.shown_folders(), [f"file://{self.downloads}/Zantrio/first/",
                                                f"file://{self.downloads}/Zantrio/second/"])

    def test_opens_the_folder_of_a_cancelled_group_if_some_files_have_arrived(self):
        message, files = self.send({"a.txt": b"a", "b.txt": b"b"})
        self.service.request("POST", "/faults", {"type": "stall", "method": "GET", "path": "*/b.txt"})
        group = self.transfers.start_download(message, files, "some")
        self.transfers.wait_for_file(group, next(file["id"] for file in files
                                                 if file["path"] == "a.txt"), "COMPLETED")
        self.assertEqual(self.shown_folders(), [])
        self.transfers.ask(DOWNLOADS, "cancelGroup", {"groupId": group})
        wait_until(self.shown_folders, 30, "the folder to be shown")
        self.assertEqual(self.shown_folders(), [f"file://{self.downloads}/Zantrio/some/"])
        self.assertEqual(set(self.fetched("some")), {"a.txt"})

    # Failures

    def test_fails_only_files_with_hostile_names_and_writes_nothing_outside_the_folder(self):
        message, (good,) = self.send({"good.txt": b"good"})
        outside = self.folder / "outside"
        outside.mkdir()
        (self.downloads / "Zantrio/names").mkdir(parents=True)
        (self.downloads / "Zantrio/names/link").symlink_to(outside)
        hostile = ["../above.txt", "a/../../above.txt", str(outside / "absolute.txt"), "", ".", "..",
                   "nul\0.txt", "a/", "link/through.txt", "x" * 300]
        files = [{**good, "id": f"hostile {number}", "path": path}
                 for number, path in enumerate(hostile)]
        before = self.everything()
        group = self.fetch(message, [*files, good], "names", "ERRORED")
        states = self.transfers.file_states(group)
        self.assertEqual({name: state for name, state in states.items() if state != "ERRORED"},
                         {good["id"]: "COMPLETED"})
        self.assertEqual(len(states), len(hostile) + 1)
        new = {path for path in self.everything() - before if path.is_file()}
        self.assertEqual(new, {self.downloads / "Zantrio/names/good.txt"})

    def everything(self):
        """Everything in the test's folder except the own data of client and service."""
        own = (self.home / "Library", self.folder / "service", self.home / ".cache", self.home / ".config",
               self.home / ".local")
        return {path for path in self.folder.rglob("*")
                if not any(folder in (path, *path.parents) for folder in own)}

    def test_fails_a_corrupt_file_and_one_without_url_and_leaves_no_file(self):
        message, files = self.send({"a.bin": os.urandom(300_000)})
        self.transfers.ask(DOWNLOADS, "setConfiguration", {"maxTransferRetries": 1})
        self.service.request("POST", "/faults", {"method": "GET", "path": "/storage/*", "type": "corrupt",
                                                 "afterBytes": 100_000})
        self.fetch(message, files, "damaged", "ERRORED")
        self.fetch(message, [{**files[0], "downloadDetails": None}], "without address", "ERRORED")
        for summary in "damaged", "without address":
            self.assertEqual([name for name in self.fetched(summary) if not name.startswith(".")], [])
        self.assertEqual(self.shown_folders(), [])


if __name__ == "__main__":
    unittest.main()
