#include "Picture/Painting/HandleLabels.h"

#include <algorithm>
#include <cmath>

#include "Text/Text.h"

namespace host::picture {
namespace {

using database::DxfType;
using database::Slot;

bool isOutline(const Slot& slot) {
  switch (slot.type) {
    case DxfType::Line:
    case DxfType::LwPolyline:
    case DxfType::Polyline2d:
    case DxfType::Polyline3d:
    case DxfType::Circle:
    case DxfType::Arc:
    case DxfType::Ellipse:
    case DxfType::Spline:
      return true;
    default:
      return false;
  }
}

/// Of the longest straight piece; nothing for an entity without a shape.
std::optional<Point> middle(const Slot& slot) {
  constexpr double kDeviationBySize = 0.01;
  const Box box = geometry::entityExtents(slot);
  if (box.isEmpty()) return std::nullopt;
  std::optional<Point> found;
  double longest = -1;
  for (const geometry::Path& path :
       geometry::entityPaths(slot, kDeviationBySize * std::max(box.maxX - box.minX, box.maxY - box.minY))) {
    const std::size_t pieces = path.points.empty() ? 0 : path.points.size() - (path.closed ? 0 : 1);
    for (std::size_t i = 0; i < pieces; ++i) {
      const Point a = path.points[i], b = path.points[(i + 1) % path.points.size()];
      const double length = std::hypot(b.x - a.x, b.y - a.y);
      if (length <= longest) continue;
      longest = length;
      found = Point{(a.x + b.x) / 2, (a.y + b.y) / 2};
    }
  }
  return found;
}

}  // namespace

void labelHandles(const database::DrawingDatabase& db, const database::BlockContents& block, const std::string& layers,
                  const PageLayout& layout, EntityPainter& painter) {
  constexpr double kHeightMm = 1.8, kRim = 0.25;
  const std::wstring pattern = text::fromUtf8(layers);
  const double height = kHeightMm * layout.pixelsPerMm / layout.toPicture.x.x;
  for (const Slot* slot : db.drawOrder(block)) {
    if (!isOutline(*slot) || !painter.isShown(*slot)) continue;
    if (!text::matchesWildcard(db.layerName(slot->layer), pattern)) continue;
    const std::optional<Point> at = middle(*slot);
    if (!at || !layout.area.contains(*at)) continue;
    geometry::LineParts label;
    label.text = text::fromUtf8(text::formatHandle(slot->handle));
    label.height = height;
    label.isRaw = true;
    const double half = painter.labelWidth(label.text, height) / 2, rim = height * kRim;
    label.position = {at->x - half, at->y - height / 2, 0};
    const double left = at->x - half - rim, right = at->x + half + rim;
    const double low = at->y - height / 2 - rim, high = at->y + height / 2 + rim;
    painter.paintGround({{left, low, 0}, {right, low, 0}, {right, high, 0}, {left, high, 0}});
    painter.paintLabel(label);
  }
}

}  // namespace host::picture
