#include "Curves/EntityCurves.h"

#include <algorithm>

#include "Database/ObjectAccess.h"
#include "Database/TagValues.h"

namespace host::curves {
namespace {

using database::DxfType;
using database::GeometryTags;
using database::isUsable;
using database::Slot;
using database::Tag;

constexpr double kTurn = 2 * std::numbers::pi;
constexpr double kRadiansPerDegree = std::numbers::pi / 180;
constexpr double kWholeEllipse = 1e-9;  // radians: an ellipse whose ends are nearer is whole

struct ArcTags {
  AcGePoint3d centre, major, normal{0, 0, 1};
  double size = 0;                        // radius, or minor axis to major
  double begin41 = 0, end42 = 0;          // radians, ellipses
  double begin50Deg = 0, end51Deg = 360;  // arcs

  explicit ArcTags(const Slot& slot) {
    GeometryTags tags(slot.tags());
    for (Tag tag; tags.next(tag);) {
      takePoint(tag, 10, centre) || takePoint(tag, 11, major) || takePoint(tag, 210, normal) ||
          takeReal(tag, 40, size) || takeReal(tag, 41, begin41) || takeReal(tag, 42, end42) ||
          takeReal(tag, 50, begin50Deg) || takeReal(tag, 51, end51Deg);
    }
  }
};

template <class Point>
void startPoint(const Tag& tag, std::vector<Point>& points) {
  points.emplace_back().x = coordinate(tag);
}

/// The second or third coordinate of the last point.
void setCoordinate(const Tag& tag, AcGePoint3d& p) { (tag.code < 30 ? p.y : p.z) = coordinate(tag); }
void setCoordinate(const Tag& tag, AcGeVector3d& v) {
  (tag.code < 20 ? v.x : tag.code < 30 ? v.y : v.z) = coordinate(tag);
}
void setCoordinate(const Tag& tag, Point2& p) {
  if (tag.code < 30) (tag.code < 20 ? p.x : p.y) = coordinate(tag);
}

}  // namespace

std::optional<EllipseArc<AcGePoint3d>> readArc(const Slot& entity) {
  const bool isEllipse = entity.type == DxfType::Ellipse;
  if (!isEllipse && entity.type != DxfType::Circle && entity.type != DxfType::Arc) return {};
  const ArcTags tags(entity);
  if (!isUsable(tags.centre) || !isUsable(tags.normal) || !std::isfinite(tags.size)) return {};
  EllipseArc<AcGePoint3d> arc;
  if (isEllipse) {
    if (!isUsable(tags.major) || !std::isfinite(tags.begin41 + tags.end42)) return {};
    arc.centre = tags.centre;
    arc.major = tags.major.asVector();
    arc.minor = tags.normal.asVector().normal().crossProduct(arc.major) * tags.size;
    arc.start = std::fmod(tags.begin41, kTurn);
    double end = std::fmod(tags.end42, kTurn);
    if (end <= arc.start + kWholeEllipse) end += kTurn;
    arc.sweep = end - arc.start;
    return arc;
  }
  if (!(tags.size > 0)) return {};
  const database::ObjectAxes axes(tags.normal.asVector());
  arc.centre = axes.toWorld(tags.centre.x, tags.centre.y, tags.centre.z);
  arc.major = axes.ax * tags.size;
  arc.minor = axes.ay * tags.size;
  if (entity.type == DxfType::Circle) return arc;
  if (!std::isfinite(tags.begin50Deg) || !std::isfinite(tags.end51Deg)) return {};
  arc.start = std::fmod(tags.begin50Deg, 360) * kRadiansPerDegree;
  double end = std::fmod(tags.end51Deg, 360) * kRadiansPerDegree;
  while (end <= arc.start) end += kTurn;
  while (end > arc.start + kTurn) end -= kTurn;
  arc.sweep = end - arc.start;
  return arc;
}

template <class Point>
bool takeSplineTag(const Tag& tag, const SplineCodes& codes, Spline<Point>& spline) {
  if (tag.code == codes.degree) {
    spline.degree = static_cast<int>(std::clamp<std::int64_t>(tag.integer(), 0, 1000));
    return true;
  }
  if (tag.code == codes.weight) {
    spline.weights.push_back(coordinate(tag));
    return true;
  }
  if (tag.code == codes.flags) {
    spline.isClosed = (tag.integer() & codes.closedFlags) != 0;
    return true;
  }
  switch (tag.code) {
    case 40:
      spline.knots.push_back(coordinate(tag));
      return true;
    case 10:
      startPoint(tag, spline.controls);
      return true;
    case 11:
      startPoint(tag, spline.fits);
      return true;
    case 20:
    case 30:
      if (!spline.controls.empty()) setCoordinate(tag, spline.controls.back());
      return true;
    case 21:
    case 31:
      if (!spline.fits.empty()) setCoordinate(tag, spline.fits.back());
      return true;
    case 12:
    case 22:
    case 32:
      setCoordinate(tag, spline.startTangent);
      return true;
    case 13:
    case 23:
    case 33:
      setCoordinate(tag, spline.endTangent);
      return true;
    default:
      return false;
  }
}

template bool takeSplineTag(const Tag&, const SplineCodes&, Spline<Point2>&);
template bool takeSplineTag(const Tag&, const SplineCodes&, Spline<AcGePoint3d>&);

std::optional<Spline<AcGePoint3d>> readSpline(const Slot& entity) {
  Spline<AcGePoint3d> spline;
  GeometryTags tags(entity.tags());
  for (Tag tag; tags.next(tag);) {
    if (tag.code == 100 && tag.trimmed() == "AcDbHelix") break;  // its own figures follow the curve's
    takeSplineTag(tag, kSplineEntity, spline);
  }
  if (!std::ranges::all_of(spline.controls, isUsable) || !std::ranges::all_of(spline.fits, isUsable)) return {};
  return spline;
}

}  // namespace host::curves
