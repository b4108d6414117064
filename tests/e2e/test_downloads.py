"""Real files back from the service: what arrives, where, and what happens when something is wrong with it."""

import hashlib
import os
import unittest
import urllib.parse

from bridge_transfers import DOWNLOADS, BridgeTransfers
from harness import checksums
from harness.send_page import SendPage
from harness.session_bus import RecordedFileManager
from harness.wait import wait_until
from odd_server import OddServer, whole, with_changing_etag
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
        """Sends these files with the client; gives the message and how its files are to be fetched."""
        self.start()
        return self.transfers.send("A sample", self.make_sample(files))

    def fetch(self, message, files, summary, state="COMPLETED"):
        """Fetches files into their own folder of the automatic one; gives the group's id."""
        group = self.transfers.start_download(message, files, summary)
        self.transfers.wait_until_over("download", group, state)
        return group

    def fetched(self, summary):
        """Everything in the folder, hidden files too, as a map from name to path."""
        folder = self.downloads / "Zantrio" / summary
        return {str(path.relative_to(folder)): path for path in folder.rglob("*") if path.is_file()}

    def assert_fetched(self, summary, files):
        self.assertEqual(checksums.differences(checksums.files_below(self.make_sample(files)),
                                               self.fetched(summary)), [])

    def shown_folders(self):
        """The folders that the file manager was asked to show."""
        return [urllib.parse.unquote(url) for url in self.file_manager.shown()]

    # Where it goes

    def test_what_was_sent_comes_back_byte_by_byte(self):
        message, files = self.send(SAMPLE)
        group = self.fetch(message, files, "Zurück: 100% da")
        self.assert_fetched("Zurück: 100% da", SAMPLE)
        for path in self.fetched("Zurück: 100% da").values():
            self.assertEqual(path.stat().st_mtime_ns, 1_600_000_000_123_000_000, path)
        last = self.transfers.reports(group)[-1]
        self.assertEqual(last["percentTransferred"], 100)
        self.assertEqual(last["bytesTransferred"], sum(map(len, SAMPLE.values())))
        self.assertEqual(set(self.transfers.files_told(group).values()), {"COMPLETED"})
        folder = self.downloads / "Zantrio" / "Zurück: 100% da"
        wait_until(self.shown_folders, 30, "the folder to be shown")
        self.assertEqual(self.shown_folders(), [f"file://{folder}/"])
        self.assert_leaves_cleanly(self.client, self.page)

    def test_files_go_to_the_folder_that_the_user_chooses(self):
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

    def test_no_group_is_made_when_the_user_cancels(self):
        self.start()
        self.page.evaluate(
            f"window.created = null; {DOWNLOADS}({{request: '{{\"method\":\"createGroup\"}}',"
            f" onSuccess: text => {{ created = text; }}, onFailure: () => {{ created = 'failed'; }}}}); 0")
        self.press_key("Choose a folder", "Escape")
        self.assertEqual(self.page.wait_for("created"), "null\n")
        self.assertEqual(self.transfers.ask(DOWNLOADS, "fetchGroupsState"), [])

    def test_files_that_are_there_are_never_replaced(self):
        there = self.downloads / "Zantrio/again/a.txt"
        there.parent.mkdir(parents=True)
        there.write_bytes(b"mine")
        message, files = self.send({"a.txt": b"theirs"})
        self.fetch(message, files, "again")
        self.assertEqual({name: path.read_bytes() for name, path in self.fetched("again").items()},
                         {"a.txt": b"mine", "a (1).txt": b"theirs"})

    def test_folder_opens_once_and_not_again_at_the_next_start(self):
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

    def test_folder_of_a_cancelled_group_opens_when_some_files_have_arrived(self):
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

    # What may be wrong

    def test_hostile_names_fail_alone_and_leave_nothing_outside_the_folder(self):
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
        told = self.transfers.files_told(group)
        self.assertEqual({name: state for name, state in told.items() if state != "ERRORED"},
                         {good["id"]: "COMPLETED"})
        self.assertEqual(len(told), len(hostile) + 1)
        new = {path for path in self.everything() - before if path.is_file()}
        self.assertEqual(new, {self.downloads / "Zantrio/names/good.txt"})

    def everything(self):
        """All that lies in the test's folder, but for what the client and the service keep for themselves."""
        own = (self.home / "Library", self.folder / "service", self.home / ".cache", self.home / ".config",
               self.home / ".local")
        return {path for path in self.folder.rglob("*")
                if not any(folder in (path, *path.parents) for folder in own)}

    def test_hostile_summary_stays_in_the_automatic_folder(self):
        message, files = self.send({"a.txt": b"a"})
        before = self.everything()
        self.fetch(message, files, "../../../.ssh\0/x")
        new = {path for path in self.everything() - before if path.is_file()}
        self.assertEqual(new, {self.downloads / "Zantrio/_ssh_/x/a.txt"})

    def test_interrupted_and_refused_downloads_come_whole_in_the_end(self):
        message, files = self.send({"a.bin": os.urandom(3_000_000)})
        content = next((self.folder / "sample").iterdir()).read_bytes()
        for number, fault in enumerate((
                {"type": "reset", "afterBytes": 1_000_000, "count": 2},
                {"type": "status", "status": 503, "count": 1},
                {"type": "truncate", "afterBytes": 2_000_000, "count": 1},
                {"type": "corrupt", "afterBytes": 2_000_000, "count": 1})):
            with self.subTest(fault["type"]):
                self.service.request("POST", "/faults", {"method": "GET", "path": "/storage/*", **fault})
                self.fetch(message, files, f"fault {number}")
                self.assertEqual({name: path.read_bytes() for name, path in
                                  self.fetched(f"fault {number}").items()}, {"a.bin": content})

    def test_what_stays_wrong_fails_and_leaves_no_file(self):
        message, files = self.send({"a.bin": os.urandom(300_000)})
        self.transfers.ask(DOWNLOADS, "setConfiguration", {"maxTransferRetries": 1})
        (good,) = files
        faults = {"status": {"type": "status", "status": 404},
                  "truncate": {"type": "truncate", "afterBytes": 100_000},
                  "corrupt": {"type": "corrupt", "afterBytes": 100_000}}
        for name, fault in faults.items():
            with self.subTest(name):
                self.service.request("POST", "/faults", {"method": "GET", "path": "/storage/*", **fault})
                self.fetch(message, files, name, "ERRORED")
                self.assertEqual(self.visible(name), {})
                self.service.request("DELETE", "/faults")
        for name, wrong in {"length": {"size": good["size"] + 1}, "digest": {"md5Digest": "0" * 32},
                            "expired": {"downloadDetails": {**good["downloadDetails"], "expires": 1}},
                            "no url": {"downloadDetails": None}}.items():
            with self.subTest(name):
                self.fetch(message, [{**good, **wrong}], name, "ERRORED")
                self.assertEqual(self.visible(name), {})
        self.assertEqual(self.shown_folders(), [])

    def visible(self, summary):
        return {name: path for name, path in self.fetched(summary).items()
                if not path.name.startswith(".")}

    def fetch_from(self, summary, state, content, *ways):
        """Fetches a content from an odd server; gives the Range headers that the server got."""
        server = OddServer(content, *ways)
        self.addCleanup(server.stop)
        details = {"id": "f", "path": "f.bin", "size": len(content), "modified": 0,
                   "md5Digest": hashlib.md5(content).hexdigest(),
                   "downloadDetails": {"url": server.url, "expires": 0}}
        self.fetch(self.message, [details], summary, state)
        if state == "COMPLETED":
            self.assertEqual({name: path.read_bytes() for name, path in self.fetched(summary).items()},
                             {"f.bin": content})
        else:
            self.assertEqual(self.visible(summary), {})
        return server.ranges

    def test_servers_without_ranges_and_with_other_versions_are_never_mixed(self):
        self.message, _ = self.send({"a.txt": b"a"})
        self.transfers.ask(DOWNLOADS, "setConfiguration", {"maxTransferRetries": 2})
        content = os.urandom(400_000)
        ranges = self.fetch_from("no ranges", "COMPLETED", content, whole(cut_after=250_000), whole())
        self.assertEqual(len(ranges), 2)
        self.assertRegex(ranges[1], r"^bytes=[1-9]\d*-")
        ranges = self.fetch_from("changed once", "COMPLETED", content,
                                 whole('"old"', cut_after=250_000), whole('"new"'))
        self.assertEqual(len(ranges), 2)
        ranges = self.fetch_from("changes for ever", "ERRORED", content,
                                 with_changing_etag(cut_after=250_000))
        self.assertEqual(len(ranges), 3)
        self.fetch_from("changes, but whole", "COMPLETED", content, with_changing_etag())


if __name__ == "__main__":
    unittest.main()
