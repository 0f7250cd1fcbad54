// What a drawing was like before: undo steps, and work that leaves nothing behind when it fails.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "Database/DrawingDatabase.h"
#include "Database/Store/OrderKeys.h"
#include "Database/Store/Slots.h"

namespace host::database {

class Attempt;

struct SlotState {
  Slot* slot = nullptr;
  std::uint16_t flags = 0;
  std::uint32_t layer = 0;
  Record record;
};

struct UndoStep {
  std::uint64_t id = 0;  // of all steps ever made
  std::wstring name;
  UndoGroup group;
  std::vector<SlotState> states;  // before the step (for undo) or after it (for redo)
  // Slots that the step made, by their numbers. They join `states` when the step is first undone: most never are.
  std::size_t madeBegin = 0, madeEnd = 0;
  struct Move {
    Slot* table = nullptr;
    const Slot* entity = nullptr;
    OrderKey key;
  };
  std::vector<Move> moves;
  struct OrderState {
    Slot* table = nullptr;
    std::uint64_t state = 0;
  };
  std::vector<OrderState> orderStates;  // of the sort tables that it changed
  std::uint64_t seed = 0;               // of handles, before the step (for undo) or after it (for redo)
  bool isEmpty() const { return states.empty() && orderStates.empty() && madeBegin == madeEnd; }
};

/// The steps are those of DrawingDatabase, which says what they mean.
class Journal {
 public:
  explicit Journal(DrawingDatabase& db) : db_(db) {}
  Journal(const Journal&) = delete;
  Journal& operator=(const Journal&) = delete;

  // ---- steps ----
  void begin(std::wstring name, UndoGroup group);
  void end();
  void endUnused();
  std::optional<std::wstring> undo(std::uint32_t openGroup);
  std::optional<std::wstring> redo(std::uint32_t openGroup);
  /// What undo, or redo, would take in turn, one name for each group; at most `most`.
  std::vector<std::wstring> undoNames(std::size_t most, std::uint32_t openGroup) const;
  std::vector<std::wstring> redoNames(std::size_t most, std::uint32_t openGroup) const;
  std::size_t undoCount() const { return undoSteps_.size(); }
  /// Ends the step by taking it back: there was no such step. It stays when memory ends (std::bad_alloc).
  void abandon();
  /// The last step that can be undone, or null.
  const UndoStep* last() const { return undoSteps_.empty() ? nullptr : &undoSteps_.back(); }

  // ---- recording, within a step or not ----
  /// To be called before a slot changes: enters its state once per step, and counts the change.
  void record(Slot& slot);
  /// To be called for a slot that was just made. Cannot fail when `isRecording` was false or the slot has a Live.
  void recordMade(Slot& slot);
  bool isRecording() const { return isRecording_; }
  /// Whether undoing the current step takes the slot away as a whole, so that nothing of it needs to be recorded.
  bool isOfThisStep(const Slot& slot) const {
    return isRecording_ && (slot.flags & kNew) != 0 && slot.handle >= firstHandle_;
  }
  /// The next `recordMove` with the same slots cannot fail then; `state` is that of the table before it.
  void makeRoomForMove(Slot& table, const Slot& entity, std::uint64_t state);
  /// An entity had another place in the draw order.
  void recordMove(Slot& table, const Slot& entity, OrderKey former);
  /// Makes `attempt` the innermost work under way; the one before.
  Attempt* setAttempt(Attempt* attempt) { return std::exchange(attempt_, attempt); }

  // ---- counting ----
  /// See DrawingDatabase::takeChangedSlots.
  std::optional<std::vector<const Slot*>> takeChangedSlots();
  std::uint64_t changeCount() const { return changes_; }
  /// Undoing all steps since, or repeating them, leads back to what was saved.
  bool isModified() const {
    if (changes_ == savedChanges_) return false;
    return (isRecording_ && changes_ != changesBefore_) || state() != savedState_;
  }
  void setUnmodified() {
    savedChanges_ = changes_;
    savedState_ = state();
  }
  void setModified() { ++changes_, ++changesOutside_; }

 private:
  std::optional<std::wstring> takeSteps(std::vector<UndoStep>& from, std::vector<UndoStep>& to,
                                        std::uint32_t openGroup);
  void prepareSwap(UndoStep& step);
  void swapStep(UndoStep& step);
  bool addsUnusedRecordsOnly(const UndoStep& step) const;
  void takeBackCurrent();

  /// What the drawing is: the last step, and the number of changes that no step holds.
  struct State {
    std::uint64_t step = 0, changesOutside = 0;
    bool operator==(const State&) const = default;
  };
  State state() const { return {undoSteps_.empty() ? 0 : undoSteps_.back().id, changesOutside_}; }
  void count(const Slot& slot) {
    ++changes_;
    if (!isRecording_) ++changesOutside_;
    log(slot);
  }
  void log(const Slot& slot) noexcept;

  DrawingDatabase& db_;
  std::vector<UndoStep> undoSteps_;
  std::vector<UndoStep> redoSteps_;
  UndoStep current_;
  bool isRecording_ = false;
  std::uint32_t number_ = 0;         // of the current step; Live::journalMark
  std::uint64_t changesBefore_ = 0;  // change counter when the current step began
  std::uint64_t firstHandle_ = 0;    // what the current step makes has this handle or a higher one
  Attempt* attempt_ = nullptr;
  std::uint64_t changes_ = 0;
  std::uint64_t savedChanges_ = 0;
  std::uint64_t changesOutside_ = 0;
  State savedState_;
  std::uint64_t lastId_ = 0;
  std::vector<const Slot*> log_;
  bool isLogging_ = false;
};

/// Holds the slots made since: they count as erased, as if undone, unless `keep` says that they are whole. So a failure
/// between making an object and filling it leaves no object without a record.
class NewSlots {
 public:
  explicit NewSlots(Slots& slots) : slots_(slots), begin_(slots.count()) {}
  NewSlots(const NewSlots&) = delete;
  NewSlots& operator=(const NewSlots&) = delete;
  ~NewSlots() {
    for (std::size_t i = begin_; !isKept_ && i < slots_.count(); ++i) slots_.at(i).flags |= kErased;
  }
  void keep() { isKept_ = true; }

 private:
  Slots& slots_;
  std::size_t begin_;
  bool isKept_ = false;
};

/// Work on many objects that leaves nothing behind when it fails: unless `keep` says that it is done, what it made
/// counts as erased and what it changed gets its former record back.
class Attempt {
 public:
  explicit Attempt(DrawingDatabase& db);
  Attempt(const Attempt&) = delete;
  Attempt& operator=(const Attempt&) = delete;
  ~Attempt();
  /// Called before the first and any further change of a slot.
  void remember(Slot& slot);
  void keep() {
    made_.keep();
    isKept_ = true;
  }

 private:
  DrawingDatabase& db_;
  NewSlots made_;
  std::uint64_t begin_;
  std::unordered_set<const Slot*> known_;
  std::vector<SlotState> states_;
  Attempt* outer_;
  bool isKept_ = false;
};

}  // namespace host::database
