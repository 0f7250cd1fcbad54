// Symbol tables and their records.
#include <algorithm>
#include <memory>
#include <utility>

#include "Database/Adoption.h"
#include "Database/ObjectAccess.h"
#include "Database/Parts.h"
#include "Text/Text.h"
#include "acutmem.h"
#include "dbapserv.h"
#include "dbsymtb.h"

using host::database::DrawingDatabase;
using host::database::DxfType;
using host::database::Record;
using host::database::Slot;
using host::database::spelledInteger;
using host::database::SymbolTable;
using host::database::Tag;
using host::database::TagWriter;

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTableRecord, AcDbObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTableIterator, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbSymbolTable, AcDbObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbLayerTableRecord, AcDbSymbolTableRecord)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbLinetypeTableRecord, AcDbSymbolTableRecord)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbRegAppTableRecord, AcDbSymbolTableRecord)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbTextStyleTableRecord, AcDbSymbolTableRecord)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbBlockTableRecord, AcDbSymbolTableRecord)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbBlockTableRecordIterator, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbLayerTable, AcDbSymbolTable)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbLinetypeTable, AcDbSymbolTable)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbRegAppTable, AcDbSymbolTable)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbTextStyleTable, AcDbSymbolTable)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbBlockTable, AcDbSymbolTable)

