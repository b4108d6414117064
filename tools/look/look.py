#!/usr/bin/python3
"""Takes a picture of the web application in the product's own browser engine, with mocked bridges.

    zantrio-devservice --port 8080 --data /tmp/data --web webapp &
    tools/look/look.py http://127.0.0.1:8080/app out.png --dark --size 480x860 --options '{"files": 5000}' \
        "js:document.querySelector('#choose-files').click()" "wait:document.querySelector('.file-row')"

Steps: js:SCRIPT (prints its value), wait:EXPRESSION, sleep:MILLISECONDS, shot:FILE. Needs python3-pyqt6.qtwebengine.
"""

import argparse
import json
import os
import pathlib
import sys

MOCK = pathlib.Path(__file__).parent / "mock_bridges.cjs"
LIMIT_MS = 60000


def parse():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawTextHelpFormatter)
    parser.add_argument("url")
    parser.add_argument("picture")
    parser.add_argument("steps", nargs="*")
    parser.add_argument("--size", default="1400x900")
    parser.add_argument("--dark", action="store_true")
    parser.add_argument("--options", type=json.loads, default={}, help="mockOptions, as JSON")
    parser.add_argument("--no-mock", action="store_true", help="an ordinary browser, without bridges")
    return parser.parse_intermixed_args()


options = parse()
os.environ.setdefault("QT_QPA_PLATFORM", "offscreen")
os.environ["QT_QUICK_BACKEND"] = "software"
os.environ["QTWEBENGINE_CHROMIUM_FLAGS"] = "--no-sandbox --disable-gpu --no-zygote" + (
    " --blink-settings=preferredColorScheme=0" if options.dark else "")

from PyQt6.QtCore import QTimer, QUrl  # noqa: E402  the environment comes first
from PyQt6.QtWebEngineCore import QWebEnginePage, QWebEngineProfile, QWebEngineScript  # noqa: E402
from PyQt6.QtWebEngineWidgets import QWebEngineView  # noqa: E402
from PyQt6.QtWidgets import QApplication  # noqa: E402


class Page(QWebEnginePage):
    def javaScriptConsoleMessage(self, level, message, line, source):
        print(f"console: {source}:{line}: {message}")


class Steps:
    """Runs the steps in order, then takes the picture and quits."""

    def __init__(self, view, steps):
        self.view = view
        self.steps = list(steps)

    def next(self):
        if not self.steps:
            QTimer.singleShot(350, self.finish)  # until animations end
            return
        kind, _, argument = self.steps.pop(0).partition(":")
        getattr(self, f"do_{kind}")(argument)

    def finish(self):
        self.view.grab().save(options.picture)
        app.quit()

    def do_js(self, script):
        def done(value):
            if value not in (None, ""):
                print(value)
            QTimer.singleShot(60, self.next)
        self.view.page().runJavaScript(script, done)

    def do_wait(self, expression):
        self.view.page().runJavaScript(
            f"!!({expression})",
            lambda true: self.next() if true else QTimer.singleShot(50, lambda: self.do_wait(expression)))

    def do_sleep(self, milliseconds):
        QTimer.singleShot(int(milliseconds), self.next)

    def do_shot(self, picture):
        self.view.grab().save(picture)
        self.next()

    def give_up(self):
        print("the steps took too long", file=sys.stderr)
        self.finish()


app = QApplication(sys.argv[:1])
profile = QWebEngineProfile()
view = QWebEngineView()
view.setPage(Page(profile, view))
view.resize(*map(int, options.size.split("x")))
if not options.no_mock:
    mock = QWebEngineScript()
    mock.setInjectionPoint(QWebEngineScript.InjectionPoint.DocumentCreation)
    mock.setWorldId(QWebEngineScript.ScriptWorldId.MainWorld)
    mock.setSourceCode(f"window.mockOptions = {json.dumps(options.options)};\n" + MOCK.read_text())
    view.page().scripts().insert(mock)
steps = Steps(view, options.steps)
view.loadFinished.connect(lambda _: QTimer.singleShot(300, steps.next))
view.show()
view.load(QUrl(options.url))
QTimer.singleShot(LIMIT_MS, steps.give_up)
app.exec()
os._exit(0)  # the engine's own shutdown takes seconds
