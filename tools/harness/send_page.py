"""The web application as a user operates it: its buttons, fields and texts."""

import contextlib

from .page import PageGone

GROUP_STATE = "[data-test=group-state]"
STATE = f"document.querySelector('{GROUP_STATE}')?.dataset.state"
OVER = ("COMPLETED", "ERRORED")


class SendPage:
    """Steps in the page; each waits for its elements."""

    def __init__(self, page):
        self._page = page
        self.inner = page
        self.evaluate = page.evaluate
        self.wait_for = page.wait_for
        self.query = page.query
        self.ask = page.ask
        self.close = page.close

    def wait_until_ready(self):
        self._page.wait_for("document.querySelector('#choose-files')?.disabled === false")

    def open_file_dialog(self):
        self._page.click("#choose-files")

    def open_folder_dialog(self):
        self._page.click("#choose-folders")

    def wait_for_files(self, count, limit_seconds=60):
        """Waits until the page lists that many chosen files."""
        text = f"{count:,} file" + ("" if count == 1 else "s")
        self._page.wait_for(
            f"document.querySelector('[data-test=file-count]')?.textContent === '{text}'",
            limit_seconds)

    def describe(self, title, recipient):
        self._fill("#recipients", recipient)
        self._fill("#subject", title)

    def _fill(self, selector, text):
        self._page.click(selector)
        self._page.command("Input.insertText", text=text)

    def wait_until_drawn(self):
        """Waits until the latest changes are drawn."""
        self._page.evaluate(
            "new Promise(done => requestAnimationFrame(() => requestAnimationFrame(done)))")

    def send(self):
        self._page.click("#send-button")

    def wait_until_moving(self):
        self._page.wait_for(f"document.querySelector('{GROUP_STATE}') !== null")

    def wait_until_over(self, limit_seconds):
        """Waits for the transfer's end and returns its state."""
        return self._page.wait_for(
            f"(state => {list(OVER)}.includes(state) && state)({STATE})", limit_seconds)

    def wait_for_problem(self):
        """Returns the page's text about the failed transfer."""
        return self._page.wait_for(
            "(e => e && !e.hidden && e.textContent)"
            "(document.querySelector('[data-test=group-problem]'))")

    def wait_for_reason(self, words):
        """Waits until the page shows this reason, which it gets from the service after the failure."""
        self._page.wait_for("document.querySelector('[data-test=group-problem]')"
                            f"?.textContent.includes({words!r})")

    def leave(self):
        """Quits the application by the page's button, also while transfers run."""
        with contextlib.suppress(PageGone):
            self._page.click("#quit-button")
            self._page.evaluate("document.querySelector('[data-test=quit-dialog][open] "
                                "[data-test=quit-dialog-yes]')?.click()")
