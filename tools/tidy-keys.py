#!/usr/bin/env python3
"""Prints "SOURCE KEY" for the sources named on standard input: what the checker says of a source can change only with its key.

    tidy-keys.py BUILD < sources

The key is a sum of the checker's rules, the source and every file of this checkout that the last build of it in BUILD read. A
source which was not built there has a key that no other run has.
"""

import functools
import hashlib
import os
import pathlib
import subprocess
import sys
import uuid

build = pathlib.Path(sys.argv[1])
root = pathlib.Path.cwd()


@functools.cache
def sum_of(path: pathlib.Path) -> bytes:
    return hashlib.sha256(path.read_bytes() if path.is_file() else b"").digest()


@functools.cache
def resolved(line: str) -> pathlib.Path:
    return pathlib.Path(os.path.realpath(build / line.strip()))


command = ["ninja", "-C", str(build), "-t", "deps"]
read: dict[pathlib.Path, list[pathlib.Path]] = {}  # by source; the first is the source itself
files: list[pathlib.Path] = []
for line in subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines() + [""]:
    if line.startswith("    "):
        files += [resolved(line)] if resolved(line).is_relative_to(root) else []
    elif files:
        read[files[0]] = files
        files = []

for line in sys.stdin.read().splitlines():
    source = root / line
    key = hashlib.sha256(sum_of(root / ".clang-tidy"))
    for path in read.get(source, []):
        key.update(str(path.relative_to(root)).encode() + sum_of(path))
    print(line, key.hexdigest()[:24] if source in read else uuid.uuid4().hex)
