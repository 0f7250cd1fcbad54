// What lies in or on what; no host is needed for it.
#pragma once

#include "OrvLib/GeomEnts/Line.h"

namespace OrvLib {

/// Whether the point lies within `tolerance` of the segment, ends included. A segment of no length is a point.
bool isOnSegment(const Point3d& point, const Line& segment, double tolerance = kPointTolerance);

}  // namespace OrvLib
