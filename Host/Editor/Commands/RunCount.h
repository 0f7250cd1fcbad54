// Counts what a run does, for its summary.
#pragma once

#include <map>
#include <string>
#include <unordered_set>
#include <utility>

#include "Editor/RunSummary.h"
#include "Editor/Selection/SkipReport.h"

namespace host::editor {

class RunCount {
 public:
  void commandBegins() { ++closed_.commands; }
  void foundNothing() { ++closed_.foundNothing; }
  void leftOut(const std::vector<SkipReport::Skip>& skips);
  /// The drawing goes: what happened to it is kept as numbers.
  void drawingCloses(const database::DrawingDatabase& drawing) noexcept;
  /// Of the drawings that were closed and those that are open.
  RunSummary summary(const std::vector<const database::DrawingDatabase*>& open) const;

 private:
  using Reason = std::pair<SkipReport::What, std::string>;
  using Objects = std::unordered_set<const database::Slot*>;

  RunSummary closed_;
  std::map<Reason, Objects> leftOut_;  // of open drawings
};

}  // namespace host::editor
