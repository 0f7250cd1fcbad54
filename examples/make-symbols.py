#!/usr/bin/env python3
"""Writes the symbols of the example plan into the folder symbols.

    python3 make-symbols.py [FOLDER]

A symbol's files are named NAME_SIZE[v][t].dwg: size 0 none, 1 small, 2 medium, 3 large; v casts a shadow, t is filled
with colour. They hold DXF text, which a reader knows by its content. Lengths are metres, the origin is where a symbol
is inserted; shadows fall to the north-east, as in kortteli.scr.
"""

from __future__ import annotations

import math
import pathlib
import sys
from typing import Callable, NamedTuple

from dxf_writer import DrawingWriter, Vertex, number

Points = list[Vertex]



class Color(NamedTuple):
    index: int  # for drawings older than true colours
    rgb: int | None = None


BLACK, WHITE, DARK_GREY = Color(7), Color(255), Color(250)
LEAF, LEAF_LIGHT, LEAF_EDGE = Color(84, 0x4F8A3C), Color(73, 0x7DB35A), Color(96, 0x2C5424)
NEEDLE, NEEDLE_LIGHT, NEEDLE_EDGE = Color(106, 0x2F6B4A), Color(104, 0x4A8A66), Color(98, 0x17402B)
BUSH, BUSH_LIGHT = Color(74, 0x6F9A45), Color(63, 0x9DBF63)
APPLE, RED = Color(11, 0xD9534A), Color(14, 0x8E2A22)
WOOD, WOOD_EDGE = Color(33, 0xB98A55), Color(36, 0x5B3F22)
BLUE, PAINT, GLASS, LIGHT = Color(152, 0x2E6DA8), Color(154, 0x5B84B1), Color(141, 0xBFD8E6), Color(51, 0xFFE27A)
SHADOW_OPACITY = 110  # of 255
SHADOW_DIRECTION = math.radians(40)
SCALLOP = math.tan(math.radians(150) / 4)  # bulge of a leafy edge


class Symbol(DrawingWriter):
    """Entities in a colour of their own on layer 0, so that only the reference's layer counts."""

    color = BLACK
    opacity: int | None = None

    def _begin(self, kind: str, layer: str, owner: int | None = None) -> int:
        handle = super()._begin(kind, layer, owner)
        self._pairs(62, self.color.index)
        if self.color.rgb is not None:
            self._pairs(420, self.color.rgb)
        if self.opacity is not None:
            self._pairs(440, 0x02000000 | self.opacity)
        return handle

    def outline(self, color: Color, points: Points, closed: bool = True) -> None:
        self.color = color
        self.polyline("0", points, closed)

    def stroke(self, color: Color, start: Vertex, end: Vertex) -> None:
        self.color = color
        self.line("0", start, end)

    def ring(self, color: Color, center: Vertex, radius: float) -> None:
        self.color = color
        self.circle("0", center, radius)

    def area(self, color: Color, points: Points) -> None:
        """A solid hatch in a closed polyline."""
        self.color = color
        self._begin("HATCH", "0")
        self._pairs(100, "AcDbHatch", 10, "0.0", 20, "0.0", 30, "0.0", 210, "0.0", 220, "0.0", 230, "1.0")
        self._pairs(2, "SOLID", 70, 1, 71, 0, 91, 1, 92, 3, 72, 1, 73, 1, 93, len(points))
        for point in points:
            bulge = point[2] if len(point) > 2 else 0.0
            self._pairs(10, number(point[0]), 20, number(point[1]), 42, f"{bulge:.12g}")
        self._pairs(97, 0, 75, 0, 76, 1, 98, 0)

    def shadow(self, points: Points, height: float) -> None:
        """Of a thing that stands on the ground in the ring and is as high as this."""
        self.opacity = SHADOW_OPACITY
        self.area(DARK_GREY, moved(points, height * math.cos(SHADOW_DIRECTION), height * math.sin(SHADOW_DIRECTION)))
        self.opacity = None


def moved(points: Points, dx: float, dy: float) -> Points:
    return [(point[0] + dx, point[1] + dy, *point[2:]) for point in points]


def disc(radius: float, x: float = 0.0, y: float = 0.0) -> Points:
    return [(x - radius, y, 1.0), (x + radius, y, 1.0)]


def leafy(radius: float, scallops: int, x: float = 0.0, y: float = 0.0) -> Points:
    """A crown with a wavy edge."""
    points: Points = []
    for i in range(scallops):
        angle = math.tau * i / scallops
        reach = radius * (0.86 if i % 3 else 0.8)
        points.append((x + reach * math.cos(angle), y + reach * math.sin(angle), SCALLOP * 0.7))
    return points


