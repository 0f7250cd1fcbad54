#include "PlanFacts.h"

#include <algorithm>
#include <cmath>
#include <cwctype>
#include <map>

#include "DrawingInfo.h"
#include "Geometry/References.h"
#include "Text/Text.h"
#include "Tolmex/Model/BuildingRecord.h"
#include "Tolmex/Model/ElementTag.h"
#include "Tolmex/Model/Names.h"
#include "XDataValues.h"

namespace tolmex {

using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::Slot;
using host::picture::EntityNote;
using host::picture::LegendRow;
using OrvLib::Category;

namespace {

/// "12 345": whole, with spaces that do not break.
std::wstring grouped(double value) {
  std::wstring figures = std::to_wstring(static_cast<long long>(std::llround(value)));
  for (std::size_t at = figures.size(); at > 3; at -= 3) figures.insert(at - 3, 1, L'\u00A0');
  return figures;
}

/// Measured by its length, not by its area.
bool isLine(Category category) {
  return category == Category::Hedge || category == Category::BoardFence || category == Category::StoneFence ||
         category == Category::RidgeLine;
}

std::wstring amountOf(Category category, double length, double area, double metresPerUnit) {
  if (isLine(category)) return grouped(length * metresPerUnit) + L"\u00A0m";
  return grouped(area * metresPerUnit * metresPerUnit) + L"\u00A0m\u00B2";
}

std::uint64_t firstOn(const DrawingDatabase& plan, const wchar_t* layer, DxfType type) {
  const std::uint32_t index = plan.findLayer(layer);
  for (const Slot* slot : plan.modelSpace().entities)
    if (index != 0 && slot->layer == index && slot->type == type && !slot->isErased()) return slot->handle;
  return 0;
}

/// The kind of a symbol is its name without size, variant and ending: that of "lehtipuu_2vt.dwg" is "lehtipuu". Empty
/// for what is none.
std::wstring symbolKind(const DrawingDatabase& plan, const Slot& slot) {
  if (slot.isErased() || slot.type != DxfType::Insert) return {};
  // The layer of a symbol is its name with its size.
  const std::wstring layer = plan.layerName(slot.layer);
  const std::size_t line = layer.rfind(L'_');
  if (line == std::wstring::npos || line == 0 || line + 2 != layer.size() || std::iswdigit(layer.back()) == 0)
    return {};
  const auto reference = host::geometry::readReference(slot);
  if (!reference || !plan.recordName(*reference->block->record).starts_with(layer)) return {};
  return layer.substr(0, line);
}

/// "Lehtipuu".
std::wstring shownName(std::wstring name) {
  name.front() = static_cast<wchar_t>(std::towupper(name.front()));
  std::ranges::replace(name, L'_', L' ');
  return name;
}

void addSymbols(const DrawingDatabase& plan, std::vector<LegendRow>& kinds) {
  struct Symbol {
    std::size_t count = 0;
    std::uint64_t sample = 0;
  };
  std::map<std::wstring, Symbol> symbols;
  for (const Slot* slot : plan.modelSpace().entities) {
    const std::wstring kind = symbolKind(plan, *slot);
    if (kind.empty()) continue;
    Symbol& symbol = symbols[kind];
    ++symbol.count;
    symbol.sample = slot->handle;
  }
  for (const auto& [kind, symbol] : symbols)
    kinds.push_back({shownName(kind), grouped(static_cast<double>(symbol.count)) + L"\u00A0kpl", symbol.sample});
}

/// What the plan shows, in the order of the legend.
std::vector<LegendRow> rowsOf(const DrawingDatabase& plan, const DrawingInfo& info, double metresPerUnit) {
  std::vector<LegendRow> kinds;
  for (std::size_t i = 0; i < OrvLib::kCategoryCount; ++i) {
    const auto category = static_cast<Category>(i);
    const std::vector<ElementInfo>& elements = info.elements[i];
    // Roofs and ridges are parts of buildings, which have records of their own.
    if (elements.empty() || category == Category::Roof || category == Category::RidgeLine ||
        category == Category::Building)
      continue;
    LegendRow kind{OrvLib::row(category).tag, {}, 0};
    double length = 0, area = 0;
    for (const ElementInfo& element : elements) {
      length += element.length;
      area += element.area.value_or(0);
      if (kind.sample == 0 || (element.fill && plan.findHandle(kind.sample)->type != DxfType::Hatch))
        kind.sample = element.fill.value_or(element.handle);
    }
    kind.amount = amountOf(category, length, area, metresPerUnit);
    kinds.push_back(std::move(kind));
  }
  if (!info.buildings.empty()) {
    std::uint64_t sample = 0;
    for (const wchar_t* const layer : {OrvLib::layers::kRoofFill, OrvLib::layers::kRoofFillSun})
      if (sample == 0) sample = firstOn(plan, layer, DxfType::Hatch);
    if (sample == 0) sample = firstOn(plan, OrvLib::layers::kBuilding, DxfType::LwPolyline);
    kinds.push_back({OrvLib::row(Category::Building).tag,
                     grouped(static_cast<double>(info.buildings.size())) + L"\u00A0kpl", sample});
  }
  for (const auto& [name, layer] :
       {std::pair(L"Varjo", OrvLib::layers::kShadow), std::pair(L"Varjo", OrvLib::layers::kShadowFill)}) {
    const std::uint64_t sample = firstOn(plan, layer, DxfType::Hatch);
    if (sample == 0) continue;
    kinds.push_back({name, {}, sample});
    break;
  }
  if (const std::uint64_t sample = firstOn(plan, OrvLib::layers::kParking, DxfType::Line); sample != 0)
    kinds.push_back({L"Pysäköinti", {}, sample});
  addSymbols(plan, kinds);
  return kinds;
}

/// Of what has a building record.
void addBuilding(const DrawingDatabase& plan, std::uint64_t handle, host::picture::PlanFacts& facts) {
  const Slot* const slot = plan.findHandle(handle);
  const auto record = OrvLib::readStoredBuilding(extendedData(*slot, plan, OrvLib::kBuildingApplication)).complete();
  EntityNote note;
  note.title = host::text::toUtf8(record ? OrvLib::buildingTooltip(*record) : OrvLib::row(Category::Building).tag);
  facts.entities.try_emplace(handle, std::move(note));
}

}  // namespace

std::vector<LegendRow> legendRows(const DrawingDatabase& plan, double metresPerUnit) {
  return rowsOf(plan, lookThrough(*plan.facade(), true), metresPerUnit);
}

host::picture::PlanFacts planFacts(const DrawingDatabase& plan, double metresPerUnit) {
  host::picture::PlanFacts facts;
  const DrawingInfo info = lookThrough(*plan.facade(), true);
  facts.legend = rowsOf(plan, info, metresPerUnit);
  for (std::size_t i = 0; i < OrvLib::kCategoryCount; ++i)
    for (const ElementInfo& element : info.elements[i]) {
      const auto category = static_cast<Category>(i);
      EntityNote note;
      note.title = host::text::toUtf8(OrvLib::row(category).tag);
      note.isLine = isLine(category);
      if (note.isLine || element.area)
        note.detail = host::text::toUtf8(amountOf(category, element.length, element.area.value_or(0), metresPerUnit));
      if (!element.height.empty()) note.detail += ", korkeus " + element.height + "\u00A0m";
      if (element.fill) facts.entities[*element.fill] = note;
      facts.entities[element.handle] = std::move(note);
    }
  for (const BuildingValues& building : info.buildings) addBuilding(plan, building.handle, facts);
  for (const Slot* slot : plan.modelSpace().entities)
    if (const std::wstring kind = symbolKind(plan, *slot); !kind.empty())
      facts.entities.try_emplace(slot->handle, EntityNote{host::text::toUtf8(shownName(kind)), {}, false});
  return facts;
}

}  // namespace tolmex
