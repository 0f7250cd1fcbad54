// The words of the canvas's tooltip and badge.
#include <cmath>

#include "Geometry/EntityPaths.h"
#include "Window/Canvas/CanvasState.h"

namespace host::window {
namespace {

using database::DxfType;
using database::Slot;

QString typeWords(const Slot& entity) {
  switch (entity.type) {
    case DxfType::Line:
      return CanvasView::tr("Line");
    case DxfType::Point:
      return CanvasView::tr("Point");
    case DxfType::LwPolyline:
    case DxfType::Polyline2d:
    case DxfType::Polyline3d:
      return CanvasView::tr("Polyline");
    case DxfType::Insert:
      return CanvasView::tr("Block");
    case DxfType::Circle:
      return CanvasView::tr("Circle");
    case DxfType::Arc:
      return CanvasView::tr("Arc");
    case DxfType::Ellipse:
      return CanvasView::tr("Ellipse");
    case DxfType::Spline:
      return CanvasView::tr("Spline");
    case DxfType::Text:
    case DxfType::MText:
      return CanvasView::tr("Text");
    case DxfType::Solid:
    case DxfType::Face3d:
      return CanvasView::tr("Face");
    case DxfType::Hatch:
      return CanvasView::tr("Fill");
    case DxfType::Dimension:
      return CanvasView::tr("Dimension");
    case DxfType::Viewport:
      return CanvasView::tr("Viewport");
    default:
      return QString::fromUtf8(entity.database().typeName(entity).data(),
                               static_cast<qsizetype>(entity.database().typeName(entity).size()));
  }
}

/// Area of what is closed, length of the rest; empty for what has neither.
QString sizeWords(const Slot& entity) {
  constexpr double kFine = 1e-6;
  const Box box = geometry::entityExtents(entity);
  if (box.isEmpty()) return {};
  const double fine = std::hypot(box.maxX - box.minX, box.maxY - box.minY) * kFine;
  if (entity.type == DxfType::Insert || entity.type == DxfType::Text || entity.type == DxfType::MText) return {};
  double area = 0, length = 0;
  bool isClosed = false;
  for (const geometry::Path& path : geometry::entityPaths(entity, fine)) {
    double twice = 0;
    const std::size_t count = path.points.size();
    for (std::size_t i = 0; i < count; ++i) {
      const Point a = path.points[i], b = path.points[(i + 1) % count];
      twice += cross(a - path.points[0], b - path.points[0]);
      if (i + 1 < count || path.closed) length += curves::distance(a, b);
    }
    if (path.closed) {
      // Islands of a fill lie inside of what was met before; their areas are taken away.
      area = path.filled && isClosed ? std::abs(area - std::abs(twice) / 2) : area + std::abs(twice) / 2;
      isClosed = true;
    }
  }
  if (isClosed) return CanvasView::tr("%1 m²").arg(area, 0, 'f', area < 100 ? 2 : 0);
  return length > 0 ? CanvasView::tr("%1 m").arg(length, 0, 'f', 2) : QString();
}

/// A point on the entity's first line.
std::optional<Point> pointOn(SceneRef entity, const Scene& scene) {
  for (std::uint32_t i = 0; i < entity->itemCount; ++i) {
    const auto& item = entity.chunk->recording.items[entity->firstItem + i];
    if (item.ringCount == 0) continue;
    const picture::DisplayRing& ring = entity.chunk->recording.rings[item.firstRing];
    const Point* const p = entity.chunk->recording.points.data() + ring.first;
    return scene.toPlan(ring.count > 1 ? (p[0] + p[1]) * 0.5 : p[0]);
  }
  return std::nullopt;
}

}  // namespace

/// What an entity is: the words that its outline has, else its layer.
QString CanvasView::State::wordsOf(Slot* entity) const {
  if (entity == nullptr) return {};
  const SceneRef ref = shown->keeper->find(entity);
  if (tooltipSource && ref && entity->type != DxfType::Hatch) {
    if (const auto on = pointOn(ref, *scene())) {
      QString words = QString::fromStdWString(tooltipSource({on->x, on->y, 0})).section(u'\n', 0, 0);
      if (!words.isEmpty()) return words;
    }
  }
  return QString::fromStdWString(entity->database().layerName(entity->layer));
}

QString CanvasView::State::tooltipText() const {
  const Point at = planAt(cursor);
  std::vector<Slot*> here = order;
  if (here.empty())
    here = pointAt(*shown->keeper, frame.toScene(cursor), kPickAperturePx / frame.scale(), PickFor::One);
  Slot* const entity = order.empty() ? (here.empty() ? nullptr : here.front()) : hovered();
  if (entity == nullptr) return {};
  QString words;
  if (tooltipSource) {
    words = QString::fromStdWString(tooltipSource({at.x, at.y, 0})).trimmed();
    if (words.isEmpty())
      for (Slot* outline : outlinesAround(*shown->keeper, frame.toScene(cursor))) {
        const auto on = pointOn(shown->keeper->find(outline), *scene());
        if (on) words = QString::fromStdWString(tooltipSource({on->x, on->y, 0})).trimmed();
        if (!words.isEmpty()) break;
      }
  }
  QStringList lines;
  if (!words.isEmpty()) lines += words.split(u'\n');
  QString about = typeWords(*entity) + QStringLiteral(" · ") +
                  CanvasView::tr("layer %1").arg(QString::fromStdWString(entity->database().layerName(entity->layer)));
  if (const QString size = sizeWords(*entity); !size.isEmpty()) about += QStringLiteral(" · ") + size;
  lines += about;
  if (order.size() > 1) lines += CanvasView::tr("Tab: %n more", nullptr, static_cast<int>(order.size()) - 1);
  return lines.join(u'\n');
}

}  // namespace host::window
