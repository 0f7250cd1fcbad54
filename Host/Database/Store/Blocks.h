// The blocks of a drawing with their entities, the spaces and the layouts among them.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Database/DrawingDatabase.h"

namespace host::database {

class Blocks {
 public:
  explicit Blocks(DrawingDatabase& db) : db_(db) {}
  Blocks(const Blocks&) = delete;
  Blocks& operator=(const Blocks&) = delete;

  /// Null when the slot is no block record of the drawing.
  const BlockContents* find(const Slot* record) const;
  /// The contents of a block to be changed, empty when there are none yet.
  BlockContents& contents(const Slot* record) { return contents_[record]; }

  /// The next `enter` cannot fail then.
  void makeRoom();
  /// Enters a block behind the others.
  void enter(const Slot* record) { order_.push_back(record); }
  /// Block records in the order of their BLOCKs.
  const std::vector<const Slot*>& order() const { return order_; }

  Slot* modelSpace() const { return modelSpace_; }
  Slot* paperSpace() const { return paperSpace_; }  // the active one, whose entities stand in ENTITIES; may be null
  void setSpaces(Slot* modelSpace, Slot* paperSpace);

  /// Layouts in tab order with their names: "Model" first.
  std::vector<std::pair<std::wstring, const BlockContents*>> layouts() const;
  /// To be called when a layout was made.
  void forgetLayouts() { layouts_.reset(); }

 private:
  DrawingDatabase& db_;
  std::unordered_map<const Slot*, BlockContents> contents_;
  std::vector<const Slot*> order_;
  mutable std::optional<std::vector<Slot*>> layouts_;  // erased ones included; found when first asked for
  Slot* modelSpace_ = nullptr;
  Slot* paperSpace_ = nullptr;
};

}  // namespace host::database
