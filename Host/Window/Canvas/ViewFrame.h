// Which part of a scene a canvas shows, and how large.
#pragma once

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <algorithm>
#include <cmath>

#include "Window/Canvas/Scene.h"
#include "Window/Canvas/TileRenderer.h"

namespace host::window {

struct ViewFrame {
  Zoom zoom;
  Point centre;  // scene coordinates, shown in the middle of the canvas
  QSizeF size{1, 1};
  double devicePixelRatio = 1;

  double scale() const { return zoom.pixelsPerUnit(); }
  /// Where the scene's origin stands: on a whole device pixel, as tiles do.
  QPointF originPx() const {
    const double s = scale(), r = devicePixelRatio;
    return {std::round((size.width() / 2 - centre.x * s) * r) / r,
            std::round((size.height() / 2 - centre.y * s) * r) / r};
  }
  QPointF toPixel(Point p) const {
    const QPointF origin = originPx();
    return {p.x * scale() + origin.x(), p.y * scale() + origin.y()};
  }
  Point toScene(QPointF pixel) const {
    const QPointF origin = originPx();
    return {(pixel.x() - origin.x()) / scale(), (pixel.y() - origin.y()) / scale()};
  }
  Box visible() const {
    Box box;
    box.add(toScene({0, 0}));
    box.add(toScene({size.width(), size.height()}));
    return box;
  }
  /// Zooms so that the scene point under `pixel` stays there.
  void zoomAbout(QPointF pixel, double factor) {
    const Point held = toScene(pixel);
    const Zoom before = zoom;
    setScale(scale() * factor);
    if (zoom == before && factor != 1) zoom.step += factor > 1 ? 1 : -1;
    const double s = scale();
    centre = {held.x + (size.width() / 2 - pixel.x()) / s, held.y + (size.height() / 2 - pixel.y()) / s};
    hold();
  }
  void moveBy(QPointF pixels) {
    centre = {centre.x - pixels.x() / scale(), centre.y - pixels.y() / scale()};
    hold();
  }
  void show(const Box& box, double marginShare = 0.04) {
    if (box.isEmpty()) return;
    centre = {(box.minX + box.maxX) / 2, (box.minY + box.maxY) / 2};
    const double free = 1 - 2 * marginShare;
    const double width = box.maxX - box.minX, height = box.maxY - box.minY;
    const double x = width > 0 ? size.width() * free / width : kLargestScale;
    const double y = height > 0 ? size.height() * free / height : kLargestScale;
    const double fitting = std::min(x, y);
    // A lone point has no size to fit. A step of the zoom below, so that all of the box shows.
    constexpr double kStepBelow = 1 - 3e-4;
    setScale(fitting < kLargestScale ? fitting * kStepBelow : kScaleOfPoint);
    hold();
  }
  void setScale(double pixelsPerUnit) {
    if (!std::isfinite(pixelsPerUnit) || !(pixelsPerUnit > 0)) return;
    zoom = Zoom::nearest(std::clamp(pixelsPerUnit, kSmallestScale, kLargestScale));
  }

 private:
  static constexpr double kSmallestScale = 1e-12, kLargestScale = 1e7, kScaleOfPoint = 20;
  static constexpr double kFarthest = 1e15;
  void hold() {
    centre.x = std::isfinite(centre.x) ? std::clamp(centre.x, -kFarthest, kFarthest) : 0;
    centre.y = std::isfinite(centre.y) ? std::clamp(centre.y, -kFarthest, kFarthest) : 0;
  }
};

}  // namespace host::window
