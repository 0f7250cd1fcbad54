#!/usr/bin/env python3
"""Works out again which shadows a drawing should have, from its buildings, fences and settings, and compares them with the
hatches that are there. Shares no code with the program (ezdxf, Debian package python3-ezdxf).

    python3 audit_shadows.py DRAWING.dxf...

The drawing must have been saved after an update of its shadows. Prints `name: B buildings, F fences, H hatches, N errors` for
each drawing, each error on standard error, and ends with status 1 when there is any. Looked at are every hatch's polygon,
pattern, angle and scale; the groups, their names, descriptions and members; the hidden boundaries; the roof fills; and that
shadows lie below roofs, roofs below buildings and these below ridge lines.
"""

from __future__ import annotations

import collections
import dataclasses
import math
import pathlib
import sys
from typing import Iterator, Optional

import ezdxf
from ezdxf.document import Drawing
from ezdxf.entities import DXFEntity

Point = tuple[float, float, float]
Quad = list[Point]
Shape = tuple[tuple[float, float], ...]

EQUAL = 1e-4
BUILDING_STEP, FENCE_STEP = 5.0, 0.5
FENCES = ("Lauta-aita", "Kiviaita")
ORDER = ("tmv_varjo", "tma_katto_varjo", "tma_katto", "tma_katto_aurinko", "tmv_katto", "tmv_rak", "tmv_harjav")


@dataclasses.dataclass
class Settings:
    angle: float = math.pi / 4
    color: int = 7
    length: float = 3.0
    scale: float = 0.15
    pattern: str = "LINE"


def settings_of(document: Drawing) -> Settings:
    settings = Settings()
    own = document.rootdict.get("orv_tolmex")
    record = own.get("shadowSettings") if own is not None else None
    if record is None:
        return settings
    values = [(tag.code, tag.value) for tag in record.tags]
    pairs = {key: value for (code, key), (_, value) in zip(values, values[1:]) if code < 10}
    settings.angle = pairs.get("SHADOWANGLERAD", settings.angle)
    settings.color = pairs.get("SHADOWCOLOR", settings.color)
    settings.length = pairs.get("SHADOWLENGTHPERFLOOR", settings.length)
    settings.scale = pairs.get("SHADOWSCALE", settings.scale)
    if "SHADOWHATCHTYPE" in pairs:
        settings.pattern = "DOTS" if pairs["SHADOWHATCHTYPE"] == 20 else "LINE"
    return settings


def value_of(entity: DXFEntity, application: str, key: str) -> Optional[str]:
    if not entity.has_xdata(application):
        return None
    tags = list(entity.get_xdata(application))
    for tag, following in zip(tags, tags[1:]):
        if tag.code == 1000 and tag.value == key:
            return str(following.value)
    return None


def number(text: Optional[str]) -> float:
    try:
        return float(text or 0)
    except ValueError:
        return 0.0


# ---- courses --------------------------------------------------------------------------------------------------------


def course_of(entity: DXFEntity) -> tuple[list[tuple[Point, float]], bool]:
    """Vertices with bulges as seen from above, and whether the course is closed."""
    if entity.dxftype() == "LWPOLYLINE":
        raw = [((x, y, entity.dxf.elevation), bulge) for x, y, bulge in entity.get_points("xyb")]
        closed = entity.closed
    else:
        raw = [(tuple(vertex.dxf.location), vertex.dxf.get("bulge", 0)) for vertex in entity.vertices]
        closed = entity.is_closed
        if entity.is_3d_polyline:
            return raw, closed
    ocs = entity.ocs()
    sign = -1 if entity.dxf.extrusion[2] < 0 else 1
    return [(tuple(ocs.to_wcs(point)), sign * bulge) for point, bulge in raw], closed


def pieces(start: Point, end: Point, bulge: float, step_length: float) -> list[Point]:
    if abs(bulge) < EQUAL:
        return [start, end]
    first, last = (start, end) if bulge > 0 else (end, start)  # counter-clockwise
    angle = 4 * math.atan(abs(bulge))
    chord = math.dist(first[:2], last[:2])
    radius = chord / 2 / math.sin(angle / 2)
    if not chord:
        return [start, end]
    # The centre lies on the chord's normal, to its left while the arc is less than a half circle.
    away = radius * math.cos(angle / 2)
    nx, ny = -(last[1] - first[1]) / chord, (last[0] - first[0]) / chord
    cx, cy = (first[0] + last[0]) / 2 + nx * away, (first[1] + last[1]) / 2 + ny * away
    begin = math.atan2(first[1] - cy, first[0] - cx)
    step, points, turn = step_length / radius, [first], step_length / radius
    while angle - turn > step:
        points.append(
            (
                cx + radius * math.cos(begin + turn),
                cy + radius * math.sin(begin + turn),
                first[2] + (last[2] - first[2]) * turn / angle,
            )
        )
        turn += step
    points.append(last)
    return points if bulge > 0 else points[::-1]


