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
    """A map from the name that a given file or folder has for the service to the file itself."""
    return files_to_send([path])


def files_to_send(paths):
    """The same for several files and folders that are sent as one message.

    Hidden files below a folder are not sent, so they are not listed either; links are followed, but not
    back into a folder that holds them. Several folders keep their own names.
    """
    paths = [pathlib.Path(path) for path in paths]
    several = sum(path.is_dir() for path in paths) > 1
    listed = {}
    for path in sorted(paths, key=lambda each: len(each.parts)):
        if path.is_dir():
            root = path.parent if several else path
            for file in _visible_files(path, ()):
                listed.setdefault(file, str(file.relative_to(root)))
        elif path.is_file():
            listed.setdefault(path, path.name)
    named = {}
    for file, name in listed.items():
        named[_free_name(_as_text(name), named)] = file
    return named


def _visible_files(folder, holders):
    identity = (folder.stat().st_dev, folder.stat().st_ino)
    if identity in holders:
        return
    for entry in sorted(folder.iterdir()):
        if entry.name.startswith("."):
            continue
        if entry.is_dir():
            yield from _visible_files(entry, (*holders, identity))
        elif entry.is_file():
            yield entry


def _as_text(name):
    """A name as JSON can carry it: a byte that is no UTF-8 becomes a replacement character."""
    return "".join("\ufffd" if "\udc80" <= character <= "\udcff" else character for character in name)


def _free_name(name, taken):
    """The service gives a name that is taken a number before its extension."""
    path = pathlib.PurePath(name)
    number = 2
    while name in taken:
        name = str(path.with_name(f"{path.stem} ({number}){path.suffix}"))
        number += 1
    return name


def differences(sent, arrived):
    """One line for each file that is missing, superfluous or different."""
    lines = [f"missing: {name}" for name in sorted(sent.keys() - arrived.keys())]
    lines += [f"not sent: {name}" for name in sorted(arrived.keys() - sent.keys())]
    for name in sorted(sent.keys() & arrived.keys()):
        if sha256(sent[name]) != sha256(arrived[name]):
            lines.append(f"different: {name}")
    return lines
