#include "Tolmex/BuildingRecord.h"

#include "OrvLib/ARX/ResbufChain.h"
#include "OrvLib/ARX/XData.h"
#include "OrvLib/DataStruct/Text.h"
#include "Tolmex/Catalogue.h"

namespace OrvLib {
namespace {

constexpr const ACHAR* kTypeKey = L"_ENTITYTYPE";
constexpr const ACHAR* kBuildingType = L"building";
constexpr const ACHAR* kShadowColorKey = L"tolm_bld_shadowcolor";
constexpr const ACHAR* kSunColorKey = L"tolm_bld_suncolor";
constexpr const ACHAR* kRoofLineKey = L"tolm_roofline_handle";

/// The record's chain, fetched once for all of its keys.
class RecordChain {
 public:
  explicit RecordChain(const AcDbEntity& entity) : chain_(entity.xData(kBuildingApplication)) {}

  std::optional<std::wstring> value(const ACHAR* key) const {
    return valueInChain(chain_.get(), kBuildingApplication, key);
  }

  std::optional<RoofColors> roofColors() const {
    const auto shadow = value(kShadowColorKey);
    const auto sun = value(kSunColorKey);
    if (!shadow || !sun) return std::nullopt;
    return RoofColors{toInt(leadingNumber(*shadow)), toInt(leadingNumber(*sun))};
  }

  bool isBuilding() const {
    const auto type = value(kTypeKey);
    return type && equalsIgnoringCase(*type, kBuildingType) && roofColors();
  }

 private:
  ResbufChain chain_;
};

}  // namespace

std::optional<RoofColors> readRoofColors(const AcDbEntity& entity) { return RecordChain(entity).roofColors(); }

bool isBuilding(const AcDbEntity& entity) { return RecordChain(entity).isBuilding(); }

std::optional<BuildingTexts> readBuildingTexts(const AcDbEntity& entity) {
  const RecordChain record(entity);
  if (!record.isBuilding()) return std::nullopt;
  BuildingTexts texts;
  struct Field {
    const ACHAR* key;
    std::wstring BuildingTexts::*text;
  };
  static constexpr Field kFields[] = {{L"baseheight", &BuildingTexts::baseHeight},
                                      {L"floorheight", &BuildingTexts::floorHeight},
                                      {L"nrfloors", &BuildingTexts::nrFloors},
                                      {L"eavesWidth", &BuildingTexts::eavesWidth},
                                      {L"roofheight", &BuildingTexts::roofHeight}};
  for (const Field& field : kFields) {
    auto value = record.value(field.key);
    if (!value) return std::nullopt;
    texts.*field.text = std::move(*value);
  }
  texts.roofLineHandle = record.value(kRoofLineKey);
  return texts;
}

}  // namespace OrvLib
