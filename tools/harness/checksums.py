"""Compares files by their content."""

import hashlib
import pathlib


def sha256(path):
    digest = hashlib.sha256()
    with open(path, "rb") as file:
        while block := file.read(1 << 20):
            digest.update(block)
    return digest.hexdigest()


def files_below(path):
    """Maps the service's names of a file or a folder's files to the files."""
    return files_to_send([path])


def files_to_send(paths):
    """The same for several files and folders of one message.

    Hidden files below a folder are not sent, so they are not listed. Links are followed, except back into
    a folder that contains them. If there are several folders, they keep their names.
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


def _visible_files(folder, ancestors):
    identity = (folder.stat().st_dev, folder.stat().st_ino)
    if identity in ancestors:
        return
    for entry in sorted(folder.iterdir()):
        if entry.name.startswith("."):
            continue
        if entry.is_dir():
            yield from _visible_files(entry, (*ancestors, identity))
        elif entry.is_file():
            yield entry


def _as_text(name):
    """The name in JSON: an invalid UTF-8 byte becomes a replacement character."""
    return "".join("\ufffd" if "\udc80" <= character <= "\udcff" else character for character in name)


def _free_name(name, taken):
    """Adds a number before the extension if the name is taken, as the service does."""
    path = pathlib.PurePath(name)
    number = 2
    while name in taken:
        name = str(path.with_name(f"{path.stem} ({number}){path.suffix}"))
        number += 1
    return name


def differences(sent, arrived):
    """Returns one line for each missing, superfluous or different file."""
    lines = [f"missing: {name}" for name in sorted(sent.keys() - arrived.keys())]
    lines += [f"not sent: {name}" for name in sorted(arrived.keys() - sent.keys())]
    for name in sorted(sent.keys() & arrived.keys()):
        if sha256(sent[name]) != sha256(arrived[name]):
            lines.append(f"different: {name}")
    return lines
