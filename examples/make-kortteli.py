#!/usr/bin/env python3
"""Writes kortteli.dxf: a Finnish town block as a planner draws it, before it is illustrated.

    python3 make-kortteli.py [OUT.dxf]

Coordinates below are metres from the block's south-west corner; the drawing lies in the plane grid ETRS-GK25. Each group
of elements begins at a round handle, so that kortteli.scr can name them and a group can grow without moving the next.
"""

from __future__ import annotations

import math
import pathlib
import sys

from dxf_writer import DrawingWriter, Layer, Linetype, Vertex

ORIGIN = (25_496_200.0, 6_672_400.0)
QUARTER = math.tan(math.pi / 8)  # bulge of a quarter circle

LAYERS = [
    Layer("KATU", 8),
    Layer("PIHA", 9),
    Layer("NURMI", 82),
    Layer("POLKU", 32),
    Layer("LAATOITUS", 252),
    Layer("SORA", 41),
    Layer("METSA", 106),
    Layer("PENSAS", 84),
    Layer("AITA", 30),
    Layer("MUURI", 250, 35),
    Layer("RAKENNUS", 7, 50),
    Layer("HARJA", 14, 18),
    Layer("PYSAKOINTI", 8),
    Layer("TEKSTI", 7),
    Layer("PUU", 96),
    Layer("TONTTI", 240, 25, "RAJA"),
]
LINETYPES = [Linetype("RAJA", "Tontin raja __ . __ . __", (3.0, -0.8, 0.0, -0.8))]

Points = list[tuple[float, ...]]


def rounded(corners: Points) -> Points:
    """A closed polyline from corners (x, y[, radius]) with an arc of that radius in place of each corner."""
    vertices: Points = []
    for i, corner in enumerate(corners):
        x, y = corner[:2]
        radius = corner[2] if len(corner) > 2 else 0.0
        if radius == 0.0:
            vertices.append((x, y))
            continue
        (px, py), (nx, ny) = corners[i - 1][:2], corners[(i + 1) % len(corners)][:2]
        arriving = math.atan2(y - py, x - px)
        leaving = math.atan2(ny - y, nx - x)
        turn = math.remainder(leaving - arriving, math.tau)
        cut = radius * abs(math.tan(turn / 2))
        vertices.append((x - cut * math.cos(arriving), y - cut * math.sin(arriving), math.tan(turn / 4)))
        vertices.append((x + cut * math.cos(leaving), y + cut * math.sin(leaving)))
    return vertices


def ribbon(start: tuple[float, float], heading: float, pieces: Points, half_width: float, round_ends: bool = False) -> Points:
    """A closed strip along a centre line; `heading` in degrees.

    Pieces are (length,) straight ahead or (radius, sweep): an arc through `sweep` degrees, to the left when positive.
    """
    x, y = start
    direction = math.radians(heading)
    left: Points = []
    right: Points = []  # with the bulge of the piece that ends at the point

    def sides(bulge_ahead: float, bulge_behind: float) -> None:
        dx, dy = -math.sin(direction) * half_width, math.cos(direction) * half_width
        left.append((x + dx, y + dy, bulge_ahead))
        right.append((x - dx, y - dy, -bulge_behind))

    behind = 0.0
    for piece in pieces:
        sweep = math.radians(piece[1]) if len(piece) > 1 else 0.0
        bulge = math.tan(sweep / 4)
        sides(bulge, behind)
        behind = bulge
        if sweep == 0.0:
            x += piece[0] * math.cos(direction)
            y += piece[0] * math.sin(direction)
        else:
            radius = math.copysign(piece[0], sweep)
            x += radius * (math.sin(direction + sweep) - math.sin(direction))
            y -= radius * (math.cos(direction + sweep) - math.cos(direction))
            direction += sweep
    end_bulge = -1.0 if round_ends else 0.0
    sides(end_bulge, behind)
    back = list(reversed(right))
    back[-1] = (*back[-1][:2], end_bulge)
    return left + back


def leaf_tree(drawing: DrawingWriter) -> None:
    drawing.circle("0", (0, 0), 1.0)
    drawing.circle("0", (0, 0), 0.1)
    for i in range(8):
        angle = math.tau * i / 8
        inner, outer = 0.25, 0.8 if i % 2 == 0 else 0.55
        drawing.line(
            "0",
            (inner * math.cos(angle), inner * math.sin(angle)),
            (outer * math.cos(angle), outer * math.sin(angle)),
        )


