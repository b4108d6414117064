"""Copies of the client's bundle that use a local service."""

import pathlib
import plistlib
import shutil


def copy_to(source, target, base_url):
    """Copies the bundle, writes the service's address into its information dictionary, returns the copy."""
    source, target = pathlib.Path(source), pathlib.Path(target)
    shutil.copytree(source, target, symlinks=True)
    information = target / "Info.plist"
    with information.open("rb") as file:
        dictionary = plistlib.load(file)
    dictionary["AppBaseUrl"] = base_url
    with information.open("wb") as file:
        plistlib.dump(dictionary, file)
    return target
