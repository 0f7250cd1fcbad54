#!/usr/bin/env python3
"""Checks that the documents name every command and every option of the program, and none that it does not have.

    check-documents.py PROGRAM

Commands are those that the plug-in registers, one for each row of its table; options and calls those that --help prints.
The README and the user guide each list all commands in one table. Manual page, user guide and the completions of bash,
zsh and fish know all options; for completions it is looked at each call by itself.
"""

from __future__ import annotations

import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[1]
SHARE = ROOT / "Programs" / "tolmex" / "share"
README = ROOT / "README.md"
GUIDE = ROOT / "docs" / "kayttoohje.md"
OPTION = re.compile(r"(?<![\w-])--[a-z][a-z-]*")
GLOBAL_OPTIONS = {"--help", "--version"}
FOREIGN = re.compile(r"\b(cmake|ctest|tools/|Ninja)\b")  # lines about other programs

failures: list[str] = []


def compare(where: str, found: set[str], expected: set[str]) -> None:
    for what, names in (("lacks", expected - found), ("has, but the program does not,", found - expected)):
        if names:
            failures.append(f"{where} {what} {', '.join(sorted(names))}")


class Program:
    def __init__(self, path: str):
        self.path = str(pathlib.Path(path).resolve())
        top = self.output("--help")
        block = top[re.search(r"^subcommands:\n", top, re.M | re.I).end():]
        self.calls = re.findall(r"^  ([a-z]+) ", block.split("\n\n")[0], re.M)
        self.options = {call: self.options_of(call) for call in self.calls}
        with tempfile.TemporaryDirectory(prefix="tolmex-documents-") as folder:
            drawing = ROOT / "docs" / "guide" / "tontti.dxf"
            listed = self.output("run", str(drawing), "--command", "ARX", "--command", "Commands", folder=folder)
        self.commands = set(re.findall(r"TLM_\w+", listed))

    def output(self, *arguments: str, folder: str | None = None) -> str:
        run = subprocess.run([self.path, *arguments], cwd=folder, capture_output=True, text=True, timeout=120, check=True)
        return run.stdout

    def options_of(self, call: str) -> set[str]:
        return set(re.findall(r"^\s+(?:-\w,)?(--[a-z][a-z-]*)", self.output(call, "--help"), re.M))

    def all_options(self) -> set[str]:
        return set().union(*self.options.values()) | GLOBAL_OPTIONS


def table_under(text: str, heading: str) -> list[str]:
    """The rows of the first table after the line."""
    lines = text[text.index(heading):].split("\n")
    first = next(i for i, line in enumerate(lines) if line.startswith("|"))
    end = next((i for i in range(first, len(lines)) if not lines[i].startswith("|")), len(lines))
    return lines[first:end]


def full_names(row: str, commands: set[str]) -> list[str]:
    """The commands of a table row, in which `_SORA` after a full name stands for one with another ending."""
    names: list[str] = []
    stem = ""
    for word in re.findall(r"`(TLM_\w+|_\w+)`", row.split("|")[1]):
        if not word.startswith("_"):
            stem = word
            names.append(word)
            continue
        replaced = "_".join(stem.split("_")[: -word.count("_")]) + word
        meant = [name for name in (replaced, stem + word) if name in commands]
        names.append(meant[0] if len(meant) == 1 else replaced)
    return names


def check_command_table(document: pathlib.Path, heading: str, commands: set[str]) -> None:
    rows = table_under(document.read_text(encoding="utf-8"), heading)
    names = [name for row in rows for name in full_names(row, commands)]
    compare(f"{document.name}: the table of commands", set(names), commands)
    for name in sorted({name for name in names if names.count(name) > 1}):
        failures.append(f"{document.name}: the table of commands has {name} twice")


def mentioned_options(text: str) -> set[str]:
    return {option for line in text.split("\n") if not FOREIGN.search(line) for option in OPTION.findall(line)}


def bash_completion(program: Program) -> None:
    script = (
        'source "$1"; shift; COMP_WORDS=(tolmex "$@"); COMP_CWORD=$#; compopt() { :; }; _tolmex; '
        'printf "%s\\n" "${COMPREPLY[@]}"'
    )

    def completed(*words: str) -> set[str]:
        run = subprocess.run(["bash", "-c", script, "bash", str(SHARE / "tolmex.bash"), *words],
                             capture_output=True, text=True, timeout=60, check=True)
        return set(run.stdout.split())

    compare("tolmex.bash", completed(""), set(program.calls) | GLOBAL_OPTIONS)
    for call in program.calls:
        compare(f"tolmex.bash: {call}", completed(call, "--"), program.options[call])


def zsh_completion(program: Program) -> None:
    text = (SHARE / "_tolmex").read_text(encoding="utf-8")
    lists: dict[str, set[str]] = {}

    def options_in(body: str) -> set[str]:
        return set(OPTION.findall(body)).union(*(lists[name] for name in re.findall(r"\$(\w+)", body)))

    for name, body in re.findall(r"^(\w+)=\((.*?)\)$", text, re.M | re.S):
        lists[name] = options_in(body)
    compare("_tolmex", set(re.findall(r"'(\w+)\[", text[text.index("_values call"):text.index("return")])),
            set(program.calls))
    for call in program.calls:
        case = re.search(rf"^  {call}\) (.*?);;", text, re.M | re.S)
        compare(f"_tolmex: {call}", options_in(case[1]) if case else set(), program.options[call])


def fish_completion(program: Program) -> None:
    found: dict[str, set[str]] = {call: set() for call in program.calls}
    here = program.calls
    for line in (SHARE / "tolmex.fish").read_text(encoding="utf-8").split("\n"):
        if loop := re.match(r"for call in (.*)$", line):
            here = program.calls if loop[1] == "$calls" else loop[1].split()
        elif calls := re.match(r"set -l calls (.*)$", line):
            compare("tolmex.fish", set(calls[1].split()), set(program.calls))
        elif option := re.search(r"__fish_seen_subcommand_from (\$?\w+)['\"] .*-l ([a-z-]+)", line):
            for call in here if option[1] == "$call" else [option[1]]:
                found[call].add("--" + option[2])
    for call in program.calls:
        compare(f"tolmex.fish: {call}", found[call], program.options[call])


def check(program: Program) -> None:
    if not program.commands or not program.calls:
        failures.append("the program lists no commands or no calls")
    check_command_table(README, "| commands | make |", program.commands - {"TLM_MUOK_NURMKKO"})
    check_command_table(GUIDE, "## Komennot yhdellä silmäyksellä", program.commands - {"TLM_MUOK_NURMKKO"})
    guide = mentioned_options(GUIDE.read_text(encoding="utf-8"))
    compare("kayttoohje.md", guide | GLOBAL_OPTIONS, program.all_options())
    readme = mentioned_options(README.read_text(encoding="utf-8"))
    compare("README.md", readme, readme & program.all_options())
    manual = (SHARE / "tolmex.1").read_text(encoding="utf-8").replace("\\-", "-")
    compare("tolmex.1", set(OPTION.findall(manual)), program.all_options())
    compare("tolmex.1: calls", set(re.findall(r"^\.B tolmex (\w+)$", manual, re.M)), set(program.calls))
    compare("tolmex.1: commands", set(re.findall(r"TLM_\w+", manual)) - program.commands, set())
    bash_completion(program)
    zsh_completion(program)
    fish_completion(program)


def main() -> int:
    if len(sys.argv) != 2:
        print("usage: check-documents.py PROGRAM", file=sys.stderr)
        return 1
    check(Program(sys.argv[1]))
    for failure in failures:
        print(f"check-documents: {failure}", file=sys.stderr)
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