def conifer(drawing: DrawingWriter) -> None:
    points = []
    for i in range(24):
        radius = 1.0 if i % 2 == 0 else 0.6
        angle = math.tau * i / 24
        points.append((radius * math.cos(angle), radius * math.sin(angle)))
    drawing.polyline("0", points)
    drawing.circle("0", (0, 0), 0.12)


def north_arrow(drawing: DrawingWriter) -> None:
    drawing.polyline("0", [(0, 4), (-1.2, -3), (0, -2), (1.2, -3)])
    drawing.line("0", (0, 4), (0, -2))
    drawing.text("0", (0, 5.5), 1.8, "P")


class Block:
    """Draws in local metres and moves everything to the plane grid."""

    def __init__(self, drawing: DrawingWriter):
        self._drawing = drawing
        self.handles_from = drawing.handles_from

    @staticmethod
    def _placed(points: list[Vertex]) -> Points:
        return [(ORIGIN[0] + p[0], ORIGIN[1] + p[1], *p[2:]) for p in points]

    def area(self, layer: str, points: Points) -> None:
        self._drawing.polyline(layer, self._placed(points))

    def open(self, layer: str, points: Points) -> None:
        self._drawing.polyline(layer, self._placed(points), closed=False)

    def old_style(self, layer: str, points: Points) -> None:
        self._drawing.polyline_2d(layer, self._placed(points))

    def line(self, layer: str, start: Vertex, end: Vertex) -> None:
        self._drawing.line(layer, *self._placed([start, end]))

    def circle(self, layer: str, center: Vertex, radius: float) -> None:
        self._drawing.circle(layer, *self._placed([center]), radius)

    def insert(self, name: str, x: float, y: float, scale: float, rotation: float = 0.0) -> None:
        self._drawing.insert("PUU" if name.startswith("PUU") else "TEKSTI", name, self._placed([(x, y)])[0], scale, rotation)

    def text(self, x: float, y: float, height: float, text: str, rotation: float = 0.0) -> None:
        self._drawing.text("TEKSTI", self._placed([(x, y)])[0], height, text, rotation)

    def mtext(self, x: float, y: float, height: float, text: str, width: float, attachment: int = 5) -> None:
        self._drawing.mtext("TEKSTI", self._placed([(x, y)])[0], height, text, width, attachment)


# Puistotie turns to the right north of the block: all its edges are arcs round one centre.
BEND_CENTRE = (361.5, 60.0)
BEND_DEGREES = 14.0
PAVEMENT_RADIUS = 236.5  # of the pavement's edge towards the block


def on_bend(radius: float, degrees: float) -> tuple[float, float]:
    """Point of the bend of that radius, `degrees` after its beginning at y = 60."""
    angle = math.radians(180 - degrees)
    return BEND_CENTRE[0] + radius * math.cos(angle), BEND_CENTRE[1] + radius * math.sin(angle)


def arc_bulge(degrees: float) -> float:
    return math.tan(math.radians(degrees) / 4)


# Where lawn, forest and pavement meet, and where the forest ends at the pavement.
LAWN_END_DEGREES, FOREST_END_DEGREES = 8.0, 13.0
# Edge of the forest from west to east, shared by the lawns: each bulge belongs to the arc towards the next point.
FOREST_EDGE: Points = [
    (0, 95, 0.25), (20, 97, -0.2), (40, 94, 0.12), (62, 96, -0.2), (88, 94, 0.15), (108, 96, -0.15),
    on_bend(PAVEMENT_RADIUS, LAWN_END_DEGREES),
]


def forest_edge_westwards(first: int, last: int) -> Points:
    """FOREST_EDGE from point `first` back to point `last`, the arcs turned round."""
    points: Points = []
    for i in range(first, last - 1, -1):
        bulge = -FOREST_EDGE[i - 1][2] if i > last else 0.0
        points.append((*FOREST_EDGE[i][:2], bulge))
    return points