def outline_of(entity: DXFEntity, step: float) -> tuple[list[Point], bool]:
    """The course as straight pieces, joints twice, and whether its first segment is an arc."""
    vertices, closed = course_of(entity)
    outline: list[Point] = []
    ends = vertices[1:] + (vertices[:1] if closed else [])
    for (start, bulge), (end, _) in zip(vertices, ends):
        outline += pieces(start, end, bulge, step)
    return outline, bool(vertices) and abs(vertices[0][1]) >= EQUAL


def same(a: Point, b: Point) -> bool:
    return all(abs(x - y) < EQUAL for x, y in zip(a, b))


def moved(point: Point, angle: float, length: float) -> Point:
    return (point[0] + length * math.cos(angle), point[1] + length * math.sin(angle), point[2])


def lies_on(point: Point, start: Point, end: Point) -> bool:
    vector = [b - a for a, b in zip(start, end)]
    square = sum(v * v for v in vector)
    along = sum(v * (p - a) for v, p, a in zip(vector, point, start)) / square if square else 0.0
    along = min(max(along, 0.0), 1.0)
    return math.dist(point, [a + along * v for a, v in zip(start, vector)]) <= EQUAL


# ---- shadows --------------------------------------------------------------------------------------------------------


def quads_between(foot: list[Point], shadow: list[Point], closes: bool) -> list[Quad]:
    count = min(len(foot), len(shadow))
    quads = [[foot[i], shadow[i], shadow[i + 1], foot[i + 1]] for i in range(count - 1)]
    if count and closes:
        quads.append([foot[count - 1], shadow[count - 1], shadow[0], foot[0]])
    return quads


def tidy(points: list[Point]) -> list[Point]:
    kept: list[Point] = []
    for point in points:
        if not kept or abs(point[0] - kept[-1][0]) >= 1e-7 or abs(point[1] - kept[-1][1]) >= 1e-7:
            kept.append(point)
    return kept + kept[:1] if kept and not same(kept[0], kept[-1]) else kept


def ridge_of(document: Drawing, building: DXFEntity) -> list[Point]:
    handle = value_of(building, "ORV_VR", "tolm_roofline_handle")
    ridge = document.entitydb.get(handle) if handle else None
    if ridge is None or not ridge.is_alive or value_of(ridge, "kaava_tolmex", "ENTITYTYPE") != "Harjaviiva":
        return []
    return [point for point, _ in course_of(ridge)[0]]


def building_quads(document: Drawing, building: DXFEntity, settings: Settings) -> list[Quad]:
    outline, first_is_arc = outline_of(building, BUILDING_STEP)
    values = {key: number(value_of(building, "ORV_VR", key)) for key in ("nrfloors", "floorheight", "roofheight")}
    closes = bool(outline) and same(outline[0], outline[-1]) and not first_is_arc
    foot, shadow = list(outline), list(outline)
    ridge = ridge_of(document, building)
    if ridge:
        foot.pop()
        shadow.pop()
        rise = values["roofheight"] / values["floorheight"] * settings.length if values["floorheight"] else 0.0
        for i in range(len(outline) if course_of(building)[1] else len(outline) - 1):
            start, end = outline[i], outline[(i + 1) % len(outline)]
            for point in ridge:
                if lies_on(point, start, end):
                    at = len(foot) if i == len(outline) - 2 else i + 1
                    foot.insert(at, point)
                    shadow.insert(at, moved(point, settings.angle, rise))
        foot, shadow = tidy(foot), tidy(shadow)
    walls = values["nrfloors"] * settings.length
    return quads_between(foot, [moved(point, settings.angle, walls) for point in shadow], closes)


def fence_quads(fence: DXFEntity, settings: Settings) -> list[Quad]:
    height = number(value_of(fence, "kaava_tolmex", "HEIGHT"))
    if abs(height) < EQUAL:
        return []
    base, first_is_arc = outline_of(fence, FENCE_STEP)
    closes = bool(base) and same(base[0], base[-1]) and not first_is_arc
    return quads_between(base, [moved(point, settings.angle, height) for point in base], closes)


