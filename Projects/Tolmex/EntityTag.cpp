#include "Tolmex/EntityTag.h"

#include "OrvLib/ARX/AdsResbuf.h"
#include "OrvLib/ARX/GenARX.h"
#include "OrvLib/ARX/Opened.h"
#include "OrvLib/ARX/Status.h"
#include "OrvLib/ARX/XData.h"
#include "Tolmex/Model/ElementTag.h"

namespace OrvLib {
namespace {

constexpr const ACHAR* kNoHandle = L"0";
constexpr const ACHAR* kNoHeight = L"0";

ElementTag readTag(const AcDbEntity& entity) { return readElementTag(readXData(entity, kTagApplication)); }

std::wstring fillHandle(AcDbObjectId fill) {
  const Opened<AcDbObject> object(fill, AcDb::kForRead);
  if (object && object->isKindOf(AcDbHatch::desc())) return handleText(*object);
  acutPrintf(L"\nError:Hatch ID wasn't a hatch object even though it should've been.\n");
  return kNoHandle;
}

void eraseFillOf(const AcDbEntity& outline) {
  const ElementTag tag = readTag(outline);
  const std::optional<std::wstring>& text = tag.hatchHandle;
  if (!tag.category || !text) return;
  // A fence whose height was set names itself, which is no hatch; a hatch may be gone already.
  const AcDbObjectId id = objectOfHandle(*text);
  const AcRxClass* const type = id.isNull() ? nullptr : id.objectClass();
  if (type == nullptr || !type->isDerivedFrom(AcDbHatch::desc()) || id.isErased()) return;
  const Opened<AcDbHatch> fill(id, AcDb::kForWrite);
  succeeded(fill ? fill->erase() : fill.status(), text->c_str());
}

}  // namespace

std::optional<std::wstring> readCategory(const AcDbEntity& entity) { return readTag(entity).category; }

std::optional<std::wstring> readCategory(AcDbObjectId id) {
  const Opened<AcDbEntity> entity(id, AcDb::kForRead);
  return entity ? readCategory(*entity) : std::nullopt;
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

std::optional<std::wstring> readHeight(const AcDbEntity& entity) { return readTag(entity).height; }

bool writeElementTag(Category category, AcDbObjectId fill, AcDbEntity& outline, BuildingRecordIs record) {
  const std::wstring handle = fill.isNull() ? kNoHandle : fillHandle(fill);
  eraseFillOf(outline);
  if (!makeWritable(outline)) return false;
  if (record == BuildingRecordIs::Removed && !removeXData(outline, kBuildingApplication)) return false;
  return replaceTag(outline, row(category).tag, kNoHeight, handle);
}

bool replaceTag(AcDbEntity& outline, const std::wstring& category, const std::wstring& height,
                const std::wstring& handle) {
  const AdsResbuf tag(elementTagItems(category, height, handle));
  return setXDataRegistered(outline, kTagApplication, tag.get());
}

bool removeTags(AcDbEntity& entity) {
  const bool isBuildingRemoved = removeXData(entity, kBuildingApplication);
  return removeXData(entity, kTagApplication) && isBuildingRemoved;
}

}  // namespace OrvLib
