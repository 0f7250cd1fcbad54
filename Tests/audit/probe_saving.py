#!/usr/bin/env python3
"""Kills the program while it saves, and looks at what is left.

    python3 probe_saving.py TOLMEX [--kills N] [--areas N] [--seed S]

A plan of many areas is illustrated and saved over an older result, with a picture in each format, and the program is killed
(SIGKILL) at a random moment. Every output must be the old file or the new one, byte for byte; what else lies in the folder may
only be a hidden temporary file, and the next run must succeed and leave the same result as ever. Moments are drawn from the
part of the run in which files are written, found by watching the folder in a run that is left alone.

Prints what was found; status 1 when a file was neither old nor new.
"""

from __future__ import annotations

import argparse
import collections
import os
import pathlib
import random
import subprocess
import sys
import tempfile
import time

OUTPUTS = ("result.dxf", "result.png", "result.svg", "result.pdf")
OLD = b"the old file"


def plan(areas: int) -> str:
    """A drawing of squares in rows, as plain as a reader takes it."""
    tags = ["0", "SECTION", "2", "HEADER", "9", "$ACADVER", "1", "AC1015", "9", "$HANDSEED", "5", "FFFFF", "0", "ENDSEC",
            "0", "SECTION", "2", "ENTITIES"]
    for number in range(areas):
        x, y = number % 100 * 12, number // 100 * 12
        tags += ["0", "LWPOLYLINE", "5", f"{0x1000 + number:X}", "100", "AcDbEntity", "8", "0", "100", "AcDbPolyline",
                 "90", "4", "70", "1"]
        for dx, dy in ((0, 0), (10, 0), (10, 10), (0, 10)):
            tags += ["10", f"{x + dx}.0", "20", f"{y + dy}.0"]
    tags += ["0", "ENDSEC", "0", "EOF"]
    return "\n".join(tags) + "\n"


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("--kills", type=int, default=500)
    parser.add_argument("--areas", type=int, default=1000)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    rng = random.Random(options.seed)
    program = str(options.program.resolve())
    found: collections.Counter[str] = collections.Counter()
    with tempfile.TemporaryDirectory() as temporary:
        folder = pathlib.Path(temporary)
        (folder / "plan.dxf").write_text(plan(options.areas))
        results = folder / "results"
        command = [program, "run", "plan.dxf", "--quiet", "--command", "TLM_MUOK_ASFALTTI", "--command", "ALL", "--command", "",
                   "--out", "results/result.dxf"]
        for name in OUTPUTS[1:]:
            command += ["--picture", f"results/{name}"]

        def start() -> subprocess.Popen[bytes]:
            return subprocess.Popen(command, cwd=folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

        def make_old() -> None:
            results.mkdir(exist_ok=True)
            for left in results.iterdir():
                left.unlink()
            for name in OUTPUTS:
                (results / name).write_bytes(OLD)

        # A run left alone: what the new files are, and from when to when the folder changes.
        make_old()
        begin = time.monotonic()
        process, before = start(), os.stat(results).st_mtime_ns
        first = last = 0.0
        while process.poll() is None:
            now = os.stat(results).st_mtime_ns
            if now != before:
                before, last = now, time.monotonic() - begin
                first = first or last
            time.sleep(0.0005)
        if process.returncode != 0:
            print(f"the run that was left alone ended with status {process.returncode}")
            return 1
        new = {name: (results / name).read_bytes() for name in OUTPUTS}
        for _ in range(options.kills):
            make_old()
            process = start()
            # A file is seen when it gets its name, long after its writing has begun.
            time.sleep(rng.uniform(first * 0.4, last * 1.05))
            process.kill()
            process.wait()
            found["killed" if process.returncode < 0 else "had ended"] += 1
            for name in OUTPUTS:
                content = (results / name).read_bytes() if (results / name).exists() else b""
                state = "old" if content == OLD else "new" if content == new[name] else "NEITHER"
                found[f"{name} {state}"] += 1
            strangers = [left.name for left in results.iterdir() if left.name not in OUTPUTS]
            found["temporary files left"] += len(strangers)
            found["STRANGE FILES"] += sum(not name.startswith(".") for name in strangers)
        # What killed runs left behind does not disturb the next.
        if start().wait() != 0 or any((results / name).read_bytes() != new[name] for name in OUTPUTS):
            found["NEXT RUN FAILED"] += 1
    for what, count in sorted(found.items()):
        print(f"{what}: {count}")
    return 1 if any(count > 0 and any(word.isupper() for word in what.split()) for what, count in found.items()) else 0


if __name__ == "__main__":
    sys.exit(main())
