// A hatch's edge is the drawn edge, for every kind of curve that bounds one.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>

#include "Curves/Bulges.h"
#include "Database/Support.h"
#include "Geometry/EntityPaths.h"
#include "Geometry/SmallDrawing.h"
#include "Hatching/Boundary.h"

namespace host::geometry {
namespace {

using curves::Point2;
using curves::Polygon;

/// How a boundary is laid into the world: moved, or seen from below by the extrusion (0, 0, -1).
struct Dress {
  const char* name;
  Point2 by;
  bool isMirrored = false;

  Point2 world(Point2 p) const { return {isMirrored ? -p.x : p.x, p.y}; }
};

constexpr Dress kDresses[] = {{"as is", {0, 0}, false},
                              {"moved", {25'500'000, 6'700'000}, false},
                              {"mirrored", {0, 0}, true},
                              {"mirrored and moved", {25'500'000, 6'700'000}, true}};

std::string number(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.17g", value);
  return text;
}

/// Tags of a boundary in one dress, as "code value|code value".
class Tags {
 public:
  explicit Tags(const Dress& dress) : dress_(dress) {}

  Tags& raw(const std::string& tags) {
    text_ += (text_.empty() || tags.empty() ? "" : "|") + tags;
    return *this;
  }
  Tags& real(int code, double value) { return raw(std::to_string(code) + " " + number(value)); }
  /// In the plane of the hatch or entity.
  Tags& own(int code, Point2 p) { return real(code, p.x + dress_.by.x).real(code + 10, p.y + dress_.by.y); }
  Tags& ownVector(int code, Point2 v) { return real(code, v.x).real(code + 10, v.y); }
  Tags& world(int code, Point2 p) {
    const Point2 at = dress_.world(p + dress_.by);
    return real(code, at.x).real(code + 10, at.y).real(code + 20, 0);
  }
  Tags& worldVector(int code, Point2 v) {
    return real(code, dress_.world(v).x).real(code + 10, v.y).real(code + 20, 0);
  }
  Tags& extrusion() { return raw(dress_.isMirrored ? "210 0|220 0|230 -1" : "210 0|220 0|230 1"); }
  const std::string& text() const { return text_; }

