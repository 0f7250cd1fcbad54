// What a run has done, in numbers: for the last line of a script's transcript, and for those who start many runs.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace host::editor {

struct RunSummary {
  /// Objects by the reason why they were left out; the reasons in alphabetical order.
  using Reasons = std::vector<std::pair<std::string, std::size_t>>;

  std::size_t commands = 0;
  /// What layouts and the model space hold now against what they held when the drawings were opened. What was undone
  /// does not count, nor do the contents of blocks.
  std::size_t made = 0, changed = 0, erased = 0;
  /// Each object once for each reason, however many commands it met.
  Reasons skipped, notHatched;
  std::size_t foundNothing = 0;  // picks and windows of scripts

  bool leftAnythingOut() const { return !skipped.empty() || !notHatched.empty() || foundNothing > 0; }
  /// "3 commands; 12 objects made, 4 changed; 4 skipped: 3 not closed, 1 on a locked layer; 2 not hatched: not closed".
  std::string sentence() const;
  void add(const RunSummary& other);
};

}  // namespace host::editor
