"""Includes among the folders of one source root, and the cycles that they form."""

import os
import re
from collections import defaultdict, deque
from typing import Dict, List, NamedTuple

SUFFIXES = ('.h', '.cc', '.mm')
INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s+"([^"]+)"')


class Include(NamedTuple):
    """One line that includes a file of another folder; paths are relative to the root."""
    file: str
    line: int
    target: str


# From a folder to the folders that it includes; the root itself is '.'.
Graph = Dict[str, Dict[str, List[Include]]]


def folder_graph(root: str) -> Graph:
    files = set(_source_files(root))
    graph: Graph = defaultdict(lambda: defaultdict(list))
    for file in sorted(files):
        graph[_folder(file)]
        with open(os.path.join(root, file), encoding='utf-8') as text:
            for number, line in enumerate(text, 1):
                match = INCLUDE.match(line)
                target = match and _resolve(file, match.group(1), files)
                if target and _folder(target) != _folder(file):
                    graph[_folder(file)][_folder(target)].append(Include(file, number, target))
    return graph


def cycles(graph: Graph) -> List[List[str]]:
    """For every folder that is on a cycle and on none told before, a shortest cycle through it."""
    found: List[List[str]] = []
    told = set()
    for folder in sorted(graph):
        if folder in told:
            continue
        cycle = _shortest_cycle(graph, folder)
        if cycle:
            found.append(cycle)
            told.update(cycle)
    return found


def includes_of(graph: Graph, folder: str) -> List[Include]:
    """The lines of other folders that include a file of this one."""
    return [include for targets in graph.values() for include in targets.get(folder, [])]


def _source_files(root: str):
    for directory, _, names in os.walk(root):
        for name in names:
            if name.endswith(SUFFIXES):
                yield os.path.relpath(os.path.join(directory, name), root)


def _folder(file: str) -> str:
    return os.path.dirname(file) or '.'


def _resolve(file: str, name: str, files):
    """As the compiler does: beside the including file first, then from the root."""
    for candidate in (os.path.normpath(os.path.join(os.path.dirname(file), name)), name):
        if candidate in files:
            return candidate
    return None


def _shortest_cycle(graph: Graph, start: str):
    before = {}
    waiting = deque([start])
    while waiting:
        folder = waiting.popleft()
        for target in sorted(graph.get(folder, ())):
            if target == start:
                return _path(before, start, folder)
            if target not in before:
                before[target] = folder
                waiting.append(target)
    return None


def _path(before, start: str, end: str) -> List[str]:
    path = [end]
    while path[-1] != start:
        path.append(before[path[-1]])
    return path[::-1]
