#!/usr/bin/env python3
"""Writes a town plan of any size for measurements.

    python3 make_plan.py [--records] N OUT.dxf

N buildings (closed polylines of 4 to 12 vertices, every seventh with an arc in it) stand in blocks of 24 between streets,
with lawns, trees, yard lines and house numbers, and the other common kinds of entities by turns: arcs, ellipses,
splines, points, 3D polylines, solids, hatches, paragraphs, dimensions, symbols with attributes; on the coordinates of
ETRS-GK27. The same N gives the same bytes; memory
does not grow with N. About a second for 20 000 buildings. With --records the buildings stand on the plug-in's building
layer and carry its records of one to six floors, and a fence with a tag and a height stands on every fifth plot, so that
shadows can be drawn.
"""

from __future__ import annotations

import math
import pathlib
import random
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "examples"))
from dxf_writer import DrawingWriter, Layer  # noqa: E402

ORIGIN = (27_495_000.0, 6_701_000.0)
COLUMNS, ROWS = 6, 4  # buildings of one block
PLOT_WIDTH, PLOT_DEPTH = 26.0, 30.0
STREET_WIDTH = 12.0
BLOCK_WIDTH = COLUMNS * PLOT_WIDTH + STREET_WIDTH
BLOCK_DEPTH = ROWS * PLOT_DEPTH + STREET_WIDTH

LAYERS = [
    Layer("RAKENNUS", 7, 50),
    Layer("KATU", 8),
    Layer("NURMI", 82),
    Layer("PIHA", 9),
    Layer("PUU", 96),
    Layer("TEKSTI", 7),
    Layer("KORKEUS", 34),
    Layer("TAYTTO", 254),
    Layer("MITTA", 1),
    Layer("SYMBOLI", 3),
]
DIMENSION_BLOCK, WELL_BLOCK = "*D1", "KAIVO"

BUILDING_LAYER = Layer("tmv_rak", 7, 50)
RECORD_APPLICATION = "ORV_VR"
FENCE_LAYER = Layer("tmv_aita_kivi", 8)
TAG_APPLICATION = "kaava_tolmex"
FENCE_TAG = ["TOLM_VERSION", "1", "ENTITYTYPE", "Kiviaita", "HEIGHT", "1.8"]
PLOTS_PER_FENCE = 5


def building_record(floors: int) -> list[str]:
    """Keys and values as the plug-in stores them."""
    values = {
        "_ENTITYTYPE": "building",
        "rooflinelayer": "tmv_harjav",
        "baseheight": "0.4",
        "eavesWidth": "0.5",
        "floorheight": "3",
        "nrfloors": str(floors),
        "roofmaterial": "Surf_MetalPlate",
        "basematerial": "Surf_Concrete",
        "texwidth": "16",
        "materials": "mat_rakennus",
        "roofheight": "0",
        "TOLM_VERSION": "1",
        "tolm_bld_shadowcolor": "45",
        "tolm_bld_suncolor": "42",
    }
    return [text for pair in values.items() for text in pair]


def footprint(random_source: random.Random, index: int, x: float, y: float) -> list[tuple[float, ...]]:
    """A building within 22 by 18 metres round (x, y): a body with 0 to 4 steps cut along its upper edge."""
    width = random_source.uniform(12.0, 22.0)
    depth = random_source.uniform(9.0, 18.0)
    steps = random_source.randrange(5)
    points: list[tuple[float, ...]] = [(0.0, 0.0), (width, 0.0)]
    for i in range(steps + 1):
        height = depth * random_source.uniform(0.6, 1.0)
        points.append((width * (1.0 - i / (steps + 1)), height))
        points.append((width * (1.0 - (i + 1) / (steps + 1)), height))
    if index % 7 == 0:
        points[0] = (*points[0], random_source.uniform(0.1, 0.5))
    turn = math.radians(random_source.uniform(-4.0, 4.0))
    cos, sin = math.cos(turn), math.sin(turn)
    x -= width / 2.0
    y -= depth / 2.0
    return [(x + px * cos - py * sin, y + px * sin + py * cos, *rest) for px, py, *rest in points]


def draw_dimension(drawing: DrawingWriter) -> None:
    """What a dimension along the front of a plot shows."""
    for x in (0.0, PLOT_WIDTH):
        drawing.line("MITTA", (x, 0.5), (x, 3.5))
        drawing.line("MITTA", (x - 0.5, 2.5), (x + 0.5, 3.5))
    drawing.line("MITTA", (0.0, 3.0), (PLOT_WIDTH, 3.0))
    drawing.text("MITTA", (PLOT_WIDTH / 2, 3.9), 1.2, f"{PLOT_WIDTH:.2f}")


def draw_well(drawing: DrawingWriter) -> None:
    drawing.circle("0", (0.0, 0.0), 0.4)
    drawing.line("0", (-0.4, 0.0), (0.4, 0.0))
    drawing.line("0", (0.0, -0.4), (0.0, 0.4))


