// The vocabulary of the illustration picture: element categories, layers, and the names of the data on entities.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

#include "Tolmex/ColorScheme.h"

namespace OrvLib {

inline constexpr const wchar_t* kTagApplication = L"kaava_tolmex";
inline constexpr const wchar_t* kBuildingApplication = L"ORV_VR";

inline constexpr const wchar_t* kVersionKey = L"TOLM_VERSION";
inline constexpr const wchar_t* kVersion = L"1";
inline constexpr const wchar_t* kEntityTypeKey = L"ENTITYTYPE";
inline constexpr const wchar_t* kHeightKey = L"HEIGHT";
inline constexpr const wchar_t* kHatchHandleKey = L"HATCH_HANDLE";

/// Keys of the building record; the record's type is `kBuildingType`.
namespace building_keys {
inline constexpr const wchar_t* kType = L"_ENTITYTYPE";
inline constexpr const wchar_t* kBuildingType = L"building";
inline constexpr const wchar_t* kBaseHeight = L"baseheight";
inline constexpr const wchar_t* kFloorHeight = L"floorheight";
inline constexpr const wchar_t* kFloors = L"nrfloors";
inline constexpr const wchar_t* kEavesWidth = L"eavesWidth";
inline constexpr const wchar_t* kRoofHeight = L"roofheight";
inline constexpr const wchar_t* kShadowColor = L"tolm_bld_shadowcolor";
inline constexpr const wchar_t* kSunColor = L"tolm_bld_suncolor";
inline constexpr const wchar_t* kRoofLine = L"tolm_roofline_handle";
}  // namespace building_keys

/// Where the shadow settings are kept: a record in the drawing's own dictionary of this system, and its keys.
namespace shadow_keys {
inline constexpr const wchar_t* kDictionary = L"orv_tolmex";
inline constexpr const wchar_t* kRecord = L"shadowSettings";
inline constexpr const wchar_t* kAngle = L"SHADOWANGLERAD";
inline constexpr const wchar_t* kColor = L"SHADOWCOLOR";
inline constexpr const wchar_t* kLength = L"SHADOWLENGTHPERFLOOR";
inline constexpr const wchar_t* kScale = L"SHADOWSCALE";
inline constexpr const wchar_t* kHatchType = L"SHADOWHATCHTYPE";
// The hatch type is a number there.
inline constexpr short kStoredLines = 10;
inline constexpr short kStoredDots = 20;
}  // namespace shadow_keys

inline constexpr const wchar_t* kLinetypeContinuous = L"CONTINUOUS";

namespace layers {
inline constexpr const wchar_t* kShadowFill = L"tma_varjo";
inline constexpr const wchar_t* kShadow = L"tmv_varjo";
inline constexpr const wchar_t* kRoofFill = L"tma_katto";
inline constexpr const wchar_t* kRoofFillShadow = L"tma_katto_varjo";
inline constexpr const wchar_t* kRoofFillSun = L"tma_katto_aurinko";
inline constexpr const wchar_t* kRoof = L"tmv_katto";
inline constexpr const wchar_t* kBuilding = L"tmv_rak";
inline constexpr const wchar_t* kRidgeLine = L"tmv_harjav";
inline constexpr const wchar_t* kParking = L"tmv_parkki";
}  // namespace layers

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
    {L"Asfaltti", L"tma_asf", L"tmv_asf", L"SOLID", 0.0, 1.0},
    {L"Nurmialue", L"tma_nurmi", L"tmv_nurmi", L"SOLID", 0.0, 1.0},
    {L"Sora-alue", L"tma_sora", L"tmv_sora", L"SOLID", 0.0, 1.0},
    {L"Pihalaatta", L"tma_laatta", L"tmv_laatta", L"NET", 0.0, 0.3},
    {L"Polku", L"tma_polku", L"tmv_polku", L"SOLID", 0.0, 1.0},
    {L"Pensas", L"tma_pensas", L"tmv_pensas", L"SOLID", 0.0, 1.0},
    {L"Metsä", L"tma_metsa", L"tmv_metsa", L"SOLID", 0.0, 1.0},
    {L"Lauta-aita", L"tma_aita_lauta", L"tmv_aita_lauta", nullptr, 0.0, 1.0},
    {L"Kiviaita", L"tma_aita_kivi", L"tmv_aita_kivi", nullptr, 0.0, 1.0},
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
    {L"tma_asf", &ColorScheme::asphalt},
    {L"tma_sora", &ColorScheme::gravel},
    {L"tma_laatta", &ColorScheme::yardPaving},
    {L"tma_polku", &ColorScheme::path},
    {L"tma_aita_kivi", &ColorScheme::stoneFence},
    {L"tma_aita_lauta", &ColorScheme::boardFence},
    {L"tma_pensas", &ColorScheme::hedge},
    {L"tma_metsa", &ColorScheme::forest},
    {L"tma_nurmi", &ColorScheme::grass},
    {L"tmv_katto", nullptr},
    {L"tmv_parkki", nullptr},
    {L"tma_varjo", &ColorScheme::roofFillShadow},  // shadows share the colour of the shaded roof side
    {L"tma_katto", &ColorScheme::roof},
    {L"tmv_asf", nullptr},
    {L"tmv_rak", nullptr},
    {L"tmv_nurmi", nullptr},
    {L"tmv_sora", nullptr},
    {L"tmv_laatta", nullptr},
    {L"tmv_polku", nullptr},
    {L"tmv_aita_kivi", nullptr},
    {L"tmv_aita_lauta", nullptr},
    {L"tmv_pensas", nullptr},
    {L"tmv_metsa", nullptr},
    {L"tmv_varjo", nullptr},
    {L"tmv_harjav", nullptr},
    {L"tma_katto_aurinko", nullptr},
    {L"tma_katto_varjo", nullptr},
}};

}  // namespace OrvLib