def area(points: list) -> float:
    ox, oy = points[0][:2]
    twice = sum(
        (a[0] - ox) * (b[1] - oy) - (b[0] - ox) * (a[1] - oy) for a, b in zip(points, points[1:] + points[:1])
    )
    return abs(twice) / 2


def shape_of(points: list) -> Shape:
    """The corners to the millimetre, each once: hatches leave out those that repeat."""
    return tuple(sorted({(round(point[0], 3) + 0.0, round(point[1], 3) + 0.0) for point in points}))


def crosses(a: Point, b: Point, c: Point, d: Point) -> bool:
    def side(p: Point, q: Point, r: Point) -> float:
        twice_area = (q[0] - p[0]) * (r[1] - p[1]) - (q[1] - p[1]) * (r[0] - p[0])
        return twice_area if abs(twice_area) > EQUAL else 0.0  # ends that touch do not cross

    return side(a, b, c) * side(a, b, d) < 0 and side(c, d, a) * side(c, d, b) < 0


def shapes_of(quads: list[Quad]) -> collections.Counter:
    """Those that can be hatched: with an area and not crossing themselves, as where a roof casts less than nothing."""
    return collections.Counter(
        shape_of(q)
        for q in quads
        if area(q) > 1e-6 and not crosses(q[0], q[1], q[2], q[3]) and not crosses(q[1], q[2], q[3], q[0])
    )


# ---- what is there --------------------------------------------------------------------------------------------------


def is_building(entity: DXFEntity) -> bool:
    keys = ("baseheight", "floorheight", "nrfloors", "eavesWidth", "roofheight", "tolm_bld_shadowcolor", "tolm_bld_suncolor")
    kind = value_of(entity, "ORV_VR", "_ENTITYTYPE") or ""
    return kind.lower() == "building" and all(value_of(entity, "ORV_VR", key) is not None for key in keys)


def polygon_of(hatch: DXFEntity) -> list:
    path = hatch.paths[0]
    if hasattr(path, "vertices"):
        return [vertex[:2] for vertex in path.vertices]
    return [tuple(edge.start) for edge in path.edges]


def hatch_errors(hatches: list[DXFEntity], settings: Settings) -> Iterator[str]:
    degrees = math.degrees(settings.angle)
    for hatch in hatches:
        where = f"HATCH {hatch.dxf.handle}"
        if hatch.dxf.pattern_name != settings.pattern:
            yield f"{where}: pattern {hatch.dxf.pattern_name}, expected {settings.pattern}"
        if abs(math.remainder(hatch.dxf.pattern_angle - degrees, 360)) > 1e-6:
            yield f"{where}: angle {hatch.dxf.pattern_angle}, expected {degrees:g}"
        if abs(hatch.dxf.pattern_scale - settings.scale) > 1e-9:
            yield f"{where}: scale {hatch.dxf.pattern_scale}, expected {settings.scale:g}"
        if hatch.dxf.associative or len(hatch.paths) != 1 or hatch.dxf.color != 256:
            yield f"{where}: associative, coloured or not of one loop"


def group_errors(document: Drawing, hatches: list[DXFEntity], expected: list[tuple[str, collections.Counter]]) -> Iterator[str]:
    """Every building and fence has one group of just its hatches."""
    by_handle = {hatch.dxf.handle: hatch for hatch in hatches}
    left = collections.Counter((kind, frozenset(shapes.items())) for kind, shapes in expected if shapes)
    grouped: collections.Counter = collections.Counter()
    numbers = []
    for name, group in document.groups:
        if not name.startswith("Varjo"):
            continue
        numbers.append(int(name[len("Varjo") :]))
        handles = [entity.dxf.handle for entity in group]
        grouped.update(handles)
        if any(handle not in by_handle for handle in handles):
            yield f"group {name} holds something that is no shadow"
            continue
        if not handles:
            continue
        shapes = collections.Counter(shape_of(polygon_of(by_handle[handle])) for handle in handles)
        key = (group.dxf.description, frozenset(shapes.items()))
        if left[key] == 0:
            yield f"group {name} ({group.dxf.description!r}) is the shadow of nothing in the drawing"
        left[key] -= 1
    for (kind, shapes), count in left.items():
        if count > 0:
            yield f"{count} missing group(s) {kind!r} of {len(shapes)} hatches"
    if sorted(numbers) != list(range(len(numbers))):
        yield "the groups' numbers have gaps"
    for handle in by_handle:
        if grouped[handle] != 1:
            yield f"HATCH {handle} is in {grouped[handle]} groups"


