#include "Tolmex/EntityTag.h"

#include "OrvLib/ARX/Opened.h"
#include "OrvLib/ARX/ResbufChain.h"
#include "OrvLib/ARX/XData.h"

namespace OrvLib {
namespace {

constexpr const ACHAR* kNoHandle = L"0";
constexpr const ACHAR* kNoHeight = L"0";

std::wstring handleText(const AcDbObject& object) {
  AcDbHandle handle;
  object.getAcDbHandle(handle);
  ACHAR text[20] = {};
  return handle.getIntoAsciiBuffer(text, std::size(text)) ? text : kNoHandle;
}

std::wstring fillHandle(AcDbObjectId fill) {
  const Opened<AcDbObject> object(fill, AcDb::kForRead);
  if (!object) return kNoHandle;
  if (object->isKindOf(AcDbHatch::desc())) return handleText(*object);
  acutPrintf(L"\nError:Hatch ID wasn't a hatch object even though it should've been.\n");
  return kNoHandle;
}

void eraseFillOf(const AcDbEntity& outline) {
  const ResbufChain tag(outline.xData(kTagApplication));
  if (!valueInChain(tag.get(), kTagApplication, kEntityTypeKey)) return;
  const auto text = valueInChain(tag.get(), kTagApplication, kHatchHandleKey);
  const AcDbDatabase* const db = orWorkingDatabase(nullptr);
  if (!text || db == nullptr) return;
  const AcDbHandle handle(text->c_str());
  AcDbObjectId id;
  if (handle.isNull() || db->getAcDbObjectId(id, false, handle) != Acad::eOk) return;
  // A fence whose height was set names itself; being open already it cannot be opened here, and it is no hatch.
  const Opened<AcDbHatch> fill(id, AcDb::kForWrite);
  if (fill) fill->erase();
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

bool writeTag(Category category, AcDbObjectId fill, AcDbEntity& outline) {
  const std::wstring handle = fill.isNull() ? kNoHandle : fillHandle(fill);
  eraseFillOf(outline);
  if (!makeWritable(outline) || !removeTags(outline)) return false;
  ResbufChain tag;
  tag.append(kXDataApplication, kTagApplication);
  for (const ACHAR* const text :
       {kVersionKey, kVersion, kEntityTypeKey, row(category).tag, kHeightKey, kNoHeight, kHatchHandleKey}) {
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
