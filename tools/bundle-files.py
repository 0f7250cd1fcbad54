#!/usr/bin/env python3
"""Writes what Tolmex.bundle holds of the table of commands: PackageContents.xml, by which the commercial host loads the module
at its start and on each command, and the menu with its tool bars.

    tools/bundle-files.py VERSION BUNDLE

The menu is a menu source file (.mns), the customisation format in text that every release of the host reads and turns into its
own when it is loaded first. That is done by a short AutoLISP file of the bundle.
"""

import csv
import pathlib
import sys
import xml.etree.ElementTree as tree

TABLE = pathlib.Path("Projects/Tolmex/menu.tsv")
GROUP = "TOLMEX"  # of commands and of the menu
# Kept for ever: by these the host knows a newer bundle as the same product.
PRODUCT = "{0B0C1A4E-7E0F-4B5B-9E42-5C6B1D1B7A31}"
UPGRADE = "{5E2B7C52-2F0E-4C0B-8A3D-91F4E2D9C6F0}"
LOCAL_NAMES = {"TLM_MUOK_NURMIKKO": "TLM_MUOK_NURMKKO"}  # where the module registers another one
FIRST_SERIES = "R24.0"  # the first host whose SDK wants a compiler of C++20: 2021

MENU_LOADER = """\
; Loads the menu and the tool bars of Tolmex once; the host keeps them from then on.
(if (null (menugroup "{group}"))
  (progn
    (setq tolmex:menu (findfile "tolmex.mns") tolmex:filedia (getvar "FILEDIA"))
    (if tolmex:menu
      (progn
        (setvar "FILEDIA" 0)
        (command "_.MENULOAD" tolmex:menu)
        (setvar "FILEDIA" tolmex:filedia)
        (menucmd "P16=+{group}.POP1")))))
(princ)
"""


def rows() -> tuple[dict[str, str], list[dict[str, str]]]:
    """Names of the groups in their order, and the commands."""
    lines = [line for line in TABLE.read_text(encoding="utf-8").splitlines() if not line.startswith("#")]
    groups: dict[str, str] = {}
    commands = []
    for row in csv.DictReader(lines, delimiter="\t", quoting=csv.QUOTE_NONE):
        if row["command"]:
            commands.append(row)
        else:
            groups[row["group"]] = row["name_fi"]
    groups.pop("menu")
    return groups, commands


def package(version: str, commands: list[dict[str, str]]) -> bytes:
    top = tree.Element("ApplicationPackage", SchemaVersion="1.0", AutodeskProduct="AutoCAD", ProductType="Application",
                       Name="Tolmex", Description="Havainnekuvia maankäytön suunnitelmista", AppVersion=version,
                       ProductCode=PRODUCT, UpgradeCode=UPGRADE, Icon="./Contents/tolmex.png",
                       HelpFile="./Contents/Help/kayttoohje.md", SupportedLocales="Enu")
    tree.SubElement(top, "CompanyDetails", Name="Tolmex")
    components = tree.SubElement(top, "Components", Description="Tolmex")
    tree.SubElement(components, "RuntimeRequirements", OS="Win64", Platform="AutoCAD*", SeriesMin=FIRST_SERIES,
                    SupportPath="./Contents/Support")
    module = tree.SubElement(components, "ComponentEntry", AppName="Tolmex", Version=version,
                             ModuleName="./Contents/tolmex.arx", AppDescription="Tolmex",
                             LoadOnAutoCADStartup="True", LoadOnCommandInvocation="True")
    names = tree.SubElement(module, "Commands", GroupName=GROUP)
    for row in commands:
        tree.SubElement(names, "Command", Global=row["command"], Local=LOCAL_NAMES.get(row["command"], row["command"]))
    tree.SubElement(components, "ComponentEntry", AppName="TolmexMenu", Version=version,
                    ModuleName="./Contents/tolmex-menu.lsp", AppDescription="Tolmex: valikko", PerDocument="False")
    tree.indent(top)
    return tree.tostring(top, encoding="utf-8", xml_declaration=True) + b"\n"


def menu(groups: dict[str, str], commands: list[dict[str, str]]) -> str:
    """The menu source file: sub-menus and tool bars by group, and what the status line says of each command."""
    by_group = {group: [row for row in commands if row["group"] == group] for group in groups}
    lines = ["// Tolmex: made of the table of commands.", "", f"***MENUGROUP={GROUP}", "", "***POP1", "**TOLMEX",
             "ID_MnTolmex  [&Tolmex]"]
    for group, name in groups.items():
        lines.append(f"ID_Mn_{group}  [->{name}]")
        for row in by_group[group]:
            last = "<-" if row is by_group[group][-1] else ""
            lines.append(f"ID_{row['command']}  [{last}{row['name_fi']}]^C^C{row['command']}")
    lines += ["", "***TOOLBARS"]
    for number, (group, name) in enumerate(groups.items()):
        lines += [f"**TLM_{group.upper()}",
                  f'ID_Tb_{group}  [_Toolbar("Tolmex: {name}", _Floating, _Hide, 100, {100 + 60 * number}, 1)]']
        for row in by_group[group]:
            icons = ", ".join(f'"icons/{row["icon"]}_{size}.bmp"' for size in (16, 32))
            lines.append(f'ID_{row["command"]}  [_Button("{row["name_fi"]}", {icons})]^C^C{row["command"]}')
        lines.append("")
    lines.append("***HELPSTRINGS")
    lines += [f"ID_{row['command']}  [{row['tip_fi']}]" for row in commands]
    return "\r\n".join(lines) + "\r\n"


def main() -> int:
    if len(sys.argv) != 3:
        print(__doc__, file=sys.stderr)
        return 2
    version, bundle = sys.argv[1], pathlib.Path(sys.argv[2])
    groups, commands = rows()
    (bundle / "PackageContents.xml").write_bytes(package(version, commands))
    # Menu source files have no encoding of their own: they are read in Windows' code page.
    (bundle / "Contents/Support/tolmex.mns").write_bytes(menu(groups, commands).encode("cp1252"))
    (bundle / "Contents/tolmex-menu.lsp").write_text(MENU_LOADER.format(group=GROUP), encoding="ascii", newline="\r\n")
    return 0


sys.exit(main())
