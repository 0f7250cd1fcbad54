// DIST and AREA.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "Curves/Bulges.h"
#include "Curves/EntityCurves.h"
#include "Editor/Commands/HostCommands.h"
#include "Editor/Session/Session.h"
#include "Geometry/EntityPaths.h"
#include "dbobjptr.h"
#include "dbpl.h"

namespace host::editor {
namespace {

using curves::Point2;
using database::DxfType;
using database::Slot;

double degrees(double radians) {
  const double angle = radians * 180 / std::numbers::pi;
  return angle < 0 ? angle + 360 : angle;
}

// ---- DIST -----------------------------------------------------------------------------------------------------------

void distanceBetween(Prompter& prompter) {
  Limits limits;
  limits.bits = RSG_NONULL;
  const auto first = prompter.point(L"Specify first point: ", limits);
  if (!first) return;
  limits.base = first.value;
  const auto second = prompter.point(L"Specify second point: ", limits);
  if (!second) return;
  const AcGeVector3d way = second.value - first.value;
  const double flat = std::hypot(way.x, way.y);
  prompter.line(L"Distance = " + shownNumber(way.length()) + L",  Angle in XY Plane = " +
                shownNumber(flat > 0 ? degrees(std::atan2(way.y, way.x)) : 0) + L",  Angle from XY Plane = " +
                shownNumber(way.length() > 0 ? degrees(std::atan2(way.z, flat)) : 0));
  prompter.line(L"Delta X = " + shownNumber(way.x) + L",  Delta Y = " + shownNumber(way.y) + L",   Delta Z = " +
                shownNumber(way.z));
}

// ---- AREA -----------------------------------------------------------------------------------------------------------

/// What a shape encloses, closed by a straight line where it is open; and how long it is itself.
struct Measure {
  double area = 0, length = 0;
  bool isClosed = true;
};

Measure measureOf(const AcDbPolyline& polyline) {
  curves::Loop loop;
  const unsigned count = polyline.numVerts();
  for (unsigned i = 0; i < count; ++i) {
    AcGePoint2d point;
    double bulge = 0;
    polyline.getPointAt(i, point);
    polyline.getBulgeAt(i, bulge);
    loop.push_back({point.x, point.y, bulge});
  }
  Measure measure;
  measure.isClosed = polyline.isClosed();
  if (loop.empty()) return measure;
  if (!measure.isClosed) loop.back().bulge = 0;
  const std::size_t pieces = loop.size() - (measure.isClosed ? 0 : 1);
  for (std::size_t i = 0; i < pieces; ++i)
    measure.length += curves::arcLength(distance(loop[i].point(), loop[(i + 1) % loop.size()].point()), loop[i].bulge);
  // From the first vertex on, so that figures keep their digits far from the origin.
  const Point2 origin = loop.front().point();
  for (curves::LoopVertex& vertex : loop) {
    vertex.x -= origin.x;
    vertex.y -= origin.y;
  }
  measure.area = std::abs(curves::area(loop));
  return measure;
}

double areaOf(const std::vector<Point2>& points) {
  double twice = 0;
  for (std::size_t i = 1; i + 1 < points.size(); ++i) {
    const Point2 a = points[i] - points.front(), b = points[i + 1] - points.front();
    twice += a.x * b.y - a.y * b.x;
  }
  return std::abs(twice) / 2;
}

double lengthOf(const std::vector<Point2>& points, bool isClosed) {
  double length = 0;
  for (std::size_t i = 0; i + 1 < points.size(); ++i) length += distance(points[i], points[i + 1]);
  if (isClosed && points.size() > 1) length += distance(points.back(), points.front());
  return length;
}

bool isWithin(const std::vector<Point2>& ring, Point2 point) {
  bool inside = false;
  for (std::size_t i = 0, j = ring.size() - 1; i < ring.size(); j = i++) {
    const Point2 &a = ring[i], &b = ring[j];
    if ((a.y > point.y) != (b.y > point.y) && point.x < (b.x - a.x) * (point.y - a.y) / (b.y - a.y) + a.x)
      inside = !inside;
  }
  return inside;
}

/// Of rings within rings every second one is a hole.
Measure measureOf(const std::vector<geometry::Path>& paths) {
  Measure measure;
  for (const geometry::Path& path : paths) {
    const auto depth = std::count_if(paths.begin(), paths.end(), [&path](const geometry::Path& other) {
      return &other != &path && other.points.size() > 2 && isWithin(other.points, path.points.front());
    });
    measure.area += (depth % 2 == 0 ? 1 : -1) * areaOf(path.points);
    measure.length += lengthOf(path.points, path.closed);
    measure.isClosed = measure.isClosed && path.closed;
  }
  return measure;
}

/// Nothing for an object that encloses nothing.
std::optional<Measure> measureOf(Slot& slot) {
  if (slot.type == DxfType::LwPolyline) {
    const AcDbObjectPointer<AcDbPolyline> polyline(AcDbObjectId(&slot), AcDb::kForRead);
    if (polyline.openStatus() != Acad::eOk) return std::nullopt;
    return measureOf(*polyline);
  }
  if (slot.type == DxfType::Circle) {
    const auto circle = curves::readArc(slot);
    if (!circle) return std::nullopt;
    const double radius = circle->major.length();
    return Measure{std::numbers::pi * radius * radius, 2 * std::numbers::pi * radius, true};
  }
  switch (slot.type) {
    case DxfType::Ellipse:
    case DxfType::Arc:
    case DxfType::Spline:
    case DxfType::Polyline2d:
    case DxfType::Polyline3d:
    case DxfType::Hatch:
    case DxfType::Solid:
    case DxfType::Trace:
    case DxfType::Wipeout:
      break;
    default:
      return std::nullopt;
  }
  const geometry::Box box = geometry::entityExtents(slot);
  if (box.isEmpty()) return std::nullopt;
  std::vector<geometry::Path> paths =
      geometry::entityPaths(slot, 1e-6 * std::max(box.maxX - box.minX, box.maxY - box.minY));
  std::erase_if(paths, [](const geometry::Path& path) { return path.points.size() < 2; });
  if (paths.empty()) return std::nullopt;
  return measureOf(paths);
}

void tell(Prompter& prompter, const Measure& measure) {
  prompter.line(L"Area = " + shownNumber(measure.area) + (measure.isClosed ? L", Perimeter = " : L", Length = ") +
                shownNumber(measure.length));
}

void areaOfObject(Prompter& prompter) {
  for (;;) {
    const auto pick = prompter.entity(L"Select objects: ");
    if (!pick) return;
    if (pick.value.entity == nullptr) {
      if (!prompter.refuse(L"Nothing found there.")) return;
      continue;
    }
    if (const std::optional<Measure> measure = measureOf(*pick.value.entity)) {
      tell(prompter, *measure);
      return;
    }
    if (!prompter.refuse(L"Selected object does not have an area.")) return;
  }
}

void area(Prompter& prompter) {
  Limits limits;
  limits.keywords = Keywords(L"Object");
  auto reply = prompter.point(L"Specify first corner point or [Object] <Object>: ", limits);
  if (reply.outcome == Outcome::Cancel) return;
  if (!reply) {
    areaOfObject(prompter);
    return;
  }
  std::vector<AcGePoint3d> corners{reply.value};
  for (;;) {
    limits.base = corners.back();
    limits.keywords = Keywords(L"Undo");
    reply = prompter.point(
        corners.size() < 3 ? L"Specify next point or [Undo]: " : L"Specify next point or [Undo] <total>: ", limits);
    if (reply.outcome == Outcome::Cancel) return;
    if (reply.outcome == Outcome::Enter) break;
    if (reply) {
      corners.push_back(reply.value);
    } else if (corners.size() > 1) {
      corners.pop_back();
    }
  }
  std::vector<Point2> points;
  points.reserve(corners.size());
  for (const AcGePoint3d& corner : corners) points.push_back({corner.x, corner.y});
  if (points.size() < 3) {
    prompter.refuse(L"An area needs three points.");
    return;
  }
  tell(prompter, {areaOf(points), lengthOf(points, true), true});
}

constexpr HostCommand kCommands[] = {
    {L"DIST", ACRX_CMD_TRANSPARENT | ACRX_CMD_NO_UNDO_MARKER, distanceBetween,
     L"prints distance and direction between two points"},
    {L"AREA", ACRX_CMD_NO_UNDO_MARKER, area, L"prints the area of an object or within points"},
};

}  // namespace

std::span<const HostCommand> measureCommands() { return kCommands; }

}  // namespace host::editor
