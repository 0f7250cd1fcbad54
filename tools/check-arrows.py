#!/usr/bin/env python3
"""Holds the house to the table of docs/architecture.md whose second column says what each folder may include.

    tools/check-arrows.py

Fails with one line for each include that the table does not allow, each arrow of the table that nothing uses, and each folder
that the table lacks. Status 0 when page and sources agree.
"""

import pathlib
import re
import subprocess
import sys

PAGE = pathlib.Path("docs/architecture.md")
SDK = [pathlib.Path("Host/Sdk/include"), pathlib.Path("Host/Sdk/win32")]


def folder_of(path: str) -> str:
    """The folder in whose row a source belongs: "Host/Dxf", "OrvLib", "Projects/Tolmex" ..."""
    parts = path.split("/")
    return parts[0] if parts[0] == "OrvLib" else "/".join(parts[:2])


def rows() -> dict[str, set[str]]:
    """The table: a folder and what it may include."""
    table: dict[str, set[str]] = {}
    for line in PAGE.read_text(encoding="utf-8").splitlines():
        cells = [cell.strip() for cell in line.strip().strip("|").split("|")]
        if line.startswith("| `") and len(cells) == 3:
            table[cells[0].strip("`").rstrip("/")] = set(re.findall(r"`([^`]+)`", cells[1]))
    return table


def main() -> int:
    listing = ["git", "ls-files", "--cached", "--others", "--exclude-standard", "--", "*.cpp", "*.h"]
    sources = [s for s in subprocess.run(listing, check=True, capture_output=True, text=True).stdout.splitlines()
               if s.split("/")[0] in ("Host", "OrvLib", "Projects", "Programs") and pathlib.Path(s).is_file()]
    allowed = rows()
    by_name = {folder.split("/")[-1]: folder for folder in allowed}
    interface = {path.name for folder in SDK for path in folder.iterdir()}
    found: dict[tuple[str, str], str] = {}
    for source in sources:
        here = folder_of(source)
        text = pathlib.Path(source).read_text(encoding="utf-8", errors="replace")
        for name in re.findall(r'^[ \t]*#[ \t]*include[ \t]*[<"]([^>"]+)[>"]', text, re.MULTILINE):
            there = by_name.get(name.split("/")[0]) if "/" in name else "Host/Sdk" if name in interface else None
            if here == "Host/Platform" and there == "Host/Sdk":
                there = None  # the system's own header of that name
            if there is not None and there != here:
                found.setdefault((here, there), f"{source} includes {name}")
    faults = [f"{where}: {PAGE} does not let {here} see {there}" for (here, there), where in sorted(found.items())
              if there not in allowed.get(here, set())]
    faults += [f"{PAGE}: nothing in {here} includes anything of {there}" for here, seen in sorted(allowed.items())
               for there in sorted(seen) if (here, there) not in found]
    faults += [f"{PAGE}: no row for {here}" for here in sorted({folder_of(s) for s in sources} - set(allowed))]
    print("\n".join(faults) or f"{len(found)} arrows between {len(allowed)} folders are those of {PAGE}")
    return 1 if faults else 0


sys.exit(main())
