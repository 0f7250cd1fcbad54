// The elements of the illustration picture: one row says all that is special about one of them, and the lists of layers
// are computed from the rows.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

#include "Tolmex/Model/ColorScheme.h"
#include "Tolmex/Model/Names.h"

namespace OrvLib {

/// What an outline can be tagged as.
enum class Category {
  Asphalt,
  Grass,
  Gravel,
  YardPaving,
  Path,
  Hedge,
  Forest,
  BoardFence,
  StoneFence,
  Roof,
  RidgeLine,
  Building
};
inline constexpr std::size_t kCategoryCount = 12;

/// A layer of an element. All have the linetype CONTINUOUS.
struct ElementLayer {
  const wchar_t* name = nullptr;            // null: the element has no such layer
  int ColorScheme::*schemeColor = nullptr;  // of the layer; null: white or black by the background
  int made = 0;                             // its place, from 1, in the order in which layers are made
  int top = 0;                              // its place, from 1, bottom first, among those kept on top; 0: none
  bool isSwitched = false;                  // goes with the other fills when they are switched on and off
};

/// The fill that a command makes at once.
struct FillPattern {
  const wchar_t* name = nullptr;  // null: none
  double angleRad = 0;
  double scale = 1;
};

/// The colour that users choose for an element, a line of tolm.ini.
struct ColorKey {
  const wchar_t* key = nullptr;  // null: none to choose
  int ColorScheme::*color = nullptr;
};

struct ElementRow {
  const wchar_t* tag;  // its category in the entity tag, the tooltip and messages; null: no category
  ElementLayer fill;
  ElementLayer outline;
  FillPattern pattern;
  ColorKey colorKey;
  const wchar_t* prompt;  // of the command that makes it of polylines; null: none
};

/// First one row per Category, in its order, then what has layers of its own but is no category. Colour keys stand in
/// the order of the file's lines.
inline constexpr std::array<ElementRow, 16> kElements{{
    {L"Asfaltti",
     {layers::kAsphaltFill, &ColorScheme::asphalt, 1, 0, true},
     {layers::kAsphalt, nullptr, 14},
     {L"SOLID"},
     {L"asfaltti", &ColorScheme::asphalt},
     L"\nValitse muokattava asfalttipäällyste:\n"},
    {L"Nurmialue",
     {layers::kGrassFill, &ColorScheme::grass, 9, 0, true},
     {layers::kGrass, nullptr, 16},
     {L"SOLID"},
     {L"nurmi", &ColorScheme::grass},
     L"\nValitse muokattava nurmialue:\n"},
    {L"Sora-alue",
     {layers::kGravelFill, &ColorScheme::gravel, 2, 0, true},
     {layers::kGravel, nullptr, 17},
     {L"SOLID"},
     {L"sora", &ColorScheme::gravel},
     L"\nValitse muokattava sora-alue:\n"},
    {L"Pihalaatta",
     {layers::kYardPavingFill, &ColorScheme::yardPaving, 3, 0, true},
     {layers::kYardPaving, nullptr, 18},
     {L"NET", 0, 0.3},
     {L"pihalaatta", &ColorScheme::yardPaving},
     L"\nValitse muokattava pihalaatta:\n"},
    {L"Polku",
     {layers::kPathFill, &ColorScheme::path, 4, 0, true},
     {layers::kPath, nullptr, 19},
     {L"SOLID"},
     {L"polku", &ColorScheme::path},
     L"\nValitse muokattava polku:\n"},
    {L"Pensas",
     {layers::kHedgeFill, &ColorScheme::hedge, 7, 0, true},
     {layers::kHedge, nullptr, 22},
     {L"SOLID"},
     {L"pensasviiva", &ColorScheme::hedge},
     L"\nValitse muokattava pensasviiva:\n"},
    {L"Metsä",
     {layers::kForestFill, &ColorScheme::forest, 8, 0, true},
     {layers::kForest, nullptr, 23},
     {L"SOLID"},
     {L"metsa", &ColorScheme::forest},
     L"\nValitse muokattava metsäalue:\n"},
    {L"Lauta-aita",
     {layers::kBoardFenceFill, &ColorScheme::boardFence, 6, 0, true},
     {layers::kBoardFence, nullptr, 21},
     {},
     {},
     L"\nValitse muokattava lauta-aita:\n"},
    {L"Kiviaita",
     {layers::kStoneFenceFill, &ColorScheme::stoneFence, 5, 0, true},
     {layers::kStoneFence, nullptr, 20},
     {},
     {},
     L"\nValitse muokattava kiviaita:\n"},
    {L"Katto", {layers::kRoofFill, &ColorScheme::roof, 13, 3}, {layers::kRoof, nullptr, 10, 5}, {}, {}, nullptr},
    {L"Harjaviiva", {}, {layers::kRidgeLine, nullptr, 25, 7}, {}, {}, L"\nValitse muokattava harjaviiva:\n"},
    {L"Rakennus", {}, {layers::kBuilding, nullptr, 15, 6}, {}, {}, L"\nValitse muokattava rakennus:\n"},
    // Shadows share the colour of the shaded roof side.
    {nullptr,
     {layers::kShadowFill, &ColorScheme::roofFillShadow, 12},
     {layers::kShadow, nullptr, 24, 1},
     {},
     {},
     nullptr},
    // Fills of roof sides are coloured one by one, so their colours are not those of their layers.
    {nullptr,
     {layers::kRoofFillShadow, nullptr, 27, 2, true},
     {},
     {},
     {L"kattotayttovarjo", &ColorScheme::roofFillShadow},
     nullptr},
    {nullptr,
     {layers::kRoofFillSun, nullptr, 26, 4, true},
     {},
     {},
     {L"kattotayttoaurinko", &ColorScheme::roofFillSun},
     nullptr},
    {nullptr, {}, {layers::kParking, nullptr, 11}, {}, {}, nullptr},
}};

/// The rows of the categories.
inline constexpr std::span<const ElementRow, kCategoryCount> kCategories{kElements.data(), kCategoryCount};

constexpr const ElementRow& row(Category category) { return kElements[static_cast<std::size_t>(category)]; }

/// The category whose tag name it is, compared exactly.
std::optional<Category> categoryOfTag(std::wstring_view tag);

/// A layer of the system.
struct LayerRow {
  const wchar_t* name;
  int ColorScheme::*schemeColor;  // as ElementLayer's

