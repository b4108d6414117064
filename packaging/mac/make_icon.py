#!/usr/bin/env python3
"""Draws the icon of packaging/zantrio.svg into an icon file of macOS.

usage: make_icon.py OUTPUT.icns [SIZE...]   sizes in pixels; default: all that the system uses
"""
import math
import struct
import sys
import zlib

# The image types of an icon file by size in pixels; some sizes have two.
KINDS = {
    16: (b"icp4",),
    32: (b"icp5", b"ic11"),
    64: (b"ic12",),
    128: (b"ic07",),
    256: (b"ic08", b"ic13"),
    512: (b"ic09", b"ic14"),
    1024: (b"ic10",),
}

# The drawing's units, of which the icon has 64, without the margin that the system's icons have.
UNITS = 64.0
MARGIN = 6.25
PLATE = (0x0B, 0x6E, 0x7D)
STROKE = (0xFF, 0xFF, 0xFF)
DOT = (0x8F, 0xE3, 0xD3)
POINTS = ((17.0, 20.5), (44.5, 20.5), (19.5, 43.5), (47.0, 43.5))


def distance_to_plate(x, y, radius=15.0):
    half = UNITS / 2 - radius
    dx = abs(x - UNITS / 2) - half
    dy = abs(y - UNITS / 2) - half
    outside = math.hypot(max(dx, 0.0), max(dy, 0.0))
    return outside + min(max(dx, dy), 0.0) - radius


def distance_to_line(x, y, start, end):
    (ax, ay), (bx, by) = start, end
    along = ((x - ax) * (bx - ax) + (y - ay) * (by - ay)) / ((bx - ax) ** 2 + (by - ay) ** 2)
    along = min(max(along, 0.0), 1.0)
    return math.hypot(x - ax - along * (bx - ax), y - ay - along * (by - ay))


def distance_to_stroke(x, y, width=6.5):
    return min(distance_to_line(x, y, *ends) for ends in zip(POINTS, POINTS[1:])) - width / 2


def distance_to_dot(x, y, radius=5.6):
    return math.hypot(x - POINTS[3][0], y - POINTS[3][1]) - radius


def pixel(x, y, unit):
    """The colour at a place; a pixel that an edge crosses is covered in part."""

    def covered(distance):
        return min(max(0.5 - distance / unit, 0.0), 1.0)

    alpha = covered(distance_to_plate(x, y))
    if alpha == 0.0:
        return bytes(4)
    colour = PLATE
    for over, part in ((STROKE, covered(distance_to_stroke(x, y))),
                       (DOT, covered(distance_to_dot(x, y)))):
        colour = tuple(below + (above - below) * part for below, above in zip(colour, over))
    return bytes(round(value) for value in (*colour, alpha * 255))


def draw(size):
    """The rows of an image, each pixel as red, green, blue and alpha."""
    unit = (UNITS + 2 * MARGIN) / size
    centres = [(index + 0.5) * unit - MARGIN for index in range(size)]
    return [b"".join(pixel(x, y, unit) for x in centres) for y in centres]


def png(rows):
    def chunk(kind, content):
        checked = kind + content
        return struct.pack(">I", len(content)) + checked + struct.pack(">I", zlib.crc32(checked))

    size = len(rows)
    header = struct.pack(">IIBBBBB", size, size, 8, 6, 0, 0, 0)
    lines = b"".join(b"\0" + row for row in rows)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) +
            chunk(b"IDAT", zlib.compress(lines, 9)) + chunk(b"IEND", b""))


def icon_file(sizes):
    entries = b""
    for size in sizes:
        image = png(draw(size))
        for kind in KINDS[size]:
            entries += kind + struct.pack(">I", len(image) + 8) + image
    return b"icns" + struct.pack(">I", len(entries) + 8) + entries


def main(arguments):
    if not arguments:
        sys.exit(__doc__)
    sizes = [int(size) for size in arguments[1:]] or sorted(KINDS)
    unknown = [str(size) for size in sizes if size not in KINDS]
    if unknown:
        sys.exit("make_icon.py: there are no icons of the size " + ", ".join(unknown))
    with open(arguments[0], "wb") as output:
        output.write(icon_file(sizes))


if __name__ == "__main__":
    main(sys.argv[1:])
