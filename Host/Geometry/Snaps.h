// Points of entities that a cursor is drawn to. Pure functions: paths in, points out.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Geometry/EntityPaths.h"

namespace host::geometry {

/// In the order in which they win.
enum class SnapKind : std::uint8_t { End, Middle, Centre, Intersection, Perpendicular, Nearest };

struct Snap {
  SnapKind kind = SnapKind::End;
  Point at;
  double distance = 0;  // from the cursor
};

constexpr std::uint32_t snapBit(SnapKind kind) { return 1U << static_cast<unsigned>(kind); }
constexpr std::uint32_t kUsualSnaps =
    snapBit(SnapKind::End) | snapBit(SnapKind::Middle) | snapBit(SnapKind::Centre) | snapBit(SnapKind::Intersection);

/// A connected line. Of a curve the points are its chords': they have no ends and middles but those of the curve.
struct SnapLine {
  std::vector<Point> points;
  bool closed = false;
  bool isCurve = false;
  std::optional<Point> centre;  // of a circle or its arc
  std::vector<Point> ends;      // of the pieces of a line with arcs; empty: every point is one
  std::vector<Point> middles;   // of the same; empty: the middles between the points
};

/// The lines of an entity of which there are snaps: lines, polylines, arcs, circles, and points; of references their
/// content and their place. None of fills. `deviation` as in Curves/Curve.h.
std::vector<SnapLine> snapLines(const database::Slot& entity, double deviation);

/// Snaps within `reach` of the cursor, best first: kinds in their order, but one that is `advantage` nearer than
/// another comes before it. `base` is where perpendiculars start.
std::vector<Snap> findSnaps(const std::vector<SnapLine>& lines, Point cursor, double reach, double advantage,
                            std::uint32_t kinds, std::optional<Point> base = {});

/// The point in the direction from the base, of 0, 90, 180 or 270 degrees, that comes nearest to the cursor.
Point orthoPoint(Point base, Point cursor);

/// Where two segments meet; nothing for parallel ones and where they do not reach.
std::optional<Point> intersection(Point a, Point b, Point c, Point d);

}  // namespace host::geometry
