// Where shadows fall: quadrilaterals that walls and fences sweep over level ground. Angles are plan directions in
// radians, counter-clockwise from +X; lengths are drawing units, and a negative one goes the other way.
#pragma once

#include <array>
#include <vector>

#include "OrvLib/GeomStructs/PolyArc.h"
#include "OrvLib/GeomStructs/PolyLine.h"

namespace OrvLib {

/// Foot, its shadow, the next foot's shadow, the next foot.
using Quad = std::array<Point3d, 4>;

/// What of a building casts its shadow.
struct ShadowCaster {
  PolyLine outline;  // segment by segment, joints twice, as PolyArc::approximated gives it
  bool firstSegmentIsArc = false;
  double nrFloors = 0;
  double floorHeight = 0;
  double roofHeight = 0;  // of the ridge above the eaves
  Point3dArray ridge;     // vertices of the ridge line; empty: flat roof
};

/// The shadow of a building whose floors cast `lengthPerFloor` each, in edge order. Edges across the shadow's direction
/// give full quadrilaterals, edges along it ones without area. Joints of the outline cast nothing, nor does anything
/// that is not finite.
///
/// A ridge vertex on an edge of the outline (in space, kPointTolerance) splits the edge, and its shadow reaches further
/// by as many floors as the roof is floor heights high; a floor height of 0 gives it no further reach. The split is put
/// behind the edge's place in the outline as it was before any split: where several ridge ends meet edges before the
/// closing one, later splits land before the end of the edge they belong to.
std::vector<Quad> buildingShadow(const ShadowCaster& building, double angleRad, double lengthPerFloor);

/// The shadow of a fence: as long as the fence is high.
std::vector<Quad> fenceShadow(const PolyArc& fence, double height, double angleRad);

/// Arc length of the straight pieces that stand for a fence's arcs.
inline constexpr double kFenceStep = 0.5;

}  // namespace OrvLib
