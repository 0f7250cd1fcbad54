// AcDbSymbolTable with its five kinds (AcDbLayerTable, AcDbLinetypeTable, AcDbRegAppTable, AcDbTextStyleTable,
// AcDbBlockTable), AcDbSymbolTableRecord, AcDbSymbolTableIterator.
#include <algorithm>
#include <memory>
#include <utility>

#include "Database/ObjectAccess.h"
#include "Database/Objects/Adoption.h"
#include "Database/Objects/IdWalk.h"
#include "Database/Store/Parts.h"
#include "Database/Store/TagEdits.h"
#include "Text/Text.h"
#include "acutmem.h"
#include "dbapserv.h"
#include "dbsymtb.h"

using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::Slot;
using host::database::SymbolTable;
using host::database::Tag;
using host::database::TagWriter;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTableRecord, AcDbObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTableIterator, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTable, AcDbObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbLayerTable, AcDbSymbolTable)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbLinetypeTable, AcDbSymbolTable)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbRegAppTable, AcDbSymbolTable)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbTextStyleTable, AcDbSymbolTable)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbBlockTable, AcDbSymbolTable)

namespace {

constexpr std::string_view kLayer = "AcDbLayerTableRecord";

template <class T>
AcDbObject* create() {
  return new T;
}

/// Which table a table object stands for: the type of its records.
struct TableKind {
  DxfType recordType;
  AcRxClass* (*description)();
  AcDbObject* (*create)();
  const char* name;
  const char* recordSubclass;
};
constexpr TableKind kTables[] = {
    {DxfType::Layer, &AcDbLayerTable::desc, &create<AcDbLayerTable>, "LAYER", "AcDbLayerTableRecord"},
    {DxfType::LineType, &AcDbLinetypeTable::desc, &create<AcDbLinetypeTable>, "LTYPE", "AcDbLinetypeTableRecord"},
    {DxfType::AppId, &AcDbRegAppTable::desc, &create<AcDbRegAppTable>, "APPID", "AcDbRegAppTableRecord"},
    {DxfType::TextStyle, &AcDbTextStyleTable::desc, &create<AcDbTextStyleTable>, "STYLE", "AcDbTextStyleTableRecord"},
    {DxfType::BlockRecord, &AcDbBlockTable::desc, &create<AcDbBlockTable>, "BLOCK_RECORD", "AcDbBlockTableRecord"},
};

bool isValidName(std::wstring_view name) {
  constexpr std::size_t kMostCharacters = 255;
  return !name.empty() && name.size() <= kMostCharacters &&
         name.find_first_of(L"<>/\\\":;?*|,=`") == std::wstring_view::npos &&
         std::none_of(name.begin(), name.end(), [](wchar_t c) { return c < 32; });
}

const SymbolTable* tableOf(const AcDbSymbolTable& table) {
  const Slot* const slot = HostObjectAccess::slot(table);
  if (slot == nullptr) return nullptr;
  return slot->database().parts().tables.findHead(*slot);
}

}  // namespace

namespace host::database {

/// The table object's class depends on which table it is, so it is made by hand, not by the registry.
AcDbObject* createTable(DxfType recordType) {
  for (const TableKind& kind : kTables) {
    if (kind.recordType == recordType) return kind.create();
  }
  return nullptr;
}

}  // namespace host::database

// ---- records --------------------------------------------------------------------------------------------------------

