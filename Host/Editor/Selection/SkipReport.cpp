#include "Editor/Selection/SkipReport.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "Text/Text.h"
#include "dbid.h"

namespace host::editor {
namespace {

using database::Slot;

/// Objects with one reason.
struct Heap {
  std::wstring reason;
  std::vector<const Slot*> objects;
};

/// Heaps in the order of their first objects.
class Heaps {
 public:
  void add(std::wstring_view reason, const Slot* object) {
    const auto same =
        std::find_if(heaps_.begin(), heaps_.end(), [reason](const Heap& heap) { return heap.reason == reason; });
    if (same != heaps_.end()) {
      same->objects.push_back(object);
    } else {
      heaps_.push_back({std::wstring(reason), {object}});
    }
    ++count_;
  }

  bool isEmpty() const { return heaps_.empty(); }

  /// "3 skipped: 2 on a locked layer (LINE 2F, LINE 30), 1 ..."; a single reason needs no number of its own.
  std::wstring sentence(std::wstring_view what) const {
    std::wstring text;
    if (heaps_.empty()) return text;
    text.append(std::to_wstring(count_)).append(L" ").append(what);
    const wchar_t* separator = L": ";
    for (const Heap& heap : heaps_) {
      text += std::exchange(separator, L", ");
      if (heaps_.size() > 1) text += std::to_wstring(heap.objects.size()) + L" ";
      text += heap.reason + L" (" + names(heap.objects) + L")";
    }
    return text;
  }

 private:
  static std::wstring names(const std::vector<const Slot*>& objects) {
    constexpr std::size_t kMostNamed = 3;
    std::wstring all;
    for (std::size_t i = 0; i < std::min(objects.size(), kMostNamed); ++i) {
      if (i > 0) all += L", ";
      all += text::fromUtf8(objects[i]->database().typeName(*objects[i])) + L" " +
             text::fromUtf8(text::formatHandle(objects[i]->handle));
    }
    return objects.size() > kMostNamed ? all + L", ..." : all;
  }

  std::vector<Heap> heaps_;
  std::size_t count_ = 0;
};

}  // namespace

void SkipReport::selected(const std::vector<Slot*>& entities) {
  for (const Slot* entity : entities) {
    if (isUsed_.try_emplace(entity, false).second) selected_.push_back(entity);
  }
}

void SkipReport::used(const Slot& object) {
  if (isUsed_.empty()) return;
  if (const auto entry = isUsed_.find(&object); entry != isUsed_.end()) entry->second = true;
}

void SkipReport::refused(const Slot& object, Refusal what, std::string_view why) {
  used(object);
  const auto [entry, isNew] = reasons_.try_emplace(&object);
  if (isNew) refused_.push_back(&object);
  (what == Refusal::Change ? entry->second.change : entry->second.hatch) = why;
}

/// Selected objects of the kinds of which the command used none. Of a kind that it uses it leaves some alone for
/// reasons of its own.
std::vector<const Slot*> SkipReport::notTaken() const {
  const auto kindOf = [](const Slot* entity) { return AcDbObjectId(const_cast<Slot*>(entity)).objectClass(); };
  std::unordered_set<const AcRxClass*> taken;
  for (const Slot* entity : selected_) {
    if (isUsed_.at(entity)) taken.insert(kindOf(entity));
  }
  std::vector<const Slot*> left;
  if (taken.empty() && hadDialog_) return left;
  for (const Slot* entity : selected_) {
    if (!taken.contains(kindOf(entity))) left.push_back(entity);
  }
  return left;
}

std::vector<SkipReport::Skip> SkipReport::skips(bool isWhole) const {
  std::vector<Skip> all;
  for (const Slot* object : refused_) {
    const Reasons& reasons = reasons_.at(object);
    // An object that cannot be changed at all is reported once.
    if (!reasons.change.empty()) {
      all.push_back({object, What::Skipped, reasons.change});
    } else {
      all.push_back({object, What::NotHatched, reasons.hatch});
    }
  }
  if (isWhole) {
    for (const Slot* object : notTaken()) all.push_back({object, What::Skipped, {}});
  }
  for (const Slot* object : filtered_) all.push_back({object, What::Skipped, {}});
  return all;
}

std::wstring SkipReport::sentence(std::wstring_view command, const std::vector<Skip>& skips) const {
  const auto isNotTaken = [](const Skip& skip) { return skip.what == What::Skipped && skip.reason.empty(); };
  const bool onlyNotTaken = std::none_of(
      skips.begin(), skips.end(), [&](const Skip& skip) { return skip.what == What::Skipped && !isNotTaken(skip); });
  const auto notTakenCount = static_cast<std::size_t>(std::count_if(skips.begin(), skips.end(), isNotTaken));
  const bool tookNothing = onlyNotTaken && filtered_.empty() && notTakenCount == selected_.size();
  const std::wstring name(command);
  const std::wstring unfit =
      tookNothing ? L"nothing was selected that " + name + L" takes" : L"that " + name + L" does not take";
  Heaps skipped, unhatched;
  for (const Skip& skip : skips)
    (skip.what == What::Skipped ? skipped : unhatched)
        .add(isNotTaken(skip) ? unfit : text::fromUtf8(skip.reason), skip.object);
  const std::wstring first = skipped.sentence(L"skipped");
  const std::wstring second = unhatched.sentence(L"not hatched");
  return first.empty() || second.empty() ? first + second : first + L"; " + second;
}

}  // namespace host::editor
