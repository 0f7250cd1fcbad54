// Layer, colour and linetype that new entities have in common.
#pragma once

#include <compare>
#include <map>

#include "Database/UnwrittenTags.h"

namespace host::database {

/// The tags that entities made outside the drawing share once they are in it, by what they were given before.
class SharedTagsIndex {
 public:
  struct Key {
    const Slot* layer = nullptr;
    int color = -1;
    bool isColorFirst = false;
    auto operator<=>(const Key&) const = default;
  };
  /// Null when there are none since `forget`.
  const SharedTags* find(const Key& key) const {
    const auto found = tags_.find(key);
    return found != tags_.end() ? found->second : nullptr;
  }
  void enter(const Key& key, const SharedTags* tags) { tags_.emplace(key, tags); }
  /// To be called when a layer or a header variable has changed.
  void forget() { tags_.clear(); }

 private:
  std::map<Key, const SharedTags*> tags_;
};

}  // namespace host::database
