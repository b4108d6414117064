"""Faults of the installation, the folders and the service, as a user sees them."""

import shutil
import unittest

from harness.page import free_port
from harness.send_page import SendPage
from sandbox import Sandbox


class Failures(Sandbox):
    def test_opens_the_web_application_without_a_loading_page(self):
        service = self.start_service()
        bundle = self.make_bundle(service.url)
        shutil.rmtree(bundle / "Resources")
        client = self.start_client(bundle)
        page = SendPage(client.page())
        page.wait_until_ready()
        self.assert_leaves_cleanly(client, page)

    def test_says_that_there_is_no_display(self):
        bundle = self.make_bundle("http://127.0.0.1:1")
        for display, expected in (("", "There is no display"), (":98765", "cannot be opened")):
            environment = {"DISPLAY": display, "WAYLAND_DISPLAY": "", "QT_QPA_PLATFORM": ""}
            client = self.start_client(bundle, environment=environment)
            self.assertEqual(client.wait(60), 1)
            self.assertIn(expected, self.client_output.read_text(errors="replace"))

    def test_says_that_the_service_is_unreachable_and_continues_when_it_is_back(self):
        port = free_port()
        client = self.start_client(self.make_bundle(f"http://127.0.0.1:{port}"))
        waiting = client.page("loading.html#unreachable")
        self.addCleanup(waiting.close)
        waiting.wait_for("document.querySelector('#unreachable')?.hidden === false")
        waiting.click("#try-now")
        waiting.wait_for("document.querySelector('#state').textContent.startsWith('Still no answer')")
        self.start_service(port)
        page = SendPage(client.page("/app"))
        page.wait_until_ready()
        self.assert_leaves_cleanly(client, page)


if __name__ == "__main__":
    unittest.main()
