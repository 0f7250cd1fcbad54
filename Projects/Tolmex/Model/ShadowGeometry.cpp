#include "Tolmex/Model/ShadowGeometry.h"

#include <algorithm>
#include <cmath>

#include "OrvLib/ARX/Contains.h"

namespace OrvLib {
namespace {

Point3d sweep(double angleRad, double length) { return Line::fromAngle({}, angleRad, length).vector(); }

bool isFinite(const Quad& quad) {
  return std::all_of(quad.begin(), quad.end(),
                     [](const Point3d& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); });
}

bool closes(const PolyLine& points) { return !points.isEmpty() && points[points.size() - 1].isEqualTo(points[0]); }

/// Whether two points are one: what lies between them casts nothing. Edges of any length cast their shadow.
bool isSamePoint(const Point3d& a, const Point3d& b) { return a.distanceTo(b) < kDuplicateTolerance; }

/// Quadrilaterals between the edges of `foot` and those of `shadow`. With `isRing` the last point has an edge back to
/// the first one.
std::vector<Quad> quadsBetween(const PolyLine& foot, const PolyLine& shadow, bool isRing) {
  std::vector<Quad> quads;
  const std::size_t count = std::min(foot.size(), shadow.size());
  quads.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const bool isLast = i + 1 >= count;
    if (isLast && !isRing) break;
    const std::size_t next = isLast ? 0 : i + 1;
    const bool isJoint = isSamePoint(foot[i], foot[next]) && isSamePoint(shadow[i], shadow[next]);
    const Quad quad{foot[i], shadow[i], shadow[next], foot[next]};
    if (!isJoint && isFinite(quad)) quads.push_back(quad);
  }
  return quads;
}

/// An outline and its shadow before the walls' height is added.
struct Ridged {
  PolyLine foot;
  PolyLine shadow;
};

Ridged splitByRidge(const PolyLine& outline, const Point3dArray& ridge, const Point3d& ridgeSweep) {
  Ridged split{outline, outline};
  const std::size_t count = outline.size();
  if (count == 0) return split;
  split.foot.removeAt(count - 1);
  split.shadow.removeAt(count - 1);
  for (std::size_t i = 0; i < outline.segmentCount(); ++i) {
    const Line edge = outline.segment(i);
    for (const Point3d& point : ridge) {
      if (!isOnSegment(point, edge)) continue;
      const bool isClosingEdge = i + 2 == count;
      split.foot.insertAt(isClosingEdge ? split.foot.size() : i + 1, point);
      split.shadow.insertAt(isClosingEdge ? split.shadow.size() : i + 1, point + ridgeSweep);
    }
  }
  for (PolyLine* const ring : {&split.foot, &split.shadow}) {
    ring->removeDuplicates();
    ring->close();
  }
  return split;
}

}  // namespace

std::vector<Quad> buildingShadow(const ShadowCaster& building, double angleRad, double lengthPerFloor) {
  const Point3d wallSweep = sweep(angleRad, building.nrFloors * lengthPerFloor);
  const bool isRing = !building.firstSegmentIsArc && closes(building.outline);
  if (building.ridge.empty()) return quadsBetween(building.outline, building.outline.translated(wallSweep), isRing);
  const double roofFloors = building.floorHeight != 0 ? building.roofHeight / building.floorHeight : 0;
  Ridged split = splitByRidge(building.outline, building.ridge, sweep(angleRad, roofFloors * lengthPerFloor));
  split.shadow.translate(wallSweep);
  return quadsBetween(split.foot, split.shadow, isRing);
}

std::vector<Quad> fenceShadow(const PolyArc& fence, double height, double angleRad) {
  const PolyLine pieces = fence.approximated(kFenceStep);
  const bool isRing = !fence.firstSegmentIsArc() && closes(pieces);
  return quadsBetween(pieces, pieces.translated(sweep(angleRad, height)), isRing);
}

}  // namespace OrvLib
