#!/usr/bin/env python3
"""Writes tontti.dxf, the small plot on which the user guide (../kayttoohje.md) tries every command.

    python3 make-tontti.py [OUT.dxf]

Metres from the plot's south-west corner. Every element has a handle that the guide names; the drawing has none of the
plug-in's layers or data yet.
"""

from __future__ import annotations

import math
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "examples"))
from dxf_writer import DrawingWriter, Layer, Linetype  # noqa: E402

LAYERS = [
    Layer("KATU", 8),
    Layer("PIHA", 9),
    Layer("NURMI", 82),
    Layer("METSA", 106),
    Layer("PENSAS", 84),
    Layer("AITA", 30),
    Layer("RAKENNUS", 7, 35),
    Layer("HARJA", 14, 18),
    Layer("PUU", 96),
    Layer("TEKSTI", 7),
    Layer("TONTTI", 240, 25, "RAJA"),
]
LINETYPES = [Linetype("RAJA", "Tontin raja __ . __ . __", (2.0, -0.6, 0.0, -0.6))]


def strip(start: tuple[float, float], end: tuple[float, float], width: float) -> list[tuple[float, ...]]:
    """A closed strip from start to end with round ends."""
    (x1, y1), (x2, y2) = start, end
    length = math.hypot(x2 - x1, y2 - y1)
    dx, dy = (y1 - y2) / length * width / 2, (x2 - x1) / length * width / 2
    return [(x1 - dx, y1 - dy), (x2 - dx, y2 - dy, 1.0), (x2 + dx, y2 + dy), (x1 + dx, y1 + dy, 1.0)]


def draw_ground(drawing: DrawingWriter) -> None:
    drawing.handles_from(0x101)
    drawing.polyline("NURMI", [(0, 0), (44, 0), (44, 32, 0.12), (22, 32, -0.12), (0, 32)])
    drawing.polyline("KATU", [(0, -9), (44, -9), (44, -3), (0, -3)])
    drawing.polyline("PIHA", [(28, -3), (33, -3), (33, 3), (43, 3), (43, 10), (33, 10), (33, 15), (28, 15)])
    drawing.polyline("PIHA", [(0, -3), (28, -3), (28, 0), (0, 0)])
    drawing.polyline("PIHA", [(8, 9), (17, 9), (17, 13), (8, 13)])
    drawing.polyline("PIHA", [(37, 24, 0.5), (42, 24, 0.35), (42, 29, 0.5), (37, 29, 0.35)])
    bend = math.tan(math.pi / 8)  # bulge of a quarter circle
    drawing.polyline("PIHA", [(28, 10.4), (21.6, 10.4, -bend), (19, 13), (20.2, 13, bend), (21.6, 11.6), (28, 11.6)])
    drawing.polyline("METSA", [(0, 32, 0.12), (22, 32, -0.12), (44, 32), (44, 41), (0, 41)])
    drawing.polyline("PIHA", [(33, -3), (44, -3), (44, 0), (33, 0)])


def draw_borders(drawing: DrawingWriter) -> None:
    drawing.handles_from(0x111)
    drawing.polyline("PENSAS", strip((2, 2), (26, 2), 1.2))
    drawing.polyline("PENSAS", [(43, 13), (43, 17), (42.6, 21)], closed=False)
    drawing.handles_from(0x121)
    drawing.polyline("AITA", [(1, 4), (1, 29)], closed=False)
    drawing.polyline("AITA", [(6, 6.5), (20, 6.5), (20, 8.5)], closed=False)


def draw_buildings(drawing: DrawingWriter) -> None:
    drawing.handles_from(0x131)
    drawing.polyline("RAKENNUS", [(6, 13), (20, 13), (20, 22), (6, 22)])
    drawing.polyline("RAKENNUS", [(27, 15), (37, 15), (37, 22), (27, 22)])
    drawing.polyline("RAKENNUS", [(23, 25), (28, 25), (28, 29), (23, 29)])
    drawing.handles_from(0x141)
    drawing.polyline("HARJA", [(6, 17.5), (20, 17.5)], closed=False)
    drawing.polyline("HARJA", [(30.5, 18.5), (33.5, 18.5)], closed=False)


def draw_trees_and_texts(drawing: DrawingWriter) -> None:
    drawing.handles_from(0x151)
    for x, y, radius in ((4, 27, 2.0), (12, 28, 1.6), (18, 27, 2.2), (25, 6, 1.8), (32, 27.5, 1.7), (40, 20, 1.4)):
        drawing.circle("PUU", (x, y), radius)
    drawing.handles_from(0x161)
    drawing.text("TEKSTI", (13, 15.2), 1.3, "Ao II")
    drawing.text("TEKSTI", (25.5, 23.9), 0.9, "Katos")
    drawing.text("TEKSTI", (10, -6), 1.6, "Koivukuja")
    drawing.text("TEKSTI", (22, 37.5), 1.6, "Lähimetsä")
    drawing.text("TEKSTI", (6, 30.2), 1.1, "12-1")
    drawing.handles_from(0x171)
    drawing.polyline("TONTTI", [(0, 0), (44, 0), (44, 32), (0, 32)])


def main() -> int:
    path = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).with_name("tontti.dxf")
    with open(path, "w", encoding="utf-8", newline="\n") as stream:
        with DrawingWriter(stream, LAYERS, (0, -9, 44, 41), LINETYPES, {}) as drawing:
            draw_ground(drawing)
            draw_borders(drawing)
            draw_buildings(drawing)
            draw_trees_and_texts(drawing)
    return 0


if __name__ == "__main__":
    sys.exit(main())
