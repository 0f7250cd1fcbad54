// Which objects a running command uses, leaves out and changes.
#pragma once

#include <cstdint>
#include <functional>
#include <unordered_set>
#include <utility>

#include "Editor/Observer.h"
#include "Editor/Selection/SkipReport.h"

namespace host::editor {

/// Hears of a drawing's objects while a command works on it: sums up what was left out, and gathers what was changed
/// where an observer wants to know.
class CommandWatch final : public database::WorkObserver {
 public:
  /// `working` is called for every object that is opened; it may throw.
  CommandWatch(SkipReport& skips, std::function<void()> working) : skips_(skips), working_(std::move(working)) {}

  void begin(const database::DrawingDatabase& drawing, bool gathersChanges);
  void working() override { working_(); }
  void used(const database::Slot& object) override;
  void refused(const database::Slot& object, Refusal what, std::string_view why) override {
    skips_.refused(object, what, why);
  }
  /// Whether the drawing has changed since `begin`, and what of it.
  bool hasChanged(const database::DrawingDatabase& drawing) const { return drawing.changeCount() != begunAt_; }
  DrawingChange takeChange(const database::DrawingDatabase& drawing);

 private:
  SkipReport& skips_;
  std::function<void()> working_;
  bool gathers_ = false;
  /// Changes that the drawing has counted beyond those that named their object; making an object is one of them.
  bool hasUnnamed(const database::DrawingDatabase& drawing, std::uint64_t named) const;

  std::uint64_t begunAt_ = 0, seenAt_ = 0;  // the drawing's counter of changes
  std::size_t slots_ = 0;                   // of the drawing when the counter was seen
  bool hasGap_ = false;
  std::unordered_set<const database::Slot*> known_;
  DrawingChange change_;
};

}  // namespace host::editor
