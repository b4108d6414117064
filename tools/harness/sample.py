"""A sample folder for users without files to send."""

import pathlib
import random

TEXT = "Zantrio moves files, however many and however large they are.\n"


def make(folder):
    """Fills the folder with files of several kinds and sizes and with names in several scripts."""
    folder = pathlib.Path(folder)
    content = random.Random(20).randbytes
    files = {
        "Read me first.txt": TEXT.encode() * 40,
        "Holiday/beach 100%.jpg": content(3_400_000),
        "Holiday/Überfahrt.mov": content(48_000_000),
        "Holiday/Ελλάδα.jpg": content(2_100_000),
        "Work/Report #4.pdf": content(900_000),
        "Work/empty.log": b"",
    }
    for number in range(1, 61):
        files[f"Work/figures/figure {number:03}.png"] = content(40_000 + 700 * number)
    for name, data in files.items():
        path = folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)
    return folder
