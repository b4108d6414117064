"""Which files of the repository changed since a commit, the newest changes first."""

import os
import subprocess
from typing import List, Optional


class BaseUnknown(Exception):
    """The commit to compare with does not exist in this clone."""


def base(repository: str, named: Optional[str]) -> Optional[str]:
    """The commit to compare with: the named one, $LINT_BASE, else the nearest known good one.

    A clone does not tell which commits CI passed. Two things in it do: the tags of releases, and
    .ci/passed, to which a commit is written by hand after CI passed it. Whichever is fewer commits
    back is taken; None if there is neither.
    """
    named = named or os.environ.get('LINT_BASE')
    if named:
        commit = _commit(repository, named)
        if not commit:
            raise BaseUnknown(f'there is no commit {named}')
        return commit
    known = [_last_release(repository), _noted_commit(repository)]
    passed = [commit for commit in known if commit]
    return min(passed, key=lambda commit: _distance(repository, commit), default=None)


def changed_files(repository: str, since: Optional[str]) -> List[str]:
    """What differs from `since` in the work tree, also if not committed; without it, every file."""
    uncommitted = _lines(repository, 'status', '--porcelain', '--no-renames', '-uall')
    newest_first = [line[3:] for line in uncommitted]
    span = [f'{since}..HEAD'] if since else ['HEAD']
    newest_first += _lines(repository, 'log', '--format=', '--name-only', '--no-renames', *span)
    files = list(dict.fromkeys(newest_first))
    return [file for file in files if os.path.exists(os.path.join(repository, file))]


def _last_release(repository: str) -> Optional[str]:
    tags = _lines(repository, 'describe', '--tags', '--abbrev=0', '--match', 'v*', 'HEAD')
    return _commit(repository, tags[0]) if tags else None


def _noted_commit(repository: str) -> Optional[str]:
    path = os.path.join(repository, '.ci', 'passed')
    if not os.path.exists(path):
        return None
    with open(path, encoding='utf-8') as text:
        commits = [line.strip() for line in text if line.strip() and not line.startswith('#')]
    return _commit(repository, commits[-1]) if commits else None


def _commit(repository: str, name: str) -> Optional[str]:
    """The commit's id, if it is one of HEAD's ancestors."""
    found = _lines(repository, 'rev-parse', '--verify', '--quiet', f'{name}^{{commit}}')
    if found and _git(repository, 'merge-base', '--is-ancestor', found[0], 'HEAD').returncode == 0:
        return found[0]
    return None


def _distance(repository: str, commit: str) -> int:
    return int(_lines(repository, 'rev-list', '--count', f'{commit}..HEAD')[0])


def _lines(repository: str, *arguments: str) -> List[str]:
    return _git(repository, *arguments).stdout.splitlines()


def _git(repository: str, *arguments: str):
    return subprocess.run(['git', '-C', repository, *arguments], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, encoding='utf-8', check=False)
