"""The page's desktop services: notifications, notices, questions, and opening of URLs."""

import json
import subprocess
import unittest

from harness.wait import wait_until
from sandbox import Sandbox

# Notices and questions have an empty title, which the window system does not accept.
NOTICE = " "


class Services(Sandbox):
    def start_page(self):
        _, self.client, page = self.start_all()
        page.wait_until_ready()
        return page

    def answer_question(self, page, key):
        page.evaluate("delete window.answered; setTimeout(() => { answered = confirm('Stop it?'); }); 0")
        self.press_key(NOTICE, key)
        self.wait_for_no_window(NOTICE)
        return page.wait_for("'answered' in window && [answered]")[0]

    def test_shows_a_notification_of_the_page_as_text(self):
        self.start_daemon_that_reads_markup()
        page = self.start_page()
        properties = {"title": "Fertig: Grüße 日本", "message": "2 <b>files</b> & more",
                      "url": "https://example.test/t/1"}
        self.assertEqual(
            page.query("eventNotificationBridge_IPC", "handleEvent", {"properties": properties}),
            ["success", "null\n"])
        shown = wait_until(lambda: self.notifications(), 30, "the notification")
        self.assertEqual(len(shown), 1)
        self.assertEqual(shown[0]["appname"]["data"], "Zantrio")
        self.assertEqual(shown[0]["summary"]["data"], properties["title"])
        self.assertEqual(shown[0]["body"]["data"], "2 &lt;b&gt;files&lt;/b&gt; &amp; more")
        self.assert_leaves_cleanly(self.client, page)

    def test_notifies_once_about_the_end_of_a_transfer_also_after_a_reload(self):
        self.start_daemon_that_reads_markup()
        folder = self.make_files(self.folder / "three", 3, 1000)
        _, self.client, page = self.start_all(folder)
        page.wait_for_files(3)
        page.describe("Film & <more>", "ann@example.org")
        page.send()
        self.assertEqual(page.wait_until_over(60), "COMPLETED")
        wait_until(self.notifications, 30, "the notification")
        page.evaluate("window.loadedBefore = true; setTimeout(() => location.reload()); 0")
        page.wait_for("!window.loadedBefore && document.querySelector('#nav-transfers') !== null")
        # The files of the start are dropped again, at some time, and show the page of sending.
        page.wait_for("(document.querySelector('#nav-transfers').click(),"
                      " document.querySelector('[data-test=group-state]')?.dataset.phase === 'delivered')")
        told = [(shown["summary"]["data"], shown["body"]["data"]) for shown in self.notifications()]
        self.assertEqual(told, [("3 files sent", "“Film &amp; &lt;more&gt;” to ann@example.org")])
        self.assert_leaves_cleanly(self.client, page)

    def start_daemon_that_reads_markup(self):
        configuration = self.folder / "dunstrc"
        configuration.write_text("[global]\nmarkup = full\nformat = %b\n")
        self.start_session_bus().start_service(
            ["dunst", "-config", configuration], "org.freedesktop.Notifications", self.environment)

    def notifications(self):
        """Returns all notifications of the daemon, shown and closed."""
        for command in ("close-all", "history"):
            done = subprocess.run(["dunstctl", command], env=self.environment, check=True,
                                  capture_output=True, text=True)
        return json.loads(done.stdout)["data"][0]

    def test_shows_an_alert_while_the_page_continues(self):
        page = self.start_page()
        self.assertEqual(page.evaluate("alert('Grüße <b>& more</b>'); 'went on'"), "went on")
        self.wait_for_window(NOTICE)
        self.assertEqual(page.evaluate("2 * 21"), 42)
        self.press_key(NOTICE, "Return")
        self.wait_for_no_window(NOTICE)
        self.assert_leaves_cleanly(self.client, page)

    def test_asks_the_user_a_question_of_the_page(self):
        page = self.start_page()
        self.assertIs(self.answer_question(page, "Return"), True)
        self.assertIs(self.answer_question(page, "Escape"), False)
        self.assertIs(self.answer_question(page, "alt+n"), False)
        self.assertIs(self.answer_question(page, "alt+y"), True)
        self.assert_leaves_cleanly(self.client, page)

    def test_opens_web_addresses_only(self):
        opened = self.replace_opener()
        page = self.start_page()
        for url in ("file:///usr/bin/true", "--help", "javascript:alert(1)",
                    "https://example.test/a b", "https://example.test/?a=$(touch%20x)&b='c'"):
            self.assertEqual(page.query("nativeAppBridge_IPC", "openURL", {"url": url}),
                             ["success", "null\n"])
        wait_until(opened, 30, "the opener's start")
        self.assertEqual(opened(), ["https://example.test/?a=$(touch%20x)&b='c'"])
        self.assert_leaves_cleanly(self.client, page)


if __name__ == "__main__":
    unittest.main()