Acad::ErrorStatus AcDbSymbolTableRecord::setName(const ACHAR* name) {
  if (name == nullptr || !isValidName(name)) return Acad::eInvalidInput;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  Slot* const slot = HostObjectAccess::slot(*this);
  const std::string encoded = HostObjectAccess::codec(*this).encode(name);
  if (slot == nullptr) {
    HostObjectAccess::setTag(*this, "", 2, encoded);
    return Acad::eOk;
  }
  DrawingDatabase& db = slot->database();
  DrawingDatabase::Parts& parts = db.parts();
  Slot* const other = db.findRecord(slot->type, name);
  if (other != nullptr && other != slot) return Acad::eDuplicateRecordName;
  SymbolTable& table = parts.tables.obtain(slot->type);
  const std::wstring former = db.recordName(*slot);
  const std::wstring next = name;
  if (slot->type == DxfType::Layer) parts.layers.enter(encoded);
  const bool isCaseOnly = host::text::equalFolded(former, next);
  Slot*& entry = table.byName[next];
  Slot* const formerEntry = std::exchange(entry, slot);
  try {
    HostObjectAccess::setTag(*this, "", 2, encoded);
  } catch (...) {
    entry = formerEntry;
    if (formerEntry == nullptr) table.byName.erase(next);
    throw;
  }
  if (!isCaseOnly) table.byName.erase(former);
  if (slot->type == DxfType::Layer) parts.layers.bind(slot);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableRecord::getName(ACHAR*& name) const {
  Tag tag;
  if (!HostObjectAccess::findTag(*this, "", 2, tag)) return Acad::eInvalidInput;
  return acutNewString(HostObjectAccess::codec(*this).decode(tag.value).c_str(), name);
}

namespace {
/// Holds the name that getName lends out.
struct LentName final : host::database::ObjectData {
  std::wstring name;
  void read(host::database::TagCursor tags, const host::text::Codec& codec) {
    Tag tag;
    if (host::database::findTagIn(tags, "", 2, tag)) name = codec.decode(tag.value);
  }
  void write(TagWriter&) const override {}
};
}  // namespace

Acad::ErrorStatus AcDbSymbolTableRecord::getName(const ACHAR*& name) const {
  HostObjectAccess::setData(*this, nullptr);  // the name may have changed
  name = host::database::dataOf<LentName>(*this).name.c_str();
  return *name != 0 ? Acad::eOk : Acad::eInvalidInput;
}

// ---- tables ---------------------------------------------------------------------------------------------------------

Acad::ErrorStatus AcDbSymbolTable::getAt(const ACHAR* name, AcDbObjectId& id, bool getErased) const {
  if (name == nullptr) return Acad::eInvalidInput;
  const SymbolTable* const table = tableOf(*this);
  if (table == nullptr) return Acad::eNotInDatabase;
  const auto found = table->byName.find(std::wstring_view(name));
  if (found == table->byName.end()) return Acad::eKeyNotFound;
  if (!found->second->isErased()) {
    id = AcDbObjectId(found->second);
    return Acad::eOk;
  }
  Slot* const living = HostObjectAccess::slot(*this)->database().findRecord(found->second->type, name);
  if (living != nullptr) {
    id = AcDbObjectId(living);
    return Acad::eOk;
  }
  if (!getErased) return Acad::eKeyNotFound;
  id = AcDbObjectId(found->second);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::getAt(const ACHAR* name, AcDbSymbolTableRecord*& record, AcDb::OpenMode mode,
                                         bool openErased) const {
  AcDbObjectId id;
  const Acad::ErrorStatus status = getAt(name, id, openErased);
  return status == Acad::eOk ? acdbOpenObject(record, id, mode, openErased) : status;
}

bool AcDbSymbolTable::has(const ACHAR* name) const {
  AcDbObjectId id;
  return getAt(name, id) == Acad::eOk;
}

bool AcDbSymbolTable::has(AcDbObjectId id) const {
  return !id.isNull() && !id.isErased() && id.slot()->owner == HostObjectAccess::slot(*this);
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbSymbolTableRecord* record) {
  AcDbObjectId id;
  return add(id, record);
}

Acad::ErrorStatus AcDbSymbolTable::add(AcDbObjectId& id, AcDbSymbolTableRecord* record) {
  if (record == nullptr) return Acad::eNullObjectPointer;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (HostObjectAccess::slot(*record) != nullptr) return Acad::eAlreadyInDb;
  Slot& head = *HostObjectAccess::slot(*this);
  DrawingDatabase& db = head.database();
  DrawingDatabase::Parts& parts = db.parts();
  const TableKind* kind = nullptr;
  for (const TableKind& candidate : kTables) {
    if (candidate.description() == isA()) kind = &candidate;
  }
  if (kind == nullptr || host::database::typeOfClass(record->isA()) != kind->recordType) return Acad::eWrongObjectType;
  Tag tag;
  if (!HostObjectAccess::findTag(*record, "", 2, tag) || tag.value.empty()) return Acad::eInvalidInput;
  const std::wstring name = HostObjectAccess::codec(*record).decode(tag.value);
  if (db.findRecord(kind->recordType, name) != nullptr) return Acad::eDuplicateRecordName;

  parts.editor.touch(head);  // its count follows when saved
  host::database::NewSlots made(parts.slots);
  Slot* const slot = parts.editor.make(kind->recordType, &head, 0);
  TagWriter out = db.tagWriter();
  out.raw(0, kind->name).handle(5, slot->handle).handle(330, head.handle).raw(100, "AcDbSymbolTableRecord");
  out.bytes(host::database::ownTags(*record, db, false));
  if (kind->recordType == DxfType::Layer) {
    // Plot style and material are those of layer 0: other programs expect every layer to name them.
    if (const Slot* const zero = db.findRecord(DxfType::Layer, L"0")) {
      for (const int code : {390, 347}) {
        if (host::database::findTagIn(zero->tags(), kLayer, code, tag)) out.bytes(tag.bytes);
      }
    }
  }
  host::database::setNewRecord(*slot, out.str());
  parts.objects.prepareAdoption(*slot);
  SymbolTable& table = parts.tables.obtain(kind->recordType);
  table.records.push_back(slot);
  table.byName[name] = slot;
  if (kind->recordType == DxfType::Layer) parts.layers.bind(slot);
  if (kind->recordType == DxfType::BlockRecord) {
    host::database::beginBlock(*slot, name);
  }
  made.keep();
  parts.objects.adopt(*record, *slot);
  id = AcDbObjectId(slot);
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTable::newIterator(AcDbSymbolTableIterator*& iterator, bool atBeginning,
                                               bool skipDeleted) const {
  const SymbolTable* const table = tableOf(*this);
  if (table == nullptr) return Acad::eNotInDatabase;
  std::unique_ptr<AcDbSymbolTableIterator> made(new AcDbSymbolTableIterator);
  for (Slot* const slot : table->records) made->ids_.append(AcDbObjectId(slot));
  made->start(atBeginning, skipDeleted);
  iterator = made.release();
  return Acad::eOk;
}

// ---- iterators ------------------------------------------------------------------------------------------------------

AcDbSymbolTableIterator::~AcDbSymbolTableIterator() = default;

void AcDbSymbolTableIterator::start(bool atBeginning, bool skipDeleted) {
  position_ = atBeginning ? 0 : ids_.length() - 1;
  host::database::moveOver(ids_, position_, atBeginning, skipDeleted);
}

bool AcDbSymbolTableIterator::done() const { return position_ < 0 || position_ >= ids_.length(); }

void AcDbSymbolTableIterator::step(bool forward, bool skipDeleted) {
  position_ += forward ? 1 : -1;
  host::database::moveOver(ids_, position_, forward, skipDeleted);
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecordId(AcDbObjectId& id) const {
  if (done()) return Acad::eInvalidIndex;
  id = ids_[position_];
  return Acad::eOk;
}

Acad::ErrorStatus AcDbSymbolTableIterator::getRecord(AcDbSymbolTableRecord*& record, AcDb::OpenMode mode,
                                                     bool openErased) const {
  return done() ? Acad::eInvalidIndex : acdbOpenObject(record, ids_[position_], mode, openErased);
}
