// The painter's texts.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "Picture/EntityPainter.h"

namespace host::picture {
namespace {

using geometry::Transform;

/// Outlined letters of one picture; vectors of more would be gigabytes.
constexpr std::size_t kMostGlyphs = 400'000;

/// Pieces per curve of a letter `height` pixels tall.
int curvePieces(double height, double deviation) {
  // A letter's curve spans about a third of its height; halving pieces quarters the error.
  const double error = height * 0.06 / std::max(deviation, 1e-3);
  return std::clamp(static_cast<int>(std::ceil(std::sqrt(error))), 1, 16);
}

}  // namespace

void EntityPainter::paintText(const geometry::TextBlock& text, const Place& place, const Style& style) {
  const Transform frame = place.toPicture.after(text.frame);
  if (!std::isfinite(frame.origin.x + frame.origin.y + frame.planScale())) return;
  const auto at = [&](double x, double y) { return frame.plan({x, y, 0}); };
  const auto box = [&](const Box& b) {
    return std::vector<Point>{at(b.minX, b.minY), at(b.maxX, b.minY), at(b.maxX, b.maxY), at(b.minX, b.maxY)};
  };
  if (text.masked) {
    const bool isBackground = text.maskColor < 0 && text.maskTrueColor < 0;
    const Color color = isBackground ? appearances_.background()
                                     : appearances_.color(text.maskColor, text.maskTrueColor, style.appearance);
    canvas_.fill({box(text.mask)}, FillRule::EvenOdd, color);
  }
  if (view_.boundsOnly || !glyphs_.hasFont()) {
    if (!text.box.isEmpty()) canvas_.stroke(box(text.box), true, style.pen);
    return;
  }
  if (!text.box.isEmpty() && !view_.area.isEmpty()) {
    Box bounds;
    const double height = text.box.maxY - text.box.minY;
    for (const Point p :
         box({text.box.minX - height, text.box.minY - height, text.box.maxX + height, text.box.maxY + height}))
      bounds.add(p);
    if (!bounds.intersects(view_.area)) return;
  }
  for (const geometry::TextRun& run : text.runs)
    paintRun(run, frame, appearances_.color(run.color, run.trueColor, style.appearance));
  for (const geometry::TextRule& rule : text.rules) {
    Pen pen = style.pen;
    pen.color = appearances_.color(rule.color, rule.trueColor, style.appearance);
    canvas_.stroke({at(rule.from.x, rule.from.y), at(rule.to.x, rule.to.y)}, false, pen);
  }
}

void EntityPainter::paintMark(const LinePattern::Mark& mark, Point at, Point along, double unit, const Pen& pen) {
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
    for (const wchar_t character : run.text) run.width += advance(character, false) * run.height;
    return paintRun(run, frame, pen.color);
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

void EntityPainter::paintRun(const geometry::TextRun& run, const Transform& frame, Color color) {
  const double heightPx = run.height * frame.planScale();
  const double slant = std::tan(run.obliqueRad);
  const bool isTooMuch = run.text.size() > kMostGlyphs - glyphsDrawn_;
  hasTextBars_ = hasTextBars_ || (isTooMuch && heightPx >= view_.barsBelow);
  if (isTooMuch || heightPx < view_.barsBelow) {
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
  for (const wchar_t character : run.text) {
    const Glyph& glyph = glyphs_.glyph(character, run.bold);
    const auto place = [&](Point p) {
      const double y = p.y * run.height;
      return frame.plan({x + p.x * along + y * slant, run.y + y, 0});
    };
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
    x += glyph.advance * along * run.tracking;
  }
  canvas_.fill(rings, FillRule::Nonzero, color);
}

}  // namespace host::picture
