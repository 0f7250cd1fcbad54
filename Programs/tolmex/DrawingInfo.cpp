#include "DrawingInfo.h"

#include <algorithm>
#include <cmath>

#include "Geometry/EntityPaths.h"
#include "OrvLib/DataStruct/Text.h"
#include "Text/Text.h"
#include "Tolmex/Model/ElementTag.h"
#include "XDataValues.h"

namespace tolmex {

using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::Slot;
using host::database::Tag;
using host::database::TagCursor;
using host::geometry::Path;
using host::geometry::Point;

namespace {

// Chords this close to their arcs, by the entity's size, leave areas and lengths right to seven digits.
constexpr double kDeviationBySize = 1e-7;

/// Shoelace sum about the first point: plan coordinates are large, outlines are not.
double areaOf(const Path& path) {
  double twice = 0;
  const Point origin = path.points.front();
  for (std::size_t i = 1; i + 1 < path.points.size(); ++i) {
    const Point a = path.points[i], b = path.points[i + 1];
    twice += (a.x - origin.x) * (b.y - origin.y) - (b.x - origin.x) * (a.y - origin.y);
  }
  return std::abs(twice) / 2;
}

double lengthOf(const Path& path) {
  double length = 0;
  for (std::size_t i = 1; i < path.points.size(); ++i)
    length += std::hypot(path.points[i].x - path.points[i - 1].x, path.points[i].y - path.points[i - 1].y);
  const Point first = path.points.front(), last = path.points.back();
  return path.closed ? length + std::hypot(first.x - last.x, first.y - last.y) : length;
}

bool isLoop(const Path& path) {
  const Point first = path.points.front(), last = path.points.back();
  return path.points.size() > 2 && (path.closed || (first.x == last.x && first.y == last.y));
}

void measure(const Slot& slot, ElementInfo& element) {
  const host::geometry::Box box = host::geometry::entityExtents(slot);
  if (box.isEmpty()) return;
  const double size = std::max(box.maxX - box.minX, box.maxY - box.minY);
  for (const Path& path : host::geometry::entityPaths(slot, size * kDeviationBySize)) {
    if (path.points.empty()) continue;
    element.length += lengthOf(path);
    if (isLoop(path)) element.area = element.area.value_or(0) + areaOf(path);
  }
}

class Look {
 public:
  Look(const DrawingDatabase& drawing, bool measures, DrawingInfo& info)
      : drawing_(drawing), measures_(measures), info_(info) {}

  void at(const Slot& slot) {
    if (slot.isErased()) return;
    if (slot.type == DxfType::Group) atGroup(slot);
    if (!slot.isEntity() || slot.isSubEntity()) return;
    if (auto building = readBuilding(slot, drawing_, info_.problems)) info_.buildings.push_back(std::move(*building));
    const OrvLib::DataItems data = extendedData(slot, drawing_, OrvLib::kTagApplication);
    if (!data.empty()) atElement(slot, OrvLib::readElementTag(data));
  }

 private:
  void atGroup(const Slot& slot) {
    Tag tag;
    for (TagCursor cursor = slot.tags(); cursor.next(tag);) {
      if (tag.code == 300 && drawing_.codec().decode(tag.value) == L"Pysäköintialueiden viivat") ++info_.parkingRows;
    }
  }

  void atElement(const Slot& slot, const OrvLib::ElementTag& tag) {
    const std::wstring entityType = tag.category.value_or(L"");
    ElementInfo element;
    element.handle = slot.handle;
    element.type = drawing_.typeName(slot);
    const std::string where = element.type + " " + host::text::formatHandle(slot.handle);
    const std::optional<OrvLib::Category> category = OrvLib::categoryOfTag(entityType);
    if (!category) {
      info_.problems.push_back(
          {host::Code::ElementUntagged,
           {},
           0,
           slot.handle,
           where + (entityType.empty() ? ": the tag names no category"
                                       : ": unknown category \"" + host::text::toUtf8(entityType) + "\"")});
      return;
    }
    const std::wstring stored = tag.height.value_or(L"");
    const std::string height = host::text::toUtf8(stored);
    if (OrvLib::leadingNumber(stored) != 0) element.height = height;
    if (!host::text::parseReal(height) && !height.empty())
      info_.problems.push_back(
          {host::Code::ElementValue, {}, 0, slot.handle, where + ": the height is not a number: \"" + height + "\""});
    const std::uint64_t handle = host::text::parseHandle(host::text::toUtf8(tag.hatchHandle.value_or(L"")));
    // Fences with a height name themselves.
    if (handle != 0 && handle != slot.handle) element.fill = livingFill(handle, slot, where);
    if (measures_) {
      element.layer = host::text::toUtf8(layerName(slot));
      measure(slot, element);
    }
    info_.elements[static_cast<std::size_t>(*category)].push_back(std::move(element));
  }

  std::optional<std::uint64_t> livingFill(std::uint64_t handle, const Slot& slot, const std::string& where) {
    const Slot* const fill = drawing_.findHandle(handle);
    const std::string name = where + ": its fill " + host::text::formatHandle(handle);
    if (fill == nullptr || fill->isErased()) {
      info_.problems.push_back({host::Code::ElementFill, {}, 0, slot.handle, name + " is not in the drawing"});
    } else if (fill->type != DxfType::Hatch) {
      info_.problems.push_back({host::Code::ElementFill, {}, 0, slot.handle, name + " is not a hatch"});
    } else {
      return handle;
    }
    return std::nullopt;
  }

  std::wstring layerName(const Slot& slot) const {
    Tag tag;
    for (TagCursor cursor = slot.tags(); cursor.next(tag);) {
      if (tag.code == 8) return drawing_.codec().decode(tag.value);
    }
    return L"0";
  }

  const DrawingDatabase& drawing_;
  bool measures_;
  DrawingInfo& info_;
};

std::vector<LayerColor> fillColors(const DrawingDatabase& drawing) {
  std::vector<LayerColor> colors;
  for (const OrvLib::ElementRow& row : OrvLib::kCategories) {
    if (row.fill.name == nullptr) continue;
    const Slot* const layer = drawing.findRecord(DxfType::Layer, row.fill.name);
    if (layer == nullptr) continue;
    std::int64_t color = 7;
    Tag tag;
    for (TagCursor cursor = layer->tags(); cursor.next(tag);) {
      if (tag.code == 62) color = tag.integer();
    }
    colors.push_back({host::text::toUtf8(row.fill.name), static_cast<int>(std::abs(color)), color < 0});
  }
  return colors;
}

}  // namespace

DrawingInfo lookThrough(AcDbDatabase& database, bool measures) {
  const DrawingDatabase& drawing = host::database::databaseOf(&database);
  DrawingInfo info;
  info.version = static_cast<int>(drawing.version());
  info.layers = drawing.records(DxfType::Layer).size();
  for (const Slot* const slot : drawing.modelSpace().entities) info.entities += slot->isErased() ? 0 : 1;
  Look look(drawing, measures, info);
  drawing.forEachSlot([&](Slot& slot) { look.at(slot); });
  info.shadows = readShadowSettings(database, info.problems);
  info.colors = fillColors(drawing);
  info.fileProblems = drawing.problems();
  return info;
}

}  // namespace tolmex
