#!/usr/bin/env python3
"""Counts the tests that skipped themselves, and fails when one may not.

    check-skips.py RESULTS.xml

RESULTS.xml is what `ctest --output-junit` writes. Tests/skips.txt lists which tests may skip, and without which thing.
"""

from __future__ import annotations

import os
import pathlib
import shutil
import sys
import xml.etree.ElementTree

ROOT = pathlib.Path(__file__).resolve().parents[1]


def is_there(thing: str) -> bool:
    if thing == "drawings":
        given = os.environ.get("TOLMEX_DRAWINGS")
        return (pathlib.Path(given) if given else ROOT.parent / "shared" / "drawings").is_dir()
    if thing == "dwg-reader":
        return (ROOT / "Host/Dwg/reader/node_modules/@mlightcad").is_dir()
    if thing == "chromium":
        return shutil.which("chromium") is not None
    raise SystemExit(f"check-skips: Tests/skips.txt: {thing} is no known thing")


def allowed_skips() -> dict[str, list[str]]:
    lines = (ROOT / "Tests/skips.txt").read_text(encoding="utf-8").splitlines()
    rows = [line.split() for line in lines if line.strip() and not line.startswith("#")]
    return {row[0]: row[1:] for row in rows}


def main() -> int:
    if len(sys.argv) != 2:
        raise SystemExit(__doc__)
    cases = xml.etree.ElementTree.parse(sys.argv[1]).getroot().findall("testcase")
    names = {case.get("name") for case in cases}
    skipped = sorted(case.get("name") for case in cases if case.get("status") not in ("run", "fail"))
    allowed = allowed_skips()
    faults = []
    for name in skipped:
        if name not in allowed:
            faults.append(f"{name} skipped itself and is not listed in Tests/skips.txt")
        elif all(is_there(thing) for thing in allowed[name]):
            faults.append(f"{name} skipped itself though there is what it needs: {', '.join(allowed[name])}")
    faults += [f"{name} is listed in Tests/skips.txt but is no test" for name in sorted(set(allowed) - names)]
    if not cases:
        faults.append(f"{sys.argv[1]} holds no tests")
    missing = sorted({thing for name in skipped for thing in allowed.get(name, []) if not is_there(thing)})
    reason = f" (missing: {', '.join(missing)})" if missing else ""
    print(f"{len(cases)} tests, {len(skipped)} skipped{reason}")
    for fault in faults:
        print(f"check-skips: {fault}", file=sys.stderr)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
