#!/usr/bin/env python3
"""Makes a drawing of many kinds of buildings, ridge lines and fences, as other programs may have stored them.

    python3 make_buildings_drawing.py SEED OUT.dxf

Outlines are light, old two-dimensional and three-dimensional polylines, mirrored ones too, closed and open, with arcs, at
heights, far from the origin; records have their pairs in any order; ridge lines end on edges, at corners or beside them, are
gone or something else; numbers are zero, negative or fractions; settings are stored. Needs ezdxf.
"""

from __future__ import annotations

import math
import random
import sys

import ezdxf

ORIGIN = (27496000, 6713000)


def settings(document, pick: random.Random) -> None:
    record = document.rootdict.add_new_dict("orv_tolmex").add_xrecord("shadowSettings")
    values = [
        ("SHADOWANGLERAD", 40, pick.choice([0, math.pi / 4, 1.0, -2.3, math.pi / 2, 7.5])),
        ("SHADOWCOLOR", 70, 3),
        ("SHADOWLENGTHPERFLOOR", 40, pick.choice([3.0, 2.5, -1.5])),
        ("SHADOWSCALE", 40, 0.4),
        ("SHADOWHATCHTYPE", 70, pick.choice([10, 20, 0])),
    ]
    pick.shuffle(values)
    record.reset([tag for key, code, value in values for tag in ((1, key), (code, value))])


def building_record(pick: random.Random, ridge: str | None) -> list:
    pairs = {
        "baseheight": "0.4",
        "eavesWidth": "0.5",
        "floorheight": pick.choice(["3", "2.8", "0"]),
        "nrfloors": pick.choice(["1", "2", "3", "0", "-1", "2.5"]),
        "roofheight": pick.choice(["2", "2.5", "0", "-1", "-9"]),
        "tolm_bld_shadowcolor": "45",
        "tolm_bld_suncolor": "42",
    }
    record = [(1000, "_ENTITYTYPE"), (1000, pick.choice(["building", "BUILDING", "Building"]))]
    for key in pick.sample(sorted(pairs), len(pairs)):
        record += [(1000, key), (1000, pairs[key])]
    return record + ([(1000, "tolm_roofline_handle"), (1005, ridge)] if ridge else [])


def tag(kind: str, height: str) -> list:
    texts = ["TOLM_VERSION", "1", "ENTITYTYPE", kind, "HEIGHT", height, "HATCH_HANDLE"]
    return [(1000, text) for text in texts] + [(1005, "0")]


def footprint(pick: random.Random, x: float, y: float) -> list:
    if pick.random() < 0.4:
        corners = [(x, y), (x + 16, y), (x + 16, y + 9), (x, y + 9)]
        first = pick.randrange(4)
        corners = corners[first:] + corners[:first]
    else:
        count, radius, turn = pick.choice([3, 4, 5, 6, 8]), pick.uniform(6, 15), pick.uniform(0, 6)
        angles = [turn + 2 * math.pi * i / count for i in range(count)]
        corners = [(x + radius * math.cos(angle), y + radius * math.sin(angle)) for angle in angles]
    return corners if pick.random() < 0.7 else corners[::-1]


def ridge_points(pick: random.Random, corners: list, height: float, closed: bool) -> list:
    points = []
    for i in pick.sample(range(len(corners) if closed else len(corners) - 1), 2):
        (ax, ay), (bx, by) = corners[i], corners[(i + 1) % len(corners)]
        part = pick.choice([0.5, 0.3, 0, 1])
        points.append((ax + (bx - ax) * part, ay + (by - ay) * part, height))
    if pick.random() < 0.5:
        points.insert(1, (corners[0][0] + 1, corners[0][1] + 1, height))
    return points + (points[:1] if pick.random() < 0.2 else [])


def add_building(space, pick: random.Random, x: float, y: float) -> None:
    corners, closed = footprint(pick, x, y), pick.random() < 0.9
    bulges = [pick.choice([0, 0, 0.2, -0.15, 0.00005]) if pick.random() < 0.4 else 0 for _ in corners]
    course = [(*corner, bulge) for corner, bulge in zip(corners, bulges)]
    height = pick.choice([0, 0, 12.5])
    kind = pick.choice(["light", "light", "mirrored", "old", "space"])
    if kind == "light":
        outline = space.add_lwpolyline(course, format="xyb", close=closed, dxfattribs={"elevation": height})
    elif kind == "space":
        outline = space.add_polyline3d([(*corner, height) for corner in corners], close=closed)
    elif kind == "mirrored":
        mirrored = [(-cx, cy, -bulge) for cx, cy, bulge in course]
        outline = space.add_lwpolyline(mirrored, format="xyb", close=closed, dxfattribs={"extrusion": (0, 0, -1)})
    else:
        outline = space.add_polyline2d(course, format="xyb", close=closed)
    height = height if kind in ("light", "space") else 0
    ridge = "FFFFF" if pick.random() < 0.05 else None
    if pick.random() < 0.7:
        line = space.add_polyline3d(ridge_points(pick, corners, height, closed))
        line.set_xdata("kaava_tolmex", tag(pick.choice(["Harjaviiva"] * 6 + ["harjaviiva", "Pensas"]), "0"))
        ridge = line.dxf.handle
    outline.set_xdata("ORV_VR", building_record(pick, ridge))


def add_fence(space, pick: random.Random, x: float, y: float) -> None:
    points = [(x + pick.uniform(0, 30), y + pick.uniform(0, 30)) for _ in range(pick.choice([2, 3, 5]))]
    course = [(*point, pick.choice([0, 0, 0.5, -0.7])) for point in points]
    fence = space.add_lwpolyline(course, format="xyb", close=pick.random() < 0.3)
    kind = pick.choice(["Lauta-aita", "Kiviaita", "Pensas"])
    fence.set_xdata("kaava_tolmex", tag(kind, pick.choice(["0", "1.8", "-2", "abc", "0.00005", "2e0"])))


def main() -> int:
    if len(sys.argv) != 3:
        print("usage: make_buildings_drawing.py SEED OUT.dxf", file=sys.stderr)
        return 1
    pick = random.Random(int(sys.argv[1]))
    document = ezdxf.new("R2000")
    for application in ("ORV_VR", "kaava_tolmex"):
        document.appids.new(application)
    settings(document, pick)
    for i in range(80):
        add_building(document.modelspace(), pick, ORIGIN[0] + i % 10 * 80, ORIGIN[1] + i // 10 * 80)
    for i in range(30):
        add_fence(document.modelspace(), pick, ORIGIN[0] + i % 10 * 80, ORIGIN[1] - 400 + i // 10 * 80)
    document.saveas(sys.argv[2])
    return 0


if __name__ == "__main__":
    sys.exit(main())
