// Geometry of entities in the drawing as the library's own values.
#pragma once

#include <optional>

#include "OrvLib/ARX/HostInterface.h"
#include "OrvLib/GeomStructs/PolyArc.h"

namespace OrvLib {

inline Point3d toPoint3d(const AcGePoint3d& p) { return {p.x, p.y, p.z}; }
inline AcGePoint3d toHost(const Point3d& p) { return {p.x, p.y, p.z}; }

/// Whether the open entity is a lightweight, 2D or 3D polyline, a region, a line or a point: what may bound a hatch and
/// be a building.
bool isBoundary(const AcDbEntity& entity);

/// The course of an open lightweight, 2D or 3D polyline in world coordinates, bulges as seen from above: those of a
/// polyline drawn on the underside of the plan (mirrored) change their sign. Frame points of smoothed polylines are
/// left out. A line gives its ends, a point itself; a region is opaque and gives no vertex. Nothing for other
/// classes, nor, as the command line then says, when the host does not give all vertices.
std::optional<PolyArc> readPolyArc(const AcDbEntity& entity);

}  // namespace OrvLib
