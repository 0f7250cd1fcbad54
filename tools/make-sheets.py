#!/usr/bin/env python3
"""Makes the sheets that pictures are laid on, Programs/tolmex/sheets/A4-kaava.dxf to A0-kaava.dxf, from one description.

    make-sheets.py            writes them
    make-sheets.py --check    changes nothing; fails when one of them is not what would be written

Coordinates are millimetres on the paper. Layers in capitals say where things go and are not shown themselves: ARKKI the
paper, KUVA the plan, SELITE the legend, MITTAJANA the scale bar, POHJOINEN the north arrow. Fields are attributes.
"""

from __future__ import annotations

import io
import pathlib
import sys
from typing import NamedTuple

ROOT = pathlib.Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "examples"))
from dxf_writer import DrawingWriter, Layer, at, number  # noqa: E402

FOLDER = ROOT / "Programs" / "tolmex" / "sheets"
LAYERS = [
    Layer("ARKKI", 8),
    Layer("KUVA", 8),
    Layer("SELITE", 8),
    Layer("MITTAJANA", 8),
    Layer("POHJOINEN", 8),
    Layer("Kehys", 7, 50),
    Layer("Ruudukko", 7, 18),
    Layer("Otsikot", 252),
    Layer("Kentat", 7),
]


class Size(NamedTuple):
    name: str
    width: float
    height: float
    column: float  # width of the column at the right
    row: float  # height of a row of the title block; texts follow it


SIZES = [
    Size("A4", 297, 210, 72, 7.5),
    Size("A3", 420, 297, 92, 9),
    Size("A2", 594, 420, 120, 11),
    Size("A1", 841, 594, 140, 12.5),
    Size("A0", 1189, 841, 160, 14),
]

# Rows of the title block from above; each cell: tag, caption, share of the row.
ROWS: list[list[tuple[str, str, float]]] = [
    [("OTSIKKO", "Otsikko", 1)],
    [("KOHDE", "Rakennuspaikka", 1)],
    [("OSOITE", "Osoite", 0.6), ("KIINTEISTO", "Kiinteistötunnus", 0.4)],
    [("TOIMENPIDE", "Toimenpide", 0.6), ("KUNTA", "Kunta", 0.4)],
    [("LAJI", "Piirustuslaji", 0.4), ("SISALTO", "Sisältö", 0.6)],
    [("MITTAKAAVA", "Mittakaava", 0.34), ("PAIVAYS", "Päiväys", 0.33), ("NUMERO", "Piirustus nro", 0.33)],
    [("LAATIJA", "Laatija", 0.6), ("AMMATTI", "Tutkinto tai ammatti", 0.4)],
    [("KOORDINAATISTO", "Koordinaatisto", 0.4), ("KORKEUS", "Korkeudet", 0.3), ("LEHTI", "Lehti", 0.3)],
    [("LAHTEET", "Pohjakartta ja lähteet", 1)],
]
# What stands in a field until it is given.
DEFAULTS = {"LAJI": "Havainnekuva", "LEHTI": "1/1"}

BINDING, MARGIN = 20.0, 10.0  # empty borders: at the left for binding, elsewhere


class SheetWriter(DrawingWriter):
    def rectangle(self, layer: str, x1: float, y1: float, x2: float, y2: float) -> None:
        self.polyline(layer, [(x1, y1), (x2, y1), (x2, y2), (x1, y2)])

    def label(self, layer: str, point: tuple[float, float], height: float, text: str) -> None:
        self._begin("TEXT", layer)
        self._pairs(100, "AcDbText", *at(10, point), 40, number(height), 1, text, 7, "Standard", 100, "AcDbText")

    def field(self, layer: str, point: tuple[float, float], end: float, height: float, tag: str, default: str) -> None:
        """An attribute that fits between the point and `end` at its right."""
        self._begin("ATTDEF", layer)
        self._pairs(100, "AcDbText", *at(10, point), 40, number(height), 1, default, 7, "Standard", 72, 5)
        self._pairs(*at(11, (end, point[1])), 100, "AcDbAttributeDefinition", 3, tag, 2, tag, 70, 0)


def write_sheet(stream: io.StringIO, size: Size) -> None:
    with SheetWriter(stream, LAYERS, (0, 0, size.width, size.height)) as w:
        left, bottom, right, top = BINDING, MARGIN, size.width - MARGIN, size.height - MARGIN
        column = right - size.column
        w.rectangle("ARKKI", 0, 0, size.width, size.height)
        w.rectangle("KUVA", left, bottom, column, top)
        w.rectangle("Kehys", left, bottom, right, top)
        w.line("Kehys", (column, bottom), (column, top))

        # The title block, low at the right.
        caption, text = size.row * 0.2, size.row * 0.32
        block = bottom + size.row * (len(ROWS) + 0.5)
        y = block
        w.line("Kehys", (column, block), (right, block))
        for index, cells in enumerate(ROWS):
            height = size.row * (1.5 if index == 0 else 1)
            x = column
            for tag, title, share in cells:
                end = x + size.column * share
                if x > column:
                    w.line("Ruudukko", (x, y - height), (x, y))
                w.label("Otsikot", (x + 1.5, y - caption - 1), caption, title)
                letters = text * (1.6 if index == 0 else 1)
                w.field("Kentat", (x + 1.5, y - height + size.row * 0.18), end - 1.5, letters, tag, DEFAULTS.get(tag, ""))
                x = end
            y -= height
            if index + 1 < len(ROWS):
                w.line("Ruudukko", (column, y), (right, y))

        # Scale bar and north arrow stand above it.
        strip = size.row * 2
        w.line("Ruudukko", (column, block + strip), (right, block + strip))
        w.rectangle("MITTAJANA", column + 3, block + strip * 0.2, right - strip - 4, block + strip * 0.8)
        w.rectangle("POHJOINEN", right - strip, block + 1.5, right - 2, block + strip - 1.5)

        # The legend fills the rest.
        w.label("Otsikot", (column + 3, top - size.row * 0.6), text, "Merkintöjen selitykset")
        w.rectangle("SELITE", column + 3, block + strip + 2, right - 3, top - size.row)


def main() -> int:
    stale = []
    FOLDER.mkdir(exist_ok=True)
    for size in SIZES:
        stream = io.StringIO(newline="\n")
        write_sheet(stream, size)
        file = FOLDER / f"{size.name}-kaava.dxf"
        content = stream.getvalue().encode("utf-8")
        if "--check" not in sys.argv:
            file.write_bytes(content)
        elif not file.exists() or file.read_bytes() != content:
            stale.append(file.name)
    if stale:
        print("make-sheets: run tools/make-sheets.py; these are not what it writes: " + ", ".join(stale), file=sys.stderr)
    return 1 if stale else 0


if __name__ == "__main__":
    sys.exit(main())
