"""Comparing files by their content."""

import hashlib
import pathlib


def sha256(path):
    digest = hashlib.sha256()
    with open(path, "rb") as file:
        while block := file.read(1 << 20):
            digest.update(block)
    return digest.hexdigest()


def files_below(path):
    """A map from the name that a given file or folder has for the service to the file itself.

    A folder's hidden files and folders are not sent, so they are not listed either.
    """
    path = pathlib.Path(path)
    if path.is_file():
        return {path.name: path}
    return {
        str(entry.relative_to(path)): entry
        for entry in sorted(path.rglob("*"))
        if entry.is_file()
        and not any(part.startswith(".") for part in entry.relative_to(path).parts)
    }


def differences(sent, arrived):
    """One line for each file that is missing, superfluous or different."""
    lines = [f"missing: {name}" for name in sorted(sent.keys() - arrived.keys())]
    lines += [f"not sent: {name}" for name in sorted(arrived.keys() - sent.keys())]
    for name in sorted(sent.keys() & arrived.keys()):
        if sha256(sent[name]) != sha256(arrived[name]):
            lines.append(f"different: {name}")
    return lines
