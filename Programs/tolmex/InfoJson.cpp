// The JSON form of `tolmex info`; docs/info-json.md describes it.
#include <cmath>
#include <nlohmann/json.hpp>

#include "DrawingInfo.h"
#include "Text/Text.h"

namespace tolmex {

using Json = nlohmann::ordered_json;
using host::text::formatHandle;

namespace {

constexpr int kSchemaVersion = 1;

/// Measured figures to a micrometre; JSON knows no infinity.
Json figure(double value) {
  constexpr double kSteps = 1e6;
  if (!std::isfinite(value)) return nullptr;
  const double rounded = std::round(value * kSteps) / kSteps;
  return std::isfinite(rounded) ? rounded : value;
}
Json figure(const std::optional<double>& value) { return value ? figure(*value) : Json(nullptr); }

/// A stored figure; null when it is none.
Json stored(const std::string& text) {
  const std::optional<double> value = host::text::parseReal(text);
  if (!value || !std::isfinite(*value)) return nullptr;
  const double whole = std::floor(*value);
  if (whole == *value && std::abs(whole) < 1e15) return static_cast<std::int64_t>(whole);
  return *value;
}

Json handle(const std::optional<std::uint64_t>& value) { return value ? Json(formatHandle(*value)) : Json(nullptr); }

Json elementsOf(const DrawingInfo& info) {
  Json categories = Json::array();
  for (std::size_t i = 0; i < OrvLib::kCategories.size(); ++i) {
    if (info.elements[i].empty()) continue;
    double area = 0, length = 0;
    std::size_t filled = 0;
    Json items = Json::array();
    for (const ElementInfo& element : info.elements[i]) {
      area += element.area.value_or(0);
      length += element.length;
      if (element.fill) ++filled;
      items.push_back({{"handle", formatHandle(element.handle)},
                       {"type", element.type},
                       {"layer", element.layer},
                       {"area", figure(element.area)},
                       {"length", figure(element.length)},
                       {"fill", handle(element.fill)},
                       {"height", stored(element.height)}});
    }
    categories.push_back({{"category", host::text::toUtf8(OrvLib::kCategories[i].tag)},
                          {"count", info.elements[i].size()},
                          {"filled", filled},
                          {"area", figure(area)},
                          {"length", figure(length)},
                          {"items", std::move(items)}});
  }
  return categories;
}

Json fencesOf(const DrawingInfo& info) {
  Json fences = Json::array();
  for (const auto category : {OrvLib::Category::BoardFence, OrvLib::Category::StoneFence}) {
    for (const ElementInfo& element : info.elements[static_cast<std::size_t>(category)])
      fences.push_back({{"handle", formatHandle(element.handle)},
                        {"category", host::text::toUtf8(OrvLib::row(category).tag)},
                        {"height", stored(element.height)},
                        {"length", figure(element.length)}});
  }
  return fences;
}

Json buildingsOf(const DrawingInfo& info) {
  Json buildings = Json::array();
  for (const BuildingValues& building : info.buildings) {
    Json ridge = nullptr;
    if (building.ridge)
      ridge = {{"handle", formatHandle(*building.ridge)},
               {"height", stored(building.ridgeHeight)},
               {"alive", building.ridgeIsAlive}};
    buildings.push_back({{"handle", formatHandle(building.handle)},
                         {"floors", stored(building.floors)},
                         {"floorHeight", stored(building.floorHeight)},
                         {"baseHeight", stored(building.baseHeight)},
                         {"eavesWidth", stored(building.eavesWidth)},
                         {"ridge", std::move(ridge)},
                         {"sunColour", stored(building.sunColor)},
                         {"shadeColour", stored(building.shadeColor)}});
  }
  return buildings;
}

Json shadowsOf(const DrawingInfo& info) {
  if (!info.shadows) return nullptr;
  const ShadowValues& shadows = *info.shadows;
  return {{"direction", figure(shadows.directionDegrees)},
          {"lengthPerFloor", figure(shadows.lengthPerFloor)},
          {"colour", figure(shadows.color)},
          {"scale", figure(shadows.scale)},
          {"pattern", shadows.isDots ? "dots" : "lines"}};
}

Json fontsOf(const DrawingInfo& info) {
  Json fonts = Json::array();
  for (const host::picture::FontUse& font : info.fonts)
    fonts.push_back({{"name", font.name.empty() ? Json(nullptr) : Json(font.name)},
                     {"texts", font.texts},
                     {"drawnWith", font.drawnWith}});
  return fonts;
}

Json problemsOf(const DrawingInfo& info) {
  Json problems = Json::array();
  for (const auto* list : {&info.fileProblems, &info.problems}) {
    for (const host::Problem& problem : *list)
      problems.push_back({{"code", host::nameOf(problem.code)},
                          {"line", problem.line != 0 ? Json(problem.line) : Json(nullptr)},
                          {"handle", problem.handle != 0 ? Json(formatHandle(problem.handle)) : Json(nullptr)},
                          {"note", problem.isNote},
                          {"text", problem.text}});
  }
  return problems;
}

Json layersOf(const DrawingFacts& facts) {
  Json layers = Json::array();
  for (const LayerFacts& layer : facts.layers) {
    Json kinds = Json::array();
    for (const auto& [kind, counted] : layer.kinds)
      kinds.push_back({{"kind", kind},
                       {"count", counted.count},
                       {"closed", counted.closed ? Json(*counted.closed) : Json(nullptr)}});
    layers.push_back({{"name", layer.name},
                      {"colour", layer.color},
                      {"on", !layer.isOff},
                      {"frozen", layer.isFrozen},
                      {"locked", layer.isLocked},
                      {"plotted", layer.isPlotted},
                      {"kinds", std::move(kinds)}});
  }
  return layers;
}

/// What is in the drawing whatever it shows.
void addFacts(Json& object, const DrawingFacts& facts) {
  const auto place = [](double x, double y) { return Json::array({figure(x), figure(y)}); };
  const host::geometry::Box& box = facts.extents;
  object["extents"] = nullptr;
  if (!box.isEmpty()) object["extents"] = {{"min", place(box.minX, box.minY)}, {"max", place(box.maxX, box.maxY)}};
  object["drawingUnits"] = {{"name", facts.unit.empty() ? Json(nullptr) : Json(facts.unit)},
                            {"metres", facts.metresPerUnit}};
  object["coordinateSystem"] = nullptr;
  if (!facts.system.empty()) object["coordinateSystem"] = {{"name", facts.system}, {"guessed", facts.isSystemGuessed}};
  object["layerList"] = layersOf(facts);
  Json texts = Json::array(), images = Json::array(), blocks = Json::array();
  for (const TextFacts& each : facts.texts)
    texts.push_back(
        {{"handle", formatHandle(each.handle)}, {"type", each.type}, {"layer", each.layer}, {"text", each.text}});
  for (const ImageFacts& each : facts.images)
    images.push_back({{"handle", formatHandle(each.handle)}, {"file", each.file}, {"found", each.isThere}});
  for (const BlockFacts& each : facts.blocks)
    blocks.push_back({{"name", each.name},
                      {"entities", each.entities},
                      {"uses", each.uses},
                      {"file", each.file.empty() ? Json(nullptr) : Json(each.file)}});
  object["texts"] = std::move(texts);
  object["images"] = std::move(images);
  object["blocks"] = std::move(blocks);
  Json layouts = Json::array();
  for (const LayoutFacts& each : facts.layouts) {
    Json paper = nullptr;
    if (each.widthMm > 0) paper = {{"width", figure(each.widthMm)}, {"height", figure(each.heightMm)}};
    layouts.push_back({{"name", each.name}, {"entities", each.entities}, {"paper", std::move(paper)}});
  }
  object["layouts"] = std::move(layouts);
}

/// Names of files and layers may hold bytes that are no UTF-8, and control characters: terminals obey those beyond
/// ASCII too, which the library leaves as they are.
std::string spelled(const Json& json, int indent = -1) {
  const std::string text = json.dump(indent, ' ', false, Json::error_handler_t::replace);
  std::string safe;
  safe.reserve(text.size());
  constexpr std::string_view kDigits = "0123456789abcdef";
  const auto escape = [&safe, kDigits](unsigned c) { safe.append("\\u00") += {kDigits[c >> 4], kDigits[c & 0xFU]}; };
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto c = static_cast<unsigned char>(text[i]);
    const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
    if (c == 0x7F) {
      escape(c);
    } else if (c == 0xC2 && next < 0xA0) {  // U+0080 to U+009F
      escape(next);
      ++i;
    } else {
      safe += text[i];
    }
  }
  return safe;
}

}  // namespace

