// `tolmex info`: what the illustration picture of a drawing is made of.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "Batch.h"
#include "Commands.h"
#include "Console.h"
#include "DrawingInfo.h"
#include "Dxf/DxfFile.h"
#include "Inputs.h"
#include "Outputs.h"
#include "Repair.h"
#include "Text/Text.h"

namespace tolmex {

namespace fs = std::filesystem;
using host::Problem;
using host::Result;
using host::RunStatus;

namespace {

std::string text(const BuildingValues& building) {
  using host::text::formatHandle;
  std::string line = formatHandle(building.handle) + ": floors " + building.floors + " of " + building.floorHeight +
                     ", base " + building.baseHeight + ", eaves " + building.eavesWidth + ", ";
  if (building.ridge) {
    line += "ridge " + formatHandle(*building.ridge);
    line += building.ridgeIsAlive ? " at " + building.ridgeHeight : " (dead)";
  } else {
    line += "flat roof";
  }
  return line + ", colours sun " + building.sunColor + " shade " + building.shadeColor;
}

std::string text(const std::optional<double>& value) {
  std::array<char, 32> figures{};
  if (value) std::snprintf(figures.data(), figures.size(), "%g", *value);
  return value ? std::string(figures.data()) : "?";
}

std::string text(const ShadowValues& shadows) {
  return "direction " + text(shadows.directionDegrees) + " degrees, length " + text(shadows.lengthPerFloor) +
         " per floor, colour " + text(shadows.color) + ", scale " + text(shadows.scale) +
         (shadows.isDots ? ", dots" : ", lines");
}

/// A figure with blanks before it, as columns need them.
std::string padded(std::size_t figure, std::size_t width) {
  const std::string text = std::to_string(figure);
  return std::string(width - std::min(width, text.size()), ' ') + text;
}

void printElements(const DrawingInfo& info) {
  printLine("elements");
  for (std::size_t i = 0; i < OrvLib::kCategories.size(); ++i) {
    const std::vector<ElementInfo>& elements = info.elements[i];
    if (elements.empty()) continue;
    // Padded by characters, not bytes: names have letters of two bytes.
    std::string name = host::text::toUtf8(OrvLib::kCategories[i].tag);
    name.append(12 - std::min<std::size_t>(std::wstring_view(OrvLib::kCategories[i].tag).size(), 12), ' ');
    const auto filled =
        std::count_if(elements.begin(), elements.end(), [](const auto& e) { return e.fill.has_value(); });
    printLine("  " + name + " " + padded(elements.size(), 6) +
              (filled > 0 ? ", " + std::to_string(filled) + " with a fill" : ""));
  }
  if (info.parkingRows > 0) printLine("  parking rows " + padded(info.parkingRows, 6));
}

void printFences(const DrawingInfo& info) {
  constexpr std::array kFences{OrvLib::Category::BoardFence, OrvLib::Category::StoneFence};
  std::size_t count = 0;
  for (const auto category : kFences) count += info.elements[static_cast<std::size_t>(category)].size();
  if (count > 0) printLine("fences " + std::to_string(count));
  for (const auto category : kFences) {
    const std::string name = host::text::toUtf8(OrvLib::row(category).tag);
    for (const ElementInfo& fence : info.elements[static_cast<std::size_t>(category)]) {
      printLine("  " + host::text::formatHandle(fence.handle) + ": " + name + ", " +
                (fence.height.empty() ? "no height" : "height " + fence.height));
    }
  }
}

std::string shownFigure(double value) {
  constexpr double kSteps = 1000;
  std::array<char, 64> figures{};
  std::snprintf(figures.data(), figures.size(), "%.15g", std::round(value * kSteps) / kSteps);
  return figures.data();
}

void printLayers(const DrawingFacts& facts) {
  printLine("layers");
  std::size_t empty = 0;
  for (const LayerFacts& layer : facts.layers) {
    if (layer.kinds.empty()) {
      ++empty;
      continue;
    }
    std::string line = "  " + layer.name + ":";
    const char* separator = " ";
    for (const auto& [kind, counted] : layer.kinds) {
      line += separator + std::to_string(counted.count) + " " + kind;
      if (counted.closed) line += " (" + std::to_string(*counted.closed) + " closed)";
      separator = ", ";
    }
    for (const auto& [holds, word] : {std::pair(layer.isOff, "off"), std::pair(layer.isFrozen, "frozen"),
                                      std::pair(layer.isLocked, "locked"), std::pair(!layer.isPlotted, "not plotted")})
      if (holds) line += std::string("; ") + word;
    printLine(line);
  }
  if (empty > 0) printLine("  without entities: " + std::to_string(empty));
}

/// The head with the number of them, and a line each; of very many the first ones.
template <class Each, class Line>
void printList(const std::string& head, const std::vector<Each>& list, const Line& line) {
  constexpr std::size_t kMost = 25;
  if (list.empty()) return;
  printLine(head + " " + std::to_string(list.size()));
  for (std::size_t i = 0; i < std::min(list.size(), kMost); ++i) printLine("  " + line(list[i]));
  if (list.size() > kMost) printLine("  and " + std::to_string(list.size() - kMost) + " more; --json lists all");
}

void print(const DrawingFacts& facts) {
  const host::geometry::Box& box = facts.extents;
  printLine("extents " + (box.isEmpty() ? std::string("none")
                                        : "(" + shownFigure(box.minX) + ", " + shownFigure(box.minY) + ") - (" +
                                              shownFigure(box.maxX) + ", " + shownFigure(box.maxY) + ")"));
  printLine("units " + (facts.unit.empty() ? std::string("not told, taken as metres") : facts.unit));
  printLine("coordinate system " + (facts.system.empty() ? std::string("not known") : facts.system) +
            (facts.isSystemGuessed ? ", by the coordinates" : ""));
  printLayers(facts);
  printList("texts", facts.texts, [](const TextFacts& each) {
    std::string text = each.text;
    std::ranges::replace(text, '\n', ' ');
    return host::text::formatHandle(each.handle) + ": " + each.type + " on " + each.layer + ": " + text;
  });
  printList("images", facts.images, [](const ImageFacts& each) {
    return host::text::formatHandle(each.handle) + ": " + each.file + (each.isThere ? "" : " (not there)");
  });
  printList("blocks", facts.blocks, [](const BlockFacts& each) {
    return each.name + ": " + std::to_string(each.entities) + " entities, used " + std::to_string(each.uses) +
           (each.uses == 1 ? " time" : " times") + (each.file.empty() ? "" : ", of " + each.file);
  });
  printList("layouts", facts.layouts, [](const LayoutFacts& each) {
    return each.name + ": " + std::to_string(each.entities) + " entities" +
           (each.widthMm > 0 ? ", paper " + shownFigure(each.widthMm) + " x " + shownFigure(each.heightMm) + " mm"
                             : "");
  });
}

void print(const std::string& file, const DrawingInfo& info, const DrawingFacts& facts) {
  printLine(file + ": AC" + std::to_string(info.version) + ", " + std::to_string(info.entities) +
            " entities in model space, " + std::to_string(info.layers) + " layers");
  printElements(info);
  printFences(info);
  if (!info.buildings.empty()) printLine("buildings " + std::to_string(info.buildings.size()));
  for (const BuildingValues& building : info.buildings) printLine("  " + text(building));
  printLine("shadows");
  printLine("  " + (info.shadows ? text(*info.shadows) : "default settings"));
  if (!info.colors.empty()) printLine("colours");
  for (const LayerColor& color : info.colors) {
    const std::string number = std::to_string(color.color);
    printLine("  " + color.layer + std::string(17 - std::min<std::size_t>(color.layer.size(), 16), ' ') +
              std::string(4 - std::min<std::size_t>(number.size(), 4), ' ') + number + (color.isOff ? "  off" : ""));
  }
  print(facts);
  if (!info.fonts.empty()) printLine("fonts");
  for (const host::picture::FontUse& font : info.fonts) {
    printLine("  " + (font.name.empty() ? "no font named" : font.name) + ": " + std::to_string(font.texts) +
              (font.texts == 1 ? " text" : " texts") + ", drawn with " + font.drawnWith);
  }
  const std::size_t fileProblems = printProblems(file, info.fileProblems);
  for (const Problem& problem : info.problems) complain(RunStatus::Done, file + ": " + problem.text);
  printLine("problems " + std::to_string(info.problems.size() + fileProblems));
}

/// The drawing is read and looked through; nothing of it is printed when it cannot be read.
Result<> describe(const std::string& file, const fs::path& path, const InfoOptions& options) {
  AcDbDatabase database(false);
  host::database::DrawingDatabase& drawing = host::database::databaseOf(&database);
  if (Result<> read = host::dxf::readDrawing(drawing, path); !read) return read;
  DrawingInfo info = lookThrough(database, options.json);
  host::dxf::RepairedDrawing repaired = lookThroughFile(path, drawing);
  info.fileProblems = std::move(repaired.problems);
  info.fonts = host::picture::fontsUsed(drawing);
  const DrawingFacts facts = drawingFacts(drawing, path.parent_path().string());
  if (options.json) {
    std::fputs(drawingJson(file, info, facts).c_str(), stdout);
  } else {
    print(file, info, facts);
  }
  if (options.repaired.empty()) return {};
  if (Result<> written = writeRepaired(file, options.repaired, repaired.bytes); !written) return written;
  if (!options.json) printLine("repaired copy " + options.repaired.string());
  return {};
}

/// Prints what is in the drawing; in JSON its object, also for one that cannot be read. A repaired copy is written when
/// asked for. Answers the exit status.
int describeDrawing(const fs::path& name, const InfoOptions& options) {
  const std::string file = shownName(name);
  const auto fail = [&](const Problem& problem, const std::string& sentence) {
    const int status = complain(problem);
    if (options.json && problem.status() == RunStatus::DrawingUnreadable)
      std::fputs(failedDrawingJson(file, status, sentence, nameOf(problem.code)).c_str(), stdout);
    std::fflush(stdout);
    return status;
  };
  const Result<fs::path> path = readableFile(name);
  if (!path) return fail(path.problem(), file + ": cannot be read");
  const Result<> described = describe(file, *path, options);
  if (!described) return fail(described.problem(), described.message());
  std::fflush(stdout);
  return 0;
}

}  // namespace

int describeDrawings(const InfoOptions& options) {
  if (!options.repaired.empty()) {
    if (options.drawings.size() > 1) return complain(RunStatus::WrongUsage, "--repair goes with one drawing only");
    if (const Result<> fit = checkRepairedName(options.repaired); !fit) return complain(fit.problem());
    if (const Result<> made = prepareOutputs(options.drawings, {options.repaired}, std::nullopt); !made)
      return complain(made.problem());
  }
  if (options.drawings.size() == 1 && !options.json) return describeDrawing(options.drawings.front(), options);
  if (std::count_if(options.drawings.begin(), options.drawings.end(), isStandardStream) > 1)
    return complain(RunStatus::WrongUsage, "-: standard input can be one drawing only");
  std::vector<BatchTask> tasks;
  for (const fs::path& drawing : options.drawings)
    tasks.push_back({shownName(drawing), [&] { return describeDrawing(drawing, options); }});
  std::vector<std::string> objects;
  const int status = workThrough(
      tasks, {options.jobs, RunStatus::DrawingUnreadable}, [&](const BatchTask& task, const BatchResult& result) {
        if (!options.json) std::fwrite(result.out.data(), 1, result.out.size(), stdout);
        std::fflush(stdout);
        std::fwrite(result.err.data(), 1, result.err.size(), stderr);
        if (!options.json) return;
        // A worker that crashed left no object.
        objects.push_back(!result.out.empty() ? result.out
                                              : failedDrawingJson(task.drawing, result.status, result.err, {}));
      });
  if (options.json) std::fputs(documentJson(objects).c_str(), stdout);
  return status;
}

}  // namespace tolmex