def spiky(radius: float, spikes: int) -> Points:
    points: Points = []
    for i in range(2 * spikes):
        reach = radius * (1.0 if i % 2 == 0 else 0.62 if i % 4 == 1 else 0.7)
        angle = math.pi * i / spikes
        points.append((reach * math.cos(angle), reach * math.sin(angle)))
    return points


def box(x1: float, y1: float, x2: float, y2: float, corner: float = 0.0) -> Points:
    if corner == 0.0:
        return [(x1, y1), (x2, y1), (x2, y2), (x1, y2)]
    quarter = math.tan(math.pi / 8)
    return [
        (x1 + corner, y1), (x2 - corner, y1, quarter), (x2, y1 + corner), (x2, y2 - corner, quarter),
        (x2 - corner, y2), (x1 + corner, y2, quarter), (x1, y2 - corner), (x1, y1 + corner, quarter),
    ]


# The symbols: each draws itself from below upwards. ---------------------------------------------------------------


def leaf_tree(symbol: Symbol, size: int, shadow: bool, fill: bool) -> None:
    radius = (1.2, 1.2, 2.0, 3.0)[size]
    crown = leafy(radius, 9 + 2 * size)
    if shadow:
        symbol.shadow(crown, radius * 0.45)
    if fill:
        symbol.area(LEAF, crown)
        symbol.area(LEAF_LIGHT, leafy(radius * 0.52, 7, -0.22 * radius, -0.2 * radius))
    symbol.outline(LEAF_EDGE, crown)
    for i in range(7):
        angle = math.tau * (i + 0.3) / 7
        reach = radius * (0.62 if i % 2 else 0.45)
        symbol.stroke(LEAF_EDGE, (0.1 * math.cos(angle), 0.1 * math.sin(angle)), (reach * math.cos(angle), reach * math.sin(angle)))
    symbol.ring(WOOD_EDGE, (0, 0), 0.1)


def conifer(symbol: Symbol, size: int, shadow: bool, fill: bool) -> None:
    radius = (1.0, 1.0, 1.6, 2.4)[size]
    crown = spiky(radius, 12)
    if shadow:
        symbol.shadow(crown, radius * 0.7)
    if fill:
        symbol.area(NEEDLE, crown)
        symbol.area(NEEDLE_LIGHT, spiky(radius * 0.55, 12))
    symbol.outline(NEEDLE_EDGE, crown)
    symbol.outline(NEEDLE_EDGE, spiky(radius * 0.55, 12))
    symbol.ring(WOOD_EDGE, (0, 0), 0.1)


def fruit_tree(symbol: Symbol, size: int, shadow: bool, fill: bool) -> None:
    radius = (1.5, 1.0, 1.5, 2.2)[size]
    crown = leafy(radius, 11)
    if shadow:
        symbol.shadow(crown, radius * 0.4)
    if fill:
        symbol.area(BUSH, crown)
    symbol.outline(LEAF_EDGE, crown)
    for i in range(9):
        angle, reach = 2.4 * i, radius * 0.22 * math.sqrt(i + 1)
        place = (reach * math.cos(angle), reach * math.sin(angle))
        if fill:
            symbol.area(APPLE, disc(0.07 * radius, *place))
        symbol.ring(RED, place, 0.07 * radius)


def bush(symbol: Symbol, size: int, shadow: bool, fill: bool) -> None:
    radius = (0.6, 0.4, 0.6, 0.9)[size]
    clumps = [leafy(radius * r, 7, radius * x, radius * y) for x, y, r in ((-0.7, -0.3, 0.9), (0.65, -0.2, 0.8), (0.0, 0.6, 0.95))]
    for clump in clumps:
        if shadow:
            symbol.shadow(clump, radius * 0.5)
    for clump, color in zip(clumps, (BUSH, LEAF, BUSH_LIGHT)):
        if fill:
            symbol.area(color, clump)
        symbol.outline(LEAF_EDGE, clump)


def bench(symbol: Symbol, size: int, shadow: bool, fill: bool) -> None:
    seat = box(-0.9, -0.25, 0.9, 0.25)
    if shadow:
        symbol.shadow(seat, 0.35)
    if fill:
        symbol.area(WOOD, seat)
    symbol.outline(WOOD_EDGE, seat)
    for y in (-0.08, 0.08):
        symbol.stroke(WOOD_EDGE, (-0.9, y), (0.9, y))
    symbol.outline(WOOD_EDGE, box(-0.9, 0.25, 0.9, 0.33))


