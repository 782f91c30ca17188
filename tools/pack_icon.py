#!/usr/bin/env python3
"""Packs square PNG pictures into a Windows icon file: pack_icon.py OUT.ico PNG..."""

import struct
import sys


def side(png):
    """Side of a square PNG in pixels, out of its header."""
    width, height = struct.unpack(">II", png[16:24])
    if png[:8] != b"\x89PNG\r\n\x1a\n" or width != height or width > 256:
        sys.exit("an icon takes square PNG pictures up to 256 pixels")
    return width


def icon(pictures):
    """The file: header, one directory entry a picture, then the pictures themselves."""
    offset = 6 + 16 * len(pictures)
    entries = b""
    for png in pictures:
        byte = side(png) % 256  # 0 stands for 256
        entries += struct.pack("<BBBBHHII", byte, byte, 0, 0, 1, 32, len(png), offset)
        offset += len(png)
    return struct.pack("<HHH", 0, 1, len(pictures)) + entries + b"".join(pictures)


if __name__ == "__main__":
    out, *names = sys.argv[1:]
    contents = []
    for name in names:
        with open(name, "rb") as file:
            contents.append(file.read())
    with open(out, "wb") as file:
        file.write(icon(contents))
