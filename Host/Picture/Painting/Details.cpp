#include "Picture/Details.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "Database/TagValues.h"
#include "Picture/Painting/Clipping.h"
#include "Picture/Painting/Dashes.h"

namespace host::picture {
namespace {

using curves::Polygon;
using geometry::Transform;

constexpr std::size_t kMostDashes = 3'000'000;
constexpr double kShortestRoundPx = 1.5;  // of a linetype; finer ones look unbroken

/// Outlined letters of one picture; vectors of more would be gigabytes.
constexpr std::size_t kMostGlyphs = 400'000;

/// Pieces per curve of a letter `height` pixels tall.
int curvePieces(double height, double deviation) {
  // A letter's curve spans about a third of its height; halving pieces quarters the error.
  const double error = height * 0.06 / std::max(deviation, 1e-3);
  constexpr int kMost = 16;
  return error < kMost * kMost ? std::max(1, static_cast<int>(std::ceil(std::sqrt(error)))) : kMost;
}

constexpr double kClosestLinesPx = 1.2;
constexpr std::size_t kMostPiecesOfHatch = 400'000;
constexpr std::size_t kMostPieces = 3'000'000;

double spacing(const hatching::PatternLine& family) {
  return std::abs(family.offsetY * std::cos(family.angleRad) - family.offsetX * std::sin(family.angleRad));
}

/// Share of the line that is drawn; dots count as `dot` long.
double drawnShare(const std::vector<double>& dashes, double dot) {
  double drawn = 0, round = 0;
  for (const double dash : dashes) {
    drawn += dash > 0 ? dash : dash == 0 ? dot : 0;
    round += std::abs(dash);
  }
  return round > 0 ? std::min(1.0, drawn / round) : 1;
}

/// How much of the area lines `width` wide would cover.
double coverage(const std::vector<hatching::PatternLine>& families, double width) {
  double open = 1;
  for (const hatching::PatternLine& family : families) {
    const double step = spacing(family);
    const double share = step > 0 ? std::min(1.0, width / step) * drawnShare(family.dashes, width) : 0.5;
    open *= 1 - share;
  }
  return std::clamp(1 - open, 0.08, 0.7);
}

/// The part of the loops that can be seen, so that a large hatch seen from close is not worked out as a whole.
std::vector<Polygon> cutToPicture(const std::vector<Polygon>& loops, const Transform& plane, const Box& area) {
  const double determinant = plane.x.x * plane.y.y - plane.x.y * plane.y.x;
  if (determinant == 0 || area.isEmpty()) return loops;
  Box window;
  for (const Point p : {Point{area.minX, area.minY}, Point{area.maxX, area.minY}, Point{area.maxX, area.maxY},
                        Point{area.minX, area.maxY}}) {
    const double x = p.x - plane.origin.x, y = p.y - plane.origin.y;
    window.add(Point{(x * plane.y.y - y * plane.y.x) / determinant, (y * plane.x.x - x * plane.x.y) / determinant});
  }
  const double border = (window.maxX - window.minX + window.maxY - window.minY) / 100;
  window = {window.minX - border, window.minY - border, window.maxX + border, window.maxY + border};
  std::vector<Polygon> cut;
  std::vector<Point> clipped, scratch;
  for (const Polygon& loop : loops) {
    Box box;
    for (const Point p : loop) box.add(p);
    if (!box.intersects(window)) continue;
    if (window.contains({box.minX, box.minY}) && window.contains({box.maxX, box.maxY})) {
      cut.push_back(loop);
      continue;
    }
    clipPolygon(window, loop, clipped, scratch);
    if (clipped.size() < 3) continue;
    cut.push_back(clipped);
  }
  return cut;
}

}  // namespace

PaintedDetails::PaintedDetails(const View& view, GlyphSource& glyphs, Canvas& canvas)
    : view_(view), glyphs_(glyphs), canvas_(canvas) {
  canvas_.setClip(view.area);
}

void PaintedDetails::setArea(const Box& area) {
  view_.area = area;
  canvas_.setClip(area);
}

void PaintedDetails::chooseDashes(const LineStyle& style) {
  dashes_.clear();
  if (style.pattern == nullptr || view_.boundsOnly) return;
  double round = 0;
  for (const double dash : style.pattern->dashes) {
    dashes_.push_back(dash * style.dashUnit);
    round += std::abs(dashes_.back());
  }
  if (!(round >= kShortestRoundPx) || !std::isfinite(round)) dashes_.clear();
}

void PaintedDetails::strokeLine(const std::vector<Point>& line, bool closed, const LineStyle& style, const Pen& pen) {
  if (dashes_.empty() || dashPieces_ >= kMostDashes) return canvas_.stroke(line, closed, pen);
  const double reach = pen.width;
  const Box clip{view_.area.minX - reach, view_.area.minY - reach, view_.area.maxX + reach, view_.area.maxY + reach};
  const auto dash = [&](const std::vector<Point>& piece) {
    ++dashPieces_;
    canvas_.stroke(piece, false, pen);
  };
  const std::size_t rest = kMostDashes - dashPieces_;
  if (style.pattern->marks.empty()) return drawDashes(line, closed, dashes_, clip, rest, dash);
  drawDashes(line, closed, dashes_, clip, rest, dash, [&](std::size_t element, Point at, Point along) {
    for (const LinePattern::Mark& mark : style.pattern->marks)
      if (mark.element == element && ++dashPieces_ < kMostDashes) paintMark(mark, at, along, style.dashUnit, pen);
  });
}

void PaintedDetails::wire(const DetailWire& wire, const LineStyle& style) {
  chooseDashes(style);
  Pen pen = style.pen;
  if (wire.hasOutline()) {
    if (dashes_.empty() || wire.width == 0) {
      // Thinner than a line it still shows as a line.
      if (wire.width == 0 || wire.width > pen.width) canvas_.fill(wire.outline, FillRule::Nonzero, pen.color);
      if (wire.width == 0 || wire.width <= pen.width) canvas_.stroke(wire.line, wire.closed, pen);
      return;
    }
    pen.width = std::max(pen.width, wire.width);
    pen.flatEnds = wire.width > style.pen.width;
  }
  if (dashes_.empty() || wire.corners.empty()) return strokeLine(wire.line, wire.closed, style, pen);
  // Without linetype generation every piece has the pattern for itself.
  std::size_t begin = 0;
  const std::size_t last = wire.line.size() - (wire.closed ? 0 : 1);
  const auto piece = [&](std::size_t end) {
    if (end <= begin || end > last) return;
    scratch_.clear();
    for (std::size_t i = begin; i <= end; ++i) scratch_.push_back(wire.line[i < wire.line.size() ? i : 0]);
    strokeLine(scratch_, false, style, pen);
    begin = end;
  };
  for (const std::uint32_t corner : wire.corners) piece(corner);
  piece(last);
}

void PaintedDetails::point(Point c, const PointMark& mark, const Pen& pen) {
  constexpr int kCircle = 32, kSquare = 64;
  if (view_.boundsOnly) return canvas_.stroke({c}, false, pen);
  const double pictureHeight = height_ > 0 ? height_ : view_.area.maxY - view_.area.minY;
  const double r = (mark.size > 0 ? mark.size : pictureHeight * mark.share) / 2;
  const auto line = [&](double x1, double y1, double x2, double y2) {
    canvas_.stroke({{c.x + x1 * r, c.y + y1 * r}, {c.x + x2 * r, c.y + y2 * r}}, false, pen);
  };
  switch (mark.mode & 7) {
    case 0: {
      Pen dot = pen;
      dot.width = std::max(pen.width, 1.5 * view_.thinnestLine);
      canvas_.stroke({c}, false, dot);
      break;
    }
    case 2:
      line(-2, 0, 2, 0);
      line(0, -2, 0, 2);
      break;
    case 3:
      line(-2, -2, 2, 2);
      line(-2, 2, 2, -2);
      break;
    case 4:
      line(0, 0, 0, -1);
      break;
    default:
      break;
  }
  if ((mark.mode & kCircle) != 0) {
    std::vector<Point> circle;
    constexpr int kSteps = 24;
    for (int i = 0; i < kSteps; ++i) {
      const double t = 2 * std::numbers::pi * i / kSteps;
      circle.push_back({c.x + r * std::cos(t), c.y + r * std::sin(t)});
    }
    canvas_.stroke(circle, true, pen);
  }
  if ((mark.mode & kSquare) != 0)
    canvas_.stroke({{c.x - r, c.y - r}, {c.x + r, c.y - r}, {c.x + r, c.y + r}, {c.x - r, c.y + r}}, true, pen);
}

void PaintedDetails::infinite(Point base, Point d, bool bothWays, const LineStyle& style) {
  if (view_.boundsOnly) return canvas_.stroke({base}, false, style.pen);
  // From the base as far as the farthest corner of the picture.
  const Box& a = whole();
  const double reach = std::max(std::abs(base.x - a.minX), std::abs(base.x - a.maxX)) +
                       std::max(std::abs(base.y - a.minY), std::abs(base.y - a.maxY)) + 10;
  const double f = reach / std::hypot(d.x, d.y);
  const Point start = bothWays ? Point{base.x - d.x * f, base.y - d.y * f} : base;
  chooseDashes(style);
  strokeLine({start, {base.x + d.x * f, base.y + d.y * f}}, false, style, style.pen);
}

void PaintedDetails::paintMark(const LinePattern::Mark& mark, Point at, Point along, double unit, const Pen& pen) {
  // The picture's y runs down: what lies to the left of the line is above a line to the right.
  const Point up{along.y, -along.x};
  const Point place{at.x + (along.x * mark.along + up.x * mark.across) * unit,
                    at.y + (along.y * mark.along + up.y * mark.across) * unit};
  const Point base = mark.isUpright ? Point{1, 0} : along, high = mark.isUpright ? Point{0, -1} : up;
  const double c = std::cos(mark.rotationRad), s = std::sin(mark.rotationRad);
  Transform frame;
  frame.x = {(base.x * c + high.x * s) * unit, (base.y * c + high.y * s) * unit, 0};
  frame.y = {(high.x * c - base.x * s) * unit, (high.y * c - base.y * s) * unit, 0};
  frame.origin = {place.x, place.y, 0};
  if (!mark.contents.empty()) {
    geometry::TextRun run;
    run.text = mark.contents;
    run.height = mark.height;
    run.width = glyphs_.width(run.text, run.face) * run.height;
    return text(run, frame, pen);
  }
  // Shapes live in files of their own. The common ones have numbers of their own, too: a tick, a peak, a box, a circle,
  // an arch.
  static const std::vector<std::pair<int, std::vector<Point>>> kShapes = {
      {130, {{0, -1}, {0, 1}}},
      {131, {{0, 0}, {1, 1}, {2, 0}}},
      {132, {{0, -1}, {2, -1}, {2, 1}, {0, 1}, {0, -1}}},
      {133,
       [] {
         std::vector<Point> circle;
         constexpr int kSteps = 24;
         for (int i = 0; i <= kSteps; ++i) {
           const double t = 2 * std::numbers::pi * i / kSteps;
           circle.push_back({1 + std::cos(t), std::sin(t)});
         }
         return circle;
       }()},
      {134, {{0, 0}, {-1, 2}, {-0.6, 3.2}, {0.3, 3.9}, {1, 4}, {1.7, 3.9}, {2.6, 3.2}, {3, 2}, {2, 0}}}};
  for (const auto& [number, points] : kShapes) {
    if (number != mark.shape) continue;
    std::vector<Point> line;
    for (const Point& p : points) line.push_back(frame.plan({p.x * mark.scale, p.y * mark.scale, 0}));
    canvas_.stroke(line, false, pen);
  }
}

void PaintedDetails::text(const geometry::TextRun& run, const Transform& frame, const Pen& pen) {
  const double heightPx = run.height * frame.planScale();
  const double slant = std::tan(run.obliqueRad);
  const bool isTooMuch = run.text.size() > kMostGlyphs - glyphsDrawn_;
  hasTextBars_ = hasTextBars_ || (isTooMuch && heightPx >= view_.barsBelow);
  if (isTooMuch || heightPx < view_.barsBelow) {
    Color color = pen.color;
    color.alpha = static_cast<std::uint8_t>(color.alpha / 2);
    const double top = run.y + 0.8 * run.height;
    canvas_.fill({{frame.plan({run.x, run.y, 0}), frame.plan({run.x + run.width, run.y, 0}),
                   frame.plan({run.x + run.width, top, 0}), frame.plan({run.x, top, 0})}},
                 FillRule::Nonzero, color);
    return;
  }
  glyphsDrawn_ += run.text.size();
  const int pieces = curvePieces(heightPx, view_.deviation);
  std::vector<std::vector<Point>> rings;
  double x = run.x;
  const double along = run.height * run.widthFactor;
  glyphs_.layOut(run.text, run.face, letters_);
  canvas_.beginText();
  bool hasStrokes = false;
  for (const PlacedGlyph& letter : letters_) {
    const Glyph& glyph = *letter.glyph;
    const auto place = [&](Point p) {
      const double y = (p.y + letter.dy) * run.height;
      return frame.plan({x + (p.x + letter.dx) * along + y * slant, run.y + y, 0});
    };
    for (const std::vector<Point>& stroke : glyph.strokes) {
      scratch_.clear();
      for (const Point p : stroke) scratch_.push_back(place(p));
      canvas_.stroke(scratch_, false, pen);
      hasStrokes = true;
    }
    for (const Glyph::Contour& contour : glyph.contours) {
      std::vector<Point>& ring = rings.emplace_back();
      ring.push_back(place(contour.from));
      Point from = contour.from;
      for (const Glyph::Piece& piece : contour.pieces) {
        if (!piece.straight)
          for (int i = 1; i < pieces; ++i) {
            const double t = static_cast<double>(i) / pieces, a = (1 - t) * (1 - t), b = 2 * t * (1 - t), c = t * t;
            ring.push_back(place({a * from.x + b * piece.control.x + c * piece.to.x,
                                  a * from.y + b * piece.control.y + c * piece.to.y}));
          }
        ring.push_back(place(piece.to));
        from = piece.to;
      }
    }
    x += letter.advance * along * run.tracking;
  }
  canvas_.fill(rings, FillRule::Nonzero, pen.color);
  const Point base = frame.plan({run.x, run.y, 0});
  canvas_.endText({run.text, run.face, base, frame.plan({x, run.y, 0}) - base,
                   frame.plan({run.x + run.height * slant, run.y + run.height, 0}) - base, hasStrokes});
}

void PaintedDetails::pattern(const std::vector<hatching::PatternLine>& families, const std::vector<Polygon>& loops,
                             const Transform& plane, const Pen& pen) {
  const double scale = plane.planScale();
  bool isTooDense = patternPieces_ >= kMostPieces;
  for (const hatching::PatternLine& family : families)
    // A family of rare dashes may have its lines close together.
    if (!(spacing(family) * scale >= kClosestLinesPx * drawnShare(family.dashes, 1 / scale))) isTooDense = true;
  std::vector<hatching::PatternSegment> segments;
  if (!isTooDense) {
    const auto outcome =
        hatching::fillPattern(families, cutToPicture(loops, plane, view_.area), kMostPiecesOfHatch,
                              [&](const hatching::PatternSegment& segment) { segments.push_back(segment); });
    isTooDense = outcome == hatching::FillOutcome::TooDense;
  }
  if (isTooDense) {
    Color tint = pen.color;
    tint.alpha = static_cast<std::uint8_t>(std::lround(tint.alpha * coverage(families, pen.width / scale)));
    Rings rings(loops.size());
    for (std::size_t i = 0; i < loops.size(); ++i)
      for (const Point p : loops[i]) {
        rings[i].push_back(plane.plan({p.x, p.y, 0}));
        const Point& q = rings[i].back();
        if (std::abs(q.x) <= database::kLargestCoordinate && std::abs(q.y) <= database::kLargestCoordinate) continue;
        rings[i].clear();
        break;
      }
    return canvas_.fill(rings, FillRule::EvenOdd, tint);
  }
  patternPieces_ += segments.size();
  std::vector<Point> line(2);
  for (const hatching::PatternSegment& segment : segments) {
    line[0] = plane.plan({segment.from.x, segment.from.y, 0});
    line[1] = plane.plan({segment.to.x, segment.to.y, 0});
    canvas_.stroke(line, false, pen);
  }
}

}  // namespace host::picture
