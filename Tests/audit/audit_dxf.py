#!/usr/bin/env python3
"""Checks drawings with a reader that shares no code with this program (ezdxf, Debian package python3-ezdxf).

    python3 audit_dxf.py [--baseline ORIGINAL.dxf | --originals FOLDER] [--expect EXPECTED.json] FILE...

Prints one line per file, `name: N errors`, each error on standard error, and ends with status 1 when there is any. What the
auditor can repair counts too: we do not leave repairs to others. With a baseline, problems that the original drawing already
has (same kind, at most as many) do not count; a folder of originals holds one of the same name for every file.

The expectation names what must be in every file; all keys may be left out:

    {"hatches": [{"layer": "tma_nurmi", "count": 5, "pattern": "SOLID"}],
     "groups": [{"name": "Parkkipaikka0", "count": 11, "description": "..."}],
     "xdata": [{"handle": "240", "application": "kaava_tolmex", "values": {"ENTITYTYPE": "Nurmialue"}}],
     "emptied groups": ["Varjo"],
     "layers": {"tma_asf": 254},
     "order": [["240", "284"]]}

`values` are key and value as successive text items; "emptied groups" are prefixes of groups that may be empty, which the
auditor would remove; `order` lists handles that must be drawn in that order, through the sort table of the model space;
"hatches" counts exactly; an `order` needs that table.
"""

from __future__ import annotations

import argparse
import collections
import json
import pathlib
import sys
from typing import Iterator

import ezdxf
from ezdxf.document import Drawing
from ezdxf.lldxf.const import DXFError


def handle_errors(path: pathlib.Path) -> Iterator[str]:
    """Handles given twice, a next handle that is already in use, groups' members that are nowhere: a reader repairs or
    overwrites those silently."""
    content = path.read_bytes()
    if content.startswith(b"AutoCAD Binary DXF"):
        return
    lines = content.splitlines()
    seen: set[int] = set()
    members: list[int] = []
    seed = 0
    kind, awaits_handle, awaits_seed = b"", False, False
    for code, value in zip((line.strip() for line in lines[::2]), (line.strip() for line in lines[1::2])):
        if code == b"0":
            # DIMSTYLE keeps its handle under 105; its 5 is a name.
            kind, awaits_handle = value, value not in (b"SECTION", b"ENDSEC", b"ENDTAB", b"CLASS", b"EOF")
        elif code == b"9":
            awaits_seed = value == b"$HANDSEED"
        elif code == b"5" and awaits_seed:
            seed, awaits_seed = int(value, 16), False
        elif code == b"100":
            awaits_handle = False
        elif code == b"340" and kind == b"GROUP":
            members.append(int(value, 16))
        elif awaits_handle and code == (b"105" if kind == b"DIMSTYLE" else b"5"):
            handle, awaits_handle = int(value, 16), False
            if handle in seen:
                yield f"{kind.decode('ascii', 'replace')} {handle:X}: handle used twice"
            seen.add(handle)
    for member in sorted(set(members) - seen - {0}):
        yield f"a group's member {member:X} is not in the drawing"
    if seen and seed <= max(seen):
        yield f"$HANDSEED {seed:X} is not above the largest handle {max(seen):X}"


def audit_problems(document: Drawing, emptied_groups: list[str]) -> list[tuple[int, str]]:
    emptied = tuple(f'Removed empty group "{prefix}' for prefix in emptied_groups)
    auditor = document.audit()
    problems = [(problem.code, problem.message) for problem in auditor.errors + auditor.fixes]
    return [problem for problem in problems if not (emptied and problem[1].startswith(emptied))]


def hatch_errors(document: Drawing, expected: list[dict]) -> Iterator[str]:
    hatches = list(document.modelspace().query("HATCH"))
    for hatch in hatches:
        if not len(hatch.paths):
            yield f"HATCH {hatch.dxf.handle}: no boundary"
    for wanted in expected:
        found = [hatch for hatch in hatches if hatch.dxf.layer.lower() == wanted["layer"].lower()]
        if "pattern" in wanted:
            found = [hatch for hatch in found if hatch.dxf.pattern_name.upper() == wanted["pattern"].upper()]
        if len(found) != wanted["count"]:
            yield f"{len(found)} hatches on {wanted['layer']}, expected {wanted['count']}"


