// Filter lists of selections.
#pragma once

#include <memory>
#include <optional>

#include "Database/DrawingDatabase.h"
#include "adsdef.h"

namespace host::editor {

/// A compiled filter list. Tests of type, layer and space look at slots only; others read the entity's record.
class SelectionFilter {
 public:
  /// Nothing when the grouping operators do not pair up. A null list lets everything through.
  static std::optional<SelectionFilter> compile(const resbuf* list, const database::DrawingDatabase& drawing);
  SelectionFilter(SelectionFilter&&) noexcept;
  SelectionFilter& operator=(SelectionFilter&&) noexcept;
  ~SelectionFilter();

  bool matches(const database::Slot& entity) const;

  struct Node;

 private:
  explicit SelectionFilter(std::unique_ptr<Node> root);
  std::unique_ptr<Node> root_;
};

}  // namespace host::editor
