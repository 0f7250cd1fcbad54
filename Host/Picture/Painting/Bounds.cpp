#include "Picture/Painting/Bounds.h"

#include <algorithm>
#include <cmath>

#include "Database/TagValues.h"
#include "Geometry/References.h"
#include "Hatching/Linetypes.h"

namespace host::picture {
namespace {

using database::DxfType;
using database::GeometryTags;
using database::Slot;
using database::Tag;
using geometry::Box;
using geometry::Point;

bool isPlanAxis(double x, double y, double z) { return x == 0 && y == 0 && z > 0; }

/// Points of an entity's tags, and how far from their box it reaches.
struct Reach {
  Box box;
  double beyond = 0;
  bool isTold = true;

  Box whole() const { return {box.minX - beyond, box.minY - beyond, box.maxX + beyond, box.maxY + beyond}; }
  double diagonal() const { return std::hypot(box.maxX - box.minX, box.maxY - box.minY); }
};

/// Reads points under the codes 10 and 11, whose y follows; the extrusion must be that of the plan.
template <class Other>
Reach readPoints(const Slot& entity, const Other& other) {
  Reach reach;
  double x = 0;
  double normalX = 0, normalY = 0, normalZ = 1;
  GeometryTags tags(entity.tags());
  for (Tag tag; reach.isTold && tags.next(tag);) {
    switch (tag.code) {
      case 10:
      case 11:
        x = tag.real();
        break;
      case 20:
      case 21:
        reach.box.add(Point{x, tag.real()});
        break;
      case 210:
        normalX = tag.real();
        break;
      case 220:
        normalY = tag.real();
        break;
      case 230:
        normalZ = tag.real();
        break;
      default:
        other(tag, reach);
        break;
    }
  }
  reach.isTold = reach.isTold && isPlanAxis(normalX, normalY, normalZ) && !reach.box.isEmpty() &&
                 std::isfinite(reach.box.minX + reach.box.minY + reach.box.maxX + reach.box.maxY);
  return reach;
}

Reach ofLine(const Slot& entity) {
  return readPoints(entity, [](const Tag& tag, Reach& reach) { reach.isTold = tag.code != 39; });
}

Reach ofCircle(const Slot& entity) {
  return readPoints(entity, [](const Tag& tag, Reach& reach) {
    if (tag.code == 40) reach.beyond = std::abs(tag.real());
  });
}

Reach ofPolyline(const Slot& entity) {
  constexpr double kMiter = 10;  // of wide lines, in widths
  double bulge = 0, width = 0;
  Reach reach = readPoints(entity, [&](const Tag& tag, Reach&) {
    if (tag.code == 42) bulge = std::max(bulge, std::abs(tag.real()));
    if (tag.code == 40 || tag.code == 41 || tag.code == 43) width = std::max(width, std::abs(tag.real()));
  });
  // An arc lies within its chord times its bulge.
  reach.beyond = reach.diagonal() * bulge + width * kMiter;
  return reach;
}

Reach ofText(const Slot& entity) {
  constexpr double kWidest = 3;  // of a character, in heights
  double height = 0, factor = 1;
  std::size_t bytes = 0;
  Reach reach = readPoints(entity, [&](const Tag& tag, Reach&) {
    if (tag.code == 40) height = std::abs(tag.real());
    if (tag.code == 41) factor = std::max(1.0, std::abs(tag.real()));
    if (tag.code == 1) bytes = tag.value.size();
  });
  // Fitted texts are as long as their two points are apart.
  reach.beyond = height * kWidest * factor * (static_cast<double>(bytes) + 2) + 2 * reach.diagonal();
  return reach;
}

/// Loops of straight pieces and arcs.
Reach ofHatch(const Slot& entity) {
  Reach reach;
  double x = 0, bulge = 0, radius = 0;
  double normalX = 0, normalY = 0, normalZ = 1;
  bool isInLoops = false, isPolyline = false;
  std::int64_t edge = 0;
  GeometryTags tags(entity.tags());
  for (Tag tag; tags.next(tag);) {
    if (tag.code == 91) isInLoops = true;
    if (!isInLoops) {  // the first point is the elevation
      if (tag.code == 210) normalX = tag.real();
      if (tag.code == 220) normalY = tag.real();
      if (tag.code == 230) normalZ = tag.real();
      continue;
    }
    if (tag.code == 75 || tag.code == 98) break;
    if (tag.code == 92) isPolyline = (tag.integer() & 2) != 0;
    if (tag.code == 72 && !isPolyline) {
      edge = tag.integer();
      constexpr std::int64_t kLine = 1, kArc = 2;
      if (edge != kLine && edge != kArc) return {{}, 0, false};
    }
    if (tag.code == 10 || tag.code == 11) x = tag.real();
    if (tag.code == 20 || tag.code == 21) reach.box.add(Point{x, tag.real()});
    if (tag.code == 40) radius = std::max(radius, std::abs(tag.real()));
    if (tag.code == 42 && isPolyline) bulge = std::max(bulge, std::abs(tag.real()));
  }
  reach.beyond = radius + reach.diagonal() * bulge;
  reach.isTold = isPlanAxis(normalX, normalY, normalZ) && !reach.box.isEmpty() && std::isfinite(reach.diagonal());
  return reach;
}

Reach reachOf(const Slot& entity) {
  switch (entity.type) {
    case DxfType::Line:
      return ofLine(entity);
    case DxfType::Circle:
    case DxfType::Arc:
      return ofCircle(entity);
    case DxfType::LwPolyline:
      return ofPolyline(entity);
    case DxfType::Text:
    case DxfType::Attrib:
      return ofText(entity);
    case DxfType::Hatch:
      return ofHatch(entity);
    default:
      return {{}, 0, false};
  }
}

}  // namespace

EntityBounds::EntityBounds(const database::DrawingDatabase& db) {
  for (const Slot* record : db.records(DxfType::LineType))
    if (!record->isErased() && !hatching::linetypeMarks(record->tags()).empty()) hasMarks_ = true;
}

const std::optional<Box>& EntityBounds::blockBox(const database::BlockContents& block) {
  const auto [entry, isNew] = blocks_.try_emplace(&block);
  if (!isNew) return entry->second;
  Box box;
  for (const Slot* inner : block.entities) {
    if (inner->isErased() || inner->type == DxfType::AttDef) continue;
    const Reach reach = reachOf(*inner);
    if (!reach.isTold || !std::isfinite(reach.beyond)) return entry->second;
    box.add(reach.whole());
  }
  return entry->second = box;
}

bool EntityBounds::mayReferenceShowIn(const Slot& entity, const Box& box) {
  for (const Slot* sub = entity.firstSub(); sub != nullptr; sub = sub->nextSub)
    if (sub->type == DxfType::Attrib && mayShowIn(*sub, box)) return true;
  const auto reference = geometry::readReference(entity);
  if (!reference || reference->columns != 1 || reference->rows != 1) return true;
  const std::optional<Box>& content = blockBox(*reference->block);
  if (!content) return true;
  if (content->isEmpty()) return false;
  Box shown;
  for (const AcGePoint3d& corner :
       {AcGePoint3d{content->minX, content->minY, 0}, AcGePoint3d{content->maxX, content->minY, 0},
        AcGePoint3d{content->maxX, content->maxY, 0}, AcGePoint3d{content->minX, content->maxY, 0}})
    shown.add(reference->first.plan(corner));
  // Content at a height moves in plan when the block does not lie flat.
  if (reference->first.z.x != 0 || reference->first.z.y != 0 || !std::isfinite(shown.minX + shown.maxX)) return true;
  return shown.intersects(box);
}

bool EntityBounds::mayShowIn(const Slot& entity, const Box& box) {
  if (hasMarks_) return true;
  if (entity.type == DxfType::Insert) return mayReferenceShowIn(entity, box);
  const Reach reach = reachOf(entity);
  return !reach.isTold || !std::isfinite(reach.beyond) || reach.whole().intersects(box);
}

}  // namespace host::picture