namespace {

constexpr std::string_view kLayer = "AcDbLayerTableRecord";
constexpr std::string_view kLinetype = "AcDbLinetypeTableRecord";

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

[[maybe_unused]] const bool registered =
    host::database::registerClass({DxfType::Layer, &AcDbLayerTableRecord::desc, &create<AcDbLayerTableRecord>}) &&
    host::database::registerClass(
        {DxfType::LineType, &AcDbLinetypeTableRecord::desc, &create<AcDbLinetypeTableRecord>}) &&
    host::database::registerClass({DxfType::AppId, &AcDbRegAppTableRecord::desc, &create<AcDbRegAppTableRecord>}) &&
    host::database::registerClass(
        {DxfType::TextStyle, &AcDbTextStyleTableRecord::desc, &create<AcDbTextStyleTableRecord>}) &&
    host::database::registerClass({DxfType::BlockRecord, &AcDbBlockTableRecord::desc, &create<AcDbBlockTableRecord>});

bool isValidName(std::wstring_view name) {
  constexpr std::size_t kMostCharacters = 255;
  return !name.empty() && name.size() <= kMostCharacters &&
         name.find_first_of(L"<>/\\\":;?*|,=`") == std::wstring_view::npos &&
         std::none_of(name.begin(), name.end(), [](wchar_t c) { return c < 32; });
}

const SymbolTable* tableOf(const AcDbSymbolTable& table) {
  const Slot* const slot = HostObjectAccess::slot(table);
  if (slot == nullptr) return nullptr;
  for (const auto& [type, contents] : slot->database().parts().tables) {
    if (contents.head == slot) return &contents;
  }
  return nullptr;
}

int flagsOf(const AcDbObject& record) {
  Tag tag;
  return HostObjectAccess::findTag(record, "", 70, tag) ? static_cast<int>(tag.integer()) : 0;
}

/// Value of an integer tag of a record, or what its absence means.
std::int64_t integerOf(const AcDbObject& record, std::string_view subclass, int code, std::int64_t missing) {
  Tag tag;
  return HostObjectAccess::findTag(record, subclass, code, tag) ? tag.integer() : missing;
}

void setInteger(AcDbObject& record, std::string_view subclass, int code, std::int64_t value) {
  if (!HostObjectAccess::canWrite(record) || integerOf(record, subclass, code, value + 1) == value) return;
  HostObjectAccess::setTag(record, subclass, code, spelledInteger(code, value));
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

SymbolTable& DrawingDatabase::Parts::tableFor(DxfType recordType) {
  SymbolTable& table = tables[recordType];
  if (table.head == nullptr) {
    NewSlots made(*this);
    Slot* const head = makeSlot(DxfType::TableHead, nullptr, 0);
    setRecord(*head, self.tagWriter()
                         .raw(0, "TABLE")
                         .raw(2, fixedTypeName(recordType))
                         .handle(5, head->handle)
                         .handle(330, 0)
                         .raw(100, "AcDbSymbolTable")
                         .integer(70, 0)
                         .take());
    made.keep();
    table.head = head;
  }
  return table;
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
  SymbolTable& table = parts.tableFor(slot->type);
  const std::wstring former = db.recordName(*slot);
  const std::wstring next = name;
  if (slot->type == DxfType::Layer) parts.internLayer(encoded);
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
  if (slot->type == DxfType::Layer) parts.bindLayerRecord(slot);
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

  parts.journal(head);  // its count follows when saved
  host::database::NewSlots made(parts);
  Slot* const slot = parts.makeSlot(kind->recordType, &head, 0);
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
  host::database::prepareBinding(*slot);
  SymbolTable& table = parts.tableFor(kind->recordType);
  table.records.push_back(slot);
  table.byName[name] = slot;
  if (kind->recordType == DxfType::Layer) parts.bindLayerRecord(slot);
  if (kind->recordType == DxfType::BlockRecord) {
    host::database::beginBlock(*slot, name);
  }
  made.keep();
  host::database::bindOpen(*record, *slot);
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

namespace {

/// Moves to the next id in the direction, over erased ones when asked.
void moveOver(const AcDbObjectIdArray& ids, int& position, bool forward, bool skipDeleted) {
  const int step = forward ? 1 : -1;
  while (position >= 0 && position < ids.length() && skipDeleted && ids[position].isErased()) position += step;
}

}  // namespace

AcDbSymbolTableIterator::~AcDbSymbolTableIterator() = default;

void AcDbSymbolTableIterator::start(bool atBeginning, bool skipDeleted) {
  position_ = atBeginning ? 0 : ids_.length() - 1;
  moveOver(ids_, position_, atBeginning, skipDeleted);
}

bool AcDbSymbolTableIterator::done() const { return position_ < 0 || position_ >= ids_.length(); }

void AcDbSymbolTableIterator::step(bool forward, bool skipDeleted) {
  position_ += forward ? 1 : -1;
  moveOver(ids_, position_, forward, skipDeleted);
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

AcDbBlockTableRecordIterator::~AcDbBlockTableRecordIterator() = default;

void AcDbBlockTableRecordIterator::start(bool atBeginning, bool skipDeleted) {
  position_ = atBeginning ? 0 : ids_.length() - 1;
  moveOver(ids_, position_, atBeginning, skipDeleted);
}

bool AcDbBlockTableRecordIterator::done() const { return position_ < 0 || position_ >= ids_.length(); }

void AcDbBlockTableRecordIterator::step(bool forward, bool skipDeleted) {
  position_ += forward ? 1 : -1;
  moveOver(ids_, position_, forward, skipDeleted);
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntityId(AcDbObjectId& id) const {
  if (done()) return Acad::eInvalidIndex;
  id = ids_[position_];
  return Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntity(AcDbEntity*& entity, AcDb::OpenMode mode,
                                                          bool openErased) const {
  return done() ? Acad::eInvalidIndex : acdbOpenAcDbEntity(entity, ids_[position_], mode, openErased);
}

// ---- layers ---------------------------------------------------------------------------------------------------------

AcDbLayerTableRecord::AcDbLayerTableRecord() {
  const host::text::Codec codec;
  HostObjectAccess::initDetached(*this, "LAYER", false,
                                 TagWriter(codec)
                                     .raw(100, kLayer)
                                     .raw(2, "")
                                     .integer(70, 0)
                                     .integer(62, 7)
                                     .raw(6, "Continuous")
                                     .integer(370, AcDb::kLnWtByLwDefault)
                                     .take());
}

AcCmColor AcDbLayerTableRecord::color() const {
  AcCmColor color;
  Tag tag;
  if (HostObjectAccess::findTag(*this, kLayer, 420, tag)) {
    const std::int64_t rgb = tag.integer();
    color.setRGB(static_cast<Adesk::UInt8>(rgb >> 16), static_cast<Adesk::UInt8>(rgb >> 8),
                 static_cast<Adesk::UInt8>(rgb));
  } else {
    color.setColorIndex(static_cast<Adesk::UInt16>(std::abs(integerOf(*this, "", 62, 7)) & 0x1FF));
  }
  return color;
}

void AcDbLayerTableRecord::setColor(const AcCmColor& color) {
  if (!HostObjectAccess::canWrite(*this) || color == this->color()) return;
  HostObjectAccess::removeTag(*this, kLayer, 430);
  if (color.isByColor()) {
    HostObjectAccess::setTag(*this, kLayer, 420,
                             spelledInteger(420, (color.red() << 16) | (color.green() << 8) | color.blue()));
  } else {
    HostObjectAccess::removeTag(*this, kLayer, 420);
  }
  setInteger(*this, kLayer, 62, isOff() ? -color.colorIndex() : color.colorIndex());
}

bool AcDbLayerTableRecord::isOff() const { return integerOf(*this, "", 62, 7) < 0; }

void AcDbLayerTableRecord::setIsOff(bool off) {
  if (off == isOff()) return;
  setInteger(*this, kLayer, 62, -integerOf(*this, "", 62, 7));
}

bool AcDbLayerTableRecord::isFrozen() const { return (flagsOf(*this) & 1) != 0; }

Acad::ErrorStatus AcDbLayerTableRecord::setIsFrozen(bool frozen) {
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (frozen && slot_ != nullptr && database()->clayer() == objectId()) return Acad::eInvalidLayer;
  setInteger(*this, kLayer, 70, frozen ? flagsOf(*this) | 1 : flagsOf(*this) & ~1);
  return Acad::eOk;
}

bool AcDbLayerTableRecord::isLocked() const { return (flagsOf(*this) & 4) != 0; }

void AcDbLayerTableRecord::setIsLocked(bool locked) {
  setInteger(*this, kLayer, 70, locked ? flagsOf(*this) | 4 : flagsOf(*this) & ~4);
}

bool AcDbLayerTableRecord::isPlottable() const { return integerOf(*this, kLayer, 290, 1) != 0; }

Acad::ErrorStatus AcDbLayerTableRecord::setIsPlottable(bool plottable) {
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (plottable != isPlottable()) setInteger(*this, kLayer, 290, plottable ? 1 : 0);
  return Acad::eOk;
}

int AcDbLayerTableRecord::lineWeight() const {
  return static_cast<int>(integerOf(*this, kLayer, 370, AcDb::kLnWtByLwDefault));
}

Acad::ErrorStatus AcDbLayerTableRecord::setLineWeight(int weight) {
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (weight < AcDb::kLnWtByLwDefault || weight > 211) return Acad::eBadLineWeightValue;
  setInteger(*this, kLayer, 370, weight);
  return Acad::eOk;
}

AcDbObjectId AcDbLayerTableRecord::linetypeObjectId() const {
  AcDbDatabase* db = database();
  if (db == nullptr) db = acdbHostApplicationServices()->workingDatabase();
  Tag tag;
  if (db == nullptr || !HostObjectAccess::findTag(*this, "", 6, tag)) return AcDbObjectId::kNull;
  return AcDbObjectId(
      db->hostDatabase().findRecord(DxfType::LineType, HostObjectAccess::codec(*this).decode(tag.value)));
}

Acad::ErrorStatus AcDbLayerTableRecord::setLinetypeObjectId(AcDbObjectId linetype) {
  if (linetype.isNull()) return Acad::eNullObjectId;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  if (linetype.slot()->type != DxfType::LineType) return Acad::eWrongObjectType;
  if (linetypeObjectId() == linetype) return Acad::eOk;
  HostObjectAccess::setTag(
      *this, kLayer, 6,
      HostObjectAccess::codec(*this).encode(linetype.slot()->database().recordName(*linetype.slot())));
  return Acad::eOk;
}

// ---- linetypes ------------------------------------------------------------------------------------------------------

namespace {

/// A linetype's own values.
struct LinetypeData final : host::database::ObjectData {
  std::string name, comments, flags = "     0";  // in the record's encoding
  std::vector<double> dashes;
  double length = 0;

  void read(host::database::TagCursor tags, const host::text::Codec&) {
    bool inside = false;
    Tag tag;
    while (tags.next(tag)) {
      if (tag.code >= 1000) break;
      if (tag.code == 100) inside = tag.trimmed() == kLinetype;
      if (!inside) continue;
      if (tag.code == 2) name = tag.value;
      if (tag.code == 3) comments = tag.value;
      if (tag.code == 70) flags = tag.value;
      if (tag.code == 40) length = tag.real();
      if (tag.code == 49) dashes.push_back(tag.real());
    }
  }

  void write(TagWriter& out) const override {
    out.raw(100, kLinetype).raw(2, name).raw(70, flags).raw(3, comments).integer(72, 65);
    out.integer(73, static_cast<std::int64_t>(dashes.size())).real(40, length);
    for (const double dash : dashes) out.real(49, dash).integer(74, 0);
  }
};

/// Applies one change to a linetype's values; a record outside a drawing is spelled anew at once, so that its name
/// stands in its tags like that of any record.
template <class Change>
Acad::ErrorStatus changeLinetype(AcDbLinetypeTableRecord& record, Change&& change) {
  if (!HostObjectAccess::canWrite(record)) return Acad::eNotOpenForWrite;
  LinetypeData data;
  data.read(HostObjectAccess::tags(record), HostObjectAccess::codec(record));
  change(data);
  TagWriter out = HostObjectAccess::tagWriter(record);
  data.write(out);
  Record& tags = HostObjectAccess::editRecord(record);
  std::size_t index = 0;
  std::size_t from = host::database::RecordLayout::npos;
  Tag tag;
  for (host::database::TagCursor cursor = tags.tags(); cursor.next(tag) && tag.code < 1000; ++index) {
    if (tag.code == 100 && tag.trimmed() == kLinetype) from = index;
  }
  if (from == host::database::RecordLayout::npos) from = index;
  tags.replace(from, index - from, HostObjectAccess::keep(record, out.take()));
  return Acad::eOk;
}

LinetypeData linetypeOf(const AcDbLinetypeTableRecord& record) {
  LinetypeData data;
  data.read(HostObjectAccess::tags(record), HostObjectAccess::codec(record));
  return data;
}

}  // namespace

AcDbLinetypeTableRecord::AcDbLinetypeTableRecord() {
  const host::text::Codec codec;
  TagWriter out(codec);
  LinetypeData().write(out);
  HostObjectAccess::initDetached(*this, "LTYPE", false, out.str());
}

Acad::ErrorStatus AcDbLinetypeTableRecord::setComments(const ACHAR* comments) {
  if (comments == nullptr) return Acad::eInvalidInput;
  const std::string text = HostObjectAccess::codec(*this).encode(comments);
  return changeLinetype(*this, [&](LinetypeData& data) { data.comments = text; });
}

double AcDbLinetypeTableRecord::patternLength() const { return linetypeOf(*this).length; }

void AcDbLinetypeTableRecord::setPatternLength(double length) {
  changeLinetype(*this, [&](LinetypeData& data) { data.length = length; });
}

int AcDbLinetypeTableRecord::numDashes() const { return static_cast<int>(linetypeOf(*this).dashes.size()); }

void AcDbLinetypeTableRecord::setNumDashes(int count) {
  constexpr int kMostDashes = 12;
  changeLinetype(*this, [&](LinetypeData& data) {
    data.dashes.resize(static_cast<std::size_t>(std::clamp(count, 0, kMostDashes)));
  });
}

double AcDbLinetypeTableRecord::dashLengthAt(int index) const {
  const LinetypeData data = linetypeOf(*this);
  return index >= 0 && index < static_cast<int>(data.dashes.size()) ? data.dashes[static_cast<std::size_t>(index)] : 0;
}

void AcDbLinetypeTableRecord::setDashLengthAt(int index, double length) {
  changeLinetype(*this, [&](LinetypeData& data) {
    if (index >= 0 && index < static_cast<int>(data.dashes.size()))
      data.dashes[static_cast<std::size_t>(index)] = length;
  });
}

// ---- application names, text styles, blocks -------------------------------------------------------------------------

AcDbRegAppTableRecord::AcDbRegAppTableRecord() {
  const host::text::Codec codec;
  HostObjectAccess::initDetached(*this, "APPID", false,
                                 TagWriter(codec).raw(100, "AcDbRegAppTableRecord").raw(2, "").integer(70, 0).take());
}

AcDbTextStyleTableRecord::AcDbTextStyleTableRecord() {
  const host::text::Codec codec;
  HostObjectAccess::initDetached(*this, "STYLE", false,
                                 TagWriter(codec)
                                     .raw(100, "AcDbTextStyleTableRecord")
                                     .raw(2, "")
                                     .integer(70, 0)
                                     .real(40, 0)
                                     .real(41, 1)
                                     .real(50, 0)
                                     .integer(71, 0)
                                     .real(42, 2.5)
                                     .raw(3, "txt")
                                     .raw(4, "")
                                     .take());
}

AcDbBlockTableRecord::AcDbBlockTableRecord() {
  const host::text::Codec codec;
  HostObjectAccess::initDetached(
      *this, "BLOCK_RECORD", false,
      TagWriter(codec).raw(100, "AcDbBlockTableRecord").raw(2, "").handle(340, 0).integer(70, 0).take());
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbEntity* entity) {
  AcDbObjectId id;
  return appendAcDbEntity(id, entity);
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity) {
  if (entity == nullptr) return Acad::eNullObjectPointer;
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  if (!HostObjectAccess::canWrite(*this)) return Acad::eNotOpenForWrite;
  const Acad::ErrorStatus status = host::database::appendEntity(*slot_, *entity);
  if (status == Acad::eOk) id = entity->objectId();
  return status;
}

Acad::ErrorStatus AcDbBlockTableRecord::newIterator(AcDbBlockTableRecordIterator*& iterator, bool atBeginning,
                                                    bool skipDeleted) const {
  if (slot_ == nullptr) return Acad::eNotInDatabase;
  std::unique_ptr<AcDbBlockTableRecordIterator> made(new AcDbBlockTableRecordIterator);
  if (const host::database::BlockContents* const block = slot_->database().block(slot_)) {
    for (Slot* const slot : block->entities) made->ids_.append(AcDbObjectId(slot));
  }
  made->start(atBeginning, skipDeleted);
  iterator = made.release();
  return Acad::eOk;
}

bool AcDbBlockTableRecord::isLayout() const {
  Tag tag;
  return HostObjectAccess::findTag(*this, "AcDbBlockTableRecord", 340, tag) && tag.handle() != 0;
}