std::string drawingJson(const std::string& file, const DrawingInfo& info, const DrawingFacts& facts) {
  Json colors = Json::array();
  for (const LayerColor& color : info.colors)
    colors.push_back({{"layer", color.layer}, {"colour", color.color}, {"on", !color.isOff}});
  Json object = {{"file", file},
                 {"status", 0},
                 {"error", nullptr},
                 {"version", "AC" + std::to_string(info.version)},
                 {"entities", info.entities},
                 {"layers", info.layers},
                 {"elements", elementsOf(info)},
                 {"fences", fencesOf(info)},
                 {"buildings", buildingsOf(info)},
                 {"parkingRows", info.parkingRows},
                 {"shadows", shadowsOf(info)},
                 {"colours", std::move(colors)},
                 {"fonts", fontsOf(info)},
                 {"problems", problemsOf(info)}};
  addFacts(object, facts);
  return spelled(object);
}

std::string failedDrawingJson(const std::string& file, int status, const std::string& error, std::string_view code) {
  return spelled(
      {{"file", file}, {"status", status}, {"error", error}, {"code", code.empty() ? Json(nullptr) : Json(code)}});
}

std::string documentJson(const std::vector<std::string>& drawings) {
  Json document = {{"schema", "tolmex-info"},
                   {"version", kSchemaVersion},
                   {"units", {{"length", "m"}, {"area", "m2"}, {"direction", "degree"}, {"colour", "index"}}},
                   {"drawings", Json::array()}};
  for (const std::string& drawing : drawings) {
    Json object = Json::parse(drawing, nullptr, false);
    if (!object.is_discarded()) document["drawings"].push_back(std::move(object));
  }
  return spelled(document, 2) + "\n";
}

}  // namespace tolmex