def draw_extra(drawing: DrawingWriter, index: int, x: float, y: float) -> None:
    """One more thing on a plot, round (x, y), another one on each of ten plots."""
    height = 12.0 + index % 97 / 10.0
    corners = [(x - 2.0, y - 1.0), (x + 2.0, y - 1.0), (x + 2.5, y + 1.0), (x - 2.0, y + 1.0)]
    kind = index % 10
    if kind == 0:
        drawing.arc("PIHA", (x, y), 2.5, 20.0, 200.0)
    elif kind == 1:
        drawing.ellipse("NURMI", (x, y), (3.0, 0.5), 0.4)
    elif kind == 2:
        drawing.spline("PIHA", [(x - 4.0, y), (x - 2.0, y + 1.5), (x, y - 1.5), (x + 2.0, y + 1.0), (x + 4.0, y)])
    elif kind == 3:
        drawing.point("KORKEUS", (x, y, height))
    elif kind == 4:
        drawing.polyline_3d("KORKEUS", [(px, py, height + i / 4) for i, (px, py) in enumerate(corners)])
    elif kind == 5:
        drawing.solid("TAYTTO", corners)
    elif kind == 6:
        drawing.hatch("TAYTTO", corners)
    elif kind == 7:
        drawing.hatch("TAYTTO", corners, line_spacing=0.5)
    elif kind == 8:
        drawing.mtext("TEKSTI", (x - 3.0, y + 1.0), 0.8, f"AO-{index % 40 + 1}\\P{index % 3 + 1} asuntoa", 8.0)
    else:
        drawing.insert("SYMBOLI", WELL_BLOCK, (x, y), attributes={"NUMERO": f"K{index}", "KORKEUS": f"{height:.2f}"})


def draw_block(
    drawing: DrawingWriter, random_source: random.Random, left: float, bottom: float, first: int, count: int, records: bool
) -> None:
    right, top = left + BLOCK_WIDTH - STREET_WIDTH, bottom + BLOCK_DEPTH - STREET_WIDTH
    drawing.polyline(
        "KATU", [(left, top), (right + STREET_WIDTH, top), (right + STREET_WIDTH, top + STREET_WIDTH), (left, top + STREET_WIDTH)]
    )
    drawing.polyline("KATU", [(right, bottom), (right + STREET_WIDTH, bottom), (right + STREET_WIDTH, top), (right, top)])
    drawing.line("KATU", (left, top + STREET_WIDTH / 2), (right, top + STREET_WIDTH / 2))
    drawing.dimension("MITTA", DIMENSION_BLOCK, (left, top), (left + PLOT_WIDTH, top), 3.0)
    drawing.polyline("NURMI", [(left, bottom, -0.02), (right, bottom), (right, top, -0.02), (left, top)])
    for i in range(count):
        x = left + (i % COLUMNS + 0.5) * PLOT_WIDTH
        y = bottom + (i // COLUMNS + 0.5) * PLOT_DEPTH
        drawing.polyline(BUILDING_LAYER.name if records else "RAKENNUS", footprint(random_source, first + i, x, y))
        if records:
            drawing.extended_data(RECORD_APPLICATION, building_record(1 + (first + i) % 6))
            if (first + i) % PLOTS_PER_FENCE == 0:
                front = y - PLOT_DEPTH / 2 + 0.5
                drawing.polyline(FENCE_LAYER.name, [(x - 12, front + 6), (x - 12, front), (x + 12, front)], closed=False)
                drawing.extended_data(TAG_APPLICATION, FENCE_TAG)
        drawing.text("TEKSTI", (x, y), 1.5, str(first + i + 1))
        drawing.line("PIHA", (x - PLOT_WIDTH / 2, y - PLOT_DEPTH / 2), (x - PLOT_WIDTH / 2, y + PLOT_DEPTH / 2))
        drawing.circle("PUU", (x + random_source.uniform(-11, 11), y + PLOT_DEPTH / 2 - 2.5), random_source.uniform(1.0, 2.3))
        draw_extra(drawing, first + i, x, y - PLOT_DEPTH / 2 + 3.0)


def write_plan(buildings: int, path: str, records: bool) -> None:
    per_block = COLUMNS * ROWS
    blocks = -(-buildings // per_block)
    across = max(1, math.isqrt(blocks))
    extents = (
        *ORIGIN,
        ORIGIN[0] + across * BLOCK_WIDTH,
        ORIGIN[1] + max(1, -(-blocks // across)) * BLOCK_DEPTH,
    )
    random_source = random.Random(27)
    with open(path, "w", encoding="utf-8", newline="\n") as stream:
        layers = [*LAYERS, BUILDING_LAYER, FENCE_LAYER] if records else LAYERS
        blocks_to_draw = {DIMENSION_BLOCK: draw_dimension, WELL_BLOCK: draw_well}
        applications = [RECORD_APPLICATION, TAG_APPLICATION] if records else []
        with DrawingWriter(stream, layers, extents, blocks=blocks_to_draw, applications=applications) as drawing:
            for block in range(blocks):
                left = ORIGIN[0] + block % across * BLOCK_WIDTH
                bottom = ORIGIN[1] + block // across * BLOCK_DEPTH
                first = block * per_block
                draw_block(drawing, random_source, left, bottom, first, min(per_block, buildings - first), records)


def main() -> int:
    arguments = sys.argv[1:]
    records = arguments[:1] == ["--records"]
    if records:
        del arguments[0]
    if len(arguments) != 2 or not arguments[0].isdigit():
        print("usage: make_plan.py [--records] N OUT.dxf (N: number of buildings, 0 or more)", file=sys.stderr)
        return 1
    write_plan(int(arguments[0]), arguments[1], records)
    return 0


if __name__ == "__main__":
    sys.exit(main())
