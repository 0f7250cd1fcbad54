#include "Database/Store/Journal.h"

#include <algorithm>
#include <new>

#include "Database/Store/Parts.h"
#include "Database/UnwrittenTags.h"

namespace host::database {

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
  parts.dictionaries.forget(slot);
  // The layer's names were met when it was given them, so this asks for no memory.
  if (slot.type == DxfType::Layer && !slot.isErased()) parts.layers.bind(&slot);
}

}  // namespace

// ---- steps ----------------------------------------------------------------------------------------------------------

void Journal::begin(std::wstring name, UndoGroup group) {
  end();
  makeRoom(undoSteps_);  // the step can be ended then, whatever the command does to memory
  current_ = {};
  current_.id = ++lastId_;
  current_.name = std::move(name);
  current_.group = std::move(group);
  current_.madeBegin = db_.parts().slots.count();
  firstHandle_ = db_.parts().handles.next();
  current_.seed = db_.parts().handles.seed();
  changesBefore_ = changes_;
  isRecording_ = true;
  ++number_;
}

void Journal::end() {
  if (!isRecording_) return;
  isRecording_ = false;
  current_.madeEnd = db_.parts().slots.count();
  if (current_.isEmpty()) return;
  undoSteps_.push_back(std::move(current_));
  current_ = {};
  redoSteps_.clear();
}

void Journal::endUnused() {
  if (!isRecording_) return;
  current_.madeEnd = db_.parts().slots.count();
  if (!addsUnusedRecordsOnly(current_)) return end();
  db_.releaseObjects();
  try {
    takeBackCurrent();
  } catch (const std::bad_alloc&) {
    return end();  // U can take it back when there is memory again
  }
}

void Journal::abandon() {
  if (!isRecording_) return;
  db_.releaseObjects();
  current_.madeEnd = db_.parts().slots.count();
  takeBackCurrent();
}

void Journal::takeBackCurrent() {
  const bool wasModified = savedChanges_ != changesBefore_ && !(state() == savedState_);
  prepareSwap(current_);
  isRecording_ = false;
  swapStep(current_);
  current_ = {};
  if (!wasModified) setUnmodified();
}

namespace {

std::vector<std::wstring> namesOf(const std::vector<UndoStep>& steps, std::size_t most, std::uint32_t openGroup) {
  std::vector<std::wstring> names;
  std::uint32_t group = 0;
  for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
    const bool isWhole = step->group.number != 0 && step->group.number != openGroup;
    if (isWhole && step->group.number == group) continue;
    if (names.size() == most) break;
    group = isWhole ? step->group.number : 0;
    names.push_back(isWhole ? step->group.name : step->name);
  }
  return names;
}

}  // namespace

std::vector<std::wstring> Journal::undoNames(std::size_t most, std::uint32_t openGroup) const {
  return namesOf(undoSteps_, most, openGroup);
}

std::vector<std::wstring> Journal::redoNames(std::size_t most, std::uint32_t openGroup) const {
  return namesOf(redoSteps_, most, openGroup);
}

std::optional<std::wstring> Journal::undo(std::uint32_t openGroup) {
  end();
  return takeSteps(undoSteps_, redoSteps_, openGroup);
}

std::optional<std::wstring> Journal::redo(std::uint32_t openGroup) {
  return takeSteps(redoSteps_, undoSteps_, openGroup);
}

/// Moves the last step of one list to the other by swapping it, with those of its group before it; the name. A step
/// that fails has changed nothing.
std::optional<std::wstring> Journal::takeSteps(std::vector<UndoStep>& from, std::vector<UndoStep>& to,
                                               std::uint32_t openGroup) {
  if (from.empty()) return std::nullopt;
  db_.releaseObjects();
  const UndoGroup group = from.back().group;
  const bool isWhole = group.number != 0 && group.number != openGroup;
  std::optional<std::wstring> name = isWhole ? group.name : from.back().name;
  do {
    UndoStep& step = from.back();
    makeRoom(to);
    prepareSwap(step);
    swapStep(step);
    to.push_back(std::move(step));
    from.pop_back();
  } while (isWhole && !from.empty() && from.back().group.number == group.number);
  return name;
}

/// Gathers everything that swapping the step needs; may fail, and changes nothing of the drawing.
void Journal::prepareSwap(UndoStep& step) {
  DrawingDatabase::Parts& parts = db_.parts();
  step.states.reserve(step.states.size() + (step.madeEnd - step.madeBegin));
  for (std::size_t i = step.madeBegin; i < step.madeEnd; ++i) parts.slots.live(parts.slots.at(i));
  for (const SlotState& state : step.states) parts.slots.live(*state.slot);
  for (const UndoStep::OrderState& order : step.orderStates) parts.sortTables.contents(*order.table);
}

