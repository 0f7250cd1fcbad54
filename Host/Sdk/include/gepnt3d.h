// Space points, vectors and scale factors.
#pragma once

#include <cmath>

#include "gegbl.h"
#include "gepnt2d.h"

class AcGeVector3d {
 public:
  double x = 0;
  double y = 0;
  double z = 0;
  constexpr AcGeVector3d() = default;
  constexpr AcGeVector3d(double xIn, double yIn, double zIn) : x(xIn), y(yIn), z(zIn) {}
  double operator[](unsigned i) const { return i == 0 ? x : i == 1 ? y : z; }
  constexpr AcGeVector3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
  constexpr AcGeVector3d operator-(const AcGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
  constexpr AcGeVector3d operator-() const { return {-x, -y, -z}; }
  constexpr AcGeVector3d operator*(double f) const { return {x * f, y * f, z * f}; }
  constexpr double dotProduct(const AcGeVector3d& v) const { return x * v.x + y * v.y + z * v.z; }
  constexpr AcGeVector3d crossProduct(const AcGeVector3d& v) const {
    return {y * v.z - z * v.y, z * v.x - x * v.z, x * v.y - y * v.x};
  }
  double length() const { return std::sqrt(dotProduct(*this)); }
  /// The zero vector stays zero.
  AcGeVector3d normal() const {
    const double l = length();
    return l > 0 ? *this * (1 / l) : *this;
  }
  constexpr bool operator==(const AcGeVector3d& v) const { return x == v.x && y == v.y && z == v.z; }
  static const AcGeVector3d kIdentity;
  static const AcGeVector3d kXAxis;
  static const AcGeVector3d kYAxis;
  static const AcGeVector3d kZAxis;
};
inline const AcGeVector3d AcGeVector3d::kIdentity{0, 0, 0};
inline const AcGeVector3d AcGeVector3d::kXAxis{1, 0, 0};
inline const AcGeVector3d AcGeVector3d::kYAxis{0, 1, 0};
inline const AcGeVector3d AcGeVector3d::kZAxis{0, 0, 1};

class AcGePoint3d {
 public:
  double x = 0;
  double y = 0;
  double z = 0;
  constexpr AcGePoint3d() = default;
  constexpr AcGePoint3d(double xIn, double yIn, double zIn) : x(xIn), y(yIn), z(zIn) {}
  double operator[](unsigned i) const { return i == 0 ? x : i == 1 ? y : z; }
  double& operator[](unsigned i) { return i == 0 ? x : i == 1 ? y : z; }
  constexpr AcGePoint3d operator+(const AcGeVector3d& v) const { return {x + v.x, y + v.y, z + v.z}; }
  constexpr AcGePoint3d operator-(const AcGeVector3d& v) const { return {x - v.x, y - v.y, z - v.z}; }
  constexpr AcGeVector3d operator-(const AcGePoint3d& p) const { return {x - p.x, y - p.y, z - p.z}; }
  constexpr AcGeVector3d asVector() const { return {x, y, z}; }
  double distanceTo(const AcGePoint3d& p) const { return (*this - p).length(); }
  bool isEqualTo(const AcGePoint3d& p, const AcGeTol& tol = AcGeContext::gTol) const {
    return distanceTo(p) <= tol.equalPoint();
  }
  constexpr bool operator==(const AcGePoint3d& p) const { return x == p.x && y == p.y && z == p.z; }
  AcGePoint3d& set(double xIn, double yIn, double zIn) {
    x = xIn;
    y = yIn;
    z = zIn;
    return *this;
  }
  static const AcGePoint3d kOrigin;
};
inline const AcGePoint3d AcGePoint3d::kOrigin{};

class AcGeScale3d {
 public:
  double sx = 1;
  double sy = 1;
  double sz = 1;
  constexpr AcGeScale3d() = default;
  constexpr explicit AcGeScale3d(double uniform) : sx(uniform), sy(uniform), sz(uniform) {}
  constexpr AcGeScale3d(double x, double y, double z) : sx(x), sy(y), sz(z) {}
};
