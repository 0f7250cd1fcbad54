// AcDbDatabase.
#include <algorithm>
#include <filesystem>

#include "Database/DefaultDrawing.h"
#include "Database/Insertion.h"
#include "Database/ObjectAccess.h"
#include "Database/Store/Parts.h"
#include "Text/FilePath.h"
#include "dbapserv.h"
#include "dbdict.h"
#include "dbmain.h"
#include "dbsymtb.h"

using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::Slot;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbDatabase, AcRxObject)

AcDbDatabase::AcDbDatabase(bool buildDefaultDrawing, bool) : impl_(new DrawingDatabase(this)) {
  if (buildDefaultDrawing) host::database::buildDefaultDrawing(*impl_);
}

AcDbDatabase::~AcDbDatabase() {
  AcDbHostApplicationServices* const services = acdbHostApplicationServices();
  if (services != nullptr && services->workingDatabase() == this) services->setWorkingDatabase(nullptr);
  delete impl_;
}

Acad::ErrorStatus AcDbDatabase::readDwgFile(const ACHAR* file, OpenMode, bool, const wchar_t*) {
  if (file == nullptr || *file == 0) return Acad::eInvalidInput;
  if (impl_->slotCount() != 0) return Acad::eInvalidInput;
  const host::database::FileReader read = host::database::fileReader();
  if (read == nullptr) return Acad::eNotAcadFile;
  const std::filesystem::path path = host::text::toPath(file);
  std::error_code error;
  if (!std::filesystem::exists(path, error)) return Acad::eFileNotFound;
  // Reading a pipe may wait for ever.
  if (!std::filesystem::is_regular_file(path, error)) return Acad::eNotAcadFile;
  const host::Result<> done = read(*impl_, path);
  if (done) return Acad::eOk;
  impl_->parts().file.problems.push_back(host::problemOf(done.problem().code, done.message()));
  return Acad::eNotAcadFile;
}

Acad::ErrorStatus AcDbDatabase::closeInput(bool) { return Acad::eOk; }

Acad::ErrorStatus AcDbDatabase::insert(AcDbObjectId& blockId, const ACHAR* name, AcDbDatabase* source, bool) {
  if (name == nullptr || source == nullptr) return Acad::eInvalidInput;
  const DrawingDatabase& from = source->hostDatabase();
  if (from.parts().blocks.modelSpace() == nullptr) return Acad::eInvalidInput;
  return host::database::insertBlock(*impl_, name, *source->impl_, *from.parts().blocks.modelSpace(), blockId);
}

Acad::ErrorStatus AcDbDatabase::insert(AcDbObjectId& blockId, const ACHAR* sourceBlock, const ACHAR* name,
                                       AcDbDatabase* source, bool) {
  if (sourceBlock == nullptr || name == nullptr || source == nullptr) return Acad::eInvalidInput;
  const Slot* const record = source->impl_->findRecord(DxfType::BlockRecord, sourceBlock);
  if (record == nullptr) return Acad::eKeyNotFound;
  return host::database::insertBlock(*impl_, name, *source->impl_, *record, blockId);
}

namespace {

template <class Table>
Acad::ErrorStatus openTable(DrawingDatabase& db, DxfType recordType, Table*& table, AcDb::OpenMode mode) {
  return acdbOpenObject(table, AcDbObjectId(db.parts().tables.obtain(recordType).head), mode);
}

AcDbObjectId tableId(DrawingDatabase& db, DxfType recordType) {
  return AcDbObjectId(db.parts().tables.obtain(recordType).head);
}

AcDbObjectId recordNamed(const DrawingDatabase& db, DxfType type, const std::wstring& name) {
  return AcDbObjectId(db.findRecord(type, name));
}

}  // namespace

Acad::ErrorStatus AcDbDatabase::getLayerTable(AcDbLayerTable*& table, AcDb::OpenMode mode) {
  return openTable(*impl_, DxfType::Layer, table, mode);
}
Acad::ErrorStatus AcDbDatabase::getLinetypeTable(AcDbLinetypeTable*& table, AcDb::OpenMode mode) {
  return openTable(*impl_, DxfType::LineType, table, mode);
}
Acad::ErrorStatus AcDbDatabase::getRegAppTable(AcDbRegAppTable*& table, AcDb::OpenMode mode) {
  return openTable(*impl_, DxfType::AppId, table, mode);
}
Acad::ErrorStatus AcDbDatabase::getBlockTable(AcDbBlockTable*& table, AcDb::OpenMode mode) {
  return openTable(*impl_, DxfType::BlockRecord, table, mode);
}

Acad::ErrorStatus AcDbDatabase::getNamedObjectsDictionary(AcDbDictionary*& dict, AcDb::OpenMode mode) {
  return acdbOpenObject(dict, namedObjectsDictionaryId(), mode);
}
Acad::ErrorStatus AcDbDatabase::getGroupDictionary(AcDbDictionary*& dict, AcDb::OpenMode mode) {
  return acdbOpenObject(dict, groupDictionaryId(), mode);
}

