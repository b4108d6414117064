"""A source tree in a temporary folder, for a check to look at."""

import os
import tempfile
import unittest


class PlantedTree(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.repository = os.path.realpath(folder.name)

    def plant(self, files):
        for path, text in files.items():
            path = os.path.join(self.repository, path)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, 'w', encoding='utf-8') as file:
                file.write(text)