/// Swaps the states of a prepared step with those of the drawing: the step then leads the other way.
void Journal::swapStep(UndoStep& step) {
  DrawingDatabase::Parts& parts = db_.parts();
  // What the step made was not there before it.
  for (std::size_t i = step.madeBegin; i < step.madeEnd; ++i) {
    Slot& slot = parts.slots.at(i);
    step.states.push_back({&slot, static_cast<std::uint16_t>(slot.flags | kErased), 0, {}});
  }
  step.madeBegin = step.madeEnd = 0;
  std::swap(step.seed, parts.handles.seed());
  for (SlotState& state : step.states) {
    swapState(parts, state);
    log(*state.slot);
  }
  for (auto move = step.moves.rbegin(); move != step.moves.rend(); ++move) {
    move->key = parts.sortTables.contents(*move->table).keys.set(*move->entity, move->key);
  }
  std::reverse(step.moves.begin(), step.moves.end());
  for (UndoStep::OrderState& order : step.orderStates) {
    std::swap(order.state, parts.sortTables.contents(*order.table).state);
  }
  parts.header.forget();
  parts.forgetDefaults();
  ++changes_;
}

/// Whether the step, ended, did no more than add records to symbol tables that exist. Blocks hold entities.
bool Journal::addsUnusedRecordsOnly(const UndoStep& step) const {
  if (!step.moves.empty() || step.madeBegin == step.madeEnd) return false;
  for (std::size_t i = step.madeBegin; i < step.madeEnd; ++i) {
    const DxfType type = db_.parts().slots.at(i).type;
    if (!isTableRecord(type) || type == DxfType::BlockRecord) return false;
  }
  return std::all_of(step.states.begin(), step.states.end(),
                     [](const SlotState& state) { return state.slot->type == DxfType::TableHead; });
}

// ---- recording ------------------------------------------------------------------------------------------------------

void Journal::record(Slot& slot) {
  if (attempt_ != nullptr) attempt_->remember(slot);
  if (isRecording_) {
    Live& live = db_.parts().slots.live(slot);
    if (live.journalMark != number_) {
      current_.states.push_back({&slot, slot.flags, slot.layer, live.record});
      live.journalMark = number_;
    }
  }
  count(slot);
}

void Journal::recordMade(Slot& slot) {
  if (isRecording_) slot.live->journalMark = number_;
  count(slot);
}

void Journal::makeRoomForMove(Slot& table, const Slot& entity, std::uint64_t state) {
  if (!isRecording_) return;
  if (!isOfThisStep(entity)) makeRoom(current_.moves);
  std::vector<UndoStep::OrderState>& known = current_.orderStates;
  const bool isKnown = std::any_of(known.begin(), known.end(), [&](const auto& one) { return one.table == &table; });
  if (!isKnown) known.push_back({&table, state});
}

void Journal::recordMove(Slot& table, const Slot& entity, OrderKey former) {
  // Where an entity stands that is taken away by undo does not matter.
  if (isRecording_ && !isOfThisStep(entity)) current_.moves.push_back({&table, &entity, former});
  count(table);
}

void Journal::log(const Slot& slot) noexcept {
  constexpr std::size_t kMostLogged = 4'000'000;
  if (!isLogging_ || (!log_.empty() && log_.back() == &slot)) return;
  isLogging_ = log_.size() < kMostLogged;
  try {
    if (isLogging_) log_.push_back(&slot);
  } catch (const std::bad_alloc&) {
    isLogging_ = false;
  }
}

std::optional<std::vector<const Slot*>> Journal::takeChangedSlots() {
  std::vector<const Slot*> taken;
  taken.swap(log_);
  if (std::exchange(isLogging_, true)) return taken;
  return std::nullopt;
}

// ---- attempts -------------------------------------------------------------------------------------------------------

Attempt::Attempt(DrawingDatabase& db)
    : db_(db),
      made_(db.parts().slots),
      begin_(db.parts().handles.next()),
      outer_(db.parts().journal.setAttempt(this)) {}

Attempt::~Attempt() {
  DrawingDatabase::Parts& parts = db_.parts();
  parts.journal.setAttempt(outer_);
  if (isKept_) return;
  for (SlotState& state : states_) swapState(parts, state);
  parts.header.forget();
  parts.forgetDefaults();
}

void Attempt::remember(Slot& slot) {
  if (outer_ != nullptr) outer_->remember(slot);
  const bool isNew = (slot.flags & kNew) != 0 && slot.handle >= begin_;
  if (isNew || known_.count(&slot) > 0) return;
  states_.push_back({&slot, slot.flags, slot.layer, db_.parts().slots.live(slot).record});
  try {
    known_.insert(&slot);
  } catch (...) {
    states_.pop_back();
    throw;
  }
}

}  // namespace host::database
