"""script/run: the client against a local service, on a real or a virtual display."""

import argparse
import contextlib
import os
import pathlib
import signal
import sys
import tempfile
import time

from . import bundle, checksums, display, process, sample
from .client import Client
from .page import PageError
from .send_page import SendPage
from .service import Service


def parse(arguments):
    parser = argparse.ArgumentParser(
        prog="script/run",
        description="Starts the client against a local service. Without a display it sends the files "
                    "on a virtual one, reports, and saves screenshots.")
    parser.add_argument("files", nargs="*", metavar="FILE",
                        help="files and folders to open (without a display: to send)")
    parser.add_argument("--data", type=pathlib.Path,
                        help="folder for received files (default: a temporary folder)")
    parser.add_argument("--screenshots", type=pathlib.Path,
                        help="folder for pictures of the window (default: build/screenshots)")
    parser.add_argument("--virtual", action="store_true",
                        help="use a virtual display even if a real one exists")
    parser.add_argument("--root", type=pathlib.Path, required=True, help=argparse.SUPPRESS)
    options = parser.parse_args(arguments)
    for file in options.files:
        if not os.path.exists(file):
            raise process.Failure(f"{file or 'The file with an empty name'} does not exist")
    options.files = [pathlib.Path(os.path.abspath(file)) for file in options.files]
    return options


class Run:
    """The processes of one call of script/run; they end in reverse order."""

    def __init__(self, options, cleanup):
        self._options = options
        self._cleanup = cleanup
        self._work = pathlib.Path(cleanup.enter_context(
            tempfile.TemporaryDirectory(prefix="zantrio-run-", ignore_cleanup_errors=True)))
        build = options.root / "build/default"
        data = options.data.absolute() if options.data else self._work / "service"
        data.mkdir(parents=True, exist_ok=True)
        self.service = Service(build / "bin/zantrio-devservice", options.root / "webapp", data)
        cleanup.callback(self.service.stop)
        self.bundle = bundle.copy_to(build / "Zantrio", self._work / "Zantrio", self.service.url)
        print(f"The service listens on {self.service.url}; received files are kept in {data}", flush=True)

    def interactive(self):
        """Runs the client on the user's display until its window is closed."""
        client = Client(self.bundle, self._options.files)
        self._cleanup.callback(client.stop)
        code = client.process.wait()
        for name, path in sorted(self.service.arrived().items()):
            print(f"arrived: {name} ({path.stat().st_size:,} bytes)")
        if code != 0:
            raise process.Failure(f"the client ended with exit code {code}; "
                                  f"its log is {client.data_folder / 'zt_app.log'}")

    def on_virtual_display(self):
        """Sends the files through the window of a virtual display and reports; returns whether all went well."""
        pictures = (self._options.screenshots or self._options.root / "build/screenshots").absolute()
        pictures.mkdir(parents=True, exist_ok=True)
        files = self._options.files or [sample.make(self._work / "Sample files")]
        sent = checksums.files_to_send(files)
        if not sent:
            raise process.Failure("there is nothing to send: only hidden files, empty folders, or devices")
        home = self._work / "home"
        home.mkdir()

        screen = display.VirtualDisplay(1400, 900)
        self._cleanup.callback(screen.stop)
        environment = screen.environment()
        log = self._cleanup.enter_context((self._work / "client.log").open("wb"))
        client = Client(self.bundle, files, home, environment, debuggable=True, stderr=log)
        self._cleanup.callback(client.stop)

        page = SendPage(client.page())
        page.wait_for_files(len(sent))
        page.describe("Sent by script/run", "friend@example.org")
        page.wait_until_drawn()
        display.screenshot(environment, pictures / "1-ready.png")
        started = time.monotonic()
        page.send()
        page.wait_until_moving()
        page.wait_until_drawn()
        display.screenshot(environment, pictures / "2-sending.png", limit_seconds=0)
        state = page.wait_until_over(limit_seconds=3600)
        seconds = time.monotonic() - started
        page.wait_until_drawn()
        display.screenshot(environment, pictures / "3-done.png")
        page.leave()
        code = client.wait(60)
        return self._report(sent, state, seconds, code, pictures)

    def _report(self, sent, state, seconds, exit_code, pictures):
        size = sum(path.stat().st_size for path in sent.values())
        different = checksums.differences(sent, self.service.arrived())
        print(f"Sent {len(sent):,} files, {size:,} bytes in {seconds:.1f} s "
              f"({size / seconds / 1e6:.0f} MB/s); the transfer is {state}")
        print(f"Arrived below {self.service.data / 'messages'}; checksums "
              + ("equal" if not different else "differ:"))
        for line in different:
            print(f"  {line}")
        print(f"Screenshots: {pictures}")
        print(f"The client ended with exit code {exit_code}")
        return not different and state == "COMPLETED" and exit_code == 0


def main(arguments):
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    with contextlib.ExitStack() as cleanup:
        try:
            options = parse(arguments)
            run = Run(options, cleanup)
            if options.virtual or display.needed():
                return 0 if run.on_virtual_display() else 1
            run.interactive()
            return 0
        except (process.Failure, PageError, OSError) as failure:
            print(f"run: {failure}", file=sys.stderr)
            return 1
        except KeyboardInterrupt:
            return 130


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
