"""Remembers which sources a check found clean, so that unchanged ones are not checked again."""

import os
from typing import Dict


class CleanUnits:
    """A file of lines "source<tab>key"; the last line of a source counts."""

    def __init__(self, path: str):
        self._path = path
        self._keys: Dict[str, str] = {}
        if os.path.exists(path):
            with open(path, encoding='utf-8') as text:
                self._keys = dict(line.rstrip('\n').split('\t') for line in text if '\t' in line)
        os.makedirs(os.path.dirname(path), exist_ok=True)

    def holds(self, file: str, key: str) -> bool:
        return self._keys.get(file) == key

    def add(self, file: str, key: str) -> None:
        """Written at once: an interrupted run keeps what it has done."""
        self._keys[file] = key
        with open(self._path, 'a', encoding='utf-8') as text:
            text.write(f'{file}\t{key}\n')
