#include "BuildingInfo.h"

#include <cmath>
#include <memory>
#include <numbers>

#include "OrvLib/ARX/DataChain.h"
#include "Text/Text.h"
#include "Tolmex/Model/BuildingRecord.h"
#include "Tolmex/Model/Catalogue.h"
#include "Tolmex/Model/ElementTag.h"
#include "Tolmex/Model/ShadowRecord.h"
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

/// Adds what is wrong with one record to the problems.
class Reader {
 public:
  Reader(std::uint64_t handle, std::string where, std::vector<host::database::Problem>& problems)
      : handle_(handle), where_(std::move(where)), problems_(problems) {}

  void complain(const std::string& what) const {
    problems_.push_back({host::Code::BuildingValue, {}, 0, handle_, where_ + ": " + what});
  }

  /// The value as it is stored; "?" when it is missing.
  std::string number(const std::optional<std::wstring>& value, const wchar_t* key) const {
    if (!value) {
      complain("the building record lacks " + quoted(key));
      return "?";
    }
    if (!isNumber(*value)) complain(quoted(key) + " of the building is not a number: \"" + utf8(*value) + "\"");
    return utf8(*value);
  }

 private:
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
  const OrvLib::ElementTag tag = OrvLib::readElementTag(extendedData(*ridge, drawing, OrvLib::kTagApplication));
  if (tag.category == ridgeTag) return true;
  reader.complain("its ridge line " + host::text::formatHandle(handle) + " is not tagged as one");
  return false;
}

}  // namespace

std::optional<BuildingValues> readBuilding(const Slot& slot, const DrawingDatabase& drawing,
                                           std::vector<host::database::Problem>& problems) {
  namespace keys = OrvLib::building_keys;
  const OrvLib::StoredBuilding stored =
      OrvLib::readStoredBuilding(extendedData(slot, drawing, OrvLib::kBuildingApplication));
  if (!stored.hasType) return std::nullopt;
  const std::string handle = host::text::formatHandle(slot.handle);
  const Reader reader(slot.handle, std::string(drawing.typeName(slot)) + " " + handle, problems);
  BuildingValues values;
  values.handle = slot.handle;
  values.floors = reader.number(stored.nrFloors, keys::kFloors);
  values.floorHeight = reader.number(stored.floorHeight, keys::kFloorHeight);
  values.baseHeight = reader.number(stored.baseHeight, keys::kBaseHeight);
  values.eavesWidth = reader.number(stored.eavesWidth, keys::kEavesWidth);
  values.ridgeHeight = reader.number(stored.roofHeight, keys::kRoofHeight);
  if (stored.roofLineHandle) {
    values.ridge = host::text::parseHandle(utf8(*stored.roofLineHandle));
    values.ridgeIsAlive = isLivingRidge(reader, *values.ridge, drawing);
  }
  values.sunColor = reader.number(stored.sunColor, keys::kSunColor);
  values.shadeColor = reader.number(stored.shadowColor, keys::kShadowColor);
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

  const OrvLib::ShadowRecord stored = OrvLib::readShadowRecord(OrvLib::itemsOf(chain.get()));
  const auto noteIfMissing = [&](const std::optional<double>& value, const wchar_t* key) {
    if (!value)
      problems.push_back(host::problemOf(host::Code::ShadowSettings,
                                         "the shadow settings lack " + quoted(key) + "; the default counts"));
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
  values.isDots = stored.isDots();
  return values;
}

}  // namespace tolmex
