#!/usr/bin/env python3
"""Packs square PNG pictures into one icon of Windows': make-icon.py OUT.ico PICTURE.png..."""
import pathlib
import struct
import sys

pictures = [pathlib.Path(name).read_bytes() for name in sys.argv[2:]]
head = struct.pack("<HHH", 0, 1, len(pictures))
at = len(head) + 16 * len(pictures)
for picture in pictures:
    width, height = struct.unpack(">II", picture[16:24])
    head += struct.pack("<BBBBHHII", width % 256, height % 256, 0, 0, 1, 32, len(picture), at)  # 0 stands for 256
    at += len(picture)
pathlib.Path(sys.argv[1]).write_bytes(head + b"".join(pictures))
