"""script/run: its output, its end, and its clean-up."""

import os
import signal
import subprocess
import sys
import unittest

from harness import process
from harness.wait import wait_until
from sandbox import ROOT, Sandbox


class Run(Sandbox):
    def start_run(self, *arguments):
        variables = {name: value for name, value in os.environ.items()
                     if name not in ("DISPLAY", "WAYLAND_DISPLAY")}
        run = process.start(
            [sys.executable, "-m", "harness.run", "--root", ROOT, "--screenshots",
             self.folder / "pictures", *arguments],
            env=variables, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.addCleanup(run.stdout.close)
        self.addCleanup(process.stop, run)
        return run

    def test_sends_the_given_files_and_reports(self):
        folder = self.make_files(self.folder / "given", 30, 10_000)
        data = self.folder / "kept"
        run = self.start_run("--data", data, folder)
        output, _ = run.communicate(timeout=300)
        self.assertEqual(run.returncode, 0, output)
        self.assertIn("Sent 30 files", output)
        self.assertIn("checksums equal", output)
        self.assertEqual(len(list((self.folder / "pictures").glob("*.png"))), 3)
        self.assertEqual(len(list(data.glob("messages/*/files/**/*.bin"))), 30)

    def test_compares_several_folders_with_links_and_odd_names(self):
        first, second = self.folder / "first", self.folder / "second"
        (first / "below").mkdir(parents=True)
        second.mkdir()
        (first / "below" / "it's 100%41 \U0001f600.txt").write_bytes(b"1")
        (second / "two\nlines.txt").write_bytes(b"2")
        (second / os.fsdecode(b"not \xff utf-8.txt")).write_bytes(b"3")
        (second / "to the first").symlink_to(first)
        (first / "back").symlink_to(second)
        lone = self.folder / "lone.txt"
        lone.write_bytes(b"")
        run = self.start_run(first, second, lone, first)
        output, _ = run.communicate(timeout=300)
        self.assertEqual(run.returncode, 0, output)
        self.assertIn("Sent 7 files", output)
        self.assertIn("checksums equal", output)

    def test_ends_everything_on_ctrl_c(self):
        run = self.start_run()
        self.assertIn("The service listens on", run.stdout.readline())
        family = wait_until(lambda: [pid for pid in process.descendants(run.pid)
                                     if process.name(pid) == "zantrio"], 60, "the client")
        everything = process.descendants(run.pid)
        self.assertGreaterEqual(len(everything), len(family) + 2)
        run.send_signal(signal.SIGINT)
        run.wait(60)
        self.assertEqual(run.returncode, 130)
        wait_until(lambda: not any(process.name(pid) for pid in everything), 30,
                   "the end of everything that was started")


if __name__ == "__main__":
    unittest.main()
