#include "Editor/Editing/PolylineVertices.h"

#include <algorithm>
#include <utility>

#include "Database/ObjectAccess.h"
#include "dbobjptr.h"
#include "dbpl.h"

namespace host::editor {

using database::Slot;
using database::Tag;

bool setVertices(Slot& slot, const std::vector<PolylineVertex>& vertices, bool isClosed) {
  const AcDbObjectPointer<AcDbEntity> entity(AcDbObjectId(&slot), AcDb::kForWrite);
  if (entity.openStatus() != Acad::eOk) return false;
  constexpr int kCount = 90, kFlags = 70, kConstantWidth = 43;
  const bool hasOneWidth = std::all_of(vertices.begin(), vertices.end(), [&](const PolylineVertex& vertex) {
    return &vertex == &vertices.back() ||
           (vertex.startWidth == vertices.front().startWidth && vertex.endWidth == vertices.front().startWidth);
  });
  database::TagWriter out = slot.database().tagWriter();
  bool isInside = false, isWritten = false, hasWidth = false;
  const auto write = [&] {
    if (!isInside || std::exchange(isWritten, true)) return;
    for (const PolylineVertex& vertex : vertices) {
      out.point(10, vertex.point.x, vertex.point.y);
      if (!hasWidth && (vertex.startWidth != 0 || vertex.endWidth != 0))
        out.real(40, vertex.startWidth).real(41, vertex.endWidth);
      if (vertex.bulge != 0) out.real(42, vertex.bulge);
    }
  };
  Tag tag;
  for (database::TagCursor tags = slot.tags(); tags.next(tag);) {
    if (tag.code == 100 || tag.code >= 1000) {
      write();
      isInside = tag.code == 100 && tag.trimmed() == "AcDbPolyline";
    }
    const bool isOfVertex = tag.code == 10 || tag.code == 20 || (tag.code >= 40 && tag.code <= 42) || tag.code == 91;
    if (isInside && tag.code == kCount) {
      out.integer(kCount, static_cast<std::int64_t>(vertices.size()));
    } else if (isInside && tag.code == kFlags) {
      out.integer(kFlags, tag.integer() | (isClosed ? 1 : 0));
    } else if (isInside && tag.code == kConstantWidth) {
      hasWidth = hasOneWidth;
      if (hasWidth) out.bytes(tag.bytes);
    } else if (!isInside || !isOfVertex) {
      if (isInside && tag.code == 210) write();
      out.bytes(tag.bytes);
    }
  }
  write();
  HostObjectAccess::editRecord(*entity).assign(HostObjectAccess::keep(*entity, out.str()));
  return true;
}

std::optional<curves::Polygon> straightRing(Slot& entity) {
  if (entity.type != database::DxfType::LwPolyline) return std::nullopt;
  const AcDbObjectPointer<AcDbPolyline> polyline(AcDbObjectId(&entity), AcDb::kForRead);
  if (polyline.openStatus() != Acad::eOk) return std::nullopt;
  curves::Polygon ring;
  for (unsigned i = 0; i < polyline->numVerts(); ++i) {
    AcGePoint2d point;
    double bulge = 0, start = 0, end = 0;
    polyline->getPointAt(i, point);
    polyline->getBulgeAt(i, bulge);
    polyline->getWidthsAt(i, start, end);
    if (bulge != 0 || start != 0 || end != 0 || !curves::isFinite({point.x, point.y})) return std::nullopt;
    ring.push_back({point.x, point.y});
  }
  const bool repeats = ring.size() > 3 && ring.front().x == ring.back().x && ring.front().y == ring.back().y;
  if (repeats) ring.pop_back();
  if (ring.size() < 3 || (!polyline->isClosed() && !repeats)) return std::nullopt;
  return ring;
}

}  // namespace host::editor