def draw_streets(block: Block) -> None:
    block.handles_from(0x200)  # carriageways
    flare = -QUARTER
    block.area("KATU", [(0, 8), (122, 8, flare), (128, 2), (128, 21, flare), (122, 15), (0, 15)])
    block.area("KATU", ribbon((131.5, -6), 90, [(66,), (230, -BEND_DEGREES)], 3.5))
    block.handles_from(0x210)  # pavement along both streets, round the corner
    arc = arc_bulge(BEND_DEGREES)
    block.area(
        "LAATOITUS",
        [
            (0, 15), (122, 15, QUARTER), (128, 21), (128, 60, -arc), on_bend(233.5, BEND_DEGREES),
            (*on_bend(PAVEMENT_RADIUS, BEND_DEGREES), arc), (125, 60), (125, 21, flare), (122, 18), (0, 18),
        ],
    )
    block.handles_from(0x218)  # drives from the street, across the pavement
    block.area("KATU", rounded([(29, 15), (41, 15), (38, 18, 2), (38, 44), (32, 44), (32, 18, 2)]))
    block.area("KATU", rounded([(68, 15), (80, 15), (77, 18, 2), (77, 21), (71, 21), (71, 18, 2)]))
    block.area("KATU", rounded([(128, 43.5), (128, 55.5), (125, 52.5, 2), (122, 52.5), (122, 46.5), (125, 46.5, 2)]))
    block.handles_from(0x220)  # verges
    block.area("NURMI", [(0, -1), (128, -1), (128, 2, QUARTER), (122, 8), (0, 8)])
    block.area("NURMI", ribbon((137, -6), 90, [(66,), (224.5, -BEND_DEGREES)], 2))
    block.handles_from(0x228)  # centre lines
    block.line("KATU", (0, 11.5), (118, 11.5))
    block.line("KATU", (131.5, -6), (131.5, 2))
    block.line("KATU", (131.5, 21), (131.5, 60))


def draw_ground(block: Block) -> None:
    block.handles_from(0x240)  # lawns, one for each plot
    block.area("NURMI", [(0, 18), (40, 18), *forest_edge_westwards(2, 0)])
    block.area("NURMI", [(40, 18), (88, 18), *forest_edge_westwards(4, 2)])
    bend = -arc_bulge(LAWN_END_DEGREES)
    block.area("NURMI", [(88, 18), (122, 18, QUARTER), (125, 21), (125, 60, bend), *forest_edge_westwards(6, 4)])
    block.handles_from(0x250)  # yards of asphalt
    block.area("PIHA", rounded([(70, 21), (78, 21), (78, 54, 2), (70, 54, 2)]))
    block.area("PIHA", rounded([(92, 46, 2), (122, 46), (122, 53), (92, 53)]))
    block.handles_from(0x258)  # parking bays
    block.area("PYSAKOINTI", rounded([(65, 26, 1), (70, 26), (70, 51), (65, 51, 1)]))
    block.area("PYSAKOINTI", rounded([(78, 26), (83, 26, 1), (83, 51, 1), (78, 51)]))
    block.area("PYSAKOINTI", rounded([(92, 53), (122, 53), (122, 58), (92, 58, 2)]))
    block.handles_from(0x260)  # gravel: the two playgrounds
    block.area("SORA", [(91, 68, QUARTER), (95, 64), (99, 64, 0.3), (102, 72, -0.15), (102, 80, 0.5), (96, 84, 0.3), (91, 80)])
    block.area("SORA", [(67, 61.5), (73, 61.5, 1), (73, 69.5), (67, 69.5, 1)])
    block.handles_from(0x268)  # paving: square of the shop, terraces, entrances
    square = [(97, 18), (122, 18, QUARTER), (125, 21), (125, 44), (120, 44), (120, 34, -QUARTER), (110, 24), (97, 24)]
    block.area("LAATOITUS", square)
    block.area("LAATOITUS", rounded([(13, 35), (22, 35), (22, 40, 2), (13, 40, 2)]))
    block.area("LAATOITUS", rounded([(28, 62), (33, 62, 1), (33, 69, 1), (28, 69)]))
    block.area("LAATOITUS", [(60, 58), (62.5, 58), (62.5, 67.5, -QUARTER), (65.5, 70.5), (82, 70.5), (82, 73), (60, 73)])
    block.area("LAATOITUS", rounded([(61.5, 34), (65, 34), (65, 44), (61.5, 44)]))
    block.area("LAATOITUS", [(112, 66), (116, 66, QUARTER), (121, 71), (121, 72), (112, 72)])
    block.handles_from(0x278)  # paths
    winding = [(15,), (30, 18), (30, -36), (30, 18), (11,), (7, -90), (2,), (30, -12), (30, 24), (30, -12), (8,), (6, -90)]
    winding.append((3,))
    block.area("POLKU", ribbon((45.5, 18), 90, winding, 1.0))
    block.area("POLKU", ribbon((22, 37.5), 0, [(18, 15), (18, -15), (0.683,)], 0.6))
    block.area("POLKU", ribbon((30.5, 62), -90, [(16, 20), (16, -20)], 0.6))
    block.area("POLKU", ribbon((74, 54), 90, [(12, 20), (12, -20)], 0.9))
    block.handles_from(0x284)  # forest, and a grove on the western plot
    along_bend = (*FOREST_EDGE[-1], -arc_bulge(FOREST_END_DEGREES - LAWN_END_DEGREES))
    corner = on_bend(PAVEMENT_RADIUS, FOREST_END_DEGREES)
    block.area("METSA", [(0, 114), *FOREST_EDGE[:-1], along_bend, corner])
    block.area("METSA", [(6, 75, 0.35), (14, 75.5, 0.5), (13.5, 85, 0.3), (6, 84, 0.3)])
    block.handles_from(0x288)  # sand box and swing
    block.circle("PIHA", (96, 68.5), 1.8)
    block.line("PIHA", (94, 76), (99, 77))
    block.line("PIHA", (67.5, 64.5), (71.5, 64.5))


