#include "Database/DrawingDatabase.h"

#include "Database/Store/Parts.h"
#include "Database/Store/SlotStates.h"

namespace host::database {

DrawingDatabase::DrawingDatabase(AcDbDatabase* facade) : facade_(facade), parts_(std::make_unique<Parts>(*this)) {}

DrawingDatabase::~DrawingDatabase() {
  parts_->watchers.tellReactors([this](AcDbDatabaseReactor& reactor) { reactor.goodbye(facade_); });
  releaseObjects();
}

void DrawingDatabase::clear() {
  releaseObjects();
  auto fresh = std::make_unique<Parts>(*this);
  fresh->watchers.takeReactors(parts_->watchers);
  parts_ = std::move(fresh);
}

DrawingVersion DrawingDatabase::version() const { return parts_->file.version; }
const text::Codec& DrawingDatabase::codec() const { return parts_->file.codec; }
std::string_view DrawingDatabase::lineEnd() const { return parts_->file.lineEnd; }
std::string_view DrawingDatabase::keep(std::string_view bytes) { return parts_->memory.keep(bytes); }
Arena& DrawingDatabase::memory() { return parts_->memory; }
Attachments& DrawingDatabase::attachments() { return parts_->attachments; }
const std::vector<Problem>& DrawingDatabase::problems() const { return parts_->file.problems; }

// ---- names ----------------------------------------------------------------------------------------------------------

std::string_view DrawingDatabase::typeName(DxfType type) const { return parts_->types.name(type); }
Slot* DrawingDatabase::layerRecord(std::uint32_t layerIndex) const { return parts_->layers.record(layerIndex); }
std::wstring DrawingDatabase::layerName(std::uint32_t layerIndex) const { return parts_->layers.name(layerIndex); }
std::uint32_t DrawingDatabase::findLayer(std::wstring_view name) const { return parts_->layers.find(name); }

// ---- objects --------------------------------------------------------------------------------------------------------

Slot* DrawingDatabase::findHandle(std::uint64_t handle) const { return parts_->handles.find(handle); }

void DrawingDatabase::forEachSlot(const std::function<void(Slot&)>& visit) const {
  parts_->slots.forEach(visit);
  parts_->slots.late().forEach(visit);
}

std::size_t DrawingDatabase::slotCount() const { return parts_->slots.count() + parts_->slots.late().size(); }

Slot* DrawingDatabase::table(DxfType recordType) const {
  const SymbolTable* const table = parts_->tables.find(recordType);
  return table != nullptr ? table->head : nullptr;
}

const std::vector<Slot*>& DrawingDatabase::records(DxfType recordType) const {
  static const std::vector<Slot*> kNone;
  const SymbolTable* const table = parts_->tables.find(recordType);
  return table != nullptr ? table->records : kNone;
}

Slot* DrawingDatabase::findRecord(DxfType recordType, std::wstring_view name) const {
  return parts_->tables.findRecord(recordType, name);
}

std::wstring DrawingDatabase::recordName(const Slot& record) const { return nameOfRecord(record, codec()); }
Slot* DrawingDatabase::rootDictionary() const { return parts_->dictionaries.root(); }

const BlockContents* DrawingDatabase::block(const Slot* blockRecord) const { return parts_->blocks.find(blockRecord); }

const BlockContents* DrawingDatabase::findBlock(std::wstring_view name) const {
  const Slot* const record = findRecord(DxfType::BlockRecord, name);
  return record != nullptr ? block(record) : nullptr;
}

const BlockContents& DrawingDatabase::modelSpace() const {
  return parts_->blocks.contents(parts_->blocks.modelSpace());
}

std::vector<std::pair<std::wstring, const BlockContents*>> DrawingDatabase::layouts() const {
  return parts_->blocks.layouts();
}

std::vector<Slot*> DrawingDatabase::drawOrder(const BlockContents& block) const {
  return parts_->sortTables.drawOrder(block);
}

// ---- header variables -----------------------------------------------------------------------------------------------

std::optional<std::wstring> DrawingDatabase::headerText(std::string_view name, int code) const {
  const std::optional<Tag> tag = parts_->header.find(name, code);
  return tag ? std::optional(codec().decode(tag->value)) : std::nullopt;
}

std::optional<double> DrawingDatabase::headerReal(std::string_view name, int code) const {
  const std::optional<Tag> tag = parts_->header.find(name, code);
  return tag ? std::optional(tag->real()) : std::nullopt;
}

std::optional<std::int64_t> DrawingDatabase::headerInteger(std::string_view name, int code) const {
  const std::optional<Tag> tag = parts_->header.find(name, code);
  return tag ? std::optional(tag->integer()) : std::nullopt;
}

void DrawingDatabase::setHeaderText(std::string_view name, int code, std::wstring_view value) {
  setVariable(*this, name, code, tagWriter().text(code, value));
}

void DrawingDatabase::setHeaderReal(std::string_view name, int code, double value) {
  setVariable(*this, name, code, tagWriter().real(code, value));
}

void DrawingDatabase::setHeaderInteger(std::string_view name, int code, std::int64_t value) {
  setVariable(*this, name, code, tagWriter().integer(code, value));
}

// ---- changing -------------------------------------------------------------------------------------------------------

Acad::ErrorStatus DrawingDatabase::open(AcDbObject*& object, Slot* slot, AcDb::OpenMode mode, bool openErased) {
  return parts_->objects.open(object, slot, mode, openErased);
}

int DrawingDatabase::releaseObjects() { return parts_->objects.release(); }
int DrawingDatabase::takeLostChanges() { return parts_->objects.takeLostChanges(); }
bool DrawingDatabase::isModified() const { return parts_->journal.isModified(); }
void DrawingDatabase::setUnmodified() { parts_->journal.setUnmodified(); }
void DrawingDatabase::setModified() { parts_->journal.setModified(); }
std::uint64_t DrawingDatabase::changeCount() const { return parts_->journal.changeCount(); }
void DrawingDatabase::setObserver(WorkObserver* observer) { parts_->watchers.setObserver(observer); }

void DrawingDatabase::tellRefused(const Slot& object, WorkObserver::Refusal what, std::string_view why) const {
  if (!parts_->journal.isOfThisStep(object)) parts_->watchers.refused(object, what, why);
}

// ---- undo -----------------------------------------------------------------------------------------------------------

void DrawingDatabase::beginUndoStep(std::wstring name, UndoGroup group) {
  parts_->journal.begin(std::move(name), std::move(group));
}

void DrawingDatabase::endUndoStep() {
  parts_->journal.end();
  checkSlots(*this);
}

void DrawingDatabase::endUnusedUndoStep() {
  parts_->journal.endUnused();
  checkSlots(*this);
}

std::optional<std::wstring> DrawingDatabase::undo(std::uint32_t openGroup) {
  std::optional<std::wstring> name = parts_->journal.undo(openGroup);
  checkSlots(*this);
  return name;
}

std::optional<std::wstring> DrawingDatabase::redo(std::uint32_t openGroup) {
  std::optional<std::wstring> name = parts_->journal.redo(openGroup);
  checkSlots(*this);
  return name;
}

std::vector<std::wstring> DrawingDatabase::undoNames(std::size_t most, std::uint32_t openGroup) const {
  return parts_->journal.undoNames(most, openGroup);
}

std::vector<std::wstring> DrawingDatabase::redoNames(std::size_t most, std::uint32_t openGroup) const {
  return parts_->journal.redoNames(most, openGroup);
}

std::size_t DrawingDatabase::undoStepCount() const { return parts_->journal.undoCount(); }

std::optional<std::vector<const Slot*>> DrawingDatabase::takeChangedSlots() {
  return parts_->journal.takeChangedSlots();
}

void DrawingDatabase::abandonUndoStep() {
  parts_->journal.abandon();
  checkSlots(*this);
}

}  // namespace host::database
