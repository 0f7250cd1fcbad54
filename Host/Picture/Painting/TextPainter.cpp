// The painter's texts.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "Picture/EntityPainter.h"

namespace host::picture {
namespace {

using geometry::Transform;

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
    const Color color =
        isBackground
            ? appearances_.background()
            : appearances_.fillColor(Appearances::withColor(text.maskColor, text.maskTrueColor, style.appearance));
    details_.fill({box(text.mask)}, FillRule::EvenOdd, color);
  }
  if (view_.boundsOnly || !glyphs_.hasFont()) {
    if (!text.box.isEmpty()) strokeLine(box(text.box), true, style);
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
  Pen pen = style.line.pen;
  for (const geometry::TextRun& run : text.runs) {
    pen.color = appearances_.color(run.color, run.trueColor, style.appearance);
    details_.text(run, frame, pen);
  }
  for (const geometry::TextRule& rule : text.rules) {
    Style own = style;
    own.line.pen.color = appearances_.color(rule.color, rule.trueColor, style.appearance);
    strokeLine({at(rule.from.x, rule.from.y), at(rule.to.x, rule.to.y)}, false, own);
  }
}

}  // namespace host::picture
