"""The page that the client shows, reached through the browser's own remote debugging."""

import contextlib
import json
import random
import socket
import urllib.error
import urllib.request

import websocket

from .wait import wait_until


def free_port():
    """A free port below those that the system gives to connections, which could take it before its user."""
    while True:
        port = random.randrange(10_000, 32_000)
        with socket.socket() as probe, contextlib.suppress(OSError):
            probe.bind(("127.0.0.1", port))
            return port


class PageError(Exception):
    """A script threw in the page."""


class PageGone(PageError):
    """The page has been closed, or its process has ended."""


class PageBusy(PageError):
    """The browser could not run the script, for example because the page was loading."""


class Page:
    """Evaluates scripts in the client's page; `port` is where the browser listens for debuggers."""

    def __init__(self, port, url_part, limit_seconds=60):
        self._next_id = 0
        address = wait_until(lambda: self._debugger_address(port, url_part), limit_seconds,
                             f"a page at {url_part}")
        self._socket = websocket.create_connection(address, timeout=120, suppress_origin=True)

    @staticmethod
    def _debugger_address(port, url_part):
        try:
            with urllib.request.urlopen(f"http://127.0.0.1:{port}/json/list", timeout=5) as response:
                targets = json.load(response)
        except (urllib.error.URLError, OSError, ValueError):
            return None
        for target in targets:
            if target.get("type") == "page" and url_part in target.get("url", ""):
                return target.get("webSocketDebuggerUrl")
        return None

    def command(self, method, **parameters):
        """Runs a command of the browser's debugging protocol and returns its result."""
        self._next_id += 1
        message = self._exchange({"id": self._next_id, "method": method, "params": parameters})
        if "error" in message:
            raise PageBusy(message["error"].get("message", "unknown error"))
        return message["result"]

    def _exchange(self, request):
        try:
            self._socket.send(json.dumps(request))
            while True:
                message = json.loads(self._socket.recv())
                if message.get("id") == request["id"]:
                    return message
        except (websocket.WebSocketConnectionClosedException, ConnectionError) as error:
            raise PageGone("the page is gone") from error

    def evaluate(self, expression):
        """Returns the expression's value, or that of its promise."""
        result = self.command("Runtime.evaluate", expression=expression, awaitPromise=True,
                              returnByValue=True, userGesture=True)
        if "exceptionDetails" in result:
            details = result["exceptionDetails"]
            raise PageError(details.get("exception", {}).get("description", details["text"]))
        return result["result"].get("value")

    def wait_for(self, expression, limit_seconds=60):
        """Waits until the expression is true in the page and returns its value."""
        return wait_until(lambda: self._evaluate_if_possible(expression), limit_seconds, expression)

    def _evaluate_if_possible(self, expression):
        try:
            return self.evaluate(expression)
        except PageBusy:
            return None

    def click(self, selector):
        """Clicks the element like a mouse, once it exists and is enabled."""
        quoted = json.dumps(selector)
        self.wait_for(f"(e => e && !e.disabled && e.getClientRects().length > 0)"
                      f"(document.querySelector({quoted}))")
        box = self.evaluate(
            f"(e => {{ e.scrollIntoView({{block: 'nearest'}}); const r = e.getBoundingClientRect();"
            f" return [r.left + r.width / 2, r.top + r.height / 2]; }})"
            f"(document.querySelector({quoted}))")
        for kind in ("mousePressed", "mouseReleased"):
            self.command("Input.dispatchMouseEvent", type=kind, x=box[0], y=box[1], button="left",
                         clickCount=1)

    def text(self, selector):
        quoted = json.dumps(selector)
        return self.evaluate(f"(e => e ? e.textContent.trim() : '')(document.querySelector({quoted}))")

    def query(self, bridge, method, parameters=None):
        """Queries a bridge as the page does; returns ["success", text] or ["failure", code, text]."""
        return self.ask(bridge, json.dumps({"method": method, "parameters": parameters}))

    def ask(self, bridge, request):
        """Sends any text to a bridge; returns as above."""
        return self.evaluate(
            f"new Promise(done => window[{json.dumps(bridge)}]({{request: {json.dumps(request)},"
            f" persistent: false, onSuccess: text => done(['success', text]),"
            f" onFailure: (code, text) => done(['failure', code, text])}}))")

    def close(self):
        self._socket.close()
