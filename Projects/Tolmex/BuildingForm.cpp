#include "Tolmex/BuildingForm.h"

#include <algorithm>
#include <limits>
#include <optional>

#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/DataStruct/Text.h"
#include "Tolmex/BuildingRecord.h"
#include "Tolmex/DocData.h"
#include "Tolmex/EntityTag.h"

namespace OrvLib {
namespace {

/// What was accepted last, in any drawing; without a ridge line.
BuildingForm& lastAccepted() {
  static BuildingForm accepted;
  return accepted;
}

float toFloat(double value) {
  constexpr double kLargest = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(value, -kLargest, kLargest));
}

BuildingForm formOf(AcDbObjectId building) {
  BuildingForm form;
  BuildingRecord<std::wstring> record;
  {
    const Opened<AcDbEntity> entity(building, AcDb::kForRead);
    if (!entity) return form;
    if (readBuildingRecord(*entity, record)) {
      form.floorsText = record.nrFloors;
      form.floorHeightText = record.floorHeight;
      form.eavesWidthText = record.eavesWidth;
      form.baseHeightText = record.baseHeight;
      form.ridge.ridgeHeight = leadingNumber(record.roofHeight);
    }
    RoofColours colours;
    if (readRoofColours(*entity, colours)) {
      form.shadedRoofColour = colours.shaded;
      form.sunlitRoofColour = colours.sunlit;
    }
  }
  const AcDbObjectId line = record.hasRoofLine ? objectOfHandle(record.roofLineHandle) : AcDbObjectId();
  if (line.isNull() || readCategory(line) != row(Category::RidgeLine).tag) return form;
  form.ridge.ridgeLineId = line;
  form.ridge.hasRidge = true;
  return form;
}

}  // namespace

BuildingForm formFor(AcDbObjectId building, const CDocData& data) {
  BuildingForm form = building.isNull() ? lastAccepted() : formOf(building);
  if (form.shadedRoofColour == BuildingForm::kNotChosen) form.shadedRoofColour = data.colors.roofFillShadow;
  if (form.sunlitRoofColour == BuildingForm::kNotChosen) form.sunlitRoofColour = data.colors.roofFillSun;
  return form;
}

void takeForm(const BuildingForm& form, CDocData& data) {
  data.nrFloors = toFloat(leadingNumber(form.floorsText));
  data.floorHeight = toFloat(leadingNumber(form.floorHeightText));
  data.eavesWidth = toFloat(leadingNumber(form.eavesWidthText));
  data.baseHeight = toFloat(leadingNumber(form.baseHeightText));
  lastAccepted() = form;
  lastAccepted().ridge = {};
}

}  // namespace OrvLib
