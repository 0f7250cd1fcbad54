#include "Editor/PolylineDrafter.h"

#include <cmath>
#include <numbers>

namespace host::editor {
namespace {

constexpr double kPi = std::numbers::pi;

double directionOf(const AcGePoint2d& from, const AcGePoint2d& to) { return std::atan2(to.y - from.y, to.x - from.x); }

/// Into (-pi, pi].
double normalized(double angle) {
  angle = std::remainder(angle, 2 * kPi);
  return angle <= -kPi ? kPi : angle;
}

bool coincide(const AcGePoint2d& a, const AcGePoint2d& b) { return a.x == b.x && a.y == b.y; }

}  // namespace

std::optional<double> tangentBulge(const AcGePoint2d& from, double directionRad, const AcGePoint2d& to) {
  if (coincide(from, to)) return std::nullopt;
  // The chord turns from the tangent by half the included angle.
  const double half = normalized(directionOf(from, to) - directionRad);
  constexpr double kStraight = 1e-12;
  if (std::abs(half) < kStraight) return 0.0;
  if (kPi - std::abs(half) < 1e-9) return std::nullopt;
  return std::tan(half / 2);
}

std::optional<double> bulgeThrough(const AcGePoint2d& from, const AcGePoint2d& on, const AcGePoint2d& to) {
  if (coincide(from, on) || coincide(on, to) || coincide(from, to)) return std::nullopt;
  // The turn at the middle point is half the included angle.
  const double half = normalized(directionOf(on, to) - directionOf(from, on));
  if (kPi - std::abs(half) < 1e-9) return std::nullopt;
  return std::tan(half / 2);
}

std::optional<double> bulgeAbout(const AcGePoint2d& center, const AcGePoint2d& from, const AcGePoint2d& to,
                                 AcGePoint2d& end) {
  if (coincide(center, from) || coincide(center, to)) return std::nullopt;
  const double radius = std::hypot(from.x - center.x, from.y - center.y);
  const double toAngle = directionOf(center, to);
  double included = toAngle - directionOf(center, from);
  while (included <= 0) included += 2 * kPi;
  end = AcGePoint2d(center.x + radius * std::cos(toAngle), center.y + radius * std::sin(toAngle));
  if (2 * kPi - included < 1e-9) return std::nullopt;
  return std::tan(included / 4);
}

double endDirection(const AcGePoint2d& from, const AcGePoint2d& to, double bulge) {
  return directionOf(from, to) + 2 * std::atan(bulge);
}

}  // namespace host::editor