def boundary_errors(document: Drawing, quad_count: int) -> Iterator[str]:
    boundaries = [e for e in document.modelspace() if e.dxf.layer == "tmv_varjo_reunaviiva"]
    if len(boundaries) < quad_count:
        yield f"{len(boundaries)} boundaries of buildings' shadows, expected at least {quad_count}"
    for entity in boundaries:
        if entity.dxftype() != "POLYLINE" or not entity.is_3d_polyline or not entity.is_closed or entity.dxf.color != 34:
            yield f"{entity.dxftype()} {entity.dxf.handle} is no boundary of a shadow"
    if boundaries and document.layers.get("tmv_varjo_reunaviiva").is_on():
        yield "the boundaries' layer is on"
    left = [e for e in document.modelspace() if e.dxf.layer == "POLY"]
    if left:
        yield f"{len(left)} boundaries of fences' shadows are left"


def order_errors(document: Drawing) -> Iterator[str]:
    sort_handles = dict(document.modelspace().get_redraw_order())
    spans: dict[str, tuple[int, int]] = {}
    for entity in document.modelspace():
        if entity.dxf.layer in ORDER:
            at = int(sort_handles.get(entity.dxf.handle, entity.dxf.handle), 16)
            low, high = spans.get(entity.dxf.layer, (at, at))
            spans[entity.dxf.layer] = (min(low, at), max(high, at))
    present = [layer for layer in ORDER if layer in spans]
    for lower, upper in zip(present, present[1:]):
        if spans[lower][1] >= spans[upper][0]:
            yield f"something on {lower} is drawn over something on {upper}"


def audit(path: pathlib.Path) -> int:
    document = ezdxf.readfile(path)
    settings = settings_of(document)
    polylines = list(document.modelspace().query("LWPOLYLINE POLYLINE"))
    buildings = [entity for entity in polylines if is_building(entity)]
    fences = [entity for entity in polylines if value_of(entity, "kaava_tolmex", "ENTITYTYPE") in FENCES]
    hatches = [e for e in document.modelspace().query("HATCH") if e.dxf.layer == "tmv_varjo"]

    walls = [building_quads(document, entity, settings) for entity in buildings]
    expected = [("Rakennuksien varjon hatch", shapes_of(quads)) for quads in walls]
    expected += [("Aidan varjon hatch", shapes_of(fence_quads(entity, settings))) for entity in fences]
    wanted = sum((shapes for _, shapes in expected), collections.Counter())
    found = collections.Counter(shape_of(polygon_of(hatch)) for hatch in hatches)
    errors = [f"missing shadow {shape}" for shape in (wanted - found)]
    errors += [f"shadow of nothing {shape}" for shape in (found - wanted)]
    errors += hatch_errors(hatches, settings)
    errors += group_errors(document, hatches, expected)
    edges = sum(1 for quads in walls for q in quads if not (same(q[0], q[3]) and same(q[1], q[2])))
    errors += boundary_errors(document, edges)
    roofs = [e for e in document.modelspace().query("HATCH") if e.dxf.layer == "tma_katto"]
    rings = [outline_of(entity, BUILDING_STEP)[0] for entity in buildings]
    fillable = sum(1 for ring in rings if ring and same(ring[0], ring[-1]) and area(ring) > 1e-6)
    if not 0.99 * fillable <= len(roofs) <= fillable:  # footprints that cross themselves are not filled
        errors.append(f"{len(roofs)} roof fills for {fillable} buildings")
    if any(roof.dxf.pattern_name != "SOLID" or roof.dxf.color != 256 for roof in roofs):
        errors.append("a roof fill is not solid by layer")
    errors += order_errors(document)
    for error in errors:
        print(f"{path.name}: {error}", file=sys.stderr)
    print(f"{path.name}: {len(buildings)} buildings, {len(fences)} fences, {len(hatches)} hatches, {len(errors)} errors")
    return len(errors)


def main() -> int:
    if len(sys.argv) < 2:
        print("usage: audit_shadows.py DRAWING.dxf...", file=sys.stderr)
        return 2
    return 1 if sum([audit(pathlib.Path(name)) for name in sys.argv[1:]]) else 0


if __name__ == "__main__":
    sys.exit(main())
