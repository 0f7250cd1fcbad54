// Names that drawings keep: applications and keys of data on entities, dictionary entries, layers.
#pragma once

namespace OrvLib {

/// Applications of extended data: the entity tag and the building record; then the keys of the tag.
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
}  // namespace shadow_keys

/// Layers. Those of fills begin with "tma_", those of outlines with "tmv_".
namespace layers {
inline constexpr const wchar_t* kAsphaltFill = L"tma_asf";
inline constexpr const wchar_t* kGrassFill = L"tma_nurmi";
inline constexpr const wchar_t* kGravelFill = L"tma_sora";
inline constexpr const wchar_t* kYardPavingFill = L"tma_laatta";
inline constexpr const wchar_t* kPathFill = L"tma_polku";
inline constexpr const wchar_t* kHedgeFill = L"tma_pensas";
inline constexpr const wchar_t* kForestFill = L"tma_metsa";
inline constexpr const wchar_t* kBoardFenceFill = L"tma_aita_lauta";
inline constexpr const wchar_t* kStoneFenceFill = L"tma_aita_kivi";
inline constexpr const wchar_t* kRoofFill = L"tma_katto";
inline constexpr const wchar_t* kShadowFill = L"tma_varjo";
inline constexpr const wchar_t* kRoofFillShadow = L"tma_katto_varjo";
inline constexpr const wchar_t* kRoofFillSun = L"tma_katto_aurinko";
inline constexpr const wchar_t* kAsphalt = L"tmv_asf";
inline constexpr const wchar_t* kGrass = L"tmv_nurmi";
inline constexpr const wchar_t* kGravel = L"tmv_sora";
inline constexpr const wchar_t* kYardPaving = L"tmv_laatta";
inline constexpr const wchar_t* kPath = L"tmv_polku";
inline constexpr const wchar_t* kHedge = L"tmv_pensas";
inline constexpr const wchar_t* kForest = L"tmv_metsa";
inline constexpr const wchar_t* kBoardFence = L"tmv_aita_lauta";
inline constexpr const wchar_t* kStoneFence = L"tmv_aita_kivi";
inline constexpr const wchar_t* kRoof = L"tmv_katto";
inline constexpr const wchar_t* kShadow = L"tmv_varjo";
inline constexpr const wchar_t* kRidgeLine = L"tmv_harjav";
inline constexpr const wchar_t* kBuilding = L"tmv_rak";
inline constexpr const wchar_t* kParking = L"tmv_parkki";
inline constexpr const wchar_t* kShadowBoundary = L"tmv_varjo_reunaviiva";
inline constexpr const wchar_t* kPassingBoundary = L"POLY";  // of hatches whose boundaries go at once
}  // namespace layers

}  // namespace OrvLib
