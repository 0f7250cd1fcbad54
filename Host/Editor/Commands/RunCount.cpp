#include "Editor/Commands/RunCount.h"

#include <algorithm>
#include <new>

namespace host::editor {
namespace {

void addReason(RunSummary::Reasons& reasons, const std::string& reason, std::size_t count) {
  if (count == 0) return;
  const auto place = std::lower_bound(reasons.begin(), reasons.end(), reason,
                                      [](const auto& each, const std::string& name) { return each.first < name; });
  if (place != reasons.end() && place->first == reason) {
    place->second += count;
  } else {
    reasons.insert(place, {reason, count});
  }
}

RunSummary::Reasons& reasonsOf(RunSummary& summary, SkipReport::What what) {
  return what == SkipReport::What::Skipped ? summary.skipped : summary.notHatched;
}

void addChanges(RunSummary& summary, const database::DrawingDatabase& drawing) {
  std::unordered_set<const database::Slot*> spaces;
  for (const auto& [name, block] : drawing.layouts()) {
    if (block != nullptr) spaces.insert(block->record);
  }
  drawing.forEachSlot([&](const database::Slot& slot) {
    if (!slot.isEntity() || slot.isSubEntity() || !spaces.contains(slot.owner)) return;
    const bool isNew = (slot.flags & database::kNew) != 0;
    if (slot.isErased()) {
      summary.erased += isNew ? 0 : 1;
    } else if (isNew) {
      ++summary.made;
    } else if ((slot.flags & database::kChanged) != 0) {
      ++summary.changed;
    }
  });
}

/// "; 4 skipped: 3 not closed, 1 on a locked layer"; a single reason needs no number of its own.
void tell(std::string& text, const RunSummary::Reasons& reasons, const char* what) {
  if (reasons.empty()) return;
  std::size_t count = 0;
  for (const auto& [reason, number] : reasons) count += number;
  text += "; " + std::to_string(count) + " " + what;
  const char* separator = ": ";
  for (const auto& [reason, number] : reasons) {
    text += std::exchange(separator, ", ");
    if (reasons.size() > 1) text += std::to_string(number) + " ";
    text += reason;
  }
}

}  // namespace

std::string RunSummary::sentence() const {
  std::string text = std::to_string(commands) + (commands == 1 ? " command; " : " commands; ");
  std::string changes;
  const auto add = [&changes](std::size_t count, const char* what) {
    if (count == 0) return;
    if (!changes.empty()) changes += ", ";
    changes += std::to_string(count);
    if (changes.find(' ') == std::string::npos) changes += count == 1 ? " object" : " objects";
    changes += std::string(" ") + what;
  };
  add(made, "made");
  add(changed, "changed");
  add(erased, "erased");
  text += changes.empty() ? "no object changed" : changes;
  tell(text, skipped, "skipped");
  tell(text, notHatched, "not hatched");
  if (foundNothing > 0)
    text += "; " + std::to_string(foundNothing) + (foundNothing == 1 ? " pick" : " picks") + " found nothing";
  return text;
}

void RunSummary::add(const RunSummary& other) {
  commands += other.commands;
  made += other.made;
  changed += other.changed;
  erased += other.erased;
  foundNothing += other.foundNothing;
  for (const auto& [reason, count] : other.skipped) addReason(skipped, reason, count);
  for (const auto& [reason, count] : other.notHatched) addReason(notHatched, reason, count);
}

void RunCount::leftOut(const std::vector<SkipReport::Skip>& skips) {
  for (const SkipReport::Skip& skip : skips) {
    const std::string reason =
        skip.reason.empty() ? "of a kind that the command does not take" : std::string(skip.reason);
    leftOut_[{skip.what, reason}].insert(skip.object);
  }
}

void RunCount::drawingCloses(const database::DrawingDatabase& drawing) noexcept {
  const auto whereMemoryLasts = [](const auto& count) {
    try {
      count();
    } catch (const std::bad_alloc&) {  // NOLINT(bugprone-empty-catch): a drawing closes whether it was counted or not
    }
  };
  whereMemoryLasts([&] { addChanges(closed_, drawing); });
  for (auto& [reason, objects] : leftOut_) {
    const std::size_t count =
        std::erase_if(objects, [&drawing](const database::Slot* each) { return &each->database() == &drawing; });
    whereMemoryLasts([&, &key = reason] { addReason(reasonsOf(closed_, key.first), key.second, count); });
  }
}

RunSummary RunCount::summary(const std::vector<const database::DrawingDatabase*>& open) const {
  RunSummary all = closed_;
  for (const database::DrawingDatabase* drawing : open) addChanges(all, *drawing);
  for (const auto& [reason, objects] : leftOut_) addReason(reasonsOf(all, reason.first), reason.second, objects.size());
  return all;
}

}  // namespace host::editor
