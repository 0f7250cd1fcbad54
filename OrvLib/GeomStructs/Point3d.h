// Points and plan vectors; drawing units, metres in practice.
#pragma once

#include <cmath>

namespace OrvLib {

/// Two points are equal, and a point lies on a segment, within this distance (drawing units).
inline constexpr double kPointTolerance = 0.0001;
/// Consecutive points closer than this in both plan coordinates are duplicates (drawing units).
inline constexpr double kDuplicateTolerance = 1e-7;

struct Point3d {
  double x = 0;
  double y = 0;
  double z = 0;

  constexpr Point3d operator+(const Point3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
  constexpr Point3d operator-(const Point3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
  constexpr Point3d operator*(double factor) const { return {x * factor, y * factor, z * factor}; }
  constexpr bool operator==(const Point3d&) const = default;

  double distanceTo(const Point3d& p) const { return std::hypot(x - p.x, y - p.y, z - p.z); }
  /// Every coordinate differs by less than kPointTolerance.
  bool isEqualTo(const Point3d& p) const {
    return std::abs(x - p.x) < kPointTolerance && std::abs(y - p.y) < kPointTolerance &&
           std::abs(z - p.z) < kPointTolerance;
  }
};

}  // namespace OrvLib
