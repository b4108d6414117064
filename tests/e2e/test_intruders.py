"""What a stranger has sent, in the places where a user would use it: nothing of it runs."""

import json
import os
import re
import shutil
import subprocess
import unittest

from harness import display
from harness.page import free_port
from harness.send_page import SendPage
from harness.wait import wait_until
from foreign_pages import ASKING, FORGING, FRAMING, LEAVING, SPYING, Site
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


REFUSED = "The page is not allowed to use this bridge"

# The application of these tests: keeps what other pages tell it.
COLLECTING = """<!doctype html><script>
window.told = {};
addEventListener('message', event => { told[event.data[0]] = event.data[1]; });
nativeAppBridge_IPC({request: '{"method":"onAppReady"}'});
function show(name, address, sandbox) {
  const frame = document.createElement('iframe');
  frame.name = name;
  if (sandbox) frame.sandbox = sandbox;
  if (address.startsWith('<')) frame.srcdoc = address; else frame.src = address;
  document.documentElement.append(frame);
}
function runIn(popUp) {
  const script = popUp.document.createElement('script');
  script.text = asking.match(/<script>(.*)<\\/script>/s)[1];
  popUp.document.head.append(script);
}
</script>"""


class ForeignPages(Sandbox):
    def start_site(self, pages):
        site = Site(pages)
        self.addCleanup(site.stop)
        return site

    def page_with_bridges(self, client, url_part):
        page = client.page(url_part)
        self.addCleanup(page.close)
        page.wait_for(f"location.href.includes({json.dumps(url_part)}) && window.uploadManagerBridge_IPC && 1")
        return page

    def test_only_the_applications_own_pages_use_the_bridges(self):
        own = self.start_site({"/app": COLLECTING, "/asking": ASKING})
        foreign = self.start_site({"/asking": ASKING, "/framing": FRAMING, "/leaving": LEAVING,
                                   "/spying": SPYING, "/forging": FORGING})
        client = self.start_client(self.make_bundle(own.url))
        page = self.page_with_bridges(client, "/app")
        page.wait_for("window.told && 1")
        names = {"asking": ASKING, "own": own.url, "foreign": foreign.url}
        page.evaluate(f"Object.assign(window, {json.dumps(names)}); 0")

        def tell(name, script):
            page.evaluate(f"(name => {{ {script}; }})('{name}')")
            return page.wait_for(f"told['{name}']")

        admitted = {
            "ownFrame": "show(name, own + '/asking')",
            "ownPopUp": "open(own + '/asking', name)",
        }
        refused = {
            "foreignFrame": "show(name, foreign + '/asking')",
            "ownFrameInForeign": "show(name, foreign + '/framing#' + own + '/asking')",
            "sandboxed": "show(name, own + '/asking', 'allow-scripts')",
            "srcdoc": "show(name, asking)",
            "data": "show(name, 'data:text/html,' + encodeURIComponent(asking))",
            "blob": "show(name, URL.createObjectURL(new Blob([asking], {type: 'text/html'})))",
            "foreignPopUp": "open(foreign + '/asking', name)",
            "emptyPopUp": "runIn(open('', name))",
        }
        for name, script in admitted.items():
            self.assertEqual(tell(name, script), "answered", name)
        for name, script in refused.items():
            self.assertEqual(tell(name, script), REFUSED, name)

        token = tell("token", "open(foreign + '/spying')")
        self.assertEqual(tell("forged", "show(name, foreign + '/forging#' +"
                                        f" encodeURIComponent('{token} ' + own))"), REFUSED)
        page.evaluate("location.href = foreign + '/asking'; 0")
        there = self.page_with_bridges(client, foreign.url + "/asking")
        self.assertEqual(there.query("nativeAppBridge_IPC", "supportedMethods"), ["failure", -1, REFUSED])
        there.evaluate(f"location.href = '{foreign.url}/leaving#{own.url}/app'; 0")
        back = self.page_with_bridges(client, "/app")
        # The page that is left has the same words in its address.
        back.wait_for(f"location.origin === '{own.url}' && window.nativeAppBridge_IPC && 1")
        self.assertEqual(back.query("nativeAppBridge_IPC", "copyToClipboard", {"value": "asked by own"}),
                         ["success", "null\n"])
        received = re.findall(r"asked by (\w+)", client.log())
        self.assertEqual(sorted(received), sorted([*admitted, "own"]))
        for url in (foreign.url + "/asking", "about:srcdoc", "about:blank", "blob:" + own.url):
            self.assertIn(f"Refused a query of a page that is not the application's: {url}", client.log())

    def test_pages_from_files_use_no_bridge_and_read_nothing(self):
        other = self.start_site({"/secret": "a secret"})
        client = self.start_client(self.make_bundle(f"http://127.0.0.1:{free_port()}"))
        own = self.page_with_bridges(client, "loading.html#unreachable")
        self.assertEqual(own.query("uploadManagerBridge_IPC", "supportedMethods"), ["failure", -1, REFUSED])
        # A page that no policy of its own holds back.
        received = self.folder / "received.html"
        received.write_text("<!doctype html>")
        own.evaluate(f"location.href = {json.dumps(received.as_uri())}; 0")
        own.wait_for("location.protocol === 'chrome-error:'")
        own.command("Page.navigate", url=received.as_uri())
        page = self.page_with_bridges(client, "received.html")
        self.assertEqual(page.query("uploadManagerBridge_IPC", "supportedMethods"), ["failure", -1, REFUSED])
        for url in ("file:///etc/passwd", other.url + "/secret"):
            self.assertEqual(page.evaluate(
                f"new Promise(done => {{ const r = new XMLHttpRequest(); r.open('GET', {json.dumps(url)});"
                f" r.onload = () => done(r.responseText); r.onerror = () => done('refused'); r.send(); }})"),
                "refused", url)
        self.assertEqual(page.evaluate(
            f"new Promise(done => {{ addEventListener('message', event => done(event.data[1]));"
            f" open('', 'popUp').document.write({json.dumps(ASKING)}); }})"), REFUSED)


if __name__ == "__main__":
    unittest.main()
