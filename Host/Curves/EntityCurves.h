// The curves that entities' records hold, read once for pictures, picks and hatch boundaries.
#pragma once

#include <cstdint>
#include <optional>

#include "Curves/Curve.h"
#include "Database/Slot.h"

namespace host::curves {

/// A CIRCLE, ARC or ELLIPSE in world coordinates. Nothing for other kinds, a radius that is not positive and numbers
/// that are not finite.
std::optional<EllipseArc<AcGePoint3d>> readArc(const database::Slot& entity);

/// A SPLINE (or HELIX) in world coordinates. Nothing when a point is not finite.
std::optional<Spline<AcGePoint3d>> readSpline(const database::Slot& entity);

/// The codes by which entities and edges of hatches tell the parts of a spline apart. Knots are tags 40, control points
/// 10 20 30, fit points 11 21 31 and tangents 12 22 32 and 13 23 33 in both.
struct SplineCodes {
  int degree, weight, flags;
  std::int64_t closedFlags;  // closed when it has any of these
};
inline constexpr SplineCodes kSplineEntity{71, 41, 70, 3};  // closed 1, periodic 2
inline constexpr SplineCodes kSplineEdge{94, 42, 74, 1};    // tag 74 says whether it is periodic

/// Takes the tag when it tells something of the spline. What is no number becomes NaN, for `flatten` to judge.
template <class Point>
bool takeSplineTag(const database::Tag& tag, const SplineCodes& codes, Spline<Point>& spline);

}  // namespace host::curves
