"""Checks that the folders of each source root include each other in one direction only."""

import os
from typing import List, NamedTuple, Tuple

from lint.include_graph import Graph, Include, cycles, folder_graph, includes_of


class Root(NamedTuple):
    path: str
    # Folders on top of all others: no other folder includes their files.
    tops: Tuple[str, ...] = ()


ROOTS = (Root('src', tops=('app',)), Root('libs/cef_qt/src'), Root('libs/zt_transfers/src'))
MAX_LINES_PER_EDGE = 3


def check(repository: str, roots=ROOTS) -> List[str]:
    """The findings, one text each; empty if there are none."""
    findings = []
    for root in roots:
        graph = folder_graph(os.path.join(repository, root.path))
        findings += [_cycle_text(root, graph, cycle) for cycle in cycles(graph)]
        for top in root.tops:
            findings += [_top_text(root, top, include) for include in includes_of(graph, top)]
    return findings


def _cycle_text(root: Root, graph: Graph, cycle: List[str]) -> str:
    lines = [f'{root.path}: include cycle: ' + ' -> '.join(cycle + cycle[:1])]
    for folder, target in zip(cycle, cycle[1:] + cycle[:1]):
        includes = graph[folder][target]
        lines += [f'  {_line_text(root, include)}' for include in includes[:MAX_LINES_PER_EDGE]]
        if len(includes) > MAX_LINES_PER_EDGE:
            more = len(includes) - MAX_LINES_PER_EDGE
            lines.append(f'  ... and {more} more from {folder} to {target}')
    return '\n'.join(lines)


def _top_text(root: Root, top: str, include: Include) -> str:
    return f'{root.path}: nothing may include {top}/: {_line_text(root, include)}'


def _line_text(root: Root, include: Include) -> str:
    return f'{root.path}/{include.file}:{include.line}: #include "{include.target}"'
