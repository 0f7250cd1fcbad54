#include "XDataValues.h"

namespace tolmex {

using host::database::Tag;
using host::database::TagCursor;

XDataValues::XDataValues(const host::database::Slot& slot, const host::database::DrawingDatabase& drawing,
                         std::wstring_view application) {
  constexpr int kApplication = 1001;
  bool isInside = false;
  Tag tag;
  for (TagCursor cursor = slot.tags(); cursor.next(tag);) {
    if (tag.code < 1000) continue;
    if (tag.code == kApplication) {
      isInside = drawing.codec().decode(tag.value) == application;
      isThere_ = isThere_ || isInside;
    } else if (isInside) {
      items_.push_back({tag.code, drawing.codec().decode(tag.value)});
    }
  }
}

std::optional<std::wstring> XDataValues::value(std::wstring_view key) const {
  constexpr int kText = 1000;
  constexpr int kControl = 1002;
  for (std::size_t i = 0; i < items_.size(); ++i) {
    if (items_[i].code != kText || items_[i].text != key) continue;
    std::size_t next = i + 1;
    while (next < items_.size() && items_[next].code == kControl) ++next;
    return next < items_.size() ? std::optional(items_[next].text) : std::nullopt;
  }
  return std::nullopt;
}

}  // namespace tolmex
