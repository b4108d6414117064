"""The sources of the repository as its build compiles them, from compile_commands.json."""

import hashlib
import json
import os
import re
import shlex
from typing import Dict, List, NamedTuple, Optional, Set

INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s+(?:"([^"]+)"|<([^>]+)>)', re.M)


class Unit(NamedTuple):
    """One source and its first command; a source that two targets compile counts once."""
    file: str  # Relative to the repository.
    arguments: List[str]
    directory: str

    def include_folders(self) -> List[str]:
        folders = []
        for place, argument in enumerate(self.arguments):
            if argument in ('-I', '-isystem'):
                folders.append(self.arguments[place + 1])
            elif argument.startswith('-I'):
                folders.append(argument[2:])
        return [os.path.join(self.directory, folder) for folder in folders]


class Compilation:
    def __init__(self, repository: str, build: str):
        self.repository = os.path.realpath(repository)
        self._texts: Dict[str, bytes] = {}
        self.units: Dict[str, Unit] = {}
        generated = os.path.realpath(build) + os.sep
        with open(os.path.join(build, 'compile_commands.json'), encoding='utf-8') as text:
            for entry in json.load(text):
                path = os.path.realpath(os.path.join(entry['directory'], entry['file']))
                inside = path.startswith(self.repository + os.sep)
                if inside and not path.startswith(generated) and os.path.exists(path):
                    file = os.path.relpath(path, self.repository)
                    unit = Unit(file, shlex.split(entry['command']), entry['directory'])
                    self.units.setdefault(file, unit)

    def files_of(self, unit: Unit) -> Set[str]:
        """The source and the headers of the repository and its build that it includes."""
        folders = unit.include_folders()
        found: Set[str] = set()
        waiting = [os.path.join(self.repository, unit.file)]
        while waiting:
            path = waiting.pop()
            if path not in found:
                found.add(path)
                waiting += self._included(path, folders)
        return {os.path.relpath(path, self.repository) for path in found}

    def content_key(self, unit: Unit, extra: str) -> str:
        """Changes with the text of what files_of() tells, with the command, and with `extra`."""
        key = hashlib.sha256(extra.encode())
        key.update('\0'.join(unit.arguments).encode())
        for file in sorted(self.files_of(unit)):
            key.update(file.encode() + b'\0' + self._text(os.path.join(self.repository, file)))
        return key.hexdigest()

    def _included(self, path: str, folders: List[str]) -> List[str]:
        found = []
        for match in INCLUDE.finditer(self._text(path).decode('utf-8', 'replace')):
            beside = [os.path.dirname(path)] if match.group(1) else []
            target = self._find(match.group(1) or match.group(2), beside + folders)
            if target:
                found.append(target)
        return found

    def _find(self, name: str, folders: List[str]) -> Optional[str]:
        for folder in folders:
            path = os.path.normpath(os.path.join(folder, name))
            if path.startswith(self.repository + os.sep) and os.path.isfile(path):
                return path
        return None

    def _text(self, path: str) -> bytes:
        if path not in self._texts:
            with open(path, 'rb') as file:
                self._texts[path] = file.read()
        return self._texts[path]
