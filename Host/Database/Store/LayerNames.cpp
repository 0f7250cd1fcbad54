#include "Database/Store/Names.h"
#include "Database/Store/TagEdits.h"

namespace host::database {

std::uint32_t LayerNames::enter(std::string_view raw) {
  if (const auto found = byRaw_.find(raw); found != byRaw_.end()) return found->second;
  std::wstring folded = text::folded(codec_.decode(raw));
  std::uint32_t number = 0;
  if (const auto found = byFolded_.find(folded); found != byFolded_.end()) {
    number = found->second;
  } else {
    number = static_cast<std::uint32_t>(layers_.size());
    layers_.push_back({std::string(raw), nullptr, std::nullopt});
    try {
      byFolded_.emplace(std::move(folded), number);
    } catch (...) {
      layers_.pop_back();
      throw;
    }
  }
  byRaw_.emplace(std::string(raw), number);
  return number;
}

std::uint32_t LayerNames::find(std::wstring_view name) const {
  const auto found = byFolded_.find(text::folded(name));
  return found != byFolded_.end() ? found->second : 0;
}

std::wstring LayerNames::name(std::uint32_t layer) const {
  if (layer == 0 || layer >= layers_.size()) return {};
  const Layer& known = layers_[layer];
  if (known.record == nullptr) return codec_.decode(known.raw);
  Tag tag;
  return findTagIn(known.record->tags(), "", 2, tag) ? codec_.decode(tag.value) : std::wstring();
}

void LayerNames::bind(Slot* record) {
  Tag tag;
  if (!findTagIn(record->tags(), "AcDbLayerTableRecord", 2, tag) && !findTagIn(record->tags(), "", 2, tag)) return;
  Layer& layer = layers_[enter(tag.value)];
  if (layer.record == nullptr || layer.record->isErased()) layer.record = record;
  layer.isLocked.reset();
}

bool LayerNames::isLocked(std::uint32_t layer) {
  if (layer >= layers_.size()) return false;
  Layer& known = layers_[layer];
  if (!known.isLocked) {
    constexpr std::int64_t kLocked = 4;
    Tag tag;
    known.isLocked =
        known.record != nullptr && findTagIn(known.record->tags(), "", 70, tag) && (tag.integer() & kLocked) != 0;
  }
  return *known.isLocked;
}

void LayerNames::forgetLocks() {
  for (Layer& layer : layers_) layer.isLocked.reset();
}

}  // namespace host::database