 private:
  const Dress& dress_;
  std::string text_;
};

/// A boundary as entities and as the path of a hatch, both made in a dress.
struct Boundary {
  std::string name;
  std::function<void(tests::SmallDrawing&, const Dress&)> entities;
  std::function<std::string(const Dress&)> path;  // tags from 92 on, without 97
};

std::string lineEdge(const Dress& dress, Point2 from, Point2 to) {
  return Tags(dress).raw("72 1").own(10, from).own(11, to).text();
}

void addLine(tests::SmallDrawing& drawing, const Dress& dress, Point2 from, Point2 to) {
  drawing.entity("LINE", Tags(dress).world(10, from).world(11, to).text());
}

using Corners = std::vector<curves::LoopVertex>;
const Corners kRing = {{0, 0, 0.4}, {10, 1, -0.3}, {12, 7, 0}, {6, 9, 1.2}, {-1, 6, 0}};

std::string polylinePath(const Dress& dress, const Corners& corners) {
  Tags tags(dress);
  tags.raw("92 3|72 1|73 1|93 " + std::to_string(corners.size()));
  for (const auto& v : corners) tags.own(10, v.point()).real(42, v.bulge);
  return tags.text();
}

Boundary lightPolyline() {
  return {"polyline with bulges",
          [](auto& drawing, const Dress& dress) {
            Tags tags(dress);
            tags.raw("90 5|70 1");
            for (const auto& v : kRing) tags.own(10, v.point()).real(42, v.bulge);
            drawing.entity("LWPOLYLINE", tags.extrusion().text());
          },
          [](const Dress& dress) { return polylinePath(dress, kRing); }};
}

Boundary oldPolyline() {
  return {"2D polyline",
          [](auto& drawing, const Dress& dress) {
            drawing.entity("POLYLINE", Tags(dress).raw("66 1|10 0|20 0|30 0|70 1").extrusion().text());
            for (const auto& v : kRing)
              drawing.entity("VERTEX", Tags(dress).own(10, v.point()).real(42, v.bulge).raw("70 0").text());
            drawing.entity("SEQEND", "");
          },
          [](const Dress& dress) { return polylinePath(dress, kRing); }};
}

Boundary spacePolyline() {
  Corners straight = kRing;
  for (auto& v : straight) v.bulge = 0;
  return {"3D polyline",
          [straight](auto& drawing, const Dress& dress) {
            drawing.entity("POLYLINE", "66 1|10 0|20 0|30 0|70 9");
            for (const auto& v : straight)
              drawing.entity("VERTEX", Tags(dress).world(10, v.point()).raw("70 32").text());
            drawing.entity("SEQEND", "");
          },
          [straight](const Dress& dress) { return polylinePath(dress, straight); }};
}

/// The same ring by edges: arcs by centre and angles, clockwise ones with angles that count clockwise.
Boundary arcsAndLines() {
  return {"lines and arcs as edges", lightPolyline().entities, [](const Dress& dress) {
            std::string path = "92 1|93 5";
            for (std::size_t i = 0; i < kRing.size(); ++i) {
              const Point2 from = kRing[i].point(), to = kRing[(i + 1) % kRing.size()].point();
              if (kRing[i].bulge == 0) {
                path += "|" + lineEdge(dress, from, to);
                continue;
              }
              const curves::Arc arc = curves::arcOf(from, to, kRing[i].bulge);
              const double side = arc.sweep < 0 ? -1 : 1, degree = 180 / std::numbers::pi;
              path += "|" + Tags(dress)
                                .raw("72 2")
                                .own(10, arc.centre)
                                .real(40, arc.radius)
                                .real(50, side * arc.startAngle * degree)
                                .real(51, side * (arc.startAngle + arc.sweep) * degree)
                                .raw(arc.sweep < 0 ? "73 0" : "73 1")
                                .text();
            }
            return path;
          }};
}

Boundary circle() {
  return {"circle",
          [](auto& drawing, const Dress& dress) {
            drawing.entity("CIRCLE", Tags(dress).own(10, {4, 5}).raw("30 0").real(40, 6).extrusion().text());
          },
          [](const Dress& dress) {
            return Tags(dress).raw("92 1|93 1|72 2").own(10, {4, 5}).raw("40 6|50 0|51 360|73 1").text();
          }};
}

Boundary arc() {
  const auto at = [](double degrees) {
    const double angle = degrees * std::numbers::pi / 180;
    return Point2{4 + 6 * std::cos(angle), 5 + 6 * std::sin(angle)};
  };
  return {"arc and line",
          [at](auto& drawing, const Dress& dress) {
            drawing.entity("ARC", Tags(dress).own(10, {4, 5}).raw("30 0|40 6|50 200|51 75").extrusion().text());
            addLine(drawing, dress, at(75), at(200));
          },
          [at](const Dress& dress) {
            return Tags(dress)
                .raw("92 1|93 2|72 2")
                .own(10, {4, 5})
                .raw("40 6|50 200|51 435|73 1")
                .raw(lineEdge(dress, at(75), at(200)))
                .text();
          }};
}

/// Over parameters from `begin` to `end`, closed by a line when that is less than a turn.
Boundary ellipse(const std::string& name, double begin, double end) {
  const auto at = [](double t) {
    return Point2{4 + 6 * std::cos(t) - 0.4 * 2 * std::sin(t), 5 + 2 * std::cos(t) + 0.4 * 6 * std::sin(t)};
  };
  const bool isWhole = end - begin > 6.28;
  return {name,
          [=](auto& drawing, const Dress& dress) {
            drawing.entity("ELLIPSE", Tags(dress)
                                          .world(10, {4, 5})
                                          .worldVector(11, {6, 2})
                                          .extrusion()
                                          .raw("40 0.4")
                                          .real(41, begin)
                                          .real(42, end)
                                          .text());
            if (!isWhole) addLine(drawing, dress, at(end), at(begin));
          },
          [=](const Dress& dress) {
            const double degree = 180 / std::numbers::pi;
            Tags tags(dress);
            tags.raw(isWhole ? "92 1|93 1|72 3" : "92 1|93 2|72 3").own(10, {4, 5}).ownVector(11, {6, 2}).raw("40 0.4");
            tags.real(50, begin * degree).real(51, end * degree).raw("73 1");
            if (!isWhole) tags.raw(lineEdge(dress, at(end), at(begin)));
            return tags.text();
          }};
}

struct SplineFigures {
  int degree = 3;
  std::vector<double> knots = {};
  std::vector<Point2> controls = {};
  std::vector<double> weights = {};
  std::vector<Point2> fits = {};
  Point2 startTangent = {}, endTangent = {};
  bool isClosed = false;
  Point2 start = {}, end = {};  // a line closes the boundary where they differ
};

Boundary spline(const std::string& name, const SplineFigures& figures) {
  const bool needsLine = distance(figures.start, figures.end) > 0;
  // `point` and `vector` put the coordinates as the entity or the edge wants them.
  const auto curve = [figures](Tags& tags, int weightCode, const auto& point, const auto& vector) {
    for (const double knot : figures.knots) tags.real(40, knot);
    for (std::size_t i = 0; i < figures.controls.size(); ++i) {
      point(10, figures.controls[i]);
      if (i < figures.weights.size()) tags.real(weightCode, figures.weights[i]);
    }
    if (!figures.fits.empty() && weightCode == 42) tags.raw("97 " + std::to_string(figures.fits.size()));
    for (const Point2 fit : figures.fits) point(11, fit);
    if (length(figures.startTangent) > 0) vector(12, figures.startTangent);
    if (length(figures.endTangent) > 0) vector(13, figures.endTangent);
  };
  return {name,
          [=](auto& drawing, const Dress& dress) {
            Tags tags(dress);
            tags.raw(figures.isClosed ? "70 11" : "70 8").raw("71 " + std::to_string(figures.degree));
            curve(
                tags, 41, [&](int code, Point2 p) { tags.world(code, p); },
                [&](int code, Point2 v) { tags.worldVector(code, v); });
            drawing.entity("SPLINE", tags.text());
            if (needsLine) addLine(drawing, dress, figures.end, figures.start);
          },
          [=](const Dress& dress) {
            Tags tags(dress);
            tags.raw(needsLine ? "92 1|93 2" : "92 1|93 1").raw("72 4|94 " + std::to_string(figures.degree));
            tags.raw(figures.weights.empty() ? "73 0" : "73 1").raw(figures.isClosed ? "74 1" : "74 0");
            tags.raw("95 " + std::to_string(figures.knots.size()) + "|96 " + std::to_string(figures.controls.size()));
            curve(
                tags, 42, [&](int code, Point2 p) { tags.own(code, p); },
                [&](int code, Point2 v) { tags.ownVector(code, v); });
            if (needsLine) tags.raw(lineEdge(dress, figures.end, figures.start));
            return tags.text();
          }};
}

std::vector<Boundary> everyKind() {
  const std::vector<Point2> wave = {{0, 0}, {3, 5}, {7, 6}, {9, 4}, {12, 2}};
  const std::vector<Point2> round = {{0, 0}, {7, -2}, {12, 3}, {9, 6}, {2, 8}, {-2, 5}};
  const std::vector<Point2> frame = {{0, 0}, {2, 7}, {5, -3}, {9, 8}, {12, 0}};
  std::vector<Boundary> all = {lightPolyline(),
                               oldPolyline(),
                               spacePolyline(),
                               arcsAndLines(),
                               circle(),
                               arc(),
                               ellipse("ellipse", 0, 2 * std::numbers::pi),
                               ellipse("elliptical arc", 0.7, 4.9)};
  const auto add = [&](const std::string& name, const SplineFigures& figures) { all.push_back(spline(name, figures)); };
  const Point2 last{12, 0}, waveEnd{12, 2};
  add("rational spline",
      {.knots = {0, 0, 0, 0, 0.3, 1, 1, 1, 1}, .controls = frame, .weights = {1, 2, 0.5, 3, 1}, .end = last});
  add("periodic spline",
      {.knots = {-3, -2, -1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9},
       .controls = {round[0], round[1], round[2], round[3], round[4], round[5], round[0], round[1], round[2]},
       .isClosed = true});
  add("fit points with tangents", {.fits = wave, .startTangent = {-4, 1}, .endTangent = {0, -0.2}, .end = waveEnd});
  add("fit points with one tangent", {.fits = wave, .endTangent = {1, -0.5}, .end = waveEnd});
  add("closed by fit points", {.fits = round, .isClosed = true});
  return all;
}

Polygon pathOf(const std::vector<Path>& paths) {
  // Pieces one after the other, those turned round that run against it.
  Polygon whole;
  for (const Path& path : paths) {
    Polygon piece = path.points;
    if (!whole.empty() && distance(whole.back(), piece.back()) < distance(whole.back(), piece.front()))
      std::reverse(piece.begin(), piece.end());
    whole.insert(whole.end(), piece.begin(), piece.end());
  }
  return whole;
}

/// The farthest that a corner or the middle of a side of one ring lies from the other ring.
double reach(const Polygon& from, const Polygon& to) {
  double farthest = 0;
  const auto look = [&](Point2 p) {
    double nearest = INFINITY;
    for (std::size_t i = 0; i < to.size(); ++i)
      nearest = std::min(nearest, curves::distanceToSegment(p, to[i], to[(i + 1) % to.size()]));
    farthest = std::max(farthest, nearest);
  };
  for (std::size_t i = 0; i < from.size(); ++i) {
    look(from[i]);
    look((from[i] + from[(i + 1) % from.size()]) * 0.5);
  }
  return farthest;
}

double gapBetween(const Polygon& a, const Polygon& b) {
  if (a.size() < 3 || b.size() < 3) return INFINITY;
  return std::max(reach(a, b), reach(b, a));
}

constexpr double kDeviation = 1e-2;
/// A hatch in the file has the very chords of the curve: what differs is rounding, which at 25 million is 4e-9.
constexpr double kSameChords = 1e-6;
/// A hatch made from an entity keeps ellipses and splines as chords that stay within a ten-thousandth of their size.
constexpr double kMadeChords = 13 * 1e-4 + kDeviation;

TEST(HatchEdges, FollowTheDrawnCurveWhateverItsKind) {
  for (const Boundary& boundary : everyKind())
    for (const Dress& dress : kDresses) {
      SCOPED_TRACE(boundary.name + ", " + dress.name);
      tests::SmallDrawing small;
      boundary.entities(small, dress);
      small.entity("HATCH", Tags(dress)
                                .raw("10 0|20 0|30 0")
                                .extrusion()
                                .raw("2 SOLID|70 1|71 0|91 1")
                                .raw(boundary.path(dress))
                                .raw("97 0|75 0|76 1|98 0")
                                .text());
      tests::OpenDrawing drawing(small.text());
      AcDbObjectIdArray ids;
      std::vector<Path> drawn, filled;
      for (const database::Slot* slot : drawing.database().modelSpace().entities) {
        const std::vector<Path> paths = entityPaths(*slot, kDeviation);
        const bool isHatch = slot->type == database::DxfType::Hatch;
        (isHatch ? filled : drawn).insert((isHatch ? filled : drawn).end(), paths.begin(), paths.end());
        if (!isHatch) ids.append(drawing.id(slot->handle));
      }
      ASSERT_EQ(filled.size(), 1U);
      const Polygon edge = pathOf(drawn);
      EXPECT_LT(gapBetween(edge, pathOf(filled)), kSameChords);

      curves::Loop loop;
      const AcGeVector3d normal(0, 0, dress.isMirrored ? -1 : 1);
      ASSERT_EQ(hatching::boundaryLoop(ids, normal, loop), Acad::eOk);
      Polygon made = flatten(loop, kDeviation);
      for (Point2& p : made) p = dress.world(p);
      EXPECT_LT(gapBetween(edge, made), kMadeChords);
      if (ids.length() == 1) continue;
      const double area = std::abs(curves::area(loop));
      std::rotate(ids.begin(), ids.begin() + 1, ids.end());  // in whatever order they come
      ASSERT_EQ(hatching::boundaryLoop(ids, normal, loop), Acad::eOk);
      EXPECT_NEAR(std::abs(curves::area(loop)), area, 1e-6);
      ids.setLogicalLength(1);  // neither alone closes
      EXPECT_EQ(hatching::boundaryLoop(ids, normal, loop), Acad::eInvalidInput);
    }
}

}  // namespace
}  // namespace host::geometry
