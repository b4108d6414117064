"""Real uploads: files chosen, dropped, or given on the command line, compared byte by byte."""

import os
import unittest

from sandbox import Sandbox

GIB = 1 << 30


class Uploads(Sandbox):
    def test_sends_one_file_of_one_gibibyte_chosen_in_the_dialog(self):
        big = self.folder / "one gibibyte.bin"
        with big.open("wb") as file:
            block = os.urandom(1 << 24)
            for number in range(GIB >> 24):
                file.write(number.to_bytes(8, "big") + block[8:])
        service, client, page = self.start_all()
        page.open_file_dialog()
        self.answer_dialog("Choose files", big)
        page.wait_for_files(1)
        self.send(page, limit_seconds=600)
        self.assert_arrived(service, big)
        self.assert_leaves_cleanly(client, page)

    def test_sends_five_thousand_small_files_of_a_folder_chosen_in_the_dialog(self):
        folder = self.make_files(self.folder / "five thousand", 5000, 2000)
        service, client, page = self.start_all()
        page.open_folder_dialog()
        self.answer_dialog("Choose folder", folder)
        page.wait_for_files(5000)
        self.send(page, limit_seconds=300)
        self.assert_arrived(service, folder)
        self.assert_leaves_cleanly(client, page)

    def test_sends_a_folder_dropped_on_the_window(self):
        folder = self.make_files(self.folder / "dropped 100% größe", 120, 30_000)
        (folder / "empty").write_bytes(b"")
        (folder / ".hidden").write_bytes(b"stays here")
        service, client, page = self.start_all()
        page.wait_until_ready()
        self.drag_to_window(folder)
        page.wait_for_files(121)
        self.send(page, limit_seconds=120)
        self.assert_arrived(service, folder)
        self.assertIn("OnDragEnter: Drag detected!", client.messages())
        self.assertIn("Drag data type: 1", client.messages())
        self.assert_leaves_cleanly(client, page)

    def test_reports_a_file_that_vanished_before_sending_and_sends_the_rest(self):
        folder = self.make_files(self.folder / "given", 5, 5_000)
        gone = next(folder.rglob("*00003*"))
        service, client, page = self.start_all(folder)
        page.wait_for_files(5)
        gone.unlink()
        page.describe("One is gone", "friend@example.org")
        page.send()
        self.assertEqual(page.wait_until_over(limit_seconds=120), "ERRORED")
        self.assertIn(gone.name, page.wait_for_problem())
        page.wait_for_reason("The file is not there any more")
        self.assert_arrived(service, folder)
        self.assert_leaves_cleanly(client, page)

    def send(self, page, limit_seconds):
        page.describe("From an end-to-end test", "friend@example.org")
        page.send()
        self.assertEqual(page.wait_until_over(limit_seconds), "COMPLETED")


if __name__ == "__main__":
    unittest.main()
