#!/usr/bin/env python3
"""Runs what the user guide (../kayttoohje.md) tells the reader to run, and makes its pictures.

    run-guide.py PROGRAM            makes the pictures anew in ../pictures/guide
    run-guide.py PROGRAM --check    changes nothing; fails unless the guide agrees with the program
    run-guide.py --links FOLDER     fails unless the documents of an installation find all that they link to

Everything runs in a folder of its own with copies of this folder and of examples/. The first line of a code block says
what becomes of it:

    ```tolmex kuva=asfaltti ikkuna=20,-9,44,18    a script for tontti.dxf, and a picture of that window of the result
    ```tolmex tiedosto=docs/guide/tontti.scr      must be the same as that file
    ```tolmex tulos=valmis                        the result is kept for later blocks, which begin with it
    ```tolmex pohja=valmis tulos=_                by naming it
    ```tolmex tuki=docs/guide/tuki                a support folder
    ```sh aja kuva=lahto                          shell lines; out/lahto.png is a picture of the guide

`leveys=320` sets a picture's width in pixels. Pictures that a script makes of dialogs are taken too. Texts in backquotes
in the table columns Kehote, Kenttä and Ilmoitus are texts of the program: they must occur in what it prints or in its
sources; "…" stands for anything. Blocks of the same kind in ../../README.md run on examples/kortteli.dxf.
"""

from __future__ import annotations

import argparse
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
from typing import Iterator, NamedTuple

ROOT = pathlib.Path(__file__).resolve().parents[2]
GUIDE = ROOT / "docs" / "kayttoohje.md"
README = ROOT / "README.md"
README_DRAWING = "examples/kortteli.dxf"
PICTURES = ROOT / "docs" / "pictures" / "guide"
DRAWING = "docs/guide/tontti.dxf"
WIDTH = 320  # pixels of a picture
COMMANDS = 30
TEXT_COLUMNS = ("Kehote", "Kenttä", "Ilmoitus")


class Failure(Exception):
    """One sentence about what is wrong."""


class Block(NamedTuple):
    line: int  # of its first line in the guide
    language: str
    options: dict[str, str]
    text: str


def blocks_of(document: pathlib.Path) -> Iterator[Block]:
    lines = document.read_text(encoding="utf-8").split("\n")
    at = 0
    while at < len(lines):
        opening = re.match(r"( *)```(\S+)\s*(.*)$", lines[at])
        at += 1
        if not opening:
            continue
        first, margin = at, len(opening[1])  # in a list, code stands to the right
        while at < len(lines) and lines[at].strip() != "```":
            at += 1
        if at == len(lines):
            raise Failure(f"{document.name}:{first}: this code block has no end")
        options = dict((word.split("=", 1) + [""])[:2] for word in opening[3].split())
        yield Block(first, opening[2], options, "".join(line[margin:] + "\n" for line in lines[first:at]))
        at += 1


def tables_of(guide: str) -> Iterator[tuple[int, str, str]]:
    """Line, column title and cell text of every table cell."""
    titles: list[str] = []
    for number, line in enumerate(guide.split("\n"), 1):
        if not line.startswith("|"):
            titles = []
            continue
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        if not titles:
            titles = cells
        for title, cell in zip(titles, cells):
            yield number, title, cell


def dead_links(document: pathlib.Path) -> list[str]:
    targets = re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", document.read_text(encoding="utf-8"))
    return [f"{document}: linked but missing: {name}" for name in targets if not (document.parent / name).exists()]


