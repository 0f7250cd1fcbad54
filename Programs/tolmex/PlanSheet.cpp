#include "PlanSheet.h"

#include <algorithm>
#include <cwctype>
#include <functional>
#include <iterator>

#include "Dxf/DxfFile.h"
#include "Geometry/EntityPaths.h"
#include "Inputs.h"
#include "PlanFacts.h"
#include "PlanSession.h"
#include "Platform/Paths.h"
#include "Text/Text.h"

namespace tolmex {

namespace fs = std::filesystem;
using host::Code;
using host::problemOf;
using host::Result;
using host::database::DrawingDatabase;
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

/// Lines "name = text": the rows in this order, with these texts; a row without a text is left out. What the file does
/// not name follows.
Result<std::vector<LegendRow>> legendOf(std::vector<LegendRow> kinds, const fs::path& file) {
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
      const auto kind = std::ranges::find_if(
          kinds, [&name](const LegendRow& each) { return host::text::equalFolded(each.name, name); });
      if (kind == kinds.end()) continue;  // the plan has none of them
      const std::wstring own = trimmed(std::wstring_view(whole).substr(equals + 1));
      if (!own.empty()) rows.push_back({own, kind->amount, kind->sample});
      kinds.erase(kind);
    }
  }
  rows.insert(rows.end(), std::make_move_iterator(kinds.begin()), std::make_move_iterator(kinds.end()));
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
    Result<std::vector<LegendRow>> rows = legendOf(legendRows(plan, options.metresPerUnit), own);
    if (!rows) return rows.problem();
    sheet.rows = std::move(rows.value());
  }
  return made;
}

}  // namespace tolmex