  constexpr int color(const ColorScheme& scheme) const { return schemeColor != nullptr ? scheme.*schemeColor : 7; }
};

/// A colour that the user can choose.
struct SchemeColor {
  int ColorScheme::*field;
  const wchar_t* key;        // in the file
  const wchar_t* areaLayer;  // whose colour it is; null for the roof fills, which are coloured one by one
};

namespace computed {

/// How many layers of all elements `counts` counts.
template <class Counts>
constexpr std::size_t layerCount(Counts counts) {
  std::size_t count = 0;
  for (const ElementRow& element : kElements) {
    for (const ElementLayer& layer : {element.fill, element.outline}) count += counts(layer) ? 1 : 0;
  }
  return count;
}
inline constexpr std::size_t kMade = layerCount([](const ElementLayer& layer) { return layer.made > 0; });
inline constexpr std::size_t kTop = layerCount([](const ElementLayer& layer) { return layer.top > 0; });
inline constexpr std::size_t kSwitched = layerCount([](const ElementLayer& layer) { return layer.isSwitched; });

constexpr std::size_t colorCount() {
  std::size_t count = 0;
  for (const ElementRow& element : kElements) count += element.colorKey.key != nullptr ? 1 : 0;
  return count;
}

/// All layers in the order in which they are made.
constexpr std::array<ElementLayer, kMade> madeLayers() {
  std::array<ElementLayer, kMade> made{};
  for (const ElementRow& element : kElements) {
    for (const ElementLayer& layer : {element.fill, element.outline}) {
      if (layer.made > 0) made[static_cast<std::size_t>(layer.made) - 1] = layer;
    }
  }
  return made;
}

constexpr std::array<LayerRow, kMade> layerRows() {
  std::array<LayerRow, kMade> rows{};
  std::size_t at = 0;
  for (const ElementLayer& layer : madeLayers()) rows[at++] = {layer.name, layer.schemeColor};
  return rows;
}

constexpr std::array<const wchar_t*, kSwitched> switchedLayers() {
  std::array<const wchar_t*, kSwitched> names{};
  std::size_t at = 0;
  for (const ElementLayer& layer : madeLayers()) {
    if (layer.isSwitched) names[at++] = layer.name;
  }
  return names;
}

constexpr std::array<const wchar_t*, kTop> topLayers() {
  std::array<const wchar_t*, kTop> names{};
  for (const ElementLayer& layer : madeLayers()) {
    if (layer.top > 0) names[static_cast<std::size_t>(layer.top) - 1] = layer.name;
  }
  return names;
}

constexpr std::array<SchemeColor, colorCount()> schemeColors() {
  std::array<SchemeColor, colorCount()> colors{};
  std::size_t at = 0;
  for (const ElementRow& element : kElements) {
    if (element.colorKey.key == nullptr) continue;
    const bool isOfLayer = element.fill.schemeColor == element.colorKey.color;
    colors[at++] = {element.colorKey.color, element.colorKey.key, isOfLayer ? element.fill.name : nullptr};
  }
  return colors;
}

}  // namespace computed

/// Every layer, in the order in which they are made.
inline constexpr auto kElementLayers = computed::layerRows();

/// The fills that are switched on and off, in the same order.
inline constexpr auto kSwitchedLayers = computed::switchedLayers();

/// The layers kept above all others, bottom first.
inline constexpr auto kTopLayers = computed::topLayers();

/// The colours that the user can choose, in the order of the file's lines.
inline constexpr auto kSchemeColors = computed::schemeColors();

/// What the area layers of a drawing show, in the order of kSchemeColors; nothing for a layer that is not there.
using AreaColors = std::array<std::optional<int>, kSchemeColors.size()>;

}  // namespace OrvLib