def draw_borders(block: Block) -> None:
    block.handles_from(0x290)  # clipped hedges: closed, rounded at the ends
    block.area("PENSAS", ribbon((7, 22.5), 0, [(21,)], 0.5, round_ends=True))
    block.area("PENSAS", ribbon((5.2, 27), 90, [(30,), (40, -20)], 0.5, round_ends=True))
    block.area("PENSAS", ribbon((38, 54), 90, [(24,), (8, 70)], 0.5, round_ends=True))
    block.area("PENSAS", ribbon((86, 23), 90, [(6, 30), (6, -60), (6, 60), (6, -60), (6, 30), (16,)], 0.5, round_ends=True))
    block.area("PENSAS", ribbon((123, 60.5), 90, [(22,), (5, 80)], 0.5, round_ends=True))
    block.area("PENSAS", ribbon((49, 22.5), 0, [(12,)], 0.5, round_ends=True))
    block.handles_from(0x298)  # a row of single bushes: an open line
    block.open("PENSAS", [(89.2, 57), (89.2, 66), (89.6, 72), (89.2, 78), (89.2, 84)])
    block.handles_from(0x2A0)  # board fences
    block.open("AITA", [(3.2, 22), (3.2, 83)])
    block.open("AITA", [(8, 52), (27, 52), (27, 56)])
    block.open("AITA", [(90.2, 62), (122, 62), (122, 82)])
    block.open("AITA", [(11.8, 35.2), (11.8, 41.2), (15, 41.2)])
    block.handles_from(0x2A8)  # stone walls
    block.open("MUURI", [(5, 20.4), (28.5, 20.4)])
    block.open("MUURI", [(96, 20), (96, 32, -0.2), (94, 44)])
    block.open("MUURI", [(101, 90.6, 0.12), (122, 90.2)])


def draw_buildings(block: Block) -> None:
    block.handles_from(0x2C0)
    block.area("RAKENNUS", [(9, 26), (25, 26), (25, 35), (9, 35)])  # gable roof
    block.area("RAKENNUS", [(12, 60), (28, 60), (28, 70), (12, 70)])  # hip roof
    block.old_style("RAKENNUS", [(30, 44), (40, 44), (40, 51), (30, 51)])  # garages
    block.handles_from(0x2D0)
    block.area("RAKENNUS", [(49.5, 26), (61.5, 26), (61.5, 52), (49.5, 52)])
    block.area("RAKENNUS", [(48, 58), (60, 58), (60, 73), (82, 73), (82, 84.5), (48, 84.5)])
    block.area("RAKENNUS", [(79, 56), (84, 56), (84, 60), (79, 60)])  # waste shelter
    block.area("RAKENNUS", [(98, 24), (110, 24, QUARTER), (120, 34), (120, 44), (98, 44)])  # shop, rounded corner
    # A kindergarten whose ring is closed by a repeated point only.
    block.open("RAKENNUS", [(104, 66), (112, 66), (112, 72), (121, 72), (121, 82), (104, 82), (104, 66)])
    block.handles_from(0x2E0)  # ridges and hips
    block.open("HARJA", [(9, 30.5), (25, 30.5)])
    block.open("HARJA", [(17, 65), (23, 65)])
    for corner, end in (((12, 60), (17, 65)), ((12, 70), (17, 65)), ((28, 60), (23, 65)), ((28, 70), (23, 65))):
        block.open("HARJA", [corner, end])


