#!/usr/bin/env python3
"""Holds the tables of commands, menu.tsv of the plug-in and of the window, to the commands, layers and icons that are there.

    tools/check-menu.py

Fails with one line for each fault. Status 0 when there is none.
"""

import pathlib
import re
import sys
import xml.etree.ElementTree

PLUGIN = pathlib.Path("Projects/Tolmex")
WINDOW = pathlib.Path("Host/Window")
HOST = pathlib.Path("Host/Editor/Commands")
PROGRAM = pathlib.Path("Programs/tolmex")
COLUMNS = ["group", "command", "name_fi", "name_en", "tip_fi", "tip_en", "key", "typed", "icon", "colour", "layers",
           "double_click", "preview", "emptied"]
PREVIEWS = {PLUGIN: r"parking-row( \d+(\.\d+)?){3}|roof-face [34]|block", WINDOW: r"next-piece|ghosts|text"}
KEY = re.compile(r"((Ctrl|Shift|Alt)\+)*(F\d\d?|[A-Z0-9]|Up|Down|Left|Right|Home|End|Delete)")
PAINTS = {"none", "currentColor"}
SVG = "{http://www.w3.org/2000/svg}"

faults: list[str] = []


class Row(dict[str, str]):
    """A row by the names of its columns, and where it stands."""

    def __init__(self, cells: list[str], at: str):
        super().__init__(zip(COLUMNS, cells + [""] * len(COLUMNS)))
        self.at = at

    def fault(self, text: str) -> None:
        faults.append(f"{self.at}: {text}")

    def words(self, column: str) -> list[str]:
        return self[column].split(",") if self[column] else []


def read(folder: pathlib.Path) -> tuple[list[Row], list[Row]]:
    """The rows of groups and those of commands."""
    path = folder / "menu.tsv"
    rows: list[Row] = []
    header = None
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if line.startswith("#"):
            continue
        cells = line.split("\t")
        at = f"{path}:{number}"
        if header is None:
            header = cells
            if header != COLUMNS:
                faults.append(f"{at}: the columns are not {' '.join(COLUMNS)}")
        elif not any(cells) or len(cells) > len(COLUMNS) or any(cell != cell.strip() for cell in cells):
            faults.append(f"{at}: an empty row, a cell too many, or blanks around a cell")
        else:
            rows.append(Row(cells, at))
    return [row for row in rows if not row["command"]], [row for row in rows if row["command"]]


def check_unique(rows: list[Row], columns: list[str]) -> None:
    """No two rows share a value, be it in one of the columns or in several; case does not count."""
    first: dict[str, Row] = {}
    for row in rows:
        for value in {row[column].casefold() for column in columns} - {""}:
            if value in first:
                row.fault(f'"{value}" stands in {first[value].at} too')
            first.setdefault(value, row)


def check_groups(folder: pathlib.Path, groups: list[Row], commands: list[Row]) -> None:
    check_unique(groups, ["group"])
    used = {row["group"] for row in commands} | {"menu" if folder == PLUGIN else "modules"}
    for row in groups:
        if not all(row[column] for column in ("group", "name_fi", "name_en")) or any(list(row.values())[4:]):
            row.fault("a group has a key and two names, nothing else")
        if row["group"] not in used:
            row.fault(f'no command stands in the group "{row["group"]}"')
    for row in commands:
        if row["group"] not in {group["group"] for group in groups}:
            row.fault(f'there is no group "{row["group"]}"')


def check_texts(folder: pathlib.Path, commands: list[Row]) -> None:
    for row in commands:
        for column in ("name_fi", "name_en"):
            if not row[column] or row[column].endswith("."):
                row.fault(f"{column} is empty or ends in a full stop")
        for column in ("tip_fi", "tip_en"):
            if not re.fullmatch(r"[A-ZÅÄÖ][^.!?]*\.", row[column]):
                row.fault(f"{column} is not one sentence that ends in a full stop")
        if row["key"] and not KEY.fullmatch(row["key"]):
            row.fault(f'"{row["key"]}" is no key')
        if row["typed"] and not re.fullmatch(r"[a-z0-9_]+", row["typed"]):
            row.fault(f'"{row["typed"]}" cannot be typed in one word of small letters')
        if row["preview"] and not re.fullmatch(PREVIEWS[folder], row["preview"]):
            row.fault(f'there is no preview "{row["preview"]}"')


def check_links(commands: list[Row], layers: set[str]) -> None:
    """Layers are those that the sources name; things on one layer answer a double click alike."""
    known = {row["command"] for row in commands}
    answers: dict[str, str] = {}
    for row in commands:
        for layer in [*row.words("layers"), *row.words("emptied"), *row.words("colour")]:
            if layer not in layers:
                row.fault(f'the plug-in has no layer "{layer}"')
        for layer in row.words("layers"):
            if answers.setdefault(layer, row["double_click"]) != row["double_click"]:
                row.fault(f'another row gives the layer "{layer}" another double click')
        if row["double_click"] and row["double_click"] not in known:
            row.fault(f'there is no command "{row["double_click"]}" for a double click')
    named = {layer for row in commands for layer in row.words("layers")}
    faults.extend(f'{PLUGIN / "menu.tsv"}: no row makes the layer "{layer}"'
                  for layer in sorted(layers - named) if layer.startswith("tm"))


