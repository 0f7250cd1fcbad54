#!/usr/bin/env python3
"""Holds the Finnish texts of the window to its sources.

    tools/check-translations.py

Fails with one line for each text of the sources that Host/Window/translations/tolmex_fi.ts does not translate, each translation
that no source has any more, and each whose places for values ("%1") differ. Status 0 when there is none.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

SOURCES = pathlib.Path("Host/Window")
TEXTS = SOURCES / "translations" / "tolmex_fi.ts"

Texts = dict[tuple[str, str], list[str]]


def texts_of(path: pathlib.Path) -> Texts:
    """By class and source text: the translations, several where the number decides."""
    found: Texts = {}
    for context in xml.etree.ElementTree.parse(path).getroot().findall("context"):
        name = (context.findtext("name") or "").split("::")[-1]
        for message in context.findall("message"):
            translation = message.find("translation")
            forms: list[str] = []
            if translation is not None and translation.get("type") not in ("vanished", "obsolete"):
                forms = [form.text or "" for form in translation.findall("numerusform")] or [translation.text or ""]
            found[name, message.findtext("source") or ""] = forms
    return found


def places(text: str) -> list[str]:
    return sorted(set(re.findall(r"%[0-9]|%n", text)))


def main() -> int:
    tool = shutil.which("lupdate", path="/usr/lib/qt6/bin:" + (os.environ.get("PATH", "")))
    if tool is None:
        print("lupdate is missing; tools/install-deps.sh installs it")
        return 1
    with tempfile.TemporaryDirectory(prefix="tolmex-texts-") as folder:
        fresh = pathlib.Path(folder) / "fresh.ts"
        # It does not understand nested namespaces, and says so of every function.
        subprocess.run([tool, "-silent", "-no-obsolete", "-locations", "none", str(SOURCES), "-ts", str(fresh)],
                       check=True, stderr=subprocess.DEVNULL)
        wanted = texts_of(fresh)
    known = texts_of(TEXTS)
    faults = [f"{name}: not translated: {text}" for (name, text) in sorted(wanted)
              if not all(known.get((name, text), [])) or not known.get((name, text))]
    faults += [f"{name}: in no source: {text}" for (name, text) in sorted(set(known) - set(wanted))]
    faults += [f"{name}: other places for values: {text}" for (name, text), forms in sorted(known.items())
               # What follows a refused selection is a list of words that a translation may leave out.
               for form in forms if form and places(form) != places(text) and not text.startswith("*")]
    print("\n".join(faults) or f"{len(wanted)} texts of {SOURCES} are translated")
    return 1 if faults else 0


sys.exit(main())
