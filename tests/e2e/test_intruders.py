"""What a stranger has sent, in the places where a user would use it: nothing of it runs."""

import os
import re
import shutil
import subprocess
import unittest

from harness import display
from harness.page import free_port
from harness.send_page import SendPage
from harness.wait import wait_until
from sandbox import BUILD, Sandbox

RUNPATH = re.compile(r"\((?:RUNPATH|RPATH)\).*\[(.*)\]")
NEEDED = re.compile(r"\(NEEDED\).*\[(.*)\]")


def dynamic_section(path):
    return subprocess.run(["readelf", "--dynamic", "--wide", path], check=True, capture_output=True,
                          text=True, env={**os.environ, "LC_ALL": "C"}).stdout


class ReceivedFiles(Sandbox):
    def setUp(self):
        super().setUp()
        self.received = self.folder / "received"
        self.received.mkdir()
        self.mark = self.folder / "loaded"
        self._variables["HOSTILE_MARK"] = str(self.mark)

    def test_no_library_is_looked_for_in_the_working_folder(self):
        programs = [path for path in sorted((BUILD / "Zantrio").rglob("*"))
                    if path.is_file() and path.read_bytes()[:4] == b"\x7fELF"]
        self.assertGreaterEqual({path.name for path in programs}, {"zantrio", "zantrio-process"})
        for path in programs:
            for found in RUNPATH.findall(dynamic_section(path)):
                for place in found.split(":"):
                    self.assertRegex(place, r"^(/|\$ORIGIN(/|$))", path)
        for name in NEEDED.findall(dynamic_section(BUILD / "Zantrio/bin/zantrio")):
            shutil.copy(BUILD / "bin/hostile_library.so", self.received / name)
        done = subprocess.run([BUILD / "Zantrio/bin/zantrio", "--version"], cwd=self.received, check=False,
                              env={**os.environ, **self._variables}, capture_output=True)
        self.assertFalse(self.mark.exists())
        self.assertEqual(done.returncode, 0, done.stderr)

    def test_names_are_no_options(self):
        service = self.start_service()
        bundle = self.make_bundle(service.url)
        for name in ("--type=renderer", "-platform", "-platform0", "-platformpluginpath", "report.pdf"):
            (self.received / name).write_text("a file")
        (self.received / "-q").mkdir()
        shutil.copy(BUILD / "bin/hostile_library.so", self.received / "-q/libplatform.so")
        names = sorted(os.listdir(self.received))
        refused = self.start_client(bundle, *names, folder=self.received)
        self.assertEqual(refused.wait(60), 2, "a type is no option either")
        for start in ("first", "second"):
            client = self.start_client(bundle, "--", *names, folder=self.received)
            if start == "first":
                page = self.send_page(client)
                page.wait_for_files(len(names))
                running = client
            else:
                self.assertEqual(client.wait(60), 0)
        self.assertFalse(self.mark.exists())
        self.assert_leaves_cleanly(running, page)

    def test_a_page_is_not_opened_where_it_is_dropped_while_the_service_is_away(self):
        port = free_port()
        invoice = self.received / "invoice.html"
        invoice.write_text("<script>nativeAppBridge_IPC({request: '{\"method\":\"onAppReady\"}'})</script>")
        client = self.start_client(self.make_bundle(f"http://127.0.0.1:{port}"))
        waiting = client.page("loading.html#unreachable")
        self.addCleanup(waiting.close)
        waiting.wait_for("document.querySelector('#unreachable')?.hidden === false")
        waiting.evaluate("window.overs = 0; addEventListener('dragover', () => ++overs, true); 0")
        screen, said = self.move_over_window(invoice)
        wait_until(lambda: display.xdotool(screen, "mousemove_relative", 1, 0) == ""
                   and waiting.evaluate("overs") > 2, 30, "the drag over the page")
        display.xdotool(screen, "mouseup", 1)
        wait_until(lambda: not said.empty() and said.get().startswith("dropped"), 30, "the drop")
        self.start_service(port)
        page = SendPage(client.page("/app"))
        page.wait_until_ready()
        self.assert_leaves_cleanly(client, page)
        self.assertNotIn("Window created is a pop up window, skipping initialization", client.messages())
        self.assertEqual(client.messages().count("onStartup called! App loaded"), 1)


if __name__ == "__main__":
    unittest.main()
