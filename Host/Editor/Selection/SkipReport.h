// What a command left alone or was refused, summed up for its user in one line.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "Database/DrawingDatabase.h"

namespace host::editor {

/// Collects during a command. Plug-ins pass over what they cannot use without a word; the host sees it all the same:
/// what could not be opened for write, what bounded no hatch, what was selected and then not used.
class SkipReport {
 public:
  using Slot = database::Slot;
  using Refusal = database::WorkObserver::Refusal;

  /// A command begins: nothing is known.
  void begin() { *this = SkipReport(); }
  /// The user selected these for code that asked for a selection; it is expected to use them.
  void selected(const std::vector<Slot*>& entities);
  /// The selection's filter dropped this one.
  void filteredOut(const Slot& entity) { filtered_.push_back(&entity); }
  /// A dialog decides what is done: a selection that nothing was done to may have been meant so.
  void dialogOpened() { hadDialog_ = true; }

  /// The drawing calls these for its objects while the command works.
  void used(const Slot& object);
  void refused(const Slot& object, Refusal what, std::string_view why);

  enum class What { Skipped, NotHatched };
  struct Skip {
    const Slot* object;
    What what;
    std::string_view reason;  // empty: of a kind that the command does not take
  };
  /// After a command that was cancelled or has failed, `isWhole` is false: what it did not use is then nothing that it
  /// does not take. Reads the drawing: to be asked before that goes.
  std::vector<Skip> skips(bool isWhole) const;
  /// "3 skipped: 2 on a locked layer (LINE 2F, LINE 30), 1 that HATCHER does not take (TEXT 31)"; empty when nothing
  /// was left out.
  std::wstring sentence(std::wstring_view command, const std::vector<Skip>& skips) const;

 private:
  struct Reasons {
    std::string_view change, hatch;  // the latest of each kind; empty for none
  };
  std::vector<const Slot*> notTaken() const;

  std::vector<const Slot*> selected_, filtered_;
  std::unordered_map<const Slot*, bool> isUsed_;  // of the selected ones
  std::vector<const Slot*> refused_;              // in the order of their first refusal
  std::unordered_map<const Slot*, Reasons> reasons_;
  bool hadDialog_ = false;
};

}  // namespace host::editor
