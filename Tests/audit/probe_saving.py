#!/usr/bin/env python3
"""Kills the program while it saves, lets its memory end, and looks at what is left.

    python3 probe_saving.py TOLMEX [--only kills|memory] [--kills N] [--places N] [--areas N] [--seed S]

A plan of many areas is illustrated and saved over an older result, with a picture in each format.

kills   SIGKILL at random moments of the part of the run in which files are written, found by watching the folder in a run that
        is left alone. Every output must be the old file or the new one, byte for byte; what else lies in the folder may only be a
        hidden temporary file, and the next run must succeed and leave the same result as ever.
memory  Allocations fail at N places all over the run: one, some in a row, all from there on. The program must end by itself, with
        the old file or the new one and a sentence where it did not succeed. In a session at a terminal that is served from a pipe
        the user then takes the command back, which gives the opened drawing to the byte, or saves what there is, which must be a
        sound drawing with everything that was in it.

The faults are made by a library that is built here (Tests/Faults/Shim.cpp) and preloaded; the program must be one without
sanitizers. Prints what was found; status 1 when something was not as it must be.
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
COMMAND = ["TLM_MUOK_ASFALTTI", "ALL", ""]
SHIM = pathlib.Path(__file__).resolve().parent.parent / "Faults" / "Shim.cpp"
CRASHES = 128  # statuses from here on: a signal ended the program


def plan(areas: int) -> str:
    """A drawing of squares in rows, as plain as a reader takes it."""
    text = "0 SECTION 2 HEADER 9 $ACADVER 1 AC1015 9 $HANDSEED 5 FFFFF 0 ENDSEC 0 SECTION 2 ENTITIES "
    for number in range(areas):
        x, y = number % 100 * 12, number // 100 * 12
        text += f"0 LWPOLYLINE 5 {0x1000 + number:X} 100 AcDbEntity 8 0 100 AcDbPolyline 90 4 70 1 "
        text += f"10 {x}.0 20 {y}.0 10 {x + 10}.0 20 {y}.0 10 {x + 10}.0 20 {y + 10}.0 10 {x}.0 20 {y + 10}.0 "
    return (text + "0 ENDSEC 0 EOF ").replace(" ", "\n")


class Probe:
    def __init__(self, program: str, folder: pathlib.Path, options: argparse.Namespace) -> None:
        self.program, self.folder, self.options = program, folder, options
        self.results = folder / "results"
        self.rng = random.Random(options.seed)
        self.found: collections.Counter[str] = collections.Counter()
        # What is tried is a drawing in which nothing needs to be mended.
        (folder / "raw.dxf").write_text(plan(options.areas))
        subprocess.run([program, "info", "raw.dxf", "--repair", "plan.dxf"], cwd=folder, check=True, capture_output=True)
        self.opened = (folder / "plan.dxf").read_bytes()
        self.run_command = [program, "run", "plan.dxf", "--quiet"]
        for line in COMMAND:
            self.run_command += ["--command", line]
        self.run_command += ["--out", "results/result.dxf"]
        for name in OUTPUTS[1:]:
            self.run_command += ["--picture", f"results/{name}"]
        self.shim = ""
        self.new: dict[str, bytes] = {}

    def count(self, what: str, number: int = 1) -> None:
        self.found[what] += number

    def wrong(self, what: str, detail: str) -> None:
        """Something that must not be; shown at once, for a long trial is worth reading while it goes on."""
        print(f"WRONG {what}: {detail}", flush=True)
        self.count(f"WRONG {what}")

    def build_shim(self) -> None:
        self.shim = str(self.folder / "shim.so")
        subprocess.run([os.environ.get("CXX", "c++"), "-std=c++20", "-shared", "-fPIC", "-O1", "-DTOLMEX_SHIM_MEMORY", str(SHIM), "-o",
                        self.shim, "-ldl"], check=True)

    def start(self, command: list[str] | None = None, wish: str = "", **more: object) -> subprocess.Popen[bytes]:
        environment = dict(os.environ)
        if wish:
            environment |= {"LD_PRELOAD": self.shim, "TOLMEX_SHIM": wish, "TOLMEX_SHIM_TOLD": str(self.folder / "told")}
            if wish.startswith("memory:"):
                environment["TOLMEX_SHIM_BEGIN"] = ".dxf"
        (self.folder / "told").unlink(missing_ok=True)
        return subprocess.Popen(command or self.run_command, cwd=self.folder, env=environment, stdin=subprocess.PIPE,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, **more)

    def run(self, wish: str = "", command: list[str] | None = None, lines: list[str] | None = None,
            **more: object) -> tuple[int, str, int]:
        """Status (128 and more for a signal), what was said of problems, and how often the wish's call was met."""
        process = self.start(command, wish, **more)
        _, said = process.communicate("".join(line + "\n" for line in lines or []).encode())
        told = self.folder / "told"
        met = int(told.read_text() or 0) if told.exists() else 0
        status = process.returncode if process.returncode >= 0 else CRASHES - process.returncode
        return status, said.decode(errors="replace"), met

    def make_old(self) -> None:
        self.results.mkdir(exist_ok=True)
        for left in self.results.iterdir():
            left.unlink()
        for name in OUTPUTS:
            (self.results / name).write_bytes(OLD)

    def states(self) -> dict[str, str]:
        states = {}
        for name in OUTPUTS:
            content = (self.results / name).read_bytes() if (self.results / name).exists() else b""
            states[name] = "old" if content == OLD else "new" if content == self.new[name] else "neither"
        return states

    def strangers(self) -> list[str]:
        return [left.name for left in self.results.iterdir() if left.name not in OUTPUTS]

    def run_alone(self) -> tuple[float, float]:
        """What the new files are, and from when to when the folder changes."""
        self.make_old()
        begin = time.monotonic()
        process, before = self.start(), os.stat(self.results).st_mtime_ns
        first = last = 0.0
        while process.poll() is None:
            now = os.stat(self.results).st_mtime_ns
            if now != before:
                before, last = now, time.monotonic() - begin
                first = first or last
            time.sleep(0.0005)
        if process.returncode != 0:
            sys.exit(f"the run that was left alone ended with status {process.returncode}")
        self.new = {name: (self.results / name).read_bytes() for name in OUTPUTS}
        return first, last

    # ---- kills ----

    def kills(self, first: float, last: float) -> None:
        for _ in range(self.options.kills):
            self.make_old()
            process = self.start()
            # A file is seen when it gets its name, long after its writing has begun.
            time.sleep(self.rng.uniform(first * 0.4, last * 1.05))
            process.kill()
            process.communicate()
            self.count("kills: killed" if process.returncode < 0 else "kills: had ended")
            for name, state in self.states().items():
                self.count(f"kills: {name} {state}")
                if state == "neither":
                    self.wrong("kill", f"{name} is neither old nor new")
            self.count("kills: temporary files left", len(self.strangers()))
            for name in self.strangers():
                if not name.startswith("."):
                    self.wrong("kill", f"left {name}")
        # What killed runs left behind does not disturb the next.
        if self.run()[0] != 0 or "old" in self.states().values():
            self.wrong("kill", "the next run failed")

    # ---- memory ----

    def memory(self) -> None:
        self.run_places()
        self.session_places()

    def places(self, total: int) -> list[int]:
        """Every one of the first and the last, and in between as many as are left."""
        ends = self.options.places // 8
        inner = [self.rng.randint(1, max(total, 1)) for _ in range(self.options.places - 2 * ends)]
        return sorted({n for n in [*range(1, ends + 1), *range(total - ends + 1, total + 1), *inner] if n > 0})

    def run_places(self) -> None:
        command = self.run_command[:self.run_command.index("--picture")]  # pictures are another library's work
        status, said, total = self.run("memory:1:0", command)
        self.count("memory: allocations of the run", total)
        if status != 0:
            self.wrong("memory", f"without a fault: status {status}, {said!r}")
        for n in self.places(total):
            for howmany in (1, 20, 0):
                self.make_old()
                status, said, _ = self.run(f"memory:{howmany}:{n}", command)
                state = self.states()["result.dxf"]
                self.count(f"memory: run, status {status}, {state}")
                # A plug-in command that tells of its failure leaves a result of its own.
                is_sound = state in ("old", "new") or (status == 0 and self.is_sound(self.results / "result.dxf"))
                if status >= CRASHES or status not in (0, 2, 3, 4) or not is_sound or (status != 0 and state != "old") or self.strangers():
                    self.wrong("memory", f"run {howmany}:{n}: status {status}, {state}, {self.strangers()}, {said!r}")
                elif status != 0 and not said and howmany != 0:
                    self.wrong("memory", f"run {howmany}:{n}: status {status} without a word")

    def is_sound(self, file: pathlib.Path, at_least: int = 0) -> bool:
        """Whether the drawing is read without a problem and holds everything that was opened."""
        info = subprocess.run([self.program, "info", file], capture_output=True, check=False)
        return (info.returncode == 0 and info.stdout.rstrip().endswith(b"problems 0") and
                file.read_bytes().count(b"\nLWPOLYLINE\n") >= (at_least or self.options.areas))

    def session_places(self) -> None:
        saved = self.folder / "saved.dxf"
        for ending in (["U"], []):
            lines = [*COMMAND, *ending, f"SAVEAS {saved}"]
            shell = [self.program, "shell", "plan.dxf", "--quiet"]
            saved.unlink(missing_ok=True)
            _, _, total = self.run("memory:1:0", shell, lines)
            what = "undone" if ending else "saved"
            self.count(f"memory: allocations of the session that is {what}", total)
            for n in self.places(total):
                for howmany in (1, 20):
                    saved.unlink(missing_ok=True)
                    status, said, _ = self.run(f"memory:{howmany}:{n}", shell, lines)
                    if status >= CRASHES:
                        self.wrong("memory", f"session {howmany}:{n}: status {status}, {said!r}")
                    elif not saved.exists():
                        # The drawing was not opened, or the fault met the saving itself; then it was told.
                        self.count(f"memory: session that is {what}, not saved")
                        if not said:
                            self.wrong("memory", f"session {howmany}:{n}: not saved, without a word")
                    elif not self.is_sound(saved):
                        self.wrong("memory", f"session {howmany}:{n}: what was saved is not sound, {said!r}")
                    elif ending and not said and saved.read_bytes() != self.opened:
                        self.wrong("memory", f"session {howmany}:{n}: undone, but not what was opened")
                    else:
                        self.count(f"memory: session that is {what}, sound")


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("program", type=pathlib.Path)
    parser.add_argument("--only", choices=("kills", "memory"), action="append")
    parser.add_argument("--kills", type=int, default=500)
    parser.add_argument("--places", type=int, default=400, help="places where allocations fail")
    parser.add_argument("--areas", type=int, default=1000)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    parts = options.only or ["kills", "memory"]
    with tempfile.TemporaryDirectory() as temporary:
        probe = Probe(str(options.program.resolve()), pathlib.Path(temporary), options)
        first, last = probe.run_alone()
        if "kills" in parts:
            probe.kills(first, last)
        if "memory" in parts:
            probe.build_shim()
            probe.memory()
    for what, count in sorted(probe.found.items()):
        print(f"{what}: {count}")
    return 1 if any(what.startswith("WRONG") for what in probe.found) else 0


if __name__ == "__main__":
    sys.exit(main())
