// The element categories of the illustration picture and the layers that are made for them.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "Tolmex/ColorScheme.h"
#include "Tolmex/Names.h"

namespace OrvLib {

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

struct CategoryRow {
  const wchar_t* tag;        // stored in the entity tag, shown to the user
  const wchar_t* fillLayer;  // null: none
  const wchar_t* outlineLayer;
  const wchar_t* fillPattern;  // of the fill that a command makes at once; null: none
  double patternAngleRad;
  double patternScale;
};

/// One row per Category, in its order.
inline constexpr std::array<CategoryRow, 12> kCategories{{
    {L"Asfaltti", layers::kAsphaltFill, layers::kAsphalt, L"SOLID", 0.0, 1.0},
    {L"Nurmialue", layers::kGrassFill, layers::kGrass, L"SOLID", 0.0, 1.0},
    {L"Sora-alue", layers::kGravelFill, layers::kGravel, L"SOLID", 0.0, 1.0},
    {L"Pihalaatta", layers::kYardPavingFill, layers::kYardPaving, L"NET", 0.0, 0.3},
    {L"Polku", layers::kPathFill, layers::kPath, L"SOLID", 0.0, 1.0},
    {L"Pensas", layers::kHedgeFill, layers::kHedge, L"SOLID", 0.0, 1.0},
    {L"Metsä", layers::kForestFill, layers::kForest, L"SOLID", 0.0, 1.0},
    {L"Lauta-aita", layers::kBoardFenceFill, layers::kBoardFence, nullptr, 0.0, 1.0},
    {L"Kiviaita", layers::kStoneFenceFill, layers::kStoneFence, nullptr, 0.0, 1.0},
    {L"Katto", layers::kRoofFill, layers::kRoof, nullptr, 0.0, 1.0},
    {L"Harjaviiva", nullptr, layers::kRidgeLine, nullptr, 0.0, 1.0},
    {L"Rakennus", nullptr, layers::kBuilding, nullptr, 0.0, 1.0},
}};

constexpr const CategoryRow& row(Category category) { return kCategories[static_cast<std::size_t>(category)]; }

/// The category whose tag name it is, compared exactly.
std::optional<Category> categoryOfTag(std::wstring_view tag);

/// A layer of the system. All have the linetype CONTINUOUS.
struct LayerRow {
  const wchar_t* name;
  int ColorScheme::*schemeColor;  // null: white or black by the background

  constexpr int color(const ColorScheme& scheme) const { return schemeColor != nullptr ? scheme.*schemeColor : 7; }
};

/// In the order in which they are made.
inline constexpr std::array<LayerRow, 27> kElementLayers{{
    {layers::kAsphaltFill, &ColorScheme::asphalt},
    {layers::kGravelFill, &ColorScheme::gravel},
    {layers::kYardPavingFill, &ColorScheme::yardPaving},
    {layers::kPathFill, &ColorScheme::path},
    {layers::kStoneFenceFill, &ColorScheme::stoneFence},
    {layers::kBoardFenceFill, &ColorScheme::boardFence},
    {layers::kHedgeFill, &ColorScheme::hedge},
    {layers::kForestFill, &ColorScheme::forest},
    {layers::kGrassFill, &ColorScheme::grass},
    {layers::kRoof, nullptr},
    {layers::kParking, nullptr},
    {layers::kShadowFill, &ColorScheme::roofFillShadow},  // shadows share the colour of the shaded roof side
    {layers::kRoofFill, &ColorScheme::roof},
    {layers::kAsphalt, nullptr},
    {layers::kBuilding, nullptr},
    {layers::kGrass, nullptr},
    {layers::kGravel, nullptr},
    {layers::kYardPaving, nullptr},
    {layers::kPath, nullptr},
    {layers::kStoneFence, nullptr},
    {layers::kBoardFence, nullptr},
    {layers::kHedge, nullptr},
    {layers::kForest, nullptr},
    {layers::kShadow, nullptr},
    {layers::kRidgeLine, nullptr},
    {layers::kRoofFillSun, nullptr},
    {layers::kRoofFillShadow, nullptr},
}};

}  // namespace OrvLib
