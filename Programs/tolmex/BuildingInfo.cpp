#include "BuildingInfo.h"

#include <cmath>
#include <memory>
#include <numbers>

#include "OrvLib/DataStruct/Ordering.h"
#include "OrvLib/DataStruct/Text.h"
#include "Text/Text.h"
#include "Tolmex/Catalogue.h"
#include "Tolmex/ShadowRecord.h"
#include "XDataValues.h"
#include "acutads.h"
#include "dbdict.h"
#include "dbobjptr.h"
#include "dbxrecrd.h"

namespace tolmex {

using host::database::DrawingDatabase;
using host::database::Slot;

namespace {

std::string utf8(const std::wstring& text) { return host::text::toUtf8(text); }
std::string quoted(const wchar_t* key) { return "\"" + host::text::toUtf8(key) + "\""; }

bool isNumber(const std::wstring& text) {
  const std::optional<double> number = host::text::parseReal(utf8(text));
  return number && std::isfinite(*number);
}

/// The values of one record and what is wrong with them.
class Reader {
 public:
  Reader(const XDataValues& record, std::uint64_t handle, std::string where,
         std::vector<host::database::Problem>& problems)
      : record_(record), handle_(handle), where_(std::move(where)), problems_(problems) {}

  void complain(const std::string& what) const { problems_.push_back({0, handle_, where_ + ": " + what}); }

  /// The value as it is stored; "?" when it is missing.
  std::string number(const wchar_t* key) const {
    const std::optional<std::wstring> value = record_.value(key);
    if (!value) {
      complain("the building record lacks " + quoted(key));
      return "?";
    }
    if (!isNumber(*value)) complain(quoted(key) + " of the building is not a number: \"" + utf8(*value) + "\"");
    return utf8(*value);
  }

 private:
  const XDataValues& record_;
  std::uint64_t handle_;
  std::string where_;
  std::vector<host::database::Problem>& problems_;
};

bool isLivingRidge(const Reader& reader, std::uint64_t handle, const DrawingDatabase& drawing) {
  const Slot* const ridge = drawing.findHandle(handle);
  if (ridge == nullptr || ridge->isErased()) {
    reader.complain("its ridge line " + host::text::formatHandle(handle) + " is not in the drawing");
    return false;
  }
  const std::wstring_view ridgeTag = OrvLib::row(OrvLib::Category::RidgeLine).tag;
  if (XDataValues(*ridge, drawing, OrvLib::kTagApplication).value(OrvLib::kEntityTypeKey) == ridgeTag) return true;
  reader.complain("its ridge line " + host::text::formatHandle(handle) + " is not tagged as one");
  return false;
}

}  // namespace

std::optional<BuildingValues> readBuilding(const Slot& slot, const DrawingDatabase& drawing,
                                           std::vector<host::database::Problem>& problems) {
  namespace keys = OrvLib::building_keys;
  const XDataValues record(slot, drawing, OrvLib::kBuildingApplication);
  const std::optional<std::wstring> type = record.value(keys::kType);
  if (!type || !OrvLib::equalsIgnoringCase(*type, keys::kBuildingType)) return std::nullopt;
  const std::string handle = host::text::formatHandle(slot.handle);
  const Reader reader(record, slot.handle, std::string(drawing.typeName(slot)) + " " + handle, problems);
  BuildingValues values;
  values.handle = slot.handle;
  values.floors = reader.number(keys::kFloors);
  values.floorHeight = reader.number(keys::kFloorHeight);
  values.baseHeight = reader.number(keys::kBaseHeight);
  values.eavesWidth = reader.number(keys::kEavesWidth);
  values.ridgeHeight = reader.number(keys::kRoofHeight);
  if (const std::optional<std::wstring> ridge = record.value(keys::kRoofLine)) {
    values.ridge = host::text::parseHandle(utf8(*ridge));
    values.ridgeIsAlive = isLivingRidge(reader, *values.ridge, drawing);
  }
  values.sunColor = reader.number(keys::kSunColor);
  values.shadeColor = reader.number(keys::kShadowColor);
  return values;
}

std::optional<ShadowValues> readShadowSettings(AcDbDatabase& database, std::vector<host::database::Problem>& problems) {
  namespace keys = OrvLib::shadow_keys;
  AcDbDictionary* root = nullptr;
  if (database.getNamedObjectsDictionary(root) != Acad::eOk) return std::nullopt;
  AcDbObjectId id;
  const bool hasDictionary = root->getAt(keys::kDictionary, id) == Acad::eOk;
  root->close();
  if (!hasDictionary) return std::nullopt;
  const AcDbObjectPointer<AcDbDictionary> dictionary(id, AcDb::kForRead);
  if (dictionary.openStatus() != Acad::eOk || dictionary->getAt(keys::kRecord, id) != Acad::eOk) return std::nullopt;
  const AcDbObjectPointer<AcDbXrecord> record(id, AcDb::kForRead);
  resbuf* items = nullptr;
  if (record.openStatus() != Acad::eOk || record->rbChain(&items) != Acad::eOk) return std::nullopt;
  const std::unique_ptr<resbuf, int (*)(resbuf*)> chain(items, &acutRelRb);

  const OrvLib::ShadowRecord stored = OrvLib::readShadowRecord(chain.get());
  const auto noteIfMissing = [&](const std::optional<double>& value, const wchar_t* key) {
    if (!value) problems.push_back({0, 0, "the shadow settings lack " + quoted(key) + "; the default counts"});
  };
  noteIfMissing(stored.angleRad, keys::kAngle);
  noteIfMissing(stored.lengthPerFloor, keys::kLength);
  noteIfMissing(stored.color, keys::kColor);
  noteIfMissing(stored.scale, keys::kScale);
  noteIfMissing(stored.hatchType, keys::kHatchType);
  ShadowValues values;
  if (stored.angleRad) values.directionDegrees = *stored.angleRad * 180 / std::numbers::pi;
  values.lengthPerFloor = stored.lengthPerFloor;
  values.color = stored.color;
  values.scale = stored.scale;
  values.isDots = stored.hatchType == keys::kStoredDots;
  return values;
}

}  // namespace tolmex