def draw_trees(block: Block) -> None:
    block.handles_from(0x300)  # trees as measured: circles of their crown
    for x, y, radius in (
        (8.5, 46, 2.2), (29, 29, 1.8), (34, 75, 2.6), (10, 78, 3.0), (20, 83, 2.2), (29, 84, 1.7), (35, 60, 1.5),
        (66.7, 22.2, 1.6), (46, 53.5, 1.6), (84.5, 66, 2.4), (86, 78, 2.0), (66, 55.5, 1.4), (92.5, 41, 1.5),
        (92.5, 28, 1.8), (119.5, 64.5, 1.5), (109, 86, 1.8), (116, 86.3, 1.6), (101.5, 86.5, 1.5),
    ):
        block.circle("PUU", (x, y), radius)
    block.handles_from(0x320)  # trees of the street
    for i in range(9):
        block.insert("PUU_LEHTI", 8 + 12.5 * i, 3.3, 2.4, 15.0 * i)
    for i in range(5):
        block.insert("PUU_LEHTI", 137, 1 + 13.0 * i, 1.8, 20.0 * i)
    block.handles_from(0x340)  # trees of the forest
    for i, (x, y) in enumerate(
        (
            (4, 101), (9, 108), (15, 101), (21, 109), (27, 102), (33, 108), (38, 100), (45, 107), (51, 100.5), (57, 109),
            (64, 102), (70, 108), (76, 101), (83, 108), (90, 101), (96, 107), (103, 101), (109, 108), (115, 101), (121, 107),
        )
    ):
        block.insert("PUU_HAVU" if i % 3 != 2 else "PUU_LEHTI", x, y, 2.0 + 0.25 * (i % 4), 7.0 * i)


def draw_texts(block: Block) -> None:
    block.handles_from(0x360)  # plot boundaries
    for start, end in (
        ((2, 18), (122, 18)), ((2, 18), (2, 93)), ((40, 18), (40, 93)), ((88, 18), (88, 93)),
        ((2, 93), FOREST_EDGE[-1]), ((125, 21), (125, 60)),
    ):
        block.line("TONTTI", start, end)
    block.handles_from(0x370)
    block.text(52, 9.8, 2.0, "Koivukatu")
    block.text(133.4, 38, 2.0, "Puistotie", 90)
    block.text(20, 89, 1.6, "12-1")
    block.text(52, 90.7, 1.6, "12-2")
    block.text(97, 90.8, 1.6, "12-3")
    block.text(15, 28.2, 1.3, "Ao II")
    block.text(20, 67.5, 1.3, "Ao I ½")
    block.text(35, 47.5, 1.2, "Autosuojat")
    block.text(55.5, 39, 1.5, "Ak III", 90)
    block.mtext(54, 78, 1.5, "Ak IV\\P24 as.", 12)
    block.text(81.5, 58, 0.9, "Jätesuoja")
    block.mtext(108, 37, 1.5, "Lähikauppa\\P520 k-m²", 18)
    block.mtext(112.5, 77, 1.5, "Päiväkoti\\PYl I", 15)
    block.mtext(96.5, 74, 1.2, "Leikki-\\Ppiha", 8)
    block.text(70, 66.5, 1.1, "Leikkipaikka")
    block.text(74, 37.5, 1.3, "20 ap", 90)
    block.text(107, 49.5, 1.3, "Liikkeen pysäköinti")
    block.text(17.5, 37.5, 1.1, "Terassi")
    block.text(78, 104.5, 2.2, "Lähimetsä")
    block.mtext(0, -9, 2.6, "KORTTELI 12, KOIVUKATU 4–8", 90, attachment=1)
    block.mtext(0, -14, 1.5, "Havainnekuva, pohjakartta ETRS-GK25, N2000", 90, attachment=1)
    block.insert("POHJOISNUOLI", 145, -12, 1.0)


def main() -> int:
    path = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).with_name("kortteli.dxf")
    extents = (ORIGIN[0], ORIGIN[1] - 17, ORIGIN[0] + 148, ORIGIN[1] + 117)
    blocks = {"PUU_LEHTI": leaf_tree, "PUU_HAVU": conifer, "POHJOISNUOLI": north_arrow}
    with open(path, "w", encoding="utf-8", newline="\n") as stream:
        with DrawingWriter(stream, LAYERS, extents, LINETYPES, blocks) as drawing:
            block = Block(drawing)
            draw_streets(block)
            draw_ground(block)
            draw_borders(block)
            draw_buildings(block)
            draw_trees(block)
            draw_texts(block)
    return 0


if __name__ == "__main__":
    sys.exit(main())
