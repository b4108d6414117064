"""The page of received messages as a user operates it."""

import json


class ReceivedPage:
    """Steps on that page; each waits for its elements."""

    def __init__(self, page):
        self._page = page

    def open(self, bucket_id):
        """Opens a message and waits until its files are listed."""
        self._page.click("#nav-received")
        self._page.click(f"[data-test=message][data-bucket-id={json.dumps(bucket_id)}]")
        self._page.wait_for("document.querySelector('[data-test=message-meta]') !== null")
        self._page.wait_for("document.querySelector('[data-test=received-file]') !== null")

    def chosen_sum(self):
        return self._page.text("[data-test=chosen-sum]")

    def press(self, key, shift=False):
        """Presses a key in the list of files."""
        self._page.evaluate("document.querySelector('#received-files').focus()")
        for kind in ("keyDown", "keyUp"):
            self._page.command("Input.dispatchKeyEvent", type=kind, key=key,
                               code="Space" if key == " " else key, modifiers=8 if shift else 0,
                               text=key if key == " " and kind == "keyDown" else "")

    def download(self):
        """Downloads the chosen files into the automatic folder."""
        self._page.click("#download-button")

    def download_to(self):
        """The same into a folder that the dialog asks for."""
        self._page.click("#download-to-button")

    def wait_for_state(self, state, limit_seconds=120):
        self._page.wait_for("document.querySelector('.message-download [data-test=group-state]')"
                            f"?.dataset.state === {json.dumps(state)}", limit_seconds)
