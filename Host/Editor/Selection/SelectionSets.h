// Selection sets by number, and entity names of the C interface.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "Database/Slot.h"
#include "adsdef.h"

namespace host::editor {

struct SelectionSet {
  std::vector<database::Slot*> members;
  std::unordered_set<database::Slot*> known;  // the same, made when membership is first asked for

  bool contains(database::Slot* entity);
  bool add(database::Slot* entity);
  bool remove(database::Slot* entity);
};

/// At most 128 at a time, as in the host interface.
class SelectionSets {
 public:
  static constexpr std::size_t kLimit = 128;

  /// False when there are 128 already.
  bool make(std::vector<database::Slot*> members, ads_name name);
  SelectionSet* find(const ads_name name);
  bool free(const ads_name name);
  std::size_t count() const { return sets_.size(); }
  /// Drops the sets of a drawing that goes away.
  void forget(const database::DrawingDatabase& drawing);
  void clear() { sets_.clear(); }

 private:
  std::unordered_map<std::int64_t, SelectionSet> sets_;
  std::int64_t next_ = 1;
};

/// The entity behind a name of the C interface, or null.
database::Slot* entityOf(const ads_name name);
void nameOf(database::Slot* entity, ads_name name);

}  // namespace host::editor