def check_icon(path: pathlib.Path) -> bool:
    """Whether parts of it take the colour of a layer."""
    try:
        root = xml.etree.ElementTree.parse(path).getroot()
    except xml.etree.ElementTree.ParseError as error:
        faults.append(f"{path}: {error}")
        return False
    if root.tag != SVG + "svg" or root.get("viewBox") != "0 0 24 24" or root.get("stroke") != "currentColor":
        faults.append(f"{path}: not an SVG of the viewBox 0 0 24 24 whose lines have the colour of the text")
    live = [part for part in root.iter() if part.get("class") == "live"]
    for part in root.iter():
        if part.get("stroke", "none") not in PAINTS or "style" in part.attrib or part.tag == SVG + "style":
            faults.append(f"{path}: a stroke of a fixed colour, or a style")
        fill = part.get("fill", "none")
        if part in live and not re.fullmatch(r"#[0-9A-F]{6}", fill):
            faults.append(f"{path}: a live part is not filled with #RRGGBB")
        if part not in live and fill not in PAINTS:
            faults.append(f"{path}: a fill of a fixed colour that is not live")
    return bool(live)


def check_icons(folder: pathlib.Path, commands: list[Row]) -> None:
    icons = {path.name: path for path in (folder / "icons").iterdir()}
    live = {name for name, path in icons.items() if check_icon(path)}
    for row in commands:
        name = row["icon"] + ".svg"
        if name not in icons:
            row.fault(f"there is no icon {name}")
        elif (name in live) != bool(row["colour"]):
            row.fault(f"either {name} has no live part, or the row names no layer for its colour")
    used = {row["icon"] + ".svg" for row in commands}
    faults.extend(f"{path}: no row uses it" for name, path in sorted(icons.items()) if name not in used)


def host_commands() -> tuple[set[str], dict[str, str]]:
    """The names of the host's commands and the program's own, and what the short names stand for."""
    names: set[str] = set()
    aliases: dict[str, str] = {}
    for path in sorted(HOST.glob("HostCommands*.cpp")):
        source = path.read_text(encoding="utf-8")
        for table in re.findall(r"kCommands\[\] = \{(.*?)\n\};", source, re.DOTALL):
            names.update(re.findall(r'\{L"([A-Z?]+)",', table))
        for table in re.findall(r"kAliases\[\]\[2\] = \{(.*?)\n  \};", source, re.DOTALL):
            aliases.update(re.findall(r'\{L"([A-Z?]+)", L"([A-Z]+)"\}', table))
    for path in sorted(PROGRAM.glob("*.cpp")):
        names.update(re.findall(r'addCommand\(\s*L"([A-Z]+)"', path.read_text(encoding="utf-8")))
    return names, aliases


def check_host_commands(commands: list[Row]) -> None:
    """What the window writes into the command line is a command of the host, and so is each short form."""
    names, aliases = host_commands()
    for row in commands:
        name = row["command"].split(",")[0]
        if not row["command"].startswith("window:") and name not in names:
            row.fault(f"the host has no command {name}")
        if row["typed"] and aliases.get(row["typed"].upper()) != name:
            row.fault(f'"{row["typed"]}" is no short name of {name}')


def main() -> int:
    source = (PLUGIN / "tolmexCommands.cpp").read_text(encoding="utf-8")
    table = source[source.index("kCommands{{"):source.index("}};", source.index("kCommands{{"))]
    registered = re.findall(r'(?:sameName\(|\{)L"(\w+)"', table)
    layers = set(re.findall(r'L"([^"]+)"', (PLUGIN / "Model" / "Names.h").read_text(encoding="utf-8").split("namespace layers {")[1]))
    tables = {folder: read(folder) for folder in (PLUGIN, WINDOW)}

    plugin_commands = tables[PLUGIN][1]
    for row in plugin_commands:
        if row["command"] not in registered:
            row.fault(f"the plug-in does not register {row['command']}")
    shown = {row["command"] for row in plugin_commands}
    faults.extend(f"{PLUGIN / 'menu.tsv'}: no row for {name}" for name in registered if name not in shown)
    check_links(plugin_commands, layers)

    check_host_commands(tables[WINDOW][1])
    for folder, (groups, commands) in tables.items():
        check_groups(folder, groups, commands)
        check_texts(folder, commands)
        check_icons(folder, commands)
    every = [row for _, commands in tables.values() for row in commands]
    check_unique(every, ["command", "typed"])
    check_unique(every, ["key"])
    print("\n".join(faults) or f"{len(every)} commands, {len(registered)} of them the plug-in's, have their rows and icons")
    return 1 if faults else 0


sys.exit(main())
