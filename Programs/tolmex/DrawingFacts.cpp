#include "DrawingFacts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <unordered_map>

#include "GeoReference.h"
#include "Geometry/Layers.h"
#include "Geometry/PlainText.h"
#include "Geometry/References.h"
#include "Picture/ImagePlaces.h"
#include "Picture/Picture.h"
#include "Picture/PlotSettings.h"
#include "Text/Text.h"

namespace tolmex {

using host::database::BlockContents;
using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::Slot;
using host::database::Tag;
using host::database::TagCursor;
using host::geometry::Box;

namespace {

std::string textOf(const DrawingDatabase& drawing, const Tag& tag) {
  return host::text::toUtf8(drawing.codec().decode(tag.value));
}

/// Names of $INSUNITS.
std::string unitName(std::int64_t code) {
  constexpr std::array kNames = {"",          "inch",      "foot",      "mile",      "millimetre", "centimetre",
                                 "metre",     "kilometre", "microinch", "mil",       "yard",       "angstrom",
                                 "nanometre", "micron",    "decimetre", "decametre", "hectometre", "gigametre"};
  return code > 0 && code < static_cast<std::int64_t>(kNames.size()) ? kNames[static_cast<std::size_t>(code)] : "";
}

/// Whether a line that may be closed is, by its flag or because it ends where it begins. Nothing for other entities.
std::optional<bool> closedness(const Slot& slot) {
  if (slot.type != DxfType::LwPolyline && slot.type != DxfType::Polyline2d && slot.type != DxfType::Polyline3d &&
      slot.type != DxfType::Spline && slot.type != DxfType::Ellipse)
    return std::nullopt;
  const Box box = host::geometry::entityExtents(slot);
  if (box.isEmpty()) return false;
  // Chords of any size: only their ends matter.
  const auto paths = host::geometry::entityPaths(slot, std::max(box.maxX - box.minX, box.maxY - box.minY));
  return !paths.empty() && std::ranges::all_of(paths, [](const host::geometry::Path& path) {
    if (path.points.size() < 2) return false;
    return path.closed ||
           (path.points.front().x == path.points.back().x && path.points.front().y == path.points.back().y);
  });
}

class Gatherer {
 public:
  Gatherer(const DrawingDatabase& drawing, const std::string& folder, DrawingFacts& facts)
      : drawing_(drawing), folder_(folder), states_(drawing), facts_(facts) {}

  void gather() {
    for (const Slot* record : drawing_.records(DxfType::Layer))
      if (!record->isErased()) layer(drawing_.findLayer(drawing_.recordName(*record)));
    for (const auto& [name, block] : drawing_.layouts()) space(name, *block);
    drawing_.forEachSlot([this](Slot& slot) {
      if (!slot.isErased()) object(slot);
    });
    for (const Slot* record : drawing_.records(DxfType::BlockRecord))
      if (!record->isErased()) block(*record);
    std::ranges::sort(facts_.layers, {},
                      [](const LayerFacts& each) { return host::text::folded(host::text::fromUtf8(each.name)); });
  }

 private:
  LayerFacts& layer(std::uint32_t index) {
    const auto [entry, isNew] = layers_.try_emplace(index, facts_.layers.size());
    if (!isNew) return facts_.layers[entry->second];
    LayerFacts made;
    made.name = host::text::toUtf8(drawing_.layerName(index));
    const host::geometry::LayerState& state = states_.at(index);
    made.color = state.color;
    made.isOff = state.off;
    made.isFrozen = state.frozen;
    made.isLocked = state.locked;
    made.isPlotted = state.plottable;
    facts_.layers.push_back(std::move(made));
    return facts_.layers.back();
  }

  void space(const std::wstring& name, const BlockContents& contents) {
    std::size_t entities = 0;
    for (const Slot* slot : contents.entities) {
      if (slot->isErased()) continue;
      ++entities;
      KindCount& kind = layer(slot->layer).kinds[std::string(drawing_.typeName(*slot))];
      ++kind.count;
      if (const auto closed = closedness(*slot)) kind.closed = kind.closed.value_or(0) + (*closed ? 1 : 0);
    }
    if (&contents == &drawing_.modelSpace()) return;
    LayoutFacts made{host::text::toUtf8(name), entities, 0, 0};
    if (const auto plot = host::picture::plotSettings(drawing_, name)) {
      made.widthMm = plot->paperWidthMm;
      made.heightMm = plot->paperHeightMm;
    }
    facts_.layouts.push_back(std::move(made));
  }

  void object(const Slot& slot) {
    if (const std::wstring text = host::geometry::plainText(slot); !text.empty())
      facts_.texts.push_back({slot.handle, std::string(drawing_.typeName(slot)),
                              host::text::toUtf8(drawing_.layerName(slot.layer)), host::text::toUtf8(text)});
    if (host::geometry::isReference(slot))
      if (const auto reference = host::geometry::readReference(slot)) ++uses_[reference->block];
    if (drawing_.typeName(slot) == "IMAGEDEF") image(slot);
  }

  void image(const Slot& slot) {
    ImageFacts made{slot.handle, {}, false};
    TagCursor tags = slot.tags();
    for (Tag tag; tags.next(tag);)
      if (tag.code == 1 && made.file.empty()) made.file = textOf(drawing_, tag);
    std::error_code error;
    made.isThere = std::ranges::any_of(host::picture::imagePlaces(made.file, folder_), [&](const auto& place) {
      return std::filesystem::is_regular_file(place, error);
    });
    facts_.images.push_back(std::move(made));
  }

  void block(const Slot& record) {
    const BlockContents* const contents = drawing_.block(&record);
    const std::wstring name = drawing_.recordName(record);
    if (contents == nullptr || name.empty() || name.starts_with(L'*')) return;
    BlockFacts made;
    made.name = host::text::toUtf8(name);
    for (const Slot* slot : contents->entities) made.entities += slot->isErased() ? 0 : 1;
    if (contents->begin != nullptr) {
      TagCursor tags = contents->begin->tags();
      for (Tag tag; tags.next(tag);)
        if (tag.code == 1) made.file = textOf(drawing_, tag);
    }
    if (const auto used = uses_.find(contents); used != uses_.end()) made.uses = used->second;
    facts_.blocks.push_back(std::move(made));
  }

  const DrawingDatabase& drawing_;
  const std::string& folder_;
  host::geometry::LayerStates states_;
  DrawingFacts& facts_;
  std::unordered_map<std::uint32_t, std::size_t> layers_;
  std::unordered_map<const BlockContents*, std::size_t> uses_;
};

}  // namespace

DrawingFacts drawingFacts(const DrawingDatabase& drawing, const std::string& folder) {
  DrawingFacts facts;
  facts.extents = host::geometry::blockExtents(drawing, drawing.modelSpace());
  facts.unit = unitName(drawing.headerInteger("$INSUNITS", 70).value_or(0));
  facts.metresPerUnit = host::picture::metresPerUnit(drawing);
  Gatherer(drawing, folder, facts).gather();
  facts.system = systemOfDrawing(drawing);
  if (facts.system.empty()) {
    facts.system = systemByCoordinates(facts.extents);
    facts.isSystemGuessed = !facts.system.empty();
  }
  return facts;
}

}  // namespace tolmex