AcDbObjectId AcDbDatabase::layerTableId() const { return tableId(*impl_, DxfType::Layer); }
AcDbObjectId AcDbDatabase::linetypeTableId() const { return tableId(*impl_, DxfType::LineType); }
AcDbObjectId AcDbDatabase::regAppTableId() const { return tableId(*impl_, DxfType::AppId); }
AcDbObjectId AcDbDatabase::blockTableId() const { return tableId(*impl_, DxfType::BlockRecord); }
AcDbObjectId AcDbDatabase::textStyleTableId() const { return tableId(*impl_, DxfType::TextStyle); }
AcDbObjectId AcDbDatabase::namedObjectsDictionaryId() const {
  return AcDbObjectId(impl_->parts().dictionaries.obtainRoot());
}
AcDbObjectId AcDbDatabase::groupDictionaryId() const {
  return AcDbObjectId(impl_->parts().dictionaries.obtain(*impl_->parts().dictionaries.obtainRoot(), L"ACAD_GROUP"));
}
AcDbObjectId AcDbDatabase::layerZero() const { return recordNamed(*impl_, DxfType::Layer, L"0"); }
AcDbObjectId AcDbDatabase::continuousLinetype() const { return recordNamed(*impl_, DxfType::LineType, L"Continuous"); }
AcDbObjectId AcDbDatabase::byLayerLinetype() const { return recordNamed(*impl_, DxfType::LineType, L"ByLayer"); }
AcDbObjectId AcDbDatabase::byBlockLinetype() const { return recordNamed(*impl_, DxfType::LineType, L"ByBlock"); }

AcDbObjectId AcDbDatabase::clayer() const {
  const AcDbObjectId current = recordNamed(*impl_, DxfType::Layer, impl_->headerText("$CLAYER", 8).value_or(L"0"));
  return current.isNull() ? layerZero() : current;
}

Acad::ErrorStatus AcDbDatabase::setClayer(AcDbObjectId layer) {
  if (layer.isNull()) return Acad::eNullObjectId;
  if (layer.slot()->type != DxfType::Layer) return Acad::eWrongObjectType;
  if (layer.isErased()) return Acad::eWasErased;
  impl_->setHeaderText("$CLAYER", 8, impl_->recordName(*layer.slot()));
  return Acad::eOk;
}

AcDbObjectId AcDbDatabase::celtype() const {
  const AcDbObjectId current =
      recordNamed(*impl_, DxfType::LineType, impl_->headerText("$CELTYPE", 6).value_or(L"ByLayer"));
  return current.isNull() ? byLayerLinetype() : current;
}

Acad::ErrorStatus AcDbDatabase::setCeltype(AcDbObjectId linetype) {
  if (linetype.isNull()) return Acad::eNullObjectId;
  if (linetype.slot()->type != DxfType::LineType) return Acad::eWrongObjectType;
  if (linetype.isErased()) return Acad::eWasErased;
  impl_->setHeaderText("$CELTYPE", 6, impl_->recordName(*linetype.slot()));
  return Acad::eOk;
}

AcCmColor AcDbDatabase::cecolor() const {
  AcCmColor color;
  color.setColorIndex(
      static_cast<Adesk::UInt16>(impl_->headerInteger("$CECOLOR", 62).value_or(AcCmEntityColor::kACIbyLayer)));
  return color;
}

Acad::ErrorStatus AcDbDatabase::setCecolor(const AcCmColor& color) {
  impl_->setHeaderInteger("$CECOLOR", 62, color.colorIndex());
  return Acad::eOk;
}

AcDb::MeasurementValue AcDbDatabase::measurement() const {
  return impl_->headerInteger("$MEASUREMENT", 70).value_or(0) == 1 ? AcDb::kMetric : AcDb::kEnglish;
}

Acad::ErrorStatus AcDbDatabase::setMeasurement(AcDb::MeasurementValue value) {
  impl_->setHeaderInteger("$MEASUREMENT", 70, value);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::getAcDbObjectId(AcDbObjectId& id, bool, const AcDbHandle& handle, Adesk::UInt32) const {
  if (handle.isNull()) return Acad::eUnknownHandle;
  Slot* const slot = impl_->findHandle(handle);
  if (slot == nullptr) return Acad::eUnknownHandle;
  id = AcDbObjectId(slot);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::addReactor(AcDbDatabaseReactor* reactor) const {
  if (reactor == nullptr) return Acad::eNullObjectPointer;
  return impl_->parts().watchers.add(reactor) ? Acad::eOk : Acad::eDuplicateKey;
}

Acad::ErrorStatus AcDbDatabase::removeReactor(AcDbDatabaseReactor* reactor) const {
  return impl_->parts().watchers.remove(reactor) ? Acad::eOk : Acad::eKeyNotFound;
}
