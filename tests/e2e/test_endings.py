"""The ends of the client: by the page, by its window, by a signal, during a transfer."""

import signal
import unittest

from harness import display
from sandbox import Sandbox


class Endings(Sandbox):
    def test_ends_when_its_window_is_closed(self):
        _, client, page = self.start_all()
        page.wait_until_ready()
        display.close_window(self.environment, self.wait_for_window("Zantrio"))
        self.assertEqual(client.wait(60), 0)
        self.assertIn("OnBeforeClose: Shutting down!", client.messages())

    def test_ends_on_a_signal_as_when_its_window_is_closed(self):
        _, client, page = self.start_all()
        page.wait_until_ready()
        client.process.send_signal(signal.SIGTERM)
        self.assertEqual(client.wait(60), 0)
        self.assert_in_order(client.messages(), [
            "Closing all browsers!",
            "Close proces initiated!",
            "OnBeforeClose: Shutting down!",
            "Shutting down Upload Manager",
        ])

    def test_ends_at_once_during_a_transfer(self):
        folder = self.make_files(self.folder / "given", 20, 1_000_000)
        service, client, page = self.start_all(folder)
        service.request("POST", "/faults", {"type": "stall", "method": "PUT", "path": "/storage/*"})
        page.wait_for_files(20)
        page.describe("Never done", "friend@example.org")
        page.send()
        page.wait_until_moving()
        self.assert_leaves_cleanly(client, page)

    def test_second_start_hands_its_files_to_the_first_and_ends(self):
        folder = self.make_files(self.folder / "given", 3, 100)
        _, client, page = self.start_all()
        page.wait_until_ready()
        second = self.start_client(self.folder / "Zantrio", folder)
        self.assertEqual(second.wait(60), 0)
        page.wait_for_files(3)
        self.assert_leaves_cleanly(client, page)


if __name__ == "__main__":
    unittest.main()
