#include "Window/Canvas/Previews.h"

#include <cmath>
#include <numbers>

namespace host::window {

void paintPreview(MarkPainter& marks, const ViewFrame& frame, const PreviewInput& input) {
  if (!input.question.base) return;
  const Scene& scene = *input.keeper->scene();
  const auto pixel = [&](Point plan) { return frame.toPixel(scene.toScene(plan)); };
  marks.line({pixel({input.question.base->x, input.question.base->y}), pixel(input.cursor)}, false, true);
}

QString previewWords(const PreviewInput& input) {
  if (!input.question.base) return {};
  const Point d = input.cursor - Point{input.question.base->x, input.question.base->y};
  double angle = std::atan2(d.y, d.x) * 180 / std::numbers::pi;
  if (angle < 0) angle += 360;
  return QStringLiteral("%1 m  %2°").arg(curves::length(d), 0, 'f', 2).arg(angle, 0, 'f', 1);
}

}  // namespace host::window
