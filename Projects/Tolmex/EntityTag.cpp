#include "Tolmex/EntityTag.h"

#include "OrvLib/ARX/AdsResbuf.h"
#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/ARX/Status.h"
#include "OrvLib/ARX/XData.h"

namespace OrvLib {
namespace {

constexpr const ACHAR* kNoHandle = L"0";
constexpr const ACHAR* kNoHeight = L"0";

std::wstring fillHandle(AcDbObjectId fill) {
  const Opened<AcDbObject> object(fill, AcDb::kForRead);
  if (object && object->isKindOf(AcDbHatch::desc())) return handleText(*object);
  acutPrintf(L"\nError:Hatch ID wasn't a hatch object even though it should've been.\n");
  return kNoHandle;
}

void eraseFillOf(const AcDbEntity& outline) {
  const AdsResbuf tag(outline.xData(kTagApplication));
  if (!valueInChain(tag.get(), kTagApplication, kEntityTypeKey)) return;
  const auto text = valueInChain(tag.get(), kTagApplication, kHatchHandleKey);
  if (!text) return;
  // A fence whose height was set names itself, which is no hatch; a hatch may be gone already.
  const AcDbObjectId id = objectOfHandle(*text);
  const AcRxClass* const type = id.isNull() ? nullptr : id.objectClass();
  if (type == nullptr || !type->isDerivedFrom(AcDbHatch::desc()) || id.isErased()) return;
  const Opened<AcDbHatch> fill(id, AcDb::kForWrite);
  succeeded(fill ? fill->erase() : fill.status(), text->c_str());
}

}  // namespace

std::optional<std::wstring> readCategory(const AcDbEntity& entity) {
  return readXDataValue(entity, kTagApplication, kEntityTypeKey);
}

bool isTagged(const AcDbEntity* entity) {
  if (entity == nullptr) return false;
  const auto category = readCategory(*entity);
  return category && !category->empty();
}

std::optional<Category> knownCategory(const AcDbEntity& entity) {
  const auto category = readCategory(entity);
  return category ? categoryOfTag(*category) : std::nullopt;
}

std::optional<std::wstring> readHeight(const AcDbEntity& entity) {
  return readXDataValue(entity, kTagApplication, kHeightKey);
}

bool writeElementTag(Category category, AcDbObjectId fill, AcDbEntity& outline, BuildingRecordIs record) {
  const std::wstring handle = fill.isNull() ? kNoHandle : fillHandle(fill);
  eraseFillOf(outline);
  if (!makeWritable(outline)) return false;
  if (record == BuildingRecordIs::Removed && !removeXData(outline, kBuildingApplication)) return false;
  return replaceTag(outline, row(category).tag, kNoHeight, handle);
}

bool replaceTag(AcDbEntity& outline, const std::wstring& category, const std::wstring& height,
                const std::wstring& handle) {
  AdsResbuf tag;
  tag.append(kXDataApplication, kTagApplication);
  for (const std::wstring& text : {std::wstring(kVersionKey), std::wstring(kVersion), std::wstring(kEntityTypeKey),
                                   category, std::wstring(kHeightKey), height, std::wstring(kHatchHandleKey)}) {
    tag.append(kXDataText, text);
  }
  tag.append(kXDataHandle, handle);
  return setXDataRegistered(outline, kTagApplication, tag.get());
}

bool removeTags(AcDbEntity& entity) {
  const bool isBuildingRemoved = removeXData(entity, kBuildingApplication);
  return removeXData(entity, kTagApplication) && isBuildingRemoved;
}

}  // namespace OrvLib
