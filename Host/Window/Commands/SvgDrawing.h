// SVG files as our icons are: outlines with fills and strokes.
#pragma once

#include <QByteArray>
#include <QList>
#include <QPainterPath>
#include <QPen>
#include <QRectF>

class QPainter;

namespace host::window {

/// A drawing of paths, rectangles and circles with attributes of presentation, which groups hand down. Texts,
/// gradients, styles and transformations are not known: Qt's own reader of SVG cannot be had for Windows everywhere.
class SvgDrawing {
 public:
  /// Nothing to see when the bytes are no such drawing.
  explicit SvgDrawing(const QByteArray& svg);

  bool isEmpty() const { return shapes_.isEmpty(); }
  /// Stretches the drawing's view box over the place.
  void paint(QPainter& painter, const QRectF& place) const;

 private:
  struct Shape {
    QPainterPath outline;
    QBrush fill;
    QPen stroke;
  };

  QRectF viewBox_;
  QList<Shape> shapes_;
};

}  // namespace host::window