def lamp(symbol: Symbol, size: int, shadow: bool, fill: bool) -> None:
    head = disc(0.25)
    if shadow:
        reach = 2.5
        symbol.opacity = SHADOW_OPACITY
        symbol.stroke(DARK_GREY, (0, 0), (reach * math.cos(SHADOW_DIRECTION), reach * math.sin(SHADOW_DIRECTION)))
        symbol.opacity = None
        symbol.shadow(head, reach)
    if fill:
        symbol.area(LIGHT, head)
    symbol.ring(BLACK, (0, 0), 0.25)
    for i in range(8):
        angle = math.tau * i / 8
        symbol.stroke(BLACK, (0.32 * math.cos(angle), 0.32 * math.sin(angle)), (0.5 * math.cos(angle), 0.5 * math.sin(angle)))


def car(symbol: Symbol, size: int, shadow: bool, fill: bool) -> None:
    body = box(-2.2, -0.88, 2.2, 0.88, 0.45)
    if shadow:
        symbol.shadow(body, 0.6)
    symbol.area(PAINT if fill else WHITE, body)
    symbol.outline(BLACK, body)
    for window in ([(0.5, -0.68), (1.05, -0.78, 0.12), (1.05, 0.78), (0.5, 0.68)], [(-1.75, -0.7), (-1.2, -0.62), (-1.2, 0.62), (-1.75, 0.7)]):
        if fill:
            symbol.area(GLASS, window)
        symbol.outline(BLACK, window)
    for y in (-0.98, 0.98):
        symbol.stroke(BLACK, (0.75, math.copysign(0.88, y)), (0.68, y))


def north_arrow(symbol: Symbol, size: int, shadow: bool, fill: bool) -> None:
    symbol.area(BLACK, [(0, 4), (-1.4, -2), (0, -1)])
    symbol.outline(BLACK, [(0, 4), (-1.4, -2), (0, -1), (1.4, -2)])
    symbol.stroke(BLACK, (0, 4), (0, -1))
    symbol.ring(BLACK, (0, 0.6), 3.4)
    symbol.text("0", (0, 5.3), 1.8, "P")


def play_sign(symbol: Symbol, size: int, shadow: bool, fill: bool) -> None:
    """A seesaw with two children on a sign."""
    sign = box(-1.5, -1.5, 1.5, 1.5, 0.3)
    if shadow:
        symbol.shadow(sign, 0.4)
    ink = WHITE if fill else BLACK
    if fill:
        symbol.area(BLUE, sign)
    symbol.outline(BLACK, sign)
    symbol.area(ink, [(-0.35, -1.1), (0.35, -1.1), (0, -0.45)])
    symbol.area(ink, [(-1.2, -0.75), (1.2, -0.1), (1.2, 0.05), (-1.2, -0.6)])
    for x, y in ((-0.95, -0.55), (0.95, 0.0)):
        symbol.area(ink, [(x - 0.2, y), (x + 0.2, y + 0.1), (x + 0.15, y + 0.65), (x - 0.15, y + 0.6)])
        symbol.area(ink, disc(0.19, x, y + 0.85))


class Kind(NamedTuple):
    draw: Callable[[Symbol, int, bool, bool], None]
    sizes: str
    variants: tuple[str, ...]


KINDS = {
    "lehtipuu": Kind(leaf_tree, "123", ("", "t", "vt")),
    "havupuu": Kind(conifer, "123", ("", "t", "vt")),
    "omenapuu": Kind(fruit_tree, "12", ("", "vt")),
    "pensas": Kind(bush, "12", ("", "vt")),
    "penkki": Kind(bench, "0", ("", "vt")),
    "valaisin": Kind(lamp, "0", ("", "v", "vt")),
    "auto": Kind(car, "0", ("", "t", "vt")),
    "pohjoisnuoli": Kind(north_arrow, "0", ("",)),
    "leikkipaikka": Kind(play_sign, "0", ("", "t")),
}


def main() -> int:
    folder = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).with_name("symbols")
    folder.mkdir(parents=True, exist_ok=True)
    for name, kind in KINDS.items():
        for size in kind.sizes:
            for variant in kind.variants:
                with open(folder / f"{name}_{size}{variant}.dwg", "w", encoding="utf-8", newline="\n") as stream:
                    with Symbol(stream, [], (-4.0, -4.0, 4.0, 6.5)) as symbol:
                        kind.draw(symbol, int(size), "v" in variant, "t" in variant)
    return 0


if __name__ == "__main__":
    sys.exit(main())
