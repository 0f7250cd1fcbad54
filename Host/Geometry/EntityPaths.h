// The drawn shape of entities as plain paths, read straight from their records: what pictures paint and what picks,
// windows and extents are tested against.
#pragma once

#include <cstdint>
#include <vector>

#include "Curves/Plane.h"
#include "Database/DrawingDatabase.h"

namespace host::geometry {

using curves::Box;  // in plan
using Point = curves::Point2;

/// One connected piece of an entity in plan (world X, Y).
struct Path {
  std::vector<Point> points;
  bool closed = false;
  bool filled = false;     // inside belongs to the entity (solids, solid hatches, text boxes)
  std::uint32_t area = 0;  // filled pieces of one number bound an area together, by the even-odd rule
};

/// The pieces of one entity: curves flattened so that no point is off by more than `deviation` drawing units; text as
/// its box; hatches as their loops; references through their blocks (nested, arrayed, mirrored; at most kDeepestNesting
/// deep, cycles cut). Coordinates that are not finite leave the piece out.
std::vector<Path> entityPaths(const database::Slot& entity, double deviation);
/// Box around those pieces; empty for an entity without a drawn shape. Infinite lines give their base point only.
Box entityExtents(const database::Slot& entity);
/// Box around the living, visible entities of a block.
Box blockExtents(const database::DrawingDatabase& db, const database::BlockContents& block);

/// Distance from a point to the nearest piece, 0 inside a filled one; infinity for an entity without a shape. Curves
/// are looked at as closely as `within` (the pick aperture) asks.
double distanceTo(const database::Slot& entity, Point p, double within);
enum class Window { Inside, Crossing };
/// True when the entity lies wholly inside the polygon, or (Crossing) also when it touches it. Two points are opposite
/// corners of a rectangle.
bool isInWindow(const database::Slot& entity, const std::vector<Point>& polygon, Window kind);
/// True when the entity crosses an open line of points (a fence).
bool crossesFence(const database::Slot& entity, const std::vector<Point>& fence);

}  // namespace host::geometry
