// The limit of pictures: the rasteriser alone.
#include <QBuffer>
#include <QImage>
#include <QImageWriter>
#include <QPainter>
#include <QPainterPath>
#include <stdexcept>
#include <vector>

#include "Limits.h"

namespace benchmarks {

namespace {

using host::picture::Composition;
using host::picture::DisplayItem;
using host::picture::DisplayRing;
using host::picture::ItemKind;
using host::picture::Point;

struct Outline {
  const DisplayItem* item;
  QPainterPath path;
};

std::vector<Outline> outlinesOf(const Composition& picture) {
  std::vector<Outline> outlines;
  outlines.reserve(picture.list.items.size());
  for (const DisplayItem& item : picture.list.items) {
    QPainterPath path;
    for (std::uint32_t i = 0; i < item.ringCount; ++i) {
      const DisplayRing& ring = picture.list.rings[item.firstRing + i];
      const Point* const points = picture.list.points.data() + ring.first;
      for (std::uint32_t k = 0; k < ring.count; ++k) {
        k == 0 ? path.moveTo(points[k].x, points[k].y) : path.lineTo(points[k].x, points[k].y);
      }
      if (ring.closed) path.closeSubpath();
    }
    if (item.kind == ItemKind::FillNonzero) path.setFillRule(Qt::WindingFill);
    outlines.push_back({&item, std::move(path)});
  }
  return outlines;
}

void paint(QPainter& painter, const Outline& outline) {
  const DisplayItem& item = *outline.item;
  const QColor color(item.color.red, item.color.green, item.color.blue, item.color.alpha);
  switch (item.kind) {
    case ItemKind::BeginClip:
      painter.save();
      painter.setClipPath(outline.path, Qt::IntersectClip);
      return;
    case ItemKind::EndClip:
      painter.restore();
      return;
    case ItemKind::Stroke:
    case ItemKind::FlatStroke:
      painter.strokePath(outline.path, QPen(color, item.width));
      return;
    case ItemKind::FillEvenOdd:
    case ItemKind::FillNonzero:
      painter.fillPath(outline.path, color);
      return;
  }
}

}  // namespace

void rasterize(Clock& clock, const Composition& picture) {
  const std::vector<Outline> outlines = outlinesOf(picture);
  QByteArray bytes;
  clock.time([&] {
    QImage image(static_cast<int>(picture.page.widthPx), static_cast<int>(picture.page.heightPx), QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const Outline& outline : outlines) paint(painter, outline);
    painter.end();
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "png");
    constexpr int kQuickCompression = 20;  // of 100
    writer.setCompression(kQuickCompression);
    writer.write(image);
  });
  if (bytes.isEmpty()) throw std::runtime_error("the rasteriser made no picture");
}

}  // namespace benchmarks
