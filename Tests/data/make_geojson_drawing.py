#!/usr/bin/env python3
"""Turns the polygons of a GeoJSON file into a drawing of closed polylines.

    python3 make_geojson_drawing.py IN.geojson OUT.dxf

Buildings (properties k = "building", or a property named "building") come on the layer "building", other polygons on a layer
named by their property k, or "other". Coordinates are taken as they are; every ring, holes included, becomes its own
polyline. Lines become open polylines, points are left out.
"""

from __future__ import annotations

import json
import math
import re
import sys
from typing import Iterator

from dxf_writer import DrawingWriter, Layer

BUILDING = "building"
Ring = list[tuple[float, float]]


def layer_of(properties: dict) -> str:
    kind = BUILDING if properties.get(BUILDING) else properties.get("k") or "other"
    return re.sub(r'[<>/\\":;?*|,=`\x00-\x1f]', "_", str(kind)) or "other"


def rings_of(geometry: dict | None) -> Iterator[tuple[Ring, bool]]:
    """Every ring or line of a geometry with whether it is closed."""
    kind = geometry.get("type") if geometry else None
    coordinates = geometry.get("coordinates", []) if geometry else []
    if kind == "GeometryCollection":
        for part in geometry.get("geometries", []):
            yield from rings_of(part)
    polygons = {"Polygon": [coordinates], "MultiPolygon": coordinates}.get(kind, [])
    lines = {"LineString": [coordinates], "MultiLineString": coordinates}.get(kind, [])
    for polygon in polygons:
        for ring in polygon:
            points = [(float(p[0]), float(p[1])) for p in ring]
            if len(points) > 1 and points[0] == points[-1]:
                points.pop()
            if len(points) > 2:
                yield points, True
    for line in lines:
        if len(line) > 1:
            yield [(float(p[0]), float(p[1])) for p in line], False


def convert(source: str, target: str) -> int:
    with open(source, encoding="utf-8") as stream:
        collection = json.load(stream)
    shapes = [
        (layer_of(feature.get("properties") or {}), points, closed)
        for feature in collection.get("features", [])
        for points, closed in rings_of(feature.get("geometry"))
        if all(math.isfinite(value) for point in points for value in point)
    ]
    if not shapes:
        raise ValueError(f"{source}: no polygons or lines")
    names = sorted({layer for layer, _, _ in shapes})
    layers = [Layer(name, 7 if name == BUILDING else 1 + i % 6, 50 if name == BUILDING else -3) for i, name in enumerate(names)]
    xs = [x for _, points, _ in shapes for x, _ in points]
    ys = [y for _, points, _ in shapes for _, y in points]
    with open(target, "w", encoding="utf-8", newline="\n") as stream:
        with DrawingWriter(stream, layers, (min(xs), min(ys), max(xs), max(ys))) as drawing:
            for layer, points, closed in shapes:
                drawing.polyline(layer, points, closed)
    return len(shapes)


def main() -> int:
    if len(sys.argv) != 3:
        print("usage: make_geojson_drawing.py IN.geojson OUT.dxf", file=sys.stderr)
        return 1
    try:
        print(f"{sys.argv[2]}: {convert(sys.argv[1], sys.argv[2])} polylines")
    except (OSError, ValueError, TypeError, KeyError) as error:
        print(f"{sys.argv[1]}: {error}", file=sys.stderr)
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main())
