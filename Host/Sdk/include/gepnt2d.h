// Plane points and vectors.
#pragma once

#include <cmath>

#include "gegbl.h"

class AcGeVector2d {
 public:
  double x = 0;
  double y = 0;
  constexpr AcGeVector2d() = default;
  constexpr AcGeVector2d(double xIn, double yIn) : x(xIn), y(yIn) {}
  constexpr AcGeVector2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
  constexpr AcGeVector2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
  constexpr AcGeVector2d operator*(double f) const { return {x * f, y * f}; }
  constexpr double dotProduct(const AcGeVector2d& v) const { return x * v.x + y * v.y; }
  constexpr double crossProduct(const AcGeVector2d& v) const { return x * v.y - y * v.x; }
  double length() const { return std::hypot(x, y); }
  /// Radians, counter-clockwise from +X, 0 <= angle < 2 pi.
  double angle() const {
    const double a = std::atan2(y, x);
    return a < 0 ? a + 6.283185307179586 : a;
  }
};

class AcGePoint2d {
 public:
  double x = 0;
  double y = 0;
  constexpr AcGePoint2d() = default;
  constexpr AcGePoint2d(double xIn, double yIn) : x(xIn), y(yIn) {}
  constexpr double operator[](unsigned i) const { return i == 0 ? x : y; }
  constexpr AcGePoint2d operator+(const AcGeVector2d& v) const { return {x + v.x, y + v.y}; }
  constexpr AcGePoint2d operator-(const AcGeVector2d& v) const { return {x - v.x, y - v.y}; }
  constexpr AcGeVector2d operator-(const AcGePoint2d& p) const { return {x - p.x, y - p.y}; }
  double distanceTo(const AcGePoint2d& p) const { return std::hypot(x - p.x, y - p.y); }
  bool isEqualTo(const AcGePoint2d& p, const AcGeTol& tol = AcGeContext::gTol) const {
    return distanceTo(p) <= tol.equalPoint();
  }
  constexpr bool operator==(const AcGePoint2d& p) const { return x == p.x && y == p.y; }
  static const AcGePoint2d kOrigin;
};
inline const AcGePoint2d AcGePoint2d::kOrigin{};
