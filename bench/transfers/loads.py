"""The transferred files: three sizes of work, created once and compared after every transfer."""

import dataclasses
import hashlib
import os
import pathlib

MIB = 1 << 20


@dataclasses.dataclass(frozen=True)
class Load:
    name: str
    count: int
    size: int  # bytes of each file


def standard(scale):
    """The three loads; a `scale` below 1 makes them smaller, the last one in its number of files."""
    return [
        Load("1 GiB", 1, max(1, int(1024 * scale)) * MIB),
        Load("64 x 16 MiB", max(1, int(64 * scale)), 16 * MIB),
        Load("10,000 x 16 KiB", max(1, int(10_000 * scale)), 16 * 1024),
    ]


@dataclasses.dataclass(frozen=True)
class File:
    path: str
    size: int
    md5: str


def make(load, folder):
    """Creates the load's files below the folder, all different; returns their list."""
    files = []
    for number in range(load.count):
        path = f"series-{number // 1000:02}/file-{number:05}.bin"
        target = pathlib.Path(folder) / path
        target.parent.mkdir(parents=True, exist_ok=True)
        digest = hashlib.md5()
        with target.open("wb") as file:
            for begin in range(0, load.size, MIB):
                block = os.urandom(min(MIB, load.size - begin))
                digest.update(block)
                file.write(block)
        files.append(File(path, load.size, digest.hexdigest()))
    return files


def fault_in(files, folder):
    """Compares the folder byte by byte; returns the differences as a text, empty if there are none."""
    folder = pathlib.Path(folder)
    arrived = {str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_file()}
    expected = {file.path for file in files}
    if arrived != expected:
        return f"{len(expected - arrived)} files are missing, {len(arrived - expected)} are too many"
    for file in files:
        with (folder / file.path).open("rb") as content:
            if hashlib.file_digest(content, "md5").hexdigest() != file.md5:
                return f"{file.path} differs"
    return ""
