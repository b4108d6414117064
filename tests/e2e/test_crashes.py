"""Crashes of the real client: the report, and the end of all processes."""

import contextlib
import ctypes
import os
import re
import signal
import unittest

from harness import process
from harness.send_page import SendPage
from harness.wait import wait_until
from sandbox import Sandbox

# A sanitizer decides how a program ends by the signals that it handles itself.
SANITIZED = os.environ.get("ZANTRIO_SANITIZED") == "1"


class Crashes(Sandbox):
    def start_ready(self):
        _, client, page = self.start_all()
        page.wait_until_ready()
        # The page applies its settings before it announces that it is ready.
        wait_until(lambda: self.thread(client, "zt-net-up"), 30, "the start of the transfers")
        return client, page

    def reports(self, client):
        return sorted((client.data_folder / "Crash Reports").glob("*.txt"))

    def watcher(self, client):
        """The process id of the client's watcher."""
        found = [pid for pid in process.descendants(client.process.pid)
                 if process.name(pid) == "zantrio-watcher"]
        self.assertEqual(len(found), 1)
        return found[0]

    def thread(self, client, name):
        """Returns the number of the client's thread of that name, or None."""
        tasks = os.listdir(f"/proc/{client.process.pid}/task")
        return next((int(task) for task in tasks
                     if process.name(f"{client.process.pid}/task/{task}") == name), None)

    def test_leaves_a_report_of_the_crashed_main_thread_and_logs_it_at_the_next_start(self):
        client, page = self.start_ready()
        page.query("nativeAppBridge_IPC", "supportedMethods")
        family = process.descendants(client.process.pid)
        client.process.send_signal(signal.SIGSEGV)
        code = client.wait(60)
        if not SANITIZED:
            self.assertEqual(code, -signal.SIGSEGV)
        self.assert_ended(family)

        [path] = self.reports(client)
        report = path.read_text(errors="strict")
        self.assertIn(f"\nProcess: {client.process.pid}\n", report)
        self.assertIn("\nSignal:  SIGSEGV (Segmentation fault), sent by process ", report)
        self.assertRegex(report, r"\nVersion: \d+\.\d+\.\d+\nSystem:  Linux ")
        crashed = re.search(r", which crashed:\n(.*?)\n\n", report, re.DOTALL)[1]
        self.assertRegex(crashed, r"#\d+ .* zantrio::BrowserProcess::run\(\) (?s:.*) main ")
        self.assertRegex(report, r"\nThread \d+ \(zt-net-up\):\n  #0 ")
        tail = report[report.index("- zt_app.log -"):report.index("- zt_transfers.log -")]
        self.assertIn("Received query: ", tail)
        self.assertIn(client.log().splitlines()[-1], tail)
        self.assertIn("- cef_browser.log -", report)
        self.assertEqual(path.stat().st_mode & 0o777, 0o600)
        self.assertEqual(path.parent.stat().st_mode & 0o777, 0o700)

        for _ in range(2):
            client = self.start_client(self.folder / "Zantrio")
            page = SendPage(client.page())
            page.wait_until_ready()
            self.assert_leaves_cleanly(client, page)
            self.assertEqual(client.messages().count(f"Found crash report {path}"), 1)
        self.assertEqual(self.reports(client), [path])

    def test_names_the_thread_that_crashed(self):
        client, _ = self.start_ready()
        thread = self.thread(client, "zt-net-up")
        # kill() with a thread's number reaches its process; tgkill reaches the thread.
        self.send_to_thread(client.process.pid, thread, signal.SIGABRT)
        self.assertEqual(client.wait(60), -signal.SIGABRT)
        [path] = self.reports(client)
        report = path.read_text()
        self.assertIn(f"\nThread:  {thread} (zt-net-up)\n", report)
        crashed = re.search(r", which crashed:\n(.*?)\n\n", report, re.DOTALL)[1]
        self.assertIn("libzt-transfers.so", crashed)

    @staticmethod
    def send_to_thread(pid, thread, number):
        libc = ctypes.CDLL(None, use_errno=True)
        if libc.tgkill(pid, thread, number) != 0:
            raise OSError(ctypes.get_errno(), "tgkill")

    def test_reports_its_own_crashes_and_not_those_of_its_sub_processes(self):
        client, _ = self.start_ready()
        watcher = self.watcher(client)
        subs = [pid for pid in process.descendants(client.process.pid) if pid != watcher]
        for pid in subs:
            with contextlib.suppress(ProcessLookupError):  # it may end with the one killed before
                os.kill(pid, signal.SIGSEGV)
        self.assert_ended(subs)
        self.assertEqual(self.reports(client), [])
        client.process.send_signal(signal.SIGABRT)
        self.assertEqual(client.wait(60), -signal.SIGABRT)
        [path] = self.reports(client)
        self.assertIn(f"\nProcess: {client.process.pid}\n", path.read_text())
        self.assert_ended([watcher])


if __name__ == "__main__":
    unittest.main()
