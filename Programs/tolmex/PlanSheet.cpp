#include "PlanSheet.h"

#include <algorithm>
#include <cmath>
#include <cwctype>
#include <functional>
#include <map>

#include "DrawingInfo.h"
#include "Dxf/DxfFile.h"
#include "Geometry/EntityPaths.h"
#include "Geometry/References.h"
#include "Inputs.h"
#include "PlanSession.h"
#include "Platform/Paths.h"
#include "Text/Text.h"
#include "Tolmex/Model/Names.h"

namespace tolmex {

namespace fs = std::filesystem;
using host::Code;
using host::problemOf;
using host::Result;
using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::Slot;
using host::geometry::Box;
using host::picture::LegendRow;
using host::platform::pathOf;

namespace {

// Layers of a sheet that say where things go. What lies on them is not shown.
constexpr const wchar_t* kPaperLayer = L"ARKKI";
constexpr const wchar_t* kFrameLayer = L"KUVA";
constexpr const wchar_t* kLegendLayer = L"SELITE";
constexpr const wchar_t* kScaleBarLayer = L"MITTAJANA";
constexpr const wchar_t* kNorthLayer = L"POHJOINEN";

constexpr const wchar_t* kScaleField = L"MITTAKAAVA";

std::wstring capitals(std::wstring text) {
  std::ranges::transform(text, text.begin(), [](wchar_t c) { return static_cast<wchar_t>(std::towupper(c)); });
  return text;
}

fs::path sheetFolder() { return plugInFile().parent_path() / "sheets"; }

Result<fs::path> findSheet(const std::string& name, const std::vector<fs::path>& folders) {
  std::vector<fs::path> places{{}};
  if (!pathOf(name).has_parent_path()) {
    places.insert(places.end(), folders.begin(), folders.end());
    places.push_back(sheetFolder());
  }
  std::error_code error;
  for (const fs::path& place : places)
    for (const char* const ending : {"", ".dxf"})
      if (const fs::path file = place / pathOf(name + ending); fs::is_regular_file(file, error)) return file;
  std::vector<std::string> known;
  for (const auto& entry : fs::directory_iterator(sheetFolder(), error))
    if (entry.path().extension() == ".dxf") known.push_back(entry.path().stem().string());
  std::ranges::sort(known, std::greater());
  std::string names;
  for (const std::string& each : known) names += (names.empty() ? "" : ", ") + each;
  return problemOf(Code::WrongUsage, "there is no sheet \"" + name + "\"; the program has " + names);
}

/// Of what lies on the layer; empty without such a layer.
Box placeOf(const DrawingDatabase& drawing, const wchar_t* layer, std::vector<std::uint32_t>& placeholders) {
  const std::uint32_t index = drawing.findLayer(layer);
  Box box;
  if (index == 0) return box;
  placeholders.push_back(index);
  for (const Slot* slot : drawing.modelSpace().entities)
    if (!slot->isErased() && slot->layer == index) box.add(host::geometry::entityExtents(*slot));
  return box;
}

/// "12 345": whole, with spaces that do not break.
std::wstring grouped(double value) {
  std::wstring figures = std::to_wstring(static_cast<long long>(std::llround(value)));
  for (std::size_t at = figures.size(); at > 3; at -= 3) figures.insert(at - 3, 1, L'\u00A0');
  return figures;
}

struct Kind {
  std::wstring name;  // which own texts replace
  std::wstring amount;
  std::uint64_t sample = 0;
};

std::uint64_t firstOn(const DrawingDatabase& plan, const wchar_t* layer, DxfType type) {
  const std::uint32_t index = plan.findLayer(layer);
  for (const Slot* slot : plan.modelSpace().entities)
    if (index != 0 && slot->layer == index && slot->type == type && !slot->isErased()) return slot->handle;
  return 0;
}

/// Symbols by their names without size, variant and ending: "lehtipuu_2vt.dwg" is a "Lehtipuu".
void addSymbols(const DrawingDatabase& plan, std::vector<Kind>& kinds) {
  struct Symbol {
    std::size_t count = 0;
    std::uint64_t sample = 0;
  };
  std::map<std::wstring, Symbol> symbols;
  for (const Slot* slot : plan.modelSpace().entities) {
    if (slot->isErased() || slot->type != DxfType::Insert) continue;
    // The layer of a symbol is its name with its size.
    const std::wstring layer = plan.layerName(slot->layer);
    const std::size_t line = layer.rfind(L'_');
    if (line == std::wstring::npos || line == 0 || line + 2 != layer.size() || std::iswdigit(layer.back()) == 0)
      continue;
    const auto reference = host::geometry::readReference(*slot);
    if (!reference || !plan.recordName(*reference->block->record).starts_with(layer)) continue;
    Symbol& symbol = symbols[layer.substr(0, line)];
    ++symbol.count;
    symbol.sample = slot->handle;
  }
  for (const auto& [name, symbol] : symbols) {
    std::wstring shown = name;
    shown.front() = static_cast<wchar_t>(std::towupper(shown.front()));
    std::ranges::replace(shown, L'_', L' ');
    kinds.push_back({shown, grouped(static_cast<double>(symbol.count)) + L"\u00A0kpl", symbol.sample});
  }
}

/// What the plan shows, in the order of the legend.
std::vector<Kind> kindsOf(const DrawingDatabase& plan, double metresPerUnit) {
  using OrvLib::Category;
  const DrawingInfo info = lookThrough(*plan.facade(), true);
  std::vector<Kind> kinds;
  for (std::size_t i = 0; i < OrvLib::kCategoryCount; ++i) {
    const auto category = static_cast<Category>(i);
    const std::vector<ElementInfo>& elements = info.elements[i];
    // Roofs and ridges are parts of buildings, which have records of their own.
    if (elements.empty() || category == Category::Roof || category == Category::RidgeLine ||
        category == Category::Building)
      continue;
    const bool isLine =
        category == Category::Hedge || category == Category::BoardFence || category == Category::StoneFence;
    Kind kind{OrvLib::row(category).tag, {}, 0};
    double amount = 0;
    for (const ElementInfo& element : elements) {
      amount += isLine ? element.length * metresPerUnit : element.area.value_or(0) * metresPerUnit * metresPerUnit;
      if (kind.sample == 0 || (element.fill && plan.findHandle(kind.sample)->type != DxfType::Hatch))
        kind.sample = element.fill.value_or(element.handle);
    }
    kind.amount = grouped(amount) + (isLine ? L"\u00A0m" : L"\u00A0m\u00B2");
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

/// Lines "name = text": the rows in this order, with these texts; a row without a text is left out. What the file does
/// not name follows.
Result<std::vector<LegendRow>> legendOf(std::vector<Kind> kinds, const fs::path& file) {
  std::vector<LegendRow> rows;
  if (!file.empty()) {
    const Result<std::string> read = readScript(file);
    if (!read) return read;
    const std::wstring text = host::text::fromUtf8(*read);
    std::size_t begin = 0;
    for (unsigned line = 1; begin < text.size(); ++line) {
      const std::size_t end = std::min(text.find(L'\n', begin), text.size());
      const auto trimmed = [](std::wstring_view part) {
        const std::size_t first = part.find_first_not_of(L" \t\r\uFEFF");
        if (first == std::wstring_view::npos) return std::wstring();
        return std::wstring(part.substr(first, part.find_last_not_of(L" \t\r") - first + 1));
      };
      const std::wstring whole = trimmed(std::wstring_view(text).substr(begin, end - begin));
      begin = end + 1;
      if (whole.empty() || whole.front() == L';') continue;
      const std::size_t equals = whole.find(L'=');
      if (equals == std::wstring::npos) {
        host::Problem problem = problemOf(Code::WrongUsage, "a line of a legend is of the form name = text");
        problem.file = file.string();
        problem.line = line;
        return problem;
      }
      const std::wstring name = trimmed(std::wstring_view(whole).substr(0, equals));
      const auto kind =
          std::ranges::find_if(kinds, [&name](const Kind& each) { return host::text::equalFolded(each.name, name); });
      if (kind == kinds.end()) continue;  // the plan has none of them
      const std::wstring own = trimmed(std::wstring_view(whole).substr(equals + 1));
      if (!own.empty()) rows.push_back({own, kind->amount, kind->sample});
      kinds.erase(kind);
    }
  }
  for (Kind& kind : kinds) rows.push_back({std::move(kind.name), std::move(kind.amount), kind.sample});
  return rows;
}

fs::path inFolders(const fs::path& name, const std::vector<fs::path>& folders) {
  std::error_code error;
  if (!name.empty() && !name.has_parent_path() && !fs::exists(name, error))
    for (const fs::path& folder : folders)
      if (fs::exists(folder / name, error)) return folder / name;
  return name;
}

}  // namespace

Result<std::unique_ptr<PlanSheet>> prepareSheet(const DrawingDatabase& plan,
                                                const host::picture::PictureOptions& options,
                                                const std::vector<fs::path>& folders) {
  const Result<fs::path> file = findSheet(options.sheetFile, folders);
  if (!file) return file;
  auto made = std::make_unique<PlanSheet>();
  DrawingDatabase& drawing = host::database::databaseOf(&made->drawing);
  if (const Result<> read = host::dxf::readDrawing(drawing, *file); !read) return read.problem();
  host::picture::Sheet& sheet = made->sheet;
  sheet.drawing = &drawing;
  const auto refused = [&file](const std::string& sentence) {
    return problemOf(Code::WrongUsage, file->string() + ": " + sentence);
  };
  sheet.paper = placeOf(drawing, kPaperLayer, sheet.placeholders);
  if (sheet.paper.isEmpty()) sheet.paper = host::geometry::blockExtents(drawing, drawing.modelSpace());
  sheet.frame = placeOf(drawing, kFrameLayer, sheet.placeholders);
  if (sheet.frame.isEmpty()) return refused("nothing lies on a layer KUVA, which says where the plan goes");
  for (const auto& [place, layer] : {std::pair(&sheet.legend, kLegendLayer), std::pair(&sheet.scaleBar, kScaleBarLayer),
                                     std::pair(&sheet.northArrow, kNorthLayer)})
    if (const Box box = placeOf(drawing, layer, sheet.placeholders); !box.isEmpty()) *place = box;
  const std::vector<std::wstring> known = host::picture::fieldsOf(drawing);
  for (const auto& [name, text] : options.fields) {
    const std::wstring field = capitals(host::text::fromUtf8(name));
    if (std::ranges::find(known, field) == known.end()) {
      std::string names;
      for (const std::wstring& each : known) names += (names.empty() ? "" : ", ") + host::text::toUtf8(each);
      return refused("the sheet has no field " + name + "; it has " + (names.empty() ? "none" : names));
    }
    sheet.fields[field] = host::text::fromUtf8(text);
  }
  sheet.scaleField = kScaleField;
  sheet.northLetter = L"P";
  if (sheet.legend) {
    const fs::path own = inFolders(pathOf(options.legendFile), folders);
    Result<std::vector<LegendRow>> rows = legendOf(kindsOf(plan, options.metresPerUnit), own);
    if (!rows) return rows.problem();
    sheet.rows = std::move(rows.value());
  }
  return made;
}

}  // namespace tolmex
