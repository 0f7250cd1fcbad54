#include "Database/DrawingDatabase.h"

#include <algorithm>
#include <mutex>
#include <set>

#include "Database/ObjectAccess.h"
#include "Database/Parts.h"
#include "Database/Reactors.h"
#include "Text/Text.h"
#include "dbsymtb.h"

namespace host::database {

namespace {

/// Numbers of the drawings that live; workers may have drawings of their own.
struct Lives {
  std::mutex mutex;
  std::set<std::uint64_t> numbers;
  std::uint64_t latest = 0;
};
Lives& lives() {
  static Lives* const all = new Lives;  // outlives drawings that end with the program
  return *all;
}

}  // namespace

DrawingLife::DrawingLife() {
  const std::lock_guard lock(lives().mutex);
  number_ = ++lives().latest;
  lives().numbers.insert(number_);
}

DrawingLife::~DrawingLife() {
  const std::lock_guard lock(lives().mutex);
  lives().numbers.erase(number_);
}

bool DrawingLife::isLiving(std::uint64_t number) {
  const std::lock_guard lock(lives().mutex);
  return lives().numbers.count(number) > 0;
}

DrawingDatabase::DrawingDatabase(AcDbDatabase* facade) : parts_(std::make_unique<Parts>(*this, facade)) {}

DrawingDatabase::~DrawingDatabase() {
  tellEach(parts_->reactors, [this](AcDbDatabaseReactor& reactor) { reactor.goodbye(facade()); });
  releaseObjects();
}

DrawingDatabase::Parts::~Parts() {
  // The memory goes with the pool.
  const auto end = [](Slot& slot) {
    if (slot.live != nullptr) slot.live->~Live();
  };
  slots.forEach(end);
  lateSlots.forEach(end);
}

void DrawingDatabase::clear() {
  releaseObjects();
  auto fresh = std::make_unique<Parts>(*this, parts_->facade);
  fresh->reactors = std::move(parts_->reactors);
  parts_ = std::move(fresh);
}

AcDbDatabase* DrawingDatabase::facade() const { return parts_->facade; }
DrawingVersion DrawingDatabase::version() const { return parts_->version; }
const text::Codec& DrawingDatabase::codec() const { return parts_->codec; }
std::string_view DrawingDatabase::lineEnd() const { return parts_->lineEnd; }
std::string_view DrawingDatabase::keep(std::string_view bytes) { return parts_->arena.keep(bytes); }

// ---- layers ---------------------------------------------------------------------------------------------------------

std::uint32_t DrawingDatabase::Parts::internLayer(std::string_view raw) {
  if (const auto found = layerByRaw.find(raw); found != layerByRaw.end()) return found->second;
  const std::wstring folded = text::folded(codec.decode(raw));
  std::uint32_t index = 0;
  if (const auto found = layerByFolded.find(folded); found != layerByFolded.end()) {
    index = found->second;
  } else {
    index = static_cast<std::uint32_t>(layers.size());
    layers.push_back({std::string(raw), folded, nullptr, std::nullopt});
    try {
      layerByFolded.emplace(folded, index);
    } catch (...) {
      layers.pop_back();
      throw;
    }
  }
  layerByRaw.emplace(std::string(raw), index);
  return index;
}

void DrawingDatabase::Parts::bindLayerRecord(Slot* record) {
  Tag tag;
  if (!findTag(*record, "AcDbLayerTableRecord", 2, tag) && !findTag(*record, "", 2, tag)) return;
  LayerName& layer = layers[internLayer(tag.value)];
  if (layer.record == nullptr || layer.record->isErased()) layer.record = record;
  layer.isLocked.reset();
}

bool DrawingDatabase::Parts::isLayerLocked(std::uint32_t layerIndex) {
  if (layerIndex >= layers.size()) return false;
  LayerName& layer = layers[layerIndex];
  if (!layer.isLocked) {
    Tag tag;
    layer.isLocked =
        layer.record != nullptr && findTagIn(layer.record->tags(), "", 70, tag) && (tag.integer() & 4) != 0;
  }
  return *layer.isLocked;
}

bool DrawingDatabase::Parts::refusesChange(const Slot& slot) {
  if (!slot.isEntity() || !isLayerLocked(slot.layer)) return false;
  self.tellRefused(slot, WorkObserver::Refusal::Change, "on a locked layer");
  return true;
}

void DrawingDatabase::Parts::forgetDefaults() {
  sharedTags.clear();
  for (LayerName& layer : layers) layer.isLocked.reset();
}

Slot* DrawingDatabase::layerRecord(std::uint32_t layerIndex) const {
  return layerIndex < parts_->layers.size() ? parts_->layers[layerIndex].record : nullptr;
}

std::wstring DrawingDatabase::layerName(std::uint32_t layerIndex) const {
  if (layerIndex == 0 || layerIndex >= parts_->layers.size()) return {};
  const Parts::LayerName& layer = parts_->layers[layerIndex];
  return layer.record != nullptr ? recordName(*layer.record) : codec().decode(layer.raw);
}

std::uint32_t DrawingDatabase::findLayer(std::wstring_view name) const {
  const auto found = parts_->layerByFolded.find(text::folded(name));
  return found != parts_->layerByFolded.end() ? found->second : 0;
}

// ---- slots ----------------------------------------------------------------------------------------------------------

Slot* DrawingDatabase::Parts::makeSlot(DxfType type, Slot* owner, std::uint16_t flags) {
  makeRoom(byHandle);
  slots.makeRoom();
  Live* const live = inStep ? lives.make() : nullptr;
  // From here on nothing can fail.
  Slot* const slot = slots.make();
  slot->type = type;
  slot->owner = owner;
  slot->flags = static_cast<std::uint16_t>(flags | kNew);
  slot->handle = nextHandle++;
  slot->live = live;
  if (live != nullptr) live->journalMark = stepNumber;
  byHandle.push_back(slot);  // the newest handle is the highest of its part: the order holds
  if (type == DxfType::Layout) layoutSlots.reset();
  ++changes;
  return slot;
}

void DrawingDatabase::Parts::indexHandles() {
  layoutSlots.reset();
  byHandle.clear();
  byHandle.reserve(slots.size());
  slots.forEach([&](Slot& slot) {
    if (slot.handle != 0) byHandle.push_back(&slot);
  });
  // Files list objects mostly by ascending handle within each section; ties keep file order, so the first one counts.
  std::stable_sort(byHandle.begin(), byHandle.end(),
                   [](const Slot* a, const Slot* b) { return a->handle < b->handle; });
  fileHandles = byHandle.size();
  std::vector<std::uint64_t> handles;
  handles.reserve(byHandle.size());
  for (const Slot* slot : byHandle) handles.push_back(slot->handle);
  freeHandles = findFreeHandles(handles, byHandle.empty() ? 0 : byHandle.back()->handle, nextHandle);
  nextHandle = freeHandles.begin;
}

Slot* DrawingDatabase::findHandle(std::uint64_t handle) const {
  const auto middle = parts_->byHandle.begin() + static_cast<std::ptrdiff_t>(parts_->fileHandles);
  const bool isOfFile = !parts_->freeHandles.contains(handle);
  const auto begin = isOfFile ? parts_->byHandle.begin() : middle;
  const auto end = isOfFile ? middle : parts_->byHandle.end();
  const auto found =
      std::lower_bound(begin, end, handle, [](const Slot* slot, std::uint64_t value) { return slot->handle < value; });
  if (found != end && (*found)->handle == handle) return *found;
  return found != begin ? findVertex(**(found - 1), handle) : nullptr;
}

void DrawingDatabase::forEachSlot(const std::function<void(Slot&)>& visit) const {
  parts_->slots.forEach(visit);
  parts_->lateSlots.forEach(visit);
}

std::size_t DrawingDatabase::slotCount() const { return parts_->slots.size() + parts_->lateSlots.size(); }

Live& DrawingDatabase::Parts::live(Slot& slot) {
  if (slot.live == nullptr) slot.live = lives.make();
  return *slot.live;
}

Record DrawingDatabase::Parts::current(const Slot& slot) const {
  if (slot.live != nullptr && (slot.flags & (kNew | kChanged)) != 0) return slot.live->record;
  return slot.begin != nullptr ? Record(slot.fileBytes()) : Record();
}

void DrawingDatabase::Parts::journal(Slot& slot) {
  if (attempt != nullptr) attempt->remember(slot);
  if (inStep) {
    Live& state = live(slot);
    if (state.journalMark != stepNumber) {
      currentStep.states.push_back({&slot, slot.flags, slot.layer, state.record});
      state.journalMark = stepNumber;
    }
  }
  ++changes;
  if (observer != nullptr) observer->used(slot);
  slot.flags = static_cast<std::uint16_t>(slot.flags & ~kFollows);
}

Record& DrawingDatabase::Parts::edit(Slot& slot) {
  journal(slot);
  if (slot.type == DxfType::Layer || slot.type == DxfType::Header) forgetDefaults();
  Live& state = live(slot);
  if ((slot.flags & (kNew | kChanged)) == 0) {
    state.record = Record(slot.fileBytes());
    slot.flags |= kChanged;
  }
  state.modified = true;
  return state.record;
}

void DrawingDatabase::Parts::setRecord(Slot& slot, std::string_view bytes) {
  const std::string_view kept = arena.keep(bytes);
  edit(slot).assign(kept);
}

// ---- tables and blocks ----------------------------------------------------------------------------------------------

Slot* DrawingDatabase::table(DxfType recordType) const {
  const auto found = parts_->tables.find(recordType);
  return found != parts_->tables.end() ? found->second.head : nullptr;
}

const std::vector<Slot*>& DrawingDatabase::records(DxfType recordType) const {
  static const std::vector<Slot*> kNone;
  const auto found = parts_->tables.find(recordType);
  return found != parts_->tables.end() ? found->second.records : kNone;
}

std::wstring DrawingDatabase::recordName(const Slot& record) const {
  Tag tag;
  // The name is the first tag 2 after the record's own subclass marker; every table record has it there.
  if (!findTagIn(record.tags(), "", 2, tag)) return {};
  return codec().decode(tag.value);
}

Slot* DrawingDatabase::findRecord(DxfType recordType, std::wstring_view name) const {
  const auto table = parts_->tables.find(recordType);
  if (table == parts_->tables.end()) return nullptr;
  const auto found = table->second.byName.find(name);
  if (found == table->second.byName.end()) return nullptr;
  if (!found->second->isErased()) return found->second;
  // An erased record may hide a living one of the same name (made again, or brought back by undo).
  for (Slot* const record : table->second.records) {
    if (!record->isErased() && text::equalFolded(recordName(*record), name)) return record;
  }
  return nullptr;
}

Slot* DrawingDatabase::rootDictionary() const { return parts_->root; }

const BlockContents* DrawingDatabase::block(const Slot* blockRecord) const {
  const auto found = parts_->blocks.find(blockRecord);
  return found != parts_->blocks.end() ? &found->second : nullptr;
}

const BlockContents* DrawingDatabase::findBlock(std::wstring_view name) const {
  const Slot* const record = findRecord(DxfType::BlockRecord, name);
  return record != nullptr ? block(record) : nullptr;
}

const BlockContents& DrawingDatabase::modelSpace() const { return parts_->contents(parts_->modelSpaceRecord); }

BlockContents& DrawingDatabase::Parts::contents(const Slot* blockRecord) {
  BlockContents& block = blocks[blockRecord];
  return block;
}

std::vector<std::pair<std::wstring, const BlockContents*>> DrawingDatabase::layouts() const {
  struct Found {
    std::int64_t tab;
    std::wstring name;
    const BlockContents* block;
  };
  std::vector<Found> found;
  if (!parts_->layoutSlots) {
    std::vector<Slot*> all;
    parts_->slots.forEach([&](Slot& slot) {
      if (slot.type == DxfType::Layout) all.push_back(&slot);
    });
    parts_->layoutSlots = std::move(all);
  }
  for (const Slot* const slot : *parts_->layoutSlots) {
    if (slot->isErased()) continue;
    Tag tag;
    Found layout{0, {}, nullptr};
    if (findTagIn(slot->tags(), "AcDbLayout", 1, tag)) layout.name = codec().decode(tag.value);
    if (findTagIn(slot->tags(), "AcDbLayout", 71, tag)) layout.tab = tag.integer();
    if (findTagIn(slot->tags(), "AcDbLayout", 330, tag)) layout.block = block(findHandle(tag.handle()));
    if (layout.block != nullptr) found.push_back(std::move(layout));
  }
  std::stable_sort(found.begin(), found.end(), [&](const Found& a, const Found& b) {
    const bool aModel = a.block->record == parts_->modelSpaceRecord;
    const bool bModel = b.block->record == parts_->modelSpaceRecord;
    return aModel != bModel ? aModel : a.tab < b.tab;
  });
  std::vector<std::pair<std::wstring, const BlockContents*>> result;
  if (found.empty() || found.front().block->record != parts_->modelSpaceRecord) {
    result.emplace_back(L"Model", &modelSpace());
  }
  for (Found& layout : found) result.emplace_back(std::move(layout.name), layout.block);
  return result;
}

// ---- header ---------------------------------------------------------------------------------------------------------

namespace {

/// Finds the group of a variable; `index` is its tag number, or where it would have to be added (found false), or npos
/// when the header lacks the variable.
bool findVariable(TagCursor cursor, std::string_view name, int code, Tag& tag, std::size_t& index) {
  bool inside = false;
  std::size_t number = 0;
  index = RecordLayout::npos;
  for (; cursor.next(tag); ++number) {
    if (tag.code == 9) {
      if (inside) return false;
      inside = tag.trimmed() == name;
    } else if (inside && tag.code == code) {
      index = number;
      return true;
    }
    if (inside) index = number + 1;
  }
  return false;
}

}  // namespace

std::optional<Tag> DrawingDatabase::Parts::variable(std::string_view name, int code) {
  if (header == nullptr) return std::nullopt;
  const auto [entry, isNew] = variables.try_emplace({std::string(name), code});
  if (isNew) {
    Tag tag;
    std::size_t index = 0;
    if (findVariable(header->tags(), name, code, tag, index)) entry->second = tag;
  }
  return entry->second;
}

std::optional<std::wstring> DrawingDatabase::headerText(std::string_view name, int code) const {
  const std::optional<Tag> tag = parts_->variable(name, code);
  return tag ? std::optional(codec().decode(tag->value)) : std::nullopt;
}

std::optional<double> DrawingDatabase::headerReal(std::string_view name, int code) const {
  const std::optional<Tag> tag = parts_->variable(name, code);
  return tag ? std::optional(tag->real()) : std::nullopt;
}

std::optional<std::int64_t> DrawingDatabase::headerInteger(std::string_view name, int code) const {
  const std::optional<Tag> tag = parts_->variable(name, code);
  return tag ? std::optional(tag->integer()) : std::nullopt;
}

void setVariableIn(Record& record, std::string_view name, int code, const TagWriter& tag, Arena& memory) {
  Tag former;
  std::size_t index = 0;
  if (findVariable(record.tags(), name, code, former, index)) {
    record.replace(index, 1, memory.keep(tag.str()));
  } else if (index != RecordLayout::npos) {
    record.replace(index, 0, memory.keep(tag.str()));
  } else {
    TagWriter whole = tag;
    whole.clear();
    record.append(memory.keep(whole.raw(9, name).bytes(tag.str()).str()));
  }
}

namespace {

void setVariable(DrawingDatabase& db, std::string_view name, int code, const TagWriter& tag) {
  DrawingDatabase::Parts& parts = db.parts();
  if (parts.header == nullptr) return;
  Tag former;
  std::size_t index = 0;
  if (findVariable(parts.header->tags(), name, code, former, index) && former.bytes == tag.str()) return;
  Record& record = parts.edit(*parts.header);
  parts.variables.clear();
  setVariableIn(record, name, code, tag, parts.arena);
}

}  // namespace

void DrawingDatabase::setHeaderText(std::string_view name, int code, std::wstring_view value) {
  setVariable(*this, name, code, tagWriter().text(code, value));
}

void DrawingDatabase::setHeaderReal(std::string_view name, int code, double value) {
  setVariable(*this, name, code, tagWriter().real(code, value));
}

void DrawingDatabase::setHeaderInteger(std::string_view name, int code, std::int64_t value) {
  setVariable(*this, name, code, tagWriter().integer(code, value));
}

// ---- state ----------------------------------------------------------------------------------------------------------

int DrawingDatabase::takeLostChanges() { return std::exchange(parts_->lostChanges, 0); }
bool DrawingDatabase::isModified() const { return parts_->changes != parts_->savedChanges; }
void DrawingDatabase::setUnmodified() { parts_->savedChanges = parts_->changes; }
std::uint64_t DrawingDatabase::changeCount() const { return parts_->changes; }
void DrawingDatabase::setObserver(WorkObserver* observer) { parts_->observer = observer; }

void DrawingDatabase::tellRefused(const Slot& object, WorkObserver::Refusal what, std::string_view why) const {
  if (parts_->observer != nullptr && !parts_->isOfThisStep(object)) parts_->observer->refused(object, what, why);
}
const std::vector<Problem>& DrawingDatabase::problems() const { return parts_->problems; }

// ---- undo -----------------------------------------------------------------------------------------------------------

void DrawingDatabase::beginUndoStep(std::wstring name, UndoGroup group) {
  endUndoStep();
  makeRoom(parts_->undoSteps);  // the step can be ended then, whatever the command does to memory
  parts_->currentStep = {};
  parts_->currentStep.name = std::move(name);
  parts_->currentStep.group = std::move(group);
  parts_->currentStep.madeBegin = parts_->slots.size();
  parts_->stepHandle = parts_->nextHandle;
  parts_->stepChanges = parts_->changes;
  parts_->inStep = true;
  ++parts_->stepNumber;
}

void DrawingDatabase::endUndoStep() {
  if (!parts_->inStep) return;
  parts_->inStep = false;
  parts_->currentStep.madeEnd = parts_->slots.size();
  if (parts_->currentStep.isEmpty()) return;
  parts_->undoSteps.push_back(std::move(parts_->currentStep));
  parts_->currentStep = {};
  parts_->redoSteps.clear();
}

namespace {

/// Exchanges the state of a slot with the drawing's.
void swapState(DrawingDatabase::Parts& parts, SlotState& state) {
  Slot& slot = *state.slot;
  const bool wasErased = slot.isErased();
  std::swap(state.flags, slot.flags);
  // Whether vertices were made objects meanwhile is nothing that a step changes.
  slot.flags = static_cast<std::uint16_t>((slot.flags & ~kUnmade) | (state.flags & kUnmade));
  if (slot.isErased() != wasErased) followErasing(slot);
  std::swap(state.layer, slot.layer);
  std::swap(state.record, slot.live->record);
  parts.dictionaries.erase(&slot);
  // The layer's names were met when it was given them, so this asks for no memory.
  if (slot.type == DxfType::Layer && !slot.isErased()) parts.bindLayerRecord(&slot);
}

/// Gathers everything that swapping the step needs; may fail, and changes nothing of the drawing.
void prepareSwap(DrawingDatabase::Parts& parts, UndoStep& step) {
  step.states.reserve(step.states.size() + (step.madeEnd - step.madeBegin));
  for (std::size_t i = step.madeBegin; i < step.madeEnd; ++i) parts.live(parts.slots.at(i));
  for (const SlotState& state : step.states) parts.live(*state.slot);
  for (const UndoStep::OrderState& order : step.orderStates) parts.sortTable(*order.table);
}

/// Swaps the states of a prepared step with those of the drawing: the step then leads the other way.
void swapStep(DrawingDatabase::Parts& parts, UndoStep& step) {
  // What the step made was not there before it.
  for (std::size_t i = step.madeBegin; i < step.madeEnd; ++i) {
    Slot& slot = parts.slots.at(i);
    step.states.push_back({&slot, static_cast<std::uint16_t>(slot.flags | kErased), 0, {}});
  }
  step.madeBegin = step.madeEnd = 0;
  for (SlotState& state : step.states) swapState(parts, state);
  for (auto change = step.order.rbegin(); change != step.order.rend(); ++change) {
    change->key = parts.sortTable(*change->table).keys.set(*change->entity, change->key);
  }
  std::reverse(step.order.begin(), step.order.end());
  for (UndoStep::OrderState& order : step.orderStates) std::swap(order.state, parts.sortTable(*order.table).state);
  parts.variables.clear();
  parts.forgetDefaults();
  ++parts.changes;
}

/// Whether the step, ended, did no more than add records to symbol tables that exist. Blocks hold entities.
bool addsUnusedRecordsOnly(const DrawingDatabase::Parts& parts, const UndoStep& step) {
  if (!step.order.empty() || step.madeBegin == step.madeEnd) return false;
  for (std::size_t i = step.madeBegin; i < step.madeEnd; ++i) {
    const DxfType type = parts.slots.at(i).type;
    if (!isTableRecord(type) || type == DxfType::BlockRecord) return false;
  }
  return std::all_of(step.states.begin(), step.states.end(),
                     [](const SlotState& state) { return state.slot->type == DxfType::TableHead; });
}

/// Moves the last step of one list to the other by swapping it, with those of its group before it; the name. A step
/// that fails has changed nothing.
std::optional<std::wstring> takeSteps(DrawingDatabase& db, std::vector<UndoStep>& from, std::vector<UndoStep>& to,
                                      std::uint32_t openGroup) {
  if (from.empty()) return std::nullopt;
  db.releaseObjects();
  const UndoGroup group = from.back().group;
  const bool isWhole = group.number != 0 && group.number != openGroup;
  std::optional<std::wstring> name = isWhole ? group.name : from.back().name;
  do {
    UndoStep& step = from.back();
    makeRoom(to);
    prepareSwap(db.parts(), step);
    swapStep(db.parts(), step);
    to.push_back(std::move(step));
    from.pop_back();
  } while (isWhole && !from.empty() && from.back().group.number == group.number);
  return name;
}

}  // namespace

void DrawingDatabase::endUnusedUndoStep() {
  if (!parts_->inStep) return;
  UndoStep& step = parts_->currentStep;
  step.madeEnd = parts_->slots.size();
  if (!addsUnusedRecordsOnly(*parts_, step)) return endUndoStep();
  releaseObjects();
  const bool wasModified = parts_->savedChanges != parts_->stepChanges;
  try {
    prepareSwap(*parts_, step);
  } catch (const std::bad_alloc&) {
    return endUndoStep();  // U can take it back when there is memory again
  }
  parts_->inStep = false;
  swapStep(*parts_, step);
  step = {};
  if (!wasModified) setUnmodified();
}

std::optional<std::wstring> DrawingDatabase::undo(std::uint32_t openGroup) {
  endUndoStep();
  return takeSteps(*this, parts_->undoSteps, parts_->redoSteps, openGroup);
}

std::optional<std::wstring> DrawingDatabase::redo(std::uint32_t openGroup) {
  return takeSteps(*this, parts_->redoSteps, parts_->undoSteps, openGroup);
}

// ---- attempts -------------------------------------------------------------------------------------------------------

Attempt::Attempt(DrawingDatabase::Parts& parts)
    : parts_(parts), made_(parts), begin_(parts.nextHandle), outer_(std::exchange(parts.attempt, this)) {}

Attempt::~Attempt() {
  parts_.attempt = outer_;
  if (isKept_) return;
  for (SlotState& state : states_) swapState(parts_, state);
  parts_.variables.clear();
  parts_.forgetDefaults();
}

void Attempt::remember(Slot& slot) {
  if (outer_ != nullptr) outer_->remember(slot);
  const bool isNew = (slot.flags & kNew) != 0 && slot.handle >= begin_;
  if (isNew || known_.count(&slot) > 0) return;
  states_.push_back({&slot, slot.flags, slot.layer, parts_.live(slot).record});
  try {
    known_.insert(&slot);
  } catch (...) {
    states_.pop_back();
    throw;
  }
}

}  // namespace host::database