class Guide:
    def __init__(self, program: pathlib.Path):
        self.program = program.resolve()
        self.text = GUIDE.read_text(encoding="utf-8")
        self.printed = ""  # by all runs
        self.pictures: dict[str, bytes] = {}
        self.commands_run: set[str] = set()

    def run(self, arguments: list[str], folder: pathlib.Path, where: str) -> str:
        result = subprocess.run(arguments, cwd=folder, capture_output=True, text=True, timeout=280)
        self.printed += result.stdout + result.stderr
        if result.returncode != 0:
            raise Failure(f"{where}: status {result.returncode}\n{result.stdout}{result.stderr}")
        if result.stderr:
            raise Failure(f"{where}: {result.stderr}")
        return result.stdout

    def run_blocks(self, folder: pathlib.Path) -> None:
        shutil.copytree(ROOT / "docs" / "guide", folder / "docs" / "guide")
        shutil.copytree(ROOT / "examples", folder / "examples")
        (folder / "build" / "release").mkdir(parents=True)
        (folder / "build" / "release" / "bin").symlink_to(self.program.parent)
        (folder / "out").mkdir()
        for block in blocks_of(README):
            if block.language == "tolmex":
                self.run_script(block._replace(options={"pohja": README_DRAWING[:-4]}), folder, f"README.md:{block.line}")
        for block in blocks_of(GUIDE):
            where = f"kayttoohje.md:{block.line}"
            if block.language == "sh" and "aja" in block.options:
                self.run(["bash", "-euc", block.text], folder, where)
                name = block.options.get("kuva")
                if name:
                    self.pictures[name + ".png"] = (folder / "out" / f"{name}.png").read_bytes()
            elif block.language == "tolmex":
                self.run_script(block, folder, where)

    def run_script(self, block: Block, folder: pathlib.Path, where: str) -> None:
        options = block.options
        if "tiedosto" in options and (ROOT / options["tiedosto"]).read_text(encoding="utf-8") != block.text:
            raise Failure(f"{where}: not the same as {options['tiedosto']}")
        self.commands_run.update(line for line in block.text.split("\n") if line.startswith("TLM_"))
        (folder / "block.scr").write_text(block.text, encoding="utf-8")
        drawing = f"{options['pohja']}.dxf" if "pohja" in options else DRAWING
        result = f"{options.get('tulos', 'result')}.dxf"
        support = ["--support", options["tuki"]] if "tuki" in options else []
        program = str(self.program)
        self.run([program, "run", drawing, "--script", "block.scr", *support, "--out", result], folder, where)
        for picture in folder.glob("*.png"):  # of dialogs
            self.pictures[picture.name] = picture.read_bytes()
            picture.unlink()
        if "kuva" in options:
            name = options["kuva"] + ".png"
            window = ["--window", options["ikkuna"]] if "ikkuna" in options else []
            width = options.get("leveys", str(WIDTH))
            self.run([program, "picture", result, name, "--width", width, *window], folder, where)
            self.pictures[name] = (folder / name).read_bytes()
            (folder / name).unlink()

    def check(self, folder: pathlib.Path) -> None:
        program = str(self.program)
        self.run([sys.executable, str(ROOT / "docs" / "guide" / "make-tontti.py"), "made.dxf"], folder, "make-tontti.py")
        if (folder / "made.dxf").read_bytes() != (ROOT / DRAWING).read_bytes():
            raise Failure("tontti.dxf is not what make-tontti.py makes")
        listed = self.run([program, "run", DRAWING, "--command", "ARX", "--command", "Commands"], folder, "ARX")
        commands = set(re.findall(r"TLM_\w+", listed))
        if len(commands) < COMMANDS:
            raise Failure(f"the program lists {len(commands)} commands")
        named = set(re.findall(r"TLM_\w+", self.text))
        local_names = {"TLM_MUOK_NURMKKO"}
        for what, names in (
            ("not in the guide", commands - named - local_names),
            ("not commands of the program", named - commands - local_names),
            ("never run by the guide", commands - self.commands_run - local_names),
        ):
            if names:
                raise Failure(f"{what}: {', '.join(sorted(names))}")
        self.check_texts()
        linked = set(re.findall(r"pictures/guide/([\w.-]+)", self.text))
        present = {path.name for path in PICTURES.glob("*")}
        for what, names in (
            ("linked but made by no block", linked - self.pictures.keys()),
            ("made but not linked", self.pictures.keys() - linked),
            ("linked but missing; run tools/make-guide-pictures.sh", linked - present),
            ("in pictures/guide but not linked", present - linked),
        ):
            if names:
                raise Failure(f"pictures {what}: {', '.join(sorted(names))}")
        for missing in dead_links(GUIDE) + dead_links(README):
            raise Failure(missing)
        titles = re.findall(r"^#+ (.*)$", self.text, re.M)
        anchors = {re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-") for title in titles}
        for name in re.findall(r"\]\(#([^)]+)\)", self.text):
            if name not in anchors:
                raise Failure(f"no such heading: #{name}")

    def check_texts(self) -> None:
        sources = ""
        for folder in ("Host", "OrvLib", "Projects", "Programs"):
            for ending in ("*.cpp", "*.h", "*.rc"):
                sources += "".join(path.read_text(encoding="utf-8") for path in sorted((ROOT / folder).rglob(ending)))
        sources = re.sub(r'"\s+L?"', "", sources)  # literals that go on on the next line
        printed = " ".join(self.printed.split())
        for line, column, cell in tables_of(self.text):
            if column not in TEXT_COLUMNS:
                continue
            for text in re.findall(r"`([^`]+)`", cell):
                for part in filter(None, map(str.strip, text.split("…"))):
                    if part not in sources and " ".join(part.split()) not in printed:
                        raise Failure(f"kayttoohje.md:{line}: the program does not say `{part}`")


def main() -> int:
    parser = argparse.ArgumentParser(description="Runs the user guide and makes its pictures.")
    parser.add_argument("program", type=pathlib.Path, nargs="?")
    parser.add_argument("--check", action="store_true", help="change nothing; compare the guide with the program")
    parser.add_argument("--links", type=pathlib.Path, metavar="FOLDER", help="check installed documents")
    arguments = parser.parse_args()
    if arguments.links:
        installed = [arguments.links / "README.md", arguments.links / "docs" / GUIDE.name]
        missing = [str(path) for path in installed if not path.exists()]
        missing += [link for path in installed if path.exists() for link in dead_links(path)]
        print("\n".join(missing), file=sys.stderr)
        return 1 if missing else 0
    if not arguments.program:
        parser.error("PROGRAM is needed")
    guide = Guide(arguments.program)
    try:
        with tempfile.TemporaryDirectory(prefix="tolmex-guide-") as name:
            folder = pathlib.Path(name)
            guide.run_blocks(folder)
            if not arguments.check:
                PICTURES.mkdir(parents=True, exist_ok=True)
                for path in PICTURES.glob("*.png"):
                    path.unlink()
                for picture, content in sorted(guide.pictures.items()):
                    (PICTURES / picture).write_bytes(content)
            guide.check(folder)
    except (Failure, OSError, subprocess.TimeoutExpired) as failure:
        print(f"run-guide: {failure}", file=sys.stderr)
        return 1
    print(f"{len(guide.pictures)} pictures, {sum(map(len, guide.pictures.values())) // 1024} kB")
    return 0


if __name__ == "__main__":
    sys.exit(main())
