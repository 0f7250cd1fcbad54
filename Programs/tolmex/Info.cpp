// `tolmex info`: what the illustration picture of a drawing is made of.
#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>

#include "BuildingInfo.h"
#include "Commands.h"
#include "Dxf/DxfFile.h"
#include "Text/Text.h"
#include "Tolmex/Catalogue.h"
#include "XDataValues.h"

namespace tolmex {

using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::Slot;
using host::database::Tag;
using host::database::TagCursor;
using host::editor::RunStatus;

namespace {

struct CategoryCount {
  std::size_t outlines = 0;
  std::size_t filled = 0;
  std::vector<std::string> heights;  // of fences, as stored
};

struct Findings {
  std::array<CategoryCount, OrvLib::kCategories.size()> categories;
  std::vector<std::string> buildings;  // a line each
  std::size_t parkingRows = 0;
  std::vector<std::string> problems;
};

std::string handleText(const Slot& slot) { return host::text::formatHandle(slot.handle); }

Findings lookThrough(const DrawingDatabase& drawing) {
  Findings findings;
  drawing.forEachSlot([&](Slot& slot) {
    if (slot.isErased()) return;
    if (slot.type == DxfType::Group) {
      Tag tag;
      for (TagCursor cursor = slot.tags(); cursor.next(tag);) {
        if (tag.code == 300 && drawing.codec().decode(tag.value) == L"Pysäköintialueiden viivat")
          ++findings.parkingRows;
      }
    }
    if (!slot.isEntity() || slot.isSubEntity()) return;
    if (auto building = describeBuilding(slot, drawing, findings.problems)) {
      findings.buildings.push_back(std::move(*building));
    }
    const XDataValues tag(slot, drawing, OrvLib::kTagApplication);
    if (!tag.isThere()) return;
    const std::wstring entityType = tag.value(OrvLib::kEntityTypeKey).value_or(L"");
    const std::string where = std::string(drawing.typeName(slot)) + " " + handleText(slot);
    const auto row = std::find_if(OrvLib::kCategories.begin(), OrvLib::kCategories.end(),
                                  [&](const OrvLib::CategoryRow& candidate) { return entityType == candidate.tag; });
    if (row == OrvLib::kCategories.end()) {
      findings.problems.push_back(where + ": " +
                                  (entityType.empty() ? "the tag names no category"
                                                      : "unknown category \"" + host::text::toUtf8(entityType) + "\""));
      return;
    }
    CategoryCount& count = findings.categories[static_cast<std::size_t>(row - OrvLib::kCategories.begin())];
    ++count.outlines;
    const std::string height = host::text::toUtf8(tag.value(OrvLib::kHeightKey).value_or(L""));
    if (host::text::parseReal(height).value_or(0) != 0) count.heights.push_back(height);
    const std::uint64_t handle =
        host::text::parseHandle(host::text::toUtf8(tag.value(OrvLib::kHatchHandleKey).value_or(L"")));
    if (handle == 0) return;
    const Slot* const fill = drawing.findHandle(handle);
    if (fill == &slot) return;  // fences with a height name themselves
    if (fill == nullptr || fill->isErased()) {
      findings.problems.push_back(where + ": its fill " + host::text::formatHandle(handle) + " is not in the drawing");
    } else if (fill->type != DxfType::Hatch) {
      findings.problems.push_back(where + ": its fill " + host::text::formatHandle(handle) + " is not a hatch");
    } else {
      ++count.filled;
    }
  });
  return findings;
}

void printColors(const DrawingDatabase& drawing) {
  bool isFirst = true;
  for (const OrvLib::CategoryRow& row : OrvLib::kCategories) {
    if (row.fillLayer == nullptr) continue;
    const Slot* const layer = drawing.findRecord(DxfType::Layer, row.fillLayer);
    Tag tag;
    if (layer == nullptr) continue;
    std::int64_t color = 7;
    for (TagCursor cursor = layer->tags(); cursor.next(tag);) {
      if (tag.code == 62) color = tag.integer();
    }
    if (isFirst) std::printf("colours\n");
    isFirst = false;
    std::printf("  %-16s %4lld%s\n", host::text::toUtf8(row.fillLayer).c_str(), static_cast<long long>(std::abs(color)),
                color < 0 ? "  off" : "");
  }
}

}  // namespace

int describeDrawing(const InfoOptions& options) {
  AcDbDatabase database(false);
  DrawingDatabase& drawing = host::database::databaseOf(&database);
  if (const auto read = host::dxf::readDrawing(drawing, options.drawing); !read.ok) {
    return complain(RunStatus::DrawingUnreadable, read.message);
  }
  Findings findings = lookThrough(drawing);
  const std::optional<std::string> shadows = describeShadowSettings(database, findings.problems);
  std::size_t entities = 0;
  for (const Slot* const slot : drawing.modelSpace().entities) entities += slot->isErased() ? 0 : 1;
  std::printf("%s: AC%d, %zu entities in model space, %zu layers\n", options.drawing.string().c_str(),
              static_cast<int>(drawing.version()), entities, drawing.records(DxfType::Layer).size());
  std::printf("elements\n");
  for (std::size_t i = 0; i < OrvLib::kCategories.size(); ++i) {
    const CategoryCount& count = findings.categories[i];
    if (count.outlines == 0) continue;
    // Padded by characters, not bytes: names have letters of two bytes.
    std::string name = host::text::toUtf8(OrvLib::kCategories[i].tag);
    name.append(12 - std::min<std::size_t>(std::wstring_view(OrvLib::kCategories[i].tag).size(), 12), ' ');
    std::printf("  %s %6zu", name.c_str(), count.outlines);
    if (count.filled > 0) std::printf(", %zu with a fill", count.filled);
    if (!count.heights.empty()) {
      std::printf(", heights");
      for (const std::string& height : count.heights) std::printf(" %s", height.c_str());
    }
    std::printf("\n");
  }
  if (findings.parkingRows > 0) std::printf("  parking rows %6zu\n", findings.parkingRows);
  if (!findings.buildings.empty()) std::printf("buildings %zu\n", findings.buildings.size());
  for (const std::string& building : findings.buildings) std::printf("  %s\n", building.c_str());
  std::printf("shadows\n  %s\n", shadows ? shadows->c_str() : "default settings");
  printColors(drawing);
  std::fflush(stdout);
  for (const host::database::Problem& problem : drawing.problems()) {
    complain(RunStatus::Done, options.drawing.string() + ":" + std::to_string(problem.line) + ": " +
                                  (problem.handle != 0 ? host::text::formatHandle(problem.handle) + ": " : "") +
                                  problem.text);
  }
  for (const std::string& problem : findings.problems) {
    complain(RunStatus::Done, options.drawing.string() + ": " + problem);
  }
  const std::size_t problems = findings.problems.size() + drawing.problems().size();
  std::printf("problems %zu\n", problems);
  return 0;
}

}  // namespace tolmex