def group_errors(document: Drawing, expected: list[dict]) -> Iterator[str]:
    for wanted in expected:
        group = document.groups.get(wanted["name"])
        if group is None:
            yield f"group {wanted['name']} is missing"
            continue
        if "count" in wanted and len(group) != wanted["count"]:
            yield f"group {wanted['name']} has {len(group)} entities, expected {wanted['count']}"
        if "description" in wanted and group.dxf.description != wanted["description"]:
            yield f"group {wanted['name']} is described as {group.dxf.description!r}"


def xdata_errors(document: Drawing, expected: list[dict]) -> Iterator[str]:
    for wanted in expected:
        where = f"{wanted['handle']}, application {wanted['application']}"
        entity = document.entitydb.get(wanted["handle"])
        if entity is None or not entity.has_xdata(wanted["application"]):
            yield f"{where}: no extended data"
            continue
        if wanted["application"] not in document.appids:
            yield f"{where}: the application is not registered"
        items = [tag.value for tag in entity.get_xdata(wanted["application"])]
        values = {key: value for key, value in zip(items, items[1:]) if isinstance(key, str)}
        for key, value in wanted.get("values", {}).items():
            if values.get(key) != value:
                yield f"{where}: {key} is {values.get(key)!r}, expected {value!r}"


def layer_errors(document: Drawing, expected: dict[str, int]) -> Iterator[str]:
    for name, color in expected.items():
        if name not in document.layers:
            yield f"layer {name} is missing"
        elif document.layers.get(name).color != color:
            yield f"layer {name} has colour {document.layers.get(name).color}, expected {color}"


def order_errors(document: Drawing, expected: list[list[str]]) -> Iterator[str]:
    # A sort handle that is not listed is the entity's own handle.
    sort_handles = {handle: sort_handle for handle, sort_handle in document.modelspace().get_redraw_order()}
    if expected and not sort_handles:
        yield "the model space has no sort table"
    for handles in expected:
        keys = [int(sort_handles.get(handle, handle), 16) for handle in handles]
        for lower, upper, handle, above in zip(keys, keys[1:], handles, handles[1:]):
            if lower >= upper:
                yield f"{handle} is drawn over {above}"


CHECKS = {
    "hatches": hatch_errors,
    "groups": group_errors,
    "xdata": xdata_errors,
    "layers": layer_errors,
    "order": order_errors,
}


def errors_of(path: pathlib.Path, expected: dict, baseline: collections.Counter) -> list[str]:
    try:
        document = ezdxf.readfile(path)
        # The expectation first: the auditor repairs the document in memory.
        errors = [error for key, check in CHECKS.items() for error in check(document, expected.get(key, type_of_key(key)))]
        errors += handle_errors(path)
        allowed = collections.Counter(baseline)
        for code, message in audit_problems(document, expected.get("emptied groups", [])):
            if allowed[code] > 0:
                allowed[code] -= 1
            else:
                errors.append(message)
        return errors
    except (OSError, DXFError, ValueError, UnicodeError) as error:
        return [f"cannot be read: {error}"]


def problems_of_original(path: pathlib.Path) -> collections.Counter:
    """Kinds and numbers of problems; none when the reader refuses the original: what was rebuilt must be sound."""
    try:
        return collections.Counter(code for code, _ in audit_problems(ezdxf.readfile(path), []))
    except DXFError:
        return collections.Counter()


def type_of_key(key: str) -> list | dict:
    return {} if key == "layers" else []


def main() -> int:
    parser = argparse.ArgumentParser(description="Audits drawings with ezdxf.")
    parser.add_argument("--baseline", type=pathlib.Path, help="drawing whose own problems do not count")
    parser.add_argument("--originals", type=pathlib.Path, help="folder of drawings whose own problems do not count")
    parser.add_argument("--expect", type=pathlib.Path, help="JSON file that names what must be there")
    parser.add_argument("files", nargs="+", type=pathlib.Path)
    arguments = parser.parse_args()
    expected = json.loads(arguments.expect.read_text(encoding="utf-8")) if arguments.expect else {}
    unknown = set(expected) - set(CHECKS) - {"emptied groups"}
    if unknown:
        parser.error(f"{arguments.expect}: unknown keys {', '.join(sorted(unknown))}")
    baseline: collections.Counter = collections.Counter()
    if arguments.baseline:
        baseline.update(code for code, _ in audit_problems(ezdxf.readfile(arguments.baseline), []))
    failed = False
    for path in arguments.files:
        if arguments.originals:
            baseline = problems_of_original(arguments.originals / path.name)
        errors = errors_of(path, expected, baseline)
        for error in errors:
            print(f"{path.name}: {error}", file=sys.stderr)
        print(f"{path.name}: {len(errors)} errors")
        failed = failed or bool(errors)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
