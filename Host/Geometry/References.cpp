#include "Geometry/References.h"

#include <algorithm>
#include <numbers>

#include "Database/ObjectAccess.h"
#include "Database/TagValues.h"

namespace host::geometry {
namespace {

using database::DxfType;
using database::GeometryTags;
using database::isUsable;
using database::Slot;
using database::Tag;

constexpr std::int64_t kMostCells = 32767;  // of the format, in either direction

AcGePoint3d basePoint(const database::BlockContents& block) {
  AcGePoint3d base;
  if (block.begin == nullptr) return base;
  GeometryTags tags(block.begin->tags());
  for (Tag tag; tags.next(tag);) takePoint(tag, 10, base);
  return isUsable(base) ? base : AcGePoint3d{};
}

std::int64_t attributeFlags(const Slot& slot) {
  GeometryTags tags(slot.tags());
  bool isAttributePart = false;
  std::int64_t flags = 0;
  // 70 before the attribute's own part belongs to newer text data.
  for (Tag tag; tags.next(tag);) {
    if (tag.code == 100) isAttributePart = tag.trimmed().starts_with("AcDbAttribute");
    if (tag.code == 70 && (isAttributePart || flags == 0)) {
      flags = tag.integer();
      if (isAttributePart) break;
    }
  }
  return flags;
}

struct ReferenceTags {
  std::string_view name;
  AcGePoint3d position, direction{1, 0, 0}, clonePosition, normal{0, 0, 1};
  AcGePoint3d scale{1, 1, 1};
  double rotationRad = 0, columnSpacing = 0, rowSpacing = 0;
  std::int64_t columns = 1, rows = 1;

  explicit ReferenceTags(const Slot& slot) {
    bool hasName = false;
    GeometryTags tags(slot.tags());
    for (Tag tag; tags.next(tag);) {
      if (takePoint(tag, 10, position) || takePoint(tag, 11, direction) || takePoint(tag, 12, clonePosition) ||
          takePoint(tag, 210, normal) || takeReal(tag, 41, scale.x) || takeReal(tag, 42, scale.y) ||
          takeReal(tag, 43, scale.z) || takeReal(tag, 44, columnSpacing) || takeReal(tag, 45, rowSpacing))
        continue;
      switch (tag.code) {
        case 2:
          if (!hasName) name = tag.value;
          hasName = true;
          break;
        case 50:
          rotationRad = tag.real() * std::numbers::pi / 180;
          break;
        case 70:
          columns = std::clamp<std::int64_t>(tag.integer(), 1, kMostCells);
          break;
        case 71:
          rows = std::clamp<std::int64_t>(tag.integer(), 1, kMostCells);
          break;
        default:
          break;
      }
    }
  }
};

}  // namespace

bool isDimension(const Slot& entity) {
  if (entity.type < DxfType::FirstOther) return entity.type == DxfType::Dimension;
  const std::string_view name = entity.database().typeName(entity);
  return name == "ARC_DIMENSION" || name == "LARGE_RADIAL_DIMENSION";
}

bool isReference(const Slot& entity) {
  return entity.type == DxfType::Insert || entity.type == DxfType::Table || isDimension(entity);
}

std::optional<BlockReference> readReference(const Slot& entity) {
  if (!isReference(entity)) return {};
  const ReferenceTags tags(entity);
  if (tags.name.empty()) return {};
  const auto& db = entity.database();
  BlockReference reference;
  reference.block = db.findBlock(db.codec().decode(tags.name));
  if (reference.block == nullptr) return {};
  const AcGePoint3d base = basePoint(*reference.block);
  if (isDimension(entity)) {
    // The block of a dimension is drawn in world coordinates; copies of it are moved by a vector.
    if (!isUsable(tags.clonePosition)) return {};
    reference.first.origin = tags.clonePosition;
    return reference;
  }
  const database::ObjectAxes axes(tags.normal.asVector());
  const bool isTable = entity.type == DxfType::Table;
  AcGeVector3d along, across;
  if (isTable) {
    along = tags.direction.asVector().normal();
    across = axes.az.crossProduct(along);
  } else {
    const double c = std::cos(tags.rotationRad), s = std::sin(tags.rotationRad);
    along = axes.ax * c + axes.ay * s;
    across = axes.ay * c - axes.ax * s;
  }
  const AcGePoint3d scale = isTable ? AcGePoint3d{1, 1, 1} : tags.scale;
  const AcGePoint3d position =
      isTable ? tags.position : axes.toWorld(tags.position.x, tags.position.y, tags.position.z);
  reference.first = {along * scale.x, across * scale.y, axes.az * scale.z, position};
  reference.first.origin = reference.first.point(AcGePoint3d{} - base.asVector());
  if (!isTable) {
    reference.columns = tags.columns;
    reference.rows = tags.rows;
    if (reference.columns > 1) reference.columnStep = along * tags.columnSpacing;
    if (reference.rows > 1) reference.rowStep = across * tags.rowSpacing;
  }
  const Transform last = reference.cell(reference.columns - 1, reference.rows - 1);
  const auto isFinite = [](const AcGeVector3d& v) { return std::isfinite(v.x + v.y + v.z); };
  if (!isUsable(last.origin) || !isFinite(last.x) || !isFinite(last.y) || !isFinite(last.z)) return {};
  return reference;
}

bool isDrawnInReference(const Slot& entity) {
  constexpr std::int64_t kInvisible = 1, kConstant = 2;
  if (entity.isErased()) return false;
  return entity.type != DxfType::AttDef || (attributeFlags(entity) & (kInvisible | kConstant)) == kConstant;
}

bool isInvisibleAttribute(const Slot& attribute) { return (attributeFlags(attribute) & 1) != 0; }

bool ReferenceChain::enter(const database::BlockContents* block) {
  if (std::ranges::find(blocks_, block) != blocks_.end()) return false;
  if (blocks_.size() >= kDeepestNesting) {
    wasTooDeep_ = true;
    return false;
  }
  blocks_.push_back(block);
  return true;
}

}  // namespace host::geometry
