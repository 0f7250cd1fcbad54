#include "BuildingInfo.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <numbers>

#include "Text/Text.h"
#include "Tolmex/Catalogue.h"
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
  Reader(const XDataValues& record, std::string where, std::vector<std::string>& problems)
      : record_(record), where_(std::move(where)), problems_(problems) {}

  void complain(const std::string& what) const { problems_.push_back(where_ + ": " + what); }

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
  std::string where_;
  std::vector<std::string>& problems_;
};

std::string describeRidge(const Reader& reader, const std::wstring& handleText, const std::string& height,
                          const DrawingDatabase& drawing) {
  const std::uint64_t handle = host::text::parseHandle(utf8(handleText));
  const Slot* const ridge = drawing.findHandle(handle);
  const std::string name = "ridge " + host::text::formatHandle(handle);
  if (ridge == nullptr || ridge->isErased()) {
    reader.complain("its ridge line " + host::text::formatHandle(handle) + " is not in the drawing");
    return name + " (dead)";
  }
  const std::wstring_view ridgeTag = OrvLib::row(OrvLib::Category::RidgeLine).tag;
  if (XDataValues(*ridge, drawing, OrvLib::kTagApplication).value(OrvLib::kEntityTypeKey) != ridgeTag) {
    reader.complain("its ridge line " + host::text::formatHandle(handle) + " is not tagged as one");
    return name + " (dead)";
  }
  return name + " at " + height;
}

}  // namespace

std::optional<std::string> describeBuilding(const Slot& slot, const DrawingDatabase& drawing,
                                            std::vector<std::string>& problems) {
  namespace keys = OrvLib::building_keys;
  const XDataValues record(slot, drawing, OrvLib::kBuildingApplication);
  const std::optional<std::wstring> type = record.value(keys::kType);
  if (!type || !host::text::equalFolded(*type, keys::kBuildingType)) return std::nullopt;
  const std::string handle = host::text::formatHandle(slot.handle);
  const Reader reader(record, std::string(drawing.typeName(slot)) + " " + handle, problems);
  std::string line = handle + ": floors " + reader.number(keys::kFloors) + " of " + reader.number(keys::kFloorHeight) +
                     ", base " + reader.number(keys::kBaseHeight) + ", eaves " + reader.number(keys::kEavesWidth);
  const std::string ridgeHeight = reader.number(keys::kRoofHeight);
  const std::optional<std::wstring> ridge = record.value(keys::kRoofLine);
  line += ", " + (ridge ? describeRidge(reader, *ridge, ridgeHeight, drawing) : "flat roof");
  line += ", colours sun " + reader.number(keys::kSunColor) + " shade " + reader.number(keys::kShadowColor);
  return line;
}

std::optional<std::string> describeShadowSettings(AcDbDatabase& database, std::vector<std::string>& problems) {
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

  const auto number = [&](const wchar_t* key) -> std::optional<double> {
    for (const resbuf* item = chain.get(); item != nullptr; item = item->rbnext) {
      const bool isText = item->restype >= 0 && item->restype < 10 && item->resval.rstring != nullptr;
      if (!isText || std::wstring_view(key) != item->resval.rstring || item->rbnext == nullptr) continue;
      const resbuf& value = *item->rbnext;
      if (value.restype >= 60 && value.restype < 80) return value.resval.rint;
      if (value.restype >= 38 && value.restype < 60 && std::isfinite(value.resval.rreal)) return value.resval.rreal;
      break;
    }
    problems.push_back("the shadow settings lack " + quoted(key) + "; the default counts");
    return std::nullopt;
  };
  const auto shown = [](std::optional<double> value) {
    std::array<char, 32> text{};
    if (value) std::snprintf(text.data(), text.size(), "%g", *value);
    return value ? std::string(text.data()) : "?";
  };
  const std::optional<double> angle = number(keys::kAngle);
  std::string line =
      "direction " + shown(angle ? std::optional(*angle * 180 / std::numbers::pi) : std::nullopt) + " degrees";
  line += ", length " + shown(number(keys::kLength)) + " per floor, colour " + shown(number(keys::kColor));
  line += ", scale " + shown(number(keys::kScale));
  return line + (number(keys::kHatchType) == keys::kStoredDots ? ", dots" : ", lines");
}

}  // namespace tolmex
